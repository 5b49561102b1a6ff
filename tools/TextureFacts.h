#pragma once

// The short texts about a texture that the status bar and the reports show.

#include <cstdint>
#include <string>
#include <string_view>

#include "database/TextureDatabase.h"

/// "(auto)", "GTA VC", "GTA SA".
std::wstring_view GameName(StreamMode game);
/// "ID: %02d, Offset: 0x%X".
std::wstring IdAndOffsetText(std::uint32_t index, std::uint32_t offset);
/// "1.000 MB", "1.000 KB", "1023 B".
std::wstring RasterSizeText(std::uint64_t bytes);
/// "%d x %d".
std::wstring DimensionsText(const RasterHeader& header);
/// "Texture '%s' rendered within %0.2f seconds."; "unnamed" for an empty name.
std::wstring RenderedText(std::wstring_view name, double seconds);

/// What the panes 2 to 6 show for a selected texture in the current cache.
struct TextureFacts {
    std::wstring idAndOffset;
    std::wstring size;
    std::wstring dimensions;
    std::wstring game;
    std::wstring format;
};
TextureFacts FactsOf(CTextureDatabase& database, std::uint32_t index, CacheIndex cache, RecordKind kind);
