// Image files of any kind, as users import them. Everything that decodes is encoded again.
#include <cstddef>
#include <cstdint>
#include <span>

#include "image/ImageFile.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // Large pictures are allowed to take long; the fuzzer should look for other things.
    constexpr std::size_t kMostBytes = 1U << 16;
    constexpr std::uint32_t kMostPixels = 1U << 16;
    if (size > kMostBytes)
        return 0;
    const auto bitmap = DecodeImage(std::as_bytes(std::span(data, size)));
    if (bitmap && bitmap->Width() * bitmap->Height() <= kMostPixels)
        EncodeImage(*bitmap, size % 2 == 0 ? ImageFormat::Gif : ImageFormat::Tiff);
    return 0;
}
