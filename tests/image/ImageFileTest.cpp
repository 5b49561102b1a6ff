#include "image/ImageFile.h"

#include <gtest/gtest.h>
#include <string>

#include "base/File.h"
#include "base/Text.h"
#include "tests/image/Pictures.h"
#include "tests/image/SampleFiles.h"
#include "tests/support/TemporaryFolder.h"

namespace {

constexpr ImageFormat kFormats[] = {ImageFormat::Png, ImageFormat::Bmp, ImageFormat::Gif, ImageFormat::Jpeg,
                                    ImageFormat::Tiff};

/// 32 soft colours, which every format keeps well.
CBitmap MakeSteps()
{
    std::vector<std::uint32_t> pixels;
    for (std::uint32_t i = 0; i < 1024; ++i)
        pixels.push_back(0xFF000000 | i % 32 * 0x050403);
    return MakePicture(32, pixels);
}

}  // namespace

TEST(ImageFile, MapsItsOwnConstantsByIdentityOnly)
{
    EXPECT_STREQ(kJpgExtension, L"jpg");
    EXPECT_STREQ(kTifExtension, L"tif");
    EXPECT_EQ(GetEncoderMimeType(kJpgExtension), L"image/jpeg");
    EXPECT_EQ(GetEncoderMimeType(kTifExtension), L"image/tiff");
    const std::wstring typed = L"jpg";
    EXPECT_EQ(GetEncoderMimeType(typed.c_str()), L"image/jpg");
    EXPECT_EQ(GetEncoderMimeType(L"tif"), L"image/tif");
    EXPECT_EQ(GetEncoderMimeType(L"png"), L"image/png");
    EXPECT_EQ(GetEncoderMimeType(L"PNG"), L"image/PNG");
}

TEST(ImageFile, FindsTheFormatOfATypedExtension)
{
    EXPECT_EQ(ImageFormatFromExtension(L"png"), ImageFormat::Png);
    EXPECT_EQ(ImageFormatFromExtension(L"BMP"), ImageFormat::Bmp);
    EXPECT_EQ(ImageFormatFromExtension(L"Gif"), ImageFormat::Gif);
    EXPECT_EQ(ImageFormatFromExtension(L"jpg"), ImageFormat::Jpeg);
    EXPECT_EQ(ImageFormatFromExtension(L"JPEG"), ImageFormat::Jpeg);
    EXPECT_EQ(ImageFormatFromExtension(L"tif"), ImageFormat::Tiff);
    EXPECT_EQ(ImageFormatFromExtension(L"TIFF"), ImageFormat::Tiff);
    EXPECT_FALSE(ImageFormatFromExtension(L"tga"));
    EXPECT_FALSE(ImageFormatFromExtension(L""));
    EXPECT_FALSE(ImageFormatFromExtension(L".png"));
}

TEST(ImageFile, SavesAndLoadsEveryFormatWhateverTheNameSays)
{
    const CTemporaryFolder folder;
    const CBitmap picture = MakeSteps();
    for (const ImageFormat format : kFormats) {
        const auto file = folder / "picture.dat";
        ASSERT_TRUE(SaveImageFile(file, picture, format));
        const auto again = LoadImageFile(file);
        ASSERT_TRUE(again) << static_cast<int>(format);
        EXPECT_LE(LargestDifference(*again, picture), format == ImageFormat::Jpeg ? 40 : 0)
            << static_cast<int>(format);
    }
}

TEST(ImageFile, LeavesNoFileLocked)
{
    const CTemporaryFolder folder;
    const auto file = folder / "picture.png";
    const CBitmap picture = MakeSteps();
    ASSERT_TRUE(SaveImageFile(file, picture, ImageFormat::Png));
    const auto held = LoadImageFile(file);
    ASSERT_TRUE(held);
    EXPECT_TRUE(SaveImageFile(file, *held, ImageFormat::Bmp));
    EXPECT_TRUE(std::filesystem::remove(file));
}

