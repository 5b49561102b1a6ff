#pragma once

// Text conversions. The files of the games hold one byte a character; names and user-interface text are wide;
// paths and terminals speak UTF-8 outside Windows. wchar_t has 16 bits on Windows and 32 elsewhere, so
// nothing outside this folder converts by itself.

#include <filesystem>
#include <string>
#include <string_view>

/// One byte becomes one character, 0-255.
std::wstring Widen(std::string_view bytes);
/// The low byte of every character. Code units, not characters, are counted on Windows; names have none above
/// 255.
std::string Narrow(std::wstring_view text);

/// UTF-8. Bytes that are not UTF-8 become U+DC80-U+DCFF and come back as they were.
std::wstring FromUtf8(std::string_view bytes);
std::string ToUtf8(std::wstring_view text);

std::filesystem::path ToPath(std::wstring_view text);
std::wstring FromPath(const std::filesystem::path& path);

/// A-Z to a-z and nothing else, so that all platforms and languages agree.
std::wstring ToLowerAscii(std::wstring_view text);
std::wstring ToUpperAscii(std::wstring_view text);
wchar_t ToLowerAscii(wchar_t character);
/// Without tabs, CR, LF and blanks at both ends.
std::wstring_view Trim(std::wstring_view text);
std::string_view Trim(std::string_view text);
