// The progress indicators that stay alive while the host's user-interface thread is
// blocked: the percentage bar (CGProgressBar) and the GIF marquee (CGMarqueeThread with
// its dialog CGMarqueeProgressBar). GTK draws only from a process's main thread, so both
// windows live in a small helper program, corlith-progress, that the library starts and
// speaks to over a pipe; the helper ends when told to and when its input ends, so it
// never outlives its host.
//
// The helper is looked for, at each start, at $CORLITH_PROGRESS_HELPER (a test points it
// at the build tree's program), beside the loaded libcorlith_ui module, in "../bin" and
// "../libexec/corlith" from there, and last on the PATH. A HWND of these classes is the
// helper's X window id (not a wxWindow* of this process).
#pragma once

#include <corlith/framework/String.h>
#include <corlith/framework/Types.h>
#include <corlith/ui/Dialog.h>
#include <corlith/ui/GifControl.h>
#include <corlith/ui/Window.h>

#include <memory>

namespace corlith::ui {
struct ProgressHelper;
}  // namespace corlith::ui

/// The percentage bar: a process-wide singleton showing a 0..100 bar in a small top-most
/// window centred on its owner, while the owner is disabled.
class CGProgressBar {
 public:
  /// The singleton, made with all fields empty on first use.
  static CGProgressBar& instance();
  /// Copies the four fields (the helper they name stays the singleton's).
  CGProgressBar(const CGProgressBar&) = default;
  CGProgressBar& operator=(const CGProgressBar&) = default;
  ~CGProgressBar() = default;

  /// Show(pOwner, "").
  void Show(CWnd* pOwner);
  /// Stores the owner; a null owner (or one on no window) starts nothing. Otherwise starts
  /// a bar titled `strTitle` and returns once it exists (or its helper failed: then
  /// nothing shows, GetHWnd() is null and SetPos/SetTitle do nothing); then disables the
  /// owner and repaints it greyed. Each call starts a bar of its own; Close ends them all.
  void Show(CWnd* pOwner, CString strTitle);
  /// Show with the application's top window as owner when called on the main thread;
  /// from another thread, or with no top window, nothing is shown.
  void Show(CString strTitle);
  /// Moves the bar to nPos percent (clamped to 0..100), while a bar is up.
  void SetPos(int nPos);
  /// Sets the bar window's title, while a bar is up.
  void SetTitle(CString strTitle);
  /// Tells the helpers to go and enables the owner (also one disabled before Show);
  /// does not wait for them.
  void Close();
  /// The bar's X window id as a handle; null when no bar is up.
  HWND GetHWnd() const { return m_hWnd; }
  void SetHWnd(HWND hWnd) { m_hWnd = hWnd; }

  /// Whether the trace lines of enabling and disabling the owner ("Start ->
  /// EnableWindow( FALSE )" ...) go to standard error; off until a host turns it on.
  static void SetDebugOutput(bool on);
  static bool GetDebugOutput();

 private:
  CGProgressBar() = default;

  HWND m_hWnd = nullptr;
  CWnd* m_pOwner = nullptr;  ///< not owned
  /// The helper of the latest Show (owned by the shared state beside the singleton).
  corlith::ui::ProgressHelper* m_pThread = nullptr;
};

/// The marquee dialog (template 7008): one CGifControl (7007) playing the green strip
/// from "<module folder>/resource/ProgressBar_green.gif", the module being the loaded
/// libcorlith_ui (else the executable). Hidden until shown; each show plays the GIF
/// (a second show leaves a running animation alone).
class CGMarqueeProgressBar : public CDialog {
 public:
  explicit CGMarqueeProgressBar(CWnd* pParent = nullptr);
  /// Stops the animation and releases the GIF.
  ~CGMarqueeProgressBar() override;

  BOOL OnInitDialog() override;
  CGifControl& GetGifControl() { return m_gifControl; }
  /// Where the dialog loads its GIF from.
  static CString GetGifPath();

 protected:
  wxWindow* CreateItem(wxWindow* parent, const corlith::ui::DialogItem& item, const wxRect& rect) override;

 private:
  void OnShowWindow(wxShowEvent& event);

  CGifControl m_gifControl;
};

/// The marquee's thread. Its dialog lives in the helper program, which runs
/// InitInstance; the host drives it with Start, ShowDialog, HideDialog and Quit.
class CGMarqueeThread {
 public:
  CGMarqueeThread();
  /// Quits a helper still running (without waiting for it).
  ~CGMarqueeThread();
  CGMarqueeThread(const CGMarqueeThread&) = delete;
  CGMarqueeThread& operator=(const CGMarqueeThread&) = delete;

  /// In the process that shows it: makes the dialog (no parent), centred and hidden.
  /// Returns 1 in every case (run the message loop); GetMainWnd() is null on failure.
  BOOL InitInstance();
  /// Destroys the dialog; returns 0.
  int ExitInstance();
  CGMarqueeProgressBar* GetMainWnd() const { return m_pMainWnd; }

  /// Starts the helper with the dialog, hidden; TRUE once it exists (FALSE: no helper,
  /// or it could not make the dialog). A second Start quits the first helper.
  BOOL Start();
  /// Shows or hides the dialog; FALSE when no helper runs.
  BOOL ShowDialog();
  BOOL HideDialog();
  /// Ends the helper and its dialog; does not wait.
  void Quit();
  /// The dialog's X window id in the helper; null before Start and after Quit.
  HWND GetMainHwnd() const { return m_hMainWnd; }

 private:
  CGMarqueeProgressBar* m_pMainWnd = nullptr;  ///< destroyed by ExitInstance
  HWND m_hMainWnd = nullptr;
  std::unique_ptr<corlith::ui::ProgressHelper> m_pHelper;
};
