// The resizable scroll dialog: the range from the height lost, and every way of moving the
// content (wheel, the six scroll codes, a real thumb drag), checked by where an item lands.
#include <corlith/test/TempFolder.h>
#include <corlith/ui/ResizableScrollDialog.h>

#include <wx/scrolbar.h>
#include <wx/uiaction.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string>

#include "UiTestEnvironment.h"

namespace {

using corlith::ui::DialogItem;
using corlith::ui::DialogItemKind;

constexpr int kTopLabel = 100;
constexpr int kLowEdit = 101;
constexpr std::array kItems{
    DialogItem{DialogItemKind::Label, kTopLabel, "Board name:", 10, 10, 80, 8},
    DialogItem{DialogItemKind::Edit, kLowEdit, "", 10, 200, 120, 14},
    DialogItem{DialogItemKind::DefaultButton, 1, "OK", 130, 280, 50, 14, 0, corlith::ui::kBottomRight,
               corlith::ui::kBottomRight},
};
constexpr corlith::ui::DialogTemplate kTemplate{7100, 200, 300, "Scroll", "Tahoma", 8, true, true, kItems};

// Opens at a client height of exactly 500 pixels.
class TallDialog : public CResizableScrollDialog {
 public:
  TallDialog() : CResizableScrollDialog(kTemplate) {}
  BOOL OnInitDialog() override {
    SetClientSize(GetClientSize().x, 500);
    return CResizableScrollDialog::OnInitDialog();
  }
  wxWindow& Label() const { return *GetDlgItem(kTopLabel); }
};

// Opens, shows, and (when `height` is not 500) is made `height` pixels tall.
void Open(TallDialog& dialog, int height) {
  ASSERT_TRUE(dialog.Create());
  dialog.Show();
  corlith::test::Pump(100);
  if (height != 500) {
    dialog.SetClientSize(dialog.GetClientSize().x, height);
    corlith::test::Pump(200);
  }
  ASSERT_EQ(dialog.GetClientSize().y, height);
}

void Wheel(TallDialog& dialog, int rotation) {
  wxMouseEvent wheel(wxEVT_MOUSEWHEEL);
  wheel.m_wheelRotation = rotation;
  wheel.m_wheelDelta = 120;
  wheel.m_linesPerAction = 3;
  wheel.SetEventObject(&dialog);
  dialog.GetEventHandler()->ProcessEvent(wheel);
  corlith::test::Pump(30);
}

int LabelY(const TallDialog& dialog) { return dialog.Label().GetPosition().y; }

TEST(ResizableScrollDialog, ShrinkingFrom500To400GivesTheStatedSteps) {
  CORLITH_REQUIRE_DISPLAY();
  TallDialog dialog;
  Open(dialog, 400);
  EXPECT_EQ(dialog.GetVScrollRange(), 110);
  wxScrollBar* bar = dialog.GetVScrollBar();
  ASSERT_NE(bar, nullptr);
  EXPECT_TRUE(bar->IsEnabled());
  EXPECT_EQ(bar->GetPageSize(), 11);
  EXPECT_EQ(bar->GetRange(), 111);
  EXPECT_EQ(bar->GetThumbPosition(), 0);
  EXPECT_EQ(bar->GetRect().GetRight(), dialog.GetClientSize().x - 1) << "the bar sits at the right edge";

  const int top = LabelY(dialog);
  struct Step {
    const char* name;
    std::function<void()> act;
    int moved;  // pixels the content moved up since the last step
  };
  const Step steps[] = {
      {"wheel towards the user", [&] { Wheel(dialog, -120); }, 11},
      {"line down", [&] { dialog.OnVScroll(SB_LINEDOWN, 0, bar); }, 1},
      {"page down", [&] { dialog.OnVScroll(SB_PAGEDOWN, 0, bar); }, 11},
      {"wheel away from the user", [&] { Wheel(dialog, 120); }, -11},
      {"line up", [&] { dialog.OnVScroll(SB_LINEUP, 0, bar); }, -1},
  };
  int expected = top;
  for (const Step& step : steps) {
    SCOPED_TRACE(step.name);
    step.act();
    corlith::test::Pump(30);
    expected -= step.moved;
    EXPECT_EQ(LabelY(dialog), expected);
    EXPECT_EQ(dialog.GetScrollPosition(), top - expected);
    EXPECT_EQ(bar->GetThumbPosition(), top - expected);
  }

  corlith::test::Pump(600);
  corlith::test::TempFolder folder;
  const char* shots = std::getenv("CORLITH_UI_SHOTS");
  EXPECT_TRUE(corlith::test::SaveWindowPng(
      dialog,
      (shots != nullptr ? std::filesystem::path(shots) : folder.Path()) / "resizable-scroll-dialog.png"));
}

TEST(ResizableScrollDialog, EveryScrollCodeMovesByItsStep) {
  CORLITH_REQUIRE_DISPLAY();
  struct Row {
    const char* name;
    int start;
    UINT code;
    UINT thumb;
    int end;    // the position afterwards
    int moved;  // pixels the content moved up
  };
  const Row rows[] = {
      {"line up", 50, SB_LINEUP, 0, 49, -1},
      {"line up at the top", 0, SB_LINEUP, 0, 0, 0},
      {"line down", 50, SB_LINEDOWN, 0, 51, 1},
      {"line down at the bottom", 110, SB_LINEDOWN, 0, 110, 0},
      {"page up", 50, SB_PAGEUP, 0, 39, -11},
      {"page up near the top", 5, SB_PAGEUP, 0, 0, -5},
      {"page down", 50, SB_PAGEDOWN, 0, 61, 11},
      {"page down near the bottom", 105, SB_PAGEDOWN, 0, 110, 5},
      {"thumb position", 50, SB_THUMBPOSITION, 80, 80, 30},
      {"thumb track", 50, SB_THUMBTRACK, 3, 3, -47},
      {"top (ignored)", 50, SB_TOP, 0, 50, 0},
      {"bottom (ignored)", 50, SB_BOTTOM, 0, 50, 0},
      {"end scroll (ignored)", 50, SB_ENDSCROLL, 0, 50, 0},
  };
  TallDialog dialog;
  Open(dialog, 400);
  const int top = LabelY(dialog);
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    dialog.OnVScroll(SB_THUMBPOSITION, static_cast<UINT>(row.start), dialog.GetVScrollBar());
    ASSERT_EQ(LabelY(dialog), top - row.start);
    dialog.OnVScroll(row.code, row.thumb, dialog.GetVScrollBar());
    corlith::test::Pump(20);
    EXPECT_EQ(dialog.GetScrollPosition(), row.end);
    EXPECT_EQ(LabelY(dialog), top - row.start - row.moved);
    // The bar's own positions end at range − page + 1 (100), as the original bar's do.
    EXPECT_EQ(dialog.GetVScrollBar()->GetThumbPosition(), std::min(row.end, 100));
  }
}

