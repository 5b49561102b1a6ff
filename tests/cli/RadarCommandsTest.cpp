#include <gtest/gtest.h>

#include "image/BitmapTools.h"
#include "image/ImageFile.h"
#include "tests/cli/CommandRunner.h"
#include "tests/support/DatabaseBuilder.h"
#include "tests/support/TemporaryFolder.h"

namespace {

class RadarCommands : public testing::Test {
protected:
    RadarCommands()
    {
        std::filesystem::create_directory(m_oFolder / "db");
        const auto made = RunCommand({L"new", List(), L"--caches", L"dxt,unc"});
        EXPECT_EQ(made.code, ExitCode::Done) << made.err;
        SavePicture(m_oFolder / "map.png", Map());
    }

    /// 8 x 8 tiles of 16 pixels, one shade each; the last two are equal. Every shade fits into five bits.
    static CBitmap Map()
    {
        CBitmap map = CBitmap::Create(128, 128).value();
        for (std::uint32_t at = 0; at < 128 * 128; ++at) {
            const std::uint32_t number = std::min(at / 128 / 16 * 8 + at % 128 / 16, 62U);
            map.Pixels()[at * 4] = static_cast<std::uint8_t>(number % 8 * 32);
            map.Pixels()[at * 4 + 1] = static_cast<std::uint8_t>(number / 8 * 32);
            map.Pixels()[at * 4 + 3] = 255;
        }
        return map;
    }
    std::wstring List() const { return Path("db/textures.txt"); }
    std::wstring Path(const char* name) const { return (m_oFolder / name).wstring(); }
    CommandResult Radar(const std::wstring& verb, std::vector<std::wstring> more = {}) const
    {
        std::vector<std::wstring> words = {L"--game", L"vc", L"radar", verb, List(), L"--cache", L"unc"};
        words.insert(words.end(), more.begin(), more.end());
        return RunCommand(words);
    }

    CTemporaryFolder m_oFolder;
};

}  // namespace

TEST_F(RadarCommands, AMapComesBackAsItWasImported)
{
    const auto imported = Radar(L"import", {Path("map.png"), L"--no-alpha", L"--json"});
    ASSERT_EQ(imported.code, ExitCode::Done) << imported.err;
    EXPECT_EQ(imported.out, "{\"imported\": 63, \"aliased\": 1, \"skipped\": 0, \"failed\": 0}\n");
    const auto exported = Radar(L"export", {Path("out.png"), L"--json"});
    ASSERT_EQ(exported.code, ExitCode::Done) << exported.err;
    EXPECT_EQ(exported.out, "{\"width\": 128, \"height\": 128}\n");
    const auto loaded = LoadImageFile(m_oFolder / "out.png");
    ASSERT_TRUE(loaded);
    EXPECT_EQ(ImageDifference(*loaded, Map()), 0);
}

TEST_F(RadarCommands, TheExtensionChoosesTheFormat)
{
    Radar(L"import", {Path("map.png"), L"--no-alpha"});
    for (const char* file : {"a.bmp", "a.gif", "a.jpg", "a.tif"}) {
        EXPECT_EQ(Radar(L"export", {Path(file)}).code, ExitCode::Done) << file;
        EXPECT_TRUE(LoadImageFile(m_oFolder / file)) << file;
    }
    const auto refused = Radar(L"export", {Path("a.dds")});
    EXPECT_EQ(refused.code, ExitCode::Failed);
    EXPECT_EQ(refused.err, "This format is unsupported\n");
    const auto failed = Radar(L"export", {Path("nowhere/a.png")});
    EXPECT_EQ(failed.code, ExitCode::Failed);
    EXPECT_EQ(failed.err, "Unable to save the radar map.\n");
}

TEST_F(RadarCommands, InfoListsTheTiles)
{
    Radar(L"import", {Path("map.png"), L"--no-alpha"});
    const std::string text = Radar(L"info").out;
    EXPECT_TRUE(text.starts_with("64 tiles, 8 x 8\nradar00: 16 x 16, RGBA 565\nradar01: ")) << text;
    EXPECT_TRUE(text.ends_with("radar63: 16 x 16, RGBA 565, alias of radar62\n")) << text;
    const std::string json = Radar(L"info", {L"--json"}).out;
    EXPECT_TRUE(
        json.starts_with("{\"tiles\": 64, \"grid\": 8, \"entries\": [{\"index\": 0, \"name\": \"radar00\", "
                         "\"width\": 16, \"height\": 16, \"format\": \"RGBA 565\", \"alias_of\": \"\"}, "))
        << json;
    EXPECT_NE(json.find("\"index\": 63, \"name\": \"radar63\", \"width\": 16, \"height\": 16, "
                        "\"format\": \"RGBA 565\", \"alias_of\": \"radar62\"}]}"),
              std::string::npos)
        << json;
}

