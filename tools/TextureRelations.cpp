#include "tools/TextureRelations.h"

#include "base/Format.h"

std::vector<std::uint32_t> AliasesOf(const CTextureDatabase& database, std::uint32_t index)
{
    std::vector<std::uint32_t> aliases;
    for (auto found = database.FindAliasOf(index, 0); found; found = database.FindAliasOf(index, *found + 1))
        aliases.push_back(*found);
    return aliases;
}

SiblingFamily SiblingsOf(const CTextureDatabase& database, std::uint32_t index)
{
    SiblingFamily family{.base = index, .members = {}};
    std::wstring name = database.Entry(index).name;
    while (!name.empty()) {
        if (const auto found = database.FindByName(name, true))
            family.base = *found;
        const std::size_t cut = name.rfind(L'_');
        name.resize(cut == std::wstring::npos ? 0 : cut);
    }
    const std::wstring prefix = database.Entry(family.base).name + L"_";
    for (std::uint32_t i = 0; i < database.EntryCount(); ++i)
        if (i == family.base || database.Entry(i).name.starts_with(prefix))
            family.members.push_back(i);
    return family;
}

std::wstring SiblingSuffix(const CTextureDatabase& database, const SiblingFamily& family,
                           std::uint32_t member)
{
    if (member == family.base)
        return L"N/A";
    return database.Entry(member).name.substr(database.Entry(family.base).name.size() + 1);
}

std::optional<std::vector<RelatedTexture>> RelatedTextures(CTextureDatabase& database, RelationKind kind,
                                                           std::optional<std::uint32_t> index)
{
    std::vector<RelatedTexture> rows;
    const auto add = [&rows, &database](std::uint32_t found) {
        const TextureEntry& entry = database.Entry(found);
        rows.push_back({.index = found,
                        .id = Format(L"%02d", found),
                        .name = entry.name,
                        .hasSibling = entry.Value(Property::HasSibling) != 0});
    };
    const bool isAliasOfNothing = index && database.IsAlias(*index) && database.AliasTarget(*index) == kNone;
    if (isAliasOfNothing || (!index && kind == RelationKind::Siblings))
        return std::nullopt;
    if (kind == RelationKind::Aliases) {
        if (index)
            for (const std::uint32_t alias : AliasesOf(database, *index))
                add(alias);
        return rows;
    }
    const SiblingFamily family = SiblingsOf(database, *index);
    for (const std::uint32_t member : family.members) {
        add(member);
        rows.back().txd = SiblingSuffix(database, family, member);
        rows.back().aliasOf = database.Entry(member).affiliate;
    }
    return rows;
}
