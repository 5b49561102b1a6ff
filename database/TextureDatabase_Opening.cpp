// Opening, creating and reading anew.

#include <utility>

#include "database/TextList.h"
#include "database/TextureDatabaseImpl.h"

namespace {

std::unique_ptr<IFile> CreateHolding(IFileSystem& files, const std::filesystem::path& path,
                                     std::span<const std::byte> bytes)
{
    auto file = files.Open(path, OpenMode::Truncate);
    if (file && !file->WriteAt(0, bytes))
        file.reset();
    return file;
}

}  // namespace

bool CTextureDatabase::Open(const std::filesystem::path& list)
{
    CImpl& state = *m_pImpl;
    state.m_aEntries.clear();
    state.m_aCategories.clear();
    state.m_oNames.Forget();
    state.m_bListLostText = false;
    // All old files are closed before the first is opened: they may be the same ones.
    state.m_aSlots = {};
    state.m_oList.Close();
    for (const CacheIndex cache : kAllCaches)
        state.Slot(cache) = OpenSlot(state.m_rFiles, list, cache);
    if (state.m_oList.Open(list) && !state.ReadList())
        state.m_oList.Close();
    state.LoadEverything();
    return true;
}

bool CTextureDatabase::Create(const std::filesystem::path& list, std::span<const CacheIndex> caches)
{
    CImpl& state = *m_pImpl;
    state.m_aSlots = {};
    state.m_oList.Close();
    state.m_aEntries.clear();
    state.m_oNames.Forget();
    state.m_bListLostText = false;
    state.m_aCategories.assign(1, TextureCategory{.name = L"Default"});

    const auto text = SerializeTextList(state.m_aCategories, {});
    bool created = CreateHolding(state.m_rFiles, list, text) != nullptr;
    created = created && state.m_oList.Open(list);
    if (!created) {
        state.m_aCategories.clear();
        return false;
    }
    bool anyCache = false;
    for (const CacheIndex cache : caches) {
        CacheSlot& slot = state.Slot(cache);
        slot.tocPath = CacheFilePath(list, cache, L".toc");
        slot.datPath = CacheFilePath(list, cache, L".dat");
        slot.tmbPath = CacheFilePath(list, cache, L".tmb");
        slot.dat = CreateHolding(state.m_rFiles, slot.datPath, {});
        slot.toc = CreateHolding(state.m_rFiles, slot.tocPath, TableBytes(0, {}));
        slot.tmb = CreateHolding(state.m_rFiles, slot.tmbPath, {});
        anyCache = anyCache || slot.dat;
    }
    state.LoadEverything();
    return anyCache;
}

void CTextureDatabase::Reload()
{
    CImpl& state = *m_pImpl;
    const auto path = state.m_oList.Path();
    if (!state.m_oList.Open(path))
        throw CError(std::wstring(DatabaseText::kListNotOpen));
    if (!state.ReadList()) {
        state.m_oList.Close();
        throw CError(std::wstring(DatabaseText::kListNotOpen));
    }
    state.LoadEverything();
}

std::optional<std::uint32_t> CTextureDatabase::LoadOffsets(CacheIndex cache, RecordKind kind)
{
    if (kind == RecordKind::Raster)
        return m_pImpl->LoadRasterOffsets(cache);
    if (!HasThumbnailFile(cache))
        return std::nullopt;
    return m_pImpl->LoadThumbnailOffsets(cache);
}

void CTextureDatabase::ReloadThumbnailOffsets()
{
    for (const CacheIndex cache : kAllCaches)
        if (IsOpen(cache))
            m_pImpl->LoadThumbnailOffsets(cache);
}
