#include "tools/TXDHelper.h"

#include <gtest/gtest.h>

#include "database/DatabaseError.h"
#include "tests/support/MemoryFileSystem.h"
#include "tests/support/RecordingFailures.h"
#include "tests/support/RenderWareFiles.h"

namespace {

using RwFile::Bytes;
using RwFile::Dictionary;
using Lines = std::vector<std::wstring>;

constexpr const char* kFile = "file.txd";

class TXDHelper : public testing::Test {
protected:
    TXDHelper() : m_oHelper(m_oPlugins, m_oFailures, m_oFiles) {}

    void Open(const Bytes& bytes)
    {
        m_oFiles.Put(kFile, bytes);
        m_oHelper.OpenDictionary(kFile);
    }
    std::wstring OpeningErrorOf(const Bytes& bytes)
    {
        try {
            Open(bytes);
        } catch (const RW::CException& error) {
            return error.Message();
        }
        return L"none";
    }

    CMemoryFileSystem m_oFiles;
    CRecordingFailures m_oFailures;
    CPluginTable m_oPlugins;
    CTXDHelper m_oHelper;
};

}  // namespace

TEST_F(TXDHelper, ChoosesTheReaderThatAcceptsTheFirstTexture)
{
    Open(Dictionary({RwFile::PCNative({.platform = 9})}));
    EXPECT_EQ(m_oHelper.Describe(0).platform, 9U);
    Open(Dictionary({RwFile::PS2Native({.width = 64})}));
    EXPECT_EQ(m_oHelper.Describe(0).platform, 4U);
    EXPECT_EQ(m_oHelper.Describe(0).width, 64U);
    Open(Dictionary({RwFile::MobileNative({.platform = 11})}));
    EXPECT_EQ(m_oHelper.Describe(0).platform, 11U);
    EXPECT_EQ(m_oHelper.Describe(0).compression, 2048U);
    EXPECT_EQ(m_oFailures.Count(), 0U);
}

TEST_F(TXDHelper, DescribesATextureByEveryAccessor)
{
    Open(Dictionary({RwFile::PCNative({.name = "road",
                                       .mask = "roada",
                                       .rasterFormat = 0x8300,
                                       .width = 4,
                                       .height = 2,
                                       .depth = 16,
                                       .levels = 3})}));
    const DictionaryTexture texture = m_oHelper.DescribeAll().at(0);
    EXPECT_EQ(texture.index, 0U);
    EXPECT_EQ(texture.name, L"road");
    EXPECT_EQ(texture.mask, L"roada");
    EXPECT_EQ(texture.width, 4U);
    EXPECT_EQ(texture.height, 2U);
    EXPECT_EQ(texture.depth, 16U);
    EXPECT_EQ(texture.mips, 3U);
    EXPECT_EQ(texture.rasterFormat, 0x4444U);
    EXPECT_EQ(texture.rasterFormatRaw, 0x300U);
    EXPECT_EQ(texture.compression, 0U);
    EXPECT_EQ(texture.formatText, L"16 bpp 4444");
    EXPECT_TRUE(texture.hasAlpha);
    EXPECT_EQ(texture.platform, 8U);
    EXPECT_EQ(m_oHelper.Version(), 0x1803FFFFU);
}

TEST_F(TXDHelper, AnEmptyDictionaryHasNoTextures)
{
    Open(Dictionary({}));
    EXPECT_EQ(m_oHelper.TextureCount(), 0U);
    EXPECT_EQ(m_oHelper.DescribeAll().size(), 0U);
    EXPECT_EQ(m_oFailures.Count(), 0U);
}

TEST_F(TXDHelper, AttachesInsideALargerFileWithTheSameCheck)
{
    m_oFiles.Put(kFile, RwFile::Joined({RwFile::Filled(2048, 0), Dictionary({RwFile::PS2Native({})})}));
    const auto file = m_oFiles.Open(kFile, OpenMode::Read);
    m_oHelper.AttachDictionary(*file, 2048);
    EXPECT_EQ(m_oHelper.Describe(0).name, L"road");
    m_oFiles.Put(kFile, Dictionary({RwFile::PCNative({.platform = 5})}));
    const auto other = m_oFiles.Open(kFile, OpenMode::Read);
    EXPECT_THROW(m_oHelper.AttachDictionary(*other, 0), RW::CException);
    EXPECT_EQ(m_oHelper.Dictionary(), nullptr);
}

