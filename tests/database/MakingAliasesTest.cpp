#include <random>

#include "database/AliasCheck.h"
#include "tests/database/DatabaseFixture.h"
#include "tests/support/MemoryFileSystem.h"

namespace {

bool Make(CTextureDatabase& database, const std::vector<AliasPair>& pairs)
{
    CNoProgress progress;
    return database.MakeAliases(pairs, progress);
}

class CCancelled final : public IProgress {
public:
    void Report(std::uint32_t, std::uint32_t, const std::wstring&) override {}
    bool Cancelled() const override { return true; }
};

std::string LongName(char first)
{
    return first + std::string(62, 'x');
}

}  // namespace

TEST(MakingAliases, PutsTheDuplicateAtTheEndAsAnAliasOfTheKeptTexture)
{
    CDatabaseFixture database(SmallDatabase());
    EXPECT_TRUE(Make(*database, {{.kept = 1, .duplicate = 4}}));
    EXPECT_EQ(database.ListText(),
              "cat=0 name=Default onfoot=0 slow=0 fast=0 defaultstream=0\r\n"
              "\"early\" \"affiliate=wood\"\r\n"
              "\"brick\" width=4 height=4\r\n"
              "\"wood\" width=4 height=4 cat=1\r\n"
              "\"late\" \"affiliate=wood\"\r\n"
              "\"sand\" \"affiliate=brick\"\r\n");
    // Two rasters of 8 + 64 and 8 + 128 bytes are left, and a word for each line.
    EXPECT_EQ(database.Files()["textures.dxt.dat"].size(), 208U);
    EXPECT_EQ(database.Files()["textures.dxt.toc"].size(), 24U);
    EXPECT_TRUE(database->IsTocValid(CacheIndex::Dxt));
    EXPECT_TRUE(database->HasThumbnails(CacheIndex::Dxt));
    EXPECT_EQ(database->AliasTarget(4), 1U);
    EXPECT_EQ(RasterOf(*database, L"sand"), Pixels(0x11));
}

TEST(MakingAliases, HandsTheAliasesOfTheDuplicateOver)
{
    CDatabaseFixture database(SmallDatabase());
    EXPECT_TRUE(Make(*database, {{.kept = 1, .duplicate = 2}}));
    EXPECT_NE(database.ListText().find("\"early\" \"affiliate=brick\"\r\n"), std::string::npos);
    EXPECT_NE(database.ListText().find("\"late\" \"affiliate=brick\"\r\n"), std::string::npos);
    EXPECT_EQ(RasterOf(*database, L"late"), Pixels(0x11));
    database.Reopen();
    EXPECT_EQ(RasterOf(*database, L"early"), Pixels(0x11));
    EXPECT_EQ(RasterOf(*database, L"wood"), Pixels(0x11));
}

TEST(MakingAliases, LeavesTheAliasesOfATwinAlone)
{
    CDatabaseFixture database(SmallDatabase().Texture("wood").Picture("dxt", 0x41).Picture("unc", 0x42));
    EXPECT_TRUE(Make(*database, {{.kept = 1, .duplicate = 5}}));
    EXPECT_NE(database.ListText().find("\"late\" \"affiliate=wood\"\r\n"), std::string::npos);
    EXPECT_EQ(database->AliasTarget(3), 2U);
}

TEST(MakingAliases, MendsALineThatARenamingLeftBehind)
{
    CDatabaseFixture database(SmallDatabase());
    ASSERT_TRUE(database->RenameEntry(2, L"oak"));
    EXPECT_TRUE(Make(*database, {{.kept = 1, .duplicate = 2}}));
    EXPECT_NE(database.ListText().find("\"late\" \"affiliate=brick\"\r\n"), std::string::npos);
}

TEST(MakingAliases, RefusesIndicesThatCannotBeAndChangesNothing)
{
    CDatabaseFixture database(SmallDatabase());
    const FileBytes before = database.Files();
    EXPECT_FALSE(Make(*database, {{.kept = 1, .duplicate = 9}}));
    EXPECT_FALSE(Make(*database, {{.kept = 9, .duplicate = 1}}));
    EXPECT_FALSE(Make(*database, {{.kept = 1, .duplicate = 3}}));  // an alias already
    EXPECT_FALSE(Make(*database, {{.kept = 0, .duplicate = 1}}));
    EXPECT_FALSE(Make(*database, {{.kept = 1, .duplicate = 1}}));
    EXPECT_FALSE(Make(*database, {{.kept = 1, .duplicate = 4}, {.kept = 2, .duplicate = 4}}));
    EXPECT_FALSE(Make(*database, {{.kept = 1, .duplicate = 2}, {.kept = 2, .duplicate = 4}}));
    EXPECT_EQ(database.Files(), before);
}

TEST(MakingAliases, DoesNothingForNoPairs)
{
    CDatabaseFixture database(SmallDatabase());
    const FileBytes before = database.Files();
    EXPECT_TRUE(Make(*database, {}));
    EXPECT_EQ(database.Files(), before);
}

TEST(MakingAliases, ChangesNothingWhenCancelledBeforeItBegins)
{
    CDatabaseFixture database(SmallDatabase());
    const FileBytes before = database.Files();
    CCancelled cancelled;
    EXPECT_FALSE(database->MakeAliases(std::vector<AliasPair>{{.kept = 1, .duplicate = 4}}, cancelled));
    EXPECT_EQ(database.Files(), before);
}

