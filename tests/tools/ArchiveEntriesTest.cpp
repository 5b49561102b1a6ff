#include "tools/ArchiveEntries.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/Text.h"
#include "tests/support/DatabaseBuilder.h"
#include "tests/support/FaultyFileSystem.h"
#include "tests/support/ImgFiles.h"
#include "tests/support/MemoryFileSystem.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class CNotedProgress final : public IProgress {
public:
    void Report(std::uint32_t current, std::uint32_t total, const std::wstring& text) override
    {
        m_aReports.push_back(std::to_string(current) + "/" + std::to_string(total) + " " + ToUtf8(text));
    }
    bool Cancelled() const override { return false; }
    const std::vector<std::string>& Reports() const { return m_aReports; }

private:
    std::vector<std::string> m_aReports;
};

class ArchiveEntries : public testing::Test {
protected:
    CImgArchive& Open(const std::vector<ImgEntry>& entries)
    {
        m_oFiles.Put("a.img", Version2Archive(entries));
        EXPECT_TRUE(m_oArchive.Open("a.img"));
        return m_oArchive;
    }
    CMemoryFileSystem m_oFiles;
    CImgArchive m_oArchive{m_oFiles};
    CNotedProgress m_oProgress;
};

}  // namespace

TEST_F(ArchiveEntries, ListsEverything)
{
    Open({{.name = "road.txd"}, {.name = "road.dff"}, {.name = ""}});
    EXPECT_THAT(ListArchive(m_oArchive, ArchiveRows::Everything, m_oProgress), ElementsAre(0, 1, 2));
    EXPECT_THAT(m_oProgress.Reports(), ElementsAre("0/0 OK"));
}

TEST_F(ArchiveEntries, ListsDictionariesByTheirExtensionInAnyCase)
{
    Open({{.name = "road.dff"}, {.name = "ROAD.TXD"}, {.name = "road.txd.old"}, {.name = "a.txd"}});
    EXPECT_THAT(ListArchive(m_oArchive, ArchiveRows::Dictionaries, m_oProgress), ElementsAre(1, 3));
    EXPECT_TRUE(IsModelEntry(m_oArchive, 0));
    EXPECT_FALSE(IsModelEntry(m_oArchive, 1));
    EXPECT_TRUE(IsDictionaryEntry(m_oArchive, 1));
}

TEST_F(ArchiveEntries, ListsNothingWithoutDictionariesOrWithoutAnArchive)
{
    EXPECT_THAT(ListArchive(m_oArchive, ArchiveRows::Everything, m_oProgress), IsEmpty());
    Open({{.name = "road.dff"}});
    EXPECT_THAT(ListArchive(m_oArchive, ArchiveRows::Dictionaries, m_oProgress), IsEmpty());
    EXPECT_THAT(m_oProgress.Reports(), ElementsAre("0/0 OK", "0/0 OK"));
}

TEST_F(ArchiveEntries, TellsWhereItIsInALargeArchive)
{
    std::vector<ImgEntry> entries;
    for (int i = 0; i < 2500; ++i)
        entries.push_back({.name = "e" + std::to_string(i)});
    Open(entries);
    EXPECT_EQ(ListArchive(m_oArchive, ArchiveRows::Everything, m_oProgress).size(), 2500U);
    EXPECT_THAT(m_oProgress.Reports(), ElementsAre("1024/2500 e1023", "2048/2500 e2047", "0/0 OK"));
}

TEST(ArchiveEntryTexts, ShowSizesAndPlaces)
{
    EXPECT_EQ(EntrySizeText(0), L"0 b");
    EXPECT_EQ(EntrySizeText(1023), L"1023 b");
    EXPECT_EQ(EntrySizeText(2048), L"2.00 KB");
    EXPECT_EQ(EntrySizeText(1572864), L"1.50 MB");
    EXPECT_EQ(EntrySizeText(0x3FFFF800), L"1024.00 MB");
    EXPECT_EQ(EntrySizeText(0x40000000), L"");
    EXPECT_EQ(EntrySizeText(0x100000000), L"") << "no wrap-around";
    EXPECT_EQ(EntrySizeText(0x7FFFFFFF800), L"");
    EXPECT_EQ(EntryOffsetText(0), L"0x00000000");
    EXPECT_EQ(EntryOffsetText(0x800000), L"0x00800000");
    EXPECT_EQ(EntryOffsetText(0x7FFFFFFF800), L"0x7fffffff800");
}

TEST(ArchiveEntryTexts, OfferTheExtensionInBothCases)
{
    EXPECT_EQ(EntryFileFilter(L"road.txd"), L"TXD file|*.txd|All files|*.*|");
    EXPECT_EQ(EntryFileFilter(L"ROAD.Dff"), L"DFF file|*.dff|All files|*.*|");
    EXPECT_EQ(EntryFileFilter(L"a.b|c"), L"B_C file|*.b_c|All files|*.*|") << "a bar would end the filter";
}

