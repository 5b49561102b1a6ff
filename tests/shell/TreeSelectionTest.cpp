#include <array>

#include "tests/shell/MainWindowFixture.h"

namespace {

/// Holds keys down for this thread.
class CHeldKeys {
public:
    explicit CHeldKeys(std::initializer_list<int> keys)
    {
        ::GetKeyboardState(m_aBefore.data());
        auto now = m_aBefore;
        for (const int key : keys)
            now[static_cast<std::size_t>(key)] = 0x80;
        ::SetKeyboardState(now.data());
    }
    ~CHeldKeys() { ::SetKeyboardState(m_aBefore.data()); }
    CHeldKeys(const CHeldKeys&) = delete;
    CHeldKeys& operator=(const CHeldKeys&) = delete;

private:
    std::array<BYTE, 256> m_aBefore{};
};

class CTreeSelection : public CMainWindowTest {
protected:
    void SetUp() override
    {
        Start();
        OpenDatabase(SmallDatabase());
        for (const wchar_t* const category : {L"walls", L"plants", L"Unknown"})
            Tree().Expand(ItemOf(category), TVE_EXPAND);
    }

    void Click(const std::wstring& text) const
    {
        const RECT place = Tree().ItemRect(ItemOf(text));
        const LPARAM point = MAKELPARAM(place.left + 2, (place.top + place.bottom) / 2);
        // The control waits for the button to come up, to tell a click from a drag.
        ::PostMessageW(Tree().Handle(), WM_LBUTTONUP, 0, point);
        Tree().Send(WM_LBUTTONDOWN, MK_LBUTTON, point);
    }

    std::vector<std::wstring> Selected() const
    {
        std::vector<std::wstring> names;
        for (const wchar_t* const name :
             {L"walls", L"bark", L"Brick", L"wood", L"plants", L"leaf", L"Unknown", L"lost"})
            if (Tree().HasState(ItemOf(name), TVIS_SELECTED))
                names.emplace_back(name);
        return names;
    }

    using Names = std::vector<std::wstring>;
};

TEST_F(CTreeSelection, AddsAndRemovesItemsWithCtrl)
{
    Click(L"bark");
    {
        const CHeldKeys held({VK_CONTROL});
        Click(L"wood");
        Click(L"leaf");
    }
    EXPECT_EQ(Selected(), (Names{L"bark", L"wood", L"leaf"}));
    EXPECT_EQ(Pane(0), L"3 items selected");
    {
        const CHeldKeys held({VK_CONTROL});
        Click(L"wood");
    }
    EXPECT_EQ(Selected(), (Names{L"bark", L"leaf"}));
    EXPECT_EQ(Pane(0), L"2 items selected");
}

TEST_F(CTreeSelection, SelectsARangeWithShiftAndLeavesCategoriesOut)
{
    Click(L"Brick");
    {
        const CHeldKeys held({VK_SHIFT});
        Click(L"leaf");
    }
    EXPECT_EQ(Selected(), (Names{L"Brick", L"wood", L"leaf"}));
    {
        const CHeldKeys held({VK_SHIFT});
        Click(L"bark");
    }
    EXPECT_EQ(Selected(), (Names{L"bark", L"Brick"}));
}

TEST_F(CTreeSelection, SelectsOneItemAgainWithAPlainClick)
{
    Click(L"bark");
    {
        const CHeldKeys held({VK_CONTROL});
        Click(L"wood");
    }
    Click(L"wood");
    EXPECT_EQ(Selected(), (Names{L"wood"}));
    EXPECT_TRUE(Pane(0).starts_with(L"Texture 'wood' rendered within")) << ToUtf8(Pane(0));
}

TEST_F(CTreeSelection, NeverSelectsACategoryTogetherWithOthers)
{
    Click(L"bark");
    {
        const CHeldKeys held({VK_CONTROL});
        Click(L"plants");
    }
    EXPECT_EQ(Selected(), (Names{L"plants"}));
}

TEST_F(CTreeSelection, ExtendsTheSelectionWithShiftAndTheArrows)
{
    Click(L"bark");
    {
        const CHeldKeys held({VK_SHIFT});
        Tree().Send(WM_KEYDOWN, VK_DOWN);
        Tree().Send(WM_KEYDOWN, VK_DOWN);
    }
    EXPECT_EQ(Selected(), (Names{L"bark", L"Brick", L"wood"}));
    Tree().Send(WM_KEYDOWN, VK_UP);
    EXPECT_EQ(Selected(), (Names{L"Brick"}));
}

TEST_F(CTreeSelection, ExtendsTheSelectionToTheLastTextureBeforeAClosedCategory)
{
    Tree().Expand(ItemOf(L"plants"), TVE_COLLAPSE);
    Tree().Expand(ItemOf(L"Unknown"), TVE_COLLAPSE);
    Click(L"Brick");
    {
        const CHeldKeys held({VK_SHIFT});
        Tree().Send(WM_KEYDOWN, VK_END);
    }
    EXPECT_EQ(Selected(), (Names{L"Brick", L"wood"}));
    {
        const CHeldKeys held({VK_SHIFT});
        Tree().Send(WM_KEYDOWN, VK_HOME);
    }
    EXPECT_EQ(Selected(), (Names{L"bark", L"Brick"}));
}

TEST_F(CTreeSelection, SelectsAWholeCategoryWithCtrlA)
{
    Click(L"Brick");
    {
        const CHeldKeys held({VK_CONTROL});
        Tree().Send(WM_KEYDOWN, 'A');
    }
    EXPECT_EQ(Selected(), (Names{L"bark", L"Brick", L"wood"}));
    EXPECT_EQ(Pane(0), L"3 items selected");
}

}  // namespace
