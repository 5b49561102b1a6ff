#include "tools/TXDPicture.h"

#include <cstring>
#include <gtest/gtest.h>

#include "database/DatabaseError.h"
#include "tests/support/MemoryFileSystem.h"
#include "tests/support/RecordingFailures.h"
#include "tests/support/RenderWareFiles.h"
#include "tools/TXDHelper.h"

namespace {

using RwFile::Bytes;
using RwFile::Filled;
using RwFile::Joined;
using RwFile::PCTexture;
using RwFile::PS2Texture;
/// Blue, green, red, alpha.
using Pixel = std::vector<int>;

constexpr std::uint32_t kDxt1FourCC = 0x31545844;

/// Fills every pixel with: the source's first byte, the mode, the low byte of the flags, and 1 for the flag
/// 256.
std::uint32_t FakeDecompress(const void* source, void* destination, std::uint32_t width, std::uint32_t height,
                             std::uint32_t mode, std::uint32_t flags)
{
    auto* out = static_cast<std::uint8_t*>(destination);
    for (std::uint32_t i = 0; i < width * height; ++i, out += 4) {
        std::memcpy(out, source, 1);
        out[1] = static_cast<std::uint8_t>(mode);
        out[2] = static_cast<std::uint8_t>(flags);
        out[3] = static_cast<std::uint8_t>(flags >> 8);
    }
    return width * height * 4;
}

std::uint32_t RefusingDecompress(const void* /*source*/, void* /*destination*/, std::uint32_t /*width*/,
                                 std::uint32_t /*height*/, std::uint32_t /*mode*/, std::uint32_t /*flags*/)
{
    return 0;
}

Pixel PixelAt(const CBitmap& bitmap, std::uint32_t x, std::uint32_t y)
{
    const auto row = bitmap.Row(y).subspan(std::size_t{x} * 4, 4);
    return {row[0], row[1], row[2], row[3]};
}

Bytes List(std::initializer_list<int> values)
{
    Bytes bytes;
    bytes.reserve(values.size());
    for (const int value : values)
        bytes.push_back(static_cast<std::byte>(value));
    return bytes;
}

/// Entry i is (i, 0, 255 - i, 0x40).
Bytes Palette(std::size_t entries)
{
    Bytes bytes;
    for (std::size_t i = 0; i < entries; ++i)
        for (const std::size_t value : {i, std::size_t{0}, 255 - i, std::size_t{0x40}})
            bytes.push_back(static_cast<std::byte>(value));
    return bytes;
}

class TXDPictures : public testing::Test {
protected:
    TXDPictures()
    {
        m_oPlugins.BindFunctions(CacheIndex::Dxt, nullptr, FakeDecompress);
        m_oPlugins.BindFunctions(CacheIndex::Pvrtc, nullptr, FakeDecompress);
    }

    CBitmap Draw(const Bytes& native)
    {
        m_oFiles.Put("file", RwFile::Dictionary({native}));
        CTXDHelper helper(m_oPlugins, m_oFailures, m_oFiles);
        helper.OpenDictionary("file");
        CBitmap bitmap = helper.ToBitmap(0);
        EXPECT_EQ(m_oFailures.Lines(), std::vector<std::wstring>());
        return bitmap;
    }
    CBitmap DrawPC(const PCTexture& texture) { return Draw(RwFile::PCNative(texture)); }
    CBitmap DrawPS2(const PS2Texture& texture) { return Draw(RwFile::PS2Native(texture)); }
    Pixel FirstOf(const CBitmap& bitmap) { return PixelAt(bitmap, 0, 0); }

    std::wstring ErrorOf(const Bytes& native)
    {
        m_oFiles.Put("file", RwFile::Dictionary({native}));
        CTXDHelper helper(m_oPlugins, m_oFailures, m_oFiles);
        helper.OpenDictionary("file");
        try {
            helper.ToBitmap(0);
        } catch (const CError& error) {
            return error.Text();
        }
        return L"none";
    }
    /// The flags with which a compressed texture reaches the plugin, or the error.
    std::wstring FlagsOf(const PCTexture& texture)
    {
        m_oFiles.Put("file", RwFile::Dictionary({RwFile::PCNative(texture)}));
        CTXDHelper helper(m_oPlugins, m_oFailures, m_oFiles);
        helper.OpenDictionary("file");
        try {
            const Pixel pixel = FirstOf(helper.ToBitmap(0));
            return std::to_wstring(pixel[0] + pixel[3] * 256);
        } catch (const CError& error) {
            return error.Text();
        }
    }

