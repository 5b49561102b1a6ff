#include "plugins/pvrtc/EndpointLattice.h"

#include <algorithm>

namespace Pvrtc {
namespace {
constexpr std::int16_t kFive[32] = {0,  1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 13, 14, 15,
                                    16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 31};
constexpr std::int16_t kFour[16] = {0, 2, 4, 6, 8, 10, 12, 14, 17, 19, 21, 23, 25, 27, 29, 31};
constexpr std::int16_t kThree[8] = {0, 4, 9, 13, 18, 22, 27, 31};
constexpr std::int16_t kAlpha[8] = {0, 2, 4, 6, 8, 10, 12, 14};
constexpr std::int16_t kOpaque[1] = {15};

// Keeps the solution where it is along directions that no pixel decides.
constexpr float kStiffness = 0.5F;

// Index of the last value not above `wanted`, or 0.
std::size_t IndexBelow(Lattice lattice, float wanted)
{
    // The values are almost evenly spaced: the guess is at most one off.
    const float last = lattice.back();
    if (lattice.size() == 1 || wanted <= 0)
        return 0;
    if (wanted >= last)
        return lattice.size() - 1;
    auto index = static_cast<std::size_t>(wanted * static_cast<float>(lattice.size() - 1) / last);
    while (index + 1 < lattice.size() && static_cast<float>(lattice[index + 1]) <= wanted)
        ++index;
    while (index > 0 && static_cast<float>(lattice[index]) > wanted)
        --index;
    return index;
}

float ErrorOf(const ChannelProblem& problem, float a, float b)
{
    return problem.aa * a * a + 2 * problem.ab * a * b + problem.bb * b * b -
           2 * (problem.ra * a + problem.rb * b);
}

void Consider(const ChannelProblem& problem, std::int16_t a, std::int16_t b, ChannelChoice& best)
{
    const float error =
        ErrorOf(problem, static_cast<float>(a - problem.currentA), static_cast<float>(b - problem.currentB));
    if (error < best.error)
        best = {a, b, error};
}
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

std::int16_t Nearest(Lattice lattice, float wanted)
{
    const std::size_t below = IndexBelow(lattice, wanted);
    const std::size_t above = std::min(below + 1, lattice.size() - 1);
    return static_cast<float>(lattice[above]) - wanted < wanted - static_cast<float>(lattice[below])
               ? lattice[above]
               : lattice[below];
}

ChannelChoice SolveChannel(const ChannelProblem& problem, Lattice latticeA, Lattice latticeB,
                           std::size_t breadth)
{
    ChannelProblem stiff = problem;
    stiff.aa += kStiffness;
    stiff.bb += kStiffness;
    const auto currentA = static_cast<float>(problem.currentA);
    const auto currentB = static_cast<float>(problem.currentB);
    const float determinant = stiff.aa * stiff.bb - stiff.ab * stiff.ab;
    const float optimumA = currentA + (stiff.ra * stiff.bb - stiff.rb * stiff.ab) / determinant;
    const float optimumB = currentB + (stiff.rb * stiff.aa - stiff.ra * stiff.ab) / determinant;

    // One endpoint is set to a value near its optimum, the other to its best answer.
    ChannelChoice best{Nearest(latticeA, optimumA), Nearest(latticeB, optimumB), 0};
    best.error = ErrorOf(stiff, static_cast<float>(best.a) - currentA, static_cast<float>(best.b) - currentB);
    const auto indicesAround = [breadth](Lattice lattice, float optimum) {
        const std::size_t below = IndexBelow(lattice, optimum);
        const std::size_t first = below + 1 >= breadth ? below + 1 - breadth : 0;
        return lattice.subspan(first, std::min(lattice.size(), below + breadth + 1) - first);
    };
    for (const std::int16_t a : indicesAround(latticeA, optimumA)) {
        const float answer = (stiff.rb - stiff.ab * (static_cast<float>(a) - currentA)) / stiff.bb;
        Consider(stiff, a, Nearest(latticeB, currentB + answer), best);
    }
    for (const std::int16_t b : indicesAround(latticeB, optimumB)) {
        const float answer = (stiff.ra - stiff.ab * (static_cast<float>(b) - currentB)) / stiff.aa;
        Consider(stiff, Nearest(latticeA, currentA + answer), b, best);
    }
    return best;
}

}  // namespace Pvrtc
