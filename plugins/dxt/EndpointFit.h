#pragma once

// The steps that every colour search is made of: measure a pair of endpoints, and solve for better endpoints
// when the indices are known. Integers only, so that every machine and every compiler finds the same block.

#include <array>
#include <cstdint>

#include "plugins/dxt/BlockFormat.h"

namespace Dxt {

/// The colours of a block. `counts` is 1 for a pixel whose colour matters and 0 for a transparent one.
struct ColorPixels {
    std::array<int, kBlockPixelCount> red;
    std::array<int, kBlockPixelCount> green;
    std::array<int, kBlockPixelCount> blue;
    std::array<int, kBlockPixelCount> counts;
};

/// What index 3 is in the palettes that a search may use.
enum class FitMode {
    Four,           ///< four colours on a line
    Three,          ///< three colours on a line, index 3 not used
    ThreeAndBlack,  ///< three colours on a line, index 3 is black
};

struct ColorFit {
    std::uint16_t color0 = 0;
    std::uint16_t color1 = 0;
    FitMode mode = FitMode::Four;
    std::array<std::uint8_t, kBlockPixelCount> indices{};
    /// Summed squared difference of the pixels that count, as the decoder will show them.
    int error = 0;
};

/// Gives each pixel its nearest colour. The order of the endpoints does not matter here.
ColorFit MeasureEndpoints(const ColorPixels& pixels, std::uint16_t color0, std::uint16_t color1,
                          FitMode mode);

/// Sums over the pixels of a labelling, enough to solve for the endpoints: how much each endpoint weighs in
/// the pixels' colours, and the colours themselves. All in units of the mode's step (a third or a half).
struct EndpointSums {
    int both00 = 0;
    int both01 = 0;
    int both11 = 0;
    std::array<int, 3> color0{};
    std::array<int, 3> color1{};
};

struct EndpointPair {
    std::uint16_t color0;
    std::uint16_t color1;
};

/// The steps between the endpoints: 3 when four colours lie on the line, else 2.
int StepsOf(FitMode mode);

/// The least-squares endpoints, rounded to 5-6-5 bits; false when the labels do not determine them.
bool SolveEndpoints(const EndpointSums& sums, int steps, EndpointPair& endpoints);

/// Alternates between solving and measuring, at most `rounds` times, as long as the error falls.
ColorFit RefineFit(const ColorPixels& pixels, ColorFit fit, int rounds);

}  // namespace Dxt
