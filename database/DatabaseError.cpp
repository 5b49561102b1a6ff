#include "database/DatabaseError.h"

#include <utility>

#include "base/Format.h"
#include "base/Text.h"

CError::CError(std::wstring text, bool wasShown)
    : std::runtime_error(ToUtf8(text)), m_sText(std::move(text)), m_bWasShown(wasShown)
{
}

void ReportDatabaseError(IPrompt& prompt, std::wstring_view message, std::uint32_t value, int line,
                         ErrorKind kind)
{
    const std::wstring text = Format(
        L"A fuckin' error occurred:\n\n%s\n\n File: %s\n Line: %d\n Value: %u [0x%x]\n\n"
        L"Please check latest program version on it's homepage.",
        message, L"CTextureDatabase", line, value, value);
    const bool warning = kind == ErrorKind::Warning;
    prompt.Show(
        {.text = text, .caption = L"Error", .icon = warning ? PromptIcon::Warning : PromptIcon::Error});
    if (!warning)
        throw CError(text, true);
}
