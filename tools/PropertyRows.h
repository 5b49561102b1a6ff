#pragma once

// What the properties panel shows of a texture or a category, line by line: label, value, and whether the
// value may be changed there. Changing it is the business of tools/EditProperties.h.

#include <cstdint>
#include <string>
#include <vector>

#include "database/TextureDatabase.h"

enum class PropertyRowKind {
    Fact,    ///< cannot be edited at all
    Number,  ///< edited as text
    Flag,    ///< switched on and off
};

struct PropertyRow {
    std::wstring label = {};
    std::wstring text = {};
    PropertyRowKind kind = PropertyRowKind::Fact;
    bool canChange = false;
    /// Of numbers and flags: the number of the property, that of a category for a category.
    std::uint32_t property = 0;
    std::uint32_t value = 0;

    bool operator==(const PropertyRow&) const = default;
};

/// Texts in the language of the interface.
struct PropertyRowTexts {
    std::wstring original;
    std::wstring size;  // "%s size", with the name of a cache
    std::wstring noRaster;
};

/// The 20 properties by their keys, after "affiliate" the original that it leads to, and at the end two rows
/// for what each open cache holds.
std::vector<PropertyRow> RowsOfTexture(CTextureDatabase& database, std::uint32_t index,
                                       const PropertyRowTexts& texts);
/// The seven properties of a category.
std::vector<PropertyRow> RowsOfCategory(const CTextureDatabase& database, std::uint32_t category);
