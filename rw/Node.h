#pragma once

// One section of a RenderWare file: its header, and either child sections, which it owns, or a body, which is
// loaded from the file when it is first asked for. While a body's place in the file is known the section is
// attached, and the body may be dropped and loaded again.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "base/File.h"
#include "rw/BaseEx.h"
#include "rw/Failures.h"

namespace RW {

inline constexpr std::uint32_t kHeaderBytes = 12;

/// As it stands in the file, 12 bytes.
//  0  u32  section identifier      4  u32  bytes of the body      8  u32  library version stamp, opaque
struct SectionHeader {
    std::uint32_t id = 0;
    std::uint32_t size = 0;
    std::uint32_t version = 0;
};

class CNode final : public CBaseEx {
public:
    explicit CNode(IFailures& failures) : m_rFailures(failures) {}

    const SectionHeader& Header() const { return m_oHeader; }
    std::uint32_t Id() const { return m_oHeader.id; }
    std::uint32_t Size() const { return m_oHeader.size; }
    std::uint32_t Version() const { return m_oHeader.version; }
    void SetHeader(const SectionHeader& header) { m_oHeader = header; }
    void SetSize(std::uint32_t size) { m_oHeader.size = size; }
    void SetVersion(std::uint32_t version) { m_oHeader.version = version; }

    /// Appends. Null is a stop box, and yields null.
    CNode* AddChild(std::unique_ptr<CNode> child);
    std::uint32_t ChildCount() const { return static_cast<std::uint32_t>(m_aChildren.size()); }
    /// A child that does not exist is a stop box, and yields null.
    CNode* GetChild(std::uint32_t index);
    /// As GetChild, without a box.
    CNode* FindChild(std::uint32_t index) const;
    /// Destroys a child and keeps its place empty; an index beyond the children does nothing.
    void ClearChild(std::uint32_t index);

    /// Where the body begins in the file; 0 when it lives in memory only.
    std::uint64_t DataOffset() const { return m_nDataOffset; }
    bool IsAttached() const { return m_nDataOffset != 0; }
    void SetDataOffset(std::uint64_t offset) { m_nDataOffset = offset; }
    /// The file that bodies are loaded from when the caller names none; borrowed, null by default.
    void SetResourceHandle(const IFile* file) { m_pHandle = file; }

    bool IsLoaded() const { return m_pData != nullptr; }
    /// The body, loaded first if need be. When that fails a stop box is shown and data() is null.
    std::span<std::byte> GetData(const IFile* file = nullptr);
    /// The first `count` bytes of the body (fewer when it is shorter), at most kHeadBytes, without loading
    /// the rest. Fails like GetData.
    std::span<const std::byte> GetHead(std::size_t count, const IFile* file = nullptr);
    /// Replaces the body, which from then on lives in memory only, and the size in the header.
    void SetData(std::span<const std::byte> bytes);
    /// Drops a loaded body that can be loaded again. True when it did.
    bool FreeData();
    /// Drops a loaded body whatever it is worth.
    void DiscardData() { m_pData.reset(); }

    static constexpr std::size_t kHeadBytes = 128;

private:
    // The blocks in which the array of children grows.
    static constexpr std::size_t kChildBlock = 64;

    const IFile* ReadableSource(const IFile* file);
    void RaiseNodeError(std::wstring_view message, int line);

    IFailures& m_rFailures;
    SectionHeader m_oHeader;
    std::vector<std::unique_ptr<CNode>> m_aChildren;
    std::unique_ptr<std::byte[]> m_pData;
    std::uint32_t m_nDataSize = 0;
    std::unique_ptr<std::byte[]> m_pHead;
    std::size_t m_nHeadSize = 0;
    std::uint64_t m_nDataOffset = 0;
    const IFile* m_pHandle = nullptr;
};

/// Single-byte text, up to its NUL or the end of the bytes.
std::wstring TextIn(std::span<const std::byte> bytes);

}  // namespace RW