    CMemoryFileSystem m_oFiles;
    CRecordingFailures m_oFailures;
    CPluginTable m_oPlugins;
};

PCTexture EightByEight(std::size_t bytes)
{
    return {.rasterFormat = 0x200, .width = 8, .height = 8, .depth = 16, .pixels = Filled(bytes, 0x77)};
}

}  // namespace

// The PC, linear.

TEST_F(TXDPictures, PixelsOf32BitsAreBlueFirst)
{
    EXPECT_EQ(FirstOf(DrawPC({.rasterFormat = 0x500, .width = 1, .height = 1, .pixels = List({1, 2, 3, 4})})),
              (Pixel{1, 2, 3, 4}));
}

TEST_F(TXDPictures, PixelsOf32BitsWithoutAlphaInTheirLayoutAreOpaque)
{
    EXPECT_EQ(FirstOf(DrawPC({.rasterFormat = 0x600, .width = 1, .height = 1, .pixels = List({1, 2, 3, 4})})),
              (Pixel{1, 2, 3, 255}));
}

TEST_F(TXDPictures, PixelsOf24BitsAreBlueFirst)
{
    EXPECT_EQ(FirstOf(DrawPC(
                  {.rasterFormat = 0x600, .width = 1, .height = 1, .depth = 24, .pixels = List({1, 2, 3})})),
              (Pixel{1, 2, 3, 255}));
}

TEST_F(TXDPictures, SixteenBitLayoutsHaveAlphaOnTop)
{
    const auto of = [&](std::uint32_t layout, int low, int high) {
        return FirstOf(DrawPC(
            {.rasterFormat = layout, .width = 1, .height = 1, .depth = 16, .pixels = List({low, high})}));
    };
    EXPECT_EQ(of(0x200, 0x1F, 0x00), (Pixel{0xF8, 0, 0, 255}));
    EXPECT_EQ(of(0x200, 0x00, 0xF8), (Pixel{0, 0, 0xF8, 255}));
    EXPECT_EQ(of(0x100, 0x00, 0xFC), (Pixel{0, 0, 0xF8, 255}));
    EXPECT_EQ(of(0x100, 0x1F, 0x00), (Pixel{0xF8, 0, 0, 0}));
    EXPECT_EQ(of(0xA00, 0x00, 0x7C), (Pixel{0, 0, 0xF8, 255}));
    // Alpha 1, red 2, green 3, blue 4.
    EXPECT_EQ(of(0x300, 0x34, 0x12), (Pixel{4 * 17, 3 * 17, 2 * 17, 1 * 17}));
}

TEST_F(TXDPictures, PalettesAreRedFirst)
{
    const PCTexture texture = {.rasterFormat = 0x2500,
                               .width = 2,
                               .height = 1,
                               .depth = 8,
                               .palette = Palette(256),
                               .pixels = List({7, 200})};
    const CBitmap bitmap = DrawPC(texture);
    EXPECT_EQ(PixelAt(bitmap, 0, 0), (Pixel{248, 0, 7, 0x40}));
    EXPECT_EQ(PixelAt(bitmap, 1, 0), (Pixel{55, 0, 200, 0x40}));
}

TEST_F(TXDPictures, APaletteCountsWhateverLayoutItsColoursClaim)
{
    EXPECT_EQ(FirstOf(DrawPC({.rasterFormat = 0x2100,
                              .width = 1,
                              .height = 1,
                              .depth = 8,
                              .palette = Palette(256),
                              .pixels = List({7})})),
              (Pixel{248, 0, 7, 0x40}));
    EXPECT_EQ(FirstOf(DrawPC({.rasterFormat = 0x0600,
                              .width = 1,
                              .height = 1,
                              .depth = 8,
                              .palette = Palette(256),
                              .pixels = List({7})})),
              (Pixel{248, 0, 7, 0x40}));
}

