// An import gives the same files, questions and progress whether one thread does everything or several
// prepare the pictures.

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstring>
#include <deque>
#include <fstream>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

#include "image/ImageFile.h"
#include "tests/codec/TestDatabase.h"
#include "tests/support/DatabaseBuilder.h"
#include "tools/ImportPictures.h"

namespace {

std::uint32_t Fill(const void* source, void* destination, std::uint32_t bytes)
{
    std::memset(destination, *static_cast<const unsigned char*>(source), bytes);
    return bytes;
}

std::uint32_t Blocks(std::uint32_t width, std::uint32_t height)
{
    return ((width + 3) / 4) * ((height + 3) / 4);
}

std::uint32_t EncodeDxt(const void* source, void* destination, std::uint32_t width, std::uint32_t height,
                        std::uint32_t, std::uint32_t flags)
{
    return Fill(source, destination, Blocks(width, height) * ((flags & MavrelAlpha) != 0 ? 16 : 8));
}

std::uint32_t EncodeEtc1(const void* source, void* destination, std::uint32_t width, std::uint32_t height,
                         std::uint32_t, std::uint32_t)
{
    return Fill(source, destination, Blocks(width, height) * 8);
}

std::uint32_t EncodePvrtc(const void* source, void* destination, std::uint32_t width, std::uint32_t height,
                          std::uint32_t mode, std::uint32_t)
{
    return Fill(source, destination, std::max(width * height * mode / 8, 32U));
}

std::atomic<int> callsAtOnce = 0;
std::atomic<int> mostCallsAtOnce = 0;

// An encoder that notes whether it is entered twice.
std::uint32_t EncodeDxtAndWatch(const void* source, void* destination, std::uint32_t width,
                                std::uint32_t height, std::uint32_t mode, std::uint32_t flags)
{
    const int now = ++callsAtOnce;
    for (int seen = mostCallsAtOnce; now > seen && !mostCallsAtOnce.compare_exchange_weak(seen, now);) {
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    const std::uint32_t bytes = EncodeDxt(source, destination, width, height, mode, flags);
    --callsAtOnce;
    return bytes;
}

std::uint32_t EncodeDxtSlowly(const void* source, void* destination, std::uint32_t width,
                              std::uint32_t height, std::uint32_t mode, std::uint32_t flags)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    return EncodeDxt(source, destination, width, height, mode, flags);
}

/// Answers from a script, and can do something at each question.
class CActingPrompt final : public IPrompt {
public:
    CActingPrompt(std::deque<PromptAnswer> answers, std::function<void()> act)
        : m_aAnswers(std::move(answers)), m_fnAct(std::move(act))
    {
    }
    PromptAnswer Show(const PromptBox& box) override
    {
        m_aTexts.push_back(ToUtf8(box.text));
        if (m_fnAct)
            m_fnAct();
        if (m_aAnswers.empty())
            return box.buttons == PromptButtons::YesNo ? PromptAnswer::No : PromptAnswer::Cancel;
        const PromptAnswer answer = m_aAnswers.front();
        m_aAnswers.pop_front();
        return answer;
    }
    const std::vector<std::string>& Texts() const { return m_aTexts; }

private:
    std::deque<PromptAnswer> m_aAnswers;
    std::function<void()> m_fnAct;
    std::vector<std::string> m_aTexts;
};

class CCancellingProgress final : public IProgress {
public:
    explicit CCancellingProgress(std::size_t stopAt) : m_nStopAt(stopAt) {}
    void Report(std::uint32_t current, std::uint32_t total, const std::wstring& text) override
    {
        m_aReports.push_back(std::to_string(current) + "/" + std::to_string(total) + " " + ToUtf8(text));
    }
    bool Cancelled() const override { return m_aReports.size() >= m_nStopAt; }
    const std::vector<std::string>& Reports() const { return m_aReports; }

private:
    std::size_t m_nStopAt;
    std::vector<std::string> m_aReports;
};

struct Scenario {
    std::vector<std::string> before;  // imported on one thread first
    std::vector<std::string> files;
    std::deque<PromptAnswer> answers = {};
    ImportRequest request = {.hasAlpha = true, .category = 3};
    ClashAnswer clash = ClashAnswer::Ask;
    StreamMode game = StreamMode::Framed;
    std::size_t cancelAt = SIZE_MAX;
    /// Called at each question.
    std::function<void(CMemorySettings&)> act = {};
};

/// Everything that can be seen of an import.
struct Outcome {
    FileBytes files;
    std::vector<std::string> questions;
    std::vector<std::string> progress;
    std::array<std::uint32_t, 5> counts{};

