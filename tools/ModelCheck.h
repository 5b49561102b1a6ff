#pragma once

// A model file checked against the open database: which textures it names and whether they are there;
// renaming, saving, and the plain-text list. It owns the open file.

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/File.h"
#include "database/TextureDatabase.h"
#include "rw/SimpleDFF.h"

/// One row of the check.
struct ModelTexture {
    std::wstring name;
    std::wstring_view state;  // "Cache not loaded", "OK" or "Not Found"
    std::optional<std::uint32_t> index;
};

/// Looks a name up in the database, case ignored; `database` is null when none is open.
ModelTexture CheckTextureName(const CTextureDatabase* database, const std::wstring& name);

class CModelCheck {
public:
    /// Both are borrowed and must outlive the check.
    explicit CModelCheck(RW::IFailures& failures, IFileSystem& files = DiskFileSystem());

    /// Opens a model; any other RenderWare file only shows its sections. Throws RW::CException when it cannot
    /// be read; a dictionary must be one of the PC.
    void Open(const std::filesystem::path& file);
    /// The tree to show.
    RW::CStream& Stream() { return *m_pStream; }
    /// Whether it can be saved and listed.
    bool IsModel() const;

    /// Every name once, in order of first appearance.
    std::vector<ModelTexture> Check(const CTextureDatabase* database);
    /// Changes every material that stores exactly `from`; returns how many there were.
    std::uint32_t Rename(std::wstring_view from, std::wstring_view to);
    /// Nothing when the model was saved, else why not.
    std::optional<std::wstring> Save(const std::filesystem::path& file);
    /// The same for the texture names of the first geometry.
    std::optional<std::wstring> SavePlainText(const std::filesystem::path& file);

private:
    RW::IFailures& m_rFailures;
    IFileSystem& m_rFiles;
    std::unique_ptr<RW::CStream> m_pStream;
    RW::CSimpleDFF* m_pModel = nullptr;  // the stream, when it is a model
};
