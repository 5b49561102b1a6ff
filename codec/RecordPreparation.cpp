#include "codec/RecordPreparation.h"

#include <algorithm>
#include <thread>
#include <tuple>
#include <utility>

#include "codec/CodecMessages.h"
#include "codec/PluginTable.h"
#include "database/RunLength.h"
#include "image/HalvedLevels.h"

namespace {

enum class StoredForm : std::uint8_t { Rgba8888, Packed16, Dxt, Etc1, Pvrtc };
constexpr std::array kAllForms = {StoredForm::Rgba8888, StoredForm::Packed16, StoredForm::Dxt,
                                  StoredForm::Etc1, StoredForm::Pvrtc};

constexpr std::uint16_t kMipsBit = 0x8000;
constexpr std::uint32_t kQualityMask = 15;

std::size_t IndexOf(StoredForm form)
{
    return static_cast<std::size_t>(form);
}

StoredForm FormFor(CacheIndex cache, const RecordPlan& plan)
{
    if (plan.storeRgba8888)
        return StoredForm::Rgba8888;
    const CacheIndex encoder = plan.forcedEncoder.value_or(cache);
    if (plan.encoders[SlotOf(encoder)].compress == nullptr)
        return StoredForm::Packed16;
    switch (encoder) {
        case CacheIndex::Dxt:
            return StoredForm::Dxt;
        case CacheIndex::Etc1:
            // The format has no alpha.
            return plan.hasAlpha ? StoredForm::Packed16 : StoredForm::Etc1;
        case CacheIndex::Pvrtc:
            return StoredForm::Pvrtc;
        case CacheIndex::Unc:
            return StoredForm::Packed16;
    }
    return StoredForm::Packed16;
}

std::uint16_t GlFormatOf(StoredForm form, bool hasAlpha)
{
    switch (form) {
        case StoredForm::Rgba8888:
            return GlFormat::Rgba8888;
        case StoredForm::Packed16:
            return hasAlpha ? GlFormat::Rgba4444 : GlFormat::Rgba565;
        case StoredForm::Dxt:
            return hasAlpha ? GlFormat::Dxt5 : GlFormat::Dxt1;
        case StoredForm::Etc1:
            return GlFormat::Etc1;
        case StoredForm::Pvrtc:
            return hasAlpha ? GlFormat::Pvrtc4 : GlFormat::Pvrtc2;
    }
    return 0;
}

std::optional<CacheIndex> EncoderOf(StoredForm form)
{
    switch (form) {
        case StoredForm::Dxt:
            return CacheIndex::Dxt;
        case StoredForm::Etc1:
            return CacheIndex::Etc1;
        case StoredForm::Pvrtc:
            return CacheIndex::Pvrtc;
        case StoredForm::Rgba8888:
        case StoredForm::Packed16:
            return std::nullopt;
    }
    return std::nullopt;
}

PixelSize SizeFor(StoredForm form, PixelSize size)
{
    if (form != StoredForm::Pvrtc)
        return size;
    const std::uint32_t side = std::max(size.width, size.height);
    return {side, side};
}

RasterHeader HeaderFor(StoredForm form, PixelSize full, const RecordPlan& plan)
{
    const PixelSize size = SizeFor(form, full);
    return {.nameHash16 = plan.nameHash16,
            .glFormat = GlFormatOf(form, plan.hasAlpha),
            .width = static_cast<std::uint16_t>(size.width),
            .heightAndMips = static_cast<std::uint16_t>(size.height | (plan.hasMips ? kMipsBit : 0U))};
}

std::uint32_t CompressFlags(CacheIndex encoder, const RecordPlan& plan)
{
    const EncoderChoice& choice = plan.encoders[SlotOf(encoder)];
    std::uint32_t flags = (choice.quality & kQualityMask) | choice.ditheringFlags;
    if (plan.hasAlpha)
        flags |= MavrelAlpha;
    if (encoder == CacheIndex::Dxt)
        flags |= plan.hasAlpha ? MavrelInterpolatedAlpha : MavrelDxt1;
    return flags;
}

[[noreturn]] void FailToCompress()
{
    throw CError(std::wstring(CodecMessage::kCannotCompress));
}

/// Collects the levels of one encoder's output and sees to it that they are as long as the format says.
class CEncodedChain {
public:
    CEncodedChain(CacheIndex encoder, const RasterHeader& header, const RecordPlan& plan)
        : m_nFlags(CompressFlags(encoder, plan)),
          m_nMode(plan.hasAlpha ? 4 : 2),
          m_fnCompress(plan.encoders[SlotOf(encoder)].compress),
          m_pOneAtATime(plan.encoders[SlotOf(encoder)].oneAtATime),
          m_eCode(FormatFromGl(header.glFormat)),
          m_nExpected(RasterSize(header)),
          // Encoders may use more room than their output takes; pages that are never touched cost nothing.
          m_nCapacity(std::max(m_nExpected, std::uint64_t{std::max<std::uint32_t>(header.width, 8)} *
                                                std::max(header.Height(), 8U) * 4)),
          m_pBytes(std::make_unique_for_overwrite<std::byte[]>(static_cast<std::size_t>(m_nCapacity)))
    {
    }

