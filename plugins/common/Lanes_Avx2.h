#pragma once

// The vector types of Lanes_Portable.h with AVX2. To be included once, by the kernels of this instruction set
// alone.

#include <cstdint>
#include <immintrin.h>

namespace {

constexpr int kLanes = 8;
// The registers have two halves that do not mix, so blocks that are read together spread over both.
constexpr int kBlockOfLane[kLanes] = {0, 2, 4, 6, 1, 3, 5, 7};

struct CInts {
    __m256i v;

    static CInts Load(const std::int32_t* from)
    {
        return {_mm256_loadu_si256(reinterpret_cast<const __m256i*>(from))};
    }
    static CInts All(int value) { return {_mm256_set1_epi32(value)}; }
    void Store(std::int32_t* to) const { _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), v); }
};

inline CInts operator+(CInts a, CInts b)
{
    return {_mm256_add_epi32(a.v, b.v)};
}
inline CInts operator-(CInts a, CInts b)
{
    return {_mm256_sub_epi32(a.v, b.v)};
}
inline CInts operator*(CInts a, CInts b)
{
    return {_mm256_mullo_epi32(a.v, b.v)};
}
inline CInts operator&(CInts a, CInts b)
{
    return {_mm256_and_si256(a.v, b.v)};
}
inline CInts operator|(CInts a, CInts b)
{
    return {_mm256_or_si256(a.v, b.v)};
}
inline CInts operator^(CInts a, CInts b)
{
    return {_mm256_xor_si256(a.v, b.v)};
}
inline CInts operator>(CInts a, CInts b)
{
    return {_mm256_cmpgt_epi32(a.v, b.v)};
}
inline CInts operator==(CInts a, CInts b)
{
    return {_mm256_cmpeq_epi32(a.v, b.v)};
}
inline CInts Smaller(CInts a, CInts b)
{
    return {_mm256_min_epi32(a.v, b.v)};
}
inline CInts Larger(CInts a, CInts b)
{
    return {_mm256_max_epi32(a.v, b.v)};
}
template <int Bits>
inline CInts ShiftLeft(CInts a)
{
    return {_mm256_slli_epi32(a.v, Bits)};
}
template <int Bits>
inline CInts ShiftRight(CInts a)
{
    return {_mm256_srai_epi32(a.v, Bits)};
}
template <int Bits>
inline CInts ShiftRightUnsigned(CInts a)
{
    return {_mm256_srli_epi32(a.v, Bits)};
}
inline CInts Select(CInts mask, CInts a, CInts b)
{
    return {_mm256_blendv_epi8(b.v, a.v, mask.v)};
}
inline bool AnyOf(CInts mask)
{
    return _mm256_testz_si256(mask.v, mask.v) == 0;
}

inline CInts AddHalves(CInts a, CInts b)
{
    return {_mm256_add_epi16(a.v, b.v)};
}
inline CInts SubtractHalves(CInts a, CInts b)
{
    return {_mm256_sub_epi16(a.v, b.v)};
}
inline CInts MultiplyHalves(CInts a, CInts b)
{
    return {_mm256_mullo_epi16(a.v, b.v)};
}
inline CInts MultiplyHighHalves(CInts a, CInts b)
{
    return {_mm256_mulhi_epi16(a.v, b.v)};
}
inline CInts SmallerHalves(CInts a, CInts b)
{
    return {_mm256_min_epi16(a.v, b.v)};
}
inline CInts LargerHalves(CInts a, CInts b)
{
    return {_mm256_max_epi16(a.v, b.v)};
}
inline CInts GreaterHalves(CInts a, CInts b)
{
    return {_mm256_cmpgt_epi16(a.v, b.v)};
}
inline CInts MagnitudeHalves(CInts a)
{
    return {_mm256_abs_epi16(a.v)};
}
template <int Bits>
inline CInts ShiftRightHalves(CInts a)
{
    return {_mm256_srai_epi16(a.v, Bits)};
}
template <int Bits>
inline CInts ShiftLeftHalves(CInts a)
{
    return {_mm256_slli_epi16(a.v, Bits)};
}
inline CInts PairSums(CInts a, CInts b)
{
    return {_mm256_madd_epi16(a.v, b.v)};
}
inline CInts SmallerBytes(CInts a, CInts b)
{
    return {_mm256_min_epu8(a.v, b.v)};
}
inline CInts LargerBytes(CInts a, CInts b)
{
    return {_mm256_max_epu8(a.v, b.v)};
}
inline CInts SubtractBytes(CInts a, CInts b)
{
    return {_mm256_sub_epi8(a.v, b.v)};
}
inline CInts AddBytesClamped(CInts a, CInts b)
{
    return {_mm256_adds_epu8(a.v, b.v)};
}
inline CInts SubtractBytesClamped(CInts a, CInts b)
{
    return {_mm256_subs_epu8(a.v, b.v)};
}
inline CInts LookUp(const std::uint8_t (&table)[16], CInts index)
{
    const __m256i entries =
        _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(table)));
    // A set top bit makes the byte 0.
    return {_mm256_shuffle_epi8(entries, _mm256_or_si256(index.v, _mm256_set1_epi32(-256)))};
}
inline CInts BytePairSums(CInts bytes, CInts factors)
{
    return {_mm256_maddubs_epi16(bytes.v, factors.v)};
}
inline CInts RedGreen(CInts pixels)
{
    const __m256i order =
        _mm256_broadcastsi128_si256(_mm_setr_epi8(0, -1, 1, -1, 4, -1, 5, -1, 8, -1, 9, -1, 12, -1, 13, -1));
    return {_mm256_shuffle_epi8(pixels.v, order)};
}
inline CInts LowHalves(CInts a, CInts b)
{
    return {_mm256_blend_epi16(a.v, _mm256_slli_epi32(b.v, 16), 0xAA)};
}
inline CInts HighHalves(CInts a, CInts b)
{
    return {_mm256_blend_epi16(_mm256_srli_epi32(a.v, 16), b.v, 0xAA)};
}

