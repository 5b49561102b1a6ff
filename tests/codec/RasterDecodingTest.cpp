#include "codec/RasterDecoding.h"

#include <gtest/gtest.h>

#include "tests/codec/FakeCodecs.h"
#include "tests/codec/TestDatabase.h"

namespace {

constexpr std::uint16_t kMips = 0x8000;

RasterHeader Header(std::uint16_t glFormat, std::uint32_t width, std::uint32_t height, bool mips = false)
{
    return {0, glFormat, static_cast<std::uint16_t>(width),
            static_cast<std::uint16_t>(height | (mips ? kMips : 0U))};
}

/// A database with one texture in the DXT slot; any slot holds any format.
class RasterDecoding : public testing::Test {
protected:
    RasterDecoding() : m_oDatabase({CacheIndex::Dxt}) {}

    void Store(const RasterHeader& header, std::vector<std::byte> bytes)
    {
        m_oDatabase.Add(L"wall", {{CacheIndex::Dxt, {header, std::move(bytes)}}});
    }
    void Store(const RasterHeader& header)
    {
        Store(header, CountingBytes(static_cast<std::size_t>(RasterSize(header))));
    }
    void Decoder(CacheIndex cache, MavrelDecompressFn decompress)
    {
        m_oDatabase.Plugins().BindFunctions(cache, nullptr, decompress);
    }
    std::optional<DecodedTexture> Decode(RecordKind kind = RecordKind::Raster)
    {
        return DecodeTexture(*m_oDatabase, m_oDatabase.Plugins(), 0, CacheIndex::Dxt, kind);
    }
    void ExpectCall(const RasterHeader& header, CacheIndex plugin, std::uint8_t mode, std::uint16_t flags)
    {
        Store(header);
        Decoder(plugin, Fake::ModeAndFlags);
        const auto decoded = Decode();
        ASSERT_TRUE(decoded);
        EXPECT_TRUE(decoded->isWritten);
        EXPECT_EQ(decoded->pixels.at(0), std::byte{mode});
        EXPECT_EQ(decoded->pixels.at(1), static_cast<std::byte>(flags));
        EXPECT_EQ(decoded->pixels.at(2), static_cast<std::byte>(flags >> 8));
    }
    void ExpectFormat(std::uint32_t bitsPerPixel, std::uint32_t layout)
    {
        const auto decoded = Decode();
        ASSERT_TRUE(decoded);
        EXPECT_EQ(decoded->bitsPerPixel, bitsPerPixel);
        EXPECT_EQ(decoded->layout, layout);
    }

    CTestDatabase m_oDatabase;
};

}  // namespace

// What is handed on as it is stored.

TEST_F(RasterDecoding, NeverPassesRgba8888ToAPlugin)
{
    Store(Header(0x1401, 2, 2));
    Decoder(CacheIndex::Unc, Fake::Refuse);
    const auto decoded = Decode();
    ASSERT_TRUE(decoded);
    EXPECT_TRUE(decoded->isWritten);
    EXPECT_EQ(decoded->pixels, CountingBytes(16));
    EXPECT_EQ(decoded->width, 2U);
    EXPECT_EQ(decoded->height, 2U);
    ExpectFormat(32, 0x8888);
}

TEST_F(RasterDecoding, HandsOnSixteenBitAndLuminanceRastersWithoutAPlugin)
{
    struct Row {
        std::uint16_t glFormat;
        std::size_t bytes;
        std::uint32_t bitsPerPixel;
        std::uint32_t layout;
    };
    const Row rows[] = {{0x8033, 8, 16, 0x4444},
                        {0x8034, 8, 16, 0x5551},
                        {0x8363, 8, 16, 0x565},
                        {0x190A, 8, 16, 0x88},
                        {0x1909, 4, 8, 0x8}};
    std::uint32_t index = 0;
    for (const Row& row : rows) {
        Store(Header(row.glFormat, 2, 2));
        const auto decoded =
            DecodeTexture(*m_oDatabase, m_oDatabase.Plugins(), index++, CacheIndex::Dxt, RecordKind::Raster);
        ASSERT_TRUE(decoded);
        EXPECT_EQ(decoded->pixels, CountingBytes(row.bytes)) << std::hex << row.glFormat;
        EXPECT_EQ(decoded->bitsPerPixel, row.bitsPerPixel) << std::hex << row.glFormat;
        EXPECT_EQ(decoded->layout, row.layout) << std::hex << row.glFormat;
    }
}

