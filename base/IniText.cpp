#include "base/IniText.h"

#include <cstdint>

#include "base/ByteReader.h"
#include "base/ByteWriter.h"
#include "base/Text.h"

namespace {

constexpr std::uint32_t kByteOrderMark = 0xFEFF;

std::wstring DecodeUtf16(CByteReader in)
{
    std::wstring text;
    while (in.Left() >= 2) {
        std::uint32_t code = in.U16();
        if (sizeof(wchar_t) > 2 && code >= 0xD800 && code < 0xDC00 && in.Left() >= 2) {
            CByteReader ahead = in;
            const std::uint32_t low = ahead.U16();
            if (low >= 0xDC00 && low < 0xE000) {
                code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
                in = ahead;
            }
        }
        text.push_back(static_cast<wchar_t>(code));
    }
    return text;
}

void EncodeUtf16(CByteWriter& out, std::wstring_view text)
{
    for (const wchar_t character : text) {
        const auto code = static_cast<std::uint32_t>(character);
        if (code >= 0x10000)
            out.U16(0xD800 + ((code - 0x10000) >> 10)).U16(0xDC00 + ((code - 0x10000) & 0x3FF));
        else
            out.U16(code);
    }
}

std::vector<std::wstring> SplitLines(std::wstring_view text)
{
    std::vector<std::wstring> lines;
    while (!text.empty()) {
        const std::size_t end = text.find(L'\n');
        std::wstring_view line = text.substr(0, end);
        if (line.ends_with(L'\r'))
            line.remove_suffix(1);
        lines.emplace_back(line);
        text.remove_prefix(end == std::wstring_view::npos ? text.size() : end + 1);
    }
    return lines;
}

bool SameName(std::wstring_view a, std::wstring_view b)
{
    return ToLowerAscii(Trim(a)) == ToLowerAscii(Trim(b));
}

// The name between the brackets of a section line.
std::optional<std::wstring_view> SectionName(std::wstring_view line)
{
    line = Trim(line);
    if (!line.starts_with(L'['))
        return std::nullopt;
    return line.substr(1, line.find(L']') - 1);
}

}  // namespace

CIniText CIniText::Parse(std::span<const std::byte> bytes)
{
    CIniText ini;
    CByteReader in(bytes);
    if (bytes.size() >= 2 && in.U16() == kByteOrderMark) {
        ini.m_aLines = SplitLines(DecodeUtf16(in));
        return ini;
    }
    std::string narrow(bytes.size(), '\0');
    for (std::size_t i = 0; i < bytes.size(); ++i)
        narrow[i] = static_cast<char>(bytes[i]);
    ini.m_aLines = SplitLines(FromUtf8(narrow));
    ini.m_bUtf16 = bytes.empty();
    return ini;
}

std::vector<std::byte> CIniText::Serialize() const
{
    CByteWriter out;
    if (m_bUtf16)
        out.U16(kByteOrderMark);
    for (const std::wstring& line : m_aLines) {
        if (m_bUtf16) {
            EncodeUtf16(out, line + L"\r\n");
        } else {
            const std::string narrow = ToUtf8(line) + "\r\n";
            out.Text(narrow, narrow.size());
        }
    }
    return out.Take();
}

CIniText::Place CIniText::Locate(std::wstring_view section, std::wstring_view key) const
{
    Place place;
    bool inside = false;
    for (std::size_t i = 0; i < m_aLines.size(); ++i) {
        const std::wstring_view line = m_aLines[i];
        if (const auto name = SectionName(line)) {
            if (inside)
                return place;
            inside = SameName(*name, section);
            if (inside)
                place = {.sectionEnd = i + 1, .line = std::nullopt, .sectionFound = true};
            continue;
        }
        if (!inside || Trim(line).empty())
            continue;
        place.sectionEnd = i + 1;
        const std::size_t equals = line.find(L'=');
        if (equals != std::wstring_view::npos && SameName(line.substr(0, equals), key)) {
            place.line = i;
            return place;
        }
    }
    return place;
}

std::optional<std::wstring> CIniText::Find(std::wstring_view section, std::wstring_view key) const
{
    const Place place = Locate(section, key);
    if (!place.line)
        return std::nullopt;
    const std::wstring_view line = m_aLines[*place.line];
    return std::wstring(Trim(line.substr(line.find(L'=') + 1)));
}

void CIniText::Set(std::wstring_view section, std::wstring_view key, std::wstring_view value)
{
    std::wstring line = std::wstring(key) + L"=" + std::wstring(value);
    const Place place = Locate(section, key);
    if (place.line) {
        m_aLines[*place.line] = std::move(line);
    } else if (place.sectionFound) {
        m_aLines.insert(m_aLines.begin() + static_cast<std::ptrdiff_t>(place.sectionEnd), std::move(line));
    } else {
        m_aLines.push_back(L"[" + std::wstring(section) + L"]");
        m_aLines.push_back(std::move(line));
    }
}

void CIniText::Remove(std::wstring_view section, std::wstring_view key)
{
    const Place place = Locate(section, key);
    if (place.line)
        m_aLines.erase(m_aLines.begin() + static_cast<std::ptrdiff_t>(*place.line));
}
