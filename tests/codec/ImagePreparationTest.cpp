#include "codec/ImagePreparation.h"

#include <gtest/gtest.h>
#include <utility>

#include "image/Hash.h"
#include "tests/codec/FakeCodecs.h"
#include "tests/codec/TestDatabase.h"

namespace {

const std::vector<CacheIndex> kFour = {CacheIndex::Dxt, CacheIndex::Etc1, CacheIndex::Pvrtc, CacheIndex::Unc};
constexpr std::uint32_t kMips = 0x8000;

class ImagePreparation : public testing::Test {
protected:
    ImagePreparation() : m_oDatabase(kFour) { WithMips(false); }

    void BindAll()
    {
        CPluginTable& plugins = m_oDatabase.Plugins();
        plugins.BindFunctions(CacheIndex::Dxt, Fake::CompressDxt, nullptr);
        plugins.BindFunctions(CacheIndex::Etc1, Fake::CompressEtc1, nullptr);
        plugins.BindFunctions(CacheIndex::Pvrtc, Fake::CompressPvrtc, nullptr);
    }
    void Set(std::wstring_view section, std::wstring_view key, int value)
    {
        m_oDatabase.Settings().WriteInt(section, key, value);
    }
    void WithMips(bool on) { Set(L"global", L"enable_mipmaps", on ? 1 : 0); }

    static ImportTarget Target(const std::wstring& name, bool hasAlpha = false)
    {
        ImportTarget target;
        target.name = name;
        target.hasAlpha = hasAlpha;
        return target;
    }
    static CBitmap Picture(std::uint32_t width, std::uint32_t height)
    {
        return SolidPicture(width, height, 0x12, 0x34, 0x56, 0x78);
    }

    StoreResult Store(const CBitmap& picture, const ImportTarget& target)
    {
        return PrepareAndStore(*m_oDatabase, m_oDatabase.Plugins(), m_oDatabase.Settings(), picture, target);
    }
    /// The flags that the encoder of the DXT cache, a Fake one, is called with for a new opaque texture.
    unsigned FlagsFor(const std::wstring& name)
    {
        ImportTarget target = Target(name);
        const std::uint32_t index = m_oDatabase->EntryCount();
        Store(SolidPicture(8, 8, static_cast<std::uint8_t>(index), 9, 9, 0xFF), target);
        const auto bytes = BytesIn(CacheIndex::Dxt, index);
        return std::to_integer<unsigned>(bytes.at(1)) | std::to_integer<unsigned>(bytes.at(2)) << 8;
    }
    std::wstring StoreError(const CBitmap& picture, const ImportTarget& target)
    {
        return ErrorOf([&] { Store(picture, target); });
    }
    RasterHeader HeaderIn(CacheIndex cache, std::uint32_t index = 0)
    {
        return m_oDatabase->ResolvedEntry(index).rasterHeader[SlotOf(cache)];
    }
    std::vector<std::byte> BytesIn(CacheIndex cache, std::uint32_t index = 0)
    {
        return m_oDatabase->ReadRaster(index, cache, RecordKind::Raster).value();
    }
    std::string LineOf(std::uint32_t index)
    {
        TextureEntry entry = m_oDatabase->Entry(index);
        return EntryLine(entry);
    }
    void ExpectUntouched()
    {
        EXPECT_EQ(m_oDatabase->EntryCount(), 0U);
        for (const CacheIndex cache : kAllCaches) {
            EXPECT_EQ(m_oDatabase->FileSize(cache, RecordKind::Raster), 0U);
            EXPECT_EQ(m_oDatabase->FileSize(cache, RecordKind::Thumbnail), 0U);
        }
    }

    CTestDatabase m_oDatabase;
};

}  // namespace

// Formats.

