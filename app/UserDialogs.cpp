#include "app/UserDialogs.h"

#include "app/ErrorBox.h"
#include "dialogs/DlgAbout.h"
#include "dialogs/DlgAliases.h"
#include "dialogs/DlgConverter.h"
#include "dialogs/DlgDFFCheck.h"
#include "dialogs/DlgIMGTool.h"
#include "dialogs/DlgImportIMG.h"
#include "dialogs/DlgImportTXD.h"
#include "dialogs/DlgOptimize.h"
#include "dialogs/DlgRadarEditor.h"
#include "dialogs/DlgSyncIMG.h"

std::optional<std::wstring> CUserDialogs::AskValue(const ValueRequest& request)
{
    CDlgValue dialog(request);
    if (dialog.DoModal(m_rResources.Current(), Owner()) != IDOK)
        return std::nullopt;
    return dialog.Value();
}

std::optional<std::filesystem::path> CUserDialogs::OpenFile(const FileRequest& request)
{
    return AskFileToOpen(Owner(), request);
}

std::vector<std::filesystem::path> CUserDialogs::OpenFiles(const FileRequest& request)
{
    return AskFilesToOpen(Owner(), request);
}

std::optional<std::filesystem::path> CUserDialogs::SaveFile(const FileRequest& request)
{
    return AskFileToSave(Owner(), request);
}

std::optional<std::wstring> CUserDialogs::BrowseFolder(const std::wstring& title, const std::wstring& initial)
{
    std::wstring folder = initial;
    if (BrowseForFolder(Owner(), title, folder) != 1)
        return std::nullopt;
    return folder;
}

std::optional<COLORREF> CUserDialogs::PickColor(COLORREF proposed)
{
    return AskColor(Owner(), proposed);
}

void CUserDialogs::ShowRelations(CTextureDatabase& database, std::optional<std::uint32_t> texture,
                                 RelationKind kind, IEditorHost& host)
{
    CDlgAliases({m_rResources, database, host, m_rPrompt}, kind, texture).Run(Owner());
}

void CUserDialogs::ImportTXD(const ToolEditor& editor, const DictionarySource& source, std::uint32_t category)
{
    RW::CPromptFailures failures(m_rPrompt, EndProgram);
    CDlgImportTXD({m_rResources, editor, m_rPrompt, *this, failures, DiskFileSystem()}, source, category)
        .Run(Owner());
}

void CUserDialogs::CheckDFF(const std::filesystem::path& file, const CTextureDatabase* database)
{
    RW::CPromptFailures failures(m_rPrompt, EndProgram);
    CDlgDFFCheck({m_rResources, m_rPrompt, *this, failures, DiskFileSystem()}, file, database).Run(Owner());
}

void CUserDialogs::ShowIMGTool(const ToolEditor* editor, const std::filesystem::path& archive)
{
    RW::CPromptFailures failures(m_rPrompt, EndProgram);
    CDlgIMGTool({m_rResources, editor, m_rPrompt, *this, failures, DiskFileSystem()}, archive).Run(Owner());
}

void CUserDialogs::ImportIMG(const ToolEditor& editor, CacheIndex target)
{
    RW::CPromptFailures failures(m_rPrompt, EndProgram);
    CDlgImportIMG({m_rResources, &editor, m_rPrompt, *this, failures, DiskFileSystem()}, target).Run(Owner());
}

void CUserDialogs::SyncIMG(const ToolEditor& editor)
{
    RW::CPromptFailures failures(m_rPrompt, EndProgram);
    CDlgSyncIMG({m_rResources, &editor, m_rPrompt, *this, failures, DiskFileSystem()}).Run(Owner());
}

void CUserDialogs::OptimizeCache(const ToolEditor* editor)
{
    CDlgOptimize({m_rResources, editor, m_rPrompt}).Run(Owner());
}

void CUserDialogs::EditRadarMap(const ToolEditor* editor, CacheIndex cache)
{
    CDlgRadarEditor({m_rResources, editor, cache, m_rPrompt, *this}).Run(Owner());
}

void CUserDialogs::ConvertCache(const ToolEditor* editor)
{
    CDlgConverter({m_rResources, editor, m_rPrompt}).Run(Owner());
}

void CUserDialogs::ShowAbout()
{
    CDlgAbout dialog(m_rResources);
    dialog.DoModal(m_rResources.Current(), Owner());
}
