#pragma once

// The part of a dialog that shows how a RenderWare file is built: the tree of its sections, its version and
// the button that shows and hides the tree. The tree stands at the right edge of the dialog, which becomes
// wider for it. The controls belong to the dialog.

#include "base/File.h"
#include "rw/Node.h"
#include "rw/Stream.h"
#include "ui/Anchors.h"
#include "ui/TreeView.h"
#include "ui/Window.h"

struct SectionTreeControls {
    int caption;
    int tree;
    int version;  ///< a label whose text is the pattern at first
    int toggle;
    int listCaption;  ///< what caption and tree stand beside
    int list;
};

class CSectionTreeView {
public:
    /// The dialog has the size that it has without the tree; `anchors` hold its other controls.
    void Attach(const CWindow& dialog, const SectionTreeControls& controls, CAnchors& anchors);
    /// Every section, depth first, the root expanded.
    void Fill(const RW::CStream& stream) const;
    void ShowVersion(std::uint32_t version) const;

    /// Shows or hides the tree and makes the dialog so much wider or narrower at the right.
    void Toggle();
    /// For WM_SIZE, instead of that of the anchors.
    void Layout() const;

private:
    // What nobody can look through is cut, or a hostile file would keep the program busy.
    static constexpr int kMostItems = 20'000;
    static constexpr std::size_t kLongestText = 1024;

    bool AppendTree(HTREEITEM parent, RW::CNode& node, const IFile* file, int& itemsLeft) const;
    int Width() const;
    RECT PlaceOf(const CWindow& control) const;

    CWindow m_oDialog;
    CAnchors* m_pAnchors = nullptr;
    CWindow m_oCaption;
    CTreeView m_oTree;
    CWindow m_oVersion;
    CWindow m_oToggle;
    CWindow m_oListCaption;
    CWindow m_oList;
    std::wstring m_sVersionPattern;
    bool m_bShown = false;
};
