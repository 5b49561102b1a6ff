#pragma once

// Texture dictionaries of the PC, and what the mobile reader has in common with them.

#include "rw/TXDCommon.h"

namespace RW {

/// The fixed part of a texture's record.
//  0  u32       platform: 1, 8 or 9         80  u16  width in pixels
//  4  u32       filter, addressing          82  u16  height in pixels
//  8  char[32]  texture name                84  u8   bits per pixel
// 40  char[32]  mask name                   85  u8   levels
// 72  u32       raster format               86  u8   raster type
// 76  u32       platform's format word      87  u8   compression (platform 8) or flags (platform 9)
// 88  palette of 2^depth entries of 4 bytes when depth <= 8, then u32 size and pixels of the first level
namespace PCRecord {
inline constexpr std::size_t kName = 8;
inline constexpr std::size_t kMask = 40;
inline constexpr std::size_t kNameBytes = 32;
inline constexpr std::size_t kRasterFormat = 72;
inline constexpr std::size_t kPlatformFormat = 76;
inline constexpr std::size_t kWidth = 80;
inline constexpr std::size_t kHeight = 82;
inline constexpr std::size_t kDepth = 84;
inline constexpr std::size_t kLevels = 85;
inline constexpr std::size_t kCompression = 87;
inline constexpr std::size_t kFixedBytes = 88;
}  // namespace PCRecord

class CTXDPC : public CTXDCommon {
public:
    using CTXDCommon::CTXDCommon;

    std::uint16_t GetWidth(std::uint32_t index) override;
    std::uint16_t GetHeight(std::uint32_t index) override;
    std::wstring GetName(std::uint32_t index, TextureText which) override;
    std::uint32_t GetDepth(std::uint32_t index) override;
    std::uint32_t GetCompression(std::uint32_t index) override;
    std::uint32_t GetMipLevels(std::uint32_t index) override;
    std::uint32_t GetRasterFormat(std::uint32_t index, FormatForm form) override;
    void FreeData(std::uint32_t index) override;
    /// Up to 31 characters; a longer name is a soft error. The name lives in the record in memory: FreeData
    /// brings the stored one back.
    bool SetName(std::uint32_t index, std::wstring_view name, TextureText which) override;
    /// Deliberate: always the first level.
    std::span<const std::byte> GetPixels(std::uint32_t index, std::uint32_t level) override;
    std::span<const std::byte> GetPalette(std::uint32_t index) override;
    /// Deliberate: a 32-bit texture has alpha only when it has a mask name.
    bool HasAlpha(std::uint32_t index) override;

protected:
    bool IsOwnPlatform() override;
    std::wstring_view NotOpenedMessage() const override;
    std::wstring_view WrongPlatformMessage() const override;
    /// The bytes of a field of the record; empty after a message when the texture or the field is missing.
    std::span<const std::byte> Field(std::uint32_t index, std::size_t offset, std::size_t bytes);
    std::uint8_t Byte(std::uint32_t index, std::size_t offset);
    std::uint16_t Word(std::uint32_t index, std::size_t offset);
    /// The body from `offset` on, likewise.
    std::span<const std::byte> BodyFrom(std::uint32_t index, std::size_t offset);
};

}  // namespace RW
