#pragma once

// The ETC1 codec as C++ functions: what the plugin's exports call, and what tests, fuzz targets and
// benchmarks link. Everything is reentrant and works on the caller's buffers alone; buffers may have any
// alignment.

#include <cstdint>
#include <optional>

#include "plugins/common/InstructionSet.h"
#include "plugins/common/PluginInfo.h"

namespace Etc1 {

/// Decodes one level to width * height R G B A pixels, alpha always 255. Reads whole blocks of 8 bytes:
/// ceil(width / 4) * ceil(height / 4). Returns the bytes written, 0 when a side is 0 or the result would not
/// fit 32 bits. The instruction set never changes the pixels; none: the best one here. One that this
/// processor lacks must not be asked for.
std::uint32_t Decompress(const void* source, void* destination, std::uint32_t width, std::uint32_t height,
                         std::optional<Plugin::InstructionSet> instructionSet = std::nullopt);

struct EncodeOptions {
    Plugin::Quality quality = Plugin::Quality::Normal;
    Plugin::Dithering dithering = Plugin::Dithering::None;
    /// 0: as many as are worth their while for the size and the level.
    unsigned threads = 0;
    /// Never changes the bytes; none: the best one here. One that this processor lacks must not be asked for.
    std::optional<Plugin::InstructionSet> instructionSet = std::nullopt;
};

/// Encodes width x height R G B A pixels into whole blocks; alpha is not looked at. Returns the bytes
/// written, 0 for a size that is refused. Throws std::bad_alloc only with dithering
/// or more than one thread.
std::uint32_t Compress(const void* source, void* destination, std::uint32_t width, std::uint32_t height,
                       const EncodeOptions& options);

}  // namespace Etc1
