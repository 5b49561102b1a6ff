#include <gtest/gtest.h>

#include "app/resource.h"
#include "ui/Dialog.h"

namespace {

class CSomeDialog final : public CDialog {
public:
    CSomeDialog() : CDialog(IDD_VALUE) {}
};

}  // namespace

TEST(DialogIcon, IsThatOfItsOwner)
{
    const HINSTANCE program = ::GetModuleHandleW(nullptr);
    const CWindow owner(::CreateWindowExW(0, L"STATIC", L"owner", WS_OVERLAPPEDWINDOW, 0, 0, 100, 100,
                                          nullptr, nullptr, program, nullptr));
    const auto icon = reinterpret_cast<LPARAM>(::LoadIconW(nullptr, IDI_WARNING));
    ASSERT_NE(icon, 0);
    owner.Send(WM_SETICON, ICON_SMALL, icon);
    {
        CSomeDialog dialog;
        ASSERT_TRUE(dialog.Create(program, owner.Handle()));
        EXPECT_EQ(dialog.Send(WM_GETICON, ICON_SMALL), icon);
        EXPECT_EQ(dialog.Send(WM_GETICON, ICON_BIG), 0) << "what the owner lacks";
    }
    ::DestroyWindow(owner.Handle());
}
