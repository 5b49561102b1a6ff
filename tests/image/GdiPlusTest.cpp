#include <gtest/gtest.h>
#include <string>

#include "image/GdiPlus_Win32.h"
#include "image/ImageFile.h"

TEST(GetEncoderClsid, FindsTheEncodersThatGdiPlusHas)
{
    CLSID clsid{};
    EXPECT_GE(GetEncoderClsid(L"png", &clsid), 0);
    // The class of the PNG encoder of every Windows.
    const CLSID png = {0x557CF406, 0x1A04, 0x11D3, {0x9A, 0x73, 0x00, 0x00, 0xF8, 0x1E, 0xF3, 0x2E}};
    EXPECT_TRUE(IsEqualCLSID(clsid, png));
    EXPECT_GE(GetEncoderClsid(L"bmp", &clsid), 0);
    EXPECT_GE(GetEncoderClsid(L"gif", &clsid), 0);
    EXPECT_GE(GetEncoderClsid(L"jpeg", &clsid), 0);
    EXPECT_GE(GetEncoderClsid(L"tiff", &clsid), 0);
}

TEST(GetEncoderClsid, MapsTheConstantsButNotTheirTexts)
{
    CLSID clsid{};
    CLSID other{};
    EXPECT_EQ(GetEncoderClsid(kJpgExtension, &clsid), GetEncoderClsid(L"jpeg", &other));
    EXPECT_TRUE(IsEqualCLSID(clsid, other));
    EXPECT_EQ(GetEncoderClsid(kTifExtension, &clsid), GetEncoderClsid(L"tiff", &other));
    EXPECT_TRUE(IsEqualCLSID(clsid, other));
    const std::wstring typed = L"jpg";
    EXPECT_EQ(GetEncoderClsid(typed.c_str(), &clsid), -1);
    EXPECT_EQ(GetEncoderClsid(L"tif", &clsid), -1);
}

TEST(GetEncoderClsid, IsCaseSensitiveAndKnowsNothingElse)
{
    CLSID clsid{};
    EXPECT_EQ(GetEncoderClsid(L"PNG", &clsid), -1);
    EXPECT_EQ(GetEncoderClsid(L"tga", &clsid), -1);
    EXPECT_EQ(GetEncoderClsid(L"", &clsid), -1);
}
