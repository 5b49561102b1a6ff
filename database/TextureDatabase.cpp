#include "database/TextureDatabase.h"

#include <algorithm>
#include <utility>

#include "base/Text.h"
#include "database/TextureDatabaseImpl.h"

namespace {

bool SameWithoutCase(std::wstring_view a, std::wstring_view b)
{
    return std::ranges::equal(a, b, [](wchar_t x, wchar_t y) { return ToLowerAscii(x) == ToLowerAscii(y); });
}

// `lower` is in lower case already.
bool ContainsWithoutCase(std::wstring_view text, std::wstring_view lower)
{
    const auto found = std::search(text.begin(), text.end(), lower.begin(), lower.end(),
                                   [](wchar_t x, wchar_t y) { return ToLowerAscii(x) == y; });
    return found != text.end() || lower.empty();
}

}  // namespace

CTextureDatabase::CTextureDatabase(StreamMode forced, IFileSystem& files, IPrompt& prompt)
    : m_pImpl(std::make_unique<CImpl>(forced, files, prompt))
{
}

CTextureDatabase::~CTextureDatabase() = default;

const std::filesystem::path& CTextureDatabase::ListPath() const
{
    return m_pImpl->m_oList.Path();
}

bool CTextureDatabase::IsListOpen() const
{
    return m_pImpl->m_oList.IsOpen();
}

bool CTextureDatabase::ListHadWarnings() const
{
    return m_pImpl->m_bListLostText;
}

StreamMode CTextureDatabase::ForcedMode() const
{
    return m_pImpl->m_eForced;
}

void CTextureDatabase::SetForcedMode(StreamMode mode)
{
    m_pImpl->m_eForced = mode;
}

std::uint32_t CTextureDatabase::EntryCount() const
{
    return m_pImpl->Count();
}

const TextureEntry& CTextureDatabase::Entry(std::uint32_t index) const
{
    return m_pImpl->At(index);
}

const TextureEntry& CTextureDatabase::ResolvedEntry(std::uint32_t index)
{
    return m_pImpl->Resolved(index);
}

std::span<const TextureCategory> CTextureDatabase::Categories() const
{
    return m_pImpl->m_aCategories;
}

std::wstring CTextureDatabase::CategoryName(std::uint32_t index) const
{
    return index < m_pImpl->m_aCategories.size() ? m_pImpl->m_aCategories[index].name : std::wstring();
}

bool CTextureDatabase::IsAlias(std::uint32_t index) const
{
    return m_pImpl->At(index).IsAlias();
}

std::uint32_t CTextureDatabase::AliasTarget(std::uint32_t index)
{
    return m_pImpl->ResolveAlias(index);
}

std::optional<std::uint32_t> CTextureDatabase::FindByName(std::wstring_view name, bool caseSensitive) const
{
    for (std::uint32_t index = 0; index < EntryCount(); ++index) {
        const std::wstring& candidate = m_pImpl->m_aEntries[index].name;
        if (caseSensitive ? candidate == name : SameWithoutCase(candidate, name))
            return index;
    }
    return std::nullopt;
}

std::optional<std::uint32_t> CTextureDatabase::FindContaining(std::wstring_view text,
                                                              std::uint32_t start) const
{
    const std::wstring lower = ToLowerAscii(text);
    for (std::uint32_t index = start; index < EntryCount(); ++index)
        if (ContainsWithoutCase(m_pImpl->m_aEntries[index].name, lower))
            return index;
    return std::nullopt;
}

std::optional<std::uint32_t> CTextureDatabase::FindAliasOf(std::uint32_t index, std::uint32_t start) const
{
    const std::wstring& name = m_pImpl->At(index).name;
    for (std::uint32_t alias = start; alias < EntryCount(); ++alias) {
        const TextureEntry& entry = m_pImpl->m_aEntries[alias];
        if (entry.IsAlias() && entry.affiliate == name)
            return alias;
    }
    return std::nullopt;
}

std::uint32_t CTextureDatabase::CountAliasesOf(std::uint32_t index) const
{
    const std::wstring& name = m_pImpl->At(index).name;
    return static_cast<std::uint32_t>(std::ranges::count_if(
        m_pImpl->m_aEntries,
        [&name](const TextureEntry& entry) { return entry.IsAlias() && entry.affiliate == name; }));
}

bool CTextureDatabase::IsOpen(CacheIndex cache) const
{
    return m_pImpl->Slot(cache).dat != nullptr;
}

bool CTextureDatabase::IsBlocked(CacheIndex cache) const
{
    return m_pImpl->Slot(cache).isBlocked;
}

bool CTextureDatabase::HasToc(CacheIndex cache) const
{
    return m_pImpl->Slot(cache).toc != nullptr;
}

bool CTextureDatabase::HasThumbnailFile(CacheIndex cache) const
{
    return m_pImpl->Slot(cache).tmb != nullptr;
}

bool CTextureDatabase::HasThumbnails(CacheIndex cache) const
{
    return m_pImpl->Slot(cache).hasThumbnails;
}

std::optional<CacheIndex> CTextureDatabase::PrimaryCache() const
{
    return m_pImpl->Primary();
}

std::uint64_t CTextureDatabase::FileSize(CacheIndex cache, RecordKind kind) const
{
    const IFile* const file = m_pImpl->FileOf(cache, kind);
    return file != nullptr ? file->Size() : 0;
}

std::uint64_t CTextureDatabase::TocSize(CacheIndex cache) const
{
    const auto& toc = m_pImpl->Slot(cache).toc;
    return toc ? toc->Size() : 0;
}

std::filesystem::path CTextureDatabase::CacheFile(CacheIndex cache, std::wstring_view extension) const
{
    return CacheFilePath(ListPath(), cache, extension);
}

std::span<const std::uint32_t> CTextureDatabase::OffsetList(CacheIndex cache) const
{
    return m_pImpl->Slot(cache).offsets;
}
