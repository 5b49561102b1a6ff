#pragma once

// What mavrel-cli tells its caller.

enum class ExitCode : int {
    Done = 0,
    Failed = 1,
    Usage = 2,
    DamageFound = 3,         ///< a check found damage and did not mend it
    QuestionUnanswered = 4,  ///< a question needs --yes or --no
};