TEST_F(RadarCommands, OptimizeMakesEqualTilesAliases)
{
    Radar(L"import", {Path("map.png"), L"--no-alpha"});
    EXPECT_EQ(Radar(L"optimize").out, "0 aliased\n");
    for (const char* name : {"radar64", "radar65"}) {
        SavePicture(m_oFolder / (std::string(name) + ".png"), CBitmap::Create(16, 16).value());
        ASSERT_EQ(RunCommand({L"--game", L"vc", L"import", List(), Path((std::string(name) + ".png").c_str()),
                              L"--rgba8888"})
                      .code,
                  ExitCode::Done);
    }
    // Transparent black has no hash, so the second one did not become an alias when it was imported.
    EXPECT_EQ(Radar(L"optimize", {L"--json"}).out, "{\"aliased\": 1}\n");
    EXPECT_NE(Radar(L"info").out.find("radar64: 16 x 16, RGBA 8888, alias of radar65\n"), std::string::npos);
    EXPECT_EQ(Radar(L"optimize", {L"--json"}).out, "{\"aliased\": 0}\n");
}

TEST_F(RadarCommands, WithoutAMapThereIsNothingToDo)
{
    EXPECT_EQ(Radar(L"info").out, "0 tiles, 0 x 0\n");
    for (const auto& result : {Radar(L"export", {Path("a.png")}), Radar(L"optimize")}) {
        EXPECT_EQ(result.code, ExitCode::Failed);
        EXPECT_EQ(result.err, "Radar map not found.\n");
    }
}

TEST_F(RadarCommands, APictureThatDoesNotFitChangesNothing)
{
    SavePicture(m_oFolder / "wide.png", CBitmap::Create(256, 128).value());
    SavePicture(m_oFolder / "small.png", CBitmap::Create(127, 127).value());
    SavePicture(m_oFolder / "odd.png", CBitmap::Create(1000, 1000).value());
    const auto before = FilesOf(m_oFolder / "db");
    const std::pair<const char*, std::string> refused[] = {
        {"wide.png", "Image must be square.\n"},
        {"small.png", "Image is too small.\n"},
        {"odd.png", "Wrong texture dimensions given.\n\nRecommended dimensions is 8 8.\n"}};
    for (const auto& [file, text] : refused) {
        const auto result = Radar(L"import", {Path(file), L"--alpha"});
        EXPECT_EQ(result.code, ExitCode::Failed);
        EXPECT_NE(result.err.find(text), std::string::npos) << result.err;
    }
    EXPECT_EQ(Radar(L"import", {Path("nothing.png"), L"--alpha"}).code, ExitCode::Failed);
    EXPECT_EQ(FilesOf(m_oFolder / "db"), before);
}

TEST_F(RadarCommands, TheAlphaChannelIsAQuestionUnlessAnOptionAnswersIt)
{
    const auto before = FilesOf(m_oFolder / "db");
    const auto unanswered = Radar(L"import", {Path("map.png")});
    EXPECT_EQ(unanswered.code, ExitCode::QuestionUnanswered);
    EXPECT_NE(unanswered.err.find("Use alpha?"), std::string::npos) << unanswered.err;
    EXPECT_EQ(FilesOf(m_oFolder / "db"), before);
    EXPECT_EQ(Radar(L"import", {Path("map.png"), L"--yes"}).code, ExitCode::Done);
    EXPECT_NE(Radar(L"info").out.find("RGBA 4444"), std::string::npos);
    EXPECT_EQ(Radar(L"import", {Path("map.png"), L"--alpha", L"--no-alpha"}).code, ExitCode::Usage);
}

TEST_F(RadarCommands, WrongWordsAreUsageErrors)
{
    EXPECT_EQ(RunCommand({L"radar", L"show", List(), L"--cache", L"unc"}).code, ExitCode::Usage);
    EXPECT_EQ(RunCommand({L"radar", L"info", List()}).code, ExitCode::Usage);
    EXPECT_EQ(RunCommand({L"radar", L"info", List(), L"--cache", L"etc1"}).code, ExitCode::Usage);
    EXPECT_EQ(Radar(L"info", {Path("map.png")}).code, ExitCode::Usage);
    EXPECT_EQ(Radar(L"export").code, ExitCode::Usage);
    EXPECT_EQ(RunCommand({L"radar", L"info", List(), L"--cache", L"pvr"}).err,
              "The database has no pvr cache.\n");
}
