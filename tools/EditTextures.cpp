#include "tools/EditTextures.h"

#include <algorithm>
#include <vector>

#include "base/Text.h"
#include "codec/ImagePreparation.h"
#include "tools/TextureRelations.h"

namespace {

constexpr std::wstring_view kTaken = L"Texture already exists";
constexpr std::wstring_view kNoTarget = L"Texture is not found.";
constexpr std::wstring_view kEmptyCategory = L"Empty category name given";
constexpr std::wstring_view kNoSpaces = L"No spaces allowed";
constexpr std::wstring_view kWrongCategory = L"Wrong category name given.";
constexpr std::wstring_view kLineTooLong = L"Texture line is too long.";
// What the reader of the list takes in one piece.
constexpr std::size_t kLongestLine = 127;

[[noreturn]] void Fail(std::wstring_view text)
{
    throw CError(std::wstring(text));
}

void CheckNewName(const CTextureDatabase& database, const std::wstring& name)
{
    CheckTextureName(name);
    if (database.FindByName(name, false))
        Fail(kTaken);
}

void CheckLineWith(TextureEntry entry, Property property, std::uint32_t value)
{
    EntryLine(entry);
    SetProperty(entry, property, value);
    if (Trim(std::string_view(EntryLine(entry))).size() > kLongestLine)
        Fail(kLineTooLong);
}

}  // namespace

void CheckCategoryName(const std::wstring& name)
{
    if (name.empty())
        Fail(kEmptyCategory);
    if (std::any_of(name.begin(), name.end(), [](wchar_t character) { return character <= L' '; }))
        Fail(kNoSpaces);
    const bool fits =
        std::all_of(name.begin(), name.end(), [](wchar_t character) { return character <= L'\xFF'; });
    if (!fits || name.size() > kLongestName)
        Fail(kWrongCategory);
}

void CreateCategory(CTextureDatabase& database, const std::wstring& name)
{
    CheckCategoryName(name);
    database.AddCategory(name);
    database.Save();
}

std::uint32_t CreateAlias(CTextureDatabase& database, std::uint32_t index, const std::wstring& name)
{
    const std::uint32_t target = database.AliasTarget(index);
    const TextureEntry original = database.Entry(target == kNone ? index : target);
    // An alias of nothing has no original that a new one could share.
    if (original.IsAlias())
        Fail(kNoTarget);
    CheckNewName(database, name);
    const std::uint32_t category = original.Value(Property::Cat);
    CheckLineWith(MakeAlias(name, original.name), Property::Cat, category);
    database.AddAlias(name, original.name);
    const std::uint32_t alias = database.EntryCount() - 1;
    database.ChangeProperty(alias, Property::Cat, category);
    database.Save();
    return alias;
}

void RenameTexture(CTextureDatabase& database, std::uint32_t index, const std::wstring& name)
{
    CheckTextureName(name);
    if (!database.RenameEntry(index, name))
        Fail(kTaken);
}

void MoveToCategory(CTextureDatabase& database, std::uint32_t category,
                    std::span<const std::uint32_t> indices)
{
    std::vector<std::uint32_t> moved(indices.begin(), indices.end());
    for (const std::uint32_t index : indices) {
        const auto aliases = AliasesOf(database, index);
        moved.insert(moved.end(), aliases.begin(), aliases.end());
    }
    std::vector<PropertyChange> changes;
    changes.reserve(moved.size());
    for (const std::uint32_t index : moved)
        changes.push_back({index, Property::Cat, category});
    database.ChangeProperties(changes);
}

std::vector<std::uint32_t> WithTheirAliases(CTextureDatabase& database,
                                            std::span<const std::uint32_t> indices)
{
    std::vector<bool> isIncluded(database.EntryCount());
    for (const std::uint32_t index : indices)
        isIncluded[index] = true;
    std::vector<std::uint32_t> result;
    for (std::uint32_t index = 0; index < database.EntryCount(); ++index) {
        const std::uint32_t target = database.AliasTarget(index);
        if (isIncluded[index] || (target != kNone && isIncluded[target]))
            result.push_back(index);
    }
    return result;
}

void DeleteTextures(CTextureDatabase& database, std::span<const std::uint32_t> indices,
                    std::optional<std::uint32_t> newTarget, IProgress& progress)
{
    if (!newTarget) {
        database.DeleteEntries(indices, progress);
        return;
    }
    // From the highest index down, so that the others keep theirs; only the target's own may move.
    std::vector<std::uint32_t> order(indices.begin(), indices.end());
    std::sort(order.rbegin(), order.rend());
    order.erase(std::unique(order.begin(), order.end()), order.end());
    std::uint32_t target = database.IsAlias(*newTarget) ? database.AliasTarget(*newTarget) : *newTarget;
    if (target == kNone || std::find(order.begin(), order.end(), target) != order.end())
        Fail(kNoTarget);
    for (const std::uint32_t index : order) {
        database.DeleteEntry(index, target);
        if (index < target)
            --target;
    }
}
