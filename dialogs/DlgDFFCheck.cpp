#include "dialogs/DlgDFFCheck.h"

#include <exception>
#include <utility>

#include "app/ErrorBox.h"
#include "app/resource.h"
#include "base/Format.h"
#include "base/Text.h"
#include "codec/CodecMessages.h"

namespace {

// Lengths in 1/96 inch.
constexpr int kTextureWidth = 240;
constexpr int kStateWidth = 100;

constexpr SectionTreeControls kTreeControls = {.caption = IDC_DFF_TREE_LABEL,
                                               .tree = IDC_DFF_TREE,
                                               .version = IDC_DFF_VERSION,
                                               .toggle = IDC_DFF_SHOW_TREE,
                                               .listCaption = IDC_DFF_LIST_LABEL,
                                               .list = IDC_DFF_LIST};
constexpr LPARAM kNotInDatabase = -1;

}  // namespace

CDlgDFFCheck::CDlgDFFCheck(const DFFCheckParts& parts, std::filesystem::path file,
                           const CTextureDatabase* database)
    : CDialog(IDD_DFF_CHECK),
      m_oParts(parts),
      m_oTranslator(parts.resources),
      m_sFile(std::move(file)),
      m_pDatabase(database),
      m_oCheck(parts.failures, parts.files)
{
    BindMessages();
}

void CDlgDFFCheck::Run(HWND owner)
{
    DoModal(m_oParts.resources.Current(), owner);
}

void CDlgDFFCheck::BindMessages()
{
    CMessageMap& messages = Messages();
    messages.OnCommand(IDCANCEL, [this] { OnClose(); });
    messages.OnCommand(IDC_DFF_SAVE_AS, [this] { SaveAs(); });
    messages.OnCommand(IDC_DFF_SAVE_TEXT, [this] { SaveText(); });
    messages.OnCommand(IDC_DFF_SHOW_TREE, [this] { m_oTree.Toggle(); });
    messages.OnNotify(IDC_DFF_LIST, static_cast<UINT>(LVN_KEYDOWN), [this](NMHDR& header) {
        if (reinterpret_cast<NMLVKEYDOWN&>(header).wVKey == VK_F2)  // NOLINT: what the code carries
            StartRename();
        return 0;
    });
    messages.OnNotify(IDC_DFF_LIST, static_cast<UINT>(LVN_BEGINLABELEDITW), [this](NMHDR&) {
        m_oNameField.Watch(m_oList.LabelEditor().Handle());
        return 0;
    });
    messages.OnNotify(IDC_DFF_LIST, static_cast<UINT>(LVN_ENDLABELEDITW), [this](NMHDR& header) {
        OnLabelEdited(reinterpret_cast<NMLVDISPINFOW&>(header).item);  // NOLINT: as above
        return 0;
    });
    messages.OnMessage(kApplyLabelMessage, [this](WPARAM, LPARAM) {
        ApplyLabel();
        return 0;
    });
    m_oAnchors.Bind(messages, [this] {
        m_oColumns.Rescale();
        m_oTree.Layout();
    });
}

bool CDlgDFFCheck::OnInit()
{
    AttachControls();
    try {
        m_oCheck.Open(m_sFile);
        m_oTree.Fill(m_oCheck.Stream());
        m_oTree.ShowVersion(m_oCheck.Stream().Root()->Version());
        SetText(Format(Text(), FromPath(m_sFile.filename())));
        AddRows();
    } catch (const std::exception&) {
        ShowCurrentException(m_oParts.prompt);
        End(IDCANCEL);
        return false;
    }
    for (const int id : {IDC_DFF_SAVE_TEXT, IDC_DFF_SAVE_AS})
        Child(id).Enable(m_oCheck.IsModel());
    m_oColumns.Fit();
    m_oTree.Layout();
    m_oList.Focus();
    return false;
}

void CDlgDFFCheck::OnException()
{
    ShowCurrentException(m_oParts.prompt);
}

