#include "base/File.h"

#include <array>
#include <gtest/gtest.h>

#include "base/Text.h"
#include "tests/support/DatabaseBuilder.h"
#include "tests/support/FaultyFileSystem.h"
#include "tests/support/TemporaryFolder.h"

TEST(File, ReadsAndWritesAtPlaces)
{
    const CTemporaryFolder folder;
    const auto file = DiskFileSystem().Open(folder / "a", OpenMode::Truncate);
    ASSERT_TRUE(file);
    EXPECT_TRUE(file->WriteAt(2, BytesOf("xyz")));
    EXPECT_EQ(file->Size(), 5U);
    std::array<std::byte, 8> out{};
    EXPECT_EQ(file->ReadAt(3, out), 2U);
    EXPECT_EQ(out[0], std::byte{'y'});
    EXPECT_EQ(file->ReadAt(5, out), 0U);
    EXPECT_TRUE(file->Resize(3));
    EXPECT_EQ(file->Size(), 3U);
    EXPECT_TRUE(file->Sync());
}

TEST(File, OpensOnlyWhatIsThereAndARegularFile)
{
    const CTemporaryFolder folder;
    EXPECT_FALSE(DiskFileSystem().Open(folder / "missing", OpenMode::Read));
    EXPECT_FALSE(DiskFileSystem().Open(folder / "missing", OpenMode::ReadWrite));
    EXPECT_FALSE(DiskFileSystem().Open(folder.Path(), OpenMode::Read));
    EXPECT_FALSE(DiskFileSystem().Open(folder.Path(), OpenMode::Truncate));
    EXPECT_TRUE(DiskFileSystem().Exists(folder.Path()));
}

TEST(File, KeepsOtherWritersOut)
{
    const CTemporaryFolder folder;
    auto file = DiskFileSystem().Open(folder / "a", OpenMode::Truncate);
    ASSERT_TRUE(file);
    file->WriteAt(0, BytesOf("kept"));
    EXPECT_FALSE(DiskFileSystem().Open(folder / "a", OpenMode::ReadWrite));
    EXPECT_FALSE(DiskFileSystem().Open(folder / "a", OpenMode::Truncate));
    EXPECT_TRUE(DiskFileSystem().Open(folder / "a", OpenMode::Read));
    file.reset();
    EXPECT_EQ(ReadWholeFile(DiskFileSystem(), folder / "a", 4), BytesOf("kept"));
    EXPECT_FALSE(ReadWholeFile(DiskFileSystem(), folder / "a", 3)) << "longer than allowed";
}

TEST(File, CopiesAndReplaces)
{
    const CTemporaryFolder folder;
    EXPECT_TRUE(WriteWholeFile(DiskFileSystem(), folder / "a", BytesOf("one")));
    EXPECT_TRUE(DiskFileSystem().Copy(folder / "a", folder / "b"));
    EXPECT_FALSE(DiskFileSystem().Copy(folder / "a", folder / "b")) << "never over something";
    EXPECT_TRUE(WriteWholeFile(DiskFileSystem(), folder / "a", BytesOf("two")));
    EXPECT_TRUE(DiskFileSystem().Replace(folder / "a", folder / "b"));
    EXPECT_FALSE(DiskFileSystem().Exists(folder / "a"));
    EXPECT_EQ(ReadWholeFile(DiskFileSystem(), folder / "b", 100), BytesOf("two"));
    EXPECT_FALSE(DiskFileSystem().Replace(folder / "a", folder / "b"));
    EXPECT_TRUE(DiskFileSystem().Remove(folder / "b"));
    EXPECT_FALSE(DiskFileSystem().Remove(folder / "b"));
}

TEST(File, KeepsTheOldContentsWhereverAWholeWriteFails)
{
    const CTemporaryFolder folder;
    ASSERT_TRUE(WriteWholeFile(DiskFileSystem(), folder / "a", BytesOf("old contents")));
    std::uint32_t goodWrites = 0;
    for (;; ++goodWrites) {
        CFaultyFileSystem disk(goodWrites);
        if (WriteWholeFile(disk, folder / "a", BytesOf("new")))
            break;
        EXPECT_EQ(ReadWholeFile(DiskFileSystem(), folder / "a", 100), BytesOf("old contents")) << goodWrites;
    }
    EXPECT_EQ(goodWrites, 3U) << "creating, writing, replacing";
    EXPECT_EQ(ReadWholeFile(DiskFileSystem(), folder / "a", 100), BytesOf("new"));
}

TEST(File, OpensLongPathsAndOtherScripts)
{
    const CTemporaryFolder folder;
    auto path = folder.Path();
    for (int depth = 0; depth < 4; ++depth)
        path /= ToPath(std::wstring(70, L'\x0416'));
    std::error_code error;
    std::filesystem::create_directories(path, error);
    if (error)
        GTEST_SKIP() << "this system has no such folders: " << error.message();
    EXPECT_TRUE(WriteWholeFile(DiskFileSystem(), path / "a", BytesOf("deep")));
    EXPECT_EQ(ReadWholeFile(DiskFileSystem(), path / "a", 100), BytesOf("deep"));
}
