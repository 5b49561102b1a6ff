#include "cli/Arguments.h"

#include <algorithm>

#include "base/Text.h"

CUsageError::CUsageError(std::wstring text) : std::runtime_error(ToUtf8(text)), m_sText(std::move(text)) {}

CArguments::CArguments(const std::vector<std::wstring>& words, const OptionNames& known)
{
    const auto isIn = [](const std::vector<std::wstring>& names, const std::wstring& word) {
        return std::find(names.begin(), names.end(), word) != names.end();
    };
    bool optionsEnded = false;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::wstring& word = words[i];
        if (optionsEnded || !word.starts_with(L"--")) {
            m_aWords.push_back(word);
        } else if (word == L"--") {
            optionsEnded = true;
        } else if (isIn(known.flags, word)) {
            m_aOptions[word];
        } else if (isIn(known.withValue, word)) {
            if (i + 1 == words.size())
                throw CUsageError(L"The option " + word + L" needs a value.");
            m_aOptions[word].push_back(words[++i]);
        } else {
            throw CUsageError(L"There is no option " + word + L" here.");
        }
    }
}

std::optional<std::wstring> CArguments::Value(const std::wstring& option) const
{
    const auto found = m_aOptions.find(option);
    if (found == m_aOptions.end() || found->second.empty())
        return std::nullopt;
    return found->second.back();
}

std::vector<std::wstring> CArguments::Values(const std::wstring& option) const
{
    const auto found = m_aOptions.find(option);
    return found != m_aOptions.end() ? found->second : std::vector<std::wstring>();
}
