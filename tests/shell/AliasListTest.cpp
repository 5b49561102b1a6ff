#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/resource.h"
#include "base/Format.h"
#include "dialogs/DlgAliases.h"
#include "tests/database/DatabaseFixture.h"
#include "ui/Dpi.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::uint32_t kRoad = 1;
constexpr std::uint32_t kRoadSfe = 2;
constexpr std::uint32_t kRoadX = 3;
constexpr std::uint32_t kGhost = 6;

CDatabaseBuilder Roads()
{
    CDatabaseBuilder builder;
    builder.Category("cat=0 name=Default");
    builder.Texture("road_lae", " width=4 height=4 hassibling=1").Picture("dxt", 0x11);
    builder.Texture("road", " width=4 height=4 hassibling=1").Picture("dxt", 0x33);
    builder.Alias("road_sfe", "road_lae");
    builder.Texture("roadx").Picture("dxt", 0x22);
    builder.Alias("street", "road").Alias("lane", "road").Alias("ghost", "nothing");
    return builder;
}

/// Writes down what is selected; nothing else is asked of it.
class CSelectingHost final : public IEditorHost {
public:
    void Import(const CBitmap*, ImportRecord&) override { ADD_FAILURE(); }
    void Show(const std::wstring&, const CBitmap*) override { ADD_FAILURE(); }
    void Select(std::uint32_t index) override { selected.push_back(index); }
    void Refresh() override { ADD_FAILURE(); }
    std::unique_ptr<CBitmap> Decode(std::uint32_t, CacheIndex) override { return nullptr; }

    std::vector<std::uint32_t> selected;
};

class CAliasListTest : public testing::Test {
protected:
    CAliasListTest() : m_oResources(::GetModuleHandleW(nullptr)), m_oDatabase(Roads()) {}

    CDlgAliases NewList(RelationKind kind, std::optional<std::uint32_t> index)
    {
        return CDlgAliases({m_oResources, *m_oDatabase, m_oHost, m_oPrompt}, kind, index);
    }
    /// Opens the dialog without waiting for its end.
    void Open(RelationKind kind, std::uint32_t index)
    {
        m_pDialog = std::make_unique<CDlgAliases>(
            RelationListParts{m_oResources, *m_oDatabase, m_oHost, m_oPrompt}, kind, index);
        ASSERT_TRUE(m_pDialog->Create(m_oResources.Current(), nullptr)) << "a display is needed";
        m_pDialog->Show(true);
        m_oList.Attach(m_pDialog->Child(IDC_ALIASES).Handle());
    }
    std::vector<std::wstring> Columns() const
    {
        const int dpi = DpiOf(m_pDialog->Handle());
        std::vector<std::wstring> columns;
        for (int column = 0; column < m_oList.ColumnCount(); ++column)
            columns.push_back(Format(L"%s %d", m_oList.ColumnText(column),
                                     ::MulDiv(m_oList.ColumnWidth(column), USER_DEFAULT_SCREEN_DPI, dpi)));
        return columns;
    }
    std::vector<std::wstring> Rows() const
    {
        std::vector<std::wstring> rows;
        for (int row = 0; row < m_oList.Count(); ++row) {
            std::wstring text;
            for (int column = 0; column < m_oList.ColumnCount(); ++column)
                text += m_oList.ItemText(row, column) + L"|";
            rows.push_back(text);
        }
        return rows;
    }

    CResources m_oResources;
    CDatabaseFixture m_oDatabase;
    CSelectingHost m_oHost;
    CScriptedPrompt m_oPrompt;
    std::unique_ptr<CDlgAliases> m_pDialog;
    CListView m_oList;
};

void CALLBACK PressOk(HWND, UINT, UINT_PTR, DWORD)
{
    if (const HWND dialog = ::FindWindowW(nullptr, L"Texture 'road' aliases"))
        ::PostMessageW(dialog, WM_COMMAND, IDOK, 0);
}

}  // namespace

TEST_F(CAliasListTest, ShowsTheAliasesOfATexture)
{
    Open(RelationKind::Aliases, kRoad);
    EXPECT_EQ(m_pDialog->Text(), L"Texture 'road' aliases");
    EXPECT_THAT(Columns(), ElementsAre(L"ID 50", L"Texture 230", L"Has Sibling 100"));
    EXPECT_THAT(Rows(), ElementsAre(L"04|street|No|", L"05|lane|No|"));
}

TEST_F(CAliasListTest, ShowsTheFamilyOfATexture)
{
    Open(RelationKind::Siblings, kRoad);
    EXPECT_EQ(m_pDialog->Text(), L"'road' siblings");
    EXPECT_THAT(Columns(),
                ElementsAre(L"ID 50", L"Texture 200", L"TXD 130", L"Has Sibling 70", L"Alias of 130"));
    EXPECT_THAT(Rows(),
                ElementsAre(L"00|road_lae|lae|Yes||", L"01|road|N/A|Yes||", L"02|road_sfe|sfe|No|road_lae|"));
}

