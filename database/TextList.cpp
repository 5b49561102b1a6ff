#include "database/TextList.h"

#include <algorithm>

#include "base/Format.h"
#include "base/Text.h"
#include "database/CategoryLine.h"
#include "database/EntryLine.h"

namespace {

// Hands out the list in pieces of at most 127 characters, each ending behind its LF or where the count is
// reached. The text has LF for CR LF already, so that the pieces are counted as they are stored.
class CLineSplitter {
public:
    explicit CLineSplitter(std::string_view text) : m_sRest(text) {}

    bool Next(std::string_view& piece)
    {
        if (m_sRest.empty())
            return false;
        const std::size_t end = m_sRest.find('\n');
        const std::size_t length = end == std::string_view::npos ? m_sRest.size() : end;
        m_bSplit = m_bSplit || length > kLongestLine;
        piece =
            m_sRest.substr(0, std::min(end == std::string_view::npos ? length : length + 1, kLongestLine));
        m_sRest.remove_prefix(piece.size());
        return true;
    }

    bool HasSplit() const { return m_bSplit; }

private:
    std::string_view m_sRest;
    bool m_bSplit = false;
};

std::string WithPlainLineEnds(std::span<const std::byte> bytes)
{
    const std::string_view raw(reinterpret_cast<const char*>(bytes.data()),
                               bytes.size());  // NOLINT: text as it is
    std::string text;
    text.reserve(raw.size());
    std::size_t copied = 0;
    for (std::size_t at = raw.find("\r\n"); at != std::string_view::npos; at = raw.find("\r\n", copied)) {
        text.append(raw.substr(copied, at - copied)).push_back('\n');
        copied = at + 2;
    }
    return text.append(raw.substr(copied));
}

// Lines that will be entries. Counting every line would let a file of line feeds ask for any amount of
// memory.
std::size_t CountEntries(std::string_view text)
{
    std::size_t count = text.starts_with('"') ? 1 : 0;
    for (std::size_t at = text.find("\n\""); at != std::string_view::npos; at = text.find("\n\"", at + 1))
        ++count;
    return count;
}

class CTextListParser {
public:
    TextList Parse(std::string_view text)
    {
        m_oList.entries.reserve(CountEntries(text));
        CLineSplitter splitter(text);
        std::string_view line;
        for (; splitter.Next(line); ++m_nLine) {
            if (const std::size_t nul = line.find('\0'); nul != std::string_view::npos) {
                line = line.substr(0, nul);
                m_oList.lostText = true;
            }
            ParseLine(line);
        }
        m_oList.lostText = m_oList.lostText || splitter.HasSplit() || !m_oList.warnings.empty();
        return std::move(m_oList);
    }

private:
    void ParseLine(std::string_view line)
    {
        if (line.empty() || line == "\n")
            return;
        if (line.front() == '"')
            ParseEntry(line);
        else if (line.front() == 'c')
            ParseCategory(line);
        else
            Warn(Format(L"Unknown line '%s' found while parsing TXT file.", Widen(line)));
    }

    void ParseEntry(std::string_view line)
    {
        m_oList.entries.push_back(ParseEntryLine(line));
        // The entry stays: without it every later entry would belong to the wrong record.
        if (m_oList.entries.back().nameWasCut)
            Warn(Format(L"Too long name in line '%s' was cut while parsing TXT file.", Widen(line)));
    }

    void ParseCategory(std::string_view line)
    {
        ParsedCategory parsed = ReadCategoryLine(line);
        if (parsed.nameWasCut)
            Warn(Format(L"Too long name in line '%s' was cut while parsing TXT file.", Widen(line)));
        m_oList.categories.push_back(std::move(parsed.category));
    }

    void Warn(std::wstring message)
    {
        m_oList.warnings.push_back({.message = std::move(message), .line = m_nLine});
    }

    TextList m_oList;
    std::uint32_t m_nLine = 0;
};

void AppendLine(std::vector<std::byte>& out, std::string_view line)
{
    const auto append = [&out](std::string_view text) {
        const auto bytes = std::as_bytes(std::span(text));
        out.insert(out.end(), bytes.begin(), bytes.end());
    };
    append(Trim(line));
    append("\r\n");
}

}  // namespace

TextList ParseTextList(std::span<const std::byte> bytes)
{
    return CTextListParser().Parse(WithPlainLineEnds(bytes));
}

std::vector<std::byte> SerializeTextList(std::span<const TextureCategory> categories,
                                         std::span<TextureEntry> entries)
{
    return SerializeTextList(categories, entries, std::vector<bool>(entries.size()));
}

std::vector<std::byte> SerializeTextList(std::span<const TextureCategory> categories,
                                         std::span<TextureEntry> entries, const std::vector<bool>& isGone)
{
    constexpr std::size_t kUsualLine = 80;
    std::vector<std::byte> out;
    out.reserve((categories.size() + entries.size()) * kUsualLine);
    for (const TextureCategory& category : categories)
        AppendLine(out, CategoryLine(category));
    for (std::size_t i = 0; i < entries.size(); ++i)
        if (!isGone[i])
            AppendLine(out, EntryLine(entries[i]));
    return out;
}

bool LineFits(std::string_view line)
{
    return Trim(line).size() <= kLongestLine;
}
