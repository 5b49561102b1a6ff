#include "codec/RasterDecoding.h"

#include <algorithm>
#include <array>
#include <new>
#include <stdexcept>

#include "base/Format.h"
#include "codec/CodecMessages.h"
#include "image/RasterToBitmap.h"

namespace {

using Code = RasterFormatCode;

// How a format is decoded. A row with no plugin makes no call.
struct DecodeRule {
    Code code;
    CacheIndex plugin;
    std::uint32_t mode;
    std::uint32_t flags;
    // The source advance of a level: pixels * numerator / 4 bytes, at least `minimum`.
    std::uint32_t advanceQuarters;
    std::uint32_t advanceMinimum;
};

// Deliberate: the two 16-bit formats advance half a byte a pixel, so that only their first level is right.
// RasterDecoding.AdvancesHalfABytePerPixelInSixteenBitRasters pins it.
// clang-format off
constexpr std::array<DecodeRule, 8> kRules = {{
    {Code::Rgba4444, CacheIndex::Unc,  16, MavrelAlpha,                           2, 32},
    {Code::Rgba5551, CacheIndex::Unc,  16, MavrelAlpha,                           2, 32},
    {Code::Dxt1,     CacheIndex::Dxt,   0, MavrelDxt1,                            2,  8},
    {Code::Dxt1A,    CacheIndex::Dxt,   0, MavrelAlpha | MavrelDxt1,              2,  8},
    {Code::Dxt5,     CacheIndex::Dxt,   0, MavrelAlpha | MavrelInterpolatedAlpha, 4, 16},
    {Code::Etc1,     CacheIndex::Etc1,  0, 0,                                     2,  8},
    {Code::Pvrtc2,   CacheIndex::Pvrtc, 2, 0,                                     1, 32},
    {Code::Pvrtc4,   CacheIndex::Pvrtc, 4, MavrelAlpha,                           2, 32},
}};
// clang-format on

const DecodeRule* RuleFor(Code code)
{
    const auto* const found = std::find_if(kRules.begin(), kRules.end(),
                                           [code](const DecodeRule& rule) { return rule.code == code; });
    return found != kRules.end() ? found : nullptr;
}

std::uint32_t LayoutOf(Code code)
{
    switch (code) {
        case Code::Rgba8888:
        case Code::Pvrtc2:
            return 0x8888;
        case Code::Rgba4444:
        case Code::Dxt5:
            return 0x4444;
        case Code::Rgba5551:
            return 0x5551;
        case Code::Rgba565:
        case Code::Dxt1:
            return 0x565;
        case Code::Lum16:
            return 0x88;
        case Code::Lum8:
            return 0x8;
        case Code::Dxt1A:
            return 0x1555;
        case Code::Unknown:
        case Code::Pal8:
        case Code::Pal4:
        case Code::Dxt2:
        case Code::Dxt3:
        case Code::Dxt4:
        case Code::Etc1:
        case Code::Pvrtc4:
            return 0;
    }
    return 0;
}

std::uint32_t BitsPerPixelOf(Code code)
{
    switch (code) {
        case Code::Rgba8888:
        case Code::Dxt1:
        case Code::Dxt1A:
        case Code::Dxt3:
        case Code::Dxt5:
        case Code::Etc1:
        case Code::Pvrtc2:
        case Code::Pvrtc4:
            return 32;
        case Code::Rgba4444:
        case Code::Rgba5551:
        case Code::Rgba565:
        case Code::Lum16:
            return 16;
        case Code::Lum8:
            return 8;
        case Code::Unknown:
        case Code::Pal8:
        case Code::Pal4:
        case Code::Dxt2:
        case Code::Dxt4:
            return 0;
    }
    return 0;
}

bool IsHandedOnAsStored(Code code, bool hasUncDecoder)
{
    switch (code) {
        case Code::Rgba8888:
            return true;
        // Deliberate: with a decoder for uncompressed rasters bound, most of these come out blank.
        // RasterDecoding.LeavesRgba565UnwrittenWhenAnUncDecoderIsBound pins it.
        case Code::Rgba4444:
        case Code::Rgba5551:
        case Code::Rgba565:
        case Code::Pal8:
        case Code::Lum16:
        case Code::Lum8:
            return !hasUncDecoder;
        case Code::Unknown:
        case Code::Pal4:
        case Code::Dxt1:
        case Code::Dxt1A:
        case Code::Dxt2:
        case Code::Dxt3:
        case Code::Dxt4:
        case Code::Dxt5:
        case Code::Etc1:
        case Code::Pvrtc2:
        case Code::Pvrtc4:
            return false;
    }
    return false;
}

// The bytes that the decoder of a level reads: whole blocks, which can be more than the size rule counts.
std::uint64_t SourceBytes(const DecodeRule& rule, std::uint64_t width, std::uint64_t height)
{
    const auto blocks = ((width + 3) / 4) * ((height + 3) / 4);
    switch (rule.plugin) {
        case CacheIndex::Dxt:
            return blocks * (rule.code == Code::Dxt5 ? 16 : 8);
        case CacheIndex::Etc1:
            return blocks * 8;
        case CacheIndex::Pvrtc: {
            const std::uint64_t minimumWidth = rule.mode == 2 ? 16 : 8;
            return std::max(width, minimumWidth) * std::max<std::uint64_t>(height, 8) * rule.mode / 8;
        }
        case CacheIndex::Unc:
            return width * height * 2;
    }
    return 0;
}

std::uint64_t SourceAdvance(const DecodeRule& rule, std::uint64_t width, std::uint64_t height)
{
    return std::max<std::uint64_t>(width * height * rule.advanceQuarters / 4, rule.advanceMinimum);
}

struct Output {
    std::vector<std::byte> pixels;
    bool isWritten = false;
};

// Room for a whole chain in 32-bit pixels.
std::vector<std::byte> BlankOutput(std::uint32_t width, std::uint32_t height)
{
    const std::uint64_t bytes = std::uint64_t{std::max(width, 8U)} * std::max(height, 8U) * 8;
    try {
        return std::vector<std::byte>(static_cast<std::size_t>(bytes));
    } catch (const std::bad_alloc&) {
        throw CError(std::wstring(CodecMessage::kCannotDecompress));
    } catch (const std::length_error&) {
        throw CError(std::wstring(CodecMessage::kCannotDecompress));
    }
}

// The size rule does not count the padding of flat PVRTC pictures, so their decoder gets a padded copy.
void PadFirstLevel(std::vector<std::byte>& raster, const DecodeRule& rule, std::uint32_t width,
                   std::uint32_t height)
{
    const std::uint64_t needed = SourceBytes(rule, width, height);
    if (rule.plugin == CacheIndex::Pvrtc && raster.size() < needed)
        raster.resize(static_cast<std::size_t>(needed));
}

void DecodeLevels(const DecodeRule& rule, MavrelDecompressFn decompress, std::span<const std::byte> raster,
                  std::uint32_t width, std::uint32_t height, std::uint32_t levels, Output& output)
{
    std::uint64_t source = 0;
    std::uint64_t written = 0;
    for (std::uint32_t level = 0; level < levels; ++level) {
        const std::uint64_t pixelBytes = std::uint64_t{width} * height * 4;
        if (source + SourceBytes(rule, width, height) > raster.size() ||
            written + pixelBytes > output.pixels.size())
            return;
        const std::uint32_t count = decompress(raster.data() + source, output.pixels.data() + written, width,
                                               height, rule.mode, rule.flags);
        if (level == 0)
            output.isWritten = count != 0;
        written += count;
        source += SourceAdvance(rule, width, height);
        width = std::max(width >> 1, 1U);
        height = std::max(height >> 1, 1U);
    }
}

Output Decode(std::vector<std::byte>& raster, const RasterHeader& header, std::uint32_t levels,
              const CPluginTable& plugins)
{
    const DecodeRule* const rule = RuleFor(FormatFromGl(header.glFormat));
    const std::uint32_t width = header.width;
    const std::uint32_t height = header.Height();
    if (rule == nullptr)
        return {BlankOutput(width, height), false};
    const MavrelDecompressFn decompress = plugins.Decompress(rule->plugin);
    if (decompress == nullptr)
        throw CError(Format(CodecMessage::kNoPlugin, CacheName(rule->plugin)));
    Output output{BlankOutput(width, height), false};
    PadFirstLevel(raster, *rule, width, height);
    const auto lock = LockCodec(plugins.OneAtATime(rule->plugin));
    DecodeLevels(*rule, decompress, raster, width, height, levels, output);
    return output;
}

DecodedTexture DecodeStored(StoredTexture texture, std::uint32_t levels, const CPluginTable& plugins)
{
    const RasterHeader& header = texture.header;
    const Code code = FormatFromGl(header.glFormat);
    DecodedTexture decoded;
    decoded.width = header.width;
    decoded.height = header.Height();
    decoded.bitsPerPixel = BitsPerPixelOf(code);
    decoded.layout = LayoutOf(texture.layoutOf);
    if (IsHandedOnAsStored(code, plugins.Decompress(CacheIndex::Unc) != nullptr)) {
        decoded.pixels = std::move(texture.raster);
    } else {
        Output output = Decode(texture.raster, header, levels, plugins);
        decoded.pixels = std::move(output.pixels);
        decoded.isWritten = output.isWritten;
    }
    return decoded;
}

}  // namespace

