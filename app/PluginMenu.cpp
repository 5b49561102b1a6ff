#include "app/PluginMenu.h"

#include <algorithm>

#include "app/resource.h"
#include "base/Format.h"

namespace {

// Names of a list that have a command of their own.
constexpr UINT kNamesPerCache = 5;

UINT FirstCommand(UINT first, CacheIndex cache)
{
    return first + kNamesPerCache * static_cast<UINT>(cache);
}

bool IsInRange(UINT command, UINT first, UINT count)
{
    return command >= first && command - first < count;
}

}  // namespace

CPluginMenu::CPluginMenu(CPluginTable& plugins, ISettings& settings, const CResources& resources,
                         IPrompt& prompt)
    : m_rPlugins(plugins), m_rSettings(settings), m_rResources(resources), m_rPrompt(prompt)
{
}

std::optional<std::size_t> CPluginMenu::ChosenPlugin(CacheIndex cache) const
{
    const std::wstring name = m_rSettings.ReadString(CacheName(cache), L"plugin");
    const auto& plugins = m_rPlugins.Plugins();
    const auto found = std::find_if(plugins.begin(), plugins.end(),
                                    [&name](const CodecPlugin& plugin) { return plugin.fileName == name; });
    if (found == plugins.end())
        return std::nullopt;
    return static_cast<std::size_t>(found - plugins.begin());
}

void CPluginMenu::Rebuild(const CMenu& options, int first) const
{
    options.CutFrom(first);
    for (const CacheIndex cache : kAllCaches)
        AppendCache(options, cache);
}

void CPluginMenu::AppendCache(const CMenu& options, CacheIndex cache) const
{
    const std::wstring name(CacheName(cache));
    const auto chosen = ChosenPlugin(cache);
    if (!chosen) {
        const UINT command = ID_PLUGIN_NONE + static_cast<UINT>(cache);
        options.Append(command, name);
        options.Enable(command, false);
        return;
    }
    const CodecPlugin& plugin = m_rPlugins.Plugins()[*chosen];
    const CMenu popup = options.AppendPopup(name + L"\t" + plugin.DisplayName());
    AppendPlugins(popup, cache, *chosen);
    popup.AppendSeparator();
    AppendNames(popup, m_rResources.Text(IDS_MENU_QUALITY), plugin.QualityNames(),
                FirstCommand(ID_PLUGIN_QUALITY, cache), m_rSettings.ReadInt(name, L"quality", 0));
    AppendNames(popup, m_rResources.Text(IDS_MENU_DITHERING), plugin.DitheringNames(),
                FirstCommand(ID_PLUGIN_DITHERING, cache), m_rSettings.ReadInt(name, L"dithering", 0));
    popup.AppendSeparator();
    popup.Append(ID_PLUGIN_INFORMATION + static_cast<UINT>(cache), m_rResources.Text(IDS_MENU_INFORMATION));
}

void CPluginMenu::AppendPlugins(const CMenu& popup, CacheIndex cache, std::size_t chosen) const
{
    const auto& plugins = m_rPlugins.Plugins();
    const CMenu list = popup.AppendPopup(m_rResources.Text(IDS_MENU_PLUGIN));
    const UINT first = ID_PLUGIN_CHOICE + static_cast<UINT>(SlotOf(cache) * plugins.size());
    for (std::size_t index = 0; index < plugins.size(); ++index)
        if (plugins[index].Supports(cache))
            list.Append(first + static_cast<UINT>(index),
                        plugins[index].fileName + L"\t" + plugins[index].DisplayName());
    list.CheckRadio(first, first + static_cast<UINT>(plugins.size()) - 1, first + static_cast<UINT>(chosen));
}

void CPluginMenu::AppendNames(const CMenu& popup, const std::wstring& title,
                              const std::vector<std::wstring>& names, UINT firstCommand, int chosen) const
{
    const CMenu list = popup.AppendPopup(title, !names.empty());
    const auto count = static_cast<UINT>(std::min<std::size_t>(names.size(), kNamesPerCache));
    for (UINT index = 0; index < count; ++index)
        list.Append(firstCommand + index, names[index]);
    if (chosen >= 0 && static_cast<UINT>(chosen) < count)
        list.CheckRadio(firstCommand, firstCommand + count - 1, firstCommand + static_cast<UINT>(chosen));
}

bool CPluginMenu::Execute(UINT command)
{
    constexpr UINT kNameCommands = kNamesPerCache * kCacheCount;
    if (IsInRange(command, ID_PLUGIN_INFORMATION, kCacheCount)) {
        ShowInformation(kAllCaches[command - ID_PLUGIN_INFORMATION]);
        return false;
    }
    for (const auto& [first, key] :
         {std::pair(ID_PLUGIN_QUALITY, L"quality"), {ID_PLUGIN_DITHERING, L"dithering"}}) {
        if (!IsInRange(command, static_cast<UINT>(first), kNameCommands))
            continue;
        const UINT choice = command - static_cast<UINT>(first);
        m_rSettings.WriteInt(CacheName(kAllCaches[choice / kNamesPerCache]), key,
                             static_cast<int>(choice % kNamesPerCache));
        return true;
    }
    return command >= ID_PLUGIN_CHOICE && ChoosePlugin(command - ID_PLUGIN_CHOICE);
}

bool CPluginMenu::ChoosePlugin(std::size_t choice)
{
    const std::size_t count = m_rPlugins.Plugins().size();
    if (count == 0 || choice / count >= kCacheCount)
        return false;
    const CacheIndex cache = kAllCaches[choice / count];
    const std::size_t plugin = choice % count;
    if (ChosenPlugin(cache) == plugin)
        return false;
    const std::wstring_view section = CacheName(cache);
    m_rSettings.WriteString(section, L"plugin", m_rPlugins.Plugins()[plugin].fileName);
    m_rPlugins.Bind(cache, plugin);
    // The lists of the old plugin mean nothing to the new one.
    m_rSettings.WriteInt(section, L"quality", 0);
    m_rSettings.WriteInt(section, L"dithering", 0);
    return true;
}

void CPluginMenu::ShowInformation(CacheIndex cache)
{
    const auto chosen = ChosenPlugin(cache);
    if (!chosen)
        return;
    const CodecPlugin& plugin = m_rPlugins.Plugins()[*chosen];
    const std::wstring name(CacheName(cache));
    m_rPrompt.Show({.text = Format(m_rResources.Text(IDS_PLUGIN_INFORMATION), name, plugin.DisplayName(),
                                   plugin.Description()),
                    .caption = name,
                    .icon = PromptIcon::Information});
}
