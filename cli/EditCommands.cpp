// Editing entries and categories:
//
//   rename DB TEXTURE NEW                          move DB CATEGORY TEXTURE...
//   alias DB TARGET NEW                            category DB add NAME | rename CATEGORY NEW | delete
//   CATEGORY | delete DB TEXTURE... [--retarget TEXTURE]                   set CATEGORY KEY=VALUE... aliases
//   DB TEXTURE                             siblings DB TEXTURE

#include <array>

#include "base/Format.h"
#include "base/Text.h"
#include "cli/Command.h"
#include "tools/EditProperties.h"
#include "tools/EditTextures.h"
#include "tools/TextureRelations.h"

namespace {

ExitCode RunRename(CSession& session, const CArguments& arguments)
{
    const auto& words = arguments.Words();
    CTextureDatabase& database = session.OpenDatabase(words[0]);
    RenameTexture(database, FindTexture(database, words[1]), words[2]);
    return ExitCode::Done;
}

ExitCode RunAlias(CSession& session, const CArguments& arguments)
{
    const auto& words = arguments.Words();
    CTextureDatabase& database = session.OpenDatabase(words[0]);
    CreateAlias(database, FindTexture(database, words[1]), words[2]);
    return ExitCode::Done;
}

std::vector<std::uint32_t> FindTextures(const CTextureDatabase& database, std::span<const std::wstring> words)
{
    std::vector<std::uint32_t> indices;
    for (const std::wstring& word : words)
        indices.push_back(FindTexture(database, word));
    return indices;
}

ExitCode RunDelete(CSession& session, const CArguments& arguments)
{
    const auto& words = arguments.Words();
    CTextureDatabase& database = session.OpenDatabase(words[0]);
    std::optional<std::uint32_t> newTarget;
    if (const auto word = arguments.Value(L"--retarget"))
        newTarget = FindTexture(database, *word);
    const auto indices = FindTextures(database, std::span(words).subspan(1));
    DeleteTextures(database, indices, newTarget, session.Progress());
    return ExitCode::Done;
}

ExitCode RunMove(CSession& session, const CArguments& arguments)
{
    const auto& words = arguments.Words();
    CTextureDatabase& database = session.OpenDatabase(words[0]);
    const std::uint32_t category = FindCategory(database, words[1]);
    MoveToCategory(database, category, FindTextures(database, std::span(words).subspan(2)));
    return ExitCode::Done;
}

void SetCategoryFields(CTextureDatabase& database, std::uint32_t index, std::span<const std::wstring> pairs)
{
    TextureCategory category = database.Categories()[index];
    for (const std::wstring& pair : pairs) {
        const std::size_t equals = pair.find(L'=');
        const auto property = CategoryPropertyFromKey(std::wstring_view(pair).substr(0, equals));
        std::int32_t* const field = property ? FieldOf(category, *property) : nullptr;
        if (equals == std::wstring::npos || field == nullptr)
            throw CUsageError(Format(L"'%s' is not KEY=VALUE with the key of a category.", pair));
        const std::wstring_view text = std::wstring_view(pair).substr(equals + 1);
        const auto number = ParseCategoryNumber(text);
        if (!number)
            throw CUsageError(Format(L"'%s' is not a whole number.", text));
        *field = *number;
    }
    database.SetCategory(index, category);
}

ExitCode RunCategory(CSession& session, const CArguments& arguments)
{
    const auto& words = arguments.Words();
    const std::wstring& verb = words[1];
    const bool wordsFit = (verb == L"rename" && words.size() == 4) || (verb == L"set" && words.size() >= 4) ||
                          ((verb == L"add" || verb == L"delete") && words.size() == 3);
    if (!wordsFit)
        throw CUsageError(
            L"After DB follows add NAME, rename CATEGORY NEW, delete CATEGORY or set CATEGORY KEY=VALUE...");
    CTextureDatabase& database = session.OpenDatabase(words[0]);
    if (verb == L"add") {
        CreateCategory(database, words[2]);
        return ExitCode::Done;
    }
    const std::uint32_t category = FindCategory(database, words[2]);
    if (verb == L"rename") {
        CheckCategoryName(words[3]);
        return database.RenameCategory(category, words[3]) ? ExitCode::Done : ExitCode::Failed;
    }
    if (verb == L"delete")
        return database.DeleteCategory(category) ? ExitCode::Done : ExitCode::Failed;
    SetCategoryFields(database, category, std::span(words).subspan(3));
    return ExitCode::Done;
}

void WriteAlias(CJsonWriter& json, const CTextureDatabase& database, std::uint32_t index)
{
    const TextureEntry& entry = database.Entry(index);
    json.Field(L"index", index).Field(L"name", entry.name);
    json.Field(L"has_sibling", entry.Value(Property::HasSibling) != 0);
}

ExitCode RunAliases(CSession& session, const CArguments& arguments)
{
    const auto& words = arguments.Words();
    CTextureDatabase& database = session.OpenDatabase(words[0]);
    const auto aliases = AliasesOf(database, FindTexture(database, words[1]));
    if (session.Options().json) {
        CJsonWriter json;
        json.BeginObject().Key(L"aliases").BeginArray();
        for (const std::uint32_t index : aliases) {
            json.BeginObject();
            WriteAlias(json, database, index);
            json.EndObject();
        }
        json.EndArray().EndObject();
        WriteOutput(json.Document());
        return ExitCode::Done;
    }
    if (aliases.empty())
        WriteMessage(L"No aliases found.");
    for (const std::uint32_t index : aliases)
        WriteOutput(Format(L"%02d\t%s\t%s\n", index, database.Entry(index).name,
                           database.Entry(index).Value(Property::HasSibling) != 0 ? L"Yes" : L"No"));
    return ExitCode::Done;
}

ExitCode RunSiblings(CSession& session, const CArguments& arguments)
{
    const auto& words = arguments.Words();
    CTextureDatabase& database = session.OpenDatabase(words[0]);
    const SiblingFamily family = SiblingsOf(database, FindTexture(database, words[1]));
    if (session.Options().json) {
        CJsonWriter json;
        json.BeginObject().Field(L"base", family.base).Key(L"siblings").BeginArray();
        for (const std::uint32_t index : family.members) {
            json.BeginObject();
            WriteAlias(json, database, index);
            json.Field(L"txd", SiblingSuffix(database, family, index))
                .Field(L"alias_of", database.Entry(index).affiliate)
                .EndObject();
        }
        json.EndArray().EndObject();
        WriteOutput(json.Document());
        return ExitCode::Done;
    }
    for (const std::uint32_t index : family.members) {
        const TextureEntry& entry = database.Entry(index);
        WriteOutput(Format(L"%02d\t%s\t%s\t%s\t%s\n", index, entry.name,
                           SiblingSuffix(database, family, index),
                           entry.Value(Property::HasSibling) != 0 ? L"Yes" : L"No", entry.affiliate));
    }
    return ExitCode::Done;
}

}  // namespace

