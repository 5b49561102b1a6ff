#include "tools/ImportRules.h"

#include <gtest/gtest.h>

#include "tests/codec/TestDatabase.h"

namespace {

class ImportRules : public testing::Test {
protected:
    ImportRules() : m_oDatabase({CacheIndex::Dxt, CacheIndex::Unc}, StreamMode::Auto) {}

    void CategoryFormat(std::int32_t format)
    {
        TextureCategory category = m_oDatabase->Categories()[0];
        category.defaultformat = format;
        m_oDatabase->SetCategory(0, category);
    }
    void Set(std::wstring_view section, std::wstring_view key, std::wstring_view value)
    {
        m_oDatabase.Settings().WriteString(section, key, value);
    }
    std::optional<CacheIndex> Encoder(std::optional<CacheIndex> chosen = std::nullopt,
                                      std::uint32_t category = 0)
    {
        return EncoderByRules(*m_oDatabase, m_oDatabase.Settings(), category, chosen);
    }

    CTestDatabase m_oDatabase;
};

}  // namespace

// The format.

TEST_F(ImportRules, LeaveTheChoiceOpenWithoutAnyRule)
{
    EXPECT_EQ(Encoder(), std::nullopt);
    EXPECT_EQ(Encoder(CacheIndex::Unc), CacheIndex::Unc);
}

TEST_F(ImportRules, TakeTheDefaultFormatOfTheCategory)
{
    CategoryFormat(4);
    EXPECT_EQ(Encoder(), CacheIndex::Unc);
    CategoryFormat(7);
    EXPECT_EQ(Encoder(), CacheIndex::Dxt);
    CategoryFormat(5);
    EXPECT_EQ(Encoder(), std::nullopt);
    EXPECT_EQ(Encoder(std::nullopt, 12), std::nullopt) << "a category that does not exist";
}

TEST_F(ImportRules, LetTheRuleOfTheListWinOverTheCategory)
{
    CategoryFormat(7);
    Set(L"rules", L"mobile.txt", L"pvr");
    EXPECT_EQ(Encoder(), CacheIndex::Pvrtc);
    EXPECT_EQ(Encoder(CacheIndex::Etc1), CacheIndex::Etc1) << "what the command fixed wins";
}

TEST_F(ImportRules, MatchNothingWithARuleInUpperCase)
{
    CategoryFormat(4);
    Set(L"rules", L"mobile.txt", L"DXT");
    EXPECT_EQ(Encoder(), CacheIndex::Unc);
}

TEST_F(ImportRules, AreNotAppliedWhenTheyAreSwitchedOff)
{
    CategoryFormat(4);
    Set(L"rules", L"mobile.txt", L"dxt");
    Set(L"global", L"enable_rules", L"0");
    EXPECT_EQ(Encoder(), std::nullopt);
    EXPECT_EQ(Encoder(CacheIndex::Etc1), CacheIndex::Etc1);
}

TEST_F(ImportRules, ForceTheUncompressedFormatWhenCompressionIsOffEverywhere)
{
    Set(L"rules", L"mobile.txt", L"dxt");
    Set(L"global", L"enable_compression", L"0");
    EXPECT_EQ(Encoder(), CacheIndex::Unc);
    EXPECT_EQ(Encoder(CacheIndex::Dxt), CacheIndex::Unc);
    Set(L"global", L"enable_rules", L"0");
    EXPECT_EQ(Encoder(), CacheIndex::Unc);
}

TEST(ImportRulesOfAList, LookUpTheNameOfTheListInLowerCase)
{
    CTemporaryFolder folder;
    CScriptedPrompt prompt;
    CMemorySettings settings;
    CTextureDatabase database(StreamMode::Auto, DiskFileSystem(), prompt);
    const std::array caches = {CacheIndex::Dxt};
    ASSERT_TRUE(database.Create(folder / "GTA3.TXT", caches));
    settings.WriteString(L"rules", L"gta3.txt", L"etc");
    EXPECT_EQ(EncoderByRules(database, settings, 0, std::nullopt), CacheIndex::Etc1);
}

