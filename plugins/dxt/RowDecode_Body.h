#pragma once

// The decoding kernels with vectors: the palettes of as many blocks at once as there are lanes, then the
// pixels of one block after the other, picked from its palette by shuffles of 16 bytes. Included by
// RowDecode_Sse41.cpp and RowDecode_Avx2.cpp after the lanes of the instruction set.

#include <cstddef>
#include <cstring>
#include <smmintrin.h>

#include "plugins/dxt/ColorLanes.h"
#include "plugins/dxt/RowDecode.h"

namespace {

constexpr std::size_t kBatch = kLanes;
constexpr std::size_t kBlockRowBytes = 16;
constexpr int kOpaque = static_cast<int>(0xFF000000U);

// A word of each block, `at` bytes behind its start, in the lanes of the blocks.
inline CInts LoadWords(const std::uint8_t* blocks, std::size_t blockBytes, std::size_t at)
{
    std::int32_t words[kBatch];
    for (std::size_t lane = 0; lane < kBatch; ++lane)
        std::memcpy(&words[lane], blocks + static_cast<std::size_t>(kBlockOfLane[lane]) * blockBytes + at,
                    sizeof words[lane]);
    return CInts::Load(words);
}

inline CInts PixelOf(const HalfColor& color, int alpha)
{
    return (color.redGreen & CInts::All(0xFF)) |
           (ShiftRightUnsigned<8>(color.redGreen) & CInts::All(0xFF00)) | ShiftLeft<16>(color.blue) |
           CInts::All(alpha);
}

// Writes the four pixels of each block, in the order of the blocks.
inline void StoreFourColors(CInts ends, int alpha, std::uint8_t* palettes)
{
    const HalfColor first = Unpacked(Low(ends)).color;
    const HalfColor second = Unpacked(High(ends)).color;
    StoreQuads(PixelOf(first, alpha), PixelOf(second, alpha), PixelOf(Third(first, second), alpha),
               PixelOf(Third(second, first), alpha), palettes);
}

// `fourth` is the pixel beside three colours.
inline void StoreFourOrThreeColors(CInts ends, int fourth, std::uint8_t* palettes)
{
    const HalfColor first = Unpacked(Low(ends)).color;
    const HalfColor second = Unpacked(High(ends)).color;
    const CInts isFour = Low(ends) > High(ends);
    StoreQuads(
        PixelOf(first, kOpaque), PixelOf(second, kOpaque),
        Select(isFour, PixelOf(Third(first, second), kOpaque), PixelOf(Middle(first, second), kOpaque)),
        Select(isFour, PixelOf(Third(second, first), kOpaque), CInts::All(fourth)), palettes);
}

// Two mixes of the alphas in a block's first two bytes, in the halves: so many parts of each, by `Sum` parts
// in all.
template <int Sum>
inline CInts TwoMixes(CInts first, CInts second, int partsOfFirst, int partsOfNext)
{
    const CInts firstParts = CInts::All(partsOfFirst | partsOfNext << 16);
    const CInts secondParts = CInts::All((Sum - partsOfFirst) | (Sum - partsOfNext) << 16);
    const CInts sum = AddHalves(MultiplyHalves(first, firstParts), MultiplyHalves(second, secondParts));
    // 65536 / 7 and / 5, rounded up, divide every sum up to seven or five times 255.
    return MultiplyHighHalves(sum, CInts::All((65536 / Sum + 1) * 0x10001));
}

// The low bytes of both halves side by side.
inline CInts JoinedBytes(CInts halves)
{
    return Low(halves | ShiftRightUnsigned<8>(halves));
}

// Writes the eight alphas of each block, in the order of the blocks.
inline void StoreAlphas(CInts ends, std::uint8_t* palettes)
{
    const CInts byte = CInts::All(0xFF);
    const CInts first = Twice(ends & byte);
    const CInts second = Twice(ShiftRightUnsigned<8>(ends) & byte);
    const CInts isEight = first > second;
    const CInts thirdFourth =
        Select(isEight, TwoMixes<7>(first, second, 6, 5), TwoMixes<5>(first, second, 4, 3));
    const CInts fifthSixth =
        Select(isEight, TwoMixes<7>(first, second, 4, 3), TwoMixes<5>(first, second, 2, 1));
    const CInts last = Select(isEight, TwoMixes<7>(first, second, 2, 1), CInts::All(255 << 16));
    StorePairs(Low(ends) | ShiftLeft<16>(JoinedBytes(thirdFourth)),
               JoinedBytes(fifthSixth) | ShiftLeft<16>(JoinedBytes(last)), palettes);
}

inline __m128i Load16(const std::uint8_t* from)
{
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
}
inline __m128i Load8(const std::uint8_t* from)
{
    return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(from));
}

