#include <algorithm>
#include <utility>

#include "app/DlgMain.h"
#include "app/TextureMenus.h"
#include "app/resource.h"
#include "base/Format.h"
#include "tools/EditProperties.h"
#include "tools/EditTextures.h"
#include "tools/TextureRelations.h"

// ---- Categories ----

bool CDlgMain::AskAndAddCategory(bool fromMainMenu)
{
    const auto count = static_cast<std::uint32_t>(m_pDatabase->Categories().size());
    const auto name =
        m_oParts.dialogs.AskValue({.title = String(IDS_NEW_CATEGORY_TITLE),
                                   .label = String(IDS_NEW_CATEGORY_LABEL),
                                   .proposed = Format(String(IDS_NEW_CATEGORY_NAME), count + 1)});
    if (!name)
        return false;
    try {
        CheckCategoryName(*name);
    } catch (const CError& error) {
        // Deliberate: the main menu says it in a plain box, the menu of a texture in an error box.
        if (fromMainMenu)
            m_oParts.prompt.Show({.text = error.Text()});
        else
            m_oParts.prompt.ShowError(error.Text());
        return false;
    }
    CreateCategory(*m_pDatabase, *name);
    return true;
}

void CDlgMain::AddCategory()
{
    if (m_pDatabase && AskAndAddCategory(true))
        RefillTree();
}

void CDlgMain::AddCategoryForFocused()
{
    if (!m_pDatabase || !AskAndAddCategory(false))
        return;
    // Deliberate: only the texture with the focus moves, however many are selected.
    if (const auto focused = m_oTree.Focused()) {
        const auto category = static_cast<std::uint32_t>(m_pDatabase->Categories().size() - 1);
        MoveToCategory(*m_pDatabase, category, {{*focused}});
    }
    Reload();
}

void CDlgMain::MoveSelectionToCategory(UINT command)
{
    const std::uint32_t category = command - ID_CATEGORY_FIRST;
    if (!m_pDatabase || category >= m_pDatabase->Categories().size())
        return;
    MoveToCategory(*m_pDatabase, category, m_oTree.Selection().textures);
    Reload();
}

void CDlgMain::ChangeCategoryProperty(UINT command)
{
    const auto property = static_cast<CategoryProperty>(command - ID_CATEGORY_PROPERTY);
    const auto category = m_pDatabase ? m_oTree.Selection().category : std::nullopt;
    if (!category || command - ID_CATEGORY_PROPERTY >= kCategoryPropertyCount || !CanChange(property))
        return;
    const auto answer =
        m_oParts.dialogs.AskValue({.title = String(IDS_CATEGORY_PROPERTIES),
                                   .label = std::wstring(KeyText(property)),
                                   .proposed = ValueText(m_pDatabase->Categories()[*category], property)});
    const auto value = answer ? ParseCategoryAnswer(*answer) : std::nullopt;
    if (value)
        ::ChangeCategoryProperty(*m_pDatabase, *category, property, *value);
    ShowProperties();
}

void CDlgMain::DeleteFocusedCategory()
{
    const auto category = m_pDatabase ? m_oTree.Selection().category : std::nullopt;
    if (!category)
        return;
    for (std::uint32_t index = 0; index < m_pDatabase->EntryCount(); ++index)
        if (m_pDatabase->Entry(index).Value(Property::Cat) == *category) {
            Status(Format(String(IDS_CATEGORY_NOT_EMPTY), m_pDatabase->CategoryName(*category)));
            return;
        }
    m_pDatabase->DeleteCategory(*category);
    FillTree();
    m_oTree.SelectFirstItem();
}

// ---- Aliases ----

void CDlgMain::AskAndCreateAlias()
{
    const auto focused = m_pDatabase ? m_oTree.Focused() : std::nullopt;
    if (!focused)
        return;
    const std::uint32_t target = m_pDatabase->AliasTarget(*focused);
    const std::uint32_t original = target == kNone ? *focused : target;
    const auto name = m_oParts.dialogs.AskValue({.title = String(IDS_ALIAS_TITLE),
                                                 .label = String(IDS_ALIAS_LABEL),
                                                 .proposed = m_pDatabase->Entry(original).name});
    if (!name)
        return;
    const std::uint32_t alias = CreateAlias(*m_pDatabase, original, *name);
    FillTree();
    m_oTree.SelectTexture(alias);
}

void CDlgMain::GoToOriginal()
{
    const auto focused = m_pDatabase ? m_oTree.Focused() : std::nullopt;
    const std::uint32_t original = focused ? m_pDatabase->AliasTarget(*focused) : kNone;
    if (original != kNone)
        m_oTree.SelectTexture(original);
}

void CDlgMain::ShowRelations(RelationKind kind)
{
    if (!m_pDatabase)
        return;
    CWindowEditorHost host(*this);
    m_oParts.dialogs.ShowRelations(*m_pDatabase, m_oTree.Focused(), kind, host);
}

// ---- Names ----

void CDlgMain::StartRename()
{
    if (m_pDatabase && m_oTree.Selection().items == 1)
        m_oTree.Control().EditLabel(m_oTree.Control().Caret());
}

bool CDlgMain::MayEditLabel() const
{
    const TreeSelection selection = m_oTree.Selection();
    // The group of textures without a category is no category.
    return m_pDatabase && selection.items == 1 && (selection.focused || selection.category);
}

