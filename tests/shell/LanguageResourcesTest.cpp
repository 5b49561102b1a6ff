// Every shipped language against the program's own resources. A failure names what a translation lacks, so
// after a change of the menus, dialogs or texts this test is the list of what there is to translate.

#include <algorithm>
#include <gtest/gtest.h>
#include <optional>
#include <set>

#include "app/MessagePattern.h"
#include "app/Preview.h"
#include "app/Resources.h"
#include "app/resource.h"
#include "base/DynamicLibrary.h"
#include "base/Text.h"
#include "tests/shell/ResourceReader.h"
#include "ui/Dialog.h"

namespace {

// What reads the same in every language: names, and menu titles that nobody sees.
const std::set<std::wstring> kSameEverywhere = {L"-",
                                                L"0.7b x64",
                                                L"%s - Mavrel 0.7b x64",
                                                L"Direct X",
                                                L"GDI+",
                                                L"GTA &San Andreas",
                                                L"GTA &Vice City",
                                                L"Mavrel",
                                                L"Mavrel 0.7b x64",
                                                L"TXD",
                                                L"category",
                                                L"one texture menu",
                                                L"several textures"};

// What happens to read the same in one language.
const std::set<std::pair<std::wstring, std::wstring>> kSameInALanguage = {
    {L"russian", L"OK"},          {L"spanish", L"Error"},
    {L"spanish", L"No"},          {L"spanish", L"Original"},
    {L"spanish", L"Radar"},       {L"portuguese-br", L"Caches"},
    {L"portuguese-br", L"OK"},    {L"portuguese-br", L"Original"},
    {L"portuguese-br", L"Radar"}, {L"portuguese-br", L"Aliases:   %d"},
};

bool HasLetters(const std::wstring& text)
{
    // What is filled in does not count.
    const std::wstring bare = CMessagePattern(text).Fill(std::vector<std::wstring>(16));
    return std::any_of(bare.begin(), bare.end(),
                       [](wchar_t character) { return ::IsCharAlphaW(character) != FALSE; });
}

/// The letter behind the ampersand, in upper case; 0 when there is none.
wchar_t AccessKey(const std::wstring& text)
{
    for (std::size_t at = 0; at + 1 < text.size(); ++at) {
        if (text[at] != L'&')
            continue;
        if (text[at + 1] != L'&')
            return static_cast<wchar_t>(
                reinterpret_cast<ULONG_PTR>(::CharUpperW(reinterpret_cast<LPWSTR>(text[at + 1]))));  // NOLINT
        ++at;
    }
    return 0;
}

std::size_t AccessKeyCount(const std::wstring& text)
{
    std::size_t count = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] != L'&')
            continue;
        if (at + 1 < text.size() && text[at + 1] == L'&')
            ++at;
        else
            ++count;
    }
    return count;
}

std::wstring BehindTab(const std::wstring& text)
{
    const std::size_t tab = text.find(L'\t');
    return tab == std::wstring::npos ? std::wstring() : text.substr(tab);
}

std::wstring BeforeTab(const std::wstring& text)
{
    return text.substr(0, text.find(L'\t'));
}

std::vector<std::wstring> SplitAt(const std::wstring& text, wchar_t separator)
{
    std::vector<std::wstring> pieces(1);
    for (const wchar_t character : text)
        if (character == separator)
            pieces.emplace_back();
        else
            pieces.back().push_back(character);
    return pieces;
}

class CLanguageResources : public testing::TestWithParam<const wchar_t*> {
protected:
    void SetUp() override
    {
        const std::wstring file = std::wstring(MAVREL_LANGUAGES) + L"/" + GetParam() + L".dll";
        m_oLibrary = CDynamicLibrary::Load(file);
        ASSERT_TRUE(m_oLibrary) << ToUtf8(file);
    }

    HMODULE Theirs() const { return static_cast<HMODULE>(m_oLibrary->Handle()); }
    HMODULE Ours() const { return ::GetModuleHandleW(nullptr); }
    static std::string Named(const std::wstring& text) { return "\"" + ToUtf8(text) + "\""; }

