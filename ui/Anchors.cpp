#include "ui/Anchors.h"

#include "ui/Dpi.h"

namespace {

LONG Scaled(LONG length, int dpi, int before)
{
    return ::MulDiv(static_cast<int>(length), dpi, before);
}

}  // namespace

void CAnchors::Attach(const CWindow& dialog)
{
    m_oDialog = dialog;
    m_aControls.clear();
    m_nDpi = DpiOf(dialog.Handle());
    const RECT window = dialog.WindowRect();
    m_oSmallest = {window.right - window.left, window.bottom - window.top};
}

void CAnchors::Add(int id, const AnchorSides& sides)
{
    const CWindow control = m_oDialog.Child(id);
    if (!control.Exists())
        return;
    RECT place = control.WindowRect();
    // Both corners at once, so that a mirrored window keeps left and right in order.
    ::MapWindowPoints(nullptr, m_oDialog.Handle(), reinterpret_cast<POINT*>(&place),  // NOLINT: as documented
                      2);
    const RECT client = m_oDialog.ClientRect();
    m_aControls.push_back(
        {control.Handle(),
         sides,
         {place.left, place.top, client.right - place.right, client.bottom - place.bottom}});
}

void CAnchors::Bind(CMessageMap& messages, std::function<void()> layout)
{
    messages.OnMessage(WM_SIZE, [layout = std::move(layout)](WPARAM, LPARAM) {
        layout();
        return 0;
    });
    messages.OnMessage(WM_GETMINMAXINFO, [this](WPARAM, LPARAM lParam) {
        LimitSize(*reinterpret_cast<MINMAXINFO*>(lParam));  // NOLINT: the message has a pointer
        return 0;
    });
}

void CAnchors::Layout()
{
    if (m_aControls.empty())
        return;
    RECT client = m_oDialog.ClientRect();
    // A minimised window has no room to lay anything out in.
    if (client.right == 0 || client.bottom == 0)
        return;
    client.right -= m_nReserved;
    const int dpi = DpiOf(m_oDialog.Handle());
    if (dpi != m_nDpi) {
        for (Anchored& anchored : m_aControls)
            for (LONG* length : {&anchored.distances.left, &anchored.distances.top, &anchored.distances.right,
                                 &anchored.distances.bottom})
                *length = Scaled(*length, dpi, m_nDpi);
        m_oSmallest = {Scaled(m_oSmallest.cx, dpi, m_nDpi), Scaled(m_oSmallest.cy, dpi, m_nDpi)};
        m_nDpi = dpi;
    }
    for (const Anchored& anchored : m_aControls) {
        const CWindow control(anchored.control);
        const RECT now = control.WindowRect();
        const LONG width = now.right - now.left;
        const LONG height = now.bottom - now.top;
        const RECT& distance = anchored.distances;
        RECT place{};
        place.left = anchored.sides.left ? distance.left : client.right - distance.right - width;
        place.top = anchored.sides.top ? distance.top : client.bottom - distance.bottom - height;
        place.right = anchored.sides.right ? client.right - distance.right : place.left + width;
        place.bottom = anchored.sides.bottom ? client.bottom - distance.bottom : place.top + height;
        control.Move(place);
    }
    m_oDialog.Redraw();
}

void CAnchors::LimitSize(MINMAXINFO& info) const
{
    if (m_oSmallest.cx != 0)
        info.ptMinTrackSize = {m_oSmallest.cx + m_nReserved, m_oSmallest.cy};
}
