#pragma once

// The texture database: the TXT list and the four caches beside it. It owns the entries, the categories and
// the open files, and keeps them in step: every edit ends with a rewritten list and fresh length words in the
// tables of contents. It is used from one thread. Its texts go through the prompt that it borrows;
// docs/formats/ describes the files.

#include <array>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/File.h"
#include "base/Progress.h"
#include "base/Prompt.h"
#include "database/CacheIndex.h"
#include "database/DatabaseError.h"
#include "database/TextureCategory.h"
#include "database/TextureEntry.h"

/// How records are framed; Auto is detected for each record.
enum class StreamMode : std::uint32_t { Auto = 0, Raw = 1, Framed = 2 };

/// Which of a cache's two record files is meant.
enum class RecordKind { Raster, Thumbnail };

/// A record to append. `bytes` is the raster, all levels, as decoded; the database frames and codes it.
struct NewRecord {
    RasterHeader header;
    std::span<const std::byte> bytes;
    StreamMode mode = StreamMode::Raw;
    bool allowRunLength = false;
    /// What RleEncode makes of `bytes`, where that is known already; empty when it gains nothing.
    std::optional<std::span<const std::byte>> runLengthFrame = std::nullopt;
};

/// What becomes of the aliases of deleted textures: they go too, or they stay and find whatever has the name
/// of their target then.
enum class AliasesOfDeleted { Delete, Keep };

/// A property of an entry and the value that it gets.
struct PropertyChange {
    std::uint32_t index = 0;
    Property property = Property::Name;
    std::uint32_t value = 0;
};

/// A texture that stays, and another one that becomes an alias of it.
struct AliasPair {
    std::uint32_t kept = 0;
    std::uint32_t duplicate = 0;

    bool operator==(const AliasPair&) const = default;
};

/// A record and where it goes.
struct PreparedRecord {
    CacheIndex cache = CacheIndex::Dxt;
    RecordKind kind = RecordKind::Raster;
    NewRecord record;
};

class CTextureDatabase {
public:
    /// `forced` is the game chosen by the user. `files` and `prompt` are borrowed and must outlive the
    /// database.
    CTextureDatabase(StreamMode forced, IFileSystem& files, IPrompt& prompt);
    ~CTextureDatabase();
    CTextureDatabase(const CTextureDatabase&) = delete;
    CTextureDatabase& operator=(const CTextureDatabase&) = delete;

    // ---- Opening ----

    /// Opens what there is: the caches beside `list` and the list itself. Always true. Files are held open,
    /// for reading and writing, until the database is destroyed or opened again.
    bool Open(const std::filesystem::path& list);
    /// Creates (emptying what exists) the list with the category "Default" and the three files of each of
    /// `caches`, a length word in each table of contents. Nothing is asked. True when the list and a cache
    /// could be created.
    bool Create(const std::filesystem::path& list, std::span<const CacheIndex> caches);
    /// Reads the list and the offsets of every open cache anew; changes that were not saved are gone. Throws
    /// CError (not shown), and keeps the entries, when the list cannot be opened; it may not be edited then.
    void Reload();

    const std::filesystem::path& ListPath() const;
    /// False when the list is missing or cannot be opened for writing; nothing may be edited then.
    bool IsListOpen() const;
    /// True when reading the list dropped, cut or split something; the first rewrite then keeps a copy beside
    /// it.
    bool ListHadWarnings() const;
    StreamMode ForcedMode() const;
    void SetForcedMode(StreamMode mode);

    // ---- Entries and categories ----

    std::uint32_t EntryCount() const;
    /// `index` must be below the count.
    const TextureEntry& Entry(std::uint32_t index) const;
    /// The entry with its headers read, and, for an alias, with its target's offsets and headers. The
    /// reference is valid until the next edit.
    const TextureEntry& ResolvedEntry(std::uint32_t index);
    std::span<const TextureCategory> Categories() const;
    /// Empty when there is no category of that index.
    std::wstring CategoryName(std::uint32_t index) const;
    bool IsAlias(std::uint32_t index) const;
    /// Resolves on the way; kNone for an ordinary entry and for an alias of nothing.
    std::uint32_t AliasTarget(std::uint32_t index);

    /// First index of that name, or nothing. Without `caseSensitive`, A-Z match a-z.
    std::optional<std::uint32_t> FindByName(std::wstring_view name, bool caseSensitive) const;
    /// First index from `start` on whose name contains `text`, case ignored.
    std::optional<std::uint32_t> FindContaining(std::wstring_view text, std::uint32_t start) const;
    /// First index from `start` on whose affiliate is exactly the name of entry `index`.
    std::optional<std::uint32_t> FindAliasOf(std::uint32_t index, std::uint32_t start) const;
    std::uint32_t CountAliasesOf(std::uint32_t index) const;

    // ---- Caches ----

    bool IsOpen(CacheIndex cache) const;            ///< its `.dat` is open
    bool HasToc(CacheIndex cache) const;            ///< its `.toc` is open
    bool IsBlocked(CacheIndex cache) const;         ///< one of its files is there but could not be opened
    bool HasThumbnailFile(CacheIndex cache) const;  ///< its `.tmb` is open
    /// Thumbnails were found for every raster; otherwise those of the cache are ignored.
    bool HasThumbnails(CacheIndex cache) const;
    std::optional<CacheIndex> PrimaryCache() const;
    std::uint64_t FileSize(CacheIndex cache, RecordKind kind) const;
    std::uint64_t TocSize(CacheIndex cache) const;
    std::filesystem::path CacheFile(CacheIndex cache, std::wstring_view extension) const;
    /// The in-memory table of contents: a `.dat` offset for each entry.
    std::span<const std::uint32_t> OffsetList(CacheIndex cache) const;

