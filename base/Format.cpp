#include "base/Format.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "base/Text.h"

namespace {

// Texts of the program are short; a translation that asks for more is cut to this.
constexpr int kWidestField = 512;

struct Conversion {
    std::string flags;
    int width = 0;
    int precision = -1;
    wchar_t letter = 0;
    std::size_t length = 0;  // characters of the template, the percent sign included
};

bool IsDigit(wchar_t character)
{
    return character >= L'0' && character <= L'9';
}

int ReadNumber(std::wstring_view text, std::size_t& at)
{
    int number = 0;
    for (; at < text.size() && IsDigit(text[at]); ++at)
        number = std::min(number * 10 + static_cast<int>(text[at] - L'0'), kWidestField);
    return number;
}

// `text` begins with a percent sign. The letter stays 0 when the template ends too early.
Conversion ReadConversion(std::wstring_view text)
{
    Conversion conversion;
    std::size_t at = 1;
    for (; at < text.size() && std::wstring_view(L"-0+ ").find(text[at]) != std::wstring_view::npos; ++at)
        conversion.flags.push_back(static_cast<char>(text[at]));
    conversion.width = ReadNumber(text, at);
    if (at < text.size() && text[at] == L'.') {
        ++at;
        conversion.precision = ReadNumber(text, at);
    }
    while (at < text.size() && (text[at] == L'l' || text[at] == L'h'))
        ++at;
    if (at < text.size())
        conversion.letter = text[at++];
    conversion.length = at;
    return conversion;
}

template <class Value>
std::wstring Printed(const Conversion& conversion, const char* letters, Value value)
{
    std::string pattern = "%" + conversion.flags + "*";
    if (conversion.precision >= 0)
        pattern += "." + std::to_string(conversion.precision);
    pattern += letters;
    // A double has at most 309 digits before its point.
    std::array<char, 2 * kWidestField> buffer{};
    const int length = std::snprintf(buffer.data(), buffer.size(), pattern.c_str(), conversion.width, value);
    const auto kept = std::min<std::size_t>(static_cast<std::size_t>(std::max(length, 0)), buffer.size() - 1);
    return Widen({buffer.data(), kept});
}

std::wstring Padded(const Conversion& conversion, std::wstring_view text)
{
    if (conversion.precision >= 0)
        text = text.substr(0, static_cast<std::size_t>(conversion.precision));
    std::wstring field(text);
    const auto width = static_cast<std::size_t>(conversion.width);
    if (field.size() < width) {
        const bool left = conversion.flags.find('-') != std::string::npos;
        field.insert(left ? field.size() : 0, width - field.size(), L' ');
    }
    return field;
}

std::wstring Converted(const Conversion& conversion, const CFormatArgument& argument)
{
    switch (conversion.letter) {
        case L'd':
        case L'i':
            return Printed(conversion, "lld", static_cast<long long>(argument.Signed()));
        case L'u':
            return Printed(conversion, "llu", static_cast<unsigned long long>(argument.Unsigned()));
        case L'x':
            return Printed(conversion, "llx", static_cast<unsigned long long>(argument.Unsigned()));
        case L'X':
            return Printed(conversion, "llX", static_cast<unsigned long long>(argument.Unsigned()));
        case L'f':
            return Printed(conversion, "f", argument.Real());
        case L'c':
            return std::wstring(1, static_cast<wchar_t>(argument.Unsigned()));
        default:
            return Padded(conversion, argument.Text());
    }
}

}  // namespace

std::int64_t CFormatArgument::Signed() const
{
    const auto* bits = std::get_if<std::uint64_t>(&m_oValue);
    if (bits == nullptr)
        return 0;
    return m_bWide ? static_cast<std::int64_t>(*bits)
                   : static_cast<std::int32_t>(static_cast<std::uint32_t>(*bits));
}

std::uint64_t CFormatArgument::Unsigned() const
{
    const auto* bits = std::get_if<std::uint64_t>(&m_oValue);
    if (bits == nullptr)
        return 0;
    return m_bWide ? *bits : static_cast<std::uint32_t>(*bits);
}

double CFormatArgument::Real() const
{
    const auto* real = std::get_if<double>(&m_oValue);
    return real != nullptr ? *real : static_cast<double>(Signed());
}

std::wstring_view CFormatArgument::Text() const
{
    const auto* text = std::get_if<std::wstring_view>(&m_oValue);
    return text != nullptr ? *text : std::wstring_view();
}

std::wstring FormatList(std::wstring_view format, std::initializer_list<CFormatArgument> arguments)
{
    std::wstring out;
    const CFormatArgument* next = arguments.begin();
    while (!format.empty()) {
        if (format.front() != L'%') {
            out.push_back(format.front());
            format.remove_prefix(1);
            continue;
        }
        const Conversion conversion = ReadConversion(format);
        constexpr std::wstring_view kLetters = L"diuxXfsc";
        if (conversion.letter == L'%') {
            out.push_back(L'%');
        } else if (next == arguments.end() || kLetters.find(conversion.letter) == std::wstring_view::npos) {
            out.append(format.substr(0, conversion.length));
        } else {
            out += Converted(conversion, *next);
            ++next;
        }
        format.remove_prefix(conversion.length);
    }
    return out;
}
