#pragma once

// What the tests of the readers share: files in memory, and stop boxes that are recorded.

#include <gtest/gtest.h>

#include "rw/Exception.h"
#include "rw/Messages.h"
#include "rw/SectionId.h"
#include "rw/Stream.h"
#include "tests/support/MemoryFileSystem.h"
#include "tests/support/RecordingFailures.h"
#include "tests/support/RenderWareFiles.h"

class StreamFixture : public testing::Test {
protected:
    static constexpr const char* kFile = "file";

    using Lines = std::vector<std::wstring>;

    template <class Stream>
    std::unique_ptr<Stream> Closed()
    {
        return std::make_unique<Stream>(m_oFailures, m_oFiles);
    }

    /// A stream over these bytes, opened with any root and no flags.
    template <class Stream>
    std::unique_ptr<Stream> Opened(const RwFile::Bytes& bytes)
    {
        m_oFiles.Put(kFile, bytes);
        auto stream = Closed<Stream>();
        EXPECT_TRUE(stream->Open(kFile, 0, RW::kNoRootId, 0));
        return stream;
    }

    /// The message of the soft error that `work` throws, or "none".
    template <class Work>
    static std::wstring SoftErrorOf(Work work)
    {
        try {
            work();
        } catch (const RW::CException& error) {
            return error.Message();
        }
        return L"none";
    }

    template <class Stream>
    std::wstring OpeningErrorOf(const RwFile::Bytes& bytes, std::uint32_t rootId = RW::kNoRootId,
                                std::uint32_t flags = 0)
    {
        m_oFiles.Put(kFile, bytes);
        auto stream = Closed<Stream>();
        return SoftErrorOf([&] { static_cast<void>(stream->Open(kFile, 0, rootId, flags)); });
    }

    /// The lines of the boxes since the last call.
    Lines TakeBoxes()
    {
        Lines lines = m_oFailures.Lines();
        m_oFailures.Clear();
        return lines;
    }

    CMemoryFileSystem m_oFiles;
    CRecordingFailures m_oFailures;
};
