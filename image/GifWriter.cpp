#include "image/GifWriter.h"

#include <algorithm>
#include <bit>

#include "base/ByteWriter.h"
#include "image/Palette.h"

namespace {

constexpr unsigned kLongestCode = 12;
constexpr std::uint32_t kMostCodes = 1U << kLongestCode;
constexpr std::size_t kLongestBlock = 255;

/// Codes of 3 to 12 bits, the first bit lowest, in blocks with their length before them.
class CCodeWriter {
public:
    explicit CCodeWriter(CByteWriter& out) : m_rOut(out) {}

    void Put(std::uint32_t code, unsigned bits)
    {
        m_nHeld |= code << m_nHeldBits;
        for (m_nHeldBits += bits; m_nHeldBits >= 8; m_nHeldBits -= 8)
            PutByte();
    }

    void Finish()
    {
        if (m_nHeldBits != 0)
            PutByte();
        FlushBlock();
        m_rOut.U8(0);
    }

private:
    void PutByte()
    {
        m_aBlock.push_back(static_cast<std::byte>(m_nHeld & 0xFF));
        m_nHeld >>= 8;
        if (m_aBlock.size() == kLongestBlock)
            FlushBlock();
    }

    void FlushBlock()
    {
        if (m_aBlock.empty())
            return;
        m_rOut.U8(static_cast<std::uint32_t>(m_aBlock.size())).Bytes(m_aBlock);
        m_aBlock.clear();
    }

    CByteWriter& m_rOut;
    std::vector<std::byte> m_aBlock;
    std::uint32_t m_nHeld = 0;
    unsigned m_nHeldBits = 0;
};

/// The known strings: a code and one more index lead to the string's own code. A table with open addressing,
/// because every pixel asks it once.
class CStringTable {
public:
    CStringTable() : m_aSlots(kSlots) {}

    void Clear() { std::fill(m_aSlots.begin(), m_aSlots.end(), Slot{}); }

    /// The code of `prefix` with `index` after it; 0 when unknown, then it is entered as `code`.
    std::uint32_t FindOrAdd(std::uint32_t prefix, std::uint8_t index, std::uint32_t code)
    {
        const std::uint32_t key = (prefix << 8 | index) + 1;
        for (std::size_t at = key * 0x9E3779B1U >> 19;; at = (at + 1) % kSlots) {
            Slot& slot = m_aSlots[at];
            if (slot.key == key)
                return slot.code;
            if (slot.key == 0) {
                slot = {key, code};
                return 0;
            }
        }
    }

private:
    static constexpr std::size_t kSlots =
        8192;  // twice the codes there can be; the shift above leaves 13 bits
    struct Slot {
        std::uint32_t key = 0;
        std::uint32_t code = 0;
    };
    std::vector<Slot> m_aSlots;
};

void WritePixels(CByteWriter& out, const std::vector<std::uint8_t>& indices, unsigned indexBits)
{
    const std::uint32_t clear = 1U << indexBits;
    const std::uint32_t end = clear + 1;
    std::uint32_t next = end + 1;
    unsigned bits = indexBits + 1;
    CStringTable strings;
    CCodeWriter codes(out);
    codes.Put(clear, bits);
    std::uint32_t prefix = indices.front();
    for (std::size_t i = 1; i < indices.size(); ++i) {
        const std::uint8_t index = indices[i];
        if (const std::uint32_t code = strings.FindOrAdd(prefix, index, next)) {
            prefix = code;
            continue;
        }
        codes.Put(prefix, bits);
        prefix = index;
        // The reader learns each string one code later, so the width grows one code after it is needed here.
        if (next == 1U << bits && bits < kLongestCode)
            ++bits;
        if (++next == kMostCodes) {
            codes.Put(clear, bits);
            strings.Clear();
            next = end + 1;
            bits = indexBits + 1;
        }
    }
    codes.Put(prefix, bits);
    // The reader counts a string for that last code, too.
    if (next == 1U << bits && bits < kLongestCode)
        ++bits;
    codes.Put(end, bits);
    codes.Finish();
}

}  // namespace

std::optional<std::vector<std::byte>> WriteGif(const CBitmap& bitmap)
{
    const PalettedBitmap paletted = ReduceToPalette(bitmap);
    const auto count = static_cast<std::uint32_t>(paletted.palette.size());
    // A palette has 2^n entries and a picture at least two bits an index, whatever the palette is.
    const auto paletteBits = std::max(static_cast<unsigned>(std::bit_width(count - 1)), 1U);
    const unsigned indexBits = std::max(paletteBits, 2U);

    CByteWriter out;
    out.Text("GIF89a", 6).U16(bitmap.Width()).U16(bitmap.Height());
    out.U8(0x80 | (paletteBits - 1) << 4 | (paletteBits - 1)).U8(0).U8(0);
    for (const PaletteColour& colour : paletted.palette)
        out.U8(colour.red).U8(colour.green).U8(colour.blue);
    out.Fill(((std::size_t{1} << paletteBits) - count) * 3, 0);
    if (paletted.transparent)
        out.U8(0x21).U8(0xF9).U8(4).U8(1).U16(0).U8(*paletted.transparent).U8(0);
    out.U8(0x2C).U16(0).U16(0).U16(bitmap.Width()).U16(bitmap.Height()).U8(0);
    out.U8(indexBits);
    WritePixels(out, paletted.indices, indexBits);
    out.U8(0x3B);
    return out.Take();
}
