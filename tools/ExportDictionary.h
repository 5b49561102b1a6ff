#pragma once

// Exporting the textures of a dictionary as image files.

#include <filesystem>
#include <string>
#include <vector>

#include "base/Progress.h"
#include "image/ImageFile.h"
#include "tools/ExportPictures.h"
#include "tools/TXDHelper.h"

/// Every texture of the open dictionary, in order.
std::vector<std::uint32_t> AllTextures(CTXDHelper& helper);

/// Each texture's first level to folder + "/" + name + "." + extension; names are made fit for files, equal
/// ones get "_2", "_3", … A texture that cannot be drawn does not stop the run.
ExportCounts ExportDictionary(CTXDHelper& helper, const std::vector<std::uint32_t>& textures,
                              const std::filesystem::path& folder, ImageFormat format,
                              const std::wstring& extension, IProgress& progress);
