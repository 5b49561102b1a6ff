#include "app/Languages.h"

#include <fstream>
#include <gtest/gtest.h>

#include "app/resource.h"
#include "tests/support/ScriptedPrompt.h"
#include "tests/support/TemporaryFolder.h"

namespace {

class CInterfaceLanguages : public testing::Test {
protected:
    CInterfaceLanguages()
        : m_pSettings(OpenSettings(m_oFolder / "mavrel.ini")),
          m_oResources(::GetModuleHandleW(nullptr)),
          m_oLanguages(m_oResources, *m_pSettings, m_oPrompt, m_oFolder / "lang")
    {
        std::filesystem::create_directory(m_oFolder / "lang");
    }

    /// A shipped language under another name.
    void Place(const wchar_t* language, const std::wstring& name) const
    {
        PlaceFrom(MAVREL_LANGUAGES, language, name);
    }
    /// A library that is not what it should be.
    void PlaceStub(const wchar_t* stub, const std::wstring& name) const
    {
        PlaceFrom(MAVREL_STUB_LANGUAGES, stub, name);
    }
    std::wstring Current() const { return m_pSettings->ReadString(L"global", L"lang"); }
    std::wstring DisplayName(const wchar_t* name) const { return m_pSettings->ReadString(L"lang", name); }
    void ExpectEnglish() const
    {
        EXPECT_TRUE(m_oResources.IsBuiltIn());
        EXPECT_EQ(m_oResources.Text(IDS_LANGUAGE_NAME), L"English (US)");
        EXPECT_EQ(Current(), L"");
    }
    void ExpectFailure(std::size_t box, const std::wstring& name) const
    {
        ASSERT_EQ(m_oPrompt.Shown().size(), box + 1);
        EXPECT_EQ(m_oPrompt.Shown()[box].text, L"Failed to load language " + name);
        EXPECT_EQ(m_oPrompt.Shown()[box].caption, L"Error");
        EXPECT_EQ(m_oPrompt.Shown()[box].icon, PromptIcon::Error);
        EXPECT_EQ(m_oPrompt.Shown()[box].buttons, PromptButtons::Ok);
    }

