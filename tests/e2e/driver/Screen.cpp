#include "tests/e2e/driver/Screen.h"

#include <array>
#include <cstdlib>
#include <optional>

#include "tests/e2e/driver/Wait.h"

namespace {

SIZE ClientSize(HWND window)
{
    RECT area{};
    ::GetClientRect(window, &area);
    return {area.right, area.bottom};
}

/// A memory device with pixels of its own.
class CCanvas {
public:
    explicit CCanvas(SIZE size) : m_oSize(size), m_hDevice(::CreateCompatibleDC(nullptr))
    {
        BITMAPINFO info{};
        info.bmiHeader.biSize = sizeof info.bmiHeader;
        info.bmiHeader.biWidth = size.cx;
        info.bmiHeader.biHeight = -size.cy;
        info.bmiHeader.biPlanes = 1;
        info.bmiHeader.biBitCount = 32;
        m_hBitmap = ::CreateDIBSection(m_hDevice, &info, DIB_RGB_COLORS, &m_pPixels, nullptr, 0);
        m_hBefore = ::SelectObject(m_hDevice, m_hBitmap);
    }
    ~CCanvas()
    {
        ::SelectObject(m_hDevice, m_hBefore);
        ::DeleteObject(m_hBitmap);
        ::DeleteDC(m_hDevice);
    }
    CCanvas(const CCanvas&) = delete;
    CCanvas& operator=(const CCanvas&) = delete;

    HDC Device() const { return m_hDevice; }
    std::vector<std::uint32_t> Pixels() const
    {
        ::GdiFlush();
        const auto* first = static_cast<const std::uint32_t*>(m_pPixels);
        std::vector<std::uint32_t> pixels(first, first + m_oSize.cx * m_oSize.cy);
        for (std::uint32_t& pixel : pixels)
            pixel &= 0xFFFFFFU;
        return pixels;
    }

private:
    SIZE m_oSize;
    HDC m_hDevice;
    HBITMAP m_hBitmap = nullptr;
    HGDIOBJ m_hBefore = nullptr;
    void* m_pPixels = nullptr;
};

std::vector<std::uint32_t> ScreenPixels(POINT corner, SIZE size)
{
    const CCanvas canvas(size);
    const HDC screen = ::GetDC(nullptr);
    ::BitBlt(canvas.Device(), 0, 0, size.cx, size.cy, screen, corner.x, corner.y, SRCCOPY);
    ::ReleaseDC(nullptr, screen);
    return canvas.Pixels();
}

std::uint64_t Difference(const std::vector<std::uint32_t>& one, const std::vector<std::uint32_t>& other)
{
    std::uint64_t sum = 0;
    for (std::size_t index = 0; index < one.size(); ++index)
        for (const int shift : {0, 8, 16})
            sum += static_cast<std::uint64_t>(std::abs(static_cast<int>(one[index] >> shift & 0xFFU) -
                                                       static_cast<int>(other[index] >> shift & 0xFFU)));
    return sum;
}

// The icon as the box draws it, on the colour that the box has in its corner.
std::vector<std::uint32_t> DrawnIcon(const wchar_t* name, SIZE size, std::uint32_t background)
{
    const CCanvas canvas(size);
    const RECT all{0, 0, size.cx, size.cy};
    const HBRUSH brush =
        ::CreateSolidBrush(RGB(background >> 16 & 0xFFU, background >> 8 & 0xFFU, background & 0xFFU));
    ::FillRect(canvas.Device(), &all, brush);
    ::DeleteObject(brush);
    ::DrawIconEx(canvas.Device(), 0, 0, ::LoadIconW(nullptr, name), 0, 0, 0, nullptr, DI_NORMAL);
    return canvas.Pixels();
}

}  // namespace

std::vector<std::uint32_t> PixelsOf(HWND window)
{
    POINT corner{0, 0};
    ::ClientToScreen(window, &corner);
    return ScreenPixels(corner, ClientSize(window));
}

std::vector<std::uint32_t> MenuBarPixels(HWND window)
{
    POINT corner{0, 0};
    ::ClientToScreen(window, &corner);
    constexpr int kWidth = 300;
    const int height = ::GetSystemMetrics(SM_CYMENU);
    return ScreenPixels({corner.x, corner.y - height}, {kWidth, height});
}

SystemIcon SystemIconIn(HWND window)
{
    struct Candidate {
        SystemIcon icon;
        const wchar_t* name;
    };
    const std::array<Candidate, 4> candidates = {{{SystemIcon::Information, IDI_INFORMATION},
                                                  {SystemIcon::Question, IDI_QUESTION},
                                                  {SystemIcon::Warning, IDI_WARNING},
                                                  {SystemIcon::Error, IDI_ERROR}}};
    // Far below the difference of two of the icons.
    constexpr std::uint64_t kMostPerPixel = 8;
    // A box that has just opened may not be painted yet, or only in part.
    return WaitFor("the icon to be painted", [&]() -> std::optional<SystemIcon> {
        const auto shown = PixelsOf(window);
        for (const auto& [icon, name] : candidates)
            if (Difference(shown, DrawnIcon(name, ClientSize(window), shown.front())) <
                kMostPerPixel * shown.size())
                return icon;
        return std::nullopt;
    });
}
