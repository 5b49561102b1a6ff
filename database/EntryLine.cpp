#include "database/EntryLine.h"

#include <optional>

#include "base/Text.h"
#include "database/TextScan.h"
#include "image/Hash.h"

namespace {

constexpr std::size_t kAffiliatePrefix = 11;  // the double quote and "affiliate="

char At(std::string_view text, std::size_t index)
{
    return index < text.size() ? text[index] : '\0';
}

std::optional<Property> PropertyWithH(std::string_view key)
{
    if (At(key, 1) != 'a')
        return Property::Height;
    if (At(key, 3) == 'd')
        return Property::HasDetail;
    return At(key, 3) == 'b' ? Property::HasBias : Property::HasSibling;
}

// Deliberate: nothing begins with "n", so "noalphatest" survives in the text while its value reads as 0.
// EntryLine.KeepsNoalphatestInTheTextOnly pins it.
std::optional<Property> PropertyAt(std::string_view key)
{
    switch (At(key, 0)) {
        case 'a':
            return Property::AlphaMode;
        case 'c':
            return At(key, 2) == 'm' ? Property::CamNorm : Property::Cat;
        case 'd':
            return At(key, 2) == 't' ? Property::DetailTile : Property::DecalZ;
        case 'f':
            return At(key, 3) == 'm' ? Property::Format : Property::ForceZ;
        case 'h':
            return PropertyWithH(key);
        case 'i':
            return At(key, 1) == 's' ? Property::IsDetail : Property::Img;
        case 'm':
            return Property::MipMode;
        case 'p':
            return Property::Png;
        case 's':
            return Property::StreamMode;
        case 'w':
            return Property::Width;
        default:
            return std::nullopt;
    }
}

void ScanProperty(std::string_view pair, Property property, TextureEntry& entry)
{
    const std::string_view key = PropertyKey(property);
    if (!pair.starts_with(key) || At(pair, key.size()) != '=')
        return;
    const std::string_view text = pair.substr(key.size() + 1);
    std::uint32_t& value = entry.values[static_cast<std::size_t>(property)];
    if (IsHexProperty(property))
        value = ScanHex(text).value_or(value);
    else if (const auto number = ScanDecimal(text))
        value = static_cast<std::uint32_t>(*number);
}

std::wstring CutName(std::string_view name, TextureEntry& entry)
{
    entry.nameWasCut = entry.nameWasCut || name.size() > kLongestName;
    return Widen(name.substr(0, kLongestName));
}

}  // namespace

TextureEntry ParseEntryLine(std::string_view line)
{
    TextureEntry entry;
    entry.lineText = std::string(line);
    if (line.ends_with('\n'))
        line.remove_suffix(1);

    const std::size_t quote = line.find('"', 1);
    entry.name = CutName(line.substr(1, quote == std::string_view::npos ? quote : quote - 1), entry);
    entry.nameHash = NameHash(entry.name);
    if (quote == std::string_view::npos)
        return entry;

    std::size_t blank = line.find(' ', quote);
    while (blank != std::string_view::npos) {
        std::size_t at = blank + 1;
        const std::string_view rest = line.substr(at);
        if (rest.starts_with("\"a")) {
            const std::string_view text = rest.size() > kAffiliatePrefix ? rest.substr(kAffiliatePrefix) : "";
            const std::size_t end = text.find('"');
            entry.affiliate = CutName(text.substr(0, end), entry);
            at = end == std::string_view::npos ? line.size() : at + kAffiliatePrefix + end + 1;
        } else if (const auto property = PropertyAt(rest)) {
            ScanProperty(rest, *property, entry);
        }
        blank = line.find(' ', at);
    }
    return entry;
}
