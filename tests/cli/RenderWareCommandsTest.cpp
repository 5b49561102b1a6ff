#include <gtest/gtest.h>

#include "base/File.h"
#include "image/ImageFile.h"
#include "tests/cli/CommandRunner.h"
#include "tests/support/RenderWareFiles.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using RwFile::Bytes;

class RenderWareCommands : public testing::Test {
protected:
    std::wstring Write(const char* name, const Bytes& bytes)
    {
        EXPECT_TRUE(WriteWholeFile(DiskFileSystem(), m_oFolder / name, bytes));
        return (m_oFolder / name).wstring();
    }
    std::wstring At(const char* name) const { return (m_oFolder / name).wstring(); }
    std::optional<Bytes> Read(const char* name) const
    {
        return ReadWholeFile(DiskFileSystem(), m_oFolder / name, 1 << 20);
    }

    CTemporaryFolder m_oFolder;
};

/// Four blocks of plain red.
RwFile::PCTexture RedDxt1()
{
    Bytes pixels;
    for (int block = 0; block < 4; ++block)
        for (const int value : {0x00, 0xF8, 0x00, 0x00, 0, 0, 0, 0})
            pixels.push_back(static_cast<std::byte>(value));
    return {.name = "red",
            .rasterFormat = 0x200,
            .width = 8,
            .height = 8,
            .depth = 16,
            .compression = 1,
            .pixels = pixels};
}

Bytes SampleModel()
{
    return RwFile::Model({{.textures = {"road"}}, {}, {.textures = {"wall", "road"}}});
}

}  // namespace

TEST_F(RenderWareCommands, CopyAppendsTheHeaderOfTheRoot)
{
    const Bytes file = RwFile::Dictionary({RwFile::PCNative(RedDxt1()), RwFile::PS2Native({})});
    const auto result = RunCommand({L"rw", L"copy", Write("a.txd", file), L"--out", At("b.txd")});
    EXPECT_EQ(result.code, ExitCode::Done) << result.err;
    EXPECT_EQ(Read("b.txd"), RwFile::Joined({file, Bytes(file.begin(), file.begin() + 12)}));
}

TEST_F(RenderWareCommands, TreeNamesEverySectionWithItsPlaceAndSize)
{
    const auto result = RunCommand(
        {L"txd", L"tree",
         Write("a.txd",
               RwFile::Section(0x06, RwFile::Joined({RwFile::Struct(RwFile::Words({1})),
                                                     RwFile::String("road"), RwFile::Section(0x99, {})})))});
    EXPECT_EQ(result.code, ExitCode::Done);
    EXPECT_EQ(result.out,
              "Texture (0xC, 48 bytes) \n"
              "  Struct (0x18, 4 bytes) \n"
              "  String (0x28, 8 bytes) \"road\"\n"
              "   (0x3C, 0 bytes) \n");
}

TEST_F(RenderWareCommands, TreeAsJsonNests)
{
    const auto result = RunCommand(
        {L"--json", L"txd", L"tree", Write("a.rws", RwFile::Section(0x03, RwFile::Section(0x11, {})))});
    EXPECT_EQ(result.out,
              "{\"id\": 3, \"name\": \"Extension\", \"size\": 12, \"version\": 402915327, \"offset\": 12, "
              "\"children\": "
              "[{\"id\": 17, \"name\": \"\", \"size\": 0, \"version\": 402915327, \"offset\": 24, "
              "\"children\": []}]}\n");
}

TEST_F(RenderWareCommands, TreeWalksAMobileDictionaryWhoseSizesAreWrong)
{
    const Bytes native = RwFile::SectionClaiming(
        0x15, 1, RwFile::Joined({RwFile::Struct(RwFile::MobileRecord({})), RwFile::EmptyExtension()}));
    const Bytes body = RwFile::Joined({RwFile::Struct(RwFile::Words({1})), native, RwFile::EmptyExtension()});
    const auto result = RunCommand({L"txd", L"tree", Write("a.txd", RwFile::SectionClaiming(0x16, 9, body))});
    EXPECT_EQ(result.code, ExitCode::Done) << result.err;
    EXPECT_EQ(result.out,
              "Texture Dictionary (0xC, 212 bytes) \n"
              "  Struct (0x18, 4 bytes) \n"
              "  Texture Native (0x28, 172 bytes) \n"
              "    Struct (0x34, 148 bytes) \n"
              "    Extension (0xD4, 0 bytes) \n"
              "  Extension (0xE0, 0 bytes) \n");
}

