#include <corlith/ui/ResizableScrollDialog.h>

#include <wx/scrolbar.h>
#include <wx/settings.h>

#include <algorithm>
#include <limits>

CResizableScrollDialog::CResizableScrollDialog(const corlith::ui::DialogTemplate& tpl, CWnd* pParent)
    : CDialog(tpl, pParent) {
  // Bound before CDialog binds its own size handler, so the anchored layout (which skips
  // the event on) runs first: handlers bound later run earlier.
  Bind(wxEVT_SIZE, &CResizableScrollDialog::OnSizeEvent, this);
  Bind(wxEVT_MOUSEWHEEL, &CResizableScrollDialog::OnWheelEvent, this);
}

BOOL CResizableScrollDialog::OnInitDialog() {
  const BOOL result = CDialog::OnInitDialog();
  // Any height, down to nothing, is allowed; the width keeps its design minimum.
  SetMinClientSize(wxSize(GetDesignClientSize().x, -1));
  if (m_pScrollBar == nullptr) {
    m_pScrollBar = new wxScrollBar(this, wxID_ANY, wxDefaultPosition, wxDefaultSize, wxSB_VERTICAL);
    m_pScrollBar->Bind(wxEVT_SCROLL_LINEUP, &CResizableScrollDialog::OnScrollEvent, this);
    m_pScrollBar->Bind(wxEVT_SCROLL_LINEDOWN, &CResizableScrollDialog::OnScrollEvent, this);
    m_pScrollBar->Bind(wxEVT_SCROLL_PAGEUP, &CResizableScrollDialog::OnScrollEvent, this);
    m_pScrollBar->Bind(wxEVT_SCROLL_PAGEDOWN, &CResizableScrollDialog::OnScrollEvent, this);
    m_pScrollBar->Bind(wxEVT_SCROLL_THUMBRELEASE, &CResizableScrollDialog::OnScrollEvent, this);
    m_pScrollBar->Bind(wxEVT_SCROLL_THUMBTRACK, &CResizableScrollDialog::OnScrollEvent, this);
  }
  const wxPoint origin = ClientToScreen(wxPoint(0, 0));
  const wxSize client = GetClientSize();
  m_rcInitial = CRect(origin.x, origin.y, origin.x + client.x, origin.y + client.y);
  m_nScrollPos = 0;
  // Nothing is lost yet: the range starts at 0, so the bar shows disabled.
  m_nScrollBase = m_rcInitial.Height();
  PlaceScrollBar();
  ShowScrollInfo(0, 0);
  return result;
}

void CResizableScrollDialog::OnSizeEvent(wxSizeEvent& event) {
  event.Skip();
  if (m_pScrollBar == nullptr) return;  // not initialised yet
  const wxSize client = GetClientSize();
  OnSize(0, client.x, client.y);
}

void CResizableScrollDialog::OnSize(UINT /*nType*/, int /*cx*/, int cy) {
  const int initialHeight = m_rcInitial.Height();
  int extra = 0;
  if (cy < initialHeight) extra = static_cast<int>((initialHeight - cy) * 1.1);
  m_nScrollBase = initialHeight - extra;
  // The layout has put every item back by its anchors: the content stands at the top.
  m_contentBase.clear();
  m_nContentShift = 0;
  PlaceScrollBar();
  ShowScrollInfo(extra, extra / 10);
  m_nScrollPos = 0;
}

BOOL CResizableScrollDialog::OnMouseWheel(UINT /*nFlags*/, short zDelta, CPoint /*pt*/) {
  const int range = GetVScrollRange();
  const int step = range / 10;
  if (zDelta < 1) {
    if (m_nScrollPos != range) MoveBy(std::min(step, range - m_nScrollPos));
  } else if (m_nScrollPos >= 1) {
    MoveBy(-std::min(step, m_nScrollPos));
  }
  return TRUE;
}

