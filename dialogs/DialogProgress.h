#pragma once

// The progress of work that a dialog does on the interface thread: its bar, its status line, and its
// messages, which are served meanwhile, so that it paints and its buttons answer. The dialog decides which of
// its controls stay in use (CBusyControls) and what they ask for.

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "base/Progress.h"
#include "ui/ProgressBar.h"
#include "ui/Window.h"

class CDialogProgress final : public IProgress {
public:
    /// Makes the status text from current, total and the text of a report.
    using Format = std::function<std::wstring(std::uint32_t, std::uint32_t, const std::wstring&)>;

    /// The bar and the status line are controls of `dialog`; all are borrowed.
    void Attach(const CWindow& dialog, int barId, int statusId);
    /// Without a format the text itself is the status.
    void SetFormat(Format format) { m_fnFormat = std::move(format); }
    /// The status line alone.
    void ShowText(const std::wstring& text) const { m_oStatus.SetText(text); }

    void Report(std::uint32_t current, std::uint32_t total, const std::wstring& text) override;
    bool Cancelled() const override { return m_bCancelled; }
    void Cancel() { m_bCancelled = true; }
    /// New work begins: nobody has asked to stop it.
    void Reset();
    /// Serves the messages that wait, where the work waits without anything to report. Only the dialog and
    /// its controls may be in reach of the person: the windows behind a modal dialog are disabled.
    void ServeMessages();

private:
    void Draw(std::uint32_t current, std::uint32_t total, const std::wstring& text) const;

    CWindow m_oDialog;
    CProgressBar m_oBar;
    CWindow m_oStatus;
    Format m_fnFormat;
    ULONGLONG m_nLastServed = 0;
    bool m_bCancelled = false;
    bool m_bServing = false;
};

/// While it exists, the controls of a dialog that take input are disabled except those that stay in use, and
/// the progress starts anew. Afterwards those that it disabled are enabled again.
class CBusyControls {
public:
    CBusyControls(const CWindow& dialog, CDialogProgress& progress, std::initializer_list<int> inUse);
    ~CBusyControls();
    CBusyControls(const CBusyControls&) = delete;
    CBusyControls& operator=(const CBusyControls&) = delete;

private:
    std::vector<CWindow> m_aDisabled;
    HWND m_hFocus;
};
