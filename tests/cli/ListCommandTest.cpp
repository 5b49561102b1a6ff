#include <fstream>
#include <gtest/gtest.h>

#include "tests/cli/CommandRunner.h"
#include "tests/support/TemporaryFolder.h"

namespace {

// A list with one raw 1x1 RGBA 8888 record in the uncompressed cache, written by hand.
class ListCommand : public testing::Test {
protected:
    ListCommand()
    {
        Write("t.txt",
              "cat=0 name=Default onfoot=0 slow=0 fast=0 defaultstream=0\r\n\"abc\" width=1 height=1 "
              "png=0000beef\r\n"
              "\"copy\" \"affiliate=abc\"\r\n");
        Write("t.unc.dat", std::string("\xF3\xB6\x01\x14\x01\x00\x01\x00\x11\x22\x33\x44", 12));
        Write("t.unc.toc", std::string("\x0C\x00\x00\x00\x00\x00\x00\x00\xFF\xFF\xFF\xFF", 12));
        Write("t.unc.tmb", std::string("\xF3\xB6\x01\x14\x01\x00\x01\x00\x88\x88\x88\x88", 12));
    }

    void Write(const char* name, const std::string& bytes) const
    {
        std::ofstream(m_oFolder / name, std::ios::binary) << bytes;
    }
    std::wstring List() const { return (m_oFolder / "t.txt").wstring(); }

    CTemporaryFolder m_oFolder;
};

}  // namespace

TEST_F(ListCommand, ShowsEveryPropertyAndRecord)
{
    const std::string json = RunCommand({L"--json", L"list", List()}).out;
    for (const char* part :
         {"\"game\": \"auto\", \"primary_cache\": \"unc\"",
          "{\"index\": 0, \"cat\": 0, \"name\": \"Default\", \"onfoot\": 0, \"slow\": 0, \"fast\": 0, "
          "\"defaultformat\": 0, \"defaultstream\": 0}",
          "{\"index\": 0, \"name\": \"abc\", \"affiliate\": \"\", \"alias_target\": -1, \"name_hash\": "
          "112371, "
          "\"line\": \"\\\"abc\\\" width=1 height=1 png=0000beef\"",
          "\"mipmode\": 1", "\"png\": 48879",
          "\"unc\": {\"dat_offset\": 0, \"gl_format\": 5121, \"format\": \"RGBA 8888\", \"width\": 1, "
          "\"height\": 1, "
          "\"mips\": false, \"levels\": 1, \"name_hash16\": 46835, \"raster_size\": 4, \"stream_mode\": 1, "
          "\"tmb_offset\": 0, \"thumb_width\": 1, \"thumb_height\": 1}",
          "{\"index\": 1, \"name\": \"copy\", \"affiliate\": \"abc\", \"alias_target\": 0"})
        EXPECT_NE(json.find(part), std::string::npos) << part << "\n" << json;
}

TEST_F(ListCommand, FindsByAPartOfTheNameInAnyCase)
{
    EXPECT_EQ(RunCommand({L"list", List(), L"--find", L"OP"}).out,
              "category #0 Default\n#1 \"copy\" \"affiliate=abc\"\n");
}

TEST_F(ListCommand, InfoCountsWhatIsThere)
{
    EXPECT_EQ(RunCommand({L"--json", L"info", List()}).out,
              "{\"entries\": 2, \"aliases\": 1, \"categories\": 1, \"caches\": {\"unc\": {\"dat_bytes\": 12, "
              "\"toc_bytes\": "
              "12, \"tmb_bytes\": 12, \"rasters\": 1, \"thumbnails\": 1, \"toc_valid\": true, "
              "\"thumbnails_valid\": true}}, "
              "\"name_hashes_valid\": true, \"game\": \"vc\"}\n");
}

TEST_F(ListCommand, StatsIsTheReportOfTheWindow)
{
    EXPECT_EQ(RunCommand({L"stats", List()}).out,
              "Game: GTA VC\n"
              "\n-----------------------------------------------------------\n\n"
              "Total:     2\nOriginals: 1\nAliases:   1\n"
              "\n-----------------------------------------------------------\n\n"
              "unc size: 0.000 MB\nTOTAL size: 0.000 MB\n");
}

TEST_F(ListCommand, LookingChangesNoByte)
{
    const auto before = FilesOf(m_oFolder.Path());
    for (const wchar_t* command : {L"list", L"info", L"stats", L"check"})
        EXPECT_EQ(RunCommand({command, List()}).code, ExitCode::Done) << command;
    EXPECT_EQ(FilesOf(m_oFolder.Path()), before);
}

TEST_F(ListCommand, AWarningAboutALineDoesNotStopTheCommand)
{
    Write("t.txt", "# remark\r\n\"abc\" width=1 height=1\r\n");
    const auto result = RunCommand({L"list", List()});
    EXPECT_EQ(result.code, ExitCode::Done);
    EXPECT_NE(result.err.find("Unknown line '# remark\n' found while parsing TXT file."), std::string::npos)
        << result.err;
}
