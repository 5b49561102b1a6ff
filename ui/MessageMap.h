#pragma once

// Which member function answers which message. A window binds its handlers in its constructor, one function a
// message or command, and hands every message that it gets to Dispatch.

#include "base/Windows.h"

#include <functional>
#include <map>
#include <optional>
#include <utility>
#include <vector>

class CMessageMap {
public:
    using MessageFn = std::function<LRESULT(WPARAM, LPARAM)>;
    using CommandFn = std::function<void()>;
    using RangeFn = std::function<void(UINT id)>;
    using NotifyFn = std::function<LRESULT(NMHDR&)>;

    void OnMessage(UINT message, MessageFn handler) { m_aMessages[message] = std::move(handler); }
    /// A command of a menu, an accelerator or a button.
    void OnCommand(UINT id, CommandFn handler) { m_aCommands[id] = std::move(handler); }
    /// Every command from `first` to `last` that has no handler of its own.
    void OnCommandRange(UINT first, UINT last, RangeFn handler);
    /// A command of the window's own in its system menu: a multiple of 16 below 0xF000.
    void OnSystemCommand(UINT id, CommandFn handler) { m_aSystemCommands[id] = std::move(handler); }
    /// A notification of a control through WM_COMMAND, such as CBN_SELCHANGE.
    void OnControl(UINT id, UINT code, CommandFn handler) { m_aControls[{id, code}] = std::move(handler); }
    /// A notification of a common control through WM_NOTIFY.
    void OnNotify(UINT_PTR id, UINT code, NotifyFn handler)
    {
        m_aNotifications[{id, code}] = std::move(handler);
    }

    /// The handler's answer; nothing when no handler is bound.
    std::optional<LRESULT> Dispatch(UINT message, WPARAM wParam, LPARAM lParam) const;

private:
    struct Range {
        UINT first;
        UINT last;
        RangeFn handler;
    };
    bool DispatchCommand(UINT id, UINT code) const;
    bool DispatchSystemCommand(WPARAM wParam) const;

    std::map<UINT, MessageFn> m_aMessages;
    std::map<UINT, CommandFn> m_aCommands;
    std::map<UINT, CommandFn> m_aSystemCommands;
    std::vector<Range> m_aRanges;
    std::map<std::pair<UINT, UINT>, CommandFn> m_aControls;
    std::map<std::pair<UINT_PTR, UINT>, NotifyFn> m_aNotifications;
};
