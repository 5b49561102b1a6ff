#include "rw/Stream.h"

#include "tests/rw/StreamFixture.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using RW::CStream;
using RwFile::Bytes;
using RwFile::Joined;
using RwFile::Section;

constexpr std::uint32_t kOtherVersion = 0x0C02FFFF;

/// An extension holding a leaf of 64 bytes and one of 65.
Bytes TwoLeaves()
{
    return Section(RW::ExtensionId,
                   Joined({Section(0x110, RwFile::Counting(64)), Section(0x111, RwFile::Counting(65))}));
}

/// A chain of `levels` extensions, the innermost empty.
Bytes Nested(std::size_t levels)
{
    Bytes body;
    for (std::size_t i = 0; i < levels; ++i)
        body = Section(RW::ExtensionId, body);
    return body;
}

class Stream : public StreamFixture {
protected:
    std::unique_ptr<CStream> Open(const Bytes& bytes) { return Opened<CStream>(bytes); }
    std::wstring ErrorOf(const Bytes& bytes, std::uint32_t rootId = 0, std::uint32_t flags = 0)
    {
        return OpeningErrorOf<CStream>(bytes, rootId, flags);
    }
};

}  // namespace

TEST_F(Stream, ReadsATreeOfSections)
{
    const auto stream = Open(TwoLeaves());
    ASSERT_NE(stream->Root(), nullptr);
    EXPECT_EQ(stream->Root()->Id(), 0x03U);
    EXPECT_EQ(stream->Root()->Size(), 153U);
    EXPECT_EQ(stream->Root()->Version(), 0x1803FFFFU);
    EXPECT_EQ(stream->Root()->DataOffset(), 12U);
    ASSERT_EQ(stream->Root()->ChildCount(), 2U);
    EXPECT_EQ(stream->GetNode({0})->DataOffset(), 24U);
    EXPECT_EQ(stream->GetNode({1})->Id(), 0x111U);
    EXPECT_EQ(stream->GetNode({1})->DataOffset(), 100U);
    EXPECT_EQ(TakeBoxes(), Lines());
}

TEST_F(Stream, PreloadsALeafOf64BytesAndNotOneOf65)
{
    const auto stream = Open(TwoLeaves());
    EXPECT_TRUE(stream->GetNode({0})->IsLoaded());
    EXPECT_FALSE(stream->GetNode({1})->IsLoaded());
    const auto body = stream->GetNode({1})->GetData(stream->File());
    EXPECT_EQ(Bytes(body.begin(), body.end()), RwFile::Counting(65));
}

TEST_F(Stream, PreloadsUpToTheLimitItIsGiven)
{
    m_oFiles.Put(kFile, TwoLeaves());
    CStream stream(m_oFailures, m_oFiles);
    stream.SetPreloadLimit(65);
    ASSERT_TRUE(stream.Open(kFile, 0, 0, 0));
    EXPECT_TRUE(stream.GetNode({1})->IsLoaded());
}

TEST_F(Stream, AContainerOfSizeZeroHasNoChildren)
{
    const auto stream = Open(Section(RW::ExtensionId, Joined({RwFile::EmptyExtension(), Section(0x16, {})})));
    ASSERT_EQ(stream->Root()->ChildCount(), 2U);
    EXPECT_EQ(stream->GetNode({0})->ChildCount(), 0U);
    EXPECT_EQ(stream->GetNode({1})->ChildCount(), 0U);
}

TEST_F(Stream, KnowsItsContainersByTheirIdentifiers)
{
    CStream stream(m_oFailures, m_oFiles);
    const auto isContainer = [&](std::uint32_t id, std::uint32_t size) {
        RW::CNode node(m_oFailures);
        node.SetHeader({.id = id, .size = size});
        return stream.IsContainer(node, nullptr, 0);
    };
    std::vector<std::uint32_t> found;
    for (std::uint32_t id = 0; id < 0x600; ++id) {
        EXPECT_FALSE(isContainer(id, 0));
        if (isContainer(id, 1))
            found.push_back(id);
    }
    EXPECT_EQ(found, (std::vector<std::uint32_t>{0x03, 0x06, 0x07, 0x08, 0x09, 0x0A, 0x0B, 0x0E, 0x0F, 0x10,
                                                 0x12, 0x14, 0x15, 0x16, 0x1A}));
    EXPECT_FALSE(isContainer(0x253F2F8, 1));
}

