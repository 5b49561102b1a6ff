// Compiled for its instruction set: nothing is to be included here that other files share, because the linker
// may keep this file's copy of a shared inline function for the whole program.
#ifdef MAVREL_VECTOR_KERNELS
#include "plugins/etc1/RowDecode.h"

#include <immintrin.h>

#include "plugins/etc1/DecodeBases.h"

namespace Etc1 {
namespace {
// By the flip bit: which half the pixels of the upper and of the lower two rows belong to, as bit 2 of a
// place in the palette.
constexpr std::int32_t kHalves[2][2][8] = {{{0, 0, 4, 4, 0, 0, 4, 4}, {0, 0, 4, 4, 0, 0, 4, 4}},
                                           {{0, 0, 0, 0, 0, 0, 0, 0}, {4, 4, 4, 4, 4, 4, 4, 4}}};

inline __m256i LoadTwo(const std::uint8_t* low, const std::uint8_t* high)
{
    return _mm256_inserti128_si256(
        _mm256_castsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(low))),
        _mm_loadu_si128(reinterpret_cast<const __m128i*>(high)), 1);
}

// The four colours of the first half by their codes, then those of the second.
inline __m256i PaletteOf(const BlockFields& fields)
{
    const __m128i first = _mm_set1_epi32(static_cast<int>(fields.first | 0xFF000000U));
    const __m128i second = _mm_set1_epi32(static_cast<int>(fields.second | 0xFF000000U));
    const __m256i bases = _mm256_inserti128_si256(_mm256_castsi128_si256(first), second, 1);
    const ModifierBytes& one = kModifierBytes[fields.firstTable];
    const ModifierBytes& other = kModifierBytes[fields.secondTable];
    return _mm256_subs_epu8(_mm256_adds_epu8(bases, LoadTwo(one.added, other.added)),
                            LoadTwo(one.taken, other.taken));
}

// Two rows of pixels; the lowest bits of `bits` and bits 16 of it are those of the lanes.
inline void StoreRows(__m256i palette, __m256i bits, const std::int32_t (&halves)[8], std::uint8_t* out,
                      std::size_t stride)
{
    const __m256i low = _mm256_and_si256(bits, _mm256_set1_epi32(1));
    const __m256i high = _mm256_and_si256(_mm256_srli_epi32(bits, 15), _mm256_set1_epi32(2));
    const __m256i half = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(halves));
    const __m256i places = _mm256_or_si256(_mm256_or_si256(low, high), half);
    const __m256i pixels = _mm256_permutevar8x32_epi32(palette, places);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm256_castsi256_si128(pixels));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out + stride), _mm256_extracti128_si256(pixels, 1));
}
}  // namespace

void DecodeRow_Avx2(const std::uint8_t* blocks, std::size_t count, std::uint8_t* out, std::size_t stride)
{
    // The bits of the pixels go down the columns.
    const __m256i toUpperRows = _mm256_setr_epi32(0, 4, 8, 12, 1, 5, 9, 13);
    for (; count != 0; --count, blocks += kBytesOfBlock, out += kBytesOfBlockRow) {
        const BlockFields fields = TakeApart(blocks);
        const __m256i palette = PaletteOf(fields);
        const __m256i bits = _mm256_srlv_epi32(_mm256_set1_epi32(static_cast<int>(fields.bits)), toUpperRows);
        StoreRows(palette, bits, kHalves[fields.flip][0], out, stride);
        StoreRows(palette, _mm256_srli_epi32(bits, 2), kHalves[fields.flip][1], out + 2 * stride, stride);
    }
}

}  // namespace Etc1
#endif
