#pragma once

// The four cache slots in their fixed order, and how they are called.

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

enum class CacheIndex : std::uint32_t { Dxt = 0, Etc1 = 1, Pvrtc = 2, Unc = 3 };

inline constexpr std::size_t kCacheCount = 4;
inline constexpr std::array kAllCaches = {CacheIndex::Dxt, CacheIndex::Etc1, CacheIndex::Pvrtc,
                                          CacheIndex::Unc};

/// "None" of offsets and alias targets.
inline constexpr std::uint32_t kNone = 0xFFFFFFFF;

constexpr std::size_t SlotOf(CacheIndex cache)
{
    return static_cast<std::size_t>(cache);
}

/// "DXT", "ETC1", "PVRTC", "UNC": the display name, which also heads the plugin's section of the settings.
constexpr std::wstring_view CacheName(CacheIndex cache)
{
    constexpr std::array<std::wstring_view, kCacheCount> kNames = {L"DXT", L"ETC1", L"PVRTC", L"UNC"};
    return kNames[SlotOf(cache)];
}

/// "dxt", "etc", "pvr", "unc": the infix of the cache's file names.
constexpr std::wstring_view CacheInfix(CacheIndex cache)
{
    constexpr std::array<std::wstring_view, kCacheCount> kInfixes = {L"dxt", L"etc", L"pvr", L"unc"};
    return kInfixes[SlotOf(cache)];
}

/// The cache of an infix, which is compared exactly.
constexpr std::optional<CacheIndex> CacheFromInfix(std::wstring_view infix)
{
    for (const CacheIndex cache : kAllCaches)
        if (CacheInfix(cache) == infix)
            return cache;
    return std::nullopt;
}
