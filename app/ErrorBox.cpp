#include "app/ErrorBox.h"

#include "base/Windows.h"

#include <exception>

#include "base/Text.h"
#include "database/DatabaseError.h"

void ShowCurrentException(IPrompt& prompt)
{
    try {
        throw;
    } catch (const CError& error) {
        if (!error.WasShown())
            prompt.ShowError(error.Text());
    } catch (const std::exception& error) {
        prompt.ShowError(FromUtf8(error.what()));
    }
}

void EndProgram(int exitCode)
{
    ::ExitProcess(static_cast<UINT>(exitCode));
}
