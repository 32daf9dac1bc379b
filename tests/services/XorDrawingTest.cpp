// Exclusive-or drawing on a real OpenGL context without a display: Mesa's surfaceless
// EGL platform, a desktop OpenGL context with no configuration and no surface, drawing
// into a framebuffer object whose pixels are read back with glReadPixels.
#include <corlith/services/InputEvent.h>

#include <corlith/test/HeadlessGl.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace {

constexpr int kSide = 32;

// A current context rendering into a kSide x kSide framebuffer object.
class HeadlessContext : public corlith::test::HeadlessGlContext {
 public:
  HeadlessContext() : HeadlessGlContext(kSide, kSide) {}
};

std::vector<std::uint8_t> ReadPixels() {
  std::vector<std::uint8_t> pixels(static_cast<std::size_t>(kSide) * kSide * 4);
  glPixelStorei(GL_PACK_ALIGNMENT, 1);
  glReadPixels(0, 0, kSide, kSide, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
  return pixels;
}

// A background no single colour could fake: four differently coloured quarters.
void DrawBackground() {
  glClearColor(0.1F, 0.2F, 0.3F, 1.0F);
  glClear(GL_COLOR_BUFFER_BIT);
  glColor3ub(200, 40, 90);
  glRectf(-1.0F, -1.0F, 0.0F, 0.0F);
  glColor3ub(15, 250, 128);
  glRectf(0.0F, 0.0F, 1.0F, 1.0F);
  glColor3ub(255, 255, 255);
  glRectf(-1.0F, 0.0F, 0.0F, 1.0F);
}

// The figure: a square over the middle, crossing all four quarters.
constexpr std::array<std::uint8_t, 3> kFigure = {0x5A, 0xC3, 0x0F};
void DrawFigure() {
  glColor3ub(kFigure[0], kFigure[1], kFigure[2]);
  glRectf(-0.5F, -0.5F, 0.5F, 0.5F);
}

bool InFigure(int x, int y) {
  return x >= kSide / 4 && x < kSide * 3 / 4 && y >= kSide / 4 && y < kSide * 3 / 4;
}

// One context for the whole run, made on first use and deliberately never terminated:
// Mesa's driver keeps allocations that it frees only while it stays loaded, and
// terminating the display unloads it (the leak checker would then report them).
HeadlessContext& Context() {
  static HeadlessContext* context = new HeadlessContext();
  return *context;
}

class XorDrawingTest : public testing::Test {
 protected:
  void SetUp() override {
    if (!Context().Error().empty()) GTEST_SKIP() << "no headless OpenGL here: " << Context().Error();
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
  }
};

struct StateRow {
  const char* name;
  GLenum modeBefore;
  bool depthBefore;
  bool logicOpBefore;
};

TEST_F(XorDrawingTest, BeginSwitchesToXorAndEndRestoresTheSavedModeButNotTheDepthTest) {
  const StateRow rows[] = {
      {"copy, depth on, logic off", GL_COPY, true, false},
      {"and, depth on, logic on", GL_AND, true, true},
      {"or-reverse, depth off, logic off", GL_OR_REVERSE, false, false},
      {"invert, depth off, logic on", GL_INVERT, false, true},
  };
  for (const StateRow& row : rows) {
    SCOPED_TRACE(row.name);
    glLogicOp(row.modeBefore);
    row.depthBefore ? glEnable(GL_DEPTH_TEST) : glDisable(GL_DEPTH_TEST);
    row.logicOpBefore ? glEnable(GL_COLOR_LOGIC_OP) : glDisable(GL_COLOR_LOGIC_OP);
    CIE__Base tool;
    EXPECT_EQ(tool.GetSavedLogicOp(), 0);

    tool.BeginMode_XOR();
    GLint mode = 0;
    glGetIntegerv(GL_LOGIC_OP_MODE, &mode);
    EXPECT_EQ(mode, GL_XOR);
    EXPECT_EQ(glIsEnabled(GL_COLOR_LOGIC_OP), GL_TRUE);
    EXPECT_EQ(glIsEnabled(GL_DEPTH_TEST), GL_FALSE);
    EXPECT_EQ(tool.GetSavedLogicOp(), static_cast<int>(row.modeBefore));

    tool.EndMode_XOR();
    glGetIntegerv(GL_LOGIC_OP_MODE, &mode);
    EXPECT_EQ(mode, static_cast<GLint>(row.modeBefore));
    // The logic operation is off afterwards even when it was on before Begin.
    EXPECT_EQ(glIsEnabled(GL_COLOR_LOGIC_OP), GL_FALSE);
    EXPECT_EQ(glIsEnabled(GL_DEPTH_TEST), GL_FALSE);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
  }
}

TEST_F(XorDrawingTest, AFigureDrawnTwiceLeavesThePixelsAsTheyWereAndOnceInvertsOnlyItsPixels) {
  DrawBackground();
  const std::vector<std::uint8_t> before = ReadPixels();
  CIE__Base tool;

  tool.BeginMode_XOR();
  DrawFigure();
  const std::vector<std::uint8_t> once = ReadPixels();
  DrawFigure();
  tool.EndMode_XOR();
  const std::vector<std::uint8_t> twice = ReadPixels();

  EXPECT_EQ(twice, before);
  int changed = 0;
  for (int y = 0; y < kSide; ++y) {
    for (int x = 0; x < kSide; ++x) {
      const std::size_t at = (static_cast<std::size_t>(y) * kSide + x) * 4;
      for (std::size_t c = 0; c < 3; ++c) {
        const auto expected =
            static_cast<std::uint8_t>(InFigure(x, y) ? before[at + c] ^ kFigure[c] : before[at + c]);
        if (once[at + c] != expected) {
          ADD_FAILURE() << "pixel " << x << "," << y << " channel " << c << ": " << int(once[at + c])
                        << " not " << int(expected);
          return;
        }
      }
      changed += InFigure(x, y) ? 1 : 0;
    }
  }
  EXPECT_EQ(changed, kSide * kSide / 4);

  // After EndMode_XOR drawing copies again: the figure's colour lands as it is.
  DrawFigure();
  const std::vector<std::uint8_t> copied = ReadPixels();
  const std::size_t middle = (static_cast<std::size_t>(kSide / 2) * kSide + kSide / 2) * 4;
  EXPECT_EQ(copied[middle], kFigure[0]);
  EXPECT_EQ(copied[middle + 1], kFigure[1]);
  EXPECT_EQ(copied[middle + 2], kFigure[2]);
}

}  // namespace