TEST_F(TXDPictures, ASmallPaletteOfDirect3DHas32EntriesAndOneByteAPixel)
{
    const CBitmap bitmap = DrawPC({.rasterFormat = 0x4500,
                                   .width = 2,
                                   .height = 1,
                                   .depth = 8,
                                   .palette = Palette(32),
                                   .pixels = List({31, 32})});
    EXPECT_EQ(PixelAt(bitmap, 0, 0), (Pixel{224, 0, 31, 0x40}));
    EXPECT_EQ(PixelAt(bitmap, 1, 0), (Pixel{0, 0, 0, 0}));
}

TEST_F(TXDPictures, PixelsOfFourBitsHaveSixteenEntriesUnlessTheFlagSays256)
{
    const CBitmap small = DrawPC({.rasterFormat = 0x4500,
                                  .width = 2,
                                  .height = 1,
                                  .depth = 4,
                                  .palette = Palette(16),
                                  .pixels = List({0xF1})});
    EXPECT_EQ(PixelAt(small, 0, 0), (Pixel{254, 0, 1, 0x40}));
    EXPECT_EQ(PixelAt(small, 1, 0), (Pixel{240, 0, 15, 0x40}));
    const CBitmap large = DrawPC({.rasterFormat = 0x2500,
                                  .width = 2,
                                  .height = 1,
                                  .depth = 4,
                                  .palette = Palette(256),
                                  .pixels = List({0xF1})});
    EXPECT_EQ(PixelAt(large, 1, 0), (Pixel{240, 0, 15, 0x40}));
}

TEST_F(TXDPictures, EightBitsOfLuminanceHaveNoPalette)
{
    EXPECT_EQ(
        FirstOf(DrawPC({.rasterFormat = 0x400, .width = 1, .height = 1, .depth = 8, .pixels = List({0x66})})),
        (Pixel{0x66, 0x66, 0x66, 255}));
    // With the flag there is one after all.
    EXPECT_EQ(FirstOf(DrawPC({.rasterFormat = 0x2400,
                              .width = 1,
                              .height = 1,
                              .depth = 8,
                              .palette = Palette(256),
                              .pixels = List({7})})),
              (Pixel{248, 0, 7, 0x40}));
}

TEST_F(TXDPictures, OnlyTheFirstLevelIsDrawn)
{
    const CBitmap bitmap =
        DrawPC({.rasterFormat = 0x500, .width = 1, .height = 1, .levels = 0, .pixels = List({1, 2, 3, 4})});
    EXPECT_EQ(bitmap.Width(), 1U);
}

// The PC, compressed.

TEST_F(TXDPictures, AFourCCTellsTheCompressionOfDirect3D9)
{
    PCTexture texture = EightByEight(64);
    texture.platform = 9;
    const std::vector<std::wstring> flags = {L"64", L"32", L"32", L"288", L"288"};
    for (std::uint32_t i = 0; i < 5; ++i) {
        texture.platformFormat = kDxt1FourCC + (i << 24);
        // DXT1 of that size would need 32 bytes only.
        EXPECT_EQ(FlagsOf(texture), flags[i]) << i;
    }
}

TEST_F(TXDPictures, AByteTellsTheCompressionOfDirect3D8)
{
    PCTexture texture = EightByEight(64);
    const std::vector<std::wstring> flags = {L"64", L"32", L"32", L"288", L"288"};
    for (std::uint8_t i = 0; i < 5; ++i) {
        texture.compression = static_cast<std::uint8_t>(i + 1);
        EXPECT_EQ(FlagsOf(texture), flags[i]) << int{i};
    }
    texture.compression = 6;
    EXPECT_EQ(FlagsOf(texture), L"This format is unsupported");
}

TEST_F(TXDPictures, OtherwiseTheReaderTellsTheCompression)
{
    PCTexture texture = EightByEight(64);
    texture.platform = 9;
    texture.compression = 9;
    EXPECT_EQ(FlagsOf(texture), L"32");
    texture.compression = 8;
    EXPECT_EQ(FlagsOf(texture), L"64");
    texture.compression = 77;
    EXPECT_EQ(FlagsOf(texture), L"This format is unsupported");
    texture.platform = 1;
    texture.compression = 4;
    EXPECT_EQ(FlagsOf(texture), L"64");
}

