#pragma once

// The vector types of the kernels, spelled as loops. This is their definition: the other two must give the
// same values in every lane. To be included once, by the kernels of this instruction set alone; everything is
// local to that file, so that no wide instruction can reach another.
//
//   CShorts   16 lanes of 16 bits, wrapping around
//   CInts     16 lanes of 32 bits, wrapping around
//   CFloats    8 lanes of 32-bit floats

#include <cmath>
#include <cstddef>
#include <cstdint>

namespace {

struct CShorts {
    std::int16_t v[16];

    static CShorts Load(const std::int16_t* from)
    {
        CShorts r;
        for (int i = 0; i < 16; ++i)
            r.v[i] = from[i];
        return r;
    }
    static CShorts LoadBytes(const std::uint8_t* from)
    {
        CShorts r;
        for (int i = 0; i < 16; ++i)
            r.v[i] = from[i];
        return r;
    }
    static CShorts All(int value)
    {
        CShorts r;
        for (int i = 0; i < 16; ++i)
            r.v[i] = static_cast<std::int16_t>(value);
        return r;
    }
    void Store(std::int16_t* to) const
    {
        for (int i = 0; i < 16; ++i)
            to[i] = v[i];
    }
    /// Values from 0 to 255.
    void StoreBytes(std::uint8_t* to) const
    {
        for (int i = 0; i < 16; ++i)
            to[i] = static_cast<std::uint8_t>(v[i]);
    }
};

template <typename Operation>
inline CShorts EachShort(CShorts a, CShorts b, Operation operation)
{
    CShorts r;
    for (int i = 0; i < 16; ++i)
        r.v[i] = static_cast<std::int16_t>(operation(int{a.v[i]}, int{b.v[i]}));
    return r;
}

inline CShorts operator+(CShorts a, CShorts b)
{
    return EachShort(a, b, [](int x, int y) { return x + y; });
}
inline CShorts operator-(CShorts a, CShorts b)
{
    return EachShort(a, b, [](int x, int y) { return x - y; });
}
inline CShorts operator*(CShorts a, CShorts b)
{
    return EachShort(a, b, [](int x, int y) { return x * y; });
}
inline CShorts operator&(CShorts a, CShorts b)
{
    return EachShort(a, b, [](int x, int y) { return x & y; });
}
inline CShorts operator|(CShorts a, CShorts b)
{
    return EachShort(a, b, [](int x, int y) { return x | y; });
}
/// All bits of a lane set where a > b.
inline CShorts operator>(CShorts a, CShorts b)
{
    return EachShort(a, b, [](int x, int y) { return x > y ? -1 : 0; });
}
template <int Bits>
inline CShorts ShiftRight(CShorts a)
{
    return EachShort(a, a, [](int x, int) { return x >> Bits; });
}
template <int Bits>
inline CShorts ShiftLeft(CShorts a)
{
    return EachShort(a, a, [](int x, int) { return x * (1 << Bits); });
}
/// a where the mask is set, else b.
inline CShorts Select(CShorts mask, CShorts a, CShorts b)
{
    CShorts r;
    for (int i = 0; i < 16; ++i)
        r.v[i] = mask.v[i] != 0 ? a.v[i] : b.v[i];
    return r;
}

/// Eight lanes from each address.
inline CShorts LoadTwo(const std::int16_t* first, const std::int16_t* second)
{
    CShorts r;
    for (int i = 0; i < 8; ++i) {
        r.v[i] = first[i];
        r.v[i + 8] = second[i];
    }
    return r;
}
/// Lanes 0 to 3 plus 4 to 7, and 8 to 11 plus 12 to 15, in eighths, as two pixels of four bytes.
inline void StoreTwoPixels(CShorts eighths, std::uint8_t* to)
{
    for (int i = 0; i < 8; ++i) {
        const int lane = i / 4 * 8 + i % 4;
        to[i] = static_cast<std::uint8_t>((eighths.v[lane] + eighths.v[lane + 4]) >> 3);
    }
}

struct CInts {
    std::int32_t v[16];

