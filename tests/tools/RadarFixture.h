#pragma once

// A small database with a radar map in a folder of its own, and what a radar tool needs beside it.

#include <deque>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "tests/codec/MemorySettings.h"
#include "tests/codec/TestDatabase.h"
#include "tests/support/DatabaseBuilder.h"
#include "tests/support/ScriptedPrompt.h"
#include "tests/support/TemporaryFolder.h"
#include "tools/DirectHost.h"
#include "tools/RadarMapImport.h"
#include "tools/RadarMapOptimizer.h"
#include "tools/RadarMapPicture.h"

/// Notes what is asked of the editor.
class CNotingHost final : public CDirectHost {
public:
    using CDirectHost::CDirectHost;
    void Import(const CBitmap* picture, ImportRecord& record) override
    {
        records.push_back(record);
        CDirectHost::Import(picture, record);
    }
    std::unique_ptr<CBitmap> Decode(std::uint32_t index, CacheIndex cache) override
    {
        return isBlind ? nullptr : CDirectHost::Decode(index, cache);
    }

    std::vector<ImportRecord> records;
    bool isBlind = false;
};

class CNotingProgress final : public IProgress {
public:
    void Report(std::uint32_t current, std::uint32_t total, const std::wstring& text) override
    {
        reports.push_back(std::to_wstring(current) + L"/" + std::to_wstring(total) + L" " + text);
        if (onReport)
            onReport(current, text);
    }
    bool Cancelled() const override { return reports.size() >= stopAt; }

    std::vector<std::wstring> reports;
    std::function<void(std::uint32_t, const std::wstring&)> onReport;
    std::size_t stopAt = SIZE_MAX;
};

class CRadarDatabase {
public:
    explicit CRadarDatabase(StreamMode game = StreamMode::Raw, IFileSystem& files = DiskFileSystem(),
                            std::vector<CacheIndex> caches = {CacheIndex::Dxt, CacheIndex::Unc})
        : m_eGame(game), m_pDatabase(std::make_unique<CTextureDatabase>(game, files, m_oPrompt))
    {
        EXPECT_TRUE(m_pDatabase->Create(List(), caches));
        m_oSettings.WriteInt(L"global", L"enable_mipmaps", 0);
    }

    CTextureDatabase& operator*() { return *m_pDatabase; }
    CTextureDatabase* operator->() { return m_pDatabase.get(); }
    CMemorySettings& Settings() { return m_oSettings; }
    CPluginTable& Plugins() { return m_oPlugins; }
    std::filesystem::path List() const { return m_oFolder / "map.txt"; }
    std::filesystem::path Folder() const { return m_oFolder.Path(); }
    FileBytes Files() const { return FilesOf(m_oFolder.Path()); }
    const std::vector<PromptBox>& Shown() const { return m_oPrompt.Shown(); }

    CNotingHost& Host()
    {
        if (!m_pHost)
            m_pHost = std::make_unique<CNotingHost>(
                CHostOperations(*m_pDatabase, m_oPlugins, m_oSettings, m_oPrompt));
        return *m_pHost;
    }
    /// Opens the files anew on a disk that works, with tables of contents that are mended where needed.
    void Reopen()
    {
        m_pHost.reset();
        m_pDatabase = std::make_unique<CTextureDatabase>(m_eGame, DiskFileSystem(), m_oPrompt);
        m_pDatabase->Open(List());
        for (const CacheIndex cache : kAllCaches)
            if (m_pDatabase->IsOpen(cache) && !m_pDatabase->IsTocValid(cache))
                m_pDatabase->RebuildToc(cache);
    }

    void Add(const std::wstring& name, const CBitmap& picture, std::uint32_t category = 0)
    {
        ImportRecord record;
        SetRecordText(record.name, name);
        record.noRefresh = 1;
        record.category = category;
        CDirectHost host(CHostOperations(*m_pDatabase, m_oPlugins, m_oSettings, m_oPrompt));
        host.Import(&picture, record);
        EXPECT_EQ(record.outcome, ImportOutcome::Imported);
    }
    /// One shade of grey; 8 bits of it survive the 5 that are stored when they are a multiple of 8.
    void Add(const std::wstring& name, std::uint8_t shade, std::uint32_t side = 4)
    {
        Add(name, SolidPicture(side, side, shade, shade, shade, 255));
    }
    /// radar00 and so on, each of a shade of its own.
    void AddTiles(std::uint32_t count, std::uint32_t side = 4)
    {
        const CStoringMany many(*m_pDatabase);
        for (std::uint32_t number = 0; number < count; ++number)
            Add(RadarTileName(number), Shade(number, side, 0));
    }
    /// A picture that no other number has.
    static CBitmap Shade(std::uint32_t number, std::uint32_t side, std::uint8_t blue)
    {
        return SolidPicture(side, side, static_cast<std::uint8_t>(number % 16 * 16),
                            static_cast<std::uint8_t>(number / 16 * 16), blue, 255);
    }

