#include "codec/LibraryCheck.h"

#include "base/Format.h"
#include "codec/BuildNumber.h"
#include "plugins/plugin.h"

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
