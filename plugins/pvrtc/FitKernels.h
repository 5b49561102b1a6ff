#pragma once

// The inner loops of the encoder, once for every instruction set and with the same results. They work on a
// LevelView, which borrows all memory from CFitLevel: pixels, endpoints and sums lie so that neighbouring
// lanes of a vector are blocks two columns apart, and no kernel ever has to shuffle.

#include <cstddef>
#include <cstdint>

#include "plugins/common/InstructionSet.h"

namespace Pvrtc {

/// Lanes of a vector of pixels.
inline constexpr std::size_t kLanes = 16;
/// Elements before and behind every line; the first ones repeat the other end, because a level wraps.
inline constexpr std::size_t kLinePad = 16;

/// What a pixel's colour counts in LevelView::colorCounts: in full, only a little because nobody sees it, or
/// 0 for padding.
inline constexpr std::uint8_t kVisible = 255;
inline constexpr std::uint8_t kHidden = 1;

/// How weights are found for the normal equations and for the final codes.
enum class Choosing : std::uint8_t {
    ByProjection,  ///< the nearest point of the line between the endpoints
    ByTrying,      ///< all values that can be had, exactly; the only way that knows blocks that punch through
    Stored         ///< with 2 bits per pixel: those of the view
};

/// How a block with 2 bits per pixel stores its weights.
struct TwoBitMode {
    static constexpr std::int16_t kPlain = 0;
    static constexpr std::int16_t kBoth = 1;
    static constexpr std::int16_t kHorizontal = 2;
    static constexpr std::int16_t kVertical = 3;
};

/// One level on its way through the encoder.
///
/// Blocks: an even and an odd line for every row of blocks, for the blocks in even and odd columns; element k
/// of the odd line lies between elements k and k + 1 of the even one.
///
/// Pixels: the level is cut into cells, whose pixels lie between the middles of four blocks. A cell is
/// counted like the block at its top left corner, whose middle pixel is its first pixel. A tile holds 16
/// cells of a line, pixel by pixel, channel by channel.
struct LevelView {
    std::uint32_t blockWidth;  ///< 4 or 8, also the width of a cell
    std::uint32_t channels;    ///< 3, or 4 with alpha
    std::uint32_t rows;        ///< of blocks
    std::size_t pairs;         ///< half the columns of blocks
    std::size_t tiles;         ///< in a line
    std::size_t stride;        ///< of a line, in elements
    bool masked;               ///< some pixels do not count; always so with alpha

    std::uint8_t* target;             ///< [tile][channel][pixel][lane]
    const std::uint8_t* colorCounts;  ///< [tile][pixel][lane], kVisible, kHidden or 0; null unless masked
    const std::uint8_t* alphaCounts;  ///< likewise, kVisible or 0; null without alpha
    std::int16_t* weights;            ///< [row][column & 15][element], 0 to 8; with 2 bits per pixel only
    std::uint8_t* codes;              ///< [line][row of the cell][element], four codes in a byte; 4 bits only
    std::int16_t* words;              ///< [line][quarter of the word][element]: the blocks as they are stored

    std::int16_t* wanted;   ///< as weights: the best weight of each pixel by itself, in quarters
    std::int16_t* lengths;  ///< as weights: how much a pixel's weight matters
    std::int16_t* modes;    ///< [line][element], TwoBitMode; with 2 bits only

    std::int16_t* endpoints;  ///< [line][endpoint channel 0 to 7][element], as EndpointPair
    std::int16_t* punched;    ///< [line][element], -1 for blocks of mode PunchThrough; null without alpha
    float* changes;           ///< [line][endpoint channel][element], of the endpoints, being solved
    float* missing;           ///< [line][endpoint channel][element], right sides of the normal equations
    float* matrix;            ///< [line][kMatrixTerms][element], for the colours
    float* alphaMatrix;       ///< the same for alpha; null without alpha

