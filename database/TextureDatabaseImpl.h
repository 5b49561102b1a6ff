#pragma once

// The state of an open texture database and the steps that several of its operations share. Only the sources
// of CTextureDatabase include this; each of them holds the operations of one theme.

#include <array>
#include <filesystem>
#include <optional>
#include <string_view>
#include <vector>

#include "database/CacheFileName.h"
#include "database/CacheSlot.h"
#include "database/NameIndex.h"
#include "database/RecordLayout.h"
#include "database/TextListFile.h"
#include "database/TextureDatabase.h"

/// The texts of errors that are not shown by the database itself.
namespace DatabaseText {
inline constexpr std::wstring_view kListNotOpen = L"TXT list is not open.";
inline constexpr std::wstring_view kCannotWrite = L"Unable to write cache file";
inline constexpr std::wstring_view kLineTooLong = L"Texture line is too long.";
inline constexpr std::wstring_view kEmptyName = L"Name should not be empty.";
inline constexpr std::wstring_view kWrongName = L"Wrong texture name given.";
inline constexpr std::wstring_view kEmptyCategory = L"Empty category name given";
inline constexpr std::wstring_view kNoSpaces = L"No spaces allowed";
inline constexpr std::wstring_view kWrongCategory = L"Wrong category name given.";
inline constexpr std::wstring_view kNoTexture = L"Requested texture [value] does not exists";
inline constexpr std::wstring_view kNoData = L"Data file is not loaded for requested cache.";
inline constexpr std::wstring_view kWrongSize = L"Wrong texture size given. Cache is corrupted.";
inline constexpr std::wstring_view kWrongOffset = L"Wrong texture offset given. DAT / TOC is corrupted.";
}  // namespace DatabaseText

class CAliasCheck;

class CTextureDatabase::CImpl {
public:
    CImpl(StreamMode forced, IFileSystem& files, IPrompt& prompt)
        : m_rFiles(files), m_rPrompt(prompt), m_eForced(forced), m_oList(files)
    {
    }

    CacheSlot& Slot(CacheIndex cache) { return m_aSlots[SlotOf(cache)]; }
    /// Throws CError for an index that does not exist.
    TextureEntry& At(std::uint32_t index);
    std::uint32_t Count() const { return static_cast<std::uint32_t>(m_aEntries.size()); }
    std::optional<CacheIndex> Primary() const;

    // ---- The list ----

    /// Reads the open list and reports its warnings. Nothing changes when it cannot be read.
    bool ReadList();
    /// Throws CError when the list may not be rewritten.
    void RequireList() const;
    /// As RequireList, and for edits that move entries: every cache file that is there must be open, or its
    /// records would belong to the wrong entries afterwards.
    void RequireEverything() const;
    /// Writes the new list beside the old one, or reports that it cannot be rewritten.
    void PrepareList(std::span<TextureEntry> entries);
    /// The same without the entries that `isGone` marks and with others at the end.
    void PrepareListWithout(const std::vector<bool>& isGone, std::span<TextureEntry> appended);
    void PrepareListText(std::span<const std::byte> text);
    /// Throws before records move that the list could not follow.
    void RequireFreeList();
    void CommitList();
    void RewriteList();
    /// Brings the entry appended last into the list: by its line alone while many are stored and the list is
    /// known to hold all others, else by a rewrite.
    void WriteLastLine();

    // ---- Caches ----

    std::uint32_t LoadRasterOffsets(CacheIndex cache);
    std::uint32_t LoadThumbnailOffsets(CacheIndex cache);
    std::uint32_t CountRasters(CacheIndex cache) const;
    /// The words of a damaged table that lead to a whole record of a known format, each record for one entry
    /// only.
    std::vector<std::uint32_t> TrustedWords(CacheIndex cache);
    void LoadEverything();
    /// Appends a texture whose records are written: its words of the tables and its line.
    void AppendEntry(const TextureEntry& entry);
    /// Reads the thumbnail offsets anew after an ordinary entry was appended.
    void LoadNewThumbnails();
    /// As reading all offsets anew, for the entry appended last; false when that must be done instead.
    bool TakeLastThumbnail(CacheIndex cache);

    // ---- Entries ----

    /// Reads the raster headers of an ordinary entry that are not known yet.
    void LoadHeaders(TextureEntry& entry);
    /// The target of an alias, or kNone; takes over the target's offsets and headers.
    std::uint32_t ResolveAlias(std::uint32_t index);
    void ResolveAllAliases();
    /// Marks every alias that is resolved to an entry already marked.
    void MarkAliasesOfGone(std::vector<bool>& isGone);
    /// Unresolves an alias, so that nothing stale is used.
    static void ForgetRecords(TextureEntry& alias);
    TextureEntry& Resolved(std::uint32_t index);

    /// As MakeAliases, for pairs that can be made in one pass.
    void MakeAliasesTogether(std::span<const AliasPair> pairs, const CAliasCheck& check, IProgress& progress);

    // ---- Records ----

    const IFile* FileOf(CacheIndex cache, RecordKind kind) const;
    static std::uint32_t OffsetOf(const TextureEntry& entry, CacheIndex cache, RecordKind kind);
    static const RasterHeader& HeaderOf(const TextureEntry& entry, CacheIndex cache, RecordKind kind);
    /// The first bytes of a record; without a header when it does not lie in the file.
    RecordProbe Probe(CacheIndex cache, RecordKind kind, std::uint32_t offset) const;
    StreamMode ModeOf(const RecordProbe& probe) const
    {
        return m_eForced != StreamMode::Auto ? m_eForced : DetectMode(probe);
    }
    /// Writes the stored header of a record that is present. False only when writing failed.
    bool WriteHeaderInPlace(const TextureEntry& entry, CacheIndex cache, RecordKind kind);
    /// Brings the name hash of an ordinary entry into every record of it that is present. Its headers are
    /// loaded.
    void StoreNameHash(TextureEntry& entry);
    /// True when the detected game of the first record is not the forced one.
    bool ForcedModeLooksWrong(CacheIndex cache);

    IFileSystem& m_rFiles;
    IPrompt& m_rPrompt;
    StreamMode m_eForced;
    CTextListFile m_oList;
    /// The list holds the lines of all entries and categories as they are in memory. False is always safe.
    bool m_bListIsCurrent = false;
    unsigned m_nStoringMany = 0;
    bool m_bListLostText = false;
    std::vector<TextureEntry> m_aEntries;
    std::vector<TextureCategory> m_aCategories;
    std::array<CacheSlot, kCacheCount> m_aSlots;
    CNameIndex m_oNames;
};

/// Throws CError for a name that no record can hold: empty, over 63 characters, with a quote or with a
/// character that is not one byte.
void RequireTextureName(std::wstring_view name);
/// Throws CError when the entry's line would not be read back in one piece. Generates the line when there is
/// none.
void RequireLineFits(TextureEntry& entry);
