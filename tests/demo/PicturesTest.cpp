#include <bit>
#include <gtest/gtest.h>
#include <map>
#include <set>

#include "demo/Brick.h"
#include "demo/Radar.h"
#include "demo/Trigonometry.h"
#include "demo/catalogue/Catalogue.h"
#include "image/MD5.h"

namespace {

using Demo::AllPictures;
using Demo::Picture;

std::wstring DigestOf(const CBitmap& bitmap)
{
    return MD5ToText(ComputeMD5(std::as_bytes(bitmap.Pixels())));
}

const Picture& Named(const std::vector<Picture>& pictures, const std::string& name)
{
    for (const Picture& picture : pictures)
        if (picture.name == name)
            return picture;
    throw std::out_of_range(name);
}

TEST(DemoPictures, DrawsTheSameBytesOnEveryMachine)
{
    const std::vector<Picture> pictures = AllPictures();
    EXPECT_EQ(DigestOf(Named(pictures, "brick_brown").draw().ToBitmap()),
              L"b67a051980209a7d0b80aa4822d42981");
    EXPECT_EQ(DigestOf(Named(pictures, "leaves_willow").draw().ToBitmap()),
              L"883c7207dc09429264f06965c354ceff");
    EXPECT_EQ(DigestOf(Named(pictures, "grass_dry").draw().ToBitmap()), L"37269a3ddedc4d6c762c89140721dfd1");
    EXPECT_EQ(DigestOf(Named(pictures, "bookshelf_small").draw().ToBitmap()),
              L"b07d554c9eebf7e182b9883b9383f93e");
    EXPECT_EQ(DigestOf(Named(pictures, "neon_motel_night").draw().ToBitmap()),
              L"b8ebd9776f18e95b4bcb9f5eb0bde6f4");
    EXPECT_EQ(DigestOf(Named(pictures, "radar27").draw().ToBitmap()), L"b58075654eaefe1f154f1dadb6104c07");
}

TEST(DemoPictures, DrawsAPictureTwiceAlike)
{
    const std::vector<Picture> pictures = AllPictures();
    const Picture& fern = Named(pictures, "fern");
    EXPECT_EQ(DigestOf(fern.draw().ToBitmap()), DigestOf(fern.draw().ToBitmap()));
}

TEST(DemoPictures, HasAboutThreeHundredOfThemWithNamesOfTheirOwn)
{
    const std::vector<Picture> pictures = AllPictures();
    std::set<std::string> names;
    std::map<std::string, int> categories;
    for (const Picture& picture : pictures) {
        EXPECT_TRUE(names.insert(picture.name).second) << picture.name;
        ++categories[picture.category];
    }
    EXPECT_GE(pictures.size(), 290U);
    EXPECT_LE(pictures.size(), 340U);
    EXPECT_EQ(categories.size(), 9U);
    EXPECT_EQ(categories["radar"], 64);
}

bool IsOpaque(const CBitmap& bitmap)
{
    for (std::size_t i = 3; i < bitmap.Pixels().size(); i += 4)
        if (bitmap.Pixels()[i] != 255)
            return false;
    return true;
}

TEST(DemoPictures, ArePowersOfTwoInSizeAndTransparentOnlyWhenTheySaySo)
{
    int oblong = 0;
    for (const Picture& picture : AllPictures()) {
        if (picture.category == "radar")
            continue;
        const CBitmap bitmap = picture.draw().ToBitmap();
        for (const std::uint32_t side : {bitmap.Width(), bitmap.Height()}) {
            EXPECT_TRUE(std::has_single_bit(side)) << picture.name;
            EXPECT_GE(side, 16U) << picture.name;
            EXPECT_LE(side, 512U) << picture.name;
        }
        oblong += bitmap.Width() != bitmap.Height() ? 1 : 0;
        EXPECT_EQ(IsOpaque(bitmap), !picture.hasAlpha) << picture.name;
    }
    EXPECT_GT(oblong, 40);
}

TEST(DemoPictures, JoinsTheRadarTilesWithoutSeams)
{
    const CBitmap map = Demo::DrawIslandMap().ToBitmap();
    ASSERT_EQ(map.Width(), 512U);
    const std::vector<Picture> pictures = AllPictures();
    for (std::uint32_t tile = 0; tile < 64; ++tile) {
        const std::string digits = std::to_string(tile);
        const CBitmap picture =
            Named(pictures, "radar" + (tile < 10 ? "0" + digits : digits)).draw().ToBitmap();
        ASSERT_EQ(picture.Width(), 64U);
        ASSERT_EQ(picture.Height(), 64U);
        for (std::uint32_t y = 0; y < 64; ++y) {
            const auto inMap = map.Row(tile / 8 * 64 + y).subspan(tile % 8 * 64 * 4, std::size_t{64} * 4);
            ASSERT_TRUE(std::ranges::equal(picture.Row(y), inMap)) << "tile " << tile << ", row " << y;
        }
    }
}

TEST(DemoPictures, ShowsSeaAroundTheIsland)
{
    const CBitmap map = Demo::DrawIslandMap().ToBitmap();
    for (std::uint32_t i = 0; i < 512; ++i)
        for (const std::uint32_t row : {0U, 511U}) {
            const auto pixel = map.Row(row).subspan(std::size_t{i} * 4, 4);
            EXPECT_GT(pixel[0], pixel[2]) << "column " << i << " of row " << row;
        }
}

TEST(DemoPictures, TilesAWallWithoutASeam)
{
    // The step over the edge is no larger than the largest step inside.
    const Demo::CCanvas wall = Demo::DrawBricks(
        64, 64, {.piece = Demo::Hex(0x906040), .joint = Demo::Hex(0x906040), .variety = 0, .roughness = 0.2});
    double largest = 0;
    double overEdge = 0;
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 64; ++x) {
            const double step = std::abs(wall.At(x, y).red - wall.At(x + 1, y).red);
            (x == 63 ? overEdge : largest) = std::max(x == 63 ? overEdge : largest, step);
        }
    EXPECT_GT(largest, 0);
    EXPECT_LE(overEdge, largest);
}

TEST(DemoTrigonometry, KnowsTheQuarters)
{
    EXPECT_DOUBLE_EQ(Demo::SineOfTurns(0), 0);
    EXPECT_DOUBLE_EQ(Demo::SineOfTurns(0.25), 1);
    EXPECT_DOUBLE_EQ(Demo::SineOfTurns(0.75), -1);
    EXPECT_DOUBLE_EQ(Demo::CosineOfTurns(0.5), -1);
    EXPECT_NEAR(Demo::SineOfTurns(1.0 / 12), 0.5, 0.002);
    EXPECT_NEAR(Demo::SineOfTurns(-1.0 / 12), -0.5, 0.002);
}

}  // namespace
