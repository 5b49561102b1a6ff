#pragma once

// One category line of the TXT list. Category lines are generated anew on every write; their raw text is not
// kept.

#include <cstdint>
#include <string>
#include <string_view>

struct TextureCategory {
    std::int32_t cat = 0;
    std::int32_t onfoot = 0;
    std::int32_t slow = 0;
    std::int32_t fast = 0;
    std::int32_t defaultformat = 0;
    std::int32_t defaultstream = 0;
    std::wstring name;  // one word, at most 63 characters
};

/// Reads a line that begins with "c".
TextureCategory ParseCategoryLine(std::string_view line);
/// The line as it is written, without line end.
std::string CategoryLine(const TextureCategory& category);
