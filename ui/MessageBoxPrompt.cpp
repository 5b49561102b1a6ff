#include "ui/MessageBoxPrompt.h"

#include <algorithm>
#include <vector>

namespace {

UINT IconFlag(PromptIcon icon)
{
    switch (icon) {
        case PromptIcon::None:
            return 0;
        case PromptIcon::Information:
            return MB_ICONINFORMATION;
        case PromptIcon::Question:
            return MB_ICONQUESTION;
        case PromptIcon::Warning:
            return MB_ICONWARNING;
        case PromptIcon::Error:
            return MB_ICONERROR;
    }
    return 0;
}

UINT ButtonsFlag(PromptButtons buttons)
{
    switch (buttons) {
        case PromptButtons::Ok:
            return MB_OK;
        case PromptButtons::OkCancel:
            return MB_OKCANCEL;
        case PromptButtons::YesNo:
            return MB_YESNO;
        case PromptButtons::YesNoCancel:
            return MB_YESNOCANCEL;
    }
    return MB_OK;
}

std::vector<PromptAnswer> AnswersOf(PromptButtons buttons)
{
    switch (buttons) {
        case PromptButtons::Ok:
            return {PromptAnswer::Ok};
        case PromptButtons::OkCancel:
            return {PromptAnswer::Ok, PromptAnswer::Cancel};
        case PromptButtons::YesNo:
            return {PromptAnswer::Yes, PromptAnswer::No};
        case PromptButtons::YesNoCancel:
            return {PromptAnswer::Yes, PromptAnswer::No, PromptAnswer::Cancel};
    }
    return {PromptAnswer::Ok};
}

UINT DefaultFlag(const PromptBox& box)
{
    constexpr UINT kFlags[] = {MB_DEFBUTTON1, MB_DEFBUTTON2, MB_DEFBUTTON3};
    if (!box.proposed)
        return MB_DEFBUTTON1;
    const auto answers = AnswersOf(box.buttons);
    const auto found = std::find(answers.begin(), answers.end(), *box.proposed);
    return found == answers.end() ? MB_DEFBUTTON1 : kFlags[found - answers.begin()];
}

}  // namespace

PromptAnswer CMessageBoxPrompt::Show(const PromptBox& box)
{
    // A box without an owner must still come to the front.
    const UINT place = m_oOwner.Exists() ? 0 : MB_TASKMODAL | MB_SETFOREGROUND;
    const HWND owner = m_oOwner.Exists() ? m_oOwner.TopPopup().Handle() : nullptr;
    const UINT flags = IconFlag(box.icon) | ButtonsFlag(box.buttons) | DefaultFlag(box) | place;
    switch (::MessageBoxW(owner, box.text.c_str(), box.caption.c_str(), flags)) {
        case IDYES:
            return PromptAnswer::Yes;
        case IDNO:
            return PromptAnswer::No;
        case IDOK:
            return PromptAnswer::Ok;
        default:
            return AnswersOf(box.buttons).back();
    }
}
