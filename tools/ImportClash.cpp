#include "tools/ImportClash.h"

#include <utility>
#include <vector>

#include "base/Format.h"

namespace {

constexpr std::wstring_view kClash = L"Texture '%s' already exists. Would you like to replace it?";

}  // namespace

std::optional<ClashChoice> ChoiceWithoutAsking(ClashAnswer answer)
{
    switch (answer) {
        case ClashAnswer::Ask:
            break;
        case ClashAnswer::Replace:
            return ClashChoice::Replace;
        case ClashAnswer::Skip:
            return ClashChoice::Skip;
    }
    return std::nullopt;
}

PromptBox ClashQuestion(const std::wstring& name)
{
    return {.text = Format(kClash, name), .buttons = PromptButtons::YesNoCancel};
}

std::wstring NameInPlaceOf(const CTextureDatabase& database, std::uint32_t replaced, const std::wstring& name)
{
    return database.CountAliasesOf(replaced) != 0 ? database.Entry(replaced).name : name;
}

// The order of the pairs is that of their lines in every list: the hash of the file, then the category, which
// an alias has at once.
StoreResult StoreImported(CTextureDatabase& database, PreparedTexture prepared, const ImportRequest& request)
{
    // The texture as its own replacement: its aliases stay, and find the new one by its name.
    if (request.replaced && !database.DeleteEntry(*request.replaced, *request.replaced))
        throw CError(std::wstring(kUnknownImportError));
    std::vector<PropertyValue> properties;
    if (prepared.duplicateOf && request.category != 0)
        properties.emplace_back(Property::Cat, request.category);
    properties.emplace_back(Property::Png, request.pngHash);
    properties.emplace_back(Property::Cat, request.category);
    return StorePrepared(database, std::move(prepared), properties);
}

void CountImported(ImportCounts& counts, StoreResult result)
{
    ++(result == StoreResult::MadeAlias ? counts.aliased : counts.imported);
}
