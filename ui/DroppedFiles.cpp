#include "ui/DroppedFiles.h"

#include <shellapi.h>
#include <string>

void AcceptDroppedFiles(HWND window)
{
    ::DragAcceptFiles(window, TRUE);
}

DroppedFiles TakeDroppedFiles(WPARAM wParam)
{
    const auto drop = reinterpret_cast<HDROP>(wParam);  // NOLINT: how the message is defined
    DroppedFiles dropped;
    ::DragQueryPoint(drop, &dropped.place);
    const UINT count = ::DragQueryFileW(drop, 0xFFFFFFFF, nullptr, 0);
    for (UINT index = 0; index < count; ++index) {
        std::wstring name(::DragQueryFileW(drop, index, nullptr, 0) + 1, L'\0');
        name.resize(::DragQueryFileW(drop, index, name.data(), static_cast<UINT>(name.size())));
        dropped.files.emplace_back(name);
    }
    ::DragFinish(drop);
    return dropped;
}