TEST_F(ImagePreparation, StoresOpaquePicturesInTheFormatOfEachCache)
{
    BindAll();
    EXPECT_EQ(Store(Picture(8, 8), Target(L"wall")), StoreResult::Stored);
    const auto hash = static_cast<std::uint16_t>(NameHash(L"wall"));
    EXPECT_EQ(HeaderIn(CacheIndex::Dxt), (RasterHeader{hash, 0x83F0, 8, 8}));
    EXPECT_EQ(HeaderIn(CacheIndex::Etc1), (RasterHeader{hash, 0x8D64, 8, 8}));
    EXPECT_EQ(HeaderIn(CacheIndex::Pvrtc), (RasterHeader{hash, 0x8C01, 8, 8}));
    EXPECT_EQ(HeaderIn(CacheIndex::Unc), (RasterHeader{hash, 0x8363, 8, 8}));
}

TEST_F(ImagePreparation, StoresPicturesWithAlphaInTheFormatOfEachCache)
{
    BindAll();
    Store(Picture(8, 8), Target(L"leaf", true));
    EXPECT_EQ(HeaderIn(CacheIndex::Dxt).glFormat, 0x83F3);
    EXPECT_EQ(HeaderIn(CacheIndex::Etc1).glFormat, 0x8033) << "ETC1 has no alpha";
    EXPECT_EQ(HeaderIn(CacheIndex::Pvrtc).glFormat, 0x8C02);
    EXPECT_EQ(HeaderIn(CacheIndex::Unc).glFormat, 0x8033);
    EXPECT_EQ(BytesIn(CacheIndex::Etc1).at(0), std::byte{0x57});
    EXPECT_EQ(BytesIn(CacheIndex::Etc1).at(1), std::byte{0x13});
}

TEST_F(ImagePreparation, KeepsSixteenBitsWhereNoEncoderIsBound)
{
    Store(Picture(8, 4), Target(L"wall"));
    for (const CacheIndex cache : kFour) {
        EXPECT_EQ(HeaderIn(cache).glFormat, 0x8363);
        EXPECT_EQ(BytesIn(cache).size(), 8U * 4 * 2);
    }
    EXPECT_EQ(HeaderIn(CacheIndex::Pvrtc).Height(), 4U);
}

TEST_F(ImagePreparation, StoresAllPixelsWhenRgba8888IsAskedFor)
{
    BindAll();
    ImportTarget target = Target(L"wall", true);
    target.storeRgba8888 = true;
    target.forcedEncoder = CacheIndex::Dxt;
    Store(Picture(8, 4), target);
    for (const CacheIndex cache : kFour) {
        EXPECT_EQ(HeaderIn(cache).glFormat, 0x1401);
        EXPECT_EQ(HeaderIn(cache).Height(), 4U);
    }
    const auto bytes = BytesIn(CacheIndex::Pvrtc);
    EXPECT_EQ(std::vector<std::byte>(bytes.begin(), bytes.begin() + 4),
              (std::vector<std::byte>{std::byte{0x12}, std::byte{0x34}, std::byte{0x56}, std::byte{0x78}}));
}

TEST_F(ImagePreparation, StoresAFlatPictureAsASquareInThePvrtcCache)
{
    BindAll();
    Store(Picture(256, 128), Target(L"opaque"));
    Store(SolidPicture(256, 128, 1, 2, 3, 4), Target(L"clear", true));
    EXPECT_EQ(HeaderIn(CacheIndex::Pvrtc, 0).glFormat, 0x8C01);
    EXPECT_EQ(HeaderIn(CacheIndex::Pvrtc, 0).width, 256);
    EXPECT_EQ(HeaderIn(CacheIndex::Pvrtc, 0).Height(), 256U);
    EXPECT_EQ(HeaderIn(CacheIndex::Pvrtc, 1).glFormat, 0x8C02);
    EXPECT_EQ(HeaderIn(CacheIndex::Dxt, 0).Height(), 128U);
    EXPECT_EQ(m_oDatabase->Entry(0).Value(Property::Height), 128U);
}

