#include "tests/cli/CommandRunner.h"

#include <gtest/gtest.h>

#include "base/Text.h"
#include "cli/Command.h"
#include "image/ImageFile.h"

CommandResult RunCommand(const std::vector<std::wstring>& words)
{
    std::vector<std::wstring> all = {L"--plugins", FromUtf8(MAVREL_PLUGIN_FOLDER), L"--settings",
                                     L"no-settings.ini"};
    all.insert(all.end(), words.begin(), words.end());
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    CommandResult result;
    result.code = RunCommandLine(all);
    result.out = testing::internal::GetCapturedStdout();
    result.err = testing::internal::GetCapturedStderr();
    return result;
}

CBitmap Gradient(std::uint32_t width, std::uint32_t height)
{
    CBitmap picture = CBitmap::Create(width, height).value();
    const auto pixels = picture.Pixels();
    for (std::uint32_t y = 0; y < height; ++y) {
        for (std::uint32_t x = 0; x < width; ++x) {
            const std::size_t at = (std::size_t{y} * width + x) * 4;
            pixels[at] = 64;
            pixels[at + 1] = static_cast<std::uint8_t>(y * 255 / height);
            pixels[at + 2] = static_cast<std::uint8_t>(x * 255 / width);
            pixels[at + 3] = static_cast<std::uint8_t>(255 - x * 128 / width);
        }
    }
    return picture;
}

void SavePicture(const std::filesystem::path& file, const CBitmap& picture)
{
    ASSERT_TRUE(SaveImageFile(file, picture, ImageFormat::Png));
}
