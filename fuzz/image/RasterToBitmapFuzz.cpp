// Raw pixels with any layout: the first 13 bytes choose it, the rest are palette and pixels.
#include <array>
#include <cstddef>
#include <cstdint>

#include "base/ByteReader.h"
#include "image/RasterToBitmap.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::array<std::uint32_t, 9> kLayouts = {0,      0x8,    0x88,  0x565, 0x1555,
                                                       0x4444, 0x5551, 0x888, 0x8888};
    constexpr std::array<std::uint32_t, 7> kDepths = {4, 8, 12, 16, 24, 32, 1};
    CByteReader in(std::as_bytes(std::span(data, size)));
    RasterLayout layout;
    layout.width = in.U16();
    layout.height = in.U16();
    layout.depth = kDepths[in.U8() % kDepths.size()];
    layout.layout = kLayouts[in.U8() % kLayouts.size()];
    layout.level = in.U32();
    layout.swapRB = in.U8() % 2 != 0;
    const std::size_t paletteSize = in.U16();
    const auto palette = in.Bytes(paletteSize < in.Left() ? paletteSize : in.Left());
    RasterFault fault = RasterFault::None;
    RasterToBitmap(in.Bytes(in.Left()), layout, palette, &fault);
    return 0;
}
