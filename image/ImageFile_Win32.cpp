#include "base/Windows.h"

#include <algorithm>
#include <memory>
#include <objidl.h>
#include <shlwapi.h>

// The Microsoft headers of GDI+ use min and max without a namespace; NOMINMAX has taken the macros away.
namespace Gdiplus {
using std::max;
using std::min;
}  // namespace Gdiplus
#include <gdiplus.h>

#include "image/GdiPlus_Win32.h"
#include "image/ImageCodecs.h"
#include "image/ImageProbe.h"

namespace {

constexpr ULONG kQuality = 90;

/// GDI+ runs from the first use to the end of the process. Others may start it for themselves as well; it
/// counts.
class CGdiPlus {
public:
    CGdiPlus()
    {
        const Gdiplus::GdiplusStartupInput input;
        m_bRuns = Gdiplus::GdiplusStartup(&m_nToken, &input, nullptr) == Gdiplus::Ok;
    }
    ~CGdiPlus()
    {
        if (m_bRuns)
            Gdiplus::GdiplusShutdown(m_nToken);
    }
    CGdiPlus(const CGdiPlus&) = delete;
    CGdiPlus& operator=(const CGdiPlus&) = delete;

    static bool Runs()
    {
        static const CGdiPlus instance;
        return instance.m_bRuns;
    }

private:
    ULONG_PTR m_nToken = 0;
    bool m_bRuns = false;
};

struct StreamReleaser {
    void operator()(IStream* stream) const { stream->Release(); }
};
using StreamHandle = std::unique_ptr<IStream, StreamReleaser>;

/// A copy of the bytes; GDI+ reads from it as long as the picture lives, so no file stays open.
StreamHandle MakeStream(std::span<const std::byte> bytes)
{
    return StreamHandle(
        SHCreateMemStream(reinterpret_cast<const BYTE*>(bytes.data()), static_cast<UINT>(bytes.size())));
}

std::optional<std::vector<std::byte>> ContentsOf(IStream& stream)
{
    STATSTG facts{};
    if (FAILED(stream.Stat(&facts, STATFLAG_NONAME)) || facts.cbSize.HighPart != 0 ||
        FAILED(stream.Seek(LARGE_INTEGER{}, STREAM_SEEK_SET, nullptr)))
        return std::nullopt;
    std::vector<std::byte> bytes(facts.cbSize.LowPart);
    ULONG count = 0;
    if (FAILED(stream.Read(bytes.data(), facts.cbSize.LowPart, &count)) || count != facts.cbSize.LowPart)
        return std::nullopt;
    return bytes;
}

const wchar_t* ExtensionOf(ImageFormat format)
{
    switch (format) {
        case ImageFormat::Png:
            return L"png";
        case ImageFormat::Bmp:
            return L"bmp";
        case ImageFormat::Gif:
            return L"gif";
        case ImageFormat::Jpeg:
            return kJpgExtension;
        case ImageFormat::Tiff:
            return kTifExtension;
    }
    return L"";
}

/// The rows of a bitmap without alpha, padded to four bytes.
std::vector<std::uint8_t> OpaqueRows(const CBitmap& bitmap, std::size_t stride)
{
    std::vector<std::uint8_t> rows(stride * bitmap.Height());
    for (std::uint32_t y = 0; y < bitmap.Height(); ++y) {
        const auto source = bitmap.Row(y);
        std::uint8_t* out = rows.data() + y * stride;
        for (std::size_t i = 0; i < source.size(); i += 4, out += 3)
            std::copy_n(&source[i], 3, out);
    }
    return rows;
}

/// `pixels` must outlive the saving: the picture borrows them.
std::optional<std::vector<std::byte>> Save(const CBitmap& bitmap, std::uint8_t* pixels, std::size_t stride,
                                           Gdiplus::PixelFormat layout, ImageFormat format)
{
    CLSID encoder{};
    if (GetEncoderClsid(ExtensionOf(format), &encoder) < 0)
        return std::nullopt;
    Gdiplus::Bitmap picture(static_cast<INT>(bitmap.Width()), static_cast<INT>(bitmap.Height()),
                            static_cast<INT>(stride), layout, pixels);
    const StreamHandle stream = MakeStream({});
    if (!stream || picture.GetLastStatus() != Gdiplus::Ok)
        return std::nullopt;
    ULONG quality = kQuality;
    Gdiplus::EncoderParameters parameters{};
    parameters.Count = 1;
    parameters.Parameter[0].Guid = Gdiplus::EncoderQuality;
    parameters.Parameter[0].NumberOfValues = 1;
    parameters.Parameter[0].Type = Gdiplus::EncoderParameterValueTypeLong;
    parameters.Parameter[0].Value = &quality;
    const bool hasQuality = format == ImageFormat::Jpeg;
    if (picture.Save(stream.get(), &encoder, hasQuality ? &parameters : nullptr) != Gdiplus::Ok)
        return std::nullopt;
    return ContentsOf(*stream);
}

/// GDI+ reports damage when it makes the picture or when it unpacks the pixels; both refuse it.
bool ReadPixels(Gdiplus::Bitmap& picture, CBitmap& bitmap)
{
    const Gdiplus::Rect all(0, 0, static_cast<INT>(bitmap.Width()), static_cast<INT>(bitmap.Height()));
    Gdiplus::BitmapData data{};
    if (picture.LockBits(&all, Gdiplus::ImageLockModeRead, PixelFormat32bppARGB, &data) != Gdiplus::Ok)
        return false;
    const std::size_t length = std::size_t{bitmap.Width()} * 4;
    std::uint8_t* out = bitmap.Pixels().data();
    for (std::uint32_t y = 0; y < bitmap.Height(); ++y, out += length)
        std::copy_n(static_cast<const std::uint8_t*>(data.Scan0) + std::ptrdiff_t{data.Stride} * y, length,
                    out);
    return picture.UnlockBits(&data) == Gdiplus::Ok;
}

/// Some versions of GDI+ give the frame of a GIF file alone, others the frame on its screen; this makes it
/// the screen.
std::optional<CBitmap> PlaceOnScreen(CBitmap picture, const GifFrame& frame)
{
    const bool isFrame = picture.Width() == frame.width && picture.Height() == frame.height;
    const bool isScreen = picture.Width() == frame.screenWidth && picture.Height() == frame.screenHeight;
    if (!isFrame || isScreen || frame.screenWidth == 0 || frame.screenHeight == 0)
        return picture;
    auto screen = CBitmap::Create(frame.screenWidth, frame.screenHeight);
    if (!screen || frame.left >= frame.screenWidth)
        return screen;
    const std::size_t length = std::size_t{std::min(frame.width, frame.screenWidth - frame.left)} * 4;
    for (std::uint32_t y = 0; y < frame.height && frame.top + y < frame.screenHeight; ++y) {
        const std::size_t place = (std::size_t{frame.top + y} * frame.screenWidth + frame.left) * 4;
        std::copy_n(picture.Row(y).data(), length, screen->Pixels().data() + place);
    }
    return screen;
}

}  // namespace

