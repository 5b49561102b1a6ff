#pragma once

// Menu items that are nothing but a switch in the settings file: choosing one flips the value and its check
// mark.

#include <span>

#include "base/Settings.h"
#include "ui/Menu.h"

struct SettingToggle {
    UINT command;
    const wchar_t* key;
    int onValue;  // also the default of a key that is on unless it says otherwise
    bool isOnByDefault;
    bool isCheckedWhenOn;
};

std::span<const SettingToggle> SettingToggles();

/// Sets every check mark by the settings.
void ShowToggles(const CMenu& menu, const ISettings& settings);
void FlipToggle(const SettingToggle& toggle, const CMenu& menu, ISettings& settings);
