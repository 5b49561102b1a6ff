#include "dialogs/SectionTreeView.h"

#include <algorithm>

#include "base/Format.h"
#include "tools/SectionTree.h"
#include "ui/Dpi.h"
#include "ui/Theme.h"

namespace {

// Lengths in 1/96 inch.
constexpr int kTreeWidth = 350;
constexpr int kMargin = 10;

}  // namespace

void CSectionTreeView::Attach(const CWindow& dialog, const SectionTreeControls& controls, CAnchors& anchors)
{
    m_oDialog = dialog;
    m_pAnchors = &anchors;
    m_oCaption = dialog.Child(controls.caption);
    m_oTree.Attach(dialog.Child(controls.tree).Handle());
    m_oVersion = dialog.Child(controls.version);
    m_oToggle = dialog.Child(controls.toggle);
    m_oListCaption = dialog.Child(controls.listCaption);
    m_oList = dialog.Child(controls.list);
    m_sVersionPattern = m_oVersion.Text();
    m_oVersion.SetText({});
    UseExplorerTheme(m_oTree);
}

void CSectionTreeView::Fill(const RW::CStream& stream) const
{
    // The tree is hidden as yet, so it draws nothing; switching its drawing off and on would show it.
    m_oTree.DeleteAll();
    if (stream.Root() == nullptr)
        return;
    int itemsLeft = kMostItems;
    AppendTree(TVI_ROOT, *stream.Root(), stream.File(), itemsLeft);
    m_oTree.Expand(m_oTree.Root(), TVE_EXPAND);
}

bool CSectionTreeView::AppendTree(HTREEITEM parent, RW::CNode& node, const IFile* file, int& itemsLeft) const
{
    if (itemsLeft-- == 0) {
        m_oTree.Append(parent, L"...", 0);
        return false;
    }
    const HTREEITEM item = m_oTree.Append(parent, SectionCaption(node, file).substr(0, kLongestText), 0);
    for (std::uint32_t index = 0; index < node.ChildCount(); ++index) {
        RW::CNode* const child = node.FindChild(index);
        if (child != nullptr && !AppendTree(item, *child, file, itemsLeft))
            return false;
    }
    return true;
}

void CSectionTreeView::ShowVersion(std::uint32_t version) const
{
    m_oVersion.SetText(Format(m_sVersionPattern, version));
}

int CSectionTreeView::Width() const
{
    return m_bShown ? CScale(DpiOf(m_oDialog.Handle()))(kTreeWidth) : 0;
}

void CSectionTreeView::Toggle()
{
    const int before = Width();
    m_bShown = !m_bShown;
    RECT place = m_oDialog.WindowRect();
    place.right += Width() - before;
    MONITORINFO monitor{};
    monitor.cbSize = sizeof monitor;
    ::GetMonitorInfoW(::MonitorFromWindow(m_oDialog.Handle(), MONITOR_DEFAULTTONEAREST), &monitor);
    // Where there is no room at the right the window moves, but never out of the screen at the left.
    const LONG beyond = std::min(place.right - monitor.rcWork.right, place.left - monitor.rcWork.left);
    if (m_bShown && beyond > 0)
        ::OffsetRect(&place, static_cast<int>(-beyond), 0);
    m_pAnchors->ReserveRight(Width());
    m_oCaption.Show(m_bShown);
    m_oTree.Show(m_bShown);
    m_oToggle.Send(BM_SETCHECK, m_bShown ? BST_CHECKED : BST_UNCHECKED);
    m_oDialog.Move(place);
    // It was shown where it stood before, so what lies behind its items is not drawn yet.
    ::InvalidateRect(m_oTree.Handle(), nullptr, TRUE);
}

void CSectionTreeView::Layout() const
{
    if (m_pAnchors == nullptr)
        return;
    m_pAnchors->ReserveRight(Width());
    m_pAnchors->Layout();
    const CScale scale(DpiOf(m_oDialog.Handle()));
    const RECT client = m_oDialog.ClientRect();
    const LONG left = client.right - scale(kTreeWidth);
    const LONG right = client.right - scale(kMargin);
    const RECT caption = PlaceOf(m_oListCaption);
    m_oCaption.Move({left, caption.top, right, caption.bottom});
    m_oTree.Move({left, PlaceOf(m_oList).top, right, client.bottom - caption.top});
}

RECT CSectionTreeView::PlaceOf(const CWindow& control) const
{
    RECT place = control.WindowRect();
    ::MapWindowPoints(nullptr, m_oDialog.Handle(), reinterpret_cast<POINT*>(&place),  // NOLINT: as documented
                      2);
    return place;
}
