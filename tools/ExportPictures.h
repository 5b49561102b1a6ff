#pragma once

// Exporting textures as image files.

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "base/Progress.h"
#include "codec/RasterDecoding.h"
#include "image/ImageFile.h"

struct ExportRequest {
    CacheIndex cache = CacheIndex::Dxt;
    RecordKind kind = RecordKind::Raster;
    ImageFormat format = ImageFormat::Png;
    std::wstring extension = L"png";
    /// Threads that decode and encode when there are many; 0: one for every core.
    unsigned jobs = 0;
};

struct ExportCounts {
    std::uint32_t exported = 0;
    std::uint32_t skipped = 0;  // no raster in the cache
    std::uint32_t failed = 0;
    std::uint32_t notSaved = 0;  // decoded, but the file could not be written: nothing is said about it
    std::wstring firstError;
    bool wasStopped = false;
};

/// A texture name made fit for a file name: characters that a file system cannot hold, and the dots of "..",
/// become
/// "_".
std::wstring SafeFileName(std::wstring_view name);

/// The entries that "export all" means: every one in index order, those of `category` when given, without
/// aliases when told so.
std::vector<std::uint32_t> EntriesToExport(const CTextureDatabase& database,
                                           std::optional<std::uint32_t> category, bool withAliases);

/// The texture as a bitmap; throws CError "This format is unsupported" or "Cannot decompress texture." when
/// it cannot be shown, and whatever reading it throws. Nothing when the entry has no raster in that cache.
std::optional<CBitmap> TextureToExport(CTextureDatabase& database, const CPluginTable& plugins,
                                       std::uint32_t index, CacheIndex cache, RecordKind kind);

/// One texture to one file; throws CError when it cannot be decoded. A failed save is not reported.
void ExportTexture(CTextureDatabase& database, const CPluginTable& plugins, std::uint32_t index,
                   const ExportRequest& request, const std::filesystem::path& file);

/// Each entry to folder + "/" + name + "." + extension; equal names get "_2", "_3", … A failed texture does
/// not stop the run. The database and the progress are used on the caller's thread, in the order of the
/// entries; the files are the same with any number of threads.
ExportCounts ExportTextures(CTextureDatabase& database, const CPluginTable& plugins,
                            const std::vector<std::uint32_t>& entries, const ExportRequest& request,
                            const std::filesystem::path& folder, IProgress& progress);
/// The one box at the end of a run with failures: their number and the first text; empty when there were
/// none.
std::wstring ExportFailureText(const ExportCounts& counts);
