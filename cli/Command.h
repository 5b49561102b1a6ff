#pragma once

// A command of mavrel-cli: its words, its help and what it does. Each group of commands is a file of its own
// that lists its commands in a table.

#include <span>
#include <string_view>

#include "cli/Session.h"

struct Command {
    std::wstring_view name;
    std::wstring_view syntax;  // what follows the name
    std::wstring_view help;
    std::size_t fewestWords;
    std::size_t mostWords;
    OptionNames options;
    ExitCode (*run)(CSession& session, const CArguments& arguments);
};

inline constexpr std::size_t kAnyNumber = static_cast<std::size_t>(-1);

std::span<const Command> DatabaseCommands();
std::span<const Command> RepairCommands();
std::span<const Command> EditCommands();
std::span<const Command> PictureCommands();
std::span<const Command> RenderWareCommands();
std::span<const Command> ImgCommands();
std::span<const Command> OptimizeCommands();
std::span<const Command> ConvertCommands();
std::span<const Command> RadarCommands();
std::span<const Command> ProgramCommands();

/// Runs one command line without the program's name, and turns everything that can go wrong into an exit
/// code.
ExitCode RunCommandLine(const std::vector<std::wstring>& words);
