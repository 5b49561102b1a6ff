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

EncoderChoice ReadEncoder(CacheIndex encoder, const CPluginTable& plugins, const ISettings& settings)
{
    return {.compress = plugins.Compress(encoder),
            .quality = static_cast<std::uint32_t>(settings.ReadInt(CacheName(encoder), L"quality", 0)),
            .hasDithering = settings.IsOn(CacheName(encoder), L"dithering", false)};
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

RecordPlan MakePlan(const CTextureDatabase& database, const CPluginTable& plugins, const ISettings& settings,
                    const CBitmap& picture, const ImportTarget& target)
{
    RecordPlan plan;
    plan.nameHash16 = static_cast<std::uint16_t>(NameHash(target.name));
    plan.hasAlpha = target.hasAlpha;
    plan.storeRgba8888 = target.storeRgba8888;
    plan.hasMips = settings.IsOn(kGlobal, L"enable_mipmaps", true) && std::has_single_bit(picture.Width()) &&
                   std::has_single_bit(picture.Height());
    plan.allowRunLength = settings.IsOn(kGlobal, L"enable_rle_compression", true);
    plan.mode = target.streamMode;
    plan.forcedEncoder = target.forcedEncoder;
    for (const CacheIndex encoder : kAllCaches)
        plan.encoders[SlotOf(encoder)] = ReadEncoder(encoder, plugins, settings);
    plan.rasterCaches = TargetCaches(database, target.cache, &CTextureDatabase::IsOpen);
    plan.thumbnailCaches = TargetCaches(database, target.cache, &CTextureDatabase::HasThumbnailFile);
    plan.thumbnailSide = static_cast<std::uint32_t>(
        std::clamp(settings.ReadInt(kGlobal, L"thumb_size", kDefaultThumbnail), 0, kLargestThumbnail));
    return plan;
}

// A weak hash: the size has to agree too, and a hash of 0 is no hash.
std::optional<std::uint32_t> FindDuplicate(const CTextureDatabase& database, std::uint32_t hash,
                                           PixelSize size, std::optional<std::uint32_t> replaced)
{
    if (hash == 0 || (replaced && database.CountAliasesOf(*replaced) != 0))
        return std::nullopt;
    for (std::uint32_t index = 0; index < database.EntryCount(); ++index) {
        const TextureEntry& entry = database.Entry(index);
        if (entry.Value(Property::Img) == hash && !entry.IsAlias() && index != replaced &&
            entry.Value(Property::Width) == size.width && entry.Value(Property::Height) == size.height &&
            // An alias finds its target by name, which a second entry of that name does not answer to.
            database.FindByName(entry.name, true) == index)
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

PreparedTexture Prepare(CTextureDatabase& database, const ISettings& settings, const CBitmap& picture,
                        const ImportTarget& target, const RecordPlan& plan)
{
    const PixelSize size{picture.Width(), picture.Height()};
    const std::vector<std::byte> pixels = RgbaPixels(picture, target.hasAlpha);
    PreparedTexture prepared;
    prepared.name = target.name;
    if (!target.cache) {
        const std::uint32_t hash = HashData(pixels);
        if (settings.IsOn(kGlobal, L"enable_img_hash", true))
            if (const auto original = FindDuplicate(database, hash, size, target.replaced)) {
                prepared.duplicateOf = database.Entry(*original).name;
                CheckLine(MakeAlias(target.name, *prepared.duplicateOf), target);
                return prepared;
            }
        prepared.entry = NewEntry(target, size, hash);
        CheckLine(*prepared.entry, target);
    }
    prepared.records = PrepareRecords(picture, pixels, plan);
    return prepared;
}

}  // namespace

PreparedTexture PrepareTexture(CTextureDatabase& database, const CPluginTable& plugins,
                               const ISettings& settings, const CBitmap& picture, const ImportTarget& target)
{
    if (!target.cache)
        CheckTextureName(target.name);
    CheckDimensions(picture.Width(), picture.Height(), target.forcedEncoder);
    const RecordPlan plan = MakePlan(database, plugins, settings, picture, target);
    if (StoresSquares(plan) && std::max(picture.Width(), picture.Height()) > kHighest)
        Fail(CodecMessage::kWrongDimensions);
    if (plan.rasterCaches.empty())
        Fail(CodecMessage::kCannotWrite);
    try {
        return Prepare(database, settings, picture, target, plan);
    } catch (const std::bad_alloc&) {
        Fail(CodecMessage::kCannotCompress);
    }
}

StoreResult StorePrepared(CTextureDatabase& database, PreparedTexture prepared)
{
    if (prepared.duplicateOf) {
        if (!database.AddAlias(prepared.name, *prepared.duplicateOf))
            Fail(CodecMessage::kCannotWrite);
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
