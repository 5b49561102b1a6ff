#include "database/Property.h"

#include <algorithm>

namespace {

constexpr std::array<std::string_view, kPropertyCount> kKeys = {
    "name",        "affiliate", "camnorm", "decalz",     "forcez", "hassibling", "mipmode",
    "noalphatest", "alphamode", "cat",     "detailtile", "format", "hasbias",    "hasdetail",
    "height",      "isdetail",  "width",   "streammode", "img",    "png",
};

std::string EightHexDigits(std::uint32_t value)
{
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string text;
    for (unsigned shift = 32; shift != 0; shift -= 4)
        text.push_back(kDigits[value >> (shift - 4) & 0xFU]);
    return text;
}

}  // namespace

std::string_view PropertyKey(Property property)
{
    return kKeys[static_cast<std::size_t>(property)];
}

std::optional<Property> PropertyFromKey(std::string_view key)
{
    const auto* const found = std::find(kKeys.begin(), kKeys.end(), key);
    if (found == kKeys.end())
        return std::nullopt;
    return static_cast<Property>(found - kKeys.begin());
}

std::string PropertyPair(Property property, std::uint32_t value)
{
    std::string pair(PropertyKey(property));
    pair += '=';
    pair +=
        IsHexProperty(property) ? EightHexDigits(value) : std::to_string(static_cast<std::int32_t>(value));
    return pair;
}
