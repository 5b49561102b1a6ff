// A person makes a database in the window, fills it, edits it in every way and exports it; the same steps by
// the command line give the same files, byte for byte.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/resource.h"
#include "database/Property.h"
#include "tests/e2e/DatabaseFiles.h"
#include "tests/e2e/Mavrel.h"
#include "tests/e2e/Pictures.h"
#include "tests/e2e/SampleDatabase.h"
#include "tests/e2e/driver/Wait.h"

namespace {

using testing::ElementsAre;

constexpr int kOnFoot = ID_CATEGORY_PROPERTY + 2;

constexpr int CommandOf(Property property)
{
    return ID_TEXTURE_PROPERTY + static_cast<int>(property);
}

class EditJourney : public testing::Test {
protected:
    EditJourney() { m_oInstallation.SetSetting(L"paths", L"last_import", m_oPictures.Path().wstring()); }

    std::filesystem::path List() const { return m_oByHand / "textures.txt"; }

    void ChangeValue(int command, const ValueStep& step) const
    {
        WaitForRewrite(List(), [&] {
            m_oMavrel.Command(command);
            m_oMavrel.AnswerValue(step);
        });
    }
    void ChooseForImport(int command, const std::vector<std::string>& names) const
    {
        m_oMavrel.Command(command);
        ChooseFiles(WaitForFileDialog(m_oMavrel.Id()), m_oPictures.Files(names));
    }
    void Import(int command, const std::vector<std::string>& names) const
    {
        ChooseForImport(command, names);
        m_oMavrel.WaitUntilDrawn(std::filesystem::path(names.back()).stem().wstring());
    }
    void CreateByHand() const;
    void ImportByHand() const;
    void RenameAndAliasByHand() const;
    void ChangePropertiesByHand() const;
    void RecategoriseByHand() const;
    void DeleteByHand() const;
    void ExportByHand() const;
    void ReopenAndEditByHand() const;