void CDlgDFFCheck::AttachControls()
{
    m_oAnchors.Attach(*this);
    m_oAnchors.Add(IDC_DFF_LIST_LABEL, {.right = true});
    m_oAnchors.Add(IDC_DFF_LIST, {.right = true, .bottom = true});
    for (const int id : {IDC_DFF_VERSION, IDC_DFF_SHOW_TREE})
        m_oAnchors.Add(id, {.top = false, .bottom = true});
    for (const int id : {IDC_DFF_SAVE_TEXT, IDC_DFF_SAVE_AS, IDCANCEL})
        m_oAnchors.Add(id, {.left = false, .top = false, .right = true, .bottom = true});
    m_oTree.Attach(*this, kTreeControls, m_oAnchors);
    m_oList.Attach(Child(IDC_DFF_LIST).Handle());
    m_oList.UseRows();
    m_oColumns.Attach(*this, m_oList, false);
    m_oColumns.Add(String(IDS_COLUMN_TEXTURE), kTextureWidth);
    m_oColumns.Add(String(IDS_DFF_COLUMN_STATE), kStateWidth);
}

void CDlgDFFCheck::AddRows()
{
    const std::vector<ModelTexture> textures = m_oCheck.Check(m_pDatabase);
    const CNoRedraw quiet(m_oList);
    m_oList.Reserve(static_cast<int>(textures.size()));
    for (const ModelTexture& texture : textures)
        ShowRow(m_oList.Append(texture.name), texture);
    if (!textures.empty())
        m_oList.Select(0);
}

void CDlgDFFCheck::ShowRow(int row, const ModelTexture& texture) const
{
    m_oList.SetItemText(row, 0, texture.name);
    m_oList.SetItemText(row, 1, m_oTranslator.Translate(texture.state));
    m_oList.SetData(row, texture.index ? static_cast<LPARAM>(*texture.index) : kNotInDatabase);
}

// ---- Names ----

void CDlgDFFCheck::StartRename() const
{
    if (const int row = m_oList.FirstSelected(); row >= 0)
        m_oList.EditLabel(row);
}

// No text means that the edit was given up. Wine also sends none for an emptied field, which is told apart by
// what the field holds. No box may come up while the control still ends the edit.
void CDlgDFFCheck::OnLabelEdited(const LVITEMW& item)
{
    if (item.pszText == nullptr && (m_oNameField.WasGivenUp() || !m_oList.LabelEditor().Text().empty()))
        return;
    m_oNewLabel = {item.iItem, item.pszText != nullptr ? item.pszText : L""};
    ::PostMessageW(Handle(), kApplyLabelMessage, 0, 0);
}

void CDlgDFFCheck::ApplyLabel()
{
    if (const auto label = std::exchange(m_oNewLabel, std::nullopt))
        Rename(label->row, label->text);
}

void CDlgDFFCheck::Rename(int row, const std::wstring& name)
{
    const std::wstring before = m_oList.ItemText(row, 0);
    if (name.empty()) {
        m_oParts.prompt.ShowError(CodecMessage::kEmptyName);
        return;
    }
    if (name == before)
        return;
    m_oCheck.Rename(before, name);
    m_bHasUnsavedNames = true;
    ShowRow(row, CheckTextureName(m_pDatabase, name));
}

// ---- Saving ----

void CDlgDFFCheck::SaveAs()
{
    const auto file = m_oParts.dialogs.SaveFile({.filter = String(IDS_DFF_FILTER),
                                                 .defaultExtension = L"dff",
                                                 .folder = m_sFile.parent_path().native(),
                                                 .proposedName = m_sFile.filename().native()});
    if (!file)
        return;
    if (const auto failure = m_oCheck.Save(*file))
        m_oParts.prompt.ShowError(*failure);
    else
        m_bHasUnsavedNames = false;
}

void CDlgDFFCheck::OnClose()
{
    if (m_bHasUnsavedNames && m_oParts.prompt.Show({.text = String(IDS_DFF_UNSAVED_NAMES),
                                                    .caption = String(IDS_PROGRAM),
                                                    .icon = PromptIcon::Warning,
                                                    .buttons = PromptButtons::YesNo,
                                                    .proposed = PromptAnswer::No}) != PromptAnswer::Yes)
        return;
    End(IDCANCEL);
}

void CDlgDFFCheck::SaveText()
{
    const auto file = m_oParts.dialogs.SaveFile({.filter = String(IDS_DFF_TEXT_FILTER),
                                                 .defaultExtension = L"txt",
                                                 .folder = m_sFile.parent_path().native(),
                                                 .proposedName = m_sFile.stem().native()});
    if (!file)
        return;
    if (const auto failure = m_oCheck.SavePlainText(*file))
        m_oParts.prompt.ShowError(*failure);
}
