#pragma once

// The picture of the selected texture: centred or stretched to fit, over a background of choice, zoomed with
// the wheel and moved by dragging. It owns the bitmap that it shows, decides what lies where, and leaves the
// drawing to the renderer of choice.

#include <memory>
#include <optional>
#include <string>

#include "app/Direct3D11Device.h"
#include "app/PreviewRenderer.h"
#include "image/Bitmap.h"
#include "ui/CustomWindow.h"
#include "ui/GdiSurface.h"

struct PreviewOptions {
    PreviewRenderer renderer = PreviewRenderer::GdiPlus;
    bool stretch = false;
    bool background = true;  // something else than the window's own colour lies behind the picture
    bool alpha = false;      // a checkerboard does
    bool fixedAlpha =
        false;  // which fills the window and stays where it is, instead of lying under the picture
    COLORREF color = RGB(0x80, 0x80, 0x80);
};

/// The modes of the background commands, in their order.
enum class BackgroundMode : int { None = 0, Alpha = 1, FixedAlpha = 2, SingleColor = 3 };

class CPreview final : public CCustomWindow {
public:
    static constexpr wchar_t kClassName[] = L"MavrelPreview";

    /// `openDirect` makes the device for Direct X when it is first needed.
    explicit CPreview(DirectDeviceFactory openDirect = OpenDirect3D11);

    /// Shows a picture at once; the caller may measure the time. Nothing empties the preview.
    void ShowBitmap(std::optional<CBitmap> bitmap);
    /// Says in place of a picture why there is none.
    void ShowText(const std::wstring& text);
    /// Neither a picture nor a text.
    bool ShowsNothing() const { return !m_oBitmap && m_sText.empty(); }

    const PreviewOptions& Options() const { return m_oOptions; }
    void SetOptions(const PreviewOptions& options);
    void SetBackground(BackgroundMode mode);
    /// 1 is life size; above that a whole number, below it a fraction of one.
    double Zoom() const;

private:
    void OnPaint();
    void OnWheel(int delta);
    void OnButtonDown(POINT place);
    void OnDrag(POINT place);
    bool OnKey(WPARAM key);

    void StepZoom(int steps);
    void Show(std::optional<CBitmap> bitmap, const std::wstring& text);
    void RedrawContent() const;
    void Paint(HDC target, const RECT& part);
    PreviewScene Scene(const RECT& client, const RECT& part);
    void PaintText(HDC target, RECT client) const;
    /// Where the whole picture lies, also outside of the window.
    RECT PicturePlace(const RECT& client) const;
    void KeepPictureInReach(const RECT& client);
    const CBitmap& ShownBitmap(const RECT& picture);

    PreviewOptions m_oOptions;
    std::optional<CBitmap> m_oBitmap;
    std::optional<CBitmap> m_oShrunken;  // the bitmap at the size it was last shown in
    std::uint64_t m_nVersion = 0;        // of the bitmap
    std::wstring m_sText;
    CGdiSurface m_oSurface;
    DirectDeviceFactory m_fnOpenDirect;
    std::unique_ptr<IPreviewRenderer> m_pRenderer;
    int m_nZoomStep = 0;
    POINT m_oOffset{};  // of the picture from the centre
    POINT m_oDragStart{};
    int m_nWheelRest = 0;
};
