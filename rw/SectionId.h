#pragma once

// The section identifiers that the readers act on; SectionName.h names all of them.

#include <cstdint>

namespace RW {

enum SectionId : std::uint32_t {
    StructId = 0x01,
    StringId = 0x02,
    ExtensionId = 0x03,
    TextureId = 0x06,
    MaterialId = 0x07,
    MaterialListId = 0x08,
    GeometryId = 0x0F,
    ClumpId = 0x10,
    TextureNativeId = 0x15,
    TextureDictionaryId = 0x16,
    GeometryListId = 0x1A,
    MaterialEffectsId = 0x120,
};

}  // namespace RW
