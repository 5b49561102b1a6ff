#include "app/TextureTree.h"

#include <algorithm>

#include "base/Text.h"

std::vector<std::vector<std::uint32_t>> GroupByCategory(const CTextureDatabase& database)
{
    const std::size_t categories = database.Categories().size();
    std::vector<std::wstring> keys(database.EntryCount());
    std::vector<std::vector<std::uint32_t>> groups(categories + 1);
    for (std::uint32_t index = 0; index < database.EntryCount(); ++index) {
        const TextureEntry& entry = database.Entry(index);
        keys[index] = ToLowerAscii(entry.name);
        groups[std::min<std::size_t>(entry.Value(Property::Cat), categories)].push_back(index);
    }
    for (auto& group : groups)
        std::sort(group.begin(), group.end(), [&keys](std::uint32_t left, std::uint32_t right) {
            const int order = keys[left].compare(keys[right]);
            return order != 0 ? order < 0 : left < right;
        });
    return groups;
}

void CTextureTree::Clear()
{
    const CNoRedraw quiet(m_oControl);
    m_oControl.RemoveAll();
    m_aTextureItems.clear();
    m_aRanks.clear();
    m_aCategoryItems.clear();
    m_nCategories = 0;
}

void CTextureTree::Fill(const CTextureDatabase& database, const std::wstring& unknown, bool withPictures)
{
    const auto open = OpenCategories();
    Clear();
    const int picture = withPictures ? I_IMAGECALLBACK : I_IMAGENONE;
    const CNoRedraw quiet(m_oControl);
    const auto groups = GroupByCategory(database);
    m_nCategories = database.Categories().size();
    m_aTextureItems.resize(database.EntryCount());
    m_aRanks.resize(database.EntryCount());
    std::uint32_t rank = 0;
    for (std::size_t group = 0; group < groups.size(); ++group) {
        const bool isUnknown = group == m_nCategories;
        if (isUnknown && groups[group].empty())
            break;
        const std::wstring& name = isUnknown ? unknown : database.Categories()[group].name;
        const HTREEITEM parent = m_oControl.Append(TVI_ROOT, name, CTreeCtrlEx::kSingleItem);
        m_aCategoryItems.push_back(parent);
        for (const std::uint32_t index : groups[group]) {
            m_aRanks[index] = rank++;
            m_aTextureItems[index] =
                m_oControl.Append(parent, database.Entry(index).name, static_cast<LPARAM>(index), picture);
        }
        if (open.contains(name))
            m_oControl.Expand(parent, TVE_EXPAND);
    }
}

std::set<std::wstring> CTextureTree::OpenCategories() const
{
    std::set<std::wstring> open;
    for (const HTREEITEM item : m_aCategoryItems)
        if (m_oControl.HasState(item, TVIS_EXPANDED))
            open.insert(m_oControl.ItemText(item));
    return open;
}

TreeSelection CTextureTree::Selection() const
{
    TreeSelection selection;
    for (const HTREEITEM item : m_oControl.SelectedItems()) {
        ++selection.items;
        const LPARAM data = m_oControl.Data(item);
        if (data != CTreeCtrlEx::kSingleItem)
            selection.textures.push_back(static_cast<std::uint32_t>(data));
    }
    std::sort(selection.textures.begin(), selection.textures.end(),
              [this](std::uint32_t left, std::uint32_t right) { return m_aRanks[left] < m_aRanks[right]; });
    const HTREEITEM caret = m_oControl.Caret();
    if (caret == nullptr)
        return selection;
    selection.focusedText = m_oControl.ItemText(caret);
    selection.focused = Focused();
    if (selection.focused)
        return selection;
    const auto found = std::find(m_aCategoryItems.begin(), m_aCategoryItems.end(), caret);
    const auto index = static_cast<std::size_t>(found - m_aCategoryItems.begin());
    if (index < m_nCategories)
        selection.category = static_cast<std::uint32_t>(index);
    return selection;
}

std::optional<std::uint32_t> CTextureTree::Focused() const
{
    const HTREEITEM caret = m_oControl.Caret();
    const LPARAM data = caret != nullptr ? m_oControl.Data(caret) : CTreeCtrlEx::kSingleItem;
    if (data == CTreeCtrlEx::kSingleItem)
        return std::nullopt;
    return static_cast<std::uint32_t>(data);
}

void CTextureTree::SelectTexture(std::uint32_t index)
{
    if (index < m_aTextureItems.size())
        m_oControl.SelectOnly(m_aTextureItems[index]);
}

void CTextureTree::SelectCategory(std::uint32_t category)
{
    if (category < m_nCategories)
        m_oControl.SelectOnly(m_aCategoryItems[category]);
}

std::optional<std::uint32_t> CTextureTree::NeighbourOf(std::span<const std::uint32_t> removed) const
{
    std::uint32_t lastRank = 0;
    for (const std::uint32_t index : removed)
        lastRank = std::max(lastRank, m_aRanks[index]);
    std::optional<std::uint32_t> below;
    std::optional<std::uint32_t> above;
    for (std::uint32_t index = 0; index < m_aRanks.size(); ++index) {
        if (std::binary_search(removed.begin(), removed.end(), index))
            continue;
        if (m_aRanks[index] > lastRank && (!below || m_aRanks[index] < m_aRanks[*below]))
            below = index;
        if (m_aRanks[index] < lastRank && (!above || m_aRanks[index] > m_aRanks[*above]))
            above = index;
    }
    return below ? below : above;
}

void CTextureTree::SelectFirstItem()
{
    if (const HTREEITEM first = m_oControl.Root())
        m_oControl.SelectOnly(first);
}
