#include "codec/PluginTable.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/Text.h"
#include "tests/codec/FakeCodecs.h"
#include "tests/codec/MemorySettings.h"
#include "tests/codec/StubPlugins.h"
#include "tests/support/ScriptedPrompt.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using testing::ElementsAre;

class PluginTable : public testing::Test {
protected:
    void Place(const std::string& stub, const std::string& name) { PlaceStub(stub, m_oFolder.Path(), name); }
    void Discover() { m_oTable.Discover(m_oFolder.Path(), m_oPrompt); }
    static std::wstring File(const std::string& name) { return Widen(StubFileName(name)); }

    std::vector<std::wstring> Names() const
    {
        std::vector<std::wstring> names;
        for (const CodecPlugin& plugin : m_oTable.Plugins())
            names.push_back(plugin.fileName);
        return names;
    }

    std::uint32_t MarkOfDxtEncoder() const
    {
        return m_oTable.Compress(CacheIndex::Dxt)(nullptr, nullptr, 0, 0, 0, 0);
    }

    CTemporaryFolder m_oFolder;
    CScriptedPrompt m_oPrompt;
    CMemorySettings m_oSettings;
    CPluginTable m_oTable;
};

}  // namespace

// Discovery.

TEST_F(PluginTable, FindsNothingWithoutAFolder)
{
    m_oTable.Discover(m_oFolder / "plugins", m_oPrompt);
    m_oTable.BindFromSettings(m_oSettings);
    EXPECT_TRUE(m_oTable.Plugins().empty());
    EXPECT_EQ(m_oTable.Compress(CacheIndex::Dxt), nullptr);
    EXPECT_EQ(m_oSettings.ReadString(L"DXT", L"plugin"), L"");
    EXPECT_TRUE(m_oPrompt.Shown().empty());
}

TEST_F(PluginTable, ListsPluginsByNameWhateverTheCase)
{
    Place("build415", "b");
    Place("second", "A");
    Place("build396", "C");
    Discover();
    EXPECT_THAT(Names(), ElementsAre(File("A"), File("b"), File("C")));
}

TEST_F(PluginTable, TakesOnlyFilesWithExactlyTheExtensionOfALibrary)
{
    std::filesystem::copy_file(PlaceStub("build415", m_oFolder.Path(), "a"),
                               m_oFolder / (StubFileName("b") + "x"));
    std::filesystem::copy_file(m_oFolder / StubFileName("a"), m_oFolder / "c.txt");
    Discover();
    EXPECT_THAT(Names(), ElementsAre(File("a")));
}

TEST_F(PluginTable, ReportsALibraryThatDoesNotFitUnderItsFolderAndGoesOn)
{
    Place("build395", "a");
    Place("build415", "b");
    Discover();
    EXPECT_THAT(Names(), ElementsAre(File("b")));
    ASSERT_EQ(m_oPrompt.Shown().size(), 1U);
    EXPECT_EQ(m_oPrompt.Shown()[0].text, L"plugins\\" + File("a") + L" is not supported by this build.");
}

TEST_F(PluginTable, IgnoresTheNinthPlugin)
{
    for (int number = 1; number <= 9; ++number)
        Place("build415", "plugin" + std::to_string(number));
    Discover();
    ASSERT_EQ(m_oTable.Plugins().size(), 8U);
    EXPECT_EQ(m_oTable.Plugins().back().fileName, File("plugin8"));
}

TEST_F(PluginTable, DoesNotCountRefusedLibrariesAmongTheEight)
{
    for (int number = 1; number <= 9; ++number)
        Place("build416", "a" + std::to_string(number));
    Place("build415", "z");
    Discover();
    EXPECT_THAT(Names(), ElementsAre(File("z")));
    EXPECT_EQ(m_oPrompt.Shown().size(), 9U);
}

TEST_F(PluginTable, SkipsNamesOfMoreThanOneHundredAndTwentySevenCharacters)
{
    const std::size_t extension = StubFileName("").size();
    Place("build415", std::string(127 - extension, 'a'));
    Place("build415", std::string(128 - extension, 'b'));
    Discover();
    EXPECT_THAT(Names(), ElementsAre(File(std::string(127 - extension, 'a'))));
}

