#include "ui/CustomWindow.h"

CCustomWindow::~CCustomWindow()
{
    if (Exists())
        ::SetWindowLongPtrW(Handle(), GWLP_USERDATA, 0);
}

void CCustomWindow::Register(HINSTANCE module, const wchar_t* className)
{
    WNDCLASSEXW windowClass{};
    windowClass.cbSize = sizeof windowClass;
    windowClass.style = CS_DBLCLKS;
    windowClass.lpfnWndProc = Procedure;
    windowClass.hInstance = module;
    windowClass.hCursor = ::LoadCursorW(nullptr, IDC_ARROW);
    windowClass.lpszClassName = className;
    ::RegisterClassExW(&windowClass);
}

void CCustomWindow::TakeOver(HWND window)
{
    Attach(window);
    ::SetWindowLongPtrW(window, GWLP_USERDATA,
                        reinterpret_cast<LONG_PTR>(this));  // NOLINT: read in Procedure
}

LRESULT CALLBACK CCustomWindow::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    auto* self = reinterpret_cast<CCustomWindow*>(::GetWindowLongPtrW(window, GWLP_USERDATA));  // NOLINT
    if (message == WM_NCDESTROY && self != nullptr) {
        self->Attach(nullptr);
        ::SetWindowLongPtrW(window, GWLP_USERDATA, 0);
        self = nullptr;
    }
    if (self == nullptr)
        return ::DefWindowProcW(window, message, wParam, lParam);
    try {
        if (const auto result = self->m_oMessages.Dispatch(message, wParam, lParam))
            return *result;
    } catch (const std::exception&) {
        // Only drawing runs here; a picture that memory does not suffice for is left out.
        return 0;
    }
    return ::DefWindowProcW(window, message, wParam, lParam);
}
