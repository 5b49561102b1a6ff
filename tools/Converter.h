#pragma once

// Builds one cache of a database from another: every texture of the source is decoded and stored in the form
// of the target, whose files are written anew beside the old ones and replace them at the end. Aliases stay
// aliases. Pool threads decode and encode bytes that they were handed, so several textures are in work at
// once; the files are the same with any number of threads. It borrows everything.

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "base/Progress.h"
#include "base/Prompt.h"
#include "base/Settings.h"
#include "codec/PluginTable.h"
#include "database/TextureDatabase.h"

struct ConversionRequest {
    CacheIndex source = CacheIndex::Dxt;
    CacheIndex target = CacheIndex::Etc1;
};

/// What became of a conversion. A texture that failed has no raster in the target.
struct ConversionCounts {
    std::uint32_t converted = 0;
    std::uint32_t aliases = 0;
    std::uint32_t failed = 0;
    std::wstring firstError;
    bool wasStopped = false;  // the target is as it was
};

/// What to tell the person about textures that failed; empty when none did.
std::wstring ConversionFailureText(const ConversionCounts& counts);

enum class ConversionCheck {
    Ready,
    Refused,       ///< a box has said why
    NotConfirmed,  ///< the target exists, and the person does not want to lose it
};

struct ConverterParts {
    CTextureDatabase& database;
    const CPluginTable& plugins;
    const ISettings& settings;
    IPrompt& prompt;
    IProgress& progress;
};

struct ConverterOptions {
    /// Threads that decode and encode; 0: one for every core.
    unsigned jobs = 0;
    /// Runs a step on the thread that owns the database, and waits until it has run. Without it, that thread
    /// calls Run.
    std::function<void(const std::function<void()>& step)> onOwner = {};
};

class CConverter {
public:
    /// The text of the reports while the headers are read; afterwards each texture's name is reported.
    static constexpr std::wstring_view kPreparing = L"Preparing...";

    explicit CConverter(const ConverterParts& parts, ConverterOptions options = {});

    /// Asks and refuses before anything is touched: the same cache twice, a target that exists, a source that
    /// cannot be decoded, a target without an encoder. On the thread that owns the database.
    ConversionCheck Check(const ConversionRequest& request);
    /// Converts. Any thread may call it; the database, the settings, the prompt and the progress are used in
    /// steps on their owner's thread only. Throws CError (not shown) when the new files cannot be written;
    /// the target is as it was then, unless its old thumbnails alone could not be replaced.
    ConversionCounts Run(const ConversionRequest& request);

private:
    bool CanConvert(const ConversionRequest& request);

    ConverterParts m_oParts;
    ConverterOptions m_oOptions;
};
