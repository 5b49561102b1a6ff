#include "demo/Radar.h"

#include <array>
#include <cmath>

#include "demo/Noise.h"
#include "demo/Random.h"
#include "demo/Shapes.h"

namespace Demo {
namespace {
constexpr int kMapSize = kRadarTilesAcross * kRadarTileSize;
constexpr std::uint32_t kSeed = 1987;
constexpr double kCoast = 0.42;

double Land(double u, double v)
{
    const double dx = (u - 0.5) * 2;
    const double dy = (v - 0.5) * 2;
    const double bay = 0.55 * (1 - Smooth(0.05, 0.22, DistanceToDisc({u, v}, {0.83, 0.62}, 0)));
    return 1.02 - 0.72 * (dx * dx * 1.12 + dy * dy * 1.1) + 0.75 * (Hills(u, v, {4, 4, 6}, kSeed) - 0.5) -
           bay;
}

double RiverDistance(double u, double v)
{
    const double middle = 0.47 + 0.16 * (Hills(0.5, v, {1, 4, 3}, kSeed + 9) - 0.5) * 2;
    return std::fabs(u - middle);
}

enum class District { Country, Town };

District DistrictAt(double u, double v)
{
    const double town = Hills(u, v, {3, 3, 2}, kSeed + 3) + 0.25 * (1 - std::fabs(u - 0.5) * 2) - 0.1;
    return town > 0.53 ? District::Town : District::Country;
}

Color GroundAt(double u, double v)
{
    const double height = Land(u, v);
    if (height < kCoast)
        return Mix(Hex(0x7FB0C8), Hex(0x4E7FA6), Smooth(0, 0.3, kCoast - height));
    if (height < kCoast + 0.035)
        return Hex(0xE0D2A0);
    if (RiverDistance(u, v) < 0.009)
        return Hex(0x6FA3C2);
    const double rough = Hills(u, v, {16, 16, 4}, kSeed + 5);
    const double hills = Hills(u, v, {4, 4, 5}, kSeed + 4);
    const double north = Hills(u - 0.004, v - 0.004, {4, 4, 5}, kSeed + 4);
    const double shade = 1 + 7 * (hills - north);
    const Color country = Mix(Hex(0x8FA862), Hex(0xB9A878), Smooth(0.5, 0.7, hills));
    return Lit(Mix(country, Hex(0x5E7F45), Smooth(0.52, 0.62, rough)), std::clamp(shade, 0.8, 1.2));
}

// Streets every 16 pixels, houses of different tones between them; some blocks are parks.
Color TownAt(int x, int y, const Color& ground)
{
    constexpr int kBlock = 16;
    const int column = x / kBlock;
    const int row = y / kBlock;
    const int inX = x % kBlock;
    const int inY = y % kBlock;
    const bool isStreet = inX < 2 || inY < 2;
    if (isStreet)
        return Hex(0xE6E2D8);
    if (ChanceAt(column, row, kSeed) > 0.86)
        return Mix(Hex(0x6E9A52), ground, 0.2);
    const double tone = ChanceAt(column * 2 + (inX > 8 ? 1 : 0), row * 2 + (inY > 8 ? 1 : 0), kSeed + 1);
    const bool isYard = inX == 9 || inY == 9;
    return isYard ? Hex(0x9A968C) : Lit(Hex(0xB3ACA0), 0.82 + 0.3 * tone);
}

// Cuts every corner three times, which leaves the ends where they are.
std::vector<Point> Rounded(std::vector<Point> places)
{
    for (int round = 0; round < 3; ++round) {
        std::vector<Point> finer{places.front()};
        for (std::size_t i = 1; i < places.size(); ++i) {
            const Point a = places[i - 1];
            const Point b = places[i];
            finer.push_back({Mix(a.x, b.x, 0.25), Mix(a.y, b.y, 0.25)});
            finer.push_back({Mix(a.x, b.x, 0.75), Mix(a.y, b.y, 0.75)});
        }
        finer.push_back(places.back());
        places = std::move(finer);
    }
    return places;
}

void AddRoad(CCanvas& map, const std::vector<Point>& corners, double width, const Color& color)
{
    const std::vector<Point> places = Rounded(corners);
    for (const bool isCasing : {true, false})
        for (std::size_t i = 1; i < places.size(); ++i)
            FillLine(map, {places[i - 1].x * kMapSize, places[i - 1].y * kMapSize},
                     {places[i].x * kMapSize, places[i].y * kMapSize}, isCasing ? width + 2 : width,
                     isCasing ? Hex(0x6A5A3A) : color);
}

void AddAirport(CCanvas& map)
{
    const double x = 0.24 * kMapSize;
    const double y = 0.63 * kMapSize;
    FillBox(map, {x - 12, y - 12, x + 100, y + 36}, Hex(0xA9B08A), 4);
    FillBox(map, {x - 6, y, x + 94, y + 8}, Hex(0x6E7074));
    FillBox(map, {x + 10, y + 20, x + 84, y + 25}, Hex(0x808286));
    FillLine(map, {x + 14, y + 4}, {x + 22, y + 22}, 3, Hex(0x808286));
    for (int i = 0; i < 12; ++i)
        FillBox(map, {x + i * 8.0, y + 3.5, x + i * 8.0 + 4, y + 4.5}, Hex(0xEDEBE2));
    FillBox(map, {x + 36, y + 28, x + 66, y + 34}, Hex(0xC9C4B8));
}
}  // namespace

CCanvas DrawIslandMap()
{
    CCanvas map(kMapSize, kMapSize, {});
    map.Repaint([&](int x, int y, const Color&) {
        const double u = (x + 0.5) / kMapSize;
        const double v = (y + 0.5) / kMapSize;
        const Color ground = GroundAt(u, v);
        const bool isDry = Land(u, v) > kCoast + 0.05 && RiverDistance(u, v) > 0.013;
        return isDry && DistrictAt(u, v) == District::Town ? TownAt(x, y, ground) : ground;
    });
    AddAirport(map);
    const Color main = Hex(0xF2C14E);
    AddRoad(map,
            {{0.28, 0.3},
             {0.4, 0.24},
             {0.56, 0.22},
             {0.7, 0.3},
             {0.74, 0.45},
             {0.66, 0.58},
             {0.62, 0.72},
             {0.48, 0.8},
             {0.3, 0.8},
             {0.2, 0.72},
             {0.19, 0.58},
             {0.22, 0.44},
             {0.28, 0.3}},
            3, main);
    AddRoad(map, {{0.22, 0.46}, {0.36, 0.45}, {0.5, 0.48}, {0.74, 0.45}}, 3, main);
    AddRoad(map, {{0.56, 0.22}, {0.55, 0.36}, {0.5, 0.48}, {0.49, 0.62}, {0.48, 0.8}}, 2, Hex(0xF7F3E6));
    AddRoad(map, {{0.28, 0.3}, {0.42, 0.37}, {0.55, 0.36}, {0.7, 0.3}}, 2, Hex(0xF7F3E6));
    return map;
}

CCanvas CutRadarTile(const CCanvas& map, int tile)
{
    return map.Cut(tile % kRadarTilesAcross * kRadarTileSize, tile / kRadarTilesAcross * kRadarTileSize,
                   kRadarTileSize, kRadarTileSize);
}

}  // namespace Demo
