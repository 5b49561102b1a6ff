#include "database/CopyPieces.h"

#include <cstring>
#include <memory>
#include <utility>

#include "database/FileTools.h"

namespace {

constexpr std::uint64_t kBlock = std::uint64_t{1} << 18;
/// Reading on is cheaper than beginning anew.
constexpr std::uint64_t kShortGap = std::uint64_t{1} << 14;

bool IsClose(const MovedPiece& piece, const MovedPiece& next)
{
    return next.from - (piece.from + piece.length) <= kShortGap;
}

/// Collects bytes in memory and writes them a block at a time.
class CGatheringCopy {
public:
    CGatheringCopy(const IFile& source, IFile& target, std::uint64_t at)
        : m_rSource(source), m_rTarget(target), m_nAt(at)
    {
    }

    /// Pieces that lie close together are read at once, with what lies between them.
    bool Add(std::span<const MovedPiece> pieces)
    {
        const std::uint64_t from = pieces.front().from;
        const std::uint64_t length = pieces.back().from + pieces.back().length - from;
        if (m_nUsed + length > kBlock && !Flush())
            return false;
        if (length > kBlock) {  // a single one
            const bool copied = CopyBytes(m_rSource, from, length, m_rTarget, m_nAt);
            m_nAt += length;
            return copied;
        }
        std::byte* const read = m_pBytes.get() + m_nUsed;
        if (m_rSource.ReadAt(from, {read, static_cast<std::size_t>(length)}) != length)
            return false;
        for (const MovedPiece& piece : pieces) {
            std::memmove(m_pBytes.get() + m_nUsed, read + (piece.from - from),
                         static_cast<std::size_t>(piece.length));
            m_nUsed += static_cast<std::size_t>(piece.length);
        }
        return true;
    }

    bool Flush()
    {
        const bool written = m_nUsed == 0 || m_rTarget.WriteAt(m_nAt, {m_pBytes.get(), m_nUsed});
        m_nAt += std::exchange(m_nUsed, 0);
        return written;
    }

private:
    const IFile& m_rSource;
    IFile& m_rTarget;
    std::uint64_t m_nAt;
    std::unique_ptr<std::byte[]> m_pBytes = std::make_unique_for_overwrite<std::byte[]>(kBlock);
    std::size_t m_nUsed = 0;
};

}  // namespace

bool CopyPieces(const IFile& source, std::span<const MovedPiece> pieces, IFile& target, std::uint64_t at)
{
    CGatheringCopy copy(source, target, at);
    while (!pieces.empty()) {
        std::size_t count = 1;
        while (count < pieces.size() && IsClose(pieces[count - 1], pieces[count]) &&
               pieces[count].from + pieces[count].length - pieces.front().from <= kBlock)
            ++count;
        if (!copy.Add(pieces.first(count)))
            return false;
        pieces = pieces.subspan(count);
    }
    return copy.Flush();
}
