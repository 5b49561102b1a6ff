#pragma once

// "DFF Checking": the texture names of one model, and whether the open database has them. Names are changed
// in the list itself; nothing is written before the model is saved under a name. Modal. It owns the open
// model and borrows the rest; the work is CModelCheck of tools/.

#include <filesystem>
#include <optional>
#include <string>

#include "app/Resources.h"
#include "app/TranslatingPrompt.h"
#include "app/UserDialogs.h"
#include "base/Prompt.h"
#include "dialogs/FittedColumns.h"
#include "dialogs/SectionTreeView.h"
#include "rw/Failures.h"
#include "tools/ModelCheck.h"
#include "ui/Anchors.h"
#include "ui/Dialog.h"
#include "ui/ListView.h"
#include "ui/Subclass.h"

struct DFFCheckParts {
    const CResources& resources;
    IPrompt& prompt;
    IUserDialogs& dialogs;
    RW::IFailures& failures;
    IFileSystem& files;
};

/// The field in which a name is edited, as far as whether Esc was pressed in it.
class CNameField final : public CSubclass<CWindow> {
public:
    void Watch(HWND field)
    {
        m_bGivenUp = false;
        TakeOver(field);
    }
    bool WasGivenUp() const { return m_bGivenUp; }

private:
    std::optional<LRESULT> Filter(UINT message, WPARAM wParam, LPARAM /*lParam*/) override
    {
        m_bGivenUp = m_bGivenUp || (message == WM_KEYDOWN && wParam == VK_ESCAPE);
        return std::nullopt;
    }

    bool m_bGivenUp = false;
};

class CDlgDFFCheck final : public CDialog {
public:
    /// `database` is null when none is open.
    CDlgDFFCheck(const DFFCheckParts& parts, std::filesystem::path file, const CTextureDatabase* database);

    /// Shows the dialog until it is closed. A file that cannot be read is told about, and nothing is shown.
    void Run(HWND owner);

private:
    bool OnInit() override;
    void OnException() override;

    void BindMessages();
    void AttachControls();
    void AddRows();
    void ShowRow(int row, const ModelTexture& texture) const;
    void StartRename() const;
    void OnLabelEdited(const LVITEMW& item);
    void ApplyLabel();
    void Rename(int row, const std::wstring& name);
    void OnClose();
    void SaveAs();
    void SaveText();
    std::wstring String(UINT id) const { return m_oParts.resources.Text(id); }

    static constexpr UINT kApplyLabelMessage = WM_APP + 1;

    /// A label that was edited and waits to become a name.
    struct NewLabel {
        int row = 0;
        std::wstring text;
    };

    DFFCheckParts m_oParts;
    CMessageTranslator m_oTranslator;
    std::filesystem::path m_sFile;
    const CTextureDatabase* m_pDatabase;
    CModelCheck m_oCheck;
    CAnchors m_oAnchors;
    CListView m_oList;
    CFittedColumns m_oColumns;
    CSectionTreeView m_oTree;
    CNameField m_oNameField;
    std::optional<NewLabel> m_oNewLabel;
    bool m_bHasUnsavedNames = false;
};
