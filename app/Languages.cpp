#include "app/Languages.h"

#include <algorithm>
#include <utility>

#include "app/resource.h"
#include "base/Text.h"
#include "codec/LibraryCheck.h"

namespace {

constexpr wchar_t kGlobal[] = L"global";
constexpr wchar_t kCurrent[] = L"lang";
constexpr wchar_t kDisplayNames[] = L"lang";
constexpr std::size_t kMostLanguages = ID_LANGUAGE_LAST - ID_LANGUAGE_ENGLISH;

// Names also come from the settings file, and none of them may lead out of the folder.
bool IsPlainName(std::wstring_view name)
{
    return name.find_first_of(L"\\/:") == std::wstring_view::npos;
}

}  // namespace

CLanguages::CLanguages(CResources& resources, ISettings& settings, IPrompt& prompt,
                       std::filesystem::path folder)
    : m_rResources(resources), m_rSettings(settings), m_rPrompt(prompt), m_sFolder(std::move(folder))
{
}

std::vector<std::wstring> CLanguages::Names() const
{
    std::vector<std::wstring> names = LibraryNames(m_sFolder);
    std::erase(names, kLibraryExtension);
    names.resize(std::min(names.size(), kMostLanguages));
    for (std::wstring& name : names)
        name.resize(name.size() - kLibraryExtension.size());
    return names;
}

std::wstring CLanguages::MenuText(const std::wstring& name) const
{
    const std::wstring display = m_rSettings.ReadString(kDisplayNames, name);
    return PlainMenuText(display.empty() ? name : display);
}

void CLanguages::FillMenu(const CMenu& menu) const
{
    const auto popup = menu.PopupWith(ID_LANGUAGE_ENGLISH);
    if (!popup)
        return;
    popup->CutFrom(1);
    const std::wstring current = m_rSettings.ReadString(kGlobal, kCurrent);
    UINT command = ID_LANGUAGE_ENGLISH;
    UINT checked = command;
    for (const std::wstring& name : Names()) {
        popup->Append(++command, MenuText(name));
        if (name == current)
            checked = command;
    }
    popup->CheckRadio(ID_LANGUAGE_ENGLISH, ID_LANGUAGE_LAST, checked);
}

std::optional<LanguageChange> CLanguages::Choose(UINT command)
{
    if (command == ID_LANGUAGE_ENGLISH)
        return Load({});
    const auto names = Names();
    const std::size_t position = command - ID_LANGUAGE_ENGLISH - 1;
    if (position >= names.size())
        return std::nullopt;
    return Load(names[position]);
}

std::optional<LanguageChange> CLanguages::LoadFromSettings()
{
    const std::wstring name = m_rSettings.ReadString(kGlobal, kCurrent);
    if (name.empty())
        return std::nullopt;
    return Load(name);
}

LanguageChange CLanguages::Load(const std::wstring& name)
{
    // No text may be read from a library that is gone.
    m_rResources.SetCurrent(nullptr);
    m_oLibrary.reset();
    if (name.empty()) {
        m_rSettings.Delete(kGlobal, kCurrent);
        return LanguageChange::Changed;
    }
    if (!LoadLibraryNamed(name)) {
        m_rPrompt.ShowError(m_rResources.Text(IDS_LANGUAGE_FAILED) + name);
        m_rSettings.Delete(kGlobal, kCurrent);
        return LanguageChange::Failed;
    }
    const auto library = static_cast<HINSTANCE>(m_oLibrary->Handle());
    m_rResources.SetCurrent(library);
    if (m_rSettings.ReadString(kDisplayNames, name).empty())
        m_rSettings.WriteString(kDisplayNames, name, CResources::TextOf(library, IDS_LANGUAGE_NAME));
    m_rSettings.WriteString(kGlobal, kCurrent, name);
    return LanguageChange::Changed;
}

bool CLanguages::LoadLibraryNamed(const std::wstring& name)
{
    if (!IsPlainName(name))
        return false;
    const std::wstring file = name + std::wstring(kLibraryExtension);
    m_oLibrary =
        LoadCompatibleLibrary(m_sFolder / ToPath(file), L"lang\\" + file, kLanguageLibrary, m_rPrompt);
    return m_oLibrary.has_value();
}
