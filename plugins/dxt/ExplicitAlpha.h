#pragma once

// The alpha part of DXT3 blocks: four bits a pixel. Included by the kernels of each instruction set.

namespace {

// One more than the sum, times 257 / 65536, divides exactly by 255.
inline CInts NearestFourBits(CInts alpha)
{
    return ShiftRightUnsigned<16>((alpha * CInts::All(15) + CInts::All(128)) * CInts::All(257));
}

inline AlphaWords ExplicitAlphas(const CInts (&pixels)[kPixels])
{
    AlphaWords words{CInts::All(0), CInts::All(0), CInts::All(0)};
    constexpr int kHalf = kPixels / 2;
    for (int i = kHalf - 1; i >= 0; --i) {
        words.first = ShiftLeft<4>(words.first) | NearestFourBits(ShiftRightUnsigned<24>(pixels[i]));
        words.second =
            ShiftLeft<4>(words.second) | NearestFourBits(ShiftRightUnsigned<24>(pixels[i + kHalf]));
    }
    return words;
}

}  // namespace
