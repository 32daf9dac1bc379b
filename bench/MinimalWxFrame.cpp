// The floor ProgressBench measures corlith-progress against: the least a wx program does
// to put a window on the screen. It shows one frame, says "shown" once the frame is drawn
// and the X server has it, and exits.
#include <gdk/gdk.h>

#include <wx/app.h>
#include <wx/frame.h>

#include <cstdio>

namespace {

class MinimalApp : public wxApp {
 public:
  bool OnInit() override {
    auto* frame = new wxFrame(nullptr, wxID_ANY, "floor", wxPoint(0, 0), wxSize(400, 15));
    frame->Show();
    CallAfter([frame] {
      frame->Update();
      gdk_display_sync(gdk_display_get_default());
      std::puts("shown");
      std::fflush(stdout);
      frame->Destroy();
    });
    return true;
  }
};

}  // namespace

wxIMPLEMENT_APP(MinimalApp);
