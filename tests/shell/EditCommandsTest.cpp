#include <fstream>
#include <gmock/gmock.h>

#include "tests/shell/MainWindowFixture.h"
#include "ui/ListView.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class CEditCommands : public CMainWindowTest {
protected:
    /// Four textures in two categories and an alias; see SmallDatabase.
    void StartWithDatabase(std::deque<PromptAnswer> answers = {})
    {
        Start(std::move(answers));
        OpenDatabase(SmallDatabase());
    }
    void AlsoSelect(const std::wstring& text) const { Tree().SetState(ItemOf(text), TVIS_SELECTED, true); }
    std::wstring Focused() const { return Tree().ItemText(Tree().Caret()); }
    /// Types over the label of the focused item as a person does, and presses Enter.
    void TypeLabel(const std::wstring& text) const
    {
        const CWindow editor(Tree().LabelEditor());
        ASSERT_TRUE(editor.Exists());
        editor.SetText(text);
        Tree().Send(TVM_ENDEDITLABELNOW, FALSE);
        ServePosted();
    }
    std::string List() const
    {
        std::ifstream in(m_oFolder / "textures.txt", std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }
    bool ListHas(const std::string& text) const { return List().find(text) != std::string::npos; }
    PromptBox LastBox() { return Prompt().Shown().back(); }
};

void ExpectError(const PromptBox& box, const std::wstring& text)
{
    EXPECT_EQ(box.text, text);
    EXPECT_EQ(box.caption, L"Error");
    EXPECT_EQ(box.icon, PromptIcon::Error);
    EXPECT_EQ(box.buttons, PromptButtons::Ok);
}

// ---- Categories ----

TEST_F(CEditCommands, ProposeTheNextNumberAsTheNameOfANewCategory)
{
    StartWithDatabase();
    Command(ID_NEW_CATEGORY);
    ASSERT_EQ(m_oDialogs.values.size(), 1U);
    EXPECT_EQ(m_oDialogs.values[0].title, L"Create new category");
    EXPECT_EQ(m_oDialogs.values[0].label, L"Category name");
    EXPECT_EQ(m_oDialogs.values[0].proposed, L"Category3");
    m_oDialogs.value = L"roofs";
    Command(ID_NEW_CATEGORY);
    EXPECT_EQ(TreeLines()[6], L"roofs");
    EXPECT_TRUE(ListHas("cat=2 name=roofs"));
    m_oDialogs.value.reset();
    Command(ID_NEW_CATEGORY);
    EXPECT_EQ(m_oDialogs.values.back().proposed, L"Category4") << "with three existing ones";
}

TEST_F(CEditCommands, SayThatSpacesAreRefusedInAPlainBoxFromTheMainMenu)
{
    StartWithDatabase();
    m_oDialogs.value = L"two words";
    const std::string before = List();
    Command(ID_NEW_CATEGORY);
    EXPECT_EQ(LastBox().text, L"No spaces allowed");
    EXPECT_EQ(LastBox().caption, L"");
    EXPECT_EQ(LastBox().icon, PromptIcon::None);
    EXPECT_EQ(List(), before);
}

TEST_F(CEditCommands, SayThatSpacesAreRefusedInAnErrorBoxFromTheMenuOfATexture)
{
    StartWithDatabase();
    m_oDialogs.value = L"two words";
    Command(ID_NEW_CATEGORY_HERE);
    ExpectError(LastBox(), L"No spaces allowed");
    m_oDialogs.value = L"";
    Command(ID_NEW_CATEGORY_HERE);
    ExpectError(LastBox(), L"Empty category name given");
}

TEST_F(CEditCommands, MoveOnlyTheFocusedTextureAndItsAliasesIntoANewCategory)
{
    StartWithDatabase();
    Select(L"wood");
    AlsoSelect(L"Brick");
    AlsoSelect(L"leaf");
    m_oDialogs.value = L"roofs";
    Command(ID_NEW_CATEGORY_HERE);
    EXPECT_THAT(TreeLines(), ElementsAre(L"walls", L"  Brick", L"plants", L"  leaf", L"roofs", L"  bark",
                                         L"  wood", L"Unknown", L"  lost"));
    EXPECT_TRUE(ListHas("\"wood\" width=4 height=4 cat=2\r\n")) << List();
    EXPECT_EQ(Focused(), L"wood");
}

