#include "ui/Worker.h"

#include <stdexcept>
#include <utility>

namespace {

constexpr UINT kStepMessage = WM_APP + 40;
constexpr UINT kEndMessage = WM_APP + 41;
constexpr DWORD kMillisecondsBetweenLooks = 20;

/// A step on its way to the window, and what became of it.
struct StepOnWindow {
    const CWorker::Step* step = nullptr;
    bool hasRun = false;
    std::exception_ptr error;
};

}  // namespace

CWorker::~CWorker()
{
    if (!m_oThread.joinable())
        return;
    while (!m_bEnded) {
        // Looking at the queue is what serves the messages that the thread sends.
        ::MsgWaitForMultipleObjects(0, nullptr, FALSE, kMillisecondsBetweenLooks, QS_SENDMESSAGE);
        MSG message{};
        ::PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE);
    }
    m_oThread.join();
}

void CWorker::Bind(CMessageMap& messages)
{
    messages.OnMessage(kStepMessage, [](WPARAM, LPARAM lParam) {
        auto& sent = *reinterpret_cast<StepOnWindow*>(lParam);  // NOLINT: RunOnWindow sends it
        sent.hasRun = true;
        try {
            (*sent.step)();
        } catch (...) {  // thrown again where the step comes from
            sent.error = std::current_exception();
        }
        return 0;
    });
    messages.OnMessage(kEndMessage, [this](WPARAM, LPARAM) {
        OnEnd();
        return 0;
    });
}

void CWorker::Attach(const CWindow& window)
{
    m_oWindow = window;
    m_nWindowThread = ::GetCurrentThreadId();
}

void CWorker::Start(Step work, EndFn ended)
{
    m_fnEnded = std::move(ended);
    m_pError = nullptr;
    m_bEnded = false;
    m_oThread = std::thread([this, work = std::move(work)] {
        try {
            work();
        } catch (...) {  // the window hears of it
            m_pError = std::current_exception();
        }
        const HWND handle = m_oWindow.Handle();
        m_bEnded = true;
        ::PostMessageW(handle, kEndMessage, 0, 0);
    });
}

void CWorker::OnEnd()
{
    if (!m_oThread.joinable())
        return;
    m_oThread.join();
    const EndFn ended = std::exchange(m_fnEnded, nullptr);
    ended(std::exchange(m_pError, nullptr));
}

void CWorker::RunOnWindow(const Step& step) const
{
    if (::GetCurrentThreadId() == m_nWindowThread) {
        step();
        return;
    }
    StepOnWindow sent{.step = &step, .hasRun = false, .error = nullptr};
    m_oWindow.SendPointer(kStepMessage, 0, &sent);
    if (!sent.hasRun)
        throw std::runtime_error("The window is gone.");
    if (sent.error)
        std::rethrow_exception(sent.error);
}
