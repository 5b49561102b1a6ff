#pragma once

// "Optimize Cache": finds duplicate textures of the open database and turns them into aliases, or deletes
// them. Modal. It borrows what it is given; the search itself is COptimizer of tools/, the same that the
// command line runs. The work runs on the interface thread; meanwhile the dialog paints, and "Close" stops
// it.

#include <string>

#include "app/Resources.h"
#include "app/UserDialogs.h"
#include "base/Prompt.h"
#include "dialogs/DialogProgress.h"
#include "tools/Optimizer.h"
#include "ui/Dialog.h"

struct OptimizeParts {
    const CResources& resources;
    /// Null while no database is open: nothing can be chosen or run then.
    const ToolEditor* editor;
    IPrompt& prompt;
};

class CDlgOptimize final : public CDialog {
public:
    explicit CDlgOptimize(const OptimizeParts& parts);

    /// Shows the dialog until it is closed.
    void Run(HWND owner) { DoModal(m_oParts.resources.Current(), owner); }

private:
    bool OnInit() override;
    void OnException() override;

    void FillCaches() const;
    void FillAlgorithms() const;
    void OnClose();
    void Optimize();
    OptimizeOptions ReadOptions() const;
    std::wstring ResultText(const OptimizeOptions& options, const OptimizeCounts& counts) const;
    std::wstring String(UINT id) const { return m_oParts.resources.Text(id); }

    OptimizeParts m_oParts;
    CDialogProgress m_oProgress;
    bool m_bBusy = false;
};
