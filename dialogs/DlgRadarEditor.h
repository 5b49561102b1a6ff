#pragma once

// "Radar Map Editor": the tiles of the radar map in the cache that the main window shows. The whole map is
// saved as a picture, shown in the main window's preview, made anew from a picture, and freed of tiles that
// look alike. Modal. It borrows what it is given; the work itself is in tools/.
//
// Import and the whole map are work of a thread that reaches the database only through the host and steps on
// the window's thread. While anything runs, the dialog stays.

#include <exception>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "app/Resources.h"
#include "app/UserDialogs.h"
#include "base/Progress.h"
#include "base/Prompt.h"
#include "dialogs/DialogProgress.h"
#include "dialogs/FittedColumns.h"
#include "image/ImageFile.h"
#include "tools/ImportClash.h"
#include "tools/RadarMapPicture.h"
#include "ui/Anchors.h"
#include "ui/Dialog.h"
#include "ui/ListView.h"
#include "ui/ProgressBar.h"
#include "ui/Worker.h"

struct RadarEditorParts {
    const CResources& resources;
    /// Null while no database is open: there is no map then.
    const ToolEditor* editor;
    CacheIndex cache;
    IPrompt& prompt;
    IUserDialogs& dialogs;
};

class CDlgRadarEditor final : public CDialog, private IProgress {
public:
    explicit CDlgRadarEditor(const RadarEditorParts& parts);

    /// Shows the dialog until it is closed.
    void Run(HWND owner) { DoModal(m_oParts.resources.Current(), owner); }

private:
    static constexpr UINT kFillMessage = WM_APP + 1;

    bool OnInit() override;
    void OnException() override;
    /// A box above the dialog has the word.
    bool AcceptsCommands() const override { return IsEnabled(); }
    void Report(std::uint32_t current, std::uint32_t total, const std::wstring& text) override;
    bool Cancelled() const override { return false; }

    void BindMessages();
    void AttachControls();
    void OnClose();
    void OnItemChanged(const NMLISTVIEW& change) const;

    /// True, and says so, while something runs.
    bool IsBusy() const;
    void Fill();
    void ShowProgress(std::uint32_t current, std::uint32_t total, const std::wstring& text) const;
    void SayThereIsNoMap() const;
    std::wstring FileName() const;

    void Export();
    void ExportTo(const std::filesystem::path& file, ImageFormat format);
    void ShowMap();
    void Import();
    void ImportFile(const std::filesystem::path& file, ImportCounts& counts);
    void Optimize();
    std::optional<RadarMapPlan> PlanOrSayThereIsNone() const;
    /// Starts a thread; `ended` hears on the window's thread whether the work came to its end.
    void StartWork(std::function<void()> work, std::function<void(bool)> ended);
    std::wstring String(UINT id) const { return m_oParts.resources.Text(id); }

    RadarEditorParts m_oParts;
    CListView m_oList;
    CFittedColumns m_oColumns;
    CAnchors m_oAnchors;
    CDialogProgress m_oProgress;
    CProgressBar m_oBar;
    bool m_bBusy = false;
    bool m_bFilling = false;
    bool m_bImporting = false;
    /// The last one, so that whatever it uses is still there while it ends.
    CWorker m_oWorker;
};
