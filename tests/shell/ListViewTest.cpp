#include "ui/ListView.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class CListViewTest : public testing::Test {
protected:
    CListViewTest()
    {
        m_oList.Attach(::CreateWindowExW(0, WC_LISTVIEWW, L"", WS_POPUP | WS_VISIBLE | LVS_REPORT, 0, 0, 400,
                                         300, nullptr, nullptr, nullptr, nullptr));
        m_oList.UseRows(LVS_EX_CHECKBOXES);
        m_oList.AddColumn(L"Name", 120);
        m_oList.AddColumn(L"Size", 80);
        for (const wchar_t* name : {L"a", L"b", L"c"})
            m_oList.Append(name, name[0]);
    }
    ~CListViewTest() override { ::DestroyWindow(m_oList.Handle()); }

    CListView m_oList;
};

}  // namespace

TEST_F(CListViewTest, HasColumnsRowsAndData)
{
    EXPECT_EQ(m_oList.ColumnCount(), 2);
    EXPECT_EQ(m_oList.ColumnText(1), L"Size");
    EXPECT_EQ(m_oList.ColumnWidth(0), 120);
    m_oList.SetColumnText(0, L"Title");
    EXPECT_EQ(m_oList.ColumnText(0), L"Title");
    m_oList.SetItemText(1, 1, L"12 KB");
    EXPECT_EQ(m_oList.Count(), 3);
    EXPECT_EQ(m_oList.ItemText(1, 0), L"b");
    EXPECT_EQ(m_oList.ItemText(1, 1), L"12 KB");
    EXPECT_EQ(m_oList.Data(2), L'c');
    m_oList.SetData(2, -1);
    EXPECT_EQ(m_oList.Data(2), -1);
    m_oList.Delete(0);
    EXPECT_EQ(m_oList.ItemText(0, 0), L"b");
    m_oList.DeleteAll();
    EXPECT_EQ(m_oList.Count(), 0);
}

TEST_F(CListViewTest, SelectsOneRowOrAll)
{
    EXPECT_EQ(m_oList.FirstSelected(), -1);
    m_oList.SelectAll();
    EXPECT_THAT(m_oList.SelectedRows(), ElementsAre(0, 1, 2));
    m_oList.Select(1);
    EXPECT_THAT(m_oList.SelectedRows(), ElementsAre(1));
    EXPECT_EQ(m_oList.Focused(), 1);
    m_oList.SetFocused(2);
    EXPECT_TRUE(m_oList.IsSelected(1));
    EXPECT_FALSE(m_oList.IsSelected(2));
    EXPECT_EQ(m_oList.Focused(), 2);
    m_oList.ClearSelection();
    EXPECT_THAT(m_oList.SelectedRows(), IsEmpty());
}

TEST_F(CListViewTest, HasCheckBoxes)
{
    EXPECT_FALSE(m_oList.IsChecked(0));
    m_oList.SetChecked(0, true);
    EXPECT_TRUE(m_oList.IsChecked(0));
    EXPECT_FALSE(m_oList.IsChecked(1));
    m_oList.SetChecked(0, false);
    EXPECT_FALSE(m_oList.IsChecked(0));
}

TEST_F(CListViewTest, KnowsWhereItsCellsAre)
{
    const RECT cell = m_oList.CellRect(2, 1);
    EXPECT_EQ(cell.right - cell.left, 80);
    const ListCell hit = m_oList.CellAt({cell.left + 5, cell.top + 2});
    EXPECT_EQ(hit.row, 2);
    EXPECT_EQ(hit.column, 1);
    EXPECT_EQ(m_oList.CellAt({5, 290}).row, -1);
    EXPECT_GT(m_oList.TextWidth(L"wide text"), m_oList.TextWidth(L"w"));
}

TEST_F(CListViewTest, HasRowsOfTheHeightThatWasAskedFor)
{
    m_oList.SetRowHeight(40);
    const RECT first = m_oList.CellRect(0, 1);
    const RECT second = m_oList.CellRect(1, 1);
    EXPECT_GE(second.top - first.top, 40);
    EXPECT_LE(second.top - first.top, 42);
}

TEST_F(CListViewTest, AddsRowsThatAskForTheirTexts)
{
    m_oList.AppendOnDemand(2);
    EXPECT_EQ(m_oList.Count(), 5);
    LVITEMW item{};
    item.mask = LVIF_TEXT | LVIF_NORECOMPUTE;
    item.iItem = 4;
    for (item.iSubItem = 0; item.iSubItem < 2; ++item.iSubItem) {
        item.pszText = nullptr;
        m_oList.SendPointer(LVM_GETITEMW, 0, &item);
        EXPECT_EQ(item.pszText, LPSTR_TEXTCALLBACKW) << item.iSubItem;
    }
    EXPECT_EQ(m_oList.ItemText(0, 0), L"a");
}
