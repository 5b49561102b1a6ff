// The dialogs over IMG archives in the real program; the same steps by the command line give the same files,
// byte for byte.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/resource.h"
#include "tests/e2e/DatabaseFiles.h"
#include "tests/e2e/Mavrel.h"
#include "tests/e2e/SampleDatabase.h"
#include "tests/e2e/driver/Drop.h"
#include "tests/e2e/driver/ListControl.h"
#include "tests/e2e/driver/Wait.h"
#include "tests/e2e/driver/WindowLookup.h"
#include "tests/support/ImgFiles.h"
#include "tests/support/RenderWareFiles.h"

namespace {

using testing::Contains;
using testing::ElementsAre;

/// A square whose every byte differs from its neighbours.
RwFile::Bytes Native(const std::string& name, std::uint16_t side, std::uint8_t depth)
{
    const std::size_t bytes = std::size_t{side} * side * depth / 8;
    return RwFile::PCNative({.name = name,
                             .rasterFormat = depth == 32 ? 0x500U : 0x200U,
                             .width = side,
                             .height = side,
                             .depth = depth,
                             .pixels = RwFile::Counting(bytes)});
}

/// A dialog of the program's own over an archive.
class CArchiveWindow {
public:
    CArchiveWindow(const CMavrel& mavrel, int command, const std::wstring& caption)
        : m_rMavrel(mavrel), m_oDialog(Opened(mavrel, command, caption))
    {
    }
    explicit CArchiveWindow(const CMavrel& mavrel, const COpenDialog& dialog)
        : m_rMavrel(mavrel), m_oDialog(dialog)
    {
    }

    void Press(int id) const { PostCommand(m_oDialog.Handle(), id); }
    void OpenFiles(int button, const std::vector<std::filesystem::path>& files) const
    {
        Press(button);
        ChooseFiles(WaitForFileDialog(m_rMavrel.Id()), files);
    }
    CListControl List(int id) const { return CListControl(::GetDlgItem(m_oDialog.Handle(), id)); }
    /// The status once the dialog has done its work: the rows come last.
    void WaitForStatus(int id, const std::wstring& text) const
    {
        const HWND dialog = m_oDialog.Handle();
        WaitUntil("the status of the dialog", [&] {
            return TextOf(::GetDlgItem(dialog, IDCANCEL)) == L"&Close" &&
                   TextOf(::GetDlgItem(dialog, id)) == text;
        });
    }
    void ExportCurrentTo(const std::filesystem::path& file) const
    {
        ::PostMessageW(m_oDialog.Handle(), WM_SYSCOMMAND, ID_IMG_EXPORT_CURRENT, 0);
        ChooseFiles(WaitForFileDialog(m_rMavrel.Id()), {file});
        WaitUntil("the file to be there", [&file] { return std::filesystem::exists(file); });
    }
    void Close() const { m_oDialog.Press(IDCANCEL); }

private:
    static COpenDialog Opened(const CMavrel& mavrel, int command, const std::wstring& caption)
    {
        mavrel.Command(command);
        return WaitForDialog(mavrel.Id(), caption);
    }

    const CMavrel& m_rMavrel;
    COpenDialog m_oDialog;
};

class ArchiveJourney : public testing::Test {
protected:
    ArchiveJourney()
    {
        WriteVersion2Archive(
            Archive(), {{.name = "road.txd",
                         .contents = RwFile::Dictionary(
                             {Native("asphalt", 64, 32), Native("kerb", 32, 16), Native("leaf", 32, 32)})},
                        {.name = "house.dff", .contents = RwFile::Model({{.textures = {"brick", "kerb"}}})},
                        {.name = "SIGNS.TXD", .contents = RwFile::Dictionary({Native("neon", 16, 16)})}});
        WriteVersion1Archive(
            OldArchive(),
            {{.name = "shop.dff", .contents = RwFile::Model({{.textures = {"asphalt", "wall"}}})}});
    }

    // Beside the program, where its file dialogs start when they can choose.
    std::filesystem::path Archive() const { return m_oInstallation.Program().parent_path() / "new.img"; }
    std::filesystem::path OldArchive() const { return m_oInstallation.Program().parent_path() / "old.img"; }
    void ExpectSameDatabases() const
    {
        ExpectSameFiles(FilesOf(m_oByHand.List().parent_path()), FilesOf(m_oByCommands.List().parent_path()));
    }
    std::wstring ListOfCommands() const { return m_oByCommands.List().wstring(); }