TEST(ResizableScrollDialog, AThumbDragMovesByExactlyItsDisplacement) {
  CORLITH_REQUIRE_DISPLAY();
  TallDialog dialog;
  Open(dialog, 400);
  wxScrollBar* bar = dialog.GetVScrollBar();
  ASSERT_NE(bar, nullptr);
  const int top = LabelY(dialog);
  const wxRect onScreen(bar->ClientToScreen(wxPoint(0, 0)), bar->GetSize());
  wxUIActionSimulator simulator;
  simulator.MouseMove(onScreen.x + onScreen.width / 2, onScreen.y + 6);
  corlith::test::Pump(50);
  simulator.MouseDown();
  corlith::test::Pump(50);
  for (int dy = 10; dy <= 120; dy += 10) {
    simulator.MouseMove(onScreen.x + onScreen.width / 2, onScreen.y + 6 + dy);
    corlith::test::Pump(30);
  }
  simulator.MouseUp();
  corlith::test::Pump(200);
  const int thumb = bar->GetThumbPosition();
  EXPECT_GT(thumb, 0) << "the drag moved the thumb";
  EXPECT_EQ(dialog.GetScrollPosition(), thumb);
  EXPECT_EQ(LabelY(dialog), top - thumb);
}

TEST(ResizableScrollDialog, ADialogNeverMadeSmallerMovesNothing) {
  CORLITH_REQUIRE_DISPLAY();
  TallDialog dialog;
  Open(dialog, 500);
  EXPECT_EQ(dialog.GetVScrollRange(), 0);
  ASSERT_NE(dialog.GetVScrollBar(), nullptr);
  EXPECT_TRUE(dialog.GetVScrollBar()->IsShown());
  EXPECT_FALSE(dialog.GetVScrollBar()->IsEnabled());
  const int top = LabelY(dialog);
  Wheel(dialog, -120);
  Wheel(dialog, 120);
  for (UINT code = SB_LINEUP; code <= SB_ENDSCROLL; ++code) {
    SCOPED_TRACE(code);
    dialog.OnVScroll(code, 0, dialog.GetVScrollBar());
    EXPECT_EQ(dialog.GetScrollPosition(), 0);
    EXPECT_EQ(LabelY(dialog), top);
  }
  // Made taller than designed, it still has nothing to scroll.
  dialog.SetClientSize(dialog.GetClientSize().x, 560);
  corlith::test::Pump(200);
  EXPECT_EQ(dialog.GetVScrollRange(), 0);
  Wheel(dialog, -120);
  EXPECT_EQ(LabelY(dialog), top);
}

}  // namespace
