#include "plugins/common/InstructionSet.h"

#include <cstdlib>
#include <string_view>

#if defined(_MSC_VER) && defined(_M_X64)
#include <immintrin.h>
#include <intrin.h>
#endif

namespace Plugin {
namespace {
#if defined(_MSC_VER) && defined(_M_X64)
bool HasSse41()
{
    int info[4];
    __cpuid(info, 1);
    return (info[2] >> 19 & 1) != 0;
}

// The processor has it and the system saves the wide registers.
bool HasAvx2()
{
    int info[4];
    __cpuid(info, 1);
    const bool savesRegisters = (info[2] >> 27 & 1) != 0 && (_xgetbv(0) & 6) == 6;
    __cpuidex(info, 7, 0);
    return savesRegisters && (info[1] >> 5 & 1) != 0;
}
#elif defined(__x86_64__)
bool HasSse41()
{
    __builtin_cpu_init();
    return __builtin_cpu_supports("sse4.1") != 0;
}

bool HasAvx2()
{
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx2") != 0;
}
#else
bool HasSse41()
{
    return false;
}

bool HasAvx2()
{
    return false;
}
#endif

InstructionSet Chosen()
{
    InstructionSet widest = InstructionSet::Portable;
    for (const InstructionSet set : kEveryInstructionSet)
        if (IsSupported(set))
            widest = set;
    const char* const wanted = std::getenv("MAVREL_INSTRUCTION_SET");
    const std::string_view name = wanted == nullptr ? "" : wanted;
    if (name == "portable")
        return InstructionSet::Portable;
    if (name == "sse4.1" && IsSupported(InstructionSet::Sse41))
        return InstructionSet::Sse41;
    return widest;
}
}  // namespace

bool IsSupported(InstructionSet set)
{
    switch (set) {
        case InstructionSet::Portable:
            return true;
        case InstructionSet::Sse41:
            return HasSse41();
        case InstructionSet::Avx2:
            return HasAvx2();
    }
    return false;
}

InstructionSet PreferredInstructionSet()
{
    static const InstructionSet kChosen = Chosen();
    return kChosen;
}

const char16_t* NameOf(InstructionSet set)
{
    switch (set) {
        case InstructionSet::Portable:
            return u"portable";
        case InstructionSet::Sse41:
            return u"SSE4.1";
        case InstructionSet::Avx2:
            return u"AVX2";
    }
    return u"";
}

}  // namespace Plugin
