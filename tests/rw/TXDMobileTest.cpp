#include "rw/TXDMobile.h"

#include "tests/rw/StreamFixture.h"

namespace {

using RW::CTXDMobile;
using RW::FormatForm;
using RW::TextureText;
using RwFile::Bytes;
using RwFile::Dictionary;
using RwFile::Joined;
using RwFile::MobileTexture;
using RwFile::Section;
using RwFile::SectionClaiming;

class TXDMobile : public StreamFixture {
protected:
    std::unique_ptr<CTXDMobile> Of(const std::vector<MobileTexture>& textures)
    {
        std::vector<Bytes> natives;
        natives.reserve(textures.size());
        for (const MobileTexture& texture : textures)
            natives.push_back(RwFile::MobileNative(texture));
        return Opened<CTXDMobile>(Dictionary(natives));
    }
};

}  // namespace

TEST_F(TXDMobile, ReadsItsOwnRecord)
{
    const auto dictionary =
        Of({{.name = "brick", .mask = "bricka", .width = 8, .height = 16, .pixels = RwFile::Filled(256, 5)}});
    EXPECT_EQ(dictionary->GetTextureCount(), 1U);
    EXPECT_EQ(dictionary->GetName(0, TextureText::Name), L"brick");
    EXPECT_EQ(dictionary->GetName(0, TextureText::Mask), L"bricka");
    EXPECT_EQ(dictionary->GetWidth(0), 8U);
    EXPECT_EQ(dictionary->GetHeight(0), 16U);
    EXPECT_EQ(dictionary->GetPixels(0, 0).size(), 256U);
    EXPECT_EQ(dictionary->GetPixels(0, 3).data(), dictionary->GetPixels(0, 0).data());
    EXPECT_EQ(dictionary->GetPlatform(0), 12U);
    EXPECT_EQ(TakeBoxes(), Lines());
}

TEST_F(TXDMobile, EveryTextureHasAlphaAndSixteenBits)
{
    const auto dictionary = Of({{.alpha = 0}, {.alpha = 1}});
    EXPECT_EQ(dictionary->GetDepth(0), 16U);
    EXPECT_TRUE(dictionary->HasAlpha(0));
    EXPECT_EQ(dictionary->GetRasterFormat(0, FormatForm::Raw), 0x200U);
    EXPECT_EQ(dictionary->GetRasterFormat(0, FormatForm::Layout), 0x565U);
    EXPECT_EQ(dictionary->GetFormatText(0), L"16 bpp 565");
    EXPECT_EQ(dictionary->GetDepth(1), 16U);
    EXPECT_TRUE(dictionary->HasAlpha(1));
    EXPECT_EQ(dictionary->GetRasterFormat(1, FormatForm::Raw), 0x300U);
    EXPECT_EQ(dictionary->GetRasterFormat(1, FormatForm::Layout), 0x4444U);
    EXPECT_EQ(dictionary->GetFormatText(1), L"16 bpp 4444");
}

TEST_F(TXDMobile, TheFirstTextureDecidesTheCompressionOfAll)
{
    EXPECT_EQ(Of({{.platform = 10}, {.platform = 12}})->GetCompression(1), 1024U);
    EXPECT_EQ(Of({{.platform = 11}, {.platform = 10}})->GetCompression(1), 2048U);
    EXPECT_EQ(Of({{.platform = 12}, {.platform = 10}})->GetCompression(1), 0U);
    EXPECT_EQ(Of({{.platform = 10}})->GetFormatText(0), L"Unknown");
    EXPECT_EQ(Of({{.platform = 11}})->GetFormatText(0), L"Unknown");
}

TEST_F(TXDMobile, KeepsThePlacesOfThePCForLevelsPaletteAndNewNames)
{
    const auto dictionary = Of({{.name = "road", .mask = std::string(32, 'm')}});
    // Byte 85 lies in the mask's field.
    EXPECT_EQ(dictionary->GetMipLevels(0), std::uint32_t{'m'});
    EXPECT_EQ(dictionary->GetPalette(0).size(), 148U - 88U);
    EXPECT_TRUE(dictionary->SetName(0, L"wall", TextureText::Mask));
    EXPECT_EQ(dictionary->GetName(0, TextureText::Name), std::wstring(L"road\0\0\0\0", 4));
    const auto record = dictionary->GetNode({1, 0})->GetData();
    EXPECT_EQ(record[40], std::byte{'w'});
}

TEST_F(TXDMobile, ReadsADictionaryWhoseOwnSizesAreWrong)
{
    const Bytes record = RwFile::Struct(RwFile::MobileRecord({.name = "road"}));
    const auto native = [&](std::uint32_t size) {
        return SectionClaiming(RW::TextureNativeId, size, Joined({record, RwFile::EmptyExtension()}));
    };
    for (const std::uint32_t wrong : {1U, 0x10000U, 0xFFFFFFFFU}) {
        const Bytes body =
            Joined({RwFile::Struct(RwFile::Words({2})), native(wrong), native(5), RwFile::EmptyExtension()});
        const auto dictionary = Opened<CTXDMobile>(SectionClaiming(0x16, wrong, body));
        EXPECT_EQ(dictionary->GetTextureCount(), 2U);
        EXPECT_EQ(dictionary->GetName(1, TextureText::Name), L"road");
        EXPECT_EQ(dictionary->GetNode({1})->Size(), 172U);
        EXPECT_EQ(dictionary->GetNode({1})->ChildCount(), 2U);
        EXPECT_EQ(dictionary->Root()->Size(), body.size());
        EXPECT_EQ(dictionary->Root()->ChildCount(), 4U);
    }
}

