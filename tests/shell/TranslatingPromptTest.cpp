#include "app/TranslatingPrompt.h"

#include <fstream>
#include <gtest/gtest.h>

#include "app/Languages.h"
#include "app/messages.h"
#include "base/Format.h"
#include "base/Progress.h"
#include "codec/CodecMessages.h"
#include "database/DatabaseError.h"
#include "database/TextureDatabase.h"
#include "database/TextureDatabaseImpl.h"
#include "tests/shell/ResourceReader.h"
#include "tests/support/DatabaseBuilder.h"
#include "tests/support/ScriptedPrompt.h"
#include "tests/support/TemporaryFolder.h"
#include "tools/ExportPictures.h"
#include "tools/ImportPictures.h"
#include "tools/NewDatabase.h"
#include "tools/OpenDatabase.h"
#include "tools/Statistics.h"
#include "tools/TextureFacts.h"

namespace {

/// A core that speaks to a person whose language is Spanish.
class CTranslatedMessages : public testing::Test {
protected:
    CTranslatedMessages()
        : m_pSettings(OpenSettings(m_oFolder / "mavrel.ini")),
          m_oResources(::GetModuleHandleW(nullptr)),
          m_oLanguages(m_oResources, *m_pSettings, m_oShown, MAVREL_LANGUAGES),
          m_oTranslator(m_oResources),
          m_oPrompt(m_oShown, m_oTranslator)
    {
    }

    void SetUp() override { UseSpanish(); }
    void UseSpanish() { ASSERT_EQ(m_oLanguages.Load(L"spanish"), LanguageChange::Changed); }
    void UseEnglish() { m_oLanguages.Load({}); }

    const PromptBox& LastBox() const { return m_oShown.Shown().back(); }

