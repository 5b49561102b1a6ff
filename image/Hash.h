#pragma once

// The small 32-bit hash of names and whole files: h = h * 33 + byte from 0, then h + (h >> 5). Its low 16
// bits stand in every record of the caches, so it stays as simple as the games expect.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>
#include <string_view>

/// The same formula over raw bytes, zeros included.
std::uint32_t HashData(std::span<const std::byte> data);
/// Over a zero-terminated single-byte string; 0 for null.
std::uint32_t HashBytes(const char* text);
/// Over the low bytes of at most the first 128 characters.
std::uint32_t HashWideName(std::wstring_view name);
/// As HashWideName with a-z turned into A-Z.
std::uint32_t HashNameUpper(std::wstring_view name);
/// Over every byte of a file; 0 when it cannot be opened.
std::uint32_t HashFile(const std::filesystem::path& file);

/// The name hash of a texture.
inline std::uint32_t NameHash(std::wstring_view name)
{
    return HashWideName(name);
}
