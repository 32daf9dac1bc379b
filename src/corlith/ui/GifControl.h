// CGifControl: a control that plays an animated GIF in the host's own windows. Each
// frame stays up for its own delay (hundredths of a second, × 10 ms) on a one-shot
// timer restarted per frame, and the frames wrap; paint stretches the current frame
// over the whole control. The frames are composed once, at Load.
#pragma once

#include <corlith/framework/String.h>
#include <corlith/framework/Types.h>
#include <corlith/ui/Window.h>

#include <wx/bitmap.h>
#include <wx/control.h>
#include <wx/timer.h>

#include <cstdint>
#include <vector>

class CGifControl : public wxControl, public CWnd {
 public:
  /// No window until Create (or a dialog template's Custom item makes it).
  CGifControl();
  ~CGifControl() override;
  CGifControl(const CGifControl&) = delete;
  CGifControl& operator=(const CGifControl&) = delete;

  /// Makes the control's window at `rect` (pixels) in `parent`.
  bool Create(wxWindow* parent, wxWindowID id, const wxRect& rect);

  /// Loads the GIF at `path` (an earlier one is unloaded first). 1 on success; 0 when the
  /// file is missing, unreadable or not a GIF: then nothing is shown and Play does nothing.
  /// No message ever reaches the user.
  BOOL Load(const CString& path);
  /// Starts the animation at frame 0; nothing when it already plays or nothing is loaded.
  void Play();
  /// Stops the timer (the current frame stays up).
  void Stop();
  /// Stops and releases the frames. Unlike a bare Stop it also clears the playing flag,
  /// so a later Load and Play start again.
  void Unload();

  /// The frame drawn now, and the number of frames (0 when nothing is loaded).
  std::uint32_t GetShownFrame() const { return m_nShownFrame; }
  std::uint32_t GetFrameCount() const { return m_nFrameCount; }
  bool IsPlaying() const { return m_bIsPlaying != 0; }
  /// Each frame's delay in hundredths of a second, as the file gives it.
  const std::vector<std::uint32_t>& GetDelays() const { return m_delays; }

 private:
  void OnTimer(wxTimerEvent& event);
  void OnPaint(wxPaintEvent& event);
  void SelectFrame(std::uint32_t frame);
  void StartTimerFor(std::uint32_t frame);

  std::vector<wxBitmap> m_frames;       ///< the composed frames, each of the animation's size
  std::vector<std::uint32_t> m_delays;  ///< per frame, hundredths of a second
  std::uint32_t m_nFrameCount = 0;
  std::uint32_t m_nFramePosition = 0;  ///< the frame the timer shows next
  std::uint32_t m_nShownFrame = 0;
  int m_bIsPlaying = 0;
  wxTimer m_timer;
};
