#pragma once

// The vector types of Lanes_Portable.h with SSE4.1, two registers each. To be included once, by the kernels
// of this instruction set alone.

#include <cstddef>
#include <cstdint>
#include <smmintrin.h>

namespace {

struct CShorts {
    __m128i low;
    __m128i high;

    static CShorts Load(const std::int16_t* from)
    {
        return {_mm_loadu_si128(reinterpret_cast<const __m128i*>(from)),
                _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + 8))};
    }
    static CShorts LoadBytes(const std::uint8_t* from)
    {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
        return {_mm_cvtepu8_epi16(bytes), _mm_unpackhi_epi8(bytes, _mm_setzero_si128())};
    }
    static CShorts All(int value)
    {
        return {_mm_set1_epi16(static_cast<short>(value)), _mm_set1_epi16(static_cast<short>(value))};
    }
    void Store(std::int16_t* to) const
    {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to), low);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to + 8), high);
    }
    void StoreBytes(std::uint8_t* to) const
    {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm_packus_epi16(low, high));
    }
};

inline CShorts operator+(CShorts a, CShorts b)
{
    return {_mm_add_epi16(a.low, b.low), _mm_add_epi16(a.high, b.high)};
}
inline CShorts operator-(CShorts a, CShorts b)
{
    return {_mm_sub_epi16(a.low, b.low), _mm_sub_epi16(a.high, b.high)};
}
inline CShorts operator*(CShorts a, CShorts b)
{
    return {_mm_mullo_epi16(a.low, b.low), _mm_mullo_epi16(a.high, b.high)};
}
inline CShorts operator&(CShorts a, CShorts b)
{
    return {_mm_and_si128(a.low, b.low), _mm_and_si128(a.high, b.high)};
}
inline CShorts operator|(CShorts a, CShorts b)
{
    return {_mm_or_si128(a.low, b.low), _mm_or_si128(a.high, b.high)};
}
inline CShorts operator>(CShorts a, CShorts b)
{
    return {_mm_cmpgt_epi16(a.low, b.low), _mm_cmpgt_epi16(a.high, b.high)};
}
template <int Bits>
inline CShorts ShiftRight(CShorts a)
{
    return {_mm_srai_epi16(a.low, Bits), _mm_srai_epi16(a.high, Bits)};
}
template <int Bits>
inline CShorts ShiftLeft(CShorts a)
{
    return {_mm_slli_epi16(a.low, Bits), _mm_slli_epi16(a.high, Bits)};
}
inline CShorts Select(CShorts mask, CShorts a, CShorts b)
{
    return {_mm_blendv_epi8(b.low, a.low, mask.low), _mm_blendv_epi8(b.high, a.high, mask.high)};
}

inline CShorts LoadTwo(const std::int16_t* first, const std::int16_t* second)
{
    return {_mm_loadu_si128(reinterpret_cast<const __m128i*>(first)),
            _mm_loadu_si128(reinterpret_cast<const __m128i*>(second))};
}
inline void StoreTwoPixels(CShorts eighths, std::uint8_t* to)
{
    const __m128i first = _mm_add_epi16(eighths.low, _mm_unpackhi_epi64(eighths.low, eighths.low));
    const __m128i second = _mm_add_epi16(eighths.high, _mm_unpackhi_epi64(eighths.high, eighths.high));
    const __m128i both = _mm_srai_epi16(_mm_unpacklo_epi64(first, second), 3);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(to), _mm_packus_epi16(both, both));
}

struct CInts {
    __m128i v[4];

    static CInts All(int value)
    {
        const __m128i all = _mm_set1_epi32(value);
        return {{all, all, all, all}};
    }
    void Store(std::int32_t* to) const
    {
        for (int i = 0; i < 4; ++i)
            _mm_storeu_si128(reinterpret_cast<__m128i*>(to + i * 4), v[i]);
    }
};

