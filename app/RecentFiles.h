#pragma once

// The databases that were open last, newest first: kept in the settings, shown as a popup of the file menu.

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include "base/Settings.h"
#include "ui/Menu.h"

class CRecentFiles {
public:
    static constexpr std::size_t kMost = 8;

    /// Borrows the settings.
    explicit CRecentFiles(ISettings& settings) : m_rSettings(settings) {}

    std::vector<std::filesystem::path> List() const;
    /// Puts a file first; it stands in the list only once, however its name is written.
    void Add(const std::filesystem::path& file);
    void Remove(const std::filesystem::path& file);
    /// Fills the popup of `menu` that holds the recent files; `none` stands there when there are none.
    void Show(const CMenu& menu, const std::wstring& none) const;

private:
    void Write(const std::vector<std::filesystem::path>& files);

    ISettings& m_rSettings;
};
