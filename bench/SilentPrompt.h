#pragma once

// Nobody is there to answer: every box gets its proposed button, and boxes are counted, because a benchmark
// in which one appears has gone wrong.

#include "base/Prompt.h"

namespace Bench {

class CSilentPrompt final : public IPrompt {
public:
    PromptAnswer Show(const PromptBox& box) override
    {
        ++m_nShown;
        if (box.proposed)
            return *box.proposed;
        return box.buttons == PromptButtons::Ok || box.buttons == PromptButtons::OkCancel ? PromptAnswer::Ok
                                                                                          : PromptAnswer::No;
    }
    int Shown() const { return m_nShown; }

private:
    int m_nShown = 0;
};

}  // namespace Bench