TEST_F(TXDPictures, TheSizeOfDxt1OutweighsEveryClaim)
{
    PCTexture texture = EightByEight(32);
    EXPECT_EQ(FlagsOf(texture), L"64");
    texture.compression = 3;
    EXPECT_EQ(FlagsOf(texture), L"64");
    texture.compression = 0;
    texture.depth = 8;
    EXPECT_EQ(FlagsOf(texture), L"64");
    texture.depth = 4;
    EXPECT_EQ(FlagsOf(texture), L"64");
    texture.depth = 32;
    texture.platform = 9;
    texture.compression = 200;
    EXPECT_EQ(FlagsOf(texture), L"64");
}

TEST_F(TXDPictures, FourBitPixelsAreNotTakenForDxt1ThoughTheyAreAsLarge)
{
    const CBitmap bitmap = DrawPC({.rasterFormat = 0x4500,
                                   .width = 8,
                                   .height = 8,
                                   .depth = 4,
                                   .palette = Palette(16),
                                   .pixels = Filled(32, 0x11)});
    EXPECT_EQ(FirstOf(bitmap), (Pixel{254, 0, 1, 0x40}));
}

TEST_F(TXDPictures, TinyPicturesThatNeedAsMuchEitherWayAreWhatTheyClaim)
{
    // 2 x 1 pixels of 32 bits are 8 bytes, one block of DXT1.
    EXPECT_EQ(
        FirstOf(DrawPC(
            {.rasterFormat = 0x500, .width = 2, .height = 1, .pixels = List({1, 2, 3, 4, 5, 6, 7, 8})})),
        (Pixel{1, 2, 3, 4}));
    EXPECT_EQ(
        FlagsOf({.rasterFormat = 0x500, .width = 2, .height = 1, .compression = 1, .pixels = Filled(8, 1)}),
        L"64");
}

TEST_F(TXDPictures, FlagsOfDirect3D9ThatAreNoCompressionDoNotHideLinearPixels)
{
    // 4 asks for levels to be made, which looks like a code for DXT1.
    EXPECT_EQ(FirstOf(DrawPC({.platform = 9,
                              .rasterFormat = 0x500,
                              .platformFormat = 21,
                              .width = 1,
                              .height = 1,
                              .compression = 4,
                              .pixels = List({1, 2, 3, 4})})),
              (Pixel{1, 2, 3, 4}));
    EXPECT_EQ(FirstOf(DrawPC({.platform = 9,
                              .rasterFormat = 0x500,
                              .platformFormat = 21,
                              .width = 1,
                              .height = 1,
                              .compression = 5,
                              .pixels = List({1, 2, 3, 4})})),
              (Pixel{1, 2, 3, 4}));
}

TEST_F(TXDPictures, Dxt1HasAlphaWhenTheRecordSaysSo)
{
    PCTexture texture = EightByEight(32);
    texture.platform = 9;
    texture.platformFormat = kDxt1FourCC;
    EXPECT_EQ(FlagsOf(texture), L"64");
    texture.compression = 9;
    EXPECT_EQ(FlagsOf(texture), L"96");
    texture.compression = 8;
    texture.rasterFormat = 0x100;
    EXPECT_EQ(FlagsOf(texture), L"96");
    PCTexture older = EightByEight(32);
    older.compression = 1;
    EXPECT_EQ(FlagsOf(older), L"64");
    older.platformFormat = 1;
    EXPECT_EQ(FlagsOf(older), L"96");
    older.platformFormat = 0;
    older.mask = "m";
    EXPECT_EQ(FlagsOf(older), L"96");
}

TEST_F(TXDPictures, CompressedPixelsFollowTheFixedPartWhateverTheDepth)
{
    for (const std::uint8_t depth : std::initializer_list<std::uint8_t>{4, 8, 16, 32}) {
        PCTexture texture = EightByEight(64);
        texture.depth = depth;
        texture.compression = 3;
        EXPECT_EQ(FirstOf(DrawPC(texture)), (Pixel{32, 0, 0x77, 0})) << int{depth};
    }
}

