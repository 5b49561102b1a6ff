#pragma once

// The questions that need more than a message box: a value, a file, a folder, a colour. An interface, so that
// a test answers them without a person.

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "app/Resources.h"
#include "codec/PluginTable.h"
#include "dialogs/DlgValue.h"
#include "tools/DictionarySource.h"
#include "tools/EditorHost.h"
#include "tools/TextureRelations.h"
#include "ui/FileDialog.h"

/// The open database, and what a dialog that imports into it needs. Everything is borrowed.
struct ToolEditor {
    CTextureDatabase& database;
    const CPluginTable& plugins;
    ISettings& settings;
    IEditorHost& host;
};

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
    /// The textures of a dictionary, to import some into a category.
    virtual void ImportTXD(const ToolEditor& editor, const DictionarySource& source,
                           std::uint32_t category) = 0;
    /// The texture names of a model; `database` is null when none is open.
    virtual void CheckDFF(const std::filesystem::path& file, const CTextureDatabase* database) = 0;
    /// The entries of an IMG archive; `archive` is opened at once unless it is empty, and `editor` is null
    /// while no database is open.
    virtual void ShowIMGTool(const ToolEditor* editor, const std::filesystem::path& archive) = 0;
    /// The texture dictionaries of an IMG archive, to import some; `target` is the cache that is shown.
    virtual void ImportIMG(const ToolEditor& editor, CacheIndex target) = 0;
    /// The textures that no model of some IMG archives uses, to delete them.
    virtual void SyncIMG(const ToolEditor& editor) = 0;
    /// The duplicates of the open database; `editor` is null while none is open.
    virtual void OptimizeCache(const ToolEditor* editor) = 0;
    /// The radar map in the cache that is shown; `editor` is null while no database is open.
    virtual void EditRadarMap(const ToolEditor* editor, CacheIndex cache) = 0;
    /// One cache made from another; `editor` is null while no database is open.
    virtual void ConvertCache(const ToolEditor* editor) = 0;
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
    void ImportTXD(const ToolEditor& editor, const DictionarySource& source, std::uint32_t category) override;
    void CheckDFF(const std::filesystem::path& file, const CTextureDatabase* database) override;
    void ShowIMGTool(const ToolEditor* editor, const std::filesystem::path& archive) override;
    void ImportIMG(const ToolEditor& editor, CacheIndex target) override;
    void SyncIMG(const ToolEditor& editor) override;
    void OptimizeCache(const ToolEditor* editor) override;
    void EditRadarMap(const ToolEditor* editor, CacheIndex cache) override;
    void ConvertCache(const ToolEditor* editor) override;
    void ShowAbout() override;

private:
    HWND Owner() const { return m_oOwner.TopPopup().Handle(); }

    const CResources& m_rResources;
    IPrompt& m_rPrompt;
    CWindow m_oOwner;
};
