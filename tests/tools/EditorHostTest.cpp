#include "tools/EditorHost.h"

#include <gtest/gtest.h>

#include "tests/codec/FakeCodecs.h"
#include "tests/codec/TestDatabase.h"
#include "tests/support/ScriptedPrompt.h"

namespace {

class EditorHost : public testing::Test {
protected:
    EditorHost() : m_oDatabase({CacheIndex::Dxt, CacheIndex::Unc})
    {
        m_oDatabase.Settings().WriteInt(L"global", L"enable_mipmaps", 0);
    }
    bool Import(ImportRecord& record, const CBitmap* picture)
    {
        CHostOperations operations(*m_oDatabase, m_oDatabase.Plugins(), m_oDatabase.Settings(), m_oPrompt);
        return operations.Import(picture, record);
    }
    static ImportRecord Record(std::wstring_view name)
    {
        ImportRecord record;
        SetRecordText(record.name, name);
        record.hasAlpha = 1;
        record.storeRgba8888 = 1;
        return record;
    }

    CTestDatabase m_oDatabase;
    CScriptedPrompt m_oPrompt;
    CBitmap m_oPicture = SolidPicture(4, 4, 1, 2, 3, 255);
};

}  // namespace

TEST_F(EditorHost, CutsTextsToTheFieldsOfARecord)
{
    ImportRecord record;
    SetRecordText(record.name, std::wstring(200, L'n'));
    EXPECT_EQ(RecordText(record.name), std::wstring(127, L'n'));
    record.name.fill(L'x');
    EXPECT_EQ(RecordText(record.name), std::wstring(128, L'x')) << "a field without a terminator";
}

TEST_F(EditorHost, WritesOnlyTheCacheThatIsGiven)
{
    ImportRecord record = Record(L"wall");
    ASSERT_TRUE(Import(record, &m_oPicture));
    const auto dxt = m_oDatabase->FileSize(CacheIndex::Dxt, RecordKind::Raster);
    const auto unc = m_oDatabase->FileSize(CacheIndex::Unc, RecordKind::Raster);
    record.cacheGiven = 1;
    record.targetCache = 3;
    EXPECT_TRUE(Import(record, &m_oPicture));
    EXPECT_EQ(record.outcome, ImportOutcome::Imported);
    EXPECT_EQ(m_oDatabase->EntryCount(), 1U);
    EXPECT_EQ(m_oDatabase->FileSize(CacheIndex::Dxt, RecordKind::Raster), dxt);
    EXPECT_GT(m_oDatabase->FileSize(CacheIndex::Unc, RecordKind::Raster), unc);
}

TEST_F(EditorHost, TakesTheRequestedCategory)
{
    ImportRecord record = Record(L"wall");
    record.category = 2;
    Import(record, &m_oPicture);
    EXPECT_EQ(m_oDatabase->Entry(0).Value(Property::Cat), 2U);
}

TEST_F(EditorHost, AsksForARefreshOnlyWhenTheSenderDoesNotDoItItself)
{
    ImportRecord record = Record(L"wall");
    record.noRefresh = 1;
    EXPECT_FALSE(Import(record, &m_oPicture));
    EXPECT_EQ(record.outcome, ImportOutcome::Imported);
}

TEST_F(EditorHost, ShowsWhyAnImportFailed)
{
    ImportRecord record = Record(L"");
    EXPECT_FALSE(Import(record, &m_oPicture));
    EXPECT_EQ(record.outcome, ImportOutcome::Failed);
    ASSERT_EQ(m_oPrompt.Shown().size(), 1U);
    EXPECT_EQ(m_oPrompt.Shown()[0].text, L"Name should not be empty.");
    EXPECT_EQ(m_oDatabase->EntryCount(), 0U);
}

TEST_F(EditorHost, DecodesToAPictureOrToNothing)
{
    ImportRecord record = Record(L"wall");
    Import(record, &m_oPicture);
    CHostOperations operations(*m_oDatabase, m_oDatabase.Plugins(), m_oDatabase.Settings(), m_oPrompt);
    const auto picture = operations.Decode(0, CacheIndex::Unc);
    ASSERT_NE(picture, nullptr);
    EXPECT_EQ(picture->Width(), 4U);
    EXPECT_EQ(operations.Decode(0, CacheIndex::Etc1), nullptr) << "that cache is not open";
    EXPECT_EQ(operations.Decode(1, CacheIndex::Unc), nullptr);
}
