// A person makes aliases of duplicate names and pictures in the optimizer's dialog; the same by the command
// line gives the same files, byte for byte.

#include <gtest/gtest.h>

#include "app/resource.h"
#include "tests/e2e/DatabaseFiles.h"
#include "tests/e2e/Mavrel.h"
#include "tests/e2e/SampleDatabase.h"
#include "tests/e2e/driver/Wait.h"
#include "tests/e2e/driver/WindowLookup.h"
#include "tests/support/DatabaseBuilder.h"

namespace {

// Two of a name, two of a picture, one that is nearly the same, and aliases of some of them.
CDatabaseBuilder Duplicates()
{
    BuiltRaster nearly = {
        .width = 4, .heightAndMips = 4, .pixels = std::vector<std::byte>(64, std::byte{0x31})};
    nearly.pixels[5] = std::byte{0x32};
    CDatabaseBuilder builder;
    builder.Category("cat=0 name=Default onfoot=0 slow=0 fast=0 defaultstream=0");
    builder.Texture("road").Picture("dxt", 0x11, 8, 8).Picture("unc", 0x21, 8, 8);
    builder.Texture("wall").Picture("dxt", 0x12).Picture("unc", 0x31);
    builder.Alias("track", "Road").Texture("Road").Picture("dxt", 0x13).Picture("unc", 0x23);
    builder.Texture("wall2").Picture("dxt", 0x14).Picture("unc", 0x31).Alias("fence", "wall2");
    builder.Texture("wall3").Picture("dxt", 0x15);
    builder.Raster("unc", nearly).Thumbnail("unc", {.pixels = std::vector<std::byte>(4, std::byte{0x31})});
    builder.Texture("sand").Picture("dxt", 0x16, 2, 2).Picture("unc", 0x26, 2, 2);
    return builder;
}

class OptimizeJourney : public testing::Test {
protected:
    OptimizeJourney()
    {
        Duplicates().Write(m_oByHand / "textures.txt");
        Duplicates().Write(m_oByCommands / "textures.txt");
    }

    static HWND Control(const COpenDialog& dialog, int id) { return ::GetDlgItem(dialog.Handle(), id); }
    static void Run(const COpenDialog& dialog, const std::wstring& result)
    {
        ::PostMessageW(Control(dialog, IDOK), BM_CLICK, 0, 0);
        WaitUntil("the result", [&] {
            return ::TextOf(Control(dialog, IDC_OPTIMIZE_STATUS)) == result &&
                   ::IsWindowEnabled(Control(dialog, IDOK));
        });
    }
    static void Choose(const COpenDialog& dialog, int list, WPARAM item)
    {
        ::SendMessageW(Control(dialog, list), CB_SETCURSEL, item, 0);
    }
    void RunCommands(const std::vector<std::wstring>& options) const
    {
        std::vector<std::wstring> words = {L"optimize", (m_oByCommands / "textures.txt").wstring()};
        words.insert(words.end(), options.begin(), options.end());
        RunCommandLine(words);
    }

    CTemporaryFolder m_oByHand;
    CTemporaryFolder m_oByCommands;
    CInstallation m_oInstallation;
};

}  // namespace

TEST_F(OptimizeJourney, MakesAliasesAsTheCommandLineDoes)
{
    {
        const CMavrel mavrel(m_oInstallation, {(m_oByHand / "textures.txt").wstring()});
        mavrel.WaitForItem(L"  wall3");
        mavrel.Command(ID_CACHE_OPTIMIZER);
        const COpenDialog dialog = WaitForDialog(mavrel.Id(), L"Optimize Cache");
        EXPECT_EQ(::TextOf(Control(dialog, IDC_OPTIMIZE_STATUS)), L"Nothing to do.");
        Run(dialog, L"Done!");
        ::SendMessageW(Control(dialog, IDC_OPTIMIZE_ALIAS_RASTERS), BM_CLICK, 0, 0);
        Choose(dialog, IDC_OPTIMIZE_CACHE, 1);
        Choose(dialog, IDC_OPTIMIZE_ALGORITHM, 0);
        Run(dialog, L"Done!");
        Choose(dialog, IDC_OPTIMIZE_ALGORITHM, 3);
        Run(dialog, L"1 duplicates");
        dialog.Press(IDCANCEL);
        mavrel.Run(ID_CLOSE);
    }
    RunCommands({L"--mode", L"alias-names"});
    RunCommands({L"--mode", L"alias-rasters", L"--cache", L"unc"});
    RunCommands({L"--mode", L"alias-rasters", L"--cache", L"unc", L"--algorithm", L"diff-decoded"});
    const FileBytes files = FilesOf(m_oByHand.Path());
    ExpectSameFiles(files, FilesOf(m_oByCommands.Path()));
    EXPECT_NE(TextOf(files.at("textures.txt")).find("\"fence\" \"affiliate=wall\"\r\n"), std::string::npos);
    EXPECT_NE(TextOf(files.at("textures.txt")).find("\"wall3\" \"affiliate=wall\"\r\n"), std::string::npos);
}

TEST_F(OptimizeJourney, DeletesNamesAsTheCommandLineDoes)
{
    {
        const CMavrel mavrel(m_oInstallation, {(m_oByHand / "textures.txt").wstring()});
        mavrel.WaitForItem(L"  wall3");
        mavrel.Command(ID_CACHE_OPTIMIZER);
        const COpenDialog dialog = WaitForDialog(mavrel.Id(), L"Optimize Cache");
        ::SendMessageW(Control(dialog, IDC_OPTIMIZE_DELETE_NAMES), BM_CLICK, 0, 0);
        Run(dialog, L"Done!");
        dialog.Press(IDCANCEL);
        mavrel.Run(ID_CLOSE);
    }
    RunCommands({L"--mode", L"delete-names"});
    ExpectSameFiles(FilesOf(m_oByHand.Path()), FilesOf(m_oByCommands.Path()));
}
