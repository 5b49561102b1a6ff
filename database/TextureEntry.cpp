#include "database/TextureEntry.h"

#include <utility>

#include "base/Text.h"
#include "database/EntryLine.h"
#include "image/Hash.h"

namespace {

// One pass from left to right over the text as it was; what a removal brings together is not looked at again.
void ReplaceAll(std::string& text, std::string_view what, std::string_view with)
{
    std::size_t at = text.find(what);
    if (at == std::string::npos)
        return;
    std::string edited;
    std::size_t copied = 0;
    for (; at != std::string::npos; at = text.find(what, copied)) {
        edited.append(text, copied, at - copied).append(with);
        copied = at + what.size();
    }
    text = edited.append(text, copied);
}

std::string PairText(Property property, std::uint32_t value)
{
    return " " + PropertyPair(property, value);
}

void EditLine(std::string& line, Property property, std::uint32_t oldValue, std::uint32_t newValue)
{
    // Deliberate: the pair is removed as plain text, so " cat=1" also goes from inside " cat=12" and leaves
    // the 2. TextureEntry.RemovesThePairEvenInsideALongerNumber pins it.
    ReplaceAll(line, PairText(property, oldValue), "");
    if (newValue != 0 || property == Property::MipMode)
        line = std::string(Trim(line)) + PairText(property, newValue);
    if (property == Property::MipMode)
        ReplaceAll(line, PairText(property, 1), "");
}

}  // namespace

void SetProperty(TextureEntry& entry, Property property, std::uint32_t value)
{
    if (property == Property::Name || property == Property::Affiliate)
        return;
    std::uint32_t& stored = entry.values[static_cast<std::size_t>(property)];
    if (!entry.lineText.empty())
        EditLine(entry.lineText, property, stored, value);
    stored = value;
}

const std::string& EntryLine(TextureEntry& entry)
{
    if (!entry.lineText.empty())
        return entry.lineText;
    entry.lineText = "\"" + Narrow(entry.name) + "\"";
    if (entry.IsAlias())
        entry.lineText += " \"affiliate=" + Narrow(entry.affiliate) + "\"\n";
    else
        entry.lineText += PairText(Property::Width, entry.Value(Property::Width)) +
                          PairText(Property::Height, entry.Value(Property::Height)) + "\n";
    for (std::size_t key = 0; key < kPropertyCount; ++key)
        SetProperty(entry, static_cast<Property>(key), entry.values[key]);
    return entry.lineText;
}

std::uint32_t EntryNameHash(TextureEntry& entry)
{
    if (entry.nameHash == 0)
        entry.nameHash = NameHash(entry.name);
    return entry.nameHash;
}

void SetEntryName(TextureEntry& entry, std::wstring name)
{
    ReplaceAll(entry.lineText, "\"" + Narrow(entry.name) + "\"", "\"" + Narrow(name) + "\"");
    entry.name = std::move(name);
    entry.nameHash = NameHash(entry.name);
}

void SetAffiliate(TextureEntry& alias, std::wstring target)
{
    // A line that was left behind by a renaming still has the older name.
    const std::wstring written =
        alias.lineText.empty() ? std::wstring() : ParseEntryLine(alias.lineText).affiliate;
    if (!written.empty())
        ReplaceAll(alias.lineText, "\"affiliate=" + Narrow(written) + "\"",
                   "\"affiliate=" + Narrow(target) + "\"");
    alias.affiliate = std::move(target);
}

TextureEntry MakeEntry(const NewTexture& texture)
{
    TextureEntry entry;
    SetEntryName(entry, texture.name);
    SetProperty(entry, Property::Width, texture.width);
    SetProperty(entry, Property::Height, texture.height);
    SetProperty(entry, Property::Cat, texture.category);
    SetProperty(entry, Property::Format, 0);
    SetProperty(entry, Property::AlphaMode, texture.alphaMode);
    SetProperty(entry, Property::HasDetail, 0);
    SetProperty(entry, Property::CamNorm, texture.camNorm);
    SetProperty(entry, Property::HasBias, 0);
    SetProperty(entry, Property::HasSibling, 0);
    return entry;
}

TextureEntry MakeAlias(std::wstring name, std::wstring target)
{
    TextureEntry entry;
    SetEntryName(entry, std::move(name));
    entry.affiliate = std::move(target);
    return entry;
}
