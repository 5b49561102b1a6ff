// Edits of the list: properties, categories, names, aliases.

#include <algorithm>
#include <map>
#include <string>
#include <utility>

#include "base/Text.h"
#include "database/TextList.h"
#include "database/TextureDatabaseImpl.h"

namespace {

void RequireCategory(const TextureCategory& category)
{
    if (category.name.empty())
        throw CError(std::wstring(DatabaseText::kEmptyCategory));
    if (std::ranges::any_of(category.name, [](wchar_t character) { return character <= 0x20; }))
        throw CError(std::wstring(DatabaseText::kNoSpaces));
    const bool isWide =
        std::ranges::any_of(category.name, [](wchar_t character) { return character > 0xFF; });
    if (isWide || category.name.size() > kLongestName)
        throw CError(std::wstring(DatabaseText::kWrongCategory));
    if (!LineFits(CategoryLine(category)))
        throw CError(std::wstring(DatabaseText::kLineTooLong));
}

// Puts a value back unless the edit that changed it is completed.
template <class Value>
class CUndo {
public:
    explicit CUndo(Value& value) : m_pValue(&value), m_oOld(value) {}
    CUndo(const CUndo&) = delete;
    CUndo& operator=(const CUndo&) = delete;
    ~CUndo()
    {
        if (m_pValue != nullptr)
            *m_pValue = std::move(m_oOld);
    }
    void Keep() { m_pValue = nullptr; }

private:
    Value* m_pValue;
    Value m_oOld;
};

}  // namespace

void CTextureDatabase::Save()
{
    CImpl& state = *m_pImpl;
    state.RequireList();
    try {
        UpdateTocLengthWords();
        state.RewriteList();
    } catch (const CError& error) {
        if (error.WasShown())
            throw;
        ReportDatabaseError(state.m_rPrompt, error.Text(), kNone, __LINE__, ErrorKind::Fatal);
    }
}

void CTextureDatabase::ChangeProperty(std::uint32_t index, Property property, std::uint32_t value)
{
    CImpl& state = *m_pImpl;
    state.RequireList();
    TextureEntry& entry = state.At(index);
    TextureEntry changed = entry;
    EntryLine(changed);
    SetProperty(changed, property, value);
    RequireLineFits(changed);
    state.m_bListIsCurrent = false;
    entry = std::move(changed);
}

void CTextureDatabase::ChangeProperties(std::span<const PropertyChange> changes)
{
    CImpl& state = *m_pImpl;
    state.RequireList();
    std::map<std::uint32_t, TextureEntry> others;
    for (const PropertyChange& change : changes) {
        TextureEntry& changed = others.try_emplace(change.index, state.At(change.index)).first->second;
        EntryLine(changed);
        SetProperty(changed, change.property, change.value);
        RequireLineFits(changed);
    }
    const auto exchangeAll = [&state, &others] {
        for (auto& [index, entry] : others)
            std::swap(state.At(index), entry);
    };
    exchangeAll();
    try {
        Save();
    } catch (...) {
        exchangeAll();
        throw;
    }
}

void CTextureDatabase::AddCategory(std::wstring name)
{
    CImpl& state = *m_pImpl;
    state.RequireList();
    TextureCategory category;
    category.cat = static_cast<std::int32_t>(state.m_aCategories.size());
    category.name = std::move(name);
    RequireCategory(category);
    CUndo undo(state.m_aCategories);
    state.m_aCategories.push_back(std::move(category));
    state.RewriteList();
    undo.Keep();
}

void CTextureDatabase::SetCategory(std::uint32_t index, const TextureCategory& category)
{
    CImpl& state = *m_pImpl;
    state.RequireList();
    if (index >= state.m_aCategories.size())
        throw CError(std::wstring(DatabaseText::kWrongCategory));
    RequireCategory(category);
    CUndo undo(state.m_aCategories);
    state.m_aCategories[index] = category;
    state.RewriteList();
    undo.Keep();
}

