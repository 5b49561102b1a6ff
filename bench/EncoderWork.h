#pragma once

// What imports are measured against: pictures, and the calls of the encoders alone that importing those
// needs, on two threads.

#include <cstdint>
#include <ctime>
#include <span>
#include <vector>

#include "bench/Stopwatch.h"
#include "codec/PluginTable.h"
#include "database/TextureDatabase.h"
#include "image/Bitmap.h"

namespace Bench {

inline constexpr unsigned kEncoderThreads = 2;
/// Pixels a side of every sample.
inline constexpr std::uint32_t kSampleSide = 256;

struct EncoderSample {
    CBitmap picture;
    bool hasAlpha = false;
};

/// Demo pictures, turned about and with another tint each time that one comes up; as many with alpha as
/// without, in turns of `turn` pictures.
std::vector<EncoderSample> MakeSamples(std::size_t count, std::size_t turn);

struct Times {
    double seconds = 0;
    double processorSeconds = 0;  // of all threads together

    template <class Work>
    void Add(Work work)
    {
        const std::clock_t start = std::clock();
        seconds += ShortestRun(1, work);
        processorSeconds += static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
    }
};

/// Runs the encoders alone for some samples; adds up what they wrote.
void TimeEncoders(std::span<const EncoderSample> samples, const CPluginTable& plugins, Times& times,
                  std::uint64_t& bytes);
/// What of a database the encoders wrote.
std::uint64_t EncodedBytes(CTextureDatabase& database);
/// Whether it has so many entries, and rasters and thumbnails in every cache.
bool IsWhole(const CTextureDatabase& database, std::size_t entries);

}  // namespace Bench
