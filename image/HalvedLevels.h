#pragma once

// The levels below a picture whose sides are powers of two, each half of the one before, as ScaleBitmap makes
// them of the whole picture. The exact sums of every level come from those of the level before, so that a
// chain costs little more than one look at the picture. It owns its sums and borrows the picture.

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

class CHalvedLevels {
public:
    /// Four bytes a pixel in any order of channels; both sides are powers of two. The pixels must stay until
    /// the first call of Next.
    CHalvedLevels(std::span<const std::byte> pixels, std::uint32_t width, std::uint32_t height);

    /// The pixels of the next level, a single pixel at last; not to be called after that one. Throws
    /// std::bad_alloc.
    std::vector<std::byte> Next();

private:
    std::span<const std::byte> m_aPixels;
    std::uint32_t m_nWidth;
    std::uint32_t m_nHeight;
    unsigned m_nShift = 0;  // so many bits of a sum count source pixels
    // Four sums a pixel: narrow ones as long as they hold the sums, wide ones afterwards.
    std::vector<std::uint16_t> m_aNarrow;
    std::vector<std::uint64_t> m_aWide;
};
