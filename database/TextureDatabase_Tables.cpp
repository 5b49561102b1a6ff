// Tables of contents: checking, writing and mending them.

#include <algorithm>
#include <array>
#include <unordered_map>

#include "base/ByteReader.h"
#include "database/FileTools.h"
#include "database/RecordWalk.h"
#include "database/TextureDatabaseImpl.h"

namespace {

[[noreturn]] void ThrowCannotWrite()
{
    throw CError(std::wstring(DatabaseText::kCannotWrite));
}

// A record for every ordinary entry, and nothing behind the last one; else nothing.
std::optional<std::vector<std::uint32_t>> OffsetsByWalk(const IFile& dat, StreamMode forced,
                                                        std::span<const TextureEntry> entries)
{
    CRecordWalk walk(dat, forced);
    std::vector<std::uint32_t> offsets(entries.size(), kNone);
    for (std::size_t i = 0; i < entries.size(); ++i) {
        if (entries[i].IsAlias())
            continue;
        const auto record = walk.Next();
        if (!record || record->offset >= kNone)
            return std::nullopt;
        offsets[i] = static_cast<std::uint32_t>(record->offset);
    }
    return walk.IsAtEnd() ? std::optional(offsets) : std::nullopt;
}

std::vector<std::uint32_t> WordsOf(const IFile* toc, std::size_t count)
{
    std::vector<std::uint32_t> words(count, kNone);
    if (toc == nullptr)
        return words;
    std::vector<std::byte> table(4 * (count + 1));
    table.resize(toc->ReadAt(0, table));
    CByteReader in(table);
    in.Skip(4);
    for (std::size_t i = 0; i < count && in.Left() >= 4; ++i)
        words[i] = in.U32();
    return words;
}

}  // namespace

std::vector<std::uint32_t> CTextureDatabase::CImpl::TrustedWords(CacheIndex cache)
{
    const CacheSlot& slot = Slot(cache);
    const std::uint64_t datBytes = slot.dat->Size();
    auto words = WordsOf(slot.toc.get(), m_aEntries.size());
    std::unordered_map<std::uint32_t, std::size_t> owners;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const RecordProbe probe = Probe(cache, RecordKind::Raster, words[i]);
        const bool isWhole =
            RasterSize(probe.header) != 0 && words[i] + RecordBytes(probe, ModeOf(probe)) <= datBytes;
        if (m_aEntries[i].IsAlias() || !isWhole) {
            words[i] = kNone;
            continue;
        }
        const auto [owner, isFirst] = owners.try_emplace(words[i], i);
        if (isFirst)
            continue;
        // Two entries claim the record: it goes to the one whose name it carries.
        const bool isMine = (EntryNameHash(m_aEntries[i]) & 0xFFFFU) == probe.header.nameHash16;
        words[isMine ? owner->second : i] = kNone;
        if (isMine)
            owner->second = i;
    }
    return words;
}

bool CTextureDatabase::IsTocValid(CacheIndex cache) const
{
    const CacheSlot& slot = m_pImpl->Slot(cache);
    if (!slot.toc || !slot.dat || slot.toc->Size() != 4 * (std::uint64_t{EntryCount()} + 1))
        return false;
    std::array<std::byte, 4> word{};
    if (slot.toc->ReadAt(0, word) != word.size())
        return false;
    return CByteReader(word).U32() == slot.dat->Size();
}

void CTextureDatabase::UpdateTocLengthWords()
{
    for (const CacheIndex cache : kAllCaches)
        if (!WriteLengthWord(m_pImpl->Slot(cache)))
            ThrowCannotWrite();
}

void CTextureDatabase::WriteTocFromOffsetList(CacheIndex cache)
{
    CImpl& state = *m_pImpl;
    CacheSlot& slot = state.Slot(cache);
    std::vector<std::uint32_t> words(
        slot.offsets.begin(), slot.offsets.begin() + static_cast<std::ptrdiff_t>(std::min(
                                                         slot.offsets.size(), state.m_aEntries.size())));
    for (std::size_t i = 0; i < words.size(); ++i)
        if (state.m_aEntries[i].IsAlias())
            words[i] = kNone;
    if (!WriteTable(state.m_rFiles, slot, TableBytes(slot.dat ? slot.dat->Size() : 0, words)))
        ThrowCannotWrite();
}

void CTextureDatabase::RebuildToc(CacheIndex cache)
{
    CImpl& state = *m_pImpl;
    state.RequireList();
    CacheSlot& slot = state.Slot(cache);
    if (!slot.dat)
        ReportDatabaseError(state.m_rPrompt, L"DAT file is not loaded for requested cache: ",
                            static_cast<std::uint32_t>(cache), __LINE__, ErrorKind::Fatal);
    auto offsets = OffsetsByWalk(*slot.dat, state.m_eForced, state.m_aEntries);
    // Where the walk does not fit the list, only words that lead to whole records can be trusted.
    if (!offsets)
        offsets = state.TrustedWords(cache);
    if (slot.toc && !KeepBackup(state.m_rFiles, *slot.toc, slot.tocPath))
        ThrowCannotWrite();
    if (!WriteTable(state.m_rFiles, slot, TableBytes(slot.dat->Size(), *offsets)))
        ThrowCannotWrite();
    state.LoadRasterOffsets(cache);
    state.LoadThumbnailOffsets(cache);
}
