#include "tests/e2e/driver/Dialogs.h"

#include <algorithm>
#include <dlgs.h>
#include <functional>
#include <optional>
#include <shlobj.h>

#include "tests/e2e/driver/Input.h"
#include "tests/e2e/driver/RemoteMemory.h"
#include "tests/e2e/driver/Screen.h"
#include "tests/e2e/driver/Wait.h"
#include "tests/e2e/driver/WindowLookup.h"

namespace {

constexpr std::wstring_view kDialogClass = L"#32770";

bool IsStyle(HWND window, LONG_PTR mask, LONG_PTR style)
{
    return (::GetWindowLongPtrW(window, GWL_STYLE) & mask) == style;
}

// The place may be there without an icon. The handle of an icon means nothing in this process, but it tells
// that there is one.
HWND IconPlace(HWND box)
{
    for (const HWND window : Descendants(box))
        if (ClassOf(window) == L"Static" && IsStyle(window, SS_TYPEMASK, SS_ICON) &&
            Ask(window, STM_GETICON) != 0)
            return window;
    return nullptr;
}

// The field is inside a combination box in one form of the dialog and stands alone in the other.
HWND FileNameField(HWND dialog)
{
    for (const HWND window : Descendants(dialog)) {
        const int id = ::GetDlgCtrlID(window);
        if (id == cmb13)
            return FindDescendant(window, L"Edit");
        if (id == edt1 && ClassOf(window) == L"Edit")
            return window;
    }
    return nullptr;
}

bool IsFileDialog(HWND window)
{
    return FileNameField(window) != nullptr;
}

bool IsFolderDialog(HWND window)
{
    // A main window may be a dialog with a tree as well; only the browser has an OK button beside it.
    return !IsFileDialog(window) && FindDescendant(window, L"SysTreeView32") && ::GetDlgItem(window, IDOK);
}

bool IsMessageBox(HWND window)
{
    const auto inside = Descendants(window);
    return !inside.empty() && std::all_of(inside.begin(), inside.end(), [](HWND child) {
        const std::wstring name = ClassOf(child);
        return name == L"Static" || name == L"Button";
    });
}

std::optional<HWND> FindDialog(DWORD process, const std::function<bool(HWND)>& isIt)
{
    for (const HWND window : TopWindows(process))
        if (ClassOf(window) == kDialogClass && ::IsWindowEnabled(window) && isIt(window))
            return window;
    return std::nullopt;
}

HWND WaitForSuch(const std::string& what, DWORD process, const std::function<bool(HWND)>& isIt)
{
    return WaitFor(what, [&] { return FindDialog(process, isIt); });
}

std::wstring WithoutAccessKey(std::wstring text)
{
    std::erase(text, L'&');
    return text;
}

// Types as if by hand: the dialog hears of the change.
void SetFieldText(HWND field, const std::wstring& text)
{
    Ask(field, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));  // NOLINT: Windows translates this one
}

HWND EditField(HWND dialog)
{
    return WaitFor("an edit field", [dialog] {
        const HWND field = FindDescendant(dialog, L"Edit");
        return field ? std::optional(field) : std::nullopt;
    });
}

}  // namespace

std::wstring COpenDialog::Caption() const
{
    return TextOf(m_hWindow);
}

std::vector<std::wstring> COpenDialog::Labels() const
{
    std::vector<std::wstring> labels;
    for (const HWND window : Descendants(m_hWindow))
        if (ClassOf(window) == L"Static" && !IsStyle(window, SS_TYPEMASK, SS_ICON) && !TextOf(window).empty())
            labels.push_back(TextOf(window));
    return labels;
}

std::vector<std::wstring> COpenDialog::Buttons() const
{
    std::vector<std::wstring> captions;
    for (const HWND window : Descendants(m_hWindow)) {
        const bool isPushButton =
            IsStyle(window, BS_TYPEMASK, BS_PUSHBUTTON) || IsStyle(window, BS_TYPEMASK, BS_DEFPUSHBUTTON);
        if (ClassOf(window) == L"Button" && isPushButton)
            captions.push_back(WithoutAccessKey(TextOf(window)));
    }
    return captions;
}

std::wstring COpenDialog::Typed() const
{
    return TextOf(EditField(m_hWindow));
}