TEST_F(TXDPictures, ATallPictureIsDecodedInStrips)
{
    // 4 x 132: 33 rows of blocks, the third strip begins at block 32.
    Bytes blocks = Filled(std::size_t{33} * 8, 1);
    blocks[16 * 8] = std::byte{2};
    blocks[32 * 8] = std::byte{3};
    const CBitmap bitmap =
        DrawPC({.width = 4, .height = 130, .depth = 16, .compression = 1, .pixels = blocks});
    EXPECT_EQ(PixelAt(bitmap, 0, 63)[2], 1);
    EXPECT_EQ(PixelAt(bitmap, 3, 64)[2], 2);
    EXPECT_EQ(PixelAt(bitmap, 0, 128)[2], 3);
    EXPECT_EQ(PixelAt(bitmap, 3, 129)[2], 3);
}

// The PlayStation 2.

TEST_F(TXDPictures, PlayStationPixelsAreRedFirstAndTheirAlphaIsHalf)
{
    EXPECT_EQ(FirstOf(DrawPS2({.width = 1, .height = 1, .data = List({1, 2, 3, 0x40})})),
              (Pixel{3, 2, 1, 0x80}));
    EXPECT_EQ(FirstOf(DrawPS2({.width = 1, .height = 1, .data = List({1, 2, 3, 0x80})})),
              (Pixel{3, 2, 1, 255}));
    EXPECT_EQ(FirstOf(DrawPS2({.width = 1, .height = 1, .rasterFormat = 0x600, .data = List({1, 2, 3, 0})})),
              (Pixel{3, 2, 1, 255}));
    EXPECT_EQ(FirstOf(DrawPS2(
                  {.width = 1, .height = 1, .depth = 24, .rasterFormat = 0x600, .data = List({1, 2, 3})})),
              (Pixel{3, 2, 1, 255}));
    // Red in the low five bits, alpha in the top one.
    EXPECT_EQ(FirstOf(DrawPS2(
                  {.width = 1, .height = 1, .depth = 16, .rasterFormat = 0x100, .data = List({0x1F, 0x80})})),
              (Pixel{0, 0, 0xF8, 255}));
}

TEST_F(TXDPictures, PlayStationPalettesOf256AreStoredWithTwoIndexBitsExchanged)
{
    const auto of = [&](int index) {
        return FirstOf(DrawPS2({.width = 1,
                                .height = 1,
                                .depth = 8,
                                .rasterFormat = 0x2500,
                                .data = Joined({List({index}), Palette(256)})}));
    };
    EXPECT_EQ(of(7), (Pixel{248, 0, 7, 0x80}));
    EXPECT_EQ(of(8), (Pixel{239, 0, 16, 0x80}));
    EXPECT_EQ(of(23), (Pixel{240, 0, 15, 0x80}));
    EXPECT_EQ(of(24), (Pixel{231, 0, 24, 0x80}));
    EXPECT_EQ(of(255), (Pixel{0, 0, 255, 0x80}));
}

TEST_F(TXDPictures, PlayStationPalettesOfSixteenAreInOrder)
{
    const CBitmap bitmap = DrawPS2({.width = 2,
                                    .height = 1,
                                    .depth = 4,
                                    .rasterFormat = 0x4500,
                                    .data = Joined({List({0xC1}), Palette(16)})});
    EXPECT_EQ(PixelAt(bitmap, 0, 0), (Pixel{254, 0, 1, 0x80}));
    EXPECT_EQ(PixelAt(bitmap, 1, 0), (Pixel{243, 0, 12, 0x80}));
}

