#include "base/ProgramPath.h"

#include "base/Windows.h"

#include <string>

std::filesystem::path ProgramPath()
{
    constexpr std::size_t kLongestPath = 32768;
    std::wstring path(kLongestPath, L'\0');
    path.resize(::GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
    return path;
}
