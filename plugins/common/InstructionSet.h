#pragma once

// Which vector instructions the kernels of a codec may use. Every kernel exists for each of them and gives
// the same bytes, so the choice is about speed alone. Pure functions; nothing is owned.

#include <cstddef>
#include <cstdint>

namespace Plugin {

enum class InstructionSet : std::uint8_t { Portable, Sse41, Avx2 };

inline constexpr InstructionSet kEveryInstructionSet[] = {InstructionSet::Portable, InstructionSet::Sse41,
                                                          InstructionSet::Avx2};

/// True when this processor and this build have it.
bool IsSupported(InstructionSet set);

/// The widest supported one, or the one that the environment variable MAVREL_INSTRUCTION_SET names
/// ("portable", "sse4.1", "avx2") when that is supported. The answer does not change while the program runs.
InstructionSet PreferredInstructionSet();

/// Of the kernels that do one thing, in the order of the sets, the one of `set`; the first one where there
/// are no others.
template <typename Kernel, std::size_t Count>
constexpr Kernel KernelOf(InstructionSet set, const Kernel (&kernels)[Count])
{
    const auto index = static_cast<std::size_t>(set);
    return kernels[index < Count ? index : 0];
}

/// "portable", "SSE4.1", "AVX2", as plugins tell it to the user.
const char16_t* NameOf(InstructionSet set);

}  // namespace Plugin
