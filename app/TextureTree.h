#pragma once

// The tree of the main window: categories, and under each its textures by name. It borrows the database while
// it is filled and keeps only item handles and indices.

#include <cstdint>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "app/TreeCtrlEx.h"
#include "database/TextureDatabase.h"

/// What is selected. Textures are in the order of the tree.
struct TreeSelection {
    std::vector<std::uint32_t> textures;
    std::size_t items = 0;
    /// The texture that has the focus, if it is one.
    std::optional<std::uint32_t> focused;
    /// The category that has the focus, if it is one of the database's own.
    std::optional<std::uint32_t> category;
    /// The text of the focused item; empty when there is none.
    std::wstring focusedText;
};

class CTextureTree {
public:
    CTreeCtrlEx& Control() { return m_oControl; }

    /// Shows the database anew; categories that were open stay so. `unknown` names the group of textures
    /// whose category does not exist. With pictures the control asks for the picture of each texture when it
    /// first draws it.
    void Fill(const CTextureDatabase& database, const std::wstring& unknown, bool withPictures);
    void Clear();

    TreeSelection Selection() const;
    /// The texture that has the focus, if it is one.
    std::optional<std::uint32_t> Focused() const;
    /// Selects the texture alone, opens its category and scrolls to it.
    void SelectTexture(std::uint32_t index);
    void SelectCategory(std::uint32_t category);
    void SelectFirstItem();
    /// The texture that is to be selected once `removed` (in index order) are gone: the next one below the
    /// last of them, else the one above. Nothing when none stays.
    std::optional<std::uint32_t> NeighbourOf(std::span<const std::uint32_t> removed) const;

private:
    std::set<std::wstring> OpenCategories() const;

    CTreeCtrlEx m_oControl;
    std::vector<HTREEITEM> m_aTextureItems;   // by entry index
    std::vector<std::uint32_t> m_aRanks;      // by entry index: the place in the tree, counted from above
    std::vector<HTREEITEM> m_aCategoryItems;  // by category index, then the unknown one if there is one
    std::size_t m_nCategories = 0;
};

/// The entries of each category by name, A-Z as a-z, equal names by index; one more group at the end holds
/// those whose category does not exist.
std::vector<std::vector<std::uint32_t>> GroupByCategory(const CTextureDatabase& database);
