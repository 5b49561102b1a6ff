#pragma once

// The panel below the tree: what the focused texture or category is, line by line, edited in place. A button
// folds it away. The panel holds no database and no rule: it is told what to show, and says which value the
// person wants. Whoever owns it makes the change and then shows the texture or category again.

#include <cstdint>
#include <functional>
#include <string>

#include "app/PropertyField.h"
#include "app/PropertyList.h"
#include "app/Resources.h"
#include "tools/EditProperties.h"
#include "tools/PropertyRows.h"
#include "ui/CustomWindow.h"

class CPropertiesPanel final : public CCustomWindow {
public:
    static constexpr wchar_t kClassName[] = L"MavrelProperties";

    using TextureEdit = std::function<void(std::uint32_t index, Property property, std::uint32_t value)>;
    using CategoryEdit =
        std::function<void(std::uint32_t category, CategoryProperty property, std::int32_t value)>;

    CPropertiesPanel();

    /// Creates the panel, unfolded and empty, behind the child `after` in the order of the Tab key.
    /// `resources` is borrowed.
    bool Create(HWND parent, int id, const CResources& resources, HWND after);
    /// Takes the texts from the resources anew, after the interface language has changed.
    void UpdateTexts();

    // Called from window procedures: the handlers must not throw.
    void OnTextureEdit(TextureEdit handler) { m_fnTextureEdit = std::move(handler); }
    void OnCategoryEdit(CategoryEdit handler) { m_fnCategoryEdit = std::move(handler); }
    /// After folding the panel is empty; after unfolding it has to be shown something.
    void OnFoldChanged(std::function<void()> handler) { m_fnFoldChanged = std::move(handler); }

    // Each ends the editing of a value without a change, and does nothing while the panel is folded.
    void ShowTexture(CTextureDatabase& database, std::uint32_t index);
    void ShowCategory(const CTextureDatabase& database, std::uint32_t category);
    void Clear();

    bool IsFolded() const { return m_bFolded; }
    void SetFolded(bool folded);
    /// The height of the button alone, in pixels.
    int FoldedHeight() const;
    /// The height to give the panel in a column of `available` pixels that it shares with the tree.
    int PreferredHeight(int available) const;
    /// The field while a value is edited, else null; its keys are text and no accelerators.
    HWND Editor() const { return m_oField.IsOpen() ? m_oField.Handle() : nullptr; }
    /// Whether the panel has the keyboard, so that Del, for example, does not mean the tree.
    bool HasFocus() const;

private:
    enum class Subject { None, Texture, Category };

    bool CreateChildren(HFONT font);
    void CreateTip();
    void SetFont(HFONT font);
    void Layout();
    void DrawHeader(const DRAWITEMSTRUCT& draw) const;
    int FontHeight() const;
    void ShowRows(Subject subject, std::uint32_t index, std::vector<PropertyRow> rows);
    void Change(const PropertyRow& row);
    void OnFieldDone(bool keep);
    void CommitTexture(const PropertyRow& row, const std::wstring& text) const;
    void CommitCategory(const PropertyRow& row, const std::wstring& text) const;

    const CResources* m_pResources = nullptr;
    PropertyRowTexts m_oTexts;
    CWindow m_oHeader;
    CWindow m_oTip;
    CWindow m_oLabel;
    CPropertyList m_oList;
    CPropertyField m_oField;
    TextureEdit m_fnTextureEdit;
    CategoryEdit m_fnCategoryEdit;
    std::function<void()> m_fnFoldChanged;
    bool m_bFolded = false;
    Subject m_eSubject = Subject::None;
    std::uint32_t m_nIndex = 0;
    PropertyRow m_oEdited;  // the row behind the open field
};
