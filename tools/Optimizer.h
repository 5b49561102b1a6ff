#pragma once

// The duplicate optimizer: finds textures that have the same name or the same picture, and turns the later
// ones into aliases of the first, or deletes them. It works out first what is to be done and does it then in
// one pass over each file; stopped before that, it has changed nothing. It borrows the database and the host.

#include <cstdint>
#include <string_view>
#include <vector>

#include "base/Progress.h"
#include "database/TextureDatabase.h"
#include "tools/EditorHost.h"

enum class OptimizeMode : std::uint32_t { AliasNames, DeleteNames, AliasRasters };

/// In the order of the list that they are chosen from.
enum class RasterComparison : std::uint32_t { MD5, MD5Decoded, Difference, DifferenceDecoded };

struct OptimizeOptions {
    OptimizeMode mode = OptimizeMode::AliasNames;
    CacheIndex cache = CacheIndex::Dxt;  // the rest is for rasters only
    RasterComparison comparison = RasterComparison::MD5;
    /// Textures match when they differ by less than four times this; nothing differs by less than 0.
    std::int32_t value = kDefaultValue;
    unsigned jobs = 0;  // threads; 0: one for every core
    /// Bytes of rasters or pictures that are held at once, so that each is decoded once when they fit.
    std::uint64_t memoryLimit = std::uint64_t{512} << 20;

    static constexpr std::int32_t kDefaultValue = 5;
};

struct OptimizeCounts {
    std::uint32_t aliased = 0;         ///< textures that became aliases
    std::uint32_t deleted = 0;         ///< textures that were deleted as duplicates
    std::uint32_t deletedAliases = 0;  ///< aliases that went with them
    std::uint32_t leftAlone = 0;       ///< duplicates whose alias would not fit into the list
    std::uint32_t notCompared = 0;     ///< textures with a raster that cannot be read or decoded
    bool wasStopped = false;           ///< nothing has changed
};

/// A number as a person types it: blanks, a sign, digits, and whatever stands behind them. No digits are 0;
/// what is too large counts as the largest number that there is.
std::int32_t ParseComparisonValue(std::wstring_view text);

class COptimizerList;

class COptimizer {
public:
    COptimizer(CTextureDatabase& database, IEditorHost& host, IProgress& progress)
        : m_rDatabase(database), m_rHost(host), m_rProgress(progress)
    {
    }

    /// Throws CError when a change to the files fails; what was done until then stays.
    OptimizeCounts Run(const OptimizeOptions& options);

private:
    void AliasNames();
    void DeleteNames();
    void AliasHashes(const OptimizeOptions& options);
    void AliasDifferences(const OptimizeOptions& options);
    bool ReportPlace(const COptimizerList& list, std::uint32_t place, std::uint32_t count);
    void Apply(const COptimizerList& list);
    void DeleteAll(const std::vector<std::uint32_t>& indices);

    CTextureDatabase& m_rDatabase;
    IEditorHost& m_rHost;
    IProgress& m_rProgress;
    OptimizeCounts m_oCounts;
};
