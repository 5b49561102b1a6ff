#pragma once

// Loops that feed the kernels: rows of blocks in batches of as many as there are lanes. Included by the
// kernels of each instruction set.

namespace {

constexpr std::size_t kRows = 4;
constexpr std::size_t kBlockRowBytes = 16;
constexpr std::size_t kBatch = kLanes;

// The pixels of a batch as they are, pixels[y * 4 + x].
inline void LoadPixels(const std::uint8_t* rows, std::size_t stride, CInts (&pixels)[kPixels])
{
    for (std::size_t y = 0; y < kRows; ++y) {
        CInts row[4];
        LoadRow(rows + y * stride, row);
        for (std::size_t x = 0; x < 4; ++x)
            pixels[y * 4 + x] = row[x];
    }
}

// `encode(rows, stride, out)` makes kBatch blocks of Bytes bytes.
template <std::size_t Bytes, typename Encode>
inline void EncodeBatches(const std::uint8_t* rows, std::size_t stride, std::size_t count, std::uint8_t* out,
                          Encode encode)
{
    for (; count >= kBatch; count -= kBatch, rows += kBatch * kBlockRowBytes, out += kBatch * Bytes)
        encode(rows, stride, out);
    if (count == 0)
        return;
    // The last blocks, and copies of the very last one in the lanes that are left.
    std::uint8_t pixels[kRows * kBatch * kBlockRowBytes];
    std::uint8_t blocks[kBatch * Bytes];
    for (std::size_t y = 0; y < kRows; ++y) {
        std::uint8_t* const to = pixels + y * kBatch * kBlockRowBytes;
        std::memcpy(to, rows + y * stride, count * kBlockRowBytes);
        for (std::size_t block = count; block < kBatch; ++block)
            std::memcpy(to + block * kBlockRowBytes, to + (count - 1) * kBlockRowBytes, kBlockRowBytes);
    }
    encode(pixels, kBatch * kBlockRowBytes, blocks);
    std::memcpy(out, blocks, count * Bytes);
}

}  // namespace
