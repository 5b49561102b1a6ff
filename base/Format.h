#pragma once

// The printf-style formatter behind every text of the program. Its templates come from resources and
// translations, so an argument of the wrong kind or a missing one must never read wild memory: arguments
// carry their type.

#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <variant>

/// One argument. Integers remember their width, so that "%d" of an unsigned 32-bit value shows it as signed
/// 32 bits.
class CFormatArgument {
public:
    template <std::integral T>
    CFormatArgument(T value)  // NOLINT(google-explicit-constructor): arguments are written as plain values
        : m_oValue(static_cast<std::uint64_t>(static_cast<std::int64_t>(value))), m_bWide(sizeof(T) > 4)
    {
    }
    CFormatArgument(double value) : m_oValue(value) {}
    CFormatArgument(std::wstring_view text) : m_oValue(text) {}
    CFormatArgument(const std::wstring& text) : m_oValue(std::wstring_view(text)) {}
    CFormatArgument(const wchar_t* text) : m_oValue(std::wstring_view(text)) {}

    std::int64_t Signed() const;
    std::uint64_t Unsigned() const;
    double Real() const;
    std::wstring_view Text() const;

private:
    std::variant<std::uint64_t, double, std::wstring_view> m_oValue;
    bool m_bWide = false;
};

/// As printf: flags "-", "0", "+" and " ", width and precision as digits, conversions d i u x X f s c and
/// "%%"; length letters (h, l, ll) are read over. A conversion without an argument, or one that is not known,
/// stays as it stands.
std::wstring FormatList(std::wstring_view format, std::initializer_list<CFormatArgument> arguments);

template <class... Arguments>
std::wstring Format(std::wstring_view format, const Arguments&... arguments)
{
    return FormatList(format, {CFormatArgument(arguments)...});
}
