#pragma once

// How every layer below the front ends talks to the person. The window answers with message boxes, the
// command line prints to standard error and answers by its options, tests script the answers and compare the
// exact texts.

#include <optional>
#include <string>
#include <string_view>

enum class PromptIcon { None, Information, Question, Warning, Error };
enum class PromptButtons { Ok, OkCancel, YesNo, YesNoCancel };
enum class PromptAnswer { Ok, Cancel, Yes, No };

/// A message box. `proposed` is the button that Enter presses; the first one when it is not among the
/// buttons.
struct PromptBox {
    std::wstring text;
    std::wstring caption = {};
    PromptIcon icon = PromptIcon::None;
    PromptButtons buttons = PromptButtons::Ok;
    std::optional<PromptAnswer> proposed = std::nullopt;
};

class IPrompt {
public:
    IPrompt() = default;
    IPrompt(const IPrompt&) = delete;
    IPrompt& operator=(const IPrompt&) = delete;
    virtual ~IPrompt() = default;

    /// Shows the box and waits for its answer; always one of the box's buttons.
    virtual PromptAnswer Show(const PromptBox& box) = 0;

    /// An error box titled "Error".
    void ShowError(std::wstring_view text)
    {
        Show({.text = std::wstring(text), .caption = L"Error", .icon = PromptIcon::Error});
    }
};