    bool IsTocValid(CacheIndex cache) const;
    /// Mends a table of contents; keeps the old one as `.toc.bak`.
    void RebuildToc(CacheIndex cache);
    void WriteTocFromOffsetList(CacheIndex cache);
    void UpdateTocLengthWords();
    /// Records found, or nothing after the error box.
    std::optional<std::uint32_t> LoadOffsets(CacheIndex cache, RecordKind kind);

    /// Bytes from this record to the next one, framing and header included.
    std::uint64_t RecordSize(std::uint32_t index, CacheIndex cache, RecordKind kind);
    /// Raw or Framed.
    StreamMode DetectStreamMode(std::uint32_t index, CacheIndex cache, RecordKind kind);
    /// The game of an entry's raster: the forced mode, or the detected one; Auto when neither can be told.
    StreamMode GameOf(std::uint32_t index, CacheIndex cache);

    /// The raster, all levels, with its stream mode undone. Nothing when the file is not open; throws CError
    /// (not shown) when the header or the offset cannot be right.
    std::optional<std::vector<std::byte>> ReadRaster(std::uint32_t index, CacheIndex cache, RecordKind kind);
    /// Throws CError (not shown) when the `.dat` is not open. All zero when the record does not lie in the
    /// file.
    RasterHeader ReadHeader(std::uint32_t index, CacheIndex cache);
    /// True when appended; a failed write leaves the file as long as it was. A raster also gets its place in
    /// the table of contents.
    bool AppendRecord(CacheIndex cache, RecordKind kind, const NewRecord& record);
    /// One more word "none" at the end of the table of contents, for an entry without a raster in this cache.
    /// False when it cannot be written; nothing has changed then.
    bool AppendNoRaster(CacheIndex cache);
    /// Default thumbnails (1x1, grey) for every ordinary entry, in place of the `.tmb`, which is kept as
    /// `.tmb.bak`.
    bool WriteDefaultThumbnails(CacheIndex cache, StreamMode mode);
    /// Rebuilds a lost list and the tables of contents from the first open `.dat`.
    bool RecoverFromDat();

    /// Reads the thumbnail offsets of every cache with a `.tmb` anew.
    void ReloadThumbnailOffsets();

    // ---- Edits: each leaves list and caches consistent, or throws CError ----

    /// Rewrites the list and the length words.
    void Save();
    /// Throws CError when the line would grow past what the list's reader takes. Does not write the list.
    void ChangeProperty(std::uint32_t index, Property property, std::uint32_t value);
    /// Makes the changes in the order given and saves once. All or none: when a line would grow too long or
    /// the list cannot be written, every entry is as before.
    void ChangeProperties(std::span<const PropertyChange> changes);
    void AddCategory(std::wstring name);
    void SetCategory(std::uint32_t index, const TextureCategory& category);
    bool RenameCategory(std::uint32_t index, const std::wstring& name);
    bool DeleteCategory(std::uint32_t index);
    /// Appends the records in the order given and, when there is one, the entry that they belong to, then
    /// rewrites the list and reads the thumbnail offsets anew. A slot without a record gets "none". Without
    /// an entry only the records are appended. All or nothing: on failure every file is as long as before and
    /// no entry exists.
    void StoreTexture(std::optional<TextureEntry> entry, std::span<const PreparedRecord> records);
    /// False when the name is taken.
    bool RenameEntry(std::uint32_t index, const std::wstring& name);
    bool AddAlias(const std::wstring& name, const std::wstring& target);
    /// `replacement`: nothing deletes the aliases too; an index makes it their new target.
    bool DeleteEntry(std::uint32_t index, std::optional<std::uint32_t> replacement);
    /// As deleting one by one in the order given, in one pass over each file; `indices` are those before the
    /// deletion.
    bool DeleteEntries(std::span<const std::uint32_t> indices, IProgress& progress,
                       AliasesOfDeleted aliases = AliasesOfDeleted::Delete);
    /// True when deleting these at once leaves the same files as one by one: their records lie in order, and
    /// thumbnails go with rasters. Aliases have no part in it.
    bool CanDeleteTogether(std::span<const std::uint32_t> indices);
    /// Each duplicate is deleted and comes back at the end of the list as an alias of the kept texture; the
    /// aliases that stood for it stand for the kept one from then on, in the list too. As one pair after the
    /// other in the order given, in one pass over each file. Indices are those before; a texture is a
    /// duplicate once at most, and never one that is kept. False, and nothing has changed, for indices that
    /// cannot be and when cancelled. Throws CError, and has changed nothing, when a line would not fit
    /// (CAliasCheck tells before).
    bool MakeAliases(std::span<const AliasPair> pairs, IProgress& progress);
    /// Stores fresh name hashes in every record that is present.
    void FixNameHashes(IProgress& progress);

    class CImpl;

private:
    friend class CStoringMany;
    friend class CCacheRebuild;
    std::unique_ptr<CImpl> m_pImpl;
};

/// For tools that store many textures in a row, an object that exists meanwhile: StoreTexture and AddAlias
/// then add their line at the end of the list instead of writing all of it anew, which a large list would
/// make slow. What is on the disk is as complete after each texture as without it; only whether the device
/// holds it is not waited for, so the tool ends with Save.
class CStoringMany {
public:
    explicit CStoringMany(CTextureDatabase& database);
    ~CStoringMany();
    CStoringMany(const CStoringMany&) = delete;
    CStoringMany& operator=(const CStoringMany&) = delete;

private:
    CTextureDatabase& m_rDatabase;
};
