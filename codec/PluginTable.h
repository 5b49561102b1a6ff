#pragma once

// The codec plugins that were found and the entry points that are bound to each cache. It owns the libraries;
// bindings change only at start-up and by the plugin commands. plugins/plugin.h is the interface that a
// library implements.

#include <array>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "base/Prompt.h"
#include "base/Settings.h"
#include "codec/BuildNumber.h"
#include "codec/CodecPlugin.h"
#include "codec/LibraryCheck.h"
#include "database/CacheIndex.h"
#include "plugins/plugin.h"

/// Whether entry points may run on several threads at once.
enum class CodecThreading { OneAtATime, Free };

/// Whether a compress function is told which dithering mode is chosen, or only that one is.
enum class DitheringChoice { OnOff, Modes };

class CPluginTable {
public:
    static constexpr std::size_t kMostPlugins = 8;

    /// Loads the libraries of `folder` in name order, the first eight that are accepted.
    void Discover(const std::filesystem::path& folder, IPrompt& prompt);
    /// Binds each cache to the plugin that its "plugin" setting names, else to the first that supports it,
    /// and writes the name of the last one bound back.
    void BindFromSettings(ISettings& settings);
    /// Both entry points of the plugin, either of which may be missing.
    void Bind(CacheIndex cache, std::size_t plugin);
    void Unbind(CacheIndex cache);

    const std::vector<CodecPlugin>& Plugins() const { return m_aPlugins; }
    MavrelCompressFn Compress(CacheIndex cache) const { return m_aBound[SlotOf(cache)].compress; }
    MavrelDecompressFn Decompress(CacheIndex cache) const { return m_aBound[SlotOf(cache)].decompress; }
    /// The plugin whose entry points are bound, if it came from this table.
    std::optional<std::size_t> BoundPlugin(CacheIndex cache) const { return m_aBound[SlotOf(cache)].plugin; }
    /// For entry points that live in the program itself, as in tests and benchmarks.
    void BindFunctions(CacheIndex cache, MavrelCompressFn compress, MavrelDecompressFn decompress,
                       CodecThreading threading = CodecThreading::OneAtATime,
                       DitheringChoice dithering = DitheringChoice::OnOff);
    /// What the compress function bound to this cache is told of the dithering.
    DitheringChoice Dithering(CacheIndex cache) const { return m_aBound[SlotOf(cache)].dithering; }
    /// What every call of the entry points bound to this cache must hold, see LockCodec; null when they need
    /// nothing. Valid as long as the table and the binding.
    std::mutex* OneAtATime(CacheIndex cache) const { return m_aBound[SlotOf(cache)].oneAtATime; }

private:
    struct Binding {
        MavrelCompressFn compress = nullptr;
        MavrelDecompressFn decompress = nullptr;
        std::optional<std::size_t> plugin;
        std::mutex* oneAtATime = nullptr;
        DitheringChoice dithering = DitheringChoice::OnOff;
    };

    std::vector<CodecPlugin> m_aPlugins;
    std::array<Binding, kCacheCount> m_aBound{};
    std::array<std::unique_ptr<std::mutex>, kCacheCount> m_aOwnMutexes;
};

/// Held around every call of a codec: a library that does not say otherwise is never in two calls at once,
/// whichever caches it serves.
std::unique_lock<std::mutex> LockCodec(std::mutex* oneAtATime);
