#include "bench/Pictures.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>

#include "demo/catalogue/Catalogue.h"
#include "image/ImageFile.h"

namespace Bench {
namespace {
constexpr int kSmallestDemoSide = 128;
constexpr std::size_t kEveryNthDemoPicture = 4;

PixelPicture FromBitmap(std::string name, const CBitmap& bitmap)
{
    PixelPicture picture;
    picture.name = std::move(name);
    picture.size = {bitmap.Width(), bitmap.Height()};
    picture.pixels.assign(bitmap.Pixels().begin(), bitmap.Pixels().end());
    for (std::size_t i = 0; i < picture.pixels.size(); i += 4) {
        std::swap(picture.pixels[i], picture.pixels[i + 2]);
        picture.hasAlpha = picture.hasAlpha || picture.pixels[i + 3] != 255;
    }
    return picture;
}
}  // namespace

std::vector<PixelPicture> LoadPictures(const std::filesystem::path& folder)
{
    std::vector<std::filesystem::path> files;
    for (const auto& item : std::filesystem::directory_iterator(folder))
        if (item.path().extension() == ".png")
            files.push_back(item.path());
    std::sort(files.begin(), files.end());
    if (files.empty())
        throw std::runtime_error("no PNG files in " + folder.string());
    std::vector<PixelPicture> pictures;
    for (const auto& file : files) {
        const auto bitmap = LoadImageFile(file);
        if (!bitmap)
            throw std::runtime_error("cannot read " + file.string());
        pictures.push_back(FromBitmap(file.stem().string(), *bitmap));
    }
    return pictures;
}

std::vector<PixelPicture> DemoPictures()
{
    std::vector<PixelPicture> pictures;
    std::size_t seen = 0;
    for (const Demo::Picture& picture : Demo::AllPictures()) {
        if (picture.category == "radar" || seen++ % kEveryNthDemoPicture != 0)
            continue;
        const Demo::CCanvas canvas = picture.draw();
        if (std::min(canvas.Width(), canvas.Height()) >= kSmallestDemoSide)
            pictures.push_back(FromBitmap(picture.name, canvas.ToBitmap()));
    }
    return pictures;
}

double Psnr(const std::vector<std::uint8_t>& original, const std::vector<std::uint8_t>& decoded,
            Channels channels)
{
    double sum = 0;
    double samples = 0;
    for (std::size_t i = 0; i < original.size(); ++i) {
        const bool isAlpha = i % 4 == 3;
        if (isAlpha && channels == Channels::Rgb)
            continue;
        if (!isAlpha && channels == Channels::Visible && original[i | 3U] == 0)
            continue;
        const double difference = double{1} * original[i] - decoded[i];
        sum += difference * difference;
        ++samples;
    }
    return sum <= 0 ? 99 : 10 * std::log10(255.0 * 255.0 * samples / sum);
}

}  // namespace Bench
