#include "bench/EncodeWorkloads.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <functional>
#include <stdexcept>

#include "bench/Codecs.h"
#include "bench/OpenEncoders.h"
#include "bench/Stopwatch.h"

namespace Bench {
namespace {
// Below this even the coarsest format would have lost the picture.
constexpr double kWorstPsnr = 12;
constexpr std::size_t kPsnrsInARow = 9;

struct Encoder {
    std::string name;
    int runs = 1;
    bool isUnit = false;
    bool hasThreads = false;
    /// R G B A pixels to the encoded level, on so many threads.
    std::function<void(const std::uint8_t*, std::uint8_t*, Size, unsigned)> encode;
};

struct Figures {
    double pixelsPerSecond = 0;
    double pixelsPerSecondOfTwo = 0;  ///< with two threads; 0 when it has no more than one
    std::vector<double> psnrs;        ///< by picture
    double visiblePsnr = 0;           ///< mean, without the colours that nobody sees

    double MeanPsnr() const;
    double WorstPsnr() const { return *std::min_element(psnrs.begin(), psnrs.end()); }
};

double Figures::MeanPsnr() const
{
    double sum = 0;
    for (const double psnr : psnrs)
        sum += psnr;
    return sum / static_cast<double>(psnrs.size());
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

std::vector<Encoder> EncodersOf(const Codec& codec)
{
    std::vector<Encoder> encoders;
    for (const OpenEncoder& open : OpenEncoders())
        if (const auto& encode = codec.name == "DXT1" ? open.dxt1 : open.dxt5;
            codec.name == "DXT1" || codec.name == "DXT5")
            encoders.push_back({.name = open.name,
                                .runs = open.runs,
                                .isUnit = open.isUnit && codec.name == "DXT1",
                                .encode = [encode](const std::uint8_t* pixels, std::uint8_t* level, Size size,
                                                   unsigned) { encode(pixels, level, size); }});
    for (const Plugin::Quality quality : kLevels)
        encoders.push_back(
            {.name = QualityText(quality),
             .runs = RunsOf(quality),
             .hasThreads = true,
             .encode = [encode = codec.encode, quality](const std::uint8_t* pixels, std::uint8_t* level,
                                                        Size size, unsigned threads) {
                 encode(pixels, level, size, quality, threads);
             }});
    return encoders;
}

bool IsPowerOfTwo(std::uint32_t side)
{
    return side != 0 && (side & (side - 1)) == 0;
}

bool Suits(const Codec& codec, const PixelPicture& picture)
{
    if (codec.hasAlpha != picture.hasAlpha || picture.size.width % 4 != 0 || picture.size.height % 4 != 0)
        return false;
    return !codec.onlyPowersOfTwo || (IsPowerOfTwo(picture.size.width) && IsPowerOfTwo(picture.size.height));
}

std::vector<PixelPicture> SuitingPictures(const Codec& codec, const std::vector<PixelPicture>& pictures)
{
    std::vector<PixelPicture> suiting;
    for (const PixelPicture& picture : pictures)
        if (Suits(codec, picture))
            suiting.push_back(picture);
    return suiting;
}

Figures Measure(const Codec& codec, const Encoder& encoder, const std::vector<PixelPicture>& pictures)
{
    Figures figures;
    double seconds = 0;
    double secondsOfTwo = 0;
    double count = 0;
    for (const PixelPicture& picture : pictures) {
        std::vector<std::uint8_t> level(codec.levelBytes(picture.size));
        std::vector<std::uint8_t> decoded(picture.pixels.size());
        const auto shortest = [&](unsigned threads) {
            return ShortestRun(encoder.runs, [&] {
                encoder.encode(picture.pixels.data(), level.data(), picture.size, threads);
                KeepAlive(level.data());
            });
        };
        if (encoder.hasThreads)
            secondsOfTwo += shortest(2);
        seconds += shortest(1);
        codec.decode(level.data(), decoded.data(), picture.size);
        const Channels channels = codec.hasAlpha ? Channels::Rgba : Channels::Rgb;
        figures.psnrs.push_back(Psnr(picture.pixels, decoded, channels));
        figures.visiblePsnr += Psnr(picture.pixels, decoded, Channels::Visible);
        count += static_cast<double>(picture.pixels.size()) / 4;
    }
    figures.pixelsPerSecond = count / seconds;
    figures.pixelsPerSecondOfTwo = encoder.hasThreads ? count / secondsOfTwo : 0;
    figures.visiblePsnr /= static_cast<double>(pictures.size());
    return figures;
}

template <typename... Values>
std::string Formatted(const char* format, Values... values)
{
    char text[80];
    std::snprintf(text, sizeof text, format, values...);
    return text;
}

std::string PsnrsText(const Figures& figures)
{
    std::string text;
    for (const double psnr : figures.psnrs)
        text += Formatted("%s%.2f", text.empty() ? "" : " ", psnr);
    return text;
}

void AddLines(const Codec& codec, const Encoder& encoder, const Figures& figures, double unit,
              CReport& report)
{
    const bool hasUnit = unit > 0;
    report.Add(
        {.workload = "encode-" + codec.name + "-" + encoder.name,
         .measured = Formatted("%.2f Mpixel/s, %.2f dB", figures.pixelsPerSecond / 1e6, figures.MeanPsnr()),
         .baseline = hasUnit ? Formatted("%.2f Mpixel/s DXT1-stb", unit / 1e6) : "",
         .ratio = hasUnit ? std::optional(figures.pixelsPerSecond / unit) : std::nullopt,
         .limit = {},
         .isCorrect = figures.WorstPsnr() > kWorstPsnr});
    if (encoder.hasThreads)
        report.Add({.workload = "  two threads",
                    .measured = Formatted("%.2f Mpixel/s", figures.pixelsPerSecondOfTwo / 1e6),
                    .baseline = "one thread",
                    .ratio = figures.pixelsPerSecondOfTwo / figures.pixelsPerSecond,
                    .limit = {}});
    report.Add({.workload = "  dB by picture",
                .measured = figures.psnrs.size() <= kPsnrsInARow
                                ? PsnrsText(figures)
                                : Formatted("%.2f at worst", figures.WorstPsnr()),
                .baseline = codec.hasAlpha ? Formatted("%.2f dB visible", figures.visiblePsnr) : "",
                .ratio = {},
                .limit = {}});
}

/// The rows for the plots.
class CTable {
public:
    explicit CTable(const std::optional<std::filesystem::path>& file)
    {
        if (!file)
            return;
        m_oStream.open(*file);
        m_oStream << "format,encoder,units,units of two threads,mean dB,worst dB,visible dB,dB by picture\n";
        if (!m_oStream)
            throw std::runtime_error("cannot write " + file->string());
    }

    void Add(const Codec& codec, const Encoder& encoder, const Figures& figures, double unit)
    {
        if (m_oStream.is_open() && unit > 0)
            m_oStream << codec.name << ',' << encoder.name
                      << Formatted(",%.4f,%.4f,%.3f,%.3f,%.3f,", figures.pixelsPerSecond / unit,
                                   figures.pixelsPerSecondOfTwo / unit, figures.MeanPsnr(),
                                   figures.WorstPsnr(), figures.visiblePsnr)
                      << PsnrsText(figures) << '\n';
    }

private:
    std::ofstream m_oStream;
};

// What speeds are compared with, in pixels a second; 0 when there is no such encoder or no opaque picture.
double MeasureUnit(const std::vector<Codec>& codecs, const std::vector<PixelPicture>& pictures)
{
    for (const Codec& codec : codecs) {
        const auto suiting = SuitingPictures(codec, pictures);
        for (const Encoder& encoder : EncodersOf(codec))
            if (encoder.isUnit && !suiting.empty())
                return Measure(codec, encoder, suiting).pixelsPerSecond;
    }
    return 0;
}
}  // namespace

void MeasureEncoding(const std::vector<PixelPicture>& pictures, const std::string& only,
                     const std::optional<std::filesystem::path>& table, CReport& report)
{
    const std::vector<Codec> codecs = BlockCodecs();
    const double unit = MeasureUnit(codecs, pictures);
    CTable rows(table);
    for (const Codec& codec : codecs) {
        const auto suiting = SuitingPictures(codec, pictures);
        for (const Encoder& encoder : EncodersOf(codec)) {
            const std::string workload = "encode-" + codec.name + "-" + encoder.name;
            if (suiting.empty() || workload.compare(0, only.size(), only) != 0)
                continue;
            const Figures figures = Measure(codec, encoder, suiting);
            AddLines(codec, encoder, figures, unit, report);
            rows.Add(codec, encoder, figures, unit);
        }
    }
}

}  // namespace Bench