TEST_F(RenderWareCommands, TreeShowsADictionaryThatNoReaderAccepts)
{
    const auto result = RunCommand(
        {L"txd", L"tree", Write("a.txd", RwFile::Dictionary({RwFile::PCNative({.platform = 5})}))});
    EXPECT_EQ(result.code, ExitCode::Done) << result.err;
    EXPECT_EQ(result.out.substr(0, 18), "Texture Dictionary");
}

TEST_F(RenderWareCommands, ListTellsEveryAccessorAsJson)
{
    const Bytes file = RwFile::Dictionary(
        {RwFile::PCNative(RedDxt1()),
         RwFile::PCNative({.platform = 9, .name = "x", .mask = "xa", .rasterFormat = 0x500})});
    const auto result = RunCommand({L"txd", L"list", Write("a.txd", file), L"--json"});
    EXPECT_EQ(result.code, ExitCode::Done);
    EXPECT_EQ(
        result.out,
        "{\"platform\": 8, \"version\": 402915327, \"textures\": [{\"index\": 0, \"name\": \"red\", "
        "\"mask\": "
        "\"\", \"width\": 8, \"height\": 8, \"depth\": 16, \"mips\": 1, \"raster_format\": 1381, "
        "\"raster_format_raw\": 512, \"compression\": 4, \"format_text\": \"DXT1\", \"alpha\": false, "
        "\"platform\": 8}, {\"index\": 1, \"name\": \"x\", \"mask\": \"xa\", \"width\": 2, \"height\": 2, "
        "\"depth\": 32, \"mips\": 1, \"raster_format\": 34952, \"raster_format_raw\": 1280, \"compression\": "
        "0, "
        "\"format_text\": \"32 bpp\", \"alpha\": true, \"platform\": 9}]}\n");
}

TEST_F(RenderWareCommands, ListReadsAllPlatformsAndNone)
{
    EXPECT_EQ(RunCommand({L"txd", L"list", Write("a.txd", RwFile::Dictionary({RwFile::PS2Native({})}))}).out,
              "RW Version: 0x1803FFFF\nPlatform: PlayStation 2\n#0 \"road\" 4 x 4, 32 bpp\n");
    EXPECT_EQ(RunCommand({L"txd", L"list",
                          Write("b.txd", RwFile::Dictionary({RwFile::MobileNative({.platform = 10})}))})
                  .out,
              "RW Version: 0x1803FFFF\nPlatform: Mobile\n#0 \"road\" 4 x 4, Unknown\n");
    EXPECT_EQ(RunCommand({L"--json", L"txd", L"list", Write("c.txd", RwFile::Dictionary({}))}).out,
              "{\"platform\": 0, \"version\": 402915327, \"textures\": []}\n");
}

TEST_F(RenderWareCommands, ExportWritesPicturesThroughThePlugin)
{
    const Bytes file = RwFile::Dictionary(
        {RwFile::PCNative(RedDxt1()), RwFile::PCNative(RedDxt1()), RwFile::PCNative({.name = "../a:b"})});
    const auto result = RunCommand({L"txd", L"export", Write("a.txd", file), L"--out", At("out"), L"--json"});
    EXPECT_EQ(result.code, ExitCode::Done) << result.err;
    EXPECT_EQ(result.out, "{\"exported\": 3, \"skipped\": 0, \"failed\": 0, \"not_saved\": 0}\n");
    const auto red = LoadImageFile(m_oFolder / "out" / "red.png");
    ASSERT_TRUE(red);
    EXPECT_EQ(red->Width(), 8U);
    EXPECT_EQ(red->Row(7)[28], 0);
    EXPECT_EQ(red->Row(7)[30], 255);
    EXPECT_EQ(red->Row(7)[31], 255);
    EXPECT_TRUE(std::filesystem::exists(m_oFolder / "out" / "red_2.png"));
    EXPECT_TRUE(std::filesystem::exists(m_oFolder / "out" / "___a_b.png"));
}

TEST_F(RenderWareCommands, ExportGoesOnAfterATextureThatIsUnsupported)
{
    const Bytes file = RwFile::Dictionary(
        {RwFile::PCNative({.name = "odd", .depth = 12}), RwFile::PCNative({.name = "good"})});
    const auto result =
        RunCommand({L"txd", L"export", Write("a.txd", file), L"--out", At("out"), L"--format", L"bmp"});
    EXPECT_EQ(result.code, ExitCode::Failed);
    EXPECT_EQ(result.out, "1 exported, 1 failed\n");
    EXPECT_EQ(result.err, "1 textures could not be exported.\n\nThis format is unsupported\n");
    EXPECT_TRUE(std::filesystem::exists(m_oFolder / "out" / "good.bmp"));
}

