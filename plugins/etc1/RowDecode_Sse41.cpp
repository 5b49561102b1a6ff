// Compiled for its instruction set: nothing is to be included here that other files share, because the linker
// may keep this file's copy of a shared inline function for the whole program.
#ifdef MAVREL_VECTOR_KERNELS
#include "plugins/etc1/RowDecode.h"

#include <smmintrin.h>

#include "plugins/etc1/DecodeBases.h"

namespace Etc1 {
namespace {
inline __m128i Load(const std::uint8_t* from)
{
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
}

// The four colours by their codes.
inline __m128i PaletteOf(std::uint32_t base, std::uint32_t table)
{
    const __m128i color = _mm_set1_epi32(static_cast<int>(base | 0xFF000000U));
    const ModifierBytes& modifiers = kModifierBytes[table];
    return _mm_subs_epu8(_mm_adds_epu8(color, Load(modifiers.added)), Load(modifiers.taken));
}

// Where the colours of one row of pixels lie in a palette; the bits of the pixels are in every lane.
inline __m128i PlacesOf(__m128i bits, int y)
{
    const __m128i low = _mm_setr_epi32(1 << y, 0x10 << y, 0x100 << y, 0x1000 << y);
    const __m128i high = _mm_slli_epi32(low, 16);
    const __m128i hasLow = _mm_cmpeq_epi32(_mm_and_si128(bits, low), low);
    const __m128i hasHigh = _mm_cmpeq_epi32(_mm_and_si128(bits, high), high);
    const __m128i places =
        _mm_or_si128(_mm_and_si128(hasLow, _mm_set1_epi8(4)), _mm_and_si128(hasHigh, _mm_set1_epi8(8)));
    return _mm_or_si128(places, _mm_set1_epi32(0x03020100));
}

inline void StoreRow(__m128i left, __m128i right, __m128i places, std::uint8_t* out)
{
    const __m128i pixels =
        _mm_blend_epi16(_mm_shuffle_epi8(left, places), _mm_shuffle_epi8(right, places), 0xF0);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out), pixels);
}
}  // namespace

void DecodeRow_Sse41(const std::uint8_t* blocks, std::size_t count, std::uint8_t* out, std::size_t stride)
{
    for (; count != 0; --count, blocks += kBytesOfBlock, out += kBytesOfBlockRow) {
        const BlockFields fields = TakeApart(blocks);
        const __m128i first = PaletteOf(fields.first, fields.firstTable);
        const __m128i second = PaletteOf(fields.second, fields.secondTable);
        const __m128i flip = _mm_set1_epi32(-static_cast<int>(fields.flip));
        const __m128i upperRight = _mm_blendv_epi8(second, first, flip);
        const __m128i lowerLeft = _mm_blendv_epi8(first, second, flip);
        const __m128i bits = _mm_set1_epi32(static_cast<int>(fields.bits));
        StoreRow(first, upperRight, PlacesOf(bits, 0), out);
        StoreRow(first, upperRight, PlacesOf(bits, 1), out + stride);
        StoreRow(lowerLeft, second, PlacesOf(bits, 2), out + 2 * stride);
        StoreRow(lowerLeft, second, PlacesOf(bits, 3), out + 3 * stride);
    }
}

}  // namespace Etc1
#endif
