#pragma once

// A database, an archive folder and one of the dialogs over archives, open without waiting for its end. Tests
// press its buttons and read its controls as any other program could.

#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/resource.h"
#include "dialogs/ArchiveDialog.h"
#include "tests/shell/MainWindowFixture.h"
#include "tests/support/DatabaseBuilder.h"
#include "tests/support/ImgFiles.h"
#include "tests/support/RecordingFailures.h"
#include "tests/support/RenderWareFiles.h"
#include "tests/support/ScriptedPrompt.h"
#include "tests/support/TemporaryFolder.h"
#include "tools/DirectHost.h"
#include "ui/ListView.h"

/// Imports as the window does, and writes down what it was asked for.
class CNotingHost final : public CDirectHost {
public:
    using CDirectHost::CDirectHost;

    void Import(const CBitmap* picture, ImportRecord& record) override
    {
        records.push_back(record);
        if (beforeImport)
            beforeImport();
        CDirectHost::Import(picture, record);
    }
    void Refresh() override { ++refreshes; }

    std::vector<ImportRecord> records;
    std::function<void()> beforeImport;
    int refreshes = 0;
};

class CArchiveDialogTest : public testing::Test {
protected:
    explicit CArchiveDialogTest(std::deque<PromptAnswer> answers = {});

    /// Writes "textures.txt" and opens it.
    void OpenDatabase(const CDatabaseBuilder& builder);
    /// Only the cache without compression, which needs no plugin.
    static CDatabaseBuilder EmptyDatabase();
    ArchiveDialogParts Parts() const;
    /// Opens a dialog that was made with Parts().
    void Show(std::unique_ptr<CArchiveDialog> dialog, int list);

    void Press(int id) const { m_pDialog->Send(WM_COMMAND, static_cast<WPARAM>(id)); }
    /// What another program could send while the dialog is busy with the next command.
    void PressDuringTheNextWork(int id) const
    {
        ::PostMessageW(m_pDialog->Handle(), WM_COMMAND, static_cast<WPARAM>(id), 0);
    }
    /// Serves what the dialog has posted to itself.
    static void ServePosted();
    void ChooseSystemCommand(UINT id) const { m_pDialog->Send(WM_SYSCOMMAND, id); }
    CWindow Control(int id) const { return m_pDialog->Child(id); }
    std::wstring TextOf(int id) const { return Control(id).Text(); }
    /// "title width", the width in 1/96 inch.
    std::vector<std::wstring> Columns() const;
    /// The cells of each row with "|" behind each, and "x " before a checked row.
    std::vector<std::wstring> Rows() const;
    /// The items of the system menu from the last separator on.
    std::vector<std::wstring> SystemCommands() const;
    /// The names of the database's textures.
    std::vector<std::wstring> Names() const;
    FileBytes DatabaseFiles() const { return FilesOf(m_oDatabaseFolder.Path()); }

    /// A dictionary of 32-bit squares, each of one shade that follows from its place.
    static ImgBytes Dictionary(const std::vector<std::string>& textures, std::uint8_t firstShade = 0x11);
    /// A dictionary whose second texture is missing.
    static ImgBytes BrokenDictionary(const std::string& texture);
    /// A model that uses these textures.
    static ImgBytes Model(const std::vector<std::string>& textures);

    CTemporaryFolder m_oFolder;
    CTemporaryFolder m_oDatabaseFolder;
    CResources m_oResources{::GetModuleHandleW(nullptr)};
    CScriptedPrompt m_oPrompt;
    CScriptedDialogs m_oDialogs;
    CRecordingFailures m_oFailures;
    CPluginTable m_oPlugins;
    std::unique_ptr<ISettings> m_pSettings = OpenSettings(m_oFolder / "mavrel.ini");
    std::unique_ptr<CTextureDatabase> m_pDatabase;
    std::unique_ptr<CNotingHost> m_pHost;
    std::unique_ptr<ToolEditor> m_pEditor;
    std::unique_ptr<CArchiveDialog> m_pDialog;
    CListView m_oList;
};