    bool operator==(const Outcome&) const = default;
};

class ParallelImport : public testing::Test {
protected:
    ParallelImport()
    {
        Picture("wall.png", 64, 1);
        Picture("WALL.bmp", 32, 2);
        Picture("door.png", 128, 3);
        Picture("copy of wall.png", 64, 1);
        Picture("roof.png", 16, 4);
        Picture("ROOF.bmp", 64, 1);
        Picture("grass.png", 8, 5);
        Picture("strange.png", 100, 6);
        Picture(".png", 8, 7);
        Picture(std::string(64, 'n') + ".png", 8, 8);
        Picture("window.png", 64, 9);
        Picture("last.png", 256, 10);
        std::ofstream(m_oFolder / "text.png") << "no picture";
    }

    void Picture(const std::string& name, std::uint32_t side, std::uint8_t seed)
    {
        auto picture = CBitmap::Create(side, side);
        ASSERT_TRUE(picture);
        std::uint32_t state = seed;
        for (std::uint8_t& byte : picture->Pixels()) {
            state = state * 1664525 + 1013904223;
            byte = static_cast<std::uint8_t>(state >> 24);
        }
        const auto format = name.ends_with(".bmp") ? ImageFormat::Bmp : ImageFormat::Png;
        ASSERT_TRUE(SaveImageFile(m_oFolder / name, *picture, format));
    }

    std::vector<std::filesystem::path> Paths(const std::vector<std::string>& names) const
    {
        std::vector<std::filesystem::path> paths;
        for (const std::string& name : names)
            paths.push_back(m_oFolder / name);
        return paths;
    }

    Outcome RunWith(const Scenario& scenario, unsigned jobs)
    {
        CTemporaryFolder folder;
        CMemorySettings settings;
        settings.WriteInt(L"global", L"hash_png", 1);
        CActingPrompt prompt(scenario.answers, [&] {
            if (scenario.act)
                scenario.act(settings);
        });
        CCancellingProgress progress(scenario.cancelAt);
        ImportCounts counts;
        {
            CTextureDatabase database(scenario.game, DiskFileSystem(), prompt);
            EXPECT_TRUE(database.Create(folder / "list.txt", kAllCaches));
            CNoProgress none;
            CPictureImporter(database, m_oPlugins, settings, prompt, none, {.jobs = 1})
                .Run(Paths(scenario.before), {.hasAlpha = true});
            counts = CPictureImporter(database, m_oPlugins, settings, prompt, progress, {.jobs = jobs})
                         .Run(Paths(scenario.files), scenario.request, scenario.clash);
        }
        return {FilesOf(folder.Path()),
                prompt.Texts(),
                progress.Reports(),
                {counts.imported, counts.aliased, counts.skipped, counts.failed, counts.wasStopped}};
    }

    /// The outcome with one thread, after comparing it with that of several.
    Outcome SameWithAnyNumberOfThreads(const Scenario& scenario)
    {
        m_oPlugins.BindFunctions(CacheIndex::Dxt, EncodeDxt, nullptr, CodecThreading::Free);
        m_oPlugins.BindFunctions(CacheIndex::Etc1, EncodeEtc1, nullptr);
        m_oPlugins.BindFunctions(CacheIndex::Pvrtc, EncodePvrtc, nullptr, CodecThreading::Free);
        const Outcome alone = RunWith(scenario, 1);
        for (const unsigned jobs : {2U, 3U, 16U}) {
            const Outcome together = RunWith(scenario, jobs);
            EXPECT_EQ(together.counts, alone.counts) << jobs;
            EXPECT_EQ(together.questions, alone.questions) << jobs;
            EXPECT_EQ(together.progress, alone.progress) << jobs;
            for (const auto& [name, bytes] : alone.files)
                EXPECT_TRUE(together.files.contains(name) && together.files.at(name) == bytes)
                    << name << " with " << jobs;
            EXPECT_EQ(together.files.size(), alone.files.size()) << jobs;
        }
        return alone;
    }

