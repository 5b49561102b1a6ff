#pragma once

// Puts a test's plugin libraries where it wants them.

#include <filesystem>
#include <string>

inline std::string StubFileName(const std::string& name)
{
#ifdef _WIN32
    return name + ".dll";
#else
    return name + ".so";
#endif
}

/// The library `stub` under the name `name`, with the extension of this system's libraries.
inline std::filesystem::path PlaceStub(const std::string& stub, const std::filesystem::path& folder,
                                       const std::string& name)
{
    const std::filesystem::path place = folder / StubFileName(name);
    std::filesystem::copy_file(std::filesystem::path(MAVREL_STUB_PLUGINS) / StubFileName(stub), place);
    return place;
}
