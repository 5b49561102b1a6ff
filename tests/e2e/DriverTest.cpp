// The driver against a window made for it: what it reads and what its input does.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/e2e/driver/Controls.h"
#include "tests/e2e/driver/Dialogs.h"
#include "tests/e2e/driver/Input.h"
#include "tests/e2e/driver/Program.h"
#include "tests/e2e/driver/Screen.h"
#include "tests/e2e/driver/Wait.h"
#include "tests/e2e/driver/WindowLookup.h"
#include "tests/e2e/window/resource.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using testing::ElementsAre;
using namespace std::chrono_literals;

class Driver : public testing::Test {
protected:
    void SetUp() override
    {
        m_hFrame = WaitFor("the test window", [this] {
            const auto windows = TopWindows(m_oProgram.Id());
            return windows.empty() ? std::nullopt : std::optional(windows.front());
        });
        WaitUntil("its status bar", [this] { return Pane(0) == L"ready"; });
    }
    void TearDown() override
    {
        if (HasFailure() && m_oProgram.IsRunning())
            std::wprintf(L"%ls", Describe(m_oProgram.Id()).c_str());
    }

    CTree Tree() const { return CTree(FindDescendant(m_hFrame, L"SysTreeView32")); }
    CTabs Tabs() const { return CTabs(FindDescendant(m_hFrame, L"SysTabControl32")); }
    CStatusPanes Panes() const { return CStatusPanes(FindDescendant(m_hFrame, L"msctls_statusbar32")); }
    std::wstring Pane(std::size_t pane) const
    {
        const HWND status = FindDescendant(m_hFrame, L"msctls_statusbar32");
        return status ? CStatusPanes(status).Text(pane) : std::wstring();
    }
    void ExpectPane(std::size_t pane, const std::wstring& text) const
    {
        EXPECT_NO_THROW(WaitUntil(
            "the pane", [&] { return Pane(pane) == text; }, 5s));
        EXPECT_EQ(Pane(pane), text);
    }
    COpenMessageBox BoxOf(int command) const
    {
        PostCommand(m_hFrame, command);
        return WaitForMessageBox(m_oProgram.Id());
    }

    CProgram m_oProgram{FolderOfThisProgram() / "e2e_test_window.exe", {L"two words", L"a\"quote\\"}};
    HWND m_hFrame = nullptr;
};

TEST_F(Driver, StartsAProgramWithItsArgumentsQuoted)
{
    EXPECT_EQ(TextOf(m_hFrame), L"\"two words\" \"a\\\"quote\\\\\"");
}

TEST_F(Driver, ReadsTheTreeOfAnotherProcess)
{
    EXPECT_THAT(Tree().Texts(), ElementsAre(L"First", L"  brick", L"  wood \u00FC", L"Second"));
    EXPECT_EQ(Tree().Items()[2].data, 7U);
    EXPECT_EQ(Tree().Items()[3].data, 0xFFFFFFFFU);
}

TEST_F(Driver, ClicksATreeItem)
{
    Tree().Click(L"wood \u00FC");
    ExpectPane(1, L"data 7");
    EXPECT_EQ(Tree().FocusedText(), L"wood \u00FC");
    EXPECT_THAT(Tree().SelectedTexts(), ElementsAre(L"wood \u00FC"));
}

TEST_F(Driver, SelectsItemsWithoutTheMouse)
{
    Tree().Click(L"Second");
    Tree().Select({L"wood \u00FC", L"brick"});
    ExpectPane(1, L"data 7");
    EXPECT_EQ(Tree().FocusedText(), L"wood \u00FC");
    EXPECT_THAT(Tree().SelectedTexts(), ElementsAre(L"brick", L"wood \u00FC"));
    EXPECT_THROW(Tree().Select({L"no such item"}), CDriveError);
}

TEST_F(Driver, HoldsKeysDuringAClick)
{
    constexpr POINT kEmptyPlace{300, 320};
    ClickAt(m_hFrame, kEmptyPlace, {VK_CONTROL});
    ExpectPane(2, L"with Ctrl");
    ClickAt(m_hFrame, kEmptyPlace);
    ExpectPane(2, L"plain");
}

TEST_F(Driver, ThrowsForAnItemThatIsNotThere)
{
    EXPECT_THROW(Tree().Click(L"no such item"), CDriveError);
}

