#include <gtest/gtest.h>
#include <memory>
#include <vector>

#include "app/Direct3D11Device.h"
#include "app/PreviewRendererDirectX.h"
#include "ui/BitmapDrawing.h"
#include "ui/Handles.h"

namespace {

constexpr int kSide = 64;
constexpr RECT kWhole = {0, 0, kSide, kSide};

/// A picture in memory that renderers draw on, and its pixels.
class CCanvas {
public:
    CCanvas() : m_hDc(::CreateCompatibleDC(nullptr))
    {
        BITMAPINFO info{};
        info.bmiHeader.biSize = sizeof info.bmiHeader;
        info.bmiHeader.biWidth = kSide;
        info.bmiHeader.biHeight = -kSide;
        info.bmiHeader.biPlanes = 1;
        info.bmiHeader.biBitCount = 32;
        info.bmiHeader.biCompression = BI_RGB;
        m_hBitmap.reset(::CreateDIBSection(m_hDc.get(), &info, DIB_RGB_COLORS, &m_pBits, nullptr, 0));
        m_hOriginal = ::SelectObject(m_hDc.get(), m_hBitmap.get());
    }
    ~CCanvas() { ::SelectObject(m_hDc.get(), m_hOriginal); }
    CCanvas(const CCanvas&) = delete;
    CCanvas& operator=(const CCanvas&) = delete;

    HDC Dc() const { return m_hDc.get(); }
    COLORREF At(int x, int y) const { return ::GetPixel(m_hDc.get(), x, y); }
    /// Blue, green, red and a byte without meaning for each pixel.
    std::vector<int> Bytes() const
    {
        ::GdiFlush();
        const auto* bytes = static_cast<const std::uint8_t*>(m_pBits);
        return {bytes, bytes + std::size_t{kSide} * kSide * 4};
    }

private:
    CMemoryDc m_hDc;
    CBitmapHandle m_hBitmap;
    HGDIOBJ m_hOriginal = nullptr;
    void* m_pBits = nullptr;
};

/// Every alpha, and colours that differ from pixel to pixel.
CBitmap Colorful(std::uint32_t width, std::uint32_t height)
{
    auto bitmap = CBitmap::Create(width, height);
    std::uint8_t* out = bitmap->Pixels().data();
    for (std::uint32_t i = 0; i < width * height; ++i) {
        for (const std::uint32_t value : {i * 7, i * 13 + 50, i * 31 + 90, i * 5})
            *out++ = static_cast<std::uint8_t>(value);
    }
    return std::move(*bitmap);
}

PreviewScene SceneOf(const CBitmap& bitmap, const RECT& picture)
{
    PreviewScene scene;
    scene.part = kWhole;
    scene.color = RGB(0x20, 0x80, 0xC0);
    scene.bitmap = &bitmap;
    scene.picture = picture;
    return scene;
}

class CPreviewRenderers : public testing::Test {
protected:
    CGdiPlusSession m_oGdiPlus;
    CCanvas m_oCanvas;
};

// What each of them shows.

TEST_F(CPreviewRenderers, ThePlainOneShowsTheColorsOfTransparentPixels)
{
    auto bitmap = CBitmap::Create(1, 1);
    bitmap->Pixels()[2] = 0xFF;
    CPreviewRendererStatic().Draw(m_oCanvas.Dc(), SceneOf(*bitmap, {8, 8, 9, 9}));
    EXPECT_EQ(m_oCanvas.At(8, 8), RGB(0xFF, 0, 0));
    EXPECT_EQ(m_oCanvas.At(9, 8), RGB(0x20, 0x80, 0xC0));
}

TEST_F(CPreviewRenderers, GdiPlusBlendsThePictureOverTheSquares)
{
    const auto transparent = CBitmap::Create(16, 16);
    PreviewScene scene = SceneOf(*transparent, {8, 8, 24, 24});
    scene.squares = scene.picture;
    scene.squaresOrigin = {8, 8};
    scene.squareSide = 8;
    CPreviewRendererGdiPlus().Draw(m_oCanvas.Dc(), scene);
    EXPECT_EQ(m_oCanvas.At(7, 7), RGB(0x20, 0x80, 0xC0));
    EXPECT_EQ(m_oCanvas.At(8, 8), RGB(0xFF, 0xFF, 0xFF));
    EXPECT_EQ(m_oCanvas.At(16, 8), RGB(0xCC, 0xCC, 0xCC));
    EXPECT_EQ(m_oCanvas.At(23, 23), RGB(0xFF, 0xFF, 0xFF));
}

TEST_F(CPreviewRenderers, APointTakesThePixelThatItsCentreFallsInto)
{
    auto bitmap = CBitmap::Create(2, 1);
    const std::vector<std::uint8_t> redAndBlue = {0, 0, 0xFF, 0xFF, 0xFF, 0, 0, 0xFF};
    std::copy(redAndBlue.begin(), redAndBlue.end(), bitmap->Pixels().begin());
    CPreviewRendererGdiPlus().Draw(m_oCanvas.Dc(), SceneOf(*bitmap, {0, 0, 5, 1}));
    EXPECT_EQ(m_oCanvas.At(1, 0), RGB(0xFF, 0, 0));
    EXPECT_EQ(m_oCanvas.At(2, 0), RGB(0, 0, 0xFF)) << "half way counts upwards";
    EXPECT_EQ(m_oCanvas.At(4, 0), RGB(0, 0, 0xFF));
}

// Direct X on a real device.

class CDirectXRenderer : public CPreviewRenderers {
protected:
    static void SetUpTestSuite() { s_pDevice = OpenDirect3D11(); }
    static void TearDownTestSuite() { s_pDevice.reset(); }
    void SetUp() override
    {
        if (!s_pDevice)
            GTEST_SKIP() << "this machine has no Direct3D 11 device, not even a software one";
    }

