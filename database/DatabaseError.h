#pragma once

// How the database fails: its box with the exact wording users know, and the exception that follows an error.

#include <cstdint>
#include <stdexcept>
#include <string>

#include "base/Prompt.h"

/// Thrown by the database and by the steps that read and write rasters. `WasShown` tells whether the person
/// has seen the text already; whoever catches an error that was not shown shows it, once.
class CError : public std::runtime_error {
public:
    explicit CError(std::wstring text, bool wasShown = false);

    const std::wstring& Text() const { return m_sText; }
    bool WasShown() const { return m_bWasShown; }

private:
    std::wstring m_sText;
    bool m_bWasShown;
};

enum class ErrorKind { Warning, Fatal };

/// Shows the database's box; a warning returns, a fatal error then throws CError with the whole text.
/// `line` is the line of the reporting site in its source file.
void ReportDatabaseError(IPrompt& prompt, std::wstring_view message, std::uint32_t value, int line,
                         ErrorKind kind);
