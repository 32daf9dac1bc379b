// CResizableScrollDialog: a base for tall resizable dialogs. Made shorter than its design,
// the dialog activates a vertical scroll bar, and the wheel and the bar move its content
// (the dialog's window is scrolled, so every item moves together). GTK gives a dialog no
// scroll bar of its own, so the bar is a wxScrollBar child along the right edge (over the
// client area, like the bar a window's frame draws), shown disabled when nothing can scroll.
#pragma once

#include <corlith/framework/Geometry.h>
#include <corlith/framework/Types.h>
#include <corlith/ui/Dialog.h>

#include <cstdint>
#include <utility>
#include <vector>

class wxMouseEvent;
class wxScrollBar;
class wxScrollEvent;
class wxSizeEvent;

/// Scroll-bar codes, as OnVScroll receives them; higher codes are ignored.
inline constexpr UINT SB_LINEUP = 0;
inline constexpr UINT SB_LINEDOWN = 1;
inline constexpr UINT SB_PAGEUP = 2;
inline constexpr UINT SB_PAGEDOWN = 3;
inline constexpr UINT SB_THUMBPOSITION = 4;
inline constexpr UINT SB_THUMBTRACK = 5;
inline constexpr UINT SB_TOP = 6;
inline constexpr UINT SB_BOTTOM = 7;
inline constexpr UINT SB_ENDSCROLL = 8;

class CResizableScrollDialog : public CDialog {
 public:
  /// A dialog of `tpl` (a resizable template, which must outlive the dialog) over
  /// `pParent`'s window. Unlike other resizable dialogs it may be made shorter than its
  /// design: that is what it scrolls for.
  explicit CResizableScrollDialog(const corlith::ui::DialogTemplate& tpl, CWnd* pParent = nullptr);

  /// Default initialisation, then the initial rectangle is remembered and the position is 0.
  BOOL OnInitDialog() override;
  /// After the default layout: range = 1.1 × the height lost (0 when none), page = range / 10,
  /// position 0 (the content is deliberately not moved back here).
  virtual void OnSize(UINT nType, int cx, int cy);
  /// Moves the content by a tenth of the range: towards the user (zDelta < 1, so also 0)
  /// down the dialog, away from the user up.
  virtual BOOL OnMouseWheel(UINT nFlags, short zDelta, CPoint pt);
  /// Line (range / 100) and page (range / 10) steps, at least 1, and the thumb; codes above
  /// SB_THUMBTRACK are ignored. A thumb code moves the content by exactly nPos − position,
  /// even where the position itself is then clamped to the range.
  virtual void OnVScroll(UINT nSBCode, UINT nPos, wxScrollBar* pScrollBar);

  /// The scroll range R (initial height − scroll base).
  int GetVScrollRange() const { return m_rcInitial.Height() - m_nScrollBase; }
  /// The scroll position in pixels, 0 at the top.
  int GetScrollPosition() const { return m_nScrollPos; }
  /// The vertical scroll bar (null before the window exists).
  wxScrollBar* GetVScrollBar() const { return m_pScrollBar; }

 private:
  void OnSizeEvent(wxSizeEvent& event);
  void OnWheelEvent(wxMouseEvent& event);
  void OnScrollEvent(wxScrollEvent& event);
  void PlaceScrollBar();
  void ShowScrollInfo(int range, int page);
  /// Moves the position by `move` (clamped to 0..R), shows it, scrolls the content by −move.
  void MoveBy(int move);

  std::int32_t m_nScrollBase = 0;
  std::int32_t m_nScrollPos = 0;
  /// The client area when the dialog opened, in screen coordinates. The client area, not
  /// the frame: a window manager's frame would otherwise count as height lost, and a
  /// dialog at its design size would scroll.
  CRect m_rcInitial;
  wxScrollBar* m_pScrollBar = nullptr;  ///< owned by the dialog's window
  /// Pixels the content stands above its laid-out place, and each item's laid-out place.
  int m_nContentShift = 0;
  std::vector<std::pair<wxWindow*, wxPoint>> m_contentBase;
};
