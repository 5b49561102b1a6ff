#include "tests/shell/MainWindowFixture.h"

#include <functional>
#include <objbase.h>

std::optional<std::wstring> CScriptedDialogs::AskValue(const ValueRequest& request)
{
    values.push_back(request);
    return value;
}

std::optional<std::filesystem::path> CScriptedDialogs::OpenFile(const FileRequest& request)
{
    files.push_back(request);
    return file;
}

std::vector<std::filesystem::path> CScriptedDialogs::OpenFiles(const FileRequest& request)
{
    files.push_back(request);
    if (!chosenFiles.empty())
        return chosenFiles;
    return file ? std::vector{*file} : std::vector<std::filesystem::path>{};
}

std::optional<std::filesystem::path> CScriptedDialogs::SaveFile(const FileRequest& request)
{
    return OpenFile(request);
}

std::optional<std::wstring> CScriptedDialogs::BrowseFolder(const std::wstring& title, const std::wstring&)
{
    folderTitles.push_back(title);
    return folder;
}

std::optional<COLORREF> CScriptedDialogs::PickColor(COLORREF)
{
    return color;
}

void CScriptedDialogs::ShowRelations(CTextureDatabase&, std::optional<std::uint32_t> texture,
                                     RelationKind kind, IEditorHost&)
{
    relations.emplace_back(kind, texture);
}

void CScriptedDialogs::ImportTXD(const ToolEditor&, const DictionarySource& source, std::uint32_t category)
{
    dictionaries.emplace_back(source.file, category);
    sources.push_back(source);
}

void CScriptedDialogs::ShowIMGTool(const ToolEditor* editor, const std::filesystem::path& archive)
{
    archives.emplace_back(archive, editor != nullptr);
}

void CScriptedDialogs::ImportIMG(const ToolEditor&, CacheIndex target)
{
    archiveImports.push_back(target);
}

void CScriptedDialogs::SyncIMG(const ToolEditor&)
{
    ++synchronizations;
}

void CScriptedDialogs::OptimizeCache(const ToolEditor* editor)
{
    optimizations.push_back(editor != nullptr);
}

void CScriptedDialogs::EditRadarMap(const ToolEditor* editor, CacheIndex cache)
{
    radarMaps.emplace_back(cache, editor != nullptr);
}

void CScriptedDialogs::ConvertCache(const ToolEditor* editor)
{
    conversions.push_back(editor != nullptr);
}

void CScriptedDialogs::CheckDFF(const std::filesystem::path& model, const CTextureDatabase* database)
{
    models.emplace_back(model, database != nullptr);
}

CMainWindowTest::CMainWindowTest()
    : m_pSettings(OpenSettings(m_oFolder / "mavrel.ini")), m_oResources(::GetModuleHandleW(nullptr))
{
    static_cast<void>(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED));
    m_pSettings->WriteInt(L"global", L"show_loading_screen", 0);
}

CMainWindowTest::~CMainWindowTest()
{
    // The window holds the database's files open inside the folder.
    m_pWindow.reset();
    ::CoUninitialize();
}

void CMainWindowTest::Start(std::deque<PromptAnswer> answers)
{
    m_pPrompt = std::make_unique<CScriptedPrompt>(std::move(answers));
    m_pLanguages = std::make_unique<CLanguages>(m_oResources, *m_pSettings, *m_pPrompt, m_sLanguages);
    m_pWindow =
        std::make_unique<CDlgMain>(MainWindowParts{m_oResources, *m_pLanguages, m_oTranslator, *m_pSettings,
                                                   m_oPlugins, DiskFileSystem(), *m_pPrompt, m_oDialogs});
    ASSERT_TRUE(m_pWindow->Open()) << "a display is needed";
}

void CMainWindowTest::OpenDatabase(const CDatabaseBuilder& builder)
{
    builder.Write(m_oFolder / "textures.txt");
    m_pWindow->OpenAndSelect(m_oFolder / "textures.txt");
}

CDatabaseBuilder CMainWindowTest::SmallDatabase()
{
    CDatabaseBuilder builder;
    builder.Category("cat=0 name=walls").Category("cat=1 name=plants");
    builder.Cache("dxt").Cache("unc");
    builder.Texture("wood", " width=4 height=4").Picture("dxt", 0x10).Picture("unc", 0x20);
    builder.Texture("Brick", " width=4 height=4").Picture("dxt", 0x30).Picture("unc", 0x40);
    builder.Texture("leaf", " width=16 height=8 cat=1")
        .Picture("dxt", 0x50, 16, 8)
        .Picture("unc", 0x60, 16, 8);
    builder.Texture("lost", " width=4 height=4 cat=7").Picture("dxt", 0x70).Picture("unc", 0x80);
    builder.Alias("bark", "wood");
    return builder;
}

void CMainWindowTest::ServePosted()
{
    MSG message{};
    while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
        ::DispatchMessageW(&message);
}

std::wstring CMainWindowTest::Pane(int pane) const
{
    CStatusBar bar;
    bar.Attach(m_pWindow->Child(IDC_STATUS).Handle());
    return bar.PaneText(pane);
}

CTreeView CMainWindowTest::Tree() const
{
    CTreeView tree;
    tree.Attach(m_pWindow->Child(IDC_TREE).Handle());
    return tree;
}

CTabControl CMainWindowTest::Tabs() const
{
    CTabControl tabs;
    tabs.Attach(m_pWindow->Child(IDC_TABS).Handle());
    return tabs;
}

void CMainWindowTest::ClickTab(int tab) const
{
    RECT place{};
    Tabs().SendPointer(TCM_GETITEMRECT, static_cast<WPARAM>(tab), &place);
    const LPARAM point = MAKELPARAM(place.left + 4, place.top + 4);
    Tabs().Send(WM_LBUTTONDOWN, MK_LBUTTON, point);
    Tabs().Send(WM_LBUTTONUP, 0, point);
}

HTREEITEM CMainWindowTest::ItemOf(const std::wstring& text) const
{
    const CTreeView tree = Tree();
    const std::function<HTREEITEM(HTREEITEM)> find = [&](HTREEITEM first) -> HTREEITEM {
        for (HTREEITEM item = first; item != nullptr; item = tree.NextSibling(item)) {
            if (tree.ItemText(item) == text)
                return item;
            if (const HTREEITEM found = find(tree.FirstChild(item)))
                return found;
        }
        return nullptr;
    };
    return find(tree.Root());
}

std::vector<std::wstring> CMainWindowTest::TreeLines() const
{
    const CTreeView tree = Tree();
    std::vector<std::wstring> lines;
    for (HTREEITEM top = tree.Root(); top != nullptr; top = tree.NextSibling(top)) {
        lines.push_back(tree.ItemText(top));
        for (HTREEITEM child = tree.FirstChild(top); child != nullptr; child = tree.NextSibling(child))
            lines.push_back(L"  " + tree.ItemText(child));
    }
    return lines;
}