    /// The largest difference of a channel from what GDI+ draws.
    int DifferenceFromGdiPlus(PreviewScene scene)
    {
        CCanvas expected;
        CPreviewRendererGdiPlus().Draw(expected.Dc(), scene);
        scene.version = ++s_nVersion;
        EXPECT_EQ(s_pDevice->Draw(m_oCanvas.Dc(), scene), DirectResult::Drawn);
        const std::vector<int> left = expected.Bytes();
        const std::vector<int> right = m_oCanvas.Bytes();
        int largest = 0;
        for (std::size_t at = 0; at < left.size(); ++at)
            if (at % 4 != 3)
                largest = std::max(largest, std::abs(left[at] - right[at]));
        return largest;
    }

    // Opening one takes up to a second.
    static inline std::unique_ptr<IDirectDevice> s_pDevice;  // NOLINT
    static inline std::uint64_t s_nVersion = 0;              // NOLINT
};

constexpr int kRounding = 2;

TEST_F(CDirectXRenderer, DrawsLifeSizeAsGdiPlusDoes)
{
    const CBitmap bitmap = Colorful(40, 30);
    EXPECT_LE(DifferenceFromGdiPlus(SceneOf(bitmap, {12, 17, 52, 47})), kRounding);
}

TEST_F(CDirectXRenderer, EnlargesAsGdiPlusDoes)
{
    const CBitmap bitmap = Colorful(7, 5);
    for (const int factor : {2, 3, 6, 12, 32}) {
        const RECT picture = {-3, -1, 7 * factor - 3, 5 * factor - 1};
        EXPECT_LE(DifferenceFromGdiPlus(SceneOf(bitmap, picture)), kRounding) << factor << " times";
    }
}

TEST_F(CDirectXRenderer, StretchesByFractionsAsGdiPlusDoes)
{
    const CBitmap bitmap = Colorful(24, 16);
    for (int width = 24; width <= kSide; ++width) {
        const RECT picture = {0, 2, width, 2 + width * 16 / 24};
        EXPECT_LE(DifferenceFromGdiPlus(SceneOf(bitmap, picture)), kRounding) << "to a width of " << width;
    }
}

TEST_F(CDirectXRenderer, DrawsTheVisiblePartOfAnEnormousEnlargementAsGdiPlusDoes)
{
    const CBitmap bitmap = Colorful(2048, 2048);
    const RECT picture = {-60001, -60013, -60001 + 65536, -60013 + 65536};
    EXPECT_LE(DifferenceFromGdiPlus(SceneOf(bitmap, picture)), kRounding);
}

TEST_F(CDirectXRenderer, DrawsTheSquaresAsGdiPlusDoes)
{
    const CBitmap bitmap = Colorful(40, 30);
    for (const int side : {8, 10, 12, 16}) {
        PreviewScene scene = SceneOf(bitmap, {-5, 17, 35, 47});
        scene.squareSide = side;
        scene.squares = scene.picture;
        scene.squaresOrigin = {-5, 17};
        EXPECT_LE(DifferenceFromGdiPlus(scene), kRounding) << "under the picture, side " << side;
        scene.squares = kWhole;
        scene.squaresOrigin = {0, 0};
        EXPECT_LE(DifferenceFromGdiPlus(scene), kRounding) << "everywhere, side " << side;
    }
}

TEST_F(CDirectXRenderer, DrawsWithoutAPicture)
{
    PreviewScene scene;
    scene.part = kWhole;
    scene.color = RGB(1, 2, 3);
    EXPECT_EQ(s_pDevice->Draw(m_oCanvas.Dc(), scene), DirectResult::Drawn);
    EXPECT_EQ(m_oCanvas.At(0, 0), RGB(1, 2, 3));
    EXPECT_EQ(m_oCanvas.At(kSide - 1, kSide - 1), RGB(1, 2, 3));
}

TEST_F(CDirectXRenderer, DrawsOnlyThePartThatIsAskedFor)
{
    const CBitmap bitmap = Colorful(kSide, kSide);
    PreviewScene scene = SceneOf(bitmap, kWhole);
    scene.bitmap = nullptr;
    scene.part = {10, 20, 30, 40};
    EXPECT_EQ(s_pDevice->Draw(m_oCanvas.Dc(), scene), DirectResult::Drawn);
    EXPECT_EQ(m_oCanvas.At(10, 20), RGB(0x20, 0x80, 0xC0));
    EXPECT_EQ(m_oCanvas.At(29, 39), RGB(0x20, 0x80, 0xC0));
    EXPECT_EQ(m_oCanvas.At(9, 20), RGB(0, 0, 0));
    EXPECT_EQ(m_oCanvas.At(30, 39), RGB(0, 0, 0));
    EXPECT_EQ(m_oCanvas.At(10, 40), RGB(0, 0, 0));
}

TEST_F(CDirectXRenderer, TakesThePixelsOfAnotherPictureOfTheSameSize)
{
    const auto black = CBitmap::Create(4, 4);
    CBitmap white = std::move(*CBitmap::Create(4, 4));
    std::fill(white.Pixels().begin(), white.Pixels().end(), std::uint8_t{0xFF});
    EXPECT_LE(DifferenceFromGdiPlus(SceneOf(*black, {0, 0, 4, 4})), kRounding);
    EXPECT_LE(DifferenceFromGdiPlus(SceneOf(white, {0, 0, 4, 4})), kRounding);
    EXPECT_EQ(m_oCanvas.At(1, 1), RGB(0xFF, 0xFF, 0xFF));
}

TEST_F(CDirectXRenderer, RefusesAPictureBeyondItsLargestTextureAndGoesOn)
{
    const auto wide = CBitmap::Create(65535, 1);
    PreviewScene scene = SceneOf(*wide, {0, 0, 65535, 1});
    scene.version = ++s_nVersion;
    EXPECT_EQ(s_pDevice->Draw(m_oCanvas.Dc(), scene), DirectResult::Refused);
    const CBitmap bitmap = Colorful(8, 8);
    EXPECT_LE(DifferenceFromGdiPlus(SceneOf(bitmap, {0, 0, 8, 8})), kRounding);
}

// Devices that fail.

/// Fills with a colour that nobody else draws, or fails as it is told to.
class CScriptedDevice final : public IDirectDevice {
public:
    explicit CScriptedDevice(DirectResult result) : m_eResult(result) {}

