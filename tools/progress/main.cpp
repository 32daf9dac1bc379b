// corlith-progress: the window of a progress indicator, in a process of its own so that
// it keeps drawing while its host's user-interface thread is blocked. Started by the
// UI library (CGProgressBar, CGMarqueeThread), never by a person:
//
//   corlith-progress bar <owner X window id> <x> <y> <width> <height> <title>
//       a top-most 0..100 bar, 400 wide and a scroll-arrow high, centred across on the
//       owner's rectangle (given relative to that X window; relative to the screen when
//       the id is 0) and standing on its centre line, transient for the owner
//   corlith-progress marquee
//       the marquee dialog, hidden until shown
//
// It answers "ready <X window id>" on standard output once its window exists (or
// "failed <why>"), then reads commands from standard input, one a line: "pos N",
// "title TEXT", "show", "hide", "close", and "sync", answered with "synced" once every
// command before it has been carried out and drawn. It ends on "close" and at the end of
// its input, so it never outlives its host.
#include <corlith/ui/ProgressBar.h>
#include <corlith/ui/WindowCapture.h>

#include <gdk/gdk.h>
#include <gtk/gtk.h>
#ifdef GDK_WINDOWING_X11
#include <gdk/gdkx.h>
#endif

#include <unistd.h>

#include <wx/app.h>
#include <wx/dcclient.h>
#include <wx/frame.h>
#include <wx/log.h>
#include <wx/settings.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

namespace {

constexpr int kBarWidth = 400;

// The reader thread hands lines to the GUI only while the application exists.
std::mutex g_appMutex;
bool g_appAlive = false;

// A whole argument as a number; `ok` turns false when it is not one.
template <class Number>
Number Parse(std::string_view text, bool& ok) {
  Number value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  ok = ok && error == std::errc() && end == text.data() + text.size();
  return value;
}

void Reply(const std::string& line) {
  std::fputs((line + "\n").c_str(), stdout);
  std::fflush(stdout);
}

#ifdef GDK_WINDOWING_X11
GdkWindow* ForeignWindow(std::uint64_t xid) {
  GdkDisplay* display = gdk_display_get_default();
  if (xid == 0 || display == nullptr || !GDK_IS_X11_DISPLAY(display)) return nullptr;
  return gdk_x11_window_foreign_new_for_display(display, static_cast<Window>(xid));
}
#endif

// The height of a vertical scroll bar's arrow. GTK reports no arrow metric (-1); the
// arrow is square, as wide as the bar, so the bar's width stands in for it.
int ArrowHeight() {
  int height = wxSystemSettings::GetMetric(wxSYS_VSCROLL_ARROW_Y);
  if (height <= 0) height = wxSystemSettings::GetMetric(wxSYS_VSCROLL_X);
  return height > 0 ? height : 16;
}

// The bar itself, painted here rather than by the toolkit's gauge: GTK's theme draws a
// gauge as a thin line at the bottom of a window one scroll-arrow high, where the
// original's bar fills the window.
class BarPanel : public wxWindow {
 public:
  explicit BarPanel(wxWindow* parent) : wxWindow(parent, wxID_ANY, wxPoint(0, 0), parent->GetClientSize()) {
    SetBackgroundStyle(wxBG_STYLE_PAINT);
    Bind(wxEVT_PAINT, &BarPanel::OnPaint, this);
  }
  void SetValue(int percent) {
    if (percent == m_percent) return;
    m_percent = percent;
    Refresh(false);
    Update();
  }

 private:
  void OnPaint(wxPaintEvent&) {
    wxPaintDC dc(this);
    const wxSize size = GetClientSize();
    dc.SetPen(wxPen(wxSystemSettings::GetColour(wxSYS_COLOUR_BTNSHADOW)));
    dc.SetBrush(wxBrush(wxSystemSettings::GetColour(wxSYS_COLOUR_BTNFACE)));
    dc.DrawRectangle(wxPoint(0, 0), size);
    const int inner = std::max(0, size.x - 4);
    const int filled = inner * m_percent / 100;
    if (filled > 0 && size.y > 4) {
      dc.SetPen(*wxTRANSPARENT_PEN);
      dc.SetBrush(wxBrush(wxSystemSettings::GetColour(wxSYS_COLOUR_HIGHLIGHT)));
      dc.DrawRectangle(2, 2, filled, size.y - 4);
    }
  }

  int m_percent = 0;
};

class ProgressApp : public wxApp {
 public:
  bool OnInit() override;
  int OnExit() override;

 private:
  bool MakeBar();
  bool MakeMarquee();
  void Command(const std::string& line);
  void StartReader();

