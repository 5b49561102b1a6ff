#include "demo/catalogue/Catalogue.h"

namespace Demo {

std::vector<Picture> AllPictures()
{
    std::vector<Picture> pictures;
    for (const auto add : {AddDefaults, AddBuildings, AddRoads, AddNature, AddVehicles, AddSigns,
                           AddInteriors, AddEffects, AddRadar})
        add(pictures);
    return pictures;
}

}  // namespace Demo
