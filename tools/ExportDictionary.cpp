#include "tools/ExportDictionary.h"

#include <numeric>

#include "base/Text.h"
#include "database/DatabaseError.h"
#include "tools/UniqueNames.h"

std::vector<std::uint32_t> AllTextures(CTXDHelper& helper)
{
    std::vector<std::uint32_t> textures(helper.TextureCount());
    std::iota(textures.begin(), textures.end(), 0U);
    return textures;
}

ExportCounts ExportDictionary(CTXDHelper& helper, const std::vector<std::uint32_t>& textures,
                              const std::filesystem::path& folder, ImageFormat format,
                              const std::wstring& extension, IProgress& progress)
{
    ExportCounts counts;
    CUniqueNames names;
    const auto total = static_cast<std::uint32_t>(textures.size());
    for (std::uint32_t done = 0; done < total; ++done) {
        if (progress.Cancelled()) {
            counts.wasStopped = true;
            return counts;
        }
        try {
            const std::wstring name = helper.Describe(textures[done]).name;
            progress.Report(done, total, name);
            const CBitmap bitmap = helper.ToBitmap(textures[done]);
            const std::wstring file = names.Take(SafeFileName(name)) + L"." + extension;
            if (SaveImageFile(folder / ToPath(file), bitmap, format))
                ++counts.exported;
            else
                ++counts.notSaved;
        } catch (const CError& error) {
            if (counts.failed++ == 0)
                counts.firstError = error.Text();
        }
    }
    progress.Report(total, total, {});
    return counts;
}