TEST_F(CEditCommands, MoveEverySelectedTextureAndItsAliasesIntoACategory)
{
    StartWithDatabase();
    Select(L"wood");
    AlsoSelect(L"lost");
    Command(ID_CATEGORY_FIRST + 1);
    EXPECT_THAT(TreeLines(),
                ElementsAre(L"walls", L"  Brick", L"plants", L"  bark", L"  leaf", L"  lost", L"  wood"));
    EXPECT_TRUE(ListHas("cat=1\r\n"));
    Command(ID_CATEGORY_FIRST + 2);
    EXPECT_EQ(TreeLines().size(), 7U) << "there is no such category";
}

TEST_F(CEditCommands, RenameACategoryByItsLabel)
{
    StartWithDatabase();
    Select(L"plants");
    Tree().Focus();
    Command(ID_RENAME_CATEGORY);
    TypeLabel(L"flora");
    EXPECT_TRUE(ListHas("name=flora"));
    EXPECT_EQ(Focused(), L"flora");
    Command(ID_RENAME_CATEGORY);
    TypeLabel(L"two words");
    ExpectError(LastBox(), L"No spaces allowed");
    EXPECT_EQ(Focused(), L"flora");
}

TEST_F(CEditCommands, DeleteACategoryOnlyWhenItIsEmpty)
{
    StartWithDatabase();
    Select(L"plants");
    const std::string before = List();
    Command(ID_DELETE_CATEGORY);
    EXPECT_EQ(List(), before);
    EXPECT_THAT(Prompt().Shown(), IsEmpty());
    Select(L"leaf");
    Command(ID_CATEGORY_FIRST);
    Select(L"plants");
    Command(ID_DELETE_SELECTED);
    EXPECT_FALSE(ListHas("name=plants"));
    EXPECT_EQ(TreeLines().front(), L"walls");
}

TEST_F(CEditCommands, ChangeAPropertyOfACategory)
{
    StartWithDatabase();
    Select(L"plants");
    m_oDialogs.value = L"12";
    Command(ID_CATEGORY_PROPERTY + 3);
    EXPECT_EQ(m_oDialogs.values.back().label, L"slow");
    EXPECT_EQ(m_oDialogs.values.back().proposed, L"0");
    EXPECT_TRUE(ListHas("slow=12"));
    const std::string before = List();
    m_oDialogs.value = L"many";
    Command(ID_CATEGORY_PROPERTY + 3);
    EXPECT_EQ(List(), before) << "text that is no number changes nothing";
    const std::size_t asked = m_oDialogs.values.size();
    Command(ID_CATEGORY_PROPERTY + 1);
    EXPECT_EQ(m_oDialogs.values.size(), asked) << "the number of a category is fixed";
}

// ---- Aliases ----

TEST_F(CEditCommands, CreateAnAliasInItsPlaceAndSelectIt)
{
    StartWithDatabase();
    Select(L"leaf");
    m_oDialogs.value = L"blade";
    Command(ID_CREATE_ALIAS);
    EXPECT_EQ(m_oDialogs.values.back().label, L"Alias name:");
    EXPECT_EQ(m_oDialogs.values.back().proposed, L"leaf");
    EXPECT_EQ(TreeLines()[5], L"  blade");
    EXPECT_EQ(Focused(), L"blade");
    EXPECT_EQ(Tree().Data(ItemOf(L"blade")), 5);
    EXPECT_TRUE(ListHas("\"blade\" \"affiliate=leaf\" cat=1")) << List();
}

TEST_F(CEditCommands, NeverCreateAnAliasOfAnAlias)
{
    StartWithDatabase();
    Select(L"bark");
    m_oDialogs.value = L"trunk";
    Command(ID_CREATE_ALIAS);
    EXPECT_EQ(m_oDialogs.values.back().proposed, L"wood");
    EXPECT_TRUE(ListHas("\"trunk\" \"affiliate=wood\"")) << List();
}

