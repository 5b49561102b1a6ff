#include "tests/shell/MainWindowFixture.h"

namespace {

using CMainWindow = CMainWindowTest;

// Texts.

TEST_F(CMainWindow, SaysThatItIsReady)
{
    Start();
    EXPECT_EQ(Pane(0), L"Mavrel is ready to fuck you up.");
    EXPECT_EQ(m_pWindow->Text(), L"Mavrel 0.7b x64 build #415");
}

TEST_F(CMainWindow, NamesTheOpenListInItsTitle)
{
    Start();
    OpenDatabase(SmallDatabase());
    EXPECT_EQ(m_pWindow->Text(), L"textures.txt - Mavrel 0.7b x64");
    Command(ID_CLOSE);
    EXPECT_EQ(m_pWindow->Text(), L"Mavrel 0.7b x64 build #415");
    EXPECT_EQ(Pane(0), L"Cache unloaded.");
    EXPECT_TRUE(TreeLines().empty());
}

TEST_F(CMainWindow, SelectsTheFirstTextureOfTheListAfterOpening)
{
    Start();
    OpenDatabase(SmallDatabase());
    EXPECT_EQ(Tree().ItemText(Tree().Caret()), L"wood");
    EXPECT_TRUE(Pane(0).starts_with(L"Texture 'wood' rendered within 0.")) << ToUtf8(Pane(0));
}

TEST_F(CMainWindow, ShowsTheFactsOfATexture)
{
    Start();
    OpenDatabase(SmallDatabase());
    Select(L"leaf");
    EXPECT_TRUE(Pane(2).starts_with(L"ID: 02, Offset: 0x")) << ToUtf8(Pane(2));
    EXPECT_EQ(Pane(3), L"512 B");
    EXPECT_EQ(Pane(4), L"16 x 8");
    EXPECT_EQ(Pane(5), L"GTA VC");
    EXPECT_EQ(Pane(6), L"RGBA 8888");
}

TEST_F(CMainWindow, SaysWhichCategoryIsSelected)
{
    Start();
    OpenDatabase(SmallDatabase());
    Select(L"plants");
    EXPECT_EQ(Pane(0), L"Category 'plants' selected.");
    EXPECT_EQ(Pane(2), L"");
}

// The tree.

TEST_F(CMainWindow, ListsCategoriesInOrderAndTexturesByName)
{
    Start();
    OpenDatabase(SmallDatabase());
    EXPECT_EQ(TreeLines(), (std::vector<std::wstring>{L"walls", L"  bark", L"  Brick", L"  wood", L"plants",
                                                      L"  leaf", L"Unknown", L"  lost"}));
    EXPECT_EQ(Tree().Data(ItemOf(L"walls")), -1);
    EXPECT_EQ(Tree().Data(ItemOf(L"Unknown")), -1);
    EXPECT_EQ(Tree().Data(ItemOf(L"leaf")), 2);
}

TEST_F(CMainWindow, HasNoUnknownGroupWithoutLostTextures)
{
    Start();
    CDatabaseBuilder builder;
    builder.Category("cat=0 name=walls").Texture("wood").Picture("unc", 0x10);
    OpenDatabase(builder);
    EXPECT_EQ(TreeLines(), (std::vector<std::wstring>{L"walls", L"  wood"}));
}

TEST_F(CMainWindow, KeepsTheSelectionOverAReload)
{
    Start();
    OpenDatabase(SmallDatabase());
    Select(L"leaf");
    Command(ID_RELOAD);
    EXPECT_EQ(Tree().ItemText(Tree().Caret()), L"leaf");
    EXPECT_EQ(TreeLines().size(), 8U);
}

TEST_F(CMainWindow, StaysOpenOnEscape)
{
    Start();
    Command(IDCANCEL);
    EXPECT_TRUE(m_pWindow->Exists());
}

// Tabs.

TEST_F(CMainWindow, LabelsOneTabForEachCache)
{
    Start();
    EXPECT_EQ(Tabs().Send(TCM_GETITEMCOUNT), 4);
    wchar_t text[32] = {};
    TCITEMW item{};
    item.mask = TCIF_TEXT;
    item.pszText = text;
    item.cchTextMax = 32;
    Tabs().SendPointer(TCM_GETITEMW, 2, &item);
    EXPECT_STREQ(text, L"PVR       ");
}

TEST_F(CMainWindow, KeepsTheTabWhenTheOtherHasNoCache)
{
    Start();
    OpenDatabase(SmallDatabase());
    ClickTab(1);
    EXPECT_EQ(Tabs().Current(), 0);
    ClickTab(3);
    EXPECT_EQ(Tabs().Current(), 3);
    ClickTab(2);
    EXPECT_EQ(Tabs().Current(), 3);
}

TEST_F(CMainWindow, StepsTabsRoundAndPassesMissingCachesByWayOfTheDefaultOne)
{
    Start();
    OpenDatabase(SmallDatabase());
    Command(ID_PREVIOUS_TAB);
    EXPECT_EQ(Tabs().Current(), 3);
    Command(ID_NEXT_TAB);
    EXPECT_EQ(Tabs().Current(), 0);
    ClickTab(3);
    Command(ID_PREVIOUS_TAB);  // to the PVRTC cache, which is missing
    EXPECT_EQ(Tabs().Current(), 0);
}

// Thumbnails.

TEST_F(CMainWindow, RefusesThumbnailsThatAreNotThere)
{
    Start();
    Command(ID_THUMBNAILS);
    ASSERT_EQ(Prompt().Shown().size(), 1U);
    EXPECT_EQ(Prompt().Shown()[0].text, L"No thumbnails loaded.");
    EXPECT_EQ(Prompt().Shown()[0].caption, L"Error");
    EXPECT_EQ(Prompt().Shown()[0].icon, PromptIcon::Information);
    EXPECT_FALSE(Menu().IsChecked(ID_THUMBNAILS));
}

TEST_F(CMainWindow, ShowsThumbnailsAndSaysSoInTheMenu)
{
    m_pSettings->WriteInt(L"global", L"view_thumbs", 1);
    Start();
    OpenDatabase(SmallDatabase());
    EXPECT_FALSE(Menu().IsChecked(ID_THUMBNAILS));
    Select(L"leaf");
    Command(ID_THUMBNAILS);
    EXPECT_TRUE(Menu().IsChecked(ID_THUMBNAILS));
    EXPECT_EQ(m_pSettings->ReadInt(L"global", L"view_thumbs", -1), 1);
    EXPECT_EQ(Pane(4), L"1 x 1");
    Command(ID_THUMBNAILS);
    EXPECT_EQ(Pane(4), L"16 x 8");
    EXPECT_EQ(m_pSettings->ReadInt(L"global", L"view_thumbs", -1), 0);
}

// Find.

TEST_F(CMainWindow, FindsTexturesOneAfterTheOther)
{
    Start();
    OpenDatabase(SmallDatabase());
    m_oDialogs.value = L"L";
    Command(ID_FIND);
    ASSERT_EQ(m_oDialogs.values.size(), 1U);
    EXPECT_EQ(m_oDialogs.values[0].title, L"Find texture");
    EXPECT_EQ(m_oDialogs.values[0].label, L"Find what:");
    EXPECT_EQ(Tree().ItemText(Tree().Caret()), L"leaf");
    EXPECT_TRUE(Menu().IsEnabled(ID_FIND_NEXT));
    Command(ID_FIND_NEXT);
    EXPECT_EQ(Tree().ItemText(Tree().Caret()), L"lost");
}

TEST_F(CMainWindow, AsksBeforeItSearchesFromTheBeginning)
{
    Start({PromptAnswer::Yes, PromptAnswer::Yes, PromptAnswer::No});
    OpenDatabase(SmallDatabase());
    Select(L"lost");
    m_oDialogs.value = L"wood";
    Command(ID_FIND);
    EXPECT_EQ(Tree().ItemText(Tree().Caret()), L"wood");
    ASSERT_EQ(Prompt().Shown().size(), 1U);
    EXPECT_EQ(Prompt().Shown()[0].text, L"No textures found. Do you want to try search from beginning?");
    EXPECT_EQ(Prompt().Shown()[0].caption, L"Find");
    EXPECT_EQ(Prompt().Shown()[0].icon, PromptIcon::Question);
    EXPECT_EQ(Prompt().Shown()[0].buttons, PromptButtons::YesNo);

    m_oDialogs.value = L"not there";
    Command(ID_FIND);
    EXPECT_EQ(Prompt().Shown().size(), 3U);
    EXPECT_TRUE(Prompt().ScriptIsFinished());
}

TEST_F(CMainWindow, DoesNothingWithoutASearchText)
{
    Start();
    OpenDatabase(SmallDatabase());
    Command(ID_FIND_NEXT);
    EXPECT_TRUE(Prompt().Shown().empty());
}

// Export.

TEST_F(CMainWindow, ExportsOneTextureUnderItsName)
{
    Start();
    OpenDatabase(SmallDatabase());
    Select(L"leaf");
    m_oDialogs.file = m_oFolder / "picture.bmp";
    Command(ID_EXPORT_SELECTION_CONTEXT);
    ASSERT_EQ(m_oDialogs.files.size(), 1U);
    EXPECT_EQ(m_oDialogs.files[0].proposedName, L"leaf");
    EXPECT_EQ(m_oDialogs.files[0].filter,
              L"Portable Network Graphics (*.png)|*.png|Windows Bitmap (*.bmp)|*.bmp|GIF (*.gif)|*.gif|JPEG "
              L"(*.jpg; *.jpeg)|*.jpg;*.jpeg|TIFF (*.tif)|*.tif|");
    EXPECT_TRUE(std::filesystem::exists(m_oFolder / "picture.bmp"));
    EXPECT_EQ(m_pSettings->ReadString(L"paths", L"last_export_dir"), m_oFolder.Path().native());
}

TEST_F(CMainWindow, ExportsSeveralTexturesIntoAFolder)
{
    Start();
    OpenDatabase(SmallDatabase());
    for (const wchar_t* const name : {L"Brick", L"bark"})
        Tree().SetState(ItemOf(name), TVIS_SELECTED, true);
    m_oDialogs.folder = m_oFolder.Path().native();
    Command(ID_EXPORT_SELECTION);
    for (const char* const name : {"wood.png", "Brick.png", "bark.png"})
        EXPECT_TRUE(std::filesystem::exists(m_oFolder / name)) << name;
    EXPECT_FALSE(std::filesystem::exists(m_oFolder / "leaf.png"));
}

TEST_F(CMainWindow, RefusesAFileTypeWithoutAnEncoder)
{
    Start();
    OpenDatabase(SmallDatabase());
    m_oDialogs.file = m_oFolder / "picture.xyz";
    Command(ID_EXPORT_SELECTION);
    ASSERT_EQ(Prompt().Shown().size(), 1U);
    EXPECT_EQ(Prompt().Shown()[0].text, L"This format is unsupported");
    EXPECT_FALSE(std::filesystem::exists(m_oFolder / "picture.xyz"));
}

TEST_F(CMainWindow, AsksAboutAliasesBeforeItExportsACategory)
{
    Start({PromptAnswer::No});
    OpenDatabase(SmallDatabase());
    Select(L"walls");
    m_oDialogs.folder = m_oFolder.Path().native();
    Command(ID_EXPORT_CATEGORY);
    ASSERT_EQ(Prompt().Shown().size(), 1U);
    EXPECT_EQ(Prompt().Shown()[0].text, L"Do you want to export aliases too?");
    EXPECT_EQ(Prompt().Shown()[0].caption, L"Export 'walls' category");
    EXPECT_EQ(Prompt().Shown()[0].buttons, PromptButtons::YesNoCancel);
    EXPECT_EQ(m_oDialogs.folderTitles, (std::vector<std::wstring>{L"Select folder for export textures to:"}));
    EXPECT_TRUE(std::filesystem::exists(m_oFolder / "wood.png"));
    EXPECT_TRUE(std::filesystem::exists(m_oFolder / "Brick.png"));
    EXPECT_FALSE(std::filesystem::exists(m_oFolder / "bark.png"));
    EXPECT_FALSE(std::filesystem::exists(m_oFolder / "leaf.png"));
}

TEST_F(CMainWindow, StopsTheExportOfEverythingOnCancel)
{
    Start({PromptAnswer::Cancel});
    OpenDatabase(SmallDatabase());
    Command(ID_EXPORT_ALL);
    EXPECT_EQ(Prompt().Shown()[0].caption, L"Export all");
    EXPECT_TRUE(m_oDialogs.folderTitles.empty());
}

TEST_F(CMainWindow, AsksForACacheFirst)
{
    Start();
    for (const UINT id : {ID_EXPORT_SELECTION, ID_FIX_NAME_HASHES, ID_STATISTICS, ID_RELOAD})
        Command(id);
    ASSERT_EQ(Prompt().Shown().size(), 4U);
    for (const PromptBox& box : Prompt().Shown()) {
        EXPECT_EQ(box.text, L"Load the cache first!");
        EXPECT_EQ(box.icon, PromptIcon::Error);
    }
}

// Opening and creating.

TEST_F(CMainWindow, RemembersTheFolderOfAnOpenedList)
{
    Start();
    SmallDatabase().Write(m_oFolder / "textures.txt");
    m_oDialogs.file = m_oFolder / "textures.unc.toc";
    Command(ID_OPEN);
    EXPECT_EQ(m_pWindow->Text(), L"textures.txt - Mavrel 0.7b x64");
    EXPECT_EQ(m_pSettings->ReadString(L"paths", L"last_open"), m_oFolder.Path().native() + L"\\");
    EXPECT_EQ(m_oDialogs.files[0].filter, L"GTA Cache list file (*.txt)|*.txt|All Files (*.*)|*.*|");
    EXPECT_EQ(TreeLines().size(), 8U);
}

TEST_F(CMainWindow, DoesNotRememberTheFolderOfAListFromTheCommandLine)
{
    Start();
    OpenDatabase(SmallDatabase());
    EXPECT_EQ(m_pSettings->ReadString(L"paths", L"last_open"), L"");
}

TEST_F(CMainWindow, ClosesWhenThereIsNothingToOpen)
{
    Start();
    OpenDatabase(SmallDatabase());
    m_pWindow->OpenAndSelect(m_oFolder / "missing.txt");
    ASSERT_EQ(Prompt().Shown().size(), 1U);
    EXPECT_EQ(Prompt().Shown()[0].text,
              L"No caches found to load, lol.\n\nCheck .DAT, .TMB and .TOC files, all of them sholuld be "
              L"located in "
              L"the same folder as TXT.");
    EXPECT_EQ(Pane(0), L"Cache unloaded.");
    EXPECT_EQ(m_pWindow->Text(), L"Mavrel 0.7b x64 build #415");
    EXPECT_FALSE(Menu().IsEnabled(ID_CLOSE));
}

TEST_F(CMainWindow, CreatesAnEmptyDatabaseWithOneCategory)
{
    Start();
    m_oDialogs.file = m_oFolder / "fresh.txt";
    Command(ID_NEW);
    EXPECT_EQ(Pane(0), L"Cache was successfully created.");
    EXPECT_EQ(m_pWindow->Text(), L"fresh.txt - Mavrel 0.7b x64");
    EXPECT_EQ(TreeLines(), (std::vector<std::wstring>{L"Default"}));
    EXPECT_TRUE(std::filesystem::exists(m_oFolder / "fresh.pvr.dat"));
    EXPECT_TRUE(Menu().IsEnabled(ID_CLOSE));
}

TEST_F(CMainWindow, KeepsAnExistingDatabaseUnlessToldOtherwise)
{
    Start({PromptAnswer::No});
    SmallDatabase().Write(m_oFolder / "textures.txt");
    const auto size = std::filesystem::file_size(m_oFolder / "textures.unc.dat");
    m_oDialogs.file = m_oFolder / "textures.txt";
    Command(ID_NEW);
    EXPECT_EQ(Prompt().Shown()[0].proposed, PromptAnswer::No);
    EXPECT_EQ(std::filesystem::file_size(m_oFolder / "textures.unc.dat"), size);
}

// Place.

TEST_F(CMainWindow, StoresItsPlaceWhenItCloses)
{
    Start();
    m_pWindow->Move({40, 50, 840, 650});
    m_pWindow->Send(WM_CLOSE);
    EXPECT_FALSE(m_pWindow->Exists());
    EXPECT_EQ(m_pSettings->ReadInt(L"position", L"left", -1), 40);
    EXPECT_EQ(m_pSettings->ReadInt(L"position", L"top", -1), 50);
    EXPECT_EQ(m_pSettings->ReadInt(L"position", L"right", -1), 840);
    EXPECT_EQ(m_pSettings->ReadInt(L"position", L"bottom", -1), 650);
    Start();
    EXPECT_EQ(m_pWindow->WindowRect().right, 840);
    EXPECT_EQ(m_pWindow->WindowRect().bottom, 650);
}

TEST_F(CMainWindow, IgnoresAPlaceThatIsOnNoScreenOrBeginsAtZero)
{
    const struct {
        int left, top, right, bottom;
    } places[] = {{-9000, -9000, -8000, -8000}, {0, 50, 801, 651}};
    for (const auto& place : places) {
        m_pSettings->WriteInt(L"position", L"left", place.left);
        m_pSettings->WriteInt(L"position", L"top", place.top);
        m_pSettings->WriteInt(L"position", L"right", place.right);
        m_pSettings->WriteInt(L"position", L"bottom", place.bottom);
        Start();
        EXPECT_NE(m_pWindow->WindowRect().bottom, place.bottom);
        m_pWindow.reset();
    }
}

TEST_F(CMainWindow, CannotBecomeSmallerThanItsControls)
{
    Start();
    m_pWindow->Move({40, 50, 140, 150});
    const RECT place = m_pWindow->WindowRect();
    EXPECT_GE(place.right - place.left, 640);
    EXPECT_GE(place.bottom - place.top, 480);
}

}  // namespace
