#pragma once

// File names for a run that writes many files into one folder.

#include <cstdint>
#include <set>
#include <string>

#include "base/Text.h"

/// Gives out file names, each only once: a second "wall" becomes "wall_2". Case does not count, because it
/// does not on every file system.
class CUniqueNames {
public:
    std::wstring Take(const std::wstring& wanted)
    {
        std::wstring name = wanted;
        for (std::uint32_t number = 2; !m_aTaken.insert(ToLowerAscii(name)).second; ++number)
            name = wanted + L"_" + std::to_wstring(number);
        return name;
    }

private:
    std::set<std::wstring> m_aTaken;
};
