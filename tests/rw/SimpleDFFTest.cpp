#include "rw/SimpleDFF.h"

#include "rw/ModelTextures.h"
#include "tests/rw/StreamFixture.h"

namespace {

using RW::CSimpleDFF;
using RW::ModelText;
using RwFile::Bytes;
using RwFile::Joined;
using Names = std::vector<std::wstring>;

const std::wstring kNoChild = L"Node have no requested child! (83)";

/// Two geometries that share a texture.
Bytes TwoGeometries()
{
    const auto list = [](const std::vector<std::string>& names) {
        std::vector<Bytes> materials;
        materials.reserve(names.size());
        for (const std::string& name : names)
            materials.push_back(RwFile::Material({.textures = {name}}));
        return RwFile::MaterialList(materials);
    };
    return RwFile::Clump(
        {RwFile::Geometry(list({"road", "wall", "road"})), RwFile::Geometry(list({"roof", "road"}))});
}

class SimpleDFF : public StreamFixture {
protected:
    std::unique_ptr<CSimpleDFF> Of(const Bytes& bytes) { return Opened<CSimpleDFF>(bytes); }
    Names NamesOf(const Bytes& bytes) { return RW::CollectTextureNames(*Of(bytes)); }
    /// The body that a new name is stored in.
    Bytes StoredAs(const std::wstring& name)
    {
        const auto model = Of(RwFile::Model({{.textures = {"road"}}}));
        EXPECT_TRUE(model->SetTextureName(name, 0, 0, 0, ModelText::Name));
        const auto body = model->GetNode({2, 1, 1, 1, 1, 1})->GetData();
        return {body.begin(), body.end()};
    }
    /// Everything that can be done with the file, whatever it is.
    void UseModel()
    {
        CSimpleDFF model(m_oFailures, m_oFiles);
        if (!model.Open(kFile, 0, 0, 0))
            return;
        RW::RenameTextures(model, L"road", L"wall");
        EXPECT_LE(RW::CollectTextureNames(model).size(), 3U);
        EXPECT_LE(RW::CollectUsedTextureNames(model).size(), 3U);
        EXPECT_LE(RW::PlainTextOf(model).size(), 100U);
    }
    static Bytes Text(const std::string& text)
    {
        Bytes bytes(text.size());
        std::transform(text.begin(), text.end(), bytes.begin(),
                       [](char c) { return static_cast<std::byte>(c); });
        return bytes;
    }
};

}  // namespace

TEST_F(SimpleDFF, ReadsCountsAndNames)
{
    const auto model = Of(TwoGeometries());
    EXPECT_EQ(model->GetGeometryCount(), 2U);
    EXPECT_EQ(model->GetMaterialCount(0), 3U);
    EXPECT_EQ(model->GetMaterialCount(1), 2U);
    EXPECT_EQ(model->GetMaterialTextureCount(1, 1), 1U);
    EXPECT_EQ(model->GetMaterialChild(0, 1, 0)->Id(), 0x06U);
    EXPECT_EQ(model->GetTextureName(0, 1, 0, ModelText::Name), L"wall");
    EXPECT_EQ(model->GetTextureName(0, 1, 0, ModelText::Mask), L"");
    EXPECT_EQ(TakeBoxes(), Lines());
    model->Reserved1();
}

TEST_F(SimpleDFF, CollectsEveryNameOnceInOrderOfFirstAppearance)
{
    EXPECT_EQ(NamesOf(TwoGeometries()), (Names{L"road", L"wall", L"roof"}));
    EXPECT_EQ(TakeBoxes(), Lines());
}

TEST_F(SimpleDFF, SkipsEmptyNamesAndTellsCaseApart)
{
    EXPECT_EQ(NamesOf(RwFile::Model({{.textures = {""}}, {.textures = {}}, {.textures = {"Road", "road"}}})),
              (Names{L"Road", L"road"}));
    EXPECT_EQ(TakeBoxes(), Lines());
}

