#pragma once

// Sine and cosine as one fixed formula: those of the C library differ in the last bits from system to system.

#include <cmath>

namespace Demo {

/// Of an angle in whole turns. Within 0.002 of the sine.
inline double SineOfTurns(double turns)
{
    const double phase = turns - std::floor(turns);
    const double half = phase < 0.5 ? phase : phase - 0.5;
    const double bow = half * 2 * (1 - half * 2);
    const double value = 16 * bow / (5 - 4 * bow);
    return phase < 0.5 ? value : -value;
}

inline double CosineOfTurns(double turns)
{
    return SineOfTurns(turns + 0.25);
}

}  // namespace Demo
