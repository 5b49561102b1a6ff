#include "demo/Radar.h"

#include <memory>

#include "demo/catalogue/Catalogue.h"

namespace Demo {

void AddRadar(std::vector<Picture>& pictures)
{
    CCategoryPictures add(pictures, "radar");
    // The tiles share one map, which the first of them draws.
    const auto map = std::make_shared<std::unique_ptr<CCanvas>>();
    for (int tile = 0; tile < kRadarTilesAcross * kRadarTilesAcross; ++tile) {
        const std::string digits = std::to_string(tile);
        add.Opaque("radar" + (tile < 10 ? "0" + digits : digits), [map, tile] {
            if (!*map)
                *map = std::make_unique<CCanvas>(DrawIslandMap());
            return CutRadarTile(**map, tile);
        });
    }
}

}  // namespace Demo
