#include "rw/TXDPS2.h"

#include "tests/rw/StreamFixture.h"

namespace {

using RW::CTXDPS2;
using RW::FormatForm;
using RW::TextureText;
using RwFile::Bytes;
using RwFile::Dictionary;
using RwFile::Filled;
using RwFile::Joined;
using RwFile::PS2Texture;
using RwFile::Words;

/// A level's header of 80 bytes that announces itself by its first word; half sizes at 32 and 36.
Bytes LevelHeader(std::uint32_t halfWidth = 0, std::uint32_t halfHeight = 0)
{
    return Joined({Words({3}), Filled(28, 0), Words({halfWidth, halfHeight}), Filled(40, 0)});
}

class TXDPS2 : public StreamFixture {
protected:
    std::unique_ptr<CTXDPS2> Of(const PS2Texture& texture)
    {
        return Opened<CTXDPS2>(Dictionary({RwFile::PS2Native(texture)}));
    }
    bool IsSwizzled(std::uint32_t depth, std::uint32_t type, std::uint32_t transferWord,
                    const Bytes& data = Filled(100, 0))
    {
        return Of({.width = 16,
                   .height = 8,
                   .depth = depth,
                   .rasterFormat = type | 0x500,
                   .transferWord = transferWord,
                   .data = data})
            ->IsSwizzled(0);
    }
    /// Removes a child of the raster section, or of the texture when `parent` has one step.
    static void Remove(CTXDPS2& dictionary, RW::NodePath parent, std::uint32_t child)
    {
        dictionary.GetNode(parent)->ClearChild(child);
    }
};

}  // namespace

TEST_F(TXDPS2, ReadsNamesAndTheRasterHeader)
{
    const auto dictionary = Of({.name = "pavement", .mask = "pavea", .width = 32, .height = 16});
    EXPECT_EQ(dictionary->GetTextureCount(), 1U);
    EXPECT_EQ(dictionary->GetName(0, TextureText::Name), L"pavement");
    EXPECT_EQ(dictionary->GetName(0, TextureText::Mask), L"pavea");
    EXPECT_EQ(dictionary->GetWidth(0), 32U);
    EXPECT_EQ(dictionary->GetHeight(0), 16U);
    EXPECT_EQ(dictionary->GetDepth(0), 32U);
    EXPECT_EQ(dictionary->GetPlatform(0), 4U);
    EXPECT_TRUE(dictionary->IsPlatform(4, 0));
    EXPECT_FALSE(dictionary->IsPlatform(8, 0));
    EXPECT_TRUE(dictionary->HasAlpha(0));
    EXPECT_FALSE(Of({})->HasAlpha(0));
    EXPECT_EQ(TakeBoxes(), Lines());
}

TEST_F(TXDPS2, TellsTheLayoutWhateverIsAsked)
{
    const auto dictionary = Of({.depth = 16, .rasterFormat = 0x300});
    EXPECT_EQ(dictionary->GetRasterFormat(0, FormatForm::Raw), 0x4444U);
    EXPECT_EQ(dictionary->GetRasterFormat(0, FormatForm::Layout), 0x4444U);
    EXPECT_EQ(dictionary->GetFormatText(0), L"Unknown UNC");
    EXPECT_EQ(Of({.depth = 32, .rasterFormat = 0x100})->GetFormatText(0), L"32 bpp");
}

TEST_F(TXDPS2, ARasterOfType1IsSwizzledWhateverItsDepth)
{
    for (const std::uint32_t depth : {4U, 8U, 16U, 24U, 32U})
        EXPECT_TRUE(IsSwizzled(depth, 0x10000, 0)) << depth;
    EXPECT_EQ(Of({.rasterFormat = 0x10500})->GetCompression(0), 2U);
    EXPECT_EQ(Of({.depth = 8, .rasterFormat = 0x10500})->GetFormatText(0), L"PAL8, swizzled");
    EXPECT_EQ(Of({.depth = 16, .rasterFormat = 0x10500})->GetFormatText(0), L"");
}