    bool MayStay(const std::wstring& text) const
    {
        return !HasLetters(text) || kSameEverywhere.contains(text) ||
               kSameInALanguage.contains({GetParam(), text});
    }

    /// What holds for every text of menus, dialogs and tables.
    void ExpectTranslated(const std::wstring& ours, const std::wstring& theirs) const
    {
        SCOPED_TRACE(Named(ours) + " as " + Named(theirs));
        EXPECT_EQ(ours.empty(), theirs.empty());
        if (!MayStay(ours)) {
            EXPECT_NE(ours, theirs) << "not translated";
        }
        EXPECT_LE(theirs.size(), ours.size() * 5 / 2 + 20) << "too long";
        EXPECT_EQ(CMessagePattern(theirs).Conversions(), CMessagePattern(ours).Conversions());
        EXPECT_EQ(BehindTab(theirs), BehindTab(ours));
        EXPECT_EQ(BeforeTab(theirs).ends_with(L"..."), BeforeTab(ours).ends_with(L"..."));
    }

    static void ExpectNewKey(const std::wstring& text, std::set<wchar_t>& keys)
    {
        const wchar_t key = AccessKey(text);
        EXPECT_TRUE(key == 0 || keys.insert(key).second) << "access key taken: " << Named(text);
    }

    void ExpectSameMenu(const std::vector<ReadMenuItem>& ours, const std::vector<ReadMenuItem>& theirs) const
    {
        ASSERT_EQ(ours.size(), theirs.size());
        std::set<wchar_t> keys;
        for (std::size_t at = 0; at < ours.size(); ++at) {
            SCOPED_TRACE(Named(ours[at].text));
            EXPECT_EQ(theirs[at].id, ours[at].id);
            EXPECT_EQ(theirs[at].isSeparator, ours[at].isSeparator);
            EXPECT_EQ(theirs[at].isGrayed, ours[at].isGrayed);
            ASSERT_EQ(theirs[at].isPopup, ours[at].isPopup);
            ExpectTranslated(ours[at].text, theirs[at].text);
            EXPECT_EQ(AccessKeyCount(theirs[at].text), AccessKeyCount(ours[at].text));
            ExpectNewKey(theirs[at].text, keys);
            ExpectSameMenu(ours[at].items, theirs[at].items);
        }
    }

    void ExpectSameDialog(const ReadDialog& ours, const ReadDialog& theirs) const
    {
        EXPECT_EQ(theirs.style, ours.style);
        EXPECT_EQ(theirs.exStyle, ours.exStyle);
        EXPECT_EQ(theirs.pointSize, ours.pointSize);
        EXPECT_EQ(theirs.font, ours.font);
        ExpectTranslated(ours.title, theirs.title);
        ASSERT_EQ(theirs.controls.size(), ours.controls.size());
        std::set<wchar_t> keys;
        for (std::size_t at = 0; at < ours.controls.size(); ++at) {
            const ReadControl& our = ours.controls[at];
            const ReadControl& their = theirs.controls[at];
            SCOPED_TRACE("control " + std::to_string(our.id) + " " + Named(our.text));
            EXPECT_EQ(their.id, our.id);
            EXPECT_EQ(their.style, our.style);
            EXPECT_EQ(their.exStyle, our.exStyle);
            EXPECT_EQ(their.className, our.className);
            ExpectTranslated(our.text, their.text);
            EXPECT_EQ(AccessKeyCount(their.text), AccessKeyCount(our.text));
            ExpectNewKey(their.text, keys);
        }
    }

    std::optional<CDynamicLibrary> m_oLibrary;
};

TEST_P(CLanguageResources, AreAsManyAsTheProgramHas)
{
    for (const wchar_t* type : {RT_MENU, RT_DIALOG, RT_ACCELERATOR})
        EXPECT_EQ(ResourceIds(Theirs(), type), ResourceIds(Ours(), type));
}

TEST_P(CLanguageResources, HaveEveryMenuWithTheSameCommandsAndKeys)
{
    for (const int id : ResourceIds(Ours(), RT_MENU)) {
        SCOPED_TRACE("menu " + std::to_string(id));
        ExpectSameMenu(ReadMenu(Ours(), id), ReadMenu(Theirs(), id));
    }
}

