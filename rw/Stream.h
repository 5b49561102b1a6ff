#pragma once

// A RenderWare file as a tree of sections. Opening reads headers and small bodies only; larger bodies are
// loaded when they are asked for; saving writes the tree to a file. A stream owns its tree. It owns the file
// that it opened by name and holds it alone; a file that it was attached to stays its caller's.

#include <cstdint>
#include <filesystem>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string_view>

#include "base/File.h"
#include "rw/BaseEx.h"
#include "rw/Failures.h"
#include "rw/Node.h"
#include "rw/ReadWindow.h"

namespace RW {

/// What Attach and Open may be told.
inline constexpr std::uint32_t kCheckLength = 0x08;  ///< refuse a root that is longer than the file
inline constexpr std::uint32_t kAnyRoot = 0x40;      ///< accept a root of another identifier
/// Accepts every root identifier.
inline constexpr std::uint32_t kNoRootId = 0;

/// Child indices from the root on; empty for the root itself.
using NodePath = std::initializer_list<std::int64_t>;

class CStream : public CBaseEx {
public:
    /// Both are borrowed and must outlive the stream.
    explicit CStream(IFailures& failures, IFileSystem& files = DiskFileSystem());
    /// Destroys the tree, unless it is to be kept, and closes its own file.
    ~CStream() override;

    /// Builds the tree from the section at `offset` of an open file, which stays the caller's and must
    /// outlive the stream or its next Open, Attach or Save. `rootId` is the identifier that the root must
    /// have, or kNoRootId. False, or an exception unless the stream is quiet, when there is no such section.
    virtual bool Attach(const IFile& file, std::uint64_t offset, std::uint32_t rootId, std::uint32_t flags);
    /// Opens a file by name, alone, and attaches to it; what was open before is closed.
    virtual bool Open(const std::filesystem::path& fileName, std::uint64_t offset, std::uint32_t rootId,
                      std::uint32_t flags);
    /// The section at `offset` with everything below it. `parent` is null for a root; `index` is the place
    /// that the section will take among the parent's children. Null when the stream is quiet and reading
    /// failed.
    virtual std::unique_ptr<CNode> ReadNode(std::uint64_t offset, CNode* parent, std::uint32_t index);
    /// Reads a section's children, or its body when that is small. Returns the negated number of bytes
    /// walked.
    virtual std::int32_t ReadChildren(CNode& node, CNode* parent, std::uint32_t index);
    /// The section at a path; a step to a child that does not exist is a stop box, and yields null.
    virtual CNode* GetNode(NodePath path);
    /// True where GetNode has a section.
    virtual bool HasNode(NodePath path) const;
    /// Whether a section's body is a run of sections.
    virtual bool IsContainer(const CNode& node, const CNode* parent, std::uint32_t index) const;
    /// Writes a section and everything below it. False when a write failed or a body is missing.
    virtual bool WriteNode(IFile& file, CNode& node, std::uint64_t offset);

    /// Writes the tree to a file, in place of what stood there, in one step: on failure that file is as it
    /// was. Afterwards the stream has no file and every body is in memory. False without a last error when a
    /// body could not be loaded or written.
    bool Save(const std::filesystem::path& fileName);
    /// Loads every body of a subtree (of the whole tree for null) and forgets where it stood in the file.
    CNode* Detach(CNode* node = nullptr);
    /// Destroys a subtree. Null is a stop box.
    void FreeTree(std::unique_ptr<CNode> node);
    /// Stamps a subtree (the whole tree for null) with a version. False when there is no tree.
    bool SetVersion(std::uint32_t version, CNode* node = nullptr);

    CNode* Root() const { return m_pRoot.get(); }
    /// The file that bodies come from; null when there is none.
    const IFile* File() const { return m_pWindow.get(); }
    std::uint64_t BaseOffset() const { return m_nBaseOffset; }
    /// Bodies of at most this many bytes are loaded with the tree; 64 at first.
    void SetPreloadLimit(std::uint32_t bytes) { m_nPreloadLimit = bytes; }
    /// Leaves the tree alone on destruction: it is then its new owner's.
    void SetKeepTree(bool isKept) { m_bKeepTree = isKept; }
    /// Chooses the other rule of reading children, by scanning; nothing in the program does.
    void SetScanning(bool isScanning) { m_bScan = isScanning; }
    std::uint32_t LoadedBytes() const { return m_nLoadedBytes; }

protected:
    IFailures& Failures() const { return m_rFailures; }
    /// The stop box of a stream.
    void RaiseStreamError(std::wstring_view message, std::wstring_view source, int line);
    /// Loads the body of a leaf that is not too large.
    void PreloadBody(CNode& node);
    /// Reads the child at `offset` and appends it. Null when the stream is quiet and reading failed.
    CNode* ReadChildAt(CNode& node, std::uint64_t offset);
    void SetRoot(std::unique_ptr<CNode> root) { m_pRoot = std::move(root); }
    /// Lowers the counter of loaded bytes, which nothing raises: it may wrap.
    void CountFreed(std::uint32_t bytes) { m_nLoadedBytes -= bytes; }
    /// What a derived class has to put right in the tree before it is written.
    virtual void PrepareToSave() {}

private:
    std::optional<SectionHeader> ReadHeader(std::uint64_t offset) const;
    std::int32_t ReadSizedChildren(CNode& node);
    std::int32_t ScanChildren(CNode& node);
    CNode* Walk(NodePath path) const;
    bool LoadBodies(CNode& node);
    bool WriteChildren(IFile& file, CNode& node, std::uint64_t offset);
    bool WriteToSibling(const std::filesystem::path& sibling);
    bool CloseFile();

    IFailures& m_rFailures;
    IFileSystem& m_rFiles;
    std::unique_ptr<IFile> m_pOwnFile;
    std::unique_ptr<CReadWindow> m_pWindow;  // over the own or the borrowed file
    std::unique_ptr<CNode> m_pRoot;
    std::uint64_t m_nBaseOffset = 0;
    std::uint64_t m_nNodesLeft = 0;
    std::uint32_t m_nDepth = 0;
    std::uint32_t m_nLoadedBytes = 0;
    std::uint32_t m_nPreloadLimit = 64;
    bool m_bKeepTree = false;
    bool m_bScan = false;
};

/// The name under which the checks of streams report themselves.
inline constexpr std::wstring_view kStreamSource = L"CStream";
inline constexpr int kNodeMissingLine = 407;

}  // namespace RW
