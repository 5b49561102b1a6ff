#pragma once

// The part of the options menu that the codec plugins fill: for each cache which plugin packs it, how well,
// with which dithering. It borrows everything; the settings hold what was chosen.

#include "app/Resources.h"
#include "base/Prompt.h"
#include "base/Settings.h"
#include "codec/PluginTable.h"
#include "ui/Menu.h"

class CPluginMenu {
public:
    CPluginMenu(CPluginTable& plugins, ISettings& settings, const CResources& resources, IPrompt& prompt);

    /// Replaces everything in `options` from position `first` on.
    void Rebuild(const CMenu& options, int first) const;
    /// Does what the command says; true when the menu has to be rebuilt.
    bool Execute(UINT command);

private:
    std::optional<std::size_t> ChosenPlugin(CacheIndex cache) const;
    void AppendCache(const CMenu& options, CacheIndex cache) const;
    void AppendPlugins(const CMenu& popup, CacheIndex cache, std::size_t chosen) const;
    void AppendNames(const CMenu& popup, const std::wstring& title, const std::vector<std::wstring>& names,
                     UINT firstCommand, int chosen) const;
    void ShowInformation(CacheIndex cache);
    bool ChoosePlugin(std::size_t choice);

    CPluginTable& m_rPlugins;
    ISettings& m_rSettings;
    const CResources& m_rResources;
    IPrompt& m_rPrompt;
};
