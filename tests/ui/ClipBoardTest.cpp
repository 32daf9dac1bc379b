// CCBClipBoard on a real window under Xvfb: the captured area's pixels (client area
// under a menu bar, an area reaching past the window), the BMP file, and the clipboard
// as another program reads it, while the host runs and after it has exited. The host is
// a child: this test program started again with CORLITH_CLIP_HOST naming a folder.
#include <corlith/platform/Process.h>
#include <corlith/test/ChildProcess.h>
#include <corlith/test/TempFolder.h>
#include <corlith/ui/ClipBoard.h>

#include "UiTestEnvironment.h"

#include <wx/dcclient.h>
#include <wx/frame.h>
#include <wx/image.h>
#include <wx/log.h>
#include <wx/menu.h>
#include <wx/mstream.h>
#include <wx/panel.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using corlith::test::TempFolder;

constexpr const char* kHostVariable = "CORLITH_CLIP_HOST";
constexpr int kWidth = 120;
constexpr int kHeight = 80;

// The pattern the test window paints, by client coordinates: red left of x = 60, blue
// from there, and a green square at (20..29, 40..49).
wxColour PatternAt(int x, int y) {
  if (x >= 20 && x < 30 && y >= 40 && y < 50) return {0, 255, 0};
  return x < 60 ? wxColour(255, 0, 0) : wxColour(0, 0, 255);
}

// A frame with a menu bar (so its client area does not start at the window's corner)
// whose client area paints the pattern.
class PatternFrame : public wxFrame {
 public:
  PatternFrame() : wxFrame(nullptr, wxID_ANY, "Clipboard pattern") {
    auto* menus = new wxMenuBar;
    menus->Append(new wxMenu, "&File");
    SetMenuBar(menus);
    auto* panel = new wxPanel(this);
    panel->Bind(wxEVT_PAINT, [panel](wxPaintEvent&) {
      wxPaintDC dc(panel);
      dc.SetPen(*wxTRANSPARENT_PEN);
      dc.SetBrush(wxBrush(wxColour(255, 0, 0)));
      dc.DrawRectangle(0, 0, 60, kHeight);
      dc.SetBrush(wxBrush(wxColour(0, 0, 255)));
      dc.DrawRectangle(60, 0, kWidth - 60, kHeight);
      dc.SetBrush(wxBrush(wxColour(0, 255, 0)));
      dc.DrawRectangle(20, 40, 10, 10);
    });
    SetClientSize(kWidth, kHeight);
    Show();
    corlith::test::PumpUntil([this] { return GetClientSize() == wxSize(kWidth, kHeight); });
    Update();
    corlith::test::Pump(200);
  }
};

struct FrameCloser {
  void operator()(wxFrame* frame) const { frame->Destroy(); }
};

// Every pixel of `image` equals the pattern at `origin` + its position (black outside
// the window); reports the first one that does not.
::testing::AssertionResult ShowsPattern(const wxImage& image, wxPoint origin) {
  for (int y = 0; y < image.GetHeight(); ++y) {
    for (int x = 0; x < image.GetWidth(); ++x) {
      const int wx = origin.x + x;
      const int wy = origin.y + y;
      const bool inside = wx >= 0 && wy >= 0 && wx < kWidth && wy < kHeight;
      const wxColour want = inside ? PatternAt(wx, wy) : wxColour(0, 0, 0);
      const wxColour got(image.GetRed(x, y), image.GetGreen(x, y), image.GetBlue(x, y));
      if (got != want) {
        return ::testing::AssertionFailure()
               << "pixel (" << x << ", " << y << ") is " << got.GetAsString().utf8_str() << ", want "
               << want.GetAsString().utf8_str();
      }
    }
  }
  return ::testing::AssertionSuccess();
}

