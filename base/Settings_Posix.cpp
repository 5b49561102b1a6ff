#include "base/Settings.h"

#include <cstdint>
#include <system_error>

#include "base/File.h"
#include "base/IniText.h"

namespace {

constexpr std::uint64_t kLargestFile = 16U << 20;
constexpr std::size_t kLongestValue = 511;

int DigitOf(wchar_t character)
{
    if (character >= L'0' && character <= L'9')
        return character - L'0';
    if (character >= L'a' && character <= L'f')
        return character - L'a' + 10;
    if (character >= L'A' && character <= L'F')
        return character - L'A' + 10;
    return 16;
}

// Leading digits count and wrap at 32 bits; text without digits is 0.
int LeadingNumber(std::wstring_view text)
{
    const bool negative = text.starts_with(L'-');
    if (negative || text.starts_with(L'+'))
        text.remove_prefix(1);
    int base = 10;
    if (text.starts_with(L"0x") || text.starts_with(L"0X")) {
        base = 16;
        text.remove_prefix(2);
    }
    std::uint32_t number = 0;
    for (const wchar_t character : text) {
        const int digit = DigitOf(character);
        if (digit >= base)
            break;
        number = number * static_cast<std::uint32_t>(base) + static_cast<std::uint32_t>(digit);
    }
    return static_cast<int>(negative ? 0U - number : number);
}

class CIniSettings final : public ISettings {
public:
    explicit CIniSettings(std::filesystem::path file) : m_sFile(std::move(file)) {}

    int ReadInt(std::wstring_view section, std::wstring_view key, int fallback) const override
    {
        const std::wstring text = ReadString(section, key);
        return text.empty() ? fallback : LeadingNumber(text);
    }

    std::wstring ReadString(std::wstring_view section, std::wstring_view key) const override
    {
        std::wstring value = Load().Find(section, key).value_or(L"");
        const bool quoted = value.size() >= 2 && (value.front() == L'"' || value.front() == L'\'') &&
                            value.front() == value.back();
        if (quoted)
            value = value.substr(1, value.size() - 2);
        return value.substr(0, kLongestValue);
    }

    bool WriteString(std::wstring_view section, std::wstring_view key, std::wstring_view value) override
    {
        CIniText ini = Load();
        ini.Set(section, key, value);
        return WriteWholeFile(DiskFileSystem(), m_sFile, ini.Serialize());
    }

    bool Delete(std::wstring_view section, std::wstring_view key) override
    {
        CIniText ini = Load();
        ini.Remove(section, key);
        return WriteWholeFile(DiskFileSystem(), m_sFile, ini.Serialize());
    }

private:
    CIniText Load() const
    {
        const auto bytes = ReadWholeFile(DiskFileSystem(), m_sFile, kLargestFile);
        return bytes ? CIniText::Parse(*bytes) : CIniText();
    }

    std::filesystem::path m_sFile;
};

}  // namespace

std::unique_ptr<ISettings> OpenSettings(const std::filesystem::path& file)
{
    std::error_code error;
    const auto absolute = std::filesystem::absolute(file, error);
    return std::make_unique<CIniSettings>(error ? file : absolute);
}
