#include "tools/TXDPicture.h"

#include <algorithm>
#include <array>
#include <optional>

#include "base/ByteReader.h"
#include "rw/Unswizzle.h"

namespace {

constexpr std::size_t kPaletteEntry = 4;
constexpr std::uint32_t kPalette8Flag = 0x2000;
constexpr std::uint32_t kPalette4Flag = 0x4000;
constexpr std::uint32_t kLayoutMask = 0x0F00;
constexpr std::uint32_t kLuminanceLayout = 0x0400;

// ---- Direct3D records ----

struct PCFacts {
    std::uint32_t platform = 0;
    std::uint32_t rasterFormat = 0;
    std::uint32_t platformFormat = 0;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t depth = 0;
    std::uint32_t compressionByte = 0;
    std::uint32_t compression = 0;  // as the reader tells it
    std::uint32_t layout = 0;
    bool hasMask = false;
    std::span<const std::byte> behind;  // what follows the fixed part
};

struct CodeOf {
    std::uint32_t stored;
    PixelCoding coding;
};

// "DXT1" to "DXT5". DXT2 and DXT4 are DXT3 and DXT5 with colours that are multiplied already.
constexpr std::array<CodeOf, 5> kFourCCs = {{
    {0x31545844, PixelCoding::Dxt1},
    {0x32545844, PixelCoding::Dxt3},
    {0x33545844, PixelCoding::Dxt3},
    {0x34545844, PixelCoding::Dxt5},
    {0x35545844, PixelCoding::Dxt5},
}};
constexpr std::array<CodeOf, 5> kDirect3D8Bytes = {{
    {1, PixelCoding::Dxt1},
    {2, PixelCoding::Dxt3},
    {3, PixelCoding::Dxt3},
    {4, PixelCoding::Dxt5},
    {5, PixelCoding::Dxt5},
}};
constexpr std::array<CodeOf, 3> kCompressions = {{
    {RW::Compression::kNone, PixelCoding::Linear},
    {RW::Compression::kDxt1, PixelCoding::Dxt1},
    {RW::Compression::kDxt3, PixelCoding::Dxt3},
}};

std::optional<PixelCoding> Find(std::span<const CodeOf> table, std::uint32_t stored)
{
    const auto found = std::find_if(table.begin(), table.end(),
                                    [stored](const CodeOf& code) { return code.stored == stored; });
    return found != table.end() ? std::optional(found->coding) : std::nullopt;
}

std::uint64_t BlockBytes(PixelCoding coding, std::uint32_t width, std::uint32_t height)
{
    const std::uint64_t blocks = ((std::uint64_t{width} + 3) / 4) * ((std::uint64_t{height} + 3) / 4);
    const bool isSmall = coding == PixelCoding::Dxt1 || coding == PixelCoding::Dxt1Alpha;
    return blocks * (isSmall ? 8 : 16);
}

bool IsBlockCoding(PixelCoding coding)
{
    return coding == PixelCoding::Dxt1 || coding == PixelCoding::Dxt1Alpha || coding == PixelCoding::Dxt3 ||
           coding == PixelCoding::Dxt5;
}

std::uint64_t LinearBytes(std::uint32_t width, std::uint32_t height, std::uint32_t depth)
{
    return (std::uint64_t{width} * height * depth + 7) / 8;
}

/// Entries of the palette in front of linear pixels.
std::size_t PaletteEntries(const PCFacts& facts)
{
    if (facts.depth > 8)
        return 0;
    if ((facts.rasterFormat & kPalette8Flag) != 0)
        return 256;
    if (facts.depth == 4)
        return 16;
    if ((facts.rasterFormat & kPalette4Flag) != 0)
        return 32;
    return (facts.rasterFormat & kLayoutMask) == kLuminanceLayout ? 0 : std::size_t{1} << facts.depth;
}

/// The size word behind `skipped` bytes; nothing when the record ends before it.
std::optional<std::uint32_t> SizeWord(const PCFacts& facts, std::size_t skipped)
{
    if (facts.behind.size() < skipped + sizeof(std::uint32_t))
        return std::nullopt;
    return CByteReader(facts.behind.subspan(skipped)).U32();
}

/// Whether a size word stands where linear pixels have it and is exactly what they need.
bool FitsLinear(const PCFacts& facts)
{
    const auto size = SizeWord(facts, PaletteEntries(facts) * kPaletteEntry);
    return size && *size == LinearBytes(facts.width, facts.height, facts.depth);
}

bool FitsBlocks(const PCFacts& facts, PixelCoding coding)
{
    return IsBlockCoding(coding) && SizeWord(facts, 0) == BlockBytes(coding, facts.width, facts.height);
}

/// The evidence in order of weight: a FourCC; the byte of Direct3D 8; what the reader makes of the byte,
/// which for Direct3D 9 is only a set of flags, so that a size that fits linear pixels outweighs it; and
/// above all, a size that is exactly that of DXT1.
PixelCoding CodingOf(const PCFacts& facts)
{
    std::optional<PixelCoding> coding;
    if (facts.platform == RW::Platform::kDirect3D9)
        coding = Find(kFourCCs, facts.platformFormat);
    else if (facts.platform == RW::Platform::kDirect3D8)
        coding = Find(kDirect3D8Bytes, facts.compressionByte);
    if (!coding) {
        coding = Find(kCompressions, facts.compression).value_or(PixelCoding::Unsupported);
        if (FitsLinear(facts) && !FitsBlocks(facts, *coding))
            coding = PixelCoding::Linear;
    }
    // A few pixels can need as many bytes either way; then the claim holds.
    const bool isClaimedRightly = *coding == PixelCoding::Linear && FitsLinear(facts);
    if (FitsBlocks(facts, PixelCoding::Dxt1) && !isClaimedRightly)
        return PixelCoding::Dxt1;
    return *coding;
}

/// Direct3D 9 has a flag for alpha, Direct3D 8 a word; the layout with one bit of alpha tells it for both.
bool HasOneBitAlpha(const PCFacts& facts)
{
    const bool isFlagged = facts.platform == RW::Platform::kDirect3D9 ? (facts.compressionByte & 1) != 0
                                                                      : facts.platformFormat != 0;
    return isFlagged || facts.layout == 0x1555 || facts.hasMask;
}

PCFacts ReadFacts(RW::CTXDPC& dictionary, std::uint32_t index)
{
    PCFacts facts;
    // Tells of a record that is too short for its fixed part.
    facts.behind = dictionary.GetPalette(index);
    if (facts.behind.data() == nullptr)
        return facts;
    const auto fixed = dictionary.GetRecord(index);
    facts.platform = CByteReader(fixed).U32();
    facts.rasterFormat = CByteReader(fixed.subspan(RW::PCRecord::kRasterFormat)).U32();
    facts.platformFormat = CByteReader(fixed.subspan(RW::PCRecord::kPlatformFormat)).U32();
    facts.compressionByte = CByteReader(fixed.subspan(RW::PCRecord::kCompression)).U8();
    facts.width = dictionary.GetWidth(index);
    facts.height = dictionary.GetHeight(index);
    facts.depth = dictionary.GetDepth(index);
    facts.compression = dictionary.GetCompression(index);
    facts.layout = dictionary.GetRasterFormat(index, RW::FormatForm::Layout);
    facts.hasMask = !dictionary.GetName(index, RW::TextureText::Mask).empty();
    return facts;
}

/// The pixels behind a palette of `skipped` bytes, as far as their size word and the record go.
std::span<const std::byte> PixelsBehind(const PCFacts& facts, std::size_t skipped)
{
    const auto size = SizeWord(facts, skipped);
    if (!size)
        return {};
    const auto rest = facts.behind.subspan(skipped + sizeof(std::uint32_t));
    return rest.first(std::min<std::size_t>(*size, rest.size()));
}

// ---- 16-bit layouts ----

/// What to do about 16-bit pixels with alpha on top, which RasterToBitmap does not know in every layout.
void PrepareSixteenBits(TXDPicture& picture)
{
    if (picture.layout == 0x4444) {
        picture.alphaOnTop = true;
    } else if (picture.layout == 0x555) {
        picture.layout = 0x1555;
        picture.isOpaque = true;
    } else if (picture.layout != 0x565 && picture.layout != 0x1555) {
        picture.coding = PixelCoding::Unsupported;
    }
}

void PrepareLinear(TXDPicture& picture)
{
    switch (picture.depth) {
        case 4:
        case 8:
        case 24:
            break;
        case 16:
            PrepareSixteenBits(picture);
            break;
        case 32:
            picture.isOpaque = picture.layout == 0x888;
            break;
        default:
            picture.coding = PixelCoding::Unsupported;
            break;
    }
}

// ---- PlayStation 2 ----

constexpr std::uint32_t kNarrowest4 = 32;

/// Palettes of 256 entries are stored with bits 3 and 4 of the index exchanged.
std::size_t StoredEntry(std::size_t index, std::size_t entries)
{
    if (entries < 256)
        return index;
    return (index & ~std::size_t{0x18}) | (index & 0x08) << 1 | (index & 0x10) >> 1;
}

std::byte DoubledAlpha(std::byte alpha)
{
    return static_cast<std::byte>(std::min(std::to_integer<unsigned>(alpha) * 2, 255U));
}

std::vector<std::byte> OrderedPalette(std::span<const std::byte> stored, std::uint32_t depth)
{
    const std::size_t entries = std::size_t{1} << depth;
    std::vector<std::byte> ordered(entries * kPaletteEntry);
    for (std::size_t i = 0; i < entries; ++i) {
        const auto entry = stored.subspan(StoredEntry(i, entries) * kPaletteEntry, kPaletteEntry);
        std::copy(entry.begin(), entry.end(),
                  ordered.begin() + static_cast<std::ptrdiff_t>(i * kPaletteEntry));
        ordered[i * kPaletteEntry + 3] = DoubledAlpha(entry[3]);
    }
    return ordered;
}

/// Keeps the first `width` of every `rowWidth` nibbles.
std::vector<std::byte> NarrowedRows(std::span<const std::byte> nibbles, std::uint32_t rowWidth,
                                    std::uint32_t width, std::uint32_t height)
{
    std::vector<std::byte> rows(static_cast<std::size_t>(LinearBytes(width, height, 4)));
    std::size_t to = 0;
    for (std::size_t y = 0; y < height; ++y) {
        for (std::size_t x = 0; x < width; ++x, ++to) {
            const std::size_t from = y * rowWidth + x;
            const std::byte nibble =
                (from % 2 == 0 ? nibbles[from / 2] : nibbles[from / 2] >> 4) & std::byte{15};
            rows[to / 2] |= to % 2 == 0 ? nibble : nibble << 4;
        }
    }
    return rows;
}

std::vector<std::byte> Unswizzled(const TXDPicture& picture)
{
    if (picture.depth == 8) {
        std::vector<std::byte> rows(picture.pixels.size());
        RW::UnswizzlePal8(picture.pixels, rows, picture.width, picture.height);
        return rows;
    }
    const std::uint32_t rowWidth = std::max(picture.width, kNarrowest4);
    std::vector<std::byte> wide(static_cast<std::size_t>(LinearBytes(rowWidth, picture.height, 4)));
    RW::UnswizzlePal4(picture.pixels, wide, rowWidth, picture.height);
    return rowWidth == picture.width ? wide : NarrowedRows(wide, rowWidth, picture.width, picture.height);
}

}  // namespace

