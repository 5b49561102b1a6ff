#pragma once

// Encodes one 4x4 block: tries both ways to halve it and both ways to store the base colours, and writes the
// best. Pure: the same pixels and level always give the same bytes.

#include <cstdint>

#include "plugins/common/BlockLevel.h"
#include "plugins/common/PluginInfo.h"

namespace Etc1 {

/// Writes kBlockBytes bytes to `out`.
void EncodeBlock(const Plugin::BlockPixels& pixels, Plugin::Quality quality, std::uint8_t* out);

}  // namespace Etc1
