#include "ui/BitmapDrawing.h"

#include <algorithm>
#include <cstring>
#include <objidl.h>
#include <optional>
#include <vector>

namespace Gdiplus {
using std::max;
using std::min;
}  // namespace Gdiplus

#include <gdiplus.h>

#include "ui/Handles.h"

namespace {
int WidthOf(const RECT& rect)
{
    return rect.right - rect.left;
}
int HeightOf(const RECT& rect)
{
    return rect.bottom - rect.top;
}

/// Pixels that are drawn as they are: `size` of them, from `from` on.
struct Cutout {
    const CBitmap* bitmap = nullptr;
    POINT from{};
    SIZE size{};
};

/// The part of the stretched picture that lies in `part`, a rectangle inside of `place`.
std::optional<CBitmap> Stretched(const CBitmap& bitmap, const RECT& place, const RECT& part)
{
    auto result = CBitmap::Create(static_cast<std::uint32_t>(WidthOf(part)),
                                  static_cast<std::uint32_t>(HeightOf(part)));
    if (!result)
        return std::nullopt;
    // Twice the centre of the point, in 64 bits: a large picture times a large enlargement.
    const auto toPixel = [](LONG at, LONG start, int length, std::uint32_t pixels) {
        return static_cast<std::size_t>((LONGLONG{at - start} * 2 + 1) * pixels / (LONGLONG{length} * 2));
    };
    constexpr std::size_t kPixel = 4;
    std::vector<std::size_t> columns;
    columns.reserve(result->Width());
    for (LONG x = part.left; x < part.right; ++x)
        columns.push_back(toPixel(x, place.left, WidthOf(place), bitmap.Width()) * kPixel);
    std::uint8_t* out = result->Pixels().data();
    for (LONG y = part.top; y < part.bottom; ++y) {
        const auto row =
            bitmap.Row(static_cast<std::uint32_t>(toPixel(y, place.top, HeightOf(place), bitmap.Height())));
        for (const std::size_t column : columns) {
            std::memcpy(out, &row[column], kPixel);
            out += kPixel;
        }
    }
    return result;
}

/// What of the bitmap is seen in `part`. `stretched` keeps the pixels when they are not the bitmap's own.
Cutout Seen(const CBitmap& bitmap, const RECT& place, const RECT& part, std::optional<CBitmap>& stretched)
{
    const SIZE size = {WidthOf(part), HeightOf(part)};
    const bool isLifeSize = static_cast<std::uint32_t>(WidthOf(place)) == bitmap.Width() &&
                            static_cast<std::uint32_t>(HeightOf(place)) == bitmap.Height();
    if (isLifeSize)
        return {&bitmap, {part.left - place.left, part.top - place.top}, size};
    // Stretched here, because the edges of what GDI+ stretches differ from system to system.
    stretched = Stretched(bitmap, place, part);
    return {stretched ? &*stretched : nullptr, {}, size};
}

bool IsOpaque(const Cutout& cutout)
{
    constexpr std::size_t kPixel = 4;
    constexpr std::size_t kAlpha = 3;
    const auto left = static_cast<std::size_t>(cutout.from.x) * kPixel;
    const auto length = static_cast<std::size_t>(cutout.size.cx) * kPixel;
    for (LONG y = 0; y < cutout.size.cy; ++y) {
        const auto row =
            cutout.bitmap->Row(static_cast<std::uint32_t>(cutout.from.y + y)).subspan(left, length);
        std::uint8_t all = 0xFF;
        for (std::size_t at = kAlpha; at < row.size(); at += kPixel)
            all &= row[at];
        if (all != 0xFF)
            return false;
    }
    return true;
}

void Copy(HDC target, const Cutout& cutout, POINT to)
{
    // The rows that are not seen are not handed over.
    const auto first = cutout.bitmap->Row(static_cast<std::uint32_t>(cutout.from.y));
    const auto height = static_cast<UINT>(cutout.size.cy);
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = static_cast<LONG>(cutout.bitmap->Width());
    info.bmiHeader.biHeight = -cutout.size.cy;  // negative: the first row is the top one
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    ::SetDIBitsToDevice(target, to.x, to.y, static_cast<DWORD>(cutout.size.cx), height, cutout.from.x, 0, 0,
                        height, first.data(), &info, DIB_RGB_COLORS);
}

void Blend(HDC target, const Cutout& cutout, POINT to)
{
    const auto width = static_cast<INT>(cutout.bitmap->Width());
    const auto height = static_cast<INT>(cutout.bitmap->Height());
    // GDI+ asks for a writable pointer but only reads from it.
    auto* pixels = const_cast<BYTE*>(cutout.bitmap->Pixels().data());  // NOLINT
    Gdiplus::Bitmap source(width, height, width * 4, PixelFormat32bppARGB, pixels);
    Gdiplus::Graphics graphics(target);
    graphics.DrawImage(&source, Gdiplus::Rect(to.x, to.y, cutout.size.cx, cutout.size.cy), cutout.from.x,
                       cutout.from.y, cutout.size.cx, cutout.size.cy, Gdiplus::UnitPixel);
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
    std::optional<CBitmap> stretched;
    const Cutout seen = Seen(bitmap, place, part, stretched);
    if (seen.bitmap == nullptr)
        return;
    // To blend what is opaque is to copy it, only slower.
    if (IsOpaque(seen))
        Copy(target, seen, {part.left, part.top});
    else
        Blend(target, seen, {part.left, part.top});
}

void CopyBitmap(HDC target, const CBitmap& bitmap, const RECT& place, const RECT& clip)
{
    RECT part{};
    if (!::IntersectRect(&part, &place, &clip))
        return;
    std::optional<CBitmap> stretched;
    const Cutout seen = Seen(bitmap, place, part, stretched);
    if (seen.bitmap != nullptr)
        Copy(target, seen, {part.left, part.top});
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
