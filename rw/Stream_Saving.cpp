#include <limits>

#include "base/ByteWriter.h"
#include "rw/Messages.h"
#include "rw/Stream.h"

namespace RW {
namespace {

bool WriteHeader(IFile& file, const SectionHeader& header, std::uint64_t offset)
{
    CByteWriter out;
    out.U32(header.id).U32(header.size).U32(header.version);
    return file.WriteAt(offset, out.View());
}

}  // namespace

bool CStream::Save(const std::filesystem::path& fileName)
{
    SetLastError({});
    if (!m_pRoot)
        return false;
    PrepareToSave();
    // Before anything is given up: a tree with a body missing would replace a better file.
    if (!LoadBodies(*m_pRoot))
        return false;
    Detach();
    if (!CloseFile()) {
        RaiseSoftError(Message::kCannotDetach);
        return false;
    }
    const std::filesystem::path sibling = UnusedSibling(m_rFiles, fileName);
    if (!WriteToSibling(sibling))
        return false;
    if (m_rFiles.Replace(sibling, fileName))
        return true;
    m_rFiles.Remove(sibling);
    RaiseSoftError(Message::kCannotOpenOutput);
    return false;
}

bool CStream::WriteToSibling(const std::filesystem::path& sibling)
{
    auto output = m_rFiles.Open(sibling, OpenMode::Truncate);
    if (!output) {
        RaiseSoftError(Message::kCannotOpenOutput);
        return false;
    }
    if (WriteNode(*output, *m_pRoot, 0) && output->Sync())
        return true;
    output.reset();
    m_rFiles.Remove(sibling);
    return false;
}

bool CStream::LoadBodies(CNode& node)
{
    if (node.ChildCount() == 0)
        return node.GetData(m_pWindow.get()).data() != nullptr;
    for (std::uint32_t i = 0; i < node.ChildCount(); ++i) {
        CNode* const child = node.FindChild(i);
        if (child != nullptr && !LoadBodies(*child))
            return false;
    }
    return true;
}

CNode* CStream::Detach(CNode* node)
{
    CNode* const top = node != nullptr ? node : m_pRoot.get();
    if (top == nullptr)
        return nullptr;
    if (top->ChildCount() == 0)
        top->GetData(m_pWindow.get());
    for (std::uint32_t i = 0; i < top->ChildCount(); ++i)
        if (CNode* const child = top->FindChild(i))
            Detach(child);
    top->SetDataOffset(0);
    return top;
}

bool CStream::WriteNode(IFile& file, CNode& node, std::uint64_t offset)
{
    if (!WriteHeader(file, node.Header(), offset))
        return false;
    // Deliberate: a section of size 0 ends here, even one that has children.
    if (node.Size() == 0)
        return true;
    if (node.ChildCount() != 0)
        return WriteChildren(file, node, offset);
    const auto body = node.GetData();
    return body.data() != nullptr && file.WriteAt(offset + kHeaderBytes, body);
}

// Deliberate: the header in front keeps the size from before; the one with the new size goes behind the last
// child, where the next sibling overwrites it, so that a file ends with a copy of its root's header.
// Stream.ASavedFileIsTheFileAndACopyOfItsRootHeader pins it.
bool CStream::WriteChildren(IFile& file, CNode& node, std::uint64_t offset)
{
    std::uint64_t total = 0;
    for (std::uint32_t i = 0; i < node.ChildCount(); ++i) {
        CNode* const child = node.FindChild(i);
        if (child == nullptr)
            continue;
        if (!WriteNode(file, *child, offset + kHeaderBytes + total))
            return false;
        total += std::uint64_t{child->Size()} + kHeaderBytes;
    }
    if (total > std::numeric_limits<std::uint32_t>::max())
        return false;
    node.SetSize(static_cast<std::uint32_t>(total));
    return WriteHeader(file, node.Header(), offset + kHeaderBytes + total);
}

}  // namespace RW
