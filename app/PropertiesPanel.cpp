#include "app/PropertiesPanel.h"

#include <algorithm>
#include <array>

#include "app/resource.h"
#include "ui/Dpi.h"

namespace {

// Lengths in 1/96 inch.
constexpr int kHeaderRoom = 8;  // what the button is higher than its text
constexpr int kRowRoom = 5;     // the same for a row
constexpr int kArrow = 8;
constexpr int kTextLeft = 18;
constexpr int kHeaderGap = 5;
// The panel's share of the column.
constexpr int kSharePercent = 42;
constexpr int kMostRows = 30;

HFONT FontOf(const CWindow& window)
{
    return reinterpret_cast<HFONT>(window.Send(WM_GETFONT));  // NOLINT: the message's result
}

// Pointing down while the panel is open, to the right while it is folded.
void DrawArrow(HDC target, POINT middle, int size, bool folded)
{
    const int half = size / 2;
    const int quarter = std::max(size / 4, 1);
    std::array<POINT, 3> corners = {{{middle.x - half, middle.y - quarter},
                                     {middle.x + half, middle.y - quarter},
                                     {middle.x, middle.y - quarter + half}}};
    if (folded)
        corners = {{{middle.x - quarter, middle.y - half},
                    {middle.x - quarter, middle.y + half},
                    {middle.x - quarter + half, middle.y}}};
    const HGDIOBJ oldPen = ::SelectObject(target, ::GetStockObject(DC_PEN));
    const HGDIOBJ oldBrush = ::SelectObject(target, ::GetSysColorBrush(COLOR_BTNTEXT));
    ::SetDCPenColor(target, ::GetSysColor(COLOR_BTNTEXT));
    ::Polygon(target, corners.data(), static_cast<int>(corners.size()));
    ::SelectObject(target, oldBrush);
    ::SelectObject(target, oldPen);
}

void DrawLine(HDC target, int left, int right, int y)
{
    RECT line = {left, y, right, y + 1};
    if (left < right)
        ::FillRect(target, &line, ::GetSysColorBrush(COLOR_3DSHADOW));
}

}  // namespace

CPropertiesPanel::CPropertiesPanel()
{
    CMessageMap& messages = Messages();
    messages.OnMessage(WM_SIZE, [this](WPARAM, LPARAM) {
        Layout();
        return 0;
    });
    messages.OnMessage(WM_SETFONT, [this](WPARAM wParam, LPARAM) {
        SetFont(reinterpret_cast<HFONT>(wParam));  // NOLINT: what the message carries
        return 0;
    });
    messages.OnMessage(WM_GETFONT, [this](WPARAM, LPARAM) { return m_oList.Send(WM_GETFONT); });
    messages.OnMessage(WM_ERASEBKGND, [this](WPARAM wParam, LPARAM) {
        const RECT client = ClientRect();
        ::FillRect(reinterpret_cast<HDC>(wParam), &client, ::GetSysColorBrush(COLOR_BTNFACE));  // NOLINT
        return 1;
    });
    messages.OnMessage(WM_DRAWITEM, [this](WPARAM, LPARAM lParam) {
        DrawHeader(*reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));  // NOLINT: what the message carries
        return TRUE;
    });
    for (const UINT code : {BN_CLICKED, BN_DBLCLK})
        messages.OnControl(IDC_PROPERTIES_HEADER, code, [this] { SetFolded(!m_bFolded); });
    messages.OnNotify(IDC_PROPERTIES_LIST, static_cast<UINT>(NM_CUSTOMDRAW), [this](NMHDR& header) {
        return m_oList.HandleCustomDraw(reinterpret_cast<NMLVCUSTOMDRAW&>(header));  // NOLINT
    });
    for (const auto code : {static_cast<UINT>(NM_CLICK), static_cast<UINT>(NM_DBLCLK)})
        messages.OnNotify(IDC_PROPERTIES_LIST, code, [this, code](NMHDR& header) {
            m_oList.HandleClick(reinterpret_cast<const NMITEMACTIVATE&>(header),  // NOLINT
                                code == static_cast<UINT>(NM_DBLCLK));
            return 0;
        });
    messages.OnNotify(IDC_PROPERTIES_LIST, static_cast<UINT>(LVN_KEYDOWN), [this](NMHDR& header) {
        m_oList.HandleKey(reinterpret_cast<const NMLVKEYDOWN&>(header).wVKey);  // NOLINT
        return 0;
    });
    m_oList.OnChangeWanted([this](const PropertyRow& row) { Change(row); });
    m_oField.OnDone([this](bool keep) { OnFieldDone(keep); });
}

