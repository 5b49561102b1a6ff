#pragma once

// The application: it owns what lives as long as the process - settings, resources, languages, plugins - and
// runs the main window.

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/Languages.h"
#include "app/Resources.h"
#include "app/TranslatingPrompt.h"
#include "app/UserDialogs.h"
#include "base/Settings.h"
#include "codec/PluginTable.h"
#include "ui/MessageBoxPrompt.h"

class CMavrelApp {
public:
    /// `arguments` as the system splits the command line; the first one is the program as it was called.
    CMavrelApp(HINSTANCE instance, const std::vector<std::wstring>& arguments);

    /// Returns the exit code of the process.
    int Run();

private:
    void WriteRunTimes();

    CResources m_oResources;
    std::filesystem::path m_sProgram;
    std::optional<std::filesystem::path> m_sList;
    std::unique_ptr<ISettings> m_pSettings;
    CMessageBoxPrompt m_oBoxes;
    CMessageTranslator m_oTranslator;
    CTranslatingPrompt m_oPrompt;
    CLanguages m_oLanguages;
    CUserDialogs m_oDialogs;
    CPluginTable m_oPlugins;
};