TEST_F(RasterDecoding, LeavesRgba565UnwrittenWhenAnUncDecoderIsBound)
{
    Store(Header(0x8363, 2, 2));
    Decoder(CacheIndex::Unc, Fake::CopySixteenBit);
    const auto decoded = Decode();
    ASSERT_TRUE(decoded);
    EXPECT_FALSE(decoded->isWritten);
    EXPECT_EQ(decoded->pixels, std::vector<std::byte>(8 * 8 * 8));
    EXPECT_EQ(decoded->bitsPerPixel, 16U);
}

TEST_F(RasterDecoding, LeavesDxt3UnwrittenEvenWithADxtDecoder)
{
    Store(Header(0x83F2, 4, 4));
    Decoder(CacheIndex::Dxt, Fake::FirstByte);
    const auto decoded = Decode();
    ASSERT_TRUE(decoded);
    EXPECT_FALSE(decoded->isWritten);
    ExpectFormat(32, 0);
}

// How plugins are called.

TEST_F(RasterDecoding, CallsTheDxtPluginForDxt1)
{
    ExpectCall(Header(0x83F0, 4, 4), CacheIndex::Dxt, 0, 64);
    ExpectFormat(32, 0x565);
}

TEST_F(RasterDecoding, CallsTheDxtPluginForDxt1WithAlpha)
{
    ExpectCall(Header(0x83F1, 4, 4), CacheIndex::Dxt, 0, 96);
    ExpectFormat(32, 0x1555);
}

TEST_F(RasterDecoding, CallsTheDxtPluginForDxt5)
{
    ExpectCall(Header(0x83F3, 4, 4), CacheIndex::Dxt, 0, 288);
    ExpectFormat(32, 0x4444);
}

TEST_F(RasterDecoding, CallsTheEtc1Plugin)
{
    ExpectCall(Header(0x8D64, 4, 4), CacheIndex::Etc1, 0, 0);
    ExpectFormat(32, 0);
}

TEST_F(RasterDecoding, CallsThePvrtcPluginForTwoBits)
{
    ExpectCall(Header(0x8C01, 16, 16), CacheIndex::Pvrtc, 2, 0);
    ExpectFormat(32, 0x8888);
}

TEST_F(RasterDecoding, CallsThePvrtcPluginForFourBits)
{
    ExpectCall(Header(0x8C02, 8, 8), CacheIndex::Pvrtc, 4, 32);
    ExpectFormat(32, 0);
}

TEST_F(RasterDecoding, CallsABoundUncPluginForRgba4444)
{
    ExpectCall(Header(0x8033, 4, 4), CacheIndex::Unc, 16, 32);
    ExpectFormat(16, 0x4444);
}

TEST_F(RasterDecoding, CallsABoundUncPluginForRgba5551)
{
    ExpectCall(Header(0x8034, 4, 4), CacheIndex::Unc, 16, 32);
    ExpectFormat(16, 0x5551);
}

TEST_F(RasterDecoding, DecodesThreeLevelsOfASmallDxt1ChainEightBytesApart)
{
    Store(Header(0x83F0, 4, 4, true));
    Decoder(CacheIndex::Dxt, Fake::FirstByte);
    const auto decoded = Decode();
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->pixels.size(), 8U * 8 * 8);
    EXPECT_EQ(decoded->pixels.at(0), std::byte{0});
    EXPECT_EQ(decoded->pixels.at(4 * 4 * 4), std::byte{8});
    EXPECT_EQ(decoded->pixels.at(4 * 4 * 4 + 2 * 2 * 4), std::byte{16});
    EXPECT_EQ(decoded->pixels.at(4 * 4 * 4 + 2 * 2 * 4 + 3), std::byte{16});
    EXPECT_EQ(decoded->pixels.at(4 * 4 * 4 + 2 * 2 * 4 + 4), std::byte{0});
}

