#pragma once

// The libraries of a folder, and the check that each passes before it is used, be it a codec plugin or an
// interface language: it names its kind and the build that it was made for.

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/DynamicLibrary.h"
#include "base/Prompt.h"

/// Type bits of a library.
inline constexpr std::uint32_t kLanguageLibrary = 16;
inline constexpr std::uint32_t kPluginLibrary = 32;
/// Libraries older than this, or newer than the program's own build number, are refused.
inline constexpr std::uint32_t kOldestLibraryBuild = 396;

/// The ending of a library's file name.
#ifdef _WIN32
inline constexpr std::wstring_view kLibraryExtension = L".dll";
#else
inline constexpr std::wstring_view kLibraryExtension = L".so";
#endif

/// The file names of the libraries of a folder, which need not exist, in the order in which Windows lists
/// them: by upper-case name. Names of more than 127 characters are left out.
std::vector<std::wstring> LibraryNames(const std::filesystem::path& folder);

/// Loads a library that says of itself that it is of the wanted type and of a build that fits. Otherwise
/// nothing: in silence when it cannot be loaded or lacks the exports, with "%s is not supported by this
/// build." when it does not fit. `shownPath` is the path as the message names it.
std::optional<CDynamicLibrary> LoadCompatibleLibrary(const std::filesystem::path& file,
                                                     const std::wstring& shownPath, std::uint32_t typeMask,
                                                     IPrompt& prompt);
