#include "rw/SectionName.h"

#include <array>

namespace RW {
namespace {

constexpr std::uint32_t kSparseGroup = 0x2D;
constexpr std::uint32_t kToolkitGroup = 0x30;
constexpr std::uint32_t kGameGroup = 0x60;
constexpr std::uint32_t kPlatformGroup = 0x70;

constexpr std::uint32_t kFirstToolkit = 0x100;
constexpr std::uint32_t kFirstSparse = 0x50E;
constexpr std::uint32_t kLastSparse = 0x510;
constexpr std::uint32_t kFirstGame = 0x253F2F0;
constexpr std::uint32_t kModellerLock = 0xF21E;

// Four groups one behind the other; null where an identifier has no name.
constexpr std::array<const char*, 0x7B> kNames = {{
    // Core sections, by their identifiers.
    "N/A",
    "Struct",
    "String",
    "Extension",
    nullptr,
    "Camera",
    "Texture",
    "Material",
    "Material List",
    "Atomic Section",
    "Plane Section",
    "World",
    "Spline",
    "Matrix",
    "Frame List",
    "Geometry",
    "Clump",
    nullptr,
    "Light",
    "Unicode String",
    "Atomic",
    "Texture Native",
    "Texture Dictionary",
    "Animation Database",
    "Image",
    "Skin Animation",
    "Geometry List",
    "Anim Animation",
    "Team",
    "Crowd",
    "Delta Morph Animation",
    "Right To Render",
    "MultiTexture Effect Native",
    "MultiTexture Effect Dictionary",
    "Team Dictionary",
    "Platform Independent Texture Dictionary",
    "Table of Contents",
    "Particle Standard Global Data",
    "AltPipe",
    "Platform Independent Peds",
    "Patch Mesh",
    "Chunk Group Start",
    "Chunk Group End",
    "UV Animation Dictionary",
    "Coll Tree",
    // 0x50E to 0x510.
    "Bin Mesh PLG",
    nullptr,
    "Native Data PLG",
    // Plug-ins of the toolkit, from 0x100 on.
    "N/A",
    "Metrics PLG",
    "Spline PLG",
    "Stereo PLG",
    "VRML PLG",
    "Morph PLG",
    "PVS PLG",
    "Memory Leak PLG",
    "Animation PLG",
    "Gloss PLG",
    "Logo PLG",
    "Memory Info PLG",
    "Random PLG",
    "PNG Image PLG",
    "Bone PLG",
    "VRML Anim PLG",
    "Sky Mipmap Val",
    "MRM PLG",
    "LOD Atomic PLG",
    "ME PLG",
    "Lightmap PLG",
    "Refine PLG",
    "Skin PLG",
    "Label PLG",
    "Particles PLG",
    "GeomTX PLG",
    "Synth Core PLG",
    "STQPP PLG",
    "Part PP PLG",
    "Collision PLG",
    "HAnim PLG",
    "User Data PLG",
    "Material Effects PLG",
    "Particle System PLG",
    "Delta Morph PLG",
    "Patch PLG",
    "Team PLG",
    "Crowd PP PLG",
    "Mip Split PLG",
    "Anisotrophy PLG",
    nullptr,
    "GCN Material PLG",
    "Geometric PVS PLG",
    "XBOX Material PLG",
    "Multi Texture PLG",
    "Chain PLG",
    "Toon PLG",
    "PTank PLG",
    // Sections of the games, from 0x253F2F0 on.
    "Atomic Visibility Distance",
    "Clump Visibility Distance",
    "Frame Visibility Distance",
    "Pipeline Set",
    nullptr,
    "TexDictionary Link",
    "Specular Material",
    nullptr,
    "2DFX",
    "Night Vertex Colors",
    "Collision Model",
    "GTA HAnim",
    "Reflection Material",
    "Mesh Extension",
    "Frame",
    nullptr,
    // Platforms.
    "N/A",
    "DirectX 7",
    "OpenGL",
    "Mac OS",
    "PlayStation 2",
    "X-BOX",
    "GameCube",
    "Software Render",
    "DirectX 8",
    "DirectX 9",
    "Mobile",
}};

std::optional<std::string_view> NameAt(std::uint32_t index)
{
    if (index >= kNames.size() || kNames[index] == nullptr)
        return std::nullopt;
    return kNames[index];
}

}  // namespace

// Deliberate: the ranges are wider than the groups, so identifiers without a group of their own show names of
// the groups behind (0x31 is "Metrics PLG", 0x141 "DirectX 7").
// SectionName.ShowsNamesOfTheGroupsBehindForIdentifiersInBetween pins it.
std::optional<std::string_view> GetSectionName(std::uint32_t id)
{
    if (id > kLastSparse) {
        if ((id & ~0xFU) == kFirstGame)
            return NameAt(kGameGroup + (id - kFirstGame));
        return id == kModellerLock ? std::optional<std::string_view>("ZModeler Lock") : std::nullopt;
    }
    // Deliberate: up to and with 0x100, which therefore has no name.
    if (id <= kFirstToolkit)
        return NameAt(id);
    if (id < kFirstSparse)
        return NameAt(kToolkitGroup + (id - kFirstToolkit));
    return NameAt(kSparseGroup + (id - kFirstSparse));
}

std::optional<std::string_view> GetPlatformName(std::uint32_t platform)
{
    return platform < kNames.size() - kPlatformGroup ? NameAt(kPlatformGroup + platform) : std::nullopt;
}

}  // namespace RW
