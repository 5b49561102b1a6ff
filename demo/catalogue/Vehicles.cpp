#include "demo/Interior.h"
#include "demo/Metal.h"
#include "demo/Vehicle.h"
#include "demo/Window.h"
#include "demo/catalogue/Catalogue.h"

namespace Demo {

void AddVehicles(std::vector<Picture>& pictures)
{
    CCategoryPictures add(pictures, "vehicles");
    add.Opaque("paint_red", [] { return DrawCarPaint(64, Hex(0xA81E22), 401); });
    add.Opaque("paint_blue", [] { return DrawCarPaint(64, Hex(0x1E4A9A), 402); });
    add.Opaque("paint_green", [] { return DrawCarPaint(64, Hex(0x2A6A3E), 403); });
    add.Opaque("paint_silver", [] { return DrawCarPaint(64, Hex(0xA8ACB0), 404); });
    add.Opaque("paint_camo",
               [] { return DrawCamouflage(128, Hex(0x6E6E42), Hex(0x3E4A2A), Hex(0x8A6E48), 405); });
    add.Opaque("paint_desert",
               [] { return DrawCamouflage(128, Hex(0xC8AE7E), Hex(0x9A7A52), Hex(0xB49A6E), 406); });
    add.Opaque("plate_city", [] { return DrawNumberPlate(64, 16, "MVL 204", Hex(0xE8E6DC), 411); });
    add.Opaque("plate_coast", [] { return DrawNumberPlate(128, 32, "7KX 3915", Hex(0xE0C860), 412); });
    add.Opaque("plate_north", [] { return DrawNumberPlate(128, 64, "NB-882", Hex(0xC8DCE8), 413); });
    add.Opaque("taxi_band", [] { return DrawCheckerBand(128, 32, Hex(0xE0A81E), 414); });
    add.Opaque("lamp_front", [] { return DrawLamp(64, Hex(0xD8DCE0), false, 415); });
    add.Opaque("lamp_front_on", [] { return DrawLamp(64, Hex(0xFFF4C8), true, 415); });
    add.Opaque("lamp_rear", [] { return DrawLamp(64, Hex(0xB81E1E), false, 416); });
    add.Opaque("lamp_rear_on", [] { return DrawLamp(64, Hex(0xFF3A2A), true, 416); });
    add.Opaque("lamp_turn", [] { return DrawLamp(32, Hex(0xE88A1E), false, 417); });
    add.Opaque("grille_chrome", [] { return DrawGrille(128, 64, 8, 418); });
    add.Opaque("gauge_speed", [] { return DrawGauge(128, "KMH", 0.42, 419); });
    add.Opaque("gauge_revs", [] { return DrawGauge(128, "X1000", 0.2, 420); });
    add.Opaque("gauge_fuel", [] { return DrawGauge(64, "FUEL", 0.7, 421); });
    add.Opaque("tyre_tread", [] { return DrawTyreTread(64, 64, 422); });
    add.Opaque("truck_bed", [] { return DrawTreadPlate(64, Hex(0x6A6E72), 423); });
    add.Opaque("seat_leather", [] { return DrawLeather(128, Hex(0x6A3E26), 424); });
    add.Opaque("seat_black", [] { return DrawLeather(64, Hex(0x3A3A3E), 425); });
    add.Alpha("wheel_sport", [] { return DrawWheel(128, 5, Hex(0xC8CCD0), 431); });
    add.Alpha("wheel_wire", [] { return DrawWheel(128, 24, Hex(0xD8DADC), 432); });
    add.Alpha("wheel_truck", [] { return DrawWheel(64, 8, Hex(0x8A8E92), 433); });
    add.Alpha("decal_flames", [] { return DrawFlames(256, 128, 434); });
    add.Alpha("decal_stripes", [] { return DrawStripes(256, 64, Hex(0x1E4A9A), 4); });
    add.Alpha("decal_number7", [] { return DrawRoundel(64, "7", Hex(0x1C1C1E), 435); });
    add.Alpha("decal_number23", [] { return DrawRoundel(128, "23", Hex(0xB3202A), 436); });
    add.Alpha("window_tinted", [] { return DrawPane(64, 32, Hex(0x14181C), 0.75, 437); });
    add.Alpha("grille_mesh", [] { return DrawGrating(32, Hex(0x3A3C3E), 8, 438); });
}

}  // namespace Demo
