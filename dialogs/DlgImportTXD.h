#pragma once

// "Import TXD": the textures of one dictionary, of which the person ticks those that go into the open
// database. Modal. It owns the open dictionary and borrows the rest. The import itself is CDictionaryImporter
// of tools/, the same that the command line runs.

#include <cstdint>
#include <vector>

#include "app/Resources.h"
#include "app/UserDialogs.h"
#include "base/Progress.h"
#include "base/Prompt.h"
#include "dialogs/DialogProgress.h"
#include "dialogs/FittedColumns.h"
#include "dialogs/SectionTreeView.h"
#include "rw/Failures.h"
#include "tools/DictionarySource.h"
#include "tools/ExportPictures.h"
#include "tools/ImportClash.h"
#include "tools/TXDHelper.h"
#include "ui/Anchors.h"
#include "ui/Dialog.h"
#include "ui/ListView.h"
#include "ui/ProgressBar.h"

struct ImportTXDParts {
    const CResources& resources;
    /// The open database and what imports into it need.
    ToolEditor editor;
    IPrompt& prompt;
    IUserDialogs& dialogs;
    RW::IFailures& failures;
    IFileSystem& files;
};

class CDlgImportTXD final : public CDialog, private IProgress {
public:
    /// A file, or a place in an open archive, which stays its caller's. What is imported goes into
    /// `category`.
    CDlgImportTXD(const ImportTXDParts& parts, DictionarySource source, std::uint32_t category);

    /// Shows the dialog until it is closed. A dictionary that cannot be read is told about, and nothing is
    /// shown.
    void Run(HWND owner);

private:
    bool OnInit() override;
    void OnException() override;
    // The progress of an import; that of an export goes straight to m_oProgress.
    void Report(std::uint32_t current, std::uint32_t total, const std::wstring& text) override;
    bool Cancelled() const override { return m_oProgress.Cancelled(); }

    void BindMessages();
    void AttachControls();
    void AddRows();
    void AddSystemCommands() const;
    void OnCancel();
    void CheckAll() const;
    std::vector<std::uint32_t> CheckedTextures() const;
    void Import();
    ImportCounts ImportTextures(const std::vector<std::uint32_t>& textures);
    void ExportCurrent();
    void ExportAll();
    ExportCounts ExportTextures(const std::filesystem::path& folder);
    void ShowInformation(UINT text) const;
    static std::wstring CounterText(std::uint32_t current, std::uint32_t total);
    std::wstring String(UINT id) const { return m_oParts.resources.Text(id); }

    ImportTXDParts m_oParts;
    DictionarySource m_oSource;
    std::uint32_t m_nCategory;
    CTXDHelper m_oHelper;
    CAnchors m_oAnchors;
    CListView m_oList;
    CFittedColumns m_oColumns;
    CSectionTreeView m_oTree;
    CProgressBar m_oBar;
    CDialogProgress m_oProgress;
    bool m_bBusy = false;
};
