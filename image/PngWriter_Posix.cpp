#include <algorithm>
#include <array>
#include <cstdint>
#include <libdeflate.h>
#include <memory>
#include <new>

#include "image/Codecs_Posix.h"
#include "image/PixelOrder.h"

// libpng spends most of its time on trying all filters for every row and on a slow compressor. Here one look
// at a strip of the picture decides whether filters are worth anything, and libdeflate compresses the whole
// in one go.

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kPixelBytes = 4;
/// Smaller files than libpng's default level makes of block-compressed textures; higher levels gain little
/// more.
constexpr int kLevel = 2;
/// Tells as well as any other level which of two ways is smaller.
constexpr int kTrialLevel = 1;
constexpr std::uint32_t kTrialParts = 8;
constexpr std::uint32_t kSmallestTrial = 16;
constexpr std::size_t kLongestChunk = 0x7FFFFFFF;

constexpr std::array<std::uint8_t, 8> kSignature = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
constexpr std::uint8_t kColoursWithAlpha = 6;
constexpr std::uint8_t kToLeft = 1;
constexpr std::uint8_t kToAbove = 2;

/// zlib streams of one level. Throws std::bad_alloc.
class CCompressor {
public:
    explicit CCompressor(int level) : m_pCompressor(libdeflate_alloc_compressor(level))
    {
        if (!m_pCompressor)
            throw std::bad_alloc();
    }

    Bytes Compress(std::span<const std::uint8_t> bytes) const
    {
        Bytes out(libdeflate_zlib_compress_bound(m_pCompressor.get(), bytes.size()));
        out.resize(libdeflate_zlib_compress(m_pCompressor.get(), bytes.data(), bytes.size(), out.data(),
                                            out.size()));
        return out;
    }

private:
    struct Deleter {
        void operator()(libdeflate_compressor* compressor) const { libdeflate_free_compressor(compressor); }
    };
    std::unique_ptr<libdeflate_compressor, Deleter> m_pCompressor;
};

/// The rows as the format wants them without a filter: its number, then R G B A.
Bytes PlainRows(const CBitmap& bitmap)
{
    const std::size_t rowBytes = std::size_t{bitmap.Width()} * kPixelBytes + 1;
    Bytes rows(rowBytes * bitmap.Height());
    for (std::uint32_t y = 0; y < bitmap.Height(); ++y)
        SwapBlueAndRed(std::as_bytes(bitmap.Row(y)),
                       std::as_writable_bytes(std::span(rows).subspan(y * rowBytes + 1, rowBytes - 1)));
    return rows;
}

/// How much is left of a row: the sum of its bytes, taken as signed numbers without their signs.
std::uint32_t Remainder(const std::uint8_t* row, std::size_t count)
{
    std::uint32_t sum = 0;
    for (std::size_t i = 0; i < count; ++i)
        sum += std::min(row[i], static_cast<std::uint8_t>(-row[i]));
    return sum;
}

/// Plain rows as differences, each row to its left or to the row above, whichever leaves less. The first row
/// has zeros above it.
Bytes FilteredRows(std::span<const std::uint8_t> plain, std::size_t rowBytes)
{
    const std::size_t count = rowBytes - 1;
    Bytes rows(plain.size());
    Bytes toLeft(count);
    const Bytes zeros(count);
    const std::uint8_t* above = zeros.data();
    for (std::size_t start = 0; start < plain.size(); start += rowBytes) {
        const std::uint8_t* const row = plain.data() + start + 1;
        std::uint8_t* const toAbove = rows.data() + start + 1;
        for (std::size_t i = 0; i < count; ++i)
            toAbove[i] = static_cast<std::uint8_t>(row[i] - above[i]);
        std::copy_n(row, kPixelBytes, toLeft.data());
        for (std::size_t i = kPixelBytes; i < count; ++i)
            toLeft[i] = static_cast<std::uint8_t>(row[i] - row[i - kPixelBytes]);
        const bool isLeft = Remainder(toLeft.data(), count) < Remainder(toAbove, count);
        rows[start] = isLeft ? kToLeft : kToAbove;
        if (isLeft)
            std::copy(toLeft.begin(), toLeft.end(), toAbove);
        above = row;
    }
    return rows;
}

/// Pictures that were block-compressed repeat few colours exactly and are smallest as they are; what was
/// drawn or photographed gains from differences. A strip from the middle tells.
bool GainsFromFilters(std::span<const std::uint8_t> plain, std::size_t rowBytes)
{
    const std::size_t rows = plain.size() / rowBytes;
    const std::size_t tried =
        std::min<std::size_t>(rows, std::max<std::size_t>(rows / kTrialParts, kSmallestTrial));
    const auto strip = plain.subspan((rows - tried) / 2 * rowBytes, tried * rowBytes);
    const CCompressor compressor(kTrialLevel);
    return compressor.Compress(FilteredRows(strip, rowBytes)).size() < compressor.Compress(strip).size();
}

Bytes CompressedRows(const CBitmap& bitmap)
{
    const std::size_t rowBytes = std::size_t{bitmap.Width()} * kPixelBytes + 1;
    Bytes rows = PlainRows(bitmap);
    if (GainsFromFilters(rows, rowBytes))
        rows = FilteredRows(rows, rowBytes);
    return CCompressor(kLevel).Compress(rows);
}

class CPngFile {
public:
    CPngFile() { Append(kSignature); }

    /// length, type, data, and a checksum of type and data.
    void AddChunk(const char* type, std::span<const std::uint8_t> data)
    {
        AppendNumber(static_cast<std::uint32_t>(data.size()));
        const std::size_t start = m_aBytes.size();
        for (std::size_t i = 0; i < 4; ++i)
            m_aBytes.push_back(static_cast<std::byte>(type[i]));
        Append(data);
        AppendNumber(libdeflate_crc32(0, m_aBytes.data() + start, m_aBytes.size() - start));
    }
    std::vector<std::byte> Take() { return std::move(m_aBytes); }

private:
    void Append(std::span<const std::uint8_t> data)
    {
        const auto bytes = std::as_bytes(data);
        m_aBytes.insert(m_aBytes.end(), bytes.begin(), bytes.end());
    }
    void AppendNumber(std::uint32_t number)
    {
        for (const int shift : {24, 16, 8, 0})
            m_aBytes.push_back(static_cast<std::byte>(number >> shift));
    }

    std::vector<std::byte> m_aBytes;
};

/// Width, height, 8 bits a channel, its only compression and filter methods, not interlaced.
std::array<std::uint8_t, 13> HeaderOf(const CBitmap& bitmap)
{
    std::array<std::uint8_t, 13> header{};
    for (std::size_t i = 0; i < 4; ++i) {
        header[i] = static_cast<std::uint8_t>(bitmap.Width() >> (24 - 8 * i));
        header[4 + i] = static_cast<std::uint8_t>(bitmap.Height() >> (24 - 8 * i));
    }
    header[8] = 8;
    header[9] = kColoursWithAlpha;
    return header;
}

}  // namespace

std::optional<std::vector<std::byte>> EncodePng(const CBitmap& bitmap)
{
    const Bytes compressed = CompressedRows(bitmap);
    if (compressed.empty())
        return std::nullopt;
    CPngFile file;
    file.AddChunk("IHDR", HeaderOf(bitmap));
    for (std::span<const std::uint8_t> rest = compressed; !rest.empty();) {
        const auto part = rest.first(std::min(rest.size(), kLongestChunk));
        file.AddChunk("IDAT", part);
        rest = rest.subspan(part.size());
    }
    file.AddChunk("IEND", {});
    return file.Take();
}
