#include "app/TextureMenus.h"

#include <algorithm>

#include "app/resource.h"
#include "tools/EditProperties.h"

namespace {

// Further categories would get the numbers of other commands.
constexpr std::size_t kMostCategories = ID_CATEGORY_LAST - ID_CATEGORY_FIRST + 1;

void AppendValue(const CMenu& popup, UINT command, const std::wstring& key, const std::wstring& value,
                 bool enabled)
{
    popup.Append(command, key + L"\t" + PlainMenuText(value));
    popup.Enable(command, enabled);
}

}  // namespace

void FillCategoryPopup(const CMenu& popup, const CTextureDatabase& database, std::uint32_t current)
{
    popup.Clear();
    const auto categories = database.Categories();
    const auto count = static_cast<UINT>(std::min(categories.size(), kMostCategories));
    for (UINT index = 0; index < count; ++index)
        popup.Append(ID_CATEGORY_FIRST + index, PlainMenuText(categories[index].name));
    if (current < count)
        popup.CheckRadio(ID_CATEGORY_FIRST, ID_CATEGORY_FIRST + count - 1, ID_CATEGORY_FIRST + current);
}

void FillDetailPopup(const CMenu& popup, const std::vector<std::wstring>& names, std::uint32_t current)
{
    popup.CutFrom(1);
    const auto count = static_cast<UINT>(names.size());
    for (UINT index = 0; index < count; ++index)
        popup.Append(ID_DETAIL_NONE + 1 + index, PlainMenuText(names[index]));
    if (current <= count)
        popup.CheckRadio(ID_DETAIL_NONE, ID_DETAIL_NONE + count, ID_DETAIL_NONE + current);
}

void FillTexturePropertiesPopup(const CMenu& popup, const TextureEntry& entry, bool several)
{
    popup.Clear();
    for (UINT number = static_cast<UINT>(Property::CamNorm); number < kPropertyCount; ++number) {
        const auto property = static_cast<Property>(number);
        AppendValue(popup, ID_TEXTURE_PROPERTY + number, KeyText(property),
                    ValueText(property, entry.Value(property)), several || CanChange(entry, property));
    }
}

void FillCategoryPropertiesPopup(const CMenu& popup, const TextureCategory& category)
{
    popup.Clear();
    for (const CategoryProperty property : kCategoryProperties)
        if (property != CategoryProperty::Name)
            AppendValue(popup, ID_CATEGORY_PROPERTY + static_cast<UINT>(property),
                        std::wstring(KeyText(property)), ValueText(category, property), CanChange(property));
}
