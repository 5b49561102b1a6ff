#include "tests/e2e/driver/Drop.h"

#include <shlobj.h>
#include <string>

#include "tests/e2e/driver/RemoteMemory.h"
#include "tests/e2e/driver/Wait.h"

void DropFiles(HWND window, const std::vector<std::filesystem::path>& files, POINT place)
{
    std::wstring names;
    for (const auto& file : files)
        names += file.wstring() + L'\0';
    names += L'\0';
    DROPFILES header{};
    header.pFiles = sizeof header;
    header.pt = place;
    header.fWide = TRUE;
    // An address of its own serves as the handle of global memory. The receiver lets go of it.
    CRemoteMemory memory(window, sizeof header + names.size() * sizeof(wchar_t));
    memory.Put(0, header);
    memory.Write(sizeof header, names.data(), names.size() * sizeof(wchar_t));
    if (!::PostMessageW(window, WM_DROPFILES, static_cast<WPARAM>(memory.AsParameter()), 0))
        throw CDriveError("the window for dropped files is gone");
    memory.Leave();
}
