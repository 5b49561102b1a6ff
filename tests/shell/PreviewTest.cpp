#include "app/Preview.h"

#include <gtest/gtest.h>

#include "ui/BitmapDrawing.h"

namespace {

constexpr int kSide = 100;

/// A preview of 100 x 100 pixels, and what it has painted.
class CPreviewWindow : public testing::Test {
protected:
    CPreviewWindow()
    {
        const HINSTANCE instance = ::GetModuleHandleW(nullptr);
        CPreview::Register(instance, CPreview::kClassName);
        m_oPreview.TakeOver(::CreateWindowExW(0, CPreview::kClassName, L"", WS_POPUP | WS_VISIBLE, 10, 10,
                                              kSide, kSide, nullptr, nullptr, instance, nullptr));
    }
    ~CPreviewWindow() override { ::DestroyWindow(m_oPreview.Handle()); }

    static CBitmap Filled(std::uint32_t width, std::uint32_t height, std::uint32_t bgra)
    {
        auto bitmap = CBitmap::Create(width, height);
        for (std::size_t at = 0; at < bitmap->Pixels().size(); ++at)
            bitmap->Pixels()[at] = static_cast<std::uint8_t>(bgra >> (at % 4 * 8));
        return std::move(*bitmap);
    }

    COLORREF PixelAt(int x, int y) const
    {
        ::UpdateWindow(m_oPreview.Handle());
        const HDC dc = ::GetDC(m_oPreview.Handle());
        const COLORREF color = ::GetPixel(dc, x, y);
        ::ReleaseDC(m_oPreview.Handle(), dc);
        return color;
    }

    void UseRenderer(PreviewRenderer renderer)
    {
        PreviewOptions options = m_oPreview.Options();
        options.renderer = renderer;
        m_oPreview.SetOptions(options);
    }

