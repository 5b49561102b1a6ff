#include "tests/e2e/Pictures.h"

#include "image/ImageFile.h"
#include "tests/e2e/driver/Wait.h"

namespace {

struct PictureFile {
    const char* name;
    PictureSize size;
    std::uint32_t seed;
};

constexpr PictureFile kPictures[] = {
    {"brick.png", {64, 64}, 1},     {"leaf.png", {32, 32}, 2},   {"wall.png", {128, 64}, 3},
    {"road.bmp", {64, 32}, 4},      {"sky.tif", {256, 128}, 5},  {"door.png", {16, 64}, 6},
    {"sign_a.png", {16, 16}, 7},    {"sign_b.png", {8, 8}, 8},   {"sign_c.png", {128, 128}, 9},
    {"glass.png", {32, 64}, 10},    {"lamp.png", {64, 128}, 11}, {"water.png", {256, 256}, 12},
    {"brick_twin.png", {64, 64}, 1}};

}  // namespace

std::filesystem::path SavePicture(const std::filesystem::path& file, PictureSize size, std::uint32_t seed)
{
    auto bitmap = CBitmap::Create(size.width, size.height).value();
    auto pixels = bitmap.Pixels();
    for (std::uint32_t y = 0; y < size.height; ++y)
        for (std::uint32_t x = 0; x < size.width; ++x) {
            const std::size_t at = (std::size_t{y} * size.width + x) * 4;
            pixels[at] = static_cast<std::uint8_t>(x * 7 + seed * 31);
            pixels[at + 1] = static_cast<std::uint8_t>(y * 5 + seed * 17);
            pixels[at + 2] = static_cast<std::uint8_t>((x ^ y) * 3 + seed * 53);
            pixels[at + 3] = static_cast<std::uint8_t>((x + y) * 9 + seed * 29);
        }
    const auto format = ImageFormatFromExtension(file.extension().wstring().substr(1));
    if (!format || !SaveImageFile(file, bitmap, *format))
        throw CDriveError("a picture cannot be written");
    return file;
}

CPictureFolder::CPictureFolder()
{
    for (const PictureFile& picture : kPictures)
        SavePicture(Path() / picture.name, picture.size, picture.seed);
}

std::vector<std::filesystem::path> CPictureFolder::Files(const std::vector<std::string>& names) const
{
    std::vector<std::filesystem::path> files;
    for (const std::string& name : names)
        files.push_back(Path() / name);
    return files;
}