TEST_F(RasterDecoding, AdvancesHalfABytePerPixelInSixteenBitRasters)
{
    // 16x16: the second level is read 128 bytes on, inside the first.
    Store(Header(0x8033, 16, 16, true));
    Decoder(CacheIndex::Unc, Fake::CopySixteenBit);
    const auto decoded = Decode();
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->pixels.at(512), std::byte{128});
    EXPECT_EQ(decoded->pixels.at(512 + 8 * 8 * 2), std::byte{128 + 32});
}

TEST_F(RasterDecoding, StopsBeforeALevelThatWouldReadPastTheRaster)
{
    // 4x4 with mips is 42 bytes: levels are read at 0, 32 and 64.
    Store(Header(0x8033, 4, 4, true));
    Decoder(CacheIndex::Unc, Fake::CopySixteenBit);
    const auto decoded = Decode();
    ASSERT_TRUE(decoded);
    EXPECT_TRUE(decoded->isWritten);
    EXPECT_EQ(decoded->pixels.at(31), std::byte{31});
    EXPECT_EQ(decoded->pixels.at(32), std::byte{32});
    EXPECT_EQ(decoded->pixels.at(32 + 8), std::byte{0});
}

TEST_F(RasterDecoding, CallsNothingWhenTheBlocksDoNotLieInTheRaster)
{
    // 6x6 counts 18 bytes by its pixels, but its four blocks take 32.
    Store(Header(0x83F0, 6, 6));
    Decoder(CacheIndex::Dxt, Fake::ReadBlocks<8>);
    const auto decoded = Decode();
    ASSERT_TRUE(decoded);
    EXPECT_FALSE(decoded->isWritten);
}

TEST_F(RasterDecoding, PadsAFlatPvrtcPictureForItsDecoder)
{
    // 4x64 counts 128 bytes by its pixels; the format stores it as 8x64.
    Store(Header(0x8C02, 4, 64));
    Decoder(CacheIndex::Pvrtc, Fake::ReadPvrtc);
    const auto decoded = Decode();
    ASSERT_TRUE(decoded);
    EXPECT_TRUE(decoded->isWritten);
    EXPECT_EQ(decoded->width, 4U);
    EXPECT_EQ(decoded->height, 64U);
}

TEST_F(RasterDecoding, NeverReadsPastTheRasterWhateverItsSize)
{
    Decoder(CacheIndex::Dxt, Fake::ReadBlocks<16>);
    Decoder(CacheIndex::Etc1, Fake::ReadBlocks<8>);
    Decoder(CacheIndex::Pvrtc, Fake::ReadPvrtc);
    std::uint32_t index = 0;
    for (const std::uint16_t glFormat : {GlFormat::Dxt5, GlFormat::Etc1, GlFormat::Pvrtc2, GlFormat::Pvrtc4})
        for (const std::uint32_t width : {2U, 3U, 4U, 5U, 8U, 12U, 64U})
            for (const std::uint32_t height : {2U, 3U, 4U, 7U, 16U})
                for (const bool mips : {false, true}) {
                    const RasterHeader header = Header(glFormat, width, height, mips);
                    if (RasterSize(header) > std::uint64_t{width} * height * 8)
                        continue;
                    Store(header);
                    EXPECT_TRUE(DecodeTexture(*m_oDatabase, m_oDatabase.Plugins(), index++, CacheIndex::Dxt,
                                              RecordKind::Raster))
                        << std::hex << glFormat << std::dec << ' ' << width << 'x' << height;
                }
    EXPECT_GT(index, 200U);
}

TEST_F(RasterDecoding, MarksWhatAPluginRefusesAsNotWritten)
{
    Store(Header(0x8C02, 8, 8));
    Decoder(CacheIndex::Pvrtc, Fake::Refuse);
    const auto decoded = Decode();
    ASSERT_TRUE(decoded);
    EXPECT_FALSE(decoded->isWritten);
}

