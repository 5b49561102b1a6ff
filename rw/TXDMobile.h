#pragma once

// Texture dictionaries of the mobile platforms. The sizes of the dictionary and of each texture cannot be
// trusted in these files, so the tree is read by counts and those sizes are computed anew.

#include "rw/TXDPC.h"

namespace RW {

/// What is read of a texture's record.
//  0  u32       platform: 10, 11 or 12      98  u8   1: 4444, 0: 565
// 32  char[32]  texture name               100  u16  width in pixels
// 64  char[34]  mask name                  102  u16  height in pixels
//                                          116  pixels
namespace MobileRecord {
inline constexpr std::size_t kName = 32;
inline constexpr std::size_t kNameBytes = 32;
inline constexpr std::size_t kMask = 64;
inline constexpr std::size_t kMaskBytes = 34;
inline constexpr std::size_t kAlpha = 98;
inline constexpr std::size_t kWidth = 100;
inline constexpr std::size_t kHeight = 102;
inline constexpr std::size_t kPixels = 116;
}  // namespace MobileRecord

// Deliberate: level count, palette and SetName use the places of the PC's record, as they are inherited.
// TXDMobile.KeepsThePlacesOfThePCForLevelsPaletteAndNewNames pins it.
class CTXDMobile final : public CTXDPC {
public:
    using CTXDPC::CTXDPC;

    std::uint16_t GetWidth(std::uint32_t index) override;
    std::uint16_t GetHeight(std::uint32_t index) override;
    std::wstring GetName(std::uint32_t index, TextureText which) override;
    std::uint32_t GetDepth(std::uint32_t index) override;
    /// Deliberate: by the platform of the first texture, whatever `index` is.
    std::uint32_t GetCompression(std::uint32_t index) override;
    std::uint32_t GetRasterFormat(std::uint32_t index, FormatForm form) override;
    std::span<const std::byte> GetPixels(std::uint32_t index, std::uint32_t level) override;
    /// Deliberate: true for every texture.
    bool HasAlpha(std::uint32_t index) override;
    std::int32_t ReadChildren(CNode& node, CNode* parent, std::uint32_t index) override;

protected:
    bool IsOwnPlatform() override;
    std::wstring_view WrongPlatformMessage() const override;

private:
    std::uint64_t ReadUntilExactlyFull(CNode& node);
    std::uint64_t ReadDictionary(CNode& node);
    std::uint64_t ReadCounted(CNode& node, std::uint64_t walked, std::uint64_t count);
};

}  // namespace RW
