#include "app/PropertiesPanel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/resource.h"
#include "base/Format.h"
#include "tests/database/DatabaseFixture.h"
#include "ui/Dpi.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint32_t kWood = 0;
constexpr std::uint32_t kBark = 1;
constexpr std::uint32_t kSand = 2;
constexpr int kTextureRows = 23;

CDatabaseBuilder Textures()
{
    CDatabaseBuilder builder;
    builder.Category("cat=0 name=Default onfoot=0 slow=0 fast=0 defaultstream=0");
    builder.Category("cat=1 name=walls onfoot=2 slow=3 fast=4 defaultstream=0");
    builder.Texture("wood", " width=16 height=8 cat=1 forcez=1 img=0000beef").Picture("dxt", 0x11, 16, 8);
    builder.Alias("bark", "wood");
    builder.Texture("sand").Picture("dxt", 0x33);
    return builder;
}

/// A panel in a window of its own, over a small database. Edits are written down and made.
class CPropertiesPanelTest : public testing::Test {
protected:
    CPropertiesPanelTest() : m_oResources(::GetModuleHandleW(nullptr)), m_oDatabase(Textures())
    {
        m_oParent.Attach(::CreateWindowExW(0, L"STATIC", L"panel", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0,
                                           400, 700, nullptr, nullptr, nullptr, nullptr));
        m_oBefore = NewButton();
        m_oAfter = NewButton();
        m_oPanel.OnTextureEdit([this](std::uint32_t index, Property property, std::uint32_t value) {
            m_aEdits.push_back(Format(L"#%d %s=%d", index, KeyText(property), value));
            const std::uint32_t textures[] = {index};
            ChangeTextureProperty(*m_oDatabase, textures, property, value);
            m_oPanel.ShowTexture(*m_oDatabase, index);
        });
        m_oPanel.OnCategoryEdit(
            [this](std::uint32_t category, CategoryProperty property, std::int32_t value) {
                m_aEdits.push_back(Format(L"category %d %s=%d", category, KeyText(property), value));
                ChangeCategoryProperty(*m_oDatabase, category, property, value);
                m_oPanel.ShowCategory(*m_oDatabase, category);
            });
        m_oPanel.OnFoldChanged([this] { ++m_nFolds; });
        EXPECT_TRUE(m_oPanel.Create(m_oParent.Handle(), IDC_PROPERTIES, m_oResources, m_oBefore.Handle()))
            << "a display is needed";
        m_oPanel.Move({10, 10, 260, 640});
        m_oList.Attach(m_oPanel.Child(IDC_PROPERTIES_LIST).Handle());
        ::SetActiveWindow(m_oParent.Handle());
        Pump();
    }
    ~CPropertiesPanelTest() override { ::DestroyWindow(m_oParent.Handle()); }

    CWindow NewButton() const
    {
        return CWindow(::CreateWindowExW(0, L"BUTTON", L"", WS_CHILD | WS_VISIBLE | WS_TABSTOP, 300, 0, 50,
                                         20, m_oParent.Handle(), nullptr, nullptr, nullptr));
    }
    /// Serves what was posted, as the main window's loop does.
    void Pump() const
    {
        MSG message{};
        while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE)
            Serve(message);
    }
    void Serve(MSG& message) const
    {
        if (::IsDialogMessageW(m_oParent.Handle(), &message) != FALSE)
            return;
        ::TranslateMessage(&message);
        ::DispatchMessageW(&message);
    }
    void Press(WPARAM key) const
    {
        ::PostMessageW(::GetFocus(), WM_KEYDOWN, key, 1);
        ::PostMessageW(::GetFocus(), WM_KEYUP, key, static_cast<LPARAM>(0xC0000001));
        Pump();
    }
    void Click(POINT place, bool isDouble = false) const
    {
        const LPARAM point = MAKELPARAM(place.x, place.y);
        ::PostMessageW(m_oList.Handle(), isDouble ? WM_LBUTTONDBLCLK : WM_LBUTTONDOWN, MK_LBUTTON, point);
        ::PostMessageW(m_oList.Handle(), WM_LBUTTONUP, 0, point);
        Pump();
    }
    /// A place in the value of a row, or with `column` 0 in its label.
    POINT PlaceIn(const std::wstring& label, int column = 1) const
    {
        const RECT cell = m_oList.CellRect(RowOf(label), column);
        const CScale scale(DpiOf(m_oList.Handle()));
        return {cell.left + scale(10), (cell.top + cell.bottom) / 2};
    }
    POINT BesideTheBoxOf(const std::wstring& label) const
    {
        const RECT cell = m_oList.CellRect(RowOf(label), 1);
        return {cell.right - 5, (cell.top + cell.bottom) / 2};
    }
    int RowOf(const std::wstring& label) const
    {
        for (int row = 0; row < m_oList.Count(); ++row)
            if (m_oList.ItemText(row, 0) == label)
                return row;
        ADD_FAILURE() << "no row " << ToUtf8(label);
        return -1;
    }
    std::wstring ValueOf(const std::wstring& label) const { return m_oList.ItemText(RowOf(label), 1); }
    void FocusRow(const std::wstring& label) const
    {
        m_oList.Focus();
        m_oList.Select(RowOf(label));
        Pump();
    }
    CWindow Field() const { return m_oPanel.Child(IDC_PROPERTIES_FIELD); }
    bool IsEditing() const { return Field().IsVisible() && m_oPanel.Editor() == Field().Handle(); }
    /// Types a value into a row and ends with a key.
    void Type(const std::wstring& label, const std::wstring& text, WPARAM key) const
    {
        FocusRow(label);
        Press(VK_RETURN);
        EXPECT_TRUE(IsEditing());
        Field().SetText(text);
        Press(key);
        EXPECT_FALSE(IsEditing());
    }

    CResources m_oResources;
    CDatabaseFixture m_oDatabase;
    CWindow m_oParent;
    CWindow m_oBefore;
    CWindow m_oAfter;
    CPropertiesPanel m_oPanel;
    CListView m_oList;
    std::vector<std::wstring> m_aEdits;
    int m_nFolds = 0;
};

}  // namespace

