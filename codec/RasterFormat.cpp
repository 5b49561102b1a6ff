#include "codec/RasterFormat.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

struct FormatRow {
    std::wstring_view name;
    std::uint32_t unitBytes;
    std::uint32_t divisor;  // 0: no size
    std::uint32_t minBlock;
    std::uint32_t minLevelBytes;
};

// By RasterFormatCode. PAL8 has a divisor but no header ever selects it.
// clang-format off
constexpr std::array<FormatRow, 18> kFormats = {{
    {L"Unknown",    0,  0, 0,  0},
    {L"RGBA 8888",  4,  1, 0,  4},
    {L"RGBA 4444",  2,  2, 0,  2},
    {L"RGBA 5551",  2,  2, 0,  2},
    {L"RGBA 565",   2,  2, 0,  2},
    {L"PAL8",       0,  4, 0,  0},
    {L"PAL4",       0,  0, 0,  0},
    {L"LUM-16",     2,  2, 0,  2},
    {L"LUM-8",      1,  4, 0,  1},
    {L"DXT1",       8,  8, 4,  8},
    {L"DXT1-A",     8,  8, 4,  8},
    {L"DXT2",      16,  0, 0,  0},
    {L"DXT3",      16,  4, 4, 16},
    {L"DXT4",       0,  0, 0,  0},
    {L"DXT5",      16,  4, 4, 16},
    {L"ETC1",       8,  8, 4,  8},
    {L"PVRTC2",    32, 16, 0, 32},
    {L"PVRTC4",    16,  8, 0, 32},
}};

constexpr std::array<std::pair<std::uint16_t, RasterFormatCode>, 13> kGlFormats = {{
    {GlFormat::Rgba8888, RasterFormatCode::Rgba8888}, {GlFormat::Rgba4444, RasterFormatCode::Rgba4444},
    {GlFormat::Rgba5551, RasterFormatCode::Rgba5551}, {GlFormat::Rgba565, RasterFormatCode::Rgba565},
    {GlFormat::Lum16, RasterFormatCode::Lum16},       {GlFormat::Lum8, RasterFormatCode::Lum8},
    {GlFormat::Dxt1, RasterFormatCode::Dxt1},         {GlFormat::Dxt1A, RasterFormatCode::Dxt1A},
    {GlFormat::Dxt3, RasterFormatCode::Dxt3},         {GlFormat::Dxt5, RasterFormatCode::Dxt5},
    {GlFormat::Etc1, RasterFormatCode::Etc1},         {GlFormat::Pvrtc2, RasterFormatCode::Pvrtc2},
    {GlFormat::Pvrtc4, RasterFormatCode::Pvrtc4},
}};
// clang-format on

const FormatRow& RowOf(RasterFormatCode code)
{
    return kFormats[static_cast<std::size_t>(code)];
}

}  // namespace

RasterFormatCode FormatFromGl(std::uint16_t glFormat)
{
    const auto* const found = std::find_if(kGlFormats.begin(), kGlFormats.end(),
                                           [glFormat](const auto& row) { return row.first == glFormat; });
    return found != kGlFormats.end() ? found->second : RasterFormatCode::Unknown;
}

std::wstring_view FormatName(RasterFormatCode code)
{
    return RowOf(code).name;
}

std::uint32_t UnitBytes(RasterFormatCode code)
{
    return RowOf(code).unitBytes;
}

std::uint64_t LevelSize(RasterFormatCode code, std::uint32_t width, std::uint32_t height)
{
    const FormatRow& row = RowOf(code);
    if (row.divisor == 0)
        return 0;
    const std::uint64_t pixels =
        std::uint64_t{std::max(width, row.minBlock)} * std::max(height, row.minBlock);
    return std::max<std::uint64_t>(pixels * 4 / row.divisor, row.minLevelBytes);
}

std::uint64_t RasterSize(const RasterHeader& header)
{
    const RasterFormatCode code = FormatFromGl(header.glFormat);
    std::uint32_t width = header.width;
    std::uint32_t height = header.Height();
    std::uint64_t total = 0;
    while (width != 0 && height != 0) {
        total += LevelSize(code, width, height);
        if (!header.HasMips() || (width == 1 && height == 1))
            break;
        width = std::max(width >> 1, 1U);
        height = std::max(height >> 1, 1U);
    }
    return total;
}

std::uint32_t LevelCount(const RasterHeader& header)
{
    if (header.width == 0)
        return 0;
    if (!header.HasMips())
        return 1;
    std::uint32_t levels = 1;
    for (std::uint32_t side = std::max<std::uint32_t>(header.width, header.Height()); side > 1; side >>= 1)
        ++levels;
    return levels;
}
