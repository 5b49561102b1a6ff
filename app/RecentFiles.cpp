#include "app/RecentFiles.h"

#include <algorithm>
#include <string>

#include "app/resource.h"
#include "base/Text.h"

namespace {

constexpr wchar_t kSection[] = L"recent";
// What the settings give back of one text.
constexpr std::size_t kLongestPath = 511;

bool IsSameFile(const std::filesystem::path& left, const std::filesystem::path& right)
{
    return ::CompareStringOrdinal(left.c_str(), -1, right.c_str(), -1, TRUE) == CSTR_EQUAL;
}

}  // namespace

std::vector<std::filesystem::path> CRecentFiles::List() const
{
    std::vector<std::filesystem::path> files;
    for (std::size_t position = 0; position < kMost; ++position) {
        const std::wstring file = m_rSettings.ReadString(kSection, std::to_wstring(position + 1));
        if (!file.empty())
            files.emplace_back(file);
    }
    return files;
}

void CRecentFiles::Add(const std::filesystem::path& file)
{
    if (file.native().size() > kLongestPath)
        return;
    auto files = List();
    std::erase_if(files, [&file](const auto& known) { return IsSameFile(known, file); });
    files.insert(files.begin(), file);
    Write(files);
}

void CRecentFiles::Remove(const std::filesystem::path& file)
{
    auto files = List();
    if (std::erase_if(files, [&file](const auto& known) { return IsSameFile(known, file); }) != 0)
        Write(files);
}

void CRecentFiles::Write(const std::vector<std::filesystem::path>& files)
{
    for (std::size_t position = 0; position < kMost; ++position) {
        const std::wstring key = std::to_wstring(position + 1);
        if (position < files.size())
            m_rSettings.WriteString(kSection, key, files[position].native());
        else
            m_rSettings.Delete(kSection, key);
    }
}

void CRecentFiles::Show(const CMenu& menu, const std::wstring& none) const
{
    auto popup = menu.PopupWith(ID_RECENT_NONE);
    if (!popup)
        popup = menu.PopupWith(ID_RECENT_FIRST);
    if (!popup)
        return;
    popup->Clear();
    const auto files = List();
    for (std::size_t position = 0; position < files.size(); ++position)
        popup->Append(ID_RECENT_FIRST + static_cast<UINT>(position),
                      L"&" + std::to_wstring(position + 1) + L" " + PlainMenuText(files[position].native()));
    if (!files.empty())
        return;
    popup->Append(ID_RECENT_NONE, none);
    popup->Enable(ID_RECENT_NONE, false);
}
