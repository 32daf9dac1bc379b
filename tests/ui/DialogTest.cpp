// The dialog builder and CDialog: template units to pixels with the dialog's font, ids
// as window ids, OK/Cancel/Escape ending the dialog with their ids, anchors.
#include <corlith/ui/Dialog.h>

#include <wx/button.h>
#include <wx/stattext.h>

#include <array>
#include <functional>
#include <vector>

#include "UiTestEnvironment.h"

namespace {

using corlith::ui::DialogItem;
using corlith::ui::DialogItemKind;
using corlith::ui::DialogTemplate;

constexpr std::array kItems{
    DialogItem{DialogItemKind::DefaultButton, 1, "OK", 100, 80, 50, 14, 0, corlith::ui::kBottomRight,
               corlith::ui::kBottomRight},
    DialogItem{DialogItemKind::Button, 2, "Cancel", 155, 80, 50, 14, 0, corlith::ui::kBottomRight,
               corlith::ui::kBottomRight},
    DialogItem{DialogItemKind::Label, 7010, "Application:", 10, 10, 60, 8},
    DialogItem{DialogItemKind::Edit, 7011, "", 10, 24, 195, 14, 0, corlith::ui::kTopLeft,
               corlith::ui::kTopRight},
};
constexpr DialogTemplate kTemplate{7000, 212, 100, "Builder", "Tahoma", 8, true, true, kItems};

class Probe : public CDialog {
 public:
  Probe() : CDialog(kTemplate) {}
  BOOL OnInitDialog() override {
    ++inits;
    SetDlgItemText(7011, "typed");
    return CDialog::OnInitDialog();
  }
  int inits = 0;
};

TEST(Dialog, ItemsAreAtTheirTemplateUnitsWithTheirIds) {
  CORLITH_REQUIRE_DISPLAY();
  Probe dialog;
  ASSERT_TRUE(dialog.Create());
  EXPECT_EQ(dialog.inits, 1);
  EXPECT_EQ(dialog.GetId(), 7000);
  EXPECT_EQ(dialog.GetTitle(), "Builder");
  EXPECT_EQ(dialog.GetClientSize(), dialog.ConvertDialogToPixels(wxSize(212, 100)));
  for (const DialogItem& item : kItems) {
    wxWindow* window = dialog.GetDlgItem(item.id);
    ASSERT_NE(window, nullptr) << item.id;
    EXPECT_EQ(window->GetPosition(), dialog.ConvertDialogToPixels(wxPoint(item.x, item.y))) << item.id;
  }
  EXPECT_EQ(dialog.GetDlgItemText(7010), "Application:");
  EXPECT_EQ(dialog.GetDlgItemText(7011), "typed");
  EXPECT_FALSE(dialog.Create()) << "a modeless dialog is created once";
}

TEST(Dialog, AnchoredItemsFollowTheSizeGained) {
  CORLITH_REQUIRE_DISPLAY();
  Probe dialog;
  ASSERT_TRUE(dialog.Create());
  const wxPoint ok = dialog.GetDlgItem(1)->GetPosition();
  const wxSize edit = dialog.GetDlgItem(7011)->GetSize();
  const wxPoint label = dialog.GetDlgItem(7010)->GetPosition();
  dialog.SetClientSize(dialog.GetClientSize() + wxSize(40, 30));
  dialog.Show();
  corlith::test::Pump(100);
  EXPECT_EQ(dialog.GetDlgItem(1)->GetPosition(), ok + wxPoint(40, 30));
  EXPECT_EQ(dialog.GetDlgItem(7011)->GetSize(), edit + wxSize(40, 0));
  EXPECT_EQ(dialog.GetDlgItem(7010)->GetPosition(), label);
}

TEST(Dialog, OkCancelAndEscapeEndTheDialogWithTheirIds) {
  CORLITH_REQUIRE_DISPLAY();
  struct Case {
    const char* name;
    std::function<void(Probe&)> act;
    INT_PTR expected;
  };
  const std::vector<Case> cases = {
      {"button 1",
       [](Probe& d) {
         wxCommandEvent click(wxEVT_BUTTON, IDOK);
         click.SetEventObject(d.GetDlgItem(IDOK));
         d.GetDlgItem(IDOK)->GetEventHandler()->ProcessEvent(click);
       },
       IDOK},
      {"EndDialog", [](Probe& d) { d.EndDialog(42); }, 42},
      {"close box", [](Probe& d) { d.Close(); }, IDCANCEL},
  };
  for (const Case& c : cases) {
    Probe dialog;
    dialog.CallAfter([&] {
      c.act(dialog);
      if (dialog.IsModal()) dialog.EndModal(-99);
    });
    EXPECT_EQ(dialog.DoModal(), c.expected) << c.name;
  }
}

TEST(Dialog, ShownAgainItGetsFreshItemsAndInitialisesAgain) {
  CORLITH_REQUIRE_DISPLAY();
  Probe dialog;
  for (int round = 1; round <= 2; ++round) {
    dialog.CallAfter([&] {
      EXPECT_EQ(dialog.GetDlgItemText(7011), "typed");
      dialog.SetDlgItemText(7011, "changed");
      dialog.EndDialog(IDOK);
    });
    EXPECT_EQ(dialog.DoModal(), IDOK);
    EXPECT_EQ(dialog.inits, round);
    EXPECT_EQ(dialog.GetChildren().size(), kItems.size());
  }
}

}  // namespace
