#include "tools/ExportPictures.h"

#include <algorithm>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/codec/FakeCodecs.h"
#include "tests/codec/TestDatabase.h"

namespace {

using testing::ElementsAre;

constexpr RasterHeader kTwoByTwo = {0, 0x1401, 2, 2};
constexpr RasterHeader kDxt3 = {0, 0x83F2, 4, 4};
constexpr RasterHeader kDxt1 = {0, 0x83F0, 4, 4};

class ExportPictures : public testing::Test {
protected:
    ExportPictures() : m_oDatabase({CacheIndex::Dxt, CacheIndex::Unc})
    {
        std::filesystem::create_directory(Out());
    }

    std::filesystem::path Out() const { return m_oDatabase.Folder() / "out"; }
    void AddPixels(const std::wstring& name)
    {
        m_oDatabase.Add(name, {{CacheIndex::Dxt, {kTwoByTwo, CountingBytes(16)}}});
    }
    ExportCounts ExportAll(const ExportRequest& request = {})
    {
        CNoProgress progress;
        return ExportTextures(*m_oDatabase, m_oDatabase.Plugins(),
                              EntriesToExport(*m_oDatabase, std::nullopt, true), request, Out(), progress);
    }
    std::vector<std::string> Files() const
    {
        std::vector<std::string> names;
        for (const auto& file : std::filesystem::directory_iterator(Out()))
            names.push_back(file.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }

    CTestDatabase m_oDatabase;
};

}  // namespace

// Names.

TEST(SafeFileName, ReplacesWhatAFileSystemCannotHold)
{
    EXPECT_EQ(SafeFileName(L"wall_01"), L"wall_01");
    EXPECT_EQ(SafeFileName(L"a\\b/c:d*e?f<g>h|i\tj"), L"a_b_c_d_e_f_g_h_i_j");
    EXPECT_EQ(SafeFileName(L"with blanks.and one dot"), L"with blanks.and one dot");
    EXPECT_EQ(SafeFileName(L".."), L"__");
    EXPECT_EQ(SafeFileName(L"../../etc/passwd"), L"______etc_passwd");
    EXPECT_EQ(SafeFileName(L"..."), L"__.");
    EXPECT_EQ(SafeFileName(L""), L"_");
}

// The choice of entries.

TEST_F(ExportPictures, ChoosesEverythingInIndexOrder)
{
    AddPixels(L"first");
    m_oDatabase->AddAlias(L"alias", L"first");
    AddPixels(L"second");
    EXPECT_THAT(EntriesToExport(*m_oDatabase, std::nullopt, true), ElementsAre(0U, 1U, 2U));
    EXPECT_THAT(EntriesToExport(*m_oDatabase, std::nullopt, false), ElementsAre(0U, 2U));
}

TEST_F(ExportPictures, ChoosesOnlyTheOriginalsOfACategory)
{
    AddPixels(L"first");
    AddPixels(L"second");
    m_oDatabase->AddAlias(L"alias", L"first");
    m_oDatabase->ChangeProperty(1, Property::Cat, 4);
    m_oDatabase->ChangeProperty(2, Property::Cat, 4);
    EXPECT_THAT(EntriesToExport(*m_oDatabase, 4, false), ElementsAre(1U));
    EXPECT_THAT(EntriesToExport(*m_oDatabase, 4, true), ElementsAre(1U, 2U));
    EXPECT_THAT(EntriesToExport(*m_oDatabase, 0, true), ElementsAre(0U));
}

// Many.

TEST_F(ExportPictures, WritesEachTextureUnderItsName)
{
    AddPixels(L"first");
    m_oDatabase->AddAlias(L"alias", L"first");
    const ExportCounts counts = ExportAll();
    EXPECT_EQ(counts.exported, 2U);
    EXPECT_THAT(Files(), ElementsAre("alias.png", "first.png"));
    const auto picture = LoadImageFile(Out() / "alias.png");
    ASSERT_TRUE(picture);
    EXPECT_THAT(std::vector<int>(picture->Pixels().begin(), picture->Pixels().begin() + 4),
                ElementsAre(2, 1, 0, 3));
}

TEST_F(ExportPictures, NumbersNamesThatBecomeEqual)
{
    AddPixels(L"a/b");
    AddPixels(L"a:b");
    AddPixels(L"A_B");
    AddPixels(L"a_b_2");
    EXPECT_EQ(ExportAll().exported, 4U);
    EXPECT_THAT(Files(), ElementsAre("A_B_3.png", "a_b.png", "a_b_2.png", "a_b_2_2.png"));
}

TEST_F(ExportPictures, WritesTheFormatThatWasAskedFor)
{
    AddPixels(L"first");
    ExportAll({.cache = CacheIndex::Dxt, .format = ImageFormat::Bmp, .extension = L"bmp"});
    std::ifstream in(Out() / "first.bmp", std::ios::binary);
    EXPECT_EQ(in.get(), 'B');
    EXPECT_EQ(in.get(), 'M');
}

TEST_F(ExportPictures, SkipsEntriesWithoutARasterInTheCache)
{
    AddPixels(L"first");
    const ExportCounts counts = ExportAll({.cache = CacheIndex::Unc});
    EXPECT_EQ(counts.exported, 0U);
    EXPECT_EQ(counts.skipped, 1U);
    EXPECT_EQ(counts.failed, 0U);
    EXPECT_EQ(ExportFailureText(counts), L"");
}

TEST_F(ExportPictures, GoesOnAfterATextureThatCannotBeDecodedAndKeepsTheFirstText)
{
    m_oDatabase.Add(L"strange", {{CacheIndex::Dxt, {kDxt3, CountingBytes(16)}}});
    m_oDatabase.Add(L"coded", {{CacheIndex::Dxt, {kDxt1, CountingBytes(8)}}});
    AddPixels(L"plain");
    const ExportCounts counts = ExportAll();
    EXPECT_EQ(counts.exported, 1U);
    EXPECT_EQ(counts.failed, 2U);
    EXPECT_EQ(counts.firstError, L"This format is unsupported");
    EXPECT_EQ(ExportFailureText(counts), L"2 textures could not be exported.\n\nThis format is unsupported");
    EXPECT_THAT(Files(), ElementsAre("plain.png"));
}

TEST_F(ExportPictures, SaysNothingAboutAFileThatCannotBeWritten)
{
    AddPixels(L"first");
    std::filesystem::create_directory(Out() / "first.png");
    const ExportCounts counts = ExportAll();
    EXPECT_EQ(counts.exported, 0U);
    EXPECT_EQ(counts.notSaved, 1U);
    EXPECT_EQ(counts.failed, 0U);
    EXPECT_TRUE(m_oDatabase.Prompt().Shown().empty());
}

TEST_F(ExportPictures, StopsBetweenTwoTexturesWhenAskedTo)
{
    class CStop final : public IProgress {
    public:
        void Report(std::uint32_t current, std::uint32_t, const std::wstring&) override
        {
            m_bStop = current == 1;
        }
        bool Cancelled() const override { return m_bStop; }

    private:
        bool m_bStop = false;
    };
    AddPixels(L"first");
    AddPixels(L"second");
    CStop stop;
    const ExportCounts counts = ExportTextures(*m_oDatabase, m_oDatabase.Plugins(), {0, 1}, {}, Out(), stop);
    EXPECT_TRUE(counts.wasStopped);
    EXPECT_THAT(Files(), ElementsAre("first.png"));
}

// One.

TEST_F(ExportPictures, WritesOneTextureWithTheEncoderOfTheRequest)
{
    AddPixels(L"first");
    ExportTexture(*m_oDatabase, m_oDatabase.Plugins(), 0, {.format = ImageFormat::Jpeg, .extension = L"jpg"},
                  Out() / "one.jpg");
    std::ifstream in(Out() / "one.jpg", std::ios::binary);
    EXPECT_EQ(in.get(), 0xFF);
    EXPECT_EQ(in.get(), 0xD8);
}

TEST_F(ExportPictures, RefusesOneTextureThatCannotBeShown)
{
    m_oDatabase.Add(L"strange", {{CacheIndex::Dxt, {kDxt3, CountingBytes(16)}}});
    m_oDatabase.Add(L"empty", {});
    const auto error = [&](std::uint32_t index) {
        return ErrorOf(
            [&] { ExportTexture(*m_oDatabase, m_oDatabase.Plugins(), index, {}, Out() / "one.png"); });
    };
    EXPECT_EQ(error(0), L"This format is unsupported");
    EXPECT_EQ(error(1), L"Cannot decompress texture.");
    EXPECT_TRUE(Files().empty());
}
