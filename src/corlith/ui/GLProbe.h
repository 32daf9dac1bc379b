// The start-up OpenGL probe: a tiny dialog that clears its OpenGL view to pure red and
// reads the colour back, so a host learns whether OpenGL really draws on this machine
// (a driver may hand out a context that draws nothing) before it opens its views.
#pragma once

#include <corlith/framework/String.h>
#include <corlith/ui/Dialog.h>
#include <corlith/ui/Window.h>

#include <wx/timer.h>

#include <memory>

class wxGLCanvas;
class wxGLContext;
class wxPaintEvent;

/// The probe's dialog: shows a 1 x 1 pixel OpenGL view, clears it to pure red on its
/// first paint and, on the next, reads pixel (0, 0) of the window back from the display
/// server (what the screen shows, not what the driver says it drew). A timer (id 1990, every 10 ms)
/// repaints the view until the answer is in, and closes the dialog once it is or after
/// about 3 s (300 ticks) without one. Used through IsEnableOpenGL.
class CGLDummy : public CDialog {
 public:
  /// The timer's id and period.
  static constexpr int kTimerId = 1990;
  static constexpr int kTimerMilliseconds = 10;
  /// The probe gives up once the ticks times the period pass this.
  static constexpr int kGiveUpMilliseconds = 3000;

  explicit CGLDummy(CWnd* pParent = nullptr);
  ~CGLDummy() override;

  /// Makes the OpenGL view (RGBA, double buffered, 32 colour, 16 depth and 1 stencil
  /// bits) and its context, shrinks the dialog to 1 x 1 and starts the timer; when the
  /// display offers no such view the probe is finished at once with result 0.
  BOOL OnInitDialog() override;

  /// 1 when OpenGL drew the red pixel, else 0.
  int m_bResult = 0;
  /// The driver's GL_VERSION text; empty when no context could be made current.
  CString m_strVersion;

 private:
  void OnPaintView(wxPaintEvent& event);
  void OnTimer(wxTimerEvent& event);
  void Finish(bool drewRed);

  /// The view standing for the window's device context; owned by the dialog's window.
  wxGLCanvas* m_pDC = nullptr;
  std::unique_ptr<wxGLContext> m_pGLContext;
  wxTimer m_timer;
  int m_nTick = 0;
  bool m_bFinished = false;
  bool m_bFirstPaintDone = false;
};

/// Runs the probe modally over `parent` (may be null) and returns 1 when OpenGL drew
/// correctly, else 0; `version` receives the GL_VERSION text (empty when none). Answers 0
/// at once, showing nothing, when no wx application runs or it has no display. Call from
/// the user-interface thread.
int IsEnableOpenGL(CString& version, CWnd* parent);
