#include "tools/NewDatabase.h"

#include <algorithm>
#include <array>

#include "base/File.h"
#include "base/Format.h"
#include "base/Text.h"
#include "database/CacheFileName.h"

namespace {

constexpr std::array<std::wstring_view, 3> kExtensions = {L".toc", L".dat", L".tmb"};

bool AnyFileExists(const std::filesystem::path& list)
{
    IFileSystem& files = DiskFileSystem();
    if (files.Exists(list))
        return true;
    for (const CacheIndex cache : kAllCaches)
        for (const std::wstring_view extension : kExtensions)
            if (files.Exists(CacheFilePath(list, cache, extension)))
                return true;
    return false;
}

}  // namespace

CreateResult CreateDatabase(CTextureDatabase& database, const std::filesystem::path& list,
                            std::span<const CacheIndex> caches, IPrompt& prompt)
{
    if (AnyFileExists(list)) {
        const auto name = FromPath(list.filename());
        const PromptAnswer answer = prompt.Show(
            {.text = Format(L"Files of '%s' exist already. Their textures will be lost.\n\nDo you want to "
                            L"replace them?",
                            name),
             .caption = L"Warning",
             .icon = PromptIcon::Warning,
             .buttons = PromptButtons::YesNo,
             .proposed = PromptAnswer::No});
        if (answer != PromptAnswer::Yes)
            return CreateResult::Declined;
    }
    // What is left of another database of this name would be opened as caches of the new one.
    for (const CacheIndex cache : kAllCaches)
        if (std::find(caches.begin(), caches.end(), cache) == caches.end())
            for (const std::wstring_view extension : kExtensions)
                DiskFileSystem().Remove(CacheFilePath(list, cache, extension));
    if (database.Create(list, caches))
        return CreateResult::Created;
    prompt.ShowError(L"No caches created.");
    return CreateResult::NoCaches;
}
