#pragma once

// Numbers in the TXT list, read as the C library's scanf family reads them: leading blanks and a sign are
// taken, what follows the digits is left alone.

#include <cstdint>
#include <optional>
#include <string_view>

/// A signed decimal. Values beyond 32 bits are clamped.
std::optional<std::int32_t> ScanDecimal(std::string_view text);
/// A hexadecimal number of at most eight characters, sign and "0x" included.
std::optional<std::uint32_t> ScanHex(std::string_view text);
/// What "%s" reads: the next word, after any blanks.
std::string_view ScanWord(std::string_view text);

/// True for what the C library calls white space.
constexpr bool IsScanBlank(char character)
{
    return character == ' ' || (character >= '\t' && character <= '\r');
}
