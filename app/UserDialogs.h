#pragma once

// The questions that need more than a message box: a value, a file, a folder, a colour. An interface, so that
// a test answers them without a person.

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "app/Resources.h"
#include "dialogs/DlgValue.h"
#include "tools/EditorHost.h"
#include "tools/TextureRelations.h"
#include "ui/FileDialog.h"

class IUserDialogs {
public:
    IUserDialogs() = default;
    IUserDialogs(const IUserDialogs&) = delete;
    IUserDialogs& operator=(const IUserDialogs&) = delete;
    virtual ~IUserDialogs() = default;

    // Each gives nothing when the person cancels.
    virtual std::optional<std::wstring> AskValue(const ValueRequest& request) = 0;
    virtual std::optional<std::filesystem::path> OpenFile(const FileRequest& request) = 0;
    virtual std::vector<std::filesystem::path> OpenFiles(const FileRequest& request) = 0;
    virtual std::optional<std::filesystem::path> SaveFile(const FileRequest& request) = 0;
    virtual std::optional<std::wstring> BrowseFolder(const std::wstring& title,
                                                     const std::wstring& initial) = 0;
    virtual std::optional<COLORREF> PickColor(COLORREF proposed) = 0;
    /// The aliases or the siblings of a texture, or of none; choosing one selects it in the editor.
    virtual void ShowRelations(CTextureDatabase& database, std::optional<std::uint32_t> texture,
                               RelationKind kind, IEditorHost& host) = 0;
    virtual void ShowAbout() = 0;
};

/// The real ones, above the main window. It borrows what it is given.
class CUserDialogs final : public IUserDialogs {
public:
    CUserDialogs(const CResources& resources, IPrompt& prompt) : m_rResources(resources), m_rPrompt(prompt) {}
    void SetOwner(const CWindow& owner) { m_oOwner = owner; }

    std::optional<std::wstring> AskValue(const ValueRequest& request) override;
    std::optional<std::filesystem::path> OpenFile(const FileRequest& request) override;
    std::vector<std::filesystem::path> OpenFiles(const FileRequest& request) override;
    std::optional<std::filesystem::path> SaveFile(const FileRequest& request) override;
    std::optional<std::wstring> BrowseFolder(const std::wstring& title, const std::wstring& initial) override;
    std::optional<COLORREF> PickColor(COLORREF proposed) override;
    void ShowRelations(CTextureDatabase& database, std::optional<std::uint32_t> texture, RelationKind kind,
                       IEditorHost& host) override;
    void ShowAbout() override;

private:
    HWND Owner() const { return m_oOwner.TopPopup().Handle(); }

    const CResources& m_rResources;
    IPrompt& m_rPrompt;
    CWindow m_oOwner;
};
