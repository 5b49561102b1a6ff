#include <algorithm>
#include <bit>

#include "base/ByteReader.h"
#include "base/ByteWriter.h"
#include "image/BmpHeader.h"
#include "image/Codecs_Posix.h"

namespace {

using Bytes = std::span<const std::byte>;

std::uint32_t LittleEndian(Bytes bytes)
{
    std::uint32_t value = 0;
    for (std::size_t i = bytes.size(); i > 0; --i)
        value = value << 8 | std::to_integer<std::uint32_t>(bytes[i - 1]);
    return value;
}

/// The bitmap under construction, addressed by the rows of the file.
class CCanvas {
public:
    CCanvas(const BmpHeader& header, CBitmap& bitmap) : m_rHeader(header), m_rBitmap(bitmap) {}

    void Put(std::uint32_t x, std::uint32_t fileRow, std::uint32_t blueGreenRed, std::uint8_t alpha = 255)
    {
        const std::size_t y = m_rHeader.topDown ? fileRow : m_rHeader.height - 1 - fileRow;
        std::uint8_t* const out = &m_rBitmap.Pixels()[(y * m_rHeader.width + x) * 4];
        out[0] = static_cast<std::uint8_t>(blueGreenRed & 0xFF);
        out[1] = static_cast<std::uint8_t>(blueGreenRed >> 8 & 0xFF);
        out[2] = static_cast<std::uint8_t>(blueGreenRed >> 16 & 0xFF);
        out[3] = alpha;
    }

private:
    const BmpHeader& m_rHeader;
    CBitmap& m_rBitmap;
};

/// Blue, green and red of every index; those that the file does not name are black.
std::vector<std::uint32_t> ReadPalette(Bytes bytes, const BmpHeader& header)
{
    std::vector<std::uint32_t> palette(256);
    for (std::size_t i = 0; i < header.paletteCount; ++i)
        palette[i] = LittleEndian(bytes.subspan(header.paletteOffset + i * header.paletteEntry, 3));
    return palette;
}

/// The bits under a mask, spread over 0 to 255.
class CMaskedChannel {
public:
    explicit CMaskedChannel(std::uint32_t mask)
        : m_nShift(mask == 0 ? 0U : static_cast<unsigned>(std::countr_zero(mask))), m_nMost(mask >> m_nShift)
    {
    }

    bool Exists() const { return m_nMost != 0; }
    std::uint32_t Of(std::uint32_t pixel) const
    {
        if (m_nMost == 0)
            return 0;
        const std::uint64_t value = pixel >> m_nShift & m_nMost;
        return static_cast<std::uint32_t>((value * 255 + m_nMost / 2) / m_nMost);
    }

private:
    unsigned m_nShift;
    std::uint32_t m_nMost;
};

void ReadMaskedRow(Bytes row, std::uint32_t fileRow, const BmpHeader& header, CCanvas& canvas)
{
    const CMaskedChannel red(header.masks[0]);
    const CMaskedChannel green(header.masks[1]);
    const CMaskedChannel blue(header.masks[2]);
    const CMaskedChannel alpha(header.masks[3]);
    const std::size_t width = header.bits / 8;
    for (std::uint32_t x = 0; x < header.width; ++x) {
        const std::uint32_t pixel = LittleEndian(row.subspan(x * width, width));
        const auto opacity = static_cast<std::uint8_t>(alpha.Exists() ? alpha.Of(pixel) : 255);
        canvas.Put(x, fileRow, red.Of(pixel) << 16 | green.Of(pixel) << 8 | blue.Of(pixel), opacity);
    }
}

/// The first pixel of a byte is in its upper bits.
void ReadIndexedRow(Bytes row, std::uint32_t fileRow, const BmpHeader& header,
                    const std::vector<std::uint32_t>& palette, CCanvas& canvas)
{
    const std::uint32_t most = (1U << header.bits) - 1;
    for (std::uint32_t x = 0; x < header.width; ++x) {
        const std::uint32_t bit = x * header.bits;
        const auto byte = std::to_integer<std::uint32_t>(row[bit / 8]);
        canvas.Put(x, fileRow, palette[byte >> (8 - header.bits - bit % 8) & most]);
    }
}

void ReadRows(Bytes pixels, const BmpHeader& header, const std::vector<std::uint32_t>& palette,
              CCanvas& canvas)
{
    const auto stride = static_cast<std::size_t>(header.Stride());
    for (std::uint32_t fileRow = 0; fileRow < header.height; ++fileRow) {
        const Bytes row = pixels.subspan(fileRow * stride, stride);
        if (header.bits <= 8) {
            ReadIndexedRow(row, fileRow, header, palette, canvas);
        } else if (header.bits == 24) {
            for (std::uint32_t x = 0; x < header.width; ++x)
                canvas.Put(x, fileRow, LittleEndian(row.subspan(std::size_t{x} * 3, 3)));
        } else {
            ReadMaskedRow(row, fileRow, header, canvas);
        }
    }
}

/// Runs: a count and one byte, or 0 and a command (0 end of row, 1 end of picture, 2 move, else so many
/// literal pixels, padded to 16 bits). A byte holds one pixel, or two in turn.
class CRunReader {
public:
    CRunReader(Bytes bytes, const BmpHeader& header, const std::vector<std::uint32_t>& palette,
               CCanvas& canvas)
        : m_oIn(bytes), m_rHeader(header), m_aPalette(palette), m_rCanvas(canvas)
    {
    }

