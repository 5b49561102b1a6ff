#pragma once

// The application messages of the main window. Tools and their worker threads send them; the window answers
// on its own thread, so whoever sends waits until the database is free again.
//
// | message | first parameter        | second parameter       | result                                  |
// |---------|------------------------|------------------------|-----------------------------------------|
// | import  | const CBitmap* or null | ImportRecord*          | 0                                       |
// | show    | const wchar_t* or null | const CBitmap* or null | 0                                       |
// | select  | entry index            | -                      | 0                                       |
// | refresh | -                      | -                      | 0                                       |
// | decode  | entry index            | CacheIndex             | a new CBitmap that the caller deletes, or
// null |

#include "tools/EditorHost.h"
#include "ui/Window.h"

inline constexpr UINT kImportMessage = 0x800A;
inline constexpr UINT kShowMessage = 0x800B;
inline constexpr UINT kSelectMessage = 0x800C;
inline constexpr UINT kRefreshMessage = 0x800D;
inline constexpr UINT kDecodeMessage = 0x800E;

/// The editor as tools see it, for any thread of the process. The window must outlive it.
class CWindowEditorHost final : public IEditorHost {
public:
    explicit CWindowEditorHost(const CWindow& window) : m_oWindow(window) {}

    void Import(const CBitmap* picture, ImportRecord& record) override;
    void Show(const std::wstring& name, const CBitmap* picture) override;
    void Select(std::uint32_t index) override { m_oWindow.Send(kSelectMessage, index); }
    void Refresh() override { m_oWindow.Send(kRefreshMessage); }
    std::unique_ptr<CBitmap> Decode(std::uint32_t index, CacheIndex cache) override;

private:
    CWindow m_oWindow;
};
