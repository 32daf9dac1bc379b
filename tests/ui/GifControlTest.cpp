// CGifControl and the marquee dialog with real GIF files: the frame schedule measured
// on the control's own timer, a second show that leaves a running animation alone, and
// files that cannot be played.
#include <corlith/test/TempFolder.h>
#include <corlith/ui/GifControl.h>
#include <corlith/ui/ProgressBar.h>

#include "UiTestEnvironment.h"

#include <wx/anidecod.h>
#include <wx/app.h>
#include <wx/evtloop.h>
#include <wx/frame.h>
#include <wx/image.h>
#include <wx/imaggif.h>
#include <wx/mstream.h>
#include <wx/quantize.h>
#include <wx/toplevel.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

namespace {

namespace fs = std::filesystem;
using corlith::test::TempFolder;
using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

// A GIF of solid frames, red, green, blue..., each with its own delay in hundredths.
// wx writes one delay for all frames; each frame's graphic control block is patched.
std::string MakeGif(const std::vector<int>& delays) {
  static const unsigned char colours[][3] = {{220, 30, 30}, {30, 200, 30}, {30, 30, 220}, {200, 200, 30}};
  wxImageArray images;
  for (std::size_t i = 0; i < delays.size(); ++i) {
    wxImage image(24, 8);
    const auto* c = colours[i % 4];
    image.SetRGB(wxRect(0, 0, 24, 8), c[0], c[1], c[2]);
    wxImage indexed;  // GIF frames need a palette
    if (!wxQuantize::Quantize(image, indexed, 16, nullptr, wxQUANTIZE_FILL_DESTINATION_IMAGE)) return {};
    images.Add(indexed);
  }
  wxMemoryOutputStream out;
  wxGIFHandler handler;
  if (!handler.SaveAnimation(images, &out, false, 10)) return {};
  std::string bytes(out.GetLength(), '\0');
  out.CopyTo(bytes.data(), bytes.size());
  std::size_t frame = 0;
  for (std::size_t at = bytes.find("\x21\xF9\x04"); at != std::string::npos && frame < delays.size();
       at = bytes.find("\x21\xF9\x04", at + 1), ++frame) {
    bytes[at + 4] = static_cast<char>(delays[frame] & 0xFF);
    bytes[at + 5] = static_cast<char>((delays[frame] >> 8) & 0xFF);
  }
  return frame == delays.size() ? bytes : std::string();
}

// Lets the control's timer run for `span`, noting when the shown frame changes.
struct Change {
  std::uint32_t frame;
  double ms;  // since `start`
};
std::vector<Change> Watch(const CGifControl& control, Clock::time_point start,
                          std::chrono::milliseconds span) {
  // Timers fire only inside a running event loop (not in a yield): run one, sampling
  // the shown frame every millisecond.
  std::vector<Change> changes;
  std::uint32_t last = control.GetShownFrame();
  wxGUIEventLoop loop;
  wxTimer sampler;
  sampler.Bind(wxEVT_TIMER, [&](wxTimerEvent&) {
    if (control.GetShownFrame() != last) {
      last = control.GetShownFrame();
      changes.push_back({last, std::chrono::duration<double, std::milli>(Clock::now() - start).count()});
    }
    if (Clock::now() - start >= span) loop.Exit();
  });
  sampler.Start(1);
  loop.Run();
  return changes;
}

class GifControlTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!corlith::test::HaveDisplay()) return;
    m_frame = new wxFrame(nullptr, wxID_ANY, "gif host", wxPoint(0, 0), wxSize(200, 120));
    m_frame->Show();
    corlith::test::Pump(50);
  }
  void TearDown() override {
    if (m_frame != nullptr) m_frame->Destroy();
    corlith::test::Pump(20);
  }
  wxFrame* m_frame = nullptr;
  TempFolder m_folder{"gif"};
};

