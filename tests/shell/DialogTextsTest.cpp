#include "app/DialogTexts.h"

#include <gtest/gtest.h>

#include "app/Preview.h"
#include "app/resource.h"
#include "base/DynamicLibrary.h"
#include "ui/Dialog.h"

namespace {

class CPlainDialog final : public CDialog {
public:
    explicit CPlainDialog(int id) : CDialog(id) {}
};

class CDialogTexts : public testing::Test {
protected:
    void SetUp() override
    {
        m_oLibrary = CDynamicLibrary::Load(std::wstring(MAVREL_LANGUAGES) + L"/spanish.dll");
        ASSERT_TRUE(m_oLibrary);
        CPreview::Register(Program(), CPreview::kClassName);
    }
    static HINSTANCE Program() { return ::GetModuleHandleW(nullptr); }
    HINSTANCE Spanish() const { return static_cast<HINSTANCE>(m_oLibrary->Handle()); }

    std::optional<CDynamicLibrary> m_oLibrary;
};

TEST_F(CDialogTexts, ChangeInAWindowThatIsOpen)
{
    CPlainDialog dialog(IDD_VALUE);
    ASSERT_TRUE(dialog.Create(Program(), nullptr));
    dialog.Child(IDC_VALUE).SetText(L"typed");
    dialog.Child(IDC_VALUE_LABEL).SetText(L"given");
    TakeTextsFromTemplate(dialog, Spanish(), IDD_VALUE);
    EXPECT_EQ(dialog.Child(IDOK).Text(), L"Aceptar");
    EXPECT_EQ(dialog.Child(IDCANCEL).Text(), L"Cancelar");
    EXPECT_EQ(dialog.Child(IDC_VALUE).Text(), L"typed");
    EXPECT_EQ(dialog.Child(IDC_VALUE_LABEL).Text(), L"given");
    TakeTextsFromTemplate(dialog, Program(), IDD_VALUE);
    EXPECT_EQ(dialog.Child(IDCANCEL).Text(), L"Cancel");
}

TEST_F(CDialogTexts, StayWhereTheTemplateDoesNotExist)
{
    CPlainDialog dialog(IDD_VALUE);
    ASSERT_TRUE(dialog.Create(Program(), nullptr));
    TakeTextsFromTemplate(dialog, Spanish(), 9999);
    EXPECT_EQ(dialog.Child(IDCANCEL).Text(), L"Cancel");
}

TEST_F(CDialogTexts, OfALibraryComeWithTheProgramsOwnWindowClasses)
{
    CPlainDialog dialog(IDD_MAIN);
    ASSERT_TRUE(dialog.Create(Spanish(), nullptr));
    EXPECT_EQ(dialog.Child(IDC_GAME_LABEL).Text(), L"&Juego:");
    EXPECT_TRUE(dialog.Child(IDC_PREVIEW).Exists());
}

TEST_F(CDialogTexts, ComeFromTheProgramWhenALibraryLacksTheDialog)
{
    const auto bare = CDynamicLibrary::Load(std::wstring(MAVREL_STUB_LANGUAGES) + L"/build396.dll");
    ASSERT_TRUE(bare);
    CPlainDialog dialog(IDD_VALUE);
    ASSERT_TRUE(dialog.Create(static_cast<HINSTANCE>(bare->Handle()), nullptr));
    EXPECT_EQ(dialog.Child(IDCANCEL).Text(), L"Cancel");
}

}  // namespace
