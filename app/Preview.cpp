#include "app/Preview.h"

#include <algorithm>
#include <array>
#include <windowsx.h>

#include "image/BitmapTools.h"
#include "ui/BitmapDrawing.h"
#include "ui/Dpi.h"

namespace {

constexpr int kSmallestZoomStep = -4;
constexpr std::array kEnlargements = {1, 2, 3, 4, 6, 8, 12, 16, 24, 32};
constexpr int kKeyStep = 32;
constexpr int kSquareSide = 8;
// Of a picture that is larger than the window, this much always stays in sight.
constexpr int kLeastInSight = 16;

int WidthOf(const RECT& rect)
{
    return rect.right - rect.left;
}
int HeightOf(const RECT& rect)
{
    return rect.bottom - rect.top;
}

SIZE Zoomed(const CBitmap& bitmap, int step)
{
    const auto width = static_cast<LONG>(bitmap.Width());
    const auto height = static_cast<LONG>(bitmap.Height());
    if (step >= 0) {
        const LONG factor = kEnlargements[static_cast<std::size_t>(step)];
        return {width * factor, height * factor};
    }
    const LONG divisor = 1L << -step;
    return {std::max(width / divisor, 1L), std::max(height / divisor, 1L)};
}

/// As large as fits, keeping the proportions.
SIZE Fitted(const CBitmap& bitmap, const RECT& client)
{
    const LONGLONG width = bitmap.Width();
    const LONGLONG height = bitmap.Height();
    const LONGLONG roomX = std::max(WidthOf(client), 1);
    const LONGLONG roomY = std::max(HeightOf(client), 1);
    if (width * roomY >= height * roomX)
        return {static_cast<LONG>(roomX), static_cast<LONG>(std::max(height * roomX / width, 1LL))};
    return {static_cast<LONG>(std::max(width * roomY / height, 1LL)), static_cast<LONG>(roomY)};
}

POINT PointOf(LPARAM lParam)
{
    return {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
}

/// Keeps what is drawn inside of a rectangle.
class CClip {
public:
    CClip(HDC target, const RECT& part) : m_hTarget(target)
    {
        ::IntersectClipRect(target, part.left, part.top, part.right, part.bottom);
    }
    ~CClip() { ::SelectClipRgn(m_hTarget, nullptr); }
    CClip(const CClip&) = delete;
    CClip& operator=(const CClip&) = delete;

private:
    HDC m_hTarget;
};

// Ends the painting also when memory runs out on the way.
class CPaintScope {
public:
    explicit CPaintScope(HWND window) : m_hWindow(window), m_hScreen(::BeginPaint(window, &m_oPaint)) {}
    ~CPaintScope() { ::EndPaint(m_hWindow, &m_oPaint); }
    CPaintScope(const CPaintScope&) = delete;
    CPaintScope& operator=(const CPaintScope&) = delete;

    HDC Screen() const { return m_hScreen; }
    const RECT& Part() const { return m_oPaint.rcPaint; }

private:
    PAINTSTRUCT m_oPaint{};
    HWND m_hWindow;
    HDC m_hScreen;
};

}  // namespace

CPreview::CPreview(DirectDeviceFactory openDirect)
    : m_fnOpenDirect(std::move(openDirect)),
      m_pRenderer(MakePreviewRenderer(m_oOptions.renderer, m_fnOpenDirect))
{
    CMessageMap& messages = Messages();
    messages.OnMessage(WM_PAINT, [this](WPARAM, LPARAM) {
        OnPaint();
        return 0;
    });
    // Everything is painted over, so erasing would only flicker.
    messages.OnMessage(WM_ERASEBKGND, [](WPARAM, LPARAM) { return 1; });
    messages.OnMessage(WM_SIZE, [this](WPARAM, LPARAM) {
        Redraw();
        return 0;
    });
    messages.OnMessage(WM_MOUSEWHEEL, [this](WPARAM wParam, LPARAM) {
        OnWheel(GET_WHEEL_DELTA_WPARAM(wParam));
        return 0;
    });
    messages.OnMessage(WM_LBUTTONDOWN, [this](WPARAM, LPARAM lParam) {
        OnButtonDown(PointOf(lParam));
        return 0;
    });
    messages.OnMessage(WM_LBUTTONUP, [](WPARAM, LPARAM) {
        ::ReleaseCapture();
        return 0;
    });
    messages.OnMessage(WM_MOUSEMOVE, [this](WPARAM, LPARAM lParam) {
        OnDrag(PointOf(lParam));
        return 0;
    });
    messages.OnMessage(WM_GETDLGCODE, [](WPARAM, LPARAM) { return DLGC_WANTARROWS | DLGC_WANTCHARS; });
    messages.OnMessage(WM_KEYDOWN, [this](WPARAM wParam, LPARAM) { return OnKey(wParam) ? 0 : 1; });
    for (const UINT message : {WM_SETFOCUS, WM_KILLFOCUS})
        messages.OnMessage(message, [this](WPARAM, LPARAM) {
            Redraw();
            return 0;
        });
}

void CPreview::ShowBitmap(std::optional<CBitmap> bitmap)
{
    Show(std::move(bitmap), {});
}

void CPreview::ShowText(const std::wstring& text)
{
    Show(std::nullopt, text);
}

void CPreview::Show(std::optional<CBitmap> bitmap, const std::wstring& text)
{
    RedrawContent();
    const bool sameSize = bitmap && m_oBitmap && bitmap->Width() == m_oBitmap->Width() &&
                          bitmap->Height() == m_oBitmap->Height();
    if (!sameSize) {
        // Zoom and place are kept only where they still mean the same part, as when one texture is compared
        // between its caches.
        m_nZoomStep = 0;
        m_oOffset = {};
    }
    m_oBitmap = std::move(bitmap);
    m_oShrunken.reset();
    ++m_nVersion;
    m_sText = text;
    RedrawContent();
    ::UpdateWindow(Handle());
}

void CPreview::RedrawContent() const
{
    // What lies around the picture stays as it is; a step through the tree would paint it over and over.
    if (!m_sText.empty()) {
        Redraw();
        return;
    }
    const RECT picture = PicturePlace(ClientRect());
    ::InvalidateRect(Handle(), &picture, FALSE);
}

void CPreview::SetOptions(const PreviewOptions& options)
{
    if (options.renderer != m_oOptions.renderer)
        m_pRenderer = MakePreviewRenderer(options.renderer, m_fnOpenDirect);
    m_oOptions = options;
    Redraw();
}

void CPreview::SetBackground(BackgroundMode mode)
{
    m_oOptions.background = mode != BackgroundMode::None;
    m_oOptions.alpha = mode == BackgroundMode::Alpha || mode == BackgroundMode::FixedAlpha;
    m_oOptions.fixedAlpha = mode == BackgroundMode::FixedAlpha;
    Redraw();
}

double CPreview::Zoom() const
{
    if (m_nZoomStep >= 0)
        return kEnlargements[static_cast<std::size_t>(m_nZoomStep)];
    return 1.0 / (1 << -m_nZoomStep);
}

void CPreview::StepZoom(int steps)
{
    const int largest = static_cast<int>(kEnlargements.size()) - 1;
    m_nZoomStep = std::clamp(m_nZoomStep + steps, kSmallestZoomStep, largest);
    Redraw();
}

void CPreview::OnWheel(int delta)
{
    // Fine wheels send parts of a notch.
    m_nWheelRest += delta;
    const int steps = m_nWheelRest / WHEEL_DELTA;
    m_nWheelRest -= steps * WHEEL_DELTA;
    if (steps != 0)
        StepZoom(steps);
}

void CPreview::OnButtonDown(POINT place)
{
    Focus();
    ::SetCapture(Handle());
    m_oDragStart = {place.x - m_oOffset.x, place.y - m_oOffset.y};
}

void CPreview::OnDrag(POINT place)
{
    if (::GetCapture() != Handle())
        return;
    m_oOffset = {place.x - m_oDragStart.x, place.y - m_oDragStart.y};
    Redraw();
}

bool CPreview::OnKey(WPARAM key)
{
    switch (key) {
        case VK_ADD:
        case VK_OEM_PLUS:
            StepZoom(1);
            return true;
        case VK_SUBTRACT:
        case VK_OEM_MINUS:
            StepZoom(-1);
            return true;
        case VK_HOME:
        case '0':
            m_oOffset = {};
            StepZoom(-m_nZoomStep);
            return true;
        case VK_LEFT:
            m_oOffset.x += kKeyStep;
            break;
        case VK_RIGHT:
            m_oOffset.x -= kKeyStep;
            break;
        case VK_UP:
            m_oOffset.y += kKeyStep;
            break;
        case VK_DOWN:
            m_oOffset.y -= kKeyStep;
            break;
        default:
            return false;
    }
    Redraw();
    return true;
}

RECT CPreview::PicturePlace(const RECT& client) const
{
    if (!m_oBitmap)
        return {};
    const SIZE size = m_oOptions.stretch ? Fitted(*m_oBitmap, client) : Zoomed(*m_oBitmap, m_nZoomStep);
    LONG left = (WidthOf(client) - size.cx) / 2;
    LONG top = (HeightOf(client) - size.cy) / 2;
    if (!m_oOptions.stretch) {
        left += m_oOffset.x;
        top += m_oOffset.y;
    }
    return {left, top, left + size.cx, top + size.cy};
}

void CPreview::KeepPictureInReach(const RECT& client)
{
    if (!m_oBitmap)
        return;
    const SIZE size = Zoomed(*m_oBitmap, m_nZoomStep);
    const LONG mostX = std::max((WidthOf(client) + size.cx) / 2 - kLeastInSight, 0L);
    const LONG mostY = std::max((HeightOf(client) + size.cy) / 2 - kLeastInSight, 0L);
    m_oOffset.x = std::clamp(m_oOffset.x, -mostX, mostX);
    m_oOffset.y = std::clamp(m_oOffset.y, -mostY, mostY);
}

void CPreview::OnPaint()
{
    const CPaintScope scope(Handle());
    const RECT client = ClientRect();
    RECT part{};
    if (!::IntersectRect(&part, &client, &scope.Part()) ||
        !m_oSurface.Resize(scope.Screen(), WidthOf(client), HeightOf(client)))
        return;
    KeepPictureInReach(client);
    Paint(m_oSurface.Dc(), part);
    m_oSurface.Show(scope.Screen(), part);
}

void CPreview::Paint(HDC target, const RECT& part)
{
    const CClip clip(target, part);
    const RECT client = ClientRect();
    m_pRenderer->Draw(target, Scene(client, part));
    if (!m_sText.empty())
        PaintText(target, client);
    if (::GetFocus() == Handle())
        ::DrawFocusRect(target, &client);
}

PreviewScene CPreview::Scene(const RECT& client, const RECT& part)
{
    PreviewScene scene;
    scene.part = part;
    scene.color = m_oOptions.background ? m_oOptions.color : ::GetSysColor(COLOR_WINDOW);
    scene.picture = PicturePlace(client);
    scene.squareSide = CScale(DpiOf(Handle()))(kSquareSide);
    if (m_oOptions.background && m_oOptions.alpha) {
        scene.squares = m_oOptions.fixedAlpha ? client : scene.picture;
        scene.squaresOrigin = {scene.squares.left, scene.squares.top};
    }
    if (m_oBitmap) {
        scene.bitmap = &ShownBitmap(scene.picture);
        scene.version = m_nVersion;
    }
    return scene;
}

const CBitmap& CPreview::ShownBitmap(const RECT& picture)
{
    const auto width = static_cast<std::uint32_t>(WidthOf(picture));
    const auto height = static_cast<std::uint32_t>(HeightOf(picture));
    const bool shrinks = width < m_oBitmap->Width() || height < m_oBitmap->Height();
    // The plain renderer drops pixels, as a static control would.
    if (!shrinks || m_oOptions.renderer == PreviewRenderer::Static)
        return *m_oBitmap;
    if (!m_oShrunken || m_oShrunken->Width() != width || m_oShrunken->Height() != height)
        m_oShrunken = ScaleBitmap(*m_oBitmap, width, height);
    return m_oShrunken ? *m_oShrunken : *m_oBitmap;
}

void CPreview::PaintText(HDC target, RECT client) const
{
    const CFontHandle font = MessageFont(DpiOf(Handle()));
    const HGDIOBJ previous = ::SelectObject(target, font.get());
    ::SetBkMode(target, TRANSPARENT);
    const COLORREF behind =
        m_oOptions.background && !m_oOptions.alpha ? m_oOptions.color : ::GetSysColor(COLOR_WINDOW);
    const int brightness = GetRValue(behind) + GetGValue(behind) + GetBValue(behind);
    ::SetTextColor(target, brightness > 3 * 0x70 ? RGB(0, 0, 0) : RGB(0xFF, 0xFF, 0xFF));
    RECT text = client;
    ::DrawTextW(target, m_sText.c_str(), -1, &text, DT_CENTER | DT_WORDBREAK | DT_NOPREFIX | DT_CALCRECT);
    client.top += std::max((HeightOf(client) - HeightOf(text)) / 2, 0);
    ::DrawTextW(target, m_sText.c_str(), -1, &client, DT_CENTER | DT_WORDBREAK | DT_NOPREFIX);
    ::SelectObject(target, previous);
}
