#include "ui/Dialog.h"

namespace {

HINSTANCE Program()
{
    return ::GetModuleHandleW(nullptr);
}

// Another module may lack a template that the program has.
const DLGTEMPLATE* TemplateOf(HINSTANCE module, int id)
{
    HRSRC found = ::FindResourceW(module, MAKEINTRESOURCEW(id), RT_DIALOG);
    if (found == nullptr) {
        module = Program();
        found = ::FindResourceW(module, MAKEINTRESOURCEW(id), RT_DIALOG);
    }
    HGLOBAL loaded = found != nullptr ? ::LoadResource(module, found) : nullptr;
    return loaded != nullptr ? static_cast<const DLGTEMPLATE*>(::LockResource(loaded)) : nullptr;
}

// Its system menu, which some dialogs have commands in, opens at the icon.
void TakeIconsOfOwner(const CWindow& dialog)
{
    const CWindow owner(::GetWindow(dialog.Handle(), GW_OWNER));
    if (!owner.Exists())
        return;
    for (const WPARAM size : {ICON_SMALL, ICON_BIG})
        if (const LRESULT icon = owner.Send(WM_GETICON, size); icon != 0)
            dialog.Send(WM_SETICON, size, icon);
}

}  // namespace

CDialog::~CDialog()
{
    if (!Exists())
        return;
    // What the derived class bound is gone already.
    ::SetWindowLongPtrW(Handle(), DWLP_USER, 0);
    ::DestroyWindow(Handle());
}

INT_PTR CDialog::DoModal(HINSTANCE module, HWND owner)
{
    m_bModal = true;
    const DLGTEMPLATE* dialog = TemplateOf(module, m_nTemplate);
    if (dialog == nullptr)
        return -1;
    // For the program, whoever has the template: it registered the window classes and holds the icons.
    return ::DialogBoxIndirectParamW(Program(), dialog, owner, Procedure,
                                     reinterpret_cast<LPARAM>(this));  // NOLINT: how the parameter is passed
}

bool CDialog::Create(HINSTANCE module, HWND owner)
{
    m_bModal = false;
    m_bEnded = false;
    const DLGTEMPLATE* dialog = TemplateOf(module, m_nTemplate);
    return dialog != nullptr &&
           ::CreateDialogIndirectParamW(Program(), dialog, owner, Procedure,
                                        reinterpret_cast<LPARAM>(this)) != nullptr;  // NOLINT: as above
}

bool CDialog::IsForDialog(MSG& message)
{
    return PreTranslate(message) || (Exists() && ::IsDialogMessageW(Handle(), &message) != FALSE);
}

INT_PTR CDialog::RunLoop()
{
    MSG message{};
    while (!m_bEnded && ::GetMessageW(&message, nullptr, 0, 0) > 0) {
        if (IsForDialog(message))
            continue;
        ::TranslateMessage(&message);
        ::DispatchMessageW(&message);
    }
    return m_nResult;
}

void CDialog::End(INT_PTR result)
{
    m_nResult = result;
    m_bEnded = true;
    if (m_bModal)
        ::EndDialog(Handle(), result);
    else if (Exists()) {
        ::DestroyWindow(Handle());
        // When another program has sent the message that ends the dialog, the loop still waits for a posted
        // one.
        ::PostMessageW(nullptr, WM_NULL, 0, 0);
    }
}

INT_PTR CDialog::HandleMessage(UINT message, WPARAM wParam, LPARAM lParam)
{
    try {
        if (message == WM_INITDIALOG) {
            TakeIconsOfOwner(*this);
            return OnInit() ? TRUE : FALSE;
        }
        if ((message == WM_COMMAND || message == WM_CLOSE) && !AcceptsCommands())
            return TRUE;
        const auto result = m_oMessages.Dispatch(message, wParam, lParam);
        if (!result)
            return FALSE;
        if (Exists())
            ::SetWindowLongPtrW(Handle(), DWLP_MSGRESULT, *result);
        return TRUE;
    } catch (...) {
        // Nothing may be thrown through Windows; the dialog knows what its exceptions mean.
        OnException();
        return TRUE;
    }
}

INT_PTR CALLBACK CDialog::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_INITDIALOG) {
        auto* created = reinterpret_cast<CDialog*>(lParam);  // NOLINT: passed by Create and DoModal
        created->Attach(window);
        ::SetWindowLongPtrW(window, DWLP_USER, lParam);
    }
    auto* self = reinterpret_cast<CDialog*>(::GetWindowLongPtrW(window, DWLP_USER));  // NOLINT: stored above
    if (self == nullptr)
        return FALSE;
    if (message == WM_NCDESTROY) {
        ::SetWindowLongPtrW(window, DWLP_USER, 0);
        self->Attach(nullptr);
        return FALSE;
    }
    return self->HandleMessage(message, wParam, lParam);
}
