// A window with everything that the driver can drive and as little as possible behind it: every event leaves
// its trace in the status bar, where the driver's own tests read it.

#include "base/Windows.h"

#include <array>
#include <commctrl.h>
#include <commdlg.h>
#include <cstdlib>
#include <objbase.h>
#include <shlobj.h>
#include <string>

#include "tests/e2e/window/resource.h"

namespace {

constexpr std::array<const wchar_t*, 3> kTabs = {L"ONE", L"REFUSED", L"THREE"};

struct TestWindow {
    HWND frame = nullptr;
    HWND tree = nullptr;
    HWND tabs = nullptr;
    HWND status = nullptr;
};

void Show(const TestWindow& window, int pane, const std::wstring& text)
{
    ::SendMessageW(window.status, SB_SETTEXTW, static_cast<WPARAM>(pane),
                   reinterpret_cast<LPARAM>(text.c_str()));
}

HTREEITEM Insert(HWND tree, HTREEITEM parent, const wchar_t* text, LPARAM data)
{
    TVINSERTSTRUCTW item{};
    item.hParent = parent;
    item.hInsertAfter = TVI_LAST;
    item.item.mask = TVIF_TEXT | TVIF_PARAM;
    item.item.pszText = const_cast<wchar_t*>(text);  // the structure serves reading, too
    item.item.lParam = data;
    return reinterpret_cast<HTREEITEM>(
        ::SendMessageW(tree, TVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item)));
}

HWND CreateChild(HWND parent, const wchar_t* className, DWORD style, const RECT& place)
{
    return ::CreateWindowExW(0, className, L"", WS_CHILD | WS_VISIBLE | style, place.left, place.top,
                             place.right - place.left, place.bottom - place.top, parent, nullptr, nullptr,
                             nullptr);
}

void CreateControls(TestWindow& window)
{
    window.tree =
        CreateChild(window.frame, WC_TREEVIEWW, TVS_HASBUTTONS | TVS_SHOWSELALWAYS, {0, 0, 200, 300});
    const HTREEITEM first = Insert(window.tree, nullptr, L"First", -1);
    Insert(window.tree, first, L"brick", 0);
    Insert(window.tree, first, L"wood \u00FC", 7);
    Insert(window.tree, nullptr, L"Second", -1);
    ::SendMessageW(window.tree, TVM_EXPAND, TVE_EXPAND, reinterpret_cast<LPARAM>(first));

    window.tabs = CreateChild(window.frame, WC_TABCONTROLW, 0, {210, 0, 600, 300});
    for (std::size_t index = 0; index < kTabs.size(); ++index) {
        TCITEMW item{};
        item.mask = TCIF_TEXT;
        item.pszText = const_cast<wchar_t*>(kTabs[index]);  // as above
        ::SendMessageW(window.tabs, TCM_INSERTITEMW, index, reinterpret_cast<LPARAM>(&item));
    }

    window.status = CreateChild(window.frame, STATUSCLASSNAMEW, 0, {0, 0, 0, 0});
    std::array<int, 3> edges = {300, 450, -1};
    ::SendMessageW(window.status, SB_SETPARTS, edges.size(), reinterpret_cast<LPARAM>(edges.data()));
    Show(window, 0, L"ready");
}

void AskQuestion(const TestWindow& window)
{
    const int answer =
        ::MessageBoxW(window.frame, L"Is it so?\n\nReally?", L"A question", MB_YESNOCANCEL | MB_ICONQUESTION);
    Show(window, 0, L"answer " + std::to_wstring(answer));
}

void ShowBox(const TestWindow& window, UINT icon)
{
    ::MessageBoxW(window.frame, L"text", L"caption", MB_OK | icon);
    Show(window, 0, L"box closed");
}

void AskFileName(const TestWindow& window)
{
    std::array<wchar_t, MAX_PATH> path = {L'b', L'r', L'i', L'c', L'k'};
    OPENFILENAMEW dialog{};
    dialog.lStructSize = sizeof dialog;
    dialog.hwndOwner = window.frame;
    dialog.lpstrFilter = L"Pictures\0*.png\0";
    dialog.lpstrDefExt = L"png";
    dialog.lpstrFile = path.data();
    dialog.nMaxFile = static_cast<DWORD>(path.size());
    dialog.Flags = OFN_EXPLORER;
    Show(window, 0, ::GetSaveFileNameW(&dialog) ? path.data() : L"no file");
}

