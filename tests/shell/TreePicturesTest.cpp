#include "app/TreePictures.h"

#include "tests/shell/MainWindowFixture.h"

namespace {

class CTreePicturesTest : public CMainWindowTest {
protected:
    int PictureOf(const std::wstring& text) const
    {
        TVITEMW item{};
        item.mask = TVIF_IMAGE | TVIF_HANDLE;
        item.hItem = ItemOf(text);
        Tree().Send(TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item));
        return item.iImage;
    }
    HIMAGELIST List() const
    {
        return reinterpret_cast<HIMAGELIST>(Tree().Send(TVM_GETIMAGELIST, TVSIL_NORMAL));
    }
};

}  // namespace

TEST_F(CTreePicturesTest, StandBesideTexturesWhenTheSettingSaysSo)
{
    m_pSettings->WriteInt(L"global", L"show_thumbs", 1);
    Start();
    OpenDatabase(SmallDatabase());
    const int wood = PictureOf(L"wood");
    EXPECT_GT(wood, 0);
    EXPECT_EQ(PictureOf(L"wood"), wood) << "made once";
    EXPECT_GT(PictureOf(L"leaf"), 0);
    EXPECT_NE(PictureOf(L"leaf"), wood);
    // One blank picture and the two that were asked for.
    EXPECT_EQ(::ImageList_GetImageCount(List()), 3);
}

TEST_F(CTreePicturesTest, AreBlankWithoutAThumbnail)
{
    m_pSettings->WriteInt(L"global", L"show_thumbs", 1);
    Start({PromptAnswer::No});  // no to the repair of the missing thumbnails
    CDatabaseBuilder builder;
    builder.Category("cat=0 name=walls")
        .Texture("plain")
        .Raster("dxt", {.pixels = std::vector<std::byte>(4)});
    OpenDatabase(builder);
    EXPECT_EQ(PictureOf(L"plain"), 0);
}

TEST_F(CTreePicturesTest, AreOffByDefault)
{
    Start();
    OpenDatabase(SmallDatabase());
    EXPECT_EQ(List(), nullptr);
}
