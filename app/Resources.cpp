#include "app/Resources.h"

std::wstring CResources::Text(UINT id) const
{
    // With a size of 0 the function returns a pointer to the text itself, whatever its length.
    const wchar_t* text = nullptr;
    const int length =
        ::LoadStringW(m_hCurrent, id, reinterpret_cast<LPWSTR>(&text), 0);  // NOLINT: as documented
    return length > 0 ? std::wstring(text, static_cast<std::size_t>(length)) : std::wstring();
}

CMenuHandle CResources::Menu(int id) const
{
    return CMenuHandle(::LoadMenuW(m_hCurrent, MAKEINTRESOURCEW(id)));
}

CAcceleratorHandle CResources::Accelerators(int id) const
{
    return CAcceleratorHandle(::LoadAcceleratorsW(m_hCurrent, MAKEINTRESOURCEW(id)));
}

CIconHandle CResources::Icon(int id, bool small) const
{
    const int side = ::GetSystemMetrics(small ? SM_CXSMICON : SM_CXICON);
    return CIconHandle(static_cast<HICON>(
        ::LoadImageW(m_hProgram, MAKEINTRESOURCEW(id), IMAGE_ICON, side, side, LR_DEFAULTCOLOR)));
}
