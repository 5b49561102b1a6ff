#include "rw/TXDPC.h"

#include "tests/rw/StreamFixture.h"

namespace {

using RW::CTXDPC;
using RW::FormatForm;
using RW::TextureText;
using RwFile::Bytes;
using RwFile::Dictionary;
using RwFile::PCTexture;

class TXDPC : public StreamFixture {
protected:
    /// A dictionary of one texture.
    std::unique_ptr<CTXDPC> Of(const PCTexture& texture)
    {
        return Opened<CTXDPC>(Dictionary({RwFile::PCNative(texture)}));
    }
    std::wstring TextOf(const PCTexture& texture) { return Of(texture)->GetFormatText(0); }
    /// The record of a texture cut to some bytes.
    std::unique_ptr<CTXDPC> CutRecord(const PCTexture& texture, std::size_t bytes)
    {
        Bytes record = RwFile::PCRecord(texture);
        record.resize(bytes);
        m_oFiles.Put(
            kFile,
            Dictionary({RwFile::Section(
                RW::TextureNativeId, RwFile::Joined({RwFile::Struct(record), RwFile::EmptyExtension()}))}));
        auto dictionary = Closed<CTXDPC>();
        // A record without a platform is refused; the tree is there all the same.
        dictionary->SetQuiet(true);
        static_cast<void>(dictionary->Open(kFile, 0, 0, 0));
        dictionary->SetQuiet(false);
        TakeBoxes();
        return dictionary;
    }
};

PCTexture Paletted()
{
    return {.name = "sign",
            .mask = "signa",
            .rasterFormat = 0x2500,
            .width = 4,
            .height = 2,
            .depth = 8,
            .levels = 3,
            .palette = RwFile::Filled(1024, 0x7F),
            .pixels = RwFile::Filled(8, 0x2A)};
}

}  // namespace

TEST_F(TXDPC, ReadsTheFixedRecordThePaletteAndTheFirstLevel)
{
    const auto dictionary = Of(Paletted());
    EXPECT_EQ(dictionary->GetTextureCount(), 1U);
    EXPECT_EQ(dictionary->GetWidth(0), 4U);
    EXPECT_EQ(dictionary->GetHeight(0), 2U);
    EXPECT_EQ(dictionary->GetDepth(0), 8U);
    EXPECT_EQ(dictionary->GetMipLevels(0), 3U);
    EXPECT_EQ(dictionary->GetName(0, TextureText::Name), L"sign");
    EXPECT_EQ(dictionary->GetName(0, TextureText::Mask), L"signa");
    EXPECT_EQ(dictionary->GetRasterFormat(0, FormatForm::Raw), 0x500U);
    EXPECT_EQ(dictionary->GetRasterFormat(0, FormatForm::Layout), 0x8888U);
    EXPECT_EQ(dictionary->GetCompression(0), 0U);
    EXPECT_EQ(dictionary->GetPlatform(0), 8U);
    EXPECT_EQ(dictionary->GetPalette(0)[0], std::byte{0x7F});
    EXPECT_EQ(dictionary->GetPalette(0).size(), 1024U + 4U + 8U);
    EXPECT_EQ(dictionary->GetPixels(0, 0).size(), 8U);
    EXPECT_EQ(dictionary->GetPixels(0, 0)[7], std::byte{0x2A});
    EXPECT_EQ(TakeBoxes(), Lines());
}

TEST_F(TXDPC, ListsATextureWithoutLoadingItsPixels)
{
    const auto dictionary = Of({.pixels = RwFile::Counting(4000)});
    EXPECT_EQ(dictionary->GetName(0, TextureText::Name), L"road");
    EXPECT_EQ(dictionary->GetFormatText(0), L"32 bpp");
    EXPECT_FALSE(dictionary->HasAlpha(0));
    EXPECT_FALSE(dictionary->GetNode({1, 0})->IsLoaded());
    EXPECT_EQ(dictionary->GetPixels(0, 0).size(), 4000U);
    EXPECT_TRUE(dictionary->GetNode({1, 0})->IsLoaded());
    dictionary->FreeData(0);
    EXPECT_FALSE(dictionary->GetNode({1, 0})->IsLoaded());
}

