#include "rw/TXDCommon.h"

#include <algorithm>
#include <array>

#include "base/ByteReader.h"
#include "base/ByteWriter.h"
#include "rw/Messages.h"
#include "rw/SectionId.h"

namespace RW {
namespace {

constexpr std::wstring_view kSource = L"CTXDCommon";
constexpr int kRecordLine = 112;
constexpr int kCountLine = 132;

constexpr std::size_t kCountBytes = 4;
constexpr std::uint32_t kEmptyDictionaryBytes = 28;
constexpr std::uint32_t kLayoutMask = 0x0F00;

struct LayoutCode {
    std::uint32_t raw;
    std::uint32_t code;
};
constexpr std::array<LayoutCode, 7> kLayouts = {{
    {0x100, 0x1555},
    {0x200, 0x565},
    {0x300, 0x4444},
    {0x400, 0x8},
    {0x500, 0x8888},
    {0x600, 0x888},
    {0xA00, 0x555},
}};

std::int64_t ChildOf(std::uint32_t index)
{
    return std::int64_t{index} + 1;
}

bool BeginsWithPS2(std::span<const std::byte> record)
{
    return record[0] == std::byte{'P'} && record[1] == std::byte{'S'} && record[2] == std::byte{'2'};
}

std::wstring DepthText(std::uint32_t depth)
{
    switch (depth) {
        case 4:
            return L"4 bpp";
        case 8:
            return L"8 bpp";
        case 24:
            return L"24 bpp";
        case 32:
            return L"32 bpp";
        default:
            return L"Unknown UNC";
    }
}

std::wstring SwizzledText(std::uint32_t depth)
{
    if (depth == 4)
        return L"PAL4, swizzled";
    return depth == 8 ? L"PAL8, swizzled" : L"";
}

std::wstring UncompressedText(std::uint32_t rawLayout, std::uint32_t depth)
{
    switch (rawLayout) {
        case 0x100:
            return L"16 bpp 1555";
        case 0x200:
            return L"16 bpp 565";
        case 0x300:
            return L"16 bpp 4444";
        default:
            return DepthText(depth);
    }
}

}  // namespace

std::uint32_t CTXDCommon::LayoutBits(std::uint32_t rasterFormat, FormatForm form)
{
    const std::uint32_t raw = rasterFormat & kLayoutMask;
    if (form == FormatForm::Raw)
        return raw;
    const auto* const found = std::find_if(kLayouts.begin(), kLayouts.end(),
                                           [raw](const LayoutCode& layout) { return layout.raw == raw; });
    return found != kLayouts.end() ? found->code : 0;
}

bool CTXDCommon::Open(const std::filesystem::path& fileName, std::uint64_t offset, std::uint32_t rootId,
                      std::uint32_t flags)
{
    return CheckOpened(CStream::Open(fileName, offset, rootId, flags));
}

bool CTXDCommon::AttachDictionary(const IFile& file, std::uint64_t offset)
{
    return CheckOpened(Attach(file, offset, kNoRootId, 0));
}

bool CTXDCommon::CheckOpened(bool isOpened)
{
    if (isOpened && IsOwnPlatform())
        return true;
    RaiseSoftError(isOpened ? WrongPlatformMessage() : NotOpenedMessage());
    return false;
}

CNode* CTXDCommon::CountNode() const
{
    return Root() != nullptr ? Root()->FindChild(0) : nullptr;
}

std::uint32_t CTXDCommon::GetTextureCount()
{
    CNode* const node = CountNode();
    if (node == nullptr)
        return 0;
    const auto head = node->GetHead(1, File());
    if (head.empty()) {
        RaiseStreamError(Message::kCountUnreadable, kSource, kCountLine);
        return 0;
    }
    return std::to_integer<std::uint32_t>(head[0]);
}

bool CTXDCommon::SetTextureCount(std::uint32_t value)
{
    CNode* const node = CountNode();
    const auto body = node != nullptr ? node->GetData(File()) : std::span<std::byte>();
    if (body.size() < kCountBytes)
        return false;
    CByteWriter out;
    out.U32(value);
    std::copy(out.View().begin(), out.View().end(), body.begin());
    return true;
}

std::uint32_t CTXDCommon::ReachableTextures()
{
    const std::uint32_t count = GetTextureCount();
    std::uint32_t reachable = 0;
    while (reachable < count && HasNode({ChildOf(reachable), 0}))
        ++reachable;
    return reachable;
}

bool CTXDCommon::Create(std::uint32_t version)
{
    auto root = std::make_unique<CNode>(Failures());
    auto count = std::make_unique<CNode>(Failures());
    count->SetHeader({.id = StructId});
    count->SetData(std::array<std::byte, kCountBytes>{});
    auto extension = std::make_unique<CNode>(Failures());
    extension->SetHeader({.id = ExtensionId});
    root->SetHeader({.id = TextureDictionaryId, .size = kEmptyDictionaryBytes});
    root->AddChild(std::move(count));
    root->AddChild(std::move(extension));
    SetRoot(std::move(root));
    return SetVersion(version);
}

bool CTXDCommon::CheckIndex(std::uint32_t index)
{
    if (index < GetTextureCount())
        return true;
    RaiseSoftError(Message::kNoTexture);
    return false;
}

void CTXDCommon::RaiseRecordError()
{
    RaiseStreamError(Message::kRecordUnreadable, kSource, kRecordLine);
}

CNode* CTXDCommon::NodeAt(NodePath path)
{
    CNode* const node = GetNode(path);
    if (node == nullptr)
        RaiseStreamError(Message::kNodeMissing, kStreamSource, kNodeMissingLine);
    return node;
}

std::span<const std::byte> CTXDCommon::HeadOf(NodePath path, std::size_t count)
{
    CNode* const node = NodeAt(path);
    if (node == nullptr)
        return {};
    const auto head = node->GetHead(count, File());
    if (head.size() < count) {
        RaiseRecordError();
        return {};
    }
    return head;
}

std::span<std::byte> CTXDCommon::BodyOf(NodePath path, std::size_t least)
{
    CNode* const node = NodeAt(path);
    if (node == nullptr)
        return {};
    const auto body = node->GetData(File());
    if (body.data() == nullptr || body.size() < least) {
        RaiseRecordError();
        return {};
    }
    return body;
}

std::span<const std::byte> CTXDCommon::RecordHead(std::uint32_t index, std::size_t count)
{
    return HeadOf({ChildOf(index), 0}, count);
}

std::span<std::byte> CTXDCommon::RecordBody(std::uint32_t index, std::size_t least)
{
    return BodyOf({ChildOf(index), 0}, least);
}

std::span<const std::byte> CTXDCommon::GetRecord(std::uint32_t index)
{
    return CheckIndex(index) ? RecordBody(index, 0) : std::span<std::byte>();
}

bool CTXDCommon::IsPlatform(std::uint32_t platform, std::uint32_t index)
{
    const std::uint32_t count = GetTextureCount();
    if (count == 0)
        return true;
    if (index >= count) {
        RaiseSoftError(Message::kUnknownTexture);
        return false;
    }
    if (platform == Platform::kPS2) {
        const auto mark = RecordHead(index, 3);
        return !mark.empty() && BeginsWithPS2(mark);
    }
    const auto word = RecordHead(index, 4);
    return !word.empty() && CByteReader(word).U32() == platform;
}

std::uint32_t CTXDCommon::GetPlatform(std::uint32_t index)
{
    if (!CheckIndex(index))
        return 0;
    if (IsPlatform(Platform::kPS2, index))
        return Platform::kPS2;
    return CByteReader(RecordHead(index, 4)).U32();
}

std::wstring CTXDCommon::GetFormatText(std::uint32_t index)
{
    if (!CheckIndex(index))
        return {};
    switch (GetCompression(index)) {
        case Compression::kSwizzled:
            return SwizzledText(GetDepth(index));
        case Compression::kDxt1:
            return L"DXT1";
        case Compression::kDxt3:
            return L"DXT3";
        case Compression::kNone:
            return UncompressedText(GetRasterFormat(index, FormatForm::Raw), GetDepth(index));
        default:
            return L"Unknown";
    }
}

}  // namespace RW
