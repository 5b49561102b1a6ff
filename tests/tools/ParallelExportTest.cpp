// An export gives the same files, counts and progress whether one thread does everything or several decode
// and encode ahead of the owner.

#include <algorithm>
#include <array>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <mutex>
#include <thread>

#include "tests/codec/TestDatabase.h"
#include "tests/support/DatabaseBuilder.h"
#include "tools/ExportPictures.h"

namespace {

constexpr RasterHeader kPixels = {0, 0x1401, 16, 16};
constexpr RasterHeader kDxt3 = {0, 0x83F2, 4, 4};
constexpr RasterHeader kEtc1 = {0, 0x8D64, 8, 8};
constexpr RasterHeader kPvrtc = {0, 0x8C01, 8, 8};

/// What the decoders below know of each other. A test has it from its fixture, decoders have no other way.
class CDecoders {
public:
    static CDecoders& Instance()
    {
        static CDecoders instance;
        return instance;
    }
    void Reset(int awaited)
    {
        const std::lock_guard lock(m_oMutex);
        m_nAwaited = awaited;
        m_nBegun = m_nNow = m_nMost = 0;
    }
    /// Comes back when as many are at work as are awaited, or after some time.
    void Work()
    {
        std::unique_lock lock(m_oMutex);
        ++m_nBegun;
        m_nMost = std::max(m_nMost, ++m_nNow);
        m_oChanged.notify_all();
        m_oChanged.wait_for(lock, m_oPatience, [this] { return m_nMost >= m_nAwaited; });
        --m_nNow;
    }
    int Begun()
    {
        const std::lock_guard lock(m_oMutex);
        return m_nBegun;
    }
    int Most()
    {
        const std::lock_guard lock(m_oMutex);
        return m_nMost;
    }
    void BePatientFor(std::chrono::milliseconds time) { m_oPatience = time; }

private:
    std::mutex m_oMutex;
    std::condition_variable m_oChanged;
    std::chrono::milliseconds m_oPatience{0};
    int m_nAwaited = 0;
    int m_nBegun = 0;
    int m_nNow = 0;
    int m_nMost = 0;
};

std::uint32_t Decode(const void* source, void* destination, std::uint32_t width, std::uint32_t height,
                     std::uint32_t, std::uint32_t)
{
    CDecoders::Instance().Work();
    std::memset(destination, *static_cast<const unsigned char*>(source), std::size_t{width} * height * 4);
    return width * height * 4;
}

class CNotingProgress final : public IProgress {
public:
    explicit CNotingProgress(std::uint32_t stopAt = UINT32_MAX) : m_nStopAt(stopAt) {}
    void Report(std::uint32_t current, std::uint32_t total, const std::wstring& text) override
    {
        EXPECT_EQ(std::this_thread::get_id(), m_oOwner);
        m_aReports.push_back(std::to_string(current) + "/" + std::to_string(total) + " " + ToUtf8(text));
        m_nCurrent = current;
        m_nMostAhead = std::max(m_nMostAhead, CDecoders::Instance().Begun() - static_cast<int>(current));
    }
    bool Cancelled() const override { return m_nCurrent >= m_nStopAt; }
    const std::vector<std::string>& Reports() const { return m_aReports; }
    int MostAhead() const { return m_nMostAhead; }

private:
    std::thread::id m_oOwner = std::this_thread::get_id();
    std::uint32_t m_nStopAt;
    std::uint32_t m_nCurrent = 0;
    int m_nMostAhead = 0;
    std::vector<std::string> m_aReports;
};

struct Outcome {
    FileBytes files;
    std::array<std::uint32_t, 5> counts{};
    std::wstring firstError;
    std::vector<std::string> progress;

    bool operator==(const Outcome&) const = default;
};

class ParallelExport : public testing::Test {
protected:
    ParallelExport() : m_oDatabase({CacheIndex::Dxt})
    {
        m_oDatabase.Plugins().BindFunctions(CacheIndex::Etc1, nullptr, Decode, CodecThreading::Free);
        m_oDatabase.Plugins().BindFunctions(CacheIndex::Pvrtc, nullptr, Decode, CodecThreading::OneAtATime);
        CDecoders::Instance().Reset(0);
        CDecoders::Instance().BePatientFor(std::chrono::milliseconds(0));
    }

    void Add(const std::wstring& name, const RasterHeader& header, std::uint8_t first = 0)
    {
        std::vector<std::byte> bytes(static_cast<std::size_t>(RasterSize(header)));
        for (std::size_t i = 0; i < bytes.size(); ++i)
            bytes[i] = static_cast<std::byte>(first + i * i / 7);
        m_oDatabase.Add(name, {{CacheIndex::Dxt, {header, bytes}}});
    }

