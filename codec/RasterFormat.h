#pragma once

// The pixel formats of the caches: the record header, the program's own format numbers, their names and the
// rule that gives a raster's size. A leaf that both the database and the codecs stand on.
// docs/formats/cache.md has the layout.

#include <cstddef>
#include <cstdint>
#include <string_view>

/// The 8 bytes in front of every `.dat` and `.tmb` record.
//  0  u16  low 16 bits of the entry's NameHash        4  u16  width of the largest level, pixels
//  2  u16  GL enumerant of the pixel format           6  u16  its height; bit 15: a full mip chain follows
struct RasterHeader {
    std::uint16_t nameHash16 = 0;
    std::uint16_t glFormat = 0;
    std::uint16_t width = 0;
    std::uint16_t heightAndMips = 0;

    std::uint32_t Height() const { return heightAndMips & 0x7FFFU; }
    bool HasMips() const { return (heightAndMips & 0x8000U) != 0; }
    bool operator==(const RasterHeader&) const = default;
};

enum class RasterFormatCode : std::uint8_t {
    Unknown,
    Rgba8888,
    Rgba4444,
    Rgba5551,
    Rgba565,
    Pal8,
    Pal4,
    Lum16,
    Lum8,
    Dxt1,
    Dxt1A,
    Dxt2,
    Dxt3,
    Dxt4,
    Dxt5,
    Etc1,
    Pvrtc2,
    Pvrtc4,
};

/// The GL enumerants that headers hold.
namespace GlFormat {  // NOLINTBEGIN(readability-identifier-naming): the published names
inline constexpr std::uint16_t Rgba8888 = 0x1401;
inline constexpr std::uint16_t Rgba4444 = 0x8033;
inline constexpr std::uint16_t Rgba5551 = 0x8034;
inline constexpr std::uint16_t Rgba565 = 0x8363;
inline constexpr std::uint16_t Lum16 = 0x190A;
inline constexpr std::uint16_t Lum8 = 0x1909;
inline constexpr std::uint16_t Dxt1 = 0x83F0;
inline constexpr std::uint16_t Dxt1A = 0x83F1;
inline constexpr std::uint16_t Dxt3 = 0x83F2;
inline constexpr std::uint16_t Dxt5 = 0x83F3;
inline constexpr std::uint16_t Etc1 = 0x8D64;
inline constexpr std::uint16_t Pvrtc2 = 0x8C01;
inline constexpr std::uint16_t Pvrtc4 = 0x8C02;  // NOLINTEND(readability-identifier-naming)
}  // namespace GlFormat

/// Unknown for an enumerant that is none of the above.
RasterFormatCode FormatFromGl(std::uint16_t glFormat);
/// As the status bar shows it: "Unknown", "RGBA 8888", … "PVRTC4".
std::wstring_view FormatName(RasterFormatCode code);
/// Bytes of one repeat unit of run-length coding; 0 for formats without one.
std::uint32_t UnitBytes(RasterFormatCode code);
/// Bytes of the pixels of all levels, at most about 11.5 GB; 0 for an unknown format or an empty picture.
std::uint64_t RasterSize(const RasterHeader& header);
/// Bytes that one level of `width` x `height` pixels takes by the size rule; 0 for an unknown format.
std::uint64_t LevelSize(RasterFormatCode code, std::uint32_t width, std::uint32_t height);
/// 1 without mips, 0 when the width is 0, else the levels down to 1x1.
std::uint32_t LevelCount(const RasterHeader& header);
