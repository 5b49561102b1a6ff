#include "rw/TXDPS2.h"

#include "base/ByteReader.h"
#include "rw/Messages.h"

namespace RW {
namespace {

constexpr std::size_t kWidthWord = 0;
constexpr std::size_t kHeightWord = 4;
constexpr std::size_t kDepthWord = 8;
constexpr std::size_t kFormatWord = 12;
constexpr std::size_t kTransferWord = 52;
constexpr std::uint32_t kTransferOf4 = 176;
constexpr std::uint32_t kTransferOf8 = 1104;

constexpr std::uint32_t kTypeMask = 0xF0000;
constexpr std::uint32_t kTypeSwizzled = 0x10000;
constexpr std::uint32_t kTypeDepends = 0x20000;

constexpr std::size_t kHalfWidthWord = 32;
constexpr std::size_t kHalfHeightWord = 36;
constexpr std::uint32_t kLevelHeaderBytes = 80;
constexpr std::uint32_t kLevelHeaderMark = 3;
constexpr std::uint32_t kLevelHeaderMark2 = 0x10000000;
constexpr std::uint32_t kPaddingOf4 = 32;
constexpr std::uint32_t kLargestPalettedDepth = 8;
constexpr std::uint32_t kLargestEstimatedDepth = 15;

std::uint32_t WordAt(std::span<const std::byte> bytes, std::size_t offset)
{
    return CByteReader(bytes.subspan(offset)).U32();
}

// Sizes in files can ask for any shift.
std::uint64_t ShiftedRight(std::uint64_t value, std::uint64_t count)
{
    return count < 32 ? value >> count : 0;
}

bool HasLevelHeaders(std::span<const std::byte> body)
{
    CByteReader in(body);
    const std::uint32_t first = in.U32();
    const std::uint32_t second = in.U32();
    return first == kLevelHeaderMark || second == kLevelHeaderMark2;
}

}  // namespace

bool CTXDPS2::IsOwnPlatform()
{
    return IsPlatform(Platform::kPS2, 0);
}

// Deliberate: one message for both.
std::wstring_view CTXDPS2::NotOpenedMessage() const
{
    return Message::kNotPS2;
}

std::wstring_view CTXDPS2::WrongPlatformMessage() const
{
    return Message::kNotPS2;
}

std::optional<std::uint32_t> CTXDPS2::HeaderWord(std::uint32_t index, std::size_t offset)
{
    const auto head = HeadOf({std::int64_t{index} + 1, 3, 0}, offset + sizeof(std::uint32_t));
    if (head.empty())
        return std::nullopt;
    return WordAt(head, offset);
}

CNode* CTXDPS2::PixelNode(std::uint32_t index)
{
    return NodeAt({std::int64_t{index} + 1, 3, 1});
}

std::span<const std::byte> CTXDPS2::PixelBody(std::uint32_t index)
{
    return BodyOf({std::int64_t{index} + 1, 3, 1}, 0);
}

std::uint16_t CTXDPS2::GetWidth(std::uint32_t index)
{
    return CheckIndex(index) ? static_cast<std::uint16_t>(HeaderWord(index, kWidthWord).value_or(0))
                             : std::uint16_t{0};
}

std::uint16_t CTXDPS2::GetHeight(std::uint32_t index)
{
    return CheckIndex(index) ? static_cast<std::uint16_t>(HeaderWord(index, kHeightWord).value_or(0))
                             : std::uint16_t{0};
}

std::uint32_t CTXDPS2::GetDepth(std::uint32_t index)
{
    return CheckIndex(index) ? HeaderWord(index, kDepthWord).value_or(0) : 0;
}

std::uint32_t CTXDPS2::GetRasterFormat(std::uint32_t index, FormatForm /*form*/)
{
    return CheckIndex(index) ? LayoutBits(HeaderWord(index, kFormatWord).value_or(0), FormatForm::Layout) : 0;
}

std::wstring CTXDPS2::GetName(std::uint32_t index, TextureText which)
{
    if (index >= GetTextureCount())
        return {};
    return TextIn(BodyOf({std::int64_t{index} + 1, which == TextureText::Mask ? 2 : 1}, 0));
}

bool CTXDPS2::SetName(std::uint32_t /*index*/, std::wstring_view /*name*/, TextureText /*which*/)
{
    return false;
}

bool CTXDPS2::HasAlpha(std::uint32_t index)
{
    return CheckIndex(index) && !GetName(index, TextureText::Mask).empty();
}

std::uint32_t CTXDPS2::GetCompression(std::uint32_t index)
{
    return CheckIndex(index) && IsSwizzled(index) ? Compression::kSwizzled : Compression::kNone;
}

bool CTXDPS2::IsSwizzled(std::uint32_t index)
{
    if (!IsPlatform(Platform::kPS2, 0) || !CheckIndex(index))
        return false;
    const std::uint32_t type = HeaderWord(index, kFormatWord).value_or(0) & kTypeMask;
    if (type == kTypeSwizzled)
        return true;
    return (type & kTypeDepends) != 0 && IsSwizzledByHeader(index, type);
}

bool CTXDPS2::IsSwizzledByHeader(std::uint32_t index, std::uint32_t type)
{
    const std::uint32_t depth = GetDepth(index);
    if (type == kTypeDepends && (depth == 4 || depth == 8))
        return HeaderWord(index, kTransferWord) == (depth == 4 ? kTransferOf4 : kTransferOf8);
    return HasHalvedSizes(index);
}

bool CTXDPS2::HasHalvedSizes(std::uint32_t index)
{
    const auto head = HeadOf({std::int64_t{index} + 1, 3, 1}, kHalfHeightWord + sizeof(std::uint32_t));
    return !head.empty() && std::uint64_t{WordAt(head, kHalfWidthWord)} * 2 == GetWidth(index) &&
           std::uint64_t{WordAt(head, kHalfHeightWord)} * 2 == GetHeight(index);
}

// The bits of the first level. Sides of 16 bits and a depth of 32 fit.
std::uint64_t CTXDPS2::LevelBits(std::uint32_t index)
{
    return std::uint64_t{GetWidth(index)} * GetHeight(index) * GetDepth(index);
}

std::uint32_t CTXDPS2::GetMipLevels(std::uint32_t index)
{
    if (!CheckIndex(index) || !IsPlatform(Platform::kPS2, index))
        return 0;
    const CNode* const pixels = PixelNode(index);
    if (pixels == nullptr)
        return 0;
    const std::uint32_t depth = GetDepth(index);
    const std::uint64_t bits = LevelBits(index);
    const std::uint64_t palette =
        depth <= kLargestEstimatedDepth ? (std::uint64_t{4} << depth) + kLevelHeaderBytes : 0;
    std::uint64_t total = (bits >> 3) + palette + kLevelHeaderBytes;
    if (depth == 4 && IsSwizzled(index))
        total += kPaddingOf4;
    std::uint64_t levels = 1;
    for (std::uint64_t shift = 5; total < pixels->Size(); shift += 2) {
        ++levels;
        total += ShiftedRight(bits, shift) + kLevelHeaderBytes;
    }
    return static_cast<std::uint32_t>(levels);
}

std::span<const std::byte> CTXDPS2::GetPixels(std::uint32_t index, std::uint32_t level)
{
    if (!CheckIndex(index))
        return {};
    const auto body = PixelBody(index);
    if (!HasLevelHeaders(body))
        return body;
    const std::uint64_t bits = LevelBits(index);
    std::uint64_t offset = kLevelHeaderBytes;
    for (std::uint64_t skipped = 0; skipped < level && offset <= body.size(); ++skipped)
        offset += ShiftedRight(bits, 2 * skipped + 3) + kLevelHeaderBytes;
    return offset < body.size() ? body.subspan(static_cast<std::size_t>(offset))
                                : std::span<const std::byte>();
}

std::span<const std::byte> CTXDPS2::GetPalette(std::uint32_t index)
{
    if (!CheckIndex(index))
        return {};
    const std::uint32_t depth = GetDepth(index);
    if (depth > kLargestPalettedDepth)
        return {};
    const std::size_t padding = depth == 4 && IsSwizzled(index) ? kPaddingOf4 : 0;
    const std::size_t fromEnd = (std::size_t{4} << depth) + padding;
    const auto body = PixelBody(index);
    return fromEnd <= body.size() ? body.subspan(body.size() - fromEnd) : std::span<const std::byte>();
}

void CTXDPS2::FreeData(std::uint32_t index)
{
    if (!CheckIndex(index))
        return;
    CNode* const pixels = PixelNode(index);
    if (pixels != nullptr && pixels->FreeData())
        CountFreed(pixels->Size());
}

}  // namespace RW