TEST_F(TXDPS2, ARasterOfType2IsSwizzledByItsTransferWord)
{
    EXPECT_TRUE(IsSwizzled(4, 0x20000, 176));
    EXPECT_FALSE(IsSwizzled(4, 0x20000, 1104));
    EXPECT_FALSE(IsSwizzled(4, 0x20000, 0));
    EXPECT_TRUE(IsSwizzled(8, 0x20000, 1104));
    EXPECT_FALSE(IsSwizzled(8, 0x20000, 176));
}

TEST_F(TXDPS2, OtherRastersAreSwizzledWhenTheirPixelsClaimHalfTheSize)
{
    EXPECT_TRUE(IsSwizzled(16, 0x20000, 0, LevelHeader(8, 4)));
    EXPECT_FALSE(IsSwizzled(16, 0x20000, 0, LevelHeader(8, 8)));
    EXPECT_FALSE(IsSwizzled(16, 0x20000, 0, LevelHeader(16, 4)));
    EXPECT_TRUE(IsSwizzled(4, 0x30000, 0, LevelHeader(8, 4)));
    EXPECT_FALSE(IsSwizzled(4, 0x30000, 176, LevelHeader(9, 4)));
    // Twice a half that is far too large must not wrap to the right size.
    EXPECT_FALSE(IsSwizzled(16, 0x20000, 0, LevelHeader(0x80000008, 4)));
}

TEST_F(TXDPS2, RastersOfNoTypeAndOfUnknownTypesAreNotSwizzled)
{
    EXPECT_FALSE(IsSwizzled(8, 0, 1104, LevelHeader(8, 4)));
    EXPECT_FALSE(IsSwizzled(8, 0x40000, 1104, LevelHeader(8, 4)));
    EXPECT_FALSE(IsSwizzled(8, 0x80000, 1104, LevelHeader(8, 4)));
    EXPECT_TRUE(IsSwizzled(8, 0x60000, 1104, LevelHeader(8, 4)));
    EXPECT_EQ(TakeBoxes(), Lines());
}

TEST_F(TXDPS2, PixelsWithoutLevelHeadersStartWithTheBody)
{
    const auto dictionary = Of({.data = Filled(64, 7)});
    const auto pixels = dictionary->GetPixels(0, 0);
    EXPECT_EQ(pixels.size(), 64U);
    EXPECT_EQ(dictionary->GetPixels(0, 1).data(), pixels.data());
    EXPECT_EQ(dictionary->GetPixels(0, 4000000000U).data(), pixels.data());
}

TEST_F(TXDPS2, PixelsFollowTheHeaderOfTheirLevel)
{
    // 4x4 of 32 bits: 64 bytes, then 16, then 4.
    const auto of = [&](const Bytes& header) {
        return Of({.data = Joined(
                       {header, Filled(64, 1), Filled(80, 0), Filled(16, 2), Filled(80, 0), Filled(4, 3)})});
    };
    for (const Bytes& header : {LevelHeader(), Joined({Words({0, 0x10000000}), Filled(72, 0)})}) {
        const auto dictionary = of(header);
        EXPECT_EQ(dictionary->GetPixels(0, 0)[0], std::byte{1});
        EXPECT_EQ(dictionary->GetPixels(0, 1)[0], std::byte{2});
        EXPECT_EQ(dictionary->GetPixels(0, 2)[0], std::byte{3});
        EXPECT_EQ(dictionary->GetPixels(0, 2).size(), 4U);
        EXPECT_EQ(dictionary->GetPixels(0, 3).data(), nullptr);
        EXPECT_EQ(dictionary->GetPixels(0, 4000000000U).data(), nullptr);
    }
}

TEST_F(TXDPS2, ThePaletteIsTheEndOfThePixelData)
{
    const auto of = [&](std::uint32_t depth, std::uint32_t type, std::size_t bytes) {
        const auto dictionary = Of({.depth = depth, .rasterFormat = type, .data = RwFile::Counting(bytes)});
        const auto palette = dictionary->GetPalette(0);
        return Bytes(palette.begin(), palette.end());
    };
    EXPECT_EQ(of(8, 0, 1100).at(0), std::byte{76});
    EXPECT_EQ(of(8, 0x10000, 1100).size(), 1024U);
    EXPECT_EQ(of(4, 0, 100).size(), 64U);
    EXPECT_EQ(of(4, 0x10000, 100).size(), 96U);
    EXPECT_EQ(of(4, 0x10000, 100).at(0), std::byte{4});
    EXPECT_TRUE(of(4, 0x10000, 95).empty());
    EXPECT_TRUE(of(8, 0, 1023).empty());
    EXPECT_TRUE(of(16, 0, 5000).empty());
    EXPECT_TRUE(of(200, 0, 5000).empty());
}

