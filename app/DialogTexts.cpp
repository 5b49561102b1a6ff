#include "app/DialogTexts.h"

#include "ui/Dialog.h"

namespace {

/// The template as a window that is never shown.
class CHiddenDialog final : public CDialog {
public:
    explicit CHiddenDialog(int id) : CDialog(id) {}
};

}  // namespace

void TakeTextsFromTemplate(const CWindow& dialog, HINSTANCE module, int id)
{
    CHiddenDialog source(id);
    if (!source.Create(module, nullptr))
        return;
    for (HWND child = ::GetWindow(source.Handle(), GW_CHILD); child != nullptr;
         child = ::GetWindow(child, GW_HWNDNEXT)) {
        const int control = ::GetDlgCtrlID(child);
        const std::wstring text = CWindow(child).Text();
        if (control > 0 && !text.empty() && dialog.Child(control).Exists())
            dialog.Child(control).SetText(text);
    }
}