void COpenDialog::Type(const std::wstring& text) const
{
    SetFieldText(EditField(m_hWindow), text);
}

void COpenDialog::Press(int button) const
{
    const HWND pressed = ::GetDlgItem(m_hWindow, button);
    const auto parameter = reinterpret_cast<LPARAM>(pressed);  // NOLINT: how the message is defined
    ::PostMessageW(m_hWindow, WM_COMMAND, MAKEWPARAM(button, BN_CLICKED), parameter);
    WaitUntil("the dialog to close",
              [this] { return !::IsWindow(m_hWindow) || !::IsWindowVisible(m_hWindow); });
}

std::wstring COpenMessageBox::Text() const
{
    const auto labels = Labels();
    return labels.empty() ? std::wstring() : labels.front();
}

BoxIcon COpenMessageBox::Icon() const
{
    const HWND place = IconPlace(Handle());
    if (!place)
        return BoxIcon::None;
    switch (SystemIconIn(place)) {
        case SystemIcon::Information:
            return BoxIcon::Information;
        case SystemIcon::Question:
            return BoxIcon::Question;
        case SystemIcon::Warning:
            return BoxIcon::Warning;
        case SystemIcon::Error:
            return BoxIcon::Error;
    }
    return BoxIcon::None;
}

COpenMessageBox WaitForMessageBox(DWORD process)
{
    return COpenMessageBox(WaitForSuch("a message box", process, IsMessageBox));
}

void ChooseByContextMenu(HWND window, HWND control, WORD accessKey)
{
    constexpr std::wstring_view kMenuClass = L"#32768";
    DWORD process = 0;
    ::GetWindowThreadProcessId(window, &process);
    const auto isMenuOpen = [process, kMenuClass] {
        const auto windows = TopWindows(process);
        return std::any_of(windows.begin(), windows.end(),
                           [kMenuClass](HWND top) { return ClassOf(top) == kMenuClass; });
    };
    BringToFront(window);
    ::PostMessageW(window, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(control), -1);  // NOLINT: as defined
    WaitUntil("the context menu", isMenuOpen);
    PressKey(accessKey);
    WaitUntil("the context menu to close", [&] { return !isMenuOpen(); });
}

bool HasMessageBox(DWORD process)
{
    return FindDialog(process, IsMessageBox).has_value();
}

COpenDialog WaitForDialog(DWORD process, const std::wstring& caption)
{
    return COpenDialog(
        WaitForSuch("a dialog", process, [&caption](HWND window) { return TextOf(window) == caption; }));
}

COpenDialog WaitForFileDialog(DWORD process)
{
    return COpenDialog(WaitForSuch("a file dialog", process, IsFileDialog));
}

std::wstring ProposedName(const COpenDialog& fileDialog)
{
    return TextOf(FileNameField(fileDialog.Handle()));
}

void ChooseFiles(const COpenDialog& fileDialog, const std::vector<std::filesystem::path>& files)
{
    std::wstring text;
    for (const auto& file : files)
        text += (text.empty() ? L"\"" : L" \"") + file.filename().wstring() + L"\"";
    SetFieldText(FileNameField(fileDialog.Handle()), files.size() == 1 ? files.front().wstring() : text);
    fileDialog.Press(IDOK);
}

COpenDialog WaitForFolderDialog(DWORD process)
{
    return COpenDialog(WaitForSuch("the folder browser", process, IsFolderDialog));
}

void ChooseFolder(const COpenDialog& folderDialog, const std::filesystem::path& folder)
{
    const HWND window = folderDialog.Handle();
    const std::wstring path = folder.wstring();
    const std::wstring name = folder.filename().wstring();
    const CRemoteMemory memory(window, (path.size() + 1) * sizeof(wchar_t));
    memory.Write(0, path.c_str(), (path.size() + 1) * sizeof(wchar_t));
    // The browser drops a selection that comes before its tree is filled, and shows the folder's name once it
    // took one.
    WaitUntil("the browser to reach the folder", [&] {
        Ask(window, BFFM_SETSELECTIONW, TRUE, memory.AsParameter());
        const HWND field = FindDescendant(window, L"Edit");
        return !field || TextOf(field).find(name) != std::wstring::npos;
    });
    folderDialog.Press(IDOK);
}
