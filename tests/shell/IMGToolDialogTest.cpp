#include <chrono>
#include <fstream>
#include <gmock/gmock.h>

#include "dialogs/DlgIMGTool.h"
#include "tests/shell/ArchiveDialogFixture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::size_t kSector = 2048;

class IMGToolDialog : public CArchiveDialogTest {
protected:
    void Show(const std::filesystem::path& archive = {})
    {
        CArchiveDialogTest::Show(std::make_unique<CDlgIMGTool>(Parts(), archive), IDC_IMG_LIST);
    }
    /// Opens the archive by the button.
    void OpenByButton(const std::filesystem::path& archive)
    {
        m_oDialogs.file = archive;
        Press(IDC_IMG_OPEN);
    }
    /// A dictionary of two textures, a model, and a name in capitals.
    std::filesystem::path SmallArchive() const
    {
        const auto file = m_oFolder / "models.img";
        WriteVersion2Archive(file, {{.name = "road.txd", .contents = Dictionary({"road", "kerb"})},
                                    {.name = "house.dff", .contents = Model({"road"})},
                                    {.name = "TREE.TXD", .contents = Dictionary({"leaf"}, 0x40)}});
        return file;
    }
    std::vector<std::byte> FileContents(const std::filesystem::path& file) const
    {
        const auto files = FilesOf(file.parent_path());
        const auto found = files.find(file.filename().string());
        return found != files.end() ? found->second : std::vector<std::byte>();
    }
};

}  // namespace

TEST_F(IMGToolDialog, HasTheListTheButtonsAndTheStatusLine)
{
    Show();
    EXPECT_EQ(m_pDialog->Text(), L"IMGTool");
    EXPECT_EQ(TextOf(IDC_IMG_OPEN), L"&Open IMG");
    EXPECT_EQ(TextOf(IDC_IMG_ADD), L"&Add File");
    EXPECT_EQ(TextOf(IDC_IMG_DELETE), L"&Delete");
    EXPECT_EQ(TextOf(IDC_IMG_STATUS), L"Click 'Open IMGs' to begin");
    EXPECT_TRUE(Control(IDC_IMG_PROGRESS).Exists());
    EXPECT_THAT(Columns(), ElementsAre(L"File 220", L"Size 90", L"Offset 90"));
    constexpr LRESULT kStyles = LVS_EX_GRIDLINES | LVS_EX_CHECKBOXES | LVS_EX_FULLROWSELECT;
    EXPECT_EQ(m_oList.Send(LVM_GETEXTENDEDLISTVIEWSTYLE) & kStyles, kStyles);
    EXPECT_THAT(Rows(), IsEmpty());
}

TEST_F(IMGToolDialog, HasTheImportsAsCommandsWithoutButtons)
{
    Show();
    for (const int id : {IDC_IMG_IMPORT_SELECTED, IDC_IMG_IMPORT_CHECKED, IDC_IMG_CHECK_ALL})
        EXPECT_FALSE(Control(id).Exists()) << id;
}

TEST_F(IMGToolDialog, HasTheExportInItsSystemMenu)
{
    Show();
    EXPECT_THAT(SystemCommands(), ElementsAre(L"-", L"Export current file"));
}

TEST_F(IMGToolDialog, AsksForOneArchive)
{
    Show();
    Press(IDC_IMG_OPEN);
    ASSERT_THAT(m_oDialogs.files, SizeIs(1));
    EXPECT_EQ(m_oDialogs.files[0].filter, L"GTA3 Archive (*.img)|*.img|All Files (*.*)|*.*|");
    EXPECT_EQ(m_oDialogs.files[0].defaultExtension, L"img");
    EXPECT_FALSE(m_oDialogs.files[0].several);
    EXPECT_EQ(TextOf(IDC_IMG_STATUS), L"Click 'Open IMGs' to begin") << "the question was cancelled";
}

