#include <algorithm>
#include <csetjmp>
#include <cstdio>
#include <cstdlib>

// The numbers in jerror.h depend on switches that jpeglib.h sets.
// clang-format off
#include <jpeglib.h>
#include <jerror.h>
// clang-format on

#include "image/Codecs_Posix.h"
#include "image/ImageProbe.h"

// libjpeg leaves through the error handler, which must not return: it jumps. Every function that calls setjmp
// therefore owns nothing itself: what must be freed belongs to the object around it.

namespace {

constexpr int kQuality = 90;
/// A progressive file may hold any number of passes over the whole picture; no real one has a tenth of this.
constexpr int kMostScans = 500;
constexpr long kMostMemory = 0x7FFFFFFF;

struct ErrorState {
    jpeg_error_mgr manager{};  // first, so that libjpeg's pointer to it is a pointer to this
    std::jmp_buf place{};
    bool damaged = false;
};

ErrorState& StateOf(j_common_ptr codec)
{
    return *reinterpret_cast<ErrorState*>(codec->err);
}

[[noreturn]] void OnError(j_common_ptr codec)
{
    std::longjmp(StateOf(codec).place, 1);
}

/// libjpeg goes on after damage and fills the rest with grey; these warnings say that pixels are lost.
void OnMessage(j_common_ptr codec, int level)
{
    if (level >= 0)
        return;
    switch (codec->err->msg_code) {
        case JWRN_JPEG_EOF:
        case JWRN_HIT_MARKER:
        case JWRN_HUFF_BAD_CODE:
        case JWRN_ARITH_BAD_CODE:
        case JWRN_MUST_RESYNC:
            StateOf(codec).damaged = true;
            break;
        default:
            break;
    }
}

void OnOutput(j_common_ptr) {}

jpeg_error_mgr* PrepareErrors(ErrorState& state)
{
    jpeg_std_error(&state.manager);
    state.manager.error_exit = OnError;
    state.manager.emit_message = OnMessage;
    state.manager.output_message = OnOutput;
    return &state.manager;
}

void OnProgress(j_common_ptr codec)
{
    if (reinterpret_cast<j_decompress_ptr>(codec)->input_scan_number > kMostScans)
        OnError(codec);
}

class CJpegReader {
public:
    CJpegReader()
    {
        m_oCodec.err = PrepareErrors(m_oErrors);
        m_oProgress.progress_monitor = OnProgress;
    }
    ~CJpegReader() { jpeg_destroy_decompress(&m_oCodec); }
    CJpegReader(const CJpegReader&) = delete;
    CJpegReader& operator=(const CJpegReader&) = delete;

    std::uint32_t Width() const { return m_oCodec.image_width; }
    std::uint32_t Height() const { return m_oCodec.image_height; }
    bool IsCmyk() const { return m_oCodec.out_color_space == JCS_CMYK; }
    /// Adobe's programs store how much light is left instead of how much ink there is.
    bool IsInverted() const { return m_oCodec.saw_Adobe_marker; }

    bool ReadHeader(std::span<const std::byte> bytes)
    {
        if (setjmp(m_oErrors.place))
            return false;
        jpeg_create_decompress(&m_oCodec);
        m_oCodec.mem->max_memory_to_use = kMostMemory;
        m_oCodec.progress = &m_oProgress;
        jpeg_mem_src(&m_oCodec, reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
        jpeg_read_header(&m_oCodec, TRUE);
        const bool fourInks = m_oCodec.jpeg_color_space == JCS_CMYK || m_oCodec.jpeg_color_space == JCS_YCCK;
        m_oCodec.out_color_space = fourInks ? JCS_CMYK : JCS_EXT_BGRA;
        return true;
    }

    /// Four bytes a pixel either way.
    bool ReadPixels(CBitmap& bitmap)
    {
        std::uint8_t* const pixels = bitmap.Pixels().data();
        const std::size_t stride = std::size_t{bitmap.Width()} * 4;
        if (setjmp(m_oErrors.place))
            return false;
        jpeg_start_decompress(&m_oCodec);
        while (m_oCodec.output_scanline < m_oCodec.output_height) {
            JSAMPROW row = pixels + m_oCodec.output_scanline * stride;
            jpeg_read_scanlines(&m_oCodec, &row, 1);
        }
        jpeg_finish_decompress(&m_oCodec);
        return !m_oErrors.damaged;
    }

private:
    jpeg_decompress_struct m_oCodec{};
    ErrorState m_oErrors;
    jpeg_progress_mgr m_oProgress{};
};

class CJpegWriter {
public:
    CJpegWriter() { m_oCodec.err = PrepareErrors(m_oErrors); }
    ~CJpegWriter()
    {
        jpeg_destroy_compress(&m_oCodec);
        std::free(m_pOut);
    }
    CJpegWriter(const CJpegWriter&) = delete;
    CJpegWriter& operator=(const CJpegWriter&) = delete;