TEST_F(TXDPC, PixelsOfDeepTexturesFollowTheSizeWord)
{
    const auto dictionary = Of({.pixels = RwFile::Counting(16)});
    EXPECT_EQ(dictionary->GetPixels(0, 0)[1], std::byte{1});
    // The level does not matter.
    EXPECT_EQ(dictionary->GetPixels(0, 5).data(), dictionary->GetPixels(0, 0).data());
    EXPECT_EQ(dictionary->GetPalette(0).size(), 20U);
}

TEST_F(TXDPC, PixelsOfFourBitsFollowSixteenEntries)
{
    const auto dictionary = Of({.depth = 4, .palette = RwFile::Filled(64, 9), .pixels = RwFile::Counting(2)});
    EXPECT_EQ(dictionary->GetPixels(0, 0).size(), 2U);
}

TEST_F(TXDPC, KnowsTheLayoutCodes)
{
    const std::vector<std::pair<std::uint32_t, std::uint32_t>> layouts = {
        {0x100, 0x1555}, {0x200, 0x565}, {0x300, 0x4444}, {0x400, 0x8}, {0x500, 0x8888},
        {0x600, 0x888},  {0xA00, 0x555}, {0x700, 0},      {0x000, 0},   {0xF00, 0}};
    for (const auto& [raw, code] : layouts) {
        const auto dictionary = Of({.rasterFormat = raw | 0x8004});
        EXPECT_EQ(dictionary->GetRasterFormat(0, FormatForm::Raw), raw);
        EXPECT_EQ(dictionary->GetRasterFormat(0, FormatForm::Layout), code);
    }
}

TEST_F(TXDPC, ReadsCompressionByPlatform)
{
    const auto of = [&](std::uint32_t platform, int stored) {
        return Of({.platform = platform, .compression = static_cast<std::uint8_t>(stored)})
            ->GetCompression(0);
    };
    EXPECT_EQ(of(8, 0), 0U);
    EXPECT_EQ(of(8, 1), 4U);
    EXPECT_EQ(of(8, 2), 2U);
    EXPECT_EQ(of(8, 3), 16U);
    EXPECT_EQ(of(8, 5), 5U);
    EXPECT_EQ(of(9, 0), 0U);
    EXPECT_EQ(of(9, 1), 0U);
    EXPECT_EQ(of(9, 3), 3U);
    EXPECT_EQ(of(9, 8), 4U);
    EXPECT_EQ(of(9, 9), 16U);
    EXPECT_EQ(of(9, 200), 200U);
    EXPECT_EQ(of(1, 1), 1U);
    EXPECT_EQ(of(1, 0), 0U);
}

TEST_F(TXDPC, TellsTheFormatForDisplay)
{
    EXPECT_EQ(TextOf({.compression = 1}), L"DXT1");
    EXPECT_EQ(TextOf({.compression = 3}), L"DXT3");
    EXPECT_EQ(TextOf({.compression = 7}), L"Unknown");
    EXPECT_EQ(TextOf({.rasterFormat = 0x100, .depth = 16}), L"16 bpp 1555");
    EXPECT_EQ(TextOf({.rasterFormat = 0x200, .depth = 16}), L"16 bpp 565");
    EXPECT_EQ(TextOf({.rasterFormat = 0x300, .depth = 16}), L"16 bpp 4444");
    EXPECT_EQ(TextOf({.depth = 4, .palette = RwFile::Filled(64, 0)}), L"4 bpp");
    EXPECT_EQ(TextOf({.depth = 8, .palette = RwFile::Filled(1024, 0)}), L"8 bpp");
    EXPECT_EQ(TextOf({.depth = 24}), L"24 bpp");
    EXPECT_EQ(TextOf({.depth = 32}), L"32 bpp");
    EXPECT_EQ(TextOf({.rasterFormat = 0xA00, .depth = 16}), L"Unknown UNC");
    EXPECT_EQ(TextOf({.depth = 200}), L"Unknown UNC");
}

