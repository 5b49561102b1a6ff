#include "tests/shell/MainWindowFixture.h"

namespace {

class CPluginChoice : public CMainWindowTest {
protected:
    void StartWith(std::initializer_list<std::pair<const wchar_t*, const wchar_t*>> plugins)
    {
        std::filesystem::create_directory(m_oFolder / "plugins");
        for (const auto& [file, name] : plugins)
            std::filesystem::copy_file(file, m_oFolder / "plugins" / name);
        CScriptedPrompt prompt;
        m_oPlugins.Discover(m_oFolder / "plugins", prompt);
        m_oPlugins.BindFromSettings(*m_pSettings);
        Start();
    }

    /// The texts of a popup, separators as "-".
    static std::vector<std::wstring> ItemsOf(const CMenu& menu)
    {
        std::vector<std::wstring> texts;
        for (int position = 0; position < menu.Count(); ++position) {
            wchar_t text[128] = {};
            ::GetMenuStringW(menu.Handle(), static_cast<UINT>(position), text, 128, MF_BYPOSITION);
            texts.emplace_back(text[0] == L'\0' ? L"-" : text);
        }
        return texts;
    }
    CMenu Options() const { return *Menu().PopupWith(ID_DISABLE_LOGO); }
};

using Texts = std::vector<std::wstring>;

TEST_F(CPluginChoice, ListsWhatThePluginOfACacheOffers)
{
    StartWith({{MAVREL_DXT_PLUGIN, L"DXT.dll"}});
    const auto options = ItemsOf(Options());
    ASSERT_GE(options.size(), 4U);
    EXPECT_EQ(Texts(options.end() - 4, options.end()), (Texts{L"DXT\tDXT codec", L"ETC1", L"PVRTC", L"UNC"}));

    const CMenu popup = Options().Popup(Options().Count() - 4);
    EXPECT_EQ(ItemsOf(popup), (Texts{L"C&ompression Plugin", L"-", L"&Compression Quality", L"&Dithering",
                                     L"-", L"&Information"}));
    EXPECT_EQ(ItemsOf(popup.Popup(0)), (Texts{L"DXT.dll\tDXT codec"}));
    EXPECT_EQ(ItemsOf(popup.Popup(2)), (Texts{L"Normal", L"Fast", L"High", L"Best"}));
    EXPECT_EQ(ItemsOf(popup.Popup(3)), (Texts{L"None", L"Error diffusion", L"Ordered"}));
    EXPECT_TRUE(Menu().IsChecked(40480));
    EXPECT_TRUE(Menu().IsChecked(40408));
    EXPECT_TRUE(Menu().IsChecked(40440));
}

TEST_F(CPluginChoice, StoresQualityAndDitheringOfItsCache)
{
    StartWith({{MAVREL_DXT_PLUGIN, L"DXT.dll"}});
    Command(40410);
    Command(40441);
    EXPECT_EQ(m_pSettings->ReadInt(L"DXT", L"quality", -1), 2);
    EXPECT_EQ(m_pSettings->ReadInt(L"DXT", L"dithering", -1), 1);
    EXPECT_TRUE(Menu().IsChecked(40410));
    EXPECT_FALSE(Menu().IsChecked(40408));
    EXPECT_TRUE(Menu().IsChecked(40441));
}

TEST_F(CPluginChoice, BindsAnotherPluginAndForgetsTheLevelsOfTheOldOne)
{
    StartWith({{MAVREL_DXT_PLUGIN, L"a.dll"}, {MAVREL_DXT_PLUGIN, L"b.dll"}});
    EXPECT_EQ(m_pSettings->ReadString(L"DXT", L"plugin"), L"a.dll");
    Command(40409);
    Command(40481);
    EXPECT_EQ(m_pSettings->ReadString(L"DXT", L"plugin"), L"b.dll");
    EXPECT_EQ(m_pSettings->ReadInt(L"DXT", L"quality", -1), 0);
    EXPECT_EQ(m_oPlugins.BoundPlugin(CacheIndex::Dxt), 1U);
    EXPECT_TRUE(Menu().IsChecked(40481));
    EXPECT_FALSE(Menu().IsChecked(40480));
}

TEST_F(CPluginChoice, TellsAboutAPlugin)
{
    StartWith({{MAVREL_DXT_PLUGIN, L"DXT.dll"}});
    Command(40404);
    ASSERT_EQ(Prompt().Shown().size(), 1U);
    EXPECT_EQ(Prompt().Shown()[0].caption, L"DXT");
    EXPECT_TRUE(Prompt().Shown()[0].text.starts_with(L"DXT - DXT codec\n\nEncodes and decodes"));
    EXPECT_EQ(Prompt().Shown()[0].icon, PromptIcon::Information);
}

TEST_F(CPluginChoice, ListsEachPluginUnderTheCacheThatItSupports)
{
    StartWith({{MAVREL_DXT_PLUGIN, L"DXT.dll"}, {MAVREL_UNC_PLUGIN, L"UNC.dll"}});
    const CMenu unc = Options().Popup(Options().Count() - 1);
    // Two plugins: the numbers of the fourth cache begin at 40480 + 3 * 2.
    EXPECT_EQ(::GetMenuItemID(unc.Popup(0).Handle(), 0), 40487U);
    EXPECT_EQ(unc.Popup(0).Count(), 1);
}

}  // namespace