TEST_F(IMGToolDialog, ListsEveryEntryWithSizeAndPosition)
{
    Show();
    OpenByButton(SmallArchive());
    EXPECT_THAT(Rows(), ElementsAre(L"road.txd|2.00 KB|0x00000800|", L"house.dff|2.00 KB|0x00001000|",
                                    L"TREE.TXD|2.00 KB|0x00001800|"));
    EXPECT_EQ(TextOf(IDC_IMG_STATUS), L"OK");
    EXPECT_THAT(m_oPrompt.Shown(), IsEmpty());
}

TEST_F(IMGToolDialog, ListsEverythingOfAnArchiveWithoutDictionaries)
{
    WriteVersion2Archive(m_oFolder / "models.img", {{.name = "house.dff", .contents = Model({"road"})}});
    Show();
    OpenByButton(m_oFolder / "models.img");
    EXPECT_THAT(Rows(), SizeIs(1));
    EXPECT_THAT(m_oPrompt.Shown(), IsEmpty());
}

TEST_F(IMGToolDialog, ShowsTheSizesThatTheDirectoryClaims)
{
    WriteVersion2Archive(m_oFolder / "sizes.img",
                         {{.name = "none", .offset = 0x1000, .size = 0, .sizeInArchive = 0},
                          {.name = "archived", .size = 0, .sizeInArchive = 5},
                          {.name = "streamed", .size = 3, .sizeInArchive = 5},
                          {.name = "large", .size = 0xFFFF}});
    WriteVersion1Archive(m_oFolder / "huge.img", {{.name = "gigabyte", .offset = 0x80000, .size = 0x80000},
                                                  {.name = "below", .offset = 1, .size = 0x7FFFF}});
    Show();
    OpenByButton(m_oFolder / "sizes.img");
    std::vector<std::wstring> sizes;
    for (int row = 0; row < m_oList.Count(); ++row)
        sizes.push_back(m_oList.ItemText(row, 1));
    EXPECT_THAT(sizes, ElementsAre(L"0 b", L"10.00 KB", L"6.00 KB", L"128.00 MB"));
    EXPECT_EQ(m_oList.ItemText(0, 2), L"0x00800000");
    OpenByButton(m_oFolder / "huge.img");
    EXPECT_THAT(Rows(), ElementsAre(L"gigabyte||0x40000000|", L"below|1024.00 MB|0x00000800|"));
}

TEST_F(IMGToolDialog, EmptiesTheListForWhatCannotBeOpened)
{
    Show();
    OpenByButton(SmallArchive());
    ASSERT_THAT(Rows(), SizeIs(3));
    OpenByButton(m_oFolder / "missing.img");
    EXPECT_THAT(Rows(), IsEmpty());
    EXPECT_EQ(TextOf(IDC_IMG_STATUS), L"OK");
    WriteVersion1Archive(m_oFolder / "old.img", {{.name = "road.txd", .contents = Dictionary({"road"})}});
    std::filesystem::remove(m_oFolder / "old.dir");
    OpenByButton(m_oFolder / "old.img");
    EXPECT_THAT(Rows(), IsEmpty()) << "the directory is missing";
    EXPECT_THAT(m_oPrompt.Shown(), IsEmpty());
}

TEST_F(IMGToolDialog, OpensAnArchiveThatItIsGiven)
{
    Show(SmallArchive());
    EXPECT_THAT(Rows(), SizeIs(3));
    EXPECT_EQ(TextOf(IDC_IMG_STATUS), L"OK");
}

TEST_F(IMGToolDialog, HasButtonsThatDoNothing)
{
    OpenDatabase(EmptyDatabase());
    Show(SmallArchive());
    m_oList.Select(1);
    const auto archive = FilesOf(m_oFolder.Path());
    const auto database = DatabaseFiles();
    for (const int id : {IDC_IMG_ADD, IDC_IMG_DELETE}) {
        EXPECT_TRUE(Control(id).IsEnabled());
        Press(id);
    }
    EXPECT_THAT(m_oDialogs.files, IsEmpty());
    EXPECT_THAT(m_oPrompt.Shown(), IsEmpty());
    EXPECT_THAT(Rows(), SizeIs(3));
    EXPECT_EQ(FilesOf(m_oFolder.Path()), archive);
    EXPECT_EQ(DatabaseFiles(), database);
}

