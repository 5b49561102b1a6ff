#pragma once

// "About Mavrel": the name of the program and its build number.

#include "app/Resources.h"
#include "ui/Dialog.h"

class CDlgAbout final : public CDialog {
public:
    explicit CDlgAbout(const CResources& resources);

private:
    bool OnInit() override;

    const CResources& m_rResources;
};
