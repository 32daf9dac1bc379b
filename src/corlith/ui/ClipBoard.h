// CCBClipBoard: a picture of a window's client area, or a part of it, put on the
// clipboard or written as a BMP file. The picture is the window's own painting (the
// toolkit draws the window into memory), so a covered window is pictured right.
//
// On X11 a clipboard's content lives in the program that offers it: without a clipboard
// manager it is gone when the host exits. So, as X11 programs do, SetData hands the
// picture (as image/png) to `xclip`, which keeps offering it after the host has exited,
// until another program takes the clipboard. Where xclip is not installed the host
// offers the picture itself (as a bitmap; other programs see image/png) while it runs.
#pragma once

#include <corlith/framework/Geometry.h>
#include <corlith/ui/Window.h>

#include <wx/bitmap.h>

class CCBClipBoard {
 public:
  /// Captures `pWnd`'s window (not owned; it must outlive the calls).
  explicit CCBClipBoard(CWnd* pWnd) : m_pWnd(pWnd) {}
  virtual ~CCBClipBoard() = default;

  /// Captures `pRect` (client coordinates; null: the whole client area; parts outside
  /// the window come out black) and puts it on the clipboard: through xclip when it is
  /// installed, else offered by this process (see above). Does nothing when the
  /// clipboard cannot be opened; an empty area or a window that is not on the screen yet
  /// leaves the clipboard empty and no picture held.
  void SetData(const RECT* pRect);

  /// Captures `pRect` as SetData does when `bReuse` is 0 (with any other value uses the
  /// picture held from the last capture), then writes it as a BMP file at `pszPath`
  /// (uncompressed, no palette). Returns 1 when written; 0 when no picture is held or the
  /// file cannot be written.
  int SaveToBitmap(const char* pszPath, const RECT* pRect, int bReuse);

  /// The last picture captured by any instance (invalid: none). Shared by every
  /// instance and replaced on each capture; touch it from the user-interface thread only.
  static wxBitmap m_hbmpBitmap;

 private:
  /// Replaces m_hbmpBitmap with a picture of `pRect` (null: the client area); false
  /// when nothing could be captured (m_hbmpBitmap is then invalid).
  bool Capture(const RECT* pRect);

  CWnd* m_pWnd;
};
