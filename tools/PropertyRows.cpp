#include "tools/PropertyRows.h"

#include "base/Format.h"
#include "base/Text.h"
#include "tools/EditProperties.h"
#include "tools/TextureFacts.h"

namespace {

std::wstring OriginalText(CTextureDatabase& database, std::uint32_t index)
{
    const std::uint32_t target = database.AliasTarget(index);
    if (target == kNone)
        return {};
    return Format(L"%s, ID: %02d", database.Entry(target).name, target);
}

PropertyRow RowOf(const TextureEntry& entry, Property property)
{
    const std::uint32_t value = entry.Value(property);
    return {.label = KeyText(property),
            .text = ValueText(property, value),
            .kind = IsFlag(property) ? PropertyRowKind::Flag : PropertyRowKind::Number,
            .canChange = CanChange(entry, property),
            .property = static_cast<std::uint32_t>(property),
            .value = value};
}

void AddCacheRows(std::vector<PropertyRow>& rows, CacheIndex cache, const RasterHeader& header,
                  const PropertyRowTexts& texts)
{
    const std::wstring name = ToUpperAscii(CacheInfix(cache));
    const std::uint64_t size = RasterSize(header);
    // Every texture has the same rows, so that following the selection only changes values.
    rows.push_back({.label = name, .text = texts.noRaster});
    rows.push_back({.label = Format(texts.size, name)});
    if (size == 0)
        return;
    rows[rows.size() - 2].text =
        Format(L"%s, %s", DimensionsText(header), FormatName(FormatFromGl(header.glFormat)));
    rows.back().text = RasterSizeText(size);
}

}  // namespace

std::vector<PropertyRow> RowsOfTexture(CTextureDatabase& database, std::uint32_t index,
                                       const PropertyRowTexts& texts)
{
    const TextureEntry& entry = database.ResolvedEntry(index);
    std::vector<PropertyRow> rows = {{.label = KeyText(Property::Name), .text = entry.name},
                                     {.label = KeyText(Property::Affiliate), .text = entry.affiliate},
                                     {.label = texts.original, .text = OriginalText(database, index)}};
    for (std::size_t i = rows.size() - 1; i < kPropertyCount; ++i)
        rows.push_back(RowOf(entry, static_cast<Property>(i)));
    for (const CacheIndex cache : kAllCaches)
        if (database.IsOpen(cache))
            AddCacheRows(rows, cache, entry.rasterHeader[SlotOf(cache)], texts);
    return rows;
}

std::vector<PropertyRow> RowsOfCategory(const CTextureDatabase& database, std::uint32_t category)
{
    const TextureCategory& shown = database.Categories()[category];
    std::vector<PropertyRow> rows;
    for (const CategoryProperty property : kCategoryProperties) {
        const bool isName = property == CategoryProperty::Name;
        rows.push_back({.label = std::wstring(KeyText(property)),
                        .text = ValueText(shown, property),
                        .kind = isName ? PropertyRowKind::Fact : PropertyRowKind::Number,
                        .canChange = CanChange(property),
                        .property = static_cast<std::uint32_t>(property)});
    }
    return rows;
}