TEST_F(CEditCommands, RefuseAnAliasWhoseNameIsTaken)
{
    StartWithDatabase();
    Select(L"leaf");
    const std::string before = List();
    m_oDialogs.value = L"BRICK";
    Command(ID_CREATE_ALIAS);
    ExpectError(LastBox(), L"Texture already exists");
    EXPECT_EQ(List(), before);
}

TEST_F(CEditCommands, GoFromAnAliasToItsOriginal)
{
    StartWithDatabase();
    Select(L"bark");
    Command(ID_GO_TO_ORIGINAL);
    EXPECT_EQ(Focused(), L"wood");
    Command(ID_GO_TO_ORIGINAL);
    EXPECT_EQ(Focused(), L"wood");
}

TEST_F(CEditCommands, ShowTheListsOfTheFocusedTexture)
{
    StartWithDatabase();
    Select(L"wood");
    Command(ID_SHOW_ALIASES);
    Select(L"plants");
    Command(ID_SHOW_SIBLINGS);
    ASSERT_EQ(m_oDialogs.relations.size(), 2U);
    EXPECT_EQ(m_oDialogs.relations[0], std::pair(RelationKind::Aliases, std::optional<std::uint32_t>(0)));
    EXPECT_EQ(m_oDialogs.relations[1],
              std::pair(RelationKind::Siblings, std::optional<std::uint32_t>(std::nullopt)));
}

// ---- Names ----

TEST_F(CEditCommands, RenameATextureByItsLabel)
{
    StartWithDatabase();
    Select(L"wood");
    Tree().Focus();
    Command(ID_RENAME_TEXTURE);
    TypeLabel(L"ash");
    EXPECT_THAT(TreeLines(), ElementsAre(L"walls", L"  ash", L"  bark", L"  Brick", L"plants", L"  leaf",
                                         L"Unknown", L"  lost"));
    EXPECT_EQ(Focused(), L"ash");
    EXPECT_TRUE(ListHas("\"ash\" width=4"));
    EXPECT_EQ(Pane(0), L"Aliases that still carry the old name in the TXT list: 1");
}

TEST_F(CEditCommands, RefuseANameThatIsTakenAndKeepTheOldOne)
{
    StartWithDatabase();
    const std::string before = List();
    for (const wchar_t* name : {L"BRICK", L"WOOD"}) {
        Select(L"wood");
        Tree().Focus();
        Command(ID_RENAME_TEXTURE);
        TypeLabel(name);
        ExpectError(LastBox(), L"Texture already exists");
        EXPECT_EQ(Focused(), L"wood");
    }
    EXPECT_EQ(List(), before);
}

TEST_F(CEditCommands, RefuseNamesThatCannotBeStored)
{
    StartWithDatabase();
    const std::string before = List();
    const std::pair<std::wstring, const wchar_t*> refused[] = {
        {L"", L"Name should not be empty."},
        {L"a\"b", L"Wrong texture name given."},
        {std::wstring(64, L'n'), L"Wrong texture name given."},
        {L"\x043A\x043E\x0440\x0430", L"Wrong texture name given."},
    };
    for (const auto& [name, text] : refused) {
        Select(L"wood");
        Tree().Focus();
        Command(ID_RENAME_TEXTURE);
        TypeLabel(name);
        ExpectError(LastBox(), text);
    }
    EXPECT_EQ(List(), before);
}

TEST_F(CEditCommands, DoNothingWhenALabelIsLeftAsItWas)
{
    StartWithDatabase();
    Select(L"wood");
    Tree().Focus();
    const std::string before = List();
    Command(ID_RENAME_TEXTURE);
    TypeLabel(L"wood");
    EXPECT_THAT(Prompt().Shown(), IsEmpty());
    EXPECT_EQ(List(), before);
}

TEST_F(CEditCommands, DoNotEditTheLabelOfTheGroupWithoutACategoryNorOfSeveral)
{
    StartWithDatabase();
    Select(L"Unknown");
    Tree().Focus();
    Command(ID_RENAME_CATEGORY);
    EXPECT_EQ(Tree().LabelEditor(), nullptr);
    Select(L"wood");
    AlsoSelect(L"leaf");
    Command(ID_RENAME_TEXTURE);
    EXPECT_EQ(Tree().LabelEditor(), nullptr);
}