TEST_F(IMGToolDialog, ChecksEveryRowUnlessEveryRowIsChecked)
{
    Show(SmallArchive());
    m_oList.SetChecked(1, true);
    const auto checks = [this] {
        return std::vector<bool>{m_oList.IsChecked(0), m_oList.IsChecked(1), m_oList.IsChecked(2)};
    };
    Press(IDC_IMG_CHECK_ALL);
    EXPECT_THAT(checks(), ElementsAre(true, true, true));
    Press(IDC_IMG_CHECK_ALL);
    EXPECT_THAT(checks(), ElementsAre(false, false, false));
    Press(IDC_IMG_CHECK_ALL);
    EXPECT_THAT(checks(), ElementsAre(true, true, true));
}

TEST_F(IMGToolDialog, ImportsNothingWithoutADatabase)
{
    Show(SmallArchive());
    m_oList.Select(0);
    m_oList.SetChecked(0, true);
    Press(IDC_IMG_IMPORT_SELECTED);
    Press(IDC_IMG_IMPORT_CHECKED);
    EXPECT_THAT(m_oDialogs.sources, IsEmpty());
    EXPECT_THAT(m_oPrompt.Shown(), IsEmpty());
}

TEST_F(IMGToolDialog, ImportsTheSelectedDictionaryStraightFromTheArchive)
{
    OpenDatabase(EmptyDatabase());
    Show(SmallArchive());
    Press(IDC_IMG_IMPORT_SELECTED);
    EXPECT_THAT(m_oDialogs.sources, IsEmpty()) << "no row is selected";
    m_oList.Select(2);
    Press(IDC_IMG_IMPORT_SELECTED);
    ASSERT_THAT(m_oDialogs.sources, SizeIs(1));
    EXPECT_EQ(m_oDialogs.sources[0].title, L"TREE.TXD");
    EXPECT_TRUE(m_oDialogs.sources[0].file.empty());
    ASSERT_NE(m_oDialogs.sources[0].archive, nullptr);
    EXPECT_EQ(m_oDialogs.sources[0].offset, 3 * kSector);
    EXPECT_EQ(m_oDialogs.sources[0].archive->Size(), std::filesystem::file_size(m_oFolder / "models.img"));
    EXPECT_EQ(m_oDialogs.dictionaries[0].second, 0U) << "the first category";
}

TEST_F(IMGToolDialog, SaysThatAnEntryBeyondFourGigabytesCannotBeRead)
{
    WriteVersion1Archive(m_oFolder / "far.img", {{.name = "far.txd", .offset = 0x1FFFFF, .size = 1}});
    OpenDatabase(EmptyDatabase());
    Show(m_oFolder / "far.img");
    EXPECT_THAT(Rows(), ElementsAre(L"far.txd|2.00 KB|0xfffff800|"));
    m_oList.Select(0);
    Press(IDC_IMG_IMPORT_SELECTED);
    EXPECT_THAT(m_oDialogs.sources, IsEmpty());
    ASSERT_THAT(m_oPrompt.Shown(), SizeIs(1));
    EXPECT_EQ(m_oPrompt.Shown()[0].caption, L"Error");
}

TEST_F(IMGToolDialog, ImportsCheckedDictionariesForTheFirstCache)
{
    OpenDatabase(EmptyDatabase());
    Show(SmallArchive());
    m_oList.SetChecked(0, true);
    Press(IDC_IMG_IMPORT_CHECKED);
    EXPECT_THAT(Names(), ElementsAre(L"road", L"kerb"));
    ASSERT_THAT(m_pHost->records, SizeIs(2));
    EXPECT_EQ(m_pHost->records[0].targetCache, 0);
    EXPECT_EQ(m_pHost->records[0].cacheGiven, 0U);
}

// Export.

