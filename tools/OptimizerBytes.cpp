#include "tools/OptimizerBytes.h"

#include <span>

bool IsDecoded(RasterComparison comparison)
{
    return comparison == RasterComparison::MD5Decoded || comparison == RasterComparison::DifferenceDecoded;
}

bool HasRasterIn(const CTextureDatabase& database, std::uint32_t index, CacheIndex cache)
{
    const TextureEntry& entry = database.Entry(index);
    return !entry.IsAlias() && database.IsOpen(cache) && entry.datOffset[SlotOf(cache)] != kNone;
}

std::vector<std::byte> ComparedBytes(CTextureDatabase& database, IEditorHost& host, std::uint32_t index,
                                     CacheIndex cache, bool isDecoded)
{
    if (!HasRasterIn(database, index, cache))
        return {};
    if (!isDecoded) {
        try {
            return database.ReadRaster(index, cache, RecordKind::Raster).value_or(std::vector<std::byte>());
        } catch (const CError&) {  // damaged: nothing to compare
            return {};
        }
    }
    const auto picture = host.Decode(index, cache);
    const RasterHeader& header = database.ResolvedEntry(index).rasterHeader[SlotOf(cache)];
    if (!picture || picture->Width() != header.width || picture->Height() != header.Height())
        return {};
    const auto pixels = std::as_bytes(picture->Pixels());
    return {pixels.begin(), pixels.end()};
}
