#pragma once

// Reads little-endian records from bytes that come from outside. A parser reads a record straight through and
// asks once, at the end, whether everything was there. The bytes are borrowed and must outlive the reader.

#include <cstddef>
#include <cstdint>
#include <span>

/// The first read past the end latches failure: from then on every read yields zero and Ok() is false.
class CByteReader {
public:
    explicit CByteReader(std::span<const std::byte> bytes) : m_aRest(bytes) {}

    bool Ok() const { return m_bOk; }
    std::size_t Left() const { return m_aRest.size(); }

    std::span<const std::byte> Bytes(std::size_t count)
    {
        if (count > m_aRest.size())
            m_bOk = false;
        if (!m_bOk)
            return {};
        const auto taken = m_aRest.first(count);
        m_aRest = m_aRest.subspan(count);
        return taken;
    }

    void Skip(std::size_t count) { Bytes(count); }
    std::uint8_t U8() { return static_cast<std::uint8_t>(Integer(1)); }
    std::uint16_t U16() { return static_cast<std::uint16_t>(Integer(2)); }
    std::uint32_t U32() { return Integer(4); }

private:
    std::uint32_t Integer(std::size_t width)
    {
        std::uint32_t value = 0;
        unsigned shift = 0;
        for (const std::byte part : Bytes(width)) {
            value |= std::to_integer<std::uint32_t>(part) << shift;
            shift += 8;
        }
        return value;
    }

    std::span<const std::byte> m_aRest;
    bool m_bOk = true;
};
