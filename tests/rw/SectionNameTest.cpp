#include "rw/SectionName.h"

#include <gtest/gtest.h>

namespace {

std::string NameOf(std::uint32_t id)
{
    return std::string(RW::GetSectionName(id).value_or("(none)"));
}

}  // namespace

TEST(SectionName, KnowsTheFirstAndTheLastOfEveryGroup)
{
    EXPECT_EQ(NameOf(0x00), "N/A");
    EXPECT_EQ(NameOf(0x01), "Struct");
    EXPECT_EQ(NameOf(0x15), "Texture Native");
    EXPECT_EQ(NameOf(0x16), "Texture Dictionary");
    EXPECT_EQ(NameOf(0x2C), "Coll Tree");
    EXPECT_EQ(NameOf(0x50E), "Bin Mesh PLG");
    EXPECT_EQ(NameOf(0x510), "Native Data PLG");
    EXPECT_EQ(NameOf(0x101), "Metrics PLG");
    EXPECT_EQ(NameOf(0x127), "Anisotrophy PLG");
    EXPECT_EQ(NameOf(0x12F), "PTank PLG");
    EXPECT_EQ(NameOf(0x253F2F0), "Atomic Visibility Distance");
    EXPECT_EQ(NameOf(0x253F2FE), "Frame");
    EXPECT_EQ(NameOf(0xF21E), "ZModeler Lock");
}

TEST(SectionName, SomeIdentifiersHaveNone)
{
    for (const std::uint32_t id : {0x04U, 0x11U, 0x128U, 0x50FU, 0x253F2F4U, 0x253F2F7U, 0x253F2FFU, 0x511U,
                                   0x253F300U, 0x253F2EFU, 0xFFFFFFFFU})
        EXPECT_EQ(NameOf(id), "(none)") << std::hex << id;
}

TEST(SectionName, ShowsNamesOfTheGroupsBehindForIdentifiersInBetween)
{
    EXPECT_EQ(NameOf(0x2D), "Bin Mesh PLG");
    EXPECT_EQ(NameOf(0x2E), "(none)");
    EXPECT_EQ(NameOf(0x2F), "Native Data PLG");
    EXPECT_EQ(NameOf(0x30), "N/A");
    EXPECT_EQ(NameOf(0x31), "Metrics PLG");
    EXPECT_EQ(NameOf(0x60), "Atomic Visibility Distance");
    EXPECT_EQ(NameOf(0x70), "N/A");
    EXPECT_EQ(NameOf(0x7A), "Mobile");
    EXPECT_EQ(NameOf(0x130), "Atomic Visibility Distance");
    EXPECT_EQ(NameOf(0x13E), "Frame");
    EXPECT_EQ(NameOf(0x141), "DirectX 7");
    EXPECT_EQ(NameOf(0x14A), "Mobile");
}

TEST(SectionName, IdentifiersBeyondTheTableHaveNone)
{
    for (const std::uint32_t id : {0x7BU, 0xFFU, 0x100U, 0x14BU, 0x50DU})
        EXPECT_EQ(NameOf(id), "(none)") << std::hex << id;
}

TEST(SectionName, NamesThePlatforms)
{
    EXPECT_EQ(RW::GetPlatformName(4), "PlayStation 2");
    EXPECT_EQ(RW::GetPlatformName(10), "Mobile");
    EXPECT_EQ(RW::GetPlatformName(11), std::nullopt);
    EXPECT_EQ(RW::GetPlatformName(0xFFFFFFFF), std::nullopt);
}