void AskFolder(const TestWindow& window)
{
    BROWSEINFOW dialog{};
    dialog.hwndOwner = window.frame;
    dialog.lpszTitle = L"Choose";
    dialog.ulFlags = BIF_RETURNONLYFSDIRS | BIF_EDITBOX | BIF_NEWDIALOGSTYLE;
    const LPITEMIDLIST chosen = ::SHBrowseForFolderW(&dialog);
    std::array<wchar_t, MAX_PATH> path{};
    Show(window, 0, chosen && ::SHGetPathFromIDListW(chosen, path.data()) ? path.data() : L"no folder");
    ::CoTaskMemFree(chosen);
}

INT_PTR CALLBACK OnValueDialog(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_INITDIALOG)
        ::SetWindowLongPtrW(dialog, DWLP_USER, lParam);
    if (message != WM_COMMAND || (LOWORD(wParam) != IDOK && LOWORD(wParam) != IDCANCEL))
        return FALSE;
    std::array<wchar_t, 100> text{};
    ::GetDlgItemTextW(dialog, IDC_VALUE, text.data(), static_cast<int>(text.size()));
    const auto* window = reinterpret_cast<const TestWindow*>(::GetWindowLongPtrW(dialog, DWLP_USER));
    Show(*window, 0, LOWORD(wParam) == IDOK ? text.data() : L"no value");
    ::EndDialog(dialog, 0);
    return TRUE;
}

void OnCommand(const TestWindow& window, int command)
{
    switch (command) {
        case ID_QUESTION:
            return AskQuestion(window);
        case ID_BOX_INFORMATION:
            return ShowBox(window, MB_ICONINFORMATION);
        case ID_BOX_WARNING:
            return ShowBox(window, MB_ICONWARNING);
        case ID_BOX_ERROR:
            return ShowBox(window, MB_ICONERROR);
        case ID_BOX_PLAIN:
            return ShowBox(window, 0);
        case ID_FILE_NAME:
            return AskFileName(window);
        case ID_FOLDER:
            return AskFolder(window);
        case ID_VALUE:
            ::DialogBoxParamW(nullptr, MAKEINTRESOURCEW(IDD_VALUE), window.frame, OnValueDialog,
                              reinterpret_cast<LPARAM>(&window));
            return;
        case ID_KEY:
            return Show(window, 0, L"Ctrl+F6");
        default:
            return;
    }
}

void OnNotify(const TestWindow& window, const NMHDR& notification)
{
    if (notification.code == TVN_SELCHANGEDW) {
        const auto& change = reinterpret_cast<const NMTREEVIEWW&>(notification);
        Show(window, 1, L"data " + std::to_wstring(static_cast<int>(change.itemNew.lParam)));
    }
    if (notification.code == TCN_SELCHANGE && ::SendMessageW(window.tabs, TCM_GETCURSEL, 0, 0) == 1) {
        ::SendMessageW(window.tabs, TCM_SETCURSEL, 0, 0);
        Show(window, 0, L"tab refused");
    }
}

LRESULT CALLBACK WindowProcedure(HWND frame, UINT message, WPARAM wParam, LPARAM lParam)
{
    auto* window = reinterpret_cast<TestWindow*>(::GetWindowLongPtrW(frame, GWLP_USERDATA));
    if (message == WM_COMMAND && window)
        OnCommand(*window, LOWORD(wParam));
    if (message == WM_NOTIFY && window)
        OnNotify(*window, *reinterpret_cast<const NMHDR*>(lParam));
    if (message == WM_LBUTTONDOWN && window)
        Show(*window, 2, ::GetKeyState(VK_CONTROL) < 0 ? L"with Ctrl" : L"plain");
    if (message == WM_DESTROY)
        ::PostQuitMessage(42);
    return ::DefWindowProcW(frame, message, wParam, lParam);
}

}  // namespace

int WINAPI wWinMain(HINSTANCE instance, HINSTANCE /*previous*/, PWSTR arguments, int /*show*/)
{
    ::CoInitialize(nullptr);
    ::InitCommonControls();
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = WindowProcedure;
    windowClass.hInstance = instance;
    windowClass.lpszClassName = L"DriverTestWindow";
    ::RegisterClassW(&windowClass);

    TestWindow window;
    window.frame = ::CreateWindowExW(0, windowClass.lpszClassName, arguments, WS_OVERLAPPEDWINDOW, 50, 50,
                                     640, 400, nullptr, nullptr, instance, nullptr);
    CreateControls(window);
    ::SetWindowLongPtrW(window.frame, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(&window));
    ::ShowWindow(window.frame, SW_SHOW);

    const HACCEL keys = ::LoadAcceleratorsW(instance, MAKEINTRESOURCEW(IDR_KEYS));
    MSG message{};
    while (::GetMessageW(&message, nullptr, 0, 0) > 0) {
        if (::TranslateAcceleratorW(window.frame, keys, &message))
            continue;
        ::TranslateMessage(&message);
        ::DispatchMessageW(&message);
    }
    return static_cast<int>(message.wParam);
}