TEST_F(TXDPictures, SwizzledRastersComeOutInRows)
{
    // Column 1 of row 0 is byte 4, column 0 of row 1 is byte 32.
    Bytes data = Filled(256, 0);
    data[4] = std::byte{1};
    data[32] = std::byte{2};
    const CBitmap bitmap = DrawPS2({.width = 16,
                                    .height = 16,
                                    .depth = 8,
                                    .rasterFormat = 0x12500,
                                    .data = Joined({data, Palette(256)})});
    EXPECT_EQ(PixelAt(bitmap, 1, 0), (Pixel{254, 0, 1, 0x80}));
    EXPECT_EQ(PixelAt(bitmap, 0, 1), (Pixel{253, 0, 2, 0x80}));
    EXPECT_EQ(PixelAt(bitmap, 2, 1), (Pixel{255, 0, 0, 0x80}));
}

TEST_F(TXDPictures, NarrowSwizzledRastersOfFourBitsAreUnswizzledWideAndCutAgain)
{
    // Column 1 of row 0 is nibble 4; column 0 of row 1 is nibble 64.
    Bytes data = Filled(128, 0);
    data[2] = std::byte{0x03};
    data[32] = std::byte{0x05};
    const CBitmap bitmap = DrawPS2({.width = 16,
                                    .height = 16,
                                    .depth = 4,
                                    .rasterFormat = 0x14500,
                                    .data = Joined({data, Palette(16), Filled(32, 0)})});
    EXPECT_EQ(bitmap.Width(), 16U);
    EXPECT_EQ(PixelAt(bitmap, 1, 0), (Pixel{252, 0, 3, 0x80}));
    EXPECT_EQ(PixelAt(bitmap, 0, 1), (Pixel{250, 0, 5, 0x80}));
    EXPECT_EQ(PixelAt(bitmap, 15, 15), (Pixel{255, 0, 0, 0x80}));
}

TEST_F(TXDPictures, RastersOf32BitsThatCallThemselvesSwizzledAreInOrder)
{
    EXPECT_EQ(
        FirstOf(DrawPS2({.width = 1, .height = 1, .rasterFormat = 0x10500, .data = List({1, 2, 3, 0x80})})),
        (Pixel{3, 2, 1, 255}));
}

TEST_F(TXDPictures, PixelsBehindALevelHeaderAreFound)
{
    const Bytes header = Joined({RwFile::Words({3}), Filled(76, 0)});
    EXPECT_EQ(FirstOf(DrawPS2({.width = 1, .height = 1, .data = Joined({header, List({1, 2, 3, 0x80})})})),
              (Pixel{3, 2, 1, 255}));
}

// The mobile platforms.

TEST_F(TXDPictures, MobilePixelsOfSixteenBitsHaveAlphaAtTheBottom)
{
    EXPECT_EQ(FirstOf(Draw(
                  RwFile::MobileNative({.alpha = 1, .width = 1, .height = 1, .pixels = List({0x34, 0x12})}))),
              (Pixel{3 * 17, 2 * 17, 1 * 17, 4 * 17}));
    EXPECT_EQ(FirstOf(Draw(
                  RwFile::MobileNative({.alpha = 0, .width = 1, .height = 1, .pixels = List({0x00, 0xF8})}))),
              (Pixel{0, 0, 0xF8, 255}));
}

TEST_F(TXDPictures, MobileCompressionIsPvrtcByTheBytesThatAreThere)
{
    EXPECT_EQ(FirstOf(Draw(RwFile::MobileNative(
                  {.platform = 10, .width = 16, .height = 16, .pixels = Filled(128, 9)}))),
              (Pixel{32, 4, 9, 0}));
    EXPECT_EQ(FirstOf(Draw(RwFile::MobileNative(
                  {.platform = 10, .width = 16, .height = 16, .pixels = Filled(127, 9)}))),
              (Pixel{0, 2, 9, 0}));
    EXPECT_EQ(FirstOf(Draw(
                  RwFile::MobileNative({.platform = 10, .width = 4, .height = 4, .pixels = Filled(32, 9)}))),
              (Pixel{32, 4, 9, 0}));
}

TEST_F(TXDPictures, OtherMobileFormatsAreUnsupported)
{
    EXPECT_EQ(ErrorOf(RwFile::MobileNative({.platform = 11})), L"This format is unsupported");
}

// Failures.

