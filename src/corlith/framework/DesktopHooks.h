// Desktop hooks: what only a user interface can do, asked for by lower layers (keeping
// the event loop alive while waiting, the arrow cursor, the mouse capture). The default
// is headless: waiting sleeps and the rest does nothing. The UI library installs the real
// hooks when it starts; tests install RecordingDesktopHooks to count what was asked.
#pragma once

#include <corlith/framework/Types.h>

#include <array>
#include <memory>
#include <mutex>
#include <vector>

namespace corlith {

/// The hook interface. Implementations may be called from any thread; a real desktop
/// acts only for calls from its user-interface thread (event loop, cursor and capture
/// belong to that thread) and ignores the others.
class IDesktopHooks {
 public:
  virtual ~IDesktopHooks() = default;
  /// Returns after `milliseconds`, delivering the calling thread's pending user-interface
  /// events meanwhile so that the windows stay alive.
  virtual void Wait(DWORD milliseconds) = 0;
  /// Delivers every user-interface event waiting for the calling thread, then returns.
  virtual void ProcessWindowMessage() = 0;
  /// Shows the system's standard arrow cursor.
  virtual void SetArrowCursor() = 0;
  /// Releases the mouse capture when a window of the calling thread holds it.
  virtual void ReleaseMouseCapture() = 0;
};

/// No user interface: Wait sleeps, everything else does nothing.
class HeadlessDesktopHooks : public IDesktopHooks {
 public:
  void Wait(DWORD milliseconds) override;
  void ProcessWindowMessage() override {}
  void SetArrowCursor() override {}
  void ReleaseMouseCapture() override {}
};

/// The hooks, as RecordingDesktopHooks names them.
enum class DesktopCall { Wait, ProcessWindowMessage, SetArrowCursor, ReleaseMouseCapture };

/// Records every call in order and counts them. Wait records its time and returns at
/// once (deliberately: tests of code that waits should not take that long). Thread-safe.
class RecordingDesktopHooks : public IDesktopHooks {
 public:
  void Wait(DWORD milliseconds) override;
  void ProcessWindowMessage() override { Record(DesktopCall::ProcessWindowMessage); }
  void SetArrowCursor() override { Record(DesktopCall::SetArrowCursor); }
  void ReleaseMouseCapture() override { Record(DesktopCall::ReleaseMouseCapture); }

  /// How many times `call` was made.
  int Count(DesktopCall call) const;
  /// Every call, oldest first.
  std::vector<DesktopCall> Calls() const;
  /// The time of every Wait, oldest first.
  std::vector<DWORD> Waits() const;
  /// Forgets everything recorded so far.
  void Clear();

 private:
  void Record(DesktopCall call);

  mutable std::mutex m_mutex;
  std::vector<DesktopCall> m_calls;
  std::vector<DWORD> m_waits;
  std::array<int, 4> m_counts{};
};

/// The hooks in force (the headless ones until something is installed).
std::shared_ptr<IDesktopHooks> GetDesktopHooks();
/// Installs `hooks` (null restores the headless default); returns the previous ones.
std::shared_ptr<IDesktopHooks> SetDesktopHooks(std::shared_ptr<IDesktopHooks> hooks);

/// Installs hooks for the lifetime of this object, then restores the previous ones.
class ScopedDesktopHooks {
 public:
  explicit ScopedDesktopHooks(std::shared_ptr<IDesktopHooks> hooks)
      : m_previous(SetDesktopHooks(std::move(hooks))) {}
  ~ScopedDesktopHooks() { SetDesktopHooks(std::move(m_previous)); }
  ScopedDesktopHooks(const ScopedDesktopHooks&) = delete;
  ScopedDesktopHooks& operator=(const ScopedDesktopHooks&) = delete;

 private:
  std::shared_ptr<IDesktopHooks> m_previous;
};

}  // namespace corlith
