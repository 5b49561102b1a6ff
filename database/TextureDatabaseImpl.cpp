#include "database/TextureDatabaseImpl.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "base/ByteReader.h"
#include "database/RecordWalk.h"
#include "database/TextList.h"

TextureEntry& CTextureDatabase::CImpl::At(std::uint32_t index)
{
    if (index >= m_aEntries.size())
        throw CError(std::wstring(DatabaseText::kNoTexture));
    return m_aEntries[index];
}

std::optional<CacheIndex> CTextureDatabase::CImpl::Primary() const
{
    for (const CacheIndex cache : kAllCaches)
        if (m_aSlots[SlotOf(cache)].dat)
            return cache;
    return std::nullopt;
}

bool CTextureDatabase::CImpl::ReadList()
{
    const auto text = m_oList.Read();
    if (!text)
        return false;
    TextList list = ParseTextList(*text);
    m_bListIsCurrent = false;
    m_aEntries = std::move(list.entries);
    m_aCategories = std::move(list.categories);
    m_oNames.Forget();
    m_bListLostText = list.lostText;
    if (list.lostText)
        m_oList.KeepCopyAtNextRewrite();
    for (const TextListWarning& warning : list.warnings)
        ReportDatabaseError(m_rPrompt, warning.message, warning.line, __LINE__, ErrorKind::Warning);
    return true;
}

void CTextureDatabase::CImpl::RequireList() const
{
    if (!m_oList.IsOpen())
        throw CError(std::wstring(DatabaseText::kListNotOpen));
}

void CTextureDatabase::CImpl::RequireEverything() const
{
    RequireList();
    if (std::ranges::any_of(m_aSlots, [](const CacheSlot& slot) { return slot.isBlocked; }))
        throw CError(std::wstring(DatabaseText::kCannotWrite));
}

void CTextureDatabase::CImpl::PrepareList(std::span<TextureEntry> entries)
{
    PrepareListText(SerializeTextList(m_aCategories, entries));
}

void CTextureDatabase::CImpl::PrepareListWithout(const std::vector<bool>& isGone,
                                                 std::span<TextureEntry> appended)
{
    std::vector<std::byte> text = SerializeTextList(m_aCategories, m_aEntries, isGone);
    const std::vector<std::byte> end = SerializeTextList({}, appended);
    text.insert(text.end(), end.begin(), end.end());
    PrepareListText(text);
}

void CTextureDatabase::CImpl::PrepareListText(std::span<const std::byte> text)
{
    // Category lines are generated anew, so one may have grown past what is read back.
    for (const TextureCategory& category : m_aCategories)
        if (!LineFits(CategoryLine(category)))
            throw CError(std::wstring(DatabaseText::kLineTooLong));
    if (!m_oList.Prepare(text))
        ReportDatabaseError(m_rPrompt, L"Unable to rebuild TXT file", kNone, __LINE__, ErrorKind::Fatal);
}

void CTextureDatabase::CImpl::RequireFreeList()
{
    if (!m_oList.IsFree())
        ReportDatabaseError(m_rPrompt, L"Unable to rebuild TXT file", kNone, __LINE__, ErrorKind::Fatal);
}

void CTextureDatabase::CImpl::CommitList()
{
    m_bListIsCurrent = false;
    if (!m_oList.Commit())
        ReportDatabaseError(m_rPrompt, L"Unable to rebuild TXT file", kNone, __LINE__, ErrorKind::Fatal);
    m_bListIsCurrent = true;
}

void CTextureDatabase::CImpl::RewriteList()
{
    PrepareList(m_aEntries);
    CommitList();
}

void CTextureDatabase::CImpl::WriteLastLine()
{
    const bool mayAppend = m_nStoringMany != 0 && m_bListIsCurrent;
    if (!mayAppend || !m_oList.Append(SerializeTextList({}, std::span(m_aEntries).last(1))))
        RewriteList();
}