  wxFrame* m_bar = nullptr;
  BarPanel* m_gauge = nullptr;
  CGMarqueeThread m_marquee;
};

bool ProgressApp::OnInit() {
  delete wxLog::SetActiveTarget(new wxLogStderr);  // never a message box
  wxSetAssertHandler(
      [](const wxString& file, int line, const wxString&, const wxString& cond, const wxString&) {
        std::fprintf(stderr, "corlith-progress: assertion %s at %s:%d\n", cond.utf8_str().data(),
                     file.utf8_str().data(), line);
      });
  const std::string mode = argc > 1 ? std::string(argv[1].utf8_str()) : std::string();
  const bool made = mode == "bar" ? MakeBar() : mode == "marquee" ? MakeMarquee() : false;
  if (!made) {
    if (mode != "bar" && mode != "marquee") Reply("failed usage: corlith-progress bar|marquee ...");
    return false;
  }
  {
    const std::lock_guard lock(g_appMutex);
    g_appAlive = true;
  }
  StartReader();
  return true;
}

int ProgressApp::OnExit() {
  const std::lock_guard lock(g_appMutex);
  g_appAlive = false;
  return wxApp::OnExit();
}

bool ProgressApp::MakeBar() {
  if (argc != 8) {
    Reply("failed usage: corlith-progress bar <owner id> <x> <y> <width> <height> <title>");
    return false;
  }
  bool ok = true;
  const std::uint64_t owner = Parse<std::uint64_t>(std::string(argv[2].utf8_str()), ok);
  wxRect rect(
      Parse<int>(std::string(argv[3].utf8_str()), ok), Parse<int>(std::string(argv[4].utf8_str()), ok),
      Parse<int>(std::string(argv[5].utf8_str()), ok), Parse<int>(std::string(argv[6].utf8_str()), ok));
  if (!ok) {
    Reply("failed bad owner rectangle");
    return false;
  }
#ifdef GDK_WINDOWING_X11
  GdkWindow* foreign = ForeignWindow(owner);
  if (foreign != nullptr) {
    int x = 0;
    int y = 0;
    gdk_window_get_origin(foreign, &x, &y);
    rect.Offset(x, y);
  }
#else
  void* foreign = nullptr;
#endif
  const wxPoint centre(rect.x + rect.width / 2, rect.y + rect.height / 2);
  const int height = ArrowHeight();
  m_bar = new wxFrame(nullptr, wxID_ANY, argv[7], wxPoint(centre.x - kBarWidth / 2, centre.y - height),
                      wxSize(kBarWidth, height),
                      wxSTAY_ON_TOP | wxFRAME_TOOL_WINDOW | wxFRAME_NO_TASKBAR | wxBORDER_SIMPLE);
  m_gauge = new BarPanel(m_bar);
  m_bar->Bind(wxEVT_SIZE, [this](wxSizeEvent&) { m_gauge->SetSize(m_bar->GetClientSize()); });
  m_bar->ShowWithoutActivating();
#ifdef GDK_WINDOWING_X11
  GdkWindow* own = gtk_widget_get_window(m_bar->GetHandle());
  if (foreign != nullptr && own != nullptr) gdk_window_set_transient_for(own, foreign);
#endif
  // Reported once the window is mapped and drawn, so that it can be seen from outside.
  CallAfter([this] {
    m_bar->Update();
    gdk_display_sync(gdk_display_get_default());
    Reply("ready " + std::to_string(corlith::ui::X11WindowId(*m_bar)));
  });
  return true;
}

bool ProgressApp::MakeMarquee() {
  m_marquee.InitInstance();
  CGMarqueeProgressBar* dialog = m_marquee.GetMainWnd();
  if (dialog == nullptr) {
    Reply("failed the marquee dialog could not be made");
    return false;
  }
  SetExitOnFrameDelete(false);
  CallAfter([dialog] {
    gdk_display_sync(gdk_display_get_default());
    Reply("ready " + std::to_string(corlith::ui::X11WindowId(*dialog)));
  });
  return true;
}

void ProgressApp::Command(const std::string& line) {
  const std::string_view text = line;
  const std::size_t space = text.find(' ');
  const std::string_view verb = text.substr(0, space);
  const std::string_view rest = space == std::string_view::npos ? std::string_view() : text.substr(space + 1);
  if (verb == "close") {
    if (m_bar != nullptr) m_bar->Destroy();
    m_bar = nullptr;
    m_marquee.ExitInstance();
    ExitMainLoop();
  } else if (verb == "sync") {
    if (m_bar != nullptr) m_bar->Update();
    gdk_display_sync(gdk_display_get_default());
    Reply("synced");
  } else if (verb == "pos" && m_gauge != nullptr) {
    bool ok = true;
    const int pos = Parse<int>(rest, ok);
    if (ok) {
      m_gauge->SetValue(std::clamp(pos, 0, 100));
    }
  } else if (verb == "title" && m_bar != nullptr) {
    m_bar->SetTitle(wxString::FromUTF8(rest.data(), rest.size()));
  } else if ((verb == "show" || verb == "hide") && m_marquee.GetMainWnd() != nullptr) {
    m_marquee.GetMainWnd()->Show(verb == "show");
    m_marquee.GetMainWnd()->Update();
  }
}

// Reads standard input on a thread of its own: the GUI thread never blocks on it.
void ProgressApp::StartReader() {
  std::thread([this] {
    std::string pending;
    char buffer[4096];
    for (;;) {
      const ssize_t n = ::read(STDIN_FILENO, buffer, sizeof buffer);
      if (n < 0 && errno == EINTR) continue;
      const std::lock_guard lock(g_appMutex);
      if (!g_appAlive) return;
      if (n <= 0) {
        CallAfter([this] { Command("close"); });
        return;
      }
      pending.append(buffer, static_cast<std::size_t>(n));
      for (std::size_t end = pending.find('\n'); end != std::string::npos; end = pending.find('\n')) {
        std::string command = pending.substr(0, end);
        pending.erase(0, end + 1);
        CallAfter([this, command] { Command(command); });
      }
    }
  }).detach();
}

}  // namespace

// The macro also defines wxGetApp(), which this program does not call.
#ifdef __clang__
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wunused-function"
#endif
wxIMPLEMENT_APP_NO_MAIN(ProgressApp);
#ifdef __clang__
#pragma clang diagnostic pop
#endif

int main(int argc, char** argv) {
  const int code = wxEntry(argc, argv);
  // The reader thread may still wait on its input: end without running it down.
  std::fflush(stdout);
  std::_Exit(code);
}
