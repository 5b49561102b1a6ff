#pragma once

// The decoding kernels: one row of whole blocks into four rows of pixels. The portable kernel is the
// definition; the others give the same bytes for every input.

#include <cstddef>
#include <cstdint>

#include "plugins/common/BlockLevel.h"
#include "plugins/common/InstructionSet.h"

namespace Etc1 {

/// The kernel of an instruction set that IsSupported() allows.
Plugin::DecodeRowFn DecodeRowFor(Plugin::InstructionSet set);

void DecodeRow_Portable(const std::uint8_t* blocks, std::size_t count, std::uint8_t* out, std::size_t stride);
void DecodeRow_Sse41(const std::uint8_t* blocks, std::size_t count, std::uint8_t* out, std::size_t stride);
void DecodeRow_Avx2(const std::uint8_t* blocks, std::size_t count, std::uint8_t* out, std::size_t stride);

}  // namespace Etc1
