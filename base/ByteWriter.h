#pragma once

// Builds little-endian records in memory: the headers that the caches store, and the files that tests make.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

/// Every call appends and returns the writer, so that a record reads in file order.
class CByteWriter {
public:
    CByteWriter& U8(std::uint32_t value) { return Integer(value, 1); }
    CByteWriter& U16(std::uint32_t value) { return Integer(value, 2); }
    CByteWriter& U32(std::uint32_t value) { return Integer(value, 4); }

    CByteWriter& Bytes(std::span<const std::byte> bytes)
    {
        m_aBytes.insert(m_aBytes.end(), bytes.begin(), bytes.end());
        return *this;
    }

    CByteWriter& Fill(std::size_t count, std::uint8_t value)
    {
        m_aBytes.insert(m_aBytes.end(), count, std::byte{value});
        return *this;
    }

    /// Text cut or padded with NUL bytes to exactly `width` bytes.
    CByteWriter& Text(std::string_view text, std::size_t width)
    {
        for (std::size_t i = 0; i < width; ++i)
            m_aBytes.push_back(i < text.size() ? static_cast<std::byte>(text[i]) : std::byte{0});
        return *this;
    }

    std::size_t Size() const { return m_aBytes.size(); }
    std::span<const std::byte> View() const { return m_aBytes; }
    std::vector<std::byte> Take() { return std::exchange(m_aBytes, {}); }

private:
    CByteWriter& Integer(std::uint32_t value, unsigned width)
    {
        for (unsigned i = 0; i < width; ++i)
            m_aBytes.push_back(static_cast<std::byte>(value >> (8 * i) & 0xFFU));
        return *this;
    }

    std::vector<std::byte> m_aBytes;
};
