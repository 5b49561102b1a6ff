#include "rw/TXDPC.h"

#include <algorithm>

#include "base/ByteReader.h"
#include "base/Text.h"
#include "rw/Messages.h"

namespace RW {
namespace {

constexpr std::uint32_t kPaletteEntryBytes = 4;
constexpr std::uint32_t kLargestPalettedDepth = 8;

std::uint32_t Direct3D8Compression(std::uint32_t stored)
{
    switch (stored) {
        case 1:
            return Compression::kDxt1;
        case 3:
            return Compression::kDxt3;
        default:
            return stored;
    }
}

// The byte is a set of flags: 1 alpha, 8 compressed.
std::uint32_t Direct3D9Compression(std::uint32_t stored)
{
    switch (stored) {
        case 0:
        case 1:
            return Compression::kNone;
        case 8:
            return Compression::kDxt1;
        case 9:
            return Compression::kDxt3;
        default:
            return stored;
    }
}

}  // namespace

bool CTXDPC::IsOwnPlatform()
{
    return IsPlatform(Platform::kDirect3D7, 0) || IsPlatform(Platform::kDirect3D8, 0) ||
           IsPlatform(Platform::kDirect3D9, 0);
}

std::wstring_view CTXDPC::NotOpenedMessage() const
{
    return Message::kNotADictionary;
}

std::wstring_view CTXDPC::WrongPlatformMessage() const
{
    return Message::kNotPC;
}

std::span<const std::byte> CTXDPC::Field(std::uint32_t index, std::size_t offset, std::size_t bytes)
{
    if (!CheckIndex(index))
        return {};
    const auto head = RecordHead(index, offset + bytes);
    return head.empty() ? head : head.subspan(offset, bytes);
}

std::uint8_t CTXDPC::Byte(std::uint32_t index, std::size_t offset)
{
    return CByteReader(Field(index, offset, 1)).U8();
}

std::uint16_t CTXDPC::Word(std::uint32_t index, std::size_t offset)
{
    return CByteReader(Field(index, offset, 2)).U16();
}

std::span<const std::byte> CTXDPC::BodyFrom(std::uint32_t index, std::size_t offset)
{
    const auto body = RecordBody(index, offset);
    return body.empty() ? body : body.subspan(offset);
}

std::uint16_t CTXDPC::GetWidth(std::uint32_t index)
{
    return Word(index, PCRecord::kWidth);
}

std::uint16_t CTXDPC::GetHeight(std::uint32_t index)
{
    return Word(index, PCRecord::kHeight);
}

std::uint32_t CTXDPC::GetDepth(std::uint32_t index)
{
    return Byte(index, PCRecord::kDepth);
}

std::uint32_t CTXDPC::GetMipLevels(std::uint32_t index)
{
    return Byte(index, PCRecord::kLevels);
}

std::wstring CTXDPC::GetName(std::uint32_t index, TextureText which)
{
    const std::size_t at = which == TextureText::Mask ? PCRecord::kMask : PCRecord::kName;
    return TextIn(Field(index, at, PCRecord::kNameBytes));
}

bool CTXDPC::SetName(std::uint32_t index, std::wstring_view name, TextureText which)
{
    if (!CheckIndex(index))
        return false;
    if (name.size() >= PCRecord::kNameBytes) {
        RaiseSoftError(Message::kNameTooLong);
        return false;
    }
    const std::size_t at = which == TextureText::Mask ? PCRecord::kMask : PCRecord::kName;
    const auto body = RecordBody(index, at + PCRecord::kNameBytes);
    if (body.empty())
        return false;
    const std::string bytes = Narrow(name);
    const auto field = body.subspan(at, bytes.size() + 1);
    std::transform(bytes.begin(), bytes.end(), field.begin(),
                   [](char character) { return static_cast<std::byte>(character); });
    field.back() = std::byte{0};
    return true;
}

std::uint32_t CTXDPC::GetRasterFormat(std::uint32_t index, FormatForm form)
{
    return LayoutBits(CByteReader(Field(index, PCRecord::kRasterFormat, 4)).U32(), form);
}

std::uint32_t CTXDPC::GetCompression(std::uint32_t index)
{
    const auto stored = Field(index, PCRecord::kCompression, 1);
    if (stored.empty())
        return Compression::kNone;
    const auto value = std::to_integer<std::uint32_t>(stored[0]);
    if (IsPlatform(Platform::kDirect3D8, index))
        return Direct3D8Compression(value);
    return IsPlatform(Platform::kDirect3D9, index) ? Direct3D9Compression(value) : value;
}

std::span<const std::byte> CTXDPC::GetPalette(std::uint32_t index)
{
    return CheckIndex(index) ? BodyFrom(index, PCRecord::kFixedBytes) : std::span<const std::byte>();
}

std::span<const std::byte> CTXDPC::GetPixels(std::uint32_t index, std::uint32_t /*level*/)
{
    const auto stored = Field(index, PCRecord::kDepth, 1);
    if (stored.empty())
        return {};
    const auto depth = std::to_integer<std::uint32_t>(stored[0]);
    const std::size_t palette = depth > kLargestPalettedDepth ? 0 : kPaletteEntryBytes << depth;
    return BodyFrom(index, PCRecord::kFixedBytes + palette + sizeof(std::uint32_t));
}

bool CTXDPC::HasAlpha(std::uint32_t index)
{
    if (!CheckIndex(index))
        return false;
    const std::uint32_t compression = GetCompression(index);
    if (compression == Compression::kNone) {
        const std::uint32_t depth = GetDepth(index);
        const std::uint32_t layout = GetRasterFormat(index, FormatForm::Layout);
        if (depth == 24 || (depth == 16 && (layout == 0x565 || layout == 0x555)))
            return false;
    }
    return compression == Compression::kDxt3 || !GetName(index, TextureText::Mask).empty();
}

void CTXDPC::FreeData(std::uint32_t index)
{
    if (!CheckIndex(index))
        return;
    if (CNode* const record = NodeAt({std::int64_t{index} + 1, 0}))
        record->FreeData();
}

}  // namespace RW
