#include "base/Windows.h"

#include <exception>
#include <shellapi.h>
#include <string>
#include <vector>

#include "app/MavrelApp.h"

namespace {

std::vector<std::wstring> Arguments()
{
    int count = 0;
    wchar_t** list = ::CommandLineToArgvW(::GetCommandLineW(), &count);
    if (list == nullptr)
        return {};
    std::vector<std::wstring> arguments(list, list + count);
    ::LocalFree(list);
    return arguments;
}

}  // namespace

int WINAPI wWinMain(HINSTANCE instance, HINSTANCE, PWSTR, int)
{
    try {
        return CMavrelApp(instance, Arguments()).Run();
    } catch (const std::exception&) {
        // Only memory can be short here, before there is a window that could say so.
        return 1;
    }
}
