#include "rw/SimpleDFF.h"

#include <algorithm>
#include <limits>
#include <vector>

#include "base/ByteReader.h"
#include "base/Text.h"

namespace RW {
namespace {

constexpr std::uint32_t kGeometryListOfClump = 2;
constexpr std::uint32_t kMaterialListOfGeometry = 1;
constexpr std::size_t kTexturesOfMaterial = 12;
constexpr std::size_t kEffectName = 60;

CNode* ChildOf(CNode* node, std::uint32_t index)
{
    return node != nullptr ? node->GetChild(index) : nullptr;
}

// A number that is one short of the largest has no child behind it either.
CNode* ChildBehindStruct(CNode* node, std::uint32_t index)
{
    constexpr auto kLast = std::numeric_limits<std::uint32_t>::max();
    return ChildOf(node, index < kLast ? index + 1 : kLast);
}

// Deliberate: far too short for most names, "abc" is stored as one byte.
// SimpleDFF.StoresANameInTheBytesOfItsOddSizeRule pins it.
std::vector<std::byte> StoredName(std::wstring_view name)
{
    const std::size_t characters = name.size() + 1;
    std::vector<std::byte> bytes((characters >> 2) + (characters & 3));
    const std::string narrow = Narrow(name);
    for (std::size_t i = 0; i < std::min(bytes.size(), narrow.size()); ++i)
        bytes[i] = static_cast<std::byte>(narrow[i]);
    return bytes;
}

void UpdateSizes(CNode& node)
{
    if (node.ChildCount() == 0)
        return;
    std::uint64_t total = 0;
    for (std::uint32_t i = 0; i < node.ChildCount(); ++i) {
        CNode* const child = node.FindChild(i);
        if (child == nullptr)
            continue;
        UpdateSizes(*child);
        total += std::uint64_t{child->Size()} + kHeaderBytes;
    }
    // A tree too large for its sizes is refused when it is written.
    if (total <= std::numeric_limits<std::uint32_t>::max())
        node.SetSize(static_cast<std::uint32_t>(total));
}

}  // namespace

std::uint32_t CSimpleDFF::CountIn(CNode* list, std::size_t offset)
{
    CNode* const facts = ChildOf(list, 0);
    if (facts == nullptr)
        return 0;
    const auto head = facts->GetHead(offset + sizeof(std::uint32_t), File());
    return head.size() > offset ? CByteReader(head.subspan(offset)).U32() : 0;
}

CNode* CSimpleDFF::GeometryList()
{
    return ChildOf(Root(), kGeometryListOfClump);
}

CNode* CSimpleDFF::MaterialList(std::uint32_t geometry)
{
    return ChildOf(ChildBehindStruct(GeometryList(), geometry), kMaterialListOfGeometry);
}

CNode* CSimpleDFF::Material(std::uint32_t geometry, std::uint32_t material)
{
    return ChildBehindStruct(MaterialList(geometry), material);
}

std::uint32_t CSimpleDFF::GetGeometryCount()
{
    return CountIn(GeometryList(), 0);
}

std::uint32_t CSimpleDFF::GetMaterialCount(std::uint32_t geometry)
{
    return CountIn(MaterialList(geometry), 0);
}

std::uint32_t CSimpleDFF::GetMaterialTextureCount(std::uint32_t geometry, std::uint32_t material)
{
    return CountIn(Material(geometry, material), kTexturesOfMaterial);
}

CNode* CSimpleDFF::GetMaterialChild(std::uint32_t geometry, std::uint32_t material, std::uint32_t child)
{
    return ChildBehindStruct(Material(geometry, material), child);
}

CNode* CSimpleDFF::TextureString(std::uint32_t geometry, std::uint32_t material, std::uint32_t texture,
                                 ModelText which)
{
    return ChildBehindStruct(GetMaterialChild(geometry, material, texture),
                             static_cast<std::uint32_t>(which));
}

std::wstring CSimpleDFF::GetTextureName(std::uint32_t geometry, std::uint32_t material, std::uint32_t texture,
                                        ModelText which)
{
    CNode* const text = TextureString(geometry, material, texture, which);
    return text != nullptr ? TextIn(text->GetData(File())) : std::wstring();
}

bool CSimpleDFF::SetTextureName(std::optional<std::wstring_view> name, std::uint32_t geometry,
                                std::uint32_t material, std::uint32_t texture, ModelText which)
{
    if (!name)
        return true;
    CNode* const text = TextureString(geometry, material, texture, which);
    if (text == nullptr)
        return false;
    text->SetData(StoredName(*name));
    return true;
}

CNode* CSimpleDFF::MaterialExtension(std::uint32_t geometry, std::uint32_t material)
{
    return GetMaterialChild(geometry, material, GetMaterialTextureCount(geometry, material));
}

std::wstring CSimpleDFF::GetEffectTextureName(std::uint32_t geometry, std::uint32_t material)
{
    CNode* const extension = MaterialExtension(geometry, material);
    if (extension == nullptr || extension->Size() == 0)
        return {};
    CNode* const effect = extension->GetChild(0);
    if (effect == nullptr || effect->Size() <= kEffectName)
        return {};
    const auto body = effect->GetData(File());
    return body.size() > kEffectName ? TextIn(body.subspan(kEffectName)) : std::wstring();
}

void CSimpleDFF::PrepareToSave()
{
    if (Root() != nullptr)
        UpdateSizes(*Root());
}

}  // namespace RW