// Decodes a BMP file of 24 or 32 bits without a palette, as SaveToBitmap writes them.
// The pixels are read right after the info header: the offset field of the file header
// carries a palette term that is exact for palettised files only, which general image
// readers refuse. An invalid image when the file is not such a BMP.
wxImage DecodeBmp(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  const std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  const auto u16 = [&](std::size_t at) {
    return static_cast<unsigned>(static_cast<unsigned char>(bytes[at])) |
           static_cast<unsigned>(static_cast<unsigned char>(bytes[at + 1])) << 8;
  };
  const auto u32 = [&](std::size_t at) { return u16(at) | u16(at + 2) << 16; };
  if (bytes.size() < 54 || bytes[0] != 'B' || bytes[1] != 'M' || u32(2) != bytes.size()) return {};
  const unsigned headerSize = u32(14);
  const auto width = static_cast<int>(u32(18));
  const auto height = static_cast<int>(u32(22));
  const unsigned bits = u16(28);
  if (u32(30) != 0 || (bits != 24 && bits != 32) || width <= 0 || height <= 0) return {};
  const std::size_t stride = (static_cast<std::size_t>(width) * bits + 31) / 32 * 4;
  const std::size_t first = 14 + headerSize;
  if (bytes.size() < first + stride * static_cast<std::size_t>(height)) return {};
  wxImage image(width, height);
  for (int y = 0; y < height; ++y) {
    // Bottom row first.
    const std::size_t row = first + stride * static_cast<std::size_t>(height - 1 - y);
    for (int x = 0; x < width; ++x) {
      const std::size_t at = row + static_cast<std::size_t>(x) * (bits / 8);
      image.SetRGB(x, y, static_cast<unsigned char>(bytes[at + 2]), static_cast<unsigned char>(bytes[at + 1]),
                   static_cast<unsigned char>(bytes[at]));
    }
  }
  return image;
}

