#pragma once

// Settings that live in a test: no file, the same rules for numbers that a plain decimal needs.

#include <map>
#include <string>
#include <utility>

#include "base/Settings.h"

class CMemorySettings final : public ISettings {
public:
    int ReadInt(std::wstring_view section, std::wstring_view key, int fallback) const override
    {
        const std::wstring text = ReadString(section, key);
        return text.empty() ? fallback : std::stoi(text);
    }
    std::wstring ReadString(std::wstring_view section, std::wstring_view key) const override
    {
        const auto found = m_aValues.find({std::wstring(section), std::wstring(key)});
        return found != m_aValues.end() ? found->second : std::wstring();
    }
    bool WriteString(std::wstring_view section, std::wstring_view key, std::wstring_view value) override
    {
        m_aValues[{std::wstring(section), std::wstring(key)}] = value;
        return true;
    }
    bool Delete(std::wstring_view section, std::wstring_view key) override
    {
        return m_aValues.erase({std::wstring(section), std::wstring(key)}) != 0;
    }

private:
    std::map<std::pair<std::wstring, std::wstring>, std::wstring> m_aValues;
};
