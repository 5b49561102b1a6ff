#include "database/RecordWalk.h"

#include <algorithm>

namespace {
constexpr std::size_t kWindow = std::size_t{1} << 16;
// Where records are long, reading what lies between their headers would cost more than it saves.
constexpr std::uint64_t kLongRecord = kWindow / 4;
}  // namespace

CRecordWalk::CRecordWalk(const IFile& file, StreamMode forced)
    : m_rFile(file), m_eForced(forced), m_nFileSize(file.Size()), m_aWindow(kWindow)
{
}

std::span<const std::byte> CRecordWalk::Window()
{
    const std::uint64_t wanted = std::min<std::uint64_t>(kProbeBytes, m_nFileSize - m_nPosition);
    const bool inside =
        m_nPosition >= m_nWindowStart && m_nPosition + wanted <= m_nWindowStart + m_nWindowBytes;
    if (!inside) {
        const std::size_t length = m_nLastRecord >= kLongRecord ? kProbeBytes : kWindow;
        m_nWindowStart = m_nPosition;
        m_nWindowBytes = m_rFile.ReadAt(m_nPosition, std::span(m_aWindow).first(length));
    }
    const auto start = static_cast<std::size_t>(m_nPosition - m_nWindowStart);
    const std::size_t there = std::min(static_cast<std::size_t>(wanted), m_nWindowBytes - start);
    return std::span(m_aWindow).subspan(start, there);
}

std::optional<WalkedRecord> CRecordWalk::Next()
{
    if (m_nPosition >= m_nFileSize)
        return std::nullopt;
    const RecordProbe probe = ReadProbe(Window());
    // The smallest record has fewer than eight bytes behind its header, but never none.
    if (probe.bytes <= kHeaderBytes)
        return std::nullopt;
    const StreamMode mode = m_eForced != StreamMode::Auto ? m_eForced : DetectMode(probe);
    const std::uint64_t bytes = RecordBytes(probe, mode);
    if (bytes > m_nFileSize - m_nPosition)
        return std::nullopt;
    const WalkedRecord record = {.offset = m_nPosition, .header = probe.header, .mode = mode, .bytes = bytes};
    m_nPosition += bytes;
    m_nLastRecord = bytes;
    return record;
}
