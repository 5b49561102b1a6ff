#pragma once

// Where this program lies: plugins and settings are found beside it.

#include <filesystem>

/// Absolute path of the running program; empty when the system does not tell.
std::filesystem::path ProgramPath();