TEST_F(ImagePreparation, UsesAForcedEncoderForEveryCache)
{
    BindAll();
    ImportTarget target = Target(L"wall");
    target.forcedEncoder = CacheIndex::Dxt;
    Store(Picture(16, 8), target);
    for (const CacheIndex cache : kFour) {
        EXPECT_EQ(HeaderIn(cache).glFormat, 0x83F0);
        EXPECT_EQ(HeaderIn(cache).width, 16);
        EXPECT_EQ(HeaderIn(cache).Height(), 8U);
    }
}

TEST_F(ImagePreparation, StoresSquaresEverywhereWhenPvrtcIsForced)
{
    BindAll();
    ImportTarget target = Target(L"wall");
    target.forcedEncoder = CacheIndex::Pvrtc;
    Store(Picture(16, 8), target);
    for (const CacheIndex cache : kFour) {
        EXPECT_EQ(HeaderIn(cache).glFormat, 0x8C01);
        EXPECT_EQ(HeaderIn(cache).Height(), 16U);
    }
}

TEST_F(ImagePreparation, FallsBackToSixteenBitsWhenTheForcedEncoderIsMissing)
{
    m_oDatabase.Plugins().BindFunctions(CacheIndex::Dxt, Fake::CompressDxt, nullptr);
    ImportTarget target = Target(L"wall");
    target.forcedEncoder = CacheIndex::Etc1;
    Store(Picture(8, 8), target);
    EXPECT_EQ(HeaderIn(CacheIndex::Dxt).glFormat, 0x8363);
}

TEST_F(ImagePreparation, NeverStoresTheOutputOfAnUncEncoder)
{
    m_oDatabase.Plugins().BindFunctions(CacheIndex::Unc, Fake::CompressDxt, nullptr);
    Store(Picture(8, 8), Target(L"wall"));
    EXPECT_EQ(HeaderIn(CacheIndex::Unc).glFormat, 0x8363);
    EXPECT_EQ(BytesIn(CacheIndex::Unc).size(), 128U);
}

// Encoder calls.

TEST_F(ImagePreparation, PassesQualityAndDitheringOfTheEncodersOwnSection)
{
    BindAll();
    Set(L"DXT", L"quality", 3);
    Set(L"DXT", L"dithering", 2);
    Set(L"UNC", L"quality", 1);
    ImportTarget target = Target(L"wall", true);
    target.forcedEncoder = CacheIndex::Dxt;
    Store(Picture(4, 4), target);
    const auto bytes = BytesIn(CacheIndex::Unc);
    EXPECT_EQ(bytes.at(0), std::byte{4});
    EXPECT_EQ(bytes.at(1), std::byte{3 | 16 | 32});
    EXPECT_EQ(bytes.at(2), std::byte{1}) << "interpolated alpha";
}

// The flags that an encoder is called with for each value of the "dithering" setting, without quality and
// variant.
TEST_F(ImagePreparation, TellsAnEncoderThatAsksForItWhichDitheringModeIsChosen)
{
    m_oDatabase.Plugins().BindFunctions(CacheIndex::Dxt, Fake::CompressDxt, nullptr, CodecThreading::Free,
                                        DitheringChoice::Modes);
    const std::vector<std::pair<int, unsigned>> wanted = {
        {0, 64},       {1, 64 + 16}, {2, 64 + 16 + 0x2000}, {4, 64 + 16 + 0x4000}, {15, 64 + 16 + 0xF000},
        {16, 64 + 16}, {-1, 64 + 16}};
    for (const auto& [mode, flags] : wanted) {
        Set(L"DXT", L"dithering", mode);
        EXPECT_EQ(FlagsFor(L"wall" + std::to_wstring(mode + 2)), flags) << mode;
    }
}

TEST_F(ImagePreparation, TellsEveryOtherEncoderOnlyThatThereIsDithering)
{
    m_oDatabase.Plugins().BindFunctions(CacheIndex::Dxt, Fake::CompressDxt, nullptr, CodecThreading::Free);
    const std::vector<std::pair<int, unsigned>> wanted = {{0, 64},      {1, 64 + 16},  {2, 64 + 16},
                                                          {4, 64 + 16}, {15, 64 + 16}, {-1, 64 + 16}};
    for (const auto& [mode, flags] : wanted) {
        Set(L"DXT", L"dithering", mode);
        EXPECT_EQ(FlagsFor(L"wall" + std::to_wstring(mode + 2)), flags) << mode;
    }
}