    CTemporaryFolder m_oFolder;
    std::unique_ptr<ISettings> m_pSettings;
    CResources m_oResources;
    CScriptedPrompt m_oShown{
        {PromptAnswer::No, PromptAnswer::No, PromptAnswer::No, PromptAnswer::No, PromptAnswer::No}};
    CLanguages m_oLanguages;
    CMessageTranslator m_oTranslator;
    CTranslatingPrompt m_oPrompt;
};

TEST_F(CTranslatedMessages, TakeTheLanguageWithWhatTheyName)
{
    EXPECT_EQ(m_oTranslator.Translate(L"Texture 'wood' already exists. Would you like to replace it?"),
              L"La textura «wood» ya existe. ¿Desea reemplazarla?");
    EXPECT_EQ(m_oTranslator.Translate(L"ID: 07, Offset: 0x1AF"), L"Id.: 07, posición: 0x1AF");
    EXPECT_EQ(m_oTranslator.Translate(L"ETC1 plugin is not loaded"), L"El complemento ETC1 no está cargado");
}

TEST_F(CTranslatedMessages, KeepNamesThatLookLikeMessages)
{
    EXPECT_EQ(m_oTranslator.Translate(L"Texture 'Warning' already exists. Would you like to replace it?"),
              L"La textura «Warning» ya existe. ¿Desea reemplazarla?");
}

TEST_F(CTranslatedMessages, TranslateAnErrorAndTheQuestionBehindIt)
{
    EXPECT_EQ(m_oTranslator.Translate(L"Cannot compress texture.\nContinue?"),
              L"No se puede comprimir la textura.\n¿Desea continuar?");
    EXPECT_EQ(m_oTranslator.Translate(L"Something new.\nContinue?"), L"Something new.\n¿Desea continuar?");
}

TEST_F(CTranslatedMessages, TranslateTheErrorInsideTheDatabaseBox)
{
    ReportDatabaseError(m_oPrompt, DatabaseText::kEmptyCategory, 31, 7, ErrorKind::Warning);
    EXPECT_EQ(LastBox().text,
              L"Se ha producido un maldito error:\n\nNo se ha indicado el nombre de la categoría\n\n "
              L"Archivo: CTextureDatabase\n Línea: 7\n Valor: 31 [0x1f]\n\nCompruebe si hay una versión "
              L"más reciente en la página del programa.");
    EXPECT_EQ(LastBox().caption, L"Error");
    EXPECT_EQ(LastBox().icon, PromptIcon::Warning);
}

TEST_F(CTranslatedMessages, TranslateEveryLineOfTheStatistics)
{
    EXPECT_EQ(m_oTranslator.Translate(L"Game: (auto)\n\n-----\n\nTotal:     5\ndxt size: 0.125 MB\n"),
              L"Juego: (automático)\n\n-----\n\nTotal:      5\nTamaño de dxt: 0.125 MB\n");
}

TEST_F(CTranslatedMessages, LeaveWhatNobodyKnows)
{
    for (const wchar_t* text : {L"", L"\n", L"Hola", L"error", L"Mavrel", L"Texture 'a' already"})
        EXPECT_EQ(m_oTranslator.Translate(text), text);
}

TEST_F(CTranslatedMessages, PassTheBoxOnAndItsAnswerBack)
{
    const PromptAnswer answer = m_oPrompt.Show({.text = L"Unable to rebuild TXT file",
                                                .caption = L"Warning",
                                                .icon = PromptIcon::Question,
                                                .buttons = PromptButtons::YesNoCancel,
                                                .proposed = PromptAnswer::Cancel});
    EXPECT_EQ(answer, PromptAnswer::No);
    EXPECT_EQ(LastBox().text, L"No se puede reconstruir el archivo TXT");
    EXPECT_EQ(LastBox().caption, L"Advertencia");
    EXPECT_EQ(LastBox().icon, PromptIcon::Question);
    EXPECT_EQ(LastBox().buttons, PromptButtons::YesNoCancel);
    EXPECT_EQ(LastBox().proposed, PromptAnswer::Cancel);
}

TEST_F(CTranslatedMessages, StayAsTheyAreInEnglish)
{
    UseEnglish();
    for (const auto& [id, text] : ReadStrings(m_oResources.Program()))
        EXPECT_EQ(m_oTranslator.Translate(text), text) << id;
    m_oPrompt.ShowError(L"Texture 'x' already exists. Would you like to replace it?");
    EXPECT_EQ(LastBox().text, L"Texture 'x' already exists. Would you like to replace it?");
    EXPECT_EQ(LastBox().caption, L"Error");
}

TEST_F(CTranslatedMessages, FollowEveryChangeOfLanguage)
{
    EXPECT_EQ(m_oTranslator.Translate(L"Name should not be empty."), L"El nombre no puede estar vacío.");
    m_oLanguages.Load(L"russian");
    EXPECT_EQ(m_oTranslator.Translate(L"Name should not be empty."), L"Имя не должно быть пустым.");
    UseEnglish();
    EXPECT_EQ(m_oTranslator.Translate(L"Name should not be empty."), L"Name should not be empty.");
}

// The table and the core.

std::wstring Sample(const std::wstring& conversion)
{
    switch (conversion.back()) {
        case L's':
            return L"a_name";
        case L'f':
            return L"1.500";
        default:
            return L"12";
    }
}

TEST_F(CTranslatedMessages, EveryMessageOfTheTableComesBackInTheLanguage)
{
    for (UINT id = IDS_MESSAGE_FIRST; id <= IDS_MESSAGE_LAST; ++id) {
        const CMessagePattern english(m_oResources.BuiltInText(id));
        if (m_oResources.BuiltInText(id).empty())
            continue;
        std::vector<std::wstring> arguments;
        for (const std::wstring& conversion : english.Conversions())
            arguments.push_back(Sample(conversion));
        EXPECT_EQ(m_oTranslator.Translate(english.Fill(arguments)),
                  CMessagePattern(m_oResources.Text(id)).Fill(arguments))
            << id;
    }
}

// Everything here differs between the two languages, so a text that comes back as it was is missing in the
// table.
class CCoreMessages : public CTranslatedMessages {
protected:
    void ExpectKnown(std::wstring_view text) const
    {
        EXPECT_NE(m_oTranslator.Translate(text), text) << ToUtf8(text);
    }
    /// Boxes are looked at in the form in which the core raised them.
    void ExpectAllKnown(const CScriptedPrompt& raised) const
    {
        EXPECT_FALSE(raised.Shown().empty());
        for (const PromptBox& box : raised.Shown())
            ExpectKnown(box.text);
    }
};

TEST_F(CCoreMessages, OfTheDatabaseAreInTheTable)
{
    using namespace DatabaseText;
    for (const std::wstring_view text :
         {kListNotOpen, kCannotWrite, kLineTooLong, kEmptyName, kWrongName, kEmptyCategory, kNoSpaces,
          kWrongCategory, kNoTexture, kNoData, kWrongSize, kWrongOffset})
        ExpectKnown(text);
}

TEST_F(CCoreMessages, OfTheCodecsAreInTheTable)
{
    using namespace CodecMessage;
    for (const std::wstring_view text :
         {kWrongDimensions, kEmptyName, kWrongName, kLineTooLong, kCannotCompress, kCannotDecompress,
          kUnsupportedFormat, kCannotWrite})
        ExpectKnown(text);
    ExpectKnown(Format(kNoPlugin, L"PVRTC"));
}

TEST_F(CCoreMessages, OfFactsAndStatisticsAreInTheTable)
{
    ExpectKnown(IdAndOffsetText(3, 0x20));
    ExpectKnown(RenderedText(L"wood", 0.25));
    ExpectKnown(GameName(StreamMode::Auto));
    ExpectKnown(ExportFailureText({.failed = 2, .firstError = L"Cannot decompress texture."}));
    CScriptedPrompt raised;
    CDatabaseBuilder().Texture("wood").Picture("dxt", 1).Write(m_oFolder / "t.txt");
    CTextureDatabase database(StreamMode::Auto, DiskFileSystem(), raised);
    database.Open(m_oFolder / "t.txt");
    const std::wstring text = StatisticsText(database);
    const std::wstring translated = m_oTranslator.Translate(text);
    for (const wchar_t* english : {L"Game", L"Originals", L"Aliases", L" size"})
        EXPECT_EQ(translated.find(english), std::wstring::npos) << ToUtf8(translated);
}

TEST_F(CCoreMessages, OfCreatingADatabaseAreInTheTable)
{
    CScriptedPrompt raised({PromptAnswer::No});
    CDatabaseBuilder().Texture("wood").Picture("dxt", 1).Write(m_oFolder / "t.txt");
    CTextureDatabase database(StreamMode::Auto, DiskFileSystem(), raised);
    CreateDatabase(database, m_oFolder / "t.txt", kAllCaches, raised);
    CreateDatabase(database, m_oFolder / "no such folder" / "t.txt", kAllCaches, raised);
    EXPECT_EQ(raised.Shown().size(), 2U);
    ExpectAllKnown(raised);
}

TEST_F(CCoreMessages, OfOpeningADamagedDatabaseAreInTheTable)
{
    CNoProgress progress;
    CScriptedPrompt raised({PromptAnswer::No, PromptAnswer::No, PromptAnswer::No, PromptAnswer::No});
    CDatabaseOpener opener(*m_pSettings, raised, progress);
    CTextureDatabase database(StreamMode::Auto, DiskFileSystem(), raised);
    opener.Open(database, m_oFolder / "none.txt", [] {});

    CDatabaseBuilder().Texture("wood").Picture("dxt", 1).Text("what is this\n").Write(m_oFolder / "t.txt");
    FileBytes files = FilesOf(m_oFolder.Path());
    files["t.dxt.toc"].resize(files["t.dxt.toc"].size() - 1);
    files["t.dxt.tmb"].resize(files["t.dxt.tmb"].size() - 1);
    files["orphan.dxt.dat"] = files["t.dxt.dat"];
    WriteFiles(m_oFolder.Path(), files);
    opener.Open(database, m_oFolder / "t.txt", [] {});
    opener.OfferFileRepairs(database, [] {});
    opener.Open(database, m_oFolder / "orphan.txt", [] {});
    EXPECT_GE(raised.Shown().size(), 4U);
    ExpectAllKnown(raised);
}

TEST_F(CCoreMessages, OfImportingPicturesAreInTheTable)
{
    CNoProgress progress;
    CScriptedPrompt raised({PromptAnswer::Yes, PromptAnswer::No, PromptAnswer::Yes, PromptAnswer::Cancel});
    CDatabaseBuilder().Texture("wood").Picture("dxt", 1).Write(m_oFolder / "t.txt");
    CTextureDatabase database(StreamMode::Auto, DiskFileSystem(), raised);
    database.Open(m_oFolder / "t.txt");
    std::ofstream(m_oFolder / "wood.png") << "no picture";
    CPluginTable plugins;
    CPictureImporter importer(database, plugins, *m_pSettings, raised, progress);
    importer.Run({m_oFolder / "wood.png"}, {}, ClashAnswer::Ask);
    EXPECT_EQ(raised.Shown().size(), 3U);
    ExpectAllKnown(raised);
}

}  // namespace