TEST_F(TXDHelper, DropsWhatItLoadedOfATexture)
{
    Open(Dictionary({RwFile::PCNative({.width = 16, .height = 8, .pixels = RwFile::Filled(512, 3)})}));
    EXPECT_EQ(m_oHelper.ToBitmap(0).Width(), 16U);
    EXPECT_FALSE(m_oHelper.Dictionary()->GetNode({1, 0})->IsLoaded());
    Open(Dictionary({RwFile::PCNative({.width = 16, .height = 9, .pixels = RwFile::Filled(512, 3)})}));
    EXPECT_THROW(m_oHelper.ToBitmap(0), CError);
    EXPECT_FALSE(m_oHelper.Dictionary()->GetNode({1, 0})->IsLoaded());
}

// Failures.

TEST_F(TXDHelper, SaysWhatThePCReaderSaysWhenNoneAccepts)
{
    EXPECT_EQ(OpeningErrorOf(Dictionary({RwFile::PCNative({.platform = 6})})),
              L"This is not a valid PC texture.");
    EXPECT_EQ(OpeningErrorOf(RwFile::Filled(11, 0)), L"This is not a valid RW texture dictionary.");
    EXPECT_EQ(m_oHelper.Dictionary(), nullptr);
    EXPECT_THROW(m_oHelper.OpenDictionary("nothing"), RW::CException);
    EXPECT_EQ(m_oFailures.Count(), 0U);
}

TEST_F(TXDHelper, ADamagedFileIsAnErrorButWhatWasReadCanBeUsed)
{
    Bytes cut = Dictionary({RwFile::PCNative({.name = "road"}), RwFile::PCNative({.name = "wall"})});
    cut.resize(cut.size() - 30);
    EXPECT_EQ(OpeningErrorOf(cut), L"Stream reading error.");
    ASSERT_NE(m_oHelper.Dictionary(), nullptr);
    EXPECT_EQ(m_oHelper.Describe(0).name, L"road");
}

TEST_F(TXDHelper, EveryTruncationIsAnError)
{
    for (const Bytes& native : {RwFile::PCNative({}), RwFile::PS2Native({}), RwFile::MobileNative({})}) {
        const Bytes whole = Dictionary({native});
        for (std::size_t length = 0; length < whole.size(); ++length)
            EXPECT_NE(
                OpeningErrorOf(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length))),
                L"none")
                << length;
    }
}

TEST_F(TXDHelper, TexturesThatAreNotThereAreOneStopBox)
{
    Open(Dictionary({RwFile::PCNative({})}, 200));
    EXPECT_EQ(m_oHelper.DescribeAll().size(), 1U);
    EXPECT_EQ(m_oFailures.Lines(), Lines{L"Wrong section ID. (370)"});
}

TEST_F(TXDHelper, ARecordThatIsTooShortIsOneStopBox)
{
    const Bytes native = RwFile::Section(
        0x15, RwFile::Joined({RwFile::Struct(RwFile::Words({8, 0})), RwFile::EmptyExtension()}));
    Open(Dictionary({native}));
    EXPECT_EQ(m_oHelper.Describe(0).name, L"");
    EXPECT_EQ(m_oFailures.Lines(), Lines{L"Section data reading failed. (112)"});
    m_oFailures.Clear();
    try {
        m_oHelper.ToBitmap(0);
        FAIL();
    } catch (const CError& error) {
        EXPECT_EQ(error.Text(), L"Section data reading failed.");
        EXPECT_TRUE(error.WasShown());
    }
    EXPECT_EQ(m_oFailures.Lines(), Lines{L"Section data reading failed. (112)"});
}

TEST_F(TXDHelper, WithoutADictionaryThereIsNoVersion)
{
    EXPECT_THROW(static_cast<void>(m_oHelper.Version()), RW::CException);
    EXPECT_EQ(m_oHelper.TextureCount(), 0U);
}
