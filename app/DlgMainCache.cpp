#include <array>

#include "app/DlgMain.h"
#include "app/resource.h"
#include "base/Format.h"
#include "base/Text.h"
#include "codec/BuildNumber.h"
#include "image/ImageTexts.h"
#include "tools/NewDatabase.h"
#include "tools/OpenDatabase.h"

namespace {

constexpr wchar_t kListExtension[] = L"txt";

StreamMode ForcedModeOf(int game)
{
    switch (game) {
        case 1:
            return StreamMode::Raw;
        case 2:
            return StreamMode::Framed;
        default:
            return StreamMode::Auto;
    }
}

}  // namespace

bool CDlgMain::HasDatabaseOrSaysSo()
{
    if (!m_pDatabase)
        m_oParts.prompt.ShowError(String(IDS_LOAD_CACHE_FIRST));
    return m_pDatabase != nullptr;
}

void CDlgMain::LetGoOfDatabase()
{
    // A value or a label that is being typed must not end up in the next database.
    m_oProperties.Clear();
    m_oTree.Clear();
    m_oNewLabel = {};
    m_pDatabase.reset();
}

void CDlgMain::Close()
{
    LetGoOfDatabase();
    m_oPreview.ShowBitmap(std::nullopt);
    ClearFacts();
    m_bHasSearched = false;
    ShowMenuState();
    ShowEmptyTitle();
}

void CDlgMain::CloseByCommand()
{
    Close();
    Status(String(IDS_CACHE_UNLOADED));
}

void CDlgMain::AskAndOpen()
{
    const auto file =
        m_oParts.dialogs.OpenFile({.filter = String(IDS_LIST_FILTER),
                                   .defaultExtension = kListExtension,
                                   .folder = m_oParts.settings.ReadString(L"paths", L"last_open")});
    if (!file)
        return;
    m_oParts.settings.WriteString(L"paths", L"last_open", GetFolder(file->native()));
    Close();
    OpenAndSelect(*file);
}

void CDlgMain::OpenAndSelect(const std::filesystem::path& chosen)
{
    Attempt([&] {
        OpenByPath(chosen);
        SelectFirstTexture();
    });
}

void CDlgMain::OpenRecent(UINT command)
{
    const auto files = m_oRecentFiles.List();
    const std::size_t position = command - ID_RECENT_FIRST;
    if (position >= files.size())
        return;
    OpenAndSelect(files[position]);
    // A list that is only held by another program stays in the menu.
    if (m_pDatabase || m_oParts.files.Exists(files[position]))
        return;
    m_oRecentFiles.Remove(files[position]);
    m_oRecentFiles.Show(Menu(), String(IDS_NO_RECENT_FILES));
}

void CDlgMain::RememberRecent(const std::filesystem::path& list)
{
    m_oRecentFiles.Add(list);
    m_oRecentFiles.Show(Menu(), String(IDS_NO_RECENT_FILES));
}

void CDlgMain::OpenByPath(const std::filesystem::path& chosen)
{
    LetGoOfDatabase();
    const auto started = std::chrono::steady_clock::now();
    const std::filesystem::path list = ListPathOf(chosen);
    SetText(Format(String(IDS_TITLE_CACHE), list.filename().native()));

    const StreamMode forced = ForcedModeOf(m_oParts.settings.ReadInt(L"global", L"game", 0));
    m_pDatabase = std::make_unique<CTextureDatabase>(forced, m_oParts.files, m_oParts.prompt);
    CDatabaseOpener opener(m_oParts.settings, m_oParts.prompt, m_oProgress);
    OpenResult result = OpenResult::NoCaches;
    Attempt([&] { result = opener.Open(*m_pDatabase, list, [&] { ShowOpened(started); }); });
    if (result != OpenResult::Opened && result != OpenResult::Recovered) {
        CloseByCommand();
        return;
    }
    // A repair that fails is reported, and the database stays open as it was found.
    RememberRecent(list);
    if (result == OpenResult::Opened)
        Attempt([&] { opener.OfferFileRepairs(*m_pDatabase, [this] { Status(String(IDS_DONE)); }); });
    FillTree();
    if (result == OpenResult::Opened)
        Attempt([&] { opener.OfferNameHashRepair(*m_pDatabase); });
    m_oProgress.Hide();
}

