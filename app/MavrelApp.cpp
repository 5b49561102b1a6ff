#include "app/MavrelApp.h"

#include <commctrl.h>
#include <ctime>
#include <objbase.h>
#include <system_error>

#include "app/DlgMain.h"

namespace {

std::filesystem::path Absolute(const std::filesystem::path& path)
{
    std::error_code error;
    auto absolute = std::filesystem::absolute(path, error);
    return error ? path : absolute;
}

std::filesystem::path ModulePath(HINSTANCE instance)
{
    std::wstring buffer(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = ::GetModuleFileNameW(instance, buffer.data(), static_cast<DWORD>(buffer.size()));
        if (length < buffer.size()) {
            buffer.resize(length);
            return buffer;
        }
        buffer.resize(buffer.size() * 2);
    }
}

std::wstring Argument0(const std::vector<std::wstring>& arguments, const std::filesystem::path& program)
{
    return arguments.empty() ? program.native() : arguments.front();
}

}  // namespace

// The paths of the command line are made absolute before the current directory changes, or they would name
// other files afterwards.
CMavrelApp::CMavrelApp(HINSTANCE instance, const std::vector<std::wstring>& arguments)
    : m_oResources(instance),
      m_sProgram(ModulePath(instance)),
      m_pSettings(OpenSettings(SettingsPathOf(Argument0(arguments, m_sProgram)))),
      m_oTranslator(m_oResources),
      m_oPrompt(m_oBoxes, m_oTranslator),
      m_oLanguages(m_oResources, *m_pSettings, m_oPrompt, m_sProgram.parent_path() / L"lang"),
      m_oDialogs(m_oResources, m_oPrompt)
{
    if (arguments.size() == 2)
        m_sList = Absolute(arguments[1]);
    ::SetCurrentDirectoryW(Absolute(Argument0(arguments, m_sProgram)).parent_path().c_str());
}

void CMavrelApp::WriteRunTimes()
{
    const auto now = static_cast<int>(static_cast<std::uint32_t>(std::time(nullptr)));
    // Deliberate: the time of the first run is written only where a zero could not be; it reads 0 after every
    // start.
    if (!m_pSettings->WriteInt(L"global", L"firstrun", 0))
        m_pSettings->WriteInt(L"global", L"firstrun", now);
    m_pSettings->WriteInt(L"global", L"lastrun", now);
}

int CMavrelApp::Run()
{
    INITCOMMONCONTROLSEX controls{};
    controls.dwSize = sizeof controls;
    controls.dwICC = ICC_WIN95_CLASSES | ICC_STANDARD_CLASSES;
    ::InitCommonControlsEx(&controls);
    if (FAILED(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE)))
        return 1;

    CDlgMain window({m_oResources, m_oLanguages, m_oTranslator, *m_pSettings, m_oPlugins, DiskFileSystem(),
                     m_oPrompt, m_oDialogs});
    WriteRunTimes();
    m_oPlugins.Discover(m_sProgram.parent_path() / L"plugins", m_oPrompt);
    m_oPlugins.BindFromSettings(*m_pSettings);

    int result = 1;
    if (window.Open()) {
        m_oBoxes.SetOwner(window);
        m_oDialogs.SetOwner(window);
        if (m_sList)
            window.OpenAndSelect(*m_sList);
        result = static_cast<int>(window.RunLoop());
    }
    ::CoUninitialize();
    return result;
}
