#include "tools/EditProperties.h"

#include <algorithm>
#include <limits>

#include "base/Format.h"
#include "base/Text.h"

namespace {

constexpr std::wstring_view kSanAndreasDetails =
    L"Asphalt|Grass|Sand|Water|Bark|Stucco|Rock|Fabric|Concrete|WoodHoriz|WoodVert|Bark2|Gravel|Darken";
constexpr std::wstring_view kViceCityDetails = L"Asphalt|Concrete|Grass|Sand|Water|Bark|Stucco|Rock|Fabric";

// In the order of the enumeration.
constexpr std::array<std::wstring_view, kCategoryPropertyCount> kCategoryKeys = {
    L"name", L"cat", L"onfoot", L"slow", L"fast", L"defaultformat", L"defaultstream"};

std::optional<std::uint32_t> ParseDigits(std::wstring_view digits, std::uint32_t base)
{
    constexpr std::wstring_view kDigits = L"0123456789abcdef";
    std::uint64_t number = 0;
    for (const wchar_t character : digits) {
        const std::size_t digit = kDigits.substr(0, base).find(ToLowerAscii(character));
        if (digit == std::wstring_view::npos)
            return std::nullopt;
        number = number * base + digit;
        if (number > std::numeric_limits<std::uint32_t>::max())
            return std::nullopt;
    }
    if (digits.empty())
        return std::nullopt;
    return static_cast<std::uint32_t>(number);
}

std::optional<std::uint32_t> ParseDecimal(std::wstring_view text)
{
    constexpr std::uint32_t kLowest = 0x80000000;
    constexpr std::uint32_t kBase = 10;
    if (!text.starts_with(L'-'))
        return ParseDigits(text, kBase);
    const auto number = ParseDigits(text.substr(1), kBase);
    if (!number || *number > kLowest)
        return std::nullopt;
    return 0U - *number;
}

std::optional<std::uint32_t> ParseHash(std::wstring_view text)
{
    constexpr std::size_t kMostDigits = 8;
    constexpr std::uint32_t kBase = 16;
    if (text.starts_with(L"0x") || text.starts_with(L"0X"))
        text.remove_prefix(2);
    return text.size() <= kMostDigits ? ParseDigits(text, kBase) : std::nullopt;
}

std::vector<std::wstring> SplitNames(std::wstring_view list)
{
    std::vector<std::wstring> names;
    while (!list.empty() && names.size() < kMostDetails) {
        const std::size_t bar = std::min(list.find(L'|'), list.size());
        names.emplace_back(list.substr(0, bar));
        list.remove_prefix(std::min(bar + 1, list.size()));
    }
    return names;
}

}  // namespace

std::wstring KeyText(Property property)
{
    return Widen(PropertyKey(property));
}

std::wstring ValueText(Property property, std::uint32_t value)
{
    return Format(IsHexProperty(property) ? L"0x%08x" : L"%d", value);
}

std::optional<std::uint32_t> ParseNumber(Property property, std::wstring_view text)
{
    return IsHexProperty(property) ? ParseHash(text) : ParseDecimal(text);
}

std::optional<std::uint32_t> ParseAnswer(Property property, std::wstring_view text)
{
    const auto value = ParseNumber(property, Trim(text));
    if (value && IsFlag(property))
        return *value != 0 ? 1 : 0;
    return value;
}

bool HaveValue(const CTextureDatabase& database, std::span<const std::uint32_t> indices, Property property,
               std::uint32_t value)
{
    return std::ranges::all_of(
        indices, [&](std::uint32_t index) { return database.Entry(index).Value(property) == value; });
}

bool CanChange(const TextureEntry& entry, Property property)
{
    if (property == Property::Name || property == Property::Affiliate)
        return false;
    return !entry.IsAlias() || property == Property::HasSibling;
}

void ChangeTextureProperty(CTextureDatabase& database, std::span<const std::uint32_t> indices,
                           Property property, std::uint32_t value)
{
    std::vector<PropertyChange> changes;
    for (const std::uint32_t index : indices)
        if (CanChange(database.Entry(index), property))
            changes.push_back({index, property, value});
    database.ChangeProperties(changes);
}

std::wstring_view KeyText(CategoryProperty property)
{
    return kCategoryKeys[static_cast<std::size_t>(property)];
}

std::optional<CategoryProperty> CategoryPropertyFromKey(std::wstring_view key)
{
    const auto* const found = std::find(kCategoryKeys.begin(), kCategoryKeys.end(), key);
    if (found == kCategoryKeys.end())
        return std::nullopt;
    return static_cast<CategoryProperty>(found - kCategoryKeys.begin());
}

std::int32_t* FieldOf(TextureCategory& category, CategoryProperty property)
{
    switch (property) {
        case CategoryProperty::Name:
            return nullptr;
        case CategoryProperty::Cat:
            return &category.cat;
        case CategoryProperty::OnFoot:
            return &category.onfoot;
        case CategoryProperty::Slow:
            return &category.slow;
        case CategoryProperty::Fast:
            return &category.fast;
        case CategoryProperty::DefaultFormat:
            return &category.defaultformat;
        case CategoryProperty::DefaultStream:
            return &category.defaultstream;
    }
    return nullptr;
}

std::wstring ValueText(const TextureCategory& category, CategoryProperty property)
{
    TextureCategory copy = category;
    const std::int32_t* const field = FieldOf(copy, property);
    return field != nullptr ? Format(L"%d", *field) : category.name;
}

std::optional<std::int32_t> ParseCategoryNumber(std::wstring_view text)
{
    const auto value = ParseDecimal(text);
    constexpr std::uint32_t kHighest = 0x7FFFFFFF;
    if (!value || (*value > kHighest && !text.starts_with(L'-')))
        return std::nullopt;
    return static_cast<std::int32_t>(*value);
}

std::optional<std::int32_t> ParseCategoryAnswer(std::wstring_view text)
{
    return ParseCategoryNumber(Trim(text));
}

bool ChangeCategoryProperty(CTextureDatabase& database, std::uint32_t category, CategoryProperty property,
                            std::int32_t value)
{
    if (category >= database.Categories().size() || !CanChange(property))
        return false;
    TextureCategory changed = database.Categories()[category];
    std::int32_t& field = *FieldOf(changed, property);
    if (field == value)
        return false;
    field = value;
    database.SetCategory(category, changed);
    return true;
}

std::vector<std::wstring> DetailNames(const ISettings& settings, CTextureDatabase& database)
{
    const auto primary = database.PrimaryCache();
    const bool isSanAndreas =
        primary && database.EntryCount() != 0 && database.GameOf(0, *primary) == StreamMode::Framed;
    const std::wstring list = settings.ReadString(L"details", isSanAndreas ? L"gtasa" : L"gtavc");
    if (!list.empty())
        return SplitNames(list);
    return SplitNames(isSanAndreas ? kSanAndreasDetails : kViceCityDetails);
}

void SetDetail(CTextureDatabase& database, std::span<const std::uint32_t> indices, std::uint32_t detail)
{
    std::vector<PropertyChange> changes;
    changes.reserve(indices.size());
    for (const std::uint32_t index : indices)
        changes.push_back({index, Property::HasDetail, detail});
    database.ChangeProperties(changes);
}
