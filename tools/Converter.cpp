#include "tools/Converter.h"

#include <algorithm>
#include <array>
#include <exception>
#include <memory>
#include <new>
#include <optional>
#include <utility>
#include <vector>

#include "base/File.h"
#include "base/Format.h"
#include "base/OrderedPipeline.h"
#include "codec/CodecMessages.h"
#include "codec/ImagePreparation.h"
#include "codec/RasterDecoding.h"
#include "database/CacheRebuild.h"
#include "image/Hash.h"
#include "tools/ImportRules.h"

namespace {

constexpr std::wstring_view kSameCache = L"You cant build cache from itself!";
constexpr std::wstring_view kTargetExists =
    L"Target cache already exists!\r\n\r\nIt's really NOT recommended to overwrite it.\r\n\r\nAre you sure "
    L"you want to continue?";
constexpr std::wstring_view kNoData = L"Data file is not loaded for requested cache.";
constexpr std::wstring_view kFailures = L"%d textures could not be converted.\n\n%s";

// More than one texture for each thread, so that none waits while the owner reads and writes.
constexpr std::size_t kTexturesInStock = 2;
// A window can paint between two steps, so none takes long.
constexpr std::uint32_t kHeadersAStep = 64;

/// A texture as the source has it. With an error there is no raster.
struct SourceTexture {
    std::uint16_t nameHash16 = 0;
    RasterHeader header;
    std::vector<std::byte> raster;
    bool hasAlpha = false;
    bool storeRgba8888 = false;
    std::wstring error;
};

/// The same as the target gets it, or why it does not.
struct ConvertedTexture {
    std::uint16_t nameHash16 = 0;
    CPreparedRecords records;
    std::wstring error;
};

SourceTexture ReadSource(CTextureDatabase& database, std::uint32_t index, CacheIndex cache)
{
    SourceTexture source;
    const TextureEntry& entry = database.ResolvedEntry(index);
    source.nameHash16 = static_cast<std::uint16_t>(NameHash(entry.name));
    source.header = entry.rasterHeader[SlotOf(cache)];
    source.storeRgba8888 = source.header.glFormat == GlFormat::Rgba8888;
    source.hasAlpha = source.storeRgba8888 || entry.Value(Property::AlphaMode) != 0;
    try {
        auto raster = database.ReadRaster(index, cache, RecordKind::Raster);
        if (raster)
            source.raster = std::move(*raster);
        else
            source.error = kNoData;
    } catch (const CError& error) {
        source.error = error.Text();
    } catch (const std::bad_alloc&) {
        source.error = CodecMessage::kCannotDecompress;
    }
    return source;
}

CBitmap DecodeSource(SourceTexture& source, const CPluginTable& plugins)
{
    const DecodedTexture decoded = DecodeFirstLevel(std::move(source.raster), source.header, plugins);
    if (!decoded.isWritten)
        throw CError(std::wstring(CodecMessage::kUnsupportedFormat));
    auto picture = ToBitmap(decoded);
    if (!picture)
        throw CError(std::wstring(CodecMessage::kCannotDecompress));
    return std::move(*picture);
}

// On any thread: nothing here but the texture's own bytes and the codecs.
ConvertedTexture Convert(SourceTexture& source, PreparationRules rules, const CPluginTable& plugins)
{
    ConvertedTexture converted;
    converted.nameHash16 = source.nameHash16;
    converted.error = source.error;
    if (!converted.error.empty())
        return converted;
    try {
        const CBitmap picture = DecodeSource(source, plugins);
        rules.plan.nameHash16 = source.nameHash16;
        rules.plan.hasAlpha = source.hasAlpha;
        rules.plan.storeRgba8888 = source.storeRgba8888;
        rules.plan.forcedEncoder =
            EncoderForSize(rules.plan.forcedEncoder, {picture.Width(), picture.Height()});
        converted.records = PrepareForCache(picture, rules);
    } catch (const CError& error) {
        converted.error = error.Text();
    } catch (const std::bad_alloc&) {
        converted.error = CodecMessage::kCannotDecompress;
    }
    return converted;
}

PreparationRules RulesFor(const ConverterParts& parts, CacheIndex target)
{
    ImportTarget wanted;
    wanted.cache = target;
    // Decided while the old target can still tell.
    wanted.streamMode = GameOfDatabase(parts.database).value_or(StreamMode::Raw);
    wanted.forcedEncoder = EncoderOfOneCache(parts.settings, std::nullopt);
    PreparationRules rules = ReadPreparationRules(parts.database, parts.plugins, parts.settings, wanted);
    rules.plan.rasterCaches = {target};
    rules.plan.thumbnailCaches = {target};
    return rules;
}

/// The texture that stands for all when it is asked whether the source can be decoded at all.
std::optional<std::uint32_t> FirstTexture(const CTextureDatabase& database, CacheIndex source)
{
    std::optional<std::uint32_t> first;
    for (std::uint32_t index = 0; index < database.EntryCount(); ++index) {
        const TextureEntry& entry = database.Entry(index);
        if (entry.IsAlias())
            continue;
        if (entry.datOffset[SlotOf(source)] != kNone)
            return index;
        first = first.value_or(index);
    }
    return first;
}

bool IsThere(const CTextureDatabase& database, CacheIndex cache)
{
    const auto hasFile = [&](std::wstring_view extension) {
        return DiskFileSystem().Exists(database.CacheFile(cache, extension));
    };
    return database.IsOpen(cache) || hasFile(L".dat") || hasFile(L".toc") || hasFile(L".tmb");
}

/// One conversion. Its members are used by whoever runs it and, while that one waits, by the steps.
class CConversion {
public:
    CConversion(const ConverterParts& parts, const ConverterOptions& options,
                const ConversionRequest& request)
        : m_oParts(parts),
          m_rOptions(options),
          m_oRequest(request),
          m_nThreads(ThreadsFor(options.jobs)),
          m_oPipeline(m_nThreads == 1 ? 0 : m_nThreads)
    {
    }
    ~CConversion()
    {
        try {
            OnOwner([this] { m_oRebuild.reset(); });
        } catch (const std::exception&) {  // the owner has ended; what is left ends with this object
        }
    }
    CConversion(const CConversion&) = delete;
    CConversion& operator=(const CConversion&) = delete;

