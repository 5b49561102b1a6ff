#include "base/Settings.h"

std::wstring SettingsPathOf(std::wstring_view argument0)
{
    const std::size_t dot = argument0.rfind(L'.');
    const std::wstring_view stem =
        dot == std::wstring_view::npos ? std::wstring_view() : argument0.substr(0, dot + 1);
    return std::wstring(stem) + L"ini";
}
