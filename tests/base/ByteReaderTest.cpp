#include "base/ByteReader.h"

#include <gtest/gtest.h>

#include "base/ByteWriter.h"

TEST(ByteReader, ReadsLittleEndianNumbersInFileOrder)
{
    CByteWriter out;
    out.U8(0x12).U16(0x3456).U32(0x789ABCDE).Text("ab", 3).Fill(2, 0xEE);
    EXPECT_EQ(out.Size(), 12U);
    const auto bytes = out.Take();
    EXPECT_EQ(bytes[1], std::byte{0x56});
    CByteReader in(bytes);
    EXPECT_EQ(in.U8(), 0x12);
    EXPECT_EQ(in.U16(), 0x3456);
    EXPECT_EQ(in.U32(), 0x789ABCDEU);
    in.Skip(3);
    EXPECT_EQ(in.Bytes(2).size(), 2U);
    EXPECT_EQ(in.Left(), 0U);
    EXPECT_TRUE(in.Ok());
}

TEST(ByteReader, StaysFailedAfterTheFirstReadPastTheEnd)
{
    const auto bytes = CByteWriter().U8(1).U8(2).U8(3).Take();
    CByteReader in(bytes);
    EXPECT_EQ(in.U32(), 0U);
    EXPECT_FALSE(in.Ok());
    EXPECT_EQ(in.U8(), 0) << "although there are bytes left";
    EXPECT_EQ(in.Left(), 3U);
}

TEST(ByteReader, RefusesEveryTruncationOfARecord)
{
    const auto whole = CByteWriter().U16(1).U32(2).U8(3).Take();
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const std::vector<std::byte> cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        CByteReader in(cut);
        in.U16();
        in.U32();
        in.U8();
        EXPECT_FALSE(in.Ok()) << length;
    }
}
