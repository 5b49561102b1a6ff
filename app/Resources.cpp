#include "app/Resources.h"

std::wstring CResources::TextOf(HINSTANCE module, UINT id)
{
    // With a size of 0 the function returns a pointer to the text itself, whatever its length.
    const wchar_t* text = nullptr;
    const int length =
        ::LoadStringW(module, id, reinterpret_cast<LPWSTR>(&text), 0);  // NOLINT: as documented
    return length > 0 ? std::wstring(text, static_cast<std::size_t>(length)) : std::wstring();
}

HINSTANCE CResources::ModuleOf(const wchar_t* type, int id) const
{
    return ::FindResourceW(m_hCurrent, MAKEINTRESOURCEW(id), type) != nullptr ? m_hCurrent : m_hProgram;
}

std::wstring CResources::Text(UINT id) const
{
    const std::wstring text = TextOf(m_hCurrent, id);
    return text.empty() ? BuiltInText(id) : text;
}

CMenuHandle CResources::Menu(int id) const
{
    return CMenuHandle(::LoadMenuW(ModuleOf(RT_MENU, id), MAKEINTRESOURCEW(id)));
}

CAcceleratorHandle CResources::Accelerators(int id) const
{
    return CAcceleratorHandle(::LoadAcceleratorsW(ModuleOf(RT_ACCELERATOR, id), MAKEINTRESOURCEW(id)));
}

CIconHandle CResources::Icon(int id, bool small) const
{
    const int side = ::GetSystemMetrics(small ? SM_CXSMICON : SM_CXICON);
    return CIconHandle(static_cast<HICON>(
        ::LoadImageW(m_hProgram, MAKEINTRESOURCEW(id), IMAGE_ICON, side, side, LR_DEFAULTCOLOR)));
}
