#pragma once

// Writes one JSON document from left to right. Keys come out in the order in which they were written, so the
// same database always gives the same text.

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

class CJsonWriter {
public:
    CJsonWriter& BeginObject() { return Open('{'); }
    CJsonWriter& EndObject() { return Close('}'); }
    CJsonWriter& BeginArray() { return Open('['); }
    CJsonWriter& EndArray() { return Close(']'); }
    /// The name of the value that comes next.
    CJsonWriter& Key(std::wstring_view name);
    CJsonWriter& Text(std::wstring_view text);
    CJsonWriter& Bool(bool value) { return Raw(value ? "true" : "false"); }
    CJsonWriter& Number(std::integral auto value) { return Raw(std::to_string(value)); }

    CJsonWriter& Field(std::wstring_view name, std::wstring_view text) { return Key(name).Text(text); }
    CJsonWriter& Field(std::wstring_view name, const wchar_t* text) { return Key(name).Text(text); }
    CJsonWriter& Field(std::wstring_view name, bool value) { return Key(name).Bool(value); }
    template <std::integral Value>
    CJsonWriter& Field(std::wstring_view name, Value value)
    {
        return Key(name).Number(value);
    }

    /// The document in UTF-8, ended by a line feed.
    std::string Document() const { return m_sOut + "\n"; }

private:
    CJsonWriter& Open(char bracket);
    CJsonWriter& Close(char bracket);
    CJsonWriter& Raw(std::string_view text);
    void Quote(std::wstring_view text);
    void Separate();

    std::string m_sOut;
    std::vector<bool> m_aHasItems;  // for each open bracket
    bool m_bAfterKey = false;
};