TEST_F(Stream, TheFourthChildOfATextureNativeIsAContainerThoughItIsAStruct)
{
    const Bytes four = Joined({RwFile::Struct({}), RwFile::Struct({}), RwFile::Struct(RwFile::Struct({})),
                               RwFile::Struct(RwFile::Struct({}))});
    const auto stream = Open(Section(RW::TextureNativeId, four));
    EXPECT_EQ(stream->GetNode({2})->ChildCount(), 0U);
    EXPECT_EQ(stream->GetNode({3})->ChildCount(), 1U);
}

TEST_F(Stream, AcceptsEveryRootForZero)
{
    EXPECT_EQ(ErrorOf(TwoLeaves(), 0), L"none");
    EXPECT_EQ(ErrorOf(TwoLeaves(), RW::ExtensionId), L"none");
}

TEST_F(Stream, RefusesAnotherRootUnlessToldOtherwise)
{
    EXPECT_EQ(ErrorOf(TwoLeaves(), RW::ClumpId), L"Wrong root section ID.");
    EXPECT_EQ(ErrorOf(TwoLeaves(), RW::ClumpId, 0x40), L"none");
}

TEST_F(Stream, AQuietStreamReturnsFalseAndRemembers)
{
    m_oFiles.Put(kFile, TwoLeaves());
    CStream stream(m_oFailures, m_oFiles);
    stream.SetQuiet(true);
    EXPECT_FALSE(stream.Open(kFile, 0, RW::ClumpId, 0));
    EXPECT_EQ(stream.LastError(), L"Wrong root section ID.");
    EXPECT_FALSE(stream.Open("nothing", 0, 0, 0));
    EXPECT_EQ(stream.LastError().substr(0, 40), L"Cant open RW stream file. Error code: 0x");
}

TEST_F(Stream, TellsTheErrorCodeOfAFileThatIsNotThere)
{
    const CTemporaryFolder folder;
    CStream stream(m_oFailures);
    EXPECT_EQ(SoftErrorOf([&] { stream.Open(folder / "nothing.txd", 0, 0, 0); }),
              L"Cant open RW stream file. Error code: 0x2.");
}

TEST_F(Stream, RefusesARootLongerThanTheFileWhenAsked)
{
    Bytes cut = TwoLeaves();
    EXPECT_EQ(ErrorOf(cut, 0, 0x08), L"none");
    cut.pop_back();
    EXPECT_EQ(ErrorOf(cut, 0, 0x08), L"It's not a valid RW file");
    // Without the check it is read as far as it goes; the leaf is missed when it is asked for.
    EXPECT_EQ(ErrorOf(cut, 0, 0), L"none");
}

TEST_F(Stream, MeasuresTheLengthCheckFromTheStartOfTheFile)
{
    // The section does not fit behind its offset, but it is no longer than the file.
    m_oFiles.Put(kFile, Joined({RwFile::Filled(100, 0), RwFile::SectionClaiming(0x99, 100, {})}));
    const auto file = m_oFiles.Open(kFile, OpenMode::Read);
    CStream stream(m_oFailures, m_oFiles);
    EXPECT_TRUE(stream.Attach(*file, 100, 0, RW::kCheckLength));
    m_oFiles.Put(kFile, Joined({RwFile::Filled(100, 0), RwFile::SectionClaiming(0x99, 101, {})}));
    const auto shorter = m_oFiles.Open(kFile, OpenMode::Read);
    EXPECT_EQ(SoftErrorOf([&] { stream.Attach(*shorter, 100, 0, RW::kCheckLength); }),
              L"It's not a valid RW file");
}

TEST_F(Stream, AttachesInsideALargerFileAndLeavesItOpen)
{
    m_oFiles.Put(kFile, Joined({RwFile::Filled(2048, 0xEE), TwoLeaves()}));
    const auto file = m_oFiles.Open(kFile, OpenMode::Read);
    {
        CStream stream(m_oFailures, m_oFiles);
        ASSERT_TRUE(stream.Attach(*file, 2048, RW::ExtensionId, 0));
        EXPECT_EQ(stream.BaseOffset(), 2048U);
        EXPECT_EQ(stream.GetNode({1})->DataOffset(), 2148U);
        EXPECT_EQ(stream.GetNode({1})->GetData(stream.File())[64], std::byte{64});
    }
    EXPECT_EQ(file->Size(), 2048U + 165U);
}

