#include "tools/EditorHost.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "base/Text.h"
#include "codec/ImagePreparation.h"
#include "codec/RasterDecoding.h"
#include "tools/ImportRules.h"

namespace {

constexpr std::wstring_view kUnknownError = L"Unknown import error";

std::optional<CacheIndex> CacheOf(std::int64_t number)
{
    if (number < 0 || number >= static_cast<std::int64_t>(kCacheCount))
        return std::nullopt;
    return kAllCaches[static_cast<std::size_t>(number)];
}

}  // namespace

std::wstring RecordText(const std::array<wchar_t, ImportRecord::kTextLength>& field)
{
    return {field.begin(), std::find(field.begin(), field.end(), L'\0')};
}

void SetRecordText(std::array<wchar_t, ImportRecord::kTextLength>& field, std::wstring_view text)
{
    field.fill(L'\0');
    std::copy_n(text.begin(), std::min(text.size(), field.size() - 1), field.begin());
}

bool CHostOperations::Import(const CBitmap* picture, ImportRecord& record)
{
    // Deliberate: a cache that is named without the flag does not count.
    if (record.cacheGiven == 0)
        record.targetCache = ImportRecord::kEveryCache;
    record.outcome = ImportOutcome::Failed;
    try {
        if (record.aliasTarget.front() != L'\0')
            record.outcome = ImportAlias(record);
        else if (picture != nullptr)
            record.outcome = ImportPicture(*picture, record);
    } catch (const CError& error) {
        if (!error.WasShown())
            m_rPrompt.ShowError(error.Text());
    } catch (const std::exception&) {
        m_rPrompt.ShowError(kUnknownError);
    }
    // An alias for one cache is no new entry.
    const bool hasChanged = record.outcome == ImportOutcome::Imported ||
                            (record.outcome == ImportOutcome::MadeAlias && record.cacheGiven == 0);
    return hasChanged && record.noRefresh == 0;
}

ImportOutcome CHostOperations::ImportAlias(const ImportRecord& record)
{
    if (record.cacheGiven != 0) {
        // Keeps the table of contents of one cache in step with entries that exist already.
        const auto cache = CacheOf(record.targetCache);
        if (!cache || !m_rDatabase.IsOpen(*cache))
            return ImportOutcome::Ignored;
        return m_rDatabase.AppendNoRaster(*cache) ? ImportOutcome::MadeAlias : ImportOutcome::Failed;
    }
    const std::wstring name = RecordText(record.name);
    CheckTextureName(name);
    return m_rDatabase.AddAlias(name, RecordText(record.aliasTarget)) ? ImportOutcome::MadeAlias
                                                                      : ImportOutcome::Failed;
}

ImportOutcome CHostOperations::ImportPicture(const CBitmap& picture, const ImportRecord& record)
{
    ImportRequest request;
    request.hasAlpha = record.hasAlpha != 0;
    request.storeRgba8888 = record.storeRgba8888 != 0;
    request.category = record.category;
    request.leaving = record.leaving;
    request.hasAliases = record.hasAliases != 0;
    if (record.format != ImportRecord::kFormatByRules)
        request.format = CacheOf(record.format);
    if (record.targetCache != ImportRecord::kEveryCache) {
        request.cache = CacheOf(record.targetCache);
        if (!request.cache)
            return ImportOutcome::Ignored;
    }
    const auto game = CGameChoice(m_rPrompt).For(m_rDatabase);
    if (!game)
        return ImportOutcome::Ignored;
    std::optional<EarlyTexture> early;
    if (record.early != nullptr)
        early = std::move(*record.early);
    PreparedTexture prepared = PrepareByRules(m_rDatabase, m_rPlugins, m_rSettings, picture,
                                              RecordText(record.name), request, *game, std::move(early));
    const StoreResult result = StoreByRules(m_rDatabase, std::move(prepared), request);
    return result == StoreResult::MadeAlias ? ImportOutcome::MadeAlias : ImportOutcome::Imported;
}

std::unique_ptr<CBitmap> CHostOperations::Decode(std::uint32_t index, CacheIndex cache)
{
    if (index >= m_rDatabase.EntryCount() || SlotOf(cache) >= kCacheCount)
        return nullptr;
    try {
        const auto decoded = DecodeTexture(m_rDatabase, m_rPlugins, index, cache, RecordKind::Raster);
        if (!decoded || !decoded->isWritten)
            return nullptr;
        auto bitmap = ToBitmap(*decoded);
        return bitmap ? std::make_unique<CBitmap>(std::move(*bitmap)) : nullptr;
    } catch (const std::exception&) {
        return nullptr;
    }
}
