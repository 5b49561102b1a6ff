#include "tests/shell/MainWindowFixture.h"

namespace {

// The shipped libraries in the order of their names.
constexpr UINT kRussian = ID_LANGUAGE_ENGLISH + 3;
constexpr UINT kSpanish = ID_LANGUAGE_ENGLISH + 4;

class CLanguageCommands : public CMainWindowTest {
protected:
    CLanguageCommands() { m_sLanguages = MAVREL_LANGUAGES; }
    std::wstring Label() const { return m_pWindow->Child(IDC_GAME_LABEL).Text(); }
};

TEST_F(CLanguageCommands, TakeMenusLabelsTitleAndStatusToTheLanguageAndBack)
{
    Start();
    EXPECT_EQ(Menu().Text(kSpanish), L"spanish");
    Command(kSpanish);
    EXPECT_EQ(Menu().Text(ID_NEW), L"&Nuevo...\tCtrl+N");
    EXPECT_EQ(Menu().Text(kSpanish), L"Español");
    EXPECT_TRUE(Menu().IsChecked(kSpanish));
    EXPECT_EQ(Label(), L"&Juego:");
    EXPECT_EQ(m_pWindow->Text(), L"Mavrel 0.7b x64, compilación 415");
    EXPECT_EQ(Pane(0), L"Se ha cambiado el idioma de la interfaz");
    EXPECT_EQ(m_pSettings->ReadString(L"global", L"lang"), L"spanish");

    Command(ID_LANGUAGE_ENGLISH);
    EXPECT_EQ(Menu().Text(ID_NEW), L"&New...\tCtrl+N");
    EXPECT_EQ(Menu().Text(kSpanish), L"Español");
    EXPECT_TRUE(Menu().IsChecked(ID_LANGUAGE_ENGLISH));
    EXPECT_EQ(Label(), L"&Game:");
    EXPECT_EQ(m_pWindow->Text(), L"Mavrel 0.7b x64 build #415");
    EXPECT_EQ(Pane(0), L"Interface language changed");
    EXPECT_EQ(m_pSettings->ReadString(L"global", L"lang"), L"");
}

TEST_F(CLanguageCommands, StartTheNextRunInTheLanguageOfTheLast)
{
    m_pSettings->WriteString(L"global", L"lang", L"russian");
    Start();
    EXPECT_EQ(Menu().Text(ID_NEW), L"&Создать...\tCtrl+N");
    EXPECT_TRUE(Menu().IsChecked(kRussian));
    EXPECT_EQ(Label(), L"&Игра:");
    EXPECT_EQ(m_pWindow->Text(), L"Mavrel 0.7b x64, сборка 415");
    EXPECT_EQ(Pane(0), L"Mavrel готов вынести вам мозг.");
}

TEST_F(CLanguageCommands, LeaveTheOpenDatabaseAndItsTitleAlone)
{
    Start();
    OpenDatabase(SmallDatabase());
    Select(L"leaf");
    const auto before = TreeLines();
    Command(kSpanish);
    EXPECT_EQ(m_pWindow->Text(), L"textures.txt - Mavrel 0.7b x64");
    EXPECT_EQ(TreeLines().size(), before.size());
    EXPECT_EQ(Tree().ItemText(Tree().Caret()), L"leaf");
    EXPECT_EQ(Pane(0), L"Se ha cambiado el idioma de la interfaz");
}

TEST_F(CLanguageCommands, KeepTheStateOfTheMenus)
{
    Start();
    OpenDatabase(SmallDatabase());
    Command(ID_MIPMAPS);
    Command(ID_GAME_SAN_ANDREAS);
    Command(ID_BACKGROUND_ALPHA);
    Command(ID_STRETCH);
    Command(kSpanish);
    EXPECT_FALSE(Menu().IsChecked(ID_MIPMAPS));
    EXPECT_TRUE(Menu().IsChecked(ID_RLE_COMPRESSION));
    EXPECT_TRUE(Menu().IsChecked(ID_GAME_SAN_ANDREAS));
    EXPECT_TRUE(Menu().IsChecked(ID_BACKGROUND_ALPHA));
    EXPECT_TRUE(Menu().IsChecked(ID_STRETCH));
    EXPECT_TRUE(Menu().IsChecked(ID_RENDERER_GDIPLUS));
    EXPECT_TRUE(Menu().IsEnabled(ID_CLOSE));
    EXPECT_TRUE(Menu().IsEnabled(ID_EXPORT_ALL));
    Command(ID_CLOSE);
    EXPECT_FALSE(Menu().IsEnabled(ID_CLOSE));
    EXPECT_EQ(Pane(0), L"Caché descargada.");
}

TEST_F(CLanguageCommands, ComeUpInEnglishWhenTheLibraryIsGone)
{
    m_pSettings->WriteString(L"global", L"lang", L"klingon");
    Start();
    ASSERT_EQ(Prompt().Shown().size(), 1U);
    EXPECT_EQ(Prompt().Shown()[0].text, L"Failed to load language klingon");
    EXPECT_EQ(Prompt().Shown()[0].caption, L"Error");
    EXPECT_EQ(Menu().Text(ID_NEW), L"&New...\tCtrl+N");
    EXPECT_TRUE(Menu().IsChecked(ID_LANGUAGE_ENGLISH));
    EXPECT_EQ(m_pSettings->ReadString(L"global", L"lang"), L"");
    EXPECT_EQ(Pane(0), L"Mavrel is ready to fuck you up.");
}

}  // namespace