TEST_F(TXDPC, ADirect3D8TextureOfCompression2IsShownAsPalettizedByDepth)
{
    EXPECT_EQ(TextOf({.depth = 4, .compression = 2}), L"PAL4, swizzled");
    EXPECT_EQ(TextOf({.depth = 8, .compression = 2}), L"PAL8, swizzled");
    EXPECT_EQ(TextOf({.depth = 32, .compression = 2}), L"");
}

TEST_F(TXDPC, TellsWhichTexturesHaveAlpha)
{
    EXPECT_FALSE(Of({.mask = "a", .depth = 24})->HasAlpha(0));
    EXPECT_FALSE(Of({.mask = "a", .rasterFormat = 0x200, .depth = 16})->HasAlpha(0));
    EXPECT_FALSE(Of({.mask = "a", .rasterFormat = 0xA00, .depth = 16})->HasAlpha(0));
    EXPECT_TRUE(Of({.mask = "a", .rasterFormat = 0x300, .depth = 16})->HasAlpha(0));
    EXPECT_FALSE(Of({.mask = "", .rasterFormat = 0x300, .depth = 16})->HasAlpha(0));
    EXPECT_TRUE(Of({.mask = "a", .rasterFormat = 0x500, .depth = 32})->HasAlpha(0));
    EXPECT_FALSE(Of({.mask = "", .rasterFormat = 0x500, .depth = 32})->HasAlpha(0));
    EXPECT_TRUE(Of({.mask = "", .compression = 3})->HasAlpha(0));
    EXPECT_FALSE(Of({.mask = "", .compression = 1})->HasAlpha(0));
    EXPECT_TRUE(Of({.mask = "a", .depth = 24, .compression = 1})->HasAlpha(0));
}

TEST_F(TXDPC, KnowsItsPlatforms)
{
    for (const std::uint32_t platform : {1U, 8U, 9U}) {
        const auto dictionary = Of({.platform = platform});
        EXPECT_TRUE(dictionary->IsPlatform(platform, 0));
        EXPECT_FALSE(dictionary->IsPlatform(2, 0));
        EXPECT_FALSE(dictionary->IsPlatform(4, 0));
        EXPECT_EQ(dictionary->GetPlatform(0), platform);
    }
}

TEST_F(TXDPC, StoresNamesOfUpTo31Characters)
{
    const auto dictionary = Of({.name = "a longer name than the next", .mask = "m"});
    EXPECT_TRUE(dictionary->SetName(0, L"wall", TextureText::Name));
    EXPECT_EQ(dictionary->GetName(0, TextureText::Name), L"wall");
    EXPECT_EQ(dictionary->GetName(0, TextureText::Mask), L"m");
    const std::wstring longest(31, L'x');
    EXPECT_TRUE(dictionary->SetName(0, longest, TextureText::Mask));
    EXPECT_EQ(dictionary->GetName(0, TextureText::Mask), longest);
    EXPECT_EQ(SoftErrorOf([&] { dictionary->SetName(0, longest + L"x", TextureText::Mask); }),
              L"Name length cannot exceed 31 character.");
    EXPECT_EQ(dictionary->GetName(0, TextureText::Mask), longest);
}

TEST_F(TXDPC, ANameFillsItsFieldWithoutATerminator)
{
    EXPECT_EQ(Of({.name = std::string(40, 'n'), .mask = "m"})->GetName(0, TextureText::Name),
              std::wstring(32, L'n'));
}

TEST_F(TXDPC, ANewNameIsSavedWithTheDictionary)
{
    const auto dictionary = Of({.name = "road"});
    dictionary->SetName(0, L"wall", TextureText::Name);
    ASSERT_TRUE(dictionary->Save("copy"));
    EXPECT_EQ(Opened<CTXDPC>(*m_oFiles.Find("copy"))->GetName(0, TextureText::Name), L"wall");
}