// The game.

TEST_F(ImportRules, TakeTheForcedGame)
{
    m_oDatabase->SetForcedMode(StreamMode::Framed);
    EXPECT_EQ(GameOfDatabase(*m_oDatabase), StreamMode::Framed);
    EXPECT_EQ(CGameChoice(m_oDatabase.Prompt()).For(*m_oDatabase), StreamMode::Framed);
    EXPECT_TRUE(m_oDatabase.Prompt().Shown().empty());
}

TEST_F(ImportRules, TakeTheGameOfTheFirstRecordThatCanBeRead)
{
    m_oDatabase.Add(L"empty", {});
    m_oDatabase.Add(L"wall", {{CacheIndex::Unc, {{0, 0x1401, 2, 2}, CountingBytes(16)}}});
    EXPECT_EQ(GameOfDatabase(*m_oDatabase), StreamMode::Raw);
}

TEST_F(ImportRules, CannotTellTheGameOfACacheWithoutRecords)
{
    m_oDatabase.Add(L"empty", {});
    EXPECT_EQ(GameOfDatabase(*m_oDatabase), std::nullopt);
}

TEST_F(ImportRules, AskOnceForTheGameOfANewCache)
{
    CScriptedPrompt prompt({PromptAnswer::Yes});
    CGameChoice choice(prompt);
    EXPECT_EQ(choice.For(*m_oDatabase), StreamMode::Framed);
    EXPECT_EQ(choice.For(*m_oDatabase), StreamMode::Framed);
    ASSERT_EQ(prompt.Shown().size(), 1U);
    EXPECT_EQ(prompt.Shown()[0].text,
              L"Do you want to make this cache for San Andreas? \n\n"
              L"If you choose 'No' an Vice City cache will be created.");
    EXPECT_EQ(prompt.Shown()[0].icon, PromptIcon::Question);
    EXPECT_EQ(prompt.Shown()[0].buttons, PromptButtons::YesNoCancel);
}

TEST_F(ImportRules, MakeAViceCityCacheOnNoAndNothingOnCancel)
{
    CScriptedPrompt no({PromptAnswer::No});
    EXPECT_EQ(CGameChoice(no).For(*m_oDatabase), StreamMode::Raw);
    CScriptedPrompt cancel({PromptAnswer::Cancel});
    EXPECT_EQ(CGameChoice(cancel).For(*m_oDatabase), std::nullopt);
}

// Importing.

TEST_F(ImportRules, GiveATextureThatBecameAnAliasTheRequestedCategory)
{
    const CBitmap picture = SolidPicture(4, 4, 1, 2, 3, 4);
    const auto import = [&](const std::wstring& name) {
        return ImportByRules(*m_oDatabase, m_oDatabase.Plugins(), m_oDatabase.Settings(), picture, name,
                             {.hasAlpha = true, .category = 5}, StreamMode::Raw);
    };
    EXPECT_EQ(import(L"first"), StoreResult::Stored);
    EXPECT_EQ(import(L"second"), StoreResult::MadeAlias);
    EXPECT_EQ(m_oDatabase->Entry(1).Value(Property::Cat), 5U);
    m_oDatabase->Reload();
    EXPECT_EQ(m_oDatabase->Entry(1).Value(Property::Cat), 5U);
}

TEST_F(ImportRules, StoreUncompressedRecordsInEveryCacheWhenCompressionIsOff)
{
    Set(L"global", L"enable_compression", L"0");
    ImportByRules(*m_oDatabase, m_oDatabase.Plugins(), m_oDatabase.Settings(), SolidPicture(4, 4, 1, 2, 3, 4),
                  L"wall", {.hasAlpha = false}, StreamMode::Raw);
    const TextureEntry& entry = m_oDatabase->ResolvedEntry(0);
    EXPECT_EQ(entry.rasterHeader[SlotOf(CacheIndex::Dxt)].glFormat, 0x8363);
    EXPECT_EQ(entry.rasterHeader[SlotOf(CacheIndex::Unc)].glFormat, 0x8363);
}
