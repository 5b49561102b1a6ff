// A hostile record, from the cache file to the bitmap, through the real decoders. The first byte chooses the
// game, raster or thumbnail, and whether a decoder for uncompressed rasters is bound; the rest is the record
// file.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

#include "codec/RasterDecoding.h"
#include "plugins/dxt/Dxt.h"
#include "plugins/etc1/Etc1.h"
#include "plugins/pvrtc/PvrtcDecode.h"
#include "tests/support/MemoryFileSystem.h"

namespace {

constexpr std::uint32_t kMostPixels = 1U << 18;
constexpr std::size_t kHeaderBytes = 8;

class CSilentPrompt final : public IPrompt {
public:
    PromptAnswer Show(const PromptBox& box) override
    {
        return box.buttons == PromptButtons::Ok ? PromptAnswer::Ok : PromptAnswer::No;
    }
};

std::uint32_t DecodeDxt(const void* source, void* destination, std::uint32_t width, std::uint32_t height,
                        std::uint32_t, std::uint32_t flags)
{
    const auto variant = Dxt::VariantOf(flags);
    return variant ? Dxt::Decompress(source, destination, width, height, *variant) : 0;
}

std::uint32_t DecodeEtc1(const void* source, void* destination, std::uint32_t width, std::uint32_t height,
                         std::uint32_t, std::uint32_t)
{
    return Etc1::Decompress(source, destination, width, height);
}

std::uint32_t DecodePvrtc(const void* source, void* destination, std::uint32_t width, std::uint32_t height,
                          std::uint32_t mode, std::uint32_t)
{
    return Pvrtc::PvrtcDecode(static_cast<const std::uint8_t*>(source),
                              static_cast<std::uint8_t*>(destination), width, height, mode);
}

std::uint32_t DecodeUnc(const void* source, void* destination, std::uint32_t width, std::uint32_t height,
                        std::uint32_t, std::uint32_t)
{
    std::memcpy(destination, source, std::size_t{width} * height * 2);
    return width * height * 2;
}

std::vector<std::byte> BytesOf(std::string_view text)
{
    const auto bytes = std::as_bytes(std::span(text));
    return {bytes.begin(), bytes.end()};
}

std::uint32_t PixelsOf(std::span<const std::byte> record)
{
    if (record.size() < kHeaderBytes)
        return 0;
    const auto word = [record](std::size_t at) {
        return std::to_integer<std::uint32_t>(record[at]) | std::to_integer<std::uint32_t>(record[at + 1])
                                                                << 8;
    };
    return word(4) * (word(6) & 0x7FFFU);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const std::uint8_t choice = data[0];
    const auto record = std::as_bytes(std::span(data, size)).subspan(1);
    // Large pictures are allowed to take long; the fuzzer should look for other things.
    if (PixelsOf(record) > kMostPixels)
        return 0;
    CMemoryFileSystem files;
    files.Put("t.txt", BytesOf("\"a\" width=4 height=4\n"));
    files.Put("t.dxt.dat", {record.begin(), record.end()});
    files.Put("t.dxt.tmb", {record.begin(), record.end()});

    CPluginTable plugins;
    plugins.BindFunctions(CacheIndex::Dxt, nullptr, DecodeDxt);
    plugins.BindFunctions(CacheIndex::Etc1, nullptr, DecodeEtc1);
    plugins.BindFunctions(CacheIndex::Pvrtc, nullptr, DecodePvrtc);
    if ((choice & 8U) != 0)
        plugins.BindFunctions(CacheIndex::Unc, nullptr, DecodeUnc);

    CSilentPrompt prompt;
    CTextureDatabase database(static_cast<StreamMode>((choice & 3U) % 3), files, prompt);
    database.Open("t.txt");
    const RecordKind kind = (choice & 4U) != 0 ? RecordKind::Thumbnail : RecordKind::Raster;
    try {
        if (const auto decoded = DecodeTexture(database, plugins, 0, CacheIndex::Dxt, kind))
            ToBitmap(*decoded);
    } catch (const CError&) {
        // Most records are refused; that is what the check is for.
        return 0;
    }
    return 0;
}
