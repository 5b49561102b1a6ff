#pragma once

// The vector types of the encoding kernels, spelled as loops. A lane belongs to one block, so a kernel works
// on as many blocks at once as there are lanes, and finds the same bytes whatever their number. This is the
// definition: the other instruction sets must give the same values in every lane. To be included once, by the
// kernels of this instruction set alone; everything is local to that file, so that no wide instruction can
// reach another.
//
//   CInts     lanes of 32 bits, wrapping around; the functions on "Halves" take them as two lanes of 16 bits,
//             those on "Bytes" as four unsigned lanes of 8 bits
//   CFloats   lanes of 32-bit floats
//
// A comparison gives all ones for true and 0 for false.

#include <cstdint>
#include <cstring>

namespace {

constexpr int kLanes = 4;
constexpr int kBlockOfLane[kLanes] = {0, 1, 2, 3};

struct CInts {
    std::int32_t v[kLanes];

    static CInts Load(const std::int32_t* from)
    {
        CInts r;
        for (int i = 0; i < kLanes; ++i)
            r.v[i] = from[i];
        return r;
    }
    static CInts All(int value)
    {
        CInts r;
        for (int i = 0; i < kLanes; ++i)
            r.v[i] = value;
        return r;
    }
    void Store(std::int32_t* to) const
    {
        for (int i = 0; i < kLanes; ++i)
            to[i] = v[i];
    }
};

template <typename Operation>
inline CInts EachInt(const CInts& a, const CInts& b, Operation operation)
{
    CInts r;
    for (int i = 0; i < kLanes; ++i)
        r.v[i] = static_cast<std::int32_t>(
            operation(static_cast<std::uint32_t>(a.v[i]), static_cast<std::uint32_t>(b.v[i])));
    return r;
}

template <typename Operation>
inline CInts EachSigned(const CInts& a, const CInts& b, Operation operation)
{
    CInts r;
    for (int i = 0; i < kLanes; ++i)
        r.v[i] = operation(a.v[i], b.v[i]);
    return r;
}

inline int LowHalf(std::int32_t lane)
{
    return static_cast<std::int16_t>(lane & 0xFFFF);
}
inline int HighHalf(std::int32_t lane)
{
    return lane >> 16;
}
inline std::int32_t JoinHalves(int low, int high)
{
    return static_cast<std::int32_t>((static_cast<std::uint32_t>(low) & 0xFFFFU) |
                                     static_cast<std::uint32_t>(high) << 16);
}

template <typename Operation>
inline CInts EachHalf(const CInts& a, const CInts& b, Operation operation)
{
    CInts r;
    for (int i = 0; i < kLanes; ++i)
        r.v[i] = JoinHalves(operation(LowHalf(a.v[i]), LowHalf(b.v[i])),
                            operation(HighHalf(a.v[i]), HighHalf(b.v[i])));
    return r;
}

template <typename Operation>
inline CInts EachByte(const CInts& a, const CInts& b, Operation operation)
{
    CInts r;
    for (int i = 0; i < kLanes; ++i) {
        std::uint32_t lane = 0;
        for (int bit = 0; bit < 32; bit += 8) {
            const int first = a.v[i] >> bit & 0xFF;
            const int second = b.v[i] >> bit & 0xFF;
            lane |= (static_cast<std::uint32_t>(operation(first, second)) & 0xFFU) << bit;
        }
        r.v[i] = static_cast<std::int32_t>(lane);
    }
    return r;
}

inline CInts operator+(CInts a, CInts b)
{
    return EachInt(a, b, [](std::uint32_t x, std::uint32_t y) { return x + y; });
}
inline CInts operator-(CInts a, CInts b)
{
    return EachInt(a, b, [](std::uint32_t x, std::uint32_t y) { return x - y; });
}
inline CInts operator*(CInts a, CInts b)
{
    return EachInt(a, b, [](std::uint32_t x, std::uint32_t y) { return x * y; });
}
inline CInts operator&(CInts a, CInts b)
{
    return EachInt(a, b, [](std::uint32_t x, std::uint32_t y) { return x & y; });
}
inline CInts operator|(CInts a, CInts b)
{
    return EachInt(a, b, [](std::uint32_t x, std::uint32_t y) { return x | y; });
}
inline CInts operator^(CInts a, CInts b)
{
    return EachInt(a, b, [](std::uint32_t x, std::uint32_t y) { return x ^ y; });
}
inline CInts operator>(CInts a, CInts b)
{
    return EachSigned(a, b, [](std::int32_t x, std::int32_t y) { return x > y ? -1 : 0; });
}
inline CInts operator==(CInts a, CInts b)
{
    return EachSigned(a, b, [](std::int32_t x, std::int32_t y) { return x == y ? -1 : 0; });
}
inline CInts Smaller(CInts a, CInts b)
{
    return EachSigned(a, b, [](std::int32_t x, std::int32_t y) { return x < y ? x : y; });
}
inline CInts Larger(CInts a, CInts b)
{
    return EachSigned(a, b, [](std::int32_t x, std::int32_t y) { return x > y ? x : y; });
}
template <int Bits>
inline CInts ShiftLeft(CInts a)
{
    return EachInt(a, a, [](std::uint32_t x, std::uint32_t) { return x << Bits; });
}
template <int Bits>
inline CInts ShiftRight(CInts a)
{
    return EachSigned(a, a, [](std::int32_t x, std::int32_t) { return x >> Bits; });
}
template <int Bits>
inline CInts ShiftRightUnsigned(CInts a)
{
    return EachInt(a, a, [](std::uint32_t x, std::uint32_t) { return x >> Bits; });
}
/// `a` where the mask is set, else `b`.
inline CInts Select(CInts mask, CInts a, CInts b)
{
    return b ^ (mask & (a ^ b));
}
inline bool AnyOf(CInts mask)
{
    std::int32_t any = 0;
    for (int i = 0; i < kLanes; ++i)
        any |= mask.v[i];
    return any != 0;
}

inline CInts AddHalves(CInts a, CInts b)
{
    return EachHalf(a, b, [](int x, int y) { return x + y; });
}
inline CInts SubtractHalves(CInts a, CInts b)
{
    return EachHalf(a, b, [](int x, int y) { return x - y; });
}
inline CInts MultiplyHalves(CInts a, CInts b)
{
    return EachHalf(a, b, [](int x, int y) { return x * y; });
}
/// The upper 16 bits of each product.
inline CInts MultiplyHighHalves(CInts a, CInts b)
{
    return EachHalf(a, b, [](int x, int y) { return x * y >> 16; });
}
inline CInts SmallerHalves(CInts a, CInts b)
{
    return EachHalf(a, b, [](int x, int y) { return x < y ? x : y; });
}
inline CInts LargerHalves(CInts a, CInts b)
{
    return EachHalf(a, b, [](int x, int y) { return x > y ? x : y; });
}
inline CInts GreaterHalves(CInts a, CInts b)
{
    return EachHalf(a, b, [](int x, int y) { return x > y ? -1 : 0; });
}
inline CInts MagnitudeHalves(CInts a)
{
    return EachHalf(a, a, [](int x, int) { return x < 0 ? -x : x; });
}
template <int Bits>
inline CInts ShiftRightHalves(CInts a)
{
    return EachHalf(a, a, [](int x, int) { return x >> Bits; });
}
template <int Bits>
inline CInts ShiftLeftHalves(CInts a)
{
    return EachHalf(a, a, [](int x, int) { return x * (1 << Bits); });
}
/// The product of the low halves plus that of the high halves.
inline CInts PairSums(CInts a, CInts b)
{
    return EachSigned(a, b, [](std::int32_t x, std::int32_t y) {
        return LowHalf(x) * LowHalf(y) + HighHalf(x) * HighHalf(y);
    });
}
inline CInts SmallerBytes(CInts a, CInts b)
{
    return EachByte(a, b, [](int x, int y) { return x < y ? x : y; });
}
inline CInts LargerBytes(CInts a, CInts b)
{
    return EachByte(a, b, [](int x, int y) { return x > y ? x : y; });
}
inline CInts SubtractBytes(CInts a, CInts b)
{
    return EachByte(a, b, [](int x, int y) { return x - y; });
}
/// At most 255.
inline CInts AddBytesClamped(CInts a, CInts b)
{
    return EachByte(a, b, [](int x, int y) { return x + y > 255 ? 255 : x + y; });
}
/// At least 0.
inline CInts SubtractBytesClamped(CInts a, CInts b)
{
    return EachByte(a, b, [](int x, int y) { return x > y ? x - y : 0; });
}
/// The entry of a table of 16 bytes that each lane asks for by a number from 0 to 15.
inline CInts LookUp(const std::uint8_t (&table)[16], CInts index)
{
    CInts r;
    for (int i = 0; i < kLanes; ++i)
        r.v[i] = table[index.v[i] & 15];
    return r;
}
/// In each half the sum of two products of an unsigned byte with a signed factor; it must fit 16 bits.
inline CInts BytePairSums(CInts bytes, CInts factors)
{
    return EachSigned(bytes, factors, [](std::int32_t x, std::int32_t y) {
        int sums[4];
        for (int i = 0; i < 4; ++i)
            sums[i] = (x >> 8 * i & 0xFF) * static_cast<std::int8_t>(y >> 8 * i & 0xFF);
        return JoinHalves(sums[0] + sums[1], sums[2] + sums[3]);
    });
}
/// The two lowest bytes, each widened to a half.
inline CInts RedGreen(CInts pixels)
{
    return EachSigned(pixels, pixels,
                      [](std::int32_t x, std::int32_t) { return JoinHalves(x & 0xFF, x >> 8 & 0xFF); });
}
/// The low halves of both, those of `b` in the upper place.
inline CInts LowHalves(CInts a, CInts b)
{
    return EachSigned(a, b, [](std::int32_t x, std::int32_t y) { return JoinHalves(x, y); });
}
/// The high halves of both, those of `b` in the upper place.
inline CInts HighHalves(CInts a, CInts b)
{
    return EachSigned(a, b, [](std::int32_t x, std::int32_t y) { return JoinHalves(x >> 16, y >> 16); });
}

/// One row of pixels of kLanes blocks that lie side by side; pixels[x] has the pixel x of every block.
inline void LoadRow(const std::uint8_t* row, CInts (&pixels)[4])
{
    for (int i = 0; i < kLanes; ++i)
        for (int x = 0; x < 4; ++x) {
            const std::uint8_t* from = row + (i * 4 + x) * 4;
            pixels[x].v[i] = JoinHalves(from[0] | from[1] << 8, from[2] | from[3] << 8);
        }
}
inline void StoreInt(std::int32_t value, std::uint8_t* out)
{
    for (int i = 0; i < 4; ++i)
        out[i] = static_cast<std::uint8_t>(value >> 8 * i & 0xFF);
}
/// Blocks of two words, in the order of the blocks.
inline void StorePairs(CInts first, CInts second, std::uint8_t* out)
{
    for (int i = 0; i < kLanes; ++i, out += 8) {
        StoreInt(first.v[i], out);
        StoreInt(second.v[i], out + 4);
    }
}
/// Blocks of four words, in the order of the blocks.
inline void StoreQuads(CInts first, CInts second, CInts third, CInts fourth, std::uint8_t* out)
{
    for (int i = 0; i < kLanes; ++i, out += 16) {
        StoreInt(first.v[i], out);
        StoreInt(second.v[i], out + 4);
        StoreInt(third.v[i], out + 8);
        StoreInt(fourth.v[i], out + 12);
    }
}

struct CFloats {
    float v[kLanes];

