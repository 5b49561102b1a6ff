#include "rw/Stream.h"
#include "tests/rw/StreamFixture.h"
#include "tests/support/FaultyFileSystem.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using RW::CStream;
using RwFile::Bytes;
using RwFile::Joined;
using RwFile::Section;

Bytes SampleFile()
{
    return RwFile::Model({{.textures = {"road", "wall"}},
                          {.textures = {"roof"}, .extension = RwFile::EffectExtension("shine", 120)}});
}

/// A file that cannot be flushed, in place of one that cannot be closed.
class CUnflushedFile final : public IFile {
public:
    explicit CUnflushedFile(std::unique_ptr<IFile> file) : m_pFile(std::move(file)) {}
    std::uint64_t Size() const override { return m_pFile->Size(); }
    std::size_t ReadAt(std::uint64_t position, std::span<std::byte> out) const override
    {
        return m_pFile->ReadAt(position, out);
    }
    bool WriteAt(std::uint64_t position, std::span<const std::byte> bytes) override
    {
        return m_pFile->WriteAt(position, bytes);
    }
    bool Resize(std::uint64_t size) override { return m_pFile->Resize(size); }
    bool Flush() override { return false; }
    bool Sync() override { return m_pFile->Sync(); }

private:
    std::unique_ptr<IFile> m_pFile;
};

class CUnflushedFileSystem final : public IFileSystem {
public:
    explicit CUnflushedFileSystem(IFileSystem& files) : m_rFiles(files) {}
    std::unique_ptr<IFile> Open(const std::filesystem::path& file, OpenMode mode) override
    {
        return std::make_unique<CUnflushedFile>(m_rFiles.Open(file, mode));
    }
    bool Exists(const std::filesystem::path& file) const override { return m_rFiles.Exists(file); }
    bool Replace(const std::filesystem::path& from, const std::filesystem::path& to) override
    {
        return m_rFiles.Replace(from, to);
    }
    bool Copy(const std::filesystem::path& from, const std::filesystem::path& to) override
    {
        return m_rFiles.Copy(from, to);
    }
    bool Remove(const std::filesystem::path& file) override { return m_rFiles.Remove(file); }

private:
    IFileSystem& m_rFiles;
};

class StreamSaving : public StreamFixture {
protected:
    Bytes Saved(const Bytes& bytes)
    {
        const auto stream = Opened<CStream>(bytes);
        EXPECT_TRUE(stream->Save("copy"));
        return *m_oFiles.Find("copy");
    }
};

}  // namespace

TEST_F(StreamSaving, ASavedFileIsTheFileAndACopyOfItsRootHeader)
{
    const Bytes file = SampleFile();
    const Bytes copyOfHeader(file.begin(), file.begin() + 12);
    EXPECT_EQ(Saved(file), Joined({file, copyOfHeader}));
}

TEST_F(StreamSaving, ARootWithoutChildrenHasNoCopyBehindIt)
{
    const Bytes leaf = Section(0x110, RwFile::Counting(100));
    EXPECT_EQ(Saved(leaf), leaf);
    const Bytes empty = Section(RW::ExtensionId, {});
    EXPECT_EQ(Saved(empty), empty);
}

TEST_F(StreamSaving, TheHeaderInFrontKeepsTheOldSizeAndTheCopyHasTheNewOne)
{
    const auto stream = Opened<CStream>(Section(RW::ExtensionId, Section(0x110, RwFile::Counting(4))));
    stream->GetNode({0})->SetData(RwFile::Counting(2));
    ASSERT_TRUE(stream->Save("copy"));
    EXPECT_EQ(*m_oFiles.Find("copy"),
              Joined({RwFile::SectionClaiming(RW::ExtensionId, 16, Section(0x110, RwFile::Counting(2))),
                      RwFile::SectionClaiming(RW::ExtensionId, 14, {})}));
}

TEST_F(StreamSaving, NothingFollowsAHeaderOfSizeZero)
{
    const auto stream = Opened<CStream>(Section(RW::ExtensionId, Section(0x110, RwFile::Counting(4))));
    stream->Root()->SetSize(0);
    ASSERT_TRUE(stream->Save("copy"));
    EXPECT_EQ(*m_oFiles.Find("copy"), Section(RW::ExtensionId, {}));
}

TEST_F(StreamSaving, AfterwardsTheStreamHasNoFileAndEveryBodyInMemory)
{
    const auto stream = Opened<CStream>(SampleFile());
    ASSERT_TRUE(stream->Save("copy"));
    EXPECT_EQ(stream->File(), nullptr);
    RW::CNode* const vertices = stream->GetNode({2, 1, 0});
    EXPECT_TRUE(vertices->IsLoaded());
    EXPECT_FALSE(vertices->IsAttached());
    EXPECT_FALSE(vertices->FreeData());
    // It can be saved again.
    ASSERT_TRUE(stream->Save("second"));
    EXPECT_EQ(*m_oFiles.Find("second"), *m_oFiles.Find("copy"));
}

