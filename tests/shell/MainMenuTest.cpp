#include <array>
#include <map>

#include "tests/shell/MainWindowFixture.h"

namespace {

struct MenuRow {
    UINT id;
    const wchar_t* text;
};

// Everything that the main menu offers, whether the program does it yet or not.
constexpr std::array kMainMenu = {
    MenuRow{40219, L"&New...\tCtrl+N"},
    MenuRow{40008, L"&Open...\tCtrl+O"},
    MenuRow{40015, L"&Close\tCtrl+X"},
    MenuRow{40222, L"Reload\tF5"},
    MenuRow{40009, L"E&xit\tAlt+F4"},
    MenuRow{40091, L"&Find...\tCtrl+F"},
    MenuRow{40227, L"Find &Next\tF3"},
    MenuRow{40071, L"Show &Categories"},
    MenuRow{40043, L"CStatic (this sucks)"},
    MenuRow{40044, L"GDI+"},
    MenuRow{40045, L"Direct X"},
    MenuRow{40046, L"&Stretch Image"},
    MenuRow{40050, L"None"},
    MenuRow{40051, L"Alpha"},
    MenuRow{40052, L"Fixed alpha"},
    MenuRow{40053, L"Single Color"},
    MenuRow{40057, L"Set Background Color..."},
    MenuRow{40300, L"English (default)"},
    MenuRow{40621, L"&Thumbnails\tF6"},
    MenuRow{40012, L"&Export...\tCtrl+E"},
    MenuRow{40202, L"With &Alpha..."},
    MenuRow{40205, L"&Without Alpha..."},
    MenuRow{40695, L"Uncompressed W&ith Alpha..."},
    MenuRow{40696, L"Uncompressed With&out Alpha..."},
    MenuRow{40273, L"&Uncompressed 32bpp..."},
    MenuRow{40221, L"Add New &Category..."},
    MenuRow{40065, L"Export &All...\tCtrl+Alt+E"},
    MenuRow{40262, L"Import &TXD...\tCtrl+T"},
    MenuRow{40085, L"&Disable Startup Logo"},
    MenuRow{40604, L"&Auto Select"},
    MenuRow{40605, L"GTA &Vice City"},
    MenuRow{40606, L"GTA &San Andreas"},
    MenuRow{40626, L"Generate &Mipmaps"},
    MenuRow{40612, L"Enable RLE &Compression"},
    MenuRow{40693, L"Disable Compression &Globally"},
    MenuRow{40690, L"&Hash input PNG file"},
    MenuRow{40702, L"Enable Raster Hash Checking"},
    MenuRow{40619, L"Override Import &Format"},
    MenuRow{40277, L"&Radar Map Editor..."},
    MenuRow{40278, L"Check &DFF..."},
    MenuRow{40602, L"Information..."},
    MenuRow{40357, L"Export..."},
    MenuRow{40358, L"Import..."},
    MenuRow{40359, L"Cache &Converter..."},
    MenuRow{40601, L"Cache &Optimizer..."},
    MenuRow{40628, L"&Fix name hashes..."},
    MenuRow{40617, L"IMG&Tool"},
    MenuRow{40279, L"IMG &Synchronizer..."},
    MenuRow{40281, L"&Import IMG..."},
    MenuRow{40019, L"&About Mavrel...\tF1"},
};

constexpr std::array kContextMenus = {
    MenuRow{40006, L"&Export...\tCtrl+E"},
    MenuRow{40209, L"&Export all\tCtrl+E"},
    MenuRow{40075, L"&Rename"},
    MenuRow{40207, L"&Rename"},
    MenuRow{40700, L"Create &Alias..."},
    MenuRow{40698, L"&Show Aliases..."},
    MenuRow{40271, L"Show S&iblings..."},
    MenuRow{40261, L"Go To &Original"},
    MenuRow{40076, L"&Delete\tDel"},
    MenuRow{40208, L"&Delete\tDel"},
    MenuRow{40095, L"&New Category..."},
    MenuRow{40240, L"&None"},
    MenuRow{40202, L"With &Alpha..."},
    MenuRow{40205, L"&Without Alpha..."},
};

using CMainMenu = CMainWindowTest;

TEST_F(CMainMenu, OffersEveryCommandByItsNumberTextAndKey)
{
    Start();
    for (const MenuRow& row : kMainMenu)
        EXPECT_EQ(Menu().Text(row.id), row.text) << row.id;
}

TEST_F(CMainMenu, OffersTheCommandsOfTheTreeInContextMenus)
{
    const CMenuHandle menus[] = {m_oResources.Menu(IDR_ONE_TEXTURE_MENU),
                                 m_oResources.Menu(IDR_SEVERAL_TEXTURES_MENU),
                                 m_oResources.Menu(IDR_CATEGORY_MENU)};
    for (const MenuRow& row : kContextMenus) {
        std::wstring text;
        for (const CMenuHandle& menu : menus)
            if (text.empty())
                text = CMenu(menu.get()).Text(row.id);
        EXPECT_EQ(text, row.text) << row.id;
    }
}

TEST_F(CMainMenu, AnswersToTheseKeys)
{
    const std::map<std::pair<int, int>, int> wanted = {
        {{FVIRTKEY | FCONTROL, 'N'}, 40219},
        {{FVIRTKEY | FCONTROL, 'O'}, 40008},
        {{FVIRTKEY | FCONTROL, 'X'}, 40015},
        {{FVIRTKEY, VK_F5}, 40222},
        {{FVIRTKEY | FALT, VK_F4}, 40009},
        {{FVIRTKEY | FCONTROL, 'F'}, 40091},
        {{FVIRTKEY, VK_F3}, 40227},
        {{FVIRTKEY, VK_F6}, 40621},
        {{FVIRTKEY | FCONTROL, 'E'}, 40012},
        {{FVIRTKEY | FCONTROL | FALT, 'E'}, 40065},
        {{FVIRTKEY | FCONTROL, 'T'}, 40262},
        {{FVIRTKEY, VK_F1}, 40019},
        {{FVIRTKEY, VK_DELETE}, 40210},
        {{FVIRTKEY | FCONTROL, VK_TAB}, 40058},
        {{FVIRTKEY | FCONTROL | FSHIFT, VK_TAB}, 40059},
    };
    const CAcceleratorHandle table = m_oResources.Accelerators(IDR_ACCELERATORS);
    std::array<ACCEL, 64> keys{};
    const int count = ::CopyAcceleratorTableW(table.get(), keys.data(), static_cast<int>(keys.size()));
    std::map<std::pair<int, int>, int> found;
    for (int index = 0; index < count; ++index) {
        const ACCEL& key = keys[static_cast<std::size_t>(index)];
        found[{key.fVirt & 0x1F, key.key}] = key.cmd;
    }
    EXPECT_EQ(found, wanted);
}

TEST_F(CMainMenu, DisablesWhatNeedsADatabaseUntilThereIsOne)
{
    Start();
    for (const UINT id : {ID_CLOSE, ID_FIND, ID_FIND_NEXT, ID_EXPORT_ALL, ID_SHOW_CATEGORIES})
        EXPECT_FALSE(Menu().IsEnabled(id)) << id;
    EXPECT_TRUE(Menu().IsChecked(ID_SHOW_CATEGORIES));
    EXPECT_FALSE(m_pWindow->Child(IDC_GAME).IsEnabled());

    OpenDatabase(SmallDatabase());
    for (const UINT id : {ID_CLOSE, ID_FIND, ID_EXPORT_ALL})
        EXPECT_TRUE(Menu().IsEnabled(id)) << id;
    EXPECT_FALSE(Menu().IsEnabled(ID_FIND_NEXT));
    EXPECT_FALSE(Menu().IsEnabled(ID_SHOW_CATEGORIES));
    EXPECT_TRUE(m_pWindow->Child(IDC_GAME).IsEnabled());

    Command(ID_CLOSE);
    EXPECT_FALSE(Menu().IsEnabled(ID_CLOSE));
    EXPECT_FALSE(m_pWindow->Child(IDC_GAME).IsEnabled());
}

TEST_F(CMainMenu, ShowsADisabledItemForEveryCacheWithoutAPlugin)
{
    Start();
    const wchar_t* const names[] = {L"DXT", L"ETC1", L"PVRTC", L"UNC"};
    for (UINT cache = 0; cache < 4; ++cache) {
        EXPECT_EQ(Menu().Text(40400 + cache), names[cache]);
        EXPECT_FALSE(Menu().IsEnabled(40400 + cache));
    }
}

struct ToggleRow {
    UINT id;
    const wchar_t* key;
    bool checkedAtFirst;
    int valueAfterwards;
};

TEST_F(CMainMenu, WritesASwitchAndChecksItsItem)
{
    Start();
    for (const ToggleRow& row :
         {ToggleRow{40612, L"enable_rle_compression", true, 0}, ToggleRow{40619, L"enable_rules", true, 0},
          ToggleRow{40626, L"enable_mipmaps", true, 0}, ToggleRow{40690, L"hash_png", false, 1},
          ToggleRow{40702, L"enable_img_hash", true, 0}, ToggleRow{40693, L"enable_compression", false, 0}}) {
        EXPECT_EQ(Menu().IsChecked(row.id), row.checkedAtFirst) << row.id;
        Command(row.id);
        EXPECT_EQ(Menu().IsChecked(row.id), !row.checkedAtFirst) << row.id;
        EXPECT_EQ(m_pSettings->ReadInt(L"global", row.key, -1), row.valueAfterwards) << row.id;
        Command(row.id);
        EXPECT_EQ(Menu().IsChecked(row.id), row.checkedAtFirst) << row.id;
    }
}

TEST_F(CMainMenu, UnchecksTheLogoItemWhenTheLogoComesBack)
{
    Start();
    EXPECT_TRUE(Menu().IsChecked(ID_DISABLE_LOGO));
    Command(ID_DISABLE_LOGO);
    EXPECT_FALSE(Menu().IsChecked(ID_DISABLE_LOGO));
    EXPECT_EQ(m_pSettings->ReadInt(L"global", L"show_loading_screen", -1), 700);
}

TEST_F(CMainMenu, TakesTheStoredCompressionSwitchForTheOppositeOfItsItem)
{
    Start();
    Command(ID_ENABLE_COMPRESSION);
    EXPECT_EQ(m_pSettings->ReadInt(L"global", L"enable_compression", -1), 0);
    EXPECT_TRUE(Menu().IsChecked(ID_DISABLE_COMPRESSION));
}

TEST_F(CMainMenu, KeepsTheGameInMenuListAndSettings)
{
    m_pSettings->WriteInt(L"global", L"game", 2);
    Start();
    EXPECT_TRUE(Menu().IsChecked(ID_GAME_SAN_ANDREAS));
    Command(ID_GAME_VICE_CITY);
    EXPECT_TRUE(Menu().IsChecked(ID_GAME_VICE_CITY));
    EXPECT_FALSE(Menu().IsChecked(ID_GAME_SAN_ANDREAS));
    EXPECT_EQ(m_pSettings->ReadInt(L"global", L"game", -1), 1);
    EXPECT_EQ(m_pWindow->Child(IDC_GAME).Text(), L"GTA VC");
}

TEST_F(CMainMenu, StartsEveryRunWithGdiPlus)
{
    m_pSettings->WriteInt(L"render", L"type", 0);
    Start();
    EXPECT_EQ(m_pSettings->ReadInt(L"render", L"type", -1), 1);
    EXPECT_TRUE(Menu().IsChecked(ID_RENDERER_GDIPLUS));
    Command(ID_RENDERER_STATIC);
    EXPECT_EQ(m_pSettings->ReadInt(L"render", L"type", -1), 0);
    EXPECT_TRUE(Menu().IsChecked(ID_RENDERER_STATIC));
    Command(ID_RENDERER_DIRECT);
    EXPECT_EQ(m_pSettings->ReadInt(L"render", L"type", 0), 2);
    EXPECT_TRUE(Menu().IsChecked(ID_RENDERER_DIRECT));
    EXPECT_FALSE(Menu().IsChecked(ID_RENDERER_STATIC));
}

TEST_F(CMainMenu, StoresTheBackgroundAndItsColor)
{
    Start();
    EXPECT_TRUE(Menu().IsChecked(ID_BACKGROUND_COLOR));
    Command(ID_BACKGROUND_ALPHA);
    EXPECT_EQ(m_pSettings->ReadInt(L"render", L"background", -1), 1);
    EXPECT_TRUE(Menu().IsChecked(ID_BACKGROUND_ALPHA));
    m_oDialogs.color = RGB(1, 2, 3);
    Command(ID_SET_BACKGROUND_COLOR);
    EXPECT_EQ(m_pSettings->ReadInt(L"render", L"background_color", -1), 0x030201);
    EXPECT_EQ(m_pSettings->ReadInt(L"render", L"background", -1), 3);
    EXPECT_TRUE(Menu().IsChecked(ID_BACKGROUND_COLOR));
}

TEST_F(CMainMenu, ChecksStretchForThisRunOnly)
{
    Start();
    EXPECT_FALSE(Menu().IsChecked(ID_STRETCH));
    Command(ID_STRETCH);
    EXPECT_TRUE(Menu().IsChecked(ID_STRETCH));
    m_pWindow.reset();
    Start();
    EXPECT_FALSE(Menu().IsChecked(ID_STRETCH));
}

}  // namespace
