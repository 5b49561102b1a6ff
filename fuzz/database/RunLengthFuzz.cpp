// The first byte chooses the unit, the second the size of the output; the rest is a frame, and then a raster
// that must survive coding and expanding.

#include <algorithm>
#include <cstdlib>

#include "database/RunLength.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::size_t kHead = 2;
    if (size < kHead)
        return 0;
    const std::uint32_t unit = data[0] % 40U;
    const auto bytes = std::as_bytes(std::span(data + kHead, size - kHead));
    std::vector<std::byte> out(std::size_t{data[1]} * 16);
    RleDecode(bytes, unit, out);

    if (const auto frame = RleEncode(bytes, unit)) {
        std::vector<std::byte> expanded(bytes.size());
        RleDecode(*frame, unit, expanded);
        if (!std::equal(expanded.begin(), expanded.end(), bytes.begin()) || frame->size() >= bytes.size() + 4)
            std::abort();
    }
    return 0;
}
