#include <corlith/platform/Path.h>
#include <corlith/platform/Process.h>
#include <corlith/ui/ProgressBar.h>
#include <corlith/ui/WindowCapture.h>

#include <wx/app.h>
#include <wx/thread.h>
#include <wx/toplevel.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace corlith::ui {

/// A running helper program and the pipe to it.
struct ProgressHelper {
  platform::Process process;
};

}  // namespace corlith::ui

namespace {

namespace fs = std::filesystem;
using corlith::ui::ProgressHelper;

// A helper that has not reported its window by then is taken to have failed (its first
// start on a cold machine takes a few hundred milliseconds).
constexpr std::chrono::seconds kStartLimit{10};

constexpr const char* kHelperName = "corlith-progress";

std::atomic<bool> g_running{false};
std::atomic<bool> g_debugOutput{false};

// The helpers beside the singleton: those of bars that are up, and those told to go
// that have not been reaped yet (reaped without waiting at the next Show or Close).
struct SharedState {
  std::mutex mutex;
  std::vector<std::unique_ptr<ProgressHelper>> active;
  std::vector<std::unique_ptr<ProgressHelper>> closing;
};

SharedState& Shared() {
  static SharedState state;
  return state;
}

void Trace(const char* line) {
  if (g_debugOutput) std::fputs(line, stderr);
}

bool IsProgram(const fs::path& path) {
  std::error_code ec;
  return fs::is_regular_file(path, ec);
}

fs::path HelperProgram() {
  std::string value;
  if (corlith::platform::GetEnvironmentVariable("CORLITH_PROGRESS_HELPER", value) && !value.empty())
    return value;
  const std::string module = corlith::platform::LoadedModulePath("corlith_ui");
  if (!module.empty()) {
    const fs::path folder = fs::path(module).parent_path();
    for (const fs::path& candidate : {folder / kHelperName, folder / ".." / "bin" / kHelperName,
                                      folder / ".." / "libexec" / "corlith" / kHelperName}) {
      if (IsProgram(candidate)) return candidate;
    }
  }
  return kHelperName;  // looked up on the PATH
}

// Starts the helper with `arguments` and waits for its first line: "ready <window id>"
// gives the id; anything else (a failure line, the end of its output, silence) gives 0.
std::unique_ptr<ProgressHelper> StartHelper(std::vector<std::string> arguments, std::uint64_t& windowId) {
  windowId = 0;
  corlith::platform::SpawnOptions options;
  options.program = HelperProgram();
  options.arguments = std::move(arguments);
  options.input = corlith::platform::StreamTarget::Pipe();
  options.output = corlith::platform::StreamTarget::Pipe();
  if (g_debugOutput) options.error = corlith::platform::StreamTarget::Inherit();
  auto helper = std::make_unique<ProgressHelper>();
  if (corlith::platform::Spawn(options, helper->process) != 0) return nullptr;
  const std::optional<std::string> reply = helper->process.ReadOutputLine(kStartLimit);
  constexpr std::string_view kReady = "ready ";
  if (reply && reply->starts_with(kReady)) {
    const char* first = reply->data() + kReady.size();
    const char* last = reply->data() + reply->size();
    std::uint64_t id = 0;
    const auto [end, error] = std::from_chars(first, last, id);
    if (error == std::errc() && end == last) windowId = id;
  }
  return helper;
}

// Tells a helper to go and keeps it until it can be reaped without waiting. The "close"
// comes before the end of input so that a helper reading the protocol sees it said.
void Retire(std::unique_ptr<ProgressHelper> helper) {
  if (!helper) return;
  helper->process.WriteInput("close\n");
  helper->process.CloseInput();
  const std::lock_guard lock(Shared().mutex);
  Shared().closing.push_back(std::move(helper));
}

void ReapFinished() {
  SharedState& state = Shared();
  const std::lock_guard lock(state.mutex);
  std::erase_if(state.closing, [](const std::unique_ptr<ProgressHelper>& h) {
    return h->process.WaitFor(std::chrono::milliseconds::zero());
  });
}

// Sends one command line to `helper` when it is still one of the bars that are up.
void Send(const ProgressHelper* helper, const std::string& line) {
  SharedState& state = Shared();
  const std::lock_guard lock(state.mutex);
  const auto found =
      std::find_if(state.active.begin(), state.active.end(),
                   [helper](const std::unique_ptr<ProgressHelper>& h) { return h.get() == helper; });
  if (found != state.active.end()) (*found)->process.WriteInput(line);
}

// A command line carries one line of text: line ends in a title become spaces.
std::string OneLine(const CString& text) {
  std::string line(text.GetString(), static_cast<std::size_t>(text.GetLength()));
  std::replace(line.begin(), line.end(), '\n', ' ');
  std::replace(line.begin(), line.end(), '\r', ' ');
  return line;
}

HWND AsHandle(std::uint64_t windowId) {
  return reinterpret_cast<HWND>(static_cast<std::uintptr_t>(windowId));  // NOLINT(performance-no-int-to-ptr)
}

}  // namespace

