#include "tools/OpenDatabase.h"

#include <algorithm>
#include <optional>

#include "base/File.h"
#include "base/Format.h"
#include "base/Text.h"
#include "image/Hash.h"
#include "tools/ImportRules.h"

namespace {

constexpr std::wstring_view kCaption = L"Mavrel";
constexpr std::wstring_view kNoCaches =
    L"No caches found to load, lol.\n\nCheck .DAT, .TMB and .TOC files, all of them sholuld be located in "
    L"the same folder as TXT.";
constexpr std::wstring_view kNoList =
    L"Whoa! No TXT database found.\n\nDo you want to build new database?\n(Mavrel can't work without txt "
    L"database)";
constexpr std::wstring_view kLockedList = L"TXT file can not be opened for writing.";
constexpr std::wstring_view kNothingRecovered = L"Unable to rebuild TXT file";
constexpr std::wstring_view kBadToc = L"%s.TOC file is corrupted.\r\n\r\nDo you want to fix it?";
constexpr std::wstring_view kBadThumbnails =
    L"%s.TMB file is corrupted, it can hang game loading.\r\n\r\nDo you wanna apply fast fix?";
constexpr std::wstring_view kBadHashes =
    L"Name hashes seems to be corrupted (by previous Mavrel version?).\r\n\r\nDo you wanna fix hashes?";
constexpr std::wstring_view kCannotWriteThumbnails = L"Unable to write cache file";
constexpr int kDefaultCheckLimit = 3;

std::vector<CacheIndex> OpenCaches(const CTextureDatabase& database)
{
    std::vector<CacheIndex> caches;
    for (const CacheIndex cache : kAllCaches)
        if (database.IsOpen(cache))
            caches.push_back(cache);
    return caches;
}

std::size_t RasterCountOfLastCache(const CTextureDatabase& database)
{
    const auto caches = OpenCaches(database);
    if (caches.empty())
        return 0;
    const auto offsets = database.OffsetList(caches.back());
    return offsets.size() - static_cast<std::size_t>(std::count(offsets.begin(), offsets.end(), kNone));
}

struct RecordCounts {
    std::size_t rasters = 0;
    std::size_t thumbnails = 0;
};

RecordCounts CountRecords(const CTextureDatabase& database, CacheIndex cache)
{
    RecordCounts counts;
    for (std::uint32_t index = 0; index < database.EntryCount(); ++index) {
        const TextureEntry& entry = database.Entry(index);
        if (entry.IsAlias())
            continue;
        counts.rasters += entry.datOffset[SlotOf(cache)] != kNone ? 1 : 0;
        counts.thumbnails += entry.tmbOffset[SlotOf(cache)] != kNone ? 1 : 0;
    }
    return counts;
}

// A record that could not be read has an empty header and says nothing.
bool HoldsOtherHash(const RasterHeader& header, std::uint32_t offset, std::uint16_t hash)
{
    return offset != kNone && header != RasterHeader{} && header.nameHash16 != hash;
}

bool HasWrongHash(CTextureDatabase& database, std::uint32_t index)
{
    const TextureEntry& entry = database.ResolvedEntry(index);
    const auto hash = static_cast<std::uint16_t>(NameHash(entry.name));
    return std::any_of(kAllCaches.begin(), kAllCaches.end(), [&](CacheIndex cache) {
        const std::size_t slot = SlotOf(cache);
        const bool isRasterWrong =
            database.IsOpen(cache) && HoldsOtherHash(entry.rasterHeader[slot], entry.datOffset[slot], hash);
        const bool isThumbnailWrong = database.HasThumbnailFile(cache) &&
                                      HoldsOtherHash(entry.thumbHeader[slot], entry.tmbOffset[slot], hash);
        return isRasterWrong || isThumbnailWrong;
    });
}

StreamMode ThumbnailMode(CTextureDatabase& database)
{
    const auto primary = database.PrimaryCache();
    StreamMode mode = database.ForcedMode();
    if (mode == StreamMode::Auto && primary && database.EntryCount() != 0)
        mode = database.GameOf(0, *primary);
    if (mode == StreamMode::Auto)
        mode = GameOfDatabase(database).value_or(StreamMode::Raw);
    return mode;
}

// Repairing a list that lost lines puts everything under wrong names, so then No is proposed.
bool AskToRepair(IPrompt& prompt, const CTextureDatabase& database, std::wstring text)
{
    PromptBox box{.text = std::move(text),
                  .caption = std::wstring(kCaption),
                  .icon = PromptIcon::Warning,
                  .buttons = PromptButtons::YesNo};
    if (database.ListHadWarnings())
        box.proposed = PromptAnswer::No;
    return prompt.Show(box) == PromptAnswer::Yes;
}

std::wstring UpperInfix(CacheIndex cache)
{
    return ToUpperAscii(CacheInfix(cache));
}

void RepairToc(CTextureDatabase& database, CacheIndex cache)
{
    database.RebuildToc(cache);
    static_cast<void>(database.LoadOffsets(cache, RecordKind::Raster));
    database.ReloadThumbnailOffsets();
}

}  // namespace

