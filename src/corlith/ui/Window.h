// CWnd: the framework's window object as the UI library gives it to hosts, a non-owning
// handle on a wx window. A host hands its own frame to the library as `CWnd owner(frame)`;
// the library's dialogs are CWnds of themselves. HWND, the native handle, is the
// wxWindow* of a window of this process (the progress bar's handle names the helper
// program's window instead: see ProgressBar.h).
#pragma once

#include <corlith/framework/HostPrompt.h>
#include <corlith/framework/String.h>
#include <corlith/framework/Types.h>

#include <wx/window.h>

namespace corlith::ui {

/// Our text (UTF-8) into a wx string and back, whole: a zero byte inside stays.
wxString ToWx(const CString& text);
CString FromWx(const wxString& text);

}  // namespace corlith::ui

class CWnd {
 public:
  /// A handle on `window` (null: on no window); the window is not owned.
  explicit CWnd(wxWindow* window = nullptr) : m_pWindow(window) {}
  CWnd(const CWnd&) = default;
  CWnd& operator=(const CWnd&) = default;
  virtual ~CWnd() = default;

  /// The window, or null.
  wxWindow* GetWxWindow() const { return m_pWindow; }
  /// The native handle: the wxWindow* itself; null for a handle on no window.
  HWND GetSafeHwnd() const { return m_pWindow; }
  /// The window of a handle (null gives null).
  static wxWindow* FromHandle(HWND hWnd) { return static_cast<wxWindow*>(hWnd); }

  BOOL IsWindowEnabled() const { return m_pWindow != nullptr && m_pWindow->IsThisEnabled(); }
  /// Enables or disables the window; returns TRUE when it was disabled before (as the
  /// original's EnableWindow does).
  BOOL EnableWindow(BOOL bEnable = TRUE);
  void SetWindowText(const CString& text);
  CString GetWindowText() const;

 protected:
  /// For classes that are their own window (the dialogs): set once the window exists.
  void Attach(wxWindow* window) { m_pWindow = window; }

 private:
  wxWindow* m_pWindow = nullptr;
};
