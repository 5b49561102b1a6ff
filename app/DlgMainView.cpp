#include <algorithm>

#include "app/DlgMain.h"
#include "app/resource.h"
#include "base/Format.h"
#include "codec/RasterDecoding.h"
#include "tools/Statistics.h"
#include "tools/TextureFacts.h"

namespace {

constexpr int kFirstFactPane = 2;
constexpr int kLastFactPane = 6;

}  // namespace

void CDlgMain::OnSelectionChanged()
{
    if (!m_pDatabase)
        return;
    // The picture first: it is what people wait for.
    DrawSelected();
    ShowProperties();
    const TreeSelection selection = m_oTree.Selection();
    if (selection.items > 1)
        Status(Format(String(IDS_ITEMS_SELECTED), static_cast<std::uint32_t>(selection.items)));
    else if (!selection.focused && !selection.focusedText.empty())
        Status(Format(String(IDS_CATEGORY_SELECTED), selection.focusedText));
}

void CDlgMain::DrawSelected()
{
    const auto index = m_pDatabase ? m_oTree.Focused() : std::nullopt;
    if (!index) {
        ClearFacts();
        m_oPreview.ShowBitmap(std::nullopt);
        return;
    }
    const auto started = std::chrono::steady_clock::now();
    try {
        ShowFacts(*index);
        const auto decoded = DecodeTexture(*m_pDatabase, m_oParts.plugins, *index, m_eCache, ShownKind());
        m_oPreview.ShowBitmap(decoded ? ToBitmap(*decoded) : std::nullopt);
    } catch (const CError& error) {
        // Said where the picture would be: with a plugin missing, a box for every texture would be in the
        // way.
        m_oPreview.ShowText(Translated(error.Text()));
        Status(Translated(error.Text()));
        return;
    }
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - started;
    Status(Translated(RenderedText(m_pDatabase->Entry(*index).name, elapsed.count())));
}

void CDlgMain::ShowProperties()
{
    const TreeSelection selection = m_pDatabase ? m_oTree.Selection() : TreeSelection();
    if (selection.focused)
        m_oProperties.ShowTexture(*m_pDatabase, *selection.focused);
    else if (selection.category)
        m_oProperties.ShowCategory(*m_pDatabase, *selection.category);
    else
        m_oProperties.Clear();
}

void CDlgMain::ShowFacts(std::uint32_t index)
{
    const TextureFacts facts = FactsOf(*m_pDatabase, index, m_eCache, ShownKind());
    int pane = kFirstFactPane;
    for (const auto& text : {facts.idAndOffset, facts.size, facts.dimensions, facts.game, facts.format})
        m_oStatus.SetPane(pane++, Translated(text));
}

void CDlgMain::ClearFacts()
{
    for (int pane = kFirstFactPane; pane <= kLastFactPane; ++pane)
        m_oStatus.SetPane(pane, L"");
}

bool CDlgMain::CanShow(CacheIndex cache) const
{
    if (!m_pDatabase || !m_pDatabase->IsOpen(cache))
        return false;
    return !m_bThumbnails || m_pDatabase->HasThumbnails(cache);
}

void CDlgMain::OnTabChanged()
{
    const auto target = kAllCaches[static_cast<std::size_t>(m_oTabs.Current())];
    if (!CanShow(target)) {
        m_oTabs.SetCurrent(static_cast<int>(m_eCache));
        return;
    }
    m_eCache = target;
    DrawSelected();
}

void CDlgMain::StepTab(int step)
{
    if (!m_pDatabase)
        return;
    constexpr int kCount = static_cast<int>(kCacheCount);
    CacheIndex target =
        kAllCaches[static_cast<std::size_t>((static_cast<int>(m_eCache) + step + kCount) % kCount)];
    if (!m_pDatabase->IsOpen(target))
        target = m_pDatabase->PrimaryCache().value_or(m_eCache);
    if (!CanShow(target))
        return;
    SelectTab(target);
    DrawSelected();
}

void CDlgMain::SelectTab(CacheIndex cache)
{
    m_eCache = cache;
    m_oTabs.SetCurrent(static_cast<int>(cache));
    if (m_bThumbnails && !CanShow(cache)) {
        // Another database may have none; rasters are always there.
        m_bThumbnails = false;
        m_oParts.settings.WriteInt(L"global", L"view_thumbs", 0);
        Menu().Check(ID_THUMBNAILS, false);
    }
}

