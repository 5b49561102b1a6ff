#pragma once

// The settings: an INI file in the Windows private-profile format, read and written key by key at the moment
// of use and never cached, so that a change from anywhere is seen at once.

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

class ISettings {
public:
    ISettings() = default;
    ISettings(const ISettings&) = delete;
    ISettings& operator=(const ISettings&) = delete;
    virtual ~ISettings() = default;

    /// As GetPrivateProfileIntW: leading digits count, "0x" begins a hexadecimal number, an empty or missing
    /// value gives the default.
    virtual int ReadInt(std::wstring_view section, std::wstring_view key, int fallback) const = 0;
    /// At most 511 characters, without one pair of surrounding quotes; empty when the key is missing.
    virtual std::wstring ReadString(std::wstring_view section, std::wstring_view key) const = 0;
    /// False when the file cannot be written.
    virtual bool WriteString(std::wstring_view section, std::wstring_view key, std::wstring_view value) = 0;
    virtual bool Delete(std::wstring_view section, std::wstring_view key) = 0;

    /// Written as a signed decimal.
    bool WriteInt(std::wstring_view section, std::wstring_view key, int value)
    {
        return WriteString(section, key, std::to_wstring(value));
    }
    /// A switch: any number but 0 is on.
    bool IsOn(std::wstring_view section, std::wstring_view key, bool fallback) const
    {
        return ReadInt(section, key, fallback ? 1 : 0) != 0;
    }
};

/// The settings in `file`, which need not exist; a path that is not absolute is made so here, once. Through
/// the profile functions on Windows, by code that keeps to the same format elsewhere. A file that a write
/// creates begins with the bytes FF FE, because the profile functions keep Unicode only in such a file.
std::unique_ptr<ISettings> OpenSettings(const std::filesystem::path& file);

/// The settings path for a program started as `argument0`: cut after its last "." and followed by "ini"; just
/// "ini" when there is no ".".
std::wstring SettingsPathOf(std::wstring_view argument0);
