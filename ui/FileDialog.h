#pragma once

// The system's dialogs for files, folders and colours. Each returns nothing when the person cancels.

#include "base/Windows.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

struct FileRequest {
    std::wstring title = {};             // empty: the system's own
    std::wstring filter = {};            // texts and patterns in turn, each ended by "|"
    std::wstring defaultExtension = {};  // without dot
    std::wstring folder = {};            // where to start; empty: the system's choice
    std::wstring proposedName = {};
    bool several = false;
    bool asksToReplace = true;  // when saving over an existing file
};

std::optional<std::filesystem::path> AskFileToOpen(HWND owner, const FileRequest& request);
std::vector<std::filesystem::path> AskFilesToOpen(HWND owner, const FileRequest& request);
/// The file need not exist.
std::optional<std::filesystem::path> AskFileToSave(HWND owner, const FileRequest& request);

/// 1 when a folder was chosen, which then replaces `folder`; 2 when cancelled; 0 for a folder without a path.
int BrowseForFolder(HWND owner, const std::wstring& title, std::wstring& folder);

std::optional<COLORREF> AskColor(HWND owner, COLORREF proposed);