TEST_F(CPropertiesPanelTest, ShowsATextureACategoryAndNothing)
{
    EXPECT_EQ(m_oList.Count(), 0);
    m_oPanel.ShowTexture(*m_oDatabase, kWood);
    EXPECT_EQ(m_oList.Count(), kTextureRows);
    EXPECT_EQ(ValueOf(L"name"), L"wood");
    EXPECT_EQ(ValueOf(L"Original"), L"");
    EXPECT_EQ(ValueOf(L"forcez"), L"1");
    EXPECT_EQ(ValueOf(L"img"), L"0x0000beef");
    EXPECT_EQ(ValueOf(L"DXT"), L"16 x 8, RGBA 8888");
    EXPECT_EQ(ValueOf(L"DXT size"), L"512 B");
    m_oPanel.ShowTexture(*m_oDatabase, kBark);
    EXPECT_EQ(ValueOf(L"name"), L"bark");
    EXPECT_EQ(ValueOf(L"Original"), L"wood, ID: 00");
    m_oPanel.ShowCategory(*m_oDatabase, 1);
    EXPECT_EQ(m_oList.Count(), 7);
    EXPECT_EQ(ValueOf(L"name"), L"walls");
    EXPECT_EQ(ValueOf(L"slow"), L"3");
    m_oPanel.Clear();
    EXPECT_EQ(m_oList.Count(), 0);
}

TEST_F(CPropertiesPanelTest, DrawsOnlyWhatIsDifferent)
{
    m_oPanel.ShowTexture(*m_oDatabase, kWood);
    ::UpdateWindow(m_oList.Handle());
    m_oPanel.ShowTexture(*m_oDatabase, kWood);
    RECT stale{};
    EXPECT_FALSE(::GetUpdateRect(m_oList.Handle(), &stale, FALSE)) << "the same texture again";
    m_oPanel.ShowTexture(*m_oDatabase, kSand);
    EXPECT_TRUE(::GetUpdateRect(m_oList.Handle(), &stale, FALSE));
}

TEST_F(CPropertiesPanelTest, SwitchesAFlagWithTheKeyboard)
{
    m_oPanel.ShowTexture(*m_oDatabase, kWood);
    FocusRow(L"forcez");
    Press(VK_SPACE);
    EXPECT_EQ(ValueOf(L"forcez"), L"0");
    Press(VK_RETURN);
    EXPECT_EQ(ValueOf(L"forcez"), L"1");
    Press(VK_F2);
    EXPECT_THAT(m_aEdits, ElementsAre(L"#0 forcez=0", L"#0 forcez=1", L"#0 forcez=0"));
    EXPECT_EQ(m_oDatabase.ListText().find("forcez"), std::string::npos);
    EXPECT_FALSE(IsEditing());
}

TEST_F(CPropertiesPanelTest, SwitchesAFlagWithAClickOnItsBox)
{
    m_oPanel.ShowTexture(*m_oDatabase, kWood);
    Click(PlaceIn(L"camnorm"));
    EXPECT_THAT(m_aEdits, ElementsAre(L"#0 camnorm=1"));
    Click(BesideTheBoxOf(L"decalz"));
    Click(PlaceIn(L"mipmode", 0));
    EXPECT_EQ(m_aEdits.size(), 1U) << "beside the box a click only selects";
    EXPECT_EQ(m_oList.Focused(), RowOf(L"mipmode"));
}

