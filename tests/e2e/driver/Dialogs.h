#pragma once

// Dialogs of the driven program: message boxes, the file dialogs and the folder browser of Windows, and the
// program's own. Each function waits for the dialog; answering waits until it is gone.

#include "base/Windows.h"

#include <filesystem>
#include <string>
#include <vector>

/// What the picture of a message box says.
enum class BoxIcon { None, Information, Question, Warning, Error };

/// A dialog that is open.
class COpenDialog {
public:
    explicit COpenDialog(HWND window) : m_hWindow(window) {}

    HWND Handle() const { return m_hWindow; }
    std::wstring Caption() const;
    /// The labels, from the first on, without empty ones.
    std::vector<std::wstring> Labels() const;
    /// The captions of the push buttons, without access keys.
    std::vector<std::wstring> Buttons() const;
    /// What stands in the first edit field.
    std::wstring Typed() const;
    /// Fills the first edit field.
    void Type(const std::wstring& text) const;
    /// Presses the button with this id (IDOK, IDYES...) and waits until the dialog is gone.
    void Press(int button) const;

private:
    HWND m_hWindow;
};

/// A message box that is open.
class COpenMessageBox final : public COpenDialog {
public:
    using COpenDialog::COpenDialog;

    std::wstring Text() const;
    /// Told by the pixels on the screen: another process cannot ask for the icon itself.
    BoxIcon Icon() const;
};

/// The message box that opens, or is open.
COpenMessageBox WaitForMessageBox(DWORD process);
/// Asks the window for the context menu of the focused item, as the keyboard does, and chooses the command
/// with that access key.
void ChooseByContextMenu(HWND window, HWND control, WORD accessKey);
/// True while a message box is open.
bool HasMessageBox(DWORD process);
/// The dialog of the program's own with that caption.
COpenDialog WaitForDialog(DWORD process, const std::wstring& caption);
/// A common file dialog; ProposedName and answering by Type and Press work on it.
COpenDialog WaitForFileDialog(DWORD process);
/// What stands in the file name field.
std::wstring ProposedName(const COpenDialog& fileDialog);
/// Types the path and confirms; several are typed as quoted names of the folder that the dialog shows, which
/// must be theirs.
void ChooseFiles(const COpenDialog& fileDialog, const std::vector<std::filesystem::path>& files);
/// The folder browser.
COpenDialog WaitForFolderDialog(DWORD process);
/// Selects the folder, which must exist, and confirms.
void ChooseFolder(const COpenDialog& folderDialog, const std::filesystem::path& folder);
