#pragma once

// Questions and messages as message boxes above the main window.

#include "base/Prompt.h"
#include "ui/Window.h"

class CMessageBoxPrompt final : public IPrompt {
public:
    PromptAnswer Show(const PromptBox& box) override;
    /// The window that a box belongs to; until then boxes stand alone.
    void SetOwner(const CWindow& owner) { m_oOwner = owner; }

private:
    CWindow m_oOwner;
};
