#pragma once

// Every way to call a codec: format, level, instruction set and dithering, as one kind of function, for tests
// of what all of them promise alike. Instruction sets that this processor lacks are left out.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "plugins/common/BlockLevel.h"
#include "plugins/dxt/Dxt.h"
#include "plugins/etc1/Etc1.h"
#include "plugins/pvrtc/PvrtcDecode.h"
#include "plugins/pvrtc/PvrtcEncode.h"
#include "plugins/unc/Unc.h"

namespace PluginTest {

struct Coder {
    std::string name;
    /// The format holds only sides that are powers of two.
    bool powersOfTwo = false;
    Plugin::Quality quality = Plugin::Quality::Fast;
    Plugin::InstructionSet set = Plugin::InstructionSet::Portable;
    std::function<std::uint32_t(const std::uint8_t*, std::uint8_t*, std::uint32_t, std::uint32_t)> code;
    /// Bytes of a stored level.
    std::function<std::size_t(std::uint32_t, std::uint32_t)> levelBytes;
};

inline std::vector<Plugin::InstructionSet> SupportedSets()
{
    std::vector<Plugin::InstructionSet> sets;
    for (const Plugin::InstructionSet set : Plugin::kEveryInstructionSet)
        if (Plugin::IsSupported(set))
            sets.push_back(set);
    return sets;
}

inline constexpr Dxt::Variant kEveryVariant[] = {Dxt::Variant::Dxt1, Dxt::Variant::Dxt1Alpha,
                                                 Dxt::Variant::Dxt3, Dxt::Variant::Dxt5};

inline Coder DxtEncoder(const Dxt::EncodeOptions& options)
{
    Coder coder;
    coder.name = "DXT variant " + std::to_string(static_cast<int>(options.variant));
    coder.code = [options](const std::uint8_t* source, std::uint8_t* out, std::uint32_t width,
                           std::uint32_t height) {
        return Dxt::Compress(source, out, width, height, options);
    };
    coder.levelBytes = [options](std::uint32_t width, std::uint32_t height) {
        return std::size_t{Plugin::LevelBytes(width, height, Dxt::BlockBytes(options.variant))};
    };
    return coder;
}

inline Coder Etc1Encoder(const Etc1::EncodeOptions& options)
{
    Coder coder;
    coder.name = "ETC1";
    coder.code = [options](const std::uint8_t* source, std::uint8_t* out, std::uint32_t width,
                           std::uint32_t height) {
        return Etc1::Compress(source, out, width, height, options);
    };
    coder.levelBytes = [](std::uint32_t width, std::uint32_t height) {
        return std::size_t{Plugin::LevelBytes(width, height, 8)};
    };
    return coder;
}

inline Coder PvrtcEncoder(const Pvrtc::EncodeOptions& options)
{
    Coder coder;
    coder.name = "PVRTC " + std::to_string(options.bitsPerPixel) + (options.alpha ? " alpha" : "");
    coder.powersOfTwo = true;
    coder.code = [options](const std::uint8_t* source, std::uint8_t* out, std::uint32_t width,
                           std::uint32_t height) {
        return Pvrtc::PvrtcEncode(source, out, width, height, options);
    };
    coder.levelBytes = [options](std::uint32_t width, std::uint32_t height) {
        return static_cast<std::size_t>(Pvrtc::PvrtcLevelBytes(width, height, options.bitsPerPixel));
    };
    return coder;
}

inline Coder UncEncoder(bool alpha, Plugin::Dithering dithering)
{
    Coder coder;
    coder.name = alpha ? "RGBA 4444" : "RGB 565";
    coder.code = [=](const std::uint8_t* source, std::uint8_t* out, std::uint32_t width,
                     std::uint32_t height) {
        return Unc::Compress(source, out, width, height, alpha, dithering);
    };
    coder.levelBytes = [](std::uint32_t width, std::uint32_t height) {
        return std::size_t{width} * height * 2;
    };
    return coder;
}

/// All formats with these options, on one thread.
inline void AddEncoders(Plugin::Quality quality, Plugin::InstructionSet set, Plugin::Dithering dithering,
                        std::vector<Coder>& coders)
{
    const std::size_t first = coders.size();
    for (const Dxt::Variant variant : kEveryVariant)
        coders.push_back(DxtEncoder({variant, quality, dithering, 1, set}));
    coders.push_back(Etc1Encoder({quality, dithering, 1, set}));
    for (const std::uint32_t bits : {2U, 4U})
        for (const bool alpha : {false, true}) {
            Pvrtc::EncodeOptions options;
            options.bitsPerPixel = bits;
            options.alpha = alpha;
            options.dithering = dithering;
            options.quality = quality;
            options.threads = 1;
            options.instructionSet = set;
            coders.push_back(PvrtcEncoder(options));
        }
    for (const bool alpha : {false, true})
        coders.push_back(UncEncoder(alpha, dithering));
    for (std::size_t i = first; i < coders.size(); ++i) {
        coders[i].quality = quality;
        coders[i].set = set;
        coders[i].name += ", level " + std::to_string(static_cast<int>(quality)) + ", set " +
                          std::to_string(static_cast<int>(set)) + ", dithering " +
                          std::to_string(static_cast<int>(dithering));
    }
}

/// Every level and instruction set without dithering, and every dithering with the preferred set.
inline std::vector<Coder> EveryEncoder()
{
    std::vector<Coder> coders;
    for (const Plugin::InstructionSet set : SupportedSets())
        for (const Plugin::Quality quality :
             {Plugin::Quality::Normal, Plugin::Quality::Fast, Plugin::Quality::High, Plugin::Quality::Best})
            AddEncoders(quality, set, Plugin::Dithering::None, coders);
    for (const Plugin::Dithering dithering : {Plugin::Dithering::ErrorDiffusion, Plugin::Dithering::Ordered})
        AddEncoders(Plugin::Quality::Fast, Plugin::PreferredInstructionSet(), dithering, coders);
    return coders;
}

/// Decoders of every format with every instruction set.
inline std::vector<Coder> EveryDecoder()
{
    std::vector<Coder> coders;
    for (const Plugin::InstructionSet set : SupportedSets()) {
        const std::string suffix = ", decoder, set " + std::to_string(static_cast<int>(set));
        const auto add = [&](Coder coder, auto decode) {
            coder.name += suffix;
            coder.set = set;
            coder.code = decode;
            coders.push_back(coder);
        };
        for (const Dxt::Variant variant : kEveryVariant)
            add(DxtEncoder({variant}), [=](const std::uint8_t* source, std::uint8_t* out, std::uint32_t width,
                                           std::uint32_t height) {
                return Dxt::Decompress(source, out, width, height, variant, set);
            });
        add(Etc1Encoder({}),
            [=](const std::uint8_t* source, std::uint8_t* out, std::uint32_t width, std::uint32_t height) {
                return Etc1::Decompress(source, out, width, height, set);
            });
        for (const std::uint32_t bits : {2U, 4U}) {
            Pvrtc::EncodeOptions options;
            options.bitsPerPixel = bits;
            add(PvrtcEncoder(options), [=](const std::uint8_t* source, std::uint8_t* out, std::uint32_t width,
                                           std::uint32_t height) {
                return Pvrtc::PvrtcDecode(source, out, width, height, bits, set);
            });
        }
    }
    return coders;
}

}  // namespace PluginTest
