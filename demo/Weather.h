#pragma once

// What time does to any surface: grain, stains, streaks below edges, cracks, and darkness at night.

#include <cstdint>

#include "demo/Canvas.h"

namespace Demo {

/// Fine speckles: every pixel brighter or darker by up to `amount`.
void AddGrain(CCanvas& canvas, double amount, std::uint32_t seed);
/// Large soft patches of `color`, at most `amount` of it.
void AddStains(CCanvas& canvas, const Color& color, double amount, std::uint32_t seed);
/// Dirt that ran down, stronger towards the bottom.
void AddStreaks(CCanvas& canvas, const Color& color, double amount, std::uint32_t seed);
/// Thin dark cracks between large cells.
void AddCracks(CCanvas& canvas, int cells, double amount, std::uint32_t seed);
/// The same surface by night: dark and blue.
void TurnToNight(CCanvas& canvas);
/// The same surface in the rain: darker, with flat reflections of the sky.
void MakeWet(CCanvas& canvas, std::uint32_t seed);

}  // namespace Demo
