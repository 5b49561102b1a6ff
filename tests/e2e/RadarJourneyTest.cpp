// A person imports a radar map, shows it, saves it and makes its equal tiles one, in the editor's dialog; the
// same by the command line gives the same files, byte for byte.

#include "base/Windows.h"

#include <commctrl.h>
#include <gtest/gtest.h>

#include "app/resource.h"
#include "image/ImageFile.h"
#include "tests/e2e/DatabaseFiles.h"
#include "tests/e2e/Mavrel.h"
#include "tests/e2e/SampleDatabase.h"
#include "tests/e2e/driver/Wait.h"
#include "tests/e2e/driver/WindowLookup.h"
#include "tests/support/DatabaseBuilder.h"

namespace {

constexpr std::size_t kTiles = 64;

/// Other textures around four old tiles, one of which is wanted by an alias.
CDatabaseBuilder OldMap()
{
    CDatabaseBuilder builder;
    builder.Category("cat=0 name=Default onfoot=0 slow=0 fast=0 defaultstream=0");
    builder.Category("cat=1 name=maps onfoot=0 slow=0 fast=0 defaultstream=0");
    builder.Texture("road").Picture("dxt", 0x11, 8, 8).Picture("unc", 0x21, 8, 8);
    for (const char* name : {"radar00", "radar01", "radar02", "radar03"})
        builder.Texture(name, " width=4 height=4 cat=1").Picture("dxt", 0x12).Picture("unc", 0x31);
    builder.Alias("sea", "radar01");
    builder.Texture("sand").Picture("dxt", 0x16, 2, 2).Picture("unc", 0x26, 2, 2);
    return builder;
}

/// 8 x 8 tiles of 32 pixels. Every second tile is nearly the one before it: too different to be the same
/// picture, too alike to need pixels of its own.
std::filesystem::path SaveMap(const std::filesystem::path& file)
{
    constexpr std::uint32_t kSide = 256;
    CBitmap map = CBitmap::Create(kSide, kSide).value();
    for (std::uint32_t y = 0; y < kSide; ++y)
        for (std::uint32_t x = 0; x < kSide; ++x) {
            const std::uint32_t number = y / 32 * 8 + x / 32;
            const auto pixel = map.Pixels().subspan((std::size_t{y} * kSide + x) * 4, 4);
            const bool isMark = number % 2 != 0 && x % 32 == 0 && y % 32 == 0;
            pixel[0] = static_cast<std::uint8_t>(number / 2 % 8 * 32 + (isMark ? 1 : 0));
            pixel[1] = static_cast<std::uint8_t>(number / 2 / 8 * 64);
            pixel[2] = 0x40;
            pixel[3] = 0xFF;
        }
    EXPECT_TRUE(SaveImageFile(file, map, ImageFormat::Png));
    return file;
}

class RadarJourney : public testing::Test {
protected:
    RadarJourney()
    {
        OldMap().Write(m_oByHand / "textures.txt");
        OldMap().Write(m_oByCommands / "textures.txt");
        SaveMap(m_oPictures / "map.png");
    }

    static HWND Control(const COpenDialog& dialog, int id) { return ::GetDlgItem(dialog.Handle(), id); }
    static void Click(const COpenDialog& dialog, int button)
    {
        ::PostMessageW(Control(dialog, button), BM_CLICK, 0, 0);
    }
    static LRESULT Rows(const COpenDialog& dialog)
    {
        return ::SendMessageW(Control(dialog, IDC_RADAR_TILES), LVM_GETITEMCOUNT, 0, 0);
    }
    static void WaitForStatus(const COpenDialog& dialog, const std::wstring& text)
    {
        WaitUntil("the status", [&] { return ::TextOf(Control(dialog, IDC_RADAR_STATUS)) == text; });
    }
    void ImportByHand(const CMavrel& mavrel, const COpenDialog& dialog) const
    {
        Click(dialog, IDC_RADAR_IMPORT);
        const COpenDialog files = WaitForFileDialog(mavrel.Id());
        EXPECT_EQ(ProposedName(files), L"radar_DXT");
        ChooseFiles(files, {m_oPictures / "map.png"});
        mavrel.Answer(L"Use alpha?", IDNO);
        WaitUntil("the imported map", [&] {
            return Rows(dialog) == kTiles && ::IsWindowEnabled(Control(dialog, IDC_RADAR_IMPORT));
        });
    }
    void RunCommands(std::vector<std::wstring> words) const
    {
        words.insert(words.begin(), L"radar");
        words.insert(words.begin() + 2, {(m_oByCommands / "textures.txt").wstring(), L"--cache", L"dxt"});
        RunCommandLine(words);
    }

