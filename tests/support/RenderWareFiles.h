#pragma once

// Builds RenderWare files section by section, from the layouts in docs/formats/ and not through the code
// under test. Everything is bytes: a file is one section, a container's body is its children one behind the
// other.

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace RwFile {

using Bytes = std::vector<std::byte>;

inline constexpr std::uint32_t kVersion = 0x1803FFFF;

/// A header and a body.
Bytes Section(std::uint32_t id, const Bytes& body, std::uint32_t version = kVersion);
/// A header that claims another size than the body has.
Bytes SectionClaiming(std::uint32_t id, std::uint32_t size, const Bytes& body,
                      std::uint32_t version = kVersion);
Bytes Joined(const std::vector<Bytes>& parts);
Bytes Words(std::initializer_list<std::uint32_t> words);
Bytes Filled(std::size_t count, std::uint8_t value);
/// 0, 1, 2, … 255, 0, 1, …
Bytes Counting(std::size_t count);
Bytes Struct(const Bytes& body);
/// A String section: the text, a NUL, and NULs up to a multiple of four bytes.
Bytes String(std::string_view text);
Bytes EmptyExtension();

/// A texture of the PC.
struct PCTexture {
    std::uint32_t platform = 8;
    std::string name = "road";
    std::string mask = {};
    std::uint32_t rasterFormat = 0x600;
    std::uint32_t platformFormat = 0;
    std::uint16_t width = 2;
    std::uint16_t height = 2;
    std::uint8_t depth = 32;
    std::uint8_t levels = 1;
    std::uint8_t compression = 0;
    Bytes palette = {};
    Bytes pixels = Counting(16);
    /// The size word in front of the pixels; their number when nothing.
    std::optional<std::uint32_t> sizeWord = std::nullopt;
};
Bytes PCRecord(const PCTexture& texture);
Bytes PCNative(const PCTexture& texture);

/// A texture of the PlayStation 2.
struct PS2Texture {
    std::string name = "road";
    std::string mask = {};
    std::uint32_t width = 4;
    std::uint32_t height = 4;
    std::uint32_t depth = 32;
    std::uint32_t rasterFormat = 0x500;
    std::uint32_t transferWord = 0;  // at 52
    Bytes data = Counting(64);       // headers of levels, pixels, palette
};
Bytes PS2Native(const PS2Texture& texture);

/// A texture of the mobile platforms.
struct MobileTexture {
    std::uint32_t platform = 12;
    std::string name = "road";
    std::string mask = {};
    std::uint8_t alpha = 0;
    std::uint16_t width = 4;
    std::uint16_t height = 4;
    Bytes pixels = Counting(32);
};
Bytes MobileRecord(const MobileTexture& texture);
Bytes MobileNative(const MobileTexture& texture);

/// A dictionary of finished textures; `count` is the word of its struct when it is not their number.
Bytes Dictionary(const std::vector<Bytes>& natives, std::optional<std::uint32_t> count = std::nullopt);

/// A material of a model: textures by name, and the body of its extension.
struct ModelMaterial {
    std::vector<std::string> textures = {};
    Bytes extension = {};
    std::optional<std::uint32_t> textureCount = std::nullopt;  // when it is not their number
};
Bytes Texture(std::string_view name, std::string_view mask = "");
Bytes Material(const ModelMaterial& material);
Bytes MaterialList(const std::vector<Bytes>& materials, std::optional<std::uint32_t> count = std::nullopt);
/// A geometry; `vertices` bytes stand for everything but its materials.
Bytes Geometry(const Bytes& materialList, std::size_t vertices = 200);
Bytes Clump(const std::vector<Bytes>& geometries, std::optional<std::uint32_t> count = std::nullopt);
/// A clump of one geometry with these materials.
Bytes Model(const std::vector<ModelMaterial>& materials);
/// The body of an extension whose first section, of `size` bytes, holds a name at byte 60.
Bytes EffectExtension(std::string_view name, std::size_t size);

}  // namespace RwFile
