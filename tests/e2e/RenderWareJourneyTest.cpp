// A person imports a dictionary by its dialog, replacing, skipping and keeping what is there already, and
// puts the texture names of a model right; the same steps by the command line give the same files, byte for
// byte.

#include "base/Windows.h"

#include <algorithm>
#include <commctrl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/resource.h"
#include "tests/e2e/DatabaseFiles.h"
#include "tests/e2e/Mavrel.h"
#include "tests/e2e/SampleDatabase.h"
#include "tests/e2e/driver/Wait.h"
#include "tests/e2e/driver/WindowLookup.h"
#include "tests/support/RenderWareFiles.h"

namespace {

using RwFile::Bytes;

Bytes Texture(const std::string& name, std::uint8_t shade, std::uint8_t depth)
{
    return RwFile::PCNative({.name = name,
                             .rasterFormat = depth == 32 ? 0x500U : 0x200U,
                             .width = 16,
                             .height = 16,
                             .depth = depth,
                             .pixels = RwFile::Filled(std::size_t{16} * 16 * depth / 8, shade)});
}

Bytes House()
{
    return RwFile::Clump({RwFile::Geometry(RwFile::MaterialList(
        {RwFile::Material({.textures = {"brick"}}), RwFile::Material({.textures = {"plaster"}}),
         RwFile::Material({.textures = {"plaster"}})}))});
}

void ExpectSameFile(const std::filesystem::path& byHand, const std::filesystem::path& byCommand)
{
    EXPECT_TRUE(std::filesystem::exists(byCommand));
    EXPECT_TRUE(ReadFile(byHand) == ReadFile(byCommand)) << byHand.filename();
}

class RenderWareJourney : public testing::Test {
protected:
    RenderWareJourney()
    {
        const std::vector<Bytes> replacing = {Texture("brick", 0x21, 32), Texture("fence", 0x42, 32)};
        const std::vector<Bytes> skipping = {Texture("leaf", 0x35, 16), Texture("gate", 0x67, 16)};
        std::vector<Bytes> all = replacing;
        all.insert(all.end(), skipping.begin(), skipping.end());
        WriteFiles(m_oFiles.Path(),
                   {{"all.txd", RwFile::Dictionary(all)},
                    {"replacing.txd", RwFile::Dictionary(replacing)},
                    {"skipping.txd", RwFile::Dictionary(skipping)},
                    {"sign.txd", RwFile::Dictionary({Texture("sign", 0x18, 32)})},
                    {"torn.txd", RwFile::Section(0x16, RwFile::Filled(8, 0x77))},
                    {"claims.txd", RwFile::Dictionary(skipping, 5)},
                    {"claims.dff", RwFile::Model({{.textures = {"brick"}}, {.textureCount = 3}})},
                    {"house.dff", House()}});
    }

    COpenDialog OpenDictionary(const CMavrel& mavrel, const std::string& name) const
    {
        mavrel.Command(ID_IMPORT_TXD);
        ChooseFiles(WaitForFileDialog(mavrel.Id()), {m_oFiles / name});
        return WaitForDialog(mavrel.Id(), L"Import TXD - '" + (m_oFiles / name).filename().wstring() + L"'");
    }
    /// Presses a button behind which something else comes than the end of the dialog.
    static void Click(const COpenDialog& dialog, int button)
    {
        ::PostMessageW(dialog.Handle(), WM_COMMAND, MAKEWPARAM(button, BN_CLICKED),
                       reinterpret_cast<LPARAM>(::GetDlgItem(dialog.Handle(), button)));  // NOLINT
    }
    static void WaitUntilClosed(const COpenDialog& dialog)
    {
        WaitUntil("the dialog to close", [&dialog] { return !::IsWindow(dialog.Handle()); });
    }
    static void WaitForLabel(const COpenDialog& dialog, int label, const std::wstring& text)
    {
        WaitUntil("the label", [&] { return ::TextOf(::GetDlgItem(dialog.Handle(), label)) == text; });
    }
    std::wstring File(const std::string& name) const { return (m_oFiles / name).wstring(); }

