#pragma once

// Walks a file of records from its start, for files that have no table of contents. The file is read through
// a window, so that thousands of small records cost a few reads.

#include <cstdint>
#include <optional>
#include <vector>

#include "base/File.h"
#include "database/RecordLayout.h"

struct WalkedRecord {
    std::uint64_t offset = 0;
    RasterHeader header;
    StreamMode mode = StreamMode::Raw;
    std::uint64_t bytes = 0;  // to the next record
};

class CRecordWalk {
public:
    /// `file` is borrowed. `forced` is the stream mode of every record; Auto detects it for each.
    CRecordWalk(const IFile& file, StreamMode forced);

    /// The next record, or nothing when what is left is not a whole one.
    std::optional<WalkedRecord> Next();
    /// Every byte belongs to a record that Next gave.
    bool IsAtEnd() const { return m_nPosition == m_nFileSize; }

private:
    std::span<const std::byte> Window();

    const IFile& m_rFile;
    StreamMode m_eForced;
    std::uint64_t m_nFileSize;
    std::uint64_t m_nPosition = 0;
    std::uint64_t m_nLastRecord = 0;
    std::vector<std::byte> m_aWindow;
    std::uint64_t m_nWindowStart = 0;
    std::size_t m_nWindowBytes = 0;
};