std::uint32_t CTextureDatabase::CImpl::LoadRasterOffsets(CacheIndex cache)
{
    CacheSlot& slot = Slot(cache);
    const std::size_t index = SlotOf(cache);
    if (!slot.dat)
        ReportDatabaseError(m_rPrompt, L"DAT file is not loaded for requested cache: ",
                            static_cast<std::uint32_t>(index), __LINE__, ErrorKind::Fatal);
    slot.offsets.assign(m_aEntries.size(), kNone);
    const auto place = [this, &slot, index](std::size_t i, std::uint32_t offset, const RasterHeader& header) {
        TextureEntry& entry = m_aEntries[i];
        entry.datOffset[index] = slot.offsets[i] = offset;
        entry.rasterHeader[index] = header;
    };
    if (slot.toc) {
        std::vector<std::byte> table(4 * (m_aEntries.size() + 1));
        table.resize(slot.toc->ReadAt(0, table));
        CByteReader words(table);
        words.Skip(4);
        for (std::size_t i = 0; i < m_aEntries.size(); ++i) {
            // Deliberate: a word that is missing reads as 0. An alias has no record, whatever its word says.
            const std::uint32_t offset = words.U32();
            place(i, m_aEntries[i].IsAlias() ? kNone : offset, {});
        }
        return CountRasters(cache);
    }
    CRecordWalk walk(*slot.dat, m_eForced);
    bool isOver = false;
    for (std::size_t i = 0; i < m_aEntries.size(); ++i) {
        const auto record = isOver || m_aEntries[i].IsAlias() ? std::nullopt : walk.Next();
        isOver = isOver || (!m_aEntries[i].IsAlias() && (!record || record->offset >= kNone));
        if (record && !isOver)
            place(i, static_cast<std::uint32_t>(record->offset), record->header);
        else
            place(i, kNone, {});
    }
    return CountRasters(cache);
}

std::uint32_t CTextureDatabase::CImpl::CountRasters(CacheIndex cache) const
{
    const auto& offsets = m_aSlots[SlotOf(cache)].offsets;
    return static_cast<std::uint32_t>(offsets.size()) -
           static_cast<std::uint32_t>(std::count(offsets.begin(), offsets.end(), kNone));
}

std::uint32_t CTextureDatabase::CImpl::LoadThumbnailOffsets(CacheIndex cache)
{
    CacheSlot& slot = Slot(cache);
    const std::size_t index = SlotOf(cache);
    const auto clear = [index](TextureEntry& entry) {
        entry.tmbOffset[index] = kNone;
        entry.thumbHeader[index] = {};
    };
    slot.hasThumbnails = false;
    std::uint32_t count = 0;
    bool isAtEnd = false;
    bool isComplete = false;
    if (slot.tmb) {
        CRecordWalk walk(*slot.tmb, m_eForced);
        isComplete = true;
        for (TextureEntry& entry : m_aEntries) {
            if (entry.IsAlias())
                continue;
            const auto record = walk.Next();
            isComplete = record && record->offset < kNone;
            if (!isComplete)
                break;
            entry.tmbOffset[index] = static_cast<std::uint32_t>(record->offset);
            entry.thumbHeader[index] = record->header;
            ++count;
        }
        isAtEnd = walk.IsAtEnd();
    }
    // A surplus record would count too, as soon as one more texture came: it would then give wrong
    // thumbnails.
    slot.hasThumbnails = isAtEnd && count == CountRasters(cache);
    if (slot.hasThumbnails && isComplete)
        return count;
    std::uint32_t ordinary = 0;
    for (TextureEntry& entry : m_aEntries)
        if (!slot.hasThumbnails || (!entry.IsAlias() && ordinary++ >= count))
            clear(entry);
    return count;
}

void CTextureDatabase::CImpl::LoadEverything()
{
    for (const CacheIndex cache : kAllCaches) {
        Slot(cache).offsets.clear();
        Slot(cache).hasThumbnails = false;
        if (!Slot(cache).dat)
            continue;
        LoadRasterOffsets(cache);
        LoadThumbnailOffsets(cache);
    }
}

void CTextureDatabase::CImpl::LoadHeaders(TextureEntry& entry)
{
    for (const CacheIndex cache : kAllCaches) {
        const std::size_t index = SlotOf(cache);
        if (!Slot(cache).dat || entry.datOffset[index] == kNone || entry.rasterHeader[index].width != 0)
            continue;
        std::array<std::byte, kHeaderBytes> bytes{};
        const std::size_t count = Slot(cache).dat->ReadAt(entry.datOffset[index], bytes);
        entry.rasterHeader[index] = ReadProbe(std::span(bytes).first(count)).header;
    }
}

std::uint32_t CTextureDatabase::CImpl::ResolveAlias(std::uint32_t index)
{
    TextureEntry& alias = At(index);
    if (!alias.IsAlias())
        return kNone;
    const auto primary = Primary();
    const bool isKnown =
        alias.aliasTarget != kNone && (!primary || alias.datOffset[SlotOf(*primary)] != kNone);
    if (!isKnown) {
        const bool mayStay =
            alias.aliasTarget < m_aEntries.size() && !m_aEntries[alias.aliasTarget].IsAlias();
        const auto byName = m_oNames.FindOrdinary(m_aEntries, alias.affiliate);
        // A target given by hand holds as long as no entry has the name that the alias asks for.
        if (byName)
            alias.aliasTarget = *byName;
        else if (!mayStay)
            alias.aliasTarget = kNone;
    }
    if (alias.aliasTarget == kNone)
        return kNone;
    const TextureEntry& target = m_aEntries[alias.aliasTarget];
    alias.datOffset = target.datOffset;
    alias.tmbOffset = target.tmbOffset;
    alias.rasterHeader = target.rasterHeader;
    alias.thumbHeader = target.thumbHeader;
    return alias.aliasTarget;
}

