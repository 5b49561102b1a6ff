#include "base/DynamicLibrary.h"

#include <dlfcn.h>
#include <system_error>

std::optional<CDynamicLibrary> CDynamicLibrary::Load(const std::filesystem::path& file)
{
    std::error_code error;
    const auto absolute = std::filesystem::absolute(file, error);
    void* handle = error ? nullptr : ::dlopen(absolute.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr)
        return std::nullopt;
    return CDynamicLibrary(handle);
}

CDynamicLibrary::AnyFunction CDynamicLibrary::FindAddress(const char* name) const
{
    return reinterpret_cast<AnyFunction>(::dlsym(m_pHandle.get(), name));  // NOLINT: what dlsym is for
}

void CDynamicLibrary::Unload::operator()(void* handle) const
{
    ::dlclose(handle);
}