void CResizableScrollDialog::OnVScroll(UINT nSBCode, UINT nPos, wxScrollBar* /*pScrollBar*/) {
  if (nSBCode > SB_THUMBTRACK) return;
  const int range = GetVScrollRange();
  const int line = std::max(1, range / 100);
  const int page = std::max(1, range / 10);
  switch (nSBCode) {
    case SB_LINEUP:
    case SB_PAGEUP:
      if (m_nScrollPos >= 1) MoveBy(-std::min(nSBCode == SB_LINEUP ? line : page, m_nScrollPos));
      break;
    case SB_LINEDOWN:
    case SB_PAGEDOWN:
      if (m_nScrollPos < range) MoveBy(std::min(nSBCode == SB_LINEDOWN ? line : page, range - m_nScrollPos));
      break;
    default:  // SB_THUMBPOSITION, SB_THUMBTRACK
      MoveBy(static_cast<int>(nPos) - m_nScrollPos);
      break;
  }
}

void CResizableScrollDialog::OnWheelEvent(wxMouseEvent& event) {
  if (event.GetWheelAxis() == wxMOUSE_WHEEL_VERTICAL) {
    const int rotation =
        std::clamp(event.GetWheelRotation(), static_cast<int>(std::numeric_limits<short>::min()),
                   static_cast<int>(std::numeric_limits<short>::max()));
    UINT flags = 0;
    if (event.ControlDown()) flags |= 0x0008;  // the original's MK_CONTROL
    if (event.ShiftDown()) flags |= 0x0004;    // MK_SHIFT
    if (event.LeftIsDown()) flags |= 0x0001;   // MK_LBUTTON
    if (event.RightIsDown()) flags |= 0x0002;  // MK_RBUTTON
    const wxPoint at = ClientToScreen(event.GetPosition());
    OnMouseWheel(flags, static_cast<short>(rotation), CPoint(at.x, at.y));
  }
  event.Skip();
}

void CResizableScrollDialog::OnScrollEvent(wxScrollEvent& event) {
  const wxEventType type = event.GetEventType();
  UINT code = SB_ENDSCROLL;
  if (type == wxEVT_SCROLL_LINEUP) code = SB_LINEUP;
  if (type == wxEVT_SCROLL_LINEDOWN) code = SB_LINEDOWN;
  if (type == wxEVT_SCROLL_PAGEUP) code = SB_PAGEUP;
  if (type == wxEVT_SCROLL_PAGEDOWN) code = SB_PAGEDOWN;
  if (type == wxEVT_SCROLL_THUMBRELEASE) code = SB_THUMBPOSITION;
  if (type == wxEVT_SCROLL_THUMBTRACK) code = SB_THUMBTRACK;
  OnVScroll(code, static_cast<UINT>(std::max(0, event.GetPosition())), m_pScrollBar);
}

void CResizableScrollDialog::PlaceScrollBar() {
  if (m_pScrollBar == nullptr) return;
  const wxSize client = GetClientSize();
  const int width = std::max(1, wxSystemSettings::GetMetric(wxSYS_VSCROLL_X, this));
  m_pScrollBar->SetSize(client.x - width, 0, width, client.y);
}

void CResizableScrollDialog::ShowScrollInfo(int range, int page) {
  if (m_pScrollBar == nullptr) return;
  // Positions 0..range with a thumb of `page` units: the bar's own positions then end at
  // range − page + 1, as the original bar's do; a page of 0 still gets a one-unit thumb.
  const int thumb = std::max(1, page);
  m_pScrollBar->SetScrollbar(0, thumb, range + 1, thumb);
  m_pScrollBar->Enable(range > 0);
  m_pScrollBar->Refresh();
}

void CResizableScrollDialog::MoveBy(int move) {
  const int range = GetVScrollRange();
  m_nScrollPos = std::clamp(m_nScrollPos + move, 0, std::max(0, range));
  if (m_pScrollBar != nullptr) m_pScrollBar->SetThumbPosition(m_nScrollPos);
  if (move == 0) return;
  // The content moves and the bar stays: every item but the bar is placed `shift` pixels
  // above where the layout put it (what scrolling the window does to the items; GTK's
  // own scrolling would carry the bar along).
  if (m_contentBase.empty()) {
    for (wxWindow* child : GetChildren()) {
      if (child != m_pScrollBar) m_contentBase.emplace_back(child, child->GetPosition());
    }
  }
  m_nContentShift += move;
  for (const auto& [child, base] : m_contentBase) child->Move(base.x, base.y - m_nContentShift);
  Refresh();
}
