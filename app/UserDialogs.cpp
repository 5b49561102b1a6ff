#include "app/UserDialogs.h"

#include "dialogs/DlgAbout.h"
#include "dialogs/DlgAliases.h"

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

void CUserDialogs::ShowAbout()
{
    CDlgAbout dialog(m_rResources);
    dialog.DoModal(m_rResources.Current(), Owner());
}
