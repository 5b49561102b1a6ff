#pragma once

// Where the files of a cache lie.

#include <filesystem>
#include <string_view>

#include "database/CacheIndex.h"

/// The list's path without its last four characters, then ".", the cache's infix and `extension` (".toc",
/// ".dat" or
/// ".tmb"). Deliberate: those four are dropped whatever they are ("textures" looks for "text.dxt.toc").
/// CacheFileName.DropsTheLastFourCharactersOfTheListWhateverTheyAre pins it.
std::filesystem::path CacheFilePath(const std::filesystem::path& list, CacheIndex cache,
                                    std::wstring_view extension);
