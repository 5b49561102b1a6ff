#include "ui/Theme.h"

#include <uxtheme.h>

bool IsWine()
{
    const HMODULE system = ::GetModuleHandleW(L"ntdll.dll");
    return system != nullptr && ::GetProcAddress(system, "wine_get_version") != nullptr;
}

void UseExplorerTheme(const CWindow& control)
{
    // Wine paints the items of such a tree on a background of another colour.
    if (IsWine())
        return;
    ::SetWindowTheme(control.Handle(), L"Explorer", nullptr);
}

bool HasExplorerTheme()
{
    return !IsWine() && ::IsAppThemed() != FALSE;
}
