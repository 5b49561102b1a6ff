#include "tools/FileKind.h"

#include <gtest/gtest.h>

TEST(FileKind, GoesByTheExtensionInEitherCase)
{
    EXPECT_EQ(FileKindOf("wall.png"), FileKind::Picture);
    EXPECT_EQ(FileKindOf("WALL.JPEG"), FileKind::Picture);
    EXPECT_EQ(FileKindOf("wall.tiff"), FileKind::Picture);
    EXPECT_EQ(FileKindOf("mobile.txt"), FileKind::Database);
    EXPECT_EQ(FileKindOf("mobile.dxt.TOC"), FileKind::Database);
    EXPECT_EQ(FileKindOf("mobile.dxt.dat"), FileKind::Database);
    EXPECT_EQ(FileKindOf("generic.txd"), FileKind::Dictionary);
    EXPECT_EQ(FileKindOf("tree.DFF"), FileKind::Model);
    EXPECT_EQ(FileKindOf("gta3.img"), FileKind::Archive);
}

TEST(FileKind, KnowsNothingOfOtherFiles)
{
    EXPECT_EQ(FileKindOf("mobile.dxt.tmb"), FileKind::Other) << "thumbnails do not name a list";
    EXPECT_EQ(FileKindOf("png"), FileKind::Other);
    EXPECT_EQ(FileKindOf(""), FileKind::Other);
    EXPECT_EQ(FileKindOf("song.mp3"), FileKind::Other);
}
