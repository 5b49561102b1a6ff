#include "base/DynamicLibrary.h"

#include "base/Windows.h"

#include <system_error>

std::optional<CDynamicLibrary> CDynamicLibrary::Load(const std::filesystem::path& file)
{
    std::error_code error;
    const auto absolute = std::filesystem::absolute(file, error);
    HMODULE handle =
        error ? nullptr : ::LoadLibraryExW(absolute.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    if (handle == nullptr)
        return std::nullopt;
    return CDynamicLibrary(handle);
}

CDynamicLibrary::AnyFunction CDynamicLibrary::FindAddress(const char* name) const
{
    return reinterpret_cast<AnyFunction>(  // NOLINT: what GetProcAddress is for
        reinterpret_cast<void*>(::GetProcAddress(static_cast<HMODULE>(m_pHandle.get()), name)));
}

void CDynamicLibrary::Unload::operator()(void* handle) const
{
    ::FreeLibrary(static_cast<HMODULE>(handle));
}