// Thumbnails.

TEST_F(RasterDecoding, DecodesOnlyTheFirstLevelOfAThumbnailWithTheLayoutOfTheRaster)
{
    const auto raster = CountingBytes(16);
    const auto thumbnail = CountingBytes(24);
    const PreparedRecord records[] = {
        {CacheIndex::Dxt, RecordKind::Raster, {Header(0x1401, 2, 2), raster, StreamMode::Raw, false}},
        {CacheIndex::Dxt,
         RecordKind::Thumbnail,
         {Header(0x83F0, 4, 4, true), thumbnail, StreamMode::Raw, false}}};
    m_oDatabase->StoreTexture(MakeEntry({.name = L"wall", .width = 2, .height = 2}), records);
    Decoder(CacheIndex::Dxt, Fake::FirstByte);

    const auto decoded = Decode(RecordKind::Thumbnail);
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->width, 4U);
    EXPECT_EQ(decoded->height, 4U);
    EXPECT_EQ(decoded->layout, 0x8888U);
    EXPECT_EQ(decoded->bitsPerPixel, 32U);
    EXPECT_EQ(decoded->pixels.at(4 * 4 * 4), std::byte{0});
}

// Failures.

TEST_F(RasterDecoding, GivesNothingForACacheThatIsNotOpen)
{
    Store(Header(0x1401, 2, 2));
    EXPECT_FALSE(DecodeTexture(*m_oDatabase, m_oDatabase.Plugins(), 0, CacheIndex::Etc1, RecordKind::Raster));
    EXPECT_FALSE(
        DecodeTexture(*m_oDatabase, m_oDatabase.Plugins(), 0, CacheIndex::Etc1, RecordKind::Thumbnail));
    EXPECT_TRUE(m_oDatabase.Prompt().Shown().empty());
}

TEST_F(RasterDecoding, NamesThePluginThatIsMissing)
{
    Store(Header(0x83F0, 4, 4));
    EXPECT_EQ(ErrorOf([this] { Decode(); }), L"DXT plugin is not loaded");
}

TEST_F(RasterDecoding, NamesTheMissingEtc1Plugin)
{
    Store(Header(0x8D64, 4, 4));
    EXPECT_EQ(ErrorOf([this] { Decode(); }), L"ETC1 plugin is not loaded");
}

TEST_F(RasterDecoding, NamesTheMissingPvrtcPlugin)
{
    Store(Header(0x8C02, 8, 8));
    EXPECT_EQ(ErrorOf([this] { Decode(); }), L"PVRTC plugin is not loaded");
    EXPECT_TRUE(m_oDatabase.Prompt().Shown().empty());
}

TEST_F(RasterDecoding, PassesOnThatARasterCannotBeRead)
{
    m_oDatabase.Add(L"empty", {});
    EXPECT_EQ(ErrorOf([this] { Decode(); }), L"Wrong texture size given. Cache is corrupted.");
}

// Bitmaps.

TEST_F(RasterDecoding, DrawsStoredBytesAsRedGreenBlueAlpha)
{
    Store(Header(0x1401, 1, 1), {std::byte{10}, std::byte{20}, std::byte{30}, std::byte{40}});
    const auto bitmap = ToBitmap(*Decode());
    ASSERT_TRUE(bitmap);
    EXPECT_EQ(std::vector<std::uint8_t>(bitmap->Pixels().begin(), bitmap->Pixels().end()),
              (std::vector<std::uint8_t>{30, 20, 10, 40}));
}

TEST_F(RasterDecoding, DrawsAnUnwrittenTextureBlank)
{
    Store(Header(0x83F2, 4, 4));
    const auto bitmap = ToBitmap(*Decode());
    ASSERT_TRUE(bitmap);
    EXPECT_EQ(bitmap->Width(), 4U);
    EXPECT_EQ(std::vector<std::uint8_t>(bitmap->Pixels().begin(), bitmap->Pixels().end()),
              std::vector<std::uint8_t>(64));
}
