#include "base/Settings.h"

#include "base/Windows.h"

#include <array>
#include <cstddef>
#include <system_error>

#include "base/File.h"

namespace {

class CProfileSettings final : public ISettings {
public:
    explicit CProfileSettings(std::wstring file) : m_sFile(std::move(file)) {}

    int ReadInt(std::wstring_view section, std::wstring_view key, int fallback) const override
    {
        return static_cast<int>(::GetPrivateProfileIntW(
            std::wstring(section).c_str(), std::wstring(key).c_str(), fallback, m_sFile.c_str()));
    }

    std::wstring ReadString(std::wstring_view section, std::wstring_view key) const override
    {
        std::array<wchar_t, 512> buffer{};
        const DWORD length =
            ::GetPrivateProfileStringW(std::wstring(section).c_str(), std::wstring(key).c_str(), L"",
                                       buffer.data(), static_cast<DWORD>(buffer.size()), m_sFile.c_str());
        return {buffer.data(), length};
    }

    bool WriteString(std::wstring_view section, std::wstring_view key, std::wstring_view value) override
    {
        CreateWhenMissing();
        return ::WritePrivateProfileStringW(std::wstring(section).c_str(), std::wstring(key).c_str(),
                                            std::wstring(value).c_str(), m_sFile.c_str()) != FALSE;
    }

    bool Delete(std::wstring_view section, std::wstring_view key) override
    {
        return ::WritePrivateProfileStringW(std::wstring(section).c_str(), std::wstring(key).c_str(), nullptr,
                                            m_sFile.c_str()) != FALSE;
    }

private:
    // The profile functions would create an ANSI file, which loses every character of other scripts.
    void CreateWhenMissing() const
    {
        constexpr std::array kByteOrderMark = {std::byte{0xFF}, std::byte{0xFE}};
        if (!DiskFileSystem().Exists(m_sFile))
            WriteWholeFile(DiskFileSystem(), m_sFile, kByteOrderMark);
    }

    std::wstring m_sFile;
};

}  // namespace

std::unique_ptr<ISettings> OpenSettings(const std::filesystem::path& file)
{
    std::error_code error;
    auto absolute = std::filesystem::absolute(file, error);
    if (error)
        absolute = file;
    return std::make_unique<CProfileSettings>(absolute.make_preferred().native());
}
