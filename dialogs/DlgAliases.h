#pragma once

// How one texture relates to others: the list of its aliases, or the list of its siblings. Selecting a row
// selects that texture in the main window; nothing is changed. Modal. It borrows what it is given.

#include <optional>
#include <vector>

#include "app/Resources.h"
#include "base/Prompt.h"
#include "tools/EditorHost.h"
#include "tools/TextureRelations.h"
#include "ui/Dialog.h"
#include "ui/ListView.h"

struct RelationListParts {
    const CResources& resources;
    CTextureDatabase& database;
    IEditorHost& host;
    IPrompt& prompt;
};

class CDlgAliases final : public CDialog {
public:
    /// `index` is the texture that has the focus in the main window, if one has it.
    CDlgAliases(const RelationListParts& parts, RelationKind kind, std::optional<std::uint32_t> index);

    /// Shows the list until it is closed. Without aliases only a box says so; without anything to list,
    /// nothing is shown at all.
    void Run(HWND owner);

private:
    bool OnInit() override;
    void OnException() override;
    void AddColumns();
    void AddRows();
    void PlaceWindow();
    void Layout();
    void OnMinMaxInfo(MINMAXINFO& info) const;
    void OnItemChanged(const NMLISTVIEW& change);
    bool IsSiblingList() const { return m_eKind == RelationKind::Siblings; }

    RelationListParts m_oParts;
    RelationKind m_eKind;
    std::optional<std::uint32_t> m_nIndex;
    std::optional<std::vector<RelatedTexture>> m_aRows;
    CListView m_oList;
    int m_nDpi = USER_DEFAULT_SCREEN_DPI;  // what the columns are laid out for
};
