#pragma once

// The TXT list on disk. It is held open between rewrites, so that nobody else writes to it, and what it holds
// is only ever replaced whole: the new text is written to a file beside it, which then takes its place in one
// step. To a text of our own, lines can also be added at the end.

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "base/File.h"

class CTextListFile {
public:
    explicit CTextListFile(IFileSystem& files) : m_rFiles(files) {}

    /// Forgets an older file. True when the list is there and may be read and written.
    bool Open(const std::filesystem::path& list);
    void Close();
    bool IsOpen() const { return m_pFile != nullptr; }
    /// Something of that name is there, whether or not it can be opened.
    bool Exists() const { return m_rFiles.Exists(m_sPath); }
    const std::filesystem::path& Path() const { return m_sPath; }

    /// The whole text, or nothing when it cannot be read.
    std::optional<std::vector<std::byte>> Read() const;

    /// The next rewrite first copies the list to `<list>.bak`, or to a numbered name when there is such a
    /// file already.
    void KeepCopyAtNextRewrite() { m_bCopyDue = true; }

    /// A rewrite in two steps. Prepare writes the new text to the disk, beside the list, and makes the due
    /// copy; it leaves the list alone. Commit puts it into place. Whatever fails, the old list stays as it
    /// was and open; a prepared text that is not committed is removed by Discard. Also creates a list that is
    /// missing.
    bool Prepare(std::span<const std::byte> text);
    bool Commit();
    /// Whether Commit would find the list free: false while another program has it open. For edits that
    /// change other files between Prepare and Commit.
    bool IsFree();
    void Discard();

    /// Adds text at the end of what the last Commit put into place. False when the file does not hold just
    /// that any more, or the text cannot be written; nothing has changed then.
    bool Append(std::span<const std::byte> text);

private:
    bool KeepCopy();

    IFileSystem& m_rFiles;
    std::filesystem::path m_sPath;
    std::filesystem::path m_sTarget;  // the file that a link of that name leads to
    std::filesystem::path m_sPrepared;
    std::unique_ptr<IFile> m_pFile;
    bool m_bCopyDue = false;
    std::uint64_t m_nPreparedLength = 0;
    std::optional<std::uint64_t> m_nOwnLength;  // of the file, as long as all of it is text of ours
};
