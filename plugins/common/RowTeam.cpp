#include "plugins/common/RowTeam.h"

#include <algorithm>
#include <system_error>

namespace Plugin {

CRowTeam::CRowTeam(unsigned members)
{
    try {
        for (unsigned member = 1; member < members; ++member)
            m_aHelpers.emplace_back([this, member] { Help(member); });
    } catch (const std::system_error&) {  // those that could be started do the work
    }
}

CRowTeam::~CRowTeam()
{
    {
        const std::lock_guard lock(m_oMutex);
        m_bEnding = true;
    }
    m_oGiven.notify_all();
    for (std::thread& helper : m_aHelpers)
        helper.join();
}

void CRowTeam::Run(std::uint32_t rows, const Work& work)
{
    if (m_aHelpers.empty()) {
        work(0, rows, 0);
        return;
    }
    {
        const std::lock_guard lock(m_oMutex);
        m_pWork = &work;
        m_nRows = rows;
        m_nBusy = static_cast<unsigned>(m_aHelpers.size());
        ++m_nRun;
    }
    m_oGiven.notify_all();
    DoShare(0);
    std::unique_lock lock(m_oMutex);
    m_oDone.wait(lock, [this] { return m_nBusy == 0; });
}

void CRowTeam::Help(unsigned member)
{
    std::uint64_t run = 0;
    while (true) {
        {
            std::unique_lock lock(m_oMutex);
            m_oGiven.wait(lock, [&] { return m_bEnding || m_nRun != run; });
            if (m_bEnding)
                return;
            run = m_nRun;
        }
        DoShare(member);
        const std::lock_guard lock(m_oMutex);
        if (--m_nBusy == 0)
            m_oDone.notify_one();
    }
}

void CRowTeam::DoShare(unsigned member) const
{
    const std::uint64_t members = Members();
    const auto first = static_cast<std::uint32_t>(m_nRows * std::uint64_t{member} / members);
    const auto end = static_cast<std::uint32_t>(m_nRows * (std::uint64_t{member} + 1) / members);
    if (first < end)
        (*m_pWork)(first, end, member);
}

unsigned TeamSizeFor(std::uint64_t pixels, std::uint64_t pixelsPerMember)
{
    // Systems look the number up in files, which takes longer than a small level.
    static const std::uint64_t processors = std::max(1U, std::thread::hardware_concurrency());
    return static_cast<unsigned>(std::clamp<std::uint64_t>(pixels / pixelsPerMember, 1, processors));
}

}  // namespace Plugin