TEST_F(TXDPS2, CountsLevelsByTheSizeOfThePixelData)
{
    // 8x8 of 8 bits: 64 bytes, a palette of 1024 and its 80, a header of 80; then 16 + 80, 4 + 80, 1 + 80.
    const auto of = [&](std::uint32_t depth, std::uint32_t type, std::size_t bytes) {
        return Of({.width = 8, .height = 8, .depth = depth, .rasterFormat = type, .data = Filled(bytes, 0)})
            ->GetMipLevels(0);
    };
    EXPECT_EQ(of(8, 0, 10), 1U);
    EXPECT_EQ(of(8, 0, 1248), 1U);
    EXPECT_EQ(of(8, 0, 1249), 2U);
    EXPECT_EQ(of(8, 0, 1344), 2U);
    EXPECT_EQ(of(8, 0, 1345), 3U);
    EXPECT_EQ(of(8, 0, 1428), 3U);
    EXPECT_EQ(of(8, 0, 1429), 4U);
    // 4 bits: 32 bytes, 64 + 80, 80; swizzled 32 more.
    EXPECT_EQ(of(4, 0, 256), 1U);
    EXPECT_EQ(of(4, 0, 257), 2U);
    EXPECT_EQ(of(4, 0x10000, 288), 1U);
    EXPECT_EQ(of(4, 0x10000, 289), 2U);
    // 32 bits: 256 bytes and 80, no palette.
    EXPECT_EQ(of(32, 0, 336), 1U);
    EXPECT_EQ(of(32, 0, 337), 2U);
}

TEST_F(TXDPS2, CountingLevelsEndsForSidesAndDepthsBeyondReason)
{
    EXPECT_EQ(Of({.width = 0xFFFFFFFF, .height = 0xFFFFFFFF, .depth = 0xFFFFFFFF})->GetMipLevels(0), 1U);
    EXPECT_EQ(Of({.width = 0, .height = 0, .depth = 200, .data = Filled(401, 0)})->GetMipLevels(0), 6U);
    EXPECT_EQ(Of({.width = 0x10005, .height = 3})->GetWidth(0), 5U);
}

TEST_F(TXDPS2, NamesCannotBeChanged)
{
    const auto dictionary = Of({.name = "road"});
    EXPECT_FALSE(dictionary->SetName(0, L"wall", TextureText::Name));
    EXPECT_FALSE(dictionary->SetName(9, std::wstring(50, L'x'), TextureText::Mask));
    EXPECT_EQ(dictionary->GetName(0, TextureText::Name), L"road");
    EXPECT_EQ(dictionary->GetName(9, TextureText::Name), L"");
    EXPECT_EQ(TakeBoxes(), Lines());
}

TEST_F(TXDPS2, DroppingPixelsLowersTheCounterOfLoadedBytes)
{
    const auto dictionary = Of({.data = Filled(1000, 0)});
    EXPECT_EQ(dictionary->LoadedBytes(), 0U);
    dictionary->FreeData(0);
    EXPECT_EQ(dictionary->LoadedBytes(), 0U);
    dictionary->GetPixels(0, 0);
    dictionary->FreeData(0);
    EXPECT_EQ(dictionary->LoadedBytes(), 0xFFFFFC18U);
    EXPECT_FALSE(dictionary->GetNode({1, 3, 1})->IsLoaded());
}

TEST_F(TXDPS2, AnEmptyDictionaryOpens)
{
    EXPECT_EQ(Opened<CTXDPS2>(Dictionary({}))->GetTextureCount(), 0U);
}

// Failures.

