#pragma once

// What a file is to the editor, by its extension: how a dropped file is treated.

#include <filesystem>

enum class FileKind {
    Picture,     ///< one of the image formats that import reads
    Database,    ///< a TXT list, or a cache file that belongs to one
    Dictionary,  ///< a RenderWare texture dictionary
    Model,       ///< a RenderWare model
    Archive,     ///< an IMG archive
    Other,
};

/// A-Z and a-z are the same.
FileKind FileKindOf(const std::filesystem::path& file);
