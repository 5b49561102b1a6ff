#pragma once

// The interface languages: English, which is built in, and the libraries in the folder "lang" beside the
// program. This class owns the loaded library and makes its resources the current ones; whoever shows texts
// takes them anew after a change. The settings hold which one is chosen.

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/Resources.h"
#include "base/DynamicLibrary.h"
#include "base/Prompt.h"
#include "base/Settings.h"
#include "ui/Menu.h"

/// What a choice has led to.
enum class LanguageChange {
    Changed,  // the resources are those of the chosen language
    Failed    // the box was shown; the resources are the built-in ones
};

class CLanguages {
public:
    /// `folder` holds the libraries; it need not exist.
    CLanguages(CResources& resources, ISettings& settings, IPrompt& prompt, std::filesystem::path folder);

    /// Base names of the libraries, as the folder lists them; no more than there are commands for.
    std::vector<std::wstring> Names() const;
    /// Puts one item for each library below "English (default)" and checks the current one. `menu` is the
    /// menu with that item, or any that it is in.
    void FillMenu(const CMenu& menu) const;

    /// The language of a menu command, English or a library. Nothing when there is no such library any more.
    std::optional<LanguageChange> Choose(UINT command);
    /// The language of the settings. Nothing when that is the built-in one.
    std::optional<LanguageChange> LoadFromSettings();
    /// A library by its base name; the empty name is built-in English.
    LanguageChange Load(const std::wstring& name);

private:
    bool LoadLibraryNamed(const std::wstring& name);
    std::wstring MenuText(const std::wstring& name) const;

    CResources& m_rResources;
    ISettings& m_rSettings;
    IPrompt& m_rPrompt;
    std::filesystem::path m_sFolder;
    std::optional<CDynamicLibrary> m_oLibrary;
};
