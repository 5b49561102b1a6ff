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
    void SetSetting(const std::wstring& section, const std::wstring& key, const std::wstring& value) const;
    /// Adds the interface languages.
    void AddLanguages() const;

private:
    CTemporaryFolder m_oFolder;
};

/// The main window and its controls. They are looked up once: while the program fills a control it is not
/// visible, and would not be found.
struct MainWindow {
    HWND window = nullptr;
    HWND tree = nullptr;
    HWND tabs = nullptr;
    HWND status = nullptr;
};

/// What a dialog for one value shows, and what is typed into it.
struct ValueStep {
    std::wstring title;
    std::wstring label;
    std::wstring proposed;
    std::wstring typed;
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
    HWND Window() const { return m_oMain.window; }
    DWORD WaitForExit() const { return m_oProgram.WaitForExit(); }

    std::wstring Title() const;
    CTree Tree() const;
    CTabs Tabs() const;
    CStatusPanes Panes() const;
    std::wstring Pane(std::size_t pane) const { return Panes().Text(pane); }
    /// Panes 2 to 6: what is known of the selected texture.
    std::vector<std::wstring> Facts() const;

    /// Chooses a menu command, which may open a dialog.
    void Command(int command) const;
    /// Runs a command that opens no dialog to its end.
    void Run(int command) const;
    /// Selects items of the tree and no others; the first gets the focus.
    void Select(std::initializer_list<std::wstring_view> texts) const { Tree().Select(texts); }
    /// Renames the focused item in the tree, as far as typing the name and Enter.
    void TypeNewName(const std::wstring& name) const;
    /// Waits for the message box, expects this text and presses a button.
    void Answer(const std::wstring& text, int button) const;
    /// The same for an error box, with its caption and icon, and OK.
    void AcceptError(const std::wstring& text) const;
    /// Waits for the dialog for one value, expects what it shows, types the value and confirms.
    void AnswerValue(const ValueStep& step) const;
    /// Waits until the tree has an item with this text, indented as by CTree::Texts.
    void WaitForItem(const std::wstring& text) const;
    /// Waits until pane 0 says that this texture was drawn.
    void WaitUntilDrawn(const std::wstring& texture) const;
    /// Selects a texture in the tree and waits until it is drawn.
    void ShowTexture(const std::wstring& texture) const;
    void WaitForPane(std::size_t pane, const std::wstring& text) const;

private:
    CProgram m_oProgram;
    MainWindow m_oMain;
};
