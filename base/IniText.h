#pragma once

// The text of an INI file as the Windows profile functions see it: sections in brackets, "key=value" lines,
// names compared without case, the first match wins. Edits keep every other line as it is.

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

class CIniText {
public:
    /// UTF-16 when the bytes begin with FF FE, else UTF-8.
    static CIniText Parse(std::span<const std::byte> bytes);
    /// UTF-16 with FF FE for a text that was parsed so or is new, else UTF-8; lines end in CR LF.
    std::vector<std::byte> Serialize() const;

    /// The value as it stands, without outer blanks.
    std::optional<std::wstring> Find(std::wstring_view section, std::wstring_view key) const;
    /// Replaces the value, or adds the key at the end of its section, or the section at the end.
    void Set(std::wstring_view section, std::wstring_view key, std::wstring_view value);
    void Remove(std::wstring_view section, std::wstring_view key);

private:
    struct Place {
        std::size_t sectionEnd = 0;  // where a new key of the section goes
        std::optional<std::size_t> line;
        bool sectionFound = false;
    };
    Place Locate(std::wstring_view section, std::wstring_view key) const;

    std::vector<std::wstring> m_aLines;
    bool m_bUtf16 = true;
};
