// corlith-gallery: shows every window of the user-interface library with sample data.
//   corlith-gallery                   a list of the windows; double-click one to open it
//   corlith-gallery --list            prints the windows' names, one a line
//   corlith-gallery --screenshot DIR  writes DIR/<name>.png for every window and exits
//                                     (0 when every picture was written)
#include "Gallery.h"

#include <corlith/ui/UiStart.h>
#include <corlith/ui/WindowCapture.h>

#include <wx/app.h>
#include <wx/bitmap.h>
#include <wx/frame.h>
#include <wx/image.h>
#include <wx/listbox.h>
#include <wx/log.h>
#include <wx/sizer.h>
#include <wx/stattext.h>
#include <wx/utils.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>
#include <system_error>
#include <thread>

namespace {

using corlith::gallery::Entries;
using corlith::gallery::Entry;

// Lets the window map and paint: without a window manager nothing else tells when it has.
void Settle(wxWindow& window) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(400);
  do {
    window.Update();
    wxTheApp->Yield(true);
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  } while (std::chrono::steady_clock::now() < end);
}

// The X server's copy of the window, as a person sees it (the gallery shows one window
// at a time, on top); the window's own painting where there is no X server or no import.
bool SavePicture(wxWindow& window, const std::filesystem::path& png) {
  if (const std::uint64_t id = corlith::ui::X11WindowId(window); id != 0) {
    wxLogNull quiet;
    // Arguments one by one: a folder name with quotes or blanks stays one argument.
    const std::string xid = wxString::Format("0x%llx", static_cast<unsigned long long>(id)).ToStdString();
    const std::string file = png.string();
    const char* const argv[] = {"import", "-window", xid.c_str(), file.c_str(), nullptr};
    if (wxExecute(argv, wxEXEC_SYNC | wxEXEC_HIDE_CONSOLE | wxEXEC_NODISABLE) == 0) return true;
  }
  const wxBitmap bitmap = corlith::ui::RenderWindow(window);
  return bitmap.IsOk() && bitmap.SaveFile(png.string(), wxBITMAP_TYPE_PNG);
}

// One window at a time.
int WriteScreenshots(const std::filesystem::path& folder) {
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  int failures = 0;
  for (const Entry& entry : Entries()) {
    const std::filesystem::path png = folder / (std::string(entry.name) + ".png");
    wxWindow* window = entry.show(nullptr);
    bool written = false;
    if (window != nullptr) {
      // A window of another process stays above the gallery's own: never raise over it.
      if (!entry.capture) window->Raise();
      Settle(*window);
      written = entry.capture ? entry.capture(window, png) : SavePicture(*window, png);
      window->Destroy();
      wxTheApp->Yield(true);
    }
    std::fprintf(written ? stdout : stderr, "%s: %s\n", entry.name,
                 written ? png.string().c_str() : "FAILED");
    if (!written) ++failures;
  }
  return failures == 0 ? 0 : 1;
}

class GalleryFrame : public wxFrame {
 public:
  GalleryFrame() : wxFrame(nullptr, wxID_ANY, "Corlith gallery") {
    auto* list = new wxListBox(this, wxID_ANY);
    for (const Entry& entry : Entries()) list->Append(entry.name);
    list->Bind(wxEVT_LISTBOX_DCLICK, [this](wxCommandEvent& event) {
      const Entry& entry = Entries()[static_cast<std::size_t>(event.GetSelection())];
      if (entry.show(this) == nullptr) wxLogError("%s could not be opened.", entry.name);
    });
    auto* sizer = new wxBoxSizer(wxVERTICAL);
    sizer->Add(new wxStaticText(this, wxID_ANY, "Double-click a window to open it:"),
               wxSizerFlags().Border(wxALL, 8));
    sizer->Add(list, wxSizerFlags(1).Expand().Border(wxLEFT | wxRIGHT | wxBOTTOM, 8));
    SetSizerAndFit(sizer);
    SetSize(FromDIP(wxSize(320, 360)));
  }
};

class GalleryApp : public wxApp {
 public:
  explicit GalleryApp(std::filesystem::path screenshots) : m_screenshots(std::move(screenshots)) {}

  bool OnInit() override {
    wxInitAllImageHandlers();
    corlith::ui::Start();
    if (m_screenshots.empty()) {
      (new GalleryFrame)->Show();
      return true;
    }
    // Once the main loop runs, so that windows map and paint as they would in a host.
    CallAfter([this] {
      m_exitCode = WriteScreenshots(m_screenshots);
      ExitMainLoop();
    });
    return true;
  }
  int OnRun() override {
    const int code = wxApp::OnRun();
    return m_exitCode != 0 ? m_exitCode : code;
  }
  int OnExit() override {
    corlith::ui::Stop();
    return wxApp::OnExit();
  }

 private:
  std::filesystem::path m_screenshots;
  int m_exitCode = 0;
};

}  // namespace

int main(int argc, char** argv) {
  std::filesystem::path screenshots;
  for (int i = 1; i < argc; ++i) {
    if (std::strcmp(argv[i], "--list") == 0) {
      for (const Entry& entry : Entries()) std::printf("%s\n", entry.name);
      return 0;
    }
    if (std::strcmp(argv[i], "--screenshot") == 0 && i + 1 < argc) {
      screenshots = argv[++i];
    } else {
      std::fprintf(stderr, "usage: corlith-gallery [--list | --screenshot DIR]\n");
      return 2;
    }
  }
  // GTK's overlay scroll bars fade out unless the pointer is near: a picture would miss them.
  if (!screenshots.empty() && !wxGetEnv("GTK_OVERLAY_SCROLLING", nullptr))
    wxSetEnv("GTK_OVERLAY_SCROLLING", "0");
  wxApp::SetInstance(new GalleryApp(screenshots));
  int wxArgc = 1;
  char* wxArgv[] = {argv[0], nullptr};
  return wxEntry(wxArgc, wxArgv);
}