TEST_F(CAliasListTest, NamesTheFocusedTextureInTheTitleAndNotTheBase)
{
    Open(RelationKind::Siblings, kRoadSfe);
    EXPECT_EQ(m_pDialog->Text(), L"'road_sfe' siblings");
    EXPECT_THAT(Rows(), SizeIs(3));
    EXPECT_EQ(m_oList.Focused(), 2) << "the keyboard starts at the texture itself";
}

TEST_F(CAliasListTest, SelectsInTheMainWindowWhatIsSelectedHere)
{
    Open(RelationKind::Siblings, kRoad);
    EXPECT_THAT(m_oHost.selected, IsEmpty()) << "opening the list selects nothing";
    m_oList.Select(0);
    m_oList.Select(2);
    m_oList.ClearSelection();
    EXPECT_THAT(m_oHost.selected, ElementsAre(0U, 2U));
    Open(RelationKind::Aliases, kRoad);
    m_oList.Select(1);
    EXPECT_THAT(m_oHost.selected, ElementsAre(0U, 2U, 5U));
}

TEST_F(CAliasListTest, FollowsTheArrowKeys)
{
    Open(RelationKind::Aliases, kRoad);
    m_oList.Send(WM_KEYDOWN, VK_DOWN, 1);
    EXPECT_THAT(m_oHost.selected, ElementsAre(5U));
    m_oList.Send(WM_KEYDOWN, VK_UP, 1);
    EXPECT_THAT(m_oHost.selected, ElementsAre(5U, 4U));
}

TEST_F(CAliasListTest, ClosesWithBothButtons)
{
    for (const int button : {IDOK, IDCANCEL}) {
        Open(RelationKind::Aliases, kRoad);
        const auto before = m_oDatabase.Files();
        m_pDialog->Send(WM_COMMAND, static_cast<WPARAM>(button));
        EXPECT_FALSE(m_pDialog->Exists());
        EXPECT_EQ(m_oDatabase.Files(), before);
    }
}

TEST_F(CAliasListTest, StaysOpenUntilTheButtonIsPressed)
{
    const UINT_PTR timer = ::SetTimer(nullptr, 0, 20, PressOk);
    NewList(RelationKind::Aliases, kRoad).Run(nullptr);
    ::KillTimer(nullptr, timer);
    EXPECT_THAT(m_oPrompt.Shown(), IsEmpty());
}

TEST_F(CAliasListTest, SaysThatThereAreNoAliases)
{
    NewList(RelationKind::Aliases, kRoadX).Run(nullptr);
    NewList(RelationKind::Aliases, std::nullopt).Run(nullptr);
    ASSERT_THAT(m_oPrompt.Shown(), SizeIs(2));
    for (const PromptBox& box : m_oPrompt.Shown()) {
        EXPECT_EQ(box.text, L"No aliases found.");
        EXPECT_EQ(box.caption, L"Mavrel");
        EXPECT_EQ(box.icon, PromptIcon::Information);
        EXPECT_EQ(box.buttons, PromptButtons::Ok);
    }
}

TEST_F(CAliasListTest, IsNotShownForNoTextureOrAnAliasOfNothing)
{
    NewList(RelationKind::Siblings, std::nullopt).Run(nullptr);
    NewList(RelationKind::Siblings, kGhost).Run(nullptr);
    NewList(RelationKind::Aliases, kGhost).Run(nullptr);
    EXPECT_THAT(m_oPrompt.Shown(), IsEmpty());
}

TEST_F(CAliasListTest, GrowsWithItsWindow)
{
    Open(RelationKind::Aliases, kRoad);
    const RECT before = m_oList.WindowRect();
    const RECT window = m_pDialog->WindowRect();
    m_pDialog->Move({window.left, window.top, window.right + 100, window.bottom + 50});
    const RECT after = m_oList.WindowRect();
    EXPECT_EQ(after.right - after.left, before.right - before.left + 100);
    EXPECT_EQ(after.bottom - after.top, before.bottom - before.top + 50);
    const RECT cancel = m_pDialog->Child(IDCANCEL).WindowRect();
    EXPECT_LT(after.bottom, cancel.top);
    EXPECT_EQ(cancel.right, after.right);
}

TEST_F(CAliasListTest, IsWideEnoughForItsColumns)
{
    for (const RelationKind kind : {RelationKind::Aliases, RelationKind::Siblings}) {
        Open(kind, kRoad);
        int columns = 0;
        for (int column = 0; column < m_oList.ColumnCount(); ++column)
            columns += m_oList.ColumnWidth(column);
        EXPECT_GE(m_oList.ClientRect().right, columns);
    }
}
