#pragma once

// The vector types of Lanes_Portable.h with SSE4.1. To be included once, by the kernels of this instruction
// set alone.

#include <cstdint>
#include <smmintrin.h>

namespace {

constexpr int kLanes = 4;
constexpr int kBlockOfLane[kLanes] = {0, 1, 2, 3};

struct CInts {
    __m128i v;

    static CInts Load(const std::int32_t* from)
    {
        return {_mm_loadu_si128(reinterpret_cast<const __m128i*>(from))};
    }
    static CInts All(int value) { return {_mm_set1_epi32(value)}; }
    void Store(std::int32_t* to) const { _mm_storeu_si128(reinterpret_cast<__m128i*>(to), v); }
};

inline CInts operator+(CInts a, CInts b)
{
    return {_mm_add_epi32(a.v, b.v)};
}
inline CInts operator-(CInts a, CInts b)
{
    return {_mm_sub_epi32(a.v, b.v)};
}
inline CInts operator*(CInts a, CInts b)
{
    return {_mm_mullo_epi32(a.v, b.v)};
}
inline CInts operator&(CInts a, CInts b)
{
    return {_mm_and_si128(a.v, b.v)};
}
inline CInts operator|(CInts a, CInts b)
{
    return {_mm_or_si128(a.v, b.v)};
}
inline CInts operator^(CInts a, CInts b)
{
    return {_mm_xor_si128(a.v, b.v)};
}
inline CInts operator>(CInts a, CInts b)
{
    return {_mm_cmpgt_epi32(a.v, b.v)};
}
inline CInts operator==(CInts a, CInts b)
{
    return {_mm_cmpeq_epi32(a.v, b.v)};
}
inline CInts Smaller(CInts a, CInts b)
{
    return {_mm_min_epi32(a.v, b.v)};
}
inline CInts Larger(CInts a, CInts b)
{
    return {_mm_max_epi32(a.v, b.v)};
}
template <int Bits>
inline CInts ShiftLeft(CInts a)
{
    return {_mm_slli_epi32(a.v, Bits)};
}
template <int Bits>
inline CInts ShiftRight(CInts a)
{
    return {_mm_srai_epi32(a.v, Bits)};
}
template <int Bits>
inline CInts ShiftRightUnsigned(CInts a)
{
    return {_mm_srli_epi32(a.v, Bits)};
}
inline CInts Select(CInts mask, CInts a, CInts b)
{
    return {_mm_blendv_epi8(b.v, a.v, mask.v)};
}
inline bool AnyOf(CInts mask)
{
    return _mm_testz_si128(mask.v, mask.v) == 0;
}

inline CInts AddHalves(CInts a, CInts b)
{
    return {_mm_add_epi16(a.v, b.v)};
}
inline CInts SubtractHalves(CInts a, CInts b)
{
    return {_mm_sub_epi16(a.v, b.v)};
}
inline CInts MultiplyHalves(CInts a, CInts b)
{
    return {_mm_mullo_epi16(a.v, b.v)};
}
inline CInts MultiplyHighHalves(CInts a, CInts b)
{
    return {_mm_mulhi_epi16(a.v, b.v)};
}
inline CInts SmallerHalves(CInts a, CInts b)
{
    return {_mm_min_epi16(a.v, b.v)};
}
inline CInts LargerHalves(CInts a, CInts b)
{
    return {_mm_max_epi16(a.v, b.v)};
}
inline CInts GreaterHalves(CInts a, CInts b)
{
    return {_mm_cmpgt_epi16(a.v, b.v)};
}
inline CInts MagnitudeHalves(CInts a)
{
    return {_mm_abs_epi16(a.v)};
}
template <int Bits>
inline CInts ShiftRightHalves(CInts a)
{
    return {_mm_srai_epi16(a.v, Bits)};
}
template <int Bits>
inline CInts ShiftLeftHalves(CInts a)
{
    return {_mm_slli_epi16(a.v, Bits)};
}
inline CInts PairSums(CInts a, CInts b)
{
    return {_mm_madd_epi16(a.v, b.v)};
}
inline CInts SmallerBytes(CInts a, CInts b)
{
    return {_mm_min_epu8(a.v, b.v)};
}
inline CInts LargerBytes(CInts a, CInts b)
{
    return {_mm_max_epu8(a.v, b.v)};
}
inline CInts SubtractBytes(CInts a, CInts b)
{
    return {_mm_sub_epi8(a.v, b.v)};
}
inline CInts AddBytesClamped(CInts a, CInts b)
{
    return {_mm_adds_epu8(a.v, b.v)};
}
inline CInts SubtractBytesClamped(CInts a, CInts b)
{
    return {_mm_subs_epu8(a.v, b.v)};
}
inline CInts LookUp(const std::uint8_t (&table)[16], CInts index)
{
    const __m128i entries = _mm_loadu_si128(reinterpret_cast<const __m128i*>(table));
    // A set top bit makes the byte 0.
    return {_mm_shuffle_epi8(entries, _mm_or_si128(index.v, _mm_set1_epi32(-256)))};
}
inline CInts BytePairSums(CInts bytes, CInts factors)
{
    return {_mm_maddubs_epi16(bytes.v, factors.v)};
}
inline CInts RedGreen(CInts pixels)
{
    const __m128i order = _mm_setr_epi8(0, -1, 1, -1, 4, -1, 5, -1, 8, -1, 9, -1, 12, -1, 13, -1);
    return {_mm_shuffle_epi8(pixels.v, order)};
}
inline CInts LowHalves(CInts a, CInts b)
{
    return {_mm_blend_epi16(a.v, _mm_slli_epi32(b.v, 16), 0xAA)};
}
inline CInts HighHalves(CInts a, CInts b)
{
    return {_mm_blend_epi16(_mm_srli_epi32(a.v, 16), b.v, 0xAA)};
}

inline void LoadRow(const std::uint8_t* row, CInts (&pixels)[4])
{
    const auto* from = reinterpret_cast<const __m128i*>(row);
    const __m128i a = _mm_loadu_si128(from);
    const __m128i b = _mm_loadu_si128(from + 1);
    const __m128i c = _mm_loadu_si128(from + 2);
    const __m128i d = _mm_loadu_si128(from + 3);
    const __m128i ab01 = _mm_unpacklo_epi32(a, b);
    const __m128i ab23 = _mm_unpackhi_epi32(a, b);
    const __m128i cd01 = _mm_unpacklo_epi32(c, d);
    const __m128i cd23 = _mm_unpackhi_epi32(c, d);
    pixels[0] = {_mm_unpacklo_epi64(ab01, cd01)};
    pixels[1] = {_mm_unpackhi_epi64(ab01, cd01)};
    pixels[2] = {_mm_unpacklo_epi64(ab23, cd23)};
    pixels[3] = {_mm_unpackhi_epi64(ab23, cd23)};
}
inline void StorePairs(CInts first, CInts second, std::uint8_t* out)
{
    const __m128i low = _mm_unpacklo_epi32(first.v, second.v);
    const __m128i high = _mm_unpackhi_epi32(first.v, second.v);
    auto* to = reinterpret_cast<__m128i*>(out);
    _mm_storeu_si128(to, low);
    _mm_storeu_si128(to + 1, high);
}
inline void StoreQuads(CInts first, CInts second, CInts third, CInts fourth, std::uint8_t* out)
{
    const __m128i low01 = _mm_unpacklo_epi32(first.v, second.v);
    const __m128i high01 = _mm_unpackhi_epi32(first.v, second.v);
    const __m128i low23 = _mm_unpacklo_epi32(third.v, fourth.v);
    const __m128i high23 = _mm_unpackhi_epi32(third.v, fourth.v);
    auto* to = reinterpret_cast<__m128i*>(out);
    _mm_storeu_si128(to, _mm_unpacklo_epi64(low01, low23));
    _mm_storeu_si128(to + 1, _mm_unpackhi_epi64(low01, low23));
    _mm_storeu_si128(to + 2, _mm_unpacklo_epi64(high01, high23));
    _mm_storeu_si128(to + 3, _mm_unpackhi_epi64(high01, high23));
}

struct CFloats {
    __m128 v;