TEST_F(CPropertiesPanelTest, EditsANumberInPlace)
{
    m_oPanel.ShowTexture(*m_oDatabase, kWood);
    FocusRow(L"alphamode");
    Press(VK_F2);
    ASSERT_TRUE(IsEditing());
    EXPECT_EQ(Field().Text(), L"0");
    EXPECT_EQ(::GetFocus(), Field().Handle());
    Field().SetText(L" 2 ");
    Press(VK_RETURN);
    EXPECT_FALSE(IsEditing());
    EXPECT_EQ(::GetFocus(), m_oList.Handle());
    EXPECT_EQ(ValueOf(L"alphamode"), L"2");
    EXPECT_THAT(m_aEdits, ElementsAre(L"#0 alphamode=2"));
}

TEST_F(CPropertiesPanelTest, EditsAHashInHexadecimal)
{
    m_oPanel.ShowTexture(*m_oDatabase, kWood);
    Type(L"png", L"CAFE", VK_RETURN);
    EXPECT_EQ(ValueOf(L"png"), L"0x0000cafe");
    EXPECT_NE(m_oDatabase.ListText().find(" png=0000cafe"), std::string::npos);
}

TEST_F(CPropertiesPanelTest, EditsWithADoubleClickOrAClickOnTheSelectedValue)
{
    m_oPanel.ShowTexture(*m_oDatabase, kWood);
    Click(PlaceIn(L"width"));
    EXPECT_FALSE(IsEditing()) << "the first click selects";
    Click(PlaceIn(L"width"));
    EXPECT_TRUE(IsEditing());
    Press(VK_ESCAPE);
    Click(PlaceIn(L"width", 0));
    EXPECT_FALSE(IsEditing()) << "the label is not the value";
    Click(PlaceIn(L"height"));
    Click(PlaceIn(L"height"), true);
    EXPECT_TRUE(IsEditing());
    EXPECT_EQ(Field().Text(), L"8");
}

TEST_F(CPropertiesPanelTest, EscLeavesTheValue)
{
    m_oPanel.ShowTexture(*m_oDatabase, kWood);
    Type(L"width", L"99", VK_ESCAPE);
    EXPECT_EQ(ValueOf(L"width"), L"16");
    EXPECT_THAT(m_aEdits, IsEmpty());
}

TEST_F(CPropertiesPanelTest, LeavingTheFieldKeepsWhatWasTyped)
{
    m_oPanel.ShowTexture(*m_oDatabase, kWood);
    Type(L"width", L"99", VK_TAB);
    EXPECT_EQ(ValueOf(L"width"), L"99");
    FocusRow(L"height");
    Press(VK_RETURN);
    Field().SetText(L"77");
    m_oBefore.Focus();
    EXPECT_FALSE(IsEditing());
    EXPECT_EQ(::GetFocus(), m_oBefore.Handle()) << "the focus goes where the person put it";
    EXPECT_THAT(m_aEdits, ElementsAre(L"#0 width=99", L"#0 height=77"));
}

TEST_F(CPropertiesPanelTest, TextThatIsNoNumberChangesNothing)
{
    m_oPanel.ShowTexture(*m_oDatabase, kWood);
    for (const wchar_t* text : {L"", L"wide", L"12abc", L"99999999999", L"16"})
        Type(L"width", text, VK_RETURN);
    Type(L"img", L"0x", VK_RETURN);
    EXPECT_EQ(ValueOf(L"width"), L"16");
    EXPECT_THAT(m_aEdits, IsEmpty());
}

TEST_F(CPropertiesPanelTest, AnotherTextureEndsTheEditingWithoutAChange)
{
    m_oPanel.ShowTexture(*m_oDatabase, kWood);
    FocusRow(L"width");
    Press(VK_RETURN);
    Field().SetText(L"99");
    m_oPanel.ShowTexture(*m_oDatabase, kSand);
    EXPECT_FALSE(IsEditing());
    EXPECT_THAT(m_aEdits, IsEmpty());
    EXPECT_EQ(ValueOf(L"width"), L"4");
}

TEST_F(CPropertiesPanelTest, OfAnAliasOnlyHasSiblingChanges)
{
    m_oPanel.ShowTexture(*m_oDatabase, kBark);
    for (const wchar_t* label : {L"name", L"affiliate", L"Original", L"forcez", L"width", L"img", L"DXT"}) {
        FocusRow(label);
        Press(VK_RETURN);
        Press(VK_SPACE);
        EXPECT_FALSE(IsEditing()) << ToUtf8(label);
    }
    Click(PlaceIn(L"camnorm"));
    EXPECT_THAT(m_aEdits, IsEmpty());
    Click(PlaceIn(L"hassibling"));
    EXPECT_THAT(m_aEdits, ElementsAre(L"#1 hassibling=1"));
}

