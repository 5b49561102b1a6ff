#include "tools/TextureRelations.h"

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
