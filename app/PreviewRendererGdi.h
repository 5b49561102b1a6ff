#pragma once

// The renderers that every machine has: a plain one, and one that blends with GDI+. Neither keeps anything
// between two scenes.

#include "app/PreviewRenderer.h"

/// "CStatic (this sucks)": the colours as they are stored, whatever their alpha.
class CPreviewRendererStatic final : public IPreviewRenderer {
public:
    void Draw(HDC target, const PreviewScene& scene) override;
};

/// "GDI+". A CGdiPlusSession must live.
class CPreviewRendererGdiPlus final : public IPreviewRenderer {
public:
    void Draw(HDC target, const PreviewScene& scene) override;
};
