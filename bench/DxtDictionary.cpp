#include "bench/DxtDictionary.h"

#include <cstring>

namespace Bench {

RwFile::Bytes DictionaryLevel(std::uint32_t texture)
{
    RwFile::Bytes level = RwFile::Counting(kDictionaryLevelBytes);
    std::memcpy(level.data(), &texture, sizeof texture);
    return level;
}

RwFile::Bytes MakeDxtDictionary(std::uint32_t textures)
{
    std::vector<RwFile::Bytes> natives;
    natives.reserve(textures);
    for (std::uint32_t i = 0; i < textures; ++i)
        natives.push_back(RwFile::PCNative({.name = "texture" + std::to_string(i),
                                            .rasterFormat = 0x300,
                                            .width = kDictionarySide,
                                            .height = kDictionarySide,
                                            .depth = 16,
                                            .compression = 3,
                                            .pixels = DictionaryLevel(i)}));
    return RwFile::Dictionary(natives);
}

}  // namespace Bench
