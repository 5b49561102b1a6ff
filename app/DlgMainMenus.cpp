#include "app/DialogTexts.h"
#include "app/DlgMain.h"
#include "app/SettingToggles.h"
#include "app/TextureMenus.h"
#include "app/resource.h"
#include "base/Format.h"
#include "codec/BuildNumber.h"
#include "tools/EditProperties.h"

namespace {

// Commands that work only while a database is open. What the program does not do yet stays disabled for good.
constexpr UINT kLoadedCommands[] = {ID_CLOSE,      ID_FIND,       ID_EXPORT_ALL,      ID_NEW_CATEGORY,
                                    ID_IMPORT_TXD, ID_IMPORT_IMG, ID_IMG_SYNCHRONIZER};

}  // namespace

void CDlgMain::LoadMenu()
{
    CMenuHandle menu = m_oParts.resources.Menu(IDR_MAIN_MENU);
    ::SetMenu(Handle(), menu.get());
    m_hMenu = std::move(menu);
    m_hAccelerators = m_oParts.resources.Accelerators(IDR_ACCELERATORS);
    const CMenu options = *Menu().PopupWith(ID_DISABLE_LOGO);
    m_nFixedOptions = options.Count();
    m_oPluginMenu.Rebuild(options, m_nFixedOptions);
    m_oParts.languages.FillMenu(Menu());
    m_oRecentFiles.Show(Menu(), String(IDS_NO_RECENT_FILES));
    ShowMenuState();
    ::DrawMenuBar(Handle());
}

void CDlgMain::ShowMenuState()
{
    const CMenu menu = Menu();
    ShowToggles(menu, m_oParts.settings);
    ShowGame(m_oParts.settings.ReadInt(L"global", L"game", 0));
    ShowBackground();
    ApplyRenderer();
    menu.Check(ID_STRETCH, m_oPreview.Options().stretch);
    menu.Check(ID_THUMBNAILS, m_bThumbnails);
    EnableLoadedCommands(m_pDatabase != nullptr);
    Enable(ID_FIND_NEXT, m_pDatabase != nullptr && m_bHasSearched);
    // Deliberate: the tree always shows categories; the item says so and cannot be chosen.
    Enable(ID_SHOW_CATEGORIES, false);
    menu.Check(ID_SHOW_CATEGORIES, true);
}

void CDlgMain::EnableLoadedCommands(bool loaded)
{
    for (const UINT command : kLoadedCommands)
        Enable(command, loaded);
    m_oGameList.Enable(loaded);
}

void CDlgMain::ShowEmptyTitle()
{
    SetText(Format(String(IDS_TITLE_EMPTY), BuildNumber()));
}

// ---- Languages ----

void CDlgMain::ChooseLanguage(UINT command)
{
    if (const auto change = m_oParts.languages.Choose(command))
        ShowLanguage(*change);
}

void CDlgMain::ShowLanguage(LanguageChange change)
{
    FillGameList();
    LoadMenu();
    TakeTextsFromTemplate(*this, m_oParts.resources.Current(), IDD_MAIN);
    m_oProgress.SetText(String(IDS_PROGRESS));
    m_oProperties.UpdateTexts();
    RefillTree();
    if (change == LanguageChange::Failed)
        return;
    if (!m_pDatabase)
        ShowEmptyTitle();
    Status(String(IDS_LANGUAGE_CHANGED));
}

// ---- Context menus ----

void CDlgMain::OnContextMenu(HWND from, POINT place)
{
    const CTreeCtrlEx& tree = m_oTree.Control();
    if (from != tree.Handle() || tree.Caret() == nullptr)
        return;
    if (place.x == -1 && place.y == -1) {
        // Asked for with the keyboard: below the focused item.
        const RECT item = tree.ItemRect(tree.Caret());
        place = {item.left, item.bottom};
        ::ClientToScreen(tree.Handle(), &place);
    }
    if (const CMenuHandle menu = ContextMenu())
        CMenu(menu.get()).Popup(0).Track(Handle(), place);
}

CMenuHandle CDlgMain::ContextMenu()
{
    const TreeSelection selection = m_oTree.Selection();
    const CResources& resources = m_oParts.resources;
    if (!m_pDatabase)
        return {};
    if (selection.items > 1) {
        CMenuHandle menu = resources.Menu(IDR_SEVERAL_TEXTURES_MENU);
        FillTextureMenu(CMenu(menu.get()), selection.focused.value_or(selection.textures.front()), true);
        return menu;
    }
    if (selection.focused) {
        CMenuHandle menu = resources.Menu(IDR_ONE_TEXTURE_MENU);
        FillTextureMenu(CMenu(menu.get()), *selection.focused, false);
        return menu;
    }
    // The group of textures without a category is no category.
    if (!selection.category)
        return {};
    CMenuHandle menu = resources.Menu(IDR_CATEGORY_MENU);
    FillCategoryPropertiesPopup(*CMenu(menu.get()).PopupWith(ID_CATEGORY_PROPERTY),
                                m_pDatabase->Categories()[*selection.category]);
    return menu;
}

void CDlgMain::FillTextureMenu(const CMenu& menu, std::uint32_t index, bool several)
{
    const TextureEntry& entry = m_pDatabase->Entry(index);
    FillCategoryPopup(*menu.PopupWith(ID_CATEGORY_FIRST), *m_pDatabase, entry.Value(Property::Cat));
    FillDetailPopup(*menu.PopupWith(ID_DETAIL_NONE), DetailNames(m_oParts.settings, *m_pDatabase),
                    entry.Value(Property::HasDetail));
    FillTexturePropertiesPopup(*menu.PopupWith(ID_TEXTURE_PROPERTY), entry, several);
    if (several)
        return;
    const bool isAlias = entry.IsAlias();
    menu.Enable(ID_CREATE_ALIAS, !isAlias);
    menu.Enable(ID_SHOW_ALIASES, !isAlias);
    menu.Enable(ID_GO_TO_ORIGINAL, isAlias);
}
