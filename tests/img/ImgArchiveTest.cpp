#include "img/ImgArchive.h"

#include <algorithm>
#include <cerrno>
#include <gtest/gtest.h>

#include "base/Text.h"
#include "tests/support/ImgFiles.h"
#include "tests/support/MemoryFileSystem.h"
#include "tests/support/TemporaryFolder.h"

namespace {

ImgBytes Letters(std::size_t count, char letter)
{
    return ImgBytes(count, static_cast<std::byte>(letter));
}

std::vector<ImgEntry> TwoEntries()
{
    return {{.name = "road.txd", .contents = Letters(3000, 'r')},
            {.name = "house.dff", .contents = Letters(2048, 'h')}};
}

/// A file system whose files refuse to be opened for writing, or fail to be read from some place on.
class CAwkwardFileSystem final : public IFileSystem {
public:
    explicit CAwkwardFileSystem(CMemoryFileSystem& files) : m_rFiles(files) {}

    std::unique_ptr<IFile> Open(const std::filesystem::path& file, OpenMode mode) override
    {
        m_aModes.push_back(mode);
        if (refusal != 0 && mode == OpenMode::ReadWrite) {
            errno = refusal;
            return nullptr;
        }
        auto opened = m_rFiles.Open(file, mode);
        return opened ? std::make_unique<CAwkwardFile>(std::move(opened), readableBytes) : nullptr;
    }
    bool Exists(const std::filesystem::path& file) const override { return m_rFiles.Exists(file); }
    bool Replace(const std::filesystem::path& from, const std::filesystem::path& to) override
    {
        return m_rFiles.Replace(from, to);
    }
    bool Copy(const std::filesystem::path& from, const std::filesystem::path& to) override
    {
        return m_rFiles.Copy(from, to);
    }
    bool Remove(const std::filesystem::path& file) override { return m_rFiles.Remove(file); }

    const std::vector<OpenMode>& Modes() const { return m_aModes; }

    std::uint64_t readableBytes = UINT64_MAX;
    int refusal = 0;

private:
    class CAwkwardFile final : public IFile {
    public:
        CAwkwardFile(std::unique_ptr<IFile> file, const std::uint64_t& readable)
            : m_pFile(std::move(file)), m_rReadable(readable)
        {
        }
        std::uint64_t Size() const override { return m_pFile->Size(); }
        std::size_t ReadAt(std::uint64_t position, std::span<std::byte> out) const override
        {
            if (position >= m_rReadable)
                return 0;
            const auto left =
                static_cast<std::size_t>(std::min<std::uint64_t>(out.size(), m_rReadable - position));
            return m_pFile->ReadAt(position, out.first(left));
        }
        bool WriteAt(std::uint64_t, std::span<const std::byte>) override
        {
            ADD_FAILURE() << "an archive is never written to";
            return false;
        }
        bool Resize(std::uint64_t) override
        {
            ADD_FAILURE() << "an archive is never cut";
            return false;
        }
        bool Flush() override { return true; }
        bool Sync() override { return true; }

    private:
        std::unique_ptr<IFile> m_pFile;
        const std::uint64_t& m_rReadable;
    };

    CMemoryFileSystem& m_rFiles;
    std::vector<OpenMode> m_aModes;
};

class ImgArchive : public testing::Test {
protected:
    void PutVersion1(const std::vector<ImgEntry>& entries)
    {
        const Version1Files files = Version1Archive(entries);
        m_oFiles.Put("models/a.img", files.img);
        m_oFiles.Put("models/a.dir", files.dir);
    }
    void PutVersion2(const std::vector<ImgEntry>& entries, const ImgFileOptions& options = {})
    {
        m_oFiles.Put("a.img", Version2Archive(entries, options));
    }

