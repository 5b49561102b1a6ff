#pragma once

// What the commands for RenderWare files share: verbs behind the command's word, and stop boxes that are
// printed.

#include <span>
#include <string>
#include <string_view>

#include "cli/Command.h"
#include "rw/Failures.h"

/// A word behind the command's own, and how many words there are with it.
struct Verb {
    std::wstring_view name;
    std::size_t words;
    ExitCode (*run)(CSession& session, const CArguments& arguments);
};

/// Throws CUsageError when the first word is none of the verbs, or others are missing or too many.
ExitCode RunVerb(std::span<const Verb> verbs, CSession& session, const CArguments& arguments);
/// Throws CUsageError when the option is missing.
std::wstring RequireOption(const CArguments& arguments, const std::wstring& option);

/// The verbs of `dff`.
ExitCode RunModelVerb(CSession& session, const CArguments& arguments);

/// Prints stop boxes and goes on, but remembers that something was wrong.
class CPrintedFailures final : public RW::IFailures {
public:
    explicit CPrintedFailures(IPrompt& prompt) : m_rPrompt(prompt) {}
    void ShowStopBox(const PromptBox& box, int /*exitCode*/) override
    {
        m_rPrompt.Show(box);
        m_bShown = true;
    }
    /// For a command that did what it could.
    ExitCode Code() const { return m_bShown ? ExitCode::Failed : ExitCode::Done; }

private:
    IPrompt& m_rPrompt;
    bool m_bShown = false;
};
