#include "rw/Node.h"

#include "tests/rw/StreamFixture.h"

namespace {

using RW::CNode;
using RwFile::Bytes;

class Node : public StreamFixture {
protected:
    /// A section of these facts, attached to the file in memory.
    std::unique_ptr<CNode> Leaf(std::uint32_t size, std::uint64_t offset)
    {
        auto node = std::make_unique<CNode>(m_oFailures);
        node->SetHeader({.id = 0x02, .size = size, .version = 0x1803FFFF});
        node->SetDataOffset(offset);
        return node;
    }

    const IFile* File()
    {
        m_oFiles.Put(kFile, RwFile::Counting(200));
        m_pFile = m_oFiles.Open(kFile, OpenMode::Read);
        return m_pFile.get();
    }

    static Bytes Copy(std::span<const std::byte> bytes) { return {bytes.begin(), bytes.end()}; }

    std::unique_ptr<IFile> m_pFile;
};

}  // namespace

TEST_F(Node, GrowsBeyondOneBlockOfChildren)
{
    CNode node(m_oFailures);
    for (std::uint32_t i = 0; i < 200; ++i) {
        CNode* const child = node.AddChild(Leaf(i, 12));
        ASSERT_NE(child, nullptr);
        EXPECT_EQ(child, node.GetChild(i));
    }
    EXPECT_EQ(node.ChildCount(), 200U);
    EXPECT_EQ(node.GetChild(199)->Size(), 199U);
    EXPECT_EQ(TakeBoxes(), Lines());
}

TEST_F(Node, LoadsItsBodyOnceFromTheFileItIsGiven)
{
    const auto node = Leaf(3, 10);
    EXPECT_FALSE(node->IsLoaded());
    EXPECT_EQ(Copy(node->GetData(File())), (Bytes{std::byte{10}, std::byte{11}, std::byte{12}}));
    m_oFiles.Put(kFile, {});
    EXPECT_EQ(node->GetData().size(), 3U);
}

TEST_F(Node, LoadsFromItsResourceHandleWhenNoFileIsGiven)
{
    const auto node = Leaf(1, 7);
    node->SetResourceHandle(File());
    EXPECT_EQ(Copy(node->GetData()), Bytes{std::byte{7}});
}

TEST_F(Node, ReadsTheHeadOfALongBodyWithoutLoadingIt)
{
    const auto node = Leaf(190, 10);
    EXPECT_EQ(Copy(node->GetHead(2, File())), (Bytes{std::byte{10}, std::byte{11}}));
    EXPECT_FALSE(node->IsLoaded());
    EXPECT_EQ(node->GetHead(500).size(), CNode::kHeadBytes);
    EXPECT_EQ(node->GetData(m_pFile.get()).size(), 190U);
    EXPECT_EQ(node->GetHead(150).size(), 150U);
    EXPECT_EQ(Leaf(5, 10)->GetHead(9, m_pFile.get()).size(), 5U);
}

TEST_F(Node, DropsABodyThatCanBeLoadedAgain)
{
    const auto node = Leaf(3, 10);
    EXPECT_FALSE(node->FreeData());
    node->GetData(File());
    EXPECT_TRUE(node->FreeData());
    EXPECT_FALSE(node->IsLoaded());
    EXPECT_EQ(node->GetData(m_pFile.get())[2], std::byte{12});
}

TEST_F(Node, ABodyThatWasSetLivesInMemoryOnly)
{
    const auto node = Leaf(3, 10);
    node->SetData(RwFile::Counting(5));
    EXPECT_EQ(node->Size(), 5U);
    EXPECT_FALSE(node->IsAttached());
    EXPECT_FALSE(node->FreeData());
    EXPECT_EQ(Copy(node->GetData()), RwFile::Counting(5));
}

TEST_F(Node, AnEmptyBodyIsThereWithoutAFile)
{
    EXPECT_NE(Leaf(0, 0)->GetData().data(), nullptr);
    EXPECT_EQ(TakeBoxes(), Lines());
}

TEST_F(Node, TextEndsAtItsNulOrWithTheBody)
{
    EXPECT_EQ(RW::TextIn(Bytes{std::byte{'a'}, std::byte{0}, std::byte{'b'}}), L"a");
    EXPECT_EQ(RW::TextIn(Bytes{std::byte{'a'}, std::byte{0xE9}}), L"a\u00E9");
    EXPECT_EQ(RW::TextIn({}), L"");
}

