#include "tools/ExportPictures.h"

#include <new>

#include "base/Format.h"
#include "base/Text.h"
#include "codec/CodecMessages.h"
#include "tools/UniqueNames.h"

namespace {

constexpr std::wstring_view kForbidden = L"\\/:*?\"<>|";

void NoteFailure(ExportCounts& counts, const std::wstring& text)
{
    if (counts.failed++ == 0)
        counts.firstError = text;
}

void ExportOne(CTextureDatabase& database, const CPluginTable& plugins, std::uint32_t index,
               const ExportRequest& request, const std::filesystem::path& folder, CUniqueNames& names,
               ExportCounts& counts)
{
    const auto bitmap = TextureToExport(database, plugins, index, request.cache, request.kind);
    if (!bitmap) {
        ++counts.skipped;
        return;
    }
    const std::wstring name = names.Take(SafeFileName(database.Entry(index).name));
    const std::wstring file = FromPath(folder) + L"/" + name + L"." + request.extension;
    if (SaveImageFile(ToPath(file), *bitmap, request.format))
        ++counts.exported;
    else
        ++counts.notSaved;
}

}  // namespace

std::wstring SafeFileName(std::wstring_view name)
{
    std::wstring safe(name);
    for (wchar_t& character : safe)
        if (character < L' ' || character == L'\x7F' || kForbidden.find(character) != std::wstring_view::npos)
            character = L'_';
    for (std::size_t at = safe.find(L".."); at != std::wstring::npos; at = safe.find(L".."))
        safe.replace(at, 2, L"__");
    return safe.empty() ? std::wstring(L"_") : safe;
}

std::vector<std::uint32_t> EntriesToExport(const CTextureDatabase& database,
                                           std::optional<std::uint32_t> category, bool withAliases)
{
    std::vector<std::uint32_t> entries;
    for (std::uint32_t index = 0; index < database.EntryCount(); ++index) {
        const TextureEntry& entry = database.Entry(index);
        const bool isInCategory = !category || entry.Value(Property::Cat) == *category;
        if (isInCategory && (withAliases || !entry.IsAlias()))
            entries.push_back(index);
    }
    return entries;
}

std::optional<CBitmap> TextureToExport(CTextureDatabase& database, const CPluginTable& plugins,
                                       std::uint32_t index, CacheIndex cache, RecordKind kind)
{
    const TextureEntry& entry = database.ResolvedEntry(index);
    const auto& offsets = kind == RecordKind::Thumbnail ? entry.tmbOffset : entry.datOffset;
    if (offsets[SlotOf(cache)] == kNone)
        return std::nullopt;
    const auto decoded = DecodeTexture(database, plugins, index, cache, kind);
    if (!decoded)
        return std::nullopt;
    if (!decoded->isWritten)
        throw CError(std::wstring(CodecMessage::kUnsupportedFormat));
    auto bitmap = ToBitmap(*decoded);
    if (!bitmap)
        throw CError(std::wstring(CodecMessage::kCannotDecompress));
    return bitmap;
}

void ExportTexture(CTextureDatabase& database, const CPluginTable& plugins, std::uint32_t index,
                   const ExportRequest& request, const std::filesystem::path& file)
{
    const auto bitmap = TextureToExport(database, plugins, index, request.cache, request.kind);
    if (!bitmap)
        throw CError(std::wstring(CodecMessage::kCannotDecompress));
    // Deliberate: a file that cannot be written is not reported.
    static_cast<void>(SaveImageFile(file, *bitmap, request.format));
}

ExportCounts ExportTextures(CTextureDatabase& database, const CPluginTable& plugins,
                            const std::vector<std::uint32_t>& entries, const ExportRequest& request,
                            const std::filesystem::path& folder, IProgress& progress)
{
    ExportCounts counts;
    CUniqueNames names;
    const auto total = static_cast<std::uint32_t>(entries.size());
    for (std::uint32_t done = 0; done < total; ++done) {
        progress.Report(done, total, database.Entry(entries[done]).name);
        if (progress.Cancelled()) {
            counts.wasStopped = true;
            return counts;
        }
        try {
            ExportOne(database, plugins, entries[done], request, folder, names, counts);
        } catch (const CError& error) {
            NoteFailure(counts, error.Text());
        } catch (const std::bad_alloc&) {
            NoteFailure(counts, std::wstring(CodecMessage::kCannotDecompress));
        }
    }
    progress.Report(total, total, {});
    return counts;
}

std::wstring ExportFailureText(const ExportCounts& counts)
{
    if (counts.failed == 0)
        return {};
    return Format(L"%d textures could not be exported.\n\n%s", counts.failed, counts.firstError);
}
