#pragma once

// What the dialogs over IMG archives have in common: a list with check boxes that grows with the window, a
// progress bar with a status line, the system-menu command "Export current file", and work on the interface
// thread that can be stopped. Stop and Esc end the work between two items and leave the dialog open; closing
// the window ends the work and then the dialog. It borrows what it is given.

#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

#include "app/Resources.h"
#include "app/TranslatingPrompt.h"
#include "app/UserDialogs.h"
#include "base/File.h"
#include "base/Prompt.h"
#include "dialogs/DialogProgress.h"
#include "dialogs/FittedColumns.h"
#include "rw/Failures.h"
#include "ui/Anchors.h"
#include "ui/Dialog.h"
#include "ui/ListView.h"

struct ArchiveDialogParts {
    const CResources& resources;
    /// Null while no database is open.
    const ToolEditor* editor;
    IPrompt& prompt;
    IUserDialogs& dialogs;
    RW::IFailures& failures;
    IFileSystem& files;
};

class CArchiveDialog : public CDialog {
public:
    /// Shows the dialog until it is closed.
    void Run(HWND owner) { DoModal(m_oParts.resources.Current(), owner); }

protected:
    /// The controls that every such dialog has; the others are buttons in the first row.
    struct Controls {
        int listLabel;
        int list;
        int progress;
        int status;
    };

    CArchiveDialog(int templateId, const ArchiveDialogParts& parts, const Controls& controls);

    /// Sets up what the constructor was told of. A derived class adds its columns.
    bool OnInit() override;
    void OnException() override;
    /// A disabled window has a box above it, so that only another program can send a command.
    bool AcceptsCommands() const override { return IsEnabled(); }
    /// Binds a command that is dropped while work runs.
    void OnIdleCommand(UINT id, std::function<void()> handler);
    /// What a cell of the list shows: asked for when it is drawn.
    virtual std::wstring CellText(int row, int column) const = 0;
    /// The command of the system menu.
    virtual void ExportCurrent() = 0;

    /// Runs `work` with every control disabled but Stop. What it throws is shown. True when it came to its
    /// end without being stopped.
    bool Work(const std::function<void()>& work);
    /// Gives the list that many rows, of which none is checked.
    void ShowRows(std::size_t count);
    std::vector<int> CheckedRows() const;
    /// One archive, or several.
    FileRequest ArchiveRequest(bool several) const;

    const ArchiveDialogParts& Parts() const { return m_oParts; }
    std::wstring String(UINT id) const { return m_oParts.resources.Text(id); }
    /// A text of the core in the interface language.
    std::wstring Translated(std::wstring_view text) const { return m_oTranslator.Translate(text); }
    const CListView& List() const { return m_oList; }
    const CFittedColumns& Columns() const { return m_oColumns; }
    CDialogProgress& Progress() { return m_oProgress; }

private:
    void BindMessages();
    void AddSystemCommand() const;
    void OnCancel();
    void OnClose();
    void OnCellNeeded(LVITEMW& item) const;

    ArchiveDialogParts m_oParts;
    Controls m_oControls;
    CMessageTranslator m_oTranslator;
    CListView m_oList;
    CFittedColumns m_oColumns;
    CDialogProgress m_oProgress;
    CAnchors m_oAnchors;
    bool m_bWorking = false;
    bool m_bCloses = false;  // once the work has ended
};