// The pixels of one row; its indices are the bits from 8 * Row on.
template <int Row>
inline __m128i PickedColors(__m128i palette, __m128i indices)
{
    // Moves each index to the top of its lane, so that nothing is left of the others.
    constexpr int kTop = 30 - 8 * Row;
    const __m128i places = _mm_setr_epi32(1 << kTop, 1 << (kTop - 2), 1 << (kTop - 4), 1 << (kTop - 6));
    const __m128i index = _mm_srli_epi32(_mm_mullo_epi32(indices, places), 30);
    const __m128i everywhere = _mm_setr_epi8(0, 0, 0, 0, 4, 4, 4, 4, 8, 8, 8, 8, 12, 12, 12, 12);
    const __m128i bytes = _mm_setr_epi8(0, 1, 2, 3, 0, 1, 2, 3, 0, 1, 2, 3, 0, 1, 2, 3);
    const __m128i from = _mm_slli_epi16(_mm_shuffle_epi8(index, everywhere), 2);
    return _mm_shuffle_epi8(palette, _mm_or_si128(from, bytes));
}

// The alphas of one row at the top of its pixels.
template <int Row>
inline __m128i AlphasOfRow(__m128i alphas)
{
    constexpr char kAt = 4 * Row;
    return _mm_shuffle_epi8(alphas, _mm_setr_epi8(-1, -1, -1, kAt, -1, -1, -1, kAt + 1, -1, -1, -1, kAt + 2,
                                                  -1, -1, -1, kAt + 3));
}

inline void StoreRow(__m128i pixels, std::uint8_t* out)
{
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out), pixels);
}

inline __m128i IndicesOf(const std::uint8_t* colorBlock)
{
    std::int32_t indices;
    std::memcpy(&indices, colorBlock + 4, sizeof indices);
    return _mm_set1_epi32(indices);
}

inline void StoreBlock(const std::uint8_t* colorBlock, __m128i palette, std::uint8_t* out, std::size_t stride)
{
    const __m128i indices = IndicesOf(colorBlock);
    StoreRow(PickedColors<0>(palette, indices), out);
    StoreRow(PickedColors<1>(palette, indices), out + stride);
    StoreRow(PickedColors<2>(palette, indices), out + 2 * stride);
    StoreRow(PickedColors<3>(palette, indices), out + 3 * stride);
}

// `alphas` has one byte a pixel; the palette has none.
inline void StoreBlock(const std::uint8_t* colorBlock, __m128i palette, __m128i alphas, std::uint8_t* out,
                       std::size_t stride)
{
    const __m128i indices = IndicesOf(colorBlock);
    StoreRow(_mm_or_si128(PickedColors<0>(palette, indices), AlphasOfRow<0>(alphas)), out);
    StoreRow(_mm_or_si128(PickedColors<1>(palette, indices), AlphasOfRow<1>(alphas)), out + stride);
    StoreRow(_mm_or_si128(PickedColors<2>(palette, indices), AlphasOfRow<2>(alphas)), out + 2 * stride);
    StoreRow(_mm_or_si128(PickedColors<3>(palette, indices), AlphasOfRow<3>(alphas)), out + 3 * stride);
}

// Four bits a pixel, times 17.
inline __m128i ExplicitAlphas(const std::uint8_t* block)
{
    const __m128i packed = Load8(block);
    const __m128i low = _mm_set1_epi8(15);
    const __m128i levels =
        _mm_unpacklo_epi8(_mm_and_si128(packed, low), _mm_and_si128(_mm_srli_epi16(packed, 4), low));
    return _mm_or_si128(levels, _mm_slli_epi16(levels, 4));
}

