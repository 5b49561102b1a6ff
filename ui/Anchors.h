#pragma once

// Keeps the controls of a resizable dialog where its template put them, relative to the edges of the window:
// a control that is anchored to both sides grows with the window, one that is anchored to one side moves
// with it. The size of the template is the smallest one.

#include <functional>
#include <vector>

#include "ui/MessageMap.h"
#include "ui/Window.h"

/// Which edges of the window a control keeps its distance to.
struct AnchorSides {
    bool left = true;
    bool top = true;
    bool right = false;
    bool bottom = false;
};

class CAnchors {
public:
    /// To be called in OnInit, while the dialog has the size of its template. Borrows its controls.
    void Attach(const CWindow& dialog);
    /// A control of the dialog; one that is not there is ignored, and one without an anchor stays in the
    /// upper left corner.
    void Add(int id, const AnchorSides& sides);
    /// Leaves so many pixels at the right edge to somebody else: the controls keep their distance to what is
    /// left of the window.
    void ReserveRight(int width) { m_nReserved = width; }
    /// Lets the dialog become no smaller than its template and calls `layout` whenever its size changes. To
    /// be called in the dialog's constructor; the map must not outlive this object.
    void Bind(CMessageMap& messages, std::function<void()> layout);
    /// Puts every control into its place.
    void Layout();

private:
    void LimitSize(MINMAXINFO& info) const;

    struct Anchored {
        HWND control;
        AnchorSides sides;
        RECT distances;  // to the left, top, right and bottom edge of the window
    };

    CWindow m_oDialog;
    std::vector<Anchored> m_aControls;
    SIZE m_oSmallest{};  // of the whole window
    int m_nReserved = 0;
    int m_nDpi = USER_DEFAULT_SCREEN_DPI;  // what the lengths are for
};
