#pragma once

// Size and file-name texts. The separator of the file-name helpers is the backslash, on every platform: they
// work on texts of the user interface, not on paths.

#include <cstdint>
#include <string>
#include <string_view>

/// "1023 b", "1.00 KB", "1.00 MB"; empty from 1 GiB.
std::wstring FormatSize(std::uint32_t bytes);
/// The part after the last backslash; without the extension it is cut before its last dot, and empty without
/// one.
std::wstring GetFileTitle(std::wstring_view path, bool withExtension);
/// The part after the last dot; the whole path when there is none.
std::wstring GetFileExtension(std::wstring_view path);
/// Up to and including the last backslash; empty when there is none.
std::wstring GetFolder(std::wstring_view path);