TEST_F(CPropertiesPanelTest, EditsACategoryButNotItsNameAndNumber)
{
    m_oPanel.ShowCategory(*m_oDatabase, 1);
    Type(L"onfoot", L"-7", VK_RETURN);
    EXPECT_EQ(ValueOf(L"onfoot"), L"-7");
    for (const wchar_t* label : {L"name", L"cat"}) {
        FocusRow(label);
        Press(VK_RETURN);
        EXPECT_FALSE(IsEditing()) << ToUtf8(label);
    }
    Type(L"slow", L"slow", VK_RETURN);
    EXPECT_THAT(m_aEdits, ElementsAre(L"category 1 onfoot=-7"));
}

TEST_F(CPropertiesPanelTest, FoldsDownToItsButton)
{
    m_oPanel.ShowTexture(*m_oDatabase, kWood);
    const CWindow header = m_oPanel.Child(IDC_PROPERTIES_HEADER);
    header.Focus();
    Press(VK_SPACE);
    EXPECT_TRUE(m_oPanel.IsFolded());
    EXPECT_EQ(m_nFolds, 1);
    EXPECT_FALSE(m_oList.IsVisible());
    EXPECT_EQ(m_oPanel.PreferredHeight(600), m_oPanel.FoldedHeight());
    m_oPanel.ShowTexture(*m_oDatabase, kSand);
    EXPECT_EQ(m_oList.Count(), 0) << "folded, the panel does no work";
    Press(VK_SPACE);
    EXPECT_FALSE(m_oPanel.IsFolded());
    EXPECT_EQ(m_nFolds, 2);
    EXPECT_TRUE(m_oList.IsVisible());
    m_oPanel.ShowTexture(*m_oDatabase, kSand);
    EXPECT_EQ(m_oList.Count(), kTextureRows);
    EXPECT_GT(m_oPanel.PreferredHeight(600), 4 * m_oPanel.FoldedHeight());
    EXPECT_LT(m_oPanel.PreferredHeight(600), 300) << "the tree keeps the larger part";
}

TEST_F(CPropertiesPanelTest, IsReachedWithTheTabKey)
{
    m_oPanel.ShowTexture(*m_oDatabase, kWood);
    m_oBefore.Focus();
    EXPECT_FALSE(m_oPanel.HasFocus());
    Press(VK_TAB);
    EXPECT_EQ(::GetFocus(), m_oPanel.Child(IDC_PROPERTIES_HEADER).Handle());
    Press(VK_TAB);
    EXPECT_EQ(::GetFocus(), m_oList.Handle());
    EXPECT_TRUE(m_oPanel.HasFocus());
    Press(VK_TAB);
    EXPECT_EQ(::GetFocus(), m_oAfter.Handle());
}

TEST_F(CPropertiesPanelTest, NamesItsControlsForScreenReaders)
{
    m_oPanel.ShowTexture(*m_oDatabase, kWood);
    EXPECT_EQ(m_oPanel.Child(IDC_PROPERTIES_HEADER).Text(), L"&Properties");
    // The control behind a label in the order of the Tab key has its text for a name.
    const CWindow label = m_oPanel.Child(IDC_PROPERTIES_LABEL);
    EXPECT_EQ(::GetWindow(label.Handle(), GW_HWNDNEXT), m_oList.Handle());
    EXPECT_EQ(label.Text(), L"&Properties");
    EXPECT_EQ(m_oList.ColumnText(0), L"Property");
    EXPECT_EQ(m_oList.ColumnText(1), L"Value");
    FocusRow(L"cat");
    Press(VK_RETURN);
    const CWindow fieldLabel = m_oPanel.Child(IDC_PROPERTIES_FIELD_LABEL);
    EXPECT_EQ(fieldLabel.Text(), L"cat");
    EXPECT_EQ(::GetWindow(fieldLabel.Handle(), GW_HWNDNEXT), Field().Handle());
}

TEST_F(CPropertiesPanelTest, FollowsItsSizeAndFont)
{
    m_oPanel.ShowTexture(*m_oDatabase, kWood);
    EXPECT_EQ(m_oList.ColumnWidth(0) + m_oList.ColumnWidth(1), m_oList.ClientRect().right);
    m_oPanel.Move({0, 0, 380, 300});
    EXPECT_EQ(m_oList.ColumnWidth(0) + m_oList.ColumnWidth(1), m_oList.ClientRect().right);
    const int height = m_oPanel.FoldedHeight();
    const CFontHandle large = MessageFont(2 * USER_DEFAULT_SCREEN_DPI);
    m_oPanel.Send(WM_SETFONT, reinterpret_cast<WPARAM>(large.get()), TRUE);
    EXPECT_GT(m_oPanel.FoldedHeight(), height);
    const RECT header = m_oPanel.Child(IDC_PROPERTIES_HEADER).WindowRect();
    EXPECT_EQ(header.bottom - header.top, m_oPanel.FoldedHeight());
}