int GetEncoderClsid(const wchar_t* format, CLSID* clsid)
{
    if (!CGdiPlus::Runs())
        return -1;
    const std::wstring mimeType = GetEncoderMimeType(format);
    UINT count = 0;
    UINT size = 0;
    if (Gdiplus::GetImageEncodersSize(&count, &size) != Gdiplus::Ok || size == 0)
        return -1;
    // The list holds the texts that its entries point to, so it is larger than its entries.
    const auto memory =
        std::make_unique<Gdiplus::ImageCodecInfo[]>(size / sizeof(Gdiplus::ImageCodecInfo) + 1);
    if (Gdiplus::GetImageEncoders(count, size, memory.get()) != Gdiplus::Ok)
        return -1;
    for (UINT i = 0; i < count; ++i)
        if (mimeType == memory[i].MimeType) {
            *clsid = memory[i].Clsid;
            return static_cast<int>(i);
        }
    return -1;
}

std::optional<CBitmap> DecodeOnPlatform(std::span<const std::byte> bytes, ImageFormat format)
{
    if (!CGdiPlus::Runs())
        return std::nullopt;
    const StreamHandle stream = MakeStream(bytes);
    if (!stream)
        return std::nullopt;
    Gdiplus::Bitmap picture(stream.get());
    if (picture.GetLastStatus() != Gdiplus::Ok || !IsDecodableSize(picture.GetWidth(), picture.GetHeight()))
        return std::nullopt;
    auto bitmap = CBitmap::Create(picture.GetWidth(), picture.GetHeight());
    if (!bitmap || !ReadPixels(picture, *bitmap))
        return std::nullopt;
    const auto frame = format == ImageFormat::Gif ? FindGifFrame(bytes) : std::nullopt;
    return frame ? PlaceOnScreen(std::move(*bitmap), *frame) : std::move(bitmap);
}

std::optional<std::vector<std::byte>> EncodeOnPlatform(const CBitmap& bitmap, ImageFormat format)
{
    if (!CGdiPlus::Runs())
        return std::nullopt;
    const std::size_t stride = std::size_t{bitmap.Width()} * 4;
    if (format == ImageFormat::Bmp || format == ImageFormat::Jpeg) {
        const std::size_t opaqueStride = (std::size_t{bitmap.Width()} * 3 + 3) / 4 * 4;
        std::vector<std::uint8_t> rows = OpaqueRows(bitmap, opaqueStride);
        return Save(bitmap, rows.data(), opaqueStride, PixelFormat24bppRGB, format);
    }
    // GDI+ does not change what it saves, but its interface does not say so.
    auto* const pixels = const_cast<std::uint8_t*>(bitmap.Pixels().data());
    return Save(bitmap, pixels, stride, PixelFormat32bppARGB, format);
}
