#include "app/SettingToggles.h"

#include <array>

#include "app/resource.h"

namespace {

constexpr wchar_t kSection[] = L"global";

// "enable_compression" has two commands: one says it as it is stored, the menu's item says the opposite.
// clang-format off
constexpr std::array<SettingToggle, 8> kToggles = {{
    {ID_RLE_COMPRESSION,     L"enable_rle_compression",   1, true,  true},
    {ID_ENABLE_RULES,        L"enable_rules",             1, true,  true},
    {ID_MIPMAPS,             L"enable_mipmaps",           1, true,  true},
    {ID_HASH_PNG,            L"hash_png",                 1, false, true},
    {ID_IMG_HASH,            L"enable_img_hash",          1, true,  true},
    {ID_ENABLE_COMPRESSION,  L"enable_compression",       1, true,  true},
    {ID_DISABLE_COMPRESSION, L"enable_compression",       1, true,  false},
    {ID_DISABLE_LOGO,        L"show_loading_screen",    700, true,  false},
}};
// clang-format on

bool IsOn(const SettingToggle& toggle, const ISettings& settings)
{
    return settings.ReadInt(kSection, toggle.key, toggle.isOnByDefault ? toggle.onValue : 0) != 0;
}

}  // namespace

std::span<const SettingToggle> SettingToggles()
{
    return kToggles;
}

void ShowToggles(const CMenu& menu, const ISettings& settings)
{
    for (const SettingToggle& toggle : kToggles)
        menu.Check(toggle.command, IsOn(toggle, settings) == toggle.isCheckedWhenOn);
}

void FlipToggle(const SettingToggle& toggle, const CMenu& menu, ISettings& settings)
{
    settings.WriteInt(kSection, toggle.key, IsOn(toggle, settings) ? 0 : toggle.onValue);
    ShowToggles(menu, settings);
}
