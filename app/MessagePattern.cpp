#include "app/MessagePattern.h"

namespace {

constexpr std::wstring_view kDigits = L"0123456789";
constexpr std::wstring_view kHexDigits = L"0123456789abcdefABCDEF";
constexpr std::wstring_view kConversionLetters = L"diuxXfsc";

std::size_t CountOf(std::wstring_view text, std::size_t from, std::wstring_view allowed)
{
    const std::size_t end = text.find_first_not_of(allowed, from);
    return (end == std::wstring_view::npos ? text.size() : end) - from;
}

// `format` begins with a percent sign: the length of the conversion, or 0 when it is none.
std::size_t ConversionLength(std::wstring_view format)
{
    std::size_t at = 1 + CountOf(format, 1, L"-0+ ");
    at += CountOf(format, at, kDigits);
    if (at < format.size() && format[at] == L'.')
        at += 1 + CountOf(format, at + 1, kDigits);
    at += CountOf(format, at, L"lh");
    return at < format.size() && kConversionLetters.find(format[at]) != std::wstring_view::npos ? at + 1 : 0;
}

// How much of the front of `text` is a number as the conversion writes it; 0 when there is none.
std::size_t NumberLength(wchar_t letter, std::wstring_view text)
{
    const std::size_t blanks = CountOf(text, 0, L" ");
    std::size_t at = blanks;
    if (at < text.size() && text[at] == L'-')
        ++at;
    const bool isHex = letter == L'x' || letter == L'X';
    const std::size_t digits = CountOf(text, at, isHex ? kHexDigits : kDigits);
    if (digits == 0)
        return 0;
    at += digits;
    if (letter == L'f' && at < text.size() && text[at] == L'.')
        at += 1 + CountOf(text, at + 1, kDigits);
    return at;
}

}  // namespace

CMessagePattern::CMessagePattern(std::wstring_view format)
    : m_aLiterals(1), m_bOneLine(format.find(L'\n') == std::wstring_view::npos)
{
    while (!format.empty()) {
        std::size_t taken = format.front() == L'%' ? ConversionLength(format) : 0;
        if (taken != 0) {
            m_aConversions.emplace_back(format.substr(0, taken));
            m_aLiterals.emplace_back();
        } else {
            m_aLiterals.back().push_back(format.front());
            taken = format.starts_with(L"%%") ? 2 : 1;
        }
        format.remove_prefix(taken);
    }
}

std::size_t CMessagePattern::FixedLength() const
{
    std::size_t length = 0;
    for (const std::wstring& literal : m_aLiterals)
        length += literal.size();
    return length;
}

std::optional<std::vector<std::wstring_view>> CMessagePattern::Match(std::wstring_view text) const
{
    std::vector<std::wstring_view> found;
    if (!MatchFrom(0, text, found))
        return std::nullopt;
    return found;
}

// `text` is what is left from the literal before the given conversion on.
bool CMessagePattern::MatchFrom(std::size_t conversion, std::wstring_view text,
                                std::vector<std::wstring_view>& found) const
{
    const std::wstring& literal = m_aLiterals[conversion];
    if (!text.starts_with(literal))
        return false;
    text.remove_prefix(literal.size());
    if (conversion == m_aConversions.size())
        return text.empty();
    const wchar_t letter = m_aConversions[conversion].back();
    if (letter == L's')
        return MatchText(conversion, text, found);
    const std::size_t length = letter == L'c' ? 1 : NumberLength(letter, text);
    if (length == 0 || length > text.size())
        return false;
    found.push_back(text.substr(0, length));
    if (MatchFrom(conversion + 1, text.substr(length), found))
        return true;
    found.pop_back();
    return false;
}

// A text may hold what follows it in the format, so the shortest one is taken that lets the rest match.
bool CMessagePattern::MatchText(std::size_t conversion, std::wstring_view text,
                                std::vector<std::wstring_view>& found) const
{
    const std::size_t lineEnd = text.find(L'\n');
    const std::size_t longest = m_bOneLine && lineEnd != std::wstring_view::npos ? lineEnd : text.size();
    for (std::size_t length = 0; length <= longest; ++length) {
        found.push_back(text.substr(0, length));
        if (MatchFrom(conversion + 1, text.substr(length), found))
            return true;
        found.pop_back();
    }
    return false;
}

std::wstring CMessagePattern::Fill(const std::vector<std::wstring>& arguments) const
{
    std::wstring out = m_aLiterals.front();
    for (std::size_t conversion = 0; conversion < m_aConversions.size(); ++conversion) {
        out += conversion < arguments.size() ? arguments[conversion] : m_aConversions[conversion];
        out += m_aLiterals[conversion + 1];
    }
    return out;
}
