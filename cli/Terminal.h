#pragma once

// The two streams of the command line: results go to standard output, words to standard error. Questions are
// answered by the options --yes and --no; one that stays unanswered is remembered and decides the exit code.

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/Progress.h"
#include "base/Prompt.h"

/// Writes UTF-8, or bytes as they are, to standard output. False when the reader has gone or the disk is
/// full.
bool WriteOutput(std::string_view text);
bool WriteOutput(std::wstring_view text);
bool WriteOutput(std::span<const std::byte> bytes);
/// One message on a line of its own on standard error.
void WriteMessage(std::wstring_view text);
bool IsErrorStreamATerminal();

class CTerminalPrompt final : public IPrompt {
public:
    /// `answer` is Yes, No or nothing.
    explicit CTerminalPrompt(std::optional<PromptAnswer> answer) : m_eAnswer(answer) {}

    /// Without an answer the safest button is taken: Cancel where there is one, else No.
    PromptAnswer Show(const PromptBox& box) override;

    const std::vector<PromptBox>& Unanswered() const { return m_aUnanswered; }

private:
    std::optional<PromptAnswer> m_eAnswer;
    std::vector<PromptBox> m_aUnanswered;
};

/// "[3/20] name" on standard error, one line that is written over.
class CTerminalProgress final : public IProgress {
public:
    explicit CTerminalProgress(bool isShown) : m_bShown(isShown) {}
    ~CTerminalProgress() override;
    CTerminalProgress(const CTerminalProgress&) = delete;
    CTerminalProgress& operator=(const CTerminalProgress&) = delete;

    void Report(std::uint32_t current, std::uint32_t total, const std::wstring& text) override;
    bool Cancelled() const override { return false; }

private:
    bool m_bShown;
    bool m_bLineOpen = false;
};