TEST_F(TXDPC, ReportsOnlyTheLowByteOfTheCount)
{
    const std::vector<Bytes> natives(300, RwFile::PCNative({}));
    EXPECT_EQ(Opened<CTXDPC>(Dictionary(natives))->GetTextureCount(), 44U);
}

TEST_F(TXDPC, SettingTheCountOverwritesTheDevice)
{
    const auto dictionary = Opened<CTXDPC>(Dictionary({RwFile::PCNative({})}, 0x00020001));
    EXPECT_TRUE(dictionary->SetTextureCount(7));
    const auto body = dictionary->GetNode({0})->GetData();
    EXPECT_EQ(Bytes(body.begin(), body.end()), RwFile::Words({7}));
    EXPECT_FALSE(Closed<CTXDPC>()->SetTextureCount(1));
    const auto small = Opened<CTXDPC>(RwFile::Section(0x16, RwFile::Struct(RwFile::Filled(3, 0))));
    EXPECT_FALSE(small->SetTextureCount(1));
    EXPECT_FALSE(Opened<CTXDPC>(RwFile::Section(0x16, {}))->SetTextureCount(1));
}

TEST_F(TXDPC, CreatesAnEmptyDictionary)
{
    const auto dictionary = Closed<CTXDPC>();
    EXPECT_TRUE(dictionary->Create(0x1803FFFF));
    EXPECT_EQ(dictionary->GetTextureCount(), 0U);
    EXPECT_EQ(dictionary->Root()->Size(), 28U);
    ASSERT_TRUE(dictionary->Save("new"));
    EXPECT_EQ(*m_oFiles.Find("new"), RwFile::Joined({Dictionary({}), RwFile::SectionClaiming(0x16, 28, {})}));
}

TEST_F(TXDPC, AnEmptyDictionaryIsOfEveryPlatform)
{
    const auto dictionary = Opened<CTXDPC>(Dictionary({}));
    EXPECT_TRUE(dictionary->IsPlatform(8, 0));
    EXPECT_TRUE(dictionary->IsPlatform(4, 99));
    EXPECT_EQ(dictionary->ReachableTextures(), 0U);
}

TEST_F(TXDPC, KeepsPlacesForOperationsToCome)
{
    const auto dictionary = Closed<CTXDPC>();
    EXPECT_FALSE(dictionary->Reserved3());
    EXPECT_FALSE(dictionary->Reserved5());
    EXPECT_FALSE(dictionary->Reserved6());
    EXPECT_FALSE(dictionary->Reserved7());
    EXPECT_TRUE(dictionary->Reserved8());
    dictionary->Reserved23();
}

// Failures.

TEST_F(TXDPC, RefusesATextureOfAnotherPlatform)
{
    EXPECT_EQ(OpeningErrorOf<CTXDPC>(Dictionary({RwFile::PS2Native({})})),
              L"This is not a valid PC texture.");
    EXPECT_EQ(OpeningErrorOf<CTXDPC>(Dictionary({RwFile::PCNative({.platform = 10})})),
              L"This is not a valid PC texture.");
}

TEST_F(TXDPC, AStreamThatCannotBeOpenedIsNoDictionary)
{
    const auto dictionary = Closed<CTXDPC>();
    dictionary->SetQuiet(true);
    EXPECT_FALSE(dictionary->Open("nothing", 0, 0, 0));
    EXPECT_EQ(dictionary->LastError(), L"This is not a valid RW texture dictionary.");
    dictionary->SetQuiet(false);
    // The stream's own error says more, so it is the one that is thrown.
    EXPECT_EQ(SoftErrorOf([&] { dictionary->Open("nothing", 0, 0, 0); }).substr(0, 25),
              L"Cant open RW stream file.");
}

