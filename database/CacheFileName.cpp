#include "database/CacheFileName.h"

#include <algorithm>
#include <string>

#include "base/Text.h"

std::filesystem::path CacheFilePath(const std::filesystem::path& list, CacheIndex cache,
                                    std::wstring_view extension)
{
    constexpr std::size_t kExtensionLength = 4;
    std::wstring path = FromPath(list);
    path.resize(path.size() - std::min(path.size(), kExtensionLength));
    path += L'.';
    path += CacheInfix(cache);
    path += extension;
    return ToPath(path);
}
