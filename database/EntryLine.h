#pragma once

// Reading an entry line of the TXT list. Keys are recognised by single characters at fixed places and their
// values scanned with the whole key, so that an unexpected key changes nothing.

#include <string_view>

#include "database/TextureEntry.h"

/// `line` begins with a double quote; its line end, if it has one, is kept in the entry's lineText. A name or
/// affiliate beyond 63 characters is cut in the entry, never in the text.
TextureEntry ParseEntryLine(std::string_view line);
