#pragma once

// The popups of the context menus whose items depend on what is selected: the categories, the detail
// textures, and the properties with their values. Each is filled anew when its menu is shown.

#include <cstdint>
#include <string>
#include <vector>

#include "database/TextureDatabase.h"
#include "ui/Menu.h"

/// One item a category, the texture's own with the radio mark.
void FillCategoryPopup(const CMenu& popup, const CTextureDatabase& database, std::uint32_t current);
/// The names below "None", the texture's own with the radio mark.
void FillDetailPopup(const CMenu& popup, const std::vector<std::wstring>& names, std::uint32_t current);
/// Every property of a texture that can be changed by command, with its value. Grayed for what cannot be
/// changed of this entry alone; with `several` everything can be chosen.
void FillTexturePropertiesPopup(const CMenu& popup, const TextureEntry& entry, bool several);
void FillCategoryPropertiesPopup(const CMenu& popup, const TextureCategory& category);