bool CTextureDatabase::RenameCategory(std::uint32_t index, const std::wstring& name)
{
    CImpl& state = *m_pImpl;
    state.RequireList();
    if (index >= state.m_aCategories.size())
        return false;
    if (state.m_aCategories[index].name == name)
        return true;
    if (name.empty()) {
        ReportDatabaseError(state.m_rPrompt, DatabaseText::kEmptyCategory, 0, __LINE__, ErrorKind::Warning);
        return false;
    }
    TextureCategory renamed = state.m_aCategories[index];
    renamed.name = name;
    SetCategory(index, renamed);
    return true;
}

bool CTextureDatabase::DeleteCategory(std::uint32_t index)
{
    CImpl& state = *m_pImpl;
    state.RequireList();
    if (index >= state.m_aCategories.size())
        return false;
    std::vector<std::pair<std::size_t, TextureEntry>> changes;
    const auto deleted = static_cast<std::int32_t>(index);
    for (std::size_t i = 0; i < state.m_aEntries.size(); ++i) {
        const auto number = static_cast<std::int32_t>(state.m_aEntries[i].Value(Property::Cat));
        if (number < deleted)
            continue;
        TextureEntry& changed = changes.emplace_back(i, state.m_aEntries[i]).second;
        SetProperty(changed, Property::Cat, number == deleted ? 0 : static_cast<std::uint32_t>(number - 1));
        RequireLineFits(changed);
    }
    CUndo undo(state.m_aCategories);
    state.m_aCategories.erase(state.m_aCategories.begin() + deleted);
    for (std::size_t i = 0; i < state.m_aCategories.size(); ++i)
        state.m_aCategories[i].cat = static_cast<std::int32_t>(i);
    const auto exchangeAll = [&state, &changes] {
        for (auto& [i, entry] : changes)
            std::swap(state.m_aEntries[i], entry);
    };
    exchangeAll();
    try {
        state.RewriteList();
    } catch (...) {
        exchangeAll();
        throw;
    }
    undo.Keep();
    return true;
}

bool CTextureDatabase::RenameEntry(std::uint32_t index, const std::wstring& name)
{
    CImpl& state = *m_pImpl;
    state.RequireList();
    TextureEntry& entry = state.At(index);
    RequireTextureName(name);
    if (FindByName(name, false))
        return false;
    if (!entry.IsAlias())
        state.LoadHeaders(entry);
    TextureEntry renamed = entry;
    EntryLine(renamed);
    SetEntryName(renamed, name);
    RequireLineFits(renamed);
    // The line must say what the entry is called now; it does not when its own name was cut or never closed.
    if (renamed.nameWasCut || !renamed.lineText.starts_with("\"" + Narrow(name) + "\""))
        throw CError(std::wstring(DatabaseText::kWrongName));

    // Deliberate: the aliases follow in memory only; their lines keep the old name.
    // DatabaseRenaming.LeavesTheLinesOfAliasesAlone pins it.
    std::vector<std::uint32_t> aliases;
    for (auto alias = FindAliasOf(index, 0); alias; alias = FindAliasOf(index, *alias + 1))
        aliases.push_back(*alias);
    std::swap(entry, renamed);
    try {
        state.RewriteList();
    } catch (...) {
        std::swap(entry, renamed);
        throw;
    }
    for (const std::uint32_t alias : aliases)
        if (state.At(alias).affiliate == renamed.name)
            state.At(alias).affiliate = name;
    state.m_oNames.Forget();
    // The list goes first: a record that cannot be changed now is found by the next check of name hashes.
    // The records of an alias are those of its target and carry the target's name.
    if (!state.At(index).IsAlias())
        state.StoreNameHash(state.At(index));
    return true;
}

bool CTextureDatabase::AddAlias(const std::wstring& name, const std::wstring& target)
{
    RequireTextureName(target);
    StoreTexture(MakeAlias(name, target), {});
    return true;
}