    static CFloats All(float value) { return {_mm_set1_ps(value)}; }
};

inline CFloats operator+(CFloats a, CFloats b)
{
    return {_mm_add_ps(a.v, b.v)};
}
inline CFloats operator-(CFloats a, CFloats b)
{
    return {_mm_sub_ps(a.v, b.v)};
}
inline CFloats operator*(CFloats a, CFloats b)
{
    return {_mm_mul_ps(a.v, b.v)};
}
inline CFloats operator/(CFloats a, CFloats b)
{
    return {_mm_div_ps(a.v, b.v)};
}
inline CInts operator>(CFloats a, CFloats b)
{
    return {_mm_castps_si128(_mm_cmpgt_ps(a.v, b.v))};
}
inline CFloats Smaller(CFloats a, CFloats b)
{
    return {_mm_min_ps(a.v, b.v)};
}
inline CFloats Larger(CFloats a, CFloats b)
{
    return {_mm_max_ps(a.v, b.v)};
}
inline CFloats ToFloats(CInts a)
{
    return {_mm_cvtepi32_ps(a.v)};
}
inline CInts ToInts(CFloats a)
{
    return {_mm_cvttps_epi32(a.v)};
}
inline CFloats Select(CInts mask, CFloats a, CFloats b)
{
    return {_mm_blendv_ps(b.v, a.v, _mm_castsi128_ps(mask.v))};
}

}  // namespace