TEST_F(IMGToolDialog, OffersTheEntrysNameAndExtensionForExport)
{
    Show(SmallArchive());
    ChooseSystemCommand(ID_IMG_EXPORT_CURRENT);
    EXPECT_THAT(m_oDialogs.files, IsEmpty()) << "no row is selected";
    m_oList.Select(2);
    ChooseSystemCommand(ID_IMG_EXPORT_CURRENT);
    ASSERT_THAT(m_oDialogs.files, SizeIs(1));
    EXPECT_EQ(m_oDialogs.files[0].filter, L"TXD file|*.txd|All files|*.*|");
    EXPECT_EQ(m_oDialogs.files[0].defaultExtension, L"png");
    EXPECT_EQ(m_oDialogs.files[0].proposedName, L"TREE.TXD");
    EXPECT_FALSE(m_oDialogs.files[0].asksToReplace) << "an existing file is not touched";
}

TEST_F(IMGToolDialog, ExportsTheBytesOfTheEntry)
{
    const auto archive = SmallArchive();
    Show(archive);
    m_oList.Select(1);
    m_oDialogs.file = m_oFolder / "house.dff";
    ChooseSystemCommand(ID_IMG_EXPORT_CURRENT);
    const auto all = FileContents(archive);
    const std::vector<std::byte> entry(all.begin() + 2 * kSector, all.begin() + 3 * kSector);
    EXPECT_EQ(FileContents(m_oFolder / "house.dff"), entry);
}

TEST_F(IMGToolDialog, LeavesAnExistingFileAndSaysNothing)
{
    Show(SmallArchive());
    m_oList.Select(1);
    std::ofstream(m_oFolder / "house.dff") << "mine";
    m_oDialogs.file = m_oFolder / "house.dff";
    ChooseSystemCommand(ID_IMG_EXPORT_CURRENT);
    EXPECT_EQ(FileContents(m_oFolder / "house.dff"), BytesOf("mine"));
    m_oDialogs.file = m_oFolder / "no such folder" / "house.dff";
    ChooseSystemCommand(ID_IMG_EXPORT_CURRENT);
    EXPECT_THAT(m_oPrompt.Shown(), IsEmpty());
}

TEST_F(IMGToolDialog, ProposesNoFolderNorDevice)
{
    WriteVersion2Archive(m_oFolder / "odd.img", {{.name = "..\\..\\boot.ini", .contents = ImgBytes(8)},
                                                 {.name = "C:secret.txd", .contents = ImgBytes(8)},
                                                 {.name = "con.txd", .contents = ImgBytes(8)}});
    Show(m_oFolder / "odd.img");
    for (int row = 0; row < 3; ++row) {
        m_oList.Select(row);
        ChooseSystemCommand(ID_IMG_EXPORT_CURRENT);
        const std::wstring& name = m_oDialogs.files.back().proposedName;
        EXPECT_EQ(name.find_first_of(L"\\/:"), std::wstring::npos) << row;
        EXPECT_FALSE(name.starts_with(L"con.")) << row;
        EXPECT_FALSE(name.empty()) << row;
    }
}

TEST_F(IMGToolDialog, WritesNoFileForAnEntryThatIsCutOff)
{
    WriteVersion2Archive(m_oFolder / "cut.img",
                         {{.name = "road.txd", .contents = Dictionary({"road"}), .size = 9}});
    Show(m_oFolder / "cut.img");
    m_oList.Select(0);
    m_oDialogs.file = m_oFolder / "road.txd";
    ChooseSystemCommand(ID_IMG_EXPORT_CURRENT);
    EXPECT_FALSE(std::filesystem::exists(m_oFolder / "road.txd"));
}

// The window.

TEST_F(IMGToolDialog, ClosesWithEscAndWithItsCross)
{
    Show();
    Press(IDCANCEL);
    EXPECT_FALSE(m_pDialog->Exists());
    Show();
    m_pDialog->Send(WM_CLOSE);
    EXPECT_FALSE(m_pDialog->Exists());
}

