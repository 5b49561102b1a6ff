// Any bytes as a texture dictionary: opened by the reader that accepts it, every texture described and drawn
// through the real decoders; then asked of every reader by force.

#include <cstdlib>

#include "database/DatabaseError.h"
#include "plugins/dxt/Dxt.h"
#include "plugins/pvrtc/PvrtcDecode.h"
#include "rw/TXDMobile.h"
#include "rw/TXDPC.h"
#include "rw/TXDPS2.h"
#include "tests/support/MemoryFileSystem.h"
#include "tools/TXDHelper.h"

namespace {

constexpr std::uint64_t kMostPixels = 1U << 18;

std::uint32_t DecodeDxt(const void* source, void* destination, std::uint32_t width, std::uint32_t height,
                        std::uint32_t, std::uint32_t flags)
{
    const auto variant = Dxt::VariantOf(flags);
    return variant ? Dxt::Decompress(source, destination, width, height, *variant) : 0;
}

std::uint32_t DecodePvrtc(const void* source, void* destination, std::uint32_t width, std::uint32_t height,
                          std::uint32_t mode, std::uint32_t)
{
    return Pvrtc::PvrtcDecode(static_cast<const std::uint8_t*>(source),
                              static_cast<std::uint8_t*>(destination), width, height, mode);
}

void DrawAll(CTXDHelper& helper)
{
    for (const DictionaryTexture& texture : helper.DescribeAll()) {
        if (std::uint64_t{texture.width} * texture.height > kMostPixels)
            continue;
        try {
            const CBitmap bitmap = helper.ToBitmap(texture.index);
            if (bitmap.Width() != texture.width || bitmap.Height() != texture.height)
                std::abort();
        } catch (const CError&) {
            // A texture that cannot be drawn does not stop the run.
            continue;
        }
    }
}

/// Every operation, on a texture that is there and on one that is not.
void AskEverything(RW::CTXDCommon& dictionary)
{
    dictionary.SetQuiet(true);
    if (!dictionary.Open("file", 0, RW::kNoRootId, 0) && dictionary.Root() == nullptr)
        return;
    for (const std::uint32_t index : {0U, 1U, 254U, 0xFFFFFFFFU}) {
        dictionary.GetName(index, RW::TextureText::Name);
        dictionary.GetFormatText(index);
        dictionary.GetMipLevels(index);
        dictionary.HasAlpha(index);
        dictionary.GetPlatform(index);
        for (const std::uint32_t level : {0U, 1U, 0xFFFFFFFFU})
            dictionary.GetPixels(index, level);
        dictionary.GetPalette(index);
        dictionary.SetName(index, L"a name", RW::TextureText::Mask);
        dictionary.FreeData(index);
    }
    dictionary.SetTextureCount(3);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::size_t kLargest = 1U << 16;
    if (size > kLargest)
        return 0;
    const auto bytes = std::as_bytes(std::span(data, size));
    CMemoryFileSystem files;
    files.Put("file", {bytes.begin(), bytes.end()});
    CPluginTable plugins;
    plugins.BindFunctions(CacheIndex::Dxt, nullptr, DecodeDxt);
    plugins.BindFunctions(CacheIndex::Pvrtc, nullptr, DecodePvrtc);
    RW::CSilentFailures failures;
    CTXDHelper helper(plugins, failures, files);
    try {
        helper.OpenDictionary("file");
    } catch (const RW::CException&) {
        // What was read by then is looked at all the same.
        if (helper.Dictionary() == nullptr)
            return 0;
    }
    DrawAll(helper);
    RW::CTXDPC direct3D(failures, files);
    AskEverything(direct3D);
    RW::CTXDPS2 playStation(failures, files);
    AskEverything(playStation);
    RW::CTXDMobile mobile(failures, files);
    AskEverything(mobile);
    return 0;
}