TEST_F(GifControlTest, FramesFollowTheirOwnDelaysAndWrap) {
  CORLITH_REQUIRE_DISPLAY();
  const std::string gif = m_folder.Write("three.gif", MakeGif({5, 5, 10}));
  CGifControl control;
  ASSERT_TRUE(control.Create(m_frame, 7007, wxRect(0, 0, 120, 40)));
  ASSERT_EQ(control.Load(CString(gif.c_str())), 1);
  ASSERT_EQ(control.GetFrameCount(), 3u);
  EXPECT_EQ(control.GetDelays(), (std::vector<std::uint32_t>{5, 5, 10}));

  const Clock::time_point start = Clock::now();
  control.Play();
  EXPECT_TRUE(control.IsPlaying());
  EXPECT_EQ(control.GetShownFrame(), 0u);
  const std::vector<Change> changes = Watch(control, start, 330ms);
  struct Row {
    std::uint32_t frame;
    double at;  // ms after Play
  };
  // 0 for 50 ms, 1 for 50 ms, 2 for 100 ms, then 0 and 1 again.
  const std::vector<Row> rows = {{1, 50}, {2, 100}, {0, 200}, {1, 250}};
  ASSERT_GE(changes.size(), rows.size());
  for (std::size_t i = 0; i < rows.size(); ++i) {
    SCOPED_TRACE("change " + std::to_string(i));
    EXPECT_EQ(changes[i].frame, rows[i].frame);
    // A timer never fires early; a busy two-core machine (the tests run two at a time)
    // may make each frame late, and lateness adds up frame after frame.
    EXPECT_GE(changes[i].ms, rows[i].at - 2);
    if (i > 0) {
      const double interval = changes[i].ms - changes[i - 1].ms;
      const double expected = rows[i].at - rows[i - 1].at;
      EXPECT_GE(interval, expected - 15);
      EXPECT_LE(interval, expected + 45);
    }
  }

  control.Stop();
  EXPECT_FALSE(control.IsPlaying());
  const std::uint32_t held = control.GetShownFrame();
  EXPECT_TRUE(Watch(control, Clock::now(), 150ms).empty()) << "a stopped control keeps its frame";
  EXPECT_EQ(control.GetShownFrame(), held);
  control.Play();
  EXPECT_EQ(control.GetShownFrame(), 0u) << "playing again starts at frame 0";
  control.Unload();
  EXPECT_EQ(control.GetFrameCount(), 0u);
  EXPECT_FALSE(control.IsPlaying());
}

TEST_F(GifControlTest, FilesThatCannotPlayLoadNothingAndOpenNoWindow) {
  CORLITH_REQUIRE_DISPLAY();
  const std::string good = MakeGif({5, 5, 10});
  ASSERT_FALSE(good.empty());
  struct Row {
    const char* name;
    std::string path;
  };
  const std::vector<Row> rows = {
      {"missing", m_folder.PathOf("none.gif")},
      {"not a GIF", m_folder.Write("text.gif", "this is not a picture\n")},
      {"empty", m_folder.Write("empty.gif", "")},
      {"truncated", m_folder.Write("cut.gif", good.substr(0, good.size() / 2))},
      {"a folder", m_folder.Path().string()},
  };
  const std::string valid = m_folder.Write("valid.gif", good);
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const std::size_t windowsBefore = wxTopLevelWindows.GetCount();
    CGifControl control;
    ASSERT_TRUE(control.Create(m_frame, wxID_ANY, wxRect(0, 0, 60, 30)));
    ASSERT_EQ(control.Load(CString(valid.c_str())), 1);
    // A failed load also drops what was loaded before.
    EXPECT_EQ(control.Load(CString(row.path.c_str())), 0);
    EXPECT_EQ(control.GetFrameCount(), 0u);
    control.Play();
    EXPECT_FALSE(control.IsPlaying()) << "nothing to play";
    corlith::test::Pump(30);
    EXPECT_EQ(wxTopLevelWindows.GetCount(), windowsBefore) << "no message box";
    // The control shows an empty frame: all of it in its background colour.
    const fs::path png = m_folder.Path() / "empty.png";
    ASSERT_TRUE(corlith::test::SaveWindowPng(control, png));
    wxImage shot(png.string(), wxBITMAP_TYPE_PNG);
    ASSERT_TRUE(shot.IsOk());
    const wxColour background = control.GetBackgroundColour();
    int other = 0;
    for (int y = 0; y < shot.GetHeight(); ++y) {
      for (int x = 0; x < shot.GetWidth(); ++x) {
        if (shot.GetRed(x, y) != background.Red() || shot.GetGreen(x, y) != background.Green() ||
            shot.GetBlue(x, y) != background.Blue()) {
          ++other;
        }
      }
    }
    EXPECT_EQ(other, 0);
  }
}