    void Append(std::span<const std::byte> rgba, PixelSize size)
    {
        if (m_nUsed + LevelSize(m_eCode, size.width, size.height) > m_nCapacity)
            FailToCompress();
        {
            const auto lock = LockCodec(m_pOneAtATime);
            m_nUsed += m_fnCompress(rgba.data(), m_pBytes.get() + m_nUsed, size.width, size.height, m_nMode,
                                    m_nFlags);
        }
        std::this_thread::yield();
    }

    std::span<const std::byte> Finish(CPreparedRecords& owner)
    {
        if (m_nUsed != m_nExpected)
            FailToCompress();
        return owner.Keep(std::move(m_pBytes), static_cast<std::size_t>(m_nUsed));
    }

private:
    std::uint32_t m_nFlags;
    std::uint32_t m_nMode;
    MavrelCompressFn m_fnCompress;
    std::mutex* m_pOneAtATime;
    RasterFormatCode m_eCode;
    std::uint64_t m_nExpected;
    std::uint64_t m_nCapacity;
    std::unique_ptr<std::byte[]> m_pBytes;
    std::uint64_t m_nUsed = 0;
};

/// Walks the levels of a picture and fills every form that some cache wants.
class CFormWriter {
public:
    CFormWriter(const CBitmap& picture, const RecordPlan& plan)
        : m_rPicture(picture), m_rPlan(plan), m_oFull{picture.Width(), picture.Height()}
    {
        for (const CacheIndex cache : plan.rasterCaches)
            m_aWanted[IndexOf(FormFor(cache, plan))] = true;
        for (const StoredForm form : kAllForms)
            if (const auto encoder = EncoderOf(form); encoder && Wants(form))
                m_aChains[IndexOf(form)].emplace(*encoder, HeaderFor(form, m_oFull, plan), plan);
    }

    void WriteLevels(std::span<const std::byte> fullPixels)
    {
        CHalvedLevels smaller(fullPixels, m_oFull.width, m_oFull.height);
        for (const PixelSize size : LevelSizes(m_oFull, m_rPlan.hasMips)) {
            if (size == m_oFull)
                WriteLevel(fullPixels, size);
            else
                WriteLevel(smaller.Next(), size);
        }
    }

    std::array<std::span<const std::byte>, kAllForms.size()> Finish(CPreparedRecords& owner)
    {
        std::array<std::span<const std::byte>, kAllForms.size()> bytes;
        bytes[IndexOf(StoredForm::Rgba8888)] = owner.Keep(std::move(m_aRgba8888));
        bytes[IndexOf(StoredForm::Packed16)] = owner.Keep(std::move(m_aPacked16));
        for (const StoredForm form : kAllForms)
            if (auto& chain = m_aChains[IndexOf(form)])
                bytes[IndexOf(form)] = chain->Finish(owner);
        return bytes;
    }

private:
    bool Wants(StoredForm form) const { return m_aWanted[IndexOf(form)]; }

    void WriteLevel(std::span<const std::byte> rgba, PixelSize size)
    {
        if (Wants(StoredForm::Rgba8888))
            m_aRgba8888.insert(m_aRgba8888.end(), rgba.begin(), rgba.end());
        if (Wants(StoredForm::Packed16))
            AppendPacked16(rgba, m_rPlan.hasAlpha, m_aPacked16);
        for (const StoredForm form : kAllForms) {
            auto& chain = m_aChains[IndexOf(form)];
            if (!chain)
                continue;
            const PixelSize stored = SizeFor(form, size);
            if (stored == size)
                chain->Append(rgba, size);
            else
                chain->Append(ScaledRgbaPixels(m_rPicture, stored, m_rPlan.hasAlpha), stored);
        }
    }

