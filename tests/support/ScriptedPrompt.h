#pragma once

// A prompt that records every box and gives the answers of a script, in order. A question beyond the script's
// end fails the test.

#include <deque>
#include <gtest/gtest.h>
#include <vector>

#include "base/Prompt.h"
#include "base/Text.h"

class CScriptedPrompt final : public IPrompt {
public:
    explicit CScriptedPrompt(std::deque<PromptAnswer> answers = {}) : m_aAnswers(std::move(answers)) {}

    PromptAnswer Show(const PromptBox& box) override
    {
        m_aShown.push_back(box);
        if (box.buttons == PromptButtons::Ok)
            return PromptAnswer::Ok;
        if (m_aAnswers.empty()) {
            ADD_FAILURE() << "unexpected question: " << ToUtf8(box.text);
            return box.buttons == PromptButtons::YesNo ? PromptAnswer::No : PromptAnswer::Cancel;
        }
        const PromptAnswer answer = m_aAnswers.front();
        m_aAnswers.pop_front();
        return answer;
    }

    const std::vector<PromptBox>& Shown() const { return m_aShown; }
    bool ScriptIsFinished() const { return m_aAnswers.empty(); }

private:
    std::deque<PromptAnswer> m_aAnswers;
    std::vector<PromptBox> m_aShown;
};
