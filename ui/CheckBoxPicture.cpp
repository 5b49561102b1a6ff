#include "ui/CheckBoxPicture.h"

#include <memory>
#include <type_traits>
#include <uxtheme.h>
#include <vssym32.h>

#include "ui/Dpi.h"

namespace {

constexpr int kSide = 13;  // in 1/96 inch

struct CloseTheme {
    void operator()(HTHEME theme) const { ::CloseThemeData(theme); }
};
using CTheme = std::unique_ptr<std::remove_pointer_t<HTHEME>, CloseTheme>;

// Null while the classic look is on.
CTheme ButtonTheme(const CWindow& control)
{
    return CTheme(::OpenThemeData(control.Handle(), L"BUTTON"));
}

int ThemeState(bool checked, bool enabled)
{
    if (enabled)
        return checked ? CBS_CHECKEDNORMAL : CBS_UNCHECKEDNORMAL;
    return checked ? CBS_CHECKEDDISABLED : CBS_UNCHECKEDDISABLED;
}

}  // namespace

SIZE CheckBoxSize(const CWindow& control)
{
    const int side = CScale(DpiOf(control.Handle()))(kSide);
    return {side, side};
}

void DrawCheckBox(const CWindow& control, HDC target, const RECT& place, bool checked, bool enabled)
{
    const SIZE size = CheckBoxSize(control);
    const LONG top = place.top + (place.bottom - place.top - size.cy) / 2;
    RECT box = {place.left, top, place.left + size.cx, top + size.cy};
    if (const CTheme theme = ButtonTheme(control)) {
        ::DrawThemeBackground(theme.get(), target, BP_CHECKBOX, ThemeState(checked, enabled), &box, nullptr);
        return;
    }
    UINT state = DFCS_BUTTONCHECK | DFCS_FLAT;
    if (checked)
        state |= DFCS_CHECKED;
    if (!enabled)
        state |= DFCS_INACTIVE;
    ::DrawFrameControl(target, &box, DFC_BUTTON, state);
}