// An alias of two names of 63 characters would have a line of 141.
TEST(MakingAliases, RefusesALineThatWouldNotBeReadBackWhole)
{
    CDatabaseBuilder builder;
    builder.Texture(LongName('a')).Picture("dxt", 1).Texture(LongName('b')).Picture("dxt", 1);
    CDatabaseFixture database(builder);
    const FileBytes before = database.Files();
    EXPECT_FALSE(CAliasCheck(*database).Fits({.kept = 0, .duplicate = 1}));
    EXPECT_THROW(Make(*database, {{.kept = 0, .duplicate = 1}}), CError);
    EXPECT_EQ(database.Files(), before);
}

TEST(MakingAliases, RefusesWhenALineOfAnAliasOfTheDuplicateWouldNotFit)
{
    CDatabaseBuilder builder;
    builder.Texture(LongName('a')).Picture("dxt", 1).Texture("b").Picture("dxt", 1);
    builder.Text("\"c\" \"affiliate=b\" other=" + std::string(60, '1') + "\n");
    CDatabaseFixture database(builder);
    EXPECT_FALSE(CAliasCheck(*database).Fits({.kept = 0, .duplicate = 1}));
    EXPECT_TRUE(CAliasCheck(*database).Fits({.kept = 1, .duplicate = 0}));
}

TEST(MakingAliases, RefusesWhenAnAliasLineHasNoEndThatCouldBeFound)
{
    CDatabaseBuilder builder;
    builder.Texture("a").Picture("dxt", 1).Texture("b").Picture("dxt", 1).Text("\"c\" \"affiliate=b\n");
    CDatabaseFixture database(builder);
    EXPECT_FALSE(CAliasCheck(*database).Fits({.kept = 0, .duplicate = 1}));
}

TEST(MakingAliases, RefusesATextureWithoutAName)
{
    CDatabaseBuilder builder;
    builder.Texture("").Picture("dxt", 1).Texture("b").Picture("dxt", 1);
    CDatabaseFixture database(builder);
    EXPECT_FALSE(CAliasCheck(*database).Fits({.kept = 1, .duplicate = 0}));
    EXPECT_FALSE(CAliasCheck(*database).Fits({.kept = 0, .duplicate = 1}));
}

// What a deletion in the middle would refuse is refused there, too; what was done before stays.
TEST(MakingAliases, StopsAtTheFirstRecordThatCannotBeWhereItIs)
{
    CDatabaseBuilder builder;
    builder.Texture("a").Picture("dxt", 1).Texture("b").Picture("dxt", 1);
    builder.Texture("c").Picture("dxt", 1).Texture("d").Picture("dxt", 1);
    FileBytes files = builder.Files("textures");
    files.erase("textures.dxt.tmb");
    // The last two words of the table change places.
    std::vector<std::byte>& toc = files["textures.dxt.toc"];
    std::swap_ranges(toc.begin() + 12, toc.begin() + 16, toc.begin() + 16);
    CDatabaseFixture database(files, DiskFileSystem());
    EXPECT_THROW(Make(*database, {{.kept = 1, .duplicate = 0}, {.kept = 1, .duplicate = 2}}), CError);
    EXPECT_EQ(database.ListText(),
              "\"b\" width=4 height=4\r\n\"c\" width=4 height=4\r\n\"d\" width=4 height=4\r\n"
              "\"a\" \"affiliate=b\"\r\n");
    EXPECT_TRUE(database->IsTocValid(CacheIndex::Dxt));
}

// Also where thumbnails are ignored, or become whole again on the way.
TEST(MakingAliases, GivesTheSameFilesAtOnceAndOneByOne)
{
    for (unsigned seed = 0; seed < 60; ++seed) {
        std::mt19937 random(seed);
        CDatabaseBuilder builder(seed % 2 == 0);
        const auto count = static_cast<std::uint32_t>(4 + random() % 8);
        for (std::uint32_t i = 0; i < count; ++i) {
            builder.Texture("t" + std::to_string(i));
            for (const char* cache : {"dxt", "unc"}) {
                const BuiltRaster pixel = {.pixels = std::vector<std::byte>(4, static_cast<std::byte>(i))};
                if (seed % 3 != 1 || random() % 4 != 0)
                    builder.Raster(cache, pixel);
                if (seed % 3 != 2 || random() % 4 != 0)
                    builder.Thumbnail(cache, pixel);
            }
            if (random() % 3 == 0)
                builder.Alias("alias" + std::to_string(i), "t" + std::to_string(random() % count));
        }
        const FileBytes files = builder.Files("textures");
        CDatabaseFixture together(files, DiskFileSystem());
        CDatabaseFixture alone(files, DiskFileSystem());
        std::vector<AliasPair> pairs;
        for (std::uint32_t i = 0; i < together->EntryCount(); ++i)
            if (!together->IsAlias(i) && together->Entry(i).name != L"t0" && random() % 2 == 0)
                pairs.push_back({.kept = 0, .duplicate = i});
        EXPECT_TRUE(Make(*together, pairs));
        std::uint32_t done = 0;
        for (const AliasPair& pair : pairs)
            EXPECT_TRUE(Make(*alone, {{.kept = 0, .duplicate = pair.duplicate - done++}}));
        EXPECT_EQ(together.Files(), alone.Files()) << seed;
        if (testing::Test::HasFailure())
            return;
    }
}
