#include "app/PreviewRenderer.h"

#include "app/PreviewRendererDirectX.h"
#include "app/PreviewRendererGdi.h"

std::unique_ptr<IPreviewRenderer> MakePreviewRenderer(PreviewRenderer which, DirectDeviceFactory openDirect)
{
    switch (which) {
        case PreviewRenderer::Static:
            return std::make_unique<CPreviewRendererStatic>();
        case PreviewRenderer::GdiPlus:
            return std::make_unique<CPreviewRendererGdiPlus>();
        case PreviewRenderer::DirectX:
            return std::make_unique<CPreviewRendererDirectX>(std::move(openDirect));
    }
    return std::make_unique<CPreviewRendererGdiPlus>();
}
