#include "base/Windows.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <gmock/gmock.h>
#include <shellapi.h>
#include <shlobj.h>

#include "image/ImageFile.h"
#include "tests/shell/MainWindowFixture.h"

namespace {

using testing::ElementsAre;

class CImportCommands : public CMainWindowTest {
protected:
    void StartWithDatabase(std::deque<PromptAnswer> answers = {})
    {
        m_pSettings->WriteInt(L"global", L"game", 1);
        m_pSettings->WriteInt(L"global", L"enable_img_hash", 0);
        m_oPlugins.Discover(std::filesystem::path(MAVREL_DXT_PLUGIN).parent_path(), m_oLoading);
        m_oPlugins.BindFromSettings(*m_pSettings);
        Start(std::move(answers));
        OpenDatabase(SmallDatabase());
    }
    std::filesystem::path Picture(const std::string& name, std::uint8_t shade) const
    {
        auto bitmap = CBitmap::Create(8, 8).value();
        std::ranges::fill(bitmap.Pixels(), shade);
        const std::filesystem::path file = m_oFolder / name;
        EXPECT_TRUE(
            SaveImageFile(file, bitmap, name.ends_with(".bmp") ? ImageFormat::Bmp : ImageFormat::Png));
        return file;
    }
    std::wstring Focused() const { return Tree().ItemText(Tree().Caret()); }
    /// The raster format of the focused texture, as the status bar names it.
    std::wstring FormatIn(int tab) const
    {
        ClickTab(tab);
        return Pane(6);
    }
    /// Files dropped at a point of the window, as the shell sends them.
    void Drop(const std::vector<std::filesystem::path>& files, POINT place) const
    {
        std::wstring names;
        for (const auto& file : files)
            names += file.native() + L'\0';
        names += L'\0';
        const std::size_t size = sizeof(DROPFILES) + names.size() * sizeof(wchar_t);
        const HGLOBAL memory = ::GlobalAlloc(GHND, size);
        auto* header = static_cast<DROPFILES*>(::GlobalLock(memory));
        header->pFiles = sizeof(DROPFILES);
        header->pt = place;
        header->fWide = TRUE;
        std::memcpy(header + 1, names.data(), names.size() * sizeof(wchar_t));
        ::GlobalUnlock(memory);
        m_pWindow->Send(WM_DROPFILES, reinterpret_cast<WPARAM>(memory));
    }
    POINT PlaceOf(const std::wstring& item) const
    {
        const RECT rect = Tree().ItemRect(ItemOf(item));
        POINT place = {rect.left + 2, (rect.top + rect.bottom) / 2};
        ::MapWindowPoints(Tree().Handle(), m_pWindow->Handle(), &place, 1);
        return place;
    }

