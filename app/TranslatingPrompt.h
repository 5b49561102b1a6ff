#pragma once

// The core writes its messages in English. Here they take the interface language on their way to the person:
// a message is recognised by the built-in texts of app/messages.rc, and the same text of the current language
// is filled with what the message said. Everything borrowed outlives these classes.

#include <string>
#include <string_view>
#include <vector>

#include "app/MessagePattern.h"
#include "app/Resources.h"
#include "base/Prompt.h"

class CMessageTranslator {
public:
    explicit CMessageTranslator(const CResources& resources);

    /// The text in the interface language; as it is when that is the built-in one, or when nobody knows the
    /// text. Of a text in several lines that is no message as a whole, the lines that are messages are
    /// translated.
    std::wstring Translate(std::wstring_view text) const;

private:
    struct Message {
        UINT id;
        CMessagePattern pattern;
    };

    const Message* Find(std::wstring_view text, std::vector<std::wstring_view>& arguments) const;
    std::wstring TranslateMessage(std::wstring_view text) const;

    const CResources& m_rResources;
    std::vector<Message> m_aMessages;  // the most telling first
};

/// Shows what it is given in another prompt, text and caption translated.
class CTranslatingPrompt final : public IPrompt {
public:
    CTranslatingPrompt(IPrompt& shown, const CMessageTranslator& translator)
        : m_rShown(shown), m_rTranslator(translator)
    {
    }
    PromptAnswer Show(const PromptBox& box) override;

private:
    IPrompt& m_rShown;
    const CMessageTranslator& m_rTranslator;
};
