#include "codec/PluginTable.h"

#include <algorithm>
#include <string>
#include <system_error>
#include <utility>

#include "base/Text.h"

namespace {

#ifdef _WIN32
constexpr std::wstring_view kExtension = L".dll";
#else
constexpr std::wstring_view kExtension = L".so";
#endif
constexpr std::size_t kLongestFileName = 127;
constexpr std::wstring_view kPluginKey = L"plugin";

bool IsLibraryName(std::wstring_view name)
{
    return name.size() <= kLongestFileName && name.size() >= kExtension.size() &&
           ToLowerAscii(name.substr(name.size() - kExtension.size())) == kExtension;
}

// In the order in which Windows lists a folder: by upper-case name.
std::vector<std::wstring> LibraryNames(const std::filesystem::path& folder)
{
    std::vector<std::wstring> names;
    std::error_code error;
    std::filesystem::directory_iterator at(folder, error);
    while (!error && at != std::filesystem::directory_iterator()) {
        std::wstring name = FromPath(at->path().filename());
        if (IsLibraryName(name))
            names.push_back(std::move(name));
        at.increment(error);
    }
    std::sort(names.begin(), names.end(), [](const std::wstring& a, const std::wstring& b) {
        return std::pair(ToUpperAscii(a), a) < std::pair(ToUpperAscii(b), b);
    });
    return names;
}

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
        m_aPlugins.push_back({name, std::move(*library), threadSafe});
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
    m_aBound[SlotOf(cache)] = {chosen.Compress(cache), chosen.Decompress(cache), plugin};
}

void CPluginTable::Unbind(CacheIndex cache)
{
    m_aBound[SlotOf(cache)] = {};
}

void CPluginTable::BindFunctions(CacheIndex cache, MavrelCompressFn compress, MavrelDecompressFn decompress)
{
    m_aBound[SlotOf(cache)] = {compress, decompress, std::nullopt};
}
