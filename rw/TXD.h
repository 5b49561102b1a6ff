#pragma once

// One texture dictionary, whatever platform it was made for. Textures are told by an index from 0. An index
// out of range is the soft error "Texture not exists." and yields 0, nothing or an empty text; a record that
// cannot be read is a stop box and yields the same.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace RW {

/// Which of a texture's two names is meant.
enum class TextureText { Name, Mask };
/// How the pixel layout is told: the bits of the raster format, or a code whose hexadecimal digits are the
/// bit widths of alpha, red, green and blue.
enum class FormatForm { Raw, Layout };

/// What GetCompression returns; other values are passed on as they are stored.
namespace Compression {
inline constexpr std::uint32_t kNone = 0;
inline constexpr std::uint32_t kSwizzled = 2;  ///< palettized and swizzled
inline constexpr std::uint32_t kDxt1 = 4;
inline constexpr std::uint32_t kDxt3 = 16;
inline constexpr std::uint32_t kMobilePvrtc = 1024;
inline constexpr std::uint32_t kMobileOther = 2048;
}  // namespace Compression

/// Platform identifiers that the readers act on.
namespace Platform {
inline constexpr std::uint32_t kDirect3D7 = 1;
inline constexpr std::uint32_t kPS2 = 4;
inline constexpr std::uint32_t kDirect3D8 = 8;
inline constexpr std::uint32_t kDirect3D9 = 9;
inline constexpr std::uint32_t kMobile10 = 10;
inline constexpr std::uint32_t kMobile11 = 11;
inline constexpr std::uint32_t kMobile12 = 12;
}  // namespace Platform

class ITXD {
public:
    ITXD() = default;
    ITXD(const ITXD&) = delete;
    ITXD& operator=(const ITXD&) = delete;
    virtual ~ITXD() = default;

    /// Whether a texture was made for a platform; true for every platform when there are no textures.
    virtual bool IsPlatform(std::uint32_t platform, std::uint32_t index) = 0;
    /// Opens a file alone and checks that its first texture is of the reader's platform.
    virtual bool Open(const std::filesystem::path& fileName, std::uint64_t offset, std::uint32_t rootId,
                      std::uint32_t flags) = 0;
    /// Places that are kept for operations to come.
    virtual bool Reserved3() { return false; }
    /// An empty dictionary in memory.
    virtual bool Create(std::uint32_t version) = 0;
    virtual bool Reserved5() { return false; }
    virtual bool Reserved6() { return false; }
    virtual bool Reserved7() { return false; }
    virtual bool Reserved8() { return true; }
    virtual std::uint32_t GetTextureCount() = 0;
    /// Pixels.
    virtual std::uint16_t GetWidth(std::uint32_t index) = 0;
    virtual std::uint16_t GetHeight(std::uint32_t index) = 0;
    virtual std::wstring GetName(std::uint32_t index, TextureText which) = 0;
    /// Bits per pixel.
    virtual std::uint32_t GetDepth(std::uint32_t index) = 0;
    virtual std::uint32_t GetCompression(std::uint32_t index) = 0;
    /// For display: "DXT1", "16 bpp 565", "PAL8, swizzled", …
    virtual std::wstring GetFormatText(std::uint32_t index) = 0;
    virtual std::uint32_t GetMipLevels(std::uint32_t index) = 0;
    virtual std::uint32_t GetRasterFormat(std::uint32_t index, FormatForm form) = 0;
    /// Drops what was loaded of a texture's pixels; it is loaded again when it is needed.
    virtual void FreeData(std::uint32_t index) = 0;
    /// False when the name cannot be stored.
    virtual bool SetName(std::uint32_t index, std::wstring_view name, TextureText which) = 0;
    /// From the first pixel of a level to the end of the record; empty when there are none. Valid until
    /// FreeData.
    virtual std::span<const std::byte> GetPixels(std::uint32_t index, std::uint32_t level) = 0;
    /// From the palette's first byte to the end of the record, likewise.
    virtual std::span<const std::byte> GetPalette(std::uint32_t index) = 0;
    virtual bool HasAlpha(std::uint32_t index) = 0;
    virtual void Reserved23() {}
    virtual bool SetTextureCount(std::uint32_t value) = 0;
    virtual std::uint32_t GetPlatform(std::uint32_t index) = 0;
};

}  // namespace RW
