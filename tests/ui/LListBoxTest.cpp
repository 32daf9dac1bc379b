// CLListBox: EnsureVisible makes an item the top one; UnselectAll clears every kind of
// selection.
#include <corlith/ui/LListBox.h>

#include <wx/frame.h>

#include <memory>
#include <vector>

#include "UiTestEnvironment.h"

namespace {

struct Shown {
  explicit Shown(long style)
      : frame(new wxFrame(nullptr, wxID_ANY, "List", wxDefaultPosition, wxSize(300, 300))) {
    list = new CLListBox(frame, wxID_ANY, wxPoint(0, 0), wxSize(200, 120), 0, nullptr, style);
    for (int i = 0; i < 100; ++i) list->Append(wxString::Format("Net %02d", i));
    frame->Show();
    corlith::test::Pump(150);
  }
  ~Shown() { delete frame; }
  Shown(const Shown&) = delete;
  Shown& operator=(const Shown&) = delete;
  wxFrame* frame;
  CLListBox* list;
};

TEST(LListBox, EnsureVisibleMakesTheItemTheTopOne) {
  CORLITH_REQUIRE_DISPLAY();
  Shown shown(wxLB_SINGLE);
  struct Row {
    int index;
    int top;  // the top item afterwards
  };
  const Row rows[] = {{40, 40}, {7, 7}, {0, 0}, {63, 63}, {-1, 63}, {100, 63}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.index);
    shown.list->EnsureVisible(row.index);
    // GTK scrolls a list in a short animation.
    corlith::test::PumpUntil([&] { return shown.list->HitTest(wxPoint(4, 4)) == row.top; }, 1500);
    EXPECT_EQ(shown.list->HitTest(wxPoint(4, 4)), row.top) << "the item drawn at the top";
  }
}

TEST(LListBox, UnselectAllClearsEverySelectionKind) {
  CORLITH_REQUIRE_DISPLAY();
  struct Row {
    const char* name;
    long style;
    std::vector<int> selected;
  };
  const Row rows[] = {
      {"single", wxLB_SINGLE, {3}},
      {"multiple", wxLB_MULTIPLE, {1, 4, 70}},
      {"extended", wxLB_EXTENDED, {0, 99}},
      {"nothing selected", wxLB_MULTIPLE, {}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    Shown shown(row.style);
    for (const int i : row.selected) shown.list->SetSelection(i);
    wxArrayInt before;
    ASSERT_EQ(shown.list->GetSelections(before), static_cast<int>(row.selected.size()));
    shown.list->UnselectAll();
    wxArrayInt after;
    EXPECT_EQ(shown.list->GetSelections(after), 0);
    if (row.style == wxLB_SINGLE) {
      EXPECT_EQ(shown.list->GetSelection(), wxNOT_FOUND);
    }
    EXPECT_EQ(shown.list->GetCount(), 100U) << "the items stay";
  }
}

}  // namespace
