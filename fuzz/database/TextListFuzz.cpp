// Any bytes as a TXT list: it is read, every entry is edited as a command would, and what is written reads
// the same.

#include <cstdlib>

#include "database/TextList.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::size_t kLargest = 1U << 16;
    if (size > kLargest)
        return 0;
    TextList list = ParseTextList(std::as_bytes(std::span(data, size)));
    const auto written = SerializeTextList(list.categories, list.entries);
    const TextList again = ParseTextList(written);
    if (again.entries.size() < list.entries.size())
        std::abort();
    for (TextureEntry& entry : list.entries) {
        SetProperty(entry, Property::Cat, 1);
        SetProperty(entry, Property::MipMode, 0);
        SetProperty(entry, Property::Img, 0xBEEF);
        if (entry.Value(Property::Img) != 0xBEEF)
            std::abort();
    }
    return 0;
}
