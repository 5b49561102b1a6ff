#include "tests/support/RenderWareFiles.h"

#include <algorithm>

#include "base/ByteWriter.h"

namespace RwFile {
namespace {

constexpr std::uint32_t kStruct = 0x01;
constexpr std::uint32_t kString = 0x02;
constexpr std::uint32_t kExtension = 0x03;
constexpr std::uint32_t kTexture = 0x06;
constexpr std::uint32_t kMaterial = 0x07;
constexpr std::uint32_t kMaterialList = 0x08;
constexpr std::uint32_t kFrameList = 0x0E;
constexpr std::uint32_t kGeometry = 0x0F;
constexpr std::uint32_t kClump = 0x10;
constexpr std::uint32_t kTextureNative = 0x15;
constexpr std::uint32_t kDictionary = 0x16;
constexpr std::uint32_t kGeometryList = 0x1A;

std::uint32_t CountOf(const std::vector<Bytes>& parts, std::optional<std::uint32_t> told)
{
    return told.value_or(static_cast<std::uint32_t>(parts.size()));
}

Bytes WithFirst(Bytes first, const std::vector<Bytes>& rest)
{
    std::vector<Bytes> all = {std::move(first)};
    all.insert(all.end(), rest.begin(), rest.end());
    return Joined(all);
}

}  // namespace

Bytes SectionClaiming(std::uint32_t id, std::uint32_t size, const Bytes& body, std::uint32_t version)
{
    CByteWriter out;
    out.U32(id).U32(size).U32(version).Bytes(body);
    return out.Take();
}

Bytes Section(std::uint32_t id, const Bytes& body, std::uint32_t version)
{
    return SectionClaiming(id, static_cast<std::uint32_t>(body.size()), body, version);
}

Bytes Joined(const std::vector<Bytes>& parts)
{
    Bytes all;
    for (const Bytes& part : parts)
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

Bytes Words(std::initializer_list<std::uint32_t> words)
{
    CByteWriter out;
    for (const std::uint32_t word : words)
        out.U32(word);
    return out.Take();
}

Bytes Filled(std::size_t count, std::uint8_t value)
{
    return Bytes(count, std::byte{value});
}

Bytes Counting(std::size_t count)
{
    Bytes bytes(count);
    for (std::size_t i = 0; i < count; ++i)
        bytes[i] = static_cast<std::byte>(i & 0xFF);
    return bytes;
}

Bytes Struct(const Bytes& body)
{
    return Section(kStruct, body);
}

Bytes String(std::string_view text)
{
    CByteWriter out;
    out.Text(text, text.size() / 4 * 4 + 4);
    return Section(kString, out.Take());
}

Bytes EmptyExtension()
{
    return Section(kExtension, {});
}

Bytes PCRecord(const PCTexture& texture)
{
    CByteWriter out;
    out.U32(texture.platform).U32(0x1106);
    out.Text(texture.name, 32).Text(texture.mask, 32);
    out.U32(texture.rasterFormat).U32(texture.platformFormat);
    out.U16(texture.width).U16(texture.height);
    out.U8(texture.depth).U8(texture.levels).U8(4).U8(texture.compression);
    out.Bytes(texture.palette);
    out.U32(texture.sizeWord.value_or(static_cast<std::uint32_t>(texture.pixels.size())));
    out.Bytes(texture.pixels);
    return out.Take();
}

Bytes PCNative(const PCTexture& texture)
{
    return Section(kTextureNative, Joined({Struct(PCRecord(texture)), EmptyExtension()}));
}

Bytes PS2Native(const PS2Texture& texture)
{
    CByteWriter platform;
    platform.Text("PS2", 4).U32(0x1106);
    CByteWriter header;
    header.U32(texture.width).U32(texture.height).U32(texture.depth).U32(texture.rasterFormat);
    header.Fill(36, 0).U32(texture.transferWord).Fill(8, 0);
    return Section(kTextureNative,
                   Joined({Struct(platform.Take()), String(texture.name), String(texture.mask),
                           Struct(Joined({Struct(header.Take()), Struct(texture.data)})), EmptyExtension()}));
}

Bytes MobileRecord(const MobileTexture& texture)
{
    CByteWriter out;
    out.U32(texture.platform).Fill(28, 0x11);
    out.Text(texture.name, 32).Text(texture.mask, 34);
    out.U8(texture.alpha).U8(0).U16(texture.width).U16(texture.height).Fill(12, 0x22);
    out.Bytes(texture.pixels);
    return out.Take();
}

Bytes MobileNative(const MobileTexture& texture)
{
    return Section(kTextureNative, Joined({Struct(MobileRecord(texture)), EmptyExtension()}));
}

Bytes Dictionary(const std::vector<Bytes>& natives, std::optional<std::uint32_t> count)
{
    std::vector<Bytes> parts = natives;
    parts.push_back(EmptyExtension());
    return Section(kDictionary, WithFirst(Struct(Words({CountOf(natives, count)})), parts));
}

Bytes Texture(std::string_view name, std::string_view mask)
{
    return Section(kTexture, Joined({Struct(Words({0x1106})), String(name), String(mask), EmptyExtension()}));
}

Bytes Material(const ModelMaterial& material)
{
    std::vector<Bytes> parts;
    parts.reserve(material.textures.size() + 1);
    for (const std::string& name : material.textures)
        parts.push_back(Texture(name));
    const std::uint32_t count = CountOf(parts, material.textureCount);
    parts.push_back(Section(kExtension, material.extension));
    return Section(kMaterial, WithFirst(Struct(Words({0, 0xFFFFFFFF, 0, count, 0, 0, 0})), parts));
}

Bytes MaterialList(const std::vector<Bytes>& materials, std::optional<std::uint32_t> count)
{
    return Section(kMaterialList, WithFirst(Struct(Words({CountOf(materials, count)})), materials));
}

Bytes Geometry(const Bytes& materialList, std::size_t vertices)
{
    return Section(kGeometry, Joined({Struct(Filled(vertices, 0x33)), materialList, EmptyExtension()}));
}

Bytes Clump(const std::vector<Bytes>& geometries, std::optional<std::uint32_t> count)
{
    const Bytes frames = Section(kFrameList, Joined({Struct(Filled(60, 0x44)), EmptyExtension()}));
    const Bytes list =
        Section(kGeometryList, WithFirst(Struct(Words({CountOf(geometries, count)})), geometries));
    return Section(kClump, Joined({Struct(Words({1, 0, 0})), frames, list, EmptyExtension()}));
}

Bytes Model(const std::vector<ModelMaterial>& materials)
{
    std::vector<Bytes> built(materials.size());
    std::transform(materials.begin(), materials.end(), built.begin(), Material);
    return Clump({Geometry(MaterialList(built))});
}

Bytes EffectExtension(std::string_view name, std::size_t size)
{
    CByteWriter body;
    body.Fill(60, 0x55);
    body.Text(name, size > 60 ? size - 60 : 0);
    Bytes bytes = body.Take();
    bytes.resize(size);
    return Section(0x120, bytes);
}

}  // namespace RwFile