    CInstallation m_oInstallation;
    CPictureFolder m_oPictures;
    CTemporaryFolder m_oByHand;
    CTemporaryFolder m_oByCommands;
    CTemporaryFolder m_oOneExport;
    CTemporaryFolder m_oExportsByHand;
    CTemporaryFolder m_oExportsByCommands;
    CMavrel m_oMavrel{m_oInstallation, {}};
};

void EditJourney::CreateByHand() const
{
    m_oMavrel.Command(ID_NEW);
    ChooseFiles(WaitForFileDialog(m_oMavrel.Id()), {List()});
    m_oMavrel.WaitForPane(0, L"Cache was successfully created.");
    EXPECT_EQ(m_oMavrel.Title(), L"textures.txt - Mavrel 0.7b x64");
    ChangeValue(ID_NEW_CATEGORY, {L"Create new category", L"Category name", L"Category2", L"Signs"});
}

void EditJourney::ImportByHand() const
{
    ChooseForImport(ID_IMPORT_ALPHA, {"brick.png", "leaf.png", "wall.png"});
    m_oMavrel.Answer(
        L"Do you want to make this cache for San Andreas? \n\nIf you choose 'No' an Vice City cache will be "
        L"created.",
        IDYES);
    m_oMavrel.WaitUntilDrawn(L"wall");
    Import(ID_IMPORT_OPAQUE, {"road.bmp", "sky.tif", "door.png"});
    m_oMavrel.Select({L"Signs"});
    Import(ID_IMPORT_UNC_ALPHA, {"sign_a.png", "sign_b.png"});
    Import(ID_IMPORT_UNC_OPAQUE, {"sign_c.png"});
    Import(ID_IMPORT_RGBA8888, {"glass.png", "lamp.png", "water.png"});
    Import(ID_IMPORT_ALPHA, {"brick_twin.png"});
    EXPECT_THAT(m_oMavrel.Tree().Texts(),
                ElementsAre(L"Default", L"  brick", L"  door", L"  leaf", L"  road", L"  sky", L"  wall",
                            L"Signs", L"  brick_twin", L"  glass", L"  lamp", L"  sign_a", L"  sign_b",
                            L"  sign_c", L"  water"));
}

void EditJourney::RenameAndAliasByHand() const
{
    m_oMavrel.Select({L"road"});
    m_oMavrel.TypeNewName(L"road_wet");
    m_oMavrel.WaitForItem(L"  road_wet");
    m_oMavrel.Select({L"Signs"});
    m_oMavrel.TypeNewName(L"Neon");
    m_oMavrel.WaitForItem(L"Neon");
    m_oMavrel.Select({L"leaf"});
    ChangeValue(ID_CREATE_ALIAS, {L"Create alias", L"Alias name:", L"leaf", L"leaf_old"});
    m_oMavrel.WaitUntilDrawn(L"leaf_old");
}

void EditJourney::RecategoriseByHand() const
{
    m_oMavrel.Select({L"leaf", L"wall"});
    m_oMavrel.Run(ID_CATEGORY_FIRST + 1);
    // The alias has gone along.
    EXPECT_THAT(m_oMavrel.Tree().Texts(),
                ElementsAre(L"Default", L"  brick", L"  door", L"  road_wet", L"  sky", L"Neon",
                            L"  brick_twin", L"  glass", L"  lamp", L"  leaf", L"  leaf_old", L"  sign_a",
                            L"  sign_b", L"  sign_c", L"  wall", L"  water"));
    m_oMavrel.Select({L"Neon"});
    ChangeValue(kOnFoot, {L"Change category properties", L"onfoot", L"0", L"5"});
    m_oMavrel.Select({L"glass"});
    ChangeValue(ID_NEW_CATEGORY_HERE, {L"Create new category", L"Category name", L"Category3", L"Glass"});
    ChangeValue(ID_NEW_CATEGORY, {L"Create new category", L"Category name", L"Category4", L"Spare"});
}

void EditJourney::ChangePropertiesByHand() const
{
    const std::wstring title = L"Change texture properties";
    const std::wstring question = L"Selected textures has different values to change.\n\nContinue?";
    m_oMavrel.Select({L"brick"});
    m_oMavrel.Run(CommandOf(Property::CamNorm));
    m_oMavrel.Select({L"brick", L"door"});
    m_oMavrel.Command(CommandOf(Property::CamNorm));
    m_oMavrel.Answer(question, IDNO);
    WaitForRewrite(List(), [&] {
        m_oMavrel.Command(CommandOf(Property::CamNorm));
        m_oMavrel.Answer(question, IDYES);
        m_oMavrel.AnswerValue({title, L"camnorm", L"1", L"1"});
    });
    m_oMavrel.Select({L"sign_b", L"sign_a", L"sign_c"});
    WaitForRewrite(List(), [&] {
        m_oMavrel.Command(CommandOf(Property::AlphaMode));
        m_oMavrel.Answer(question, IDYES);
        m_oMavrel.AnswerValue({title, L"alphamode", L"2", L" 3 "});
    });
    m_oMavrel.Select({L"lamp"});
    ChangeValue(CommandOf(Property::Png), {title, L"png", L"0x00000000", L"0xDEADBEEF"});
    // What is no number changes nothing.
    m_oMavrel.Command(CommandOf(Property::DetailTile));
    m_oMavrel.AnswerValue({title, L"detailtile", L"0", L"three"});
}

void EditJourney::DeleteByHand() const
{
    m_oMavrel.Select({L"sky", L"leaf"});
    m_oMavrel.Command(ID_DELETE_TEXTURE);
    m_oMavrel.Answer(
        L"Textures to delete: 2\nAliases that go with them: 1\n\nThis cannot be undone. Delete them?", IDYES);
    WaitUntil("the textures to go",
              [this] { return !testing::Value(m_oMavrel.Tree().Texts(), testing::Contains(L"  leaf_old")); });
    m_oMavrel.Select({L"Glass"});
    m_oMavrel.Run(ID_DELETE_CATEGORY);
    EXPECT_EQ(m_oMavrel.Pane(0), L"Category 'Glass' is not empty.");
    m_oMavrel.Select({L"Spare"});
    m_oMavrel.Run(ID_DELETE_CATEGORY);
    EXPECT_THAT(
        m_oMavrel.Tree().Texts(),
        ElementsAre(L"Default", L"  brick", L"  door", L"  road_wet", L"Neon", L"  brick_twin", L"  lamp",
                    L"  sign_a", L"  sign_b", L"  sign_c", L"  wall", L"  water", L"Glass", L"  glass"));
}

void EditJourney::ExportByHand() const
{
    m_oMavrel.Select({L"brick"});
    m_oMavrel.Command(ID_EXPORT_ALL);
    m_oMavrel.Answer(L"Do you want to export aliases too?", IDYES);
    ChooseFolder(WaitForFolderDialog(m_oMavrel.Id()), m_oExportsByHand.Path());
    m_oMavrel.WaitForPane(0, L"Done!");
    m_oMavrel.Select({L"sign_b"});
    m_oMavrel.Command(ID_EXPORT_SELECTION);
    ChooseFiles(WaitForFileDialog(m_oMavrel.Id()), {m_oOneExport / "sign_b.png"});
    m_oMavrel.WaitForPane(0, L"Done!");
}

void EditJourney::ReopenAndEditByHand() const
{
    const auto tree = m_oMavrel.Tree().Texts();
    m_oMavrel.Run(ID_CLOSE);
    EXPECT_EQ(m_oMavrel.Pane(0), L"Cache unloaded.");
    m_oMavrel.Run(ID_RECENT_FIRST);
    EXPECT_EQ(m_oMavrel.Title(), L"textures.txt - Mavrel 0.7b x64");
    EXPECT_EQ(m_oMavrel.Tree().Texts(), tree);
    m_oMavrel.Run(ID_RELOAD);
    EXPECT_EQ(m_oMavrel.Tree().Texts(), tree);
    m_oMavrel.Select({L"door", L"water"});
    m_oMavrel.Run(ID_DETAIL_NONE + 2);
    m_oMavrel.Run(ID_CLOSE);
}

// Each line one step of those above.
void RunTheSameByCommands(const std::filesystem::path& file, const CPictureFolder& pictures)
{
    const std::wstring list = file.wstring();
    const auto import = [&](std::vector<std::wstring> words, const std::vector<std::string>& names) {
        for (const auto& picture : pictures.Files(names))
            words.push_back(picture.wstring());
        words.insert(words.end() - static_cast<std::ptrdiff_t>(names.size()), list);
        RunCommandLine(words);
    };
    RunCommandLine({L"new", list});
    RunCommandLine({L"category", list, L"add", L"Signs"});
    import({L"--game", L"sa", L"import", L"--alpha"}, {"brick.png", "leaf.png", "wall.png"});
    import({L"import", L"--no-alpha"}, {"road.bmp", "sky.tif", "door.png"});
    import({L"import", L"--category", L"Signs", L"--format", L"unc"}, {"sign_a.png", "sign_b.png"});
    import({L"import", L"--category", L"Signs", L"--format", L"unc", L"--no-alpha"}, {"sign_c.png"});
    import({L"import", L"--category", L"Signs", L"--rgba8888"}, {"glass.png", "lamp.png", "water.png"});
    import({L"import", L"--category", L"Signs"}, {"brick_twin.png"});
    RunCommandLine({L"rename", list, L"road", L"road_wet"});
    RunCommandLine({L"category", list, L"rename", L"Signs", L"Neon"});
    RunCommandLine({L"alias", list, L"leaf", L"leaf_old"});
    RunCommandLine({L"move", list, L"Neon", L"leaf", L"wall"});
    RunCommandLine({L"category", list, L"set", L"Neon", L"onfoot=5"});
    RunCommandLine({L"category", list, L"add", L"Glass"});
    RunCommandLine({L"move", list, L"Glass", L"glass"});
    RunCommandLine({L"category", list, L"add", L"Spare"});
    for (const wchar_t* texture : {L"brick", L"door"})
        RunCommandLine({L"set", list, texture, L"camnorm=1"});
    for (const wchar_t* texture : {L"sign_a", L"sign_b", L"sign_c"})
        RunCommandLine({L"set", list, texture, L"alphamode=3"});
    RunCommandLine({L"set", list, L"lamp", L"png=deadbeef"});
    RunCommandLine({L"delete", list, L"sky", L"leaf"});
    RunCommandLine({L"category", list, L"delete", L"Spare"});
    for (const wchar_t* texture : {L"door", L"water"})
        RunCommandLine({L"set", list, texture, L"hasdetail=2"});
}

TEST_F(EditJourney, WritesTheSameFilesAsTheCommandLine)
{
    CreateByHand();
    ImportByHand();
    RenameAndAliasByHand();
    RecategoriseByHand();
    ChangePropertiesByHand();
    DeleteByHand();
    ExportByHand();
    ReopenAndEditByHand();

    const auto list = m_oByCommands / "textures.txt";
    RunTheSameByCommands(list, m_oPictures);
    const auto files = FilesOf(m_oByHand.Path());
    EXPECT_EQ(files.size(), 13U) << "the list and three files of four caches";
    ExpectSameFiles(files, FilesOf(m_oByCommands.Path()));
    EXPECT_NO_THROW(RunCommandLine({L"check", List().wstring()}));

    RunCommandLine({L"export", list.wstring(), L"--all", L"--cache", L"dxt", L"--out",
                    m_oExportsByCommands.Path().wstring()});
    const auto exports = FilesOf(m_oExportsByCommands.Path());
    EXPECT_EQ(exports.size(), 11U);
    ExpectSameFiles(FilesOf(m_oExportsByHand.Path()), exports);
    const auto one = FilesOf(m_oOneExport.Path());
    ASSERT_THAT(one, testing::SizeIs(1));
    EXPECT_TRUE(one.at("sign_b.png") == exports.at("sign_b.png"));
}

}  // namespace
