#include "demo/Foliage.h"
#include "demo/Ground.h"
#include "demo/catalogue/Catalogue.h"

namespace Demo {
namespace {
const Color kGrassDark = Hex(0x35501F);
const Color kGrassLight = Hex(0x7E9A42);

CCanvas Grass(std::uint32_t seed)
{
    return DrawGrass(256, kGrassDark, kGrassLight, seed);
}

void AddGround(CCategoryPictures& add)
{
    add.Opaque("grass", [] { return Grass(301); });
    add.Opaque("grass_dry", [] { return DrawGrass(128, Hex(0x7A6A38), Hex(0xC2B06A), 302); });
    add.Opaque("grass_lawn", [] { return DrawGrass(128, Hex(0x3E6A24), Hex(0x6E9E3C), 303); });
    add.Opaque("sand", [] { return DrawSand(128, Hex(0xD6BE8C), 0.2, 304); });
    add.Opaque("sand_ripples", [] { return DrawSand(256, Hex(0xD2B884), 1.6, 305); });
    add.Opaque("sand_wet", [] { return DrawSand(128, Hex(0x9E8660), 0.6, 306); });
    add.Opaque("earth", [] { return DrawEarth(128, Hex(0x8A6844), 0.12, 307); });
    add.Opaque("earth_stones", [] { return DrawEarth(128, Hex(0x7E6650), 0.5, 308); });
    add.Opaque("earth_red", [] { return DrawEarth(128, Hex(0xA0603C), 0.1, 309); });
    add.Opaque("forest_floor", [] { return DrawEarth(128, Hex(0x5E5230), 0.06, 310); });
    add.Opaque("rock_gray", [] { return DrawRock(256, Hex(0xA09C94), 311); });
    add.Opaque("rock_red", [] { return DrawRock(128, Hex(0xB87A54), 312); });
    add.Opaque("rock_dark", [] { return DrawRock(128, Hex(0x6E6A68), 313); });
    add.Opaque("pebbles", [] { return DrawCobbles(128, Hex(0xA8A090), 16, 314); });
    add.Opaque("snow", [] { return DrawSnow(128, 315); });
    add.Opaque("water", [] { return DrawWater(128, Hex(0x1E4A66), Hex(0x7EB4C6), 316); });
    add.Opaque("water_green", [] { return DrawWater(128, Hex(0x24483A), Hex(0x8AB08A), 317); });
    add.Opaque("water_night", [] { return DrawWater(128, Hex(0x0A141E), Hex(0x3A5A72), 316); });
    add.Opaque("blend_grass_sand", [] {
        return BlendGrounds(DrawGrass(128, kGrassDark, kGrassLight, 301),
                            DrawSand(128, Hex(0xD6BE8C), 0.2, 304), 1);
    });
    add.Opaque("blend_grass_earth", [] {
        return BlendGrounds(DrawGrass(128, kGrassDark, kGrassLight, 301),
                            DrawEarth(128, Hex(0x8A6844), 0.12, 307), 2);
    });
    add.Opaque("blend_sand_rock", [] {
        return BlendGrounds(DrawSand(128, Hex(0xD6BE8C), 0.2, 304), DrawRock(128, Hex(0xA09C94), 311), 3);
    });
    add.Opaque("bark_oak", [] { return DrawBark(64, 128, Hex(0x7A624A), 321); });
    add.Opaque("bark_birch", [] { return DrawBark(64, 128, Hex(0xD0CCC0), 322); });
    add.Opaque("bark_palm", [] { return DrawBark(64, 64, Hex(0x9A8264), 323); });
    add.Opaque("hedge", [] {
        return DrawHedge(
            128, {.dark = Hex(0x2A4A1E), .light = Hex(0x6E9A3E), .count = 900, .length = 0.07, .seed = 324});
    });
}

void AddPlants(CCategoryPictures& add)
{
    const LeafStyle oak{
        .dark = Hex(0x2E4A1C), .light = Hex(0x86A848), .count = 420, .length = 0.1, .seed = 331};
    add.Alpha("leaves_oak", [=] { return DrawLeaves(256, oak); });
    add.Alpha("leaves_autumn", [] {
        return DrawLeaves(
            128, {.dark = Hex(0x7A2E12), .light = Hex(0xE0A03A), .count = 260, .length = 0.13, .seed = 332});
    });
    add.Alpha("leaves_dark", [] {
        return DrawLeaves(128, {.dark = Hex(0x1A3A20),
                                .light = Hex(0x4E7E46),
                                .count = 300,
                                .length = 0.12,
                                .slimness = 3,
                                .seed = 333});
    });
    add.Alpha("leaves_willow", [] {
        return DrawLeaves(128, {.dark = Hex(0x4A5E2A),
                                .light = Hex(0xB0C06A),
                                .count = 320,
                                .length = 0.2,
                                .slimness = 6,
                                .seed = 334});
    });
    add.Alpha("tree_oak", [=] {
        return DrawTree(
            256, 256,
            {.dark = oak.dark, .light = oak.light, .count = 700, .length = 0.075, .reach = 0.4, .seed = 335});
    });
    add.Alpha("tree_autumn", [] {
        return DrawTree(128, 128,
                        {.dark = Hex(0x6A2A14),
                         .light = Hex(0xD8922E),
                         .count = 420,
                         .length = 0.09,
                         .reach = 0.4,
                         .seed = 336});
    });
    add.Alpha("tree_far", [] {
        return DrawTree(64, 64,
                        {.dark = Hex(0x2E4A24),
                         .light = Hex(0x7A9A50),
                         .count = 260,
                         .length = 0.12,
                         .reach = 0.4,
                         .seed = 337});
    });
    add.Alpha("bush", [] {
        return DrawLeaves(128, {.dark = Hex(0x30481C),
                                .light = Hex(0x7C9A3C),
                                .count = 420,
                                .length = 0.11,
                                .slimness = 1.7,
                                .reach = 0.46,
                                .seed = 338});
    });
    add.Alpha("palm_frond", [] { return DrawFrond(256, 128, Hex(0x5A8A3A), 34, 339); });
    add.Alpha("palm_dry", [] { return DrawFrond(128, 64, Hex(0xA8904A), 26, 340); });
    add.Alpha("fern", [] { return DrawFrond(128, 128, Hex(0x4A8A42), 30, 341); });
    add.Alpha("tuft_grass", [] { return DrawGrassTuft(128, 64, Hex(0x5E8A34), 90, 342); });
    add.Alpha("tuft_dry", [] { return DrawGrassTuft(64, 64, Hex(0xA89A58), 46, 343); });
    add.Alpha("reeds", [] { return DrawGrassTuft(64, 128, Hex(0x6A8A4A), 36, 344); });
    add.Alpha("flowers_red", [] { return DrawFlowers(128, 128, Hex(0xC83A3A), 12, 345); });
    add.Alpha("flowers_white", [] { return DrawFlowers(64, 64, Hex(0xF0EDE4), 9, 346); });
    add.Alpha("flowers_blue", [] { return DrawFlowers(64, 64, Hex(0x5A6AC8), 10, 347); });
    add.Alpha("ivy", [] {
        return DrawIvy(256, {.dark = Hex(0x24401C),
                             .light = Hex(0x6A9440),
                             .count = 900,
                             .length = 0.065,
                             .slimness = 1.4,
                             .seed = 348});
    });
}
}  // namespace

void AddNature(std::vector<Picture>& pictures)
{
    CCategoryPictures add(pictures, "nature");
    AddGround(add);
    AddPlants(add);
}

}  // namespace Demo
