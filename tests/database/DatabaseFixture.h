#pragma once

// A folder with the files of a small database, and a database that has it open.

#include <gtest/gtest.h>
#include <memory>
#include <utility>

#include "database/TextureDatabase.h"
#include "tests/support/DatabaseBuilder.h"
#include "tests/support/ScriptedPrompt.h"
#include "tests/support/TemporaryFolder.h"

class CDatabaseFixture {
public:
    explicit CDatabaseFixture(const CDatabaseBuilder& builder, StreamMode forced = StreamMode::Auto)
        : CDatabaseFixture(builder.Files("textures"), DiskFileSystem(), forced)
    {
    }
    CDatabaseFixture(const FileBytes& files, IFileSystem& system, StreamMode forced = StreamMode::Auto)
        : m_rSystem(system), m_eForced(forced)
    {
        WriteFiles(m_oFolder.Path(), files);
        Reopen();
    }

    void Reopen()
    {
        m_pDatabase.reset();
        m_pDatabase = std::make_unique<CTextureDatabase>(m_eForced, m_rSystem, m_oPrompt);
        m_pDatabase->Open(List());
    }
    void Close() { m_pDatabase.reset(); }

    std::filesystem::path List() const { return m_oFolder / "textures.txt"; }
    const std::filesystem::path& Folder() const { return m_oFolder.Path(); }
    FileBytes Files() const { return FilesOf(m_oFolder.Path()); }
    std::string ListText() const { return TextOf(Files()["textures.txt"]); }
    CTextureDatabase& operator*() { return *m_pDatabase; }
    CTextureDatabase* operator->() { return m_pDatabase.get(); }
    CScriptedPrompt& Prompt() { return m_oPrompt; }

private:
    CTemporaryFolder m_oFolder;
    IFileSystem& m_rSystem;
    CScriptedPrompt m_oPrompt;
    StreamMode m_eForced;
    std::unique_ptr<CTextureDatabase> m_pDatabase;
};

/// A 4x4 "RGBA 8888" raster of one value.
inline std::vector<std::byte> Pixels(std::uint8_t fill, std::size_t count = 64)
{
    return std::vector<std::byte>(count, std::byte{fill});
}

inline std::vector<std::byte> RasterOf(CTextureDatabase& database, std::wstring_view name,
                                       CacheIndex cache = CacheIndex::Dxt)
{
    const auto index = database.FindByName(name, true);
    return index ? database.ReadRaster(*index, cache, RecordKind::Raster).value_or(std::vector<std::byte>())
                 : std::vector<std::byte>();
}

/// Three textures, an alias before and one behind its target, in two caches.
inline CDatabaseBuilder SmallDatabase(bool framed = false)
{
    CDatabaseBuilder builder(framed);
    builder.Category("cat=0 name=Default onfoot=0 slow=0 fast=0 defaultstream=0");
    builder.Alias("early", "wood");
    builder.Texture("brick").Picture("dxt", 0x11).Picture("unc", 0x12, 8, 8);
    builder.Texture("wood", " width=4 height=4 cat=1").Picture("dxt", 0x21, 8, 4).Picture("unc", 0x22);
    builder.Alias("late", "wood");
    builder.Texture("sand").Picture("dxt", 0x31).Picture("unc", 0x32, 2, 2);
    return builder;
}