TEST_F(TXDPictures, ASideOfZeroIsAWrongDimension)
{
    EXPECT_EQ(ErrorOf(RwFile::PCNative({.width = 0})), L"Wrong texture dimensions given.");
    EXPECT_EQ(ErrorOf(RwFile::PS2Native({.height = 0})), L"Wrong texture dimensions given.");
    EXPECT_EQ(ErrorOf(RwFile::MobileNative({.width = 0})), L"Wrong texture dimensions given.");
    EXPECT_EQ(ErrorOf(RwFile::PCNative({.height = 0, .compression = 1})), L"Wrong texture dimensions given.");
}

TEST_F(TXDPictures, PixelsThatTheRecordDoesNotHoldAreNotDrawn)
{
    const std::wstring expected = L"Section data reading failed.";
    EXPECT_EQ(ErrorOf(RwFile::PCNative({.width = 65535, .height = 65535})), expected);
    EXPECT_EQ(ErrorOf(RwFile::PCNative({.width = 2, .height = 3})), expected);
    EXPECT_EQ(ErrorOf(RwFile::PCNative({.pixels = {}})), expected);
    EXPECT_EQ(ErrorOf(RwFile::PCNative({.pixels = RwFile::Counting(15), .sizeWord = 16})), expected);
    EXPECT_EQ(ErrorOf(RwFile::PCNative({.pixels = RwFile::Counting(16), .sizeWord = 15})), expected);
    EXPECT_EQ(ErrorOf(RwFile::PCNative({.pixels = RwFile::Counting(16), .sizeWord = 0xFFFFFFFF})), L"none");
    EXPECT_EQ(ErrorOf(RwFile::PCNative({.width = 65535, .height = 65535, .compression = 1})), expected);
    EXPECT_EQ(ErrorOf(RwFile::PCNative(
                  {.rasterFormat = 0x2500, .depth = 8, .palette = Filled(50, 0), .pixels = {}})),
              expected);
    EXPECT_EQ(ErrorOf(RwFile::PS2Native({.width = 65535, .height = 65535})), expected);
    EXPECT_EQ(ErrorOf(RwFile::PS2Native({.depth = 8, .data = Filled(1023, 0)})), expected);
    EXPECT_EQ(ErrorOf(RwFile::MobileNative({.width = 5})), expected);
    EXPECT_EQ(
        ErrorOf(RwFile::MobileNative({.platform = 10, .width = 16, .height = 16, .pixels = Filled(63, 9)})),
        expected);
}

TEST_F(TXDPictures, DepthsAndLayoutsThatNobodyKnowsAreUnsupported)
{
    const std::wstring expected = L"This format is unsupported";
    for (const std::uint8_t depth : std::initializer_list<std::uint8_t>{0, 1, 12, 200})
        EXPECT_EQ(ErrorOf(RwFile::PCNative(
                      {.depth = depth, .palette = Filled(1024, 0), .pixels = Filled(1024, 0)})),
                  expected)
            << int{depth};
    EXPECT_EQ(ErrorOf(RwFile::PCNative({.rasterFormat = 0x700, .depth = 16})), expected);
    EXPECT_EQ(ErrorOf(RwFile::PS2Native({.width = 2, .height = 2, .depth = 64})), expected);
}

TEST_F(TXDPictures, APluginThatIsNotLoadedIsNamed)
{
    m_oPlugins = CPluginTable();
    EXPECT_EQ(ErrorOf(RwFile::PCNative(EightByEight(32))), L"DXT plugin is not loaded");
    EXPECT_EQ(ErrorOf(RwFile::MobileNative({.platform = 10})), L"PVRTC plugin is not loaded");
    EXPECT_EQ(ErrorOf(RwFile::PCNative({})), L"none");
}

TEST_F(TXDPictures, ADecoderThatRefusesIsAnError)
{
    m_oPlugins.BindFunctions(CacheIndex::Dxt, nullptr, RefusingDecompress);
    m_oPlugins.BindFunctions(CacheIndex::Pvrtc, nullptr, RefusingDecompress);
    EXPECT_EQ(ErrorOf(RwFile::PCNative(EightByEight(32))), L"Cannot decompress texture.");
    EXPECT_EQ(ErrorOf(RwFile::MobileNative({.platform = 10})), L"Cannot decompress texture.");
}
