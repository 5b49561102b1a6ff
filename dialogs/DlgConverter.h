#pragma once

// "Cache converter": builds one cache of the open database from another. Modal. The conversion runs on a
// thread of its own, which comes back to the interface thread for everything that concerns the database
// (CConverter of tools/), so that the dialog and its boxes answer meanwhile. It borrows what it is given.

#include <atomic>
#include <exception>
#include <memory>
#include <optional>
#include <string>

#include "app/Resources.h"
#include "app/UserDialogs.h"
#include "base/Progress.h"
#include "base/Prompt.h"
#include "tools/Converter.h"
#include "ui/ComboBox.h"
#include "ui/Dialog.h"
#include "ui/ProgressBar.h"
#include "ui/Worker.h"

struct ConverterDialogParts {
    const CResources& resources;
    /// Null while no database is open: nothing can be chosen or run then.
    const ToolEditor* editor;
    IPrompt& prompt;
};

class CDlgConverter final : public CDialog, private IProgress {
public:
    explicit CDlgConverter(const ConverterDialogParts& parts);
    /// Waits for the thread, should one be left.
    ~CDlgConverter() override { m_bAbandoned = true; }

    /// Shows the dialog until it is closed.
    void Run(HWND owner) { DoModal(m_oParts.resources.Current(), owner); }
    bool IsBusy() const { return m_bBusy; }

private:
    bool OnInit() override;
    void OnException() override;
    /// A box above the dialog has the word.
    bool AcceptsCommands() const override { return IsEnabled(); }
    // Called in steps of the conversion, on the interface thread.
    void Report(std::uint32_t current, std::uint32_t total, const std::wstring& text) override;
    bool Cancelled() const override { return m_bAbandoned; }

    void FillLists(const ConversionRequest& selected) const;
    std::optional<ConversionRequest> ReadLists() const;
    void EnableLists(bool enabled) const;
    void OnClose();
    void Go();
    void Start(const ConversionRequest& request);
    void OnDone(const std::exception_ptr& failure);
    void ShowEnd(const std::wstring& status) const;
    void SayPleaseWait();
    std::wstring String(UINT id) const { return m_oParts.resources.Text(id); }

    ConverterDialogParts m_oParts;
    CComboBox m_oSource;
    CComboBox m_oTarget;
    CProgressBar m_oBar;
    CWindow m_oStatus;
    std::wstring m_sReady;  // what the status line says at first
    ULONGLONG m_nStarted = 0;
    ULONGLONG m_nLastDrawn = 0;
    bool m_bBusy = false;

    std::unique_ptr<CConverter> m_pConverter;
    ConversionCounts m_oCounts;  // the thread's until it has ended
    std::atomic<bool> m_bAbandoned = false;
    CWorker m_oWorker;  // last: its thread ends before what it uses
};