TEST_F(TXDPS2, RefusesAnythingElseWithOneMessage)
{
    EXPECT_EQ(OpeningErrorOf<CTXDPS2>(Dictionary({RwFile::PCNative({})})), L"This is not a PS2 texture.");
    const auto dictionary = Closed<CTXDPS2>();
    dictionary->SetQuiet(true);
    EXPECT_FALSE(dictionary->Open("nothing", 0, 0, 0));
    EXPECT_EQ(dictionary->LastError(), L"This is not a PS2 texture.");
}

TEST_F(TXDPS2, AnIndexOutOfRangeIsASoftError)
{
    const auto dictionary = Of({});
    const std::wstring expected = L"Texture not exists.";
    EXPECT_EQ(SoftErrorOf([&] { dictionary->GetWidth(1); }), expected);
    EXPECT_EQ(SoftErrorOf([&] { dictionary->GetHeight(1); }), expected);
    EXPECT_EQ(SoftErrorOf([&] { dictionary->GetDepth(1); }), expected);
    EXPECT_EQ(SoftErrorOf([&] { dictionary->GetRasterFormat(1, FormatForm::Raw); }), expected);
    EXPECT_EQ(SoftErrorOf([&] { dictionary->GetCompression(1); }), expected);
    EXPECT_EQ(SoftErrorOf([&] { dictionary->GetMipLevels(1); }), expected);
    EXPECT_EQ(SoftErrorOf([&] { dictionary->GetPixels(1, 0); }), expected);
    EXPECT_EQ(SoftErrorOf([&] { dictionary->GetPalette(1); }), expected);
    EXPECT_EQ(SoftErrorOf([&] { dictionary->HasAlpha(1); }), expected);
    EXPECT_EQ(SoftErrorOf([&] { dictionary->FreeData(1); }), expected);
    EXPECT_EQ(SoftErrorOf([&] { dictionary->IsSwizzled(1); }), expected);
    EXPECT_EQ(SoftErrorOf([&] { dictionary->GetFormatText(1); }), expected);
}

TEST_F(TXDPS2, MissingPixelDataIsTwoStopBoxes)
{
    const Lines missing = {L"Wrong section ID. (370)", L"Node is N/A. this is fucking ERROR!!!!\n (407)"};
    const auto dictionary = Of({.depth = 8});
    Remove(*dictionary, {1, 3}, 1);
    EXPECT_EQ(dictionary->GetPixels(0, 0).data(), nullptr);
    EXPECT_EQ(TakeBoxes(), missing);
    EXPECT_EQ(dictionary->GetMipLevels(0), 0U);
    EXPECT_EQ(TakeBoxes(), missing);
    EXPECT_EQ(dictionary->GetPalette(0).data(), nullptr);
    EXPECT_EQ(TakeBoxes(), missing);
    dictionary->FreeData(0);
    EXPECT_EQ(TakeBoxes(), missing);
}

TEST_F(TXDPS2, WordsThatTheirBodiesDoNotHaveAreStopBoxes)
{
    const Lines tooShort = {L"Section data reading failed. (112)"};
    const auto dictionary =
        Of({.width = 16, .height = 8, .depth = 16, .rasterFormat = 0x20500, .data = Filled(39, 0)});
    EXPECT_FALSE(dictionary->IsSwizzled(0));
    EXPECT_EQ(TakeBoxes(), tooShort);
    dictionary->GetNode({1, 3, 0})->SetData(Filled(15, 0));
    EXPECT_EQ(dictionary->GetRasterFormat(0, FormatForm::Raw), 0U);
    EXPECT_EQ(TakeBoxes(), tooShort);
    dictionary->GetNode({1, 3, 0})->SetData({});
    EXPECT_EQ(dictionary->GetWidth(0), 0U);
    EXPECT_EQ(TakeBoxes(), tooShort);
    dictionary->GetNode({1, 3, 0})->SetData(Words({16, 8, 4, 0x20500}));
    EXPECT_FALSE(dictionary->IsSwizzled(0));
    EXPECT_EQ(TakeBoxes(), tooShort);
}

TEST_F(TXDPS2, RefusesEveryTruncationOfAGoodDictionary)
{
    const Bytes whole =
        Dictionary({RwFile::PS2Native({.name = "road", .mask = "roada"}), RwFile::PS2Native({})});
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        EXPECT_EQ(OpeningErrorOf<CTXDPS2>(cut), L"Stream reading error.") << length;
    }
}
