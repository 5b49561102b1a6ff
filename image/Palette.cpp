#include "image/Palette.h"

#include <algorithm>
#include <map>
#include <unordered_map>

namespace {

constexpr std::size_t kMostColours = 256;
constexpr std::uint8_t kOpaqueFrom = 128;
// Colours that agree in the upper six bits of each channel are counted together.
constexpr unsigned kCellBits = 6;
constexpr std::size_t kCells = std::size_t{1} << (3 * kCellBits);

using Channels = std::array<std::uint32_t, 3>;  // red, green, blue

/// All pixels of one cell.
struct Cell {
    std::uint64_t count = 0;
    std::array<std::uint64_t, 3> sum{};
    Channels Mean() const
    {
        Channels mean{};
        for (std::size_t i = 0; i < mean.size(); ++i)
            mean[i] = static_cast<std::uint32_t>((sum[i] + count / 2) / count);
        return mean;
    }
};

/// A range of the list of used cells, and how much it is worth to divide it.
struct Box {
    std::size_t begin = 0;
    std::size_t end = 0;
    std::size_t channel = 0;   // the one with the widest range
    std::uint64_t weight = 0;  // that range, times the pixels; 0 when there is nothing to divide
};

std::size_t CellOf(const std::uint8_t* pixel)
{
    constexpr unsigned kDrop = 8 - kCellBits;
    return std::size_t{pixel[2]} >> kDrop << (2 * kCellBits) | std::size_t{pixel[1]} >> kDrop << kCellBits |
           std::size_t{pixel[0]} >> kDrop;
}

std::uint32_t Key(const std::uint8_t* pixel)
{
    return static_cast<std::uint32_t>(pixel[2] << 16 | pixel[1] << 8 | pixel[0]);
}

bool IsOpaque(const std::uint8_t* pixel)
{
    return pixel[3] >= kOpaqueFrom;
}

PaletteColour ToColour(const Channels& channels)
{
    return {static_cast<std::uint8_t>(channels[0]), static_cast<std::uint8_t>(channels[1]),
            static_cast<std::uint8_t>(channels[2])};
}

/// The colours of the opaque pixels in ascending order; nothing when they are more than `most`.
std::optional<std::map<std::uint32_t, std::uint8_t>> FewColours(const CBitmap& bitmap, std::size_t most)
{
    std::map<std::uint32_t, std::uint8_t> colours;
    const auto pixels = bitmap.Pixels();
    std::uint32_t last = 0xFFFFFFFF;
    for (std::size_t i = 0; i < pixels.size(); i += 4) {
        const std::uint8_t* const pixel = &pixels[i];
        if (!IsOpaque(pixel) || Key(pixel) == last)
            continue;
        last = Key(pixel);
        colours.emplace(last, std::uint8_t{0});
        if (colours.size() > most)
            return std::nullopt;
    }
    return colours;
}

class CMedianCut {
public:
    explicit CMedianCut(const CBitmap& bitmap)
    {
        std::vector<Cell> cells(kCells);
        const auto pixels = bitmap.Pixels();
        for (std::size_t i = 0; i < pixels.size(); i += 4) {
            const std::uint8_t* const pixel = &pixels[i];
            if (!IsOpaque(pixel))
                continue;
            Cell& cell = cells[CellOf(pixel)];
            ++cell.count;
            for (std::size_t channel = 0; channel < 3; ++channel)
                cell.sum[channel] += pixel[2 - channel];
        }
        std::copy_if(cells.begin(), cells.end(), std::back_inserter(m_aCells),
                     [](const Cell& cell) { return cell.count != 0; });
    }

    std::vector<PaletteColour> Palette(std::size_t most)
    {
        std::vector<Box> boxes = {Measured(0, m_aCells.size())};
        while (boxes.size() < most) {
            const auto widest = std::max_element(
                boxes.begin(), boxes.end(), [](const Box& a, const Box& b) { return a.weight < b.weight; });
            if (widest->weight == 0)
                break;
            const Box box = *widest;
            const std::size_t middle = Divide(box);
            *widest = Measured(box.begin, middle);
            boxes.push_back(Measured(middle, box.end));
        }
        std::vector<PaletteColour> palette;
        palette.reserve(boxes.size());
        for (const Box& box : boxes)
            palette.push_back(ToColour(Sum(box).Mean()));
        return palette;
    }

private:
    Cell Sum(const Box& box) const
    {
        Cell sum;
        for (std::size_t i = box.begin; i < box.end; ++i) {
            sum.count += m_aCells[i].count;
            for (std::size_t channel = 0; channel < 3; ++channel)
                sum.sum[channel] += m_aCells[i].sum[channel];
        }
        return sum;
    }

