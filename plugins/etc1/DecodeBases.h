#pragma once

// What the vector decoders share: the fields of a block taken apart in ordinary registers, and the modifiers
// as bytes. To be included once, by the kernels of an instruction set; everything is local to that file.

#include <cstdint>
#include <cstring>

namespace {

constexpr std::size_t kBytesOfBlock = 8;
constexpr std::size_t kBytesOfBlockRow = 16;

struct BlockFields {
    std::uint32_t first;  // base colours, red lowest
    std::uint32_t second;
    std::uint32_t firstTable;
    std::uint32_t secondTable;
    std::uint32_t flip;  // 0 or 1
    std::uint32_t bits;  // those of the pixels
};

inline BlockFields TakeApart(const std::uint8_t* block)
{
    std::uint32_t word;
    std::uint32_t bits;
    std::memcpy(&word, block, sizeof word);
    std::memcpy(&bits, block + sizeof word, sizeof bits);
    // Both modes are worked out, because pictures mix them and a wrong guess of the processor costs more.
    const std::uint32_t differential = 0U - (word >> 25 & 1);
    const std::uint32_t level = word >> 3 & 0x1F1F1F;
    const std::uint32_t step = word & 0x070707;
    // Deliberate: a sum outside five bits wraps around, and so -8 is +24.
    const std::uint32_t other = (level + step + (step & 0x040404) * 6) & 0x1F1F1F;
    const std::uint32_t fineFirst = level << 3 | (level >> 2 & 0x070707);
    const std::uint32_t fineSecond = other << 3 | (other >> 2 & 0x070707);
    const std::uint32_t coarseFirst = (word >> 4 & 0x0F0F0F) * 17;
    const std::uint32_t coarseSecond = (word & 0x0F0F0F) * 17;
    bits = bits << 16 | bits >> 16;
    return {(fineFirst & differential) | (coarseFirst & ~differential),
            (fineSecond & differential) | (coarseSecond & ~differential),
            word >> 29,
            word >> 26 & 7,
            word >> 24 & 1,
            (bits & 0x00FF00FF) << 8 | (bits >> 8 & 0x00FF00FF)};
}

// Of one table: what is added to the base colour for each code, then what is taken away; 0 for alpha.
struct ModifierBytes {
    std::uint8_t added[16];
    std::uint8_t taken[16];
};

constexpr ModifierBytes BytesOf(std::uint8_t s, std::uint8_t l)
{
    return {{s, s, s, 0, l, l, l, 0, 0, 0, 0, 0, 0, 0, 0, 0},
            {0, 0, 0, 0, 0, 0, 0, 0, s, s, s, 0, l, l, l, 0}};
}

constexpr ModifierBytes kModifierBytes[8] = {BytesOf(2, 8),    BytesOf(5, 17),  BytesOf(9, 29),
                                             BytesOf(13, 42),  BytesOf(18, 60), BytesOf(24, 80),
                                             BytesOf(33, 106), BytesOf(47, 183)};

}  // namespace
