#include "base/Text.h"

#include <algorithm>
#include <cstdint>

namespace {

constexpr std::uint32_t kEscapedByte = 0xDC00;

// Length and first bits of the UTF-8 sequence that a byte begins; length 0 for a byte that begins none.
struct Lead {
    unsigned length;
    std::uint32_t bits;
    std::uint32_t smallest;
};

Lead LeadOf(unsigned char byte)
{
    if (byte < 0x80)
        return {1, byte, 0};
    if (byte >= 0xC2 && byte < 0xE0)
        return {2, byte & 0x1FU, 0x80};
    if (byte >= 0xE0 && byte < 0xF0)
        return {3, byte & 0x0FU, 0x800};
    if (byte >= 0xF0 && byte < 0xF5)
        return {4, byte & 0x07U, 0x10000};
    return {0, 0, 0};
}

void AppendWide(std::wstring& out, std::uint32_t code)
{
    if constexpr (sizeof(wchar_t) == 2) {
        if (code >= 0x10000) {
            out.push_back(static_cast<wchar_t>(0xD800 + ((code - 0x10000) >> 10)));
            out.push_back(static_cast<wchar_t>(0xDC00 + ((code - 0x10000) & 0x3FF)));
            return;
        }
    }
    out.push_back(static_cast<wchar_t>(code));
}

void AppendUtf8(std::string& out, std::uint32_t code)
{
    const auto put = [&out](std::uint32_t byte) { out.push_back(static_cast<char>(byte)); };
    if (code < 0x80) {
        put(code);
    } else if (code < 0x800) {
        put(0xC0 | code >> 6);
        put(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        put(0xE0 | code >> 12);
        put(0x80 | (code >> 6 & 0x3F));
        put(0x80 | (code & 0x3F));
    } else {
        put(0xF0 | code >> 18);
        put(0x80 | (code >> 12 & 0x3F));
        put(0x80 | (code >> 6 & 0x3F));
        put(0x80 | (code & 0x3F));
    }
}

template <class Character>
bool IsBlank(Character character)
{
    return character == ' ' || character == '\t' || character == '\r' || character == '\n';
}

template <class View>
View TrimView(View text)
{
    while (!text.empty() && IsBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

}  // namespace

std::wstring Widen(std::string_view bytes)
{
    std::wstring text(bytes.size(), L'\0');
    std::transform(bytes.begin(), bytes.end(), text.begin(),
                   [](char byte) { return static_cast<wchar_t>(static_cast<unsigned char>(byte)); });
    return text;
}

std::string Narrow(std::wstring_view text)
{
    std::string bytes(text.size(), '\0');
    std::transform(text.begin(), text.end(), bytes.begin(), [](wchar_t character) {
        return static_cast<char>(static_cast<std::uint32_t>(character) & 0xFFU);
    });
    return bytes;
}

std::wstring FromUtf8(std::string_view bytes)
{
    std::wstring text;
    text.reserve(bytes.size());
    for (std::size_t at = 0; at < bytes.size();) {
        const auto first = static_cast<unsigned char>(bytes[at]);
        const Lead lead = LeadOf(first);
        std::uint32_t code = lead.bits;
        bool good = lead.length != 0 && at + lead.length <= bytes.size();
        for (unsigned i = 1; good && i < lead.length; ++i) {
            const auto next = static_cast<unsigned char>(bytes[at + i]);
            good = (next & 0xC0U) == 0x80U;
            code = code << 6 | (next & 0x3FU);
        }
        good = good && code >= lead.smallest && code < 0x110000 && (code < 0xD800 || code > 0xDFFF);
        AppendWide(text, good ? code : kEscapedByte + first);
        at += good ? lead.length : 1;
    }
    return text;
}

std::string ToUtf8(std::wstring_view text)
{
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        auto code = static_cast<std::uint32_t>(text[at]);  // NOLINT(bugprone-signed-char-misuse): wide
        if (sizeof(wchar_t) == 2 && code >= 0xD800 && code < 0xDC00 && at + 1 < text.size()) {
            const auto low =
                static_cast<std::uint32_t>(text[at + 1]);  // NOLINT(bugprone-signed-char-misuse): wide
            if (low >= 0xDC00 && low < 0xE000) {
                code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
                ++at;
            }
        }
        if (code >= kEscapedByte + 0x80 && code <= kEscapedByte + 0xFF)
            bytes.push_back(static_cast<char>(code & 0xFFU));
        else
            AppendUtf8(bytes, code);
    }
    return bytes;
}

std::filesystem::path ToPath(std::wstring_view text)
{
#ifdef _WIN32
    return {text};
#else
    return {ToUtf8(text)};
#endif
}

std::wstring FromPath(const std::filesystem::path& path)
{
#ifdef _WIN32
    return path.native();
#else
    return FromUtf8(path.native());
#endif
}

wchar_t ToLowerAscii(wchar_t character)
{
    return character >= L'A' && character <= L'Z' ? static_cast<wchar_t>(character - L'A' + L'a') : character;
}

std::wstring ToLowerAscii(std::wstring_view text)
{
    std::wstring lower(text);
    for (wchar_t& character : lower)
        character = ToLowerAscii(character);
    return lower;
}

std::wstring ToUpperAscii(std::wstring_view text)
{
    std::wstring upper(text);
    for (wchar_t& character : upper)
        if (character >= L'a' && character <= L'z')
            character = static_cast<wchar_t>(character - L'a' + L'A');
    return upper;
}

std::wstring_view Trim(std::wstring_view text)
{
    return TrimView(text);
}

std::string_view Trim(std::string_view text)
{
    return TrimView(text);
}