    Box Measured(std::size_t begin, std::size_t end) const
    {
        Channels low = {255, 255, 255};
        Channels high = {0, 0, 0};
        Box box{begin, end, 0, 0};
        for (std::size_t i = begin; i < end; ++i) {
            const Channels mean = m_aCells[i].Mean();
            for (std::size_t channel = 0; channel < 3; ++channel) {
                low[channel] = std::min(low[channel], mean[channel]);
                high[channel] = std::max(high[channel], mean[channel]);
            }
        }
        for (std::size_t channel = 1; channel < 3; ++channel)
            if (high[channel] - low[channel] > high[box.channel] - low[box.channel])
                box.channel = channel;
        if (end - begin > 1)
            box.weight = Sum(box).count * std::max(high[box.channel] - low[box.channel], 1U);
        return box;
    }

    /// Orders the box along its channel and gives the place where half of its pixels have passed. Both sides
    /// get at least one cell.
    std::size_t Divide(const Box& box)
    {
        const auto at = [this](std::size_t i) { return m_aCells.begin() + static_cast<std::ptrdiff_t>(i); };
        // A stable order, so that every standard library divides alike.
        std::stable_sort(at(box.begin), at(box.end), [&box](const Cell& a, const Cell& b) {
            return a.Mean()[box.channel] < b.Mean()[box.channel];
        });
        const std::uint64_t half = Sum(box).count / 2;
        std::uint64_t passed = 0;
        std::size_t middle = box.begin;
        while (middle + 1 < box.end && passed < half)
            passed += m_aCells[middle++].count;
        return std::max(middle, box.begin + 1);
    }

    std::vector<Cell> m_aCells;
};

std::uint8_t Nearest(const std::vector<PaletteColour>& palette, const std::uint8_t* pixel)
{
    std::size_t best = 0;
    int bestDistance = 1 << 30;
    for (std::size_t i = 0; i < palette.size(); ++i) {
        const int red = palette[i].red - pixel[2];
        const int green = palette[i].green - pixel[1];
        const int blue = palette[i].blue - pixel[0];
        const int distance = red * red + green * green + blue * blue;
        if (distance < bestDistance) {
            bestDistance = distance;
            best = i;
        }
    }
    return static_cast<std::uint8_t>(best);
}

std::vector<PaletteColour> Numbered(std::map<std::uint32_t, std::uint8_t>& colours)
{
    std::vector<PaletteColour> palette;
    for (auto& [key, index] : colours) {
        index = static_cast<std::uint8_t>(palette.size());
        palette.push_back(ToColour({key >> 16, key >> 8 & 0xFF, key & 0xFF}));
    }
    return palette;
}

/// `indexOf` is asked for the opaque pixels.
template <class IndexOf>
void FillIndices(const CBitmap& bitmap, PalettedBitmap& out, IndexOf indexOf)
{
    const auto pixels = bitmap.Pixels();
    out.indices.reserve(pixels.size() / 4);
    for (std::size_t i = 0; i < pixels.size(); i += 4)
        out.indices.push_back(IsOpaque(&pixels[i]) ? indexOf(&pixels[i]) : *out.transparent);
}

}  // namespace

PalettedBitmap ReduceToPalette(const CBitmap& bitmap)
{
    const auto pixels = bitmap.Pixels();
    bool hasHoles = false;
    for (std::size_t i = 0; i < pixels.size() && !hasHoles; i += 4)
        hasHoles = !IsOpaque(&pixels[i]);
    const std::size_t most = kMostColours - (hasHoles ? 1 : 0);

    PalettedBitmap out;
    auto few = FewColours(bitmap, most);
    out.palette = few ? Numbered(*few) : CMedianCut(bitmap).Palette(most);
    const std::vector<PaletteColour> colours = out.palette;
    if (hasHoles) {
        out.transparent = static_cast<std::uint8_t>(out.palette.size());
        out.palette.push_back({});
    }
    std::unordered_map<std::uint32_t, std::uint8_t> known;
    FillIndices(bitmap, out, [&](const std::uint8_t* pixel) {
        if (few)
            return few->at(Key(pixel));
        const auto [place, isNew] = known.try_emplace(Key(pixel));
        if (isNew)
            place->second = Nearest(colours, pixel);
        return place->second;
    });
    return out;
}