TEST_F(RenderWareCommands, ModelsListTheirTextures)
{
    const auto result = RunCommand({L"--json", L"dff", L"list", Write("a.dff", SampleModel())});
    EXPECT_EQ(result.code, ExitCode::Done) << result.err;
    EXPECT_EQ(result.out,
              "{\"version\": 402915327, \"textures\": [{\"name\": \"road\", \"state\": \"Cache not loaded\", "
              "\"index\": "
              "-1}, {\"name\": \"wall\", \"state\": \"Cache not loaded\", \"index\": -1}]}\n");
}

TEST_F(RenderWareCommands, ModelsAreCheckedAgainstADatabaseWithoutRegardToCase)
{
    CDatabaseBuilder builder;
    builder.Texture("other").Picture("dxt", 1).Texture("WALL").Picture("dxt", 2);
    builder.Write(m_oFolder / "t.txt");
    const auto result =
        RunCommand({L"dff", L"list", Write("a.dff", SampleModel()), L"--db", At("t.txt"), L"--json"});
    EXPECT_EQ(result.out,
              "{\"version\": 402915327, \"textures\": [{\"name\": \"road\", \"state\": \"Not Found\", "
              "\"index\": -1}, "
              "{\"name\": \"wall\", \"state\": \"OK\", \"index\": 1}]}\n");
}

TEST_F(RenderWareCommands, ADictionaryListsNoModelTextures)
{
    const auto result =
        RunCommand({L"dff", L"list", Write("a.txd", RwFile::Dictionary({RwFile::PCNative({})}))});
    EXPECT_EQ(result.code, ExitCode::Done);
    EXPECT_EQ(result.out, "RW Version: 0x1803FFFF\n");
    const auto other =
        RunCommand({L"dff", L"list", Write("b.txd", RwFile::Dictionary({RwFile::PS2Native({})}))});
    EXPECT_EQ(other.code, ExitCode::Failed);
    EXPECT_EQ(other.err, "This is not a valid PC texture.\n");
}

TEST_F(RenderWareCommands, RenameChangesEveryMaterialAndSaves)
{
    const auto result =
        RunCommand({L"dff", L"rename", Write("a.dff", SampleModel()), L"road", L"ab", L"--out", At("b.dff")});
    EXPECT_EQ(result.code, ExitCode::Done) << result.err;
    EXPECT_EQ(result.out, "2 renamed\n");
    EXPECT_EQ(RunCommand({L"dff", L"list", At("b.dff")}).out,
              "RW Version: 0x1803FFFF\n\"ab\" Cache not loaded\n\"wall\" Cache not loaded\n");
    // Two bodies of 8 bytes became 3, and the header follows.
    EXPECT_EQ(Read("b.dff")->size(), SampleModel().size() - 10 + 12);
}

TEST_F(RenderWareCommands, RenameToItselfSavesTheModelAsItIs)
{
    EXPECT_EQ(RunCommand(
                  {L"dff", L"rename", Write("a.dff", SampleModel()), L"road", L"road", L"--out", At("b.dff")})
                  .code,
              ExitCode::Done);
    EXPECT_EQ(Read("b.dff")->size(), SampleModel().size() + 12);
}

TEST_F(RenderWareCommands, RenameInPlaceReplacesTheFile)
{
    const std::wstring file = Write("a.dff", SampleModel());
    EXPECT_EQ(RunCommand({L"dff", L"rename", file, L"wall", L"abcdefg", L"--out", file}).code,
              ExitCode::Done);
    EXPECT_EQ(RunCommand({L"dff", L"list", file}).out,
              "RW Version: 0x1803FFFF\n\"road\" Cache not loaded\n\"ab\" Cache not loaded\n");
}

TEST_F(RenderWareCommands, TextHasOneLineForEveryMaterialWithATexture)
{
    const auto result = RunCommand({L"dff", L"text", Write("a.dff", SampleModel()), L"--out", At("a.txt")});
    EXPECT_EQ(result.code, ExitCode::Done);
    EXPECT_EQ(TextOf(*Read("a.txt")), "road\nwall\n");
    EXPECT_NE(result.err.find("Wrong section ID."), std::string::npos);
}

// Failures.

TEST_F(RenderWareCommands, AFileThatIsNotThereIsAFailure)
{
    EXPECT_EQ(RunCommand({L"txd", L"list", At("no.txd")}).err,
              "This is not a valid RW texture dictionary.\n");
    const auto tree = RunCommand({L"txd", L"tree", At("no.txd")});
    EXPECT_EQ(tree.code, ExitCode::Failed);
    EXPECT_EQ(tree.err.substr(0, 42), "Cant open RW stream file. Error code: 0x2.");
    EXPECT_EQ(RunCommand({L"dff", L"list", At("no.dff")}).code, ExitCode::Failed);
    EXPECT_EQ(RunCommand({L"rw", L"copy", At("no.dff"), L"--out", At("b.dff")}).code, ExitCode::Failed);
}