    std::span<const std::byte> Result() const
    {
        return {reinterpret_cast<const std::byte*>(m_pOut), m_nLength};
    }

    bool Write(const CBitmap& bitmap)
    {
        // libjpeg does not change the rows, but its interface does not say so.
        auto* const pixels = const_cast<std::uint8_t*>(bitmap.Pixels().data());
        const std::size_t stride = std::size_t{bitmap.Width()} * 4;
        if (setjmp(m_oErrors.place))
            return false;
        jpeg_create_compress(&m_oCodec);
        jpeg_mem_dest(&m_oCodec, &m_pOut, &m_nLength);
        m_oCodec.image_width = bitmap.Width();
        m_oCodec.image_height = bitmap.Height();
        m_oCodec.input_components = 4;
        m_oCodec.in_color_space = JCS_EXT_BGRX;
        jpeg_set_defaults(&m_oCodec);
        jpeg_set_quality(&m_oCodec, kQuality, TRUE);
        m_oCodec.comp_info[0].h_samp_factor = 1;
        m_oCodec.comp_info[0].v_samp_factor = 1;
        jpeg_start_compress(&m_oCodec, TRUE);
        while (m_oCodec.next_scanline < m_oCodec.image_height) {
            JSAMPROW row = pixels + m_oCodec.next_scanline * stride;
            jpeg_write_scanlines(&m_oCodec, &row, 1);
        }
        jpeg_finish_compress(&m_oCodec);
        return true;
    }

private:
    jpeg_compress_struct m_oCodec{};
    ErrorState m_oErrors;
    unsigned char* m_pOut = nullptr;
    unsigned long m_nLength = 0;
};

/// value * factor / 255, to nearest.
std::uint8_t Scaled(unsigned value, unsigned factor)
{
    return static_cast<std::uint8_t>((value * factor + 127) / 255);
}

/// Cyan, magenta, yellow and black become blue, green, red and alpha in place.
void ConvertInks(CBitmap& bitmap, bool inverted)
{
    const auto pixels = bitmap.Pixels();
    const unsigned flip = inverted ? 0 : 255;
    for (std::size_t i = 0; i < pixels.size(); i += 4) {
        const unsigned cyan = pixels[i] ^ flip;
        const unsigned magenta = pixels[i + 1] ^ flip;
        const unsigned yellow = pixels[i + 2] ^ flip;
        const unsigned black = pixels[i + 3] ^ flip;
        pixels[i] = Scaled(yellow, black);
        pixels[i + 1] = Scaled(magenta, black);
        pixels[i + 2] = Scaled(cyan, black);
        pixels[i + 3] = 255;
    }
}

}  // namespace

std::optional<CBitmap> DecodeJpeg(std::span<const std::byte> bytes)
{
    CJpegReader reader;
    if (!reader.ReadHeader(bytes) || !IsDecodableSize(reader.Width(), reader.Height()))
        return std::nullopt;
    auto bitmap = CBitmap::Create(reader.Width(), reader.Height());
    if (!bitmap || !reader.ReadPixels(*bitmap))
        return std::nullopt;
    if (reader.IsCmyk())
        ConvertInks(*bitmap, reader.IsInverted());
    return bitmap;
}

std::optional<std::vector<std::byte>> EncodeJpeg(const CBitmap& bitmap)
{
    CJpegWriter writer;
    if (!writer.Write(bitmap))
        return std::nullopt;
    return std::vector<std::byte>(writer.Result().begin(), writer.Result().end());
}
