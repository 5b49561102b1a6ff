#include "plugins/pvrtc/LevelFit.h"

namespace Pvrtc {
namespace {
constexpr int kRoundsWithoutHoles = 2;
}  // namespace

CLevelFit::CLevelFit(CFitLevel& level, const FitKernels& kernels, Plugin::CRowTeam& team)
    : m_rLevel(level), m_rView(level.View()), m_rKernels(kernels), m_rTeam(team), m_aScratch(team.Members())
{
    for (std::vector<std::int32_t>& scratch : m_aScratch)
        scratch.resize(kernels.scratchElements(m_rView));
}

void CLevelFit::Run(const FitEffort& effort, std::uint8_t* destination)
{
    Seed();
    if (m_rView.blockWidth == 4)
        RunFourBits(effort);
    else
        RunTwoBits(effort);
    m_rTeam.Run(m_rView.rows, [this, destination](std::uint32_t first, std::uint32_t end, unsigned) {
        for (std::uint32_t row = first; row < end; ++row)
            m_rKernels.packRow(m_rView, row);
        m_rLevel.Write(first, end, destination);
    });
}

void CLevelFit::Seed()
{
    m_rTeam.Run(m_rView.rows, [this](std::uint32_t first, std::uint32_t end, unsigned) {
        m_rLevel.Load(first, end, m_rKernels);
    });
    m_rTeam.Run(m_rView.rows, [this](std::uint32_t first, std::uint32_t end, unsigned member) {
        m_rKernels.seedRows(m_rView, first, end, m_aScratch[member].data());
    });
}

void CLevelFit::RunFourBits(const FitEffort& effort)
{
    Choosing how = Choosing::ByProjection;
    for (int round = 0; round < effort.rounds; ++round) {
        // The first guess would punch through far too often.
        if (m_rView.punched != nullptr && round >= kRoundsWithoutHoles) {
            PunchThrough();
            how = Choosing::ByTrying;
        }
        SolveRound(how);
    }
    if (m_rView.punched != nullptr)
        PunchThrough();
    for (int pass = 0; pass < effort.polishes; ++pass)
        EveryOtherRow(m_rKernels.polishRow);
    m_rTeam.Run(m_rView.rows, [&](std::uint32_t first, std::uint32_t end, unsigned) {
        m_rKernels.codeRows(m_rView, first, end,
                            effort.quickCodes ? Choosing::ByProjection : Choosing::ByTrying);
    });
}

void CLevelFit::PunchThrough()
{
    m_rTeam.Run(m_rView.rows, [this](std::uint32_t first, std::uint32_t end, unsigned member) {
        m_rKernels.punchRows(m_rView, first, end, m_aScratch[member].data());
    });
}

// The first round takes each pixel's own best weight, whether it can be stored or not.
void CLevelFit::RunTwoBits(const FitEffort& effort)
{
    SolveRound(Choosing::ByProjection);
    for (int round = 1; round < effort.rounds; ++round) {
        ChooseTwoBitWeights(round == 1 ? Begin::Fresh : Begin::Continued);
        // Weights that are stored are not touched, the others not read: rows may be filled in any order.
        m_rTeam.Run(m_rView.rows, [this](std::uint32_t first, std::uint32_t end, unsigned) {
            m_rKernels.fillRows(m_rView, first, end);
        });
        SolveRound(Choosing::Stored);
    }
    ChooseTwoBitWeights(effort.rounds == 1 ? Begin::Fresh : Begin::Continued);
}

void CLevelFit::ChooseTwoBitWeights(Begin begin)
{
    m_rTeam.Run(m_rView.rows, [&](std::uint32_t first, std::uint32_t end, unsigned) {
        m_rKernels.wantRows(m_rView, first, end, begin);
    });
    EveryOtherRow(m_rKernels.chooseRow);
}

void CLevelFit::SolveRound(Choosing how)
{
    SumAndSweep(how);
    m_rTeam.Run(m_rView.rows, [this](std::uint32_t first, std::uint32_t end, unsigned) {
        m_rKernels.applyRows(m_rView, first, end);
    });
}

// One thread solves a row as soon as its sums are there, which finds them still in the cache. That is the
// order of Sweep, even rows before odd ones: no two rows of a kind touch each other.
void CLevelFit::SumAndSweep(Choosing how)
{
    if (m_rTeam.Members() > 1) {
        m_rTeam.Run(m_rView.rows, [&](std::uint32_t first, std::uint32_t end, unsigned member) {
            m_rKernels.sumRows(m_rView, first, end, m_aScratch[member].data(), Begin::Fresh, how);
        });
        Sweep();
        return;
    }
    std::int32_t* const scratch = m_aScratch.front().data();
    // Row 0 reads the matrix of the row above it, which is the last one.
    m_rKernels.sumRows(m_rView, m_rView.rows - 1, m_rView.rows, scratch, Begin::Fresh, how);
    for (std::uint32_t row = 0; row + 1 < m_rView.rows; ++row) {
        m_rKernels.sumRows(m_rView, row, row + 1, scratch, row == 0 ? Begin::Fresh : Begin::Continued, how);
        if (row % 2 != 0)
            continue;
        m_rKernels.solveRow(m_rView, row);
        if (row >= 2)
            m_rKernels.solveRow(m_rView, row - 1);
    }
    m_rKernels.solveRow(m_rView, m_rView.rows - 1);
}

void CLevelFit::Sweep()
{
    EveryOtherRow(m_rKernels.solveRow);
}

// The even rows, then the odd ones: rows of a kind do not touch each other, so threads may share them.
void CLevelFit::EveryOtherRow(void (*kernel)(const LevelView& view, std::uint32_t row))
{
    for (const std::uint32_t parity : {0U, 1U}) {
        m_rTeam.Run(m_rView.rows / 2, [&](std::uint32_t first, std::uint32_t end, unsigned) {
            for (std::uint32_t row = first; row < end; ++row)
                kernel(m_rView, row * 2 + parity);
        });
    }
}

}  // namespace Pvrtc
