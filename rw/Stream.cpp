#include "rw/Stream.h"

#include <algorithm>
#include <array>
#include <utility>

#include "base/ByteReader.h"
#include "base/Format.h"
#include "rw/Exception.h"
#include "rw/Messages.h"
#include "rw/SectionId.h"

namespace RW {
namespace {

constexpr int kNoSuchSectionLine = 370;
constexpr int kNullNodeLine = 494;
// Files nest a dozen levels; the limit keeps a hostile one from using up the stack.
constexpr std::uint32_t kDeepest = 256;
constexpr std::uint32_t kRasterOfPS2Native = 3;

constexpr std::array<std::uint32_t, 15> kContainers = {
    ExtensionId,
    TextureId,
    MaterialId,
    MaterialListId,
    0x09 /* Atomic Section */,
    0x0A /* Plane Section */,
    0x0B /* World */,
    0x0E /* Frame List */,
    GeometryId,
    ClumpId,
    0x12 /* Light */,
    0x14 /* Atomic */,
    TextureNativeId,
    TextureDictionaryId,
    GeometryListId,
};

class CDepth {
public:
    explicit CDepth(std::uint32_t& depth) : m_rDepth(depth) { ++m_rDepth; }
    ~CDepth() { --m_rDepth; }
    CDepth(const CDepth&) = delete;
    CDepth& operator=(const CDepth&) = delete;

private:
    std::uint32_t& m_rDepth;
};

std::int32_t Negated(std::uint64_t walked)
{
    return static_cast<std::int32_t>(-static_cast<std::int64_t>(walked));
}

}  // namespace

CStream::CStream(IFailures& failures, IFileSystem& files) : m_rFailures(failures), m_rFiles(files) {}

CStream::~CStream()
{
    if (m_bKeepTree)
        static_cast<void>(m_pRoot.release());
}

void CStream::RaiseStreamError(std::wstring_view message, std::wstring_view source, int line)
{
    SetLastError(message);
    m_rFailures.ShowStopBox(StreamErrorBox(message, source, line), kStreamExitCode);
}

bool CStream::Attach(const IFile& file, std::uint64_t offset, std::uint32_t rootId, std::uint32_t flags)
{
    m_pRoot.reset();
    m_nLoadedBytes = 0;
    m_pWindow = std::make_unique<CReadWindow>(file);
    m_nBaseOffset = offset;
    // A tree has no more sections than the file has room for headers.
    m_nNodesLeft = m_pWindow->Size() / kHeaderBytes;
    const SectionHeader header = ReadHeader(offset).value_or(SectionHeader{});
    if (rootId != kNoRootId && rootId != header.id && (flags & kAnyRoot) == 0) {
        RaiseSoftError(Message::kWrongRoot);
        return false;
    }
    // Deliberate: the length counts from the start of the file, not from the offset.
    // Stream.MeasuresTheLengthCheckFromTheStartOfTheFile pins it.
    if ((flags & kCheckLength) != 0 && m_pWindow->Size() < std::uint64_t{header.size} + kHeaderBytes) {
        RaiseSoftError(Message::kNotValid);
        return false;
    }
    m_pRoot = ReadNode(offset, nullptr, 0);
    return m_pRoot != nullptr;
}

bool CStream::Open(const std::filesystem::path& fileName, std::uint64_t offset, std::uint32_t rootId,
                   std::uint32_t flags)
{
    if (m_pRoot)
        FreeTree(std::move(m_pRoot));
    CloseFile();
    m_pOwnFile = m_rFiles.Open(fileName, OpenMode::Exclusive);
    if (!m_pOwnFile) {
        RaiseSoftError(Format(Message::kCannotOpen, LastSystemError()));
        return false;
    }
    return Attach(*m_pOwnFile, offset, rootId, flags);
}

std::optional<SectionHeader> CStream::ReadHeader(std::uint64_t offset) const
{
    std::array<std::byte, kHeaderBytes> bytes{};
    if (!m_pWindow || m_pWindow->ReadAt(offset, bytes) < bytes.size())
        return std::nullopt;
    CByteReader in(bytes);
    SectionHeader header;
    header.id = in.U32();
    header.size = in.U32();
    header.version = in.U32();
    return header;
}

std::unique_ptr<CNode> CStream::ReadNode(std::uint64_t offset, CNode* parent, std::uint32_t index)
{
    const CDepth depth(m_nDepth);
    auto node = std::make_unique<CNode>(m_rFailures);
    const auto header = ReadHeader(offset);
    node->SetHeader(header.value_or(SectionHeader{}));
    const bool isReadable = header && m_nDepth <= kDeepest && m_nNodesLeft > 0;
    if (!isReadable || (parent != nullptr && parent->Version() != header->version)) {
        RaiseSoftError(Message::kReadingFailed, std::move(node));
        return nullptr;
    }
    --m_nNodesLeft;
    node->SetDataOffset(offset + kHeaderBytes);
    try {
        ReadChildren(*node, parent, index);
    } catch (const CException& error) {
        if (error.Node() && parent != nullptr)
            parent->ClearChild(index);
        throw;
    }
    return node;
}

std::int32_t CStream::ReadChildren(CNode& node, CNode* parent, std::uint32_t index)
{
    if (!IsContainer(node, parent, index)) {
        PreloadBody(node);
        return 0;
    }
    return m_bScan ? ScanChildren(node) : ReadSizedChildren(node);
}

void CStream::PreloadBody(CNode& node)
{
    if (node.Size() <= m_nPreloadLimit)
        node.GetData(m_pWindow.get());
}

CNode* CStream::ReadChildAt(CNode& node, std::uint64_t offset)
{
    auto child = ReadNode(offset, &node, node.ChildCount());
    return child ? node.AddChild(std::move(child)) : nullptr;
}

std::int32_t CStream::ReadSizedChildren(CNode& node)
{
    std::uint64_t walked = 0;
    while (walked < node.Size()) {
        const CNode* const child = ReadChildAt(node, node.DataOffset() + walked);
        if (child == nullptr)
            break;
        walked += std::uint64_t{child->Size()} + kHeaderBytes;
    }
    return Negated(walked);
}

// Deliberate: each step overwrites the header of the section itself, and a version stamp ends the run.
// Stream.ScansChildrenUntilAVersionStamp pins it.
std::int32_t CStream::ScanChildren(CNode& node)
{
    std::uint64_t walked = 0;
    for (;;) {
        const auto header = ReadHeader(node.DataOffset() + walked);
        if (!header)
            break;
        node.SetHeader(*header);
        if (header->version != 0)
            break;
        const CNode* const child = ReadChildAt(node, node.DataOffset() + walked);
        if (child == nullptr)
            break;
        walked += std::uint64_t{child->Size()} + kHeaderBytes;
    }
    return Negated(walked);
}

CNode* CStream::Walk(NodePath path) const
{
    CNode* node = m_pRoot.get();
    for (const std::int64_t step : path) {
        if (node == nullptr || step < 0 || step >= node->ChildCount())
            return nullptr;
        node = node->FindChild(static_cast<std::uint32_t>(step));
    }
    return node;
}

CNode* CStream::GetNode(NodePath path)
{
    CNode* const node = Walk(path);
    if (node == nullptr && path.size() != 0)
        RaiseStreamError(Message::kNoSuchSection, kStreamSource, kNoSuchSectionLine);
    return node;
}

bool CStream::HasNode(NodePath path) const
{
    return path.size() == 0 || Walk(path) != nullptr;
}

bool CStream::IsContainer(const CNode& node, const CNode* parent, std::uint32_t index) const
{
    if (node.Size() == 0)
        return false;
    // The raster of a PlayStation 2 texture calls itself a struct.
    if (parent != nullptr && parent->Id() == TextureNativeId && index == kRasterOfPS2Native)
        return true;
    return std::find(kContainers.begin(), kContainers.end(), node.Id()) != kContainers.end();
}

void CStream::FreeTree(std::unique_ptr<CNode> node)
{
    if (!node)
        RaiseStreamError(Message::kNullNode, kStreamSource, kNullNodeLine);
}

bool CStream::SetVersion(std::uint32_t version, CNode* node)
{
    CNode* const top = node != nullptr ? node : m_pRoot.get();
    if (top == nullptr)
        return false;
    top->SetVersion(version);
    for (std::uint32_t i = 0; i < top->ChildCount(); ++i)
        if (CNode* const child = top->FindChild(i))
            SetVersion(version, child);
    return true;
}

bool CStream::CloseFile()
{
    m_pWindow.reset();
    if (!m_pOwnFile)
        return true;
    const bool isFlushed = m_pOwnFile->Flush();
    m_pOwnFile.reset();
    return isFlushed;
}

}  // namespace RW
