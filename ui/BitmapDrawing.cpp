#include "ui/BitmapDrawing.h"

#include <algorithm>
#include <cstring>
#include <objidl.h>
#include <optional>

namespace Gdiplus {
using std::max;
using std::min;
}  // namespace Gdiplus

#include <gdiplus.h>

#include "ui/Handles.h"

namespace {
constexpr COLORREF kLightSquare = RGB(0xFF, 0xFF, 0xFF);
constexpr COLORREF kDarkSquare = RGB(0xCC, 0xCC, 0xCC);

int WidthOf(const RECT& rect)
{
    return rect.right - rect.left;
}
int HeightOf(const RECT& rect)
{
    return rect.bottom - rect.top;
}

/// The part of the stretched picture that lies in `part`, a rectangle inside of `place`; the nearest pixel
/// counts.
std::optional<CBitmap> Enlarged(const CBitmap& bitmap, const RECT& place, const RECT& part)
{
    auto result = CBitmap::Create(static_cast<std::uint32_t>(WidthOf(part)),
                                  static_cast<std::uint32_t>(HeightOf(part)));
    if (!result)
        return std::nullopt;
    // In 64 bits: a large picture times a large enlargement.
    const auto toPixel = [](LONG at, LONG start, int length, std::uint32_t pixels) {
        return static_cast<std::size_t>(LONGLONG{at - start} * pixels / length);
    };
    constexpr std::size_t kPixel = 4;
    std::uint8_t* out = result->Pixels().data();
    for (LONG y = part.top; y < part.bottom; ++y) {
        const auto row =
            bitmap.Row(static_cast<std::uint32_t>(toPixel(y, place.top, HeightOf(place), bitmap.Height())));
        for (LONG x = part.left; x < part.right; ++x, out += kPixel)
            std::memcpy(out, &row[toPixel(x, place.left, WidthOf(place), bitmap.Width()) * kPixel], kPixel);
    }
    return result;
}
}  // namespace

CGdiPlusSession::CGdiPlusSession()
{
    const Gdiplus::GdiplusStartupInput input;
    Gdiplus::GdiplusStartup(&m_nToken, &input, nullptr);
}

CGdiPlusSession::~CGdiPlusSession()
{
    Gdiplus::GdiplusShutdown(m_nToken);
}

void BlendBitmap(HDC target, const CBitmap& bitmap, const RECT& place, const RECT& clip)
{
    RECT part{};
    if (!::IntersectRect(&part, &place, &clip))
        return;
    // Enlarged here, because the edges of what GDI+ enlarges differ from system to system.
    const auto shown = Enlarged(bitmap, place, part);
    if (!shown)
        return;
    const auto width = static_cast<INT>(shown->Width());
    const auto height = static_cast<INT>(shown->Height());
    // GDI+ asks for a writable pointer but only reads from it.
    auto* pixels = const_cast<BYTE*>(shown->Pixels().data());  // NOLINT
    Gdiplus::Bitmap source(width, height, width * 4, PixelFormat32bppARGB, pixels);
    Gdiplus::Graphics graphics(target);
    graphics.DrawImage(&source, Gdiplus::Rect(part.left, part.top, width, height), 0, 0, width, height,
                       Gdiplus::UnitPixel);
}

void CopyBitmap(HDC target, const CBitmap& bitmap, const RECT& place)
{
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = static_cast<LONG>(bitmap.Width());
    info.bmiHeader.biHeight = -static_cast<LONG>(bitmap.Height());  // negative: the first row is the top one
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    ::SetStretchBltMode(target, COLORONCOLOR);
    ::StretchDIBits(target, place.left, place.top, WidthOf(place), HeightOf(place), 0, 0,
                    static_cast<int>(bitmap.Width()), static_cast<int>(bitmap.Height()),
                    bitmap.Pixels().data(), &info, DIB_RGB_COLORS, SRCCOPY);
}

void DrawCheckerboard(HDC target, const RECT& area, POINT origin, int side)
{
    // One pattern brush instead of thousands of rectangles.
    const CMemoryDc tile(::CreateCompatibleDC(target));
    const CBitmapHandle bitmap(::CreateCompatibleBitmap(target, side * 2, side * 2));
    if (!tile || !bitmap)
        return;
    const HGDIOBJ previous = ::SelectObject(tile.get(), bitmap.get());
    const CBrushHandle light(::CreateSolidBrush(kLightSquare));
    const CBrushHandle dark(::CreateSolidBrush(kDarkSquare));
    const RECT whole = {0, 0, side * 2, side * 2};
    const RECT first = {side, 0, side * 2, side};
    const RECT second = {0, side, side, side * 2};
    ::FillRect(tile.get(), &whole, light.get());
    ::FillRect(tile.get(), &first, dark.get());
    ::FillRect(tile.get(), &second, dark.get());
    ::SelectObject(tile.get(), previous);

    const CBrushHandle pattern(::CreatePatternBrush(bitmap.get()));
    POINT oldOrigin{};
    ::SetBrushOrgEx(target, origin.x, origin.y, &oldOrigin);
    ::FillRect(target, &area, pattern.get());
    ::SetBrushOrgEx(target, oldOrigin.x, oldOrigin.y, nullptr);
}