TEST_F(IMGToolDialog, GivesTheListTheRoomThatTheWindowGets)
{
    Show();
    const auto size = [](const CWindow& window) {
        const RECT rect = window.WindowRect();
        return SIZE{rect.right - rect.left, rect.bottom - rect.top};
    };
    const SIZE list = size(m_oList);
    const SIZE button = size(Control(IDC_IMG_OPEN));
    RECT place = m_pDialog->WindowRect();
    place.right += 100;
    place.bottom += 50;
    m_pDialog->Move(place);
    EXPECT_EQ(size(m_oList).cx, list.cx + 100);
    EXPECT_EQ(size(m_oList).cy, list.cy + 50);
    EXPECT_EQ(size(Control(IDC_IMG_OPEN)).cx, button.cx);
    MINMAXINFO limits{};
    m_pDialog->SendPointer(WM_GETMINMAXINFO, 0, &limits);
    EXPECT_EQ(limits.ptMinTrackSize.x, size(*m_pDialog).cx - 100);
    EXPECT_EQ(limits.ptMinTrackSize.y, size(*m_pDialog).cy - 50);
}

TEST_F(IMGToolDialog, ListsAnArchiveOfTwentyThousandEntries)
{
    constexpr int kEntries = 20000;
    WriteVersion2Archive(m_oFolder / "large.img",
                         std::vector<ImgEntry>(kEntries, {.name = "road.txd", .offset = 1, .size = 1}));
    const auto started = std::chrono::steady_clock::now();
    Show(m_oFolder / "large.img");
    const auto taken = std::chrono::steady_clock::now() - started;
    RecordProperty("milliseconds",
                   static_cast<int>(std::chrono::duration_cast<std::chrono::milliseconds>(taken).count()));
    ASSERT_EQ(m_oList.Count(), kEntries);
    EXPECT_EQ(m_oList.ItemText(kEntries - 1, 0), L"road.txd");
    EXPECT_EQ(m_oList.ItemText(kEntries - 1, 2), L"0x00000800");
}

// Damaged archives.

TEST_F(IMGToolDialog, ListsWhatIsThereOfATruncatedArchive)
{
    const auto whole = Version2Archive(
        {{.name = "a.txd", .contents = ImgBytes(8)}, {.name = "b.txd", .contents = ImgBytes(8)}});
    Show();
    // Around the magic, the count and each directory entry; every single length is tested below the window.
    for (const std::size_t length : {0U, 3U, 4U, 7U, 8U, 9U, 39U, 40U, 41U, 71U, 72U, 73U}) {
        WriteFiles(m_oFolder.Path(),
                   {{"cut.img", {whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)}}});
        OpenByButton(m_oFolder / "cut.img");
        EXPECT_LE(m_oList.Count(), 2) << length;
        EXPECT_EQ(TextOf(IDC_IMG_STATUS), L"OK") << length;
        // Another archive is opened, so that this one can be written again.
        OpenByButton(m_oFolder / "missing.img");
    }
    EXPECT_THAT(m_oPrompt.Shown(), IsEmpty());
}

TEST_F(IMGToolDialog, ListsNoMoreEntriesThanTheFileHolds)
{
    WriteVersion2Archive(m_oFolder / "claims.img", {{.name = "a.txd", .contents = ImgBytes(8)}},
                         {.count = 0xFFFFFFFF});
    Show(m_oFolder / "claims.img");
    EXPECT_EQ(m_oList.Count(), static_cast<int>((2 * kSector - 8) / 32));
    EXPECT_EQ(m_oList.ItemText(0, 0), L"a.txd");
}

// The main window's command.

namespace {

class IMGToolCommand : public CMainWindowTest {};

}  // namespace

TEST_F(IMGToolCommand, NeedsNoDatabase)
{
    Start();
    EXPECT_TRUE(Menu().IsEnabled(ID_IMG_TOOL));
    Command(ID_IMG_TOOL);
    OpenDatabase(SmallDatabase());
    Command(ID_IMG_TOOL);
    EXPECT_THAT(m_oDialogs.archives, ElementsAre(testing::Pair(std::filesystem::path(), false),
                                                 testing::Pair(std::filesystem::path(), true)));
}
