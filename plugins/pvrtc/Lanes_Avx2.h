#pragma once

// The vector types of Lanes_Portable.h with AVX2. To be included once, by the kernels of this instruction set
// alone.

#include <cstddef>
#include <cstdint>
#include <immintrin.h>

namespace {

struct CShorts {
    __m256i v;

    static CShorts Load(const std::int16_t* from)
    {
        return {_mm256_loadu_si256(reinterpret_cast<const __m256i*>(from))};
    }
    static CShorts LoadBytes(const std::uint8_t* from)
    {
        return {_mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(from)))};
    }
    static CShorts All(int value) { return {_mm256_set1_epi16(static_cast<short>(value))}; }
    void Store(std::int16_t* to) const { _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), v); }
    void StoreBytes(std::uint8_t* to) const
    {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to),
                         _mm_packus_epi16(_mm256_castsi256_si128(v), _mm256_extracti128_si256(v, 1)));
    }
};

inline CShorts operator+(CShorts a, CShorts b)
{
    return {_mm256_add_epi16(a.v, b.v)};
}
inline CShorts operator-(CShorts a, CShorts b)
{
    return {_mm256_sub_epi16(a.v, b.v)};
}
inline CShorts operator*(CShorts a, CShorts b)
{
    return {_mm256_mullo_epi16(a.v, b.v)};
}
inline CShorts operator&(CShorts a, CShorts b)
{
    return {_mm256_and_si256(a.v, b.v)};
}
inline CShorts operator|(CShorts a, CShorts b)
{
    return {_mm256_or_si256(a.v, b.v)};
}
inline CShorts operator>(CShorts a, CShorts b)
{
    return {_mm256_cmpgt_epi16(a.v, b.v)};
}
template <int Bits>
inline CShorts ShiftRight(CShorts a)
{
    return {_mm256_srai_epi16(a.v, Bits)};
}
template <int Bits>
inline CShorts ShiftLeft(CShorts a)
{
    return {_mm256_slli_epi16(a.v, Bits)};
}
inline CShorts Select(CShorts mask, CShorts a, CShorts b)
{
    return {_mm256_blendv_epi8(b.v, a.v, mask.v)};
}

inline CShorts LoadTwo(const std::int16_t* first, const std::int16_t* second)
{
    return {_mm256_inserti128_si256(
        _mm256_castsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(first))),
        _mm_loadu_si128(reinterpret_cast<const __m128i*>(second)), 1)};
}
inline void StoreTwoPixels(CShorts eighths, std::uint8_t* to)
{
    const __m256i sums =
        _mm256_srai_epi16(_mm256_add_epi16(eighths.v, _mm256_unpackhi_epi64(eighths.v, eighths.v)), 3);
    const __m128i both = _mm_unpacklo_epi64(_mm256_castsi256_si128(sums), _mm256_extracti128_si256(sums, 1));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(to), _mm_packus_epi16(both, both));
}

// The lanes are in the order in which 16 bits are unpacked: 0 to 3 and 8 to 11, then the others.
struct CInts {
    __m256i low;
    __m256i high;

    static CInts All(int value) { return {_mm256_set1_epi32(value), _mm256_set1_epi32(value)}; }
    void Store(std::int32_t* to) const
    {
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), _mm256_permute2x128_si256(low, high, 0x20));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(to + 8), _mm256_permute2x128_si256(low, high, 0x31));
    }
};

inline CInts operator+(CInts a, CInts b)
{
    return {_mm256_add_epi32(a.low, b.low), _mm256_add_epi32(a.high, b.high)};
}
inline CInts operator-(CInts a, CInts b)
{
    return {_mm256_sub_epi32(a.low, b.low), _mm256_sub_epi32(a.high, b.high)};
}
template <int Bits>
inline CInts ShiftLeft(CInts a)
{
    return {_mm256_slli_epi32(a.low, Bits), _mm256_slli_epi32(a.high, Bits)};
}
inline CInts Products(CShorts a0, CShorts b0, CShorts a1, CShorts b1)
{
    return {_mm256_madd_epi16(_mm256_unpacklo_epi16(a0.v, a1.v), _mm256_unpacklo_epi16(b0.v, b1.v)),
            _mm256_madd_epi16(_mm256_unpackhi_epi16(a0.v, a1.v), _mm256_unpackhi_epi16(b0.v, b1.v))};
}
inline CShorts Greater(CInts a, CInts b)
{
    return {_mm256_packs_epi32(_mm256_cmpgt_epi32(a.low, b.low), _mm256_cmpgt_epi32(a.high, b.high))};
}
inline CInts Smaller(CInts a, CInts b)
{
    return {_mm256_min_epi32(a.low, b.low), _mm256_min_epi32(a.high, b.high)};
}

