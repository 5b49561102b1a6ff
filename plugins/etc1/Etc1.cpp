#include "plugins/etc1/Etc1.h"

#include "plugins/common/BlockLevel.h"
#include "plugins/common/LevelEncode.h"
#include "plugins/common/RowTeam.h"
#include "plugins/etc1/BlockFormat.h"
#include "plugins/etc1/EncodeKernels.h"
#include "plugins/etc1/RowDecode.h"

namespace Etc1 {
namespace {
// Pixels for which a thread of its own takes about half a millisecond off the call, many times what starting
// it costs; by quality level, in the order of Plugin::Quality.
constexpr std::uint64_t kPixelsPerThread[] = {1U << 15, 1U << 18, 1U << 12, 1U << 11};

Plugin::InstructionSet SetOrPreferred(std::optional<Plugin::InstructionSet> set)
{
    return set ? *set : Plugin::PreferredInstructionSet();
}
}  // namespace

std::uint32_t Decompress(const void* source, void* destination, std::uint32_t width, std::uint32_t height,
                         std::optional<Plugin::InstructionSet> instructionSet)
{
    return Plugin::DecodeBlockLevel(static_cast<const std::uint8_t*>(source),
                                    static_cast<std::uint8_t*>(destination), width, height, kBlockBytes,
                                    DecodeRowFor(SetOrPreferred(instructionSet)));
}

std::uint32_t Compress(const void* source, void* destination, std::uint32_t width, std::uint32_t height,
                       const EncodeOptions& options)
{
    const Plugin::InstructionSet set = SetOrPreferred(options.instructionSet);
    Plugin::LevelEncoder encoder{EncodeKernelsFor(set).encode[static_cast<std::size_t>(options.quality)],
                                 kBlockBytes,
                                 {options.dithering, DecodeRowFor(set)},
                                 options.threads};
    if (encoder.threads == 0)
        encoder.threads = Plugin::TeamSizeFor(std::uint64_t{width} * height,
                                              kPixelsPerThread[static_cast<std::size_t>(options.quality)]);
    return Plugin::EncodeLevel(static_cast<const std::uint8_t*>(source),
                               static_cast<std::uint8_t*>(destination), width, height, encoder);
}

}  // namespace Etc1
