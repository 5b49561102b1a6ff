#include "database/RecordLayout.h"

#include <algorithm>
#include <array>
#include <optional>

#include "base/ByteReader.h"
#include "base/ByteWriter.h"
#include "database/RunLength.h"

namespace {

constexpr std::uint64_t kMarkerWord = 4;
constexpr std::uint64_t kFrameStart = 12;
constexpr std::uint32_t kLargestMarker = 255;

void WriteHeader(CByteWriter& out, const RasterHeader& header)
{
    out.U16(header.nameHash16).U16(header.glFormat).U16(header.width).U16(header.heightAndMips);
}

}  // namespace

//  0  RasterHeader
//  8  raw: pixels      framed: u32 bytes of the frame
// 12                   framed: u32 marker word, then coded units, or 0 and the pixels
RecordProbe ReadProbe(std::span<const std::byte> bytes)
{
    std::array<std::byte, kProbeBytes> padded{};
    RecordProbe probe;
    probe.bytes = std::min(bytes.size(), padded.size());
    std::copy_n(bytes.begin(), probe.bytes, padded.begin());
    if (!probe.HasHeader())
        return probe;
    CByteReader in(padded);
    probe.header.nameHash16 = in.U16();
    probe.header.glFormat = in.U16();
    probe.header.width = in.U16();
    probe.header.heightAndMips = in.U16();
    probe.frameSize = in.U32();
    probe.marker = in.U32();
    return probe;
}

StreamMode DetectMode(const RecordProbe& probe)
{
    const std::uint64_t frameOfRaw = RasterSize(probe.header) + kMarkerWord;
    if (probe.frameSize == frameOfRaw && probe.marker == 0)
        return StreamMode::Framed;
    const bool cannotBeFrame = probe.frameSize <= UnitBytes(FormatFromGl(probe.header.glFormat)) ||
                               probe.frameSize > frameOfRaw || probe.marker > kLargestMarker;
    return cannotBeFrame || probe.marker == 0 ? StreamMode::Raw : StreamMode::Framed;
}

std::uint64_t RecordBytes(const RecordProbe& probe, StreamMode mode)
{
    if (mode != StreamMode::Framed)
        return RasterSize(probe.header) + kHeaderBytes;
    return (probe.frameSize == 0 ? RasterSize(probe.header) : probe.frameSize) + kFrameStart;
}

std::vector<std::byte> BuildRecord(const NewRecord& record)
{
    CByteWriter out;
    WriteHeader(out, record.header);
    if (record.mode != StreamMode::Framed) {
        out.Bytes(record.bytes);
        return out.Take();
    }
    std::optional<std::vector<std::byte>> made;
    std::span<const std::byte> frame;
    if (record.allowRunLength && record.runLengthFrame)
        frame = *record.runLengthFrame;
    else if (record.allowRunLength &&
             (made = RleEncode(record.bytes, UnitBytes(FormatFromGl(record.header.glFormat)))))
        frame = *made;
    if (!frame.empty())
        out.U32(static_cast<std::uint32_t>(frame.size())).Bytes(frame);
    else
        out.U32(static_cast<std::uint32_t>(record.bytes.size() + kMarkerWord)).U32(0).Bytes(record.bytes);
    return out.Take();
}

std::vector<std::byte> HeaderBytes(const RasterHeader& header)
{
    CByteWriter out;
    WriteHeader(out, header);
    return out.Take();
}