TEST_F(SimpleDFF, AnExtensionOf101BytesAddsTheNameAtByte60OfItsFirstSection)
{
    // The first section has a header of its own: 12 and 89 bytes are 101.
    EXPECT_EQ(
        NamesOf(RwFile::Model({{.textures = {"road"}, .extension = RwFile::EffectExtension("shine", 89)}})),
        (Names{L"road", L"shine"}));
    EXPECT_EQ(
        NamesOf(RwFile::Model({{.textures = {"road"}, .extension = RwFile::EffectExtension("shine", 88)}})),
        Names{L"road"});
    EXPECT_EQ(NamesOf(RwFile::Model({{.textures = {}, .extension = RwFile::EffectExtension("road", 200)}})),
              Names{L"road"});
}

TEST_F(SimpleDFF, AnEffectNameEndsWithItsBody)
{
    EXPECT_EQ(NamesOf(RwFile::Model({{.extension = RwFile::EffectExtension(std::string(100, 'n'), 89)}})),
              Names{std::wstring(29, L'n')});
}

TEST_F(SimpleDFF, AnEffectSectionThatIsTooShortHasNoName)
{
    const Bytes small = Joined(
        {RwFile::Section(0x120, RwFile::Filled(60, 'x')), RwFile::Section(0x11F, RwFile::Filled(60, 'y'))});
    EXPECT_EQ(NamesOf(RwFile::Model({{.extension = small}})), Names());
    const auto model =
        Of(RwFile::Model({{.textures = {"road"}}, {.extension = RwFile::EffectExtension("a", 62)}}));
    EXPECT_EQ(model->GetEffectTextureName(0, 0), L"");
    EXPECT_EQ(model->GetEffectTextureName(0, 1), L"a");
    EXPECT_EQ(TakeBoxes(), Lines());
}

TEST_F(SimpleDFF, UsedNamesAreThoseOfTheEffectsToo)
{
    // Behind another section, a kind and two numbers; the second texture is cut off and does not count.
    const Bytes effects = Joined({RwFile::Words({2, 2, 0, 0, 1}), RwFile::Texture("chrome", "mask"),
                                  RwFile::SectionClaiming(0x06, 500, RwFile::String("cut"))});
    const Bytes extension =
        Joined({RwFile::Section(0x11F, RwFile::Filled(4, 0)), RwFile::Section(0x120, effects)});
    const auto model = Of(RwFile::Model({{.textures = {"road"}, .extension = extension}}));
    EXPECT_EQ(RW::CollectUsedTextureNames(*model), (Names{L"road", L"chrome"}));
    EXPECT_EQ(RW::CollectTextureNames(*model), Names{L"road"});
    EXPECT_EQ(TakeBoxes(), Lines());
}

TEST_F(SimpleDFF, ADictionaryHasNoNamesOfAModel)
{
    EXPECT_EQ(NamesOf(RwFile::Dictionary({RwFile::PCNative({})})), Names());
    EXPECT_EQ(NamesOf(RwFile::Section(0x10, {})), Names());
}

TEST_F(SimpleDFF, StoresANameInTheBytesOfItsOddSizeRule)
{
    EXPECT_EQ(StoredAs(L""), Bytes(1));
    EXPECT_EQ(StoredAs(L"a"), Text(std::string("a\0", 2)));
    EXPECT_EQ(StoredAs(L"ab"), Text(std::string("ab\0", 3)));
    EXPECT_EQ(StoredAs(L"abc"), Text("a"));
    EXPECT_EQ(StoredAs(L"abcd"), Text("ab"));
    EXPECT_EQ(StoredAs(L"abcde"), Text("abc"));
    EXPECT_EQ(StoredAs(L"abcdef"), Text("abcd"));
    EXPECT_EQ(StoredAs(L"abcdefg"), Text("ab"));
    EXPECT_EQ(StoredAs(L"abcdefghijklmnop"), Text("abcde"));
}

