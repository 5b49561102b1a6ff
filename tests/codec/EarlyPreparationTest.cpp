// Work that is done on a picture before its turn, and what becomes of it when its turn comes.

#include <algorithm>
#include <functional>
#include <gtest/gtest.h>

#include "codec/ImagePreparation.h"
#include "database/RunLength.h"
#include "tests/codec/FakeCodecs.h"
#include "tests/codec/TestDatabase.h"
#include "tests/support/DatabaseBuilder.h"

namespace {

int encoderCalls = 0;

std::uint32_t CountingDxt(const void* source, void* destination, std::uint32_t width, std::uint32_t height,
                          std::uint32_t mode, std::uint32_t flags)
{
    ++encoderCalls;
    return Fake::CompressDxt(source, destination, width, height, mode, flags);
}

bool Never(std::uint32_t /*imageHash*/, PixelSize /*size*/)
{
    return false;
}

class EarlyPreparation : public testing::Test {
protected:
    EarlyPreparation() : m_oDatabase({CacheIndex::Dxt, CacheIndex::Unc})
    {
        m_oDatabase.Plugins().BindFunctions(CacheIndex::Dxt, CountingDxt, nullptr, CodecThreading::OneAtATime,
                                            DitheringChoice::Modes);
        m_oTarget.name = L"wall";
        m_oTarget.streamMode = StreamMode::Framed;
        encoderCalls = 0;
    }

    EarlyTexture Early(const LikelyDuplicate& isDuplicate = Never)
    {
        return PrepareEarly(
            m_oPicture,
            ReadPreparationRules(*m_oDatabase, m_oDatabase.Plugins(), m_oDatabase.Settings(), m_oTarget),
            isDuplicate);
    }
    /// The calls of the encoder that the picture's turn needs.
    int CallsInItsTurn(EarlyTexture early)
    {
        encoderCalls = 0;
        StorePrepared(*m_oDatabase,
                      PrepareTexture(*m_oDatabase, m_oDatabase.Plugins(), m_oDatabase.Settings(), m_oPicture,
                                     m_oTarget, std::move(early)));
        return encoderCalls;
    }
    /// True when the database has the files that the picture gives without any early work.
    bool HasTheUsualFiles()
    {
        CTestDatabase usual({CacheIndex::Dxt, CacheIndex::Unc});
        usual.Plugins().BindFunctions(CacheIndex::Dxt, CountingDxt, nullptr);
        PrepareAndStore(*usual, usual.Plugins(), m_oDatabase.Settings(), m_oPicture, m_oTarget);
        FileBytes files = FilesOf(m_oDatabase.Folder().Path());
        return files == FilesOf(usual.Folder().Path());
    }

    CTestDatabase m_oDatabase;
    CBitmap m_oPicture = SolidPicture(16, 16, 1, 2, 3, 4);
    ImportTarget m_oTarget;
};

}  // namespace

TEST_F(EarlyPreparation, LeavesNothingToEncode)
{
    EXPECT_EQ(CallsInItsTurn(Early()), 0);
    EXPECT_TRUE(HasTheUsualFiles());
}

TEST_F(EarlyPreparation, GetsNameAndGameInItsTurn)
{
    EarlyTexture early = Early();
    m_oTarget.name = L"another name";
    m_oTarget.streamMode = StreamMode::Raw;
    EXPECT_EQ(CallsInItsTurn(std::move(early)), 0);
    EXPECT_TRUE(HasTheUsualFiles());
}

TEST_F(EarlyPreparation, IsFramedInItsTurnWhenTheGameWasNotKnown)
{
    m_oTarget.streamMode = StreamMode::Raw;
    EarlyTexture early = Early();
    m_oTarget.streamMode = StreamMode::Framed;
    EXPECT_EQ(CallsInItsTurn(std::move(early)), 0);
    EXPECT_TRUE(HasTheUsualFiles());
}

