#include "image/MD5.h"

#include <algorithm>
#include <bit>

#include "base/Format.h"

namespace {

constexpr std::size_t kBlock = 64;
/// Where the bit length stands in the last block.
constexpr std::size_t kLengthPlace = 56;

using State = std::array<std::uint32_t, 4>;
using Block = std::span<const std::byte, kBlock>;

constexpr State kInitialState = {0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476};

/// How far each step of a round turns its sum; the four repeat.
constexpr std::uint8_t kTurns[4][4] = {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}};

/// The integer part of 4294967296 * |sin(step + 1)|, as RFC 1321 lists them.
constexpr std::uint32_t kSines[64] = {
    0xD76AA478, 0xE8C7B756, 0x242070DB, 0xC1BDCEEE, 0xF57C0FAF, 0x4787C62A, 0xA8304613, 0xFD469501,
    0x698098D8, 0x8B44F7AF, 0xFFFF5BB1, 0x895CD7BE, 0x6B901122, 0xFD987193, 0xA679438E, 0x49B40821,
    0xF61E2562, 0xC040B340, 0x265E5A51, 0xE9B6C7AA, 0xD62F105D, 0x02441453, 0xD8A1E681, 0xE7D3FBC8,
    0x21E1CDE6, 0xC33707D6, 0xF4D50D87, 0x455A14ED, 0xA9E3E905, 0xFCEFA3F8, 0x676F02D9, 0x8D2A4C8A,
    0xFFFA3942, 0x8771F681, 0x6D9D6122, 0xFDE5380C, 0xA4BEEA44, 0x4BDECFA9, 0xF6BB4B60, 0xBEBFBC70,
    0x289B7EC6, 0xEAA127FA, 0xD4EF3085, 0x04881D05, 0xD9D4D039, 0xE6DB99E5, 0x1FA27CF8, 0xC4AC5665,
    0xF4292244, 0x432AFF97, 0xAB9423A7, 0xFC93A039, 0x655B59C3, 0x8F0CCC92, 0xFFEFF47D, 0x85845DD1,
    0x6FA87E4F, 0xFE2CE6E0, 0xA3014314, 0x4E0811A1, 0xF7537E82, 0xBD3AF235, 0x2AD7D2BB, 0xEB86D391,
};

std::uint32_t WordOf(Block block, std::size_t word)
{
    const std::byte* const bytes = block.data() + word * 4;
    return std::to_integer<std::uint32_t>(bytes[0]) | std::to_integer<std::uint32_t>(bytes[1]) << 8 |
           std::to_integer<std::uint32_t>(bytes[2]) << 16 | std::to_integer<std::uint32_t>(bytes[3]) << 24;
}

using Words = std::array<std::uint32_t, 16>;

/// Sixteen steps. Step i takes the word Factor * i + First of the block; `mix` is the round's function of B,
/// C, D.
template <std::size_t Round, std::size_t Factor, std::size_t First, class Mix>
void AddRound(State& state, const Words& words, Mix mix)
{
    auto [a, b, c, d] = state;
    const auto step = [&](std::uint32_t& target, std::uint32_t x, std::uint32_t y, std::uint32_t z,
                          std::size_t i) {
        const std::uint32_t sum =
            target + mix(x, y, z) + words[(Factor * i + First) % 16] + kSines[Round * 16 + i];
        target = x + std::rotl(sum, kTurns[Round][i % 4]);
    };
    // The four words change places from step to step; written out, none has to be moved.
    for (std::size_t i = 0; i < 16; i += 4) {
        step(a, b, c, d, i);
        step(d, a, b, c, i + 1);
        step(c, d, a, b, i + 2);
        step(b, c, d, a, i + 3);
    }
    state = {a, b, c, d};
}

void AddBlock(State& state, Block block)
{
    Words words{};
    for (std::size_t i = 0; i < words.size(); ++i)
        words[i] = WordOf(block, i);
    using U32 = std::uint32_t;
    State s = state;
    AddRound<0, 1, 0>(s, words, [](U32 b, U32 c, U32 d) { return (b & c) | (~b & d); });
    AddRound<1, 5, 1>(s, words, [](U32 b, U32 c, U32 d) { return (b & d) | (c & ~d); });
    AddRound<2, 3, 5>(s, words, [](U32 b, U32 c, U32 d) { return b ^ c ^ d; });
    AddRound<3, 7, 0>(s, words, [](U32 b, U32 c, U32 d) { return c ^ (b | ~d); });
    for (std::size_t i = 0; i < state.size(); ++i)
        state[i] += s[i];
}

std::uint32_t SwapBytes(std::uint32_t word)
{
    return word >> 24 | (word >> 8 & 0xFF00U) | (word << 8 & 0xFF0000U) | word << 24;
}

}  // namespace

MD5Digest ComputeMD5(std::span<const std::byte> data)
{
    State state = kInitialState;
    const std::uint64_t bits = std::uint64_t{data.size()} * 8;
    while (data.size() >= kBlock) {
        AddBlock(state, data.first<kBlock>());
        data = data.subspan(kBlock);
    }

    // The rest, 0x80, zeros, and the length at the end of the block in which it still has room.
    std::array<std::byte, kBlock * 2> tail{};
    std::copy(data.begin(), data.end(), tail.begin());
    tail[data.size()] = std::byte{0x80};
    const std::size_t lengthPlace = data.size() < kLengthPlace ? kLengthPlace : kBlock + kLengthPlace;
    for (std::size_t i = 0; i < 8; ++i)
        tail[lengthPlace + i] = static_cast<std::byte>(bits >> (8 * i) & 0xFF);
    AddBlock(state, std::span(tail).first<kBlock>());
    if (lengthPlace > kBlock)
        AddBlock(state, std::span(tail).last<kBlock>());

    MD5Digest digest;
    std::transform(state.begin(), state.end(), digest.words.begin(), SwapBytes);
    return digest;
}

std::wstring MD5ToText(const MD5Digest& digest)
{
    const auto& words = digest.words;
    return Format(L"%08x%08x%08x%08x", words[0], words[1], words[2], words[3]);
}