TEST_P(CLanguageResources, HaveEveryDialogWithTheSameControls)
{
    const auto translated = ResourceIds(Theirs(), RT_DIALOG);
    for (const int id : ResourceIds(Ours(), RT_DIALOG)) {
        SCOPED_TRACE("dialog " + std::to_string(id));
        if (std::find(translated.begin(), translated.end(), id) == translated.end()) {
            ADD_FAILURE() << "missing";
            continue;
        }
        ExpectSameDialog(ReadDialogTemplate(Ours(), id), ReadDialogTemplate(Theirs(), id));
    }
}

TEST_P(CLanguageResources, HaveEveryTextWithTheSamePlaceholders)
{
    const auto ours = ReadStrings(Ours());
    auto theirs = ReadStrings(Theirs());
    for (const auto& [id, text] : ours) {
        SCOPED_TRACE("text " + std::to_string(id));
        const auto found = theirs.find(id);
        if (found == theirs.end()) {
            ADD_FAILURE() << "missing: " << Named(text);
            continue;
        }
        ExpectTranslated(text, found->second);
        EXPECT_EQ(AccessKeyCount(found->second), AccessKeyCount(text));
        theirs.erase(found);
    }
    for (const auto& [id, text] : theirs)
        ADD_FAILURE() << "text " << id << " is not the program's: " << Named(text);
}

TEST_P(CLanguageResources, HaveTheSamePatternsInTheFiltersOfFileDialogs)
{
    for (const auto& [id, text] : ReadStrings(Ours())) {
        const auto ours = SplitAt(text, L'|');
        if (ours.size() == 1)
            continue;
        SCOPED_TRACE("text " + std::to_string(id));
        const auto theirs = SplitAt(CResources::TextOf(Theirs(), id), L'|');
        ASSERT_EQ(theirs.size(), ours.size());
        for (std::size_t at = 1; at < ours.size(); at += 2)
            EXPECT_EQ(theirs[at], ours[at]);
    }
}

TEST_P(CLanguageResources, LeaveABlankBeforeANameThatFollows)
{
    EXPECT_TRUE(CResources::TextOf(Theirs(), IDS_LANGUAGE_FAILED).ends_with(L" "));
}

TEST_P(CLanguageResources, HaveTheSameAccelerators)
{
    for (const int id : ResourceIds(Ours(), RT_ACCELERATOR)) {
        SCOPED_TRACE("table " + std::to_string(id));
        EXPECT_EQ(ReadAccelerators(Theirs(), id), ReadAccelerators(Ours(), id));
    }
}

TEST_P(CLanguageResources, HaveDifferentAccessKeysInThePopupOfAPlugin)
{
    std::set<wchar_t> keys;
    for (const UINT id : {IDS_MENU_PLUGIN, IDS_MENU_QUALITY, IDS_MENU_DITHERING, IDS_MENU_INFORMATION})
        EXPECT_TRUE(keys.insert(AccessKey(CResources::TextOf(Theirs(), id))).second) << id;
}

TEST_P(CLanguageResources, SayWhatTheyAre)
{
    const auto build = m_oLibrary->Find<std::uint32_t (*)()>("GetDLLBuildID");
    const auto type = m_oLibrary->Find<std::uint32_t (*)()>("GetDLLType");
    ASSERT_NE(build, nullptr);
    ASSERT_NE(type, nullptr);
    EXPECT_EQ(build(), 415U);
    EXPECT_EQ(type(), 16U);
    EXPECT_NE(m_oLibrary->Find<void (*)()>("GetDLLInfo"), nullptr);
}

// Room for the texts.

class CShownTemplate final : public CDialog {
public:
    explicit CShownTemplate(int id) : CDialog(id) {}
};