TEST_F(ImagePreparation, PassesModeTwoAndTheOpaqueVariantWithoutAlpha)
{
    BindAll();
    Store(Picture(8, 8), Target(L"wall"));
    const auto dxt = BytesIn(CacheIndex::Dxt);
    EXPECT_EQ(dxt.at(0), std::byte{2});
    EXPECT_EQ(dxt.at(1), std::byte{64});
    EXPECT_EQ(dxt.at(2), std::byte{0});
    EXPECT_EQ(dxt.at(7), std::byte{0xFF}) << "alpha of an opaque picture";
    EXPECT_EQ(BytesIn(CacheIndex::Pvrtc).at(1), std::byte{0});
}

TEST_F(ImagePreparation, RefusesAnEncoderThatDoesNotKeepToTheSizeOfItsFormat)
{
    m_oDatabase.Plugins().BindFunctions(CacheIndex::Dxt, Fake::CompressShort, nullptr);
    EXPECT_EQ(StoreError(Picture(8, 8), Target(L"wall")), L"Cannot compress texture.");
    m_oDatabase.Plugins().BindFunctions(CacheIndex::Dxt, Fake::Refuse, nullptr);
    EXPECT_EQ(StoreError(Picture(8, 8), Target(L"wall")), L"Cannot compress texture.");
    ExpectUntouched();
}

// Mip levels.

TEST_F(ImagePreparation, StoresAChainDownToOnePixel)
{
    BindAll();
    WithMips(true);
    Store(Picture(8, 4), Target(L"wall"));
    EXPECT_EQ(HeaderIn(CacheIndex::Dxt).heightAndMips, 4 | kMips);
    EXPECT_EQ(BytesIn(CacheIndex::Dxt).size(), 16U + 8 + 8 + 8);
    EXPECT_EQ(BytesIn(CacheIndex::Unc).size(), (32U + 8 + 2 + 1) * 2);
    EXPECT_EQ(HeaderIn(CacheIndex::Pvrtc).heightAndMips, 8 | kMips);
    EXPECT_EQ(BytesIn(CacheIndex::Pvrtc).size(), 4U * 32);
}

TEST_F(ImagePreparation, MakesNoMipsOfAPictureThatIsNoPowerOfTwo)
{
    WithMips(true);
    ImportTarget target = Target(L"wide");
    target.forcedEncoder = CacheIndex::Unc;
    Store(Picture(128, 192), target);
    EXPECT_FALSE(HeaderIn(CacheIndex::Unc).HasMips());
}

// Dimensions and names.

TEST_F(ImagePreparation, RefusesWrongDimensions)
{
    EXPECT_EQ(StoreError(Picture(100, 100), Target(L"wall")), L"Wrong texture dimensions given.");
    EXPECT_EQ(StoreError(Picture(128, 192), Target(L"wall")), L"Wrong texture dimensions given.");
    EXPECT_EQ(StoreError(CBitmap(), Target(L"wall")), L"Wrong texture dimensions given.");
    ExpectUntouched();
}

TEST_F(ImagePreparation, AcceptsMultiplesOfSixtyFourOnlyForTheUncompressedEncoder)
{
    ImportTarget target = Target(L"wall");
    target.forcedEncoder = CacheIndex::Unc;
    EXPECT_EQ(StoreError(Picture(100, 100), target), L"Wrong texture dimensions given.");
    EXPECT_EQ(StoreError(Picture(128, 192), target), L"");
    target.forcedEncoder = CacheIndex::Dxt;
    EXPECT_EQ(StoreError(Picture(128, 192), target), L"Wrong texture dimensions given.");
}