CGProgressBar& CGProgressBar::instance() {
  static CGProgressBar bar;
  return bar;
}

void CGProgressBar::SetDebugOutput(bool on) { g_debugOutput = on; }
bool CGProgressBar::GetDebugOutput() { return g_debugOutput; }

void CGProgressBar::Show(CWnd* pOwner) { Show(pOwner, CString()); }

void CGProgressBar::Show(CString strTitle) {
  wxWindow* top = wxThread::IsMain() && wxTheApp != nullptr ? wxTheApp->GetTopWindow() : nullptr;
  if (top == nullptr) {
    m_pOwner = nullptr;
    return;
  }
  // The handle must outlive the bar, as the framework's main-window object does.
  static CWnd mainWindow;
  mainWindow = CWnd(top);
  Show(&mainWindow, std::move(strTitle));
}

void CGProgressBar::Show(CWnd* pOwner, CString strTitle) {  // NOLINT(performance-unnecessary-value-param)
  m_pOwner = pOwner;
  wxWindow* owner = pOwner != nullptr ? pOwner->GetWxWindow() : nullptr;
  if (owner == nullptr) return;
  g_running = true;
  ReapFinished();

  // The owner's rectangle relative to its top-level window, which the helper finds on
  // the X server (wx's own idea of a top-level's screen position can be wrong without a
  // window manager); the screen rectangle is the fall-back.
  const std::uint64_t topXid = corlith::ui::X11WindowId(*owner);
  wxRect rect = owner->GetScreenRect();
  if (topXid != 0) {
    const wxWindow* top = wxGetTopLevelParent(owner);
    const wxPoint origin = top->GetClientAreaOrigin() + top->GetScreenPosition();
    rect.SetPosition(owner == top ? wxPoint(0, 0) : owner->GetScreenPosition() - origin);
  }
  std::uint64_t windowId = 0;
  std::unique_ptr<ProgressHelper> helper =
      StartHelper({"bar", std::to_string(topXid), std::to_string(rect.x), std::to_string(rect.y),
                   std::to_string(rect.width), std::to_string(rect.height), OneLine(strTitle)},
                  windowId);
  if (helper && windowId != 0) {
    m_hWnd = AsHandle(windowId);
    m_pThread = helper.get();
    const std::lock_guard lock(Shared().mutex);
    Shared().active.push_back(std::move(helper));
  } else {
    m_hWnd = nullptr;
    m_pThread = nullptr;
    Retire(std::move(helper));
  }

  Trace("Start -> EnableWindow( FALSE )\n");
  if (pOwner->IsWindowEnabled()) pOwner->EnableWindow(FALSE);
  Trace("End   -> EnableWindow( FALSE )\n");
  // A host that blocks next would never repaint its window greyed.
  owner->Update();
}

void CGProgressBar::SetPos(int nPos) {
  if (!g_running || m_hWnd == nullptr) return;
  Send(m_pThread, "pos " + std::to_string(std::clamp(nPos, 0, 100)) + "\n");
}

// The text comes by value, as hosts have always passed it.
void CGProgressBar::SetTitle(CString strTitle) {  // NOLINT(performance-unnecessary-value-param)
  if (!g_running || m_hWnd == nullptr) return;
  Send(m_pThread, "title " + OneLine(strTitle) + "\n");
}