void CDlgMain::OnLabelEdited(const TVITEMW& item)
{
    if (item.pszText == nullptr || !m_pDatabase)
        return;
    const TreeSelection selection = m_oTree.Selection();
    m_oNewLabel = {.text = item.pszText, .texture = selection.focused, .category = selection.category};
    // The tree is filled anew afterwards, which it cannot bear while it ends the editing.
    ::PostMessageW(Handle(), kApplyLabelMessage, 0, 0);
}

void CDlgMain::ApplyLabel()
{
    const NewLabel label = std::exchange(m_oNewLabel, {});
    if (!m_pDatabase)
        return;
    if (label.texture && *label.texture < m_pDatabase->EntryCount())
        Rename(*label.texture, label.text);
    else if (label.category && *label.category < m_pDatabase->Categories().size())
        RenameCategory(*label.category, label.text);
}

void CDlgMain::Rename(std::uint32_t index, const std::wstring& name)
{
    if (m_pDatabase->Entry(index).name == name)
        return;
    const std::uint32_t aliases = m_pDatabase->CountAliasesOf(index);
    RenameTexture(*m_pDatabase, index, name);
    FillTree();
    m_oTree.SelectTexture(index);
    if (aliases != 0)
        Status(Format(String(IDS_STALE_ALIASES), aliases));
}

void CDlgMain::RenameCategory(std::uint32_t category, const std::wstring& name)
{
    CheckCategoryName(name);
    if (!m_pDatabase->RenameCategory(category, name))
        return;
    FillTree();
    m_oTree.SelectCategory(category);
}

// ---- Deletion ----

void CDlgMain::DeleteSelected()
{
    if (m_pDatabase && m_oTree.Selection().textures.empty())
        DeleteFocusedCategory();
    else
        DeleteSelectedTextures();
}

void CDlgMain::DeleteSelectedTextures()
{
    if (!m_pDatabase)
        return;
    const auto textures = m_oTree.Selection().textures;
    const auto removed = WithTheirAliases(*m_pDatabase, textures);
    if (textures.empty() || !ConfirmDeletion(textures.size(), removed.size() - textures.size()))
        return;
    auto next = m_oTree.NeighbourOf(removed);
    // Also after a failure or a stop in the middle the tree shows what is left.
    Attempt([&] { DeleteTextures(*m_pDatabase, textures, std::nullopt, m_oProgress); });
    const bool wasStopped = m_oProgress.Cancelled();
    m_oProgress.Hide();
    FillTree();
    if (next && !wasStopped)
        *next -= static_cast<std::uint32_t>(std::lower_bound(removed.begin(), removed.end(), *next) -
                                            removed.begin());
    if (next && *next < m_pDatabase->EntryCount())
        m_oTree.SelectTexture(*next);
}

bool CDlgMain::ConfirmDeletion(std::size_t textures, std::size_t aliases)
{
    return m_oParts.prompt.Show(
               {.text = Format(String(IDS_DELETE_QUESTION), static_cast<std::uint32_t>(textures),
                               static_cast<std::uint32_t>(aliases)),
                .caption = String(IDS_DELETE_CAPTION),
                .icon = PromptIcon::Warning,
                .buttons = PromptButtons::YesNo,
                .proposed = PromptAnswer::No}) == PromptAnswer::Yes;
}

// ---- Properties ----

void CDlgMain::SetSelectionDetail(UINT command)
{
    const std::uint32_t detail = command - ID_DETAIL_NONE;
    if (!m_pDatabase || detail > DetailNames(m_oParts.settings, *m_pDatabase).size())
        return;
    SetDetail(*m_pDatabase, m_oTree.Selection().textures, detail);
    ShowProperties();
}

void CDlgMain::ChangeSelectionProperty(UINT command)
{
    const auto property = static_cast<Property>(command - ID_TEXTURE_PROPERTY);
    const auto focused = m_pDatabase ? m_oTree.Focused() : std::nullopt;
    if (!focused || command - ID_TEXTURE_PROPERTY >= kPropertyCount || property < Property::CamNorm)
        return;
    const auto textures = m_oTree.Selection().textures;
    const std::uint32_t current = m_pDatabase->Entry(*focused).Value(property);
    const bool agree = HaveValue(*m_pDatabase, textures, property, current);
    if (!agree && m_oParts.prompt.Show({.text = String(IDS_DIFFERENT_VALUES),
                                        .caption = String(IDS_TEXTURE_PROPERTIES),
                                        .icon = PromptIcon::Question,
                                        .buttons = PromptButtons::YesNo}) != PromptAnswer::Yes)
        return;
    std::optional<std::uint32_t> value;
    if (agree && IsFlag(property)) {
        value = InvertedFlag(current);
    } else if (const auto answer = m_oParts.dialogs.AskValue({.title = String(IDS_TEXTURE_PROPERTIES),
                                                              .label = KeyText(property),
                                                              .proposed = ValueText(property, current)})) {
        value = ParseAnswer(property, *answer);
    }
    if (value)
        ChangeProperty(textures, property, *value);
}

void CDlgMain::ChangeProperty(std::span<const std::uint32_t> textures, Property property, std::uint32_t value)
{
    ChangeTextureProperty(*m_pDatabase, textures, property, value);
    if (property == Property::Cat)
        RefillTree();
    ShowProperties();
}
