// Images out of views: a real OpenGL view (wxGLCanvas on Xvfb, and a headless EGL context
// with no display) saved as JPEG and decoded back, printing to a PostScript file
// rasterised by poppler, packed DIBs written as BMP files byte for byte, BMP to JPEG,
// and pictures drawn onto memory device contexts.
// The framebuffer-object calls of the headless context are declared only with this.
#define GL_GLEXT_PROTOTYPES 1
#include "UiTestEnvironment.h"

#include <corlith/test/ChildProcess.h>
#include <corlith/test/HeadlessGl.h>
#include <corlith/test/TempFolder.h>
#include <corlith/ui/GDIBitmap.h>
#include <corlith/ui/Image.h>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <wx/dcclient.h>
#include <wx/dcmemory.h>
#include <wx/dcps.h>
#include <wx/frame.h>
#include <wx/glcanvas.h>
#include <wx/image.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using corlith::PackedDib;
using corlith::test::TempFolder;

struct Rgb {
  int r, g, b;
};

std::vector<std::byte> ReadAll(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  const std::vector<char> chars((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  std::vector<std::byte> bytes(chars.size());
  std::memcpy(bytes.data(), chars.data(), chars.size());
  return bytes;
}

// The mean colour of the image's pixels in [x0, x1) × [y0, y1): JPEG is checked on
// areas, never on single pixels.
Rgb Mean(const wxImage& image, int x0, int y0, int x1, int y1) {
  long r = 0, g = 0, b = 0, n = 0;
  for (int y = y0; y < y1; ++y) {
    for (int x = x0; x < x1; ++x) {
      r += image.GetRed(x, y);
      g += image.GetGreen(x, y);
      b += image.GetBlue(x, y);
      ++n;
    }
  }
  return n == 0 ? Rgb{-1, -1, -1} : Rgb{int(r / n), int(g / n), int(b / n)};
}

void ExpectNear(const Rgb& got, const Rgb& want, int tolerance) {
  EXPECT_NEAR(got.r, want.r, tolerance);
  EXPECT_NEAR(got.g, want.g, tolerance);
  EXPECT_NEAR(got.b, want.b, tolerance);
}

wxImage Decode(const fs::path& file) {
  corlith::ui::EnsureImageHandlers();
  wxImage image;
  image.LoadFile(wxString(file.string()), wxBITMAP_TYPE_ANY);
  return image;
}

constexpr Rgb kRed{255, 0, 0};
constexpr Rgb kGreen{0, 255, 0};
constexpr Rgb kBlue{0, 0, 255};
constexpr Rgb kBlack{0, 0, 0};
constexpr Rgb kWhite{255, 255, 255};

float Channel(int v) { return static_cast<float>(v) / 255.0F; }

// The test pattern in window terms (top row first): top-left red, top-right green,
// bottom-left blue, bottom-right black, split at (w/2, h/2). A flipped or mirrored read
// puts every colour in the wrong corner.
void DrawQuadrants(int w, int h) {
  glViewport(0, 0, w, h);
  glEnable(GL_SCISSOR_TEST);
  const auto fill = [](int x, int y, int cw, int ch, const Rgb& c) {
    glScissor(x, y, cw, ch);
    glClearColor(Channel(c.r), Channel(c.g), Channel(c.b), 1.0F);
    glClear(GL_COLOR_BUFFER_BIT);
  };
  // OpenGL's y runs upwards: the window's top half is y >= h/2.
  fill(0, h / 2, w / 2, h - h / 2, kRed);
  fill(w / 2, h / 2, w - w / 2, h - h / 2, kGreen);
  fill(0, 0, w / 2, h / 2, kBlue);
  fill(w / 2, 0, w - w / 2, h / 2, kBlack);
  glDisable(GL_SCISSOR_TEST);
}

// Three vertical bands, left to right: black, red, white.
void DrawBands(int w, int h) {
  glViewport(0, 0, w, h);
  glEnable(GL_SCISSOR_TEST);
  const Rgb bands[] = {kBlack, kRed, kWhite};
  for (int i = 0; i < 3; ++i) {
    glScissor(i * w / 3, 0, (i + 1) * w / 3 - i * w / 3, h);
    glClearColor(Channel(bands[i].r), Channel(bands[i].g), Channel(bands[i].b), 1.0F);
    glClear(GL_COLOR_BUFFER_BIT);
  }
  glDisable(GL_SCISSOR_TEST);
}

// A frame with an OpenGL canvas whose context is made in its first paint.
class GLFrame : public wxFrame {
 public:
  static constexpr int kWidth = 160;
  static constexpr int kHeight = 120;

  GLFrame() : wxFrame(nullptr, wxID_ANY, "OpenGL view") {
    const int attributes[] = {WX_GL_RGBA, WX_GL_DOUBLEBUFFER, WX_GL_DEPTH_SIZE, 16, 0};
    m_canvas = new wxGLCanvas(this, wxID_ANY, attributes, wxDefaultPosition, wxSize(kWidth, kHeight));
    SetClientSize(kWidth, kHeight);
    m_canvas->Bind(wxEVT_PAINT, [this](wxPaintEvent&) {
      const wxPaintDC dc(m_canvas);
      if (!m_context) m_context = std::make_unique<wxGLContext>(m_canvas);
      m_context->SetCurrent(*m_canvas);
      DrawQuadrants(kWidth, kHeight);
      m_canvas->SwapBuffers();
    });
  }
  /// Makes the view's context current and draws with `draw` into the back buffer.
  bool DrawNow(void (*draw)(int, int)) {
    if (!m_context || !m_context->SetCurrent(*m_canvas)) return false;
    draw(kWidth, kHeight);
    return true;
  }
  bool Painted() const { return m_context != nullptr; }

 private:
  wxGLCanvas* m_canvas = nullptr;
  std::unique_ptr<wxGLContext> m_context;
};

// A shown frame whose canvas has painted once (its context exists).
struct ShownView {
  ShownView() : frame(new GLFrame) {
    frame->Show();
    corlith::test::PumpUntil([this] { return frame->Painted(); }, 5000);
  }
  ~ShownView() { frame->Destroy(); }
  ShownView(const ShownView&) = delete;
  ShownView& operator=(const ShownView&) = delete;
  GLFrame* frame;
};

struct Area {
  int x0, y0, x1, y1;
  Rgb colour;
};

// --- OpenGL view to JPEG -------------------------------------------------------------

TEST(KTImage, SavesTheViewTopRowFirstWithRightByBottomSize) {
  CORLITH_REQUIRE_DISPLAY();
  ShownView view;
  ASSERT_TRUE(view.frame->Painted()) << "the canvas never painted";
  const TempFolder folder("image");
  struct Row {
    const char* name;
    CRect rect;
    int width, height;
    std::vector<Area> areas;
  };
  // The view is 160 × 120 split at (80, 60). A rect from (20, 10) to (100, 80) reads the
  // 100 × 80 pixels at the view's bottom left: window rows 40..119, columns 0..99.
  const Row rows[] = {
      {"whole view",
       CRect(0, 0, 160, 120),
       160,
       120,
       {{8, 8, 72, 52, kRed}, {88, 8, 152, 52, kGreen}, {8, 68, 72, 112, kBlue}, {88, 68, 152, 112, kBlack}}},
      {"rect not at origin",
       CRect(20, 10, 100, 80),
       100,
       80,
       {{8, 4, 72, 16, kRed}, {84, 4, 96, 16, kGreen}, {8, 26, 72, 76, kBlue}, {84, 26, 96, 76, kBlack}}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    ASSERT_TRUE(view.frame->DrawNow(DrawQuadrants));
    const fs::path file = folder.Path() / (std::string(row.name) + ".jpg");
    ASSERT_EQ(CKTImage::SaveToImageFromOpenGLView(CString(file.string()), nullptr, row.rect), 1);
    const wxImage image = Decode(file);
    ASSERT_TRUE(image.IsOk());
    EXPECT_EQ(image.GetWidth(), row.width);
    EXPECT_EQ(image.GetHeight(), row.height);
    for (const Area& a : row.areas) ExpectNear(Mean(image, a.x0, a.y0, a.x1, a.y1), a.colour, 4);
  }
}

TEST(KTImage, SaveRefusesEmptySizesAndUnwritablePaths) {
  CORLITH_REQUIRE_DISPLAY();
  ShownView view;
  ASSERT_TRUE(view.frame->DrawNow(DrawQuadrants));
  const TempFolder folder("image");
  struct Row {
    const char* name;
    CRect rect;
    fs::path file;
  };
  const Row rows[] = {
      {"zero width", CRect(0, 0, 0, 50), folder.Path() / "a.jpg"},
      {"negative height", CRect(0, 0, 50, -3), folder.Path() / "b.jpg"},
      {"missing folder", CRect(0, 0, 50, 50), folder.Path() / "none" / "c.jpg"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(CKTImage::SaveToImageFromOpenGLView(CString(row.file.string()), nullptr, row.rect), 0);
    EXPECT_FALSE(fs::exists(row.file));
  }
  EXPECT_EQ(std::distance(fs::directory_iterator(folder.Path()), fs::directory_iterator()), 0)
      << "a temporary file was left behind";
}

// --- printing to a PostScript file -------------------------------------------------

// Rasterises the first page's top-left corner of a PostScript file at `dpi`.
wxImage Rasterise(const fs::path& ps, int dpi, int side) {
  const fs::path pdf = fs::path(ps).replace_extension(".pdf");
  const fs::path prefix = fs::path(ps).replace_extension("");
  const std::string convert = "ps2pdf '" + ps.string() + "' '" + pdf.string() +
                              "' && pdftoppm -singlefile -png -r " + std::to_string(dpi) + " -x 0 -y 0 -W " +
                              std::to_string(side) + " -H " + std::to_string(side) + " '" + pdf.string() +
                              "' '" + prefix.string() + "'";
  if (std::system(convert.c_str()) != 0) return {};
  return Decode(prefix.string() + ".png");
}

TEST(KTImage, PrintsAtSixTenthsAndInvertsBlackToWhite) {
  CORLITH_REQUIRE_DISPLAY();
  if (std::system("command -v ps2pdf >/dev/null && command -v pdftoppm >/dev/null") != 0) {
    GTEST_SKIP() << "ps2pdf (ghostscript) and pdftoppm (poppler-utils) are needed to look at the page";
  }
  ShownView view;
  const TempFolder folder("image");
  struct Row {
    int invert;
    Rgb left, middle, right;
  };
  const Row rows[] = {{1, kWhite, {0, 255, 255}, kBlack}, {0, kBlack, kRed, kWhite}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.invert);
    ASSERT_TRUE(view.frame->DrawNow(DrawBands));
    const fs::path ps = folder.Path() / ("page" + std::to_string(row.invert) + ".ps");
    wxPrintData data;
    data.SetPrintMode(wxPRINT_MODE_FILE);
    data.SetFilename(ps.string());
    wxPostScriptDC dc(data);
    ASSERT_TRUE(dc.IsOk());
    ASSERT_EQ(CKTImage::PrintImageFromOpenGLView(CRect(0, 0, 150, 100), "view", &dc, row.invert), 1);
    const int ppi = dc.GetPPI().x;
    ASSERT_GT(ppi, 0);
    // The picture is 0.6 × 150 = 90 by 0.6 × 100 = 60 device units at the page's top left
    // (below the PostScript DC's own top offset); rasterised at the DC's resolution one
    // unit is one pixel. Ink is any pixel with a channel below half: black, red, cyan.
    const wxImage page = Rasterise(ps, ppi, 200);
    ASSERT_TRUE(page.IsOk()) << "the print file could not be rasterised";
    page.SaveFile(
        wxString(corlith::test::ShotPath(folder, row.invert ? "print-inverted.png" : "print.png").string()),
        wxBITMAP_TYPE_PNG);
    int left = 200, top = 200, right = -1, bottom = -1;
    for (int y = 0; y < 200; ++y) {
      for (int x = 0; x < 200; ++x) {
        if (std::min({page.GetRed(x, y), page.GetGreen(x, y), page.GetBlue(x, y)}) >= 128) continue;
        left = std::min(left, x);
        right = std::max(right, x + 1);
        top = std::min(top, y);
        bottom = std::max(bottom, y + 1);
      }
    }
    // Printed white bands carry no ink: inverted, the black third is the blank one. The
    // scaled picture's red-to-white edge blends over a few pixels.
    EXPECT_NEAR(left, row.invert == 1 ? 30 : 0, 4);
    EXPECT_NEAR(right, row.invert == 1 ? 90 : 60, 4);
    EXPECT_NEAR(bottom - top, 60, 1);
    ASSERT_LT(top, 40);
    ExpectNear(Mean(page, 4, top + 5, 26, top + 55), row.left, 12);
    ExpectNear(Mean(page, 34, top + 5, 56, top + 55), row.middle, 12);
    ExpectNear(Mean(page, 64, top + 5, 86, top + 55), row.right, 12);
  }
}

TEST(KTImage, PrintRefusesANullDc) {
  EXPECT_EQ(CKTImage::PrintImageFromOpenGLView(CRect(0, 0, 10, 10), "view", nullptr, 1), 0);
}

// --- the same capture with no display at all ---------------------------------------

constexpr const char* kHeadlessVariable = "CORLITH_IMAGE_TEST_HEADLESS_OUT";

using HeadlessContext = corlith::test::HeadlessGlContext;

TEST(KTImage, SavesFromAHeadlessContextWithNoDisplay) {
  const char* out = std::getenv(kHeadlessVariable);
  if (out != nullptr) {
    // The child: no display of any kind in its environment.
    ASSERT_EQ(std::getenv("DISPLAY"), nullptr);
    const std::string none = std::string(out) + ".none.jpg";
    EXPECT_EQ(CKTImage::SaveToImageFromOpenGLView(CString(none), nullptr, CRect(0, 0, 8, 8)), 0)
        << "no context is current yet";
    EXPECT_FALSE(fs::exists(none));
    HeadlessContext context(64, 48);
    ASSERT_TRUE(context.Ok()) << "no surfaceless EGL context (Mesa's libegl-mesa0, libgl1-mesa-dri)";
    DrawQuadrants(64, 48);
    ASSERT_EQ(CKTImage::SaveToImageFromOpenGLView(CString(out), nullptr, CRect(0, 0, 64, 48)), 1);
    return;
  }
  const TempFolder folder("image");
  const fs::path file = folder.Path() / "headless.jpg";
  ::unsetenv("WAYLAND_DISPLAY");
  const std::string display = std::getenv("DISPLAY") != nullptr ? std::getenv("DISPLAY") : "";
  ::unsetenv("DISPLAY");  // the child inherits this environment
  auto child = corlith::test::StartThisTest({std::string(kHeadlessVariable) + "=" + file.string()});
  const int status = child.Wait();
  if (!display.empty()) ::setenv("DISPLAY", display.c_str(), 1);
  ASSERT_EQ(status, 0) << child.Output();
  const wxImage image = Decode(file);
  ASSERT_TRUE(image.IsOk());
  EXPECT_EQ(image.GetWidth(), 64);
  EXPECT_EQ(image.GetHeight(), 48);
  const Area areas[] = {
      {4, 4, 28, 20, kRed}, {36, 4, 60, 20, kGreen}, {4, 28, 28, 44, kBlue}, {36, 28, 60, 44, kBlack}};
  for (const Area& a : areas) ExpectNear(Mean(image, a.x0, a.y0, a.x1, a.y1), a.colour, 4);
}

// --- WriteDIB ------------------------------------------------------------------------

// A packed DIB of w × h at `bits`, with a full colour table for 1/4/8 bits and every
// byte after the header counting up, so a misplaced byte shows.
PackedDib HandBuiltDib(int w, int h, WORD bits) {
  const std::size_t colours = bits <= 8 ? std::size_t{1} << bits : 0;
  const std::size_t image = corlith::DibStride(w, bits) * static_cast<std::size_t>(h);
  PackedDib dib(40 + colours * 4 + image);
  auto& header = dib->bmiHeader;
  header.biSize = 40;
  header.biWidth = w;
  header.biHeight = h;
  header.biPlanes = 1;
  header.biBitCount = bits;
  header.biSizeImage = static_cast<DWORD>(image);
  for (std::size_t i = 40; i < dib.size(); ++i) dib.data()[i] = static_cast<std::byte>(i * 7);
  return dib;
}

std::vector<std::byte> LittleEndian(std::initializer_list<std::pair<std::uint32_t, int>> fields) {
  std::vector<std::byte> out;
  for (const auto& [value, size] : fields) {
    for (int i = 0; i < size; ++i) out.push_back(static_cast<std::byte>((value >> (8 * i)) & 0xFF));
  }
  return out;
}

TEST(GDIBitmap, WriteDibWritesTheHeaderAsStatedThenTheBlock) {
  const TempFolder folder("dib");
  struct Row {
    WORD bits;
    int w, h;
    std::uint32_t blockSize;  // 40 + colour table + rows
    std::uint32_t offset;     // 14 + 40 + (4 << bits % 32), worked by hand
  };
  const Row rows[] = {
      {1, 9, 3, 40 + 8 + 4 * 3, 14 + 40 + 8},
      {4, 3, 2, 40 + 64 + 4 * 2, 14 + 40 + 64},
      {8, 5, 2, 40 + 1024 + 8 * 2, 14 + 40 + 1024},
      {24, 3, 2, 40 + 12 * 2, 14 + 40 + 67108864},  // the kept quirk: 4 << 24
      {32, 2, 2, 40 + 8 * 2, 14 + 40 + 4},          // 4 << 0
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.bits);
    const PackedDib dib = HandBuiltDib(row.w, row.h, row.bits);
    ASSERT_EQ(dib.size(), row.blockSize);
    const fs::path file = folder.Path() / ("dib" + std::to_string(row.bits) + ".bmp");
    ASSERT_EQ(CGDIBitmap::WriteDIB(file.string().c_str(), dib.get()), 1);
    std::vector<std::byte> expected =
        LittleEndian({{0x4D42, 2}, {row.blockSize + 14, 4}, {0, 2}, {0, 2}, {row.offset, 4}});
    expected.insert(expected.end(), dib.data(), dib.data() + dib.size());
    EXPECT_EQ(ReadAll(file), expected);
  }
}

TEST(GDIBitmap, WriteDibRefusesWhatItCannotSize) {
  const TempFolder folder("dib");
  const fs::path file = folder.Path() / "x.bmp";
  BITMAPINFO onStack{};
  onStack.bmiHeader.biSize = 40;
  const PackedDib empty;
  struct Row {
    const char* name;
    const BITMAPINFO* dib;
  };
  const Row rows[] = {{"null", nullptr}, {"not the library's block", &onStack}, {"empty owner", empty.get()}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(CGDIBitmap::WriteDIB(file.string().c_str(), row.dib), 0);
    EXPECT_FALSE(fs::exists(file));
  }
  EXPECT_EQ(CGDIBitmap::WriteDIB(file.string().c_str(), empty), 0);
  EXPECT_EQ(std::distance(fs::directory_iterator(folder.Path()), fs::directory_iterator()), 0);
}

constexpr const char* kFsizeVariable = "CORLITH_IMAGE_TEST_FSIZE_TARGET";

TEST(GDIBitmap, AFailedWriteLeavesTheOldFileAndNoPartOfTheNew) {
  const char* target = std::getenv(kFsizeVariable);
  if (target != nullptr) {
    // The child: files may not grow past 64 KiB; a 1 MB DIB cannot be written.
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{65536, 65536};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
    const PackedDib dib = HandBuiltDib(512, 512, 32);
    EXPECT_EQ(CGDIBitmap::WriteDIB(target, dib.get()), 0);
    return;
  }
  const TempFolder folder("dib");
  const fs::path file = folder.Path() / "view.bmp";
  std::ofstream(file) << "the old picture";
  auto child = corlith::test::StartThisTest({std::string(kFsizeVariable) + "=" + file.string()});
  ASSERT_EQ(child.Wait(), 0) << child.Output();
  EXPECT_EQ(fs::file_size(file), std::string("the old picture").size());
  EXPECT_EQ(std::distance(fs::directory_iterator(folder.Path()), fs::directory_iterator()), 1)
      << "a partial temporary file was left";
}

TEST(GDIBitmap, DdbToDibGivesEachBitCountThatDecodesBack) {
  CORLITH_REQUIRE_DISPLAY();
  const TempFolder folder("dib");
  // 5 × 3: black, white, red, green, blue along each row, rows alike but the last white.
  wxImage picture(5, 3);
  const Rgb colours[] = {kBlack, kWhite, kRed, kGreen, kBlue};
  for (int y = 0; y < 3; ++y) {
    for (int x = 0; x < 5; ++x) {
      const Rgb c = y == 2 ? kWhite : colours[x];
      picture.SetRGB(x, y, c.r, c.g, c.b);
    }
  }
  // The five colours first, then greys that no pixel is near.
  unsigned char pr[20] = {0, 255, 255, 0, 0};
  unsigned char pg[20] = {0, 255, 0, 255, 0};
  unsigned char pb[20] = {0, 255, 0, 0, 255};
  for (int i = 5; i < 20; ++i) pr[i] = pg[i] = pb[i] = static_cast<unsigned char>(100 + i);
  struct Row {
    const char* name;
    int paletteSize;  // 0: no palette
    bool alpha;
    WORD bits;
  };
  const Row rows[] = {{"2 colours", 2, false, 1},
                      {"5 colours", 5, false, 4},
                      {"20 colours", 20, false, 8},
                      {"no palette", 0, false, 24},
                      {"with alpha", 0, true, 32}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    wxImage source = picture.Copy();
    if (row.alpha) {
      source.InitAlpha();
      for (int x = 0; x < 5; ++x) source.SetAlpha(x, 0, 128);
    }
    CBitmap bitmap{wxBitmap(source)};
    std::unique_ptr<CPalette> palette;
    if (row.paletteSize > 0) palette = std::make_unique<CPalette>(wxPalette(row.paletteSize, pr, pg, pb));
    const PackedDib dib = CGDIBitmap::DDBToDIB2(bitmap, BI_RGB, palette.get());
    ASSERT_TRUE(dib);
    EXPECT_EQ(dib->bmiHeader.biBitCount, row.bits);
    EXPECT_EQ(dib->bmiHeader.biWidth, 5);
    EXPECT_EQ(dib->bmiHeader.biHeight, 3);
    EXPECT_EQ(dib->bmiHeader.biSizeImage, corlith::DibStride(5, row.bits) * 3);
    if (row.bits >= 24) {
      // The last DIB row is the picture's top row: blue, green, red bytes.
      const std::byte* top = dib.bits() + corlith::DibStride(5, row.bits) * 2;
      const std::size_t step = row.bits / 8;
      EXPECT_EQ(top[2 * step + 2], std::byte{255});  // red's red
      EXPECT_EQ(top[4 * step + 0], std::byte{255});  // blue's blue
      EXPECT_EQ(dib.bits()[0], std::byte{255});      // the bottom row is white
      if (row.bits == 32) {
        EXPECT_EQ(top[3], std::byte{128});
      }
      continue;
    }
    // Palettised: the file's offset is exact, so any BMP reader gets the picture back.
    const fs::path file = folder.Path() / (std::string(row.name) + ".bmp");
    ASSERT_EQ(CGDIBitmap::WriteDIB(file.string().c_str(), dib), 1);
    const wxImage back = Decode(file);
    ASSERT_TRUE(back.IsOk());
    for (int x = 0; x < 5; ++x) {
      SCOPED_TRACE(x);
      // Two colours: each pixel the nearer of black and white.
      const Rgb want = row.paletteSize == 2 ? (x == 1 ? kWhite : kBlack) : colours[x];
      ExpectNear(Mean(back, x, 0, x + 1, 1), want, 0);
      ExpectNear(Mean(back, x, 2, x + 1, 3), kWhite, 0);
    }
  }
}

TEST(GDIBitmap, DdbToDibRefusesWhatItCannotConvert) {
  const wxBitmap invalid;
  EXPECT_FALSE(CGDIBitmap::DDBToDIB(nullptr, BI_RGB, nullptr));
  EXPECT_FALSE(CGDIBitmap::DDBToDIB(&invalid, BI_RGB, nullptr));
  CORLITH_REQUIRE_DISPLAY();
  const wxBitmap valid(wxImage(4, 4));
  for (const DWORD compression : {BI_RLE8, BI_RLE4, BI_BITFIELDS}) {
    SCOPED_TRACE(compression);
    EXPECT_FALSE(CGDIBitmap::DDBToDIB(&valid, compression, nullptr));
  }
}

// --- BMP to JPEG and the encoders -----------------------------------------------------

TEST(Jpeg, ConvertsBmpToJpegAtFullQuality) {
  CORLITH_REQUIRE_DISPLAY();
  const TempFolder folder("jpeg");
  wxImage picture(40, 30);
  for (int y = 0; y < 30; ++y) {
    for (int x = 0; x < 40; ++x) {
      const Rgb c = y < 15 ? kRed : (x < 20 ? kBlue : kWhite);
      picture.SetRGB(x, y, c.r, c.g, c.b);
    }
  }
  const fs::path bmp = folder.Path() / "in.bmp";
  ASSERT_TRUE(picture.SaveFile(wxString(bmp.string()), wxBITMAP_TYPE_BMP));
  struct Row {
    const char* name;
    fs::path in, out;
    int result;
  };
  const Row rows[] = {{"narrow", bmp, folder.Path() / "narrow.jpg", 1},
                      {"wide", bmp, folder.Path() / "wide.jpg", 1},
                      {"missing input", folder.Path() / "none.bmp", folder.Path() / "x.jpg", 0},
                      {"not an image", folder.Path() / "narrow.jpg.txt", folder.Path() / "y.jpg", 0},
                      {"missing folder", bmp, folder.Path() / "none" / "z.jpg", 0}};
  std::ofstream(folder.Path() / "narrow.jpg.txt") << "no picture";
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const int result = std::string(row.name) == "wide"
                           ? CJpeg::ConvertBMPToJPG(row.in.wstring().c_str(), row.out.wstring().c_str())
                           : CJpeg::ConvertBMPToJPG(row.in.string().c_str(), row.out.string().c_str());
    EXPECT_EQ(result, row.result);
    EXPECT_EQ(fs::exists(row.out), row.result == 1);
    if (row.result != 1) continue;
    const wxImage back = Decode(row.out);
    ASSERT_TRUE(back.IsOk());
    ExpectNear(Mean(back, 4, 2, 36, 12), kRed, 3);
    ExpectNear(Mean(back, 4, 18, 16, 28), kBlue, 3);
    ExpectNear(Mean(back, 24, 18, 36, 28), kWhite, 3);
  }
  EXPECT_EQ(CJpeg::ConvertBMPToJPG(static_cast<const char*>(nullptr), "x.jpg"), 0);
}

TEST(Jpeg, FindsEncodersByMimeType) {
  struct Row {
    const wchar_t* mime;
    bool found;
    wxBitmapType type;
  };
  const Row rows[] = {
      {L"image/jpeg", true, wxBITMAP_TYPE_JPEG},       {L"image/png", true, wxBITMAP_TYPE_PNG},
      {L"image/bmp", true, wxBITMAP_TYPE_BMP},         {L"image/JPEG", false, wxBITMAP_TYPE_INVALID},
      {L"image/x-none", false, wxBITMAP_TYPE_INVALID}, {L"", false, wxBITMAP_TYPE_INVALID}};
  std::vector<int> indices;
  for (const Row& row : rows) {
    SCOPED_TRACE(wxString(row.mime).ToStdString());
    CLSID clsid{};
    const int index = CJpeg::GetEncoderClsid(row.mime, &clsid);
    EXPECT_EQ(index >= 0, row.found);
    if (!row.found) {
      EXPECT_EQ(clsid.Data1, 0u);
      continue;
    }
    indices.push_back(index);
    EXPECT_EQ(clsid.Data1, 0x434F524Cu);
    EXPECT_EQ(clsid.Data2, 0x4954);
    EXPECT_EQ(clsid.Data3, static_cast<WORD>(row.type));
  }
  std::sort(indices.begin(), indices.end());
  EXPECT_EQ(std::adjacent_find(indices.begin(), indices.end()), indices.end())
      << "two encoders share an index";
  EXPECT_EQ(CJpeg::GetEncoderClsid(L"image/jpeg", nullptr), -1);
}

// --- pictures and drawing files --------------------------------------------------------

// A 100 × 100 white canvas with something drawn on it by `draw`.
wxImage DrawOnWhite(const std::function<int(wxDC&)>& draw, int& result) {
  wxBitmap canvas(100, 100, 24);
  {
    wxMemoryDC dc(canvas);
    dc.SetBackground(*wxWHITE_BRUSH);
    dc.Clear();
    result = draw(dc);
  }
  return canvas.ConvertToImage();
}

TEST(Picture, LoadsSizesAndDrawsAtPositionAndSize) {
  CORLITH_REQUIRE_DISPLAY();
  const TempFolder folder("picture");
  wxImage source(20, 10);
  source.SetRGB(wxRect(0, 0, 20, 10), 0, 0, 255);
  const fs::path png = folder.Path() / "blue.png";
  ASSERT_TRUE(source.SaveFile(wxString(png.string()), wxBITMAP_TYPE_PNG));
  struct Row {
    const char* name;
    std::function<int(wxDC&)> draw;
    wxRect blue;  // where the picture lands; white elsewhere
  };
  CPicture picture;
  CLPicture lpicture;
  ASSERT_EQ(picture.Load(png.string().c_str()), 1);
  ASSERT_EQ(lpicture.Load(png.string().c_str()), 1);
  EXPECT_EQ(picture.GetSize(), CSize(20, 10));
  EXPECT_EQ(lpicture.GetSize(), CSize(20, 10));
  const CString path(png.string());
  const Row rows[] = {
      {"CPicture at a position", [&](wxDC& dc) { return picture.Draw(&dc, 10, 30); }, wxRect(10, 30, 20, 10)},
      {"CPicture scaled", [&](wxDC& dc) { return picture.Draw(&dc, 5, 5, 60, 40); }, wxRect(5, 5, 60, 40)},
      {"CLPicture scaled", [&](wxDC& dc) { return lpicture.Draw(&dc, 40, 50, 30, 30); },
       wxRect(40, 50, 30, 30)},
      {"file at a position",
       [&](wxDC& dc) {
         CDC cdc(dc);
         return CKTImage::Draw(cdc, path, 70, 80);
       },
       wxRect(70, 80, 20, 10)},
      {"file into a rect",
       [&](wxDC& dc) {
         CDC cdc(dc);
         return CKTImage::Draw(cdc, path, CRect(20, 20, 90, 45));
       },
       wxRect(20, 20, 70, 25)},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    int result = 0;
    const wxImage drawn = DrawOnWhite(row.draw, result);
    EXPECT_EQ(result, 1);
    const wxRect& b = row.blue;
    ExpectNear(Mean(drawn, b.x + 1, b.y + 1, b.GetRight(), b.GetBottom()), kBlue, 0);
    // Just outside each edge stays white.
    ExpectNear(Mean(drawn, b.x, b.y - 1, b.GetRight(), b.y), kWhite, 0);
    ExpectNear(Mean(drawn, b.GetRight() + 2, b.y, b.GetRight() + 3, b.GetBottom()), kWhite, 0);
    ExpectNear(Mean(drawn, b.x, b.GetBottom() + 2, b.GetRight(), b.GetBottom() + 3), kWhite, 0);
  }
}

TEST(Picture, RefusesMissingFilesAndEmptySizes) {
  CORLITH_REQUIRE_DISPLAY();
  const TempFolder folder("picture");
  const fs::path missing = folder.Path() / "none.png";
  CPicture picture;
  EXPECT_EQ(picture.Load(missing.string().c_str()), 0);
  EXPECT_EQ(picture.GetSize(), CSize(0, 0));
  EXPECT_EQ(picture.Load(nullptr), 0);
  struct Row {
    const char* name;
    std::function<int(wxDC&)> draw;
  };
  const Row rows[] = {
      {"empty picture", [&](wxDC& dc) { return picture.Draw(&dc, 0, 0); }},
      {"null dc", [&](wxDC&) { return picture.Draw(nullptr, 0, 0, 5, 5); }},
      {"missing file",
       [&](wxDC& dc) {
         CDC cdc(dc);
         return CKTImage::Draw(cdc, CString(missing.string()), 0, 0);
       }},
      {"empty rect",
       [&](wxDC& dc) {
         CDC cdc(dc);
         return CKTImage::Draw(cdc, CString(missing.string()), CRect(10, 10, 10, 40));
       }},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    int result = -1;
    const wxImage drawn = DrawOnWhite(row.draw, result);
    EXPECT_EQ(result, 0);
    ExpectNear(Mean(drawn, 0, 0, 100, 100), kWhite, 0);
  }
}

}  // namespace