TEST_F(ImagePreparation, ChecksDimensionsAgainstWhatAHeaderHolds)
{
    const auto error = [](std::uint32_t width, std::uint32_t height, std::optional<CacheIndex> encoder) {
        return ErrorOf([&] { CheckDimensions(width, height, encoder); });
    };
    EXPECT_EQ(error(32768, 16384, std::nullopt), L"");
    EXPECT_EQ(error(16384, 32768, std::nullopt), L"Wrong texture dimensions given.");
    EXPECT_EQ(error(65536, 4, std::nullopt), L"Wrong texture dimensions given.");
    EXPECT_EQ(error(65472, 64, CacheIndex::Unc), L"");
    EXPECT_EQ(error(32768, 64, CacheIndex::Pvrtc), L"Wrong texture dimensions given.");
    EXPECT_EQ(error(0, 64, CacheIndex::Unc), L"Wrong texture dimensions given.");
}

TEST_F(ImagePreparation, RefusesAPvrtcSquareBeyondWhatAHeaderHolds)
{
    BindAll();
    EXPECT_EQ(StoreError(Picture(32768, 1), Target(L"wall")), L"Wrong texture dimensions given.");
    ExpectUntouched();
}

TEST_F(ImagePreparation, RefusesNamesThatARecordOrTheListCannotHold)
{
    EXPECT_EQ(StoreError(Picture(8, 8), Target(L"")), L"Name should not be empty.");
    EXPECT_EQ(StoreError(Picture(8, 8), Target(L"a\"b")), L"Wrong texture name given.");
    EXPECT_EQ(StoreError(Picture(8, 8), Target(L"a\tb")), L"Wrong texture name given.");
    EXPECT_EQ(StoreError(Picture(8, 8), Target(L"\u0416")), L"Wrong texture name given.");
    EXPECT_EQ(StoreError(Picture(8, 8), Target(std::wstring(64, L'a'))), L"Wrong texture name given.");
    ExpectUntouched();
    EXPECT_EQ(StoreError(Picture(8, 8), Target(std::wstring(63, L'a'))), L"");
    EXPECT_EQ(StoreError(SolidPicture(8, 8, 9, 9, 9, 9), Target(L"with blanks \u00FF")), L"");
}

TEST_F(ImagePreparation, RefusesALineThatWouldGrowTooLongWithThePairsThatFollow)
{
    // 65 characters of name, 72 of pairs: the line alone fits, the file's hash is too much.
    ImportTarget target = Target(std::wstring(63, L'a'), true);
    target.category = 1000000000;
    target.pngHash = 0x12345678;
    EXPECT_EQ(StoreError(Picture(8, 8), target), L"Texture line is too long.");
    ExpectUntouched();
    target.pngHash = 0;
    EXPECT_EQ(StoreError(Picture(8, 8), target), L"");
}

// The entry.

TEST_F(ImagePreparation, WritesTheEntryWithItsSizeItsAlphaModeAndItsHash)
{
    ImportTarget target = Target(L"leaf", true);
    target.category = 7;
    Store(SolidPicture(1, 1, 1, 2, 3, 4), target);
    // ((1 * 33 + 2) * 33 + 3) * 33 + 4 = 38218 = 0x954A, plus 38218 >> 5 = 1194.
    EXPECT_EQ(LineOf(0), "\"leaf\" alphamode=2 cat=7 height=1 width=1 img=000099f4");
}

TEST_F(ImagePreparation, HashesOpaquePicturesWithFullAlpha)
{
    Store(SolidPicture(1, 1, 1, 2, 3, 4), Target(L"wall"));
    // 38214 + 255 = 38469, plus 38469 >> 5 = 1202.
    EXPECT_EQ(LineOf(0), "\"wall\" height=1 width=1 img=00009af7");
}

// Duplicates.

