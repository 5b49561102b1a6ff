#include "tests/e2e/driver/Input.h"

#include <vector>

#include "tests/e2e/driver/Wait.h"
#include "tests/e2e/driver/WindowLookup.h"

namespace {

INPUT KeyInput(WORD key, bool down)
{
    INPUT input{};
    input.type = INPUT_KEYBOARD;
    input.ki.wVk = key;
    input.ki.wScan = static_cast<WORD>(::MapVirtualKeyW(key, MAPVK_VK_TO_VSC));
    input.ki.dwFlags = down ? 0 : KEYEVENTF_KEYUP;
    return input;
}

// Place and button go in one event: between two of them a late event of the display could move the pointer
// back.
INPUT ButtonInput(DWORD flag, POINT screen)
{
    INPUT input{};
    input.type = INPUT_MOUSE;
    input.mi.dx = ::MulDiv(screen.x, 65536, ::GetSystemMetrics(SM_CXSCREEN)) + 1;
    input.mi.dy = ::MulDiv(screen.y, 65536, ::GetSystemMetrics(SM_CYSCREEN)) + 1;
    input.mi.dwFlags = flag | MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE;
    return input;
}

// In one call, so that nothing can come between the held keys and what they qualify.
void SendHeld(std::initializer_list<WORD> heldKeys, const std::vector<INPUT>& middle)
{
    std::vector<INPUT> inputs;
    for (const WORD key : heldKeys)
        inputs.push_back(KeyInput(key, true));
    inputs.insert(inputs.end(), middle.begin(), middle.end());
    for (const WORD key : heldKeys)
        inputs.push_back(KeyInput(key, false));
    if (::SendInput(static_cast<UINT>(inputs.size()), inputs.data(), sizeof(INPUT)) != inputs.size())
        throw CDriveError("input was refused");
}

// A window that the pointer enters, or that comes to the front, takes over which keys the display believes to
// be down, and forgets the held ones. So that comes first, and the window gets the time to hear of it.
void LetTheDisplaySettle(HWND window, POINT screen)
{
    constexpr int kRounds = 5;
    for (int round = 0; round < kRounds; ++round) {
        SendHeld({}, {ButtonInput(0, screen)});
        WaitUntil("the pointer to arrive", [screen] {
            POINT now{};
            return ::GetCursorPos(&now) && now.x == screen.x && now.y == screen.y;
        });
        Ask(window, WM_NULL);
    }
}

}  // namespace

void BringToFront(HWND window)
{
    WaitUntil("the window to come to the front", [window] {
        if (::GetForegroundWindow() == window)
            return true;
        ::SetForegroundWindow(window);
        return false;
    });
}

void ClickAt(HWND window, POINT point, std::initializer_list<WORD> heldKeys)
{
    BringToFront(::GetAncestor(window, GA_ROOT));
    ::ClientToScreen(window, &point);
    if (heldKeys.size() != 0)
        LetTheDisplaySettle(window, point);
    SendHeld(heldKeys, {ButtonInput(MOUSEEVENTF_LEFTDOWN, point), ButtonInput(MOUSEEVENTF_LEFTUP, point)});
}

void PressKey(WORD key, std::initializer_list<WORD> heldKeys)
{
    SendHeld(heldKeys, {KeyInput(key, true), KeyInput(key, false)});
}
