#include "demo/Sky.h"
#include "demo/catalogue/Catalogue.h"

namespace Demo {

void AddEffects(std::vector<Picture>& pictures)
{
    CCategoryPictures add(pictures, "effects");
    add.Opaque("sky", [] { return DrawSky(512, 256, Hex(0x2E6AB4), Hex(0xBED6E6), 0.9, 0, 701); });
    add.Opaque("sky_dusk", [] { return DrawSky(512, 256, Hex(0x3A3A6E), Hex(0xF0A062), 0.6, 0, 702); });
    add.Opaque("sky_night", [] { return DrawSky(256, 128, Hex(0x05070F), Hex(0x1C2A44), 0.12, 0.01, 703); });
    add.Opaque("sky_gray", [] { return DrawSky(128, 64, Hex(0x7A848C), Hex(0xB4BABC), 0.7, 0, 704); });
    add.Alpha("cloud1", [] { return DrawCloud(128, 64, 711); });
    add.Alpha("cloud2", [] { return DrawCloud(128, 64, 712); });
    add.Alpha("cloud3", [] { return DrawCloud(256, 128, 713); });
    add.Alpha("corona_star", [] { return DrawGlow(128, Hex(0xFFE0A0), 12, 714); });
    add.Alpha("corona_soft", [] { return DrawGlow(64, Hex(0xFFF4D8), 0, 715); });
    add.Alpha("corona_red", [] { return DrawGlow(32, Hex(0xFF5A4A), 0, 716); });
    add.Alpha("corona_blue", [] { return DrawGlow(64, Hex(0x6AA8FF), 6, 717); });
    add.Alpha("smoke1", [] { return DrawSmoke(64, Hex(0x8A8A8C), 721); });
    add.Alpha("smoke2", [] { return DrawSmoke(64, Hex(0x5A5A5E), 722); });
    add.Alpha("smoke_dark", [] { return DrawSmoke(128, Hex(0x2E2C2A), 723); });
    add.Alpha("dust", [] { return DrawSmoke(64, Hex(0xC8AE86), 724); });
    add.Alpha("fireball", [] { return DrawSmoke(128, Hex(0xF08A2A), 725); });
    add.Alpha("shadow_round", [] { return DrawShadow(64, 1); });
    add.Alpha("shadow_car", [] { return DrawShadow(128, 0.3); });
    add.Alpha("rain", [] { return DrawRain(128, 256, 731); });
    add.Alpha("splash_oil", [] { return DrawSplash(64, Hex(0x14120F), 732); });
    add.Alpha("splash_paint", [] { return DrawSplash(128, Hex(0x2A7AB8), 733); });
    add.Alpha("splash_mud", [] { return DrawSplash(64, Hex(0x5A4028), 734); });
}

}  // namespace Demo