TXDPicture ReadPicture(RW::CTXDPC& dictionary, std::uint32_t index)
{
    const PCFacts facts = ReadFacts(dictionary, index);
    TXDPicture picture;
    picture.width = facts.width;
    picture.height = facts.height;
    picture.depth = facts.depth;
    picture.coding = CodingOf(facts);
    if (IsBlockCoding(picture.coding)) {
        picture.pixels = PixelsBehind(facts, 0);
        if (picture.coding == PixelCoding::Dxt1 && HasOneBitAlpha(facts))
            picture.coding = PixelCoding::Dxt1Alpha;
        return picture;
    }
    const std::size_t paletteBytes = PaletteEntries(facts) * kPaletteEntry;
    picture.palette = facts.behind.first(std::min(paletteBytes, facts.behind.size()));
    picture.pixels = PixelsBehind(facts, paletteBytes);
    // Palettes are the only pixels of the PC with red in front.
    picture.redFirst = paletteBytes != 0;
    picture.layout = facts.layout;
    if (facts.depth == 8)
        picture.layout = paletteBytes != 0 ? 0x8888 : 0x8;
    if (picture.coding == PixelCoding::Linear)
        PrepareLinear(picture);
    return picture;
}

TXDPicture ReadPicture(RW::CTXDPS2& dictionary, std::uint32_t index)
{
    TXDPicture picture;
    picture.coding = PixelCoding::Linear;
    picture.width = dictionary.GetWidth(index);
    picture.height = dictionary.GetHeight(index);
    picture.depth = dictionary.GetDepth(index);
    picture.layout = dictionary.GetRasterFormat(index, RW::FormatForm::Layout);
    picture.redFirst = true;
    picture.swapRedBlue = picture.depth == 16;
    picture.halfAlpha = picture.depth == 32;
    const auto stored = dictionary.GetPixels(index, 0);
    const std::uint64_t levelBytes = LinearBytes(picture.width, picture.height, picture.depth);
    // The end of the data is other levels and the palette.
    if (levelBytes > stored.size())
        return picture;
    picture.pixels = stored.first(static_cast<std::size_t>(levelBytes));
    if (picture.depth == 4 || picture.depth == 8) {
        const auto palette = dictionary.GetPalette(index);
        if (palette.empty()) {
            picture.pixels = {};
            return picture;
        }
        picture.ownPalette = OrderedPalette(palette, picture.depth);
        picture.palette = picture.ownPalette;
        picture.layout = 0x8888;
        // Rasters of other depths are never stored in that order, though they may say so.
        if (dictionary.GetCompression(index) == RW::Compression::kSwizzled) {
            picture.ownPixels = Unswizzled(picture);
            picture.pixels = picture.ownPixels;
        }
    }
    PrepareLinear(picture);
    return picture;
}

TXDPicture ReadPicture(RW::CTXDMobile& dictionary, std::uint32_t index)
{
    TXDPicture picture;
    picture.width = dictionary.GetWidth(index);
    picture.height = dictionary.GetHeight(index);
    picture.depth = dictionary.GetDepth(index);
    // Red is in the top bits and alpha in the bottom ones already.
    picture.layout = dictionary.GetRasterFormat(index, RW::FormatForm::Layout);
    picture.pixels = dictionary.GetPixels(index, 0);
    const std::uint32_t compression = dictionary.GetCompression(index);
    if (compression == RW::Compression::kNone) {
        picture.coding = PixelCoding::Linear;
    } else if (compression == RW::Compression::kMobilePvrtc) {
        const std::uint64_t bytesOf4 = std::uint64_t{picture.width} * picture.height / 2;
        picture.coding = picture.pixels.size() >= std::max<std::uint64_t>(bytesOf4, 32) ? PixelCoding::Pvrtc4
                                                                                        : PixelCoding::Pvrtc2;
    }
    return picture;
}
