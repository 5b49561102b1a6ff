#pragma once

// One thread that works for a window. What the work must not do itself, because it belongs to the window's
// thread, it hands over and waits; the window hears when the work has ended. The window serves messages
// meanwhile, so it keeps painting, and it must not close before the end.

#include "base/Windows.h"

#include <atomic>
#include <exception>
#include <functional>
#include <thread>

#include "ui/MessageMap.h"
#include "ui/Window.h"

class CWorker {
public:
    using Step = std::function<void()>;
    /// Gets what the work threw, or null.
    using EndFn = std::function<void(std::exception_ptr)>;

    CWorker() = default;
    /// Waits for the thread, and serves what it asks of the windows of this one.
    ~CWorker();
    CWorker(const CWorker&) = delete;
    CWorker& operator=(const CWorker&) = delete;

    /// Binds the messages that the thread sends to its window. To be called in the window's constructor.
    void Bind(CMessageMap& messages);
    /// The window exists now; on its thread.
    void Attach(const CWindow& window);
    /// On the window's thread, where `ended` is called as well; no other work is running.
    void Start(Step work, EndFn ended);

    /// Runs `step` on the window's thread, from any thread, and waits for its end; what it throws comes out
    /// here. Throws std::runtime_error when the window is gone.
    void RunOnWindow(const Step& step) const;

private:
    void OnEnd();

    CWindow m_oWindow;
    DWORD m_nWindowThread = 0;
    std::thread m_oThread;
    std::atomic<bool> m_bEnded = false;
    EndFn m_fnEnded;
    std::exception_ptr m_pError;
};