TEST(ImageFile, SavesUnderCyrillicNames)
{
    const CTemporaryFolder folder;
    const auto file = folder / ToPath(L"\u0434\u043E\u0440\u043E\u0433\u0430.png");
    ASSERT_TRUE(SaveImageFile(file, MakeSteps(), ImageFormat::Png));
    EXPECT_TRUE(LoadImageFile(file));
}

TEST(ImageFile, SavesUnderPathsOfMoreThanTwoHundredAndSixtyCharacters)
{
    const CTemporaryFolder folder;
    // The one form in which the standard library makes such folders on Windows, too.
#ifdef _WIN32
    const std::filesystem::path root(L"\\\\?\\" + folder.Path().wstring());
#else
    const std::filesystem::path root = folder.Path();
#endif
    const std::string part(100, 'd');
    ASSERT_TRUE(std::filesystem::create_directory(root / part));
    ASSERT_TRUE(std::filesystem::create_directory(root / part / part));
    const auto file = folder.Path() / part / part / (std::string(100, 'f') + ".png");
    ASSERT_GT(file.native().size(), 300U);
    ASSERT_TRUE(SaveImageFile(file, MakeSteps(), ImageFormat::Png));
    EXPECT_TRUE(LoadImageFile(file));
    std::filesystem::remove_all(root / part);
}

// Errors.

TEST(ImageFile, KeepsTheOldFileWhenSavingFails)
{
    const CTemporaryFolder folder;
    const auto file = folder / "picture.png";
    ASSERT_TRUE(SaveImageFile(file, MakeSteps(), ImageFormat::Png));
    EXPECT_FALSE(SaveImageFile(file, CBitmap(), ImageFormat::Png));
    EXPECT_TRUE(LoadImageFile(file));
    EXPECT_FALSE(SaveImageFile(folder / "missing" / "picture.png", MakeSteps(), ImageFormat::Png));
}

TEST(ImageFile, WritesNothingForAnEmptyBitmap)
{
    for (const ImageFormat format : kFormats)
        EXPECT_FALSE(EncodeImage(CBitmap(), format));
}

TEST(ImageFile, LoadsNothingFromWhatIsNoPicture)
{
    const CTemporaryFolder folder;
    EXPECT_FALSE(LoadImageFile(folder / "missing.png"));
    EXPECT_FALSE(LoadImageFile(folder.Path()));
    EXPECT_FALSE(DecodeImage({}));
    EXPECT_FALSE(DecodeImage(FromHex("00010203")));
    EXPECT_FALSE(DecodeImage(FromHex("474946383861")));
}

// Every byte of a small file is changed in several ways. What comes out does not matter, only that nothing
// breaks.
TEST(ImageFile, SurvivesEverySingleChangedByte)
{
    const CBitmap picture = MakeColourfulPicture(3, 2);
    for (const ImageFormat format : kFormats) {
        const auto whole = EncodeImage(picture, format).value();
        for (std::size_t i = 0; i < whole.size(); ++i)
            for (const unsigned change : {0x01U, 0x80U, 0xFFU}) {
                std::vector<std::byte> damaged = whole;
                damaged[i] ^= static_cast<std::byte>(change);
                const auto bitmap = DecodeImage(damaged);
                if (bitmap) {
                    EXPECT_LE(bitmap->Width(), 16384U);
                }
            }
    }
}

TEST(ImageFile, SurvivesEveryTruncation)
{
    const CBitmap picture = MakeColourfulPicture(3, 2);
    for (const ImageFormat format : kFormats) {
        const auto whole = EncodeImage(picture, format).value();
        for (std::size_t length = 0; length + 1 < whole.size(); ++length) {
            const std::vector<std::byte> cut(whole.begin(),
                                             whole.begin() + static_cast<std::ptrdiff_t>(length));
            const auto bitmap = DecodeImage(cut);
            if (format != ImageFormat::Tiff) {
                EXPECT_FALSE(bitmap) << static_cast<int>(format) << ", first " << length << " bytes";
            }
        }
    }
}
