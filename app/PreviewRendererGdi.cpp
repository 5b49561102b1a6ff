#include "app/PreviewRendererGdi.h"

#include "ui/BitmapDrawing.h"
#include "ui/Handles.h"

namespace {

void DrawBehind(HDC target, const PreviewScene& scene)
{
    const CBrushHandle brush(::CreateSolidBrush(scene.color));
    ::FillRect(target, &scene.part, brush.get());
    RECT squares{};
    if (::IntersectRect(&squares, &scene.squares, &scene.part))
        DrawCheckerboard(target, squares, scene.squaresOrigin, scene.squareSide);
}

}  // namespace

void CPreviewRendererStatic::Draw(HDC target, const PreviewScene& scene)
{
    DrawBehind(target, scene);
    if (scene.bitmap != nullptr)
        CopyBitmap(target, *scene.bitmap, scene.picture, scene.part);
}

void CPreviewRendererGdiPlus::Draw(HDC target, const PreviewScene& scene)
{
    DrawBehind(target, scene);
    if (scene.bitmap != nullptr)
        BlendBitmap(target, *scene.bitmap, scene.picture, scene.part);
}
