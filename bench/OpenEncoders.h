#pragma once

// DXT encoders of others, to measure ours beside: those whose libraries were there when this was built.

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "bench/Codecs.h"

namespace Bench {

struct OpenEncoder {
    std::string name;
    /// Writes DXT1 of R G B A pixels, sides multiples of four; empty when it has none.
    std::function<void(const std::uint8_t*, std::uint8_t*, Size)> dxt1;
    std::function<void(const std::uint8_t*, std::uint8_t*, Size)> dxt5;
    bool isUnit = false;  ///< its DXT1 is what speeds are compared with
    int runs = 20;
};

std::vector<OpenEncoder> OpenEncoders();

}  // namespace Bench
