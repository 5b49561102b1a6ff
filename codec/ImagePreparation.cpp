#include "codec/ImagePreparation.h"

#include <algorithm>
#include <bit>
#include <new>
#include <utility>

#include "codec/CodecMessages.h"
#include "database/TextList.h"
#include "image/Hash.h"

namespace {

constexpr std::uint32_t kUncompressedStep = 64;
constexpr std::uint32_t kWidest = 65535;
constexpr std::uint32_t kHighest = 32767;
constexpr int kLargestThumbnail = 256;
constexpr int kDefaultThumbnail = 8;
constexpr std::wstring_view kGlobal = L"global";

[[noreturn]] void Fail(std::wstring_view text)
{
    throw CError(std::wstring(text));
}

bool IsSideAllowed(std::uint32_t side, std::optional<CacheIndex> forcedEncoder)
{
    const bool isMultiple = forcedEncoder == CacheIndex::Unc && side % kUncompressedStep == 0;
    return side != 0 && (std::has_single_bit(side) || isMultiple);
}

// Every plugin is told that there is dithering; one that asked for it, also which of several modes. The first
// of them needs no number.
std::uint32_t DitheringFlags(int mode, DitheringChoice choice)
{
    constexpr int kFirstNumbered = 2;
    constexpr int kMostModes = 16;
    if (mode == 0)
        return 0;
    if (choice == DitheringChoice::OnOff || mode < kFirstNumbered || mode >= kMostModes)
        return MavrelDithering;
    return MavrelDithering | static_cast<std::uint32_t>(mode) << MAVREL_DITHERING_SHIFT;
}

EncoderChoice ReadEncoder(CacheIndex encoder, const CPluginTable& plugins, const ISettings& settings)
{
    return {.compress = plugins.Compress(encoder),
            .quality = static_cast<std::uint32_t>(settings.ReadInt(CacheName(encoder), L"quality", 0)),
            .ditheringFlags = DitheringFlags(settings.ReadInt(CacheName(encoder), L"dithering", 0),
                                             plugins.Dithering(encoder)),
            .oneAtATime = plugins.OneAtATime(encoder)};
}

std::vector<CacheIndex> TargetCaches(const CTextureDatabase& database, std::optional<CacheIndex> chosen,
                                     bool (CTextureDatabase::*isOpen)(CacheIndex) const)
{
    std::vector<CacheIndex> caches;
    for (const CacheIndex cache : kAllCaches)
        if ((!chosen || chosen == cache) && (database.*isOpen)(cache))
            caches.push_back(cache);
    return caches;
}

RecordPlan PlanFor(const CBitmap& picture, const PreparationRules& rules)
{
    RecordPlan plan = rules.plan;
    plan.hasMips =
        rules.wantsMips && std::has_single_bit(picture.Width()) && std::has_single_bit(picture.Height());
    return plan;
}

// Refuses what cannot be stored at all.
void CheckPlan(const CBitmap& picture, const RecordPlan& plan)
{
    if (StoresSquares(plan) && std::max(picture.Width(), picture.Height()) > kHighest)
        Fail(CodecMessage::kWrongDimensions);
    if (plan.rasterCaches.empty())
        Fail(CodecMessage::kCannotWrite);
}

bool IsLeaving(const ImportTarget& target, std::uint32_t index)
{
    return std::ranges::find(target.leaving, index) != target.leaving.end();
}

// An alias finds its target by name, which a second entry of that name does not answer to.
bool AnswersToItsName(const CTextureDatabase& database, const ImportTarget& target, std::uint32_t index)
{
    const std::wstring& name = database.Entry(index).name;
    const auto first = database.FindByName(name, true);
    if (first == index || !first || !IsLeaving(target, *first))
        return first == index;
    for (std::uint32_t other = *first + 1; other < index; ++other)
        if (database.Entry(other).name == name && !IsLeaving(target, other))
            return false;
    return true;
}

// A weak hash: the size has to agree too, and a hash of 0 is no hash.
std::optional<std::uint32_t> FindDuplicate(const CTextureDatabase& database, std::uint32_t hash,
                                           PixelSize size, const ImportTarget& target)
{
    const auto& replaced = target.replaced;
    if (hash == 0 || target.hasAliases || (replaced && database.CountAliasesOf(*replaced) != 0))
        return std::nullopt;
    for (std::uint32_t index = 0; index < database.EntryCount(); ++index) {
        const TextureEntry& entry = database.Entry(index);
        if (entry.Value(Property::Img) == hash && !entry.IsAlias() && index != replaced &&
            entry.Value(Property::Width) == size.width && entry.Value(Property::Height) == size.height &&
            !IsLeaving(target, index) && AnswersToItsName(database, target, index))
            return index;
    }
    return std::nullopt;
}

// Counts the pairs that the caller adds later as well.
void CheckLine(TextureEntry entry, const ImportTarget& target)
{
    EntryLine(entry);
    SetProperty(entry, Property::Png, target.pngHash);
    SetProperty(entry, Property::Cat, target.category);
    if (!LineFits(EntryLine(entry)))
        Fail(CodecMessage::kLineTooLong);
}

TextureEntry NewEntry(const ImportTarget& target, PixelSize size, std::uint32_t hash)
{
    TextureEntry entry = MakeEntry({.name = target.name,
                                    .width = size.width,
                                    .height = size.height,
                                    .category = target.category,
                                    .alphaMode = target.hasAlpha ? 2U : 0U,
                                    .camNorm = 0});
    if (hash != 0)
        SetProperty(entry, Property::Img, hash);
    return entry;
}

// What a picture is prepared from: the work that was done early where it fits the plan, else the picture.
class CPictureSource {
public:
    CPictureSource(const CBitmap& picture, const RecordPlan& plan, std::optional<EarlyTexture> early)
        : m_rPicture(picture), m_rPlan(plan), m_oEarly(std::move(early))
    {
    }

