#pragma once

// A few threads that share the rows of one picture: the caller's own and some helpers that live as long as
// the object. Which thread does which rows must not matter to the work, so the result is the same with any
// number.

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace Plugin {

class CRowTeam {
public:
    /// Rows from `first` to `end`, done by thread number `member`.
    using Work = std::function<void(std::uint32_t first, std::uint32_t end, unsigned member)>;

    /// `members` counts the calling thread; fewer where the system has no more threads.
    explicit CRowTeam(unsigned members);
    ~CRowTeam();
    CRowTeam(const CRowTeam&) = delete;
    CRowTeam& operator=(const CRowTeam&) = delete;

    unsigned Members() const { return static_cast<unsigned>(m_aHelpers.size()) + 1; }

    /// Splits `rows` rows among the members and returns when all are done. The work must not throw.
    void Run(std::uint32_t rows, const Work& work);

private:
    void Help(unsigned member);
    void DoShare(unsigned member) const;

    std::mutex m_oMutex;
    std::condition_variable m_oGiven;
    std::condition_variable m_oDone;
    const Work* m_pWork = nullptr;
    std::uint32_t m_nRows = 0;
    std::uint64_t m_nRun = 0;
    unsigned m_nBusy = 0;
    bool m_bEnding = false;
    std::vector<std::thread> m_aHelpers;
};

/// How many members are worth their while for so many pixels on this machine, at least 1.
unsigned TeamSizeFor(std::uint64_t pixels, std::uint64_t pixelsPerMember);

}  // namespace Plugin