void CDlgMain::ShowOpened(std::chrono::steady_clock::time_point since)
{
    EnableLoadedCommands(true);
    SelectTab(m_pDatabase->PrimaryCache().value_or(CacheIndex::Dxt));
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - since;
    Status(Format(String(IDS_CACHE_LOADED), elapsed.count()));
}

void CDlgMain::AskAndCreate()
{
    // No question about an existing list here: creating asks once about all files of that name.
    const auto file = m_oParts.dialogs.SaveFile(
        {.filter = String(IDS_LIST_FILTER), .defaultExtension = kListExtension, .asksToReplace = false});
    if (!file)
        return;
    Close();
    SetText(Format(String(IDS_TITLE_CACHE), file->filename().native()));
    const StreamMode forced = ForcedModeOf(m_oParts.settings.ReadInt(L"global", L"game", 0));
    auto database = std::make_unique<CTextureDatabase>(forced, m_oParts.files, m_oParts.prompt);
    if (CreateDatabase(*database, *file, kAllCaches, m_oParts.prompt) != CreateResult::Created) {
        database.reset();
        CloseByCommand();
        return;
    }
    m_pDatabase = std::move(database);
    EnableLoadedCommands(true);
    SelectTab(m_pDatabase->PrimaryCache().value_or(CacheIndex::Dxt));
    FillTree();
    RememberRecent(*file);
    Status(String(IDS_CACHE_CREATED));
}

void CDlgMain::Reload()
{
    if (!HasDatabaseOrSaysSo())
        return;
    // A list that cannot be opened leaves everything as it was, and the tree shows what there is in any case.
    Attempt([this] { m_pDatabase->Reload(); });
    RefillTree();
}

void CDlgMain::RefillTree()
{
    if (!m_pDatabase)
        return;
    const TreeSelection selection = m_oTree.Selection();
    FillTree();
    if (selection.focused && *selection.focused < m_pDatabase->EntryCount())
        m_oTree.SelectTexture(*selection.focused);
    else if (selection.category)
        m_oTree.SelectCategory(*selection.category);
}

void CDlgMain::FillTree()
{
    m_oTreePictures.Reset(m_pDatabase->EntryCount());
    m_oTree.Fill(*m_pDatabase, String(IDS_UNKNOWN_CATEGORY), m_oTreePictures.IsOn());
    m_oPreview.ShowBitmap(std::nullopt);
    ClearFacts();
    ShowProperties();
}

void CDlgMain::SelectFirstTexture()
{
    if (m_pDatabase && m_pDatabase->EntryCount() > 0)
        m_oTree.SelectTexture(0);
}

void CDlgMain::FixNameHashes()
{
    if (!HasDatabaseOrSaysSo())
        return;
    if (m_oParts.prompt.Show({.text = String(IDS_FIX_HASHES_QUESTION),
                              .caption = String(IDS_PROGRAM),
                              .icon = PromptIcon::Question,
                              .buttons = PromptButtons::YesNo}) != PromptAnswer::Yes)
        return;
    m_pDatabase->FixNameHashes(m_oProgress);
    const bool wasStopped = m_oProgress.Cancelled();
    m_oProgress.Hide();
    if (!wasStopped)
        Status(String(IDS_DONE));
}

void CDlgMain::ShowGame(int game)
{
    const int shown = static_cast<int>(ForcedModeOf(game));
    Menu().CheckRadio(ID_GAME_AUTO, ID_GAME_SAN_ANDREAS, ID_GAME_AUTO + static_cast<UINT>(shown));
    m_oGameList.SetCurrent(shown);
}

void CDlgMain::SetGame(int game)
{
    if (m_pDatabase) {
        m_pDatabase->SetForcedMode(ForcedModeOf(game));
        DrawSelected();
    }
    m_oParts.settings.WriteInt(L"global", L"game", game);
    ShowGame(game);
}
