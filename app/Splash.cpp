#include "app/Splash.h"

#include "app/resource.h"
#include "ui/Dialog.h"
#include "ui/Dpi.h"

namespace {

class CDlgSplash final : public CDialog {
public:
    CDlgSplash() : CDialog(IDD_SPLASH) {}

private:
    bool OnInit() override
    {
        constexpr int kHeadingSize = 28;
        const int height = CScale(DpiOf(Handle()))(kHeadingSize);
        LOGFONTW font{};
        ::GetObjectW(MessageFont(DpiOf(Handle())).get(), sizeof font, &font);
        font.lfHeight = -height;
        font.lfWeight = FW_SEMIBOLD;
        m_hHeading.reset(::CreateFontIndirectW(&font));
        Child(IDC_SPLASH_TEXT)
            .Send(WM_SETFONT, reinterpret_cast<WPARAM>(m_hHeading.get()));  // NOLINT: as defined
        return true;
    }

    CFontHandle m_hHeading;
};

}  // namespace

void ShowSplash(HINSTANCE program, int milliseconds)
{
    CDlgSplash splash;
    if (!splash.Create(program, nullptr))
        return;
    splash.Show(true);
    ::RedrawWindow(splash.Handle(), nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
    ::Sleep(static_cast<DWORD>(milliseconds));
}