TEST_F(SimpleDFF, ARenameChangesEveryMaterialThatUsesTheTexture)
{
    const auto model = Of(TwoGeometries());
    EXPECT_EQ(RW::RenameTextures(*model, L"road", L"street"), 3U);
    // 7 characters with the terminator: 1 + 3 bytes.
    EXPECT_EQ(RW::CollectTextureNames(*model), (Names{L"stre", L"wall", L"roof"}));
    EXPECT_EQ(RW::RenameTextures(*model, L"ROAD", L"x"), 0U);
    EXPECT_EQ(RW::RenameTextures(*model, L"street", L"x"), 0U);
}

TEST_F(SimpleDFF, ARenamedModelCanBeReadAgain)
{
    const auto model = Of(TwoGeometries());
    RW::RenameTextures(*model, L"road", L"way");
    ASSERT_TRUE(model->Save("copy"));
    const Bytes saved = *m_oFiles.Find("copy");
    // Three bodies of 8 bytes became 1 byte; the root's header follows once more.
    EXPECT_EQ(saved.size(), TwoGeometries().size() - 21 + 12);
    EXPECT_TRUE(std::equal(saved.begin(), saved.begin() + 12, saved.end() - 12));
    const auto again = Of(saved);
    EXPECT_EQ(RW::CollectTextureNames(*again), (Names{L"w", L"wall", L"roof"}));
    EXPECT_EQ(again->Root()->Size(), saved.size() - 24);
    EXPECT_EQ(TakeBoxes(), Lines());
}

TEST_F(SimpleDFF, SavesAnUnchangedModelAsItWas)
{
    const Bytes file = TwoGeometries();
    const auto model = Of(file);
    ASSERT_TRUE(model->Save("copy"));
    EXPECT_EQ(*m_oFiles.Find("copy"), Joined({file, Bytes(file.begin(), file.begin() + 12)}));
}

TEST_F(SimpleDFF, NoNameLeavesEverythingAsItIs)
{
    const auto model = Of(TwoGeometries());
    EXPECT_TRUE(model->SetTextureName(std::nullopt, 99, 99, 99, ModelText::Name));
    EXPECT_TRUE(model->SetTextureName(std::nullopt, 0, 0, 0, ModelText::Name));
    EXPECT_EQ(model->GetTextureName(0, 0, 0, ModelText::Name), L"road");
    EXPECT_EQ(TakeBoxes(), Lines());
}

TEST_F(SimpleDFF, ThePlainTextNamesTheFirstTextureOfEveryMaterialOfTheFirstGeometry)
{
    EXPECT_EQ(RW::PlainTextOf(*Of(TwoGeometries())), L"road\nwall\nroad\n");
    EXPECT_EQ(RW::PlainTextOf(*Of(RwFile::Model({{.textures = {"one", "two"}}}))), L"one\n");
}

TEST_F(SimpleDFF, AMaterialWithoutATextureIsAStopBoxAndHasNoLineInThePlainText)
{
    EXPECT_EQ(RW::PlainTextOf(*Of(RwFile::Model({{.textures = {"one"}}, {}, {.textures = {"two"}}}))),
              L"one\ntwo\n");
    EXPECT_EQ(TakeBoxes(), Lines{L"Wrong section ID. (370)"});
}

// Damaged input.

TEST_F(SimpleDFF, CountsBeyondTheSectionsEndAfterOneStopBox)
{
    const Bytes list = RwFile::MaterialList(
        {RwFile::Material({.textures = {"road"}, .textureCount = 4000000000U})}, 3000000000U);
    EXPECT_EQ(NamesOf(RwFile::Clump({RwFile::Geometry(list)}, 0xFFFFFFFF)), Names{L"road"});
    // One for the counts; the last child of the material, its extension, has no name.
    EXPECT_EQ(TakeBoxes(), (Lines{kNoChild, kNoChild}));
}