    CGdiPlusSession m_oGdiPlus;
    int m_nDevicesAsked = 0;
    // A machine without a graphics processor.
    CPreview m_oPreview{[this] {
        ++m_nDevicesAsked;
        return nullptr;
    }};
};

constexpr std::uint32_t kOpaqueRed = 0xFFFF0000;
constexpr std::uint32_t kInvisible = 0x0000FF00;
constexpr std::uint32_t kHalfRed = 0x80FF0000;

TEST_F(CPreviewWindow, CentresThePictureOverTheColor)
{
    m_oPreview.ShowBitmap(Filled(20, 20, kOpaqueRed));
    EXPECT_EQ(PixelAt(50, 50), RGB(0xFF, 0, 0));
    EXPECT_EQ(PixelAt(39, 50), RGB(0x80, 0x80, 0x80));
    EXPECT_EQ(PixelAt(40, 40), RGB(0xFF, 0, 0));
    EXPECT_EQ(PixelAt(60, 60), RGB(0x80, 0x80, 0x80));
}

TEST_F(CPreviewWindow, StretchesThePictureAndKeepsItsProportions)
{
    m_oPreview.ShowBitmap(Filled(20, 10, kOpaqueRed));
    PreviewOptions options = m_oPreview.Options();
    options.stretch = true;
    m_oPreview.SetOptions(options);
    EXPECT_EQ(PixelAt(1, 50), RGB(0xFF, 0, 0));
    EXPECT_EQ(PixelAt(98, 50), RGB(0xFF, 0, 0));
    EXPECT_EQ(PixelAt(50, 25), RGB(0xFF, 0, 0));
    EXPECT_EQ(PixelAt(98, 26), RGB(0xFF, 0, 0));
    EXPECT_EQ(PixelAt(50, 20), RGB(0x80, 0x80, 0x80));
    EXPECT_EQ(PixelAt(50, 80), RGB(0x80, 0x80, 0x80));
}

TEST_F(CPreviewWindow, ShowsACheckerboardUnderTransparentPartsOnly)
{
    m_oPreview.SetBackground(BackgroundMode::Alpha);
    m_oPreview.ShowBitmap(Filled(40, 40, kInvisible));
    EXPECT_EQ(PixelAt(31, 31), RGB(0xFF, 0xFF, 0xFF));
    EXPECT_EQ(PixelAt(39, 31), RGB(0xCC, 0xCC, 0xCC));
    EXPECT_EQ(PixelAt(5, 5), RGB(0x80, 0x80, 0x80));
}

TEST_F(CPreviewWindow, FillsTheWindowWithTheFixedCheckerboard)
{
    m_oPreview.SetBackground(BackgroundMode::FixedAlpha);
    m_oPreview.ShowBitmap(Filled(40, 40, kInvisible));
    EXPECT_EQ(PixelAt(1, 1), RGB(0xFF, 0xFF, 0xFF));
    EXPECT_EQ(PixelAt(9, 1), RGB(0xCC, 0xCC, 0xCC));
    EXPECT_EQ(PixelAt(33, 33), RGB(0xFF, 0xFF, 0xFF));
}

TEST_F(CPreviewWindow, ShowsTheWindowsOwnColorWithoutABackground)
{
    m_oPreview.SetBackground(BackgroundMode::None);
    m_oPreview.ShowBitmap(Filled(40, 40, kInvisible));
    EXPECT_EQ(PixelAt(50, 50), ::GetSysColor(COLOR_WINDOW));
}

TEST_F(CPreviewWindow, IgnoresAlphaAsAPlainControl)
{
    UseRenderer(PreviewRenderer::Static);
    m_oPreview.ShowBitmap(Filled(40, 40, kInvisible));
    EXPECT_EQ(PixelAt(50, 50), RGB(0, 0xFF, 0));
}

TEST_F(CPreviewWindow, DrawsAsGdiPlusWithoutAWordWhereThereIsNoDevice)
{
    UseRenderer(PreviewRenderer::DirectX);
    m_oPreview.ShowBitmap(Filled(40, 40, kHalfRed));
    EXPECT_EQ(PixelAt(50, 50), RGB(0xC0, 0x40, 0x40));
    EXPECT_EQ(m_oPreview.Options().renderer, PreviewRenderer::DirectX);
    m_oPreview.Redraw();
    EXPECT_EQ(PixelAt(50, 50), RGB(0xC0, 0x40, 0x40));
    EXPECT_EQ(m_nDevicesAsked, 1) << "a machine that has none is not asked at every painting";
}

TEST_F(CPreviewWindow, AsksForADeviceAgainWhenDirectXIsChosenAnew)
{
    UseRenderer(PreviewRenderer::DirectX);
    m_oPreview.ShowBitmap(Filled(40, 40, kOpaqueRed));
    UseRenderer(PreviewRenderer::GdiPlus);
    UseRenderer(PreviewRenderer::DirectX);
    ::UpdateWindow(m_oPreview.Handle());
    EXPECT_EQ(m_nDevicesAsked, 2);
}

TEST_F(CPreviewWindow, AsksForNoDeviceUnlessDirectXIsChosen)
{
    m_oPreview.ShowBitmap(Filled(40, 40, kOpaqueRed));
    UseRenderer(PreviewRenderer::Static);
    ::UpdateWindow(m_oPreview.Handle());
    EXPECT_EQ(m_nDevicesAsked, 0);
}

TEST_F(CPreviewWindow, BlendsWhatIsHalfTransparent)
{
    m_oPreview.ShowBitmap(Filled(40, 40, kHalfRed));
    EXPECT_EQ(PixelAt(50, 50), RGB(0xC0, 0x40, 0x40));
}

TEST_F(CPreviewWindow, PaintsOverALargerPictureWhenASmallerOneFollows)
{
    m_oPreview.ShowBitmap(Filled(80, 80, kOpaqueRed));
    EXPECT_EQ(PixelAt(12, 50), RGB(0xFF, 0, 0));
    m_oPreview.ShowBitmap(Filled(20, 20, kOpaqueRed));
    EXPECT_EQ(PixelAt(12, 50), RGB(0x80, 0x80, 0x80));
    EXPECT_EQ(PixelAt(50, 50), RGB(0xFF, 0, 0));
    m_oPreview.ShowBitmap(std::nullopt);
    EXPECT_EQ(PixelAt(50, 50), RGB(0x80, 0x80, 0x80));
}

TEST_F(CPreviewWindow, PaintsOverAnEnlargedPictureWhenAnotherOneFollowsAtLifeSize)
{
    m_oPreview.ShowBitmap(Filled(20, 20, kOpaqueRed));
    m_oPreview.Send(WM_MOUSEWHEEL, MAKEWPARAM(0, WHEEL_DELTA * 3));
    EXPECT_EQ(PixelAt(12, 50), RGB(0xFF, 0, 0));
    m_oPreview.ShowBitmap(Filled(10, 10, kOpaqueRed));
    EXPECT_EQ(PixelAt(12, 50), RGB(0x80, 0x80, 0x80));
}

TEST_F(CPreviewWindow, PaintsOverATextWhenAPictureFollows)
{
    m_oPreview.ShowText(std::wstring(400, L'M'));
    m_oPreview.ShowBitmap(Filled(2, 2, kOpaqueRed));
    for (int y = 2; y < 45; ++y)
        for (int x = 2; x < kSide - 2; ++x)
            ASSERT_EQ(PixelAt(x, y), RGB(0x80, 0x80, 0x80)) << x << ", " << y;
}

TEST_F(CPreviewWindow, KnowsWhenItShowsNothing)
{
    EXPECT_TRUE(m_oPreview.ShowsNothing());
    m_oPreview.ShowBitmap(Filled(20, 20, kOpaqueRed));
    EXPECT_FALSE(m_oPreview.ShowsNothing());
    m_oPreview.ShowText(L"no plugin");
    EXPECT_FALSE(m_oPreview.ShowsNothing());
    m_oPreview.ShowBitmap(std::nullopt);
    EXPECT_TRUE(m_oPreview.ShowsNothing());
}

TEST_F(CPreviewWindow, FitsTheStretchedPictureAnewWhenTheWindowGrows)
{
    PreviewOptions options = m_oPreview.Options();
    options.stretch = true;
    m_oPreview.SetOptions(options);
    m_oPreview.ShowBitmap(Filled(20, 20, kOpaqueRed));
    m_oPreview.Move({10, 10, 210, 210});
    EXPECT_EQ(PixelAt(1, 1), RGB(0xFF, 0, 0));
    EXPECT_EQ(PixelAt(198, 198), RGB(0xFF, 0, 0));
}

TEST_F(CPreviewWindow, ZoomsInWholeStepsWithTheWheel)
{
    m_oPreview.ShowBitmap(Filled(20, 20, kOpaqueRed));
    m_oPreview.Send(WM_MOUSEWHEEL, MAKEWPARAM(0, WHEEL_DELTA * 2));
    EXPECT_EQ(m_oPreview.Zoom(), 3.0);
    EXPECT_EQ(PixelAt(21, 21), RGB(0xFF, 0, 0));
    EXPECT_EQ(PixelAt(19, 50), RGB(0x80, 0x80, 0x80));
    m_oPreview.Send(WM_MOUSEWHEEL, MAKEWPARAM(0, static_cast<WORD>(-WHEEL_DELTA * 3)));
    EXPECT_EQ(m_oPreview.Zoom(), 0.5);
}

TEST_F(CPreviewWindow, DrawsTheVisiblePartOfAnEnormousEnlargement)
{
    m_oPreview.ShowBitmap(Filled(2048, 2048, kOpaqueRed));
    m_oPreview.Send(WM_MOUSEWHEEL, MAKEWPARAM(0, WHEEL_DELTA * 20));
    EXPECT_EQ(m_oPreview.Zoom(), 32.0);
    EXPECT_EQ(PixelAt(0, 0), RGB(0xFF, 0, 0));
    EXPECT_EQ(PixelAt(99, 99), RGB(0xFF, 0, 0));
}

}  // namespace
