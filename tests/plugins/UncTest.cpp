#include "plugins/unc/Unc.h"

#include <gtest/gtest.h>
#include <vector>

#include "tests/plugins/PluginInterfacePictures.h"

namespace {
using Bytes = std::vector<std::uint8_t>;

TEST(Unc, PacksFiveSixAndFiveBitsWithoutAlpha)
{
    const Bytes pixels{255, 0, 0, 9, 0, 255, 0, 9, 0, 0, 255, 9, 0x4F, 0x97, 0xA7, 9};
    Bytes out(8);
    EXPECT_EQ(Unc::Compress(pixels.data(), out.data(), 2, 2, false), 8U);
    // F800, 07E0, 001F; and 0x48 << 8 | 0x94 << 3 | 0x14.
    EXPECT_EQ(out, (Bytes{0x00, 0xF8, 0xE0, 0x07, 0x1F, 0x00, 0xB4, 0x4C}));
}

TEST(Unc, PacksFourTimesFourBitsWithAlpha)
{
    const Bytes pixels{0x1F, 0x2E, 0x3D, 0x4C, 0xFF, 0x00, 0x00, 0x0F};
    Bytes out(4);
    EXPECT_EQ(Unc::Compress(pixels.data(), out.data(), 2, 1, true), 4U);
    EXPECT_EQ(out, (Bytes{0x34, 0x12, 0x00, 0xF0}));
}

TEST(Unc, HandsSixteenBitPixelsOnUnchanged)
{
    const Bytes raster{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    Bytes out(12);
    EXPECT_EQ(Unc::Decompress(raster.data(), out.data(), 3, 2), 12U);
    EXPECT_EQ(out, raster);
}

TEST(Unc, StaysInsideItsBuffersAtEverySize)
{
    for (std::uint32_t width = 1; width <= 17; ++width)
        for (std::uint32_t height = 1; height <= 17; ++height) {
            const auto pixels = PluginTest::ExactCopy(PluginTest::Noise(width, height).pixels);
            const std::uint32_t size = width * height * 2;
            const auto packed = std::make_unique<std::uint8_t[]>(size);
            const auto copied = std::make_unique<std::uint8_t[]>(size);
            EXPECT_EQ(Unc::Compress(pixels.get(), packed.get(), width, height, true), size);
            EXPECT_EQ(Unc::Decompress(packed.get(), copied.get(), width, height), size);
            EXPECT_TRUE(std::equal(packed.get(), packed.get() + size, copied.get()));
        }
}

TEST(Unc, RefusesAPictureWithoutPixelsOrWithTooMany)
{
    std::uint8_t byte = 7;
    EXPECT_EQ(Unc::Compress(&byte, &byte, 0, 1, false), 0U);
    EXPECT_EQ(Unc::Compress(&byte, &byte, 0x10000, 0x8000, true), 0U);
    EXPECT_EQ(Unc::Decompress(&byte, &byte, 1, 0), 0U);
    EXPECT_EQ(Unc::Decompress(&byte, &byte, 0x10000, 0x10000), 0U);
    EXPECT_EQ(byte, 7);
}
}  // namespace
