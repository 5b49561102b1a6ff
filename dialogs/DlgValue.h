#pragma once

// The dialog that asks for one value: a title, a label and an edit field.

#include <string>

#include "ui/Dialog.h"

struct ValueRequest {
    std::wstring title = {};
    std::wstring label = {};
    std::wstring proposed = {};
};

class CDlgValue final : public CDialog {
public:
    explicit CDlgValue(ValueRequest request);
    /// What stood in the field when OK was pressed.
    const std::wstring& Value() const { return m_sValue; }

private:
    bool OnInit() override;

    ValueRequest m_oRequest;
    std::wstring m_sValue;
};