TEST_F(TXDMobile, ReadsOtherContainersUntilTheyAreExactlyFull)
{
    const Bytes good =
        Section(RW::ExtensionId, Joined({Section(0x110, RwFile::Counting(4)), Section(0x111, {})}));
    EXPECT_EQ(Opened<CTXDMobile>(good)->Root()->ChildCount(), 2U);
    // One byte too few: the children run past the end, and on to the end of the file.
    const Bytes bad = SectionClaiming(RW::ExtensionId, 27,
                                      Joined({Section(0x110, RwFile::Counting(4)), Section(0x111, {})}));
    EXPECT_EQ(OpeningErrorOf<CTXDMobile>(bad), L"Stream reading error.");
}

TEST_F(TXDMobile, ADeviceMakesItReadThatManyMoreTextures)
{
    const Bytes natives = RwFile::MobileNative({});
    EXPECT_EQ(OpeningErrorOf<CTXDMobile>(Dictionary({natives}, 0x00010001)), L"Stream reading error.");
    EXPECT_EQ(OpeningErrorOf<CTXDMobile>(Dictionary({natives}, 0x00000001)), L"none");
    // With 4294967295 textures the one for the extension must not wrap to none.
    EXPECT_EQ(OpeningErrorOf<CTXDMobile>(Dictionary({natives}, 0xFFFFFFFF)), L"Stream reading error.");
}

TEST_F(TXDMobile, AnEmptyDictionaryOpens)
{
    EXPECT_EQ(Of({})->GetTextureCount(), 0U);
}

TEST_F(TXDMobile, TellsHowFarItWalked)
{
    const auto dictionary = Of({{}});
    RW::CNode again(m_oFailures);
    again.SetHeader({.id = 0x16, .size = 1, .version = RwFile::kVersion});
    again.SetDataOffset(12);
    EXPECT_EQ(dictionary->ReadChildren(again, nullptr, 0),
              -static_cast<std::int32_t>(dictionary->Root()->Size()));
}

// Failures.

TEST_F(TXDMobile, RefusesOtherPlatforms)
{
    EXPECT_EQ(OpeningErrorOf<CTXDMobile>(Dictionary({RwFile::PCNative({})})),
              L"This is not a valid Mobile texture.");
    EXPECT_EQ(OpeningErrorOf<CTXDMobile>(Dictionary({RwFile::MobileNative({.platform = 13})})),
              L"This is not a valid Mobile texture.");
    const auto dictionary = Closed<CTXDMobile>();
    dictionary->SetQuiet(true);
    EXPECT_FALSE(dictionary->Open("nothing", 0, 0, 0));
    EXPECT_EQ(dictionary->LastError(), L"This is not a valid RW texture dictionary.");
}

TEST_F(TXDMobile, AnIndexOutOfRangeIsASoftError)
{
    const auto dictionary = Of({{}});
    const std::wstring expected = L"Texture not exists.";
    EXPECT_EQ(SoftErrorOf([&] { dictionary->GetWidth(1); }), expected);
    EXPECT_EQ(SoftErrorOf([&] { dictionary->GetHeight(1); }), expected);
    EXPECT_EQ(SoftErrorOf([&] { dictionary->GetName(1, TextureText::Mask); }), expected);
    EXPECT_EQ(SoftErrorOf([&] { dictionary->GetDepth(1); }), expected);
    EXPECT_EQ(SoftErrorOf([&] { dictionary->GetCompression(1); }), expected);
    EXPECT_EQ(SoftErrorOf([&] { dictionary->GetRasterFormat(1, FormatForm::Raw); }), expected);
    EXPECT_EQ(SoftErrorOf([&] { dictionary->GetPixels(1, 0); }), expected);
    EXPECT_EQ(SoftErrorOf([&] { dictionary->HasAlpha(1); }), expected);
}

TEST_F(TXDMobile, ACountThatIsNotThereIsAReadingError)
{
    EXPECT_EQ(OpeningErrorOf<CTXDMobile>(Section(0x16, Section(0x01, {}))), L"Stream reading error.");
    EXPECT_EQ(OpeningErrorOf<CTXDMobile>(Section(0x16, Section(0x01, RwFile::Filled(3, 1)))),
              L"Stream reading error.");
}

TEST_F(TXDMobile, AQuietDictionaryWithoutChildrenIsAStopBox)
{
    m_oFiles.Put(kFile, SectionClaiming(0x16, 12, {}));
    const auto dictionary = Closed<CTXDMobile>();
    dictionary->SetQuiet(true);
    dictionary->Open(kFile, 0, 0, 0);
    EXPECT_EQ(TakeBoxes(), Lines{L"Node have no requested child! (83)"});
}

TEST_F(TXDMobile, RefusesEveryTruncationOfAGoodDictionary)
{
    const Bytes whole = Dictionary({RwFile::MobileNative({}), RwFile::MobileNative({.name = "wall"})});
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        EXPECT_EQ(OpeningErrorOf<CTXDMobile>(cut), L"Stream reading error.") << length;
    }
}
