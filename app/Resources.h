#pragma once

// Where texts, menus and dialogs come from: the program itself, or a library with another interface language.
// Windows are always created for the program; only their resources change. What a library lacks, because it
// was made before the program had it, comes from the program.

#include <string>

#include "ui/Handles.h"

class CResources {
public:
    explicit CResources(HINSTANCE program) : m_hProgram(program), m_hCurrent(program) {}

    HINSTANCE Program() const { return m_hProgram; }
    HINSTANCE Current() const { return m_hCurrent; }
    /// Takes everything but icons from `library` from now on, which stays loaded until the next change; null
    /// means the program's own resources.
    void SetCurrent(HINSTANCE library) { m_hCurrent = library != nullptr ? library : m_hProgram; }
    /// Whether the interface language is the program's own.
    bool IsBuiltIn() const { return m_hCurrent == m_hProgram; }

    /// Empty when there is no such text.
    std::wstring Text(UINT id) const;
    /// The text of the program itself, whatever the interface language.
    std::wstring BuiltInText(UINT id) const { return TextOf(m_hProgram, id); }
    /// The text of one module and no other; empty when it has none.
    static std::wstring TextOf(HINSTANCE module, UINT id);
    CMenuHandle Menu(int id) const;
    CAcceleratorHandle Accelerators(int id) const;
    /// In the size that Windows wants for captions (`small`) or for the task switcher.
    CIconHandle Icon(int id, bool small) const;

private:
    HINSTANCE ModuleOf(const wchar_t* type, int id) const;

    HINSTANCE m_hProgram;
    HINSTANCE m_hCurrent;
};
