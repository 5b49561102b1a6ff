#include "cli/Json.h"

#include "base/Format.h"
#include "base/Text.h"

void CJsonWriter::Separate()
{
    if (m_bAfterKey) {
        m_bAfterKey = false;
        return;
    }
    if (m_aHasItems.empty())
        return;
    if (m_aHasItems.back())
        m_sOut += ", ";
    m_aHasItems.back() = true;
}

CJsonWriter& CJsonWriter::Open(char bracket)
{
    Separate();
    m_sOut += bracket;
    m_aHasItems.push_back(false);
    return *this;
}

CJsonWriter& CJsonWriter::Close(char bracket)
{
    m_aHasItems.pop_back();
    m_sOut += bracket;
    return *this;
}

CJsonWriter& CJsonWriter::Raw(std::string_view text)
{
    Separate();
    m_sOut += text;
    return *this;
}

CJsonWriter& CJsonWriter::Key(std::wstring_view name)
{
    Separate();
    Quote(name);
    m_sOut += ": ";
    m_bAfterKey = true;
    return *this;
}

CJsonWriter& CJsonWriter::Text(std::wstring_view text)
{
    Separate();
    Quote(text);
    return *this;
}

void CJsonWriter::Quote(std::wstring_view text)
{
    std::wstring escaped;
    for (const wchar_t character : text) {
        // Lone surrogates and control characters cannot stand in UTF-8 text that everybody reads.
        const auto code = static_cast<std::uint32_t>(character);  // NOLINT(bugprone-signed-char-misuse): wide
        const bool isLone = sizeof(wchar_t) > 2 && code >= 0xD800 && code < 0xE000;
        if (character == L'"' || character == L'\\')
            escaped.append({L'\\', character});
        else if (character == L'\n')
            escaped += L"\\n";
        else if (character == L'\r')
            escaped += L"\\r";
        else if (character == L'\t')
            escaped += L"\\t";
        else if (code < 0x20 || code == 0x7F || isLone)
            escaped += Format(L"\\u%04x", code);
        else
            escaped.push_back(character);
    }
    m_sOut += '"' + ToUtf8(escaped) + '"';
}
