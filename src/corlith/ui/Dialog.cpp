#include <corlith/framework/HostPrompt.h>
#include <corlith/ui/Dialog.h>

#include <wx/textctrl.h>

CDialog::CDialog(const corlith::ui::DialogTemplate& tpl, CWnd* pParent)
    : m_template(tpl), m_pParentWindow(pParent != nullptr ? pParent->GetWxWindow() : nullptr) {}

CDialog::~CDialog() = default;

bool CDialog::MakeWindow() {
  if (GetHandle() != nullptr) return true;
  long style = wxDEFAULT_DIALOG_STYLE;
  if (!m_template.titleBar) style = wxBORDER_SIMPLE;
  if (m_template.resizable) style |= wxRESIZE_BORDER;
  if (!wxDialog::Create(m_pParentWindow, m_template.id, wxString::FromUTF8(m_template.caption),
                        wxDefaultPosition, wxDefaultSize, style)) {
    return false;
  }
  Attach(this);
  SetAffirmativeId(IDOK);
  SetEscapeId(IDCANCEL);
  if (m_template.resizable) Bind(wxEVT_SIZE, &CDialog::OnSizeChanged, this);
  Bind(
      wxEVT_BUTTON, [this](wxCommandEvent&) { OnOK(); }, IDOK);
  Bind(
      wxEVT_BUTTON, [this](wxCommandEvent&) { OnCancel(); }, IDCANCEL);
  Bind(wxEVT_CLOSE_WINDOW, [this](wxCloseEvent&) { OnCancel(); });
  return true;
}

void CDialog::BuildItems() {
  // A dialog shown again gets fresh items, as the original's new window did; the
  // object's members keep what they hold.
  m_designRects.clear();
  DestroyChildren();
  SetMinClientSize(wxDefaultSize);
  corlith::ui::BuildDialogItems(
      *this, m_template, [this](wxWindow* parent, const corlith::ui::DialogItem& item, const wxRect& rect) {
        return CreateItem(parent, item, rect);
      });
  m_designClient = GetClientSize();
  if (m_template.resizable) {
    for (const corlith::ui::DialogItem& item : m_template.items) {
      wxWindow* window = GetDlgItem(item.id);
      if (window != nullptr) m_designRects.emplace_back(window, window->GetRect());
    }
    // The design size is the smallest the dialog's frame allows.
    SetMinClientSize(m_designClient);
  }
}

INT_PTR CDialog::DoModal() {
  if (IsShown() || !MakeWindow()) return -1;
  BuildItems();
  if (!OnInitDialog()) return -1;
  Centre();
  return ShowModal();
}

BOOL CDialog::Create(CWnd* pParent) {
  if (GetHandle() != nullptr) return FALSE;
  if (pParent != nullptr) m_pParentWindow = pParent->GetWxWindow();
  if (!MakeWindow()) return FALSE;
  BuildItems();
  OnInitDialog();
  return TRUE;
}

BOOL CDialog::OnInitDialog() { return TRUE; }

void CDialog::OnOK() { EndDialog(IDOK); }

void CDialog::OnCancel() { EndDialog(IDCANCEL); }

void CDialog::EndDialog(int nResult) {
  if (IsModal()) {
    EndModal(nResult);
  } else {
    SetReturnCode(nResult);
    Hide();
  }
}

// Only the children: wx's FindWindow answers the dialog itself when the ids match, and a
// template may give an item its dialog's id.
wxWindow* CDialog::GetDlgItem(int nID) const {
  for (wxWindow* child : GetChildren()) {
    if (child->GetId() == nID) return child;
  }
  return nullptr;
}

void CDialog::SetDlgItemText(int nID, const CString& text) {
  wxWindow* item = GetDlgItem(nID);
  if (item == nullptr) return;
  const wxString value = corlith::ui::ToWx(text);
  if (auto* edit = dynamic_cast<wxTextCtrl*>(item)) {
    edit->ChangeValue(value);
  } else {
    item->SetLabel(value);
  }
}

CString CDialog::GetDlgItemText(int nID) const {
  const wxWindow* item = GetDlgItem(nID);
  if (item == nullptr) return CString();
  if (const auto* edit = dynamic_cast<const wxTextCtrl*>(item)) return corlith::ui::FromWx(edit->GetValue());
  return corlith::ui::FromWx(item->GetLabel());
}

wxWindow* CDialog::CreateItem(wxWindow* /*parent*/, const corlith::ui::DialogItem& /*item*/,
                              const wxRect& /*rect*/) {
  return nullptr;
}

void CDialog::OnSizeChanged(wxSizeEvent& event) {
  event.Skip();
  const wxSize now = GetClientSize();
  const int dx = now.x - m_designClient.x;
  const int dy = now.y - m_designClient.y;
  std::size_t at = 0;
  for (const corlith::ui::DialogItem& item : m_template.items) {
    if (at == m_designRects.size()) break;
    auto& [window, design] = m_designRects[at];
    if (window->GetId() != item.id) continue;
    ++at;
    const int left = design.GetLeft() + dx * item.topLeft.x / 100;
    const int top = design.GetTop() + dy * item.topLeft.y / 100;
    const int right = design.GetRight() + 1 + dx * item.bottomRight.x / 100;
    const int bottom = design.GetBottom() + 1 + dy * item.bottomRight.y / 100;
    window->SetSize(left, top, right - left, bottom - top);
  }
}
