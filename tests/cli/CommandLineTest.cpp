#include <fstream>
#include <gtest/gtest.h>

#include "tests/cli/CommandRunner.h"
#include "tests/support/TemporaryFolder.h"

TEST(CommandLine, WithoutACommandShowsTheUsageAndFails)
{
    const auto result = RunCommand({});
    EXPECT_EQ(result.code, ExitCode::Usage);
    EXPECT_NE(result.err.find("mavrel-cli [OPTIONS] COMMAND ARGUMENTS"), std::string::npos);
}

TEST(CommandLine, HelpListsEveryCommand)
{
    const auto result = RunCommand({L"--help"});
    EXPECT_EQ(result.code, ExitCode::Done);
    for (const char* name :
         {"new",         "info",   "list",   "check", "recover",  "stats",      "set",
          "rename",      "alias",  "delete", "move",  "category", "fix-hashes", "default-thumbnails",
          "rebuild-toc", "import", "export", "raw",   "aliases",  "siblings",   "hash",
          "md5",         "plugins"})
        EXPECT_NE(result.out.find(std::string("\n  ") + name + " "), std::string::npos) << name;
}

TEST(CommandLine, EveryCommandHasHelpOfItsOwn)
{
    const auto result = RunCommand({L"export", L"--help"});
    EXPECT_EQ(result.code, ExitCode::Done);
    EXPECT_EQ(result.out.find("mavrel-cli export DB [TEXTURE...] --cache CACHE --out DIR"), 0U);
}

TEST(CommandLine, VersionShowsTheBuildNumber)
{
    EXPECT_EQ(RunCommand({L"--version"}).out, "mavrel-cli 0.7b build #415\n");
}

TEST(CommandLine, AnUnknownCommandIsAUsageError)
{
    EXPECT_EQ(RunCommand({L"defragment"}).code, ExitCode::Usage);
}

TEST(CommandLine, AMissingWordIsAUsageError)
{
    EXPECT_EQ(RunCommand({L"rename", L"a.txt", L"b"}).code, ExitCode::Usage);
}

TEST(CommandLine, AnUnknownGameIsAUsageError)
{
    EXPECT_EQ(RunCommand({L"--game", L"lcs", L"hash", L"a"}).code, ExitCode::Usage);
}

TEST(CommandLine, YesAndNoExcludeEachOther)
{
    EXPECT_EQ(RunCommand({L"--yes", L"--no", L"hash", L"a"}).code, ExitCode::Usage);
}

TEST(CommandLine, TakesGlobalOptionsBehindTheCommandToo)
{
    EXPECT_EQ(RunCommand({L"hash", L"radar00", L"--json"}).out, "{\"hash\": \"0x32840275\"}\n");
}

TEST(CommandLine, HashShowsTheNameHash)
{
    EXPECT_EQ(RunCommand({L"hash", L"abc"}).out, "0x0001B6F3\n");
    EXPECT_EQ(RunCommand({L"hash", L""}).out, "0x00000000\n");
}

TEST(CommandLine, Md5ShowsTheDigestOfAFile)
{
    const CTemporaryFolder folder;
    std::ofstream(folder / "abc", std::ios::binary) << "abc";
    EXPECT_EQ(RunCommand({L"md5", (folder / "abc").wstring()}).out, "900150983cd24fb0d6963f7d28e17f72\n");
}

TEST(CommandLine, Md5OfAMissingFileFails)
{
    const CTemporaryFolder folder;
    EXPECT_EQ(RunCommand({L"md5", (folder / "none").wstring()}).code, ExitCode::Failed);
}

TEST(CommandLine, PluginsListsTheCodecsAndTheirBindings)
{
    const auto result = RunCommand({L"plugins", L"--json"});
    EXPECT_EQ(result.code, ExitCode::Done);
    for (const char* part : {"\"supports\": [\"dxt\"]", "\"supports\": [\"etc\"]", "\"supports\": [\"pvr\"]",
                             "\"quality\": [\"Normal\"", "\"dithering\": [\"None\"", "\"unc\": \"\""})
        EXPECT_NE(result.out.find(part), std::string::npos) << part << "\n" << result.out;
}

TEST(CommandLine, AMissingDatabaseFailsWithTheTextOfTheWindow)
{
    const CTemporaryFolder folder;
    const auto result = RunCommand({L"list", (folder / "none.txt").wstring()});
    EXPECT_EQ(result.code, ExitCode::Failed);
    EXPECT_EQ(result.err.find("No caches found to load, lol."), 0U);
    EXPECT_TRUE(FilesOf(folder.Path()).empty());
}
