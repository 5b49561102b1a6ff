#include "image/MD5.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>

namespace {

std::wstring MD5Of(std::string_view text)
{
    return MD5ToText(ComputeMD5(std::as_bytes(std::span(text))));
}

std::wstring MD5OfLetters(std::size_t count)
{
    return MD5Of(std::string(count, 'a'));
}

}  // namespace

TEST(MD5, GivesTheDigestsOfTheStandard)
{
    EXPECT_EQ(MD5Of(""), L"d41d8cd98f00b204e9800998ecf8427e");
    EXPECT_EQ(MD5Of("a"), L"0cc175b9c0f1b6a831c399e269772661");
    EXPECT_EQ(MD5Of("abc"), L"900150983cd24fb0d6963f7d28e17f72");
    EXPECT_EQ(MD5Of("message digest"), L"f96b697d7cb7938d525a2f31aaf161d0");
    EXPECT_EQ(MD5Of("abcdefghijklmnopqrstuvwxyz"), L"c3fcd3d76192e4007dfb496cca67e13b");
    EXPECT_EQ(MD5Of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789"),
              L"d174ab98d277d9f5a5611c2c9f419d9f");
    EXPECT_EQ(MD5Of("12345678901234567890123456789012345678901234567890123456789012345678901234567890"),
              L"57edf4a22be3c955ac49da2e2107b67a");
}

TEST(MD5, IsRightAroundTheEndsOfItsBlocks)
{
    EXPECT_EQ(MD5OfLetters(55), L"ef1772b6dff9a122358552954ad0df65");
    EXPECT_EQ(MD5OfLetters(56), L"3b0c8ac703f828b04c6c197006d17218");
    EXPECT_EQ(MD5OfLetters(63), L"b06521f39153d618550606be297466d5");
    EXPECT_EQ(MD5OfLetters(64), L"014842d480b571495a4a0363793f7367");
    EXPECT_EQ(MD5OfLetters(65), L"c743a45e0d2e6a95cb859adae0248435");
    EXPECT_EQ(MD5OfLetters(120), L"5f61c0ccad4cac44c75ff505e1f1e537");
    EXPECT_EQ(MD5OfLetters(128), L"e510683b3f5ffe4093d021808bc6ff70");
    EXPECT_EQ(MD5OfLetters(1000), L"cabe45dcc9ae5b66ba86600cca6b8ba8");
}

TEST(MD5, KeepsItsStateWordsByteSwapped)
{
    const MD5Digest digest = ComputeMD5({});
    EXPECT_EQ(digest.words[0], 0xD41D8CD9U);
    EXPECT_EQ(digest.words[3], 0xECF8427EU);
}

TEST(MD5, PrintsThirtyTwoSmallDigitsWithLeadingZeros)
{
    EXPECT_EQ(MD5ToText({{0, 0xABCU, 0x12345678U, 0xFFFFFFFFU}}), L"0000000000000abc12345678ffffffff");
}
