#include "ui/MessageMap.h"

#include <algorithm>

void CMessageMap::OnCommandRange(UINT first, UINT last, RangeFn handler)
{
    m_aRanges.push_back({first, last, std::move(handler)});
}

bool CMessageMap::DispatchCommand(UINT id, UINT code) const
{
    if (const auto control = m_aControls.find({id, code}); control != m_aControls.end()) {
        control->second();
        return true;
    }
    // 0 comes from menus and buttons, 1 from accelerators.
    if (code > 1)
        return false;
    if (const auto command = m_aCommands.find(id); command != m_aCommands.end()) {
        command->second();
        return true;
    }
    const auto range = std::find_if(m_aRanges.begin(), m_aRanges.end(), [id](const Range& candidate) {
        return candidate.first <= id && id <= candidate.last;
    });
    if (range == m_aRanges.end())
        return false;
    range->handler(id);
    return true;
}

bool CMessageMap::DispatchSystemCommand(WPARAM wParam) const
{
    // Windows uses the lowest four bits itself.
    const auto command = m_aSystemCommands.find(static_cast<UINT>(wParam & 0xFFF0));
    if (command == m_aSystemCommands.end())
        return false;
    command->second();
    return true;
}

std::optional<LRESULT> CMessageMap::Dispatch(UINT message, WPARAM wParam, LPARAM lParam) const
{
    if (message == WM_COMMAND && DispatchCommand(LOWORD(wParam), HIWORD(wParam)))
        return 0;
    if (message == WM_SYSCOMMAND && DispatchSystemCommand(wParam))
        return 0;
    if (message == WM_NOTIFY) {
        auto& header = *reinterpret_cast<NMHDR*>(lParam);  // NOLINT: the message carries a pointer
        const auto handler = m_aNotifications.find({header.idFrom, header.code});
        if (handler != m_aNotifications.end())
            return handler->second(header);
    }
    const auto handler = m_aMessages.find(message);
    if (handler == m_aMessages.end())
        return std::nullopt;
    return handler->second(wParam, lParam);
}