// ---- Deletion ----

TEST_F(CEditCommands, AskOnceBeforeTheyDelete)
{
    StartWithDatabase({PromptAnswer::No});
    Select(L"wood");
    AlsoSelect(L"leaf");
    const std::string before = List();
    Command(ID_DELETE_SELECTED);
    ASSERT_EQ(Prompt().Shown().size(), 1U);
    EXPECT_EQ(LastBox().text,
              L"Textures to delete: 2\nAliases that go with them: 1\n\nThis cannot be undone. Delete them?");
    EXPECT_EQ(LastBox().buttons, PromptButtons::YesNo);
    EXPECT_EQ(LastBox().icon, PromptIcon::Warning);
    EXPECT_EQ(LastBox().proposed, PromptAnswer::No);
    EXPECT_EQ(List(), before);
}

TEST_F(CEditCommands, DeleteTexturesWithTheirAliasesAndSelectTheNextOne)
{
    StartWithDatabase({PromptAnswer::Yes});
    Select(L"wood");
    Command(ID_DELETE_TEXTURE);
    EXPECT_THAT(TreeLines(), ElementsAre(L"walls", L"  Brick", L"plants", L"  leaf", L"Unknown", L"  lost"));
    EXPECT_EQ(Focused(), L"leaf");
    EXPECT_FALSE(ListHas("wood"));
}

TEST_F(CEditCommands, SelectTheLastTextureWhenTheOneBelowIsGone)
{
    StartWithDatabase({PromptAnswer::Yes});
    Select(L"lost");
    Command(ID_DELETE_SELECTED);
    EXPECT_EQ(Focused(), L"leaf");
}

TEST_F(CEditCommands, DeleteNothingOnTheDelKeyWithoutASelection)
{
    Start();
    Command(ID_DELETE_SELECTED);
    Command(ID_DELETE_TEXTURE);
    Command(ID_DELETE_CATEGORY);
    EXPECT_THAT(Prompt().Shown(), IsEmpty());
}

// ---- Details and properties ----

TEST_F(CEditCommands, GiveEverySelectedTextureADetail)
{
    StartWithDatabase();
    Select(L"wood");
    AlsoSelect(L"leaf");
    Command(ID_DETAIL_NONE + 3);
    EXPECT_TRUE(ListHas("\"wood\" width=4 height=4 hasdetail=3")) << List();
    EXPECT_TRUE(ListHas("cat=1 hasdetail=3")) << List();
    Command(ID_DETAIL_NONE + 10);
    EXPECT_TRUE(ListHas("hasdetail=3")) << "the list of Vice City has nine names";
}

TEST_F(CEditCommands, InvertAFlagWithoutADialog)
{
    StartWithDatabase();
    Select(L"wood");
    Command(ID_TEXTURE_PROPERTY + 3);
    EXPECT_TRUE(ListHas("\"wood\" width=4 height=4 decalz=1")) << List();
    Command(ID_TEXTURE_PROPERTY + 3);
    EXPECT_FALSE(ListHas("decalz")) << List();
    EXPECT_THAT(m_oDialogs.values, IsEmpty());
}

TEST_F(CEditCommands, AskBeforeTheyLevelDifferentValues)
{
    StartWithDatabase({PromptAnswer::No, PromptAnswer::Yes});
    Select(L"leaf");
    AlsoSelect(L"wood");
    m_oDialogs.value = L"32";
    Command(ID_TEXTURE_PROPERTY + 16);
    EXPECT_EQ(LastBox().text, L"Selected textures has different values to change.\n\nContinue?");
    EXPECT_EQ(LastBox().caption, L"Change texture properties");
    EXPECT_EQ(LastBox().icon, PromptIcon::Question);
    EXPECT_EQ(LastBox().buttons, PromptButtons::YesNo);
    EXPECT_FALSE(ListHas("width=32"));
    Command(ID_TEXTURE_PROPERTY + 16);
    EXPECT_EQ(m_oDialogs.values.back().label, L"width");
    EXPECT_EQ(m_oDialogs.values.back().proposed, L"16");
    EXPECT_TRUE(ListHas("\"wood\" height=4 width=32")) << List();
}