    CTemporaryFolder m_oFolder;
    std::unique_ptr<ISettings> m_pSettings;
    CScriptedPrompt m_oPrompt;
    CResources m_oResources;
    CLanguages m_oLanguages;

private:
    void PlaceFrom(const wchar_t* folder, const std::wstring& library, const std::wstring& name) const
    {
        std::filesystem::copy_file(std::filesystem::path(folder) / (library + L".dll"),
                                   m_oFolder / "lang" / (name + L".dll"));
    }
};

struct ShownLanguage {
    UINT id;
    std::wstring text;
    bool isChecked;
    bool operator==(const ShownLanguage&) const = default;
};

std::vector<ShownLanguage> Shown(const CLanguages& languages)
{
    const CMenuHandle menu(::LoadMenuW(::GetModuleHandleW(nullptr), MAKEINTRESOURCEW(IDR_MAIN_MENU)));
    languages.FillMenu(CMenu(menu.get()));
    const CMenu popup = *CMenu(menu.get()).PopupWith(ID_LANGUAGE_ENGLISH);
    std::vector<ShownLanguage> shown;
    for (int position = 0; position < popup.Count(); ++position) {
        const UINT id = ::GetMenuItemID(popup.Handle(), position);
        shown.push_back({id, popup.Text(id), popup.IsChecked(id)});
    }
    return shown;
}

TEST_F(CInterfaceLanguages, AreListedBelowEnglishInTheOrderOfTheFolder)
{
    for (const wchar_t* name : {L"zulu", L"Basque", L"aymara"})
        std::ofstream(m_oFolder / "lang" / (std::wstring(name) + L".dll")) << "any";
    std::ofstream(m_oFolder / "lang" / "notes.txt") << "any";
    std::ofstream(m_oFolder / "lang" / ".dll") << "any";
    m_pSettings->WriteString(L"lang", L"Basque", L"Euskara & more");
    EXPECT_EQ(Shown(m_oLanguages), (std::vector<ShownLanguage>{{40300, L"English (default)", true},
                                                               {40301, L"aymara", false},
                                                               {40302, L"Euskara && more", false},
                                                               {40303, L"zulu", false}}));
    m_pSettings->WriteString(L"global", L"lang", L"zulu");
    EXPECT_FALSE(Shown(m_oLanguages)[0].isChecked);
    EXPECT_TRUE(Shown(m_oLanguages)[3].isChecked);
}

TEST_F(CInterfaceLanguages, AreNotListedBeyondTheLastCommand)
{
    for (int number = 10; number < 70; ++number)
        std::ofstream(m_oFolder / "lang" / ("l" + std::to_string(number) + ".dll")) << "any";
    const auto shown = Shown(m_oLanguages);
    EXPECT_EQ(shown.size(), 50U);
    EXPECT_EQ(shown.back(), (ShownLanguage{40349, L"l58", false}));
}

TEST_F(CInterfaceLanguages, AreNoneWithoutAFolder)
{
    const CLanguages languages(m_oResources, *m_pSettings, m_oPrompt, m_oFolder / "none");
    EXPECT_TRUE(languages.Names().empty());
    EXPECT_EQ(Shown(languages), (std::vector<ShownLanguage>{{40300, L"English (default)", true}}));
}

TEST_F(CInterfaceLanguages, AreChosenByTheirPlaceInTheList)
{
    Place(L"spanish", L"a");
    Place(L"russian", L"b");
    EXPECT_EQ(m_oLanguages.Choose(ID_LANGUAGE_ENGLISH + 2), LanguageChange::Changed);
    EXPECT_EQ(Current(), L"b");
    EXPECT_EQ(m_oResources.Text(IDS_LANGUAGE_NAME), L"Русский");
    EXPECT_EQ(DisplayName(L"b"), L"Русский");
    EXPECT_EQ(DisplayName(L"a"), L"");
    EXPECT_EQ(m_oLanguages.Choose(ID_LANGUAGE_ENGLISH + 1), LanguageChange::Changed);
    EXPECT_EQ(Current(), L"a");
    EXPECT_EQ(m_oResources.Text(IDS_LANGUAGE_NAME), L"Español");
    EXPECT_TRUE(m_oPrompt.Shown().empty());
    EXPECT_EQ(Shown(m_oLanguages)[2], (ShownLanguage{40302, L"Русский", false}));
}

TEST_F(CInterfaceLanguages, GiveWayToEnglishWhichIsNotStored)
{
    Place(L"spanish", L"es");
    m_oLanguages.Load(L"es");
    EXPECT_EQ(m_oLanguages.Choose(ID_LANGUAGE_ENGLISH), LanguageChange::Changed);
    ExpectEnglish();
    EXPECT_EQ(DisplayName(L"es"), L"Español");
}

TEST_F(CInterfaceLanguages, KeepANameThatTheirMenuTextHasAlready)
{
    Place(L"spanish", L"es");
    m_pSettings->WriteString(L"lang", L"es", L"Castellano");
    m_oLanguages.Load(L"es");
    EXPECT_EQ(DisplayName(L"es"), L"Castellano");
}

TEST_F(CInterfaceLanguages, AreLoadedAsTheSettingsSay)
{
    Place(L"chinese-simplified", L"zh");
    EXPECT_EQ(m_oLanguages.LoadFromSettings(), std::nullopt);
    m_pSettings->WriteString(L"global", L"lang", L"zh");
    EXPECT_EQ(m_oLanguages.LoadFromSettings(), LanguageChange::Changed);
    EXPECT_EQ(m_oResources.Text(IDS_LANGUAGE_NAME), L"简体中文");
    EXPECT_EQ(DisplayName(L"zh"), L"简体中文");
}

TEST_F(CInterfaceLanguages, LetTheFileGoWhenAnotherIsChosen)
{
    Place(L"spanish", L"es");
    m_oLanguages.Load(L"es");
    m_oLanguages.Load({});
    EXPECT_TRUE(std::filesystem::remove(m_oFolder / "lang" / "es.dll"));
}

TEST_F(CInterfaceLanguages, GiveEnglishForWhatTheyLack)
{
    PlaceStub(L"build396", L"old");
    EXPECT_EQ(m_oLanguages.Load(L"old"), LanguageChange::Changed);
    EXPECT_FALSE(m_oResources.IsBuiltIn());
    EXPECT_EQ(m_oResources.Text(IDS_CACHE_UNLOADED), L"Cache unloaded.");
    EXPECT_NE(m_oResources.Menu(IDR_MAIN_MENU), nullptr);
    EXPECT_NE(m_oResources.Accelerators(IDR_ACCELERATORS), nullptr);
    EXPECT_EQ(DisplayName(L"old"), L"");
}

// What cannot be loaded.

TEST_F(CInterfaceLanguages, AreRefusedWhenTheyAreTooOldOrTooNew)
{
    for (const wchar_t* stub : {L"build395", L"build416", L"plugin"}) {
        PlaceStub(stub, stub);
        m_pSettings->WriteString(L"global", L"lang", stub);
        const std::size_t before = m_oPrompt.Shown().size();
        EXPECT_EQ(m_oLanguages.LoadFromSettings(), LanguageChange::Failed);
        ASSERT_EQ(m_oPrompt.Shown().size(), before + 2);
        EXPECT_EQ(m_oPrompt.Shown()[before].text,
                  L"lang\\" + std::wstring(stub) + L".dll is not supported by this build.");
        ExpectFailure(before + 1, stub);
        ExpectEnglish();
    }
}

TEST_F(CInterfaceLanguages, AreReportedOnceWhenTheyAreNoLibraryOfThatKind)
{
    PlaceStub(L"without_type", L"bare");
    EXPECT_EQ(m_oLanguages.Load(L"bare"), LanguageChange::Failed);
    ExpectFailure(0, L"bare");
    std::ofstream(m_oFolder / "lang" / "text.dll") << "not a library";
    EXPECT_EQ(m_oLanguages.Load(L"text"), LanguageChange::Failed);
    ExpectFailure(1, L"text");
    EXPECT_EQ(m_oLanguages.Load(L"gone"), LanguageChange::Failed);
    ExpectFailure(2, L"gone");
    ExpectEnglish();
}

TEST_F(CInterfaceLanguages, LeaveEnglishAndNoSettingBehindWhenTheNextOneFails)
{
    Place(L"spanish", L"es");
    m_oLanguages.Load(L"es");
    EXPECT_EQ(m_oLanguages.Load(L"gone"), LanguageChange::Failed);
    ExpectFailure(0, L"gone");
    ExpectEnglish();
}

TEST_F(CInterfaceLanguages, AreNeverLoadedFromOutsideTheirFolder)
{
    Place(L"spanish", L"es");
    std::filesystem::copy_file(m_oFolder / "lang" / "es.dll", m_oFolder / "outside.dll");
    const std::wstring absolute = (m_oFolder / "outside").native();
    for (const std::wstring& name : {std::wstring(L"..\\outside"), std::wstring(L"../outside"), absolute}) {
        m_pSettings->WriteString(L"global", L"lang", name);
        ASSERT_EQ(m_oLanguages.LoadFromSettings(), LanguageChange::Failed);
        EXPECT_EQ(m_oPrompt.Shown().back().text, L"Failed to load language " + name);
        ExpectEnglish();
    }
}

TEST_F(CInterfaceLanguages, IgnoreACommandForALibraryThatIsGone)
{
    EXPECT_EQ(m_oLanguages.Choose(ID_LANGUAGE_ENGLISH + 1), std::nullopt);
    EXPECT_TRUE(m_oPrompt.Shown().empty());
}

}  // namespace