TEST_F(ImagePreparation, MakesAnAliasOfAPictureThatIsStoredAlready)
{
    Store(Picture(8, 8), Target(L"first"));
    const auto size = m_oDatabase->FileSize(CacheIndex::Dxt, RecordKind::Raster);
    EXPECT_EQ(Store(Picture(8, 8), Target(L"second")), StoreResult::MadeAlias);
    EXPECT_EQ(m_oDatabase->Entry(1).affiliate, L"first");
    EXPECT_EQ(m_oDatabase->FileSize(CacheIndex::Dxt, RecordKind::Raster), size);
    EXPECT_EQ(m_oDatabase->AliasTarget(1), 0U);
}

TEST_F(ImagePreparation, NeverMakesAnAliasOfAnAlias)
{
    Store(Picture(8, 8), Target(L"first"));
    Store(Picture(8, 8), Target(L"second"));
    m_oDatabase->ChangeProperty(1, Property::Img, m_oDatabase->Entry(0).Value(Property::Img));
    m_oDatabase->DeleteEntry(0, 0);
    EXPECT_EQ(Store(Picture(8, 8), Target(L"third")), StoreResult::Stored);
}

TEST_F(ImagePreparation, TellsPicturesOfEqualHashAndDifferentSizeApart)
{
    Store(Picture(8, 8), Target(L"first"));
    m_oDatabase->ChangeProperty(0, Property::Width, 16);
    EXPECT_EQ(Store(Picture(8, 8), Target(L"second")), StoreResult::Stored);
}

TEST_F(ImagePreparation, StoresAPictureWhoseHashIsZeroEveryTime)
{
    Store(SolidPicture(8, 8, 0, 0, 0, 0), Target(L"first", true));
    EXPECT_EQ(Store(SolidPicture(8, 8, 0, 0, 0, 0), Target(L"second", true)), StoreResult::Stored);
    EXPECT_EQ(LineOf(0), "\"first\" alphamode=2 height=8 width=8");
}

TEST_F(ImagePreparation, StoresEveryPictureWhenHashesAreNotCompared)
{
    Set(L"global", L"enable_img_hash", 0);
    Store(Picture(8, 8), Target(L"first"));
    EXPECT_EQ(Store(Picture(8, 8), Target(L"second")), StoreResult::Stored);
    EXPECT_NE(m_oDatabase->Entry(1).Value(Property::Img), 0U) << "the hash is kept all the same";
}

TEST_F(ImagePreparation, DoesNotTakeTheReplacedTextureForADuplicate)
{
    Store(Picture(8, 8), Target(L"first"));
    ImportTarget target = Target(L"first");
    target.replaced = 0;
    EXPECT_FALSE(
        PrepareTexture(*m_oDatabase, m_oDatabase.Plugins(), m_oDatabase.Settings(), Picture(8, 8), target)
            .duplicateOf);
}

TEST_F(ImagePreparation, StoresPixelsUnderANameThatAliasesAreWaitingFor)
{
    Store(Picture(8, 8), Target(L"other"));
    Store(SolidPicture(8, 8, 1, 1, 1, 1), Target(L"door"));
    m_oDatabase->AddAlias(L"alias", L"door");
    ImportTarget target = Target(L"door");
    target.replaced = 1;
    EXPECT_FALSE(
        PrepareTexture(*m_oDatabase, m_oDatabase.Plugins(), m_oDatabase.Settings(), Picture(8, 8), target)
            .duplicateOf);
}

// Thumbnails.

TEST_F(ImagePreparation, StoresAThumbnailForEveryCache)
{
    Store(Picture(16, 4), Target(L"wall"));
    for (const CacheIndex cache : kFour) {
        const TextureEntry& entry = m_oDatabase->ResolvedEntry(0);
        EXPECT_EQ(entry.thumbHeader[SlotOf(cache)],
                  (RasterHeader{static_cast<std::uint16_t>(NameHash(L"wall")), 0x1401, 8, 8}));
        const auto bytes = m_oDatabase->ReadRaster(0, cache, RecordKind::Thumbnail).value();
        ASSERT_EQ(bytes.size(), 256U);
        EXPECT_EQ(bytes[3], std::byte{0xFF});
    }
}

