#pragma once

// How windows say what went wrong.

#include "base/Prompt.h"

/// To be called inside a catch: shows the text of the exception in an error box, unless it was shown already.
/// What is no std::exception passes on.
void ShowCurrentException(IPrompt& prompt);
