#pragma once

// Records the stop boxes of RenderWare readers and goes on after each, as if OK had been pressed.

#include <string>
#include <vector>

#include "rw/Failures.h"

class CRecordingFailures final : public RW::IFailures {
public:
    struct Shown {
        PromptBox box;
        int exitCode = 0;
    };

    void ShowStopBox(const PromptBox& box, int exitCode) override { m_aShown.push_back({box, exitCode}); }

    const std::vector<Shown>& All() const { return m_aShown; }
    std::size_t Count() const { return m_aShown.size(); }
    void Clear() { m_aShown.clear(); }

    /// "message (line)" of every box, in order.
    std::vector<std::wstring> Lines() const
    {
        std::vector<std::wstring> lines;
        for (const Shown& shown : m_aShown)
            lines.push_back(Between(shown.box.text, L"\n\n  ", L"\n\nFile: ") + L" (" +
                            Between(shown.box.text, L"Line: ", L"\n") + L")");
        return lines;
    }

private:
    static std::wstring Between(const std::wstring& text, const std::wstring& from, const std::wstring& to)
    {
        const std::size_t start = text.find(from) + from.size();
        return text.substr(start, text.find(to, start) - start);
    }

    std::vector<Shown> m_aShown;
};