bool CPropertiesPanel::Create(HWND parent, int id, const CResources& resources, HWND after)
{
    m_pResources = &resources;
    Register(resources.Program(), kClassName);
    const auto menu = reinterpret_cast<HMENU>(static_cast<INT_PTR>(id));  // NOLINT: how a child gets its id
    const HWND window = ::CreateWindowExW(WS_EX_CONTROLPARENT, kClassName, L"",
                                          WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN | WS_CLIPSIBLINGS, 0, 0, 0,
                                          0, parent, menu, resources.Program(), nullptr);
    if (window == nullptr)
        return false;
    TakeOver(window);
    if (!CreateChildren(FontOf(CWindow(parent))))
        return false;
    ::SetWindowPos(window, after, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    return true;
}

bool CPropertiesPanel::CreateChildren(HFONT font)
{
    const auto create = [this](const wchar_t* className, DWORD style, int childId) {
        const auto menu = reinterpret_cast<HMENU>(static_cast<INT_PTR>(childId));  // NOLINT: as in Create
        return CWindow(::CreateWindowExW(0, className, L"", WS_CHILD | style, 0, 0, 0, 0, Handle(), menu,
                                         m_pResources->Program(), nullptr));
    };
    m_oHeader = create(L"BUTTON", WS_VISIBLE | WS_TABSTOP | BS_OWNERDRAW, IDC_PROPERTIES_HEADER);
    const bool hasField = m_oField.Create(Handle(), IDC_PROPERTIES_FIELD_LABEL, IDC_PROPERTIES_FIELD);
    m_oLabel = create(L"STATIC", 0, IDC_PROPERTIES_LABEL);
    if (!hasField || !m_oList.Create(Handle(), IDC_PROPERTIES_LIST))
        return false;
    m_oField.SetHome(m_oList);
    CreateTip();
    UpdateTexts();
    SetFont(font);
    return true;
}

void CPropertiesPanel::CreateTip()
{
    m_oTip = CWindow(::CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_ALWAYSTIP, 0,
                                       0, 0, 0, Handle(), nullptr, nullptr, nullptr));
    TTTOOLINFOW tool{};
    tool.cbSize = sizeof tool;
    tool.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
    tool.hwnd = Handle();
    tool.uId = reinterpret_cast<UINT_PTR>(m_oHeader.Handle());  // NOLINT: what the flag says
    m_oTip.SendPointer(TTM_ADDTOOLW, 0, &tool);
}

void CPropertiesPanel::UpdateTexts()
{
    m_oTexts = {m_pResources->Text(IDS_PROPERTY_ORIGINAL), m_pResources->Text(IDS_PROPERTY_SIZE),
                m_pResources->Text(IDS_PROPERTY_NO_RASTER)};
    m_oList.SetColumnText(0, m_pResources->Text(IDS_COLUMN_PROPERTY));
    m_oList.SetColumnText(1, m_pResources->Text(IDS_COLUMN_VALUE));
    m_oHeader.SetText(m_pResources->Text(IDS_PROPERTIES));
    m_oLabel.SetText(m_pResources->Text(IDS_PROPERTIES));
    std::wstring tip = m_pResources->Text(m_bFolded ? IDS_PROPERTIES_UNFOLD : IDS_PROPERTIES_FOLD);
    TTTOOLINFOW tool{};
    tool.cbSize = sizeof tool;
    tool.hwnd = Handle();
    tool.uId = reinterpret_cast<UINT_PTR>(m_oHeader.Handle());  // NOLINT: as when it was added
    tool.lpszText = tip.data();
    m_oTip.SendPointer(TTM_UPDATETIPTEXTW, 0, &tool);
    m_oHeader.Redraw();
}

void CPropertiesPanel::SetFont(HFONT font)
{
    for (const CWindow& child : {m_oHeader, CWindow(m_oList.Handle()), CWindow(m_oField.Handle())})
        child.Send(WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE);  // NOLINT: the message's form
    Layout();
}

int CPropertiesPanel::FontHeight() const
{
    const HDC screen = ::GetDC(Handle());
    const HGDIOBJ old = ::SelectObject(screen, FontOf(m_oList));
    TEXTMETRICW metrics{};
    ::GetTextMetricsW(screen, &metrics);
    ::SelectObject(screen, old);
    ::ReleaseDC(Handle(), screen);
    return metrics.tmHeight;
}

int CPropertiesPanel::FoldedHeight() const
{
    return FontHeight() + CScale(DpiOf(Handle()))(kHeaderRoom);
}

int CPropertiesPanel::PreferredHeight(int available) const
{
    const int header = FoldedHeight();
    if (m_bFolded)
        return std::min(header, available);
    const int row = FontHeight() + CScale(DpiOf(Handle()))(kRowRoom);
    return std::min(::MulDiv(available, kSharePercent, 100), header + row * kMostRows);
}

bool CPropertiesPanel::HasFocus() const
{
    return ::IsChild(Handle(), ::GetFocus()) != FALSE;
}

void CPropertiesPanel::Layout()
{
    if (m_oField.IsOpen())
        OnFieldDone(true);
    const RECT client = ClientRect();
    const LONG header = std::min<LONG>(FoldedHeight(), client.bottom);
    m_oHeader.Move({0, 0, client.right, header});
    if (m_bFolded)
        return;
    m_oList.Move({0, header, client.right, client.bottom});
    m_oList.Layout(FontHeight() + CScale(DpiOf(Handle()))(kRowRoom));
}

