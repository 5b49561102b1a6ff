#pragma once

// Where a texture dictionary is: a file of its own, or a place in an archive that is open already.

#include <cstdint>
#include <filesystem>
#include <string>
#include <utility>

#include "base/File.h"
#include "base/Text.h"
#include "tools/TXDHelper.h"

struct DictionarySource {
    /// What the person knows it by.
    std::wstring title;
    std::filesystem::path file = {};
    /// The archive when there is no file of its own. Borrowed, and never closed.
    const IFile* archive = nullptr;
    std::uint64_t offset = 0;
};

inline DictionarySource DictionaryFile(const std::filesystem::path& file)
{
    return {.title = FromPath(file.filename()), .file = file};
}

/// The archive must stay open while the dictionary is used.
inline DictionarySource DictionaryInArchive(const IFile& archive, std::uint64_t offset, std::wstring name)
{
    return {.title = std::move(name), .archive = &archive, .offset = offset};
}

/// Throws RW::CException as the helper's own functions do.
inline void OpenDictionary(CTXDHelper& helper, const DictionarySource& source)
{
    if (source.archive != nullptr)
        helper.AttachDictionary(*source.archive, source.offset);
    else
        helper.OpenDictionary(source.file);
}
