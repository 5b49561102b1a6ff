#include "demo/CommandList.h"

#include <array>

namespace Demo {
namespace {
struct Alias {
    const char* target;
    const char* name;
};

constexpr std::array kAliases = {
    Alias{"brick_red", "wall_school"},
    Alias{"brick_red", "wall_station"},
    Alias{"brick_brown", "chimney"},
    Alias{"concrete", "bridge_pillar"},
    Alias{"concrete_dark", "tunnel_wall"},
    Alias{"wood_old", "barn_wall"},
    Alias{"roof_clay", "roof_villa"},
    Alias{"door_red", "door_firestation"},
    Alias{"asphalt", "runway"},
    Alias{"gravel", "railbed"},
    Alias{"grass", "golf_rough"},
    Alias{"sand", "beach"},
    Alias{"leaves_oak", "leaves_park"},
    Alias{"water", "harbour_water"},
    Alias{"wheel_sport", "wheel_coupe"},
    Alias{"paint_red", "paint_firetruck"},
    Alias{"floor_checker", "floor_diner"},
    Alias{"corona_soft", "lamp_glow"},
    Alias{"rs_limit30", "rs_limit_school"},
    Alias{"marble_white", "bank_floor"},
};

// What a game asks of a texture beyond its pixels.
constexpr std::array kProperties = {
    "set leaves_oak alphamode=1 noalphatest=1",
    "set skidmarks decalz=1",
    "set decal_flames decalz=1",
    "set decal_stripes decalz=1",
    "set asphalt hasdetail=1 detailtile=80",
    "set grass hasdetail=1 detailtile=60",
    "set noise128 isdetail=1",
    "set wall hassibling=1",
    "set wall_day hassibling=1",
    "set wall_night hassibling=1",
    "set wall_peeling hassibling=1",
    "set brick_red hassibling=1",
    "set brick_red_day hassibling=1",
    "set brick_red_night hassibling=1",
    "set brick_red_dirty hassibling=1",
    "set road hassibling=1",
    "set road_wet hassibling=1",
    "set sky hassibling=1",
    "set sky_dusk hassibling=1",
    "set sky_night hassibling=1",
    "set white16 mipmode=0",
    "set glass_broken forcez=1",
};

void AddImports(const std::vector<Picture>& pictures, const std::string& category, bool hasAlpha,
                std::vector<std::string>& commands)
{
    std::string files;
    for (const Picture& picture : pictures)
        if (picture.category == category && picture.hasAlpha == hasAlpha)
            files.append(" ").append(PicturePath(picture));
    if (!files.empty())
        commands.push_back("import" + files + " --category " + category +
                           (hasAlpha ? " --alpha" : " --no-alpha"));
}
}  // namespace

std::string PicturePath(const Picture& picture)
{
    return picture.category + "/" + (picture.hasAlpha ? "alpha/" : "opaque/") + picture.name + ".png";
}

std::vector<std::string> DatabaseCommands(const std::vector<Picture>& pictures)
{
    std::vector<std::string> categories;
    for (const Picture& picture : pictures)
        if (categories.empty() || categories.back() != picture.category)
            categories.push_back(picture.category);

    std::vector<std::string> commands;
    // A new database has the category "Default" already.
    for (const std::string& category : categories)
        if (category != "Default")
            commands.push_back("category add " + category);
    for (const std::string& category : categories) {
        AddImports(pictures, category, false, commands);
        AddImports(pictures, category, true, commands);
    }
    for (const Alias& alias : kAliases)
        commands.push_back(std::string("alias ") + alias.target + " " + alias.name);
    for (const char* const command : kProperties)
        commands.emplace_back(command);
    return commands;
}

}  // namespace Demo
