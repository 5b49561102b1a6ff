#include "database/RunLength.h"

#include <algorithm>
#include <array>
#include <cstring>

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
    const std::byte* const first = raster.data() + at;
    // Most units differ in their first byte already.
    const auto isRepeatedAt = [&](std::size_t next) {
        return next + unit <= raster.size() && raster[next] == *first &&
               std::memcmp(raster.data() + next, first, unit) == 0;
    };
    std::size_t run = 1;
    for (std::size_t next = at + unit; run < kLongestRun && isRepeatedAt(next); next += unit)
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
    frame.reserve(capacity);
    const auto append = [&](std::size_t from, std::size_t to) {
        frame.insert(frame.end(), raster.begin() + static_cast<std::ptrdiff_t>(from),
                     raster.begin() + static_cast<std::ptrdiff_t>(to));
    };
    bool anyRun = false;
    std::size_t plain = 0;  // where the units begin that stand for themselves and are not in the frame yet
    // The last unit may be a part of one; it stands for itself.
    for (std::size_t at = 0; at + unit <= raster.size();) {
        const std::size_t run = RunLengthAt(raster, at, unit);
        if (run > 1) {
            append(plain, at);
            frame.push_back(static_cast<std::byte>(marker));
            frame.push_back(static_cast<std::byte>(run));
            append(at, at + unit);
            plain = at + run * unit;
            anyRun = true;
        }
        at += run * unit;
    }
    append(plain, raster.size());
    if (!anyRun || frame.size() >= capacity)
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