    const std::vector<std::string> m_aAll = {"wall.png",
                                             "door.png",
                                             "copy of wall.png",
                                             "WALL.bmp",
                                             "roof.png",
                                             "text.png",
                                             "ROOF.bmp",
                                             "strange.png",
                                             ".png",
                                             "grass.png",
                                             std::string(64, 'n') + ".png",
                                             "missing.png",
                                             "window.png",
                                             "last.png"};
    CTemporaryFolder m_oFolder;
    CPluginTable m_oPlugins;
};

constexpr auto kYes = PromptAnswer::Yes;
constexpr auto kNo = PromptAnswer::No;

}  // namespace

TEST_F(ParallelImport, GivesTheSameFilesWithClashesDuplicatesAndFailures)
{
    // Replace "wall" and ask again, go on after "text", skip "ROOF", go on after everything else that fails.
    const Outcome outcome = SameWithAnyNumberOfThreads(
        {.before = {}, .files = m_aAll, .answers = {kYes, kNo, kYes, kNo, kYes, kYes, kYes, kYes}});
    EXPECT_EQ(outcome.counts, (std::array<std::uint32_t, 5>{7, 1, 1, 5, 0}));
    EXPECT_EQ(outcome.questions.size(), 8U);
}

TEST_F(ParallelImport, GivesTheSameFilesWithoutAlpha)
{
    SameWithAnyNumberOfThreads({.before = {},
                                .files = {"wall.png", "door.png", "copy of wall.png", "roof.png", "last.png"},
                                .request = {.hasAlpha = false}});
}

TEST_F(ParallelImport, GivesTheSameFilesInOneForcedFormat)
{
    for (const CacheIndex format : kAllCaches)
        SameWithAnyNumberOfThreads(
            {.before = {}, .files = {"wall.png", "door.png", "roof.png"}, .request = {.format = format}});
    SameWithAnyNumberOfThreads(
        {.before = {}, .files = {"wall.png", "door.png"}, .request = {.storeRgba8888 = true}});
}

TEST_F(ParallelImport, ReplacesEveryTextureInTheSameWay)
{
    const std::vector<std::string> some = {"wall.png", "door.png", "copy of wall.png", "roof.png",
                                           "grass.png"};
    const Outcome outcome = SameWithAnyNumberOfThreads(
        {.before = some,
         .files = {"WALL.bmp", "door.png", "ROOF.bmp", "copy of wall.png", "window.png"},
         .clash = ClashAnswer::Replace});
    EXPECT_EQ(outcome.counts[0] + outcome.counts[1], 5U);
}

TEST_F(ParallelImport, SkipsEveryTextureThatIsThere)
{
    const Outcome outcome = SameWithAnyNumberOfThreads(
        {.before = {"wall.png", "roof.png", "grass.png"},
         .files = {"WALL.bmp", "door.png", "roof.png", "ROOF.bmp", "window.png", "grass.png", "last.png"},
         .clash = ClashAnswer::Skip});
    EXPECT_EQ(outcome.counts, (std::array<std::uint32_t, 5>{3, 0, 4, 0, 0}));
}