inline CInts operator+(CInts a, CInts b)
{
    return {{_mm_add_epi32(a.v[0], b.v[0]), _mm_add_epi32(a.v[1], b.v[1]), _mm_add_epi32(a.v[2], b.v[2]),
             _mm_add_epi32(a.v[3], b.v[3])}};
}
inline CInts operator-(CInts a, CInts b)
{
    return {{_mm_sub_epi32(a.v[0], b.v[0]), _mm_sub_epi32(a.v[1], b.v[1]), _mm_sub_epi32(a.v[2], b.v[2]),
             _mm_sub_epi32(a.v[3], b.v[3])}};
}
template <int Bits>
inline CInts ShiftLeft(CInts a)
{
    return {{_mm_slli_epi32(a.v[0], Bits), _mm_slli_epi32(a.v[1], Bits), _mm_slli_epi32(a.v[2], Bits),
             _mm_slli_epi32(a.v[3], Bits)}};
}
inline CInts Products(CShorts a0, CShorts b0, CShorts a1, CShorts b1)
{
    return {{_mm_madd_epi16(_mm_unpacklo_epi16(a0.low, a1.low), _mm_unpacklo_epi16(b0.low, b1.low)),
             _mm_madd_epi16(_mm_unpackhi_epi16(a0.low, a1.low), _mm_unpackhi_epi16(b0.low, b1.low)),
             _mm_madd_epi16(_mm_unpacklo_epi16(a0.high, a1.high), _mm_unpacklo_epi16(b0.high, b1.high)),
             _mm_madd_epi16(_mm_unpackhi_epi16(a0.high, a1.high), _mm_unpackhi_epi16(b0.high, b1.high))}};
}
inline CShorts Greater(CInts a, CInts b)
{
    return {_mm_packs_epi32(_mm_cmpgt_epi32(a.v[0], b.v[0]), _mm_cmpgt_epi32(a.v[1], b.v[1])),
            _mm_packs_epi32(_mm_cmpgt_epi32(a.v[2], b.v[2]), _mm_cmpgt_epi32(a.v[3], b.v[3]))};
}
inline CInts Smaller(CInts a, CInts b)
{
    return {{_mm_min_epi32(a.v[0], b.v[0]), _mm_min_epi32(a.v[1], b.v[1]), _mm_min_epi32(a.v[2], b.v[2]),
             _mm_min_epi32(a.v[3], b.v[3])}};
}

template <int Bits>
inline CInts ShiftRight(CInts a)
{
    return {{_mm_srai_epi32(a.v[0], Bits), _mm_srai_epi32(a.v[1], Bits), _mm_srai_epi32(a.v[2], Bits),
             _mm_srai_epi32(a.v[3], Bits)}};
}
inline CShorts Narrow(CInts a)
{
    return {_mm_packs_epi32(a.v[0], a.v[1]), _mm_packs_epi32(a.v[2], a.v[3])};
}
inline __m128i RatioOf(__m128i a, __m128i b, float scale, float low, float high)
{
    const __m128 divisor = _mm_max_ps(_mm_cvtepi32_ps(b), _mm_set1_ps(1));
    const __m128 ratio = _mm_mul_ps(_mm_div_ps(_mm_cvtepi32_ps(a), divisor), _mm_set1_ps(scale));
    const __m128 within = _mm_min_ps(_mm_max_ps(ratio, _mm_set1_ps(low)), _mm_set1_ps(high));
    const __m128 above = _mm_add_ps(_mm_sub_ps(within, _mm_set1_ps(low)), _mm_set1_ps(0.5F));
    return _mm_add_epi32(_mm_cvttps_epi32(above), _mm_set1_epi32(static_cast<int>(low)));
}
inline CShorts Ratio(CInts a, CInts b, float scale, float low, float high)
{
    return {
        _mm_packs_epi32(RatioOf(a.v[0], b.v[0], scale, low, high), RatioOf(a.v[1], b.v[1], scale, low, high)),
        _mm_packs_epi32(RatioOf(a.v[2], b.v[2], scale, low, high),
                        RatioOf(a.v[3], b.v[3], scale, low, high))};
}