TEST_F(Stream, HoldsItsFileAlone)
{
    const CTemporaryFolder folder;
    WriteWholeFile(DiskFileSystem(), folder / "a.txd", TwoLeaves());
    CStream first(m_oFailures);
    ASSERT_TRUE(first.Open(folder / "a.txd", 0, 0, 0));
    CStream second(m_oFailures);
    EXPECT_EQ(SoftErrorOf([&] { second.Open(folder / "a.txd", 0, 0, 0); }).substr(0, 25),
              L"Cant open RW stream file.");
}

TEST_F(Stream, OpensAgainAfterClosingWhatItHad)
{
    const CTemporaryFolder folder;
    WriteWholeFile(DiskFileSystem(), folder / "a.txd", TwoLeaves());
    CStream stream(m_oFailures);
    ASSERT_TRUE(stream.Open(folder / "a.txd", 0, 0, 0));
    ASSERT_TRUE(stream.Open(folder / "a.txd", 0, 0, 0));
    EXPECT_EQ(stream.Root()->ChildCount(), 2U);
}

TEST_F(Stream, ReadsAFileThatMayNotBeWritten)
{
    const CTemporaryFolder folder;
    WriteWholeFile(DiskFileSystem(), folder / "a.txd", TwoLeaves());
    std::filesystem::permissions(folder / "a.txd", std::filesystem::perms::owner_read);
    {
        CStream stream(m_oFailures);
        EXPECT_TRUE(stream.Open(folder / "a.txd", 0, 0, 0));
    }
    std::filesystem::permissions(folder / "a.txd", std::filesystem::perms::owner_all);
}

TEST_F(Stream, StopsAtAChildOfAnotherVersion)
{
    const Bytes mixed =
        Section(RW::ExtensionId, Joined({Section(0x110, {}), Section(0x111, {}, kOtherVersion)}));
    EXPECT_EQ(ErrorOf(mixed), L"Stream reading error.");
    m_oFiles.Put(kFile, mixed);
    CStream stream(m_oFailures, m_oFiles);
    try {
        stream.Open(kFile, 0, 0, 0);
        FAIL();
    } catch (const RW::CException& error) {
        EXPECT_EQ(error.Object(), &stream);
        ASSERT_NE(error.Node(), nullptr);
        EXPECT_EQ(error.Node()->Id(), 0x111U);
        EXPECT_STREQ(error.what(), "Stream reading error.");
    }
    EXPECT_EQ(stream.Root(), nullptr);
    EXPECT_EQ(stream.LastError(), L"Stream reading error.");
}

TEST_F(Stream, AQuietStreamKeepsTheChildrenBeforeTheDamage)
{
    m_oFiles.Put(kFile,
                 Section(RW::ExtensionId, Joined({Section(0x110, {}), Section(0x111, {}, kOtherVersion)})));
    CStream stream(m_oFailures, m_oFiles);
    stream.SetQuiet(true);
    EXPECT_TRUE(stream.Open(kFile, 0, 0, 0));
    EXPECT_EQ(stream.Root()->ChildCount(), 1U);
    EXPECT_EQ(stream.LastError(), L"Stream reading error.");
    m_oFiles.Put(kFile, RwFile::Filled(11, 0));
    EXPECT_FALSE(stream.Open(kFile, 0, 0, 0));
}

TEST_F(Stream, AFailedReadClearsThePlaceOfTheSectionItWasToReplace)
{
    m_oFiles.Put(
        kFile, Section(RW::ExtensionId, Joined({Section(0x110, {}), Section(0x03, RwFile::Filled(12, 7))})));
    CStream stream(m_oFailures, m_oFiles);
    stream.SetQuiet(true);
    ASSERT_TRUE(stream.Open(kFile, 0, 0, 0));
    ASSERT_EQ(stream.Root()->ChildCount(), 2U);
    stream.SetQuiet(false);
    EXPECT_EQ(SoftErrorOf([&] { stream.ReadNode(24, stream.Root(), 1); }), L"Stream reading error.");
    EXPECT_EQ(stream.Root()->FindChild(1), nullptr);
    EXPECT_NE(stream.Root()->FindChild(0), nullptr);
    EXPECT_FALSE(stream.HasNode({1}));
}

