#include "rw/ModelTextures.h"

#include <optional>
#include <set>
#include <span>
#include <utility>

#include "base/ByteReader.h"
#include "rw/SectionId.h"

namespace RW {
namespace {

// From this size on a material's extension may hold one more name.
constexpr std::uint32_t kExtensionWithName = 101;

/// Walks a model by its counts, but no further than its sections. A list that has fewer sections than it
/// claims is one stop box in a walk, not one for each missing section.
class CModelWalk {
public:
    explicit CModelWalk(CSimpleDFF& model) : m_rModel(model) {}

    /// Calls visit(geometry, material, textures) for every material, `textures` being those that are there.
    template <class Visit>
    void EachMaterial(Visit visit)
    {
        if (m_rModel.Root() == nullptr || m_rModel.Root()->Id() != ClumpId)
            return;
        const std::uint32_t geometries = Bounded(m_rModel.GetGeometryCount(), m_rModel.GeometryList());
        for (std::uint32_t g = 0; g < geometries; ++g) {
            CNode* const list = m_rModel.MaterialList(g);
            if (list == nullptr)
                continue;
            const std::uint32_t materials = Bounded(m_rModel.GetMaterialCount(g), list);
            for (std::uint32_t m = 0; m < materials; ++m)
                visit(g, m, Bounded(m_rModel.GetMaterialTextureCount(g, m), m_rModel.Material(g, m)));
        }
    }

    /// The section behind the textures that are there; null after a stop box.
    CNode* ExtensionOf(std::uint32_t geometry, std::uint32_t material)
    {
        CNode* const node = m_rModel.Material(geometry, material);
        if (node == nullptr)
            return nullptr;
        const std::uint32_t textures = m_rModel.GetMaterialTextureCount(geometry, material);
        if (std::uint64_t{textures} + 1 < node->ChildCount())
            return node->FindChild(textures + 1);
        ReportMissingChild(*node);
        return nullptr;
    }

    /// Whether a material's extension is large enough to hold one more name.
    bool HasEffectName(std::uint32_t geometry, std::uint32_t material)
    {
        const CNode* const extension = ExtensionOf(geometry, material);
        return extension != nullptr && extension->Size() >= kExtensionWithName;
    }

private:
    std::uint32_t Bounded(std::uint32_t count, CNode* list)
    {
        if (list == nullptr || list->ChildCount() == 0)
            return 0;
        const std::uint32_t present = list->ChildCount() - 1;
        if (count <= present)
            return count;
        ReportMissingChild(*list);
        return present;
    }

    void ReportMissingChild(CNode& list)
    {
        if (!m_bReported)
            list.GetChild(list.ChildCount());
        m_bReported = true;
    }

    CSimpleDFF& m_rModel;
    bool m_bReported = false;
};

/// Keeps names in order of first appearance.
class CNameList {
public:
    void Add(const std::wstring& name)
    {
        if (!name.empty() && m_aSeen.insert(name).second)
            m_aNames.push_back(name);
    }
    std::vector<std::wstring> Take() { return std::move(m_aNames); }

private:
    std::set<std::wstring> m_aSeen;
    std::vector<std::wstring> m_aNames;
};

/// A section header at the start of some bytes, when its body fits behind it.
std::optional<SectionHeader> HeaderAt(std::span<const std::byte> bytes)
{
    CByteReader in(bytes);
    SectionHeader header;
    header.id = in.U32();
    header.size = in.U32();
    header.version = in.U32();
    return in.Ok() && header.size <= in.Left() ? std::optional(header) : std::nullopt;
}

/// The first String among the sections of a texture.
std::wstring NameInTexture(std::span<const std::byte> sections)
{
    while (const auto header = HeaderAt(sections)) {
        if (header->id == StringId)
            return TextIn(sections.subspan(kHeaderBytes, header->size));
        sections = sections.subspan(kHeaderBytes + std::size_t{header->size});
    }
    return {};
}

/// Effects are data that has texture sections somewhere in it, depending on their kind: they are looked for.
void AddNamesInEffects(std::span<const std::byte> body, std::uint32_t version, CNameList& names)
{
    while (body.size() >= kHeaderBytes) {
        const auto header = HeaderAt(body);
        const bool isTexture = header && header->id == TextureId && header->version == version;
        if (isTexture)
            names.Add(NameInTexture(body.subspan(kHeaderBytes, header->size)));
        body = body.subspan(isTexture ? kHeaderBytes + std::size_t{header->size} : 1);
    }
}

void AddEffectNames(CSimpleDFF& model, const CNode& extension, CNameList& names)
{
    for (std::uint32_t i = 0; i < extension.ChildCount(); ++i) {
        CNode* const section = extension.FindChild(i);
        if (section != nullptr && section->Id() == MaterialEffectsId)
            AddNamesInEffects(section->GetData(model.File()), section->Version(), names);
    }
}

enum class Effects { NameOnly, Everything };

std::vector<std::wstring> Collect(CSimpleDFF& model, Effects effects)
{
    CNameList names;
    CModelWalk walk(model);
    walk.EachMaterial([&](std::uint32_t g, std::uint32_t m, std::uint32_t textures) {
        for (std::uint32_t t = 0; t < textures; ++t)
            names.Add(model.GetTextureName(g, m, t, ModelText::Name));
        if (walk.HasEffectName(g, m))
            names.Add(model.GetEffectTextureName(g, m));
        const CNode* const extension = effects == Effects::Everything ? walk.ExtensionOf(g, m) : nullptr;
        if (extension != nullptr)
            AddEffectNames(model, *extension, names);
    });
    return names.Take();
}

}  // namespace

std::vector<std::wstring> CollectTextureNames(CSimpleDFF& model)
{
    return Collect(model, Effects::NameOnly);
}

std::vector<std::wstring> CollectUsedTextureNames(CSimpleDFF& model)
{
    return Collect(model, Effects::Everything);
}

std::uint32_t RenameTextures(CSimpleDFF& model, std::wstring_view from, std::wstring_view to)
{
    std::uint32_t renamed = 0;
    CModelWalk(model).EachMaterial([&](std::uint32_t g, std::uint32_t m, std::uint32_t textures) {
        for (std::uint32_t t = 0; t < textures; ++t)
            if (model.GetTextureName(g, m, t, ModelText::Name) == from &&
                model.SetTextureName(to, g, m, t, ModelText::Name))
                ++renamed;
    });
    return renamed;
}

std::wstring PlainTextOf(CSimpleDFF& model)
{
    std::wstring text;
    const CNode* const list = model.GetNode({2, 1, 1});
    const std::uint32_t children = list != nullptr ? list->ChildCount() : 0;
    for (std::int64_t i = 1; i < children; ++i)
        if (CNode* const name = model.GetNode({2, 1, 1, i, 1, 1}))
            text += TextIn(name->GetData(model.File())) + L"\n";
    return text;
}

}  // namespace RW
