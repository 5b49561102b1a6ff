#include <algorithm>
#include <cstring>
#include <memory>
#include <tiffio.h>

#include "image/Codecs_Posix.h"
#include "image/ImageProbe.h"

namespace {

/// No single buffer of libtiff is larger than the largest picture.
constexpr tmsize_t kLargestBuffer = tmsize_t{1} << 30;

struct TiffCloser {
    void operator()(TIFF* tiff) const { TIFFClose(tiff); }
    void operator()(TIFFOpenOptions* options) const { TIFFOpenOptionsFree(options); }
};
using TiffHandle = std::unique_ptr<TIFF, TiffCloser>;
using TiffOptions = std::unique_ptr<TIFFOpenOptions, TiffCloser>;

/// A file in memory with a current position. Reading works on borrowed bytes, writing on bytes of its own.
class CMemoryFile {
public:
    CMemoryFile() = default;
    explicit CMemoryFile(std::span<const std::byte> bytes) : m_aBytes(bytes) {}

    TiffHandle Open(const char* mode)
    {
        const TiffOptions options(TIFFOpenOptionsAlloc());
        if (!options)
            return nullptr;
        TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), kLargestBuffer);
        // Damage is answered by the result; libtiff's words would go to the terminal.
        TIFFOpenOptionsSetErrorHandlerExtR(options.get(), OnMessage, nullptr);
        TIFFOpenOptionsSetWarningHandlerExtR(options.get(), OnMessage, nullptr);
        return TiffHandle(TIFFClientOpenExt("picture", mode, this, Read, Write, Seek, Close, Size, nullptr,
                                            nullptr, options.get()));
    }
    std::vector<std::byte> Take() { return std::move(m_aWritten); }

private:
    static int OnMessage(TIFF*, void*, const char*, const char*, va_list) { return 1; }
    static CMemoryFile& Self(thandle_t handle) { return *static_cast<CMemoryFile*>(handle); }
    static int Close(thandle_t) { return 0; }
    static toff_t Size(thandle_t handle) { return Self(handle).Contents().size(); }

    static tmsize_t Read(thandle_t handle, void* out, tmsize_t count)
    {
        CMemoryFile& self = Self(handle);
        const auto contents = self.Contents();
        if (count <= 0 || self.m_nPosition >= contents.size())
            return 0;
        const std::uint64_t left = contents.size() - self.m_nPosition;
        const auto taken =
            static_cast<std::size_t>(std::min<std::uint64_t>(static_cast<std::uint64_t>(count), left));
        std::memcpy(out, contents.data() + self.m_nPosition, taken);
        self.m_nPosition += taken;
        return static_cast<tmsize_t>(taken);
    }

    static tmsize_t Write(thandle_t handle, void* bytes, tmsize_t count)
    {
        CMemoryFile& self = Self(handle);
        if (count <= 0)
            return 0;
        const auto end = static_cast<std::size_t>(self.m_nPosition) + static_cast<std::size_t>(count);
        if (self.m_aWritten.size() < end)
            self.m_aWritten.resize(end);
        std::memcpy(self.m_aWritten.data() + self.m_nPosition, bytes, static_cast<std::size_t>(count));
        self.m_nPosition = end;
        return count;
    }

    static toff_t Seek(thandle_t handle, toff_t offset, int from)
    {
        CMemoryFile& self = Self(handle);
        if (from == SEEK_SET)
            self.m_nPosition = offset;
        else if (from == SEEK_CUR)
            self.m_nPosition += offset;
        else
            self.m_nPosition = self.Contents().size() + offset;
        return self.m_nPosition;
    }

    std::span<const std::byte> Contents() const { return m_aBytes.data() ? m_aBytes : std::span(m_aWritten); }

    std::span<const std::byte> m_aBytes;
    std::vector<std::byte> m_aWritten;
    std::uint64_t m_nPosition = 0;
};

enum class Alpha { None, Multiplied, Plain };

Alpha FindAlpha(TIFF* tiff)
{
    std::uint16_t count = 0;
    std::uint16_t* kinds = nullptr;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_EXTRASAMPLES, &count, &kinds);
    if (count == 0 || !kinds)
        return Alpha::None;
    if (kinds[0] == EXTRASAMPLE_ASSOCALPHA)
        return Alpha::Multiplied;
    return kinds[0] == EXTRASAMPLE_UNASSALPHA ? Alpha::Plain : Alpha::None;
}

