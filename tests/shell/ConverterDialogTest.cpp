#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/resource.h"
#include "dialogs/DlgConverter.h"
#include "tests/shell/MainWindowFixture.h"

namespace {

using testing::ElementsAre;

std::uint32_t EncodeEtc1(const void*, void* destination, std::uint32_t width, std::uint32_t height,
                         std::uint32_t, std::uint32_t)
{
    const std::uint32_t bytes = ((width + 3) / 4) * ((height + 3) / 4) * 8;
    std::fill_n(static_cast<unsigned char*>(destination), bytes, static_cast<unsigned char>(0x5A));
    return bytes;
}

/// Writes down that it is to show the database anew.
class CRefreshedHost final : public IEditorHost {
public:
    void Import(const CBitmap*, ImportRecord&) override { ADD_FAILURE(); }
    void Show(const std::wstring&, const CBitmap*) override { ADD_FAILURE(); }
    void Select(std::uint32_t) override { ADD_FAILURE(); }
    void Refresh() override { ++refreshed; }
    std::unique_ptr<CBitmap> Decode(std::uint32_t, CacheIndex) override { return nullptr; }

    int refreshed = 0;
};

/// Serves messages until the condition holds, at most some seconds.
bool ServeUntil(const std::function<bool()>& condition)
{
    const ULONGLONG started = ::GetTickCount64();
    while (!condition() && ::GetTickCount64() - started < 10000) {
        MSG message{};
        if (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
            ::DispatchMessageW(&message);
        else
            ::Sleep(1);
    }
    return condition();
}

class ConverterDialog : public testing::Test {
protected:
    ConverterDialog() : m_oResources(::GetModuleHandleW(nullptr))
    {
        m_oPlugins.BindFunctions(CacheIndex::Etc1, EncodeEtc1, nullptr);
    }

    static CDatabaseBuilder Small()
    {
        CDatabaseBuilder builder;
        builder.Texture("wood").Picture("dxt", 0x22).Alias("bark", "wood");
        builder.Texture("sand").Picture("dxt", 0x33);
        return builder;
    }
    /// Opens the dialog without waiting for its end, over a database or none.
    void Open(const CDatabaseBuilder* builder, std::deque<PromptAnswer> answers = {})
    {
        m_pPrompt = std::make_unique<CScriptedPrompt>(std::move(answers));
        if (builder != nullptr) {
            builder->Write(m_oFolder / "textures.txt");
            m_pDatabase = std::make_unique<CTextureDatabase>(StreamMode::Auto, DiskFileSystem(), *m_pPrompt);
            m_pDatabase->Open(m_oFolder / "textures.txt");
            m_pEditor.reset(new ToolEditor{*m_pDatabase, m_oPlugins, *m_pSettings, m_oHost});
        }
        m_pDialog =
            std::make_unique<CDlgConverter>(ConverterDialogParts{m_oResources, m_pEditor.get(), *m_pPrompt});
        ASSERT_TRUE(m_pDialog->Create(m_oResources.Current(), nullptr)) << "a display is needed";
        m_pDialog->Show(true);
    }

    std::vector<std::wstring> Items(int list) const
    {
        const CWindow box = m_pDialog->Child(list);
        std::vector<std::wstring> items;
        for (LRESULT i = 0; i < box.Send(CB_GETCOUNT); ++i) {
            std::wstring text(static_cast<std::size_t>(box.Send(CB_GETLBTEXTLEN, static_cast<WPARAM>(i))),
                              L'\0');
            box.SendPointer(CB_GETLBTEXT, static_cast<WPARAM>(i), text.data());
            items.push_back(text);
        }
        return items;
    }
    LRESULT Current(int list) const { return m_pDialog->Child(list).Send(CB_GETCURSEL); }
    void Select(int list, int item) const
    {
        m_pDialog->Child(list).Send(CB_SETCURSEL, static_cast<WPARAM>(item));
    }
    void Press(int button) const { m_pDialog->Send(WM_COMMAND, static_cast<WPARAM>(button)); }
    std::wstring Status() const { return m_pDialog->Child(IDC_CONVERTER_STATUS).Text(); }
    bool AreListsEnabled() const
    {
        EXPECT_EQ(m_pDialog->Child(IDC_CONVERTER_SOURCE).IsEnabled(),
                  m_pDialog->Child(IDC_CONVERTER_TARGET).IsEnabled());
        return m_pDialog->Child(IDC_CONVERTER_SOURCE).IsEnabled();
    }
    void Convert()
    {
        Press(IDC_CONVERTER_GO);
        ASSERT_TRUE(ServeUntil([this] { return !m_pDialog->IsBusy(); }));
    }
    FileBytes Files() { return FilesOf(m_oFolder.Path()); }

    CTemporaryFolder m_oFolder;
    std::unique_ptr<ISettings> m_pSettings = OpenSettings(m_oFolder / "mavrel.ini");
    CResources m_oResources;
    CPluginTable m_oPlugins;
    CRefreshedHost m_oHost;
    std::unique_ptr<CScriptedPrompt> m_pPrompt;
    std::unique_ptr<CTextureDatabase> m_pDatabase;
    std::unique_ptr<ToolEditor> m_pEditor;
    std::unique_ptr<CDlgConverter> m_pDialog;
};

}  // namespace

TEST_F(ConverterDialog, OffersLoadedSourcesAndEveryTarget)
{
    const auto builder = Small();
    Open(&builder);
    EXPECT_EQ(m_pDialog->Text(), L"Cache converter");
    EXPECT_THAT(Items(IDC_CONVERTER_SOURCE), ElementsAre(L"DXT"));
    EXPECT_THAT(Items(IDC_CONVERTER_TARGET), ElementsAre(L"DXT (rebuild)", L"ETC", L"PVR", L"UNC"));
    EXPECT_EQ(Current(IDC_CONVERTER_SOURCE), 0);
    EXPECT_EQ(Current(IDC_CONVERTER_TARGET), 1);
    EXPECT_EQ(Status(), L"Let's roll!");
    EXPECT_EQ(
        m_pDialog->Child(IDC_CONVERTER_NOTE).Text(),
        L"Note! \r\n Output quality will be reduced every time you convert cache.\r\nOperation can take "
        L"very fuckin' long time.");
    EXPECT_TRUE(AreListsEnabled());
}

TEST_F(ConverterDialog, SelectsTheSecondTargetWhateverIsLoaded)
{
    CDatabaseBuilder builder;
    builder.Texture("wood").Picture("etc", 1).Picture("unc", 2);
    Open(&builder);
    EXPECT_THAT(Items(IDC_CONVERTER_SOURCE), ElementsAre(L"ETC", L"UNC"));
    EXPECT_THAT(Items(IDC_CONVERTER_TARGET), ElementsAre(L"DXT", L"ETC (rebuild)", L"PVR", L"UNC (rebuild)"));
    EXPECT_EQ(Current(IDC_CONVERTER_SOURCE), 0);
    EXPECT_EQ(Current(IDC_CONVERTER_TARGET), 1);
}

TEST_F(ConverterDialog, OffersNothingWithoutADatabase)
{
    Open(nullptr);
    EXPECT_FALSE(AreListsEnabled());
    EXPECT_FALSE(m_pDialog->Child(IDC_CONVERTER_GO).IsEnabled());
    Press(IDC_CONVERTER_GO);
    EXPECT_FALSE(m_pDialog->IsBusy());
    Press(IDCANCEL);
    EXPECT_FALSE(m_pDialog->Exists());
}

TEST_F(ConverterDialog, ConvertsAndSaysHowLongItTook)
{
    const auto builder = Small();
    Open(&builder);
    Press(IDC_CONVERTER_GO);
    EXPECT_TRUE(m_pDialog->IsBusy());
    EXPECT_FALSE(AreListsEnabled());
    EXPECT_TRUE(m_pDialog->Child(IDC_CONVERTER_GO).IsEnabled());
    EXPECT_TRUE(m_pDialog->Child(IDC_CONVERTER_PROGRESS).IsEnabled());
    ASSERT_TRUE(ServeUntil([this] { return !m_pDialog->IsBusy(); }));
    EXPECT_TRUE(AreListsEnabled());
    EXPECT_TRUE(Status().starts_with(L"Done within ") && Status().ends_with(L" seconds!"))
        << ToUtf8(Status());
    EXPECT_EQ(Status().find(L'.'), Status().find(L" seconds!") - 3) << "two decimals";
    EXPECT_FALSE(m_pDialog->Child(IDC_CONVERTER_PROGRESS).IsEnabled());
    EXPECT_TRUE(m_pDatabase->IsOpen(CacheIndex::Etc1));
    EXPECT_TRUE(m_pDatabase->IsTocValid(CacheIndex::Etc1));
    EXPECT_EQ(m_oHost.refreshed, 1);
    EXPECT_TRUE(m_pPrompt->Shown().empty());
}

TEST_F(ConverterDialog, ShowsTheNewCacheInItsLists)
{
    const auto builder = Small();
    Open(&builder);
    Convert();
    EXPECT_THAT(Items(IDC_CONVERTER_SOURCE), ElementsAre(L"DXT", L"ETC"));
    EXPECT_THAT(Items(IDC_CONVERTER_TARGET), ElementsAre(L"DXT (rebuild)", L"ETC (rebuild)", L"PVR", L"UNC"));
    EXPECT_EQ(Current(IDC_CONVERTER_SOURCE), 0);
    EXPECT_EQ(Current(IDC_CONVERTER_TARGET), 1);
}

TEST_F(ConverterDialog, AnswersOnlyThatOneIsToWaitWhileItWorks)
{
    const auto builder = Small();
    Open(&builder);
    Press(IDC_CONVERTER_GO);
    Press(IDC_CONVERTER_GO);
    Press(IDCANCEL);
    m_pDialog->Send(WM_CLOSE);
    ServeUntil([this] { return m_pPrompt->Shown().size() == 3; });
    ASSERT_EQ(m_pPrompt->Shown().size(), 3U);
    for (const PromptBox& box : m_pPrompt->Shown())
        EXPECT_EQ(box.text, L"Please wait until operation ended");
    EXPECT_TRUE(m_pDialog->Exists());
    ASSERT_TRUE(ServeUntil([this] { return !m_pDialog->IsBusy(); }));
    EXPECT_EQ(m_oHost.refreshed, 1) << "the second GO started nothing";
    Press(IDCANCEL);
    EXPECT_FALSE(m_pDialog->Exists());
}

TEST_F(ConverterDialog, RefusesACacheAsItsOwnTarget)
{
    const auto builder = Small();
    Open(&builder);
    const FileBytes before = Files();
    Select(IDC_CONVERTER_TARGET, 0);
    Press(IDC_CONVERTER_GO);
    ASSERT_EQ(m_pPrompt->Shown().size(), 1U);
    EXPECT_EQ(m_pPrompt->Shown()[0].text, L"You cant build cache from itself!");
    EXPECT_FALSE(m_pDialog->IsBusy());
    EXPECT_TRUE(AreListsEnabled());
    EXPECT_EQ(Files(), before);
}

TEST_F(ConverterDialog, LeavesTheListsDisabledAfterNo)
{
    CDatabaseBuilder builder = Small();
    builder.Cache("etc");
    Open(&builder, {PromptAnswer::No, PromptAnswer::Yes});
    const FileBytes before = Files();
    Press(IDC_CONVERTER_GO);
    EXPECT_FALSE(m_pDialog->IsBusy());
    EXPECT_FALSE(AreListsEnabled());
    EXPECT_EQ(Files(), before);
    Convert();
    EXPECT_TRUE(AreListsEnabled());
    EXPECT_TRUE(m_pDatabase->IsTocValid(CacheIndex::Etc1));
    EXPECT_EQ(m_pDatabase->OffsetList(CacheIndex::Etc1)[2], 8U + 64 + 16 + 4);
}

TEST_F(ConverterDialog, EnablesTheListsAgainWhenThePluginIsMissing)
{
    const auto builder = Small();
    Open(&builder);
    Select(IDC_CONVERTER_TARGET, 2);
    Press(IDC_CONVERTER_GO);
    ASSERT_EQ(m_pPrompt->Shown().size(), 1U);
    EXPECT_EQ(m_pPrompt->Shown()[0].text, L"PVRTC plugin is not loaded");
    EXPECT_TRUE(AreListsEnabled());
}

TEST_F(ConverterDialog, TellsAboutTexturesThatFailedBesideTheFinalText)
{
    CDatabaseBuilder builder = Small();
    builder.Texture("odd").Picture("dxt", 0x44, 20, 20);
    builder.Texture("absent");
    Open(&builder);
    Convert();
    ASSERT_EQ(m_pPrompt->Shown().size(), 1U);
    EXPECT_EQ(m_pPrompt->Shown()[0].text,
              L"2 textures could not be converted.\n\nWrong texture dimensions given.");
    EXPECT_TRUE(Status().starts_with(L"Done within ")) << ToUtf8(Status());
    EXPECT_EQ(m_pDatabase->OffsetList(CacheIndex::Etc1)[3], 0xFFFFFFFF);
}

TEST_F(ConverterDialog, SaysWhatCouldNotBeWrittenAndCanStartAgain)
{
    const auto builder = Small();
    Open(&builder, {PromptAnswer::Yes});
    // Something of that name that is no file cannot be replaced.
    std::filesystem::create_directory(m_oFolder / "textures.etc.tmb");
    Convert();
    ASSERT_EQ(m_pPrompt->Shown().size(), 2U);
    EXPECT_EQ(m_pPrompt->Shown()[1].text, L"Unable to write cache file");
    EXPECT_TRUE(AreListsEnabled());
    EXPECT_EQ(Status(), L"Let's roll!");
    EXPECT_FALSE(m_pDatabase->IsOpen(CacheIndex::Etc1));
    std::filesystem::remove(m_oFolder / "textures.etc.tmb");
    Convert();
    EXPECT_TRUE(m_pDatabase->IsOpen(CacheIndex::Etc1));
}

TEST_F(ConverterDialog, GivesTheWorkUpWhenTheDialogIsDestroyed)
{
    CDatabaseBuilder builder;
    for (int i = 0; i < 50; ++i)
        builder.Texture("t" + std::to_string(i)).Picture("dxt", 0x22, 64, 64);
    Open(&builder);
    const FileBytes before = Files();
    Press(IDC_CONVERTER_GO);
    m_pDialog.reset();
    EXPECT_EQ(Files(), before);
}

class ConverterCommand : public CMainWindowTest {};

TEST_F(ConverterCommand, OpensTheDialogWithAndWithoutADatabase)
{
    Start();
    EXPECT_TRUE(Menu().IsEnabled(ID_CACHE_CONVERTER));
    Command(ID_CACHE_CONVERTER);
    OpenDatabase(SmallDatabase());
    Command(ID_CACHE_CONVERTER);
    EXPECT_THAT(m_oDialogs.conversions, ElementsAre(false, true));
}
