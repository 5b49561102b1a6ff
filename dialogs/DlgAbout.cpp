#include "dialogs/DlgAbout.h"

#include "app/resource.h"
#include "base/Format.h"
#include "codec/BuildNumber.h"

CDlgAbout::CDlgAbout(const CResources& resources) : CDialog(IDD_ABOUT), m_rResources(resources)
{
    Messages().OnCommand(IDOK, [this] { End(IDOK); });
    Messages().OnCommand(IDCANCEL, [this] { End(IDCANCEL); });
}

bool CDlgAbout::OnInit()
{
    Child(IDC_ABOUT_TEXT).SetText(Format(m_rResources.Text(IDS_ABOUT), BuildNumber()));
    return true;
}