TEST_F(TXDPC, AnIndexOutOfRangeIsASoftErrorOfEveryOperation)
{
    const auto dictionary = Of({});
    const auto error = [&](auto work) { return SoftErrorOf(work); };
    const std::wstring expected = L"Texture not exists.";
    EXPECT_EQ(error([&] { dictionary->GetWidth(1); }), expected);
    EXPECT_EQ(error([&] { dictionary->GetHeight(1); }), expected);
    EXPECT_EQ(error([&] { dictionary->GetName(1, TextureText::Name); }), expected);
    EXPECT_EQ(error([&] { dictionary->GetDepth(1); }), expected);
    EXPECT_EQ(error([&] { dictionary->GetCompression(1); }), expected);
    EXPECT_EQ(error([&] { dictionary->GetFormatText(1); }), expected);
    EXPECT_EQ(error([&] { dictionary->GetMipLevels(1); }), expected);
    EXPECT_EQ(error([&] { dictionary->GetRasterFormat(1, FormatForm::Raw); }), expected);
    EXPECT_EQ(error([&] { dictionary->FreeData(1); }), expected);
    EXPECT_EQ(error([&] { dictionary->SetName(1, L"a", TextureText::Name); }), expected);
    EXPECT_EQ(error([&] { dictionary->GetPixels(1, 0); }), expected);
    EXPECT_EQ(error([&] { dictionary->GetPalette(1); }), expected);
    EXPECT_EQ(error([&] { dictionary->HasAlpha(1); }), expected);
    EXPECT_EQ(error([&] { dictionary->GetPlatform(0xFFFFFFFF); }), expected);
    EXPECT_EQ(error([&] { dictionary->IsPlatform(8, 1); }), L"Unknown texture ID");
    EXPECT_EQ(TakeBoxes(), Lines());
}

TEST_F(TXDPC, AQuietDictionaryYieldsNothingForAnIndexOutOfRange)
{
    const auto dictionary = Of({});
    dictionary->SetQuiet(true);
    EXPECT_EQ(dictionary->GetWidth(1), 0U);
    EXPECT_EQ(dictionary->GetName(1, TextureText::Name), L"");
    EXPECT_EQ(dictionary->GetFormatText(1), L"");
    EXPECT_EQ(dictionary->GetRasterFormat(1, FormatForm::Layout), 0U);
    EXPECT_EQ(dictionary->GetPixels(1, 0).data(), nullptr);
    EXPECT_EQ(dictionary->GetPalette(1).data(), nullptr);
    EXPECT_FALSE(dictionary->HasAlpha(1));
    EXPECT_FALSE(dictionary->SetName(1, L"a", TextureText::Name));
    EXPECT_FALSE(dictionary->IsPlatform(8, 1));
    EXPECT_EQ(dictionary->GetPlatform(1), 0U);
    EXPECT_EQ(dictionary->LastError(), L"Texture not exists.");
}

TEST_F(TXDPC, ACountThatCannotBeReadIsAStopBox)
{
    const auto dictionary = Closed<CTXDPC>();
    m_oFiles.Put(kFile, RwFile::Section(0x16, RwFile::Section(0x01, {})));
    dictionary->Open(kFile, 0, 0, 0);
    TakeBoxes();
    EXPECT_EQ(dictionary->GetTextureCount(), 0U);
    EXPECT_EQ(TakeBoxes(), Lines{L"Section 0 data reading failed. (132)"});
    EXPECT_EQ(Closed<CTXDPC>()->GetTextureCount(), 0U);
    EXPECT_EQ(TakeBoxes(), Lines());
}

TEST_F(TXDPC, AMissingRecordIsTwoStopBoxes)
{
    const auto dictionary = Opened<CTXDPC>(Dictionary({RwFile::PCNative({})}, 2));
    EXPECT_EQ(dictionary->GetTextureCount(), 2U);
    EXPECT_EQ(dictionary->ReachableTextures(), 1U);
    EXPECT_EQ(dictionary->GetWidth(1), 0U);
    const Lines missing = {L"Wrong section ID. (370)", L"Node is N/A. this is fucking ERROR!!!!\n (407)"};
    EXPECT_EQ(TakeBoxes(), missing);
    dictionary->FreeData(1);
    EXPECT_EQ(TakeBoxes(), missing);
    EXPECT_FALSE(dictionary->IsPlatform(8, 1));
    EXPECT_EQ(TakeBoxes(), missing);
}

