#include "bench/EncoderWork.h"

#include <algorithm>
#include <atomic>
#include <stdexcept>
#include <thread>

#include "codec/MipChain.h"
#include "demo/catalogue/Catalogue.h"
#include "image/BitmapTools.h"

namespace Bench {
namespace {

// A demo picture, turned about and with another tint each time that it comes up.
CBitmap Variation(const CBitmap& original, std::size_t round)
{
    auto picture = CBitmap::Create(kSampleSide, kSampleSide);
    if (!picture)
        throw std::runtime_error("there is not enough memory for the pictures");
    const auto source = original.Pixels();
    const std::size_t last = source.size() / 4 - 1;
    for (std::size_t pixel = 0; pixel <= last; ++pixel) {
        const std::size_t from = round % 2 == 0 ? pixel : last - pixel;
        for (std::size_t channel = 0; channel < 4; ++channel) {
            const std::size_t tint = channel == round % 3 ? 8 * round : 0;
            picture->Pixels()[pixel * 4 + channel] =
                static_cast<std::uint8_t>(std::min<std::size_t>(source[from * 4 + channel] + tint, 255));
        }
    }
    return std::move(*picture);
}

std::vector<CBitmap> DrawnPictures()
{
    std::vector<CBitmap> pictures;
    for (const Demo::Picture& picture : Demo::AllPictures())
        if (picture.category != "radar")
            if (auto scaled = ScaleBitmap(picture.draw().ToBitmap(), kSampleSide, kSampleSide))
                pictures.push_back(std::move(*scaled));
    if (pictures.empty())
        throw std::runtime_error("there are no demo pictures");
    return pictures;
}

/// What the encoders get for one picture: every level of its chain.
struct Level {
    PixelSize size;
    std::vector<std::byte> pixels;
};

std::vector<Level> LevelsOf(const EncoderSample& sample)
{
    std::vector<Level> levels;
    for (const PixelSize size : LevelSizes({kSampleSide, kSampleSide}, true))
        levels.push_back({size, ScaledRgbaPixels(sample.picture, size, sample.hasAlpha)});
    return levels;
}

std::uint64_t EncodeAll(const std::vector<Level>& levels, bool hasAlpha, const CPluginTable& plugins,
                        std::vector<std::byte>& out)
{
    std::uint64_t bytes = 0;
    for (const CacheIndex cache : {CacheIndex::Dxt, CacheIndex::Etc1, CacheIndex::Pvrtc}) {
        // ETC1 has no alpha; its cache gets packed pixels then.
        if (cache == CacheIndex::Etc1 && hasAlpha)
            continue;
        std::uint32_t flags = 0;
        if (hasAlpha)
            flags |= MavrelAlpha;
        if (cache == CacheIndex::Dxt)
            flags |= hasAlpha ? MavrelInterpolatedAlpha : MavrelDxt1;
        for (const Level& level : levels)
            bytes += plugins.Compress(cache)(level.pixels.data(), out.data(), level.size.width,
                                             level.size.height, hasAlpha ? 4 : 2, flags);
    }
    return bytes;
}

}  // namespace

std::vector<EncoderSample> MakeSamples(std::size_t count, std::size_t turn)
{
    const auto drawn = DrawnPictures();
    std::vector<EncoderSample> samples;
    for (std::size_t i = 0; i < count; ++i)
        samples.push_back(
            {.picture = Variation(drawn[i % drawn.size()], i / drawn.size()), .hasAlpha = i / turn % 2 == 1});
    return samples;
}

void TimeEncoders(std::span<const EncoderSample> samples, const CPluginTable& plugins, Times& times,
                  std::uint64_t& bytes)
{
    std::vector<std::vector<Level>> chains;
    for (const EncoderSample& sample : samples)
        chains.push_back(LevelsOf(sample));
    std::atomic<std::size_t> next = 0;
    std::atomic<std::uint64_t> written = 0;
    const auto work = [&] {
        std::vector<std::byte> out(std::size_t{kSampleSide} * kSampleSide * 4);
        for (std::size_t i = next++; i < samples.size(); i = next++)
            written += EncodeAll(chains[i], samples[i].hasAlpha, plugins, out);
    };
    times.Add([&] {
        std::vector<std::jthread> threads;
        for (unsigned i = 0; i < kEncoderThreads; ++i)
            threads.emplace_back(work);
    });
    bytes += written;
}

std::uint64_t EncodedBytes(CTextureDatabase& database)
{
    std::uint64_t bytes = 0;
    for (const CacheIndex cache : {CacheIndex::Dxt, CacheIndex::Etc1, CacheIndex::Pvrtc})
        for (std::uint32_t i = 0; i < database.EntryCount(); ++i) {
            const RasterHeader header = database.ReadHeader(i, cache);
            if (header.glFormat != GlFormat::Rgba4444)
                bytes += RasterSize(header);
        }
    return bytes;
}

bool IsWhole(const CTextureDatabase& database, std::size_t entries)
{
    bool isWhole = database.EntryCount() == entries;
    for (const CacheIndex cache : kAllCaches)
        isWhole = isWhole && database.IsTocValid(cache) && database.HasThumbnails(cache);
    return isWhole;
}

}  // namespace Bench
