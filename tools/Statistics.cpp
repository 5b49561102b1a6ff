#include "tools/Statistics.h"

#include <array>

#include "base/Format.h"
#include "tools/TextureFacts.h"

namespace {

constexpr std::wstring_view kSeparator = L"\n-----------------------------------------------------------\n\n";

struct Sums {
    std::uint32_t aliases = 0;
    std::array<std::uint32_t, kCacheCount> caches{};
    std::uint32_t grand = 0;
};

// 32-bit sums that wrap, as the report's numbers always did.
Sums SumSizes(CTextureDatabase& database)
{
    Sums sums;
    for (std::uint32_t index = 0; index < database.EntryCount(); ++index) {
        const bool isAlias = database.IsAlias(index);
        if (isAlias)
            ++sums.aliases;
        const TextureEntry& entry = isAlias ? database.Entry(index) : database.ResolvedEntry(index);
        for (const CacheIndex cache : kAllCaches) {
            if (!database.IsOpen(cache))
                continue;
            std::uint32_t& sum = sums.caches[SlotOf(cache)];
            if (!isAlias)
                sum += static_cast<std::uint32_t>(RasterSize(entry.rasterHeader[SlotOf(cache)]));
            sums.grand += sum;
        }
    }
    return sums;
}

double Megabytes(std::uint32_t bytes)
{
    return bytes / 1024.0 / 1024.0;
}

}  // namespace

std::wstring StatisticsText(CTextureDatabase& database)
{
    const auto primary = database.PrimaryCache();
    const StreamMode game =
        primary && database.EntryCount() != 0 ? database.GameOf(0, *primary) : StreamMode::Auto;
    const Sums sums = SumSizes(database);

    std::wstring text = Format(L"Game: %s\n", GameName(game));
    text += kSeparator;
    text += Format(L"Total:     %d\n", database.EntryCount());
    text += Format(L"Originals: %d\n", database.EntryCount() - sums.aliases);
    text += Format(L"Aliases:   %d\n", sums.aliases);
    text += kSeparator;
    for (const CacheIndex cache : kAllCaches)
        if (database.IsOpen(cache))
            text += Format(L"%s size: %0.3f MB\n", CacheInfix(cache), Megabytes(sums.caches[SlotOf(cache)]));
    text += Format(L"TOTAL size: %0.3f MB\n", Megabytes(sums.grand));
    return text;
}