    /// False when the bytes end before the end of the picture.
    bool Read()
    {
        while (!m_bAtEnd && m_nRow < m_rHeader.height) {
            const std::uint32_t count = m_oIn.U8();
            const std::uint32_t value = m_oIn.U8();
            if (!m_oIn.Ok())
                return false;
            if (count != 0)
                PutRun(count, value);
            else if (value >= 3)
                PutLiterals(value);
            else
                Obey(value);
        }
        return m_oIn.Ok();
    }

private:
    void Obey(std::uint32_t command)
    {
        if (command == 0) {
            m_nColumn = 0;
            ++m_nRow;
        } else if (command == 1) {
            m_bAtEnd = true;
        } else {
            m_nColumn += m_oIn.U8();
            m_nRow += m_oIn.U8();
        }
    }

    void PutRun(std::uint32_t count, std::uint32_t value)
    {
        for (std::uint32_t i = 0; i < count; ++i)
            Put(m_rHeader.bits == 8 ? value : (i % 2 == 0 ? value >> 4 : value & 15));
    }

    void PutLiterals(std::uint32_t count)
    {
        const std::size_t length = m_rHeader.bits == 8 ? count : (count + 1) / 2;
        const Bytes literals = m_oIn.Bytes(length);
        m_oIn.Skip(length % 2);
        if (!m_oIn.Ok())
            return;
        for (std::uint32_t i = 0; i < count; ++i) {
            const auto byte = std::to_integer<std::uint32_t>(literals[m_rHeader.bits == 8 ? i : i / 2]);
            Put(m_rHeader.bits == 8 ? byte : (i % 2 == 0 ? byte >> 4 : byte & 15));
        }
    }

    void Put(std::uint32_t index)
    {
        // What a run has too many falls off the row.
        if (m_nColumn < m_rHeader.width)
            m_rCanvas.Put(m_nColumn++, m_nRow, m_aPalette[index]);
    }

    CByteReader m_oIn;
    const BmpHeader& m_rHeader;
    const std::vector<std::uint32_t>& m_aPalette;
    CCanvas& m_rCanvas;
    std::uint32_t m_nColumn = 0;
    std::uint32_t m_nRow = 0;
    bool m_bAtEnd = false;
};

}  // namespace

std::optional<CBitmap> DecodeBmp(std::span<const std::byte> bytes)
{
    const auto header = ReadBmpHeader(bytes);
    if (!header)
        return std::nullopt;
    auto bitmap = CBitmap::Create(header->width, header->height);
    if (!bitmap)
        return std::nullopt;
    const auto palette = ReadPalette(bytes, *header);
    const Bytes pixels = bytes.subspan(header->pixelOffset);
    CCanvas canvas(*header, *bitmap);
    if (header->compression == BmpCompression::None || header->compression == BmpCompression::BitFields) {
        ReadRows(pixels, *header, palette, canvas);
        return bitmap;
    }
    // Pixels that no run reaches have the first colour.
    for (std::uint32_t row = 0; row < header->height; ++row)
        for (std::uint32_t x = 0; x < header->width; ++x)
            canvas.Put(x, row, palette[0]);
    if (!CRunReader(pixels, *header, palette, canvas).Read())
        return std::nullopt;
    return bitmap;
}

std::optional<std::vector<std::byte>> EncodeBmp(const CBitmap& bitmap)
{
    constexpr std::uint32_t kHeaders = 54;
    const std::uint64_t stride = (std::uint64_t{bitmap.Width()} * 3 + 3) / 4 * 4;
    const std::uint64_t length = stride * bitmap.Height();
    if (length > 0xFFFFFFFF - kHeaders)
        return std::nullopt;
    CByteWriter out;
    out.Text("BM", 2).U32(kHeaders + static_cast<std::uint32_t>(length)).U32(0).U32(kHeaders);
    out.U32(40)
        .U32(bitmap.Width())
        .U32(bitmap.Height())
        .U16(1)
        .U16(24)
        .U32(0)
        .U32(static_cast<std::uint32_t>(length));
    constexpr std::uint32_t kPixelsPerMetre = 3780;  // 96 in an inch
    out.U32(kPixelsPerMetre).U32(kPixelsPerMetre).U32(0).U32(0);
    std::vector<std::byte> row(static_cast<std::size_t>(stride));
    for (std::uint32_t y = bitmap.Height(); y > 0; --y) {
        const auto source = bitmap.Row(y - 1);
        for (std::size_t x = 0; x < bitmap.Width(); ++x)
            for (std::size_t channel = 0; channel < 3; ++channel)
                row[x * 3 + channel] = static_cast<std::byte>(source[x * 4 + channel]);
        out.Bytes(row);
    }
    return out.Take();
}