std::optional<StoredTexture> ReadStoredTexture(CTextureDatabase& database, std::uint32_t index,
                                               CacheIndex cache, RecordKind kind)
{
    const bool isThumbnail = kind == RecordKind::Thumbnail;
    if (isThumbnail ? !database.HasThumbnailFile(cache) : !database.IsOpen(cache))
        return std::nullopt;
    const TextureEntry entry = database.ResolvedEntry(index);
    auto raster = database.ReadRaster(index, cache, kind);
    if (!raster)
        return std::nullopt;

    const RasterHeader& rasterHeader = entry.rasterHeader[SlotOf(cache)];
    // Deliberate: the layout of a thumbnail, too, is that of the entry's raster.
    return StoredTexture{.raster = std::move(*raster),
                         .header = isThumbnail ? entry.thumbHeader[SlotOf(cache)] : rasterHeader,
                         .layoutOf = FormatFromGl(rasterHeader.glFormat)};
}

std::optional<DecodedTexture> DecodeTexture(CTextureDatabase& database, const CPluginTable& plugins,
                                            std::uint32_t index, CacheIndex cache, RecordKind kind)
{
    auto stored = ReadStoredTexture(database, index, cache, kind);
    if (!stored)
        return std::nullopt;
    const std::uint32_t levels = kind == RecordKind::Thumbnail ? 1 : LevelCount(stored->header);
    return DecodeStored(std::move(*stored), levels, plugins);
}

DecodedTexture DecodeFirstLevel(StoredTexture texture, const CPluginTable& plugins)
{
    return DecodeStored(std::move(texture), 1, plugins);
}

DecodedTexture DecodeFirstLevel(std::vector<std::byte> raster, const RasterHeader& header,
                                const CPluginTable& plugins)
{
    return DecodeStored({std::move(raster), header, FormatFromGl(header.glFormat)}, 1, plugins);
}

std::optional<CBitmap> ToBitmap(const DecodedTexture& texture)
{
    return RasterToBitmap(texture.pixels, {.width = texture.width,
                                           .height = texture.height,
                                           .depth = texture.bitsPerPixel,
                                           .layout = texture.layout,
                                           .level = 0,
                                           .swapRB = true});
}