TEST(ArchiveEntryTexts, KeepNamesInsideTheirFolder)
{
    EXPECT_EQ(EntryFileName(L"road.txd"), L"road.txd");
    EXPECT_EQ(EntryFileName(L"..\\..\\windows\\a.txd"), L"______windows_a.txd");
    EXPECT_EQ(EntryFileName(L"../a"), L"___a");
    EXPECT_EQ(EntryFileName(L"/etc/passwd"), L"_etc_passwd");
    EXPECT_EQ(EntryFileName(L"C:a.txd"), L"C_a.txd");
    EXPECT_EQ(EntryFileName(L"a.txd:stream"), L"a.txd_stream");
    EXPECT_EQ(EntryFileName(L"."), L"_");
    EXPECT_EQ(EntryFileName(L".."), L"__");
    EXPECT_EQ(EntryFileName(L""), L"_");
    EXPECT_EQ(EntryFileName(L"a. "), L"a__");
    EXPECT_EQ(EntryFileName(L"a\x01\x1F"), L"a__");
}

TEST(ArchiveEntryTexts, KeepNamesOffDevices)
{
    for (const wchar_t* device : {L"con", L"NUL", L"aux.txd", L"Prn.a.b", L"com1", L"LPT9.txd", L"com0",
                                  L"con .txd", L"lpt\u00B2", L"conin$", L"CONOUT$.txd"})
        EXPECT_EQ(EntryFileName(device), L"_" + std::wstring(device));
    for (const wchar_t* plain : {L"console.txd", L"com10.txd", L"a.con", L"comx", L"lpt", L"null"})
        EXPECT_EQ(EntryFileName(plain), plain);
}

TEST_F(ArchiveEntries, SavesAnEntryAsANewFile)
{
    Open({{.name = "a.txd", .contents = BytesOf("first")}, {.name = "b.txd", .contents = BytesOf("second")}});
    EXPECT_EQ(ExportEntry(m_oArchive, 1, "out.txd", m_oFiles), EntryExport::Written);
    ASSERT_NE(m_oFiles.Find("out.txd"), nullptr);
    EXPECT_EQ(m_oFiles.Find("out.txd")->size(), 2048U);
    EXPECT_EQ(TextOf(*m_oFiles.Find("out.txd")).substr(0, 7), std::string("second\0", 7));
}

TEST_F(ArchiveEntries, SavesALargeEntryWhole)
{
    ImgBytes large(3U << 20);
    for (std::size_t at = 0; at < large.size(); ++at)
        large[at] = static_cast<std::byte>(at * 7 >> 3);
    Open({{.name = "a.txd", .contents = large}});
    EXPECT_EQ(ExportEntry(m_oArchive, 0, "out.txd", m_oFiles), EntryExport::Written);
    EXPECT_EQ(*m_oFiles.Find("out.txd"), large);
}

TEST_F(ArchiveEntries, SavesAnEmptyEntryAsAnEmptyFile)
{
    Open({{.name = "a.txd", .size = 0}});
    EXPECT_EQ(ExportEntry(m_oArchive, 0, "out.txd", m_oFiles), EntryExport::Written);
    EXPECT_EQ(m_oFiles.Find("out.txd")->size(), 0U);
}

TEST_F(ArchiveEntries, LeavesAFileThatExistsAsItIs)
{
    Open({{.name = "a.txd", .contents = BytesOf("new")}});
    m_oFiles.Put("out.txd", BytesOf("old"));
    EXPECT_EQ(ExportEntry(m_oArchive, 0, "out.txd", m_oFiles), EntryExport::Exists);
    EXPECT_EQ(TextOf(*m_oFiles.Find("out.txd")), "old");
}

TEST_F(ArchiveEntries, WritesNothingOfAnEntryThatIsNotWhole)
{
    Open({{.name = "half", .contents = BytesOf("x"), .size = 2},
          {.name = "beyond", .offset = 500, .size = 1},
          {.name = "far", .offset = 0x200000, .size = 1}});
    for (std::uint32_t index = 0; index < 4; ++index) {
        EXPECT_EQ(ExportEntry(m_oArchive, index, "out", m_oFiles), EntryExport::Incomplete) << index;
        EXPECT_FALSE(m_oFiles.Exists("out")) << index;
    }
    m_oArchive.Close();
    EXPECT_EQ(ExportEntry(m_oArchive, 0, "out", m_oFiles), EntryExport::Incomplete);
}

TEST_F(ArchiveEntries, LeavesNoPieceBehindWhenTheDiskIsFull)
{
    Open({{.name = "a.txd", .contents = ImgBytes(5000)}});
    const CTemporaryFolder folder;
    for (std::uint32_t good = 0;; ++good) {
        CFaultyFileSystem files(good);
        const EntryExport result = ExportEntry(m_oArchive, 0, folder / "out", files);
        if (result == EntryExport::Written) {
            EXPECT_GT(good, 0U);
            break;
        }
        EXPECT_EQ(result, EntryExport::NotSaved);
        EXPECT_FALSE(std::filesystem::exists(folder / "out")) << good;
        ASSERT_LT(good, 20U);
    }
    EXPECT_EQ(std::filesystem::file_size(folder / "out"), 6144U);
}
