#pragma once

// Finds out how the pixels of a dictionary's texture are really stored, and draws them. What a record claims
// of its format is often wrong or says too little, so its words are weighed against each other here, in one
// place.

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "codec/PluginTable.h"
#include "image/Bitmap.h"
#include "rw/TXDMobile.h"
#include "rw/TXDPC.h"
#include "rw/TXDPS2.h"

enum class PixelCoding { Linear, Dxt1, Dxt1Alpha, Dxt3, Dxt5, Pvrtc2, Pvrtc4, Unsupported };

/// The first level of a texture as it is stored. Pixels and palette point into the dictionary's record, or
/// into `ownPixels` and `ownPalette`, so a picture is moved and never copied.
struct TXDPicture {
    PixelCoding coding = PixelCoding::Unsupported;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    // For linear pixels: bits a pixel, layout code, and what to do after they were converted.
    std::uint32_t depth = 0;
    std::uint32_t layout = 0;
    bool redFirst = false;     // 24 and 32 bits and palettes: R G B A in the file, not B G R A
    bool alphaOnTop = false;   // 4444: alpha is in the top bits
    bool swapRedBlue = false;  // 16 bits: blue is in the top bits
    bool isOpaque = false;     // whatever stands for alpha counts as 255
    bool halfAlpha = false;    // alpha runs from 0 to 128

    std::span<const std::byte> pixels;
    std::span<const std::byte> palette;
    std::vector<std::byte> ownPixels;
    std::vector<std::byte> ownPalette;

    TXDPicture() = default;
    TXDPicture(TXDPicture&&) = default;
    TXDPicture& operator=(TXDPicture&&) = default;
};

/// What a record holds. The dictionary's own stop boxes tell of records that cannot be read; their picture is
/// empty. Pixels that lie beyond the record are cut off.
TXDPicture ReadPicture(RW::CTXDPC& dictionary, std::uint32_t index);
TXDPicture ReadPicture(RW::CTXDPS2& dictionary, std::uint32_t index);
TXDPicture ReadPicture(RW::CTXDMobile& dictionary, std::uint32_t index);

/// Throws CError, not shown, when the picture cannot be drawn: wrong dimensions, missing pixels, a format
/// that is not supported, a plugin that is not loaded.
CBitmap DrawPicture(const TXDPicture& picture, const CPluginTable& plugins);
