#include "tools/ReplacedTextures.h"

#include <numeric>
#include <utility>

namespace {

/// Shows where work is that must not be stopped any more.
class CUnstoppable final : public IProgress {
public:
    explicit CUnstoppable(IProgress& progress) : m_rProgress(progress) {}
    void Report(std::uint32_t current, std::uint32_t total, const std::wstring& text) override
    {
        m_rProgress.Report(current, total, text);
    }
    bool Cancelled() const override { return false; }

private:
    IProgress& m_rProgress;
};

}  // namespace

CReplacedTextures::CReplacedTextures(CTextureDatabase& database, std::vector<std::uint32_t> leaving)
    : m_rDatabase(database),
      m_aLeaving(std::move(leaving)),
      m_nFirstNew(database.EntryCount()),
      m_pStoring(std::make_unique<CStoringMany>(database))
{
}

CReplacedTextures::~CReplacedTextures()
{
    m_pStoring.reset();
    if (!m_bOpen)
        return;
    try {
        RemoveNew();
    } catch (const CError&) {
        // What could not be removed stands beside the old textures, which are what everybody finds first.
    }
}

std::vector<bool> CReplacedTextures::RastersOfLeaving() const
{
    std::vector<bool> present;
    for (const std::uint32_t index : m_aLeaving)
        for (const std::uint32_t offset : m_rDatabase.Entry(index).datOffset)
            present.push_back(offset != kNone);
    return present;
}

void CReplacedTextures::Complete(IProgress& progress)
{
    m_pStoring.reset();
    const std::uint32_t count = m_rDatabase.EntryCount();
    const std::vector<bool> rasters = RastersOfLeaving();
    CUnstoppable unstoppable(progress);
    try {
        if (m_aLeaving.empty())
            m_rDatabase.Save();
        else
            m_rDatabase.DeleteEntries(m_aLeaving, unstoppable, AliasesOfDeleted::Keep);
        m_bOpen = false;
    } catch (const CError&) {
        // Once the deletion has touched an old texture, the new one is the one that is whole.
        m_bOpen = m_rDatabase.EntryCount() == count && RastersOfLeaving() == rasters;
        throw;
    }
}

void CReplacedTextures::RemoveNew()
{
    std::vector<std::uint32_t> added(m_rDatabase.EntryCount() - m_nFirstNew);
    std::iota(added.begin(), added.end(), m_nFirstNew);
    CNoProgress progress;
    m_rDatabase.DeleteEntries(added, progress, AliasesOfDeleted::Keep);
}
