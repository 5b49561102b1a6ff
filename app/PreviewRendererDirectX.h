#pragma once

// "Direct X": the graphics processor draws, and where it cannot, GDI+ does without a word. It owns the
// device, which is opened when the first scene is drawn, because opening one takes a while.

#include "app/PreviewRendererGdi.h"

class CPreviewRendererDirectX final : public IPreviewRenderer {
public:
    explicit CPreviewRendererDirectX(DirectDeviceFactory open) : m_fnOpen(std::move(open)) {}

    void Draw(HDC target, const PreviewScene& scene) override;

private:
    bool DrawWithDevice(HDC target, const PreviewScene& scene);
    bool HasDevice();

    DirectDeviceFactory m_fnOpen;
    std::unique_ptr<IDirectDevice> m_pDevice;
    CPreviewRendererGdiPlus m_oFallback;
    bool m_bGivenUp = false;  // until the renderer is chosen anew
};
