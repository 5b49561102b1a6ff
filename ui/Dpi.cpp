#include "ui/Dpi.h"

int DpiOf(HWND window)
{
    const UINT dpi = ::GetDpiForWindow(window);
    return dpi == 0 ? USER_DEFAULT_SCREEN_DPI : static_cast<int>(dpi);
}

CFontHandle MessageFont(int dpi)
{
    NONCLIENTMETRICSW metrics{};
    metrics.cbSize = sizeof metrics;
    ::SystemParametersInfoForDpi(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0,
                                 static_cast<UINT>(dpi));
    return CFontHandle(::CreateFontIndirectW(&metrics.lfMessageFont));
}