TEST_F(StreamSaving, SavesOverItsOwnSource)
{
    const CTemporaryFolder folder;
    WriteWholeFile(DiskFileSystem(), folder / "a.dff", SampleFile());
    CStream stream(m_oFailures);
    ASSERT_TRUE(stream.Open(folder / "a.dff", 0, 0, 0));
    ASSERT_TRUE(stream.Save(folder / "a.dff"));
    EXPECT_EQ(std::filesystem::file_size(folder / "a.dff"), SampleFile().size() + 12);
    EXPECT_FALSE(std::filesystem::exists(folder / "a.dff.new"));
}

TEST_F(StreamSaving, DetachLoadsTheBodiesOfASubtree)
{
    const auto stream = Opened<CStream>(SampleFile());
    RW::CNode* const geometry = stream->GetNode({2, 1});
    EXPECT_EQ(stream->Detach(geometry), geometry);
    EXPECT_TRUE(stream->GetNode({2, 1, 0})->IsLoaded());
    EXPECT_EQ(geometry->DataOffset(), 0U);
    EXPECT_NE(stream->Root()->DataOffset(), 0U);
    EXPECT_EQ(stream->Detach(), stream->Root());
    EXPECT_EQ(stream->Root()->DataOffset(), 0U);
}

TEST_F(StreamSaving, SavesABorrowedFileWithoutClosingIt)
{
    m_oFiles.Put(kFile, SampleFile());
    const auto file = m_oFiles.Open(kFile, OpenMode::Read);
    CStream stream(m_oFailures, m_oFiles);
    ASSERT_TRUE(stream.Attach(*file, 0, 0, 0));
    ASSERT_TRUE(stream.Save("copy"));
    EXPECT_EQ(file->Size(), SampleFile().size());
}

// Failures.

TEST_F(StreamSaving, AStreamWithoutATreeHasNothingToSave)
{
    CStream stream(m_oFailures, m_oFiles);
    EXPECT_FALSE(stream.Save("copy"));
    EXPECT_EQ(stream.LastError(), L"");
}

TEST_F(StreamSaving, EveryWriteThatFailsLeavesTheOldFile)
{
    const CTemporaryFolder folder;
    const Bytes before = RwFile::Counting(50);
    for (std::uint32_t writes = 0;; ++writes) {
        ASSERT_LT(writes, 200U);
        WriteWholeFile(DiskFileSystem(), folder / "a.dff", SampleFile());
        WriteWholeFile(DiskFileSystem(), folder / "out.dff", before);
        CFaultyFileSystem files(writes);
        CStream stream(m_oFailures, files);
        ASSERT_TRUE(stream.Open(folder / "a.dff", 0, 0, 0));
        bool isSaved = false;
        const std::wstring error = SoftErrorOf([&] { isSaved = stream.Save(folder / "out.dff"); });
        if (isSaved)
            break;
        EXPECT_EQ(ReadWholeFile(DiskFileSystem(), folder / "out.dff", 1000), before) << writes;
        EXPECT_FALSE(std::filesystem::exists(folder / "out.dff.new")) << writes;
        EXPECT_TRUE(error == L"Can't open output file." || (error == L"none" && stream.LastError().empty()));
    }
    EXPECT_EQ(std::filesystem::file_size(folder / "out.dff"), SampleFile().size() + 12);
}

TEST_F(StreamSaving, AnOutputThatCannotBeMadeIsASoftError)
{
    const CTemporaryFolder folder;
    WriteWholeFile(DiskFileSystem(), folder / "a.dff", SampleFile());
    CStream stream(m_oFailures);
    ASSERT_TRUE(stream.Open(folder / "a.dff", 0, 0, 0));
    EXPECT_EQ(SoftErrorOf([&] { stream.Save(folder / "no such folder" / "a.dff"); }),
              L"Can't open output file.");
}

TEST_F(StreamSaving, AFileThatCannotBeClosedIsASoftError)
{
    m_oFiles.Put(kFile, SampleFile());
    CUnflushedFileSystem files(m_oFiles);
    CStream stream(m_oFailures, files);
    ASSERT_TRUE(stream.Open(kFile, 0, 0, 0));
    EXPECT_EQ(SoftErrorOf([&] { stream.Save("copy"); }), L"Can't detach from handle.");
    EXPECT_FALSE(m_oFiles.Exists("copy"));
}

TEST_F(StreamSaving, ABodyThatCannotBeLoadedKeepsTheTreeFromBeingSaved)
{
    Bytes cut = Section(RW::ExtensionId, Section(0x110, RwFile::Counting(100)));
    cut.pop_back();
    const auto stream = Opened<CStream>(cut);
    EXPECT_FALSE(stream->Save("copy"));
    EXPECT_EQ(stream->LastError(), L"");
    EXPECT_FALSE(m_oFiles.Exists("copy"));
    EXPECT_EQ(TakeBoxes(), Lines{L"Unknown section data reading error. (110)"});
    EXPECT_TRUE(stream->GetNode({0})->IsAttached());
}