    CScriptedPrompt m_oLoading;
};

TEST_F(CImportCommands, AskForACacheFirst)
{
    Start();
    for (const UINT id :
         {ID_IMPORT_ALPHA, ID_IMPORT_OPAQUE, ID_IMPORT_UNC_ALPHA, ID_IMPORT_UNC_OPAQUE, ID_IMPORT_RGBA8888}) {
        Command(id);
        EXPECT_EQ(Prompt().Shown().back().text, L"Load the cache first!");
        EXPECT_EQ(Prompt().Shown().back().icon, PromptIcon::Error);
    }
    EXPECT_TRUE(m_oDialogs.files.empty());
}

TEST_F(CImportCommands, ShowADialogForManyPictures)
{
    StartWithDatabase();
    m_pSettings->WriteString(L"paths", L"last_import", L"C:\\pictures");
    Command(ID_IMPORT_ALPHA);
    Command(ID_IMPORT_UNC_OPAQUE);
    ASSERT_EQ(m_oDialogs.files.size(), 2U);
    const FileRequest& request = m_oDialogs.files[0];
    EXPECT_EQ(request.title, L"Import With Alpha");
    EXPECT_EQ(request.defaultExtension, L"png");
    EXPECT_EQ(request.folder, L"C:\\pictures");
    EXPECT_TRUE(request.several);
    EXPECT_EQ(request.filter,
              L"All Supported Formats|*.png;*.jpg;*.bmp;*.gif;*.jpeg;*.tif|Portable Network Graphics "
              L"(*.png)|*.png|Windows Bitmap (*.bmp)|*.bmp|GIF (*.gif)|*.gif|JPEG (*.jpeg; "
              L"*.jpg)|*.jpeg;*.jpg|TIFF (*.tif)|*.tif|");
    EXPECT_EQ(m_oDialogs.files[1].title, L"Import Without Alpha");
}

TEST_F(CImportCommands, PutPicturesIntoTheCategoryOfTheFocusedItemAndSelectTheLast)
{
    StartWithDatabase();
    Select(L"leaf");
    m_oDialogs.chosenFiles = {Picture("moss.png", 0x30), Picture("fern.png", 0x40)};
    Command(ID_IMPORT_RGBA8888);
    EXPECT_THAT(TreeLines(), ElementsAre(L"walls", L"  bark", L"  Brick", L"  wood", L"plants", L"  fern",
                                         L"  leaf", L"  moss", L"Unknown", L"  lost"));
    EXPECT_EQ(Focused(), L"fern");
    EXPECT_EQ(Tree().Data(ItemOf(L"fern")), 6);
    EXPECT_EQ(m_pSettings->ReadString(L"paths", L"last_import"),
              m_oDialogs.chosenFiles.front().parent_path().native());
}

TEST_F(CImportCommands, StoreWhatEachCommandAsksFor)
{
    StartWithDatabase();
    Select(L"walls");
    struct Row {
        UINT id;
        const char* file;
        const wchar_t* inDxt;
        const wchar_t* inUnc;
    };
    constexpr std::array kRows = {
        Row{ID_IMPORT_ALPHA, "a.png", L"DXT5", L"RGBA 4444"},
        Row{ID_IMPORT_OPAQUE, "b.png", L"DXT1", L"RGBA 565"},
        Row{ID_IMPORT_UNC_ALPHA, "c.png", L"RGBA 4444", L"RGBA 4444"},
        Row{ID_IMPORT_UNC_OPAQUE, "d.png", L"RGBA 565", L"RGBA 565"},
        Row{ID_IMPORT_RGBA8888, "e.png", L"RGBA 8888", L"RGBA 8888"},
    };
    std::uint8_t shade = 0x10;
    for (const Row& row : kRows) {
        m_oDialogs.file = Picture(row.file, shade += 0x10);
        Command(row.id);
        EXPECT_EQ(FormatIn(0), row.inDxt) << row.file;
        EXPECT_EQ(FormatIn(3), row.inUnc) << row.file;
    }
    EXPECT_TRUE(Prompt().Shown().empty());
}

TEST_F(CImportCommands, AskAboutTheSecondFileOfOneName)
{
    StartWithDatabase({PromptAnswer::Yes, PromptAnswer::No});
    m_oDialogs.chosenFiles = {Picture("a.png", 0x30), Picture("a.bmp", 0x40)};
    Command(ID_IMPORT_RGBA8888);
    ASSERT_EQ(Prompt().Shown().size(), 2U);
    EXPECT_EQ(Prompt().Shown()[0].text, L"Texture 'a' already exists. Would you like to replace it?");
    EXPECT_EQ(Prompt().Shown()[0].caption, L"Error");
    EXPECT_EQ(Prompt().Shown()[0].icon, PromptIcon::Warning);
    EXPECT_EQ(Prompt().Shown()[0].buttons, PromptButtons::YesNoCancel);
    EXPECT_EQ(Prompt().Shown()[1].text, L"Yes for all?\n\nChoose 'No' if you want decide ");
    EXPECT_EQ(Prompt().Shown()[1].icon, PromptIcon::Question);
    EXPECT_EQ(Prompt().Shown()[1].buttons, PromptButtons::YesNo);
    EXPECT_EQ(Focused(), L"a");
}

TEST_F(CImportCommands, KeepTheSelectionWhenNothingWasImported)
{
    StartWithDatabase({PromptAnswer::Cancel});
    Select(L"leaf");
    m_oDialogs.file = Picture("wood.png", 0x30);
    Command(ID_IMPORT_ALPHA);
    EXPECT_EQ(Focused(), L"leaf");
}

TEST_F(CImportCommands, GoOnAfterAPictureThatCannotBeRead)
{
    StartWithDatabase({PromptAnswer::Yes});
    m_oDialogs.chosenFiles = {m_oFolder / "missing.png", Picture("b.png", 0x40)};
    Command(ID_IMPORT_RGBA8888);
    EXPECT_EQ(Prompt().Shown()[0].text, L"Unknown import error\nContinue?");
    EXPECT_EQ(Focused(), L"b");
}

// ---- Dropped files ----

TEST_F(CImportCommands, TakeDroppedPicturesIntoTheCategoryBelowThem)
{
    StartWithDatabase({PromptAnswer::Yes});
    Drop({Picture("moss.png", 0x30)}, PlaceOf(L"plants"));
    ASSERT_EQ(Prompt().Shown().size(), 1U);
    EXPECT_EQ(Prompt().Shown()[0].text, L"Pictures to import: 1\n\nDo you want to keep their alpha channel?");
    EXPECT_EQ(TreeLines()[6], L"  moss");
    EXPECT_EQ(FormatIn(0), L"DXT5");
}

TEST_F(CImportCommands, ImportNothingWhenTheDropIsCancelled)
{
    StartWithDatabase({PromptAnswer::Cancel});
    Drop({Picture("moss.png", 0x30)}, {1, 1});
    EXPECT_EQ(TreeLines().size(), 8U);
}

TEST_F(CImportCommands, OpenADroppedListOrCacheFile)
{
    Start();
    SmallDatabase().Write(m_oFolder / "dropped.txt");
    Drop({m_oFolder / "dropped.txt"}, {1, 1});
    EXPECT_EQ(m_pWindow->Text(), L"dropped.txt - Mavrel 0.7b x64");
    Command(ID_CLOSE);
    Drop({m_oFolder / "dropped.unc.dat"}, {1, 1});
    EXPECT_EQ(m_pWindow->Text(), L"dropped.txt - Mavrel 0.7b x64");
    EXPECT_EQ(Focused(), L"wood");
}

TEST_F(CImportCommands, OpenDroppedDictionariesForTheCategoryBelowThem)
{
    StartWithDatabase();
    Drop({m_oFolder / "a.txd", m_oFolder / "song.mp3", m_oFolder / "b.TXD"}, PlaceOf(L"plants"));
    EXPECT_THAT(m_oDialogs.dictionaries,
                ElementsAre(std::pair(std::filesystem::path(m_oFolder / "a.txd"), 1U),
                            std::pair(std::filesystem::path(m_oFolder / "b.TXD"), 1U)));
}

TEST_F(CImportCommands, AskForACacheBeforeADroppedDictionary)
{
    Start();
    Drop({m_oFolder / "a.txd"}, {1, 1});
    EXPECT_EQ(Prompt().Shown().back().text, L"Load the cache first!");
    EXPECT_TRUE(m_oDialogs.dictionaries.empty());
}

TEST_F(CImportCommands, CheckADroppedModel)
{
    Start();
    Drop({m_oFolder / "house.dff"}, {1, 1});
    EXPECT_THAT(m_oDialogs.models,
                ElementsAre(std::pair(std::filesystem::path(m_oFolder / "house.dff"), false)));
}

TEST_F(CImportCommands, RefuseDroppedFilesOfOtherTypes)
{
    StartWithDatabase();
    Drop({m_oFolder / "song.mp3"}, {1, 1});
    EXPECT_EQ(Prompt().Shown().back().text, L"This format is unsupported");
    EXPECT_EQ(TreeLines().size(), 8U);
}

// ---- Recent files ----

TEST_F(CImportCommands, ListDatabasesThatWereOpenNewestFirst)
{
    Start();
    EXPECT_EQ(Menu().Text(ID_RECENT_NONE), L"(none)");
    SmallDatabase().Write(m_oFolder / "one.txt");
    SmallDatabase().Write(m_oFolder / "a&b.txt");
    m_pWindow->OpenAndSelect(m_oFolder / "one.txt");
    m_pWindow->OpenAndSelect(m_oFolder / "a&b.txt");
    m_pWindow->OpenAndSelect(m_oFolder / "ONE.txt");
    EXPECT_EQ(Menu().Text(ID_RECENT_FIRST), L"&1 " + (m_oFolder / "ONE.txt").native());
    EXPECT_EQ(Menu().Text(ID_RECENT_FIRST + 1), L"&2 " + (m_oFolder / "a&&b.txt").native());
    EXPECT_EQ(Menu().Text(ID_RECENT_FIRST + 2), L"");
    Command(ID_RECENT_FIRST + 1);
    EXPECT_EQ(m_pWindow->Text(), L"a&b.txt - Mavrel 0.7b x64");
}

TEST_F(CImportCommands, KeepARecentDatabaseThatAnotherProgramHolds)
{
    SmallDatabase().Write(m_oFolder / "held.txt");
    m_pSettings->WriteString(L"recent", L"1", (m_oFolder / "held.txt").native());
    Start();
    const auto held = DiskFileSystem().Open(m_oFolder / "held.txt", OpenMode::Exclusive);
    ASSERT_NE(held, nullptr);
    Command(ID_RECENT_FIRST);
    EXPECT_TRUE(TreeLines().empty());
    EXPECT_EQ(Menu().Text(ID_RECENT_FIRST), L"&1 " + (m_oFolder / "held.txt").native());
}

TEST_F(CImportCommands, ForgetARecentDatabaseThatIsGone)
{
    m_pSettings->WriteString(L"recent", L"1", (m_oFolder / "gone.txt").native());
    Start();
    EXPECT_EQ(Menu().Text(ID_RECENT_FIRST), L"&1 " + (m_oFolder / "gone.txt").native());
    Command(ID_RECENT_FIRST);
    EXPECT_EQ(Menu().Text(ID_RECENT_NONE), L"(none)");
    EXPECT_FALSE(Menu().IsEnabled(ID_RECENT_NONE));
    EXPECT_EQ(m_pSettings->ReadString(L"recent", L"1"), L"");
}

}  // namespace
