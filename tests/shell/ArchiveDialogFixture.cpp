#include "tests/shell/ArchiveDialogFixture.h"

#include "base/Format.h"
#include "ui/Dpi.h"
#include "ui/Menu.h"

CArchiveDialogTest::CArchiveDialogTest(std::deque<PromptAnswer> answers) : m_oPrompt(std::move(answers)) {}

void CArchiveDialogTest::OpenDatabase(const CDatabaseBuilder& builder)
{
    builder.Write(m_oDatabaseFolder / "textures.txt");
    m_pDatabase = std::make_unique<CTextureDatabase>(StreamMode::Framed, DiskFileSystem(), m_oPrompt);
    m_pDatabase->Open(m_oDatabaseFolder / "textures.txt");
    m_pHost =
        std::make_unique<CNotingHost>(CHostOperations(*m_pDatabase, m_oPlugins, *m_pSettings, m_oPrompt));
    m_pEditor = std::make_unique<ToolEditor>(ToolEditor{*m_pDatabase, m_oPlugins, *m_pSettings, *m_pHost});
}

CDatabaseBuilder CArchiveDialogTest::EmptyDatabase()
{
    CDatabaseBuilder builder(true);
    builder.Category("cat=0 name=Default").Cache("unc");
    return builder;
}

ArchiveDialogParts CArchiveDialogTest::Parts() const
{
    auto& self = const_cast<CArchiveDialogTest&>(*this);  // NOLINT: the parts borrow what the test owns
    return {m_oResources,    m_pEditor.get(),  self.m_oPrompt,
            self.m_oDialogs, self.m_oFailures, DiskFileSystem()};
}

void CArchiveDialogTest::Show(std::unique_ptr<CArchiveDialog> dialog, int list)
{
    m_pDialog = std::move(dialog);
    ASSERT_TRUE(m_pDialog->Create(m_oResources.Current(), nullptr)) << "a display is needed";
    m_pDialog->Show(true);
    m_oList.Attach(Control(list).Handle());
}

void CArchiveDialogTest::ServePosted()
{
    MSG message{};
    while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
        ::DispatchMessageW(&message);
}

std::vector<std::wstring> CArchiveDialogTest::Columns() const
{
    const int dpi = DpiOf(m_pDialog->Handle());
    std::vector<std::wstring> columns;
    for (int column = 0; column < m_oList.ColumnCount(); ++column)
        columns.push_back(Format(L"%s %d", m_oList.ColumnText(column),
                                 ::MulDiv(m_oList.ColumnWidth(column), USER_DEFAULT_SCREEN_DPI, dpi)));
    return columns;
}

std::vector<std::wstring> CArchiveDialogTest::Rows() const
{
    std::vector<std::wstring> rows;
    for (int row = 0; row < m_oList.Count(); ++row) {
        std::wstring text = m_oList.IsChecked(row) ? L"x " : L"";
        for (int column = 0; column < m_oList.ColumnCount(); ++column)
            text += m_oList.ItemText(row, column) + L"|";
        rows.push_back(text);
    }
    return rows;
}

std::vector<std::wstring> CArchiveDialogTest::SystemCommands() const
{
    const CMenu menu(::GetSystemMenu(m_pDialog->Handle(), FALSE));
    std::vector<std::wstring> texts;
    for (int item = 0; item < menu.Count(); ++item) {
        const UINT id = ::GetMenuItemID(menu.Handle(), item);
        if (id == 0)
            texts.assign(1, L"-");
        else
            texts.push_back(menu.Text(id));
    }
    return texts;
}

std::vector<std::wstring> CArchiveDialogTest::Names() const
{
    std::vector<std::wstring> names;
    for (std::uint32_t index = 0; index < m_pDatabase->EntryCount(); ++index)
        names.push_back(m_pDatabase->Entry(index).name);
    return names;
}

ImgBytes CArchiveDialogTest::Dictionary(const std::vector<std::string>& textures, std::uint8_t firstShade)
{
    std::vector<RwFile::Bytes> natives;
    for (const std::string& name : textures) {
        const auto shade = static_cast<std::uint8_t>(firstShade + natives.size());
        natives.push_back(RwFile::PCNative({.name = name,
                                            .rasterFormat = 0x500,
                                            .width = 4,
                                            .height = 4,
                                            .depth = 32,
                                            .pixels = RwFile::Filled(64, shade)}));
    }
    return RwFile::Dictionary(natives);
}

ImgBytes CArchiveDialogTest::BrokenDictionary(const std::string& texture)
{
    // It counts a second texture, and the section behind the first claims more than there is.
    const auto native = RwFile::PCNative({.name = texture,
                                          .rasterFormat = 0x500,
                                          .width = 4,
                                          .height = 4,
                                          .depth = 32,
                                          .pixels = RwFile::Filled(64, 0x77)});
    return RwFile::Dictionary({native, RwFile::SectionClaiming(0x15, 0x7FFFFFFF, {})}, 2);
}

ImgBytes CArchiveDialogTest::Model(const std::vector<std::string>& textures)
{
    return RwFile::Model({{.textures = textures}});
}
