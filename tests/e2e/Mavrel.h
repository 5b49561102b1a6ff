#pragma once

// The real program on a list, in a folder of its own with fresh settings, and what a person sees of it.

#include <filesystem>
#include <string>
#include <vector>

#include "tests/e2e/driver/Controls.h"
#include "tests/e2e/driver/Dialogs.h"
#include "tests/e2e/driver/Program.h"
#include "tests/support/TemporaryFolder.h"

/// A copy of the program and its plugins, so that its settings file belongs to one test. The start picture is
/// off.
class CInstallation {
public:
    CInstallation();

    std::filesystem::path Program() const { return m_oFolder / "mavrel.exe"; }
    std::filesystem::path Settings() const { return m_oFolder / "mavrel.ini"; }
    std::wstring Setting(const std::wstring& section, const std::wstring& key) const;

private:
    CTemporaryFolder m_oFolder;
};

/// The running program. Questions that it asks while it opens the list come before the constructor's end:
/// then the caller answers them and calls WaitUntilLoaded.
class CMavrel {
public:
    /// Starts the program, with a list or without, and waits for its window.
    CMavrel(const CInstallation& installation, const std::vector<std::wstring>& arguments);
    ~CMavrel();
    CMavrel(const CMavrel&) = delete;
    CMavrel& operator=(const CMavrel&) = delete;

    DWORD Id() const { return m_oProgram.Id(); }
    HWND Window() const { return m_hWindow; }
    DWORD WaitForExit() const { return m_oProgram.WaitForExit(); }

    std::wstring Title() const;
    CTree Tree() const;
    CTabs Tabs() const;
    CStatusPanes Panes() const;
    std::wstring Pane(std::size_t pane) const { return Panes().Text(pane); }
    /// Panes 2 to 6: what is known of the selected texture.
    std::vector<std::wstring> Facts() const;

    /// Chooses a menu command.
    void Command(int command) const;
    /// Waits until pane 0 says that this texture was drawn.
    void WaitUntilDrawn(const std::wstring& texture) const;
    /// Clicks a texture in the tree and waits until it is drawn.
    void ShowTexture(const std::wstring& texture) const;
    void WaitForPane(std::size_t pane, const std::wstring& text) const;

private:
    CProgram m_oProgram;
    HWND m_hWindow = nullptr;
};