// What a plugin says of itself.

TEST_F(PluginTable, ReadsTheTextsOfAPluginAndAtMostFiveNames)
{
    Place("build415", "a");
    Discover();
    const CodecPlugin& plugin = m_oTable.Plugins().at(0);
    EXPECT_EQ(plugin.DisplayName(), L"Stub \u041A\U0001F3A8");
    EXPECT_EQ(plugin.Description(), L"Does nothing, slowly.");
    EXPECT_THAT(plugin.QualityNames(), ElementsAre(L"Draft", L"Fast", L"Normal", L"Good", L"Best"));
    EXPECT_THAT(plugin.DitheringNames(), ElementsAre(L"None", L"Diffusion"));
}

TEST_F(PluginTable, HasNoTextsForAPluginThatGivesNone)
{
    Place("second", "a");
    Discover();
    const CodecPlugin& plugin = m_oTable.Plugins().at(0);
    EXPECT_EQ(plugin.DisplayName(), L"");
    EXPECT_TRUE(plugin.QualityNames().empty());
}

TEST_F(PluginTable, KnowsWhichPluginsMayRunOnSeveralThreads)
{
    Place("build415", "a");
    Place("both_types", "b");
    Place("second", "c");
    Discover();
    EXPECT_TRUE(m_oTable.Plugins().at(0).threadSafe);
    EXPECT_FALSE(m_oTable.Plugins().at(1).threadSafe);
    EXPECT_FALSE(m_oTable.Plugins().at(2).threadSafe);
}

TEST_F(PluginTable, KnowsWhichPluginsAreToldTheDitheringMode)
{
    Place("with_modes", "a");
    Place("build415", "b");
    Place("odd_text", "c");
    Place("second", "d");
    Discover();
    const std::vector<DitheringChoice> wanted = {DitheringChoice::Modes, DitheringChoice::OnOff,
                                                 DitheringChoice::OnOff, DitheringChoice::OnOff};
    for (std::size_t plugin = 0; plugin < wanted.size(); ++plugin) {
        m_oTable.Bind(CacheIndex::Dxt, plugin);
        EXPECT_EQ(m_oTable.Dithering(CacheIndex::Dxt), wanted[plugin]) << plugin;
    }
    m_oTable.Bind(CacheIndex::Dxt, 0);
    m_oTable.Unbind(CacheIndex::Dxt);
    EXPECT_EQ(m_oTable.Dithering(CacheIndex::Dxt), DitheringChoice::OnOff);
}

TEST_F(PluginTable, HoldsOneLockForAllCachesOfAPluginThatMustNotRunTwice)
{
    Place("second", "a");
    Discover();
    m_oTable.Bind(CacheIndex::Dxt, 0);
    m_oTable.Bind(CacheIndex::Etc1, 0);
    std::mutex* const held = m_oTable.OneAtATime(CacheIndex::Dxt);
    ASSERT_NE(held, nullptr);
    EXPECT_EQ(m_oTable.OneAtATime(CacheIndex::Etc1), held);
    const auto lock = LockCodec(held);
    EXPECT_TRUE(lock.owns_lock());
}

TEST_F(PluginTable, NeedsNoLockForAPluginThatMayRunTwice)
{
    Place("build415", "a");
    Discover();
    m_oTable.Bind(CacheIndex::Dxt, 0);
    EXPECT_EQ(m_oTable.OneAtATime(CacheIndex::Dxt), nullptr);
    EXPECT_FALSE(LockCodec(nullptr).owns_lock());
}

TEST_F(PluginTable, LocksFunctionsOfTheProgramUnlessTheyMayRunTwice)
{
    m_oTable.BindFunctions(CacheIndex::Dxt, nullptr, nullptr);
    EXPECT_NE(m_oTable.OneAtATime(CacheIndex::Dxt), nullptr);
    m_oTable.BindFunctions(CacheIndex::Dxt, nullptr, nullptr, CodecThreading::Free);
    EXPECT_EQ(m_oTable.OneAtATime(CacheIndex::Dxt), nullptr);
}