TEST_F(Stream, FindsNodesByTheirPath)
{
    const auto stream = Open(Section(RW::ExtensionId, Joined({Section(0x110, {}), Nested(2)})));
    EXPECT_EQ(stream->GetNode({}), stream->Root());
    EXPECT_TRUE(stream->HasNode({}));
    EXPECT_EQ(stream->GetNode({1, 0})->Id(), 0x03U);
    EXPECT_TRUE(stream->HasNode({1, 0}));
    EXPECT_EQ(TakeBoxes(), Lines());
}

TEST_F(Stream, AStepToAMissingChildIsAStopBoxForGetNodeAndSilentForHasNode)
{
    const auto stream = Open(Section(RW::ExtensionId, Joined({Section(0x110, {}), Nested(2)})));
    EXPECT_EQ(stream->GetNode({2, 0}), nullptr);
    EXPECT_EQ(TakeBoxes(), Lines{L"Wrong section ID. (370)"});
    EXPECT_EQ(stream->LastError(), L"Wrong section ID.");
    EXPECT_EQ(stream->GetNode({-1}), nullptr);
    EXPECT_EQ(TakeBoxes(), Lines{L"Wrong section ID. (370)"});
    EXPECT_FALSE(stream->HasNode({2, 0}));
    EXPECT_FALSE(stream->HasNode({-1}));
    EXPECT_FALSE(stream->HasNode({1, 0, 0}));
    EXPECT_EQ(TakeBoxes(), Lines());
}

TEST_F(Stream, TheStopBoxOfAStreamHasItsTextButtonsAndExitCode)
{
    const auto stream = Open(TwoLeaves());
    stream->GetNode({5});
    ASSERT_EQ(m_oFailures.Count(), 1U);
    const auto& shown = m_oFailures.All()[0];
    EXPECT_EQ(shown.exitCode, 0);
    EXPECT_EQ(shown.box.caption, L"CStream fuckin' error");
    EXPECT_EQ(shown.box.icon, PromptIcon::Error);
    EXPECT_EQ(shown.box.buttons, PromptButtons::OkCancel);
    EXPECT_EQ(shown.box.text,
              L"A fuckin' error occurred while processing CStream or derived class:\n\n  Wrong section "
              L"ID.\n\nFile: "
              L"CStream\nLine: 370\nIt's really seems to program execution cannot be continued.\n\n(Click "
              L"cancel to "
              L"exit program)");
}

TEST_F(Stream, FreeingNoTreeIsAStopBox)
{
    CStream stream(m_oFailures, m_oFiles);
    stream.FreeTree(nullptr);
    EXPECT_EQ(TakeBoxes(), Lines{L"pNode is NULL! (494)"});
    stream.FreeTree(std::make_unique<RW::CNode>(m_oFailures));
    EXPECT_EQ(TakeBoxes(), Lines());
}

TEST_F(Stream, StampsAVersionOnEverySection)
{
    CStream nothing(m_oFailures, m_oFiles);
    EXPECT_FALSE(nothing.SetVersion(1));
    const auto stream = Open(TwoLeaves());
    EXPECT_TRUE(stream->SetVersion(0x0800FFFF));
    EXPECT_EQ(stream->Root()->Version(), 0x0800FFFFU);
    EXPECT_EQ(stream->GetNode({1})->Version(), 0x0800FFFFU);
    EXPECT_TRUE(stream->SetVersion(7, stream->GetNode({1})));
    EXPECT_EQ(stream->GetNode({0})->Version(), 0x0800FFFFU);
    EXPECT_EQ(stream->GetNode({1})->Version(), 7U);
}

TEST_F(Stream, KeepsTheTreeWhenToldTo)
{
    auto stream = Open(TwoLeaves());
    RW::CNode* const root = stream->Root();
    stream->SetKeepTree(true);
    stream.reset();
    const std::unique_ptr<RW::CNode> owned(root);
    EXPECT_EQ(owned->ChildCount(), 2U);
}

