// Another program holds a file of the database while a person edits: an error says so, the other textures
// stay as they are, and once the file is free the same edit works.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/resource.h"
#include "base/Text.h"
#include "database/Property.h"
#include "tests/e2e/DatabaseFiles.h"
#include "tests/e2e/Mavrel.h"
#include "tests/e2e/Pictures.h"
#include "tests/e2e/SampleDatabase.h"
#include "tests/e2e/driver/Wait.h"

namespace {

using testing::HasSubstr;

constexpr DWORD kOthersMayReadAndWrite = FILE_SHARE_READ | FILE_SHARE_WRITE;
constexpr int kToggleCamNorm = ID_TEXTURE_PROPERTY + static_cast<int>(Property::CamNorm);
constexpr wchar_t kListNotRebuilt[] = L"Unable to rebuild TXT file";

class HeldFileJourney : public testing::Test {
protected:
    HeldFileJourney() { m_oInstallation.SetSetting(L"paths", L"last_import", m_oPictures.Path().wstring()); }

    std::filesystem::path Folder() const { return m_oDatabase.List().parent_path(); }

    void ExpectErrorBox(const CMavrel& mavrel, const std::wstring& part) const
    {
        const auto box = WaitForMessageBox(mavrel.Id());
        EXPECT_EQ(box.Caption(), L"Error");
        EXPECT_THAT(box.Text(), HasSubstr(part));
        EXPECT_EQ(box.Icon(), BoxIcon::Error);
        box.Press(IDOK);
    }
    /// Begins the import of a picture.
    void Import(const CMavrel& mavrel) const
    {
        mavrel.Command(ID_IMPORT_ALPHA);
        ChooseFiles(WaitForFileDialog(mavrel.Id()), m_oPictures.Files({"door.png"}));
    }
    /// The end of an import that fails.
    void StopTheImport(const CMavrel& mavrel, const std::wstring& part) const
    {
        const auto box = WaitForMessageBox(mavrel.Id());
        EXPECT_THAT(box.Text(), testing::AllOf(HasSubstr(part), testing::EndsWith(L"\nContinue?")));
        box.Press(IDNO);
    }
    void Delete(const CMavrel& mavrel) const
    {
        mavrel.Command(ID_DELETE_TEXTURE);
        mavrel.Answer(
            L"Textures to delete: 1\nAliases that go with them: 0\n\nThis cannot be undone. Delete them?",
            IDYES);
    }
    void RenameLeaf(const CMavrel& mavrel) const
    {
        mavrel.Select({L"leaf"});
        mavrel.TypeNewName(L"leaf_green");
    }
    /// After all trouble: edits work, and what is on the disk is in order.
    void ExpectEditsToWork(const CMavrel& mavrel) const
    {
        RenameLeaf(mavrel);
        mavrel.WaitForItem(L"  leaf_green");
        mavrel.Command(ID_EXIT);
        EXPECT_EQ(mavrel.WaitForExit(), 0U);
        EXPECT_NO_THROW(RunCommandLine({L"check", m_oDatabase.List().wstring()}));
    }
    /// The pictures of all textures but one, from both caches.
    FileBytes PicturesButLeaf() const
    {
        FileBytes pictures;
        for (const wchar_t* cache : {L"dxt", L"unc"}) {
            const CTemporaryFolder folder;
            RunCommandLine({L"export", m_oDatabase.List().wstring(), L"--all", L"--cache", cache, L"--out",
                            folder.Path().wstring()});
            for (const auto& [name, bytes] : FilesOf(folder.Path()))
                if (name != "leaf.png")
                    pictures.emplace(ToUtf8(cache) + "/" + name, bytes);
        }
        return pictures;
    }

