#pragma once

// A small database in a folder of its own, with plugins and settings to go with it.

#include <cstddef>
#include <gtest/gtest.h>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "codec/PluginTable.h"
#include "database/TextureDatabase.h"
#include "image/Bitmap.h"
#include "tests/codec/MemorySettings.h"
#include "tests/support/ScriptedPrompt.h"
#include "tests/support/TemporaryFolder.h"

class CTestDatabase {
public:
    explicit CTestDatabase(std::vector<CacheIndex> caches, StreamMode forced = StreamMode::Raw)
        : m_oDatabase(forced, DiskFileSystem(), m_oPrompt)
    {
        EXPECT_TRUE(m_oDatabase.Create(ListPath(), caches));
    }

    CTextureDatabase& operator*() { return m_oDatabase; }
    CTextureDatabase* operator->() { return &m_oDatabase; }
    CPluginTable& Plugins() { return m_oPlugins; }
    CMemorySettings& Settings() { return m_oSettings; }
    CScriptedPrompt& Prompt() { return m_oPrompt; }
    const CTemporaryFolder& Folder() const { return m_oFolder; }
    std::filesystem::path ListPath() const { return m_oFolder / "mobile.txt"; }

    /// A texture with the given rasters.
    void Add(
        const std::wstring& name,
        std::initializer_list<std::pair<CacheIndex, std::pair<RasterHeader, std::vector<std::byte>>>> rasters)
    {
        std::vector<PreparedRecord> records;
        for (const auto& [cache, raster] : rasters)
            records.push_back(
                {cache, RecordKind::Raster, {raster.first, raster.second, StreamMode::Raw, false}});
        m_oDatabase.StoreTexture(MakeEntry({.name = name, .width = 4, .height = 4}), records);
    }

private:
    CTemporaryFolder m_oFolder;
    CScriptedPrompt m_oPrompt;
    CPluginTable m_oPlugins;
    CMemorySettings m_oSettings;
    CTextureDatabase m_oDatabase;
};

/// `count` bytes that count up from 0.
inline std::vector<std::byte> CountingBytes(std::size_t count)
{
    std::vector<std::byte> bytes(count);
    for (std::size_t at = 0; at < count; ++at)
        bytes[at] = static_cast<std::byte>(at);
    return bytes;
}

/// One colour everywhere.
inline CBitmap SolidPicture(std::uint32_t width, std::uint32_t height, std::uint8_t red, std::uint8_t green,
                            std::uint8_t blue, std::uint8_t alpha)
{
    auto picture = CBitmap::Create(width, height);
    EXPECT_TRUE(picture);
    for (std::size_t at = 0; at < picture->Pixels().size(); at += 4) {
        picture->Pixels()[at] = blue;
        picture->Pixels()[at + 1] = green;
        picture->Pixels()[at + 2] = red;
        picture->Pixels()[at + 3] = alpha;
    }
    return std::move(*picture);
}

/// The text of the CError that the call throws; empty when it throws none.
template <class Call>
std::wstring ErrorOf(Call call)
{
    try {
        call();
    } catch (const CError& error) {
        EXPECT_FALSE(error.WasShown());
        return error.Text();
    }
    return {};
}
