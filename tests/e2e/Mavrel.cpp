#include "tests/e2e/Mavrel.h"

#include <fstream>
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

std::optional<HWND> FindMainWindow(DWORD process)
{
    for (const HWND window : TopWindows(process))
        if (FindDescendant(window, kTreeClass) && FindDescendant(window, kTabsClass) &&
            FindDescendant(window, kStatusClass))
            return window;
    return std::nullopt;
}

HWND Inside(HWND window, const wchar_t* className)
{
    const HWND found = FindDescendant(window, className);
    if (!found)
        throw CDriveError("a control of the main window is gone");
    return found;
}

}  // namespace

CInstallation::CInstallation()
{
    const auto built = FolderOfThisProgram().parent_path() / "bin";
    std::filesystem::copy(built / "mavrel.exe", Program());
    std::filesystem::copy(built / "plugins", m_oFolder / "plugins");
    std::ofstream(Settings()) << "[global]\nshow_loading_screen=0\n";
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
    m_hWindow = WaitFor("the main window", [this] { return FindMainWindow(Id()); });
}

CMavrel::~CMavrel()
{
    if (testing::Test::HasFailure() && m_oProgram.IsRunning()) {
        try {
            std::cout << ToUtf8(Describe(Id()));
        } catch (const CDriveError& error) {
            std::cout << "the program does not answer: " << error.what() << '\n';
        }
    }
}

std::wstring CMavrel::Title() const
{
    return TextOf(m_hWindow);
}

CTree CMavrel::Tree() const
{
    return CTree(Inside(m_hWindow, kTreeClass));
}

CTabs CMavrel::Tabs() const
{
    return CTabs(Inside(m_hWindow, kTabsClass));
}

CStatusPanes CMavrel::Panes() const
{
    return CStatusPanes(Inside(m_hWindow, kStatusClass));
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
    PostCommand(m_hWindow, command);
}

void CMavrel::WaitUntilDrawn(const std::wstring& texture) const
{
    WaitUntil("texture " + ToUtf8(texture) + " to be drawn",
              [&] { return Pane(0).starts_with(L"Texture '" + texture + L"' rendered within "); });
}

void CMavrel::ShowTexture(const std::wstring& texture) const
{
    Tree().Click(texture);
    WaitUntilDrawn(texture);
}

void CMavrel::WaitForPane(std::size_t pane, const std::wstring& text) const
{
    WaitUntil("pane " + std::to_string(pane) + " to read " + ToUtf8(text),
              [&] { return Pane(pane) == text; });
}
