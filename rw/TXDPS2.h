#pragma once

// Texture dictionaries of the PlayStation 2. A texture's raster is a section of its own with a header; pixels
// of 4 and 8 bits may be swizzled (Unswizzle.h), and the palette stands at the end of the pixel data.
//
//   Texture Native
//     Struct             begins with "PS2"
//     String             texture name
//     String             mask name
//     Struct             read as a container
//       Struct           raster header: u32 width, height, depth, raster format; a word at 52
//       Struct           pixel data
//     Extension

#include "rw/TXDCommon.h"

namespace RW {

class CTXDPS2 final : public CTXDCommon {
public:
    using CTXDCommon::CTXDCommon;

    std::uint16_t GetWidth(std::uint32_t index) override;
    std::uint16_t GetHeight(std::uint32_t index) override;
    /// Deliberate: silent about an index out of range.
    std::wstring GetName(std::uint32_t index, TextureText which) override;
    std::uint32_t GetDepth(std::uint32_t index) override;
    std::uint32_t GetCompression(std::uint32_t index) override;
    std::uint32_t GetMipLevels(std::uint32_t index) override;
    /// Deliberate: the layout code, whatever `form` asks for, so that no text names a 16-bit layout.
    std::uint32_t GetRasterFormat(std::uint32_t index, FormatForm form) override;
    void FreeData(std::uint32_t index) override;
    /// Deliberate: refuses without a message.
    bool SetName(std::uint32_t index, std::wstring_view name, TextureText which) override;
    std::span<const std::byte> GetPixels(std::uint32_t index, std::uint32_t level) override;
    std::span<const std::byte> GetPalette(std::uint32_t index) override;
    bool HasAlpha(std::uint32_t index) override;

    bool IsSwizzled(std::uint32_t index);

protected:
    bool IsOwnPlatform() override;
    std::wstring_view NotOpenedMessage() const override;
    std::wstring_view WrongPlatformMessage() const override;

private:
    /// A word of the raster header; nothing after a stop box.
    std::optional<std::uint32_t> HeaderWord(std::uint32_t index, std::size_t offset);
    std::uint64_t LevelBits(std::uint32_t index);
    bool HasHalvedSizes(std::uint32_t index);
    bool IsSwizzledByHeader(std::uint32_t index, std::uint32_t type);
    CNode* PixelNode(std::uint32_t index);
    std::span<const std::byte> PixelBody(std::uint32_t index);
};

}  // namespace RW
