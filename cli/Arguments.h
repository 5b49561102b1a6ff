#pragma once

// The words of a command line: options with and without a value, and the rest in order.

#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

/// A command line that does not follow the syntax; the text says where.
class CUsageError : public std::runtime_error {
public:
    explicit CUsageError(std::wstring text);
    const std::wstring& Text() const { return m_sText; }

private:
    std::wstring m_sText;
};

/// Options that a command knows, by their names with the two dashes.
struct OptionNames {
    std::vector<std::wstring> flags;
    std::vector<std::wstring> withValue;
};

class CArguments {
public:
    /// Options may stand anywhere; after "--" everything is a plain word. The last value of a repeated option
    /// wins. Throws CUsageError for an option that `known` does not have, or one without its value.
    CArguments(const std::vector<std::wstring>& words, const OptionNames& known);

    const std::vector<std::wstring>& Words() const { return m_aWords; }
    bool Has(const std::wstring& flag) const { return m_aOptions.contains(flag); }
    std::optional<std::wstring> Value(const std::wstring& option) const;
    /// All values of an option that may be repeated, in order.
    std::vector<std::wstring> Values(const std::wstring& option) const;

private:
    std::vector<std::wstring> m_aWords;
    std::map<std::wstring, std::vector<std::wstring>> m_aOptions;
};
