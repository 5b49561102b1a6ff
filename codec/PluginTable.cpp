#include "codec/PluginTable.h"

#include <string>
#include <utility>

#include "base/Text.h"

namespace {

constexpr std::wstring_view kPluginKey = L"plugin";

}  // namespace

void CPluginTable::Discover(const std::filesystem::path& folder, IPrompt& prompt)
{
    for (const std::wstring& name : LibraryNames(folder)) {
        if (m_aPlugins.size() == kMostPlugins)
            return;
        auto library =
            LoadCompatibleLibrary(folder / ToPath(name), L"plugins\\" + name, kPluginLibrary, prompt);
        if (!library)
            continue;
        const auto threading = library->Find<MavrelGetPluginThreadingFn>("GetPluginThreading");
        const bool threadSafe = threading != nullptr && threading() != 0;
        m_aPlugins.push_back({.fileName = name, .library = std::move(*library), .threadSafe = threadSafe});
    }
}

void CPluginTable::BindFromSettings(ISettings& settings)
{
    for (const CacheIndex cache : kAllCaches) {
        const std::wstring wanted = settings.ReadString(CacheName(cache), kPluginKey);
        std::optional<std::size_t> last;
        // Deliberate: the name alone decides, even for a plugin that does not serve this cache.
        for (std::size_t plugin = 0; plugin < m_aPlugins.size(); ++plugin)
            if (m_aPlugins[plugin].fileName == wanted) {
                Bind(cache, plugin);
                last = plugin;
            }
        for (std::size_t plugin = 0; plugin < m_aPlugins.size(); ++plugin) {
            const bool isComplete = Compress(cache) != nullptr && Decompress(cache) != nullptr;
            if (!isComplete && m_aPlugins[plugin].Supports(cache)) {
                Bind(cache, plugin);
                last = plugin;
            }
        }
        if (last)
            settings.WriteString(CacheName(cache), kPluginKey, m_aPlugins[*last].fileName);
    }
}

void CPluginTable::Bind(CacheIndex cache, std::size_t plugin)
{
    const CodecPlugin& chosen = m_aPlugins.at(plugin);
    m_aBound[SlotOf(cache)] = {
        chosen.Compress(cache), chosen.Decompress(cache), plugin,
        chosen.threadSafe ? nullptr : chosen.callMutex.get(),
        chosen.TakesDitheringModes() ? DitheringChoice::Modes : DitheringChoice::OnOff};
}

void CPluginTable::Unbind(CacheIndex cache)
{
    m_aBound[SlotOf(cache)] = {};
}

void CPluginTable::BindFunctions(CacheIndex cache, MavrelCompressFn compress, MavrelDecompressFn decompress,
                                 CodecThreading threading, DitheringChoice dithering)
{
    auto& own = m_aOwnMutexes[SlotOf(cache)];
    if (threading == CodecThreading::OneAtATime && !own)
        own = std::make_unique<std::mutex>();
    m_aBound[SlotOf(cache)] = {compress, decompress, std::nullopt,
                               threading == CodecThreading::OneAtATime ? own.get() : nullptr, dithering};
}

std::unique_lock<std::mutex> LockCodec(std::mutex* oneAtATime)
{
    return oneAtATime != nullptr ? std::unique_lock(*oneAtATime) : std::unique_lock<std::mutex>();
}