    CMemoryFileSystem m_oFiles;
    CImgArchive m_oArchive{m_oFiles};
};

TEST_F(ImgArchive, ListsVersion2)
{
    PutVersion2(TwoEntries());
    ASSERT_TRUE(m_oArchive.Open("a.img"));
    EXPECT_TRUE(m_oArchive.IsVersion2());
    EXPECT_EQ(m_oArchive.Magic(), 0x32524556U);
    EXPECT_EQ(m_oArchive.Path(), "a.img");
    ASSERT_EQ(m_oArchive.EntryCount(), 2U);
    EXPECT_EQ(m_oArchive.EntryName(0), L"road.txd");
    EXPECT_EQ(m_oArchive.EntryOffset(0), 2048U);
    EXPECT_EQ(m_oArchive.EntrySize(0), 4096U);
    EXPECT_EQ(m_oArchive.EntryName(1), L"house.dff");
    EXPECT_EQ(m_oArchive.EntryOffset(1), 6144U);
    EXPECT_EQ(m_oArchive.EntrySize(1), 2048U);
    EXPECT_EQ(m_oArchive.ReadEntry(1), Letters(2048, 'h'));
}

TEST_F(ImgArchive, ListsVersion1)
{
    PutVersion1(TwoEntries());
    ASSERT_TRUE(m_oArchive.Open("models/a.img"));
    EXPECT_FALSE(m_oArchive.IsVersion2());
    ASSERT_EQ(m_oArchive.EntryCount(), 2U);
    EXPECT_EQ(m_oArchive.EntryName(0), L"road.txd");
    EXPECT_EQ(m_oArchive.EntryOffset(0), 0U);
    EXPECT_EQ(m_oArchive.EntrySize(0), 4096U);
    EXPECT_EQ(m_oArchive.EntryOffset(1), 4096U);
    EXPECT_EQ(m_oArchive.ReadEntry(1), Letters(2048, 'h'));
}

TEST_F(ImgArchive, OpensAnEmptyVersion2)
{
    m_oFiles.Put("a.img", Version2Archive({}));
    ASSERT_TRUE(m_oArchive.Open("a.img"));
    EXPECT_TRUE(m_oArchive.IsVersion2());
    EXPECT_EQ(m_oArchive.EntryCount(), 0U);
    EXPECT_EQ(m_oArchive.EntryName(0), L"");
    EXPECT_EQ(m_oArchive.EntrySize(0), 0U);
    EXPECT_EQ(m_oArchive.EntryOffset(0), 0U);
    EXPECT_EQ(m_oArchive.ReadEntry(0), std::nullopt);
}

TEST_F(ImgArchive, ReplacesTheLastFourCharactersForTheDirectory)
{
    const Version1Files files = Version1Archive(TwoEntries());
    m_oFiles.Put("archive.bin", files.img);
    m_oFiles.Put("archive.dir", files.dir);
    EXPECT_TRUE(m_oArchive.Open("archive.bin"));
    EXPECT_EQ(m_oArchive.EntryCount(), 2U);
    m_oFiles.Put("archive", files.img);
    m_oFiles.Put("arc.dir", {});
    EXPECT_TRUE(m_oArchive.Open("archive"));
    EXPECT_EQ(m_oArchive.EntryCount(), 0U);
}

TEST_F(ImgArchive, IgnoresTheRestOfADirectory)
{
    Version1Files files = Version1Archive({{.name = "a"}, {.name = "b"}, {.name = "c"}});
    files.dir.resize(100);
    m_oFiles.Put("a.img", files.img);
    m_oFiles.Put("a.dir", files.dir);
    ASSERT_TRUE(m_oArchive.Open("a.img"));
    ASSERT_EQ(m_oArchive.EntryCount(), 3U);
    EXPECT_EQ(m_oArchive.EntryName(2), L"c");
}

TEST_F(ImgArchive, TakesTheSizeInArchiveOnlyWithoutAStreamingSize)
{
    PutVersion2({{.name = "a", .size = 0, .sizeInArchive = 5}, {.name = "b", .size = 3, .sizeInArchive = 5}});
    ASSERT_TRUE(m_oArchive.Open("a.img"));
    EXPECT_EQ(m_oArchive.EntrySize(0), 10240U);
    EXPECT_EQ(m_oArchive.EntrySize(1), 6144U);
}

TEST_F(ImgArchive, CountsPositionsInSectors)
{
    PutVersion2({{.name = "a", .offset = 0x1000, .size = 1}});
    ASSERT_TRUE(m_oArchive.Open("a.img"));
    EXPECT_EQ(m_oArchive.EntryOffset(0), 0x00800000U);
}

TEST_F(ImgArchive, FailsWithoutTheDirectoryFileAndHoldsTheArchive)
{
    m_oFiles.Put("a.img", Letters(4096, 'x'));
    EXPECT_FALSE(m_oArchive.Open("a.img"));
    EXPECT_NE(m_oArchive.File(), nullptr);
    EXPECT_EQ(m_oArchive.Magic(), 0x78787878U);
    EXPECT_EQ(m_oArchive.EntryCount(), 0U);
    EXPECT_TRUE(m_oArchive.Close());
    EXPECT_EQ(m_oArchive.File(), nullptr);
    EXPECT_EQ(m_oArchive.Magic(), 0U);
}

TEST_F(ImgArchive, ForgetsTheEntriesOfTheArchiveBefore)
{
    PutVersion2(TwoEntries());
    ASSERT_TRUE(m_oArchive.Open("a.img"));
    m_oFiles.Put("b.img", Letters(4096, 'x'));
    EXPECT_FALSE(m_oArchive.Open("b.img"));
    EXPECT_EQ(m_oArchive.EntryCount(), 0U);
    EXPECT_FALSE(m_oArchive.Open("missing.img"));
    EXPECT_EQ(m_oArchive.EntryCount(), 0U);
    EXPECT_EQ(m_oArchive.File(), nullptr);
    EXPECT_EQ(m_oArchive.Path(), "");
}

TEST_F(ImgArchive, ClosesTwiceAndWithoutHavingBeenOpened)
{
    EXPECT_TRUE(m_oArchive.Close());
    PutVersion2(TwoEntries());
    ASSERT_TRUE(m_oArchive.Open("a.img"));
    EXPECT_TRUE(m_oArchive.Close());
    EXPECT_TRUE(m_oArchive.Close());
    EXPECT_EQ(m_oArchive.EntryCount(), 0U);
    EXPECT_EQ(m_oArchive.ReadEntry(0), std::nullopt);
    EXPECT_EQ(m_oArchive.ReadDirectory(), 0U);
}

TEST_F(ImgArchive, ReadsNamesByteByByte)
{
    PutVersion2({{.name = "abcdefghijklmnopqrstuvwxyz"}, {.name = "caf\xE9.txd"}, {.name = ""}});
    ASSERT_TRUE(m_oArchive.Open("a.img"));
    EXPECT_EQ(m_oArchive.EntryName(0), L"abcdefghijklmnopqrstuvwx") << "24 characters without a terminator";
    EXPECT_EQ(m_oArchive.EntryName(1), L"caf\u00E9.txd");
    EXPECT_EQ(m_oArchive.EntryName(2), L"");
}

TEST_F(ImgArchive, ComparesTheExtensionInLowerCase)
{
    PutVersion2({{.name = "ROAD.TXD"},
                 {.name = "road.txd.bak"},
                 {.name = "a.b.TxD"},
                 {.name = "txd"},
                 {.name = "roadtxd"},
                 {.name = ""},
                 {.name = ".txd"},
                 {.name = "road.tx"}});
    ASSERT_TRUE(m_oArchive.Open("a.img"));
    std::vector<bool> found;
    for (std::uint32_t i = 0; i < m_oArchive.EntryCount(); ++i)
        found.push_back(m_oArchive.HasExtension(i, "txd"));
    // Without a dot the whole name counts.
    EXPECT_EQ(found, (std::vector<bool>{true, false, true, true, false, false, true, false}));
    EXPECT_FALSE(m_oArchive.HasExtension(99, "txd"));
}

TEST_F(ImgArchive, OpensTheDirectoryAloneAndTheArchiveForReadingAndWriting)
{
    PutVersion1(TwoEntries());
    CAwkwardFileSystem files(m_oFiles);
    CImgArchive archive(files);
    ASSERT_TRUE(archive.Open("models/a.img"));
    EXPECT_EQ(files.Modes(), (std::vector<OpenMode>{OpenMode::ReadWrite, OpenMode::Exclusive}));
}

// On the disk.

TEST(ImgArchiveOnDisk, KeepsOthersFromWritingWhileItIsOpen)
{
    const CTemporaryFolder folder;
    WriteVersion2Archive(folder / "a.img", TwoEntries());
    CImgArchive archive;
    ASSERT_TRUE(archive.Open(folder / "a.img"));
    EXPECT_EQ(DiskFileSystem().Open(folder / "a.img", OpenMode::ReadWrite), nullptr);
    EXPECT_EQ(archive.EntryCount(), 2U);
    archive.Close();
    EXPECT_NE(DiskFileSystem().Open(folder / "a.img", OpenMode::ReadWrite), nullptr);
}

TEST(ImgArchiveOnDisk, OpensAnArchiveThatMayNotBeWritten)
{
    const CTemporaryFolder folder;
    WriteVersion1Archive(folder / "a.img", TwoEntries());
    using std::filesystem::perms;
    const auto writing = perms::owner_write | perms::group_write | perms::others_write;
    for (const char* name : {"a.img", "a.dir"})
        std::filesystem::permissions(folder / name, writing, std::filesystem::perm_options::remove);
    CImgArchive archive;
    EXPECT_TRUE(archive.Open(folder / "a.img"));
    EXPECT_EQ(archive.EntryCount(), 2U);
    archive.Close();
    for (const char* name : {"a.img", "a.dir"})
        std::filesystem::permissions(folder / name, writing, std::filesystem::perm_options::add);
}

#ifndef _WIN32
// Where files have no holes this would fill the disk with three gigabytes.
TEST(ImgArchiveOnDisk, ReadsBeyondTwoGigabytes)
{
    const CTemporaryFolder folder;
    constexpr std::uint32_t kSector = 0x180000;  // 3 GiB
    WriteVersion2Archive(folder / "a.img", {{.name = "far.txd", .offset = kSector, .size = 1}});
    {
        const auto file = DiskFileSystem().Open(folder / "a.img", OpenMode::ReadWrite);
        ASSERT_TRUE(file);
        // A hole: nothing but the last sector takes room on the disk.
        if (!file->Resize((std::uint64_t{kSector} + 1) * 2048))
            GTEST_SKIP() << "no file of this size here";
        ASSERT_TRUE(file->WriteAt(std::uint64_t{kSector} * 2048, Letters(2048, 'f')));
    }
    CImgArchive archive;
    ASSERT_TRUE(archive.Open(folder / "a.img"));
    EXPECT_EQ(archive.EntryOffset(0), 0xC0000000U);
    EXPECT_EQ(archive.ReadEntry(0), Letters(2048, 'f'));
}

TEST_F(ImgArchive, OpensForReadingWhereWritingIsRefused)
{
    PutVersion1(TwoEntries());
    CAwkwardFileSystem files(m_oFiles);
    files.refusal = EACCES;
    CImgArchive archive(files);
    EXPECT_TRUE(archive.Open("models/a.img"));
    EXPECT_EQ(archive.EntryCount(), 2U);
    EXPECT_EQ(files.Modes(),
              (std::vector<OpenMode>{OpenMode::ReadWrite, OpenMode::Read, OpenMode::Exclusive}));
    files.refusal = EWOULDBLOCK;
    EXPECT_FALSE(archive.Open("models/a.img")) << "somebody else is writing to it";
}
#endif

// Damage.

TEST_F(ImgArchive, DoesNotBelieveACountThatTheFileHasNoRoomFor)
{
    PutVersion2(TwoEntries(), {.count = 0xFFFFFFFF});
    ASSERT_TRUE(m_oArchive.Open("a.img"));
    EXPECT_EQ(m_oArchive.EntryCount(), 255U) << "8192 bytes have room for 255 entries behind the header";
    EXPECT_EQ(m_oArchive.EntryName(1), L"house.dff");
}

TEST_F(ImgArchive, ListsEntriesBeyondTheEndAndReadsWhatIsThere)
{
    PutVersion2({{.name = "half", .contents = Letters(2048, 'h'), .size = 2},
                 {.name = "beyond", .offset = 1000, .size = 1},
                 {.name = "nothing", .size = 0}});
    ASSERT_TRUE(m_oArchive.Open("a.img"));
    EXPECT_EQ(m_oArchive.EntrySize(0), 4096U);
    EXPECT_EQ(m_oArchive.ReadEntry(0), Letters(2048, 'h'));
    EXPECT_EQ(m_oArchive.EntryOffset(1), 2048000U);
    EXPECT_EQ(m_oArchive.ReadEntry(1), ImgBytes());
    EXPECT_EQ(m_oArchive.ReadEntry(2), ImgBytes());
}

TEST_F(ImgArchive, DoesNotReadWhatEndsAtFourGigabytes)
{
    // Just below, exactly at, and where 32 bits would have wrapped around to the first sector.
    PutVersion1({{.name = "below", .offset = 0x1FFFFE, .size = 1},
                 {.name = "at", .offset = 0x1FFFFF, .size = 1},
                 {.name = "wraps", .offset = 0x200000, .size = 1},
                 {.name = "largest", .offset = 0xFFFFFFFF, .size = 0xFFFFFFFF},
                 {.name = "empty", .offset = 0x200000, .size = 0}});
    ASSERT_TRUE(m_oArchive.Open("models/a.img"));
    EXPECT_TRUE(m_oArchive.IsReachable(0));
    for (std::uint32_t i = 1; i < 5; ++i) {
        EXPECT_FALSE(m_oArchive.IsReachable(i));
        EXPECT_EQ(m_oArchive.ReadEntry(i), std::nullopt) << i;
    }
    EXPECT_EQ(m_oArchive.EntryOffset(2), 0x100000000U);
    EXPECT_EQ(m_oArchive.EntryOffset(3), 0x7FFFFFFF800U);
    EXPECT_EQ(m_oArchive.EntrySize(3), 0x7FFFFFFF800U);
}

TEST_F(ImgArchive, OpensEveryTruncationOfVersion2)
{
    const ImgBytes whole = Version2Archive(TwoEntries());
    for (std::size_t length = 0; length < whole.size(); length += length < 80 ? 1 : 97) {
        m_oFiles.Put("a.img", {whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)});
        m_oFiles.Put("a.dir", {});
        ASSERT_TRUE(m_oArchive.Open("a.img")) << length;
        const std::uint32_t expected = length < 40 ? 0 : (length < 72 ? 1 : 2);
        ASSERT_EQ(m_oArchive.EntryCount(), expected) << length;
        for (std::uint32_t i = 0; i < expected; ++i) {
            const auto bytes = m_oArchive.ReadEntry(i);
            ASSERT_TRUE(bytes) << length;
            ASSERT_LE(bytes->size(), m_oArchive.EntrySize(i)) << length;
            ASSERT_LE(m_oArchive.EntryOffset(i) + bytes->size(), std::max<std::uint64_t>(length, 6144))
                << length;
        }
    }
}