    ConversionCounts Run()
    {
        m_oCounts.wasStopped = true;
        if (!ReadHeaders() || !OnOwner([this] {
                m_oRules = RulesFor(m_oParts, m_oRequest.target);
                m_oRebuild.emplace(m_oParts.database, m_oRequest.target);
            }))
            return m_oCounts;
        while (m_nNext < m_nCount)
            if (!ConvertNext())
                return m_oCounts;
        m_oCounts.wasStopped = !OnOwner([this] {
            StoreLast();
            m_oRebuild->Finish();
            m_oParts.progress.Report(m_nCount, m_nCount, {});
        });
        return m_oCounts;
    }

private:
    /// False when there is no owner any more.
    bool OnOwner(const std::function<void()>& step)
    {
        if (!m_rOptions.onOwner) {
            step();
            return true;
        }
        bool hasRun = false;
        std::exception_ptr failure;
        m_rOptions.onOwner([&] {
            hasRun = true;
            try {
                step();
            } catch (...) {  // belongs to the thread that converts
                failure = std::current_exception();
            }
        });
        if (failure)
            std::rethrow_exception(failure);
        return hasRun;
    }

    /// False when the run is to end.
    bool ReadHeaders()
    {
        bool isGoingOn = OnOwner([this] { m_nCount = m_oParts.database.EntryCount(); });
        for (std::uint32_t next = 0; isGoingOn && next < m_nCount;)
            isGoingOn = OnOwner([this, &next] { next = ReadHeadersFrom(next); }) && !m_bCancelled;
        return isGoingOn;
    }

    std::uint32_t ReadHeadersFrom(std::uint32_t first)
    {
        const std::uint32_t end = first + std::min(kHeadersAStep, m_nCount - first);
        for (std::uint32_t index = first; index < end && !m_bCancelled; ++index) {
            Report(index, std::wstring(CConverter::kPreparing));
            m_oParts.database.ResolvedEntry(index);
        }
        return end;
    }

    void Report(std::uint32_t index, const std::wstring& text)
    {
        m_oParts.progress.Report(index, m_nCount, text);
        m_bCancelled = m_oParts.progress.Cancelled();
    }

    /// False when the run is to end.
    bool ConvertNext()
    {
        std::vector<SourceTexture> ahead;
        bool isAlias = false;
        const bool hasRun = OnOwner([&] {
            StoreLast();
            Report(m_nNext, m_oParts.database.Entry(m_nNext).name);
            isAlias = m_oParts.database.IsAlias(m_nNext);
            if (!m_bCancelled)
                ahead = ReadAhead();
        });
        if (!hasRun || m_bCancelled)
            return false;
        for (SourceTexture& source : ahead)
            HandOut(std::move(source));
        if (isAlias)
            ++m_oCounts.aliases;
        m_oLast = isAlias ? ConvertedTexture() : m_oPipeline.Take();
        ++m_nNext;
        return true;
    }

    /// So many textures that every thread has work; the first one is that at hand.
    std::vector<SourceTexture> ReadAhead()
    {
        const std::size_t most = m_nThreads == 1 ? 1 : m_nThreads + kTexturesInStock;
        std::vector<SourceTexture> read;
        for (; m_nNextToRead < m_nCount && m_oPipeline.Pending() + read.size() < most; ++m_nNextToRead)
            if (!m_oParts.database.IsAlias(m_nNextToRead))
                read.push_back(ReadSource(m_oParts.database, m_nNextToRead, m_oRequest.source));
        return read;
    }