std::span<const Command> EditCommands()
{
    static const std::array kCommands = {
        Command{L"rename", L"DB TEXTURE NEW", L"Gives a texture another name.", 3, 3, {}, RunRename},
        Command{L"alias",
                L"DB TARGET NEW",
                L"Adds an alias in the category of its original.",
                3,
                3,
                {},
                RunAlias},
        Command{L"delete",
                L"DB TEXTURE... [--retarget TEXTURE]",
                L"Deletes textures, without a question; their aliases go too, or take the new target.",
                2,
                kAnyNumber,
                {.flags = {}, .withValue = {L"--retarget"}},
                RunDelete},
        Command{L"move",
                L"DB CATEGORY TEXTURE...",
                L"Moves textures and their aliases into a category.",
                3,
                kAnyNumber,
                {},
                RunMove},
        Command{L"category",
                L"DB add NAME | rename CATEGORY NEW | delete CATEGORY | set CATEGORY KEY=VALUE...",
                L"Edits the categories. The textures of a deleted category go to the first.",
                3,
                kAnyNumber,
                {},
                RunCategory},
        Command{L"aliases", L"DB TEXTURE", L"Every alias of a texture.", 2, 2, {}, RunAliases},
        Command{L"siblings",
                L"DB TEXTURE",
                L"The family of a texture: base name, \"_\" and suffix.",
                2,
                2,
                {},
                RunSiblings},
    };
    return kCommands;
}
