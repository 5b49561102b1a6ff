#include "app/TranslatingPrompt.h"

#include <algorithm>
#include <array>

#include "app/messages.h"

namespace {

// Their argument is a message itself. Any other argument is a name, and a texture may well be called "Error".
constexpr std::array<UINT, 7> kFrames = {IDS_MESSAGE_DATABASE_ERROR, IDS_MESSAGE_CONTINUE,
                                         IDS_MESSAGE_EXPORT_FAILED,  IDS_MESSAGE_STATISTICS_GAME,
                                         IDS_MESSAGE_STREAM_ERROR,   IDS_MESSAGE_NODE_ERROR,
                                         IDS_MESSAGE_IMG_CONTINUE};

bool IsFrame(UINT id)
{
    return std::find(kFrames.begin(), kFrames.end(), id) != kFrames.end();
}

}  // namespace

CMessageTranslator::CMessageTranslator(const CResources& resources) : m_rResources(resources)
{
    for (UINT id = IDS_MESSAGE_FIRST; id <= IDS_MESSAGE_LAST; ++id) {
        const std::wstring text = resources.BuiltInText(id);
        if (!text.empty())
            m_aMessages.push_back({id, CMessagePattern(text)});
    }
    std::stable_sort(m_aMessages.begin(), m_aMessages.end(), [](const Message& a, const Message& b) {
        return a.pattern.FixedLength() > b.pattern.FixedLength();
    });
}

const CMessageTranslator::Message* CMessageTranslator::Find(std::wstring_view text,
                                                            std::vector<std::wstring_view>& arguments) const
{
    for (const Message& message : m_aMessages)
        if (auto found = message.pattern.Match(text)) {
            arguments = std::move(*found);
            return &message;
        }
    return nullptr;
}

// Gives the text itself back when it is no message.
std::wstring CMessageTranslator::TranslateMessage(std::wstring_view text) const
{
    std::vector<std::wstring_view> arguments;
    const Message* message = Find(text, arguments);
    if (message == nullptr)
        return std::wstring(text);
    std::vector<std::wstring> texts;
    for (const std::wstring_view argument : arguments)
        texts.push_back(IsFrame(message->id) ? TranslateMessage(argument) : std::wstring(argument));
    return CMessagePattern(m_rResources.Text(message->id)).Fill(texts);
}

std::wstring CMessageTranslator::Translate(std::wstring_view text) const
{
    if (m_rResources.IsBuiltIn())
        return std::wstring(text);
    std::vector<std::wstring_view> arguments;
    if (Find(text, arguments) != nullptr)
        return TranslateMessage(text);
    std::wstring out;
    for (;;) {
        const std::size_t end = text.find(L'\n');
        out += TranslateMessage(text.substr(0, end));
        if (end == std::wstring_view::npos)
            return out;
        out.push_back(L'\n');
        text.remove_prefix(end + 1);
    }
}

PromptAnswer CTranslatingPrompt::Show(const PromptBox& box)
{
    PromptBox translated = box;
    translated.text = m_rTranslator.Translate(box.text);
    translated.caption = m_rTranslator.Translate(box.caption);
    return m_rShown.Show(translated);
}
