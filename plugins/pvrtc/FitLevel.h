#pragma once

// One level in the form that the kernels of the encoder work on, see LevelView. Owns all of it for the time
// of one call.

#include <cstdint>
#include <vector>

#include "plugins/pvrtc/FitKernels.h"
#include "plugins/pvrtc/PvrtcBlock.h"

namespace Pvrtc {

class CFitLevel {
public:
    /// `pixels` is the picture, width * height R G B A. Without alpha every pixel counts as opaque. The
    /// colours of fully transparent pixels and the padding of small levels count for nothing. Throws
    /// std::bad_alloc.
    CFitLevel(const BlockGrid& grid, const std::uint8_t* pixels, bool hasAlpha, const FitKernels& kernels);

    const LevelView& View() const { return m_oView; }
    const BlockGrid& Grid() const { return m_oGrid; }

    /// The word of a block, from its endpoints and its codes (4 bits per pixel) or weights (2 bits).
    BlockWord WordOf(std::uint32_t column, std::uint32_t row) const;

private:
    EndpointPair EndpointsOf(std::uint32_t column, std::uint32_t row) const;
    bool IsPunched(std::uint32_t column, std::uint32_t row) const;
    /// The 32 modulation bits of a block of 4 x 4 pixels, from the codes.
    std::uint32_t CodesOf(std::uint32_t column, std::uint32_t row) const;
    BlockWord TwoBitWordOf(std::uint32_t column, std::uint32_t row) const;
    void Load(const std::uint8_t* pixels, const FitKernels& kernels);
    void LoadMasks();
    std::size_t MaskAt(std::size_t x, std::size_t y) const;
    void MakeView();

    BlockGrid m_oGrid;
    bool m_bHasAlpha;
    LevelView m_oView{};
    std::vector<std::uint8_t> m_aTarget;
    std::vector<std::uint8_t> m_aColorCounts;
    std::vector<std::uint8_t> m_aAlphaCounts;
    std::vector<std::int16_t> m_aWeights;
    std::vector<std::int16_t> m_aWanted;
    std::vector<std::int16_t> m_aLengths;
    std::vector<std::int16_t> m_aModes;
    std::vector<std::uint8_t> m_aCodes;
    std::vector<std::int16_t> m_aEndpoints;
    std::vector<std::int16_t> m_aPunched;
    std::vector<float> m_aChanges;
    std::vector<float> m_aMissing;
    std::vector<float> m_aMatrix;
    std::vector<float> m_aAlphaMatrix;
};

}  // namespace Pvrtc