void CGProgressBar::Close() {
  m_hWnd = nullptr;
  // Only a bar that was started has an owner to give back.
  const bool wasRunning = g_running.exchange(false);
  m_pThread = nullptr;
  std::vector<std::unique_ptr<ProgressHelper>> active;
  {
    const std::lock_guard lock(Shared().mutex);
    active.swap(Shared().active);
  }
  for (auto& helper : active) Retire(std::move(helper));
  ReapFinished();
  if (!wasRunning) return;
  Trace("Start -> EnableWindow( TRUE )\n");
  if (m_pOwner != nullptr && m_pOwner->GetWxWindow() != nullptr && !m_pOwner->IsWindowEnabled()) {
    m_pOwner->EnableWindow(TRUE);
  }
  Trace("End   -> EnableWindow( TRUE )\n");
}

// ---------------------------------------------------------------------------------------
// The marquee.

namespace {

constexpr int kMarqueeDialogId = 7008;
constexpr int kMarqueeGifId = 7007;

constexpr std::array kMarqueeItems = {
    corlith::ui::DialogItem{corlith::ui::DialogItemKind::Custom, kMarqueeGifId, "", 0, 0, 75, 43, 0x50000007},
};

constexpr corlith::ui::DialogTemplate kMarqueeTemplate{
    kMarqueeDialogId, 75, 44, "", "MS Shell Dlg", 8, false, false, kMarqueeItems,
};

}  // namespace

CGMarqueeProgressBar::CGMarqueeProgressBar(CWnd* pParent) : CDialog(kMarqueeTemplate, pParent) {
  Bind(wxEVT_SHOW, &CGMarqueeProgressBar::OnShowWindow, this);
}

CGMarqueeProgressBar::~CGMarqueeProgressBar() {
  m_gifControl.Stop();
  m_gifControl.Unload();
}

CString CGMarqueeProgressBar::GetGifPath() {
  std::string module = corlith::platform::LoadedModulePath("corlith_ui");
  if (module.empty()) module = corlith::platform::ExecutablePath();
  const fs::path gif = fs::path(module).parent_path() / "resource" / "ProgressBar_green.gif";
  return CString(gif.c_str());
}

BOOL CGMarqueeProgressBar::OnInitDialog() {
  CDialog::OnInitDialog();
  m_gifControl.Load(GetGifPath());
  return TRUE;
}

wxWindow* CGMarqueeProgressBar::CreateItem(wxWindow* parent, const corlith::ui::DialogItem& item,
                                           const wxRect& rect) {
  if (item.id != kMarqueeGifId) return nullptr;
  return m_gifControl.Create(parent, kMarqueeGifId, rect) ? &m_gifControl : nullptr;
}

void CGMarqueeProgressBar::OnShowWindow(wxShowEvent& event) {
  event.Skip();
  if (event.GetEventObject() == this) m_gifControl.Play();
}

CGMarqueeThread::CGMarqueeThread() = default;

CGMarqueeThread::~CGMarqueeThread() {
  Quit();
  ExitInstance();
}

BOOL CGMarqueeThread::InitInstance() {
  auto dialog = std::make_unique<CGMarqueeProgressBar>(nullptr);
  if (dialog->Create(nullptr)) {
    m_pMainWnd = dialog.release();
    m_pMainWnd->Centre();
    m_pMainWnd->Hide();
    m_pMainWnd->Update();
  }
  return 1;
}

int CGMarqueeThread::ExitInstance() {
  if (m_pMainWnd != nullptr) {
    m_pMainWnd->Destroy();
    m_pMainWnd = nullptr;
  }
  return 0;
}

BOOL CGMarqueeThread::Start() {
  Quit();
  ReapFinished();
  std::uint64_t windowId = 0;
  std::unique_ptr<ProgressHelper> helper = StartHelper({"marquee"}, windowId);
  if (!helper || windowId == 0) {
    Retire(std::move(helper));
    return FALSE;
  }
  m_pHelper = std::move(helper);
  m_hMainWnd = AsHandle(windowId);
  return TRUE;
}

BOOL CGMarqueeThread::ShowDialog() {
  return m_pHelper && m_pHelper->process.WriteInput("show\n") ? TRUE : FALSE;
}

BOOL CGMarqueeThread::HideDialog() {
  return m_pHelper && m_pHelper->process.WriteInput("hide\n") ? TRUE : FALSE;
}

void CGMarqueeThread::Quit() {
  m_hMainWnd = nullptr;
  Retire(std::move(m_pHelper));
}