    ImportCounts Import(const CBitmap& picture, std::optional<bool> hasAlpha = false)
    {
        return ImportRadarMap({.database = *m_pDatabase,
                               .plugins = m_oPlugins,
                               .settings = m_oSettings,
                               .host = Host(),
                               .prompt = m_oPrompt,
                               .cache = CacheIndex::Dxt},
                              picture, hasAlpha, m_oProgress);
    }
    std::uint32_t Optimize() { return OptimizeRadarMap(*m_pDatabase, Host(), CacheIndex::Dxt, m_oProgress); }
    CNotingProgress& Progress() { return m_oProgress; }
    void Answer(PromptAnswer answer) { m_oPrompt.Add(answer); }
    IPrompt& Prompt() { return m_oPrompt; }

    /// The names of all entries, aliases with what they stand for.
    std::vector<std::wstring> Names() const
    {
        std::vector<std::wstring> names;
        for (std::uint32_t index = 0; index < m_pDatabase->EntryCount(); ++index) {
            const TextureEntry& entry = m_pDatabase->Entry(index);
            names.push_back(entry.IsAlias() ? entry.name + L" > " + entry.affiliate : entry.name);
        }
        return names;
    }

private:
    class CAnswers final : public IPrompt {
    public:
        PromptAnswer Show(const PromptBox& box) override
        {
            m_aShown.push_back(box);
            if (box.buttons == PromptButtons::Ok)
                return PromptAnswer::Ok;
            EXPECT_FALSE(m_aAnswers.empty()) << ToUtf8(box.text);
            if (m_aAnswers.empty())
                return PromptAnswer::No;
            const PromptAnswer answer = m_aAnswers.front();
            m_aAnswers.pop_front();
            return answer;
        }
        void Add(PromptAnswer answer) { m_aAnswers.push_back(answer); }
        const std::vector<PromptBox>& Shown() const { return m_aShown; }

    private:
        std::deque<PromptAnswer> m_aAnswers;
        std::vector<PromptBox> m_aShown;
    };

    CTemporaryFolder m_oFolder;
    CAnswers m_oPrompt;
    CPluginTable m_oPlugins;
    CMemorySettings m_oSettings;
    CNotingProgress m_oProgress;
    StreamMode m_eGame;
    std::unique_ptr<CTextureDatabase> m_pDatabase;
    std::unique_ptr<CNotingHost> m_pHost;
};

/// The same numbers on every platform.
class CRandom {
public:
    explicit CRandom(std::uint32_t seed) : m_oEngine(seed) {}
    std::uint32_t operator()(std::size_t below) { return static_cast<std::uint32_t>(m_oEngine() % below); }

private:
    std::mt19937 m_oEngine;
};

/// A picture of side x side tiles, tile `n` filled with the colour of `colour(n)`.
template <class ColourOf>
CBitmap MapPicture(std::uint32_t side, std::uint32_t tile, ColourOf colour)
{
    auto picture = CBitmap::Create(side * tile, side * tile);
    EXPECT_TRUE(picture);
    for (std::uint32_t y = 0; y < side * tile; ++y)
        for (std::uint32_t x = 0; x < side * tile; ++x) {
            const std::uint32_t value = colour(y / tile * side + x / tile);
            const std::size_t at = (std::size_t{y} * side * tile + x) * 4;
            picture->Pixels()[at] = static_cast<std::uint8_t>(value >> 8 & 0xF8);
            picture->Pixels()[at + 1] = static_cast<std::uint8_t>(value << 4 & 0xF0);
            picture->Pixels()[at + 2] = static_cast<std::uint8_t>(value & 0xF0);
            picture->Pixels()[at + 3] = 0xFF;
        }
    return std::move(*picture);
}

/// Red, green, blue, alpha of a pixel.
inline std::vector<int> PixelAt(const CBitmap& picture, std::uint32_t x, std::uint32_t y)
{
    const auto pixel = picture.Row(y).subspan(std::size_t{x} * 4, 4);
    return {pixel[2], pixel[1], pixel[0], pixel[3]};
}

/// What a texture of one shade of grey shows; -1 when it cannot be decoded.
inline int ShadeOf(CRadarDatabase& database, const std::wstring& name)
{
    const auto index = database->FindByName(name, true);
    const auto picture = index ? database.Host().Decode(*index, CacheIndex::Dxt) : nullptr;
    return picture ? PixelAt(*picture, 0, 0)[0] : -1;
}