TEST_F(Driver, ReadsAndClicksTabs)
{
    EXPECT_THAT(Tabs().Texts(), ElementsAre(L"ONE", L"REFUSED", L"THREE"));
    EXPECT_EQ(Tabs().Selected(), 0);
    Tabs().Click(2);
    EXPECT_NO_THROW(WaitUntil("tab 2", [this] { return Tabs().Selected() == 2; }));
    Tabs().Click(1);
    ExpectPane(0, L"tab refused");
    EXPECT_EQ(Tabs().Selected(), 0);
}

TEST_F(Driver, CountsStatusPanes)
{
    EXPECT_EQ(Panes().Count(), 3U);
}

TEST_F(Driver, ReadsAndAnswersAMessageBox)
{
    EXPECT_FALSE(HasMessageBox(m_oProgram.Id()));
    const auto box = BoxOf(ID_QUESTION);
    EXPECT_EQ(box.Caption(), L"A question");
    EXPECT_EQ(box.Text(), L"Is it so?\n\nReally?");
    EXPECT_THAT(box.Buttons(), ElementsAre(L"Yes", L"No", L"Cancel"));
    box.Press(IDNO);
    ExpectPane(0, L"answer 7");
    EXPECT_FALSE(HasMessageBox(m_oProgram.Id()));
}

TEST_F(Driver, TellsTheIconsOfMessageBoxesApart)
{
    for (const auto& [command, icon] :
         {std::pair(ID_BOX_INFORMATION, BoxIcon::Information), std::pair(ID_BOX_WARNING, BoxIcon::Warning),
          std::pair(ID_BOX_ERROR, BoxIcon::Error), std::pair(ID_QUESTION, BoxIcon::Question),
          std::pair(ID_BOX_PLAIN, BoxIcon::None)}) {
        const auto box = BoxOf(command);
        EXPECT_EQ(box.Icon(), icon) << command;
        box.Press(command == ID_QUESTION ? IDYES : IDOK);
    }
}

TEST_F(Driver, FillsTheFileDialog)
{
    PostCommand(m_hFrame, ID_FILE_NAME);
    const auto dialog = WaitForFileDialog(m_oProgram.Id());
    EXPECT_EQ(ProposedName(dialog), L"brick");
    const CTemporaryFolder folder;
    ChooseFiles(dialog, {folder / "new name.png"});
    ExpectPane(0, (folder / "new name.png").wstring());
}

TEST_F(Driver, CancelsTheFileDialog)
{
    PostCommand(m_hFrame, ID_FILE_NAME);
    WaitForFileDialog(m_oProgram.Id()).Press(IDCANCEL);
    ExpectPane(0, L"no file");
}

TEST_F(Driver, ChoosesAFolder)
{
    const CTemporaryFolder folder;
    std::filesystem::create_directory(folder / "target");
    PostCommand(m_hFrame, ID_FOLDER);
    ChooseFolder(WaitForFolderDialog(m_oProgram.Id()), folder / "target");
    ExpectPane(0, (folder / "target").wstring());
}

TEST_F(Driver, FillsADialogOfTheProgram)
{
    PostCommand(m_hFrame, ID_VALUE);
    const auto dialog = WaitForDialog(m_oProgram.Id(), L"One value");
    EXPECT_THAT(dialog.Labels(), ElementsAre(L"Which value:"));
    EXPECT_THAT(dialog.Buttons(), ElementsAre(L"OK", L"Cancel"));
    dialog.Type(L"brick");
    dialog.Press(IDOK);
    ExpectPane(0, L"brick");
}

TEST_F(Driver, PressesKeysWithOthersHeld)
{
    BringToFront(m_hFrame);
    PressKey(VK_F6, {VK_CONTROL});
    ExpectPane(0, L"Ctrl+F6");
}

TEST_F(Driver, SeesTheEndOfTheProgramAndItsCode)
{
    PostClose(m_hFrame);
    EXPECT_EQ(m_oProgram.WaitForExit(), 42U);
    EXPECT_FALSE(m_oProgram.IsRunning());
    EXPECT_THROW(TextOf(m_hFrame), CDriveError);
}

TEST(DriverWait, GivesUpWithTheNameOfWhatDidNotCome)
{
    try {
        WaitUntil(
            "a miracle", [] { return false; }, 30ms);
        FAIL() << "did not give up";
    } catch (const CDriveError& error) {
        EXPECT_STREQ(error.what(), "waited in vain for a miracle");
    }
}

}  // namespace
