#include <algorithm>
#include <array>
#include <cstring>
#include <gif_lib.h>
#include <memory>

#include "image/Codecs_Posix.h"
#include "image/ImageProbe.h"

namespace {

struct GifCloser {
    void operator()(GifFileType* gif) const { DGifCloseFile(gif, nullptr); }
};
using GifHandle = std::unique_ptr<GifFileType, GifCloser>;

int ReadBytes(GifFileType* gif, GifByteType* out, int count)
{
    auto& rest = *static_cast<std::span<const std::byte>*>(gif->UserData);
    const std::size_t taken = std::min(rest.size(), static_cast<std::size_t>(std::max(count, 0)));
    std::memcpy(out, rest.data(), taken);
    rest = rest.subspan(taken);
    return static_cast<int>(taken);
}

/// Reads over an extension; the transparent colour of a graphic control block is kept.
bool ReadExtension(GifFileType* gif, int& transparent)
{
    int code = 0;
    GifByteType* block = nullptr;
    if (DGifGetExtension(gif, &code, &block) != GIF_OK)
        return false;
    while (block) {
        GraphicsControlBlock control{};
        if (code == GRAPHICS_EXT_FUNC_CODE && DGifExtensionToGCB(block[0], block + 1, &control) == GIF_OK)
            transparent = control.TransparentColor;
        if (DGifGetExtensionNext(gif, &block) != GIF_OK)
            return false;
    }
    return true;
}

/// Stops before the pixels of the first picture.
bool FindPicture(GifFileType* gif, int& transparent)
{
    for (;;) {
        GifRecordType record = UNDEFINED_RECORD_TYPE;
        if (DGifGetRecordType(gif, &record) != GIF_OK)
            return false;
        if (record == IMAGE_DESC_RECORD_TYPE)
            return DGifGetImageDesc(gif) == GIF_OK;
        if (record != EXTENSION_RECORD_TYPE || !ReadExtension(gif, transparent))
            return false;
    }
}

struct Frame {
    std::uint32_t left = 0;
    std::uint32_t top = 0;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    const ColorMapObject* colours = nullptr;
    int transparent = NO_TRANSPARENT_COLOR;
};

/// The part of the row that lies on the screen.
void DrawRow(const Frame& frame, std::uint32_t row, const std::vector<GifPixelType>& indices, CBitmap& screen)
{
    const std::uint64_t y = std::uint64_t{frame.top} + row;
    if (y >= screen.Height())
        return;
    for (std::uint32_t x = 0; x < frame.width && std::uint64_t{frame.left} + x < screen.Width(); ++x) {
        const int index = indices[x];
        if (index == frame.transparent || index >= frame.colours->ColorCount)
            continue;
        const GifColorType& colour = frame.colours->Colors[index];
        std::uint8_t* const out =
            &screen.Pixels()[(static_cast<std::size_t>(y) * screen.Width() + frame.left + x) * 4];
        out[0] = colour.Blue;
        out[1] = colour.Green;
        out[2] = colour.Red;
        out[3] = 255;
    }
}

/// The order in which the file holds the rows: every eighth, then the gaps, when interlaced.
bool DrawFrame(GifFileType* gif, const Frame& frame, bool interlaced, CBitmap& screen)
{
    struct Pass {
        std::uint32_t first;
        std::uint32_t step;
    };
    constexpr std::array kInterlaced = {Pass{0, 8}, Pass{4, 8}, Pass{2, 4}, Pass{1, 2}};
    constexpr std::array kPlain = {Pass{0, 1}};
    std::vector<GifPixelType> indices(frame.width);
    const std::span<const Pass> passes = interlaced ? std::span<const Pass>(kInterlaced) : kPlain;
    for (const Pass& pass : passes)
        for (std::uint32_t row = pass.first; row < frame.height; row += pass.step) {
            if (DGifGetLine(gif, indices.data(), static_cast<int>(indices.size())) != GIF_OK)
                return false;
            DrawRow(frame, row, indices, screen);
        }
    return true;
}

}  // namespace

std::optional<CBitmap> DecodeGif(std::span<const std::byte> bytes)
{
    std::span<const std::byte> rest = bytes;
    const GifHandle gif(DGifOpen(&rest, ReadBytes, nullptr));
    Frame frame;
    if (!gif || !FindPicture(gif.get(), frame.transparent))
        return std::nullopt;
    const GifImageDesc& image = gif->Image;
    frame.left = static_cast<std::uint32_t>(image.Left);
    frame.top = static_cast<std::uint32_t>(image.Top);
    frame.width = static_cast<std::uint32_t>(image.Width);
    frame.height = static_cast<std::uint32_t>(image.Height);
    frame.colours = image.ColorMap ? image.ColorMap : gif->SColorMap;
    // Some writers leave the size of the screen 0.
    const auto width = gif->SWidth > 0 ? static_cast<std::uint32_t>(gif->SWidth) : frame.width;
    const auto height = gif->SHeight > 0 ? static_cast<std::uint32_t>(gif->SHeight) : frame.height;
    if (!frame.colours || !IsDecodableSize(width, height) || !IsDecodableSize(frame.width, frame.height))
        return std::nullopt;
    auto screen = CBitmap::Create(width, height);
    if (!screen || !DrawFrame(gif.get(), frame, image.Interlace, *screen))
        return std::nullopt;
    return screen;
}