    void HandOut(SourceTexture source)
    {
        auto shared = std::make_shared<SourceTexture>(std::move(source));
        m_oPipeline.Give([shared, &rules = m_oRules, &plugins = m_oParts.plugins] {
            return Convert(*shared, rules, plugins);
        });
    }

    void StoreLast()
    {
        if (!m_oLast)
            return;
        if (!m_oLast->error.empty()) {
            StoreNothing(*m_oLast);
        } else {
            m_oRebuild->Append(m_oLast->records.Records());
            if (!m_oLast->records.Records().empty())
                ++m_oCounts.converted;
        }
        m_oLast.reset();
    }

    void StoreNothing(const ConvertedTexture& texture)
    {
        if (m_oCounts.failed++ == 0)
            m_oCounts.firstError = texture.error;
        if (m_oRules.plan.thumbnailSide == 0) {
            m_oRebuild->Append({});
            return;
        }
        // Thumbnails have no table: without one here, each of those that follow would belong to the texture
        // before its own.
        static constexpr std::array<std::byte, 4> kGreyPixel = {std::byte{0x88}, std::byte{0x88},
                                                                std::byte{0x88}, std::byte{0x88}};
        const PreparedRecord thumbnail{.cache = m_oRequest.target,
                                       .kind = RecordKind::Thumbnail,
                                       .record = {.header = {.nameHash16 = texture.nameHash16,
                                                             .glFormat = GlFormat::Rgba8888,
                                                             .width = 1,
                                                             .heightAndMips = 1},
                                                  .bytes = kGreyPixel,
                                                  .mode = m_oRules.plan.mode}};
        m_oRebuild->Append({&thumbnail, 1});
    }

    ConverterParts m_oParts;
    const ConverterOptions& m_rOptions;
    ConversionRequest m_oRequest;
    unsigned m_nThreads;
    PreparationRules m_oRules;
    ConversionCounts m_oCounts;
    std::optional<CCacheRebuild> m_oRebuild;
    std::uint32_t m_nCount = 0;
    std::uint32_t m_nNext = 0;
    std::uint32_t m_nNextToRead = 0;
    bool m_bCancelled = false;
    std::optional<ConvertedTexture> m_oLast;  // waits to be stored in the next step
    COrderedPipeline<ConvertedTexture> m_oPipeline;
};

}  // namespace

std::wstring ConversionFailureText(const ConversionCounts& counts)
{
    return counts.failed == 0 ? std::wstring() : Format(kFailures, counts.failed, counts.firstError);
}

CConverter::CConverter(const ConverterParts& parts, ConverterOptions options)
    : m_oParts(parts), m_oOptions(std::move(options))
{
}

ConversionCheck CConverter::Check(const ConversionRequest& request)
{
    if (request.source == request.target) {
        m_oParts.prompt.ShowError(kSameCache);
        return ConversionCheck::Refused;
    }
    // Files that are there although the cache is not open hold textures too.
    if (IsThere(m_oParts.database, request.target) &&
        m_oParts.prompt.Show({.text = std::wstring(kTargetExists),
                              .caption = L"Mavrel",
                              .icon = PromptIcon::Warning,
                              .buttons = PromptButtons::YesNo,
                              .proposed = PromptAnswer::No}) != PromptAnswer::Yes)
        return ConversionCheck::NotConfirmed;
    return CanConvert(request) ? ConversionCheck::Ready : ConversionCheck::Refused;
}

bool CConverter::CanConvert(const ConversionRequest& request)
{
    try {
        if (!m_oParts.database.IsOpen(request.source))
            throw CError(std::wstring(kNoData));
        if (const auto first = FirstTexture(m_oParts.database, request.source)) {
            SourceTexture source = ReadSource(m_oParts.database, *first, request.source);
            if (!source.error.empty())
                throw CError(source.error);
            static_cast<void>(DecodeSource(source, m_oParts.plugins));
        }
        const CacheIndex encoder =
            EncoderOfOneCache(m_oParts.settings, std::nullopt).value_or(request.target);
        if (encoder != CacheIndex::Unc && m_oParts.plugins.Compress(encoder) == nullptr)
            throw CError(Format(CodecMessage::kNoPlugin, CacheName(encoder)));
    } catch (const CError& error) {
        if (!error.WasShown())
            m_oParts.prompt.ShowError(error.Text());
        return false;
    } catch (const std::bad_alloc&) {
        m_oParts.prompt.ShowError(CodecMessage::kCannotDecompress);
        return false;
    }
    return true;
}

ConversionCounts CConverter::Run(const ConversionRequest& request)
{
    return CConversion(m_oParts, m_oOptions, request).Run();
}
