#include <chrono>

#include "app/DlgMain.h"
#include "tools/TextureFacts.h"

// NOLINTBEGIN(cppcoreguidelines-pro-type-reinterpret-cast): the messages carry pointers

void CDlgMain::BindHostMessages()
{
    CMessageMap& messages = Messages();
    messages.OnMessage(kImportMessage, [this](WPARAM picture, LPARAM record) {
        if (record != 0)
            ImportForTool(reinterpret_cast<const CBitmap*>(picture),
                          *reinterpret_cast<ImportRecord*>(record));
        return 0;
    });
    messages.OnMessage(kShowMessage, [this](WPARAM name, LPARAM picture) {
        ShowForTool(reinterpret_cast<const wchar_t*>(name), reinterpret_cast<const CBitmap*>(picture));
        return 0;
    });
    messages.OnMessage(kSelectMessage, [this](WPARAM index, LPARAM) {
        if (m_pDatabase && index < m_pDatabase->EntryCount())
            m_oTree.SelectTexture(static_cast<std::uint32_t>(index));
        return 0;
    });
    messages.OnMessage(kRefreshMessage, [this](WPARAM, LPARAM) {
        RefillTree();
        return 0;
    });
    messages.OnMessage(kDecodeMessage, [this](WPARAM index, LPARAM cache) {
        return reinterpret_cast<LRESULT>(DecodeForTool(index, cache).release());
    });
}

// NOLINTEND(cppcoreguidelines-pro-type-reinterpret-cast)

CHostOperations CDlgMain::HostOperations()
{
    return {*m_pDatabase, m_oParts.plugins, m_oParts.settings, m_oParts.prompt};
}

void CDlgMain::ImportForTool(const CBitmap* picture, ImportRecord& record)
{
    record.outcome = ImportOutcome::Failed;
    if (m_pDatabase && HostOperations().Import(picture, record))
        RefillTree();
}

void CDlgMain::ShowForTool(const wchar_t* name, const CBitmap* picture)
{
    if (picture == nullptr && m_oPreview.ShowsNothing())
        return;
    const auto started = std::chrono::steady_clock::now();
    // A copy, because the sender may let go of its picture as soon as this returns.
    m_oPreview.ShowBitmap(picture != nullptr ? std::optional<CBitmap>(*picture) : std::nullopt);
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - started;
    Status(Translated(RenderedText(name != nullptr ? name : L"", elapsed.count())));
}

std::unique_ptr<CBitmap> CDlgMain::DecodeForTool(WPARAM index, LPARAM cache)
{
    if (!m_pDatabase || index >= m_pDatabase->EntryCount() || cache < 0 ||
        cache >= static_cast<LPARAM>(kCacheCount))
        return nullptr;
    return HostOperations().Decode(static_cast<std::uint32_t>(index),
                                   kAllCaches[static_cast<std::size_t>(cache)]);
}
