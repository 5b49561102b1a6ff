#include "database/TextListFile.h"

#include <system_error>
#include <utility>

#include "database/FileTools.h"

namespace {

// A rename over a link would replace the link and leave the file behind it as it was.
std::filesystem::path BehindLinks(const std::filesystem::path& path)
{
    std::error_code error;
    if (!std::filesystem::is_symlink(path, error) || error)
        return path;
    const auto target = std::filesystem::canonical(path, error);
    return error ? path : target;
}

// The replacement is as readable and writable for others as the list was.
void CopyPermissions(const std::filesystem::path& from, const std::filesystem::path& to)
{
    std::error_code ignored;
    const auto facts = std::filesystem::status(from, ignored);
    if (std::filesystem::exists(facts))
        std::filesystem::permissions(to, facts.permissions(), ignored);
}

}  // namespace

bool CTextListFile::Open(const std::filesystem::path& list)
{
    Close();
    m_sPath = list;
    m_sTarget = BehindLinks(list);
    m_bCopyDue = false;
    m_pFile = m_rFiles.Open(m_sTarget, OpenMode::ReadWrite);
    return IsOpen();
}

void CTextListFile::Close()
{
    Discard();
    m_pFile.reset();
    m_nOwnLength.reset();
}

std::optional<std::vector<std::byte>> CTextListFile::Read() const
{
    if (!m_pFile)
        return std::nullopt;
    std::vector<std::byte> text(static_cast<std::size_t>(m_pFile->Size()));
    if (m_pFile->ReadAt(0, text) != text.size())
        return std::nullopt;
    return text;
}

bool CTextListFile::KeepCopy()
{
    if (!m_bCopyDue || !m_pFile)
        return true;
    if (!KeepBackup(m_rFiles, *m_pFile, m_sTarget))
        return false;
    m_bCopyDue = false;
    return true;
}

bool CTextListFile::Prepare(std::span<const std::byte> text)
{
    Discard();
    if (!KeepCopy())
        return false;
    const auto beside = FreeSibling(m_rFiles, m_sTarget, ".new");
    if (!WriteNewFile(m_rFiles, beside, text))
        return false;
    m_sPrepared = beside;
    m_nPreparedLength = text.size();
    return true;
}

bool CTextListFile::Commit()
{
    const auto prepared = std::exchange(m_sPrepared, {});
    m_nOwnLength.reset();
    CopyPermissions(m_sTarget, prepared);
    // A file that is open cannot be replaced on every system.
    m_pFile.reset();
    const bool replaced = m_rFiles.Replace(prepared, m_sTarget);
    if (!replaced)
        m_rFiles.Remove(prepared);
    m_pFile = m_rFiles.Open(m_sTarget, OpenMode::ReadWrite);
    if (replaced && m_pFile)
        m_nOwnLength = m_nPreparedLength;
    return replaced;
}

bool CTextListFile::IsFree()
{
    m_pFile.reset();
    const bool isFree = m_rFiles.Open(m_sTarget, OpenMode::Exclusive) != nullptr;
    m_pFile = m_rFiles.Open(m_sTarget, OpenMode::ReadWrite);
    return isFree && m_pFile != nullptr;
}

void CTextListFile::Discard()
{
    if (!m_sPrepared.empty())
        m_rFiles.Remove(m_sPrepared);
    m_sPrepared.clear();
}

bool CTextListFile::Append(std::span<const std::byte> text)
{
    if (!m_pFile || !m_nOwnLength || m_pFile->Size() != *m_nOwnLength)
        return false;
    if (!m_pFile->WriteAt(*m_nOwnLength, text)) {
        m_pFile->Resize(*m_nOwnLength);
        return false;
    }
    *m_nOwnLength += text.size();
    return true;
}
