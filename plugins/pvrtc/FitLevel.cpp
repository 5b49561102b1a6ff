#include "plugins/pvrtc/FitLevel.h"

#include <algorithm>

namespace Pvrtc {
namespace {
constexpr std::uint8_t kCounts = 255;
}  // namespace

CFitLevel::CFitLevel(const BlockGrid& grid, const std::uint8_t* pixels, bool hasAlpha,
                     const FitKernels& kernels)
    : m_oGrid(grid), m_bHasAlpha(hasAlpha)
{
    m_oView.blockWidth = grid.blockWidth;
    m_oView.channels = hasAlpha ? 4 : 3;
    m_oView.rows = grid.rows;
    m_oView.pairs = grid.columns / 2;
    m_oView.tiles = (m_oView.pairs + kLanes - 1) / kLanes;
    m_oView.stride = m_oView.tiles * kLanes + 2 * kLinePad;
    const bool padded = grid.PaddedWidth() != grid.width || grid.PaddedHeight() != grid.height;
    m_oView.masked = hasAlpha || padded;

    const std::size_t pixelCount = std::size_t{grid.rows} * 2 * m_oView.tiles * kLanes * grid.BlockPixels();
    const std::size_t elements = std::size_t{grid.rows} * 2 * m_oView.stride;
    m_aTarget.resize(pixelCount * m_oView.channels);
    if (m_oView.masked)
        m_aColorCounts.resize(pixelCount);
    if (hasAlpha) {
        m_aAlphaCounts.resize(pixelCount);
        m_aPunched.resize(elements);
        m_aAlphaMatrix.resize(elements * kMatrixTerms);
    }
    if (grid.blockWidth == 4) {
        m_aCodes.resize(pixelCount / 4);
    } else {
        m_aWeights.resize(elements * 32);
        m_aWanted.resize(elements * 32);
        m_aLengths.resize(elements * 32);
        m_aModes.resize(elements, TwoBitMode::kBoth);
    }
    m_aEndpoints.resize(elements * 8);
    m_aChanges.resize(elements * 8);
    m_aMissing.resize(elements * 8);
    m_aMatrix.resize(elements * kMatrixTerms);
    MakeView();
    Load(pixels, kernels);
    LoadMasks();
}

void CFitLevel::MakeView()
{
    m_oView.target = m_aTarget.data();
    m_oView.colorCounts = m_oView.masked ? m_aColorCounts.data() : nullptr;
    m_oView.alphaCounts = m_bHasAlpha ? m_aAlphaCounts.data() : nullptr;
    m_oView.weights = m_aWeights.data();
    m_oView.codes = m_aCodes.data();
    m_oView.wanted = m_aWanted.data();
    m_oView.lengths = m_aLengths.data();
    m_oView.modes = m_aModes.data();
    m_oView.endpoints = m_aEndpoints.data();
    m_oView.punched = m_bHasAlpha ? m_aPunched.data() : nullptr;
    m_oView.changes = m_aChanges.data();
    m_oView.missing = m_aMissing.data();
    m_oView.matrix = m_aMatrix.data();
    m_oView.alphaMatrix = m_bHasAlpha ? m_aAlphaMatrix.data() : nullptr;
}

void CFitLevel::Load(const std::uint8_t* pixels, const FitKernels& kernels)
{
    // The line from the first pixel of the first cell on; behind its end it goes on at the beginning.
    const std::size_t width = m_oGrid.PaddedWidth();
    std::vector<std::uint8_t> line(m_oView.tiles * kLanes * 2 * m_oGrid.blockWidth * kPixelBytes);
    const std::size_t shift = m_oGrid.blockWidth / 2;
    const std::size_t before = std::min<std::size_t>(shift, m_oGrid.width);
    const std::size_t after = m_oGrid.width - before;
    for (std::uint32_t y = 0; y < m_oGrid.PaddedHeight(); ++y) {
        const std::size_t from = (y + kBlockHeight / 2) & (m_oGrid.PaddedHeight() - 1);
        if (from >= m_oGrid.height)
            continue;
        const std::uint8_t* const source = pixels + from * m_oGrid.width * kPixelBytes;
        std::copy_n(source + before * kPixelBytes, after * kPixelBytes, line.data());
        std::copy_n(source, before * kPixelBytes, line.data() + (width - shift) * kPixelBytes);
        kernels.spreadLine(m_oView, line.data(), y / kBlockHeight, y % kBlockHeight);
    }
}

// Element of the masks that belongs to a pixel of the padded level.
std::size_t CFitLevel::MaskAt(std::size_t x, std::size_t y) const
{
    const std::size_t cellX = (x - m_oGrid.blockWidth / 2) & (m_oGrid.PaddedWidth() - 1);
    const std::size_t cellY = (y - kBlockHeight / 2) & (m_oGrid.PaddedHeight() - 1);
    const std::size_t column = cellX / m_oGrid.blockWidth;
    const std::size_t pair = column / 2;
    const std::size_t tile = m_oView.Tile(cellY / kBlockHeight, column & 1, pair / kLanes);
    const std::size_t pixel = cellY % kBlockHeight * m_oGrid.blockWidth + cellX % m_oGrid.blockWidth;
    return (tile * m_oView.TilePixels() + pixel) * kLanes + pair % kLanes;
}

void CFitLevel::LoadMasks()
{
    if (!m_oView.masked)
        return;
    if (m_oGrid.PaddedWidth() == m_oGrid.width && m_oGrid.PaddedHeight() == m_oGrid.height) {
        std::fill(m_aAlphaCounts.begin(), m_aAlphaCounts.end(), kCounts);
    } else {
        std::vector<std::uint8_t>& inside = m_bHasAlpha ? m_aAlphaCounts : m_aColorCounts;
        for (std::size_t y = 0; y < m_oGrid.height; ++y)
            for (std::size_t x = 0; x < m_oGrid.width; ++x)
                inside[MaskAt(x, y)] = kCounts;
    }
    if (!m_bHasAlpha)
        return;
    const std::size_t plane = m_oView.TilePixels() * kLanes;
    for (std::size_t tile = 0; tile * plane < m_aColorCounts.size(); ++tile) {
        const std::uint8_t* const alpha = m_aTarget.data() + (tile * 4 + 3) * plane;
        for (std::size_t i = 0; i < plane; ++i)
            m_aColorCounts[tile * plane + i] =
                alpha[i] != 0 ? m_aAlphaCounts[tile * plane + i] : std::uint8_t{0};
    }
}

EndpointPair CFitLevel::EndpointsOf(std::uint32_t column, std::uint32_t row) const
{
    const std::size_t line = m_oView.Line(row, column & 1) * 8;
    EndpointPair pair{};
    for (std::size_t e = 0; e < pair.size(); ++e)
        pair[e] = m_aEndpoints[(line + e) * m_oView.stride + kLinePad + column / 2];
    if (!m_bHasAlpha) {
        pair[3] = 15;
        pair[7] = 15;
    }
    return pair;
}

bool CFitLevel::IsPunched(std::uint32_t column, std::uint32_t row) const
{
    return m_bHasAlpha &&
           m_aPunched[m_oView.Line(row, column & 1) * m_oView.stride + kLinePad + column / 2] != 0;
}

std::uint32_t CFitLevel::CodesOf(std::uint32_t column, std::uint32_t row) const
{
    const auto cell = [&](std::uint32_t cellColumn, std::uint32_t cellRow) {
        const std::size_t pair = cellColumn / 2;
        return m_aCodes.data() + m_oView.Tile(cellRow, cellColumn & 1, pair / kLanes) * 4 * kLanes +
               pair % kLanes;
    };
    const std::uint32_t left = (column - 1) & (m_oGrid.columns - 1);
    const std::uint32_t above = (row - 1) & (m_oGrid.rows - 1);
    const std::uint8_t* const cells[2][2] = {{cell(left, above), cell(column, above)},
                                             {cell(left, row), cell(column, row)}};
    std::uint32_t bits = 0;
    for (unsigned y = 0; y < 4; ++y) {
        // The upper half of a block is the lower half of the cells above its middle.
        const std::size_t line = ((y + 2) & 3) * kLanes;
        const std::uint32_t byte =
            static_cast<std::uint32_t>(cells[y / 2][0][line]) >> 4 | (cells[y / 2][1][line] & 15U) << 4;
        bits |= byte << (8 * y);
    }
    return bits;
}

BlockWord CFitLevel::TwoBitWordOf(std::uint32_t column, std::uint32_t row) const
{
    const std::size_t element = kLinePad + column / 2;
    const std::int16_t mode = m_aModes[m_oView.Line(row, column & 1) * m_oView.stride + element];
    const auto weightAt = [&](std::size_t x, std::size_t y) {
        const std::size_t phase = std::size_t{column & 1} * 8 + x;
        return m_aWeights[m_oView.PixelLine(std::size_t{row} * 4 + y, phase) + element];
    };
    BlockWord word{};
    if (mode == TwoBitMode::kPlain) {
        for (unsigned i = 0; i < 32; ++i)
            word.modulation |= (weightAt(i % 8, i / 8) >= 4 ? 1U : 0U) << i;
        return word;
    }
    unsigned shift = 0;
    for (std::size_t y = 0; y < 4; ++y) {
        for (std::size_t x = y & 1; x < 8; x += 2, shift += 2) {
            const int weight = weightAt(x, y);
            const auto code = static_cast<std::uint32_t>((weight >= 3) + (weight >= 5) + (weight >= 8));
            word.modulation |= code << shift;
        }
    }
    // The lower bits of two pixels, which have one bit only, tell the mode.
    constexpr std::uint32_t kOneWay = 1;
    constexpr std::uint32_t kVertical = 1U << 20;
    word.modulation &= ~kOneWay;
    if (mode != TwoBitMode::kBoth)
        word.modulation =
            (word.modulation & ~kVertical) | kOneWay | (mode == TwoBitMode::kVertical ? kVertical : 0);
    word.colors = 1;
    return word;
}

BlockWord CFitLevel::WordOf(std::uint32_t column, std::uint32_t row) const
{
    BlockWord word{};
    if (m_oGrid.blockWidth == 4)
        word = {CodesOf(column, row), IsPunched(column, row) ? 1U : 0U};
    else
        word = TwoBitWordOf(column, row);
    word.colors |= PackEndpoints(EndpointsOf(column, row));
    return word;
}

}  // namespace Pvrtc
