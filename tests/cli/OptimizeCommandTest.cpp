#include <gtest/gtest.h>

#include "tests/cli/CommandRunner.h"
#include "tests/support/TemporaryFolder.h"

namespace {

BuiltRaster Shades(std::uint8_t first, std::size_t changed = 0)
{
    BuiltRaster raster = {
        .width = 4, .heightAndMips = 4, .pixels = std::vector<std::byte>(64, std::byte{first})};
    std::fill_n(raster.pixels.begin(), changed, static_cast<std::byte>(first + 1));
    return raster;
}

class OptimizeCommand : public testing::Test {
protected:
    OptimizeCommand()
    {
        const BuiltRaster pixel = {.pixels = std::vector<std::byte>(4)};
        CDatabaseBuilder builder;
        builder.Category("cat=0 name=Default");
        builder.Texture("road").Raster("unc", Shades(10)).Thumbnail("unc", pixel);
        builder.Texture("wall").Raster("unc", Shades(20)).Thumbnail("unc", pixel);
        builder.Texture("close").Raster("unc", Shades(10, 19)).Thumbnail("unc", pixel);
        builder.Texture("Road").Raster("unc", Shades(30)).Thumbnail("unc", pixel);
        builder.Alias("track", "Road");
        builder.Texture("same").Raster("unc", Shades(20)).Thumbnail("unc", pixel);
        builder.Write(m_oFolder / "t.txt");
    }

    CommandResult Optimize(const std::vector<std::wstring>& options, bool asJson = true)
    {
        std::vector<std::wstring> words = {L"--stream", L"raw", L"optimize", (m_oFolder / "t.txt").wstring()};
        if (asJson)
            words.push_back(L"--json");
        words.insert(words.end(), options.begin(), options.end());
        return RunCommand(words);
    }
    /// The lines behind that of the category.
    std::string Lines() const
    {
        const std::string text = TextOf(FilesOf(m_oFolder.Path()).at("t.txt"));
        return text.substr(text.find('\n') + 1);
    }

    CTemporaryFolder m_oFolder;
};

constexpr const char* kSize = " width=4 height=4\r\n";

std::string Textures(std::initializer_list<const char*> names)
{
    std::string lines;
    for (const char* name : names)
        lines += "\"" + std::string(name) + "\"" + kSize;
    return lines;
}

}  // namespace

TEST_F(OptimizeCommand, MakesAliasesOfNameDuplicates)
{
    const CommandResult result = Optimize({L"--mode", L"alias-names"});
    EXPECT_EQ(result.code, ExitCode::Done) << result.err;
    EXPECT_EQ(result.out,
              "{\"aliased\": 1, \"deleted\": 0, \"deleted_aliases\": 0, \"skipped\": 0, \"failed\": 0}\n");
    EXPECT_EQ(Lines(), Textures({"road", "wall", "close"}) + "\"track\" \"affiliate=road\"\r\n" +
                           Textures({"same"}) + "\"Road\" \"affiliate=road\"\r\n");
}

TEST_F(OptimizeCommand, DeletesNameDuplicates)
{
    const CommandResult result = Optimize({L"--mode", L"delete-names"});
    EXPECT_EQ(result.out,
              "{\"aliased\": 0, \"deleted\": 1, \"deleted_aliases\": 1, \"skipped\": 0, \"failed\": 0}\n");
    EXPECT_EQ(Lines(), Textures({"road", "wall", "close", "same"}));
}

TEST_F(OptimizeCommand, MakesAliasesOfEqualRastersInTheFirstCacheByDefault)
{
    const CommandResult result = Optimize({L"--mode", L"alias-rasters"}, false);
    EXPECT_EQ(result.out, "1 aliased, 0 deleted with 0 aliases, 0 skipped, 0 failed\n");
    EXPECT_EQ(Lines(), Textures({"road", "wall", "close", "Road"}) + "\"track\" \"affiliate=Road\"\r\n" +
                           "\"same\" \"affiliate=wall\"\r\n");
}

TEST_F(OptimizeCommand, ComparesByEveryAlgorithm)
{
    const auto before = FilesOf(m_oFolder.Path());
    for (const auto& [algorithm, aliased] :
         {std::pair{L"md5", "1"}, {L"md5-decoded", "1"}, {L"diff", "2"}, {L"diff-decoded", "2"}}) {
        WriteFiles(m_oFolder.Path(), before);
        const CommandResult result =
            Optimize({L"--mode", L"alias-rasters", L"--cache", L"unc", L"--algorithm", algorithm});
        EXPECT_EQ(result.out.substr(0, 14), "{\"aliased\": " + std::string(aliased) + ",");
    }
}

TEST_F(OptimizeCommand, TakesAValueAsItIsTyped)
{
    const auto before = FilesOf(m_oFolder.Path());
    for (const auto& [value, aliased] : {std::pair{L"4", "1"}, {L"5", "2"}, {L"abc", "0"}, {L"-1", "0"}}) {
        WriteFiles(m_oFolder.Path(), before);
        const CommandResult result =
            Optimize({L"--mode", L"alias-rasters", L"--algorithm", L"diff", L"--value", value});
        EXPECT_EQ(result.out.substr(0, 14), "{\"aliased\": " + std::string(aliased) + ",");
    }
}

TEST_F(OptimizeCommand, RefusesWordsThatItDoesNotKnow)
{
    const auto before = FilesOf(m_oFolder.Path());
    EXPECT_EQ(Optimize({}).code, ExitCode::Usage);
    EXPECT_EQ(Optimize({L"--mode", L"names"}).code, ExitCode::Usage);
    EXPECT_EQ(Optimize({L"--mode", L"alias-rasters", L"--algorithm", L"sha"}).code, ExitCode::Usage);
    EXPECT_EQ(Optimize({L"--mode", L"alias-rasters", L"--cache", L"png"}).code, ExitCode::Usage);
    EXPECT_EQ(FilesOf(m_oFolder.Path()), before);
}

TEST_F(OptimizeCommand, FailsForACacheThatIsNotThere)
{
    const auto before = FilesOf(m_oFolder.Path());
    const CommandResult result = Optimize({L"--mode", L"alias-rasters", L"--cache", L"dxt"});
    EXPECT_EQ(result.code, ExitCode::Failed);
    EXPECT_EQ(result.err, "Data file is not loaded for requested cache.\n");
    EXPECT_EQ(FilesOf(m_oFolder.Path()), before);
}