TEST_F(RenderWareCommands, ADamagedFileIsAFailureAndWritesNothing)
{
    Bytes cut = SampleModel();
    cut.pop_back();
    const std::wstring file = Write("a.dff", cut);
    for (const auto& words :
         {std::vector<std::wstring>{L"rw", L"copy", file, L"--out", At("b.dff")},
          std::vector<std::wstring>{L"dff", L"rename", file, L"road", L"x", L"--out", At("b.dff")},
          std::vector<std::wstring>{L"txd", L"tree", file},
          std::vector<std::wstring>{L"dff", L"list", file}}) {
        const auto result = RunCommand(words);
        EXPECT_EQ(result.code, ExitCode::Failed);
        EXPECT_EQ(result.err, "Stream reading error.\n");
    }
    EXPECT_FALSE(Read("b.dff"));
}

TEST_F(RenderWareCommands, ATextureThatCannotBeReadIsAFailureButTheOthersAreListed)
{
    const Bytes native =
        RwFile::Section(0x15, RwFile::Joined({RwFile::Struct(RwFile::Words({8})), RwFile::EmptyExtension()}));
    const auto result =
        RunCommand({L"txd", L"list", Write("a.txd", RwFile::Dictionary({native, RwFile::PCNative({})}))});
    EXPECT_EQ(result.code, ExitCode::Failed);
    EXPECT_NE(result.out.find("#1 \"road\""), std::string::npos);
    EXPECT_NE(result.err.find("Section data reading failed."), std::string::npos);
}

TEST_F(RenderWareCommands, RenameRefusesAnEmptyNameAndOneThatIsNotThere)
{
    const std::wstring file = Write("a.dff", SampleModel());
    const auto empty = RunCommand({L"dff", L"rename", file, L"road", L"", L"--out", At("b.dff")});
    EXPECT_EQ(empty.code, ExitCode::Failed);
    EXPECT_EQ(empty.err, "Name should not be empty.\n");
    const auto missing = RunCommand({L"dff", L"rename", file, L"ROAD", L"x", L"--out", At("b.dff")});
    EXPECT_EQ(missing.code, ExitCode::Failed);
    EXPECT_EQ(missing.err, "There is no texture 'ROAD'.\n");
    EXPECT_FALSE(Read("b.dff"));
    EXPECT_EQ(RunCommand({L"dff", L"rename", Write("a.txd", RwFile::Dictionary({})), L"a", L"b", L"--out",
                          At("b.dff")})
                  .code,
              ExitCode::Failed);
}

TEST_F(RenderWareCommands, AnOutputThatCannotBeMadeIsAFailure)
{
    const std::wstring file = Write("a.dff", SampleModel());
    const std::wstring nowhere = (m_oFolder / "no folder" / "b").wstring();
    EXPECT_EQ(RunCommand({L"rw", L"copy", file, L"--out", nowhere}).err, "Can't open output file.\n");
    EXPECT_EQ(RunCommand({L"dff", L"rename", file, L"road", L"x", L"--out", nowhere}).err,
              "Can't open output file.\n");
    const auto text = RunCommand({L"dff", L"text", file, L"--out", nowhere});
    EXPECT_EQ(text.code, ExitCode::Failed);
    EXPECT_TRUE(text.err.ends_with("Unknown error\n")) << text.err;
}

TEST_F(RenderWareCommands, WrongWordsAreUsage)
{
    EXPECT_EQ(RunCommand({L"txd", L"list"}).code, ExitCode::Usage);
    EXPECT_EQ(RunCommand({L"txd", L"shred", At("a")}).code, ExitCode::Usage);
    EXPECT_EQ(RunCommand({L"txd", L"export", At("a")}).code, ExitCode::Usage);
    EXPECT_EQ(RunCommand({L"txd", L"export", At("a"), L"--out", At("b"), L"--format", L"psd"}).code,
              ExitCode::Usage);
    EXPECT_EQ(RunCommand({L"dff", L"rename", At("a"), L"b"}).code, ExitCode::Usage);
    EXPECT_EQ(RunCommand({L"dff", L"text", At("a")}).code, ExitCode::Usage);
    EXPECT_EQ(RunCommand({L"rw", L"copy", At("a")}).code, ExitCode::Usage);
    EXPECT_EQ(RunCommand({L"rw", L"copy", At("a"), At("b"), L"--out", At("c")}).code, ExitCode::Usage);
}
