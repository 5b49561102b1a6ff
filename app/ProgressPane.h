#pragma once

// The progress of long work, in pane 1 of the status bar. The window keeps painting while the work runs, and
// Esc asks it to stop.

#include "base/Progress.h"
#include "ui/ProgressBar.h"
#include "ui/StatusBar.h"

class CProgressPane final : public IProgress {
public:
    /// Creates the hidden bar inside `status`, which is borrowed.
    void Create(const CStatusBar& status, int id);
    /// Puts the bar into its pane again after the status bar changed its size.
    void Follow() const;
    void Hide();
    bool IsRunning() const { return m_bRunning; }

    void Report(std::uint32_t current, std::uint32_t total, const std::wstring& text) override;
    bool Cancelled() const override { return m_bCancelled; }

private:
    CStatusBar m_oStatus;
    CProgressBar m_oBar;
    ULONGLONG m_nLastDrawn = 0;
    bool m_bCancelled = false;
    bool m_bRunning = false;
};