    static CInts All(int value)
    {
        CInts r;
        for (int i = 0; i < 16; ++i)
            r.v[i] = value;
        return r;
    }
    void Store(std::int32_t* to) const
    {
        for (int i = 0; i < 16; ++i)
            to[i] = v[i];
    }
};

template <typename Operation>
inline CInts EachInt(CInts a, CInts b, Operation operation)
{
    CInts r;
    for (int i = 0; i < 16; ++i)
        r.v[i] = static_cast<std::int32_t>(
            operation(static_cast<std::uint32_t>(a.v[i]), static_cast<std::uint32_t>(b.v[i])));
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
template <int Bits>
inline CInts ShiftLeft(CInts a)
{
    return EachInt(a, a, [](std::uint32_t x, std::uint32_t) { return x << Bits; });
}
/// a0 * b0 + a1 * b1
inline CInts Products(CShorts a0, CShorts b0, CShorts a1, CShorts b1)
{
    CInts r;
    for (int i = 0; i < 16; ++i)
        r.v[i] = static_cast<std::int32_t>(static_cast<std::uint32_t>(a0.v[i] * b0.v[i]) +
                                           static_cast<std::uint32_t>(a1.v[i] * b1.v[i]));
    return r;
}
/// All bits of a lane set where a > b.
inline CShorts Greater(CInts a, CInts b)
{
    CShorts r;
    for (int i = 0; i < 16; ++i)
        r.v[i] = static_cast<std::int16_t>(a.v[i] > b.v[i] ? -1 : 0);
    return r;
}
inline CInts Smaller(CInts a, CInts b)
{
    CInts r;
    for (int i = 0; i < 16; ++i)
        r.v[i] = a.v[i] < b.v[i] ? a.v[i] : b.v[i];
    return r;
}

template <int Bits>
inline CInts ShiftRight(CInts a)
{
    CInts r;
    for (int i = 0; i < 16; ++i)
        r.v[i] = a.v[i] >> Bits;
    return r;
}
/// To 16 bits, the nearest value where it does not fit.
inline CShorts Narrow(CInts a)
{
    CShorts r;
    for (int i = 0; i < 16; ++i)
        r.v[i] = static_cast<std::int16_t>(a.v[i] > 32767 ? 32767 : a.v[i] < -32768 ? -32768 : a.v[i]);
    return r;
}
/// scale * a / b, or / 1 where b is 0, rounded to the nearest whole number from `low` to `high`, both whole.
inline CShorts Ratio(CInts a, CInts b, float scale, float low, float high)
{
    CShorts r;
    for (int i = 0; i < 16; ++i) {
        const auto divisor = static_cast<float>(b.v[i]);
        const float ratio = static_cast<float>(a.v[i]) / (divisor > 1.0F ? divisor : 1.0F) * scale;
        const float above = ratio > low ? ratio : low;
        const float within = above < high ? above : high;
        r.v[i] = static_cast<std::int16_t>(static_cast<int>(within - low + 0.5F) + static_cast<int>(low));
    }
    return r;
}

/// Of lanes without a sign, 65535 where the sum does not fit.
inline CShorts AddSaturated(CShorts a, CShorts b)
{
    return EachShort(a, b, [](int x, int y) {
        const int sum = (x & 0xFFFF) + (y & 0xFFFF);
        return sum < 0xFFFF ? sum : 0xFFFF;
    });
}
/// Of lanes without a sign.
inline CShorts SmallerUnsigned(CShorts a, CShorts b)
{
    return EachShort(a, b, [](int x, int y) { return (x & 0xFFFF) < (y & 0xFFFF) ? x : y; });
}
/// Adds lanes without a sign.
inline CInts AddUnsigned(CInts sum, CShorts a)
{
    CInts r;
    for (int i = 0; i < 16; ++i)
        r.v[i] = static_cast<std::int32_t>(static_cast<std::uint32_t>(sum.v[i]) +
                                           static_cast<std::uint16_t>(a.v[i]));
    return r;
}

struct CFloats {
    float v[8];

    static CFloats Load(const float* from)
    {
        CFloats r;
        for (int i = 0; i < 8; ++i)
            r.v[i] = from[i];
        return r;
    }
    static CFloats LoadInts(const std::int32_t* from)
    {
        CFloats r;
        for (int i = 0; i < 8; ++i)
            r.v[i] = static_cast<float>(from[i]);
        return r;
    }
    static CFloats LoadShorts(const std::int16_t* from)
    {
        CFloats r;
        for (int i = 0; i < 8; ++i)
            r.v[i] = static_cast<float>(from[i]);
        return r;
    }
    static CFloats All(float value)
    {
        CFloats r;
        for (int i = 0; i < 8; ++i)
            r.v[i] = value;
        return r;
    }
    void Store(float* to) const
    {
        for (int i = 0; i < 8; ++i)
            to[i] = v[i];
    }
    /// Whole numbers that fit 16 bits.
    void StoreShorts(std::int16_t* to) const
    {
        for (int i = 0; i < 8; ++i)
            to[i] = static_cast<std::int16_t>(static_cast<int>(v[i]));
    }
};

template <typename Operation>
inline CFloats EachFloat(CFloats a, CFloats b, Operation operation)
{
    CFloats r;
    for (int i = 0; i < 8; ++i)
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
/// The second one when they are equal or not comparable, as processors do it.
inline CFloats Smaller(CFloats a, CFloats b)
{
    return EachFloat(a, b, [](float x, float y) { return x < y ? x : y; });
}
inline CFloats Larger(CFloats a, CFloats b)
{
    return EachFloat(a, b, [](float x, float y) { return x > y ? x : y; });
}
/// Without the fraction; for values of less than 31 bits.
inline CFloats Whole(CFloats a)
{
    return EachFloat(a, a, [](float x, float) { return static_cast<float>(static_cast<int>(x)); });
}
inline CFloats Root(CFloats a)
{
    return EachFloat(a, a, [](float x, float) { return std::sqrt(x); });
}
/// a where x < y, else b.
inline CFloats SelectLess(CFloats x, CFloats y, CFloats a, CFloats b)
{
    CFloats r;
    for (int i = 0; i < 8; ++i)
        r.v[i] = x.v[i] < y.v[i] ? a.v[i] : b.v[i];
    return r;
}

/// 16 rows of 16 bytes, `stride` bytes apart, become 16 columns.
inline void TransposeBytes(const std::uint8_t* from, std::size_t stride, std::uint8_t* const* to)
{
    for (std::size_t row = 0; row < 16; ++row)
        for (std::size_t i = 0; i < 16; ++i)
            to[i][row] = from[row * stride + i];
}

}  // namespace
