#pragma once

// A printf-style text cut at its conversions, so that a text that was made with it can be recognised and
// taken apart again. Pure: no resources, no window.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

class CMessagePattern {
public:
    explicit CMessagePattern(std::wstring_view format);

    /// What stood for each conversion when `text` was made with this format; nothing when it was not. The
    /// views point into `text`.
    std::optional<std::vector<std::wstring_view>> Match(std::wstring_view text) const;
    /// The format with its conversions replaced by `arguments`, which are texts already; a conversion without
    /// an argument stays as it was written.
    std::wstring Fill(const std::vector<std::wstring>& arguments) const;

    /// The conversions as they were written, such as "%s" and "%0.3f".
    const std::vector<std::wstring>& Conversions() const { return m_aConversions; }
    /// Characters that a text of this format has in any case. More of them make a match more telling.
    std::size_t FixedLength() const;

private:
    bool MatchFrom(std::size_t conversion, std::wstring_view text,
                   std::vector<std::wstring_view>& found) const;
    bool MatchText(std::size_t conversion, std::wstring_view text,
                   std::vector<std::wstring_view>& found) const;

    std::vector<std::wstring> m_aLiterals;  // one more than there are conversions
    std::vector<std::wstring> m_aConversions;
    bool m_bOneLine;
};