/// `in` has red in its lowest byte.
void ConvertPixels(const std::vector<std::uint32_t>& in, CBitmap& bitmap, Alpha alpha)
{
    std::uint8_t* out = bitmap.Pixels().data();
    for (const std::uint32_t pixel : in) {
        std::uint32_t red = TIFFGetR(pixel);
        std::uint32_t green = TIFFGetG(pixel);
        std::uint32_t blue = TIFFGetB(pixel);
        const std::uint32_t opacity = TIFFGetA(pixel);
        if (alpha == Alpha::Multiplied && opacity != 0) {
            const auto divided = [opacity](std::uint32_t value) {
                return std::min((value * 255 + opacity / 2) / opacity, 255U);
            };
            red = divided(red);
            green = divided(green);
            blue = divided(blue);
        }
        *out++ = static_cast<std::uint8_t>(blue);
        *out++ = static_cast<std::uint8_t>(green);
        *out++ = static_cast<std::uint8_t>(red);
        *out++ = static_cast<std::uint8_t>(opacity);
    }
}

/// The pixels of the current picture, converted by libtiff to eight bits a channel, in the order of the file.
bool ReadPixels(TIFF* tiff, std::vector<std::uint32_t>& pixels, std::uint32_t width, std::uint32_t height)
{
    TIFFRGBAImage image;
    char message[1024] = "";
    if (!TIFFRGBAImageOK(tiff, message) || !TIFFRGBAImageBegin(&image, tiff, 1, message))
        return false;
    // The same orientation as stored, so that nothing is turned.
    image.req_orientation = image.orientation;
    const bool isRead = TIFFRGBAImageGet(&image, pixels.data(), width, height) == 1;
    TIFFRGBAImageEnd(&image);
    return isRead;
}

bool WriteTags(TIFF* tiff, const CBitmap& bitmap)
{
    const std::uint16_t alphaKind = EXTRASAMPLE_UNASSALPHA;
    return TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, bitmap.Width()) &&
           TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, bitmap.Height()) &&
           TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8) && TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 4) &&
           TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &alphaKind) &&
           TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB) &&
           TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) &&
           TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT) &&
           TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_LZW) &&
           TIFFSetField(tiff, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL) &&
           TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(tiff, 0));
}

bool WriteRows(TIFF* tiff, const CBitmap& bitmap)
{
    std::vector<std::uint8_t> row(std::size_t{bitmap.Width()} * 4);
    for (std::uint32_t y = 0; y < bitmap.Height(); ++y) {
        const auto source = bitmap.Row(y);
        std::copy(source.begin(), source.end(), row.begin());
        for (std::size_t i = 0; i < row.size(); i += 4)
            std::swap(row[i], row[i + 2]);
        if (TIFFWriteScanline(tiff, row.data(), y, 0) != 1)
            return false;
    }
    return TIFFFlush(tiff) == 1;
}

}  // namespace

std::optional<CBitmap> DecodeTiff(std::span<const std::byte> bytes)
{
    CMemoryFile file(bytes);
    const TiffHandle tiff = file.Open("rm");
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    if (!tiff || !TIFFGetField(tiff.get(), TIFFTAG_IMAGEWIDTH, &width) ||
        !TIFFGetField(tiff.get(), TIFFTAG_IMAGELENGTH, &height) || !IsDecodableSize(width, height))
        return std::nullopt;
    const Alpha alpha = FindAlpha(tiff.get());
    if (alpha == Alpha::Plain) {
        // libtiff would multiply the colours by the alpha, which loses bits; told that this is done already,
        // it hands them over as they are.
        const std::uint16_t multiplied = EXTRASAMPLE_ASSOCALPHA;
        TIFFSetField(tiff.get(), TIFFTAG_EXTRASAMPLES, 1, &multiplied);
    }
    auto bitmap = CBitmap::Create(width, height);
    if (!bitmap)
        return std::nullopt;
    std::vector<std::uint32_t> pixels(std::size_t{width} * height);
    if (!ReadPixels(tiff.get(), pixels, width, height))
        return std::nullopt;
    ConvertPixels(pixels, *bitmap, alpha);
    return bitmap;
}

std::optional<std::vector<std::byte>> EncodeTiff(const CBitmap& bitmap)
{
    CMemoryFile file;
    TiffHandle tiff = file.Open("wl");
    if (!tiff || !WriteTags(tiff.get(), bitmap) || !WriteRows(tiff.get(), bitmap))
        return std::nullopt;
    tiff.reset();  // writes the directory
    return file.Take();
}