    CInstallation m_oInstallation;
    CPictureFolder m_oPictures;
    CSampleDatabase m_oDatabase;
};

TEST_F(HeldFileJourney, AHeldListRefusesEveryEditAndLosesNothing)
{
    const CMavrel mavrel(m_oInstallation, m_oDatabase.AsArgument());
    mavrel.WaitUntilDrawn(L"brick");
    const auto before = FilesOf(Folder());
    const auto tree = mavrel.Tree().Texts();
    {
        const CHeldFile held(m_oDatabase.List(), kOthersMayReadAndWrite);
        RenameLeaf(mavrel);
        ExpectErrorBox(mavrel, kListNotRebuilt);
        mavrel.Select({L"wall"});
        for (const int command : {kToggleCamNorm, ID_CATEGORY_FIRST + 1, ID_DETAIL_NONE + 1}) {
            mavrel.Command(command);
            ExpectErrorBox(mavrel, kListNotRebuilt);
        }
        mavrel.Command(ID_CREATE_ALIAS);
        mavrel.AnswerValue({L"Create alias", L"Alias name:", L"wall", L"wall_old"});
        ExpectErrorBox(mavrel, kListNotRebuilt);
        mavrel.Command(ID_NEW_CATEGORY);
        mavrel.AnswerValue({L"Create new category", L"Category name", L"Category3", L"Doors"});
        ExpectErrorBox(mavrel, kListNotRebuilt);
        mavrel.Select({L"Signs"});
        mavrel.TypeNewName(L"Neon");
        ExpectErrorBox(mavrel, kListNotRebuilt);
    }
    EXPECT_EQ(mavrel.Tree().Texts(), tree);
    ExpectSameFiles(FilesOf(Folder()), before);
    ExpectEditsToWork(mavrel);
}

TEST_F(HeldFileJourney, AnImportWithAHeldListLeavesNothingBehind)
{
    const CMavrel mavrel(m_oInstallation, m_oDatabase.AsArgument());
    mavrel.WaitUntilDrawn(L"brick");
    const auto before = FilesOf(Folder());
    const auto tree = mavrel.Tree().Texts();
    {
        const CHeldFile held(m_oDatabase.List(), kOthersMayReadAndWrite);
        Import(mavrel);
        ExpectErrorBox(mavrel, kListNotRebuilt);
        WaitForMessageBox(mavrel.Id());
    }
    StopTheImport(mavrel, kListNotRebuilt);
    mavrel.ShowTexture(L"wall");
    EXPECT_EQ(mavrel.Tree().Texts(), tree);
    ExpectSameFiles(FilesOf(Folder()), before);
    ExpectEditsToWork(mavrel);
}

TEST_F(HeldFileJourney, ADeletionWithAHeldListIsRepeatedWhenItIsFree)
{
    const auto files = FilesOf(Folder());
    const auto before = PicturesButLeaf();
    {
        const CMavrel mavrel(m_oInstallation, m_oDatabase.AsArgument());
        mavrel.WaitUntilDrawn(L"brick");
        mavrel.Select({L"leaf"});
        {
            const CHeldFile held(m_oDatabase.List(), kOthersMayReadAndWrite);
            Delete(mavrel);
            ExpectErrorBox(mavrel, kListNotRebuilt);
            mavrel.ShowTexture(L"sign");
        }
        ExpectSameFiles(FilesOf(Folder()), files);
        mavrel.Select({L"leaf"});
        Delete(mavrel);
        mavrel.WaitUntilDrawn(L"wall");
        EXPECT_THAT(mavrel.Tree().Texts(), testing::ElementsAre(L"Default", L"  brick", L"  brick_old",
                                                                L"  wall", L"Signs", L"  sign"));
        mavrel.Command(ID_EXIT);
        EXPECT_EQ(mavrel.WaitForExit(), 0U);
    }
    EXPECT_NO_THROW(RunCommandLine({L"check", m_oDatabase.List().wstring()}));
    ExpectSameFiles(PicturesButLeaf(), before);
}

TEST_F(HeldFileJourney, ADeletionWithAHeldListChangesNoFile)
{
    const auto files = FilesOf(Folder());
    const auto before = PicturesButLeaf();
    {
        const CMavrel mavrel(m_oInstallation, m_oDatabase.AsArgument());
        mavrel.WaitUntilDrawn(L"brick");
        const CHeldFile held(m_oDatabase.List(), kOthersMayReadAndWrite);
        mavrel.Select({L"leaf"});
        Delete(mavrel);
        ExpectErrorBox(mavrel, kListNotRebuilt);
        mavrel.ShowTexture(L"sign");
        mavrel.Command(ID_EXIT);
        EXPECT_EQ(mavrel.WaitForExit(), 0U);
    }
    ExpectSameFiles(FilesOf(Folder()), files);
    RunCommandLine({L"delete", m_oDatabase.List().wstring(), L"leaf"});
    EXPECT_NO_THROW(RunCommandLine({L"check", m_oDatabase.List().wstring()}));
    ExpectSameFiles(PicturesButLeaf(), before);
    const CMavrel mavrel(m_oInstallation, m_oDatabase.AsArgument());
    mavrel.WaitUntilDrawn(L"brick");
    EXPECT_THAT(mavrel.Tree().Texts(),
                testing::ElementsAre(L"Default", L"  brick", L"  brick_old", L"  wall", L"Signs", L"  sign"));
}

TEST_F(HeldFileJourney, ACacheHeldFromTheStartRefusesWhatWouldPullItApart)
{
    const auto before = FilesOf(Folder());
    {
        const CHeldFile held(m_oDatabase.File("textures.unc.dat"), FILE_SHARE_READ);
        const CMavrel mavrel(m_oInstallation, m_oDatabase.AsArgument());
        mavrel.WaitUntilDrawn(L"brick");
        mavrel.Select({L"leaf"});
        Delete(mavrel);
        mavrel.AcceptError(L"Unable to write cache file");
        Import(mavrel);
        StopTheImport(mavrel, L"Unable to write cache file");
        mavrel.ShowTexture(L"wall");
        mavrel.Command(ID_EXIT);
        EXPECT_EQ(mavrel.WaitForExit(), 0U);
    }
    ExpectSameFiles(FilesOf(Folder()), before);
    const CMavrel mavrel(m_oInstallation, m_oDatabase.AsArgument());
    mavrel.WaitUntilDrawn(L"brick");
    ExpectEditsToWork(mavrel);
}

TEST_F(HeldFileJourney, AListHeldFromTheStartIsNotOpened)
{
    const auto before = FilesOf(Folder());
    const CHeldFile held(m_oDatabase.List(), FILE_SHARE_READ);
    const CMavrel mavrel(m_oInstallation, m_oDatabase.AsArgument());
    mavrel.AcceptError(L"TXT file can not be opened for writing.");
    mavrel.WaitForPane(0, L"Cache unloaded.");
    EXPECT_THAT(mavrel.Tree().Texts(), testing::IsEmpty());
    ExpectSameFiles(FilesOf(Folder()), before);
}

}  // namespace
