#include "app/PropertyField.h"

namespace {

HWND CreateChild(const wchar_t* className, DWORD style, HWND parent, int id)
{
    const auto menu = reinterpret_cast<HMENU>(static_cast<INT_PTR>(id));  // NOLINT: how a child gets its id
    return ::CreateWindowExW(0, className, L"", WS_CHILD | style, 0, 0, 0, 0, parent, menu, nullptr, nullptr);
}

bool EndsEditing(WPARAM key)
{
    return key == VK_RETURN || key == VK_ESCAPE;
}

}  // namespace

bool CPropertyField::Create(HWND parent, int labelId, int id)
{
    m_oLabel.Attach(CreateChild(L"STATIC", 0, parent, labelId));
    const HWND edit =
        CreateChild(L"EDIT", WS_BORDER | WS_TABSTOP | WS_CLIPSIBLINGS | ES_AUTOHSCROLL, parent, id);
    if (edit == nullptr)
        return false;
    TakeOver(edit);
    return true;
}

void CPropertyField::Open(const std::wstring& name, const std::wstring& text, const RECT& place)
{
    m_oLabel.SetText(name);
    SetText(text);
    Move(place);
    Show(true);
    m_bOpen = true;
    Focus();
    Send(EM_SETSEL, 0, -1);
}

void CPropertyField::Close()
{
    m_bOpen = false;
    if (::GetFocus() == Handle())
        m_oHome.Focus();
    Show(false);
}

std::optional<LRESULT> CPropertyField::Filter(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
        case WM_GETDLGCODE: {
            // Without this the main window would take Enter and Esc for its own.
            const auto* asked = reinterpret_cast<const MSG*>(lParam);  // NOLINT: what the message carries
            const LRESULT wanted = PassOn(message, wParam, lParam);
            return asked != nullptr && EndsEditing(asked->wParam) ? wanted | DLGC_WANTALLKEYS : wanted;
        }
        case WM_KEYDOWN:
            return OnKey(wParam) ? std::optional<LRESULT>(0) : std::nullopt;
        case WM_CHAR:
            // The field of one line would beep.
            if (EndsEditing(wParam) || wParam == VK_TAB)
                return 0;
            return std::nullopt;
        case WM_SETFOCUS:
            // A window that comes back to the front focuses what had the focus when it left.
            if (m_bOpen)
                return std::nullopt;
            m_oHome.Focus();
            return 0;
        case WM_KILLFOCUS: {
            const LRESULT result = PassOn(message, wParam, lParam);
            Done(true);
            return result;
        }
        default:
            return std::nullopt;
    }
}

bool CPropertyField::OnKey(WPARAM key)
{
    if (!EndsEditing(key) && key != VK_TAB)
        return false;
    Done(key != VK_ESCAPE);
    return true;
}

void CPropertyField::Done(bool keep)
{
    // Closing the field takes the focus away, which says the same once more.
    if (m_bOpen && m_fnDone)
        m_fnDone(keep);
}
