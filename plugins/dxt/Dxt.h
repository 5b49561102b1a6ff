#pragma once

// The DXT codec as C++ functions: what the plugin's exports call, and what tests, fuzz targets and benchmarks
// link. Everything is reentrant and works on the caller's buffers alone.

#include <cstddef>
#include <cstdint>
#include <optional>

#include "plugins/common/InstructionSet.h"
#include "plugins/common/PluginInfo.h"

namespace Dxt {

enum class Variant : std::uint32_t {
    Dxt1,       ///< opaque; the fourth colour of a three-colour block is opaque black
    Dxt1Alpha,  ///< the fourth colour of a three-colour block is transparent black
    Dxt3,       ///< four bits of alpha a pixel
    Dxt5,       ///< alpha interpolated between two values
};

/// The variant that a flag word asks for (see plugin.h); none when it names no variant.
std::optional<Variant> VariantOf(std::uint32_t flags);

/// 8 for the DXT1 family, else 16.
std::size_t BlockBytes(Variant variant);

/// Decodes one level to width * height R G B A pixels. Reads whole blocks: ceil(width / 4) * ceil(height /
/// 4). Returns the bytes written, 0 when a side is 0 or the result would not fit 32 bits. `set` never changes
/// the bytes; none: the best one here. One that this processor lacks must not be asked for.
std::uint32_t Decompress(const void* source, void* destination, std::uint32_t width, std::uint32_t height,
                         Variant variant, std::optional<Plugin::InstructionSet> set = std::nullopt);

struct EncodeOptions {
    Variant variant = Variant::Dxt1;
    Plugin::Quality quality = Plugin::Quality::Normal;
    Plugin::Dithering dithering = Plugin::Dithering::None;
    /// 0: as many as are worth their while for the size and the level.
    unsigned threads = 0;
    /// Never changes the bytes; none: the best one here. One that this processor lacks must not be asked for.
    std::optional<Plugin::InstructionSet> instructionSet = std::nullopt;
};

/// Encodes width x height R G B A pixels into whole blocks. Returns the bytes written, 0 for a size that is
/// refused. Throws std::bad_alloc only with dithering.
std::uint32_t Compress(const void* source, void* destination, std::uint32_t width, std::uint32_t height,
                       const EncodeOptions& options);

}  // namespace Dxt