    const CBitmap& m_rPicture;
    const RecordPlan& m_rPlan;
    PixelSize m_oFull;
    std::array<bool, kAllForms.size()> m_aWanted{};
    std::array<std::optional<CEncodedChain>, kAllForms.size()> m_aChains;
    std::vector<std::byte> m_aRgba8888;
    std::vector<std::byte> m_aPacked16;
};

// Run-length coding of every form that is stored, here so that the thread at hand does it; caches share it as
// they share the bytes.
class CFrames {
public:
    explicit CFrames(const RecordPlan& plan)
        : m_bWanted(plan.mode == StreamMode::Framed && plan.allowRunLength)
    {
    }

    std::optional<std::span<const std::byte>> For(StoredForm form, const NewRecord& record,
                                                  CPreparedRecords& owner)
    {
        auto& frame = m_aFrames[IndexOf(form)];
        if (m_bWanted && !frame) {
            auto coded = RleEncode(record.bytes, UnitBytes(FormatFromGl(record.header.glFormat)));
            frame = coded ? owner.Keep(std::move(*coded)) : std::span<const std::byte>();
        }
        return frame;
    }

private:
    bool m_bWanted;
    std::array<std::optional<std::span<const std::byte>>, kAllForms.size()> m_aFrames;
};

void AddThumbnails(const CBitmap& picture, const RecordPlan& plan, CPreparedRecords& records)
{
    if (plan.thumbnailSide == 0 || plan.thumbnailCaches.empty())
        return;
    const std::uint32_t side = plan.thumbnailSide;
    const auto bytes = records.Keep(ScaledRgbaPixels(picture, {side, side}, plan.hasAlpha));
    const RasterHeader header{.nameHash16 = plan.nameHash16,
                              .glFormat = GlFormat::Rgba8888,
                              .width = static_cast<std::uint16_t>(side),
                              .heightAndMips = static_cast<std::uint16_t>(side)};
    for (const CacheIndex cache : plan.thumbnailCaches)
        records.Add({cache, RecordKind::Thumbnail, {header, bytes, plan.mode, false}});
}

}  // namespace

std::span<const std::byte> CPreparedRecords::Keep(std::vector<std::byte> bytes)
{
    return m_aVectors.emplace_back(std::move(bytes));
}

std::span<const std::byte> CPreparedRecords::Keep(std::unique_ptr<std::byte[]> bytes, std::size_t count)
{
    return {m_aBuffers.emplace_back(std::move(bytes)).get(), count};
}

void CPreparedRecords::Label(const RecordPlan& plan)
{
    for (PreparedRecord& prepared : m_aRecords) {
        prepared.record.header.nameHash16 = plan.nameHash16;
        prepared.record.mode = plan.mode;
        prepared.record.allowRunLength = prepared.kind == RecordKind::Raster && plan.allowRunLength;
    }
}

bool StoreSameForms(const RecordPlan& one, const RecordPlan& other)
{
    const auto forms = [](const RecordPlan& plan) {
        return std::tie(plan.hasAlpha, plan.storeRgba8888, plan.hasMips, plan.forcedEncoder, plan.encoders,
                        plan.rasterCaches, plan.thumbnailCaches, plan.thumbnailSide);
    };
    return forms(one) == forms(other);
}

bool StoresSquares(const RecordPlan& plan)
{
    return std::any_of(plan.rasterCaches.begin(), plan.rasterCaches.end(),
                       [&plan](CacheIndex cache) { return FormFor(cache, plan) == StoredForm::Pvrtc; });
}

CPreparedRecords PrepareRecords(const CBitmap& picture, std::span<const std::byte> fullPixels,
                                const RecordPlan& plan)
{
    CPreparedRecords records;
    CFormWriter writer(picture, plan);
    writer.WriteLevels(fullPixels);
    const auto bytes = writer.Finish(records);
    CFrames frames(plan);
    for (const CacheIndex cache : plan.rasterCaches) {
        const StoredForm form = FormFor(cache, plan);
        const RasterHeader header = HeaderFor(form, {picture.Width(), picture.Height()}, plan);
        NewRecord record{header, bytes[IndexOf(form)], plan.mode, plan.allowRunLength};
        record.runLengthFrame = frames.For(form, record, records);
        records.Add({cache, RecordKind::Raster, record});
    }
    AddThumbnails(picture, plan, records);
    return records;
}
