#include "tests/plugins/PvrtcPictures.h"

// The colours of fully transparent pixels: they may cost what is seen only a little, and are kept where that
// costs nothing.

namespace {
using namespace PvrtcPictures;

int Noise(int x, int y, int salt)
{
    const auto seed = static_cast<std::uint32_t>(x * 7919 + y * 104729 + salt * 1299709);
    return static_cast<int>((seed * 2654435761u) >> 24);
}

// A textured disc; `hidden` draws what is under the transparent pixels around it.
template <typename Hidden>
Picture DiscOver(Hidden hidden)
{
    return Draw(64, 64, [&](int x, int y) {
        const int distance = (x - 32) * (x - 32) + (y - 32) * (y - 32);
        if (distance <= 22 * 22)
            return Rgba{60 + x * 2 + Noise(x, y, 1) / 8, 200 - y * 2, 90 + Noise(x, y, 2) / 8, 255};
        const Rgba color = hidden(x, y);
        return Rgba{color[0], color[1], color[2], 0};
    });
}

Picture DiscOverFlat()
{
    return DiscOver([](int, int) { return Rgba{120, 130, 100, 0}; });
}

Picture DiscOverNoise()
{
    return DiscOver([](int x, int y) { return Rgba{Noise(x, y, 3), Noise(x, y, 4), Noise(x, y, 5), 0}; });
}

// A difference that a viewer could see: of colour and alpha where there is alpha, else of alpha alone.
double SeenError(const Picture& wanted, const Picture& got)
{
    double sum = 0;
    for (std::size_t i = 0; i < wanted.pixels.size(); ++i) {
        if ((i & 3) != 3 && wanted.pixels[i | 3] == 0)
            continue;
        const double off = wanted.pixels[i] - got.pixels[i];
        sum += off * off;
    }
    return sum / static_cast<double>(wanted.pixels.size());
}

double HiddenError(const Picture& wanted, const Picture& got, int fromX, int endX)
{
    double sum = 0;
    int count = 0;
    for (std::size_t i = 0; i < wanted.pixels.size(); ++i) {
        const int x = static_cast<int>(i / 4 % wanted.width);
        if ((i & 3) == 3 || wanted.pixels[i | 3] != 0 || x < fromX || x >= endX)
            continue;
        const double off = wanted.pixels[i] - got.pixels[i];
        sum += off * off;
        ++count;
    }
    return sum / count;
}
}  // namespace

TEST(PvrtcHidden, HiddenNoiseCostsWhatIsSeenLittle)
{
    const Picture flat = DiscOverFlat();
    const Picture noise = DiscOverNoise();
    for (const std::uint32_t bitsPerPixel : {2u, 4u}) {
        for (const Quality quality : kEveryQuality) {
            const EncodeOptions options = Options(bitsPerPixel, true, quality);
            const double overFlat = ColorError(flat, RoundTrip(flat, options));
            const double overNoise = ColorError(noise, RoundTrip(noise, options));
            EXPECT_LT(overNoise, overFlat * 1.5) << bitsPerPixel << " bits";
        }
    }
}

TEST(PvrtcHidden, HiddenNoiseLeavesTheOutlineClean)
{
    const Picture noise = DiscOverNoise();
    const Picture decoded = RoundTrip(noise, Options(4, true));
    EXPECT_LT(SeenError(noise, decoded), 260.0);
    for (std::size_t y = 0; y < 4; ++y)
        for (std::size_t x = 0; x < 4; ++x)
            EXPECT_LE(decoded.pixels[(y * 64 + x) * 4 + 3], 34);
}

TEST(PvrtcHidden, ColorsFarFromAnythingSeenAreKept)
{
    // The left half is seen, the right half has bricks that nobody sees.
    const Picture bricks = Bricks(64);
    Picture picture = bricks;
    for (std::size_t i = 3; i < picture.pixels.size(); i += 4)
        picture.pixels[i] = i / 4 % 64 < 32 ? 255 : 0;
    const Picture decoded = RoundTrip(picture, Options(4, true));
    // Further than an endpoint reaches, also around the edge.
    EXPECT_LT(HiddenError(picture, decoded, 40, 56), 150.0);
    EXPECT_GT(ColorPsnr(picture, decoded), 28.0);
}

TEST(PvrtcHidden, APictureOfHiddenColorsKeepsThemAndStaysTransparent)
{
    Picture picture = Ramps(64);
    for (std::size_t i = 3; i < picture.pixels.size(); i += 4)
        picture.pixels[i] = 0;
    const Picture decoded = RoundTrip(picture, Options(4, true));
    for (std::size_t i = 3; i < decoded.pixels.size(); i += 4)
        ASSERT_EQ(decoded.pixels[i], 0);
    EXPECT_LT(HiddenError(picture, decoded, 0, 64), 100.0);
}
