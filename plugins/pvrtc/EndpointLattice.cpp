#include "plugins/pvrtc/EndpointLattice.h"

namespace Pvrtc {
namespace {
constexpr std::int16_t kFive[32] = {0,  1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 13, 14, 15,
                                    16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 31};
constexpr std::int16_t kFour[16] = {0, 2, 4, 6, 8, 10, 12, 14, 17, 19, 21, 23, 25, 27, 29, 31};
constexpr std::int16_t kThree[8] = {0, 4, 9, 13, 18, 22, 27, 31};
constexpr std::int16_t kAlpha[8] = {0, 2, 4, 6, 8, 10, 12, 14};
constexpr std::int16_t kOpaque[1] = {15};
}  // namespace

Lattice LatticeOf(EndpointForm form, std::size_t channel)
{
    constexpr std::size_t kBlueOfA = 2;
    if ((channel & 3) == 3)
        return form == EndpointForm::Opaque ? Lattice(kOpaque) : Lattice(kAlpha);
    if (form == EndpointForm::Opaque)
        return channel == kBlueOfA ? Lattice(kFour) : Lattice(kFive);
    return channel == kBlueOfA ? Lattice(kThree) : Lattice(kFour);
}

}  // namespace Pvrtc