    std::size_t Line(std::size_t row, std::size_t parity) const { return row * 2 + parity; }
    /// A line of every sixteenth pixel, for what is kept so with 2 bits per pixel.
    std::size_t PixelLine(std::size_t row, std::size_t phase) const { return (row * 16 + phase) * stride; }
    std::size_t TilePixels() const { return std::size_t{blockWidth} * 4; }
    std::size_t Tile(std::size_t row, std::size_t parity, std::size_t tile) const
    {
        return (row * tiles + tile) * 2 + parity;
    }
};

/// Products of shares summed over the pixels: of the block with itself, with the block to the right, with the
/// one below, and the one that both diagonals through a cell have in common; for A with A, A with B and B
/// with B.
inline constexpr std::size_t kMatrixTerms = 12;

/// Whether a call goes on where another one with the same scratch memory ended.
enum class Begin : std::uint8_t { Fresh, Continued };

/// A row of pixels to decode.
struct DecodedRow {
    std::uint32_t blockWidth;
    std::size_t columns;         ///< of blocks
    const std::int16_t* top;     ///< 16 a column: R G B A of A and of B, twice; one column more on both sides
    const std::int16_t* bottom;  ///< of the row of blocks below
    int toBottom;  ///< quarters of the way from the middle of the upper blocks to the lower ones
    const std::uint8_t* weights;  ///< one a pixel, as in ModulationMap
};

struct FitKernels {
    /// 32-bit elements that sumRows and seedRows need as scratch memory.
    std::size_t (*scratchElements)(const LevelView& view);
    /// Cuts a line of pixels into row `y` of a row of cells. `pixels` is R G B A, begins with the first pixel
    /// of the first cell and fills all tiles.
    void (*spreadLine)(const LevelView& view, const std::uint8_t* pixels, std::uint32_t row, std::uint32_t y);
    /// First guess of the endpoints of some rows.
    void (*seedRows)(const LevelView& view, std::uint32_t first, std::uint32_t end, std::int32_t* scratch);
    /// With 4 bits and alpha only: decides which blocks of some rows punch through.
    void (*punchRows)(const LevelView& view, std::uint32_t first, std::uint32_t end, std::int32_t* scratch);
    /// Chooses weights for the endpoints and sets up the normal equations of some rows of blocks.
    void (*sumRows)(const LevelView& view, std::uint32_t first, std::uint32_t end, std::int32_t* scratch,
                    Begin begin, Choosing how);
    /// Solves the blocks of a row once. Reads the changes of the rows above and below.
    void (*solveRow)(const LevelView& view, std::uint32_t row);
    /// Moves the endpoints of some rows by their changes, which become 0.
    void (*applyRows)(const LevelView& view, std::uint32_t first, std::uint32_t end);
    /// With 2 bits only: what the pixels of some rows of cells want for these endpoints. Fresh: also a first
    /// guess of their weights.
    void (*wantRows)(const LevelView& view, std::uint32_t first, std::uint32_t end, Begin begin);
    /// With 2 bits only: chooses modes and stored weights of a row of blocks. Reads the rows above and below.
    void (*chooseRow)(const LevelView& view, std::uint32_t row);
    /// With 2 bits only: computes the weights that some rows do not store.
    void (*fillRows)(const LevelView& view, std::uint32_t first, std::uint32_t end);
    /// With 4 bits only: chooses the final weights of some rows of cells and writes their codes.
    void (*codeRows)(const LevelView& view, std::uint32_t first, std::uint32_t end, Choosing how);
    /// With 4 bits only: tries the neighbouring values of every endpoint of a row of blocks and keeps what
    /// gives the least exact error over all pixels that it reaches, with their weights chosen anew. Reads the
    /// rows above and below.
    void (*polishRow)(const LevelView& view, std::uint32_t row);
    /// Makes the words of a row of blocks from endpoints, modes, and codes or weights.
    void (*packRow)(const LevelView& view, std::uint32_t row);
    /// Decodes columns * blockWidth pixels, R G B A.
    void (*decodeRow)(const DecodedRow& row, std::uint8_t* out);
};

/// Null when this build or this processor lacks the instruction set.
const FitKernels* FitKernelsFor(Plugin::InstructionSet set);

const FitKernels* FitKernels_Portable();
const FitKernels* FitKernels_Sse41();
const FitKernels* FitKernels_Avx2();

}  // namespace Pvrtc
