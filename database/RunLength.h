#pragma once

// The run-length coding of framed records. A frame is a marker word, whose low byte marks a run, and then
// units: plain ones, or marker, count and the unit that is repeated. docs/formats/cache.md works an example
// through.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

/// The frame of a raster, marker word included; nothing when it cannot be coded to less than the raster and a
/// marker word: no free marker, no run, or no gain. A unit has `unitBytes` bytes, at least four.
std::optional<std::vector<std::byte>> RleEncode(std::span<const std::byte> raster, std::uint32_t unitBytes);

/// Expands a frame into `out`, which the caller has filled with zeros. Whatever a damaged frame does not give
/// stays as it was; nothing outside the two spans is touched.
void RleDecode(std::span<const std::byte> frame, std::uint32_t unitBytes, std::span<std::byte> out);
