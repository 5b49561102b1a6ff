#include "demo/Brick.h"
#include "demo/Door.h"
#include "demo/Metal.h"
#include "demo/Plaster.h"
#include "demo/Roof.h"
#include "demo/Weather.h"
#include "demo/Window.h"
#include "demo/Wood.h"
#include "demo/catalogue/Catalogue.h"

namespace Demo {
namespace {
BrickStyle RedBricks(std::uint32_t seed)
{
    return {.piece = Hex(0x9C4A36),
            .joint = Hex(0xA89F92),
            .columns = 8,
            .rows = 16,
            .jointWidth = 2,
            .seed = seed};
}

CCanvas Dirty(CCanvas canvas, double amount, std::uint32_t seed)
{
    AddStreaks(canvas, Hex(0x2E2822), amount, seed);
    AddStains(canvas, Hex(0x4A4238), amount * 0.6, seed + 1);
    return canvas;
}

CCanvas ByNight(CCanvas canvas)
{
    TurnToNight(canvas);
    return canvas;
}

void AddWalls(CCategoryPictures& add)
{
    add.Opaque("brick_red", [] { return DrawBricks(256, 256, RedBricks(1)); });
    add.Opaque("brick_red_day", [] { return Dirty(DrawBricks(256, 256, RedBricks(1)), 0.3, 2); });
    add.Opaque("brick_red_night", [] { return ByNight(DrawBricks(256, 256, RedBricks(1))); });
    add.Opaque("brick_red_dirty", [] { return Dirty(DrawBricks(256, 256, RedBricks(1)), 0.9, 3); });
    const auto brick = [&](const char* name, std::uint32_t piece, std::uint32_t joint, int columns, int rows,
                           int size, double variety, double roughness = 1) {
        add.Opaque(name, [=] {
            return DrawBricks(size, size,
                              {.piece = Hex(piece),
                               .joint = Hex(joint),
                               .columns = columns,
                               .rows = rows,
                               .variety = variety,
                               .roughness = roughness,
                               .seed = piece});
        });
    };
    brick("brick_brown", 0x6E4A36, 0x8A8072, 4, 8, 128, 0.3);
    brick("brick_yellow", 0xC2A468, 0xA0937C, 4, 8, 128, 0.2);
    brick("brick_white", 0xD6D2C8, 0xB4AFA4, 4, 8, 128, 0.08);
    brick("brick_dark", 0x4A3C38, 0x2E2A28, 4, 8, 128, 0.35);
    brick("block_gray", 0x9A968E, 0x7A766E, 2, 4, 128, 0.1);
    brick("block_sandstone", 0xC8AC7E, 0x8E7A58, 2, 4, 256, 0.18);
    brick("tile_white", 0xE4E6E4, 0x9A9C9A, 8, 8, 128, 0.03, 0.1);
    brick("tile_green", 0x4F8A72, 0xB8C0B8, 8, 8, 128, 0.12, 0.15);
    add.Opaque("wall", [] { return DrawPlaster(256, 256, Hex(0xD2C4A2), 0.4, 31); });
    add.Opaque("wall_day", [] { return DrawPlaster(256, 256, Hex(0xD8CCAE), 0.7, 31); });
    add.Opaque("wall_night", [] { return ByNight(DrawPlaster(256, 256, Hex(0xD2C4A2), 0.4, 31)); });
    add.Opaque("wall_peeling", [] { return DrawPeelingPlaster(256, 256, Hex(0xC2B48E), 33); });
    add.Opaque("plaster_pink", [] { return DrawPlaster(128, 128, Hex(0xD8A09A), 0.5, 35); });
    add.Opaque("plaster_blue", [] { return DrawPlaster(128, 128, Hex(0x92AEC2), 0.5, 36); });
    add.Opaque("plaster_white", [] { return DrawPlaster(128, 128, Hex(0xE2DED4), 0.3, 37); });
    add.Opaque("concrete", [] { return DrawConcrete(256, 256, Hex(0x9C9A94), 0, 41); });
    add.Opaque("concrete_panels", [] { return DrawConcrete(256, 256, Hex(0xA4A19A), 2, 42); });
    add.Opaque("concrete_dark", [] { return DrawConcrete(128, 128, Hex(0x6E6C68), 0, 43); });
    add.Opaque("concrete_long", [] { return DrawConcrete(256, 64, Hex(0x96938C), 0, 44); });
}

void AddWood(CCategoryPictures& add)
{
    const auto planks = [&](const char* name, int width, int height, const WoodStyle& style) {
        add.Opaque(name, [=] { return DrawPlanks(width, height, style); });
    };
    const Color oak = Hex(0xB98A58);
    const Color oakDark = Hex(0x7A5230);
    planks("wood_oak", 256, 256,
           {.light = oak, .dark = oakDark, .planks = 6, .age = 0.1, .nails = true, .seed = 51});
    planks("wood_old", 128, 128,
           {.light = oak, .dark = oakDark, .planks = 4, .age = 0.95, .nails = true, .seed = 52});
    planks("wood_pine", 128, 128,
           {.light = Hex(0xDDBB84), .dark = Hex(0xB08448), .planks = 4, .age = 0, .seed = 53});
    planks("siding_white", 128, 128,
           {.light = Hex(0xDCD8CC),
            .dark = Hex(0xC2BCAE),
            .planks = 8,
            .upright = false,
            .variety = 0.05,
            .age = 0.15,
            .seed = 54});
    planks("siding_green", 128, 128,
           {.light = Hex(0x6E8A6A),
            .dark = Hex(0x587256),
            .planks = 8,
            .upright = false,
            .variety = 0.06,
            .age = 0.2,
            .seed = 55});
    planks("wood_beam", 256, 64,
           {.light = Hex(0x7A5838),
            .dark = Hex(0x45301E),
            .planks = 1,
            .upright = false,
            .age = 0.3,
            .seed = 56});
    planks("boardwalk", 128, 128,
           {.light = Hex(0xA89274),
            .dark = Hex(0x6E5A44),
            .planks = 8,
            .upright = false,
            .variety = 0.3,
            .age = 0.6,
            .nails = true,
            .seed = 57});
}

void AddRoofs(CCategoryPictures& add)
{
    add.Opaque("roof_clay", [] { return DrawRoofTiles(256, Hex(0xB45A38), 12, 10, 61); });
    add.Opaque("roof_brown", [] { return DrawRoofTiles(128, Hex(0x7A4A32), 8, 7, 62); });
    add.Opaque("roof_shingle", [] { return DrawShingles(128, Hex(0x6A6660), 8, 10, 63); });
    add.Opaque("roof_slate", [] { return DrawShingles(128, Hex(0x56626E), 6, 8, 64); });
    add.Opaque("roof_green", [] { return DrawShingles(128, Hex(0x4E6A58), 8, 10, 65); });
    add.Opaque("roof_tar", [] { return DrawTarRoof(128, 66); });
    add.Opaque("metal_corrugated", [] { return DrawCorrugated(128, 128, Hex(0xA8ACB0), 10, 0.2, 67); });
    add.Opaque("metal_corrugated_rust", [] { return DrawCorrugated(128, 128, Hex(0x9A9C9A), 10, 0.8, 67); });
    add.Opaque("metal_container", [] { return DrawCorrugated(256, 128, Hex(0x2E6A8A), 16, 0.2, 68); });
    add.Opaque("metal_plates", [] { return DrawRivetedPlates(128, Hex(0x7E848A), 2, 0.25, 69); });
    add.Opaque("metal_tread", [] { return DrawTreadPlate(128, Hex(0x8E9296), 70); });
    add.Opaque("metal_brushed", [] { return DrawBrushed(64, 64, Hex(0xA8ACB2), 71); });
    add.Opaque("metal_rust", [] { return DrawRust(128, 72); });
}

void AddWindowsAndDoors(CCategoryPictures& add)
{
    const auto both = [&](const std::string& name, int width, int height, std::uint32_t frame, int panes,
                          std::uint32_t seed) {
        add.Opaque(name, [=] { return DrawWindow(width, height, Hex(frame), panes, Hour::Day, seed); });
        add.Opaque(name + "_night",
                   [=] { return DrawWindow(width, height, Hex(frame), panes, Hour::Night, seed); });
    };
    both("window_white", 64, 128, 0xE2DED2, 2, 81);
    both("window_brown", 64, 64, 0x6A4A30, 2, 82);
    both("window_wide", 128, 64, 0xB8B8B4, 3, 86);
    both("window_big", 128, 128, 0x3E5A4A, 3, 84);
    add.Opaque("front_office", [] { return DrawOfficeFront(512, 512, Hex(0xB4A488), 6, 5, Hour::Day, 91); });
    add.Opaque("front_office_night",
               [] { return DrawOfficeFront(512, 512, Hex(0xB4A488), 6, 5, Hour::Night, 91); });
    add.Opaque("front_flats", [] { return DrawOfficeFront(256, 256, Hex(0xA86E5A), 4, 4, Hour::Day, 92); });
    add.Opaque("front_flats_night",
               [] { return DrawOfficeFront(256, 256, Hex(0xA86E5A), 4, 4, Hour::Night, 92); });
    add.Opaque("front_glass", [] { return DrawGlassFront(256, Hex(0x5E8296), 6, 8, Hour::Day, 93); });
    add.Opaque("front_glass_night", [] { return DrawGlassFront(256, Hex(0x5E8296), 6, 8, Hour::Night, 93); });
    add.Opaque("door_oak", [] { return DrawPanelDoor(128, 256, Hex(0x8A5A34), 3, 101); });
    add.Opaque("door_green", [] { return DrawPanelDoor(64, 128, Hex(0x3E6A52), 2, 102); });
    add.Opaque("door_red", [] { return DrawPanelDoor(64, 128, Hex(0x9A3028), 3, 103); });
    add.Opaque("door_steel", [] { return DrawSteelDoor(128, 256, Hex(0x7A868C), 104); });
    add.Opaque("door_glass", [] { return DrawGlassDoor(64, 128, Hex(0x8E9498), 105); });
    add.Opaque("shutter", [] { return DrawShutter(128, 128, Hex(0x9AA0A2), 16, 106); });
    add.Opaque("garage_door", [] { return DrawGarageDoor(256, 128, Hex(0xCFCBBE), 107); });
    add.Alpha("glass_blue", [] { return DrawPane(64, 64, Hex(0x6E9AB4), 0.45, 111); });
    add.Alpha("glass_brown", [] { return DrawPane(64, 128, Hex(0x6A5238), 0.6, 112); });
    add.Alpha("glass_broken", [] { return DrawBrokenPane(128, 113); });
    add.Alpha("glass_stained", [] { return DrawStainedGlass(128, 6, 114); });
    add.Alpha("fence_chain", [] { return DrawChainLink(64, 115); });
    add.Alpha("fence_railing", [] { return DrawRailing(256, 128, Hex(0x2E3032), 116); });
    add.Alpha("grating", [] { return DrawGrating(64, Hex(0x6E6A64), 8, 117); });
}
}  // namespace

void AddBuildings(std::vector<Picture>& pictures)
{
    CCategoryPictures add(pictures, "buildings");
    AddWalls(add);
    AddWood(add);
    AddRoofs(add);
    AddWindowsAndDoors(add);
}

}  // namespace Demo