    Outcome Export(unsigned jobs, CNotingProgress progress = CNotingProgress(),
                   const std::function<void(const std::filesystem::path&)>& prepare = {})
    {
        const CTemporaryFolder out;
        if (prepare)
            prepare(out.Path());
        const ExportCounts counts = ExportTextures(*m_oDatabase, m_oDatabase.Plugins(),
                                                   EntriesToExport(*m_oDatabase, std::nullopt, true),
                                                   {.jobs = jobs}, out.Path(), progress);
        m_nMostAhead = progress.MostAhead();
        return {FilesOf(out.Path()),
                {counts.exported, counts.skipped, counts.failed, counts.notSaved, counts.wasStopped},
                counts.firstError,
                progress.Reports()};
    }

    void AddAllKinds()
    {
        for (int round = 0; round < 4; ++round) {
            Add(L"a/b", kPixels, static_cast<std::uint8_t>(round));
            Add(L"a:b", kEtc1, static_cast<std::uint8_t>(7 * round));
            Add(L"strange", kDxt3);
            m_oDatabase.Add(L"empty" + std::to_wstring(round), {});
            m_oDatabase->AddAlias(L"alias" + std::to_wstring(round), L"a/b");
            Add(L"one at a time", kPvrtc, static_cast<std::uint8_t>(round));
        }
    }

    CTestDatabase m_oDatabase;
    int m_nMostAhead = 0;
};

}  // namespace

TEST_F(ParallelExport, GivesTheSameFilesCountsAndProgress)
{
    AddAllKinds();
    const Outcome alone = Export(1);
    EXPECT_EQ(alone.counts, (std::array<std::uint32_t, 5>{16, 4, 4, 0, 0}));
    EXPECT_EQ(alone.firstError, L"This format is unsupported");
    EXPECT_EQ(alone.files.size(), 16U);
    EXPECT_TRUE(alone.files.contains("a_b_8.png"));
    EXPECT_EQ(alone.progress.size(), 25U);
    EXPECT_EQ(alone.progress[1], "1/24 a:b");
    for (const unsigned jobs : {2U, 3U, 16U})
        EXPECT_TRUE(Export(jobs) == alone) << jobs;
}

TEST_F(ParallelExport, StopsAtTheSamePlaceAndWritesEverythingBeforeIt)
{
    AddAllKinds();
    const Outcome alone = Export(1, CNotingProgress(7));
    EXPECT_EQ(alone.counts, (std::array<std::uint32_t, 5>{5, 1, 1, 0, 1}));
    EXPECT_EQ(alone.files.size(), 5U);
    EXPECT_EQ(alone.progress.size(), 8U);
    for (const unsigned jobs : {2U, 16U})
        EXPECT_TRUE(Export(jobs, CNotingProgress(7)) == alone) << jobs;
}

TEST_F(ParallelExport, GoesOnAfterAFileThatCannotBeWritten)
{
    AddAllKinds();
    const auto block = [](const std::filesystem::path& out) {
        std::filesystem::create_directory(out / "a_b_2.png");
    };
    const Outcome alone = Export(1, CNotingProgress(), block);
    EXPECT_EQ(alone.counts, (std::array<std::uint32_t, 5>{15, 4, 4, 1, 0}));
    EXPECT_TRUE(Export(4, CNotingProgress(), block) == alone);
}

TEST_F(ParallelExport, DecodesAsManyAtOnceAsItIsAllowed)
{
    for (int i = 0; i < 8; ++i)
        Add(L"picture" + std::to_wstring(i), kEtc1);
    CDecoders::Instance().BePatientFor(std::chrono::seconds(20));
    CDecoders::Instance().Reset(3);
    EXPECT_EQ(Export(3).counts[0], 8U);
    EXPECT_EQ(CDecoders::Instance().Most(), 3);
}

TEST_F(ParallelExport, NeverEntersACodecTwiceThatDoesNotAllowIt)
{
    for (int i = 0; i < 8; ++i)
        Add(L"picture" + std::to_wstring(i), kPvrtc);
    CDecoders::Instance().BePatientFor(std::chrono::milliseconds(5));
    CDecoders::Instance().Reset(2);
    EXPECT_EQ(Export(4).counts[0], 8U);
    EXPECT_EQ(CDecoders::Instance().Most(), 1);
}

TEST_F(ParallelExport, HoldsOnlyAFewPicturesAThreadInMemory)
{
    for (int i = 0; i < 40; ++i)
        Add(L"picture" + std::to_wstring(i), kEtc1);
    EXPECT_EQ(Export(3).counts[0], 40U);
    EXPECT_LE(m_nMostAhead, 5);
}

TEST_F(ParallelExport, DoesEverythingOnItsOwnThreadWhenThereIsOnePicture)
{
    Add(L"picture", kEtc1);
    CDecoders::Instance().Reset(0);
    const Outcome outcome = Export(16);
    EXPECT_EQ(outcome.counts, (std::array<std::uint32_t, 5>{1, 0, 0, 0, 0}));
    EXPECT_EQ(outcome.files.size(), 1U);
}
