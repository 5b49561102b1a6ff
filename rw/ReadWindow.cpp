#include "rw/ReadWindow.h"

#include <algorithm>

namespace RW {

std::size_t CReadWindow::ReadAt(std::uint64_t position, std::span<std::byte> out) const
{
    if (out.size() > kWindowBytes)
        return m_rFile.ReadAt(position, out);
    const bool isInside = position >= m_nStart && position - m_nStart <= m_nFilled &&
                          out.size() <= m_nFilled - static_cast<std::size_t>(position - m_nStart);
    if (!isInside) {
        m_nStart = position;
        m_nFilled = m_rFile.ReadAt(position, m_aWindow);
    }
    const auto skipped = static_cast<std::size_t>(position - m_nStart);
    const std::size_t count = std::min(out.size(), m_nFilled - skipped);
    std::copy_n(m_aWindow.begin() + static_cast<std::ptrdiff_t>(skipped), count, out.begin());
    return count;
}

}  // namespace RW
