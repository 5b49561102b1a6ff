#include "codec/CodecPlugin.h"

#include <string_view>

#include "base/Text.h"

namespace {

constexpr std::size_t kMostNames = 5;
// A text of a plugin that is not ended is not read on for ever.
constexpr std::size_t kLongestText = 511;

std::size_t TextLength(const char16_t* text)
{
    std::size_t length = 0;
    while (length < kLongestText && text[length] != u'\0')
        ++length;
    return length;
}

std::wstring ToWide(const char16_t* text, std::size_t length)
{
    std::wstring wide;
    wide.reserve(length);
    for (std::size_t at = 0; at < length; ++at) {
        const char32_t unit = text[at];
        const char32_t next = at + 1 < length ? text[at + 1] : u'\0';
        const bool isPair = (unit & 0xFC00U) == 0xD800U && (next & 0xFC00U) == 0xDC00U;
        if (isPair && sizeof(wchar_t) > sizeof(char16_t)) {
            wide.push_back(static_cast<wchar_t>(0x10000U + ((unit & 0x3FFU) << 10) + (next & 0x3FFU)));
            ++at;
        } else {
            wide.push_back(static_cast<wchar_t>(unit));
        }
    }
    return wide;
}

const char16_t* Information(const CDynamicLibrary& library, MavrelPluginInfo what)
{
    const auto information = library.Find<MavrelGetPluginInfoFn>("GetPluginInfo");
    return information != nullptr ? information(static_cast<std::uint32_t>(what)) : nullptr;
}

std::wstring SingleText(const CDynamicLibrary& library, MavrelPluginInfo what)
{
    const char16_t* const text = Information(library, what);
    return text != nullptr ? ToWide(text, TextLength(text)) : std::wstring();
}

std::vector<std::wstring> TextList(const CDynamicLibrary& library, MavrelPluginInfo what)
{
    std::vector<std::wstring> names;
    const char16_t* text = Information(library, what);
    while (text != nullptr && *text != u'\0' && names.size() < kMostNames) {
        const std::size_t length = TextLength(text);
        names.push_back(ToWide(text, length));
        if (length == kLongestText)
            break;
        text += length + 1;
    }
    return names;
}

template <class Function>
Function EntryPoint(const CDynamicLibrary& library, CacheIndex cache, const char* suffix)
{
    return library.Find<Function>((Narrow(CacheName(cache)) + suffix).c_str());
}

}  // namespace

std::wstring CodecPlugin::DisplayName() const
{
    return SingleText(library, MavrelDisplayName);
}

std::wstring CodecPlugin::Description() const
{
    return SingleText(library, MavrelDescription);
}

std::wstring CodecPlugin::InstructionSet() const
{
    return SingleText(library, MavrelInstructionSet);
}

std::vector<std::wstring> CodecPlugin::QualityNames() const
{
    return TextList(library, MavrelQualityNames);
}

std::vector<std::wstring> CodecPlugin::DitheringNames() const
{
    return TextList(library, MavrelDitheringNames);
}

bool CodecPlugin::TakesDitheringModes() const
{
    const char16_t* const text = Information(library, MavrelDitheringBits);
    // The very words: a plugin that does not know the number may have some text for it all the same.
    constexpr std::u16string_view kYes = MAVREL_DITHERING_BITS;
    return text != nullptr && std::u16string_view(text, TextLength(text)) == kYes;
}

MavrelCompressFn CodecPlugin::Compress(CacheIndex cache) const
{
    return EntryPoint<MavrelCompressFn>(library, cache, "Compress");
}

MavrelDecompressFn CodecPlugin::Decompress(CacheIndex cache) const
{
    return EntryPoint<MavrelDecompressFn>(library, cache, "Decompress");
}

bool CodecPlugin::Supports(CacheIndex cache) const
{
    return Compress(cache) != nullptr && Decompress(cache) != nullptr;
}
