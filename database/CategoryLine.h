#pragma once

// Reading a category line with what the reader of the list must know besides the category itself.

#include <string_view>

#include "database/TextureCategory.h"

struct ParsedCategory {
    TextureCategory category;
    bool nameWasCut = false;  // the line's name is longer than a record holds
};

ParsedCategory ReadCategoryLine(std::string_view line);