    CInstallation m_oInstallation;
    CSampleDatabase m_oByHand;
    CSampleDatabase m_oByCommands;
};

TEST_F(ArchiveJourney, ImportsCheckedDictionariesAsTheCommandLineDoes)
{
    const CMavrel mavrel(m_oInstallation, m_oByHand.AsArgument());
    mavrel.WaitUntilDrawn(L"brick");
    const CArchiveWindow window(mavrel, ID_IMPORT_IMG, L"Import IMG");
    window.OpenFiles(IDC_IMG_OPEN, {Archive()});
    window.WaitForStatus(IDC_IMG_STATUS, L"OK");
    EXPECT_THAT(window.List(IDC_IMG_LIST).Rows(3),
                ElementsAre(L"road.txd|24.00 KB|0x00000800", L"SIGNS.TXD|2.00 KB|0x00007000"));
    window.Press(IDC_IMG_CHECK_ALL);
    window.Press(IDC_IMG_IMPORT_CHECKED);
    // A texture of the name "leaf" is there already.
    window.WaitForStatus(IDC_IMG_STATUS, L"Imported: 3, skipped: 1, failed: 0");
    window.Close();
    EXPECT_THAT(mavrel.Tree().Texts(),
                ElementsAre(L"Default", L"  asphalt", L"  brick", L"  brick_old", L"  kerb", L"  leaf",
                            L"  neon", L"  wall", L"Signs", L"  sign"));
    mavrel.Run(ID_CLOSE);

    RunCommandLine({L"img", L"import", ListOfCommands(), Archive().wstring()});
    ExpectSameDatabases();
}

TEST_F(ArchiveJourney, ImportsTheSelectedDictionaryThroughItsOwnDialog)
{
    const CMavrel mavrel(m_oInstallation, m_oByHand.AsArgument());
    mavrel.WaitUntilDrawn(L"brick");
    const CArchiveWindow window(mavrel, ID_IMPORT_IMG, L"Import IMG");
    window.OpenFiles(IDC_IMG_OPEN, {Archive()});
    window.WaitForStatus(IDC_IMG_STATUS, L"OK");
    window.List(IDC_IMG_LIST).Select(1);
    window.Press(IDC_IMG_IMPORT_SELECTED);
    const auto dictionary = WaitForDialog(mavrel.Id(), L"Import TXD - 'SIGNS.TXD'");
    EXPECT_THAT(CListControl(::GetDlgItem(dictionary.Handle(), IDC_TXD_LIST)).Rows(1),
                ElementsAre(L"x neon"));
    PostCommand(dictionary.Handle(), IDOK);
    mavrel.Answer(L"All textures imported.", IDOK);
    mavrel.WaitForItem(L"  neon");
    WaitForDialog(mavrel.Id(), L"Import IMG");
    window.Close();
    mavrel.Run(ID_CLOSE);

    RunCommandLine({L"img", L"import", ListOfCommands(), Archive().wstring(), L"--entry", L"SIGNS.TXD"});
    ExpectSameDatabases();
}

TEST_F(ArchiveJourney, ListsADroppedArchiveAndSavesItsEntriesAsTheCommandLineDoes)
{
    const CTemporaryFolder byHand;
    const CTemporaryFolder byCommands;
    const CMavrel mavrel(m_oInstallation, {});
    DropFiles(mavrel.Window(), {Archive()}, {10, 10});
    const CArchiveWindow window(mavrel, WaitForDialog(mavrel.Id(), L"IMGTool"));
    window.WaitForStatus(IDC_IMG_STATUS, L"OK");
    EXPECT_THAT(window.List(IDC_IMG_LIST).Rows(3),
                ElementsAre(L"road.txd|24.00 KB|0x00000800", L"house.dff|2.00 KB|0x00006800",
                            L"SIGNS.TXD|2.00 KB|0x00007000"));
    window.List(IDC_IMG_LIST).Select(0);
    window.ExportCurrentTo(byHand / "road.txd");
    window.List(IDC_IMG_LIST).Select(1);
    window.ExportCurrentTo(byHand / "house.dff");
    window.OpenFiles(IDC_IMG_OPEN, {OldArchive()});
    WaitUntil("the other archive", [&] { return window.List(IDC_IMG_LIST).Count() == 1; });
    window.List(IDC_IMG_LIST).Select(0);
    window.ExportCurrentTo(byHand / "shop.dff");
    window.Close();

    RunCommandLine({L"img", L"extract", Archive().wstring(), L"road.txd", L"house.dff", L"--out",
                    byCommands.Path().wstring()});
    RunCommandLine(
        {L"img", L"extract", OldArchive().wstring(), L"shop.dff", L"--out", byCommands.Path().wstring()});
    ExpectSameFiles(FilesOf(byHand.Path()), FilesOf(byCommands.Path()));
}

TEST_F(ArchiveJourney, DeletesUnusedTexturesAsTheCommandLineDoes)
{
    const CMavrel mavrel(m_oInstallation, m_oByHand.AsArgument());
    mavrel.WaitUntilDrawn(L"brick");
    const CArchiveWindow window(mavrel, ID_IMG_SYNCHRONIZER, L"Synchronize with IMG");
    window.OpenFiles(IDC_SYNC_OPEN, {Archive(), OldArchive()});
    // 32x32 and 16x16 in the caches DXT and UNC, each with its header and all its levels.
    WaitUntil("the unused textures", [&] {
        return TextOf(::GetDlgItem(WaitForDialog(mavrel.Id(), L"Synchronize with IMG").Handle(),
                                   IDC_SYNC_STATUS))
            .starts_with(L"3 to delete (");
    });
    EXPECT_THAT(window.List(IDC_SYNC_LIST).Rows(2),
                ElementsAre(L"brick|", L"x leaf|", L"wall|", L"x sign|", L"x brick_old|Alias"));
    window.Press(IDC_SYNC_DELETE);
    mavrel.Answer(L"Delete 3 textures?\n\nModels read: 2\nModels skipped: 0\nArchives not opened: 0", IDYES);
    window.WaitForStatus(IDC_SYNC_STATUS, L"3 deleted");
    EXPECT_THAT(window.List(IDC_SYNC_LIST).Rows(1), ElementsAre(L"brick", L"wall"));
    window.Close();
    EXPECT_THAT(mavrel.Tree().Texts(), ElementsAre(L"Default", L"  brick", L"  wall", L"Signs"));
    mavrel.Run(ID_CLOSE);

    RunCommandLine({L"--yes", L"img", L"sync", ListOfCommands(), Archive().wstring(), OldArchive().wstring(),
                    L"--delete"});
    ExpectSameDatabases();
    EXPECT_NO_THROW(RunCommandLine({L"check", m_oByHand.List().wstring()}));
}

}  // namespace