TEST_F(PluginTable, SupportsACacheOnlyWithBothEntryPoints)
{
    Place("compress_only", "a");
    Place("second", "b");
    Discover();
    EXPECT_FALSE(m_oTable.Plugins().at(0).Supports(CacheIndex::Dxt));
    EXPECT_TRUE(m_oTable.Plugins().at(1).Supports(CacheIndex::Dxt));
    EXPECT_TRUE(m_oTable.Plugins().at(1).Supports(CacheIndex::Etc1));
    EXPECT_FALSE(m_oTable.Plugins().at(1).Supports(CacheIndex::Pvrtc));
}

// Binding.

TEST_F(PluginTable, BindsTheFirstPluginThatSupportsACacheAndWritesItsName)
{
    Place("build415", "a");
    Place("second", "b");
    Discover();
    m_oTable.BindFromSettings(m_oSettings);
    EXPECT_EQ(m_oTable.BoundPlugin(CacheIndex::Dxt), 0U);
    EXPECT_EQ(m_oTable.BoundPlugin(CacheIndex::Etc1), 1U);
    EXPECT_EQ(m_oTable.BoundPlugin(CacheIndex::Pvrtc), std::nullopt);
    EXPECT_EQ(m_oSettings.ReadString(L"DXT", L"plugin"), File("a"));
    EXPECT_EQ(m_oSettings.ReadString(L"ETC1", L"plugin"), File("b"));
    EXPECT_EQ(m_oSettings.ReadString(L"PVRTC", L"plugin"), L"");
}

TEST_F(PluginTable, BindsThePluginThatTheSettingsName)
{
    Place("build415", "a");
    Place("second", "b");
    Discover();
    m_oSettings.WriteString(L"DXT", L"plugin", File("b"));
    m_oTable.BindFromSettings(m_oSettings);
    EXPECT_EQ(m_oTable.BoundPlugin(CacheIndex::Dxt), 1U);
    EXPECT_EQ(MarkOfDxtEncoder(), 2U);
}

TEST_F(PluginTable, ComparesTheNameOfTheSettingsExactly)
{
    Place("build415", "a");
    Place("second", "b");
    Discover();
    m_oSettings.WriteString(L"DXT", L"plugin", ToUpperAscii(File("b")));
    m_oTable.BindFromSettings(m_oSettings);
    EXPECT_EQ(m_oTable.BoundPlugin(CacheIndex::Dxt), 0U);
    EXPECT_EQ(m_oSettings.ReadString(L"DXT", L"plugin"), File("a"));
}

TEST_F(PluginTable, ReplacesANamedPluginThatLacksAnEntryPoint)
{
    Place("compress_only", "a");
    Place("second", "b");
    Discover();
    m_oSettings.WriteString(L"DXT", L"plugin", File("a"));
    m_oTable.BindFromSettings(m_oSettings);
    EXPECT_EQ(m_oTable.BoundPlugin(CacheIndex::Dxt), 1U);
    EXPECT_EQ(m_oSettings.ReadString(L"DXT", L"plugin"), File("b"));
}

TEST_F(PluginTable, LeavesAMissingEntryPointEmptyWhenAPluginIsBound)
{
    Place("compress_only", "a");
    Discover();
    m_oTable.Bind(CacheIndex::Dxt, 0);
    EXPECT_EQ(MarkOfDxtEncoder(), 3U);
    EXPECT_EQ(m_oTable.Decompress(CacheIndex::Dxt), nullptr);
}

TEST_F(PluginTable, UnbindsAndTakesFunctionsOfTheProgram)
{
    m_oTable.BindFunctions(CacheIndex::Unc, nullptr, Fake::CopySixteenBit);
    EXPECT_EQ(m_oTable.Decompress(CacheIndex::Unc), &Fake::CopySixteenBit);
    EXPECT_EQ(m_oTable.BoundPlugin(CacheIndex::Unc), std::nullopt);
    m_oTable.Unbind(CacheIndex::Unc);
    EXPECT_EQ(m_oTable.Decompress(CacheIndex::Unc), nullptr);
}