    std::uint32_t ImageHash()
    {
        const bool isKnown = m_oEarly && m_oEarly->plan.hasAlpha == m_rPlan.hasAlpha;
        return isKnown ? m_oEarly->imageHash : HashData(Pixels());
    }

    /// Once.
    CPreparedRecords Records()
    {
        if (!m_oEarly || !m_oEarly->records || !StoreSameForms(m_oEarly->plan, m_rPlan))
            return PrepareRecords(m_rPicture, Pixels(), m_rPlan);
        m_oEarly->records->Label(m_rPlan);
        return std::move(*m_oEarly->records);
    }

private:
    std::span<const std::byte> Pixels()
    {
        if (m_aPixels.empty())
            m_aPixels = RgbaPixels(m_rPicture, m_rPlan.hasAlpha);
        return m_aPixels;
    }

    const CBitmap& m_rPicture;
    const RecordPlan& m_rPlan;
    std::optional<EarlyTexture> m_oEarly;
    std::vector<std::byte> m_aPixels;
};

PreparedTexture Prepare(CTextureDatabase& database, const ISettings& settings, PixelSize size,
                        const ImportTarget& target, CPictureSource source)
{
    PreparedTexture prepared;
    prepared.name = target.name;
    if (!target.cache) {
        const std::uint32_t hash = source.ImageHash();
        if (settings.IsOn(kGlobal, L"enable_img_hash", true))
            if (const auto original = FindDuplicate(database, hash, size, target)) {
                prepared.duplicateOf = database.Entry(*original).name;
                CheckLine(MakeAlias(target.name, *prepared.duplicateOf), target);
                return prepared;
            }
        prepared.entry = NewEntry(target, size, hash);
        CheckLine(*prepared.entry, target);
    }
    prepared.records = source.Records();
    return prepared;
}

}  // namespace

PreparationRules ReadPreparationRules(const CTextureDatabase& database, const CPluginTable& plugins,
                                      const ISettings& settings, const ImportTarget& target)
{
    PreparationRules rules;
    rules.wantsMips = settings.IsOn(kGlobal, L"enable_mipmaps", true);
    RecordPlan& plan = rules.plan;
    plan.hasAlpha = target.hasAlpha;
    plan.storeRgba8888 = target.storeRgba8888;
    plan.allowRunLength = settings.IsOn(kGlobal, L"enable_rle_compression", true);
    plan.mode = target.streamMode;
    plan.forcedEncoder = target.forcedEncoder;
    for (const CacheIndex encoder : kAllCaches)
        plan.encoders[SlotOf(encoder)] = ReadEncoder(encoder, plugins, settings);
    plan.rasterCaches = TargetCaches(database, target.cache, &CTextureDatabase::IsOpen);
    plan.thumbnailCaches = TargetCaches(database, target.cache, &CTextureDatabase::HasThumbnailFile);
    plan.thumbnailSide = static_cast<std::uint32_t>(
        std::clamp(settings.ReadInt(kGlobal, L"thumb_size", kDefaultThumbnail), 0, kLargestThumbnail));
    return rules;
}

