#pragma once

// A main window over a folder of its own, with scripted answers. Tests send it the commands that menus send
// and read its controls as any other program could.

#include <deque>
#include <gtest/gtest.h>
#include <memory>

#include "app/DlgMain.h"
#include "app/resource.h"
#include "tests/support/DatabaseBuilder.h"
#include "tests/support/ScriptedPrompt.h"
#include "tests/support/TemporaryFolder.h"

/// Answers the dialogs that are more than a message box; without an answer a dialog is cancelled.
class CScriptedDialogs final : public IUserDialogs {
public:
    std::optional<std::wstring> AskValue(const ValueRequest& request) override;
    std::optional<std::filesystem::path> OpenFile(const FileRequest& request) override;
    std::vector<std::filesystem::path> OpenFiles(const FileRequest& request) override;
    std::optional<std::filesystem::path> SaveFile(const FileRequest& request) override;
    std::optional<std::wstring> BrowseFolder(const std::wstring& title, const std::wstring& initial) override;
    std::optional<COLORREF> PickColor(COLORREF proposed) override;
    void ShowRelations(CTextureDatabase& database, std::optional<std::uint32_t> texture, RelationKind kind,
                       IEditorHost& host) override;
    void ImportTXD(const ToolEditor& editor, const DictionarySource& source, std::uint32_t category) override;
    void CheckDFF(const std::filesystem::path& model, const CTextureDatabase* database) override;
    void ShowIMGTool(const ToolEditor* editor, const std::filesystem::path& archive) override;
    void ImportIMG(const ToolEditor& editor, CacheIndex target) override;
    void SyncIMG(const ToolEditor& editor) override;
    void OptimizeCache(const ToolEditor* editor) override;
    void EditRadarMap(const ToolEditor* editor, CacheIndex cache) override;
    void ConvertCache(const ToolEditor* editor) override;
    void ShowAbout() override {}

    std::optional<std::wstring> value;
    std::optional<std::filesystem::path> file;
    /// What a dialog for several files gives; empty: `file`.
    std::vector<std::filesystem::path> chosenFiles;
    std::optional<std::wstring> folder;
    std::optional<COLORREF> color;
    std::vector<ValueRequest> values;
    std::vector<FileRequest> files;
    std::vector<std::wstring> folderTitles;
    /// The dictionaries that were opened for import, each with the category.
    std::vector<std::pair<std::filesystem::path, std::uint32_t>> dictionaries;
    /// The same dictionaries, as they were given.
    std::vector<DictionarySource> sources;
    /// The archives that the IMG tool was opened with, each with whether there was a database.
    std::vector<std::pair<std::filesystem::path, bool>> archives;
    /// The caches that were shown when the import of an archive was opened.
    std::vector<CacheIndex> archiveImports;
    /// How often the synchronizer was opened.
    int synchronizations = 0;
    /// Each time the optimizer was opened: whether there was a database.
    std::vector<bool> optimizations;
    /// The caches whose radar map was edited, each with whether there was a database.
    std::vector<std::pair<CacheIndex, bool>> radarMaps;
    /// The models that were checked, each with whether there was a database.
    std::vector<std::pair<std::filesystem::path, bool>> models;
    /// How often the converter was opened, each time with whether there was a database.
    std::vector<bool> conversions;
    /// The textures whose lists were shown.
    std::vector<std::pair<RelationKind, std::optional<std::uint32_t>>> relations;
};

class CMainWindowTest : public testing::Test {
protected:
    CMainWindowTest();
    ~CMainWindowTest() override;

    /// Creates the window; settings that a test wants to find are written before.
    void Start(std::deque<PromptAnswer> answers = {});
    /// Writes "textures.txt" and opens it as the command line does.
    void OpenDatabase(const CDatabaseBuilder& builder);
    /// Two categories, four textures and an alias, rasters in the DXT and UNC caches, thumbnails in the UNC
    /// one.
    static CDatabaseBuilder SmallDatabase();

    void Command(UINT id) const { m_pWindow->Send(WM_COMMAND, id); }
    /// Serves what the window has posted to itself.
    static void ServePosted();
    CMenu Menu() const { return CMenu(::GetMenu(m_pWindow->Handle())); }
    std::wstring Pane(int pane) const;
    CTreeView Tree() const;
    CTabControl Tabs() const;
    /// Clicks a tab as the mouse does.
    void ClickTab(int tab) const;
    HTREEITEM ItemOf(const std::wstring& text) const;
    void Select(const std::wstring& text) const { Tree().Select(ItemOf(text)); }
    /// The top items, each followed by its children, indented.
    std::vector<std::wstring> TreeLines() const;
    CScriptedPrompt& Prompt() { return *m_pPrompt; }

    CTemporaryFolder m_oFolder;
    /// Where the language libraries are; a test that wants them says so before it starts the window.
    std::filesystem::path m_sLanguages = m_oFolder / "lang";
    std::unique_ptr<ISettings> m_pSettings;
    CResources m_oResources;
    CMessageTranslator m_oTranslator{m_oResources};
    std::unique_ptr<CLanguages> m_pLanguages;
    CPluginTable m_oPlugins;
    CScriptedDialogs m_oDialogs;
    std::unique_ptr<CScriptedPrompt> m_pPrompt;
    std::unique_ptr<CDlgMain> m_pWindow;
};