    DirectResult Draw(HDC target, const PreviewScene& scene) override
    {
        if (m_eResult == DirectResult::Drawn) {
            const CBrushHandle brush(::CreateSolidBrush(RGB(0xAB, 0xCD, 0xEF)));
            ::FillRect(target, &scene.part, brush.get());
        }
        return m_eResult;
    }

private:
    DirectResult m_eResult;
};

class CDirectXFallback : public CPreviewRenderers {
protected:
    /// The next device that is opened gives the next result; past the end there are no more devices.
    void DrawTwice(const std::vector<DirectResult>& results)
    {
        CPreviewRendererDirectX renderer([this, &results]() -> std::unique_ptr<IDirectDevice> {
            const auto number = m_nOpened++;
            if (number >= results.size())
                return nullptr;
            return std::make_unique<CScriptedDevice>(results[number]);
        });
        PreviewScene scene;
        scene.part = kWhole;
        scene.color = kFallbackColor;
        renderer.Draw(m_oCanvas.Dc(), scene);
        m_nFirst = m_oCanvas.At(5, 5);
        renderer.Draw(m_oCanvas.Dc(), scene);
        m_nSecond = m_oCanvas.At(5, 5);
    }

    static constexpr COLORREF kDeviceColor = RGB(0xAB, 0xCD, 0xEF);
    static constexpr COLORREF kFallbackColor = RGB(0x12, 0x34, 0x56);
    std::size_t m_nOpened = 0;
    COLORREF m_nFirst = 0;
    COLORREF m_nSecond = 0;
};

TEST_F(CDirectXFallback, DrawsWithTheDeviceThatIsThere)
{
    DrawTwice({DirectResult::Drawn});
    EXPECT_EQ(m_nFirst, kDeviceColor);
    EXPECT_EQ(m_nSecond, kDeviceColor);
    EXPECT_EQ(m_nOpened, 1U);
}

TEST_F(CDirectXFallback, DrawsWithGdiPlusWhereThereIsNoDevice)
{
    DrawTwice({});
    EXPECT_EQ(m_nFirst, kFallbackColor);
    EXPECT_EQ(m_nSecond, kFallbackColor);
    EXPECT_EQ(m_nOpened, 1U);
}

TEST_F(CDirectXFallback, DrawsWithGdiPlusWhatTheDeviceRefusesAndKeepsTheDevice)
{
    DrawTwice({DirectResult::Refused, DirectResult::Drawn});
    EXPECT_EQ(m_nFirst, kFallbackColor);
    EXPECT_EQ(m_nSecond, kFallbackColor);
    EXPECT_EQ(m_nOpened, 1U);
}

TEST_F(CDirectXFallback, OpensAnotherDeviceWhenOneIsLost)
{
    DrawTwice({DirectResult::Lost, DirectResult::Drawn});
    EXPECT_EQ(m_nFirst, kDeviceColor);
    EXPECT_EQ(m_nSecond, kDeviceColor);
    EXPECT_EQ(m_nOpened, 2U);
}

TEST_F(CDirectXFallback, GivesUpWhenTheNewDeviceIsLostToo)
{
    DrawTwice({DirectResult::Lost, DirectResult::Lost, DirectResult::Drawn});
    EXPECT_EQ(m_nFirst, kFallbackColor);
    EXPECT_EQ(m_nSecond, kFallbackColor);
    EXPECT_EQ(m_nOpened, 2U);
}

TEST_F(CDirectXFallback, DrawsWithGdiPlusWhenNoDeviceFollowsALostOne)
{
    DrawTwice({DirectResult::Lost});
    EXPECT_EQ(m_nFirst, kFallbackColor);
    EXPECT_EQ(m_nSecond, kFallbackColor);
    EXPECT_EQ(m_nOpened, 2U);
}

}  // namespace