inline CShorts AddSaturated(CShorts a, CShorts b)
{
    return {_mm_adds_epu16(a.low, b.low), _mm_adds_epu16(a.high, b.high)};
}
inline CShorts SmallerUnsigned(CShorts a, CShorts b)
{
    return {_mm_min_epu16(a.low, b.low), _mm_min_epu16(a.high, b.high)};
}
inline CInts AddUnsigned(CInts sum, CShorts a)
{
    const __m128i zero = _mm_setzero_si128();
    return {{_mm_add_epi32(sum.v[0], _mm_unpacklo_epi16(a.low, zero)),
             _mm_add_epi32(sum.v[1], _mm_unpackhi_epi16(a.low, zero)),
             _mm_add_epi32(sum.v[2], _mm_unpacklo_epi16(a.high, zero)),
             _mm_add_epi32(sum.v[3], _mm_unpackhi_epi16(a.high, zero))}};
}

struct CFloats {
    __m128 low;
    __m128 high;

    static CFloats Load(const float* from) { return {_mm_loadu_ps(from), _mm_loadu_ps(from + 4)}; }
    static CFloats LoadInts(const std::int32_t* from)
    {
        return {_mm_cvtepi32_ps(_mm_loadu_si128(reinterpret_cast<const __m128i*>(from))),
                _mm_cvtepi32_ps(_mm_loadu_si128(reinterpret_cast<const __m128i*>(from + 4)))};
    }
    static CFloats LoadShorts(const std::int16_t* from)
    {
        const __m128i shorts = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
        return {_mm_cvtepi32_ps(_mm_cvtepi16_epi32(shorts)),
                _mm_cvtepi32_ps(_mm_cvtepi16_epi32(_mm_srli_si128(shorts, 8)))};
    }
    static CFloats All(float value) { return {_mm_set1_ps(value), _mm_set1_ps(value)}; }
    void Store(float* to) const
    {
        _mm_storeu_ps(to, low);
        _mm_storeu_ps(to + 4, high);
    }
    void StoreShorts(std::int16_t* to) const
    {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to),
                         _mm_packs_epi32(_mm_cvttps_epi32(low), _mm_cvttps_epi32(high)));
    }
};

inline CFloats operator+(CFloats a, CFloats b)
{
    return {_mm_add_ps(a.low, b.low), _mm_add_ps(a.high, b.high)};
}
inline CFloats operator-(CFloats a, CFloats b)
{
    return {_mm_sub_ps(a.low, b.low), _mm_sub_ps(a.high, b.high)};
}
inline CFloats operator*(CFloats a, CFloats b)
{
    return {_mm_mul_ps(a.low, b.low), _mm_mul_ps(a.high, b.high)};
}
inline CFloats operator/(CFloats a, CFloats b)
{
    return {_mm_div_ps(a.low, b.low), _mm_div_ps(a.high, b.high)};
}
inline CFloats Smaller(CFloats a, CFloats b)
{
    return {_mm_min_ps(a.low, b.low), _mm_min_ps(a.high, b.high)};
}
inline CFloats Larger(CFloats a, CFloats b)
{
    return {_mm_max_ps(a.low, b.low), _mm_max_ps(a.high, b.high)};
}
inline CFloats Whole(CFloats a)
{
    return {_mm_cvtepi32_ps(_mm_cvttps_epi32(a.low)), _mm_cvtepi32_ps(_mm_cvttps_epi32(a.high))};
}
inline CFloats Root(CFloats a)
{
    return {_mm_sqrt_ps(a.low), _mm_sqrt_ps(a.high)};
}
inline CFloats SelectLess(CFloats x, CFloats y, CFloats a, CFloats b)
{
    return {_mm_blendv_ps(b.low, a.low, _mm_cmplt_ps(x.low, y.low)),
            _mm_blendv_ps(b.high, a.high, _mm_cmplt_ps(x.high, y.high))};
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
