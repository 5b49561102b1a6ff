#include "demo/Interior.h"
#include "demo/Metal.h"
#include "demo/Wood.h"
#include "demo/catalogue/Catalogue.h"

namespace Demo {

void AddInteriors(std::vector<Picture>& pictures)
{
    CCategoryPictures add(pictures, "interiors");
    add.Opaque("paper_stripes",
               [] { return DrawWallpaper(128, Hex(0xE2D8BE), Hex(0x8A3A3A), Pattern::Stripes, 601); });
    add.Opaque("paper_diamonds",
               [] { return DrawWallpaper(128, Hex(0x4A6A62), Hex(0x7A9A86), Pattern::Diamonds, 602); });
    add.Opaque("paper_blossoms",
               [] { return DrawWallpaper(128, Hex(0xE8DEC8), Hex(0xB85A6A), Pattern::Blossoms, 603); });
    add.Opaque("paper_dots",
               [] { return DrawWallpaper(64, Hex(0x8AA8B8), Hex(0xE8E6DA), Pattern::Dots, 604); });
    add.Opaque("carpet_red", [] { return DrawCarpet(256, Hex(0x8A2A2A), Hex(0x2E3A5A), 605); });
    add.Opaque("carpet_blue", [] { return DrawCarpet(128, Hex(0x2E4A7A), Hex(0xB8965A), 606); });
    add.Opaque("floor_checker", [] { return DrawTileFloor(128, Hex(0xE4E0D6), Hex(0x2A2A2E), 4, 607); });
    add.Opaque("floor_checker_red", [] { return DrawTileFloor(128, Hex(0xE4E0D6), Hex(0x9A3A30), 4, 607); });
    add.Opaque("floor_terrace", [] { return DrawTileFloor(128, Hex(0xB8785A), Hex(0xA86A4E), 4, 608); });
    add.Opaque("floor_parquet", [] {
        return DrawParquet(
            256, {.light = Hex(0xC08A52), .dark = Hex(0x8A5A30), .planks = 4, .age = 0, .seed = 609}, 4);
    });
    add.Opaque("floor_boards", [] {
        return DrawPlanks(
            128, 128, {.light = Hex(0xA87848), .dark = Hex(0x6E4828), .planks = 6, .age = 0.1, .seed = 610});
    });
    add.Opaque("marble_white", [] { return DrawMarble(128, Hex(0xE6E4E0), Hex(0x8A8A92), 611); });
    add.Opaque("marble_green", [] { return DrawMarble(128, Hex(0x2E4E42), Hex(0xB8CABE), 612); });
    add.Opaque("marble_rose", [] { return DrawMarble(64, Hex(0xD0A294), Hex(0x8A5A52), 613); });
    add.Opaque("weave_basket", [] { return DrawWeave(64, Hex(0xB08A52), Hex(0x9A7642), 12, 614); });
    add.Opaque("weave_cloth", [] { return DrawWeave(64, Hex(0x7A8A9A), Hex(0x5A6A7A), 16, 615); });
    add.Opaque("curtain_red", [] { return DrawCurtain(128, 128, Hex(0x9A2A30), 7, 616); });
    add.Opaque("curtain_white", [] { return DrawCurtain(64, 128, Hex(0xDAD6CA), 5, 617); });
    add.Opaque("sofa_leather", [] { return DrawLeather(64, Hex(0x8A4A2A), 618); });
    add.Opaque("ceiling_office", [] { return DrawCeiling(128, 619); });
    add.Opaque("bookshelf", [] { return DrawBookshelf(256, 256, 4, 620); });
    add.Opaque("bookshelf_small", [] { return DrawBookshelf(64, 64, 2, 621); });
    add.Opaque("painting_lake", [] { return DrawPainting(128, 128, 622); });
    add.Opaque("painting_hills", [] { return DrawPainting(128, 64, 629); });
    add.Opaque("drawers_oak", [] { return DrawDrawers(128, 128, Hex(0xA8743E), Surface::Wood, 1, 4, 624); });
    add.Opaque("drawers_file", [] { return DrawDrawers(64, 128, Hex(0x8A9088), Surface::Metal, 1, 4, 625); });
    add.Opaque("lockers", [] { return DrawDrawers(128, 128, Hex(0x5E7A8A), Surface::Metal, 4, 1, 626); });
    add.Opaque("table_wood", [] {
        return DrawPlanks(128, 64,
                          {.light = Hex(0x8A5430),
                           .dark = Hex(0x56301A),
                           .planks = 2,
                           .upright = false,
                           .age = 0,
                           .seed = 627});
    });
    add.Opaque("fridge", [] { return DrawBrushed(64, 128, Hex(0xC8CCD0), 628); });
}

}  // namespace Demo
