#pragma once

// Creating a database without losing one that is already there.

#include <filesystem>
#include <span>

#include "base/Prompt.h"
#include "database/TextureDatabase.h"

enum class CreateResult {
    Created,
    Declined,  ///< files of that name exist and the person wants to keep them
    NoCaches,  ///< nothing could be created; the box was shown
};

/// Creates the list and the files of `caches`. When one of the thirteen files of that base name exists it
/// asks first, with No proposed.
CreateResult CreateDatabase(CTextureDatabase& database, const std::filesystem::path& list,
                            std::span<const CacheIndex> caches, IPrompt& prompt);
