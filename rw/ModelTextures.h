#pragma once

// The texture names of a whole model: collecting, renaming, and the plain-text list. The counts in a model
// are not trusted: loops end with the sections that are there.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "rw/SimpleDFF.h"

namespace RW {

/// Every name that the materials of a clump use, each once, in order of first appearance; empty for any other
/// file. Names are compared exactly.
std::vector<std::wstring> CollectTextureNames(CSimpleDFF& model);

/// The same and every name that stands in the effects of a material, however they are stored: for whoever
/// deletes what no model uses.
std::vector<std::wstring> CollectUsedTextureNames(CSimpleDFF& model);

/// Renames every texture whose stored name is exactly `from`; returns how many there were. Effect names stay.
std::uint32_t RenameTextures(CSimpleDFF& model, std::wstring_view from, std::wstring_view to);

/// The name of the first texture of every material of the first geometry, each followed by a line feed. A
/// material without a texture is a stop box and has no line.
std::wstring PlainTextOf(CSimpleDFF& model);

}  // namespace RW
