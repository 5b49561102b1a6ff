// The converter against the same work done one step after the other through the editor's own import and
// decode requests, and everything that it asks, refuses and leaves behind.

#include "tools/Converter.h"

#include <atomic>
#include <condition_variable>
#include <cstring>
#include <deque>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <mutex>
#include <random>
#include <thread>

#include "codec/RasterFormat.h"
#include "image/Hash.h"
#include "tests/codec/MemorySettings.h"
#include "tests/support/DatabaseBuilder.h"
#include "tests/support/FaultyFileSystem.h"
#include "tests/support/ScriptedPrompt.h"
#include "tests/support/TemporaryFolder.h"
#include "tools/DirectHost.h"
#include "tools/ImportRules.h"

namespace {

// Codecs whose output depends on every picture in its own way, in place of real ones.

std::uint32_t BlocksOf(std::uint32_t width, std::uint32_t height)
{
    return ((width + 3) / 4) * ((height + 3) / 4);
}

std::uint32_t Mix(const void* source, std::uint32_t sourceBytes, void* destination, std::uint32_t bytes)
{
    const auto* const from = static_cast<const unsigned char*>(source);
    auto* const to = static_cast<unsigned char*>(destination);
    for (std::uint32_t at = 0; at < bytes; ++at)
        to[at] = static_cast<unsigned char>(from[at % sourceBytes] + from[at * 7 % sourceBytes]);
    return bytes;
}

template <std::uint32_t WithAlpha, std::uint32_t Without>
std::uint32_t EncodeBlocks(const void* source, void* destination, std::uint32_t width, std::uint32_t height,
                           std::uint32_t, std::uint32_t flags)
{
    const std::uint32_t blockBytes = (flags & MavrelAlpha) != 0 ? WithAlpha : Without;
    return Mix(source, width * height * 4, destination, BlocksOf(width, height) * blockBytes);
}

std::uint32_t DecodeDxt(const void* source, void* destination, std::uint32_t width, std::uint32_t height,
                        std::uint32_t, std::uint32_t flags)
{
    const std::uint32_t blockBytes = (flags & MavrelInterpolatedAlpha) != 0 ? 16 : 8;
    return Mix(source, BlocksOf(width, height) * blockBytes, destination, width * height * 4);
}

std::uint32_t DecodeEtc1(const void* source, void* destination, std::uint32_t width, std::uint32_t height,
                         std::uint32_t, std::uint32_t)
{
    return Mix(source, BlocksOf(width, height) * 8, destination, width * height * 4);
}

std::uint32_t EncodePvrtc(const void* source, void* destination, std::uint32_t width, std::uint32_t height,
                          std::uint32_t mode, std::uint32_t)
{
    return Mix(source, width * height * 4, destination, std::max(width * height * mode / 8, 32U));
}

std::uint32_t DecodePvrtc(const void* source, void* destination, std::uint32_t width, std::uint32_t height,
                          std::uint32_t mode, std::uint32_t)
{
    const std::uint32_t bytes = std::max(width, mode == 2 ? 16U : 8U) * std::max(height, 8U) * mode / 8;
    return Mix(source, bytes, destination, width * height * 4);
}

std::atomic<int> callsAtOnce = 0;
std::atomic<int> mostCallsAtOnce = 0;

std::uint32_t EncodeAndWatch(const void* source, void* destination, std::uint32_t width, std::uint32_t height,
                             std::uint32_t mode, std::uint32_t flags)
{
    const int now = ++callsAtOnce;
    for (int seen = mostCallsAtOnce; now > seen && !mostCallsAtOnce.compare_exchange_weak(seen, now);) {
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
    const auto bytes = EncodeBlocks<8, 8>(source, destination, width, height, mode, flags);
    --callsAtOnce;
    return bytes;
}

/// Writes down what is reported, and asks to stop at one of the reports.
class CNotedProgress final : public IProgress {
public:
    explicit CNotedProgress(std::size_t stopAt = SIZE_MAX) : m_nStopAt(stopAt) {}
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

/// A thread that runs the steps of others, as a window's thread does.
class COwnerThread {
public:
    COwnerThread() : m_oThread([this] { Serve(); }) {}
    ~COwnerThread()
    {
        Post({});
        m_oThread.join();
    }
    COwnerThread(const COwnerThread&) = delete;
    COwnerThread& operator=(const COwnerThread&) = delete;

    void Run(const std::function<void()>& step)
    {
        bool isDone = false;
        Post([&] {
            step();
            const std::lock_guard lock(m_oMutex);
            isDone = true;
            m_oDone.notify_all();
        });
        std::unique_lock lock(m_oMutex);
        m_oDone.wait(lock, [&] { return isDone; });
    }
    std::thread::id Id() const { return m_oThread.get_id(); }

private:
    void Post(std::function<void()> step)
    {
        const std::lock_guard lock(m_oMutex);
        m_aSteps.push_back(std::move(step));
        m_oGiven.notify_all();
    }
    void Serve()
    {
        for (;;) {
            std::unique_lock lock(m_oMutex);
            m_oGiven.wait(lock, [this] { return !m_aSteps.empty(); });
            const auto step = std::move(m_aSteps.front());
            m_aSteps.pop_front();
            lock.unlock();
            if (!step)
                return;
            step();
        }
    }

    std::mutex m_oMutex;
    std::condition_variable m_oGiven;
    std::condition_variable m_oDone;
    std::deque<std::function<void()>> m_aSteps;
    std::thread m_oThread;
};

BuiltRaster Raster(std::uint16_t glFormat, std::uint16_t width, std::uint16_t height, bool mips,
                   std::uint32_t seed)
{
    BuiltRaster raster{.glFormat = glFormat,
                       .width = width,
                       .heightAndMips = static_cast<std::uint16_t>(height | (mips ? 0x8000 : 0)),
                       .pixels = {}};
    std::minstd_rand random(seed + 1);
    const RasterHeader header{
        .nameHash16 = 0, .glFormat = glFormat, .width = width, .heightAndMips = raster.heightAndMips};
    raster.pixels.resize(static_cast<std::size_t>(RasterSize(header)));
    // Few different values, so that run-length coding finds something.
    for (std::byte& byte : raster.pixels)
        byte = static_cast<std::byte>(random() % 5 * 50 + 3);
    return raster;
}

BuiltRaster Thumbnail()
{
    return Raster(0x1401, 1, 1, false, 9);
}

/// Textures of every format and several sizes, some that cannot be decoded or stored, and aliases.
CDatabaseBuilder RandomDatabase(bool framed, const std::string& source, const std::string& target,
                                std::uint32_t seed)
{
    constexpr std::array<std::uint16_t, 14> kFormats = {0x1401, 0x8033, 0x8034, 0x8363, 0x190A,
                                                        0x1909, 0x83F0, 0x83F1, 0x83F2, 0x83F3,
                                                        0x8D64, 0x8C01, 0x8C02, 0x1234};
    constexpr std::array<std::pair<std::uint16_t, std::uint16_t>, 8> kSizes = {
        {{8, 8}, {16, 16}, {32, 8}, {4, 32}, {32, 32}, {1, 1}, {64, 192}, {20, 20}}};
    std::minstd_rand random(seed);
    CDatabaseBuilder builder(framed);
    builder.Category("cat=0 name=Default defaultformat=7").Cache(source);
    builder.Alias("early", "first");
    builder.Texture("first").Raster(source, Raster(0x1401, 8, 8, true, seed)).Thumbnail(source, Thumbnail());
    if (!target.empty())
        builder.Raster(target, Raster(0x1401, 4, 4, false, 1)).Thumbnail(target, Thumbnail());
    for (unsigned i = 0; i < 16; ++i) {
        if (random() % 6 == 0) {
            builder.Alias("alias" + std::to_string(i), random() % 3 == 0 ? "nothing" : "first");
            continue;
        }
        const auto [width, height] = kSizes[random() % kSizes.size()];
        builder.Texture("texture" + std::to_string(i),
                        random() % 2 == 0 ? " width=4 height=4" : " width=4 height=4 alphamode=2");
        if (random() % 12 != 0)
            builder
                .Raster(source, Raster(kFormats[random() % kFormats.size()], width, height, random() % 2 == 0,
                                       static_cast<std::uint32_t>(random())))
                .Thumbnail(source, Thumbnail());
        if (!target.empty())
            builder.Raster(target, Raster(0x1401, 4, 4, false, i)).Thumbnail(target, Thumbnail());
    }
    return builder;
}

class Converter : public testing::Test {
protected:
    Converter()
    {
        m_oPlugins.BindFunctions(CacheIndex::Dxt, EncodeBlocks<16, 8>, DecodeDxt, CodecThreading::Free);
        m_oPlugins.BindFunctions(CacheIndex::Etc1, EncodeBlocks<8, 8>, DecodeEtc1);
        m_oPlugins.BindFunctions(CacheIndex::Pvrtc, EncodePvrtc, DecodePvrtc, CodecThreading::Free);
    }

    /// The files by name, with those that the work made or changed.
    FileBytes FilesAfter(const FileBytes& files, const std::function<void(CTextureDatabase&)>& work,
                         StreamMode forced = StreamMode::Auto)
    {
        CTemporaryFolder folder;
        WriteFiles(folder.Path(), files);
        {
            CTextureDatabase database(forced, DiskFileSystem(), *m_pPrompt);
            database.Open(folder / "textures.txt");
            work(database);
        }
        return FilesOf(folder.Path());
    }

    void Answer(std::deque<PromptAnswer> answers)
    {
        m_pPrompt = std::make_unique<CScriptedPrompt>(std::move(answers));
    }
    ConverterParts Parts(CTextureDatabase& database)
    {
        return {database, m_oPlugins, m_oSettings, *m_pPrompt, m_oProgress};
    }

    FileBytes Converted(const FileBytes& files, const ConversionRequest& request, unsigned jobs = 1)
    {
        return FilesAfter(files, [&](CTextureDatabase& database) {
            m_oCounts = CConverter(Parts(database), {.jobs = jobs}).Run(request);
        });
    }

    /// The conversion as the editor's own requests do it, one after the other.
    FileBytes ConvertedStepByStep(FileBytes files, const ConversionRequest& request)
    {
        const std::string stem = "textures." + ToUtf8(CacheInfix(request.target));
        files.erase(stem + ".toc");
        files[stem + ".dat"] = {};
        files[stem + ".tmb"] = {};
        std::vector<std::uint32_t> words;
        m_oReference = {};
        FileBytes after = FilesAfter(files, [&](CTextureDatabase& database) {
            CDirectHost host(CHostOperations(database, m_oPlugins, m_oSettings, *m_pPrompt));
            for (std::uint32_t i = 0; i < database.EntryCount(); ++i)
                words.push_back(ImportOne(database, host, i, request));
            words.insert(words.begin(),
                         static_cast<std::uint32_t>(database.FileSize(request.target, RecordKind::Raster)));
        });
        auto& table = after[stem + ".toc"];
        for (const std::uint32_t word : words)
            for (int shift = 0; shift < 32; shift += 8)
                table.push_back(static_cast<std::byte>(word >> shift));
        return after;
    }

    std::uint32_t ImportOne(CTextureDatabase& database, IEditorHost& host, std::uint32_t index,
                            const ConversionRequest& request)
    {
        if (database.IsAlias(index)) {
            ++m_oReference.aliases;
            return 0xFFFFFFFF;
        }
        const TextureEntry entry = database.ResolvedEntry(index);
        const bool isRgba8888 = entry.rasterHeader[SlotOf(request.source)].glFormat == 0x1401;
        ImportRecord record;
        SetRecordText(record.name, entry.name);
        record.hasAlpha = isRgba8888 || entry.Value(Property::AlphaMode) != 0 ? 1 : 0;
        record.storeRgba8888 = isRgba8888 ? 1 : 0;
        record.noRefresh = 1;
        record.cacheGiven = 1;
        record.targetCache = static_cast<std::int32_t>(request.target);
        const auto place = static_cast<std::uint32_t>(database.FileSize(request.target, RecordKind::Raster));
        const auto picture = host.Decode(index, request.source);
        if (picture)
            host.Import(picture.get(), record);
        if (record.outcome == ImportOutcome::Imported) {
            ++m_oReference.converted;
            return place;
        }
        ++m_oReference.failed;
        if (m_oSettings.ReadInt(L"global", L"thumb_size", 8) != 0)
            AppendGreyThumbnail(database, entry.name, request.target);
        return 0xFFFFFFFF;
    }

    static void AppendGreyThumbnail(CTextureDatabase& database, const std::wstring& name, CacheIndex cache)
    {
        const std::vector<std::byte> grey(4, std::byte{0x88});
        const auto hash16 = static_cast<std::uint16_t>(NameHash(name));
        database.AppendRecord(cache, RecordKind::Thumbnail,
                              {.header = {hash16, 0x1401, 1, 1},
                               .bytes = grey,
                               .mode = GameOfDatabase(database).value_or(StreamMode::Raw)});
    }

    void ExpectTheSameAsStepByStep(const FileBytes& files, const ConversionRequest& request, unsigned jobs)
    {
        const FileBytes wanted = ConvertedStepByStep(files, request);
        const FileBytes got = Converted(files, request, jobs);
        EXPECT_EQ(got.size(), wanted.size());
        for (const auto& [name, bytes] : wanted)
            EXPECT_TRUE(got.contains(name) && got.at(name) == bytes) << name;
        EXPECT_EQ(m_oCounts.converted, m_oReference.converted);
        EXPECT_EQ(m_oCounts.aliases, m_oReference.aliases);
        EXPECT_EQ(m_oCounts.failed, m_oReference.failed);
        EXPECT_FALSE(m_oCounts.wasStopped);
    }

    /// Checks without converting; the files are as before.
    ConversionCheck Checked(const FileBytes& files, const ConversionRequest& request)
    {
        ConversionCheck check = ConversionCheck::Ready;
        const FileBytes after = FilesAfter(
            files, [&](CTextureDatabase& database) { check = CConverter(Parts(database)).Check(request); });
        EXPECT_EQ(after, files);
        return check;
    }

    static CDatabaseBuilder TwoTextures()
    {
        CDatabaseBuilder builder;
        builder.Texture("wood").Picture("dxt", 0x22).Alias("bark", "wood");
        builder.Texture("sand").Picture("dxt", 0x33);
        return builder;
    }

    std::vector<std::uint32_t> Table(const FileBytes& files, const std::string& name) const
    {
        const auto& bytes = files.at(name);
        std::vector<std::uint32_t> words(bytes.size() / 4);
        for (std::size_t at = 0; at < words.size() * 4; ++at)
            words[at / 4] |= std::to_integer<std::uint32_t>(bytes[at]) << (at % 4 * 8);
        return words;
    }

    CPluginTable m_oPlugins;
    CMemorySettings m_oSettings;
    std::unique_ptr<CScriptedPrompt> m_pPrompt = std::make_unique<CScriptedPrompt>();
    CNotedProgress m_oProgress;
    ConversionCounts m_oCounts;
    ConversionCounts m_oReference;
};

constexpr ConversionRequest kDxtToEtc = {CacheIndex::Dxt, CacheIndex::Etc1};
constexpr ConversionRequest kDxtToUnc = {CacheIndex::Dxt, CacheIndex::Unc};
constexpr ConversionRequest kEtcToDxt = {CacheIndex::Etc1, CacheIndex::Dxt};

}  // namespace

// ---- The files ----

TEST_F(Converter, WritesTheFilesOfTheSingleStepsBetweenAnyTwoCaches)
{
    std::uint32_t seed = 1;
    for (const CacheIndex source : kAllCaches)
        for (const CacheIndex target : kAllCaches) {
            if (source == target)
                continue;
            ++seed;
            const std::string infix = seed % 2 == 0 ? ToUtf8(CacheInfix(target)) : std::string();
            SCOPED_TRACE(testing::Message() << SlotOf(source) << " to " << SlotOf(target));
            const auto builder = RandomDatabase(seed % 4 < 2, ToUtf8(CacheInfix(source)), infix, seed);
            ExpectTheSameAsStepByStep(builder.Files("textures"), {source, target}, 2);
            EXPECT_GT(m_oCounts.converted, 2U);
        }
}

TEST_F(Converter, WritesTheSameFilesWithAnyNumberOfThreads)
{
    const auto files = RandomDatabase(true, "dxt", "etc", 77).Files("textures");
    const FileBytes alone = Converted(files, kDxtToEtc, 1);
    const std::vector<std::string> reports = m_oProgress.Reports();
    for (const unsigned jobs : {2U, 3U, 16U}) {
        const auto before = m_oProgress.Reports().size();
        EXPECT_EQ(Converted(files, kDxtToEtc, jobs), alone) << jobs;
        const auto& all = m_oProgress.Reports();
        EXPECT_EQ(std::vector(all.begin() + static_cast<std::ptrdiff_t>(before), all.end()), reports) << jobs;
    }
}

TEST_F(Converter, FollowsTheSettings)
{
    const auto files = RandomDatabase(true, "dxt", {}, 5).Files("textures");
    const auto with = [&](const wchar_t* section, const wchar_t* key, int value) {
        SCOPED_TRACE(ToUtf8(key));
        m_oSettings.WriteInt(section, key, value);
        ExpectTheSameAsStepByStep(files, kDxtToEtc, 2);
        m_oSettings.Delete(section, key);
    };
    with(L"global", L"enable_mipmaps", 0);
    with(L"global", L"thumb_size", 0);
    with(L"global", L"thumb_size", 4);
    with(L"global", L"enable_rle_compression", 0);
    with(L"global", L"enable_compression", 0);
    with(L"ETC1", L"quality", 3);
}

TEST_F(Converter, LetsNeitherTheListNorTheCategoryChooseTheForm)
{
    // The category asks for DXT, and so does the rule of the list.
    m_oSettings.WriteString(L"rules", L"textures.txt", L"dxt");
    CDatabaseBuilder builder;
    builder.Category("cat=0 name=Default defaultformat=7");
    builder.Texture("wood").Raster("dxt", Raster(0x83F0, 8, 8, false, 1));
    const auto files = Converted(builder.Files("textures"), kDxtToEtc);
    EXPECT_EQ(files.at("textures.etc.dat")[2], std::byte{0x64}) << "ETC1 is 0x8D64";
    ExpectTheSameAsStepByStep(builder.Files("textures"), kDxtToEtc, 1);
}

TEST_F(Converter, AddsExactlyFourBytesForEveryAlias)
{
    m_oSettings.WriteInt(L"global", L"enable_mipmaps", 0);
    const auto files = Converted(TwoTextures().Files("textures"), kDxtToEtc);
    EXPECT_EQ(Table(files, "textures.etc.toc"), (std::vector<std::uint32_t>{144, 0, 0xFFFFFFFF, 72}));
    EXPECT_EQ(files.at("textures.etc.dat").size(), 144U) << "two uncompressed records of 4x4 pixels";
    EXPECT_EQ(m_oCounts.converted, 2U);
    EXPECT_EQ(m_oCounts.aliases, 1U);
    EXPECT_EQ(m_oCounts.failed, 0U);
    EXPECT_EQ(ConversionFailureText(m_oCounts), L"");
}

TEST_F(Converter, KeepsPixelsAndAlphaOfUncompressedTextures)
{
    m_oSettings.WriteInt(L"global", L"enable_mipmaps", 0);
    CDatabaseBuilder builder;
    builder.Texture("glass").Raster("unc", Raster(0x1401, 8, 8, false, 3));
    const auto before = builder.Files("textures");
    const auto after = Converted(before, {CacheIndex::Unc, CacheIndex::Pvrtc});
    EXPECT_EQ(after.at("textures.pvr.dat"), before.at("textures.unc.dat"));
}

TEST_F(Converter, GivesTexturesWithAnAlphaModeTheirAlphaChannel)
{
    CDatabaseBuilder builder;
    builder.Texture("fog", " width=8 height=8 alphamode=1").Raster("unc", Raster(0x8033, 8, 8, false, 3));
    builder.Texture("wall", " width=8 height=8").Raster("unc", Raster(0x8033, 8, 8, false, 3));
    m_oSettings.WriteInt(L"global", L"enable_mipmaps", 0);
    const auto after = Converted(builder.Files("textures"), {CacheIndex::Unc, CacheIndex::Dxt});
    const auto& dat = after.at("textures.dxt.dat");
    EXPECT_EQ(dat[2], std::byte{0xF3}) << "DXT5";
    EXPECT_EQ(dat[8 + 64 + 2], std::byte{0xF0}) << "DXT1";
}

TEST_F(Converter, LeavesTheSquaresOfPvrtcAsTheyAre)
{
    m_oSettings.WriteInt(L"global", L"enable_mipmaps", 0);
    CDatabaseBuilder builder;
    builder.Texture("flag", " width=16 height=8").Raster("pvr", Raster(0x8C01, 16, 16, false, 3));
    const auto before = builder.Files("textures");
    const auto after = Converted(before, {CacheIndex::Pvrtc, CacheIndex::Dxt});
    EXPECT_EQ(after.at("textures.dxt.dat")[4], std::byte{16});
    EXPECT_EQ(after.at("textures.dxt.dat")[6], std::byte{16});
    EXPECT_EQ(after.at("textures.txt"), before.at("textures.txt")) << "the entry keeps its 16 x 8";
    ExpectTheSameAsStepByStep(before, {CacheIndex::Pvrtc, CacheIndex::Dxt}, 1);
}

TEST_F(Converter, StoresSidesThatAreNoPowersOfTwoUncompressed)
{
    CDatabaseBuilder builder;
    builder.Texture("sign").Raster("unc", Raster(0x8363, 64, 192, false, 3));
    const auto after = Converted(builder.Files("textures"), {CacheIndex::Unc, CacheIndex::Dxt});
    const auto& dat = after.at("textures.dxt.dat");
    EXPECT_EQ(dat.size(), 8U + 64 * 192 * 2);
    EXPECT_EQ(dat[2], std::byte{0x63}) << "RGBA 565 is 0x8363";
    EXPECT_EQ(dat[7], std::byte{0}) << "no levels";
    EXPECT_EQ(m_oCounts.converted, 1U);
}

TEST_F(Converter, LeavesAPlaceForEveryTextureThatFails)
{
    m_oSettings.WriteInt(L"global", L"thumb_size", 2);
    m_oSettings.WriteInt(L"global", L"enable_mipmaps", 0);
    CDatabaseBuilder builder;
    builder.Texture("good").Picture("dxt", 0x22);
    builder.Texture("odd").Raster("dxt", Raster(0x1401, 20, 20, false, 1)).Thumbnail("dxt", Thumbnail());
    builder.Texture("unknown").Raster("dxt", Raster(0x83F2, 8, 8, false, 1)).Thumbnail("dxt", Thumbnail());
    builder.Texture("absent");
    builder.Texture("last").Picture("dxt", 0x44);
    const auto after = Converted(builder.Files("textures"), kDxtToEtc);
    EXPECT_EQ(Table(after, "textures.etc.toc"),
              (std::vector<std::uint32_t>{144, 0, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 72}));
    EXPECT_EQ(after.at("textures.etc.tmb").size(), 2U * (8 + 16) + 3 * (8 + 4)) << "one for every texture";
    EXPECT_EQ(m_oCounts.failed, 3U);
    EXPECT_EQ(ConversionFailureText(m_oCounts),
              L"3 textures could not be converted.\n\nWrong texture dimensions given.");
}

TEST_F(Converter, ConvertsAnEmptyDatabase)
{
    CDatabaseBuilder builder;
    builder.Cache("dxt");
    const auto after = Converted(builder.Files("textures"), kDxtToEtc);
    EXPECT_EQ(Table(after, "textures.etc.toc"), (std::vector<std::uint32_t>{0}));
    EXPECT_TRUE(after.at("textures.etc.dat").empty());
    EXPECT_TRUE(after.at("textures.etc.tmb").empty());
}

TEST_F(Converter, TakesTheGameOfTheTargetThatItReplaces)
{
    CDatabaseBuilder raw(false);
    raw.Texture("wood").Picture("etc", 0x22);
    CDatabaseBuilder framed(true);
    framed.Texture("wood").Picture("dxt", 0x22);
    FileBytes files = raw.Files("textures");
    files.merge(framed.Files("textures"));
    m_oSettings.WriteInt(L"global", L"enable_mipmaps", 0);
    m_oSettings.WriteInt(L"global", L"enable_rle_compression", 0);
    const auto after = Converted(files, kEtcToDxt);
    EXPECT_EQ(after.at("textures.dxt.dat").size(), 8U + 4 + 4 + 64) << "framed as the old records were";
}

TEST_F(Converter, OpensTheTargetForTheDatabase)
{
    FilesAfter(TwoTextures().Files("textures"), [&](CTextureDatabase& database) {
        CConverter(Parts(database), {.jobs = 2}).Run(kDxtToUnc);
        EXPECT_TRUE(database.IsOpen(CacheIndex::Unc));
        EXPECT_TRUE(database.IsTocValid(CacheIndex::Unc));
        EXPECT_TRUE(database.HasThumbnails(CacheIndex::Unc));
        EXPECT_EQ(database.ResolvedEntry(1).rasterHeader[SlotOf(CacheIndex::Unc)].glFormat, 0x1401)
            << "the alias finds its target's record";
        // And back, which replaces what is open.
        CConverter(Parts(database), {.jobs = 2}).Run({CacheIndex::Unc, CacheIndex::Dxt});
        EXPECT_TRUE(database.IsTocValid(CacheIndex::Dxt));
        EXPECT_EQ(database.ReadRaster(2, CacheIndex::Dxt, RecordKind::Raster)->front(), std::byte{0x33});
    });
}

TEST_F(Converter, ReportsHeadersFirstAndThenEveryTexture)
{
    Converted(TwoTextures().Files("textures"), kDxtToEtc, 2);
    EXPECT_THAT(m_oProgress.Reports(),
                testing::ElementsAre("0/3 Preparing...", "1/3 Preparing...", "2/3 Preparing...", "0/3 wood",
                                     "1/3 bark", "2/3 sand", "3/3 "));
}

// ---- Threads ----

TEST_F(Converter, UsesTheDatabaseOnItsOwnersThreadOnly)
{
    const auto files = RandomDatabase(true, "dxt", {}, 31).Files("textures");
    const FileBytes wanted = Converted(files, kDxtToEtc);
    COwnerThread owner;
    std::atomic<int> steps = 0;
    const auto after = FilesAfter(files, [&](CTextureDatabase& database) {
        CConverter converter(Parts(database), {.jobs = 2, .onOwner = [&](const auto& step) {
                                                   ++steps;
                                                   owner.Run([&] {
                                                       EXPECT_EQ(std::this_thread::get_id(), owner.Id());
                                                       step();
                                                   });
                                               }});
        m_oCounts = converter.Run(kDxtToEtc);
    });
    EXPECT_EQ(after, wanted);
    EXPECT_GE(steps, 18);
}

TEST_F(Converter, EndsWithoutATraceWhenItsOwnerIsGone)
{
    const auto files = TwoTextures().Files("textures");
    for (int limit = 0; limit < 6; ++limit) {
        int steps = 0;
        const auto after = FilesAfter(files, [&](CTextureDatabase& database) {
            CConverter converter(Parts(database), {.jobs = 2, .onOwner = [&](const auto& step) {
                                                       if (steps++ < limit)
                                                           step();
                                                   }});
            m_oCounts = converter.Run(kDxtToEtc);
        });
        EXPECT_TRUE(m_oCounts.wasStopped) << limit;
        EXPECT_EQ(after, files) << limit;
    }
}

TEST_F(Converter, CallsACodecOnSeveralThreadsOnlyWhereItAllowsThat)
{
    CDatabaseBuilder builder;
    for (int i = 0; i < 8; ++i)
        builder.Texture("t" + std::to_string(i)).Raster("unc", Raster(0x8363, 8, 8, false, 3));
    const auto files = builder.Files("textures");
    for (const auto threading : {CodecThreading::OneAtATime, CodecThreading::Free}) {
        mostCallsAtOnce = 0;
        m_oPlugins.BindFunctions(CacheIndex::Etc1, EncodeAndWatch, DecodeEtc1, threading);
        Converted(files, {CacheIndex::Unc, CacheIndex::Etc1}, 4);
        EXPECT_EQ(mostCallsAtOnce > 1, threading == CodecThreading::Free);
    }
}

// ---- Questions and refusals ----

TEST_F(Converter, RefusesACacheAsItsOwnTarget)
{
    const auto files = TwoTextures().Files("textures");
    EXPECT_EQ(Checked(files, {CacheIndex::Dxt, CacheIndex::Dxt}), ConversionCheck::Refused);
    ASSERT_EQ(m_pPrompt->Shown().size(), 1U);
    EXPECT_EQ(m_pPrompt->Shown()[0].text, L"You cant build cache from itself!");
    EXPECT_EQ(m_pPrompt->Shown()[0].caption, L"Error");
    EXPECT_EQ(m_pPrompt->Shown()[0].icon, PromptIcon::Error);
}

TEST_F(Converter, AsksBeforeItReplacesACache)
{
    const auto files = RandomDatabase(false, "etc", "dxt", 3).Files("textures");
    Answer({PromptAnswer::No, PromptAnswer::Yes});
    EXPECT_EQ(Checked(files, kEtcToDxt), ConversionCheck::NotConfirmed);
    EXPECT_EQ(Checked(files, kEtcToDxt), ConversionCheck::Ready);
    ASSERT_EQ(m_pPrompt->Shown().size(), 2U);
    EXPECT_EQ(m_pPrompt->Shown()[0].text,
              L"Target cache already exists!\r\n\r\nIt's really NOT recommended to overwrite it.\r\n\r\nAre "
              L"you sure you want to continue?");
    EXPECT_EQ(m_pPrompt->Shown()[0].buttons, PromptButtons::YesNo);
}

TEST_F(Converter, AsksAlsoWhenOnlyFilesOfTheTargetAreThere)
{
    auto files = TwoTextures().Files("textures");
    files["textures.etc.tmb"] = BytesOf("something");
    Answer({PromptAnswer::No});
    EXPECT_EQ(Checked(files, kDxtToEtc), ConversionCheck::NotConfirmed);
}

TEST_F(Converter, AsksNothingForANewTarget)
{
    EXPECT_EQ(Checked(TwoTextures().Files("textures"), kDxtToEtc), ConversionCheck::Ready);
    EXPECT_TRUE(m_pPrompt->Shown().empty());
}

TEST_F(Converter, RefusesWhatItCannotDecode)
{
    CDatabaseBuilder builder;
    builder.Alias("early", "wood").Texture("wood").Raster("dxt", Raster(0x83F0, 8, 8, false, 3));
    m_oPlugins.Unbind(CacheIndex::Dxt);
    EXPECT_EQ(Checked(builder.Files("textures"), kDxtToUnc), ConversionCheck::Refused);
    CDatabaseBuilder damaged;
    damaged.Texture("wood").Raster("dxt", Raster(0x83F2, 8, 8, false, 3));
    EXPECT_EQ(Checked(damaged.Files("textures"), kDxtToUnc), ConversionCheck::Refused);
    CDatabaseBuilder empty;
    empty.Cache("dxt").Texture("wood");
    EXPECT_EQ(Checked(empty.Files("textures"), kDxtToUnc), ConversionCheck::Refused);
    EXPECT_EQ(Checked(empty.Files("textures"), {CacheIndex::Etc1, CacheIndex::Unc}),
              ConversionCheck::Refused);
    ASSERT_EQ(m_pPrompt->Shown().size(), 4U);
    EXPECT_EQ(m_pPrompt->Shown()[0].text, L"DXT plugin is not loaded");
    EXPECT_EQ(m_pPrompt->Shown()[1].text, L"This format is unsupported");
    EXPECT_EQ(m_pPrompt->Shown()[2].text, L"Wrong texture size given. Cache is corrupted.");
    EXPECT_EQ(m_pPrompt->Shown()[3].text, L"Data file is not loaded for requested cache.");
}

TEST_F(Converter, RefusesATargetWithoutAnEncoder)
{
    m_oPlugins.Unbind(CacheIndex::Etc1);
    const auto files = TwoTextures().Files("textures");
    EXPECT_EQ(Checked(files, kDxtToEtc), ConversionCheck::Refused);
    ASSERT_EQ(m_pPrompt->Shown().size(), 1U);
    EXPECT_EQ(m_pPrompt->Shown()[0].text, L"ETC1 plugin is not loaded");
    EXPECT_EQ(Checked(files, kDxtToUnc), ConversionCheck::Ready) << "it needs none";
    m_oSettings.WriteInt(L"global", L"enable_compression", 0);
    EXPECT_EQ(Checked(files, kDxtToEtc), ConversionCheck::Ready) << "everything is stored uncompressed";
}

TEST_F(Converter, LooksForATextureThatIsInTheSourceBeforeItRefuses)
{
    CDatabaseBuilder builder;
    builder.Texture("absent").Texture("wood").Picture("dxt", 0x22);
    EXPECT_EQ(Checked(builder.Files("textures"), kDxtToEtc), ConversionCheck::Ready);
}

// ---- Breaking off ----

TEST_F(Converter, LeavesEverythingAsItWasWhenItIsStopped)
{
    const auto files = RandomDatabase(false, "etc", "dxt", 8).Files("textures");
    for (std::size_t stopAt = 1; stopAt < 36; stopAt += 5) {
        CNotedProgress progress(stopAt);
        const auto after = FilesAfter(files, [&](CTextureDatabase& database) {
            CConverter converter({database, m_oPlugins, m_oSettings, *m_pPrompt, progress}, {.jobs = 2});
            const ConversionCounts counts = converter.Run(kEtcToDxt);
            EXPECT_TRUE(counts.wasStopped) << stopAt;
            EXPECT_EQ(database.ReadRaster(1, CacheIndex::Dxt, RecordKind::Raster)->size(), 64U);
        });
        EXPECT_EQ(after, files) << stopAt;
        EXPECT_EQ(progress.Reports().size(), stopAt);
    }
}

TEST_F(Converter, KeepsTheOldTargetWhereverTheDiskFails)
{
    CDatabaseBuilder builder;
    builder.Texture("wood").Picture("etc", 0x22).Picture("dxt", 0x44).Alias("bark", "wood");
    builder.Texture("sand").Picture("etc", 0x33).Picture("dxt", 0x55);
    const auto before = builder.Files("textures");
    m_oSettings.WriteInt(L"global", L"enable_mipmaps", 0);
    std::uint32_t goodWrites = 0;
    for (bool isDone = false; !isDone && goodWrites < 100; ++goodWrites) {
        CTemporaryFolder folder;
        WriteFiles(folder.Path(), before);
        CFaultyFileSystem disk(goodWrites);
        {
            CTextureDatabase database(StreamMode::Raw, disk, *m_pPrompt);
            database.Open(folder / "textures.txt");
            try {
                CConverter(Parts(database), {.jobs = 2}).Run(kEtcToDxt);
                isDone = true;
            } catch (const CError& error) {
                EXPECT_EQ(error.Text(), L"Unable to write cache file");
            }
        }
        CTextureDatabase database(StreamMode::Raw, DiskFileSystem(), *m_pPrompt);
        database.Open(folder / "textures.txt");
        if (!database.IsTocValid(CacheIndex::Dxt))
            database.RebuildToc(CacheIndex::Dxt);
        const auto first = database.ReadRaster(0, CacheIndex::Dxt, RecordKind::Raster)->front();
        const auto last = database.ReadRaster(2, CacheIndex::Dxt, RecordKind::Raster)->front();
        const bool isNew = first == std::byte{0x22} && last == std::byte{0x33};
        const bool isOld = first == std::byte{0x44} && last == std::byte{0x55};
        EXPECT_TRUE(isNew || (isOld && !isDone)) << goodWrites;
        for (const char* name : {"textures.txt", "textures.etc.dat", "textures.etc.toc", "textures.etc.tmb"})
            EXPECT_EQ(FilesOf(folder.Path()).at(name), before.at(name)) << name << ' ' << goodWrites;
    }
    EXPECT_GT(goodWrites, 8U);
    EXPECT_LT(goodWrites, 100U);
}