TEST_F(ImagePreparation, StoresNoThumbnailsOfSizeZero)
{
    Set(L"global", L"thumb_size", 0);
    Store(Picture(8, 8), Target(L"wall"));
    EXPECT_EQ(m_oDatabase->FileSize(CacheIndex::Dxt, RecordKind::Thumbnail), 0U);
    EXPECT_FALSE(m_oDatabase->HasThumbnails(CacheIndex::Dxt));
}

TEST_F(ImagePreparation, KeepsTheThumbnailSizeBetweenZeroAndTwoHundredAndFiftySix)
{
    Set(L"global", L"thumb_size", -5);
    Store(Picture(8, 8), Target(L"first"));
    EXPECT_EQ(m_oDatabase->FileSize(CacheIndex::Dxt, RecordKind::Thumbnail), 0U);
    Set(L"global", L"thumb_size", 300);
    Store(SolidPicture(8, 8, 1, 1, 1, 1), Target(L"second"));
    EXPECT_EQ(m_oDatabase->FileSize(CacheIndex::Dxt, RecordKind::Thumbnail), 8U + 256 * 256 * 4);
}

// One cache.

TEST_F(ImagePreparation, StoresOnlyTheRecordsOfACacheThatIsNamed)
{
    ImportTarget target = Target(L"wall");
    target.cache = CacheIndex::Etc1;
    EXPECT_EQ(Store(Picture(8, 8), target), StoreResult::Stored);
    EXPECT_EQ(m_oDatabase->EntryCount(), 0U);
    EXPECT_EQ(m_oDatabase->FileSize(CacheIndex::Etc1, RecordKind::Raster), 8U + 128);
    EXPECT_EQ(m_oDatabase->FileSize(CacheIndex::Etc1, RecordKind::Thumbnail), 8U + 256);
    EXPECT_EQ(m_oDatabase->FileSize(CacheIndex::Dxt, RecordKind::Raster), 0U);
    EXPECT_EQ(m_oDatabase->FileSize(CacheIndex::Dxt, RecordKind::Thumbnail), 0U);
}

TEST(ImagePreparationOfOneCache, RefusesACacheThatIsNotOpen)
{
    CTestDatabase database({CacheIndex::Dxt});
    ImportTarget target;
    target.name = L"wall";
    target.cache = CacheIndex::Unc;
    const auto store = [&] {
        PrepareAndStore(*database, database.Plugins(), database.Settings(), SolidPicture(8, 8, 1, 2, 3, 4),
                        target);
    };
    EXPECT_EQ(ErrorOf(store), L"Unable to write cache file");
}

// Stream modes.

TEST_F(ImagePreparation, CodesRunsOfFramedRastersButNotOfThumbnails)
{
    m_oDatabase->SetForcedMode(StreamMode::Framed);
    ImportTarget target = Target(L"wall");
    target.streamMode = StreamMode::Framed;
    Store(Picture(16, 16), target);
    EXPECT_LT(m_oDatabase->FileSize(CacheIndex::Unc, RecordKind::Raster), 8U + 8 + 512);
    EXPECT_EQ(m_oDatabase->FileSize(CacheIndex::Unc, RecordKind::Thumbnail), 8U + 8 + 256);
    EXPECT_EQ(BytesIn(CacheIndex::Unc).size(), 512U);
}

TEST_F(ImagePreparation, StoresFramesUncodedWhenRunLengthCodingIsOff)
{
    Set(L"global", L"enable_rle_compression", 0);
    Set(L"global", L"enable_compression", 0);
    m_oDatabase->SetForcedMode(StreamMode::Framed);
    ImportTarget target = Target(L"wall");
    target.streamMode = StreamMode::Framed;
    Store(Picture(16, 16), target);
    EXPECT_EQ(m_oDatabase->FileSize(CacheIndex::Unc, RecordKind::Raster), 8U + 8 + 512);
}
