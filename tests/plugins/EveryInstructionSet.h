#pragma once

// Names for tests that run once for each instruction set.

#include <gtest/gtest.h>
#include <string>

#include "plugins/common/InstructionSet.h"

namespace PluginTest {

inline std::string NameOfSet(const testing::TestParamInfo<Plugin::InstructionSet>& info)
{
    switch (info.param) {
        case Plugin::InstructionSet::Portable:
            return "Portable";
        case Plugin::InstructionSet::Sse41:
            return "Sse41";
        case Plugin::InstructionSet::Avx2:
            return "Avx2";
    }
    return "";
}

}  // namespace PluginTest
