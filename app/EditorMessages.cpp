#include "app/EditorMessages.h"

// NOLINTBEGIN(cppcoreguidelines-pro-type-reinterpret-cast): the messages carry pointers

void CWindowEditorHost::Import(const CBitmap* picture, ImportRecord& record)
{
    m_oWindow.Send(kImportMessage, reinterpret_cast<WPARAM>(picture), reinterpret_cast<LPARAM>(&record));
}

void CWindowEditorHost::Show(const std::wstring& name, const CBitmap* picture)
{
    const wchar_t* text = name.empty() ? nullptr : name.c_str();
    m_oWindow.Send(kShowMessage, reinterpret_cast<WPARAM>(text), reinterpret_cast<LPARAM>(picture));
}

std::unique_ptr<CBitmap> CWindowEditorHost::Decode(std::uint32_t index, CacheIndex cache)
{
    return std::unique_ptr<CBitmap>(
        reinterpret_cast<CBitmap*>(m_oWindow.Send(kDecodeMessage, index, static_cast<LPARAM>(cache))));
}

// NOLINTEND(cppcoreguidelines-pro-type-reinterpret-cast)
