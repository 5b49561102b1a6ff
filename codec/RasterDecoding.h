#pragma once

// Turns the stored raster of an entry into pixels that RasterToBitmap can draw.

#include <optional>

#include "codec/PluginTable.h"
#include "database/TextureDatabase.h"
#include "image/Bitmap.h"

struct DecodedTexture {
    std::vector<std::byte> pixels;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t bitsPerPixel = 0;
    std::uint32_t layout = 0;
    /// False when the format has no decoder and `pixels` is blank: a preview shows it so, everything that
    /// keeps pixels must treat it as "no picture".
    bool isWritten = true;
};

/// A raster as it is stored, with what decoding it needs.
struct StoredTexture {
    std::vector<std::byte> raster;
    RasterHeader header;
    /// Whose layout the pixels have.
    RasterFormatCode layoutOf = RasterFormatCode::Unknown;
};

/// Nothing when the cache's file is not open. Throws CError (not shown) when the raster cannot be read.
std::optional<StoredTexture> ReadStoredTexture(CTextureDatabase& database, std::uint32_t index,
                                               CacheIndex cache, RecordKind kind);

/// Nothing when the cache's file is not open. Throws CError (not shown) when the raster cannot be read or its
/// plugin is missing.
std::optional<DecodedTexture> DecodeTexture(CTextureDatabase& database, const CPluginTable& plugins,
                                            std::uint32_t index, CacheIndex cache, RecordKind kind);

/// The part of DecodeTexture that needs nothing but the stored raster, for any thread, and for those who want
/// no more than the largest level. Throws CError (not shown) when the plugin is missing.
DecodedTexture DecodeFirstLevel(StoredTexture texture, const CPluginTable& plugins);
DecodedTexture DecodeFirstLevel(std::vector<std::byte> raster, const RasterHeader& header,
                                const CPluginTable& plugins);

/// The decoded texture as a bitmap; nothing when there is none. A blank one is drawn blank.
std::optional<CBitmap> ToBitmap(const DecodedTexture& texture);