void CTextureDatabase::CImpl::ForgetRecords(TextureEntry& alias)
{
    alias.datOffset.fill(kNone);
    alias.tmbOffset.fill(kNone);
    alias.rasterHeader.fill({});
    alias.thumbHeader.fill({});
}

TextureEntry& CTextureDatabase::CImpl::Resolved(std::uint32_t index)
{
    TextureEntry& entry = At(index);
    if (!entry.IsAlias()) {
        LoadHeaders(entry);
        return entry;
    }
    const std::uint32_t target = ResolveAlias(index);
    if (target == kNone) {
        ForgetRecords(entry);
        return entry;
    }
    LoadHeaders(m_aEntries[target]);
    ResolveAlias(index);
    return entry;
}

const IFile* CTextureDatabase::CImpl::FileOf(CacheIndex cache, RecordKind kind) const
{
    const CacheSlot& slot = m_aSlots[SlotOf(cache)];
    return kind == RecordKind::Raster ? slot.dat.get() : slot.tmb.get();
}

std::uint32_t CTextureDatabase::CImpl::OffsetOf(const TextureEntry& entry, CacheIndex cache, RecordKind kind)
{
    return kind == RecordKind::Raster ? entry.datOffset[SlotOf(cache)] : entry.tmbOffset[SlotOf(cache)];
}

const RasterHeader& CTextureDatabase::CImpl::HeaderOf(const TextureEntry& entry, CacheIndex cache,
                                                      RecordKind kind)
{
    return kind == RecordKind::Raster ? entry.rasterHeader[SlotOf(cache)] : entry.thumbHeader[SlotOf(cache)];
}

RecordProbe CTextureDatabase::CImpl::Probe(CacheIndex cache, RecordKind kind, std::uint32_t offset) const
{
    const IFile* const file = FileOf(cache, kind);
    if (file == nullptr || offset == kNone)
        return {};
    std::array<std::byte, kProbeBytes> bytes{};
    return ReadProbe(std::span(bytes).first(file->ReadAt(offset, bytes)));
}

bool CTextureDatabase::CImpl::WriteHeaderInPlace(const TextureEntry& entry, CacheIndex cache, RecordKind kind)
{
    CacheSlot& slot = Slot(cache);
    IFile* const file = kind == RecordKind::Raster ? slot.dat.get() : slot.tmb.get();
    const std::uint32_t offset = OffsetOf(entry, cache, kind);
    const RasterHeader& header = HeaderOf(entry, cache, kind);
    // A header that was never read must not be written, nor anything behind the file's end.
    if (file == nullptr || offset == kNone || header.glFormat == 0 ||
        std::uint64_t{offset} + kHeaderBytes > file->Size())
        return true;
    return file->WriteAt(offset, HeaderBytes(header));
}

void CTextureDatabase::CImpl::StoreNameHash(TextureEntry& entry)
{
    const auto hash = static_cast<std::uint16_t>(EntryNameHash(entry) & 0xFFFFU);
    bool written = true;
    const auto store = [&](RasterHeader& header, CacheIndex cache, RecordKind kind) {
        if (header.glFormat != 0 && std::exchange(header.nameHash16, hash) != hash)
            written = WriteHeaderInPlace(entry, cache, kind) && written;
    };
    for (const CacheIndex cache : kAllCaches) {
        store(entry.rasterHeader[SlotOf(cache)], cache, RecordKind::Raster);
        store(entry.thumbHeader[SlotOf(cache)], cache, RecordKind::Thumbnail);
    }
    if (!written)
        throw CError(std::wstring(DatabaseText::kCannotWrite));
}

bool CTextureDatabase::CImpl::ForcedModeLooksWrong(CacheIndex cache)
{
    const auto& offsets = Slot(cache).offsets;
    const auto first = std::ranges::find_if(offsets, [](std::uint32_t offset) { return offset != kNone; });
    if (m_eForced == StreamMode::Auto || first == offsets.end())
        return false;
    const RecordProbe probe = Probe(cache, RecordKind::Raster, *first);
    return probe.HasHeader() && DetectMode(probe) != m_eForced;
}

void RequireTextureName(std::wstring_view name)
{
    if (name.empty())
        throw CError(std::wstring(DatabaseText::kEmptyName));
    const auto isBad = [](wchar_t character) {
        return character < 0x20 || character > 0xFF || character == L'"';
    };
    if (name.size() > kLongestName || std::ranges::any_of(name, isBad))
        throw CError(std::wstring(DatabaseText::kWrongName));
}

void RequireLineFits(TextureEntry& entry)
{
    if (!LineFits(EntryLine(entry)))
        throw CError(std::wstring(DatabaseText::kLineTooLong));
}
