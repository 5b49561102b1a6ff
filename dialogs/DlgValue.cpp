#include "dialogs/DlgValue.h"

#include "app/resource.h"

CDlgValue::CDlgValue(ValueRequest request) : CDialog(IDD_VALUE), m_oRequest(std::move(request))
{
    Messages().OnCommand(IDOK, [this] {
        m_sValue = Child(IDC_VALUE).Text();
        End(IDOK);
    });
    Messages().OnCommand(IDCANCEL, [this] { End(IDCANCEL); });
}

bool CDlgValue::OnInit()
{
    SetText(m_oRequest.title);
    Child(IDC_VALUE_LABEL).SetText(m_oRequest.label);
    const CWindow edit = Child(IDC_VALUE);
    edit.SetText(m_oRequest.proposed);
    edit.Send(EM_SETSEL, 0, -1);
    edit.Focus();
    return false;
}
