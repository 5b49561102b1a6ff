#include <limits>

#include "tests/plugins/PvrtcPictures.h"

// Pictures of one colour, against a search of all blocks whose pixels have one weight.

namespace {
using namespace PvrtcPictures;

int FromFive(int value)
{
    return value << 3 | value >> 2;
}

// The values of one channel that an endpoint can have, in eight bits: of an opaque one with five or four bits
// (blue of colour A), of a translucent one with four or three.
std::vector<int> ValuesOf(int bits)
{
    std::vector<int> values;
    for (int i = 0; i < 1 << bits; ++i)
        values.push_back(FromFive(bits == 5 ? i : bits == 4 ? i << 1 | i >> 3 : i << 2 | i >> 1));
    return values;
}

int LeastError(int wanted, int weight, int bitsOfA, int bitsOfB)
{
    int least = 255 * 255;
    for (const int a : ValuesOf(bitsOfA)) {
        for (const int b : ValuesOf(bitsOfB)) {
            const int value = (a * (8 - weight) + b * weight) / 8;
            least = std::min(least, (value - wanted) * (value - wanted));
        }
    }
    return least;
}

// Summed over red, green and blue of an opaque grey.
int LeastGreyError(int grey, std::initializer_list<int> weights)
{
    int least = std::numeric_limits<int>::max();
    for (const int weight : weights)
        least = std::min(least, 2 * LeastError(grey, weight, 5, 5) + LeastError(grey, weight, 4, 5));
    return least;
}

double PlainError(const Picture& wanted, const Picture& got)
{
    double sum = 0;
    for (std::size_t i = 0; i < wanted.pixels.size(); ++i) {
        const double off = wanted.pixels[i] - got.pixels[i];
        sum += off * off;
    }
    return sum / static_cast<double>(wanted.width * wanted.height);
}
}  // namespace

TEST(PvrtcSolid, ComesAsNearToEveryGreyAsAnyBlockCan)
{
    for (int grey = 0; grey < 256; ++grey) {
        const Picture picture = Solid(8, {grey, grey, grey, 255});
        EXPECT_NEAR(ColorError(picture, RoundTrip(picture, Options(4))) * 3,
                    LeastGreyError(grey, {0, 3, 4, 5, 8}), 1e-9)
            << grey;
    }
}

TEST(PvrtcSolid, ComesAtLeastAsNearToEveryGreyOfTwoBitsAsBlocksOfOneWeight)
{
    double worst = 0;
    for (int grey = 0; grey < 256; ++grey) {
        const Picture picture = Solid(16, {grey, grey, grey, 255});
        const double error = ColorError(picture, RoundTrip(picture, Options(2))) * 3;
        EXPECT_LE(error, LeastGreyError(grey, {0, 8}) + 1e-9) << grey;
        worst = std::max(worst, error);
    }
    // Half a step of an endpoint would be 48.
    EXPECT_LE(worst, 12.0);
}

TEST(PvrtcSolid, ComesAsNearToEveryAlphaAsTranslucentEndpointsCan)
{
    // Alpha has the values 0, 34, ..., 238, and 255 where the endpoint is opaque.
    for (int alpha = 0; alpha < 256; ++alpha) {
        int least = alpha * alpha;
        for (const int weight : {0, 3, 4, 5, 8}) {
            for (int a = 0; a <= 255; a += a == 238 ? 17 : 34) {
                for (int b = 0; b <= 255; b += b == 238 ? 17 : 34) {
                    const int off = (a * (8 - weight) + b * weight) / 8 - alpha;
                    least = std::min(least, off * off);
                }
            }
        }
        // Black needs nothing of the colours.
        const Picture picture = Solid(8, {0, 0, 0, alpha});
        EXPECT_NEAR(PlainError(picture, RoundTrip(picture, Options(4, true))), least, 1e-9) << alpha;
    }
}

TEST(PvrtcSolid, KeepsTheColorOfAPictureThatNobodySees)
{
    // Endpoints of full depth can be had, because a pixel may punch through them.
    for (int value = 0; value < 256; value += 5) {
        const Picture picture = Solid(8, {value, value, value, 0});
        EXPECT_LE(PlainError(picture, RoundTrip(picture, Options(4, true))),
                  LeastGreyError(value, {4}) + 1e-9)
            << value;
    }
}

TEST(PvrtcSolid, IsTheSameAtEverySize)
{
    const std::vector<std::uint8_t> smallest = Encoded(Solid(1, {200, 100, 50, 255}), Options(4));
    for (const std::uint32_t side : {2u, 4u, 8u, 64u}) {
        const std::vector<std::uint8_t> level = Encoded(Solid(side, {200, 100, 50, 255}), Options(4));
        for (std::size_t i = 0; i < level.size(); ++i)
            ASSERT_EQ(level[i], smallest[i % 8]) << side;
    }
}

TEST(PvrtcSolid, OfTwoBitsLooksAtNoPixelOutsideAPictureSmallerThanABlock)
{
    // The first pixel of a block is the one that cannot have weights between the endpoints.
    for (int grey = 0; grey < 256; grey += 3) {
        for (const std::uint32_t side : {1u, 2u, 4u}) {
            const Picture picture = Solid(side, {grey, grey, grey, 255});
            EXPECT_LE(ColorError(picture, RoundTrip(picture, Options(2))) * 3,
                      LeastGreyError(grey, {0, 8}) + 1e-9)
                << grey;
        }
    }
}
