#include "rw/Node.h"

#include <algorithm>
#include <new>
#include <utility>

#include "base/Text.h"
#include "rw/Messages.h"

namespace RW {
namespace {

constexpr int kNullChildLine = 60;
constexpr int kNoChildLine = 83;
constexpr int kNoHandleLine = 98;
constexpr int kBodyUnreadableLine = 110;

std::unique_ptr<std::byte[]> TryAllocate(std::size_t size)
{
    try {
        return std::make_unique_for_overwrite<std::byte[]>(size);
    } catch (const std::bad_alloc&) {
        // A body that memory is too short for is as unreadable as one that the file does not hold.
        return nullptr;
    }
}

}  // namespace

CNode* CNode::AddChild(std::unique_ptr<CNode> child)
{
    if (!child) {
        RaiseNodeError(Message::kNullChild, kNullChildLine);
        return nullptr;
    }
    if (m_aChildren.size() % kChildBlock == 0)
        m_aChildren.reserve(m_aChildren.size() + kChildBlock);
    return m_aChildren.emplace_back(std::move(child)).get();
}

CNode* CNode::FindChild(std::uint32_t index) const
{
    return index < m_aChildren.size() ? m_aChildren[index].get() : nullptr;
}

CNode* CNode::GetChild(std::uint32_t index)
{
    CNode* const child = FindChild(index);
    if (child == nullptr)
        RaiseNodeError(Message::kNoChild, kNoChildLine);
    return child;
}

void CNode::ClearChild(std::uint32_t index)
{
    if (index < m_aChildren.size())
        m_aChildren[index].reset();
}

// The file from which the body can be loaded as the header claims it; null after the box was shown.
const IFile* CNode::ReadableSource(const IFile* file)
{
    const IFile* const source = file != nullptr ? file : m_pHandle;
    if (source == nullptr) {
        RaiseNodeError(Message::kNoHandle, kNoHandleLine);
        return nullptr;
    }
    const std::uint64_t fileSize = source->Size();
    if (m_nDataOffset == 0 || m_nDataOffset > fileSize || Size() > fileSize - m_nDataOffset) {
        RaiseNodeError(Message::kBodyUnreadable, kBodyUnreadableLine);
        return nullptr;
    }
    return source;
}

std::span<std::byte> CNode::GetData(const IFile* file)
{
    if (!m_pData) {
        // An empty body is read from nowhere.
        const IFile* const source = Size() != 0 ? ReadableSource(file) : nullptr;
        if (Size() != 0 && source == nullptr)
            return {};
        auto data = TryAllocate(Size());
        if (!data || (source != nullptr && source->ReadAt(m_nDataOffset, {data.get(), Size()}) < Size())) {
            RaiseNodeError(Message::kBodyUnreadable, kBodyUnreadableLine);
            return {};
        }
        m_pData = std::move(data);
        m_nDataSize = Size();
    }
    return {m_pData.get(), m_nDataSize};
}

std::span<const std::byte> CNode::GetHead(std::size_t count, const IFile* file)
{
    if (m_pData || Size() <= kHeadBytes) {
        const auto data = GetData(file);
        return data.first(std::min(count, data.size()));
    }
    if (!m_pHead) {
        const IFile* const source = ReadableSource(file);
        if (source == nullptr)
            return {};
        auto head = std::make_unique<std::byte[]>(kHeadBytes);
        m_nHeadSize = source->ReadAt(m_nDataOffset, {head.get(), kHeadBytes});
        if (m_nHeadSize < kHeadBytes) {
            RaiseNodeError(Message::kBodyUnreadable, kBodyUnreadableLine);
            return {};
        }
        m_pHead = std::move(head);
    }
    return {m_pHead.get(), std::min(count, m_nHeadSize)};
}

void CNode::SetData(std::span<const std::byte> bytes)
{
    m_nDataSize = static_cast<std::uint32_t>(bytes.size());
    m_pData = std::make_unique_for_overwrite<std::byte[]>(bytes.size());
    std::copy(bytes.begin(), bytes.end(), m_pData.get());
    m_pHead.reset();
    m_oHeader.size = m_nDataSize;
    m_nDataOffset = 0;
}

bool CNode::FreeData()
{
    if (!m_pData || !IsAttached())
        return false;
    m_pData.reset();
    return true;
}

void CNode::RaiseNodeError(std::wstring_view message, int line)
{
    SetLastError(message);
    const auto address = reinterpret_cast<std::uintptr_t>(m_pData.get());
    m_rFailures.ShowStopBox(NodeErrorBox(message, line,
                                         {.id = Id(),
                                          .size = Size(),
                                          .version = Version(),
                                          .dataAddress = static_cast<std::uint32_t>(address & 0xFFFFFFFFU),
                                          .children = ChildCount()}),
                            kNodeExitCode);
}

std::wstring TextIn(std::span<const std::byte> bytes)
{
    const auto end = std::find(bytes.begin(), bytes.end(), std::byte{0});
    std::string text(static_cast<std::size_t>(end - bytes.begin()), '\0');
    std::transform(bytes.begin(), end, text.begin(),
                   [](std::byte value) { return static_cast<char>(value); });
    return Widen(text);
}

}  // namespace RW
