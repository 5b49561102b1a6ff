#pragma once

// What a preview shows, as whole pixels of its window, and who draws it. Every renderer draws the same scene
// in the same place; they differ in what does the work and in whether alpha counts. A scene borrows its
// bitmap.

#include "base/Windows.h"

#include <cstdint>
#include <memory>

#include "app/DirectDevice.h"
#include "image/Bitmap.h"

/// How the picture is drawn, with the numbers under which the choice is stored.
enum class PreviewRenderer : int {
    Static = 0,   // colours only, as a plain control shows them
    GdiPlus = 1,  // blended by GDI+
    DirectX = 2   // blended by the graphics processor; by GDI+ where there is none
};

struct PreviewScene {
    RECT part{};            // of the window: what is asked for
    COLORREF color = 0;     // behind everything
    RECT squares{};         // where the checkerboard lies; empty without one
    POINT squaresOrigin{};  // where its pattern begins
    int squareSide = 1;
    const CBitmap* bitmap = nullptr;  // null without a picture
    std::uint64_t version = 0;        // of the bitmap: the same number and size mean the same pixels
    RECT picture{};                   // where the whole of it lies, also outside of the window
};

class IPreviewRenderer {
public:
    virtual ~IPreviewRenderer() = default;
    /// Draws the scene's part, with the nearest pixels where the picture has another size than its place.
    virtual void Draw(HDC target, const PreviewScene& scene) = 0;
};

/// `openDirect` makes the device for Direct X when its first scene is drawn.
std::unique_ptr<IPreviewRenderer> MakePreviewRenderer(PreviewRenderer which, DirectDeviceFactory openDirect);