TEST_F(ParallelImport, StopsAtTheSamePlace)
{
    const Outcome cancelled = SameWithAnyNumberOfThreads(
        {.before = {}, .files = {"wall.png", "door.png", "roof.png", "last.png"}, .cancelAt = 3});
    EXPECT_EQ(cancelled.counts, (std::array<std::uint32_t, 5>{2, 0, 0, 0, 1}));
    const Outcome afterFailure = SameWithAnyNumberOfThreads(
        {.before = {}, .files = {"wall.png", "text.png", "roof.png", "last.png"}, .answers = {kNo}});
    EXPECT_EQ(afterFailure.counts, (std::array<std::uint32_t, 5>{1, 0, 0, 1, 1}));
    const Outcome atAClash = SameWithAnyNumberOfThreads({.before = {"roof.png"},
                                                         .files = {"wall.png", "ROOF.bmp", "last.png"},
                                                         .answers = {PromptAnswer::Cancel}});
    EXPECT_EQ(atAClash.counts, (std::array<std::uint32_t, 5>{1, 0, 0, 0, 1}));
}

TEST_F(ParallelImport, AsksForTheGameOnceAndFramesEveryPictureByTheAnswer)
{
    for (const PromptAnswer answer : {PromptAnswer::Yes, PromptAnswer::No, PromptAnswer::Cancel})
        SameWithAnyNumberOfThreads({.before = {},
                                    .files = {"wall.png", "door.png", "roof.png", "grass.png", "last.png"},
                                    .answers = {answer},
                                    .game = StreamMode::Auto});
}

TEST_F(ParallelImport, FollowsSettingsThatChangeDuringTheRun)
{
    // A person can do much while a question is open. Pictures prepared before are prepared anew.
    const Outcome outcome = SameWithAnyNumberOfThreads(
        {.before = {"wall.png"},
         .files = {"door.png", "WALL.bmp", "roof.png", "grass.png", "last.png", "window.png"},
         .answers = {kNo},
         .act = [](CMemorySettings& settings) {
             settings.WriteInt(L"global", L"enable_mipmaps", 0);
             settings.WriteInt(L"global", L"thumb_size", 4);
             settings.WriteInt(L"global", L"enable_compression", 0);
             settings.WriteInt(L"global", L"hash_png", 0);
             settings.WriteInt(L"global", L"enable_rle_compression", 0);
         }});
    EXPECT_EQ(outcome.counts, (std::array<std::uint32_t, 5>{5, 0, 1, 0, 0}));
}

TEST_F(ParallelImport, NeverEntersACodecTwiceThatDoesNotAllowIt)
{
    mostCallsAtOnce = 0;
    m_oPlugins.BindFunctions(CacheIndex::Dxt, EncodeDxtAndWatch, nullptr);
    const Scenario scenario = {.before = {},
                               .files = {"wall.png", "door.png", "roof.png", "window.png", "grass.png"}};
    EXPECT_EQ(RunWith(scenario, 4).counts[0], 5U);
    EXPECT_EQ(mostCallsAtOnce, 1);
}

TEST_F(ParallelImport, EntersACodecOnSeveralThreadsThatAllowsIt)
{
    mostCallsAtOnce = 0;
    m_oPlugins.BindFunctions(CacheIndex::Dxt, EncodeDxtAndWatch, nullptr, CodecThreading::Free);
    const Scenario scenario = {.before = {},
                               .files = {"wall.png", "door.png", "roof.png", "window.png", "grass.png"}};
    EXPECT_EQ(RunWith(scenario, 4).counts[0], 5U);
    EXPECT_GT(mostCallsAtOnce, 1);
}

TEST_F(ParallelImport, LetsAWindowPaintWhileItWaits)
{
    m_oPlugins.BindFunctions(CacheIndex::Dxt, EncodeDxtSlowly, nullptr);
    CTestDatabase database({CacheIndex::Dxt}, StreamMode::Framed);
    CNoProgress progress;
    int calls = 0;
    const auto own = std::this_thread::get_id();
    CPictureImporter importer(*database, m_oPlugins, database.Settings(), database.Prompt(), progress,
                              {.jobs = 2, .whileWaiting = [&calls, own] {
                                   EXPECT_EQ(std::this_thread::get_id(), own);
                                   ++calls;
                               }});
    EXPECT_EQ(importer.Run(Paths({"wall.png", "door.png"}), {.hasAlpha = true}).imported, 2U);
    EXPECT_GT(calls, 0);
}
