#include "bench/DxtWorkloads.h"

#include <algorithm>
#include <cstdio>
#include <functional>
#include <optional>

#include "bench/OpenEncoders.h"
#include "bench/Stopwatch.h"
#include "plugins/dxt/Dxt.h"

namespace Bench {
namespace {
using EncodeFn = std::function<void(const std::uint8_t*, std::uint8_t*, Size)>;

struct Encoder {
    std::string name;
    bool hasAlpha;
    EncodeFn encode;
    int runs;
    bool isUnit = false;
};

struct Figures {
    double pixelsPerSecond = 0;
    double meanPsnr = 0;
    double unweightedPsnr = 0;
    std::string psnrs;
};

EncodeFn OwnEncoder(Dxt::Variant variant, Plugin::Quality quality, unsigned threads)
{
    return [=](const std::uint8_t* pixels, std::uint8_t* level, Size size) {
        Dxt::Compress(pixels, level, size.width, size.height,
                      {.variant = variant, .quality = quality, .threads = threads});
    };
}

int RunsOf(Plugin::Quality quality)
{
    switch (quality) {
        case Plugin::Quality::Fast:
            return 60;
        case Plugin::Quality::Normal:
            return 20;
        case Plugin::Quality::High:
            return 6;
        case Plugin::Quality::Best:
            return 3;
    }
    return 1;
}

std::vector<Encoder> Encoders()
{
    std::vector<Encoder> encoders;
    for (const bool hasAlpha : {false, true}) {
        const std::string format = hasAlpha ? "dxt5-" : "dxt1-";
        const Dxt::Variant variant = hasAlpha ? Dxt::Variant::Dxt5 : Dxt::Variant::Dxt1;
        for (const OpenEncoder& open : OpenEncoders())
            encoders.push_back({format + open.name, hasAlpha, hasAlpha ? open.dxt5 : open.dxt1, open.runs,
                                open.isUnit && !hasAlpha});
        for (const Plugin::Quality quality :
             {Plugin::Quality::Fast, Plugin::Quality::Normal, Plugin::Quality::High, Plugin::Quality::Best})
            for (const unsigned threads : {1U, 2U})
                encoders.push_back({format + QualityText(quality) + (threads == 2 ? "-2threads" : ""),
                                    hasAlpha, OwnEncoder(variant, quality, threads), RunsOf(quality)});
    }
    return encoders;
}

double PlainError(const std::vector<std::uint8_t>& original, const std::vector<std::uint8_t>& decoded)
{
    double sum = 0;
    for (std::size_t i = 0; i < original.size(); ++i) {
        const double difference = double{1} * original[i] - decoded[i];
        sum += difference * difference;
    }
    return sum;
}

bool Suits(const Encoder& encoder, const PixelPicture& picture)
{
    return picture.hasAlpha == encoder.hasAlpha && picture.size.width % 4 == 0 &&
           picture.size.height % 4 == 0;
}

std::optional<Figures> Measure(const Encoder& encoder, const std::vector<PixelPicture>& pictures)
{
    const Dxt::Variant variant = encoder.hasAlpha ? Dxt::Variant::Dxt5 : Dxt::Variant::Dxt1;
    const Channels channels = encoder.hasAlpha ? Channels::Rgba : Channels::Rgb;
    Figures figures;
    double seconds = 0;
    double count = 0;
    int used = 0;
    for (const PixelPicture& picture : pictures) {
        if (!Suits(encoder, picture))
            continue;
        const double pixels = static_cast<double>(picture.pixels.size()) / 4;
        std::vector<std::uint8_t> level(picture.pixels.size() / 64 * Dxt::BlockBytes(variant));
        std::vector<std::uint8_t> decoded(picture.pixels.size());
        seconds += ShortestRun(encoder.runs, [&] {
            encoder.encode(picture.pixels.data(), level.data(), picture.size);
            KeepAlive(level.data());
        });
        Dxt::Decompress(level.data(), decoded.data(), picture.size.width, picture.size.height, variant);
        const double psnr = PsnrOf(SquaredError(picture.pixels, decoded, channels), pixels, channels);
        char text[16];
        std::snprintf(text, sizeof text, "%s%.2f", figures.psnrs.empty() ? "" : " ", psnr);
        figures.psnrs += text;
        figures.meanPsnr += psnr;
        figures.unweightedPsnr += PsnrOf(PlainError(picture.pixels, decoded), pixels, channels);
        count += pixels;
        ++used;
    }
    if (used == 0)
        return std::nullopt;
    figures.pixelsPerSecond = count / seconds;
    figures.meanPsnr /= used;
    figures.unweightedPsnr /= used;
    return figures;
}

void AddLines(const Encoder& encoder, const Figures& figures, double unit, CReport& report)
{
    char measured[64];
    std::snprintf(measured, sizeof measured, "%.2f Mpixel/s, %.2f dB", figures.pixelsPerSecond / 1e6,
                  figures.meanPsnr);
    char baseline[64] = "";
    if (unit > 0)
        std::snprintf(baseline, sizeof baseline, "%.2f Mpixel/s dxt1-stb", unit / 1e6);
    report.Add({.workload = encoder.name,
                .measured = measured,
                .baseline = baseline,
                .ratio = unit > 0 ? std::optional(figures.pixelsPerSecond / unit) : std::nullopt,
                .limit = {},
                .isCorrect = figures.meanPsnr > 15});
    char unweighted[64] = "";
    if (encoder.hasAlpha)
        std::snprintf(unweighted, sizeof unweighted, "%.2f dB unweighted", figures.unweightedPsnr);
    report.Add({.workload = "  dB by picture",
                .measured = figures.psnrs,
                .baseline = unweighted,
                .ratio = {},
                .limit = {}});
}
}  // namespace

void MeasureDxt(const std::vector<PixelPicture>& pictures, const std::string& only, CReport& report)
{
    const std::vector<Encoder> encoders = Encoders();
    double unit = 0;
    for (const Encoder& encoder : encoders)
        if (encoder.isUnit)
            if (const auto figures = Measure(encoder, pictures))
                unit = figures->pixelsPerSecond;
    for (const Encoder& encoder : encoders)
        if (encoder.name.compare(0, only.size(), only) == 0 || only == "dxt")
            if (const auto figures = Measure(encoder, pictures))
                AddLines(encoder, *figures, unit, report);
}

}  // namespace Bench