TEST_F(CEditCommands, ReadHashesAsHexadecimal)
{
    StartWithDatabase();
    Select(L"wood");
    m_oDialogs.value = L"0x0000beef";
    Command(ID_TEXTURE_PROPERTY + 18);
    EXPECT_EQ(m_oDialogs.values.back().proposed, L"0x00000000");
    EXPECT_TRUE(ListHas("img=0000beef")) << List();
}

TEST_F(CEditCommands, SetOnlyHasSiblingOnAnAlias)
{
    StartWithDatabase();
    Select(L"bark");
    Command(ID_TEXTURE_PROPERTY + 2);
    EXPECT_FALSE(ListHas("camnorm")) << List();
    Command(ID_TEXTURE_PROPERTY + 5);
    EXPECT_TRUE(ListHas("\"affiliate=wood\" hassibling=1")) << List();
}

TEST_F(CEditCommands, MoveATextureInTheTreeWhenItsCategoryPropertyChanges)
{
    StartWithDatabase();
    Select(L"wood");
    m_oDialogs.value = L"1";
    Command(ID_TEXTURE_PROPERTY + 9);
    EXPECT_THAT(TreeLines(), ElementsAre(L"walls", L"  bark", L"  Brick", L"plants", L"  leaf", L"  wood",
                                         L"Unknown", L"  lost"));
    EXPECT_EQ(Focused(), L"wood");
}

TEST_F(CEditCommands, IgnoreTheNameAndTheAffiliateAsProperties)
{
    StartWithDatabase();
    Select(L"wood");
    const std::string before = List();
    Command(ID_TEXTURE_PROPERTY);
    Command(ID_TEXTURE_PROPERTY + 1);
    Command(ID_TEXTURE_PROPERTY + 20);
    EXPECT_EQ(List(), before);
    EXPECT_THAT(m_oDialogs.values, IsEmpty());
}

// ---- Values that are being typed ----

// A box takes the focus away from whatever is being typed.
class CFocusTakingPrompt final : public IPrompt {
public:
    PromptAnswer Show(const PromptBox&) override
    {
        ::SetFocus(nullptr);
        ++m_nShown;
        return PromptAnswer::No;
    }
    int Shown() const { return m_nShown; }

private:
    int m_nShown = 0;
};

TEST_F(CEditCommands, KeepWhatIsBeingTypedAwayFromTheNextDatabase)
{
    Start();
    m_pWindow.reset();
    CFocusTakingPrompt prompt;
    m_pWindow =
        std::make_unique<CDlgMain>(MainWindowParts{m_oResources, *m_pLanguages, m_oTranslator, *m_pSettings,
                                                   m_oPlugins, DiskFileSystem(), prompt, m_oDialogs});
    ASSERT_TRUE(m_pWindow->Open());
    OpenDatabase(SmallDatabase());
    SmallDatabase().Write(m_oFolder / "damaged.txt");
    std::filesystem::resize_file(m_oFolder / "damaged.dxt.toc", 4);
    const FileBytes before = FilesOf(m_oFolder.Path());

    const CWindow panel = m_pWindow->Child(IDC_PROPERTIES);
    CListView list;
    list.Attach(panel.Child(IDC_PROPERTIES_LIST).Handle());
    list.Focus();
    constexpr int kWidthRow = 17;
    ASSERT_EQ(list.ItemText(kWidthRow, 0), L"width");
    list.SetFocused(kWidthRow);
    list.Send(WM_KEYDOWN, VK_F2);
    const CWindow field = panel.Child(IDC_PROPERTIES_FIELD);
    ASSERT_TRUE(field.IsVisible());
    field.SetText(L"77");
    m_pWindow->OpenAndSelect(m_oFolder / "damaged.txt");
    EXPECT_GE(prompt.Shown(), 1);
    EXPECT_FALSE(field.IsVisible());
    EXPECT_TRUE(FilesOf(m_oFolder.Path()).at("textures.txt") == before.at("textures.txt"));
    EXPECT_TRUE(FilesOf(m_oFolder.Path()).at("damaged.txt") == before.at("damaged.txt"));
    m_pWindow.reset();
}

