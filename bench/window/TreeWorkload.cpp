#include "bench/window/TreeWorkload.h"

#include <array>
#include <span>
#include <stdexcept>
#include <string>

#include "app/TextureTree.h"
#include "bench/BigDatabase.h"
#include "bench/SilentPrompt.h"
#include "bench/Stopwatch.h"

namespace Bench {
namespace {
constexpr double kMostFillRatio = 1.5;
constexpr int kRuns = 7;
constexpr std::array kCategoryNames = {L"Default", L"buildings", L"roads"};

// Without caches: the tree shows names only.
std::filesystem::path WriteList(const std::filesystem::path& folder)
{
    std::string text;
    for (std::size_t i = 0; i < kCategoryNames.size(); ++i) {
        TextureCategory category;
        category.cat = static_cast<std::uint32_t>(i);
        category.name = kCategoryNames[i];
        text += CategoryLine(category) + "\r\n";
    }
    for (std::uint32_t i = 0; i < kBigDatabaseEntries; ++i) {
        // Neighbours in the list are far apart in the tree, as in lists that grew over years.
        const std::wstring name = L"texture_" + std::to_wstring(i * 7919 % kBigDatabaseEntries);
        TextureEntry entry = MakeEntry({.name = name, .width = 64, .height = 64, .category = i % 3});
        text += EntryLine(entry);
        if (text.back() != '\n')
            text += "\r\n";
    }
    const std::filesystem::path list = folder / "names.txt";
    if (!WriteWholeFile(DiskFileSystem(), list, std::as_bytes(std::span(text))))
        throw std::runtime_error("cannot write the list of names");
    return list;
}

// A visible window with nothing but a tree in it, as the main window has one.
template <class Tree>
class CTreeWindow {
public:
    CTreeWindow()
        : m_oFrame(::CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 0, 0, 300, 600, nullptr,
                                     nullptr, nullptr, nullptr))
    {
        const CWindow control(::CreateWindowExW(0, WC_TREEVIEWW, L"",
                                                WS_CHILD | WS_VISIBLE | TVS_SHOWSELALWAYS, 0, 0, 300, 600,
                                                m_oFrame.Handle(), nullptr, nullptr, nullptr));
        if (!control.Exists())
            throw std::runtime_error("a display is needed");
        m_oTree.Attach(control.Handle());
    }
    ~CTreeWindow() { ::DestroyWindow(m_oFrame.Handle()); }
    CTreeWindow(const CTreeWindow&) = delete;
    CTreeWindow& operator=(const CTreeWindow&) = delete;

    Tree& Control() { return m_oTree; }

private:
    CWindow m_oFrame;
    Tree m_oTree;
};

void FillPlainly(const CTreeView& tree, const CTextureDatabase& database,
                 const std::vector<std::vector<std::uint32_t>>& groups)
{
    const CNoRedraw quiet(tree);
    for (std::size_t i = 0; i < kCategoryNames.size(); ++i) {
        const HTREEITEM parent = tree.Append(TVI_ROOT, kCategoryNames[i], -1);
        for (const std::uint32_t index : groups[i])
            tree.Append(parent, database.Entry(index).name, static_cast<LPARAM>(index));
    }
}

std::size_t CountItems(const CTreeView& tree)
{
    return static_cast<std::size_t>(tree.Send(TVM_GETCOUNT));
}
}  // namespace

void MeasureTree(CReport& report)
{
    const CScratchFolder folder;
    CSilentPrompt prompt;
    CTextureDatabase database(StreamMode::Auto, DiskFileSystem(), prompt);
    database.Open(WriteList(folder.Path()));
    const auto groups = GroupByCategory(database);

    CTreeWindow<CTreeView> plainWindow;
    const CTreeView& plain = plainWindow.Control();
    CTextureTree real;
    CTreeWindow<CTreeView> realWindow;
    real.Control().TakeOver(realWindow.Control().Handle());

    // Each run starts with an empty control; the two take turns, so that what disturbs one disturbs both.
    double filling = 1e30;
    double filledPlainly = 1e30;
    for (int run = 0; run < kRuns; ++run) {
        real.Clear();
        filling = std::min(filling, ShortestRun(1, [&] { real.Fill(database, L"Unknown", false); }));
        {
            const CNoRedraw quiet(plain);
            plain.DeleteAll();
        }
        filledPlainly =
            std::min(filledPlainly, ShortestRun(1, [&] { FillPlainly(plain, database, groups); }));
    }
    const std::size_t items = kBigDatabaseEntries + kCategoryNames.size();
    report.Add({.workload = "tree-fill",
                .measured = TimeText(filling) + ", " + std::to_string(kBigDatabaseEntries) + " entries",
                .baseline = TimeText(filledPlainly) + " bare control",
                .ratio = filling / filledPlainly,
                .limit = kMostFillRatio,
                .isCorrect = CountItems(real.Control()) == items && CountItems(plain) == items});
}

}  // namespace Bench