// Three bits a pixel choose one of eight alphas.
inline __m128i PickedAlphas(const std::uint8_t* block, __m128i palette)
{
    // The two bytes that a pixel's bits lie in, moved up until nothing is left above them, and down.
    const __m128i codes = Load8(block);
    const __m128i upper = _mm_setr_epi8(2, 3, 2, 3, 2, 3, 3, 4, 3, 4, 3, 4, 4, 5, 4, 5);
    const __m128i lower = _mm_setr_epi8(5, 6, 5, 6, 5, 6, 6, 7, 6, 7, 6, 7, 7, -1, 7, -1);
    const __m128i places = _mm_setr_epi16(1 << 13, 1 << 10, 1 << 7, 1 << 12, 1 << 9, 1 << 6, 1 << 11, 1 << 8);
    const __m128i first = _mm_srli_epi16(_mm_mullo_epi16(_mm_shuffle_epi8(codes, upper), places), 13);
    const __m128i second = _mm_srli_epi16(_mm_mullo_epi16(_mm_shuffle_epi8(codes, lower), places), 13);
    return _mm_shuffle_epi8(palette, _mm_packus_epi16(first, second));
}

// `decode(blocks, used, out)` gets as many blocks as there are lanes, of which the first `used` have places
// in the picture.
template <std::size_t Bytes, typename Decode>
inline void DecodeBatches(const std::uint8_t* blocks, std::size_t count, std::uint8_t* out, Decode decode)
{
    for (; count >= kBatch; count -= kBatch, blocks += kBatch * Bytes, out += kBatch * kBlockRowBytes)
        decode(blocks, kBatch, out);
    if (count == 0)
        return;
    std::uint8_t rest[kBatch * Bytes] = {};
    std::memcpy(rest, blocks, count * Bytes);
    decode(rest, count, out);
}

template <int Fourth>
void DecodeDxt1Row(const std::uint8_t* blocks, std::size_t count, std::uint8_t* out, std::size_t stride)
{
    DecodeBatches<8>(
        blocks, count, out, [stride](const std::uint8_t* from, std::size_t used, std::uint8_t* to) {
            std::uint8_t palettes[kBatch * 16];
            StoreFourOrThreeColors(LoadWords(from, 8, 0), Fourth, palettes);
            for (std::size_t i = 0; i < used; ++i)
                StoreBlock(from + i * 8, Load16(palettes + i * 16), to + i * kBlockRowBytes, stride);
        });
}

void DecodeDxt3Row(const std::uint8_t* blocks, std::size_t count, std::uint8_t* out, std::size_t stride)
{
    DecodeBatches<16>(blocks, count, out,
                      [stride](const std::uint8_t* from, std::size_t used, std::uint8_t* to) {
                          std::uint8_t palettes[kBatch * 16];
                          StoreFourColors(LoadWords(from, 16, 8), 0, palettes);
                          for (std::size_t i = 0; i < used; ++i)
                              StoreBlock(from + i * 16 + 8, Load16(palettes + i * 16),
                                         ExplicitAlphas(from + i * 16), to + i * kBlockRowBytes, stride);
                      });
}

void DecodeDxt5Row(const std::uint8_t* blocks, std::size_t count, std::uint8_t* out, std::size_t stride)
{
    DecodeBatches<16>(blocks, count, out,
                      [stride](const std::uint8_t* from, std::size_t used, std::uint8_t* to) {
                          std::uint8_t palettes[kBatch * 16];
                          std::uint8_t alphas[kBatch * 8];
                          StoreFourColors(LoadWords(from, 16, 8), 0, palettes);
                          StoreAlphas(LoadWords(from, 16, 0), alphas);
                          for (std::size_t i = 0; i < used; ++i)
                              StoreBlock(from + i * 16 + 8, Load16(palettes + i * 16),
                                         PickedAlphas(from + i * 16, Load8(alphas + i * 8)),
                                         to + i * kBlockRowBytes, stride);
                      });
}

}  // namespace

namespace Dxt {

const DecodeKernels MAVREL_DXT_DECODE_KERNELS{DecodeDxt1Row<kOpaque>, DecodeDxt1Row<0>, DecodeDxt3Row,
                                              DecodeDxt5Row};

}  // namespace Dxt