EarlyTexture PrepareEarly(const CBitmap& picture, const PreparationRules& rules,
                          const LikelyDuplicate& isDuplicate)
{
    EarlyTexture early;
    early.plan = PlanFor(picture, rules);
    const std::vector<std::byte> pixels = RgbaPixels(picture, early.plan.hasAlpha);
    early.imageHash = HashData(pixels);
    try {
        CheckDimensions(picture.Width(), picture.Height(), early.plan.forcedEncoder);
        CheckPlan(picture, early.plan);
        if (!isDuplicate(early.imageHash, {picture.Width(), picture.Height()}))
            early.records = PrepareRecords(picture, pixels, early.plan);
    } catch (const CError&) {          // its turn fails in the same way
    } catch (const std::bad_alloc&) {  // its turn tries again, alone
    }
    return early;
}

CPreparedRecords PrepareForCache(const CBitmap& picture, const PreparationRules& rules)
{
    const RecordPlan plan = PlanFor(picture, rules);
    CheckDimensions(picture.Width(), picture.Height(), plan.forcedEncoder);
    CheckPlan(picture, plan);
    try {
        return PrepareRecords(picture, RgbaPixels(picture, plan.hasAlpha), plan);
    } catch (const std::bad_alloc&) {
        Fail(CodecMessage::kCannotCompress);
    }
}

PreparedTexture PrepareTexture(CTextureDatabase& database, const CPluginTable& plugins,
                               const ISettings& settings, const CBitmap& picture, const ImportTarget& target,
                               std::optional<EarlyTexture> early)
{
    if (!target.cache)
        CheckTextureName(target.name);
    CheckDimensions(picture.Width(), picture.Height(), target.forcedEncoder);
    RecordPlan plan = PlanFor(picture, ReadPreparationRules(database, plugins, settings, target));
    plan.nameHash16 = static_cast<std::uint16_t>(NameHash(target.name));
    CheckPlan(picture, plan);
    try {
        return Prepare(database, settings, {picture.Width(), picture.Height()}, target,
                       CPictureSource(picture, plan, std::move(early)));
    } catch (const std::bad_alloc&) {
        Fail(CodecMessage::kCannotCompress);
    }
}

StoreResult StorePrepared(CTextureDatabase& database, PreparedTexture prepared,
                          std::span<const PropertyValue> properties)
{
    if (prepared.duplicateOf) {
        CheckTextureName(*prepared.duplicateOf);
        prepared.entry = MakeAlias(prepared.name, *prepared.duplicateOf);
    }
    if (prepared.entry && !properties.empty()) {
        EntryLine(*prepared.entry);
        for (const auto& [property, value] : properties)
            SetProperty(*prepared.entry, property, value);
    }
    if (prepared.duplicateOf) {
        database.StoreTexture(std::move(prepared.entry), {});
        return StoreResult::MadeAlias;
    }
    database.StoreTexture(std::move(prepared.entry), prepared.records.Records());
    return StoreResult::Stored;
}

StoreResult PrepareAndStore(CTextureDatabase& database, const CPluginTable& plugins,
                            const ISettings& settings, const CBitmap& picture, const ImportTarget& target)
{
    return StorePrepared(database, PrepareTexture(database, plugins, settings, picture, target));
}

void CheckDimensions(std::uint32_t width, std::uint32_t height, std::optional<CacheIndex> forcedEncoder)
{
    const std::uint32_t widest = forcedEncoder == CacheIndex::Pvrtc ? kHighest : kWidest;
    if (!IsSideAllowed(width, forcedEncoder) || !IsSideAllowed(height, forcedEncoder) || width > widest ||
        height > kHighest)
        Fail(CodecMessage::kWrongDimensions);
}

void CheckTextureName(std::wstring_view name)
{
    if (name.empty())
        Fail(CodecMessage::kEmptyName);
    const bool isFit = std::all_of(name.begin(), name.end(), [](wchar_t character) {
        return character >= L'\x20' && character <= L'\xFF' && character != L'"';
    });
    if (!isFit || name.size() > kLongestName)
        Fail(CodecMessage::kWrongName);
}