TEST_F(EarlyPreparation, IsDoneAnewWhenTheRulesHaveChanged)
{
    const std::vector<std::function<void()>> changes = {
        [this] { m_oTarget.hasAlpha = true; },
        [this] { m_oDatabase.Settings().WriteInt(L"global", L"enable_mipmaps", 0); },
        [this] { m_oDatabase.Settings().WriteInt(L"global", L"thumb_size", 3); },
        [this] { m_oDatabase.Settings().WriteInt(L"DXT", L"quality", 2); },
        [this] { m_oDatabase.Settings().WriteInt(L"DXT", L"dithering", 1); },
        [this] { m_oDatabase.Settings().WriteInt(L"DXT", L"dithering", 2); },
        [this] { m_oTarget.forcedEncoder = CacheIndex::Dxt; },
        [this] { m_oTarget.hasAlpha = false; }};
    std::uint32_t entries = 0;
    for (const auto& change : changes) {
        m_oTarget.name = L"wall" + std::to_wstring(++entries);
        m_oPicture = SolidPicture(16, 16, static_cast<std::uint8_t>(entries), 2, 3, 4);
        EarlyTexture early = Early();
        change();
        EXPECT_GT(CallsInItsTurn(std::move(early)), 0) << entries;
    }
}

TEST_F(EarlyPreparation, KeepsTheImageHash)
{
    EarlyTexture early = Early();
    const std::uint32_t hash = early.imageHash;
    EXPECT_NE(hash, 0U);
    CallsInItsTurn(std::move(early));
    EXPECT_EQ(m_oDatabase->Entry(0).Value(Property::Img), hash);
}

TEST_F(EarlyPreparation, SavesTheWorkForALikelyDuplicateAndDoesItWhenItIsNone)
{
    EarlyTexture early = Early([](std::uint32_t, PixelSize size) { return size.width == 16; });
    EXPECT_EQ(encoderCalls, 0);
    EXPECT_FALSE(early.records);
    EXPECT_GT(CallsInItsTurn(std::move(early)), 0);
    EXPECT_TRUE(HasTheUsualFiles());
}

TEST_F(EarlyPreparation, LeavesARefusalToThePicturesTurn)
{
    m_oPicture = SolidPicture(12, 16, 1, 2, 3, 4);
    std::optional<EarlyTexture> early = Early();
    EXPECT_FALSE(early->records);
    EXPECT_EQ(ErrorOf([&] {
                  PrepareTexture(*m_oDatabase, m_oDatabase.Plugins(), m_oDatabase.Settings(), m_oPicture,
                                 m_oTarget, std::move(early));
              }),
              L"Wrong texture dimensions given.");
}

TEST_F(EarlyPreparation, SetsPropertiesInTheOrderGivenBeforeTheLineIsWritten)
{
    const std::vector<PropertyValue> properties = {
        {Property::Cat, 2}, {Property::Png, 5}, {Property::Cat, 2}};
    StorePrepared(
        *m_oDatabase,
        PrepareTexture(*m_oDatabase, m_oDatabase.Plugins(), m_oDatabase.Settings(), m_oPicture, m_oTarget),
        properties);
    TextureEntry entry = m_oDatabase->Entry(0);
    EXPECT_TRUE(EntryLine(entry).ends_with(" png=00000005 cat=2")) << EntryLine(entry);
}

TEST(StoringWithAKnownFrame, WritesWhatCodingInItsTurnWrites)
{
    CTestDatabase coded({CacheIndex::Unc});
    CTestDatabase given({CacheIndex::Unc});
    for (const std::size_t different : {std::size_t{0}, std::size_t{64}}) {
        // All alike, which pays; and all different, which does not.
        std::vector<std::byte> bytes(64, std::byte{7});
        std::copy_n(CountingBytes(64).begin(), different, bytes.begin());
        NewRecord record{
            .header = {.nameHash16 = 1, .glFormat = GlFormat::Rgba8888, .width = 4, .heightAndMips = 4},
            .bytes = bytes,
            .mode = StreamMode::Framed,
            .allowRunLength = true};
        EXPECT_TRUE(coded->AppendRecord(CacheIndex::Unc, RecordKind::Raster, record));
        const auto frame = RleEncode(bytes, 4);
        EXPECT_EQ(frame.has_value(), different == 0);
        record.runLengthFrame = frame ? std::span<const std::byte>(*frame) : std::span<const std::byte>();
        EXPECT_TRUE(given->AppendRecord(CacheIndex::Unc, RecordKind::Raster, record));
    }
    EXPECT_EQ(FilesOf(given.Folder().Path()), FilesOf(coded.Folder().Path()));
}
