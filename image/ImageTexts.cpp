#include "image/ImageTexts.h"

#include "base/Format.h"

namespace {
constexpr std::uint32_t kKilobyte = 1024;
constexpr std::uint32_t kMegabyte = 1024 * kKilobyte;
constexpr std::uint32_t kGigabyte = 1024 * kMegabyte;
}  // namespace

std::wstring FormatSize(std::uint32_t bytes)
{
    if (bytes < kKilobyte)
        return Format(L"%0.0f b", static_cast<double>(bytes));
    if (bytes < kMegabyte)
        return Format(L"%0.2f KB", static_cast<double>(bytes) / kKilobyte);
    if (bytes < kGigabyte)
        return Format(L"%0.2f MB", static_cast<double>(bytes) / kMegabyte);
    return {};
}

std::wstring GetFileTitle(std::wstring_view path, bool withExtension)
{
    const std::wstring_view name = path.substr(path.rfind(L'\\') + 1);
    if (withExtension)
        return std::wstring(name);
    // Deliberate: a name without a dot has no title. ImageTexts.GivesNoTitleToANameWithoutADot pins it.
    const std::size_t dot = name.rfind(L'.');
    return std::wstring(name.substr(0, dot == std::wstring_view::npos ? 0 : dot));
}

std::wstring GetFileExtension(std::wstring_view path)
{
    // Both searches give npos when there is nothing to find; one beyond that is the start of the text.
    return std::wstring(path.substr(path.rfind(L'.') + 1));
}

std::wstring GetFolder(std::wstring_view path)
{
    return std::wstring(path.substr(0, path.rfind(L'\\') + 1));
}
