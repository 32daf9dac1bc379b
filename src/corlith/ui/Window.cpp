#include <corlith/ui/Window.h>

BOOL CWnd::EnableWindow(BOOL bEnable) {
  if (m_pWindow == nullptr) return FALSE;
  const BOOL wasDisabled = m_pWindow->IsThisEnabled() ? FALSE : TRUE;
  m_pWindow->Enable(bEnable != FALSE);
  return wasDisabled;
}

void CWnd::SetWindowText(const CString& text) {
  if (m_pWindow != nullptr)
    m_pWindow->SetLabel(wxString::FromUTF8(text.GetString(), static_cast<std::size_t>(text.GetLength())));
}

CString CWnd::GetWindowText() const {
  if (m_pWindow == nullptr) return CString();
  return CString(m_pWindow->GetLabel().utf8_str().data());
}