TEST_F(Stream, ScansChildrenUntilAVersionStamp)
{
    // Sections without a stamp, then one with a stamp, whose header the root has taken over in the end.
    m_oFiles.Put(kFile, Joined({RwFile::SectionClaiming(RW::ExtensionId, 1, {}, 0),
                                Section(0x110, RwFile::Counting(8), 0), Section(0x111, {}, 0),
                                RwFile::SectionClaiming(0x112, 77, {}, 5)}));
    CStream stream(m_oFailures, m_oFiles);
    stream.SetScanning(true);
    ASSERT_TRUE(stream.Open(kFile, 0, 0, 0));
    EXPECT_EQ(stream.Root()->ChildCount(), 2U);
    EXPECT_EQ(stream.Root()->Id(), 0x112U);
    EXPECT_EQ(stream.Root()->Size(), 77U);
    EXPECT_EQ(stream.Root()->Version(), 5U);
}

TEST_F(Stream, ScanningEndsWithTheFile)
{
    m_oFiles.Put(kFile, Joined({RwFile::SectionClaiming(RW::ExtensionId, 1, {}, 0), Section(0x110, {}, 0)}));
    CStream stream(m_oFailures, m_oFiles);
    stream.SetScanning(true);
    ASSERT_TRUE(stream.Open(kFile, 0, 0, 0));
    EXPECT_EQ(stream.Root()->ChildCount(), 1U);
}

TEST_F(Stream, TellsHowFarItWalked)
{
    const auto stream = Open(TwoLeaves());
    RW::CNode again(m_oFailures);
    again.SetHeader(stream->Root()->Header());
    again.SetDataOffset(12);
    EXPECT_EQ(stream->ReadChildren(again, nullptr, 0), -153);
    RW::CNode leaf(m_oFailures);
    leaf.SetHeader({.id = 0x110, .size = 64});
    leaf.SetDataOffset(24);
    EXPECT_EQ(stream->ReadChildren(leaf, nullptr, 0), 0);
    EXPECT_TRUE(leaf.IsLoaded());
}

// Damaged input.

TEST_F(Stream, RefusesEveryTruncationOrReportsTheMissingBody)
{
    const Bytes whole = TwoLeaves();
    for (std::size_t length = 0; length < whole.size(); ++length) {
        SCOPED_TRACE(length);
        const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        const std::wstring error = ErrorOf(cut);
        // The first leaf is loaded with the tree; of the second only the header has to be there.
        if (length < 100) {
            EXPECT_EQ(error, L"Stream reading error.");
        } else {
            EXPECT_EQ(error, L"none");
        }
        EXPECT_EQ(TakeBoxes(), length >= 24 && length < 88
                                   ? Lines{L"Unknown section data reading error. (110)"}
                                   : Lines());
    }
}

TEST_F(Stream, NestsTwoHundredFiftySixLevelsAndNoMore)
{
    EXPECT_EQ(ErrorOf(Nested(256)), L"none");
    EXPECT_EQ(ErrorOf(Nested(257)), L"Stream reading error.");
    EXPECT_EQ(ErrorOf(Nested(2000)), L"Stream reading error.");
}

TEST_F(Stream, ASizeThatWrapsWhenItsHeaderIsAddedEndsTheWalk)
{
    for (const std::uint32_t size : {0xFFFFFFF4U, 0xFFFFFFFFU, 0xFFFFFFF3U}) {
        const Bytes body = Joined({RwFile::SectionClaiming(0x110, size, {}), Section(0x110, {})});
        EXPECT_EQ(ErrorOf(Section(RW::ExtensionId, body)), L"none") << size;
        EXPECT_EQ(ErrorOf(RwFile::SectionClaiming(RW::ExtensionId, 0xFFFFFFFF, Section(0x110, {}))),
                  L"Stream reading error.");
    }
}

TEST_F(Stream, ABodyOfFourGigabytesIsRefusedWithoutAllocatingIt)
{
    const auto stream = Open(Section(RW::ExtensionId, RwFile::SectionClaiming(0x110, 0xFFFFFFF0, {})));
    EXPECT_EQ(stream->GetNode({0})->GetData(stream->File()).data(), nullptr);
    EXPECT_EQ(TakeBoxes(), Lines{L"Unknown section data reading error. (110)"});
}

TEST_F(Stream, HasNoMoreSectionsThanTheFileHasRoomForHeaders)
{
    // Containers that lie about their sizes are read again and again by those around them.
    Bytes body;
    for (int i = 0; i < 60; ++i)
        body = Joined({RwFile::SectionClaiming(RW::ExtensionId, 13, body), Section(0x110, {})});
    EXPECT_EQ(ErrorOf(RwFile::SectionClaiming(RW::ExtensionId, 0xFFFFFF, body)), L"Stream reading error.");
}