TEST_F(SimpleDFF, AMissingChildIsAStopBoxOfEveryCount)
{
    const auto model = Of(TwoGeometries());
    EXPECT_EQ(model->GetMaterialCount(2), 0U);
    EXPECT_EQ(TakeBoxes(), Lines{kNoChild});
    EXPECT_EQ(model->GetMaterialTextureCount(0, 3), 0U);
    EXPECT_EQ(TakeBoxes(), Lines{kNoChild});
    EXPECT_EQ(Of(RwFile::Section(0x10, {}))->GetGeometryCount(), 0U);
    EXPECT_EQ(TakeBoxes(), Lines{kNoChild});
    EXPECT_EQ(Closed<CSimpleDFF>()->GetGeometryCount(), 0U);
}

TEST_F(SimpleDFF, AMissingChildIsAStopBoxOfEveryName)
{
    const auto model = Of(TwoGeometries());
    constexpr std::uint32_t kLast = 0xFFFFFFFF;
    EXPECT_EQ(model->GetMaterialChild(0, 0, 5), nullptr);
    EXPECT_EQ(TakeBoxes(), Lines{kNoChild});
    EXPECT_EQ(model->GetMaterialChild(kLast, kLast, kLast), nullptr);
    EXPECT_EQ(TakeBoxes(), Lines{kNoChild});
    EXPECT_EQ(model->GetTextureName(0, 0, 4, ModelText::Name), L"");
    EXPECT_EQ(TakeBoxes(), Lines{kNoChild});
    EXPECT_FALSE(model->SetTextureName(L"a", 0, 0, 4, ModelText::Name));
    EXPECT_EQ(TakeBoxes(), Lines{kNoChild});
}

TEST_F(SimpleDFF, AMaterialWithoutAnExtensionIsAStopBox)
{
    const Bytes bare = RwFile::Section(
        0x07, Joined({RwFile::Struct(RwFile::Words({0, 0, 0, 1, 0, 0, 0})), RwFile::Texture("road")}));
    EXPECT_EQ(NamesOf(RwFile::Clump({RwFile::Geometry(RwFile::MaterialList({bare}))})), Names{L"road"});
    EXPECT_EQ(TakeBoxes(), Lines{kNoChild});
}

TEST_F(SimpleDFF, CountsInStructsThatAreTooShortAreZero)
{
    const Bytes shortList = RwFile::Section(0x08, RwFile::Struct({}));
    EXPECT_EQ(NamesOf(RwFile::Clump({RwFile::Geometry(shortList)})), Names());
    const Bytes shortMaterial = RwFile::Section(
        0x07,
        Joined({RwFile::Struct(RwFile::Filled(12, 1)), RwFile::Texture("road"), RwFile::EmptyExtension()}));
    EXPECT_EQ(NamesOf(RwFile::Clump({RwFile::Geometry(RwFile::MaterialList({shortMaterial}))})), Names());
}

TEST_F(SimpleDFF, RefusesEveryTruncationOfAGoodModel)
{
    const Bytes whole = TwoGeometries();
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        EXPECT_EQ(OpeningErrorOf<CSimpleDFF>(cut), L"Stream reading error.") << length;
        TakeBoxes();
    }
}

TEST_F(SimpleDFF, SurvivesEverySingleChangedByte)
{
    const Bytes whole =
        RwFile::Model({{.textures = {"road"}, .extension = RwFile::EffectExtension("shine", 89)}});
    for (std::size_t at = 0; at < whole.size(); ++at) {
        for (const std::byte value : {std::byte{0}, std::byte{1}, std::byte{0x7F}, std::byte{0xFF}}) {
            Bytes changed = whole;
            changed[at] = value;
            m_oFiles.Put(kFile, changed);
            const std::wstring error = SoftErrorOf([this] { UseModel(); });
            EXPECT_TRUE(error == L"none" || error == L"Stream reading error.") << at;
        }
    }
}
