#include "cli/Terminal.h"

#include <cstdio>

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

#include "base/Format.h"
#include "base/Text.h"

bool WriteOutput(std::string_view text)
{
    return std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
}

bool WriteOutput(std::wstring_view text)
{
    return WriteOutput(std::string_view(ToUtf8(text)));
}

bool WriteOutput(std::span<const std::byte> bytes)
{
    return std::fwrite(bytes.data(), 1, bytes.size(), stdout) == bytes.size();
}

void WriteMessage(std::wstring_view text)
{
    const std::string line = ToUtf8(text) + "\n";
    std::fwrite(line.data(), 1, line.size(), stderr);
}

bool IsErrorStreamATerminal()
{
#ifdef _WIN32
    return _isatty(_fileno(stderr)) != 0;
#else
    return ::isatty(STDERR_FILENO) == 1;
#endif
}

PromptAnswer CTerminalPrompt::Show(const PromptBox& box)
{
    WriteMessage(box.text);
    switch (box.buttons) {
        case PromptButtons::Ok:
        case PromptButtons::OkCancel:
            return PromptAnswer::Ok;
        case PromptButtons::YesNo:
        case PromptButtons::YesNoCancel:
            break;
    }
    if (m_eAnswer)
        return *m_eAnswer;
    m_aUnanswered.push_back(box);
    return box.buttons == PromptButtons::YesNo ? PromptAnswer::No : PromptAnswer::Cancel;
}

CTerminalProgress::~CTerminalProgress()
{
    if (m_bLineOpen)
        std::fputs("\n", stderr);
}

void CTerminalProgress::Report(std::uint32_t current, std::uint32_t total, const std::wstring& text)
{
    if (!m_bShown)
        return;
    constexpr const char* kEraseLine = "\r\x1b[K";
    const std::string line = kEraseLine + ToUtf8(Format(L"[%u/%u] %s", current, total, text));
    std::fwrite(line.data(), 1, line.size(), stderr);
    m_bLineOpen = true;
}
