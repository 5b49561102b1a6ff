#include "demo/Sign.h"
#include "demo/catalogue/Catalogue.h"

namespace Demo {
namespace {
void AddBoards(CCategoryPictures& add)
{
    const auto board = [&](const char* name, int width, int height, const BoardStyle& style) {
        add.Opaque(name, [=] { return DrawBoard(width, height, style); });
    };
    const Color cream = Hex(0xF0E6C8);
    board("sign_bakery", 256, 64, {Hex(0x7A3E22), cream, "BAKERY", "", 0.3, 501});
    board("sign_diner", 256, 128, {Hex(0xA8202A), cream, "HARBOUR DINER", "OPEN ALL NIGHT", 0.4, 502});
    board("sign_books", 128, 64, {Hex(0x1F4A3A), Hex(0xE0C060), "BOOKS", "", 0.3, 503});
    board("sign_hardware", 256, 64, {Hex(0xE0B020), Hex(0x1C1C1E), "HARDWARE & TOOLS", "", 0.6, 504});
    board("sign_laundry", 128, 64, {Hex(0x3A7AA8), Hex(0xF2F2EC), "LAUNDRY", "24 H", 0.4, 505});
    board("sign_cafe", 128, 64, {Hex(0x2E2420), Hex(0xD8B878), "CAFE", "", 0.2, 506});
    board("sign_garage", 256, 64,
          {Hex(0x2E3A5A), Hex(0xF0F0EA), "NORTH SIDE GARAGE", "TYRES - REPAIRS", 0.7, 507});
    board("sign_market", 256, 64, {Hex(0x3E7A3A), Hex(0xF6F0D8), "FRUIT MARKET", "", 0.4, 508});
    board("sign_exit", 64, 32, {Hex(0x1F7A46), Hex(0xF0F4EE), "EXIT", "", 0.1, 509});
    board("sign_danger", 64, 64, {Hex(0xE0B820), Hex(0x18181A), "DANGER", "HIGH VOLTAGE", 0.5, 510});
    board("sign_forsale", 64, 64, {Hex(0xE8E6DE), Hex(0xB3202A), "FOR SALE", "CALL 555 0142", 0.5, 511});
    board("sign_platform", 128, 32, {Hex(0x1E3A6A), Hex(0xF2F2EC), "PLATFORM 2 >", "", 0.3, 512});
}

void AddNeonAndPosters(CCategoryPictures& add)
{
    const auto neon = [&](const std::string& name, const char* text, std::uint32_t glow, int width) {
        add.Opaque(name, [=] { return DrawNeon(width, 64, text, Hex(glow), false, glow); });
        add.Opaque(name + "_night", [=] { return DrawNeon(width, 64, text, Hex(glow), true, glow); });
    };
    neon("neon_motel", "MOTEL", 0xFF4A6A, 128);
    neon("neon_open", "OPEN", 0x3AD0FF, 128);
    neon("neon_bowling", "BOWLING", 0xFFC83A, 256);
    add.Opaque("poster_coast", [] {
        return DrawBillboard(512, 256, "VISIT THE COAST", "FERRIES DAILY FROM PIER 4", Hex(0x3E78A8), 521);
    });
    add.Opaque("poster_radio", [] {
        return DrawBillboard(256, 128, "RADIO 98.6", "MUSIC FOR THE ROAD", Hex(0x7A3A7A), 522);
    });
    add.Opaque("poster_soda",
               [] { return DrawBillboard(256, 128, "FROSTY SODA", "ICE COLD!", Hex(0x2A8A9A), 523); });
    add.Opaque("poster_film",
               [] { return DrawBillboard(128, 256, "LAST TRAM", "AT THE ODEON", Hex(0x3A2A4A), 524); });
}

void AddRoadSigns(CCategoryPictures& add)
{
    const auto sign = [&](const char* name, int width, int height, RoadSign kind, const char* text,
                          std::uint32_t seed) {
        add.Alpha(name, [=] { return DrawRoadSign(width, height, kind, text, seed); });
    };
    sign("rs_stop", 128, 128, RoadSign::Stop, "STOP", 531);
    sign("rs_yield", 64, 64, RoadSign::Yield, "", 532);
    sign("rs_warning", 64, 64, RoadSign::Warning, "!", 533);
    sign("rs_limit30", 64, 64, RoadSign::SpeedLimit, "30", 534);
    sign("rs_limit50", 64, 64, RoadSign::SpeedLimit, "50", 535);
    sign("rs_limit80", 64, 64, RoadSign::SpeedLimit, "80", 536);
    sign("rs_noentry", 64, 64, RoadSign::NoEntry, "", 537);
    sign("rs_parking", 64, 64, RoadSign::Parking, "P", 538);
    sign("rs_oneway", 128, 64, RoadSign::OneWay, "ONE WAY", 539);
    sign("rs_street_elm", 128, 32, RoadSign::Street, "ELM ST", 540);
    sign("rs_street_harbour", 128, 32, RoadSign::Street, "HARBOUR RD", 541);
    sign("rs_street_5th", 128, 32, RoadSign::Street, "5TH AVE", 542);
}
}  // namespace

void AddSigns(std::vector<Picture>& pictures)
{
    CCategoryPictures add(pictures, "signs");
    AddBoards(add);
    AddNeonAndPosters(add);
    AddRoadSigns(add);
}

}  // namespace Demo