void CDlgMain::ToggleThumbnails()
{
    if (!m_bThumbnails && !(m_pDatabase && m_pDatabase->HasThumbnails(m_eCache))) {
        m_oParts.prompt.Show({.text = String(IDS_NO_THUMBNAILS),
                              .caption = String(IDS_ERROR),
                              .icon = PromptIcon::Information});
        return;
    }
    m_bThumbnails = !m_bThumbnails;
    m_oParts.settings.WriteInt(L"global", L"view_thumbs", m_bThumbnails ? 1 : 0);
    Menu().Check(ID_THUMBNAILS, m_bThumbnails);
    DrawSelected();
}

void CDlgMain::ChooseRenderer(UINT command)
{
    m_oParts.settings.WriteInt(L"render", L"type", static_cast<int>(command - ID_RENDERER_STATIC));
    ApplyRenderer();
    DrawSelected();
}

void CDlgMain::ApplyRenderer()
{
    const int stored = m_oParts.settings.ReadInt(L"render", L"type", 0);
    const bool isKnown = stored >= 0 && stored <= static_cast<int>(PreviewRenderer::DirectX);
    PreviewOptions options = m_oPreview.Options();
    options.renderer = isKnown ? static_cast<PreviewRenderer>(stored) : PreviewRenderer::GdiPlus;
    m_oPreview.SetOptions(options);
    Menu().CheckRadio(ID_RENDERER_STATIC, ID_RENDERER_DIRECT,
                      ID_RENDERER_STATIC + static_cast<UINT>(options.renderer));
}

void CDlgMain::ShowBackground()
{
    const int last = static_cast<int>(BackgroundMode::SingleColor);
    const int mode = std::clamp(m_oParts.settings.ReadInt(L"render", L"background", last), 0, last);
    m_oPreview.SetBackground(static_cast<BackgroundMode>(mode));
    Menu().CheckRadio(ID_BACKGROUND_NONE, ID_BACKGROUND_COLOR, ID_BACKGROUND_NONE + static_cast<UINT>(mode));
}

void CDlgMain::ToggleStretch()
{
    PreviewOptions options = m_oPreview.Options();
    options.stretch = !options.stretch;
    m_oPreview.SetOptions(options);
    Menu().Check(ID_STRETCH, options.stretch);
    DrawSelected();
}

void CDlgMain::ChooseBackground(UINT command)
{
    m_oParts.settings.WriteInt(L"render", L"background", static_cast<int>(command - ID_BACKGROUND_NONE));
    ShowBackground();
    DrawSelected();
}

void CDlgMain::ChooseBackgroundColor()
{
    PreviewOptions options = m_oPreview.Options();
    const auto color = m_oParts.dialogs.PickColor(options.color);
    if (!color)
        return;
    options.color = *color;
    m_oPreview.SetOptions(options);
    m_oParts.settings.WriteInt(L"render", L"background_color", static_cast<int>(*color));
    ChooseBackground(ID_BACKGROUND_COLOR);
}

void CDlgMain::Find()
{
    if (!m_pDatabase)
        return;
    const auto text = m_oParts.dialogs.AskValue(
        {.title = String(IDS_FIND_TITLE), .label = String(IDS_FIND_LABEL), .proposed = m_sSearch});
    if (!text)
        return;
    m_sSearch = *text;
    FindNext();
    m_bHasSearched = true;
    Enable(ID_FIND_NEXT, true);
}

void CDlgMain::FindNext()
{
    if (!m_pDatabase || m_sSearch.empty())
        return;
    for (;;) {
        const auto focused = m_oTree.Focused();
        const auto found = m_pDatabase->FindContaining(m_sSearch, focused ? *focused + 1 : 0);
        if (found) {
            m_oTree.SelectTexture(*found);
            return;
        }
        if (m_oParts.prompt.Show({.text = String(IDS_FIND_AGAIN),
                                  .caption = String(IDS_FIND_CAPTION),
                                  .icon = PromptIcon::Question,
                                  .buttons = PromptButtons::YesNo}) != PromptAnswer::Yes)
            return;
        // The first item is a category, so the search starts with the first texture.
        m_oTree.SelectFirstItem();
    }
}

void CDlgMain::ShowStatistics()
{
    if (!HasDatabaseOrSaysSo())
        return;
    m_oParts.prompt.Show({.text = StatisticsText(*m_pDatabase),
                          .caption = String(IDS_STATISTICS_CAPTION),
                          .icon = PromptIcon::Information});
}
