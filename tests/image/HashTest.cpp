#include "image/Hash.h"

#include <array>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "base/File.h"
#include "tests/support/TemporaryFolder.h"

// "AB" is worked out by hand: 65 * 33 + 66 = 2211; 2211 >> 5 = 69; together 2280.

TEST(Hash, GivesZeroForNothing)
{
    EXPECT_EQ(HashBytes(""), 0U);
    EXPECT_EQ(HashBytes(nullptr), 0U);
    EXPECT_EQ(HashData({}), 0U);
    EXPECT_EQ(HashWideName(L""), 0U);
    EXPECT_EQ(HashNameUpper(L""), 0U);
}

TEST(Hash, AddsTheFifthOfItselfAtTheEnd)
{
    EXPECT_EQ(HashBytes("A"), 67U);
    EXPECT_EQ(HashBytes("AB"), 2280U);
    EXPECT_EQ(HashWideName(L"AB"), 2280U);
    EXPECT_EQ(NameHash(L"AB"), 2280U);
}

TEST(Hash, TakesBytesAboveAsciiAsPositive)
{
    // 255 + (255 >> 5)
    EXPECT_EQ(HashBytes("\xFF"), 262U);
}

TEST(Hash, WrapsAroundAtThirtyTwoBits)
{
    // 65 * (33^7 - 1) / 32 is 86568712295, which leaves 669366375 of 32 bits; a 32nd of that is 20917699.
    EXPECT_EQ(HashBytes("AAAAAAA"), 690284074U);
}

TEST(Hash, TakesOnlyTheLowByteOfWideCharacters)
{
    EXPECT_EQ(HashWideName(L"\u0141"), 67U);
    EXPECT_EQ(HashNameUpper(L"\u0161"), 67U);
}

TEST(Hash, MakesSmallAndCapitalLettersAlikeInUpperNames)
{
    EXPECT_EQ(HashNameUpper(L"abc"), HashNameUpper(L"ABC"));
    EXPECT_EQ(HashNameUpper(L"abc"), HashBytes("ABC"));
    EXPECT_NE(HashWideName(L"abc"), HashWideName(L"ABC"));
    // Only 26 letters: the neighbours of a and z, and letters with accents, stay.
    EXPECT_EQ(HashNameUpper(L"`{"), HashBytes("`{"));
    EXPECT_EQ(HashNameUpper(L"\u00E4"), HashBytes("\xE4"));
}

TEST(Hash, CountsTheFirstHundredAndTwentyEightCharactersOfAName)
{
    const std::wstring cut(128, L'x');
    EXPECT_EQ(HashNameUpper(cut + L"tail"), HashNameUpper(cut));
    EXPECT_EQ(HashWideName(cut + L"tail"), HashWideName(cut));
    EXPECT_NE(HashWideName(cut), HashWideName(cut.substr(1)));
    EXPECT_NE(HashBytes(std::string(129, 'x').c_str()), HashBytes(std::string(128, 'x').c_str()));
}

TEST(Hash, EndsAnUpperCaseNameAtALowByteOfZero)
{
    EXPECT_EQ(HashNameUpper(L"A\u0100B"), 67U);
    // 65 * 33 * 33 + 66 = 70851; 70851 >> 5 = 2214.
    EXPECT_EQ(HashWideName(L"A\u0100B"), 73065U);
}

TEST(Hash, EndsANameAtItsTerminator)
{
    using namespace std::string_view_literals;
    EXPECT_EQ(HashWideName(L"A\0B"sv), 67U);
}

TEST(Hash, HashesEveryByteOfAFileZerosIncluded)
{
    const CTemporaryFolder folder;
    const auto file = folder / "bytes.bin";
    const std::array bytes = {std::byte{'A'}, std::byte{0}, std::byte{'B'}};
    ASSERT_TRUE(WriteWholeFile(DiskFileSystem(), file, bytes));
    EXPECT_EQ(HashFile(file), 73065U);
    EXPECT_EQ(HashData(bytes), 73065U);
}

TEST(Hash, HashesAFileOfSeveralReadsLikeItsBytes)
{
    const CTemporaryFolder folder;
    const auto file = folder / "large.bin";
    std::vector<std::byte> bytes((std::size_t{1} << 20) + 7);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<std::byte>(i * 31 >> 3 & 0xFF);
    ASSERT_TRUE(WriteWholeFile(DiskFileSystem(), file, bytes));
    EXPECT_EQ(HashFile(file), HashData(bytes));
}

TEST(Hash, GivesZeroForAFileThatCannotBeOpened)
{
    const CTemporaryFolder folder;
    EXPECT_EQ(HashFile(folder / "missing.bin"), 0U);
    EXPECT_EQ(HashFile(folder.Path()), 0U);
}