TEST(ClipBoardTest, SaveToBitmapWritesTheCapturedPixels) {
  CORLITH_REQUIRE_DISPLAY();
  const std::unique_ptr<PatternFrame, FrameCloser> frame(new PatternFrame);
  CWnd window(frame.get());
  CCBClipBoard clipboard(&window);
  TempFolder folder("clipboard");
  struct Row {
    const char* name;
    bool wholeClient;
    RECT area;
  };
  const Row rows[] = {
      {"whole client area", true, {}},
      {"across the colour edge and the square", false, {15, 35, 75, 55}},
      {"reaching past the right and bottom edges", false, {100, 70, 140, 90}},
      {"one pixel", false, {25, 45, 26, 46}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const std::string path = folder.PathOf("area.bmp");
    fs::remove(path);
    ASSERT_EQ(clipboard.SaveToBitmap(path.c_str(), row.wholeClient ? nullptr : &row.area, 0), 1);
    const wxImage image = DecodeBmp(path);
    ASSERT_TRUE(image.IsOk());
    const CRect area = row.wholeClient ? CRect(0, 0, kWidth, kHeight) : CRect(row.area);
    EXPECT_EQ(image.GetSize(), wxSize(area.Width(), area.Height()));
    EXPECT_TRUE(ShowsPattern(image, wxPoint(area.left, area.top)));
  }
}

TEST(ClipBoardTest, SaveToBitmapReusesTheSharedPictureOrRefusesWithoutOne) {
  CORLITH_REQUIRE_DISPLAY();
  const std::unique_ptr<PatternFrame, FrameCloser> frame(new PatternFrame);
  CWnd window(frame.get());
  TempFolder folder("clipboard");
  // Captured through one instance, reused through another: the picture is class-wide.
  CCBClipBoard first(&window);
  const RECT square{20, 40, 30, 50};
  ASSERT_EQ(first.SaveToBitmap(folder.PathOf("first.bmp").c_str(), &square, 0), 1);
  CCBClipBoard second(&window);
  const RECT ignored{0, 0, 5, 5};
  ASSERT_EQ(second.SaveToBitmap(folder.PathOf("reused.bmp").c_str(), &ignored, 1), 1);
  const wxImage reused = DecodeBmp(folder.PathOf("reused.bmp"));
  ASSERT_TRUE(reused.IsOk());
  EXPECT_EQ(reused.GetSize(), wxSize(10, 10));
  EXPECT_TRUE(ShowsPattern(reused, wxPoint(20, 40)));

  // An empty area captures nothing and drops the held picture: nothing to write, no file.
  struct Row {
    const char* name;
    RECT area;
  };
  const Row rows[] = {{"empty", {10, 10, 10, 30}}, {"inverted", {30, 30, 10, 10}}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const std::string path = folder.PathOf("none.bmp");
    EXPECT_EQ(second.SaveToBitmap(path.c_str(), &row.area, 0), 0);
    EXPECT_FALSE(fs::exists(path));
    EXPECT_EQ(first.SaveToBitmap(path.c_str(), nullptr, 1), 0);
    EXPECT_FALSE(fs::exists(path));
  }
  // A window handle on no window captures nothing either.
  CWnd none;
  CCBClipBoard nowhere(&none);
  EXPECT_EQ(nowhere.SaveToBitmap(folder.PathOf("nowhere.bmp").c_str(), nullptr, 0), 0);
  EXPECT_FALSE(fs::exists(folder.PathOf("nowhere.bmp")));
}

// The host's part: put the area on the clipboard, say so with a file, and keep the
// event loop running (so the host can serve the clipboard itself) until told to quit.
void RunClipboardHost(const fs::path& folder) {
  ASSERT_TRUE(corlith::test::HaveDisplay());
  const std::unique_ptr<PatternFrame, FrameCloser> frame(new PatternFrame);
  CWnd window(frame.get());
  CCBClipBoard clipboard(&window);
  const RECT area{50, 30, 90, 60};
  clipboard.SetData(&area);
  std::ofstream(folder / "ready") << "ready\n";
  corlith::test::PumpUntil([&] { return fs::exists(folder / "quit"); }, 20000);
}

// The clipboard as another program pastes it: the PNG xclip hands out, decoded.
wxImage PasteWithXclip() {
  corlith::platform::SpawnOptions options;
  options.program = "xclip";
  options.arguments = {"-selection", "clipboard", "-t", "image/png", "-o"};
  options.output = corlith::platform::StreamTarget::Pipe();
  const auto result = corlith::platform::RunHidden(options, std::chrono::seconds(5));
  wxImage image;
  if (result.error != 0 || !result.status.Succeeded() || result.output.empty()) return image;
  wxMemoryInputStream stream(result.output.data(), result.output.size());
  const wxLogNull quiet;
  image.LoadFile(stream, wxBITMAP_TYPE_PNG);
  return image;
}

TEST(ClipBoardTest, AnotherProgramPastesTheAreaWhileTheHostRunsAndAfter) {
  if (const char* folder = std::getenv(kHostVariable)) {
    RunClipboardHost(folder);
    return;
  }
  CORLITH_REQUIRE_DISPLAY();
  corlith::platform::SpawnOptions probe;
  probe.program = "xclip";
  probe.arguments = {"-version"};
  if (corlith::platform::RunHidden(probe, std::chrono::seconds(5)).error != 0) {
    GTEST_SKIP() << "xclip is not installed: no other program can read the clipboard";
  }
  struct Row {
    const char* name;
    bool hostFindsXclip;
    bool survivesTheHost;
  };
  const Row rows[] = {
      {"handed on to xclip", true, true},
      // Without xclip on its PATH the host serves the picture itself, and only while it runs.
      {"served by the host alone", false, false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    TempFolder folder("clipboard-host");
    fs::create_directory(folder.Path() / "empty-bin");
    // Another owner first, so that nothing of the previous row is pasted.
    {
      corlith::platform::SpawnOptions clear;
      clear.program = "xclip";
      clear.arguments = {"-selection", "clipboard", "-i"};
      clear.input = corlith::platform::StreamTarget::Pipe();
      corlith::platform::Process other;
      ASSERT_EQ(corlith::platform::Spawn(clear, other), 0);
      other.WriteInput("text");
      other.CloseInput();
      ASSERT_TRUE(other.WaitFor(std::chrono::seconds(5)));
    }
    std::vector<std::string> environment{std::string(kHostVariable) + "=" + folder.Path().string()};
    if (!row.hostFindsXclip) environment.push_back("PATH=" + (folder.Path() / "empty-bin").string());
    corlith::test::ChildProcess host = corlith::test::StartThisTest(environment);
    ASSERT_TRUE(host.Started());
    ASSERT_TRUE(corlith::test::PumpUntil([&] { return fs::exists(folder.Path() / "ready"); }, 15000))
        << "the host never put the picture on the clipboard";

    const wxImage whileRunning = PasteWithXclip();
    ASSERT_TRUE(whileRunning.IsOk());
    EXPECT_EQ(whileRunning.GetSize(), wxSize(40, 30));
    EXPECT_TRUE(ShowsPattern(whileRunning, wxPoint(50, 30)));

    std::ofstream(folder.Path() / "quit") << "quit\n";
    EXPECT_EQ(host.Wait(), 0) << host.Output();

    const wxImage afterExit = PasteWithXclip();
    EXPECT_EQ(afterExit.IsOk(), row.survivesTheHost);
    if (row.survivesTheHost && afterExit.IsOk()) {
      EXPECT_TRUE(ShowsPattern(afterExit, wxPoint(50, 30)));
    }
  }
}

}  // namespace
