#include <algorithm>
#include <atomic>
#include <thread>

#include "tests/shell/MainWindowFixture.h"

namespace {

class CHostMessages : public CMainWindowTest {
protected:
    CHostMessages() { m_pSettings->WriteInt(L"global", L"game", 1); }

    static CBitmap Picture(std::uint8_t shade)
    {
        auto bitmap = CBitmap::Create(8, 8).value();
        std::ranges::fill(bitmap.Pixels(), shade);
        return bitmap;
    }
    static ImportRecord Record(const std::wstring& name)
    {
        ImportRecord record;
        SetRecordText(record.name, name);
        record.hasAlpha = 1;
        record.storeRgba8888 = 1;
        return record;
    }
    void Send(ImportRecord& record, const CBitmap* picture)
    {
        EXPECT_EQ(
            m_pWindow->Send(0x800A, reinterpret_cast<WPARAM>(picture), reinterpret_cast<LPARAM>(&record)), 0);
    }
    std::wstring Focused() const { return Tree().ItemText(Tree().Caret()); }
    std::uintmax_t TocSize(const char* infix) const
    {
        return std::filesystem::file_size(m_oFolder / (std::string("textures.") + infix + ".toc"));
    }
};

TEST_F(CHostMessages, ImportAPictureAndShowItInTheTree)
{
    Start();
    OpenDatabase(SmallDatabase());
    const CBitmap picture = Picture(0x30);
    ImportRecord record = Record(L"moss");
    record.category = 1;
    Send(record, &picture);
    EXPECT_EQ(record.outcome, ImportOutcome::Imported);
    EXPECT_EQ(TreeLines()[6], L"  moss");
}

TEST_F(CHostMessages, LeaveTheTreeAloneUntilTheSenderRefreshes)
{
    Start();
    OpenDatabase(SmallDatabase());
    const CBitmap picture = Picture(0x30);
    ImportRecord record = Record(L"moss");
    record.noRefresh = 1;
    Send(record, &picture);
    EXPECT_EQ(TreeLines().size(), 8U);
    EXPECT_EQ(m_pWindow->Send(0x800D), 0);
    EXPECT_EQ(TreeLines().size(), 9U);
}

TEST_F(CHostMessages, ResetACacheThatIsNotSaidToBeGiven)
{
    Start();
    OpenDatabase(SmallDatabase());
    const CBitmap picture = Picture(0x30);
    ImportRecord record = Record(L"moss");
    record.targetCache = 2;
    record.cacheGiven = 0;
    const auto dxt = TocSize("dxt");
    const auto unc = TocSize("unc");
    Send(record, &picture);
    EXPECT_EQ(record.targetCache, -1);
    EXPECT_EQ(TocSize("dxt"), dxt + 4);
    EXPECT_EQ(TocSize("unc"), unc + 4);
}

TEST_F(CHostMessages, KeepOneTableInStepWithAnAliasOfAGivenCache)
{
    Start();
    OpenDatabase(SmallDatabase());
    ImportRecord record = Record(L"moss");
    SetRecordText(record.aliasTarget, L"wood");
    record.cacheGiven = 1;
    record.targetCache = 3;
    const auto dxt = TocSize("dxt");
    const auto unc = TocSize("unc");
    Send(record, nullptr);
    EXPECT_EQ(TocSize("dxt"), dxt);
    EXPECT_EQ(TocSize("unc"), unc + 4);
    EXPECT_EQ(TreeLines().size(), 8U) << "there is no new entry";
    record.targetCache = 1;
    Send(record, nullptr);
    EXPECT_EQ(record.outcome, ImportOutcome::Ignored) << "that cache is not open";
}

TEST_F(CHostMessages, CreateAnEntryForAnAliasWithoutACache)
{
    Start();
    OpenDatabase(SmallDatabase());
    ImportRecord record = Record(L"moss");
    SetRecordText(record.aliasTarget, L"wood");
    Send(record, nullptr);
    EXPECT_EQ(record.outcome, ImportOutcome::MadeAlias);
    EXPECT_EQ(TreeLines()[3], L"  moss") << "an alias made so is in the first category";
}

TEST_F(CHostMessages, RefuseRecordsThatCannotBeMeant)
{
    Start();
    OpenDatabase(SmallDatabase());
    ImportRecord nothing = Record(L"moss");
    Send(nothing, nullptr);
    EXPECT_EQ(nothing.outcome, ImportOutcome::Failed) << "neither a picture nor a target";
    const CBitmap picture = Picture(0x30);
    ImportRecord longName = Record(std::wstring(127, L'n'));
    Send(longName, &picture);
    EXPECT_EQ(longName.outcome, ImportOutcome::Failed);
    EXPECT_EQ(Prompt().Shown().back().text, L"Wrong texture name given.");
    ImportRecord slot = Record(L"moss");
    slot.cacheGiven = 1;
    slot.targetCache = 4;
    Send(slot, &picture);
    EXPECT_EQ(slot.outcome, ImportOutcome::Ignored);
    EXPECT_EQ(TreeLines().size(), 8U);
}

TEST_F(CHostMessages, FailWithoutADatabase)
{
    Start();
    const CBitmap picture = Picture(0x30);
    ImportRecord record = Record(L"moss");
    Send(record, &picture);
    EXPECT_EQ(record.outcome, ImportOutcome::Failed);
    EXPECT_EQ(m_pWindow->Send(0x800D), 0);
    EXPECT_EQ(m_pWindow->Send(0x800E, 0, 0), 0);
}

TEST_F(CHostMessages, ShowAPictureUnderItsName)
{
    Start();
    OpenDatabase(SmallDatabase());
    const CBitmap picture = Picture(0x30);
    EXPECT_EQ(m_pWindow->Send(0x800B, reinterpret_cast<WPARAM>(L"tile"), reinterpret_cast<LPARAM>(&picture)),
              0);
    EXPECT_TRUE(Pane(0).starts_with(L"Texture 'tile' rendered within 0.")) << ToUtf8(Pane(0));
    m_pWindow->Send(0x800B, 0, reinterpret_cast<LPARAM>(&picture));
    EXPECT_TRUE(Pane(0).starts_with(L"Texture 'unnamed' rendered within 0.")) << ToUtf8(Pane(0));
    m_pWindow->Send(0x800B, reinterpret_cast<WPARAM>(L"none"), 0);
    EXPECT_TRUE(Pane(0).starts_with(L"Texture 'none' rendered within 0.")) << ToUtf8(Pane(0));
    m_pWindow->Send(0x800B, reinterpret_cast<WPARAM>(L"again"), 0);
    EXPECT_TRUE(Pane(0).starts_with(L"Texture 'none' rendered")) << "nothing is shown already";
}

TEST_F(CHostMessages, SelectAnEntryByItsIndexAndIgnoreOthers)
{
    Start();
    OpenDatabase(SmallDatabase());
    m_pWindow->Send(0x800C, 2);
    EXPECT_EQ(Focused(), L"leaf");
    m_pWindow->Send(0x800C, 5);
    EXPECT_EQ(Focused(), L"leaf") << "as many as there are entries";
}

TEST_F(CHostMessages, DecodeARasterForTheCaller)
{
    Start();
    OpenDatabase(SmallDatabase());
    CWindowEditorHost host(*m_pWindow);
    const auto picture = host.Decode(2, CacheIndex::Unc);
    ASSERT_NE(picture, nullptr);
    EXPECT_EQ(picture->Width(), 16U);
    EXPECT_EQ(picture->Pixels()[0], 0x60);
    EXPECT_EQ(host.Decode(2, CacheIndex::Etc1), nullptr);
    EXPECT_EQ(host.Decode(99, CacheIndex::Unc), nullptr);
    EXPECT_EQ(m_pWindow->Send(0x800E, 2, 7), 0);
}

TEST_F(CHostMessages, AnswerAWorkerThread)
{
    Start();
    OpenDatabase(SmallDatabase());
    CWindowEditorHost host(*m_pWindow);
    std::atomic<bool> isDone = false;
    std::uint32_t width = 0;
    std::thread worker([&] {
        const auto picture = host.Decode(2, CacheIndex::Dxt);
        width = picture ? picture->Width() : 0;
        host.Select(2);
        isDone = true;
    });
    while (!isDone)
        ServePosted();
    worker.join();
    EXPECT_EQ(width, 16U);
    EXPECT_EQ(Focused(), L"leaf");
}

}  // namespace
