#include "plugins/pvrtc/FitLevel.h"

#include <algorithm>
#include <vector>

namespace Pvrtc {
namespace {
constexpr std::size_t kAlignment = 64;

// Hands out parts of one piece of memory. Without any, it only counts what is needed.
class CMemory {
public:
    explicit CMemory(std::byte* start) : m_pStart(start) {}

    template <typename Element>
    void Take(Element*& out, std::size_t count)
    {
        out = m_pStart == nullptr ? nullptr : reinterpret_cast<Element*>(m_pStart + m_nTaken);
        m_nTaken += (count * sizeof(Element) + kAlignment - 1) / kAlignment * kAlignment;
    }

    std::size_t Taken() const { return m_nTaken; }

private:
    std::byte* m_pStart;
    std::size_t m_nTaken = 0;
};
}  // namespace

CFitLevel::CFitLevel(const BlockGrid& grid, const std::uint8_t* pixels, bool hasAlpha)
    : m_oGrid(grid),
      m_pPixels(pixels),
      m_bHasAlpha(hasAlpha),
      m_bPadded(grid.PaddedWidth() != grid.width || grid.PaddedHeight() != grid.height)
{
    m_oView.blockWidth = grid.blockWidth;
    m_oView.channels = hasAlpha ? 4 : 3;
    m_oView.rows = grid.rows;
    m_oView.pairs = grid.columns / 2;
    m_oView.tiles = (m_oView.pairs + kLanes - 1) / kLanes;
    m_oView.stride = m_oView.tiles * kLanes + 2 * kLinePad;
    m_oView.masked = hasAlpha || m_bPadded;
    TakeMemory();
}

// One piece, because an allocator that gets it back whole keeps it for the next level.
void CFitLevel::TakeMemory()
{
    const std::size_t pixelCount =
        std::size_t{m_oGrid.rows} * 2 * m_oView.tiles * kLanes * m_oGrid.BlockPixels();
    const std::size_t elements = std::size_t{m_oGrid.rows} * 2 * m_oView.stride;
    const bool fourBits = m_oGrid.blockWidth == 4;
    const std::size_t twoBitElements = fourBits ? 0 : elements * 32;
    const std::size_t alphaElements = m_bHasAlpha ? elements : 0;
    const auto takeAll = [&](CMemory memory) {
        memory.Take(m_oView.changes, elements * 8);
        memory.Take(m_oView.target, pixelCount * m_oView.channels);
        memory.Take(m_pColorCounts, m_oView.masked ? pixelCount : 0);
        memory.Take(m_pAlphaCounts, m_bHasAlpha ? pixelCount : 0);
        memory.Take(m_oView.weights, twoBitElements);
        memory.Take(m_oView.wanted, twoBitElements);
        memory.Take(m_oView.lengths, twoBitElements);
        memory.Take(m_oView.modes, fourBits ? 0 : elements);
        memory.Take(m_oView.codes, fourBits ? elements * 4 : 0);
        memory.Take(m_oView.words, elements * 4);
        memory.Take(m_oView.endpoints, elements * 8);
        memory.Take(m_oView.missing, elements * 8);
        memory.Take(m_oView.matrix, elements * kMatrixTerms);
        memory.Take(m_oView.punched, alphaElements);
        memory.Take(m_oView.alphaMatrix, alphaElements * kMatrixTerms);
        return memory.Taken();
    };
    const std::size_t bytes = takeAll(CMemory(nullptr));
    m_pMemory = std::make_unique_for_overwrite<std::byte[]>(bytes);
    takeAll(CMemory(m_pMemory.get()));
    // Where lines do not fill their vectors, kernels compute with what lies behind them, to no effect.
    if (m_oView.pairs < kLanes || m_bPadded)
        std::fill_n(m_pMemory.get(), bytes, std::byte{0});
    std::fill_n(m_oView.changes, elements * 8, 0.0F);
    std::fill_n(m_oView.modes, fourBits ? 0 : elements, TwoBitMode::kBoth);
    std::fill_n(m_oView.punched, alphaElements, std::int16_t{0});
    m_oView.colorCounts = m_oView.masked ? m_pColorCounts : nullptr;
    m_oView.alphaCounts = m_bHasAlpha ? m_pAlphaCounts : nullptr;
    if (!m_bHasAlpha)
        m_oView.punched = nullptr;
    if (!m_bHasAlpha)
        m_oView.alphaMatrix = nullptr;
}

void CFitLevel::Load(std::uint32_t first, std::uint32_t end, const FitKernels& kernels)
{
    // The line from the first pixel of the first cell on; behind its end it goes on at the beginning.
    const std::size_t width = m_oGrid.PaddedWidth();
    std::vector<std::uint8_t> line(m_oView.tiles * kLanes * 2 * m_oGrid.blockWidth * kPixelBytes);
    const std::size_t shift = m_oGrid.blockWidth / 2;
    const std::size_t before = std::min<std::size_t>(shift, m_oGrid.width);
    const std::size_t after = m_oGrid.width - before;
    for (std::uint32_t row = first; row < end; ++row) {
        for (std::uint32_t y = 0; y < kBlockHeight; ++y) {
            const std::size_t from =
                (std::size_t{row} * kBlockHeight + y + kBlockHeight / 2) & (m_oGrid.PaddedHeight() - 1);
            if (from >= m_oGrid.height)
                continue;
            const std::uint8_t* const source = m_pPixels + from * m_oGrid.width * kPixelBytes;
            std::copy_n(source + before * kPixelBytes, after * kPixelBytes, line.data());
            std::copy_n(source, before * kPixelBytes, line.data() + (width - shift) * kPixelBytes);
            kernels.spreadLine(m_oView, line.data(), row, y);
        }
        if (m_oView.masked)
            LoadMasks(row);
    }
}

// What counts in a row of cells.
void CFitLevel::LoadMasks(std::uint32_t row)
{
    const std::size_t plane = m_oView.TilePixels() * kLanes;
    const std::size_t start = m_oView.Tile(row, 0, 0) * plane;
    const std::size_t count = m_oView.tiles * 2 * plane;
    std::uint8_t* const inside = m_bHasAlpha ? m_pAlphaCounts : m_pColorCounts;
    if (!m_bPadded) {
        std::fill_n(inside + start, count, kVisible);
    } else {
        const std::size_t shift = m_oGrid.blockWidth / 2;
        for (std::size_t i = 0; i < m_oGrid.PaddedWidth() * kBlockHeight; ++i) {
            const std::size_t cellX = i % m_oGrid.PaddedWidth();
            const std::size_t cellY = i / m_oGrid.PaddedWidth();
            const std::size_t x = (cellX + shift) & (m_oGrid.PaddedWidth() - 1);
            const std::size_t y =
                (row * kBlockHeight + cellY + kBlockHeight / 2) & (m_oGrid.PaddedHeight() - 1);
            const std::size_t column = cellX / m_oGrid.blockWidth;
            const std::size_t pixel = cellY * m_oGrid.blockWidth + cellX % m_oGrid.blockWidth;
            const std::size_t tile = m_oView.Tile(row, column & 1, column / 2 / kLanes);
            inside[tile * plane + pixel * kLanes + column / 2 % kLanes] =
                x < m_oGrid.width && y < m_oGrid.height ? kVisible : std::uint8_t{0};
        }
    }
    if (!m_bHasAlpha)
        return;
    for (std::size_t at = start; at < start + count; at += plane) {
        const std::uint8_t* const alpha = m_oView.target + at * 4 + 3 * plane;
        for (std::size_t i = 0; i < plane; ++i)
            m_pColorCounts[at + i] =
                static_cast<std::uint8_t>((alpha[i] != 0 ? kVisible : kHidden) & inside[at + i]);
    }
}

void CFitLevel::Write(std::uint32_t first, std::uint32_t end, std::uint8_t* destination) const
{
    // The bits of the row and of the column do not mix in the place of a block.
    std::vector<std::size_t> places(m_oGrid.columns);
    for (std::uint32_t column = 0; column < m_oGrid.columns; ++column)
        places[column] = StoredIndex(m_oGrid, column, 0) * kBlockBytes;
    for (std::uint32_t row = first; row < end; ++row) {
        std::uint8_t* const start = destination + StoredIndex(m_oGrid, 0, row) * kBlockBytes;
        for (std::uint32_t column = 0; column < m_oGrid.columns; ++column) {
            const std::int16_t* const words =
                m_oView.words + m_oView.Line(row, column & 1) * 4 * m_oView.stride + kLinePad + column / 2;
            const auto pair = [&](std::size_t low) {
                const auto half = [&](std::size_t i) {
                    return std::uint32_t{static_cast<std::uint16_t>(words[i * m_oView.stride])};
                };
                return half(low) | half(low + 1) << 16;
            };
            WriteBlock(start + places[column], {pair(0), pair(2)});
        }
    }
}

}  // namespace Pvrtc
