#include "codec/LibraryCheck.h"

#include <fstream>
#include <gtest/gtest.h>

#include "tests/codec/StubPlugins.h"
#include "tests/support/ScriptedPrompt.h"
#include "tests/support/TemporaryFolder.h"

namespace {

class LibraryCheck : public testing::Test {
protected:
    std::optional<CDynamicLibrary> Load(const std::string& stub, std::uint32_t mask = kPluginLibrary)
    {
        return LoadCompatibleLibrary(PlaceStub(stub, m_oFolder.Path(), stub), L"plugins\\some.dll", mask,
                                     m_oPrompt);
    }

    void ExpectOnlyRefusal() const
    {
        ASSERT_EQ(m_oPrompt.Shown().size(), 1U);
        EXPECT_EQ(m_oPrompt.Shown()[0].text, L"plugins\\some.dll is not supported by this build.");
        EXPECT_EQ(m_oPrompt.Shown()[0].caption, L"Error");
        EXPECT_EQ(m_oPrompt.Shown()[0].icon, PromptIcon::Error);
        EXPECT_EQ(m_oPrompt.Shown()[0].buttons, PromptButtons::Ok);
    }

    CTemporaryFolder m_oFolder;
    CScriptedPrompt m_oPrompt;
};

}  // namespace

TEST_F(LibraryCheck, AcceptsTheOldestAndTheNewestBuildThatFit)
{
    EXPECT_TRUE(Load("build396"));
    EXPECT_TRUE(Load("build415"));
    EXPECT_TRUE(m_oPrompt.Shown().empty());
}

TEST_F(LibraryCheck, RefusesALibraryThatIsTooOldWithAMessage)
{
    EXPECT_FALSE(Load("build395"));
    ExpectOnlyRefusal();
}

TEST_F(LibraryCheck, RefusesALibraryThatIsTooNewWithAMessage)
{
    EXPECT_FALSE(Load("build416"));
    ExpectOnlyRefusal();
}

TEST_F(LibraryCheck, RefusesALibraryOfAnotherKindWithAMessage)
{
    EXPECT_FALSE(Load("language"));
    ExpectOnlyRefusal();
}

TEST_F(LibraryCheck, AcceptsALibraryThatIsOfBothKinds)
{
    EXPECT_TRUE(Load("both_types"));
    EXPECT_TRUE(m_oPrompt.Shown().empty());
}

TEST_F(LibraryCheck, AcceptsALanguageLibraryWhenOneIsWanted)
{
    EXPECT_TRUE(Load("language", kLanguageLibrary));
    EXPECT_TRUE(m_oPrompt.Shown().empty());
}

TEST_F(LibraryCheck, SkipsALibraryWithoutTheExportsInSilence)
{
    EXPECT_FALSE(Load("without_build"));
    EXPECT_FALSE(Load("without_type"));
    EXPECT_TRUE(m_oPrompt.Shown().empty());
}

TEST_F(LibraryCheck, SkipsAMissingFileAndAFileThatIsNoLibraryInSilence)
{
    EXPECT_FALSE(LoadCompatibleLibrary(m_oFolder / "none.dll", L"x", kPluginLibrary, m_oPrompt));
    const auto text = m_oFolder / "text.dll";
    std::ofstream(text) << "not a library";
    EXPECT_FALSE(LoadCompatibleLibrary(text, L"x", kPluginLibrary, m_oPrompt));
    EXPECT_TRUE(m_oPrompt.Shown().empty());
}

#ifdef _WIN32
TEST_F(LibraryCheck, LeavesARefusedLibraryLoaded)
{
    EXPECT_FALSE(Load("build416"));
    // A library that is loaded cannot be deleted.
    std::error_code error;
    EXPECT_FALSE(std::filesystem::remove(m_oFolder / "build416.dll", error));
}
#else
TEST_F(LibraryCheck, LeavesARefusedLibraryLoaded)
{
    EXPECT_FALSE(Load("build416"));
    std::ifstream maps("/proc/self/maps");
    const std::string text((std::istreambuf_iterator<char>(maps)), std::istreambuf_iterator<char>());
    EXPECT_NE(text.find((m_oFolder / "build416.so").string()), std::string::npos);
}
#endif
