#pragma once

// What a record looks like in a `.dat` or `.tmb` file: its header, its two stream modes, how the mode is told
// from the bytes, and how far it is to the next record. Pure functions over values; docs/formats/cache.md has
// the layouts.

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "codec/RasterFormat.h"
#include "database/TextureDatabase.h"

inline constexpr std::size_t kHeaderBytes = 8;
/// The header and the two words behind it, from which the stream mode is told.
inline constexpr std::size_t kProbeBytes = 16;

/// The first bytes of a record. Words that lie behind the file's end count as 0.
struct RecordProbe {
    RasterHeader header;
    std::uint32_t frameSize = 0;
    std::uint32_t marker = 0;
    std::size_t bytes = 0;  // how many of the sixteen were there

    bool HasHeader() const { return bytes >= kHeaderBytes; }
};

/// `bytes` may hold less than a whole probe.
RecordProbe ReadProbe(std::span<const std::byte> bytes);

/// Raw or Framed, told from the words behind the header. A raw record whose first pixels look like a frame is
/// taken for one; only a forced mode helps there.
StreamMode DetectMode(const RecordProbe& probe);

/// Bytes from a record to the next one in this mode.
std::uint64_t RecordBytes(const RecordProbe& probe, StreamMode mode);

/// A whole record as it is stored.
std::vector<std::byte> BuildRecord(const NewRecord& record);

std::vector<std::byte> HeaderBytes(const RasterHeader& header);
