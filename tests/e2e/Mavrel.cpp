#include "tests/e2e/Mavrel.h"

#include <exception>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iostream>
#include <optional>

#include "app/resource.h"
#include "base/Text.h"
#include "tests/e2e/driver/Wait.h"
#include "tests/e2e/driver/WindowLookup.h"

namespace {

constexpr wchar_t kTreeClass[] = L"SysTreeView32";
constexpr wchar_t kTabsClass[] = L"SysTabControl32";
constexpr wchar_t kStatusClass[] = L"msctls_statusbar32";

std::optional<MainWindow> FindMainWindow(DWORD process)
{
    for (const HWND window : TopWindows(process)) {
        const MainWindow found{window, FindDescendant(window, kTreeClass), FindDescendant(window, kTabsClass),
                               FindDescendant(window, kStatusClass)};
        if (found.tree && found.tabs && found.status)
            return found;
    }
    return std::nullopt;
}

}  // namespace

CInstallation::CInstallation()
{
    const auto built = FolderOfThisProgram().parent_path() / "bin";
    std::filesystem::copy(built / "mavrel.exe", Program());
    std::filesystem::copy(built / "plugins", m_oFolder / "plugins");
    // In the form in which settings keep every letter.
    std::ofstream(Settings(), std::ios::binary) << "\xFF\xFE";
    SetSetting(L"global", L"show_loading_screen", L"0");
}

void CInstallation::SetSetting(const std::wstring& section, const std::wstring& key,
                               const std::wstring& value) const
{
    if (!::WritePrivateProfileStringW(section.c_str(), key.c_str(), value.c_str(), Settings().c_str()))
        throw CDriveError("the settings cannot be written");
}

void CInstallation::AddLanguages() const
{
    std::filesystem::copy(FolderOfThisProgram().parent_path() / "bin" / "lang", m_oFolder / "lang");
}

std::wstring CInstallation::Setting(const std::wstring& section, const std::wstring& key) const
{
    std::wstring text(512, L'\0');
    text.resize(::GetPrivateProfileStringW(section.c_str(), key.c_str(), L"", text.data(),
                                           static_cast<DWORD>(text.size()), Settings().c_str()));
    return text;
}

CMavrel::CMavrel(const CInstallation& installation, const std::vector<std::wstring>& arguments)
    : m_oProgram(installation.Program(), arguments)
{
    m_oMain = WaitFor("the main window", [this] { return FindMainWindow(Id()); });
}

CMavrel::~CMavrel()
{
    const bool hasFailed = testing::Test::HasFailure() || std::uncaught_exceptions() != 0;
    if (hasFailed && m_oProgram.IsRunning()) {
        try {
            std::cout << ToUtf8(Describe(Id()));
        } catch (const CDriveError& error) {
            std::cout << "the program does not answer: " << error.what() << '\n';
        }
    }
}

std::wstring CMavrel::Title() const
{
    return TextOf(m_oMain.window);
}

CTree CMavrel::Tree() const
{
    return CTree(m_oMain.tree);
}

CTabs CMavrel::Tabs() const
{
    return CTabs(m_oMain.tabs);
}

CStatusPanes CMavrel::Panes() const
{
    return CStatusPanes(m_oMain.status);
}

std::vector<std::wstring> CMavrel::Facts() const
{
    std::vector<std::wstring> facts;
    for (std::size_t pane = 2; pane <= 6; ++pane)
        facts.push_back(Pane(pane));
    return facts;
}

void CMavrel::Command(int command) const
{
    PostCommand(m_oMain.window, command);
}

void CMavrel::Run(int command) const
{
    Ask(m_oMain.window, WM_COMMAND, static_cast<WPARAM>(command));
}

void CMavrel::TypeNewName(const std::wstring& name) const
{
    Run(ID_RENAME_TEXTURE);
    Tree().TypeLabel(name);
}

void CMavrel::Answer(const std::wstring& text, int button) const
{
    const auto box = WaitForMessageBox(Id());
    EXPECT_EQ(box.Text(), text);
    box.Press(button);
}

void CMavrel::AcceptError(const std::wstring& text) const
{
    const auto box = WaitForMessageBox(Id());
    EXPECT_EQ(box.Caption(), L"Error");
    EXPECT_EQ(box.Text(), text);
    EXPECT_EQ(box.Icon(), BoxIcon::Error);
    box.Press(IDOK);
}

void CMavrel::AnswerValue(const ValueStep& step) const
{
    const auto dialog = WaitForDialog(Id(), step.title);
    EXPECT_THAT(dialog.Labels(), testing::ElementsAre(step.label));
    EXPECT_EQ(dialog.Typed(), step.proposed);
    dialog.Type(step.typed);
    dialog.Press(IDOK);
}

void CMavrel::WaitForItem(const std::wstring& text) const
{
    WaitUntil("the tree to show " + ToUtf8(text),
              [&] { return testing::Value(Tree().Texts(), testing::Contains(text)); });
}

void CMavrel::WaitUntilDrawn(const std::wstring& texture) const
{
    WaitUntil("texture " + ToUtf8(texture) + " to be drawn",
              [&] { return Pane(0).starts_with(L"Texture '" + texture + L"' rendered within "); });
}

void CMavrel::ShowTexture(const std::wstring& texture) const
{
    Select({texture});
    WaitUntilDrawn(texture);
}

void CMavrel::WaitForPane(std::size_t pane, const std::wstring& text) const
{
    WaitUntil("pane " + std::to_string(pane) + " to read " + ToUtf8(text),
              [&] { return Pane(pane) == text; });
}
