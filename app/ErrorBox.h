#pragma once

// How windows say what went wrong.

#include "base/Prompt.h"

/// To be called inside a catch: shows the text of the exception in an error box, unless it was shown already.
/// What is no std::exception passes on.
void ShowCurrentException(IPrompt& prompt);

/// What Cancel in a stop box of a RenderWare file means: the process ends at once. The database's files are
/// as complete as after a crash, which its opening mends.
[[noreturn]] void EndProgram(int exitCode);