/// The size that a text takes in the window's font, in pixels; in one line, or broken at the given width.
SIZE TextSize(const CWindow& window, const std::wstring& text, std::optional<LONG> width)
{
    const HDC dc = ::GetDC(window.Handle());
    const auto font = reinterpret_cast<HFONT>(window.Send(WM_GETFONT));  // NOLINT: what the message returns
    const HGDIOBJ before = ::SelectObject(dc, font);
    RECT place{0, 0, width.value_or(0), 0};
    const UINT breaks = width ? DT_WORDBREAK : DT_SINGLELINE;
    ::DrawTextW(dc, text.c_str(), -1, &place, DT_CALCRECT | DT_EXPANDTABS | breaks);
    ::SelectObject(dc, before);
    ::ReleaseDC(window.Handle(), dc);
    return {place.right, place.bottom};
}

std::wstring ClassOf(const CWindow& window)
{
    wchar_t name[64] = {};
    ::GetClassNameW(window.Handle(), name, 64);
    return name;
}

/// Pixels that a text of the control lacks to be seen whole; 0 when it fits, or when the control shows no
/// fixed text.
LONG Missing(const CWindow& control)
{
    const std::wstring text = control.Text();
    const RECT room = control.ClientRect();
    const auto style = static_cast<DWORD>(::GetWindowLongPtrW(control.Handle(), GWL_STYLE));
    // Windows reserves the place of the mark, and a border around a caption.
    constexpr LONG kMark = 16;
    constexpr LONG kBorder = 6;
    const bool isStatic = ClassOf(control) == L"Static" && (style & SS_TYPEMASK) <= SS_RIGHT;
    if (text.empty() || (style & WS_VISIBLE) == 0 || (!isStatic && ClassOf(control) != L"Button"))
        return 0;
    if (isStatic) {
        const LONG lineHeight = TextSize(control, L"X", std::nullopt).cy;
        if (room.bottom < 2 * lineHeight)
            return std::max(TextSize(control, text, std::nullopt).cx - room.right, 0L);
        return std::max(TextSize(control, text, room.right).cy - room.bottom, 0L);
    }
    const DWORD kind = style & BS_TYPEMASK;
    const bool isPush = kind == BS_PUSHBUTTON || kind == BS_DEFPUSHBUTTON;
    const LONG extra = isPush ? kBorder : kMark;
    return std::max(TextSize(control, text, std::nullopt).cx + extra - room.right, 0L);
}

void ExpectTextsFit(HMODULE module)
{
    for (const int id : ResourceIds(module, RT_DIALOG)) {
        CShownTemplate dialog(id);
        // A control of the program's own needs its window class here.
        ASSERT_TRUE(dialog.Create(module, nullptr)) << id;
        for (HWND child = ::GetWindow(dialog.Handle(), GW_CHILD); child != nullptr;
             child = ::GetWindow(child, GW_HWNDNEXT))
            EXPECT_EQ(Missing(CWindow(child)), 0)
                << "dialog " << id << ": \"" << ToUtf8(CWindow(child).Text()) << "\"";
    }
}

TEST_P(CLanguageResources, FitIntoTheControlsOfTheDialogs)
{
    CPreview::Register(Ours(), CPreview::kClassName);
    ExpectTextsFit(Theirs());
}

INSTANTIATE_TEST_SUITE_P(Shipped, CLanguageResources,
                         testing::Values(L"russian", L"spanish", L"portuguese-br", L"chinese-simplified"),
                         [](const testing::TestParamInfo<const wchar_t*>& language) {
                             std::string name = ToUtf8(language.param);
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

TEST(BuiltInLanguage, FitsIntoTheControlsOfTheDialogs)
{
    const HMODULE program = ::GetModuleHandleW(nullptr);
    CPreview::Register(program, CPreview::kClassName);
    ExpectTextsFit(program);
}

TEST(LanguageLibraries, AreAllComparedWithTheProgram)
{
    std::set<std::wstring> names;
    for (const auto& file : std::filesystem::directory_iterator(MAVREL_LANGUAGES))
        if (file.path().extension() == ".dll")
            names.insert(file.path().stem().native());
    EXPECT_EQ(names,
              (std::set<std::wstring>{L"chinese-simplified", L"portuguese-br", L"russian", L"spanish"}));
}

}  // namespace
