#pragma once

// What the codecs and the preparation of pictures tell the person, in one place.

#include <string_view>

namespace CodecMessage {
inline constexpr std::wstring_view kWrongDimensions = L"Wrong texture dimensions given.";
inline constexpr std::wstring_view kEmptyName = L"Name should not be empty.";
inline constexpr std::wstring_view kWrongName = L"Wrong texture name given.";
inline constexpr std::wstring_view kLineTooLong = L"Texture line is too long.";
inline constexpr std::wstring_view kCannotCompress = L"Cannot compress texture.";
inline constexpr std::wstring_view kCannotDecompress = L"Cannot decompress texture.";
inline constexpr std::wstring_view kUnsupportedFormat = L"This format is unsupported";
inline constexpr std::wstring_view kCannotWrite = L"Unable to write cache file";
/// Takes the cache's name.
inline constexpr std::wstring_view kNoPlugin = L"%s plugin is not loaded";
}  // namespace CodecMessage
