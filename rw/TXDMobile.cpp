#include "rw/TXDMobile.h"

#include "base/ByteReader.h"
#include "rw/Messages.h"
#include "rw/SectionId.h"

namespace RW {
namespace {

constexpr std::uint32_t kMobileDepth = 16;
constexpr std::uint32_t kChildrenOfNative = 2;

std::uint64_t WholeSize(const CNode& node)
{
    return std::uint64_t{node.Size()} + kHeaderBytes;
}

}  // namespace

bool CTXDMobile::IsOwnPlatform()
{
    return IsPlatform(Platform::kMobile12, 0) || IsPlatform(Platform::kMobile11, 0) ||
           IsPlatform(Platform::kMobile10, 0);
}

std::wstring_view CTXDMobile::WrongPlatformMessage() const
{
    return Message::kNotMobile;
}

std::int32_t CTXDMobile::ReadChildren(CNode& node, CNode* parent, std::uint32_t index)
{
    if (!IsContainer(node, parent, index)) {
        PreloadBody(node);
        return 0;
    }
    std::uint64_t walked = 0;
    if (node.Id() == TextureDictionaryId) {
        walked = ReadDictionary(node);
        node.SetSize(static_cast<std::uint32_t>(walked));
    } else if (node.Id() == TextureNativeId) {
        walked = ReadCounted(node, 0, kChildrenOfNative);
        node.SetSize(static_cast<std::uint32_t>(walked));
    } else {
        walked = ReadUntilExactlyFull(node);
    }
    return static_cast<std::int32_t>(-static_cast<std::int64_t>(walked));
}

// Deliberate: children that run past the end are no end; reading goes on until the file ends it.
std::uint64_t CTXDMobile::ReadUntilExactlyFull(CNode& node)
{
    std::uint64_t walked = 0;
    while (walked != node.Size()) {
        const CNode* const child = ReadChildAt(node, node.DataOffset() + walked);
        if (child == nullptr)
            break;
        walked += WholeSize(*child);
    }
    return walked;
}

std::uint64_t CTXDMobile::ReadCounted(CNode& node, std::uint64_t walked, std::uint64_t count)
{
    for (std::uint64_t i = 0; i < count; ++i) {
        const CNode* const child = ReadChildAt(node, node.DataOffset() + walked);
        if (child == nullptr)
            break;
        walked += WholeSize(*child);
    }
    return walked;
}

// Deliberate: all four bytes are the count, so a device other than 0 asks for more textures.
// TXDMobile.ADeviceMakesItReadThatManyMoreTextures pins it.
std::uint64_t CTXDMobile::ReadDictionary(CNode& node)
{
    const std::uint64_t walked = ReadCounted(node, 0, 1);
    CNode* const first = node.GetChild(0);
    if (first == nullptr)
        return walked;
    const auto word = first->GetHead(sizeof(std::uint32_t), File());
    if (word.size() < sizeof(std::uint32_t)) {
        RaiseSoftError(Message::kReadingFailed);
        return walked;
    }
    // One more for the extension.
    return ReadCounted(node, walked, std::uint64_t{CByteReader(word).U32()} + 1);
}

std::uint16_t CTXDMobile::GetWidth(std::uint32_t index)
{
    return Word(index, MobileRecord::kWidth);
}

std::uint16_t CTXDMobile::GetHeight(std::uint32_t index)
{
    return Word(index, MobileRecord::kHeight);
}

std::wstring CTXDMobile::GetName(std::uint32_t index, TextureText which)
{
    return which == TextureText::Mask ? TextIn(Field(index, MobileRecord::kMask, MobileRecord::kMaskBytes))
                                      : TextIn(Field(index, MobileRecord::kName, MobileRecord::kNameBytes));
}

std::uint32_t CTXDMobile::GetDepth(std::uint32_t index)
{
    return CheckIndex(index) ? kMobileDepth : 0;
}

std::uint32_t CTXDMobile::GetCompression(std::uint32_t index)
{
    if (!CheckIndex(index))
        return Compression::kNone;
    switch (CByteReader(RecordHead(0, sizeof(std::uint32_t))).U32()) {
        case Platform::kDirect3D9:
            return Compression::kDxt1;
        case Platform::kMobile10:
            return Compression::kMobilePvrtc;
        case Platform::kMobile11:
            return Compression::kMobileOther;
        default:
            return Compression::kNone;
    }
}

std::uint32_t CTXDMobile::GetRasterFormat(std::uint32_t index, FormatForm form)
{
    const auto alpha = Field(index, MobileRecord::kAlpha, 1);
    if (alpha.empty())
        return 0;
    const std::uint32_t raw = alpha[0] != std::byte{0} ? 0x300 : 0x200;
    return LayoutBits(raw, form);
}

std::span<const std::byte> CTXDMobile::GetPixels(std::uint32_t index, std::uint32_t /*level*/)
{
    return CheckIndex(index) ? BodyFrom(index, MobileRecord::kPixels) : std::span<const std::byte>();
}

bool CTXDMobile::HasAlpha(std::uint32_t index)
{
    // Deliberate: compares the raw bits with a layout code, which they never are.
    return CheckIndex(index) && GetRasterFormat(index, FormatForm::Raw) != 0x565;
}

}  // namespace RW
