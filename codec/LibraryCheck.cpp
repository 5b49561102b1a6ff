#include "codec/LibraryCheck.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "base/Format.h"
#include "base/Text.h"
#include "codec/BuildNumber.h"
#include "plugins/plugin.h"

namespace {

constexpr std::size_t kLongestFileName = 127;

bool IsLibraryName(std::wstring_view name)
{
    return name.size() <= kLongestFileName && name.size() >= kLibraryExtension.size() &&
           ToLowerAscii(name.substr(name.size() - kLibraryExtension.size())) == kLibraryExtension;
}

}  // namespace

std::vector<std::wstring> LibraryNames(const std::filesystem::path& folder)
{
    std::vector<std::wstring> names;
    std::error_code error;
    std::filesystem::directory_iterator at(folder, error);
    while (!error && at != std::filesystem::directory_iterator()) {
        std::wstring name = FromPath(at->path().filename());
        if (IsLibraryName(name))
            names.push_back(std::move(name));
        at.increment(error);
    }
    std::sort(names.begin(), names.end(), [](const std::wstring& a, const std::wstring& b) {
        return std::pair(ToUpperAscii(a), a) < std::pair(ToUpperAscii(b), b);
    });
    return names;
}

std::optional<CDynamicLibrary> LoadCompatibleLibrary(const std::filesystem::path& file,
                                                     const std::wstring& shownPath, std::uint32_t typeMask,
                                                     IPrompt& prompt)
{
    auto library = CDynamicLibrary::Load(file);
    if (!library)
        return std::nullopt;
    const auto buildId = library->Find<MavrelGetDllBuildIdFn>("GetDLLBuildID");
    const auto type = library->Find<MavrelGetDllTypeFn>("GetDLLType");
    // Deliberate: a library that is refused stays loaded. LibraryCheck.LeavesARefusedLibraryLoaded pins it.
    if (buildId == nullptr || type == nullptr) {
        library->Leak();
        return std::nullopt;
    }
    const std::uint32_t typeBits = type();
    const std::uint32_t build = buildId();
    if ((typeBits & typeMask) != 0 && build >= kOldestLibraryBuild && build <= BuildNumber())
        return library;
    library->Leak();
    prompt.ShowError(Format(L"%s is not supported by this build.", shownPath));
    return std::nullopt;
}