    CTemporaryFolder m_oByHand;
    CTemporaryFolder m_oByCommands;
    CTemporaryFolder m_oPictures;
    CInstallation m_oInstallation;
};

}  // namespace

TEST_F(RadarJourney, EditsTheMapAsTheCommandLineDoes)
{
    {
        const CMavrel mavrel(m_oInstallation, {(m_oByHand / "textures.txt").wstring()});
        mavrel.WaitForItem(L"  sand");
        mavrel.Command(ID_RADAR_EDITOR);
        const COpenDialog dialog = WaitForDialog(mavrel.Id(), L"Radar Map Editor");
        WaitUntil("the tiles", [&] { return Rows(dialog) == 4; });
        ImportByHand(mavrel, dialog);
        WaitForStatus(dialog, L"radar00");

        Click(dialog, IDC_RADAR_SHOW);
        WaitForStatus(dialog, L"Done!");
        mavrel.WaitUntilDrawn(L"radar_fuck");

        Click(dialog, IDC_RADAR_EXPORT);
        const COpenDialog files = WaitForFileDialog(mavrel.Id());
        EXPECT_EQ(ProposedName(files), L"radar_DXT");
        ChooseFiles(files, {m_oPictures / "by-hand.png"});
        WaitUntil("the saved map", [&] { return LoadImageFile(m_oPictures / "by-hand.png").has_value(); });

        Click(dialog, IDC_RADAR_OPTIMIZE);
        WaitForStatus(dialog, L"radar00");
        dialog.Press(IDCANCEL);
        mavrel.Run(ID_CLOSE);
    }
    RunCommands({L"import", (m_oPictures / "map.png").wstring(), L"--no-alpha"});
    RunCommands({L"export", (m_oPictures / "by-commands.png").wstring()});
    RunCommands({L"optimize"});
    const FileBytes files = FilesOf(m_oByHand.Path());
    ExpectSameFiles(files, FilesOf(m_oByCommands.Path()));
    EXPECT_NE(TextOf(files.at("textures.txt")).find("\"radar00\" \"affiliate=radar01\"\r\n"),
              std::string::npos);
    EXPECT_EQ(ReadFile(m_oPictures / "by-hand.png"), ReadFile(m_oPictures / "by-commands.png"));
}

TEST_F(RadarJourney, SelectingATileSelectsItsTexture)
{
    const CMavrel mavrel(m_oInstallation, {(m_oByHand / "textures.txt").wstring()});
    mavrel.WaitForItem(L"  sand");
    mavrel.Command(ID_RADAR_EDITOR);
    const COpenDialog dialog = WaitForDialog(mavrel.Id(), L"Radar Map Editor");
    WaitUntil("the tiles", [&] { return Rows(dialog) == 4; });
    ::PostMessageW(Control(dialog, IDC_RADAR_TILES), WM_KEYDOWN, VK_END, 1);
    mavrel.WaitUntilDrawn(L"radar03");
    dialog.Press(IDCANCEL);
}

TEST_F(RadarJourney, APictureOfAnotherFormChangesNothing)
{
    const auto before = FilesOf(m_oByHand.Path());
    const auto wide = m_oPictures / "wide.png";
    ASSERT_TRUE(SaveImageFile(wide, CBitmap::Create(256, 128).value(), ImageFormat::Png));
    {
        const CMavrel mavrel(m_oInstallation, {(m_oByHand / "textures.txt").wstring()});
        mavrel.WaitForItem(L"  sand");
        mavrel.Command(ID_RADAR_EDITOR);
        const COpenDialog dialog = WaitForDialog(mavrel.Id(), L"Radar Map Editor");
        WaitUntil("the tiles", [&] { return Rows(dialog) == 4; });
        Click(dialog, IDC_RADAR_IMPORT);
        ChooseFiles(WaitForFileDialog(mavrel.Id()), {wide});
        mavrel.AcceptError(L"Image must be square.");
        WaitUntil("the end", [&] { return ::IsWindowEnabled(Control(dialog, IDC_RADAR_IMPORT)) != FALSE; });
        dialog.Press(IDCANCEL);
        mavrel.Run(ID_CLOSE);
    }
    ExpectSameFiles(FilesOf(m_oByHand.Path()), before);
}
