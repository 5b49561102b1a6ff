#include <csetjmp>
#include <cstring>
#include <png.h>

#include "image/Codecs_Posix.h"
#include "image/ImageProbe.h"

// libpng leaves by longjmp when it meets an error. Every function that calls setjmp therefore owns nothing
// itself: what must be freed belongs to the object around it.

namespace {

/// Larger ancillary chunks (profiles, texts) than any picture has.
constexpr png_alloc_size_t kLargestChunk = 8U << 20;
constexpr png_uint_32 kLargestSide = 16384;

[[noreturn]] void OnError(png_structp png, png_const_charp)
{
    png_longjmp(png, 1);
}

void OnWarning(png_structp, png_const_charp) {}

class CPngReader {
public:
    explicit CPngReader(std::span<const std::byte> bytes)
        : m_pPng(png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, OnError, OnWarning)), m_aRest(bytes)
    {
        if (m_pPng)
            m_pInfo = png_create_info_struct(m_pPng);
    }
    ~CPngReader() { png_destroy_read_struct(&m_pPng, &m_pInfo, nullptr); }
    CPngReader(const CPngReader&) = delete;
    CPngReader& operator=(const CPngReader&) = delete;

    bool IsReady() const { return m_pInfo != nullptr; }
    png_uint_32 Width() const { return png_get_image_width(m_pPng, m_pInfo); }
    png_uint_32 Height() const { return png_get_image_height(m_pPng, m_pInfo); }

    /// Reads up to the pixels and asks for blue, green, red, alpha in eight bits each.
    bool ReadHeader()
    {
        if (setjmp(png_jmpbuf(m_pPng)))
            return false;
        png_set_read_fn(m_pPng, this, ReadBytes);
        png_set_user_limits(m_pPng, kLargestSide, kLargestSide);
        png_set_chunk_malloc_max(m_pPng, kLargestChunk);
        png_read_info(m_pPng, m_pInfo);
        png_set_scale_16(m_pPng);
        png_set_expand(m_pPng);
        png_set_gray_to_rgb(m_pPng);
        png_set_add_alpha(m_pPng, 0xFF, PNG_FILLER_AFTER);
        png_set_bgr(m_pPng);
        m_nPasses = png_set_interlace_handling(m_pPng);
        png_read_update_info(m_pPng, m_pInfo);
        return true;
    }

    bool ReadPixels(CBitmap& bitmap)
    {
        std::uint8_t* const pixels = bitmap.Pixels().data();
        const std::size_t stride = std::size_t{bitmap.Width()} * 4;
        if (png_get_rowbytes(m_pPng, m_pInfo) != stride)
            return false;
        const std::size_t height = bitmap.Height();
        if (setjmp(png_jmpbuf(m_pPng)))
            return false;
        // An interlaced picture comes in passes; each adds to the rows of those before it.
        for (int pass = 0; pass < m_nPasses; ++pass)
            for (std::size_t y = 0; y < height; ++y)
                png_read_row(m_pPng, pixels + y * stride, nullptr);
        png_read_end(m_pPng, nullptr);
        return true;
    }

private:
    static void ReadBytes(png_structp png, png_bytep out, std::size_t count)
    {
        auto* const reader = static_cast<CPngReader*>(png_get_io_ptr(png));
        if (count > reader->m_aRest.size())
            png_error(png, "the file ends too early");
        std::memcpy(out, reader->m_aRest.data(), count);
        reader->m_aRest = reader->m_aRest.subspan(count);
    }

    png_structp m_pPng;
    png_infop m_pInfo = nullptr;
    std::span<const std::byte> m_aRest;
    int m_nPasses = 1;
};

}  // namespace

std::optional<CBitmap> DecodePng(std::span<const std::byte> bytes)
{
    CPngReader reader(bytes);
    if (!reader.IsReady() || !reader.ReadHeader() || !IsDecodableSize(reader.Width(), reader.Height()))
        return std::nullopt;
    auto bitmap = CBitmap::Create(reader.Width(), reader.Height());
    if (!bitmap || !reader.ReadPixels(*bitmap))
        return std::nullopt;
    return bitmap;
}