template <int Bits>
inline CInts ShiftRight(CInts a)
{
    return {_mm256_srai_epi32(a.low, Bits), _mm256_srai_epi32(a.high, Bits)};
}
inline CShorts Narrow(CInts a)
{
    return {_mm256_packs_epi32(a.low, a.high)};
}
inline __m256i RatioOf(__m256i a, __m256i b, float scale, float low, float high)
{
    const __m256 divisor = _mm256_max_ps(_mm256_cvtepi32_ps(b), _mm256_set1_ps(1));
    const __m256 ratio = _mm256_mul_ps(_mm256_div_ps(_mm256_cvtepi32_ps(a), divisor), _mm256_set1_ps(scale));
    const __m256 within = _mm256_min_ps(_mm256_max_ps(ratio, _mm256_set1_ps(low)), _mm256_set1_ps(high));
    const __m256 above = _mm256_add_ps(_mm256_sub_ps(within, _mm256_set1_ps(low)), _mm256_set1_ps(0.5F));
    return _mm256_add_epi32(_mm256_cvttps_epi32(above), _mm256_set1_epi32(static_cast<int>(low)));
}
inline CShorts Ratio(CInts a, CInts b, float scale, float low, float high)
{
    return {_mm256_packs_epi32(RatioOf(a.low, b.low, scale, low, high),
                               RatioOf(a.high, b.high, scale, low, high))};
}

inline CShorts AddSaturated(CShorts a, CShorts b)
{
    return {_mm256_adds_epu16(a.v, b.v)};
}
inline CShorts SmallerUnsigned(CShorts a, CShorts b)
{
    return {_mm256_min_epu16(a.v, b.v)};
}
inline CInts AddUnsigned(CInts sum, CShorts a)
{
    const __m256i zero = _mm256_setzero_si256();
    return {_mm256_add_epi32(sum.low, _mm256_unpacklo_epi16(a.v, zero)),
            _mm256_add_epi32(sum.high, _mm256_unpackhi_epi16(a.v, zero))};
}

struct CFloats {
    __m256 v;

    static CFloats Load(const float* from) { return {_mm256_loadu_ps(from)}; }
    static CFloats LoadInts(const std::int32_t* from)
    {
        return {_mm256_cvtepi32_ps(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(from)))};
    }
    static CFloats LoadShorts(const std::int16_t* from)
    {
        return {_mm256_cvtepi32_ps(
            _mm256_cvtepi16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(from))))};
    }
    static CFloats All(float value) { return {_mm256_set1_ps(value)}; }
    void Store(float* to) const { _mm256_storeu_ps(to, v); }
    void StoreShorts(std::int16_t* to) const
    {
        const __m256i ints = _mm256_cvttps_epi32(v);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to),
                         _mm_packs_epi32(_mm256_castsi256_si128(ints), _mm256_extracti128_si256(ints, 1)));
    }
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
inline CFloats Smaller(CFloats a, CFloats b)
{
    return {_mm256_min_ps(a.v, b.v)};
}
inline CFloats Larger(CFloats a, CFloats b)
{
    return {_mm256_max_ps(a.v, b.v)};
}
inline CFloats Whole(CFloats a)
{
    return {_mm256_cvtepi32_ps(_mm256_cvttps_epi32(a.v))};
}
inline CFloats Root(CFloats a)
{
    return {_mm256_sqrt_ps(a.v)};
}
inline CFloats SelectLess(CFloats x, CFloats y, CFloats a, CFloats b)
{
    return {_mm256_blendv_ps(b.v, a.v, _mm256_cmp_ps(x.v, y.v, _CMP_LT_OQ))};
}

inline void TransposeBytes(const std::uint8_t* from, std::size_t stride, std::uint8_t* const* to)
{
    // Interleaving row i with row i + 8 four times moves every byte to its place.
    __m128i rows[16];
    for (std::size_t i = 0; i < 16; ++i)
        rows[i] = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + i * stride));
    for (int step = 0; step < 4; ++step) {
        __m128i next[16];
        for (int i = 0; i < 8; ++i) {
            next[2 * i] = _mm_unpacklo_epi8(rows[i], rows[i + 8]);
            next[2 * i + 1] = _mm_unpackhi_epi8(rows[i], rows[i + 8]);
        }
        for (int i = 0; i < 16; ++i)
            rows[i] = next[i];
    }
    for (int i = 0; i < 16; ++i)
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to[i]), rows[i]);
}

}  // namespace