// Failures.

TEST_F(Node, AddingNoChildIsAStopBox)
{
    CNode node(m_oFailures);
    EXPECT_EQ(node.AddChild(nullptr), nullptr);
    EXPECT_EQ(TakeBoxes(), Lines{L"Cannot add child section to node: NULL CNode pointer given. (60)"});
    EXPECT_EQ(node.LastError(), L"Cannot add child section to node: NULL CNode pointer given.");
}

TEST_F(Node, AChildThatIsNotThereIsAStopBox)
{
    CNode node(m_oFailures);
    node.AddChild(Leaf(1, 12));
    EXPECT_EQ(node.GetChild(1), nullptr);
    EXPECT_EQ(TakeBoxes(), Lines{L"Node have no requested child! (83)"});
    EXPECT_EQ(node.FindChild(1), nullptr);
    EXPECT_EQ(TakeBoxes(), Lines());
}

TEST_F(Node, ABodyWithoutAFileIsAStopBox)
{
    EXPECT_EQ(Leaf(1, 12)->GetData().data(), nullptr);
    EXPECT_EQ(TakeBoxes(), Lines{L"Trying to read section data with invalid resource handle. (98)"});
}

TEST_F(Node, ABodyThatDoesNotFitTheFileIsAStopBox)
{
    const IFile* const file = File();
    for (const auto& node : {Leaf(101, 100), Leaf(1, 200), Leaf(1, 5000), Leaf(0xFFFFFFFF, 12), Leaf(1, 0)}) {
        EXPECT_EQ(node->GetData(file).data(), nullptr);
        EXPECT_EQ(TakeBoxes(), Lines{L"Unknown section data reading error. (110)"});
        EXPECT_EQ(node->GetHead(1, file).size(), 0U);
        EXPECT_EQ(TakeBoxes(), Lines{L"Unknown section data reading error. (110)"});
    }
}

TEST_F(Node, TheStopBoxOfASectionShowsItsFacts)
{
    const auto node = Leaf(0xFFFFFFFF, 0);
    node->AddChild(Leaf(1, 12));
    node->GetChild(3);
    ASSERT_EQ(m_oFailures.Count(), 1U);
    const auto& shown = m_oFailures.All()[0];
    EXPECT_EQ(shown.exitCode, 105);
    EXPECT_EQ(shown.box.caption, L"CNode fuckin' error");
    EXPECT_EQ(shown.box.icon, PromptIcon::Error);
    EXPECT_EQ(shown.box.buttons, PromptButtons::OkCancel);
    EXPECT_EQ(
        shown.box.text,
        L"A fuckin' error occurred while processing CNode or one of it's derived classes:\n\n  Node have no "
        L"requested child!\n\nFile: CNode\nLine: 83\n\nNode data:\n Section \"String\" size: -1 bytes, "
        L"version: "
        L"0x1803FFFF\n m_pData = 0x00000000\n m_nSections = 1\n\nIt's really seems to program execution "
        L"cannot "
        L"be continued.\n\n(Click cancel to exit program)");
}

TEST(PromptFailures, CancelLeavesWithTheExitCode)
{
    class CAnswering final : public IPrompt {
    public:
        explicit CAnswering(PromptAnswer answer) : m_eAnswer(answer) {}
        PromptAnswer Show(const PromptBox& /*box*/) override { return m_eAnswer; }

    private:
        PromptAnswer m_eAnswer;
    };
    std::vector<int> left;
    const auto leave = [&left](int code) { left.push_back(code); };
    CAnswering okay(PromptAnswer::Ok);
    RW::CPromptFailures(okay, leave).ShowStopBox({}, RW::kNodeExitCode);
    EXPECT_TRUE(left.empty());
    CAnswering cancel(PromptAnswer::Cancel);
    RW::CPromptFailures(cancel, leave).ShowStopBox({}, RW::kNodeExitCode);
    RW::CPromptFailures(cancel, leave).ShowStopBox({}, RW::kStreamExitCode);
    EXPECT_EQ(left, (std::vector<int>{105, 0}));
}
