#pragma once

// Runs command lines in the process and keeps what they print.

#include <filesystem>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "cli/ExitCode.h"
#include "image/Bitmap.h"
#include "tests/support/DatabaseBuilder.h"

struct CommandResult {
    ExitCode code = ExitCode::Done;
    std::string out;
    std::string err;
};

/// The words after the program's name. The plugins of this build are used, and no settings.
CommandResult RunCommand(const std::vector<std::wstring>& words);

/// A picture whose pixels all differ: red by column, green by row, alpha falling by column.
CBitmap Gradient(std::uint32_t width, std::uint32_t height);
void SavePicture(const std::filesystem::path& file, const CBitmap& picture);