std::filesystem::path ListPathOf(const std::filesystem::path& chosen)
{
    const std::wstring name = FromPath(chosen.filename());
    const std::size_t dot = name.rfind(L'.');
    if (dot == std::wstring::npos)
        return chosen;
    const std::wstring extension = name.substr(dot + 1);
    if (extension != L"toc" && extension != L"dat")
        return chosen;
    const std::wstring withoutOne = name.substr(0, dot);
    const std::wstring withoutTwo = withoutOne.substr(0, withoutOne.rfind(L'.'));
    return chosen.parent_path() / ToPath(withoutTwo + L".txt");
}

bool AreNameHashesWrong(CTextureDatabase& database, int limit)
{
    std::int64_t left = std::int64_t{limit} + 1;
    for (std::uint32_t index = database.EntryCount(); index > 1 && left > 0; --index) {
        if (database.IsAlias(index - 1))
            continue;
        if (HasWrongHash(database, index - 1))
            return true;
        --left;
    }
    return false;
}

bool AreThumbnailsWrong(CTextureDatabase& database, CacheIndex cache)
{
    // What another program holds cannot be counted, and is not damaged for that.
    if (database.IsBlocked(cache))
        return false;
    if (!database.HasThumbnailFile(cache))
        return database.IsOpen(cache) || database.HasToc(cache);
    // Deliberate: every cache is compared with the last one. Thumbnails count too, or a cut file would never
    // be found.
    const std::size_t kept = RasterCountOfLastCache(database);
    const RecordCounts counts = CountRecords(database, cache);
    return counts.rasters != kept || counts.thumbnails != kept;
}

DatabaseCheck CheckDatabase(CTextureDatabase& database, int nameHashLimit)
{
    DatabaseCheck check;
    for (const CacheIndex cache : OpenCaches(database))
        if (!database.IsTocValid(cache))
            check.badTocs.push_back(cache);
    for (const CacheIndex cache : kAllCaches)
        if (AreThumbnailsWrong(database, cache))
            check.badThumbnails.push_back(cache);
    check.nameHashesWrong = AreNameHashesWrong(database, nameHashLimit);
    return check;
}

bool RecoverDatabase(CTextureDatabase& database)
{
    if (!database.RecoverFromDat())
        return false;
    for (const CacheIndex cache : OpenCaches(database))
        if (!database.IsTocValid(cache))
            RepairToc(database, cache);
    return true;
}

OpenResult CDatabaseOpener::Open(CTextureDatabase& database, const std::filesystem::path& list,
                                 const std::function<void()>& opened)
{
    database.Open(list);
    if (OpenCaches(database).empty()) {
        m_rPrompt.ShowError(kNoCaches);
        return OpenResult::NoCaches;
    }
    opened();
    if (database.IsListOpen())
        return OpenResult::Opened;
    if (DiskFileSystem().Exists(list)) {
        m_rPrompt.ShowError(kLockedList);
        return OpenResult::ListLocked;
    }
    const PromptAnswer answer = m_rPrompt.Show({.text = std::wstring(kNoList),
                                                .caption = std::wstring(kCaption),
                                                .icon = PromptIcon::Question,
                                                .buttons = PromptButtons::YesNo});
    if (answer != PromptAnswer::Yes)
        return OpenResult::NoList;
    if (RecoverDatabase(database))
        return OpenResult::Recovered;
    m_rPrompt.ShowError(kNothingRecovered);
    return OpenResult::NoList;
}

void CDatabaseOpener::OfferFileRepairs(CTextureDatabase& database, const std::function<void()>& done)
{
    for (const CacheIndex cache : OpenCaches(database)) {
        if (!database.IsTocValid(cache) &&
            AskToRepair(m_rPrompt, database, Format(kBadToc, UpperInfix(cache)))) {
            RepairToc(database, cache);
            done();
        }
    }
    for (const CacheIndex cache : kAllCaches) {
        if (AreThumbnailsWrong(database, cache) &&
            AskToRepair(m_rPrompt, database, Format(kBadThumbnails, UpperInfix(cache)))) {
            if (!database.WriteDefaultThumbnails(cache, ThumbnailMode(database))) {
                m_rPrompt.ShowError(kCannotWriteThumbnails);
                continue;
            }
            database.ReloadThumbnailOffsets();
            done();
        }
    }
}

void CDatabaseOpener::OfferNameHashRepair(CTextureDatabase& database)
{
    const int limit = m_rSettings.ReadInt(L"global", L"onload_check_limit", kDefaultCheckLimit);
    if (AreNameHashesWrong(database, limit) && AskToRepair(m_rPrompt, database, std::wstring(kBadHashes)))
        database.FixNameHashes(m_rProgress);
}
