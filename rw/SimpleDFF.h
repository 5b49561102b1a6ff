#pragma once

// A model file as far as its texture names go. ModelTextures.h works on it as a whole. A section that is
// missing on the way to a name is a stop box and yields 0, null or an empty text.
//
//   Clump
//     Struct
//     Frame List
//     Geometry List
//       Struct               u32 number of geometries
//       Geometry
//         Struct
//         Material List
//           Struct           u32 number of materials
//           Material
//             Struct         u32 number of textures at 12
//             Texture        Struct, String name, String mask
//             Extension      its first section may hold one more name

#include <optional>

#include "rw/DFFCommon.h"

namespace RW {

/// Which of a texture's strings is meant.
enum class ModelText : std::uint8_t { Name = 0, Mask = 1 };

class CSimpleDFF final : public CDFFCommon {
public:
    using CDFFCommon::CDFFCommon;

    /// The counts as they are stored; more may be claimed than is there.
    std::uint32_t GetGeometryCount() override;
    std::uint32_t GetMaterialCount(std::uint32_t geometry) override;
    std::uint32_t GetMaterialTextureCount(std::uint32_t geometry, std::uint32_t material);
    /// Child `child` + 1 of a material, behind its struct.
    CNode* GetMaterialChild(std::uint32_t geometry, std::uint32_t material, std::uint32_t child);
    std::wstring GetTextureName(std::uint32_t geometry, std::uint32_t material, std::uint32_t texture,
                                ModelText which);
    /// Stores a name in a body of (n >> 2) + (n & 3) bytes, n being its characters and a terminator. No name
    /// leaves everything as it is. False when there is no such texture.
    bool SetTextureName(std::optional<std::wstring_view> name, std::uint32_t geometry, std::uint32_t material,
                        std::uint32_t texture, ModelText which);
    /// The name at byte 60 of the first section in the material's extension; empty when that is shorter.
    std::wstring GetEffectTextureName(std::uint32_t geometry, std::uint32_t material);

    /// Null after a stop box.
    CNode* GeometryList();
    CNode* MaterialList(std::uint32_t geometry);
    CNode* Material(std::uint32_t geometry, std::uint32_t material);
    /// The section behind the textures of a material.
    CNode* MaterialExtension(std::uint32_t geometry, std::uint32_t material);

protected:
    /// The header of a section is written with its size from before its children, so the sizes around a
    /// changed name are put right first.
    void PrepareToSave() override;

private:
    CNode* TextureString(std::uint32_t geometry, std::uint32_t material, std::uint32_t texture,
                         ModelText which);
    /// A count in the struct of a list; 0 after a stop box.
    std::uint32_t CountIn(CNode* list, std::size_t offset);
};

}  // namespace RW