// ---- Context menus ----

TEST_F(CEditCommands, FillTheMenuOfOneTexture)
{
    StartWithDatabase();
    Select(L"leaf");
    const CMenuHandle handle = m_pWindow->ContextMenu();
    const CMenu menu(handle.get());
    EXPECT_EQ(menu.Text(ID_CATEGORY_FIRST), L"walls");
    EXPECT_EQ(menu.Text(ID_CATEGORY_FIRST + 1), L"plants");
    EXPECT_TRUE(menu.IsChecked(ID_CATEGORY_FIRST + 1));
    EXPECT_FALSE(menu.IsChecked(ID_CATEGORY_FIRST));
    EXPECT_EQ(menu.Text(ID_DETAIL_NONE + 1), L"Asphalt");
    EXPECT_EQ(menu.Text(ID_DETAIL_NONE + 2), L"Concrete") << "the first texture is for Vice City";
    EXPECT_TRUE(menu.IsChecked(ID_DETAIL_NONE));
    EXPECT_EQ(menu.Text(ID_TEXTURE_PROPERTY + 2), L"camnorm\t0");
    EXPECT_EQ(menu.Text(ID_TEXTURE_PROPERTY + 16), L"width\t16");
    EXPECT_EQ(menu.Text(ID_TEXTURE_PROPERTY + 19), L"png\t0x00000000");
    EXPECT_EQ(menu.Text(ID_TEXTURE_PROPERTY), L"");
    EXPECT_TRUE(menu.IsEnabled(ID_CREATE_ALIAS));
    EXPECT_TRUE(menu.IsEnabled(ID_SHOW_ALIASES));
    EXPECT_FALSE(menu.IsEnabled(ID_GO_TO_ORIGINAL));
}

TEST_F(CEditCommands, FillTheMenuOfAnAlias)
{
    StartWithDatabase();
    Select(L"bark");
    const CMenuHandle handle = m_pWindow->ContextMenu();
    const CMenu menu(handle.get());
    EXPECT_FALSE(menu.IsEnabled(ID_CREATE_ALIAS));
    EXPECT_FALSE(menu.IsEnabled(ID_SHOW_ALIASES));
    EXPECT_TRUE(menu.IsEnabled(ID_SHOW_SIBLINGS));
    EXPECT_TRUE(menu.IsEnabled(ID_GO_TO_ORIGINAL));
    EXPECT_TRUE(menu.IsEnabled(ID_TEXTURE_PROPERTY + 5));
    EXPECT_FALSE(menu.IsEnabled(ID_TEXTURE_PROPERTY + 2));
}

TEST_F(CEditCommands, FillTheMenusOfSeveralTexturesAndOfACategory)
{
    StartWithDatabase();
    Select(L"wood");
    AlsoSelect(L"leaf");
    const CMenuHandle several = m_pWindow->ContextMenu();
    EXPECT_EQ(CMenu(several.get()).Text(ID_TEXTURE_PROPERTY + 16), L"width\t4");
    EXPECT_EQ(CMenu(several.get()).Text(ID_RENAME_TEXTURE), L"");
    for (const wchar_t* texture : {L"wood", L"leaf"})
        Tree().SetState(ItemOf(texture), TVIS_SELECTED, false);
    Select(L"plants");
    const CMenuHandle category = m_pWindow->ContextMenu();
    EXPECT_EQ(CMenu(category.get()).Text(ID_CATEGORY_PROPERTY + 1), L"cat\t1");
    EXPECT_FALSE(CMenu(category.get()).IsEnabled(ID_CATEGORY_PROPERTY + 1));
    EXPECT_EQ(CMenu(category.get()).Text(ID_CATEGORY_PROPERTY + 2), L"onfoot\t0");
    EXPECT_TRUE(CMenu(category.get()).IsEnabled(ID_CATEGORY_PROPERTY + 6));
    EXPECT_EQ(CMenu(category.get()).Text(ID_IMPORT_RGBA8888), L"&Uncompressed 32bpp...");
    Select(L"Unknown");
    EXPECT_EQ(m_pWindow->ContextMenu(), nullptr);
}

}  // namespace