    CTemporaryFolder m_oFiles;
    CInstallation m_oInstallation;
    CSampleDatabase m_oByHand;
    CSampleDatabase m_oByCommands;
};

TEST_F(RenderWareJourney, ImportsADictionaryAsTheCommandLineDoes)
{
    {
        const CMavrel mavrel(m_oInstallation, m_oByHand.AsArgument());
        mavrel.WaitForItem(L"  wall");
        mavrel.Select({L"Signs"});
        const COpenDialog dialog = OpenDictionary(mavrel, "all.txd");
        Click(dialog, IDC_TXD_CHECK_ALL);
        Click(dialog, IDOK);
        mavrel.Answer(L"Texture 'brick' already exists. Would you like to replace it?", IDYES);
        mavrel.Answer(L"Texture 'leaf' already exists. Would you like to replace it?", IDNO);
        WaitForLabel(dialog, IDC_TXD_COUNTER, L"4 / 4");
        mavrel.WaitForItem(L"  gate");
        mavrel.WaitForItem(L"  fence");
        EXPECT_FALSE(HasMessageBox(mavrel.Id())) << "one was skipped, so nothing is said";
        WaitUntil("the dialog to be ready",
                  [&] { return ::IsWindowEnabled(::GetDlgItem(dialog.Handle(), IDOK)); });
        dialog.Press(IDCANCEL);
        mavrel.Run(ID_CLOSE);
    }
    const std::wstring list = m_oByCommands.List().wstring();
    RunCommandLine({L"txd", L"import", list, File("replacing.txd"), L"--replace", L"--category", L"Signs"});
    RunCommandLine({L"txd", L"import", list, File("skipping.txd"), L"--skip", L"--category", L"Signs"});
    const auto files = FilesOf(m_oByHand.List().parent_path());
    EXPECT_EQ(files.size(), 7U) << "the list and three files of two caches";
    ExpectSameFiles(files, FilesOf(m_oByCommands.List().parent_path()));
    EXPECT_NO_THROW(RunCommandLine({L"check", m_oByHand.List().wstring()}));
}

TEST_F(RenderWareJourney, KeepsBothTexturesOnCancelAndClosesWhenAllAreIn)
{
    const CMavrel mavrel(m_oInstallation, m_oByHand.AsArgument());
    mavrel.WaitForItem(L"  sign");
    const COpenDialog dialog = OpenDictionary(mavrel, "sign.txd");
    Click(dialog, IDOK);
    mavrel.Answer(L"Nothing to import, lol", IDOK);
    Click(dialog, IDC_TXD_CHECK_ALL);
    Click(dialog, IDOK);
    mavrel.Answer(L"Texture 'sign' already exists. Would you like to replace it?", IDCANCEL);
    mavrel.Answer(L"All textures imported.", IDOK);
    WaitUntilClosed(dialog);
    const auto texts = mavrel.Tree().Texts();
    EXPECT_EQ(std::count(texts.begin(), texts.end(), L"  sign"), 2);
    EXPECT_EQ(m_oInstallation.Setting(L"paths", L"last_txd"), m_oFiles.Path().wstring());
    mavrel.Command(ID_IMPORT_TXD);
    WaitForFileDialog(mavrel.Id()).Press(IDCANCEL);
}

TEST_F(RenderWareJourney, EndsTheProgramOnCancelInAStopBox)
{
    {
        const CMavrel mavrel(m_oInstallation, m_oByHand.AsArgument());
        mavrel.WaitForItem(L"  wall");
        mavrel.Command(ID_IMPORT_TXD);
        ChooseFiles(WaitForFileDialog(mavrel.Id()), {m_oFiles / "claims.txd"});
        const COpenMessageBox box = WaitForMessageBox(mavrel.Id());
        EXPECT_EQ(box.Caption(), L"CStream fuckin' error");
        box.Press(IDCANCEL);
        EXPECT_EQ(mavrel.WaitForExit(), 0U);
    }
    const CMavrel mavrel(m_oInstallation, {});
    mavrel.Command(ID_CHECK_DFF);
    ChooseFiles(WaitForFileDialog(mavrel.Id()), {m_oFiles / "claims.dff"});
    const COpenMessageBox box = WaitForMessageBox(mavrel.Id());
    EXPECT_EQ(box.Caption(), L"CNode fuckin' error");
    box.Press(IDCANCEL);
    EXPECT_EQ(mavrel.WaitForExit(), 105U);
}

TEST_F(RenderWareJourney, SaysThatAFileIsNoDictionary)
{
    const CMavrel mavrel(m_oInstallation, m_oByHand.AsArgument());
    mavrel.WaitForItem(L"  wall");
    mavrel.Command(ID_IMPORT_TXD);
    ChooseFiles(WaitForFileDialog(mavrel.Id()), {m_oFiles / "torn.txd"});
    const COpenMessageBox box = WaitForMessageBox(mavrel.Id());
    EXPECT_EQ(box.Caption(), L"Error");
    EXPECT_EQ(box.Icon(), BoxIcon::Error);
    box.Press(IDOK);
    mavrel.Run(ID_CLOSE);
    EXPECT_EQ(mavrel.Pane(0), L"Cache unloaded.") << "the window is in use again";
}

TEST_F(RenderWareJourney, PutsTheNamesOfAModelRightAsTheCommandLineDoes)
{
    const CTemporaryFolder saved;
    const CMavrel mavrel(m_oInstallation, m_oByHand.AsArgument());
    mavrel.WaitForItem(L"  wall");
    mavrel.Command(ID_CHECK_DFF);
    ChooseFiles(WaitForFileDialog(mavrel.Id()), {m_oFiles / "house.dff"});
    const COpenDialog dialog = WaitForDialog(mavrel.Id(), L"DFF Checking - 'house.dff'");
    WaitForLabel(dialog, IDC_DFF_VERSION, L"RW Version: 0x1803FFFF");
    const HWND list = ::GetDlgItem(dialog.Handle(), IDC_DFF_LIST);
    EXPECT_EQ(::SendMessageW(list, LVM_GETITEMCOUNT, 0, 0), 2);
    // The second row: Down, then F2.
    ::PostMessageW(list, WM_KEYDOWN, VK_DOWN, 0);
    ::PostMessageW(list, WM_KEYDOWN, VK_F2, 0);
    const HWND field = WaitFor("a name to be edited", [list] {
        const auto editor = reinterpret_cast<HWND>(::SendMessageW(list, LVM_GETEDITCONTROL, 0, 0));  // NOLINT
        return editor != nullptr ? std::optional(editor) : std::nullopt;
    });
    EXPECT_EQ(::TextOf(field), L"plaster");
    ::SendMessageW(field, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L"wall"));  // NOLINT: Windows translates it
    ::PostMessageW(field, WM_KEYDOWN, VK_RETURN, 0);
    WaitUntil("the name to be taken", [field] { return !::IsWindow(field); });
    Click(dialog, IDC_DFF_SAVE_AS);
    ChooseFiles(WaitForFileDialog(mavrel.Id()), {saved / "house.dff"});
    WaitUntil("the model", [&] { return std::filesystem::exists(saved / "house.dff"); });
    Click(dialog, IDC_DFF_SAVE_TEXT);
    ChooseFiles(WaitForFileDialog(mavrel.Id()), {saved / "house.txt"});
    WaitUntil("the text", [&] { return std::filesystem::exists(saved / "house.txt"); });
    dialog.Press(IDCANCEL);

    RunCommandLine(
        {L"dff", L"rename", File("house.dff"), L"plaster", L"wall", L"--out", File("renamed.dff")});
    RunCommandLine({L"dff", L"text", File("renamed.dff"), L"--out", File("renamed.txt")});
    ExpectSameFile(saved / "house.dff", m_oFiles / "renamed.dff");
    ExpectSameFile(saved / "house.txt", m_oFiles / "renamed.txt");
}

}  // namespace
