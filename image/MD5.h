#pragma once

// The MD5 digest (RFC 1321) of a buffer, and its text.

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

/// The state words A, B, C, D, each byte-swapped.
struct MD5Digest {
    std::array<std::uint32_t, 4> words{};
    bool operator==(const MD5Digest&) const = default;
};

MD5Digest ComputeMD5(std::span<const std::byte> data);
/// 32 lower-case hexadecimal digits, the conventional form.
std::wstring MD5ToText(const MD5Digest& digest);
