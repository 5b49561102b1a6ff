#pragma once

// One level in the form that the kernels of the encoder work on, see LevelView. Owns all of it for the time
// of one call.

#include <cstddef>
#include <cstdint>
#include <memory>

#include "plugins/pvrtc/FitKernels.h"
#include "plugins/pvrtc/PvrtcBlock.h"

namespace Pvrtc {

class CFitLevel {
public:
    /// `pixels` is the picture, width * height R G B A, borrowed. Without alpha every pixel counts as opaque.
    /// The colours of fully transparent pixels count little, the padding of small levels nothing. Throws
    /// std::bad_alloc.
    CFitLevel(const BlockGrid& grid, const std::uint8_t* pixels, bool hasAlpha);

    /// Takes the pixels of some rows of cells. Rows may be taken in any order and by several threads; all of
    /// them before anything else is done.
    void Load(std::uint32_t first, std::uint32_t end, const FitKernels& kernels);

    const LevelView& View() const { return m_oView; }

    /// Writes the words of some rows of blocks, after the kernels have made them, to their places in a level.
    void Write(std::uint32_t first, std::uint32_t end, std::uint8_t* destination) const;

private:
    void LoadMasks(std::uint32_t row);
    void TakeMemory();

    BlockGrid m_oGrid;
    const std::uint8_t* m_pPixels;
    bool m_bHasAlpha;
    bool m_bPadded;
    LevelView m_oView{};
    std::uint8_t* m_pColorCounts = nullptr;
    std::uint8_t* m_pAlphaCounts = nullptr;
    std::unique_ptr<std::byte[]> m_pMemory;
};

}  // namespace Pvrtc
