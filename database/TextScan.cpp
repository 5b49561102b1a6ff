#include "database/TextScan.h"

#include <algorithm>
#include <cstddef>
#include <limits>

namespace {

std::string_view WithoutLeadingBlanks(std::string_view text)
{
    while (!text.empty() && IsScanBlank(text.front()))
        text.remove_prefix(1);
    return text;
}

bool TakeSign(std::string_view& text)
{
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+'))
        text.remove_prefix(1);
    return negative;
}

std::uint32_t HexDigit(char character)
{
    if (character >= '0' && character <= '9')
        return static_cast<std::uint32_t>(character - '0');
    if (character >= 'a' && character <= 'f')
        return static_cast<std::uint32_t>(character - 'a') + 10;
    if (character >= 'A' && character <= 'F')
        return static_cast<std::uint32_t>(character - 'A') + 10;
    return 16;
}

}  // namespace

std::optional<std::int32_t> ScanDecimal(std::string_view text)
{
    constexpr std::int64_t kMost = std::numeric_limits<std::int32_t>::max();
    text = WithoutLeadingBlanks(text);
    const bool negative = TakeSign(text);
    std::int64_t magnitude = 0;
    std::size_t digits = 0;
    for (; digits < text.size() && text[digits] >= '0' && text[digits] <= '9'; ++digits)
        magnitude = std::min(magnitude * 10 + (text[digits] - '0'), kMost + 1);
    if (digits == 0)
        return std::nullopt;
    return static_cast<std::int32_t>(negative ? -magnitude : std::min(magnitude, kMost));
}

std::optional<std::uint32_t> ScanHex(std::string_view text)
{
    constexpr std::size_t kFieldWidth = 8;
    text = WithoutLeadingBlanks(text).substr(0, kFieldWidth);
    const bool negative = TakeSign(text);
    if (text.starts_with("0x") || text.starts_with("0X"))
        text.remove_prefix(2);
    std::uint32_t value = 0;
    std::size_t digits = 0;
    for (; digits < text.size() && HexDigit(text[digits]) < 16; ++digits)
        value = value << 4 | HexDigit(text[digits]);
    if (digits == 0)
        return std::nullopt;
    return negative ? 0U - value : value;
}

std::string_view ScanWord(std::string_view text)
{
    text = WithoutLeadingBlanks(text);
    std::size_t end = 0;
    while (end < text.size() && !IsScanBlank(text[end]))
        ++end;
    return text.substr(0, end);
}
