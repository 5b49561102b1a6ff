#include "app/WindowPlacement.h"

namespace {
constexpr wchar_t kSection[] = L"position";
}  // namespace

void SaveWindowPlace(const CWindow& window, ISettings& settings)
{
    RECT place = window.WindowRect();
    if (::IsIconic(window.Handle())) {
        // A minimised window stands far outside of every screen.
        WINDOWPLACEMENT placement{};
        placement.length = sizeof placement;
        ::GetWindowPlacement(window.Handle(), &placement);
        place = placement.rcNormalPosition;
    }
    settings.WriteInt(kSection, L"left", place.left);
    settings.WriteInt(kSection, L"right", place.right);
    settings.WriteInt(kSection, L"top", place.top);
    settings.WriteInt(kSection, L"bottom", place.bottom);
}

void RestoreWindowPlace(const CWindow& window, const ISettings& settings)
{
    const RECT saved = {settings.ReadInt(kSection, L"left", 0), settings.ReadInt(kSection, L"top", 0),
                        settings.ReadInt(kSection, L"right", 0), settings.ReadInt(kSection, L"bottom", 0)};
    // Deliberate: a window whose left edge was 0 opens at its default place.
    const bool usable = saved.left != 0 && saved.right > saved.left && saved.bottom > saved.top &&
                        ::MonitorFromRect(&saved, MONITOR_DEFAULTTONULL) != nullptr;
    RECT place = window.WindowRect();
    --place.bottom;
    window.Move(usable ? saved : place);
}
