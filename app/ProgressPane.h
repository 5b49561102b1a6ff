#pragma once

// The progress of long work: a bar in pane 1 of the status bar, the count and the item at hand in pane 0. The
// window keeps painting while the work runs, and Esc asks it to stop.

#include <string>
#include <utility>

#include "base/Progress.h"
#include "ui/ProgressBar.h"
#include "ui/StatusBar.h"

class CProgressPane final : public IProgress {
public:
    /// Creates the hidden bar inside `status`, which is borrowed.
    void Create(const CStatusBar& status, int id);
    /// Puts the bar into its pane again after the status bar changed its size.
    void Follow() const;
    /// Takes "%d of %d: %s": how pane 0 says where the work is.
    void SetText(std::wstring format) { m_sFormat = std::move(format); }
    /// Ends the work; pane 0 gets its text back unless somebody has written there since.
    void Hide();
    bool IsRunning() const { return m_bRunning; }

    void Report(std::uint32_t current, std::uint32_t total, const std::wstring& text) override;
    bool Cancelled() const override { return m_bCancelled; }
    /// Lets the window paint and looks for Esc, where the work waits without anything to report.
    void ServeWindow();

private:
    void ShowText(const std::wstring& text);

    CStatusBar m_oStatus;
    CProgressBar m_oBar;
    std::wstring m_sFormat;
    std::wstring m_sShown;   // what the work wrote into pane 0
    std::wstring m_sBefore;  // what stood there
    ULONGLONG m_nLastDrawn = 0;
    bool m_bCancelled = false;
    bool m_bRunning = false;
};
