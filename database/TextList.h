#pragma once

// The contents of the TXT list: bytes in, categories and entries out, and back. No file is touched here.
// docs/formats/txt-list.md describes the grammar.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "database/TextureCategory.h"
#include "database/TextureEntry.h"

/// The longest line, without line end, that is read in one piece.
inline constexpr std::size_t kLongestLine = 127;

struct TextListWarning {
    std::wstring message;
    std::uint32_t line = 0;  // counted from 0; a piece of a split line counts as a line
};

struct TextList {
    std::vector<TextureCategory> categories;
    std::vector<TextureEntry> entries;
    std::vector<TextListWarning> warnings;
    bool lostText =
        false;  // something was dropped, cut or split: a rewrite would not give back what was read
};

TextList ParseTextList(std::span<const std::byte> bytes);

/// Categories, then entries, each line trimmed and ended by CR LF. Lines that entries do not have yet are
/// generated.
std::vector<std::byte> SerializeTextList(std::span<const TextureCategory> categories,
                                         std::span<TextureEntry> entries);
/// The same without the entries that `isGone` marks.
std::vector<std::byte> SerializeTextList(std::span<const TextureCategory> categories,
                                         std::span<TextureEntry> entries, const std::vector<bool>& isGone);

/// True when the line, trimmed, is read back in one piece.
bool LineFits(std::string_view line);
