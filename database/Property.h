#pragma once

// The 20 properties of a texture, by their numbers. The number fixes the order in which a new line lists
// them.

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

enum class Property : std::uint32_t {
    Name,
    Affiliate,
    CamNorm,
    DecalZ,
    ForceZ,
    HasSibling,
    MipMode,
    NoAlphaTest,
    AlphaMode,
    Cat,
    DetailTile,
    Format,
    HasBias,
    HasDetail,
    Height,
    IsDetail,
    Width,
    StreamMode,
    Img,
    Png,
};

inline constexpr std::size_t kPropertyCount = 20;

/// The key as the TXT list writes it, for example "camnorm".
std::string_view PropertyKey(Property property);
/// The property of a key; compared exactly.
std::optional<Property> PropertyFromKey(std::string_view key);
/// True for the two hashes, which are written as eight lower-case hexadecimal digits.
constexpr bool IsHexProperty(Property property)
{
    return property == Property::Img || property == Property::Png;
}
/// One pair as it stands in a line, for example "width=512" or "img=0000beef". Decimals are signed 32-bit.
std::string PropertyPair(Property property, std::uint32_t value);
