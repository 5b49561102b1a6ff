#include "bench/window/SelectWorkload.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <functional>
#include <numeric>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "app/MavrelApp.h"
#include "app/resource.h"
#include "bench/BigDatabase.h"
#include "bench/SilentPrompt.h"
#include "bench/Stopwatch.h"
#include "codec/RasterDecoding.h"
#include "image/Hash.h"
#include "ui/StatusBar.h"
#include "ui/TreeView.h"

namespace Bench {
namespace {
constexpr double kMostSelectRatio = 3;
constexpr std::uint32_t kTextures = 64;
constexpr std::uint32_t kSide = 256;
constexpr std::size_t kDxt1Bytes = std::size_t{kSide} * kSide / 2;
constexpr int kRuns = 7;

std::wstring NameOf(std::uint32_t index)
{
    return L"wall_" + std::to_wstring(100 + index);
}

/// Noise that no two textures share.
std::vector<std::byte> Blocks(std::uint32_t index)
{
    std::vector<std::byte> bytes(kDxt1Bytes);
    std::uint32_t state = index * 2654435761U + 1;
    for (std::byte& byte : bytes) {
        state = state * 1664525U + 1013904223U;
        byte = static_cast<std::byte>(state >> 24U);
    }
    return bytes;
}

std::filesystem::path WriteDatabase(const std::filesystem::path& folder)
{
    const std::filesystem::path list = folder / "walls.txt";
    CSilentPrompt prompt;
    {
        CTextureDatabase database(StreamMode::Auto, DiskFileSystem(), prompt);
        constexpr std::array kCaches = {CacheIndex::Dxt};
        bool isWritten = database.Create(list, kCaches);
        for (std::uint32_t i = 0; isWritten && i < kTextures; ++i) {
            const auto bytes = Blocks(i);
            NewRecord record;
            record.header = {static_cast<std::uint16_t>(NameHash(NameOf(i)) & 0xFFFFU), GlFormat::Dxt1,
                             std::uint16_t{kSide}, std::uint16_t{kSide}};
            record.bytes = bytes;
            record.mode = StreamMode::Framed;
            isWritten = database.AppendRecord(CacheIndex::Dxt, RecordKind::Raster, record);
        }
        if (!isWritten)
            throw std::runtime_error("cannot write the database of walls");
    }
    TextureCategory category;
    category.name = L"walls";
    std::string text = CategoryLine(category) + "\r\n";
    for (std::uint32_t i = 0; i < kTextures; ++i) {
        TextureEntry entry = MakeEntry({.name = NameOf(i), .width = kSide, .height = kSide});
        text += EntryLine(entry);
        if (text.back() != '\n')
            text += "\r\n";
    }
    if (!WriteWholeFile(DiskFileSystem(), list, std::as_bytes(std::span(text))))
        throw std::runtime_error("cannot write the list of walls");
    // The records came without entries; their table of contents is made once the list names them.
    CTextureDatabase database(StreamMode::Auto, DiskFileSystem(), prompt);
    database.Open(list);
    database.RebuildToc(CacheIndex::Dxt);
    if (!database.WriteDefaultThumbnails(CacheIndex::Dxt, StreamMode::Framed))
        throw std::runtime_error("cannot write the thumbnails of the walls");
    return list;
}

/// The shortest of several times for each texture but the first. A window depends on what else the machine
/// does, so a whole run without disturbance is rare.
class CShortest {
public:
    void Take(std::uint32_t texture, double seconds)
    {
        m_aTimes[texture - 1] = std::min(m_aTimes[texture - 1], seconds);
    }
    double Mean() const
    {
        return std::accumulate(m_aTimes.begin(), m_aTimes.end(), 0.0) / static_cast<double>(m_aTimes.size());
    }

private:
    std::vector<double> m_aTimes = std::vector<double>(kTextures - 1, 1e30);
};

std::filesystem::path ProgramFolder()
{
    std::array<wchar_t, MAX_PATH> path{};
    ::GetModuleFileNameW(nullptr, path.data(), MAX_PATH);
    return std::filesystem::path(path.data()).parent_path();
}

/// Seconds for one texture, from the file to a bitmap; nothing when a picture is not what it should be.
std::optional<double> DecodingTime(const std::filesystem::path& list, ISettings& settings)
{
    CSilentPrompt prompt;
    CPluginTable plugins;
    plugins.Discover(ProgramFolder() / L"plugins", prompt);
    plugins.BindFromSettings(settings);
    CTextureDatabase database(StreamMode::Auto, DiskFileSystem(), prompt);
    database.Open(list);
    bool isCorrect = true;
    CShortest shortest;
    for (int run = 0; run < kRuns; ++run)
        for (std::uint32_t i = 1; i < kTextures; ++i) {
            const double seconds = ShortestRun(1, [&] {
                const auto decoded = DecodeTexture(database, plugins, i, CacheIndex::Dxt, RecordKind::Raster);
                const auto bitmap = decoded ? ToBitmap(*decoded) : std::nullopt;
                isCorrect = isCorrect && bitmap && bitmap->Width() == kSide && decoded->isWritten;
                if (bitmap)
                    KeepAlive(bitmap->Pixels().data());
            });
            shortest.Take(i, seconds);
        }
    return isCorrect ? std::optional(shortest.Mean()) : std::nullopt;
}

/// Runs the program and does `work` with its main window as soon as it waits for a person, then ends it.
void WithMainWindow(const std::filesystem::path& folder, const std::filesystem::path& list,
                    std::function<void(const CWindow&)> work)
{
    // The timer's function gets no pointer of ours.
    static thread_local std::function<void(const CWindow&)> t_fnWork;
    t_fnWork = std::move(work);
    const auto onTimer = [](auto, UINT, UINT_PTR timer, DWORD) {
        CWindow main;
        const auto isMain = [](auto window, LPARAM found) -> BOOL {
            CWindow candidate(window);
            if (candidate.Child(IDC_TREE).Exists())
                *reinterpret_cast<CWindow*>(found) = candidate;  // NOLINT: the pointer from below
            return TRUE;
        };
        ::EnumThreadWindows(::GetCurrentThreadId(), isMain, reinterpret_cast<LPARAM>(&main));  // NOLINT
        if (!main.Exists())
            return;
        ::KillTimer(nullptr, timer);
        t_fnWork(main);
        ::PostMessageW(main.Handle(), WM_COMMAND, ID_EXIT, 0);
    };
    constexpr UINT kMilliseconds = 100;
    ::SetTimer(nullptr, 0, kMilliseconds, onTimer);
    CMavrelApp(::GetModuleHandleW(nullptr), {(folder / "mavrel.exe").native(), list.native()}).Run();
}

/// Draws what is left to be drawn, of every control.
void DrawAll(const CWindow& main)
{
    ::RedrawWindow(main.Handle(), nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
    ::GdiFlush();
}

/// Seconds for one texture each.
struct Steps {
    double showing = 1e30;   // from the tree's notification until the picture is drawn
    double pressing = 1e30;  // from the key until every control is drawn
    bool areCorrect = false;
};

/// While it lives, the window does not hear what its controls notify it of.
class CDeaf {
public:
    explicit CDeaf(const CWindow& main)
        : m_oMain(main), m_nProcedure(::SetWindowLongPtrW(main.Handle(), DWLP_DLGPROC, 0))
    {
    }
    ~CDeaf() { ::SetWindowLongPtrW(m_oMain.Handle(), DWLP_DLGPROC, m_nProcedure); }
    CDeaf(const CDeaf&) = delete;
    CDeaf& operator=(const CDeaf&) = delete;

private:
    CWindow m_oMain;
    LONG_PTR m_nProcedure;
};

/// From the first texture to the last one; `step` goes to the next and returns the seconds that count. The
/// shortest time for each texture; their mean.
double TimeOfSteps(const CWindow& main, const CTreeView& tree, const std::function<double()>& step)
{
    CShortest shortest;
    for (int run = 0; run < kRuns; ++run) {
        tree.Select(tree.FirstChild(tree.Root()));
        DrawAll(main);
        for (std::uint32_t i = 1; i < kTextures; ++i)
            shortest.Take(i, step());
    }
    return shortest.Mean();
}

Steps StepThrough(const CWindow& main)
{
    CTreeView tree;
    tree.Attach(main.Child(IDC_TREE).Handle());
    NMTREEVIEWW changed{};
    changed.hdr.hwndFrom = tree.Handle();
    changed.hdr.idFrom = IDC_TREE;
    changed.hdr.code = static_cast<UINT>(TVN_SELCHANGEDW);
    const auto pressKey = [&] {
        tree.Send(WM_KEYDOWN, VK_DOWN);
        DrawAll(main);
    };
    Steps steps;
    steps.showing = TimeOfSteps(main, tree, [&] {
        {
            const CDeaf deaf(main);
            pressKey();
        }
        return ShortestRun(1, [&] { main.SendPointer(WM_NOTIFY, IDC_TREE, &changed); });
    });
    steps.pressing = TimeOfSteps(main, tree, [&] { return ShortestRun(1, pressKey); });
    CStatusBar status;
    status.Attach(main.Child(IDC_STATUS).Handle());
    steps.areCorrect = tree.ItemText(tree.Caret()) == NameOf(kTextures - 1) &&
                       status.PaneText(0).find(NameOf(kTextures - 1)) != std::wstring::npos;
    return steps;
}
}  // namespace

void MeasureSelecting(CReport& report)
{
    const CScratchFolder folder;
    const std::filesystem::path list = WriteDatabase(folder.Path());
    const auto settings = OpenSettings(folder.Path() / "mavrel.ini");
    settings->WriteInt(L"global", L"show_loading_screen", 0);
    const auto decoding = DecodingTime(list, *settings);

    Steps steps;
    WithMainWindow(folder.Path(), list, [&steps](const CWindow& main) { steps = StepThrough(main); });
    const std::string baseline = TimeText(decoding.value_or(0)) + " read and decoded";
    report.Add({.workload = "select-next",
                .measured = TimeText(steps.showing) + ", 256 x 256 DXT1",
                .baseline = baseline,
                .ratio = steps.showing / decoding.value_or(1),
                .limit = kMostSelectRatio,
                .isCorrect = decoding && steps.areCorrect});
    report.Add({.workload = "select-next-key",
                .measured = TimeText(steps.pressing) + ", the tree included",
                .baseline = baseline,
                .ratio = steps.pressing / decoding.value_or(1),
                .limit = std::nullopt,
                .isCorrect = decoding && steps.areCorrect});
}

}  // namespace Bench
