#include "plugins/etc1/Etc1.h"

#include "plugins/common/BlockLevel.h"
#include "plugins/etc1/BlockEncode.h"
#include "plugins/etc1/BlockFormat.h"
#include "plugins/etc1/RowDecode.h"

namespace Etc1 {
namespace {
// The depth of a base colour in the differential mode, which smooth pictures mostly get.
constexpr Plugin::ChannelBits kDitheringBits{5, 5, 5, 8};

void EncodeOne(const Plugin::BlockPixels& pixels, std::uint32_t option, std::uint8_t* out)
{
    EncodeBlock(pixels, static_cast<Plugin::Quality>(option), out);
}
}  // namespace

std::uint32_t Decompress(const void* source, void* destination, std::uint32_t width, std::uint32_t height)
{
    return Plugin::DecodeBlockLevel(static_cast<const std::uint8_t*>(source),
                                    static_cast<std::uint8_t*>(destination), width, height, kBlockBytes,
                                    DecodeRow());
}

std::uint32_t Compress(const void* source, void* destination, std::uint32_t width, std::uint32_t height,
                       const EncodeOptions& options)
{
    Plugin::BlockEncoder encoder{kBlockBytes, EncodeOne, static_cast<std::uint32_t>(options.quality),
                                 std::nullopt};
    if (options.dithering)
        encoder.dithering = kDitheringBits;
    return Plugin::EncodeBlockLevel(static_cast<const std::uint8_t*>(source),
                                    static_cast<std::uint8_t*>(destination), width, height, encoder);
}

}  // namespace Etc1
