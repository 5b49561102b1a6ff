#pragma once

// One loaded codec plugin and what it says about itself. plugins/plugin.h is the interface that it
// implements.

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "base/DynamicLibrary.h"
#include "database/CacheIndex.h"
#include "plugins/plugin.h"

struct CodecPlugin {
    std::wstring fileName;  // with extension, without folder
    CDynamicLibrary library;
    /// It says that its codecs may be called from several threads at once.
    bool threadSafe = false;
    /// What every call of its codecs holds otherwise.
    std::unique_ptr<std::mutex> callMutex = std::make_unique<std::mutex>();

    std::wstring DisplayName() const;
    std::wstring Description() const;
    /// The vector instructions that it uses; empty when it does not say.
    std::wstring InstructionSet() const;
    /// At most five names each; empty when the plugin lists none.
    std::vector<std::wstring> QualityNames() const;
    std::vector<std::wstring> DitheringNames() const;
    /// Its compress functions take the chosen dithering mode from the flag word.
    bool TakesDitheringModes() const;
    /// True when it exports both entry points of the cache.
    bool Supports(CacheIndex cache) const;
    /// Null when the plugin lacks the entry point.
    MavrelCompressFn Compress(CacheIndex cache) const;
    MavrelDecompressFn Decompress(CacheIndex cache) const;
};
