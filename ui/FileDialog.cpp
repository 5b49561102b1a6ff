#include "ui/FileDialog.h"

#include <algorithm>
#include <array>
#include <commdlg.h>
#include <memory>
#include <objbase.h>
#include <shlobj.h>
#include <string_view>

namespace {

// In characters: enough for some thousand names of one folder.
constexpr std::size_t kLongestSelection = 267'265;

/// The form of the common dialogs: strings that end in NUL, one after the other.
std::wstring SystemFilter(std::wstring filter)
{
    std::replace(filter.begin(), filter.end(), L'|', L'\0');
    filter.push_back(L'\0');
    return filter;
}

struct FileDialogData {
    FileDialogData(HWND owner, const FileRequest& request)
        : filter(SystemFilter(request.filter)), buffer(kLongestSelection, L'\0')
    {
        std::copy(request.proposedName.begin(), request.proposedName.end(), buffer.begin());
        info.lStructSize = sizeof info;
        info.hwndOwner = owner;
        info.lpstrFilter = filter.c_str();
        info.lpstrFile = buffer.data();
        info.nMaxFile = static_cast<DWORD>(buffer.size());
        info.lpstrInitialDir = request.folder.empty() ? nullptr : request.folder.c_str();
        info.lpstrTitle = request.title.empty() ? nullptr : request.title.c_str();
        info.lpstrDefExt = request.defaultExtension.c_str();
        // The program finds its settings and plugins beside itself, not in whatever folder was visited last.
        info.Flags = OFN_EXPLORER | OFN_HIDEREADONLY | OFN_NOCHANGEDIR | OFN_ENABLESIZING;
    }

    std::wstring filter;
    std::vector<wchar_t> buffer;
    OPENFILENAMEW info{};
};

int CALLBACK BrowseCallback(HWND window, UINT message, LPARAM lParam, LPARAM initialFolder)
{
    if (message == BFFM_INITIALIZED)
        ::SendMessageW(window, BFFM_SETSELECTIONW, TRUE, initialFolder);
    if (message == BFFM_SELCHANGED) {
        std::array<wchar_t, MAX_PATH> path{};
        if (::SHGetPathFromIDListW(reinterpret_cast<LPCITEMIDLIST>(lParam),
                                   path.data()))  // NOLINT: as defined
            ::SendMessageW(window, BFFM_SETSTATUSTEXTW, 0, reinterpret_cast<LPARAM>(path.data()));  // NOLINT
    }
    return 0;
}

}  // namespace

std::optional<std::filesystem::path> AskFileToOpen(HWND owner, const FileRequest& request)
{
    auto files = AskFilesToOpen(owner, request);
    if (files.empty())
        return std::nullopt;
    return std::move(files.front());
}

std::vector<std::filesystem::path> AskFilesToOpen(HWND owner, const FileRequest& request)
{
    FileDialogData dialog(owner, request);
    dialog.info.Flags |=
        OFN_FILEMUSTEXIST | OFN_PATHMUSTEXIST | (request.several ? OFN_ALLOWMULTISELECT : 0U);
    if (!::GetOpenFileNameW(&dialog.info))
        return {};
    // One file: its path. Several: the folder, then the names, each ended by NUL.
    const std::filesystem::path first = dialog.buffer.data();
    std::vector<std::filesystem::path> files;
    const wchar_t* next = dialog.buffer.data() + std::wstring_view(dialog.buffer.data()).size() + 1;
    for (; *next != L'\0'; next += std::wstring_view(next).size() + 1)
        files.push_back(first / next);
    if (files.empty())
        files.push_back(first);
    return files;
}

std::optional<std::filesystem::path> AskFileToSave(HWND owner, const FileRequest& request)
{
    FileDialogData dialog(owner, request);
    dialog.info.Flags |= OFN_PATHMUSTEXIST | (request.asksToReplace ? OFN_OVERWRITEPROMPT : 0U);
    if (!::GetSaveFileNameW(&dialog.info))
        return std::nullopt;
    return std::filesystem::path(dialog.buffer.data());
}

int BrowseForFolder(HWND owner, const std::wstring& title, std::wstring& folder)
{
    BROWSEINFOW info{};
    info.hwndOwner = owner;
    info.lpszTitle = title.c_str();
    info.ulFlags = BIF_RETURNONLYFSDIRS | BIF_EDITBOX | BIF_NEWDIALOGSTYLE | BIF_STATUSTEXT;
    info.lpfn = BrowseCallback;
    info.lParam = reinterpret_cast<LPARAM>(folder.c_str());  // NOLINT: handed to the callback
    const std::unique_ptr<std::remove_pointer_t<LPITEMIDLIST>, decltype(&::CoTaskMemFree)> chosen(
        ::SHBrowseForFolderW(&info), &::CoTaskMemFree);
    if (!chosen)
        return 2;
    std::array<wchar_t, MAX_PATH> path{};
    if (!::SHGetPathFromIDListW(chosen.get(), path.data()))
        return 0;
    folder = path.data();
    return 1;
}

std::optional<COLORREF> AskColor(HWND owner, COLORREF proposed)
{
    std::array<COLORREF, 16> custom{};
    custom.fill(RGB(0xFF, 0xFF, 0xFF));
    CHOOSECOLORW info{};
    info.lStructSize = sizeof info;
    info.hwndOwner = owner;
    info.rgbResult = proposed;
    info.lpCustColors = custom.data();
    info.Flags = CC_RGBINIT | CC_FULLOPEN;
    if (!::ChooseColorW(&info))
        return std::nullopt;
    return info.rgbResult;
}