TEST_F(GifControlTest, MarqueeDialogPlaysOnShowAndASecondShowDoesNotRestart) {
  CORLITH_REQUIRE_DISPLAY();
  const std::string gif = m_folder.Write("three.gif", MakeGif({5, 5, 10}));
  CGMarqueeThread thread;
  ASSERT_EQ(thread.InitInstance(), 1);
  CGMarqueeProgressBar* dialog = thread.GetMainWnd();
  ASSERT_NE(dialog, nullptr);
  EXPECT_FALSE(dialog->IsShown()) << "hidden until the host shows it";
  EXPECT_EQ(dialog->GetId(), 7008);
  wxWindow* item = dialog->GetDlgItem(7007);
  ASSERT_EQ(item, &dialog->GetGifControl());
  // 75 x 43 units of a 44-unit-high dialog: the whole width, all but the last unit row.
  EXPECT_EQ(item->GetSize().x, dialog->GetClientSize().x);
  EXPECT_LT(item->GetSize().y, dialog->GetClientSize().y);
  EXPECT_EQ(dialog->ConvertDialogToPixels(wxSize(75, 43)), item->GetSize());

  CGifControl& control = dialog->GetGifControl();
  ASSERT_EQ(control.Load(CString(gif.c_str())), 1);
  const Clock::time_point start = Clock::now();
  dialog->Show();
  EXPECT_TRUE(control.IsPlaying()) << "showing plays";
  std::vector<Change> changes = Watch(control, start, 90ms);
  ASSERT_FALSE(changes.empty());
  EXPECT_EQ(control.GetShownFrame(), 1u);
  // Another show-window message (a hide and a show) while it plays: no restart, frame 2
  // still comes 100 ms after Play.
  dialog->Hide();
  dialog->Show();
  EXPECT_EQ(control.GetShownFrame(), 1u);
  changes = Watch(control, start, 200ms);
  ASSERT_FALSE(changes.empty());
  EXPECT_EQ(changes.front().frame, 2u);
  EXPECT_GE(changes.front().ms, 98);
  EXPECT_LE(changes.front().ms, 160);
  thread.ExitInstance();
  EXPECT_EQ(thread.GetMainWnd(), nullptr);
  corlith::test::Pump(20);
}

TEST_F(GifControlTest, TheMarqueesOwnStripLoadsFromTheRepository) {
  CORLITH_REQUIRE_DISPLAY();
  const fs::path strip =
      fs::path(__FILE__).parent_path() / ".." / ".." / "resources" / "ProgressBar_green.gif";
  CGifControl control;
  ASSERT_TRUE(control.Create(m_frame, wxID_ANY, wxRect(0, 0, 150, 40)));
  ASSERT_EQ(control.Load(CString(strip.c_str())), 1);
  EXPECT_GE(control.GetFrameCount(), 3u);
  const std::string path = CGMarqueeProgressBar::GetGifPath().GetString();
  EXPECT_TRUE(path.ends_with("/resource/ProgressBar_green.gif")) << path;
}

}  // namespace
