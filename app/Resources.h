#pragma once

// Where texts, menus and dialogs come from: the program itself, or later a library with another interface
// language. Windows are always created for the program; only their resources change.

#include <string>

#include "ui/Handles.h"

class CResources {
public:
    explicit CResources(HINSTANCE program) : m_hProgram(program), m_hCurrent(program) {}

    HINSTANCE Program() const { return m_hProgram; }
    HINSTANCE Current() const { return m_hCurrent; }

    /// Empty when there is no such text.
    std::wstring Text(UINT id) const;
    CMenuHandle Menu(int id) const;
    CAcceleratorHandle Accelerators(int id) const;
    /// In the size that Windows wants for captions (`small`) or for the task switcher.
    CIconHandle Icon(int id, bool small) const;

private:
    HINSTANCE m_hProgram;
    HINSTANCE m_hCurrent;
};
