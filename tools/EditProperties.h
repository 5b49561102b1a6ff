#pragma once

// The properties of textures and categories as a person edits them: how their values are written and read
// back, which of them may be changed where, and the changes themselves. Window and command line share it.
// What changes the database throws CError, and has then changed nothing.

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/Settings.h"
#include "database/TextureDatabase.h"

// ---- Textures ----

/// Whether people switch the property on and off instead of typing a number.
constexpr bool IsFlag(Property property)
{
    return property >= Property::CamNorm && property <= Property::NoAlphaTest;
}
/// The key, for example "camnorm".
std::wstring KeyText(Property property);
/// "%d", or "0x%08x" for the two hashes.
std::wstring ValueText(Property property, std::uint32_t value);
/// A decimal of 32 bits, or one to eight hexadecimal digits, with or without "0x", for the hashes. Nothing
/// for text that is no such number.
std::optional<std::uint32_t> ParseNumber(Property property, std::wstring_view text);
/// What a person typed: blanks around the number do not count, and a flag becomes 0 or 1.
std::optional<std::uint32_t> ParseAnswer(Property property, std::wstring_view text);
/// A flag's other value: any value but 0 is on.
constexpr std::uint32_t InvertedFlag(std::uint32_t value)
{
    return value == 0 ? 1 : 0;
}
/// Whether every texture has this value.
bool HaveValue(const CTextureDatabase& database, std::span<const std::uint32_t> indices, Property property,
               std::uint32_t value);
/// Whether the property of this entry may be changed: never name and affiliate, and only `hassibling` of an
/// alias.
bool CanChange(const TextureEntry& entry, Property property);
/// Sets the property of every texture that CanChange allows, and saves once. "Texture line is too long." when
/// one of the lines would not fit; then none changes.
void ChangeTextureProperty(CTextureDatabase& database, std::span<const std::uint32_t> indices,
                           Property property, std::uint32_t value);

// ---- Categories ----

/// The seven properties of a category, by their numbers.
enum class CategoryProperty : std::uint32_t { Name, Cat, OnFoot, Slow, Fast, DefaultFormat, DefaultStream };

inline constexpr std::size_t kCategoryPropertyCount = 7;
inline constexpr std::array<CategoryProperty, kCategoryPropertyCount> kCategoryProperties = {
    CategoryProperty::Name,         CategoryProperty::Cat,  CategoryProperty::OnFoot,
    CategoryProperty::Slow,         CategoryProperty::Fast, CategoryProperty::DefaultFormat,
    CategoryProperty::DefaultStream};

/// The key as the TXT list writes it, for example "onfoot".
std::wstring_view KeyText(CategoryProperty property);
/// The property of a key; compared exactly.
std::optional<CategoryProperty> CategoryPropertyFromKey(std::wstring_view key);
/// The field of a property; null for the name, which is no number.
std::int32_t* FieldOf(TextureCategory& category, CategoryProperty property);
/// "%d", or the name itself.
std::wstring ValueText(const TextureCategory& category, CategoryProperty property);
/// A decimal of 32 bits; nothing for text that is no such number.
std::optional<std::int32_t> ParseCategoryNumber(std::wstring_view text);
/// What a person typed: blanks around the number do not count.
std::optional<std::int32_t> ParseCategoryAnswer(std::wstring_view text);
/// Neither the name, which has a command of its own, nor the number, which follows from the order.
constexpr bool CanChange(CategoryProperty property)
{
    return property != CategoryProperty::Name && property != CategoryProperty::Cat;
}
/// Stores the value and saves, if it is another one and may be changed. True when something changed.
bool ChangeCategoryProperty(CTextureDatabase& database, std::uint32_t category, CategoryProperty property,
                            std::int32_t value);

// ---- Details ----

/// As many names as the menu has commands for.
inline constexpr std::size_t kMostDetails = 18;
/// The names of the detail textures for the database's game, from the settings or built in. Detail 1 is the
/// first name; 0 is none.
std::vector<std::wstring> DetailNames(const ISettings& settings, CTextureDatabase& database);
/// Gives every one of the textures, aliases included, the detail texture of that number, and saves.
void SetDetail(CTextureDatabase& database, std::span<const std::uint32_t> indices, std::uint32_t detail);
