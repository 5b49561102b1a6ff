#include "ui/Menu.h"

std::wstring PlainMenuText(const std::wstring& text)
{
    std::wstring plain;
    for (const wchar_t character : text) {
        if (character == L'&')
            plain += character;
        plain += character == L'\t' ? L' ' : character;
    }
    return plain;
}

void CMenu::Enable(UINT id, bool enabled) const
{
    ::EnableMenuItem(m_hMenu, id, MF_BYCOMMAND | (enabled ? MF_ENABLED : MF_GRAYED));
}

void CMenu::Check(UINT id, bool checked) const
{
    ::CheckMenuItem(m_hMenu, id, MF_BYCOMMAND | (checked ? MF_CHECKED : MF_UNCHECKED));
}

void CMenu::CheckRadio(UINT first, UINT last, UINT chosen) const
{
    // Windows looks for the range in one menu only, so it has to be the popup that holds it.
    if (const auto popup = PopupWith(chosen))
        ::CheckMenuRadioItem(popup->Handle(), first, last, chosen, MF_BYCOMMAND);
}

bool CMenu::IsEnabled(UINT id) const
{
    const UINT state = ::GetMenuState(m_hMenu, id, MF_BYCOMMAND);
    return state != static_cast<UINT>(-1) && (state & (MF_GRAYED | MF_DISABLED)) == 0;
}

bool CMenu::IsChecked(UINT id) const
{
    const UINT state = ::GetMenuState(m_hMenu, id, MF_BYCOMMAND);
    return state != static_cast<UINT>(-1) && (state & MF_CHECKED) != 0;
}

std::wstring CMenu::Text(UINT id) const
{
    std::wstring text(256, L'\0');
    const int length =
        ::GetMenuStringW(m_hMenu, id, text.data(), static_cast<int>(text.size()), MF_BYCOMMAND);
    text.resize(static_cast<std::size_t>(length));
    return text;
}

std::optional<CMenu> CMenu::PopupWith(UINT id) const
{
    for (int position = 0; position < Count(); ++position) {
        if (::GetMenuItemID(m_hMenu, position) == id)
            return *this;
        const CMenu popup = Popup(position);
        if (popup.Handle() == nullptr)
            continue;
        if (const auto found = popup.PopupWith(id))
            return found;
    }
    return std::nullopt;
}

void CMenu::Append(UINT id, const std::wstring& text) const
{
    ::AppendMenuW(m_hMenu, MF_STRING, id, text.c_str());
}

void CMenu::AppendSeparator() const
{
    ::AppendMenuW(m_hMenu, MF_SEPARATOR, 0, nullptr);
}

CMenu CMenu::AppendPopup(const std::wstring& text, bool enabled) const
{
    CMenuHandle popup(::CreatePopupMenu());
    const UINT flags = MF_POPUP | (enabled ? MF_ENABLED : MF_GRAYED);
    const auto id = reinterpret_cast<UINT_PTR>(popup.get());  // NOLINT: how AppendMenu takes a popup
    if (::AppendMenuW(m_hMenu, flags, id, text.c_str()) == FALSE)
        return {};
    return CMenu(popup.release());
}

void CMenu::Clear() const
{
    CutFrom(0);
}

void CMenu::CutFrom(int position) const
{
    for (int last = Count() - 1; last >= position; --last)
        ::DeleteMenu(m_hMenu, static_cast<UINT>(last), MF_BYPOSITION);
}

void CMenu::Track(HWND owner, POINT place) const
{
    ::TrackPopupMenuEx(m_hMenu, TPM_RIGHTBUTTON, place.x, place.y, owner, nullptr);
}
