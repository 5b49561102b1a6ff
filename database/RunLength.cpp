#include "database/RunLength.h"

#include <algorithm>
#include <array>

namespace {

constexpr std::size_t kMarkerWord = 4;
constexpr std::size_t kSmallestUnit = 4;
constexpr std::size_t kLongestRun = 255;
constexpr std::size_t kByteValues = 256;

// The smallest byte from 1 on that begins no unit; 0 when all do.
std::size_t FreeMarker(std::span<const std::byte> raster, std::size_t unit)
{
    std::array<bool, kByteValues> begins{};
    for (std::size_t at = 0; at < raster.size(); at += unit)
        begins[std::to_integer<std::size_t>(raster[at])] = true;
    const auto* const first = std::find(begins.begin() + 1, begins.end(), false);
    return first != begins.end() ? static_cast<std::size_t>(first - begins.begin()) : 0;
}

// Whole units equal to the one at `at`, itself included.
std::size_t RunLengthAt(std::span<const std::byte> raster, std::size_t at, std::size_t unit)
{
    const auto first = raster.subspan(at, unit);
    std::size_t run = 1;
    while (run < kLongestRun && at + (run + 1) * unit <= raster.size() &&
           std::ranges::equal(first, raster.subspan(at + run * unit, unit)))
        ++run;
    return run;
}

}  // namespace

std::optional<std::vector<std::byte>> RleEncode(std::span<const std::byte> raster, std::uint32_t unitBytes)
{
    const std::size_t unit = std::max<std::size_t>(unitBytes, kSmallestUnit);
    const std::size_t marker = FreeMarker(raster, unit);
    if (marker == 0)
        return std::nullopt;
    const std::size_t capacity = raster.size() + kMarkerWord;
    std::vector<std::byte> frame = {static_cast<std::byte>(marker), std::byte{0}, std::byte{0}, std::byte{0}};
    bool anyRun = false;
    std::size_t at = 0;
    while (at < raster.size() && frame.size() < capacity) {
        // The last unit may be a part of one; it stands for itself.
        const std::size_t length = std::min(unit, raster.size() - at);
        const std::size_t run = length == unit ? RunLengthAt(raster, at, unit) : 1;
        if (run > 1) {
            frame.push_back(static_cast<std::byte>(marker));
            frame.push_back(static_cast<std::byte>(run));
            anyRun = true;
        }
        const auto first = raster.begin() + static_cast<std::ptrdiff_t>(at);
        frame.insert(frame.end(), first, first + static_cast<std::ptrdiff_t>(length));
        at += run * length;
    }
    if (!anyRun || at < raster.size() || frame.size() >= capacity)
        return std::nullopt;
    return frame;
}

void RleDecode(std::span<const std::byte> frame, std::uint32_t unitBytes, std::span<std::byte> out)
{
    if (frame.size() <= kMarkerWord)
        return;
    const std::size_t unit = std::max<std::size_t>(unitBytes, kSmallestUnit);
    const std::byte marker = frame.front();
    auto coded = frame.subspan(kMarkerWord);
    while (!coded.empty() && !out.empty()) {
        std::size_t count = 1;
        if (coded.front() == marker) {
            if (coded.size() < 2)
                return;
            count = std::to_integer<std::size_t>(coded[1]);
            coded = coded.subspan(2);
        }
        const auto piece = coded.first(std::min(unit, coded.size()));
        for (; count != 0; --count) {
            if (piece.size() > out.size())
                return;
            std::copy(piece.begin(), piece.end(), out.begin());
            out = out.subspan(piece.size());
        }
        coded = coded.subspan(piece.size());
    }
}