void CPropertiesPanel::DrawHeader(const DRAWITEMSTRUCT& draw) const
{
    const CScale scale(DpiOf(Handle()));
    const bool isPressed = (draw.itemState & ODS_SELECTED) != 0;
    ::FillRect(draw.hDC, &draw.rcItem, ::GetSysColorBrush(isPressed ? COLOR_3DLIGHT : COLOR_BTNFACE));
    const LONG middle = (draw.rcItem.top + draw.rcItem.bottom) / 2;
    DrawArrow(draw.hDC, {scale(kArrow), middle}, scale(kArrow), m_bFolded);

    const HGDIOBJ oldFont = ::SelectObject(draw.hDC, FontOf(m_oHeader));
    ::SetTextColor(draw.hDC, ::GetSysColor(COLOR_BTNTEXT));
    ::SetBkMode(draw.hDC, TRANSPARENT);
    const std::wstring text = m_oHeader.Text();
    const UINT format =
        DT_SINGLELINE | DT_VCENTER | ((draw.itemState & ODS_NOACCEL) != 0 ? DT_HIDEPREFIX : 0U);
    RECT place = draw.rcItem;
    place.left = scale(kTextLeft);
    RECT extent = place;
    ::DrawTextW(draw.hDC, text.c_str(), -1, &extent, format | DT_CALCRECT);
    ::DrawTextW(draw.hDC, text.c_str(), -1, &place, format);
    ::SelectObject(draw.hDC, oldFont);
    DrawLine(draw.hDC, extent.right + scale(kHeaderGap), draw.rcItem.right, middle);
    if ((draw.itemState & (ODS_FOCUS | ODS_NOFOCUSRECT)) == ODS_FOCUS) {
        const RECT around = {place.left - scale(2), draw.rcItem.top + scale(2), extent.right + scale(2),
                             draw.rcItem.bottom - scale(2)};
        ::DrawFocusRect(draw.hDC, &around);
    }
}

void CPropertiesPanel::SetFolded(bool folded)
{
    if (folded == m_bFolded)
        return;
    if (folded)
        Clear();
    m_bFolded = folded;
    m_oList.Show(!folded);
    UpdateTexts();
    Layout();
    if (m_fnFoldChanged)
        m_fnFoldChanged();
}

void CPropertiesPanel::ShowTexture(CTextureDatabase& database, std::uint32_t index)
{
    if (m_bFolded)
        return;
    ShowRows(Subject::Texture, index, RowsOfTexture(database, index, m_oTexts));
}

void CPropertiesPanel::ShowCategory(const CTextureDatabase& database, std::uint32_t category)
{
    if (!m_bFolded)
        ShowRows(Subject::Category, category, RowsOfCategory(database, category));
}

void CPropertiesPanel::Clear()
{
    if (!m_bFolded)
        ShowRows(Subject::None, 0, {});
}

void CPropertiesPanel::ShowRows(Subject subject, std::uint32_t index, std::vector<PropertyRow> rows)
{
    // What is being typed belongs to what was shown until now.
    if (m_oField.IsOpen())
        OnFieldDone(false);
    m_eSubject = subject;
    m_nIndex = index;
    m_oList.ShowRows(std::move(rows));
}

void CPropertiesPanel::Change(const PropertyRow& row)
{
    if (row.kind == PropertyRowKind::Flag) {
        if (m_eSubject == Subject::Texture && m_fnTextureEdit)
            m_fnTextureEdit(m_nIndex, static_cast<Property>(row.property), InvertedFlag(row.value));
        return;
    }
    m_oEdited = row;
    RECT place = m_oList.ValuePlace(row);
    ::MapWindowPoints(m_oList.Handle(), Handle(), reinterpret_cast<POINT*>(&place), 2);  // NOLINT: two points
    m_oField.Open(row.label, row.text, place);
}

void CPropertiesPanel::OnFieldDone(bool keep)
{
    const std::wstring text = m_oField.Text();
    m_oField.Close();
    if (!keep || text == m_oEdited.text)
        return;
    const PropertyRow row = m_oEdited;
    if (m_eSubject == Subject::Texture)
        CommitTexture(row, text);
    else if (m_eSubject == Subject::Category)
        CommitCategory(row, text);
}

void CPropertiesPanel::CommitTexture(const PropertyRow& row, const std::wstring& text) const
{
    const auto property = static_cast<Property>(row.property);
    const auto value = ParseAnswer(property, text);
    if (value && *value != row.value && m_fnTextureEdit)
        m_fnTextureEdit(m_nIndex, property, *value);
}

void CPropertiesPanel::CommitCategory(const PropertyRow& row, const std::wstring& text) const
{
    const auto value = ParseCategoryAnswer(text);
    if (value && m_fnCategoryEdit)
        m_fnCategoryEdit(m_nIndex, static_cast<CategoryProperty>(row.property), *value);
}
