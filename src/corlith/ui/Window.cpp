#include <corlith/ui/Window.h>

#include <string>

namespace corlith::ui {

wxString ToWx(const CString& text) {
  return wxString::FromUTF8(text.GetString(), static_cast<std::size_t>(text.GetLength()));
}

CString FromWx(const wxString& text) {
  const wxScopedCharBuffer utf8 = text.utf8_str();
  return CString(std::string(utf8.data(), utf8.length()));
}

}  // namespace corlith::ui

BOOL CWnd::EnableWindow(BOOL bEnable) {
  if (m_pWindow == nullptr) return FALSE;
  const BOOL wasDisabled = m_pWindow->IsThisEnabled() ? FALSE : TRUE;
  m_pWindow->Enable(bEnable != FALSE);
  return wasDisabled;
}

void CWnd::SetWindowText(const CString& text) {
  if (m_pWindow != nullptr) m_pWindow->SetLabel(corlith::ui::ToWx(text));
}

CString CWnd::GetWindowText() const {
  if (m_pWindow == nullptr) return CString();
  return corlith::ui::FromWx(m_pWindow->GetLabel());
}