    static CFloats All(float value)
    {
        CFloats r;
        for (int i = 0; i < kLanes; ++i)
            r.v[i] = value;
        return r;
    }
};

template <typename Operation>
inline CFloats EachFloat(const CFloats& a, const CFloats& b, Operation operation)
{
    CFloats r;
    for (int i = 0; i < kLanes; ++i)
        r.v[i] = operation(a.v[i], b.v[i]);
    return r;
}
inline CFloats operator+(CFloats a, CFloats b)
{
    return EachFloat(a, b, [](float x, float y) { return x + y; });
}
inline CFloats operator-(CFloats a, CFloats b)
{
    return EachFloat(a, b, [](float x, float y) { return x - y; });
}
inline CFloats operator*(CFloats a, CFloats b)
{
    return EachFloat(a, b, [](float x, float y) { return x * y; });
}
inline CFloats operator/(CFloats a, CFloats b)
{
    return EachFloat(a, b, [](float x, float y) { return x / y; });
}
inline CInts operator>(CFloats a, CFloats b)
{
    CInts r;
    for (int i = 0; i < kLanes; ++i)
        r.v[i] = a.v[i] > b.v[i] ? -1 : 0;
    return r;
}
/// The second one when either is not a number.
inline CFloats Smaller(CFloats a, CFloats b)
{
    return EachFloat(a, b, [](float x, float y) { return x < y ? x : y; });
}
inline CFloats Larger(CFloats a, CFloats b)
{
    return EachFloat(a, b, [](float x, float y) { return x > y ? x : y; });
}
inline CFloats ToFloats(CInts a)
{
    CFloats r;
    for (int i = 0; i < kLanes; ++i)
        r.v[i] = static_cast<float>(a.v[i]);
    return r;
}
/// Towards 0; the value must fit.
inline CInts ToInts(CFloats a)
{
    CInts r;
    for (int i = 0; i < kLanes; ++i)
        r.v[i] = static_cast<std::int32_t>(a.v[i]);
    return r;
}
inline CFloats Select(CInts mask, CFloats a, CFloats b)
{
    CFloats r;
    for (int i = 0; i < kLanes; ++i)
        r.v[i] = mask.v[i] != 0 ? a.v[i] : b.v[i];
    return r;
}

}  // namespace
