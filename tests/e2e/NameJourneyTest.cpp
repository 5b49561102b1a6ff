// Names that a person types and that cannot be: each is refused with its text, and nothing changes.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/resource.h"
#include "tests/e2e/DatabaseFiles.h"
#include "tests/e2e/Mavrel.h"
#include "tests/e2e/SampleDatabase.h"
#include "tests/e2e/driver/Input.h"
#include "tests/e2e/driver/Wait.h"
#include "tests/e2e/driver/WindowLookup.h"

namespace {

struct RefusedName {
    std::wstring name;
    std::wstring text;
};

const std::wstring kSixtyThree(63, L'n');
const std::vector<RefusedName> kTextureNames = {
    {L"", L"Name should not be empty."},
    {L"wa\"ll", L"Wrong texture name given."},
    {L"\"wall\"", L"Wrong texture name given."},
    {kSixtyThree + L"n", L"Wrong texture name given."},
    {L"\u0441\u0442\u0435\u043D\u0430", L"Wrong texture name given."},
    {L"wall\u2026", L"Wrong texture name given."},
    {L"SIGN", L"Texture already exists"},
};
const std::vector<RefusedName> kCategoryNames = {
    {L"", L"Empty category name given"},
    {L"two words", L"No spaces allowed"},
    {L" Signs", L"No spaces allowed"},
    {kSixtyThree + L"n", L"Wrong category name given."},
    {L"\u0437\u043D\u0430\u043A\u0438", L"Wrong category name given."},
};

class NameJourney : public testing::Test {
protected:
    void SetUp() override
    {
        m_oMavrel.WaitUntilDrawn(L"brick");
        m_oBefore = FilesOf(m_oDatabase.List().parent_path());
        m_aTree = m_oMavrel.Tree().Texts();
    }
    void ExpectNothingChanged() const
    {
        EXPECT_EQ(m_oMavrel.Tree().Texts(), m_aTree);
        ExpectSameFiles(FilesOf(m_oDatabase.List().parent_path()), m_oBefore);
    }

    CInstallation m_oInstallation;
    CSampleDatabase m_oDatabase;
    CMavrel m_oMavrel{m_oInstallation, m_oDatabase.AsArgument()};
    FileBytes m_oBefore;
    std::vector<std::wstring> m_aTree;
};

TEST_F(NameJourney, ALabelRefusesTheNameOfATexture)
{
    m_oMavrel.Select({L"wall"});
    for (const auto& [name, text] : kTextureNames) {
        m_oMavrel.TypeNewName(name);
        m_oMavrel.AcceptError(text);
    }
    ExpectNothingChanged();
}

TEST_F(NameJourney, ALabelRefusesTheNameOfACategory)
{
    m_oMavrel.Select({L"Signs"});
    for (const auto& [name, text] : kCategoryNames) {
        m_oMavrel.TypeNewName(name);
        m_oMavrel.AcceptError(text);
    }
    ExpectNothingChanged();
}

TEST_F(NameJourney, ALabelLeftAsItWasChangesNothing)
{
    m_oMavrel.Select({L"wall"});
    m_oMavrel.TypeNewName(L"wall");
    m_oMavrel.ShowTexture(L"leaf");
    EXPECT_FALSE(HasMessageBox(m_oMavrel.Id()));
    ExpectNothingChanged();
}

TEST_F(NameJourney, AnAliasRefusesTheNameOfATexture)
{
    m_oMavrel.Select({L"wall"});
    for (const auto& [name, text] : kTextureNames) {
        m_oMavrel.Command(ID_CREATE_ALIAS);
        m_oMavrel.AnswerValue({L"Create alias", L"Alias name:", L"wall", name});
        m_oMavrel.AcceptError(text);
    }
    ExpectNothingChanged();
}

TEST_F(NameJourney, ANewCategoryRefusesItsName)
{
    m_oMavrel.Select({L"wall"});
    for (const auto& [name, text] : kCategoryNames) {
        const ValueStep step{L"Create new category", L"Category name", L"Category3", name};
        m_oMavrel.Command(ID_NEW_CATEGORY);
        m_oMavrel.AnswerValue(step);
        const auto box = WaitForMessageBox(m_oMavrel.Id());
        EXPECT_EQ(box.Text(), text);
        EXPECT_EQ(box.Icon(), BoxIcon::None);
        box.Press(IDOK);
        m_oMavrel.Command(ID_NEW_CATEGORY_HERE);
        m_oMavrel.AnswerValue(step);
        m_oMavrel.AcceptError(text);
    }
    ExpectNothingChanged();
}

TEST_F(NameJourney, LongAndLatinNamesAreTaken)
{
    m_oMavrel.Select({L"wall"});
    m_oMavrel.TypeNewName(kSixtyThree);
    m_oMavrel.WaitForItem(L"  " + kSixtyThree);
    m_oMavrel.TypeNewName(L"M\u00FCnchen \u00D8 50");
    m_oMavrel.WaitForItem(L"  M\u00FCnchen \u00D8 50");
    m_oMavrel.Run(ID_RELOAD);
    m_oMavrel.WaitForItem(L"  M\u00FCnchen \u00D8 50");
}

TEST_F(NameJourney, ARenamedOriginalTellsOfItsStaleAliases)
{
    m_oMavrel.Select({L"brick"});
    m_oMavrel.TypeNewName(L"brick_new");
    m_oMavrel.WaitForPane(0, L"Aliases that still carry the old name in the TXT list: 1");
    m_oMavrel.Select({L"brick_old"});
    m_oMavrel.Run(ID_GO_TO_ORIGINAL);
    EXPECT_EQ(m_oMavrel.Tree().FocusedText(), L"brick_new");
    // The list itself says otherwise, as reading it anew shows.
    m_oMavrel.Run(ID_RELOAD);
    m_oMavrel.Select({L"brick_old"});
    m_oMavrel.Run(ID_GO_TO_ORIGINAL);
    EXPECT_EQ(m_oMavrel.Tree().FocusedText(), L"brick_old");
}

TEST_F(NameJourney, TheContextMenuBeginsTheRenaming)
{
    m_oMavrel.Select({L"wall"});
    ChooseByContextMenu(m_oMavrel.Window(), m_oMavrel.Tree().Handle(), 'R');
    m_oMavrel.Tree().TypeLabel(L"fence");
    m_oMavrel.WaitForItem(L"  fence");
    m_oMavrel.Run(ID_CLOSE);
    EXPECT_NO_THROW(RunCommandLine({L"raw", m_oDatabase.List().wstring(), L"fence", L"--cache", L"dxt"}));
}

}  // namespace
