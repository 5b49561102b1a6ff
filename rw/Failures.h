#pragma once

// The stop boxes of the RenderWare readers: errors that are worth asking whether to go on at all. The readers
// only describe the box; the window shows it and ends the process on Cancel, the command line prints it and
// goes on, tests record it.

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "base/Prompt.h"

namespace RW {

/// What the process ends with when the person chooses Cancel.
inline constexpr int kStreamExitCode = 0;
inline constexpr int kNodeExitCode = 105;

class IFailures {
public:
    IFailures() = default;
    IFailures(const IFailures&) = delete;
    IFailures& operator=(const IFailures&) = delete;
    virtual ~IFailures() = default;

    /// Shows the box. Cancel ends the process with `exitCode`; when this returns, the reader goes on with no
    /// result for what failed.
    virtual void ShowStopBox(const PromptBox& box, int exitCode) = 0;
};

/// Stop boxes through a prompt. `leave` is called on Cancel with the exit code; the core ends no process
/// itself.
class CPromptFailures final : public IFailures {
public:
    CPromptFailures(IPrompt& prompt, std::function<void(int)> leave)
        : m_rPrompt(prompt), m_fnLeave(std::move(leave))
    {
    }
    void ShowStopBox(const PromptBox& box, int exitCode) override
    {
        if (m_rPrompt.Show(box) == PromptAnswer::Cancel)
            m_fnLeave(exitCode);
    }

private:
    IPrompt& m_rPrompt;
    std::function<void(int)> m_fnLeave;
};

/// Shows nothing: for trying whether a reader accepts a file.
class CSilentFailures final : public IFailures {
public:
    void ShowStopBox(const PromptBox& /*box*/, int /*exitCode*/) override {}
};

/// The facts of a section that its box shows.
struct NodeFacts {
    std::uint32_t id = 0;
    std::uint32_t size = 0;
    std::uint32_t version = 0;
    std::uint32_t dataAddress = 0;  // the low 32 bits
    std::uint32_t children = 0;
};

/// `source` and `line` name the check that failed; they are fixed texts, not those of our source files.
PromptBox StreamErrorBox(std::wstring_view message, std::wstring_view source, int line);
PromptBox NodeErrorBox(std::wstring_view message, int line, const NodeFacts& facts);

}  // namespace RW
