#include "base/ProgramPath.h"

#include <system_error>

std::filesystem::path ProgramPath()
{
    std::error_code ignored;
    return std::filesystem::read_symlink("/proc/self/exe", ignored);
}