TEST_F(TXDPC, ARecordThatTheFileDoesNotHoldIsAStopBoxOfItsReader)
{
    Bytes cut = Dictionary({RwFile::PCNative({.pixels = RwFile::Counting(300)})});
    // The record claims more than the file holds, and so does everything around it.
    const auto dictionary = Closed<CTXDPC>();
    dictionary->SetQuiet(true);
    cut.resize(cut.size() - 200);
    m_oFiles.Put(kFile, cut);
    dictionary->Open(kFile, 0, 0, 0);
    TakeBoxes();
    EXPECT_EQ(dictionary->GetWidth(0), 0U);
    EXPECT_EQ(TakeBoxes(),
              (Lines{L"Unknown section data reading error. (110)", L"Section data reading failed. (112)"}));
}

TEST_F(TXDPC, EveryOperationRefusesARecordTooShortForIt)
{
    for (std::size_t bytes = 0; bytes < 92 + 16; ++bytes) {
        SCOPED_TRACE(bytes);
        const auto dictionary = CutRecord({.platform = 9, .mask = "m", .rasterFormat = 0x500}, bytes);
        const auto needs = [&](std::size_t least, auto work) {
            work();
            const bool isRefused = !TakeBoxes().empty();
            EXPECT_EQ(isRefused, bytes < least) << "needs " << least;
        };
        needs(4, [&] { EXPECT_EQ(dictionary->GetPlatform(0), bytes < 4 ? 0U : 9U); });
        needs(40, [&] { EXPECT_EQ(dictionary->GetName(0, TextureText::Name), bytes < 40 ? L"" : L"road"); });
        needs(72, [&] { EXPECT_EQ(dictionary->GetName(0, TextureText::Mask), bytes < 72 ? L"" : L"m"); });
        needs(76,
              [&] { EXPECT_EQ(dictionary->GetRasterFormat(0, FormatForm::Raw), bytes < 76 ? 0U : 0x500U); });
        needs(82, [&] { EXPECT_EQ(dictionary->GetWidth(0), bytes < 82 ? 0U : 2U); });
        needs(84, [&] { EXPECT_EQ(dictionary->GetHeight(0), bytes < 84 ? 0U : 2U); });
        needs(85, [&] { EXPECT_EQ(dictionary->GetDepth(0), bytes < 85 ? 0U : 32U); });
        needs(86, [&] { EXPECT_EQ(dictionary->GetMipLevels(0), bytes < 86 ? 0U : 1U); });
        needs(88, [&] { EXPECT_EQ(dictionary->GetCompression(0), 0U); });
        needs(88, [&] { EXPECT_EQ(dictionary->GetPalette(0).size(), bytes < 88 ? 0U : bytes - 88); });
        needs(92, [&] { EXPECT_EQ(dictionary->GetPixels(0, 0).size(), bytes < 92 ? 0U : bytes - 92); });
        needs(40, [&] { EXPECT_EQ(dictionary->SetName(0, L"a", TextureText::Name), bytes >= 40); });
        needs(88, [&] { dictionary->HasAlpha(0); });
    }
}

TEST_F(TXDPC, PixelsBeyondTheRecordAreNone)
{
    const auto dictionary = CutRecord({.depth = 8, .pixels = {}}, 88 + 1023);
    EXPECT_EQ(dictionary->GetPixels(0, 0).size(), 0U);
    EXPECT_EQ(TakeBoxes(), Lines{L"Section data reading failed. (112)"});
}

TEST_F(TXDPC, RefusesEveryTruncationOfAGoodDictionary)
{
    const Bytes whole = Dictionary({RwFile::PCNative(Paletted()), RwFile::PCNative({})});
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        EXPECT_EQ(OpeningErrorOf<CTXDPC>(cut), L"Stream reading error.") << length;
    }
}
