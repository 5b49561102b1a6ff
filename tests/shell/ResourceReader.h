#pragma once

// Reads what the resources of a module hold, so that a translation can be compared with the original.

#include "base/Windows.h"

#include <map>
#include <string>
#include <vector>

struct ReadMenuItem {
    UINT id = 0;  // 0 for popups and separators
    bool isSeparator = false;
    bool isGrayed = false;
    std::wstring text;
    bool isPopup = false;
    std::vector<ReadMenuItem> items;
};

struct ReadControl {
    DWORD id = 0;
    DWORD style = 0;
    DWORD exStyle = 0;
    std::wstring className;  // "#0080" for a class that is named by its number
    std::wstring text;
};

struct ReadDialog {
    DWORD style = 0;
    DWORD exStyle = 0;
    std::wstring title;
    int pointSize = 0;
    std::wstring font;
    std::vector<ReadControl> controls;  // in tab order
};

struct ReadKey {
    BYTE flags = 0;
    WORD key = 0;
    WORD command = 0;
    bool operator==(const ReadKey&) const = default;
};

/// The numbers of all resources of a type, ascending.
std::vector<int> ResourceIds(HMODULE module, const wchar_t* type);
std::map<UINT, std::wstring> ReadStrings(HMODULE module);
std::vector<ReadMenuItem> ReadMenu(HMODULE module, int id);
ReadDialog ReadDialogTemplate(HMODULE module, int id);
std::vector<ReadKey> ReadAccelerators(HMODULE module, int id);
