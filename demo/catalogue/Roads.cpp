#include "demo/Brick.h"
#include "demo/Ground.h"
#include "demo/Road.h"
#include "demo/Weather.h"
#include "demo/catalogue/Catalogue.h"

namespace Demo {
namespace {
CCanvas Wet(CCanvas canvas, std::uint32_t seed)
{
    MakeWet(canvas, seed);
    return canvas;
}
}  // namespace

void AddRoads(std::vector<Picture>& pictures)
{
    CCategoryPictures add(pictures, "roads");
    add.Opaque("road", [] { return DrawRoad(256, 256, Marking::DashedCenter, 201); });
    add.Opaque("road_wet", [] { return Wet(DrawRoad(256, 256, Marking::DashedCenter, 201), 7); });
    add.Opaque("road_crossing", [] { return DrawRoad(256, 128, Marking::Crossing, 202); });
    add.Opaque("road_double", [] { return DrawRoad(256, 256, Marking::DoubleCenter, 203); });
    add.Opaque("road_edge", [] { return DrawRoad(128, 128, Marking::EdgeLines, 204); });
    add.Opaque("road_arrow", [] { return DrawRoad(64, 128, Marking::Arrow, 205); });
    add.Opaque("road_stop", [] { return DrawRoad(128, 128, Marking::StopLine, 206); });
    add.Opaque("road_bus", [] { return DrawRoad(128, 128, Marking::Bus, 207); });
    add.Opaque("parking", [] { return DrawRoad(128, 256, Marking::Parking, 208); });
    add.Opaque("asphalt", [] { return DrawAsphalt(128, 128, 0.3, 211); });
    add.Opaque("asphalt_old", [] { return DrawAsphalt(128, 128, 1, 212); });
    add.Opaque("asphalt_wet", [] { return Wet(DrawAsphalt(128, 128, 0.3, 211), 9); });
    add.Opaque("kerb", [] { return DrawKerb(128, 128, 213); });
    add.Opaque("manhole", [] { return DrawManhole(64, 214); });
    add.Opaque("rails", [] { return DrawRails(128, 128, 215); });
    add.Opaque("pavement_slabs", [] {
        return DrawBricks(128, 128,
                          {.piece = Hex(0xA49E92),
                           .joint = Hex(0x6A655C),
                           .columns = 4,
                           .rows = 4,
                           .shifted = false,
                           .variety = 0.1,
                           .seed = 216});
    });
    add.Opaque("pavement_brick", [] {
        return DrawBricks(128, 128,
                          {.piece = Hex(0x9A6A54),
                           .joint = Hex(0x5C4E44),
                           .columns = 6,
                           .rows = 12,
                           .jointWidth = 1.4,
                           .variety = 0.25,
                           .seed = 217});
    });
    add.Opaque("cobbles", [] { return DrawCobbles(128, Hex(0x8E867A), 12, 218); });
    add.Opaque("cobbles_wet", [] { return Wet(DrawCobbles(128, Hex(0x8E867A), 12, 218), 5); });
    add.Opaque("gravel", [] { return DrawCobbles(128, Hex(0x9A948A), 26, 219); });
    add.Alpha("skidmarks", [] { return DrawSkidMarks(64, 256, 220); });
}

}  // namespace Demo