inline void LoadRow(const std::uint8_t* row, CInts (&pixels)[4])
{
    const auto* from = reinterpret_cast<const __m256i*>(row);
    const __m256i a = _mm256_loadu_si256(from);
    const __m256i b = _mm256_loadu_si256(from + 1);
    const __m256i c = _mm256_loadu_si256(from + 2);
    const __m256i d = _mm256_loadu_si256(from + 3);
    const __m256i ab01 = _mm256_unpacklo_epi32(a, b);
    const __m256i ab23 = _mm256_unpackhi_epi32(a, b);
    const __m256i cd01 = _mm256_unpacklo_epi32(c, d);
    const __m256i cd23 = _mm256_unpackhi_epi32(c, d);
    pixels[0] = {_mm256_unpacklo_epi64(ab01, cd01)};
    pixels[1] = {_mm256_unpackhi_epi64(ab01, cd01)};
    pixels[2] = {_mm256_unpacklo_epi64(ab23, cd23)};
    pixels[3] = {_mm256_unpackhi_epi64(ab23, cd23)};
}
inline void StorePairs(CInts first, CInts second, std::uint8_t* out)
{
    const __m256i low = _mm256_unpacklo_epi32(first.v, second.v);
    const __m256i high = _mm256_unpackhi_epi32(first.v, second.v);
    auto* to = reinterpret_cast<__m256i*>(out);
    _mm256_storeu_si256(to, _mm256_permute4x64_epi64(low, 0xD8));
    _mm256_storeu_si256(to + 1, _mm256_permute4x64_epi64(high, 0xD8));
}
inline void StoreQuads(CInts first, CInts second, CInts third, CInts fourth, std::uint8_t* out)
{
    const __m256i low01 = _mm256_unpacklo_epi32(first.v, second.v);
    const __m256i high01 = _mm256_unpackhi_epi32(first.v, second.v);
    const __m256i low23 = _mm256_unpacklo_epi32(third.v, fourth.v);
    const __m256i high23 = _mm256_unpackhi_epi32(third.v, fourth.v);
    auto* to = reinterpret_cast<__m256i*>(out);
    _mm256_storeu_si256(to, _mm256_unpacklo_epi64(low01, low23));
    _mm256_storeu_si256(to + 1, _mm256_unpackhi_epi64(low01, low23));
    _mm256_storeu_si256(to + 2, _mm256_unpacklo_epi64(high01, high23));
    _mm256_storeu_si256(to + 3, _mm256_unpackhi_epi64(high01, high23));
}

struct CFloats {
    __m256 v;

    static CFloats All(float value) { return {_mm256_set1_ps(value)}; }
};

inline CFloats operator+(CFloats a, CFloats b)
{
    return {_mm256_add_ps(a.v, b.v)};
}
inline CFloats operator-(CFloats a, CFloats b)
{
    return {_mm256_sub_ps(a.v, b.v)};
}
inline CFloats operator*(CFloats a, CFloats b)
{
    return {_mm256_mul_ps(a.v, b.v)};
}
inline CFloats operator/(CFloats a, CFloats b)
{
    return {_mm256_div_ps(a.v, b.v)};
}
inline CInts operator>(CFloats a, CFloats b)
{
    return {_mm256_castps_si256(_mm256_cmp_ps(a.v, b.v, _CMP_GT_OQ))};
}
inline CFloats Smaller(CFloats a, CFloats b)
{
    return {_mm256_min_ps(a.v, b.v)};
}
inline CFloats Larger(CFloats a, CFloats b)
{
    return {_mm256_max_ps(a.v, b.v)};
}
inline CFloats ToFloats(CInts a)
{
    return {_mm256_cvtepi32_ps(a.v)};
}
inline CInts ToInts(CFloats a)
{
    return {_mm256_cvttps_epi32(a.v)};
}
inline CFloats Select(CInts mask, CFloats a, CFloats b)
{
    return {_mm256_blendv_ps(b.v, a.v, _mm256_castsi256_ps(mask.v))};
}

}  // namespace
