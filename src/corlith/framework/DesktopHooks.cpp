#include <corlith/framework/DesktopHooks.h>

#include <chrono>
#include <thread>

namespace corlith {
namespace {

std::mutex g_hooksMutex;
std::shared_ptr<IDesktopHooks> g_hooks;

}  // namespace

void HeadlessDesktopHooks::Wait(DWORD milliseconds) {
  std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

void RecordingDesktopHooks::Wait(DWORD milliseconds) {
  std::lock_guard lock(m_mutex);
  m_waits.push_back(milliseconds);
  m_calls.push_back(DesktopCall::Wait);
  ++m_counts[static_cast<std::size_t>(DesktopCall::Wait)];
}

void RecordingDesktopHooks::Record(DesktopCall call) {
  std::lock_guard lock(m_mutex);
  m_calls.push_back(call);
  ++m_counts[static_cast<std::size_t>(call)];
}

int RecordingDesktopHooks::Count(DesktopCall call) const {
  std::lock_guard lock(m_mutex);
  return m_counts[static_cast<std::size_t>(call)];
}

std::vector<DesktopCall> RecordingDesktopHooks::Calls() const {
  std::lock_guard lock(m_mutex);
  return m_calls;
}

std::vector<DWORD> RecordingDesktopHooks::Waits() const {
  std::lock_guard lock(m_mutex);
  return m_waits;
}

void RecordingDesktopHooks::Clear() {
  std::lock_guard lock(m_mutex);
  m_calls.clear();
  m_waits.clear();
  m_counts.fill(0);
}

std::shared_ptr<IDesktopHooks> GetDesktopHooks() {
  std::lock_guard lock(g_hooksMutex);
  if (!g_hooks) g_hooks = std::make_shared<HeadlessDesktopHooks>();
  return g_hooks;
}

std::shared_ptr<IDesktopHooks> SetDesktopHooks(std::shared_ptr<IDesktopHooks> hooks) {
  std::lock_guard lock(g_hooksMutex);
  std::shared_ptr<IDesktopHooks> previous = std::move(g_hooks);
  g_hooks = std::move(hooks);
  return previous;
}

}  // namespace corlith