TEST_F(ImgArchive, ReadsNothingWhereTheDiskFails)
{
    PutVersion2(TwoEntries());
    CAwkwardFileSystem files(m_oFiles);
    files.readableBytes = 40;
    CImgArchive archive(files);
    ASSERT_TRUE(archive.Open("a.img"));
    ASSERT_EQ(archive.EntryCount(), 2U);
    EXPECT_EQ(archive.EntryName(0), L"road.txd");
    EXPECT_EQ(archive.EntryName(1), L"") << "what could not be read is zero";
    EXPECT_EQ(archive.EntrySize(1), 0U);
    EXPECT_EQ(archive.ReadEntry(0), ImgBytes());
    files.readableBytes = 2;
    EXPECT_FALSE(archive.Open("a.img")) << "no version 2 without its magic, and there is no directory file";
    EXPECT_EQ(archive.Magic(), 0x4556U);
}

TEST_F(ImgArchive, EndsWhereAnArchiveThatShrankEnds)
{
    PutVersion2(TwoEntries());
    ASSERT_TRUE(m_oArchive.Open("a.img"));
    const auto writer = m_oFiles.Open("a.img", OpenMode::ReadWrite);
    ASSERT_TRUE(writer->Resize(3000));
    EXPECT_EQ(m_oArchive.EntryCount(), 2U);
    EXPECT_EQ(m_oArchive.ReadEntry(0), Letters(952, 'r'));
    EXPECT_EQ(m_oArchive.ReadEntry(1), ImgBytes());
    ASSERT_TRUE(writer->Resize(50));
    EXPECT_EQ(m_oArchive.ReadDirectory(), 1U);
}

}  // namespace
