#include "tools/TextureFacts.h"

#include <gtest/gtest.h>

#include "tests/codec/TestDatabase.h"

TEST(TextureFacts, ShowsSizesInBytesKilobytesAndMegabytes)
{
    EXPECT_EQ(RasterSizeText(0), L"0 B");
    EXPECT_EQ(RasterSizeText(1023), L"1023 B");
    EXPECT_EQ(RasterSizeText(1024), L"1.000 KB");
    EXPECT_EQ(RasterSizeText(1536), L"1.500 KB");
    EXPECT_EQ(RasterSizeText(1048575), L"1023.999 KB");
    EXPECT_EQ(RasterSizeText(1048576), L"1.000 MB");
    EXPECT_EQ(RasterSizeText(65535ULL * 32767 * 4), L"8191.625 MB");
}

TEST(TextureFacts, ShowsIndexAndOffset)
{
    EXPECT_EQ(IdAndOffsetText(7, 0x1A2B), L"ID: 07, Offset: 0x1A2B");
    EXPECT_EQ(IdAndOffsetText(123, 0), L"ID: 123, Offset: 0x0");
    EXPECT_EQ(IdAndOffsetText(0, kNone), L"ID: 00, Offset: 0xFFFFFFFF");
}

TEST(TextureFacts, ShowsDimensionsWithoutTheMipsBit)
{
    EXPECT_EQ(DimensionsText({0, 0x83F0, 256, 0x8000 | 128}), L"256 x 128");
}

TEST(TextureFacts, NamesTheGames)
{
    EXPECT_EQ(GameName(StreamMode::Auto), L"(auto)");
    EXPECT_EQ(GameName(StreamMode::Raw), L"GTA VC");
    EXPECT_EQ(GameName(StreamMode::Framed), L"GTA SA");
}

TEST(TextureFacts, TellsHowLongATextureTookToShow)
{
    EXPECT_EQ(RenderedText(L"wall", 0.126), L"Texture 'wall' rendered within 0.13 seconds.");
    EXPECT_EQ(RenderedText(L"", 2), L"Texture 'unnamed' rendered within 2.00 seconds.");
}

TEST(TextureFacts, ShowsTheRasterOrTheThumbnailAndAlwaysTheFormatOfTheRaster)
{
    CTestDatabase database({CacheIndex::Dxt});
    const auto raster = CountingBytes(2048);
    const auto thumbnail = CountingBytes(16);
    const PreparedRecord records[] = {
        {CacheIndex::Dxt, RecordKind::Raster, {{0, 0x83F0, 64, 64}, raster, StreamMode::Raw, false}},
        {CacheIndex::Dxt, RecordKind::Thumbnail, {{0, 0x1401, 2, 2}, thumbnail, StreamMode::Raw, false}}};
    database->StoreTexture(MakeEntry({.name = L"wall", .width = 64, .height = 64}), records);

    const TextureFacts facts = FactsOf(*database, 0, CacheIndex::Dxt, RecordKind::Raster);
    EXPECT_EQ(facts.idAndOffset, L"ID: 00, Offset: 0x0");
    EXPECT_EQ(facts.size, L"2.000 KB");
    EXPECT_EQ(facts.dimensions, L"64 x 64");
    EXPECT_EQ(facts.game, L"GTA VC");
    EXPECT_EQ(facts.format, L"DXT1");
    const TextureFacts small = FactsOf(*database, 0, CacheIndex::Dxt, RecordKind::Thumbnail);
    EXPECT_EQ(small.size, L"16 B");
    EXPECT_EQ(small.dimensions, L"2 x 2");
    EXPECT_EQ(small.format, L"DXT1");
}

TEST(TextureFacts, ShowsATextureWithoutARaster)
{
    CTestDatabase database({CacheIndex::Dxt}, StreamMode::Auto);
    database.Add(L"empty", {});
    const TextureFacts facts = FactsOf(*database, 0, CacheIndex::Dxt, RecordKind::Raster);
    EXPECT_EQ(facts.idAndOffset, L"ID: 00, Offset: 0xFFFFFFFF");
    EXPECT_EQ(facts.size, L"0 B");
    EXPECT_EQ(facts.dimensions, L"0 x 0");
    EXPECT_EQ(facts.game, L"(auto)");
    EXPECT_EQ(facts.format, L"Unknown");
}
