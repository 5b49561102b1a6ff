#pragma once

// Small image files made in view of the test, by nothing that the program itself uses.

#include <cstddef>
#include <cstdint>
#include <vector>

struct PngSample {
    std::uint32_t width = 1;
    std::uint32_t height = 1;
    std::uint32_t bits = 8;
    std::uint32_t colourType = 6;  // 0 grey, 2 colours, 3 palette, 4 grey and alpha, 6 colours and alpha
    bool interlaced = false;
    std::vector<std::uint8_t> rows = {};  // a filter byte before each row
    std::vector<std::uint8_t> palette = {};
    std::vector<std::uint8_t> transparency = {};
};
std::vector<std::byte> MakePng(const PngSample& sample);

struct GifSample {
    std::uint32_t screenWidth = 2;
    std::uint32_t screenHeight = 2;
    std::uint32_t left = 0;
    std::uint32_t top = 0;
    std::uint32_t width = 2;
    std::uint32_t height = 2;
    bool interlaced = false;
    int transparent = -1;
    std::vector<std::uint8_t> palette = {};  // 4 colours
    std::vector<std::uint8_t> indices = {};  // 0 to 3
};
std::vector<std::byte> MakeGif(const GifSample& sample);

struct BmpSample {
    std::uint32_t width = 1;
    std::int32_t height = 1;  // negative for the upper row first
    std::uint32_t bits = 24;
    std::uint32_t compression = 0;
    std::vector<std::uint8_t> pixels = {};
    std::vector<std::uint8_t> palette = {};  // four bytes an entry, or the masks
    bool isOldest = false;                   // the header of twelve bytes, palette entries of three
};
std::vector<std::byte> MakeBmp(const BmpSample& sample);

struct TiffSample {
    std::uint32_t width = 1;
    std::uint32_t height = 1;
    std::uint32_t samples = 3;      // of eight bits
    std::uint32_t photometric = 2;  // 1 grey, 2 colours, 3 palette
    int alphaKind = -1;             // 1 multiplied, 2 plain; -1 for none
    bool isBigEndian = false;
    std::vector<std::uint8_t> pixels = {};
    std::vector<std::uint16_t> palette = {};  // 256 reds, greens, blues
};
std::vector<std::byte> MakeTiff(const TiffSample& sample);
