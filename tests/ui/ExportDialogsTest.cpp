// The export dialog and the save confirmation: the row that closes without a parameter
// dialog (measured in pixels), the texts applied on opening, the choosers "..." asks
// through (seen by a recording prompt), the validation hook, the status line during an
// export, and the confirmation's three answers through real clicks.
#include <corlith/framework/HostPrompt.h>
#include <corlith/test/TempFolder.h>
#include <corlith/ui/ExportDialogs.h>

#include <wx/app.h>
#include <wx/button.h>
#include <wx/dcclient.h>
#include <wx/dcmemory.h>
#include <wx/gauge.h>
#include <wx/image.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>
#include <wx/timer.h>
#include <wx/uiaction.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "UiTestEnvironment.h"

namespace {

using corlith::ui::IDC_EXPORT_BROWSE;
using corlith::ui::IDC_EXPORT_FRAME;
using corlith::ui::IDC_EXPORT_PATH;
using corlith::ui::IDC_EXPORT_PATH_LABEL;
using corlith::ui::IDC_EXPORT_PROGRESS;
using corlith::ui::IDC_EXPORT_SETTING;
using corlith::ui::IDC_EXPORT_STATUS;

// A small dialog standing for the host's parameter dialog.
constexpr std::array kParameterItems{
    corlith::ui::DialogItem{corlith::ui::DialogItemKind::DefaultButton, 1, "OK", 7, 7, 50, 14},
};
constexpr corlith::ui::DialogTemplate kParameterTemplate{7900, 64,    28,   "Parameters",   "Tahoma",
                                                         8,    false, true, kParameterItems};

void Click(wxWindow& dialog, int id) {
  wxWindow* item = dialog.FindWindow(id);
  ASSERT_NE(item, nullptr) << id;
  wxCommandEvent event(wxEVT_BUTTON, id);
  event.SetEventObject(item);
  item->GetEventHandler()->ProcessEvent(event);
}

// What ShowModalActing returns when nothing ended the dialog.
constexpr int kUnanswered = 99;

// Shows `dialog` (made already) modally and runs `act` from its own modal loop once it
// is up; the input `act` simulates is then handled by that loop, with every window
// enabled (a yield inside a test body disables them). Ends the dialog with kUnanswered,
// failing the test, when nothing else has after five seconds. Without a window manager
// a window sits at 0,0 whatever it asks for, so the dialog is placed there.
int ShowModalActing(wxDialog& dialog, const std::function<void()>& act) {
  dialog.Move(0, 0);
  wxTimer actor;
  actor.Bind(wxEVT_TIMER, [&](wxTimerEvent&) { act(); });
  actor.StartOnce(150);
  wxTimer watchdog;
  watchdog.Bind(wxEVT_TIMER, [&](wxTimerEvent&) {
    if (!dialog.IsModal()) return;
    ADD_FAILURE() << "the dialog was still open";
    dialog.EndModal(kUnanswered);
  });
  watchdog.StartOnce(5000);
  const int result = dialog.ShowModal();
  actor.Stop();
  watchdog.Stop();
  return result;
}

// A click with the real pointer on the centre of the item.
void ClickWithMouse(wxWindow& dialog, int id) {
  wxWindow* item = dialog.FindWindow(id);
  ASSERT_NE(item, nullptr) << id;
  wxUIActionSimulator input;
  input.MouseMove(item->GetScreenRect().GetPosition() + item->GetSize() / 2);
  input.MouseClick();
}

// Handles every event for about `milliseconds` with the windows enabled. (A safe yield
// disables them, and after a change GTK then copies such a window black.)
void Deliver(int milliseconds) {
  const wxLongLong end = wxGetLocalTimeMillis() + milliseconds;
  while (wxGetLocalTimeMillis() < end) {
    wxTheApp->Yield(true);
    wxMilliSleep(5);
  }
}

// The dialog's client area as it is on the screen now, without handling any event.
wxImage Grab(wxWindow& window) {
  const wxSize size = window.GetClientSize();
  wxBitmap bitmap(size);
  {
    wxMemoryDC memory(bitmap);
    wxClientDC client(&window);
    memory.Blit(0, 0, size.x, size.y, &client, 0, 0);
  }
  return bitmap.ConvertToImage();
}

// True when some pixel inside `area` differs between the two images.
bool Differs(const wxImage& a, const wxImage& b, const wxRect& area) {
  for (int y = area.GetTop(); y <= area.GetBottom(); ++y) {
    for (int x = area.GetLeft(); x <= area.GetRight(); ++x) {
      if (a.GetRed(x, y) != b.GetRed(x, y) || a.GetGreen(x, y) != b.GetGreen(x, y) ||
          a.GetBlue(x, y) != b.GetBlue(x, y)) {
        return true;
      }
    }
  }
  return false;
}

// Every label's and button's text fits its item (DejaVu Sans here is wider than the Tahoma
// it stands for).
void ExpectTextsFit(const CDialog& dialog) {
  for (const corlith::ui::DialogItem& item : dialog.GetTemplate().items) {
    if (item.kind == corlith::ui::DialogItemKind::Custom || item.kind == corlith::ui::DialogItemKind::Edit ||
        item.kind == corlith::ui::DialogItemKind::GroupBox) {
      continue;
    }
    const wxWindow* window = dialog.GetDlgItem(item.id);
    ASSERT_NE(window, nullptr) << item.id;
    const wxSize text = window->GetTextExtent(window->GetLabel());
    const int margin = item.kind == corlith::ui::DialogItemKind::Label ? 0 : 8;
    EXPECT_LE(text.x + margin, window->GetSize().x)
        << item.id << " \"" << window->GetLabel() << "\" is clipped";
    EXPECT_LE(text.y, window->GetSize().y + 2) << item.id << " \"" << window->GetLabel() << "\" is clipped";
  }
}

TEST(ExportStandardDlg, WithoutParameterDialogTheSettingRowCloses) {
  CORLITH_REQUIRE_DISPLAY();
  corlith::test::TempFolder shots("export-shots");
  struct Row {
    const char* name;
    bool withSetting;
    const char* shot;
  };
  const Row rows[] = {
      {"with a parameter dialog", true, "export-with-parameters.png"},
      {"without a parameter dialog", false, "export-without-parameters.png"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    CDialog parameters(kParameterTemplate);
    CExportStandard_Dlg dialog;
    if (row.withSetting) dialog.SetSettingDlg(&parameters);
    ASSERT_TRUE(dialog.Create());
    dialog.Show();
    corlith::test::Pump(50);

    // The design, in pixels of the dialog's own font.
    const auto designRect = [&](int id) {
      for (const corlith::ui::DialogItem& item : corlith::ui::kExportStandardItems) {
        if (item.id == id) return corlith::ui::DialogItemRect(dialog, item);
      }
      ADD_FAILURE() << "no item " << id;
      return wxRect();
    };
    const wxSize designClient = dialog.ConvertDialogToPixels(wxSize(309, 100));
    const int rowHeight = designRect(IDOK).GetTop() - designRect(IDC_EXPORT_SETTING).GetTop();
    ASSERT_EQ(rowHeight, dialog.ConvertDialogToPixels(wxSize(0, 16)).y);
    const int shift = row.withSetting ? 0 : rowHeight;

    EXPECT_EQ(dialog.GetDlgItem(IDC_EXPORT_SETTING)->IsShown(), row.withSetting);
    EXPECT_EQ(dialog.GetClientSize(), wxSize(designClient.x, designClient.y - shift));
    for (const int id : {IDC_EXPORT_PATH_LABEL, IDC_EXPORT_PATH, IDC_EXPORT_BROWSE, IDC_EXPORT_SETTING}) {
      EXPECT_EQ(dialog.GetDlgItem(id)->GetRect(), designRect(id)) << id << " stays";
    }
    for (const int id : {IDOK, IDCANCEL, IDC_EXPORT_FRAME, IDC_EXPORT_STATUS, IDC_EXPORT_PROGRESS}) {
      const wxRect expected = designRect(id);
      EXPECT_EQ(dialog.GetDlgItem(id)->GetRect(),
                wxRect(expected.GetPosition() - wxPoint(0, shift), expected.GetSize()))
          << id << " moves up by " << shift;
    }
    // The bar's bottom keeps its design margin above the dialog's bottom edge.
    EXPECT_EQ(dialog.GetClientSize().y - dialog.GetDlgItem(IDC_EXPORT_PROGRESS)->GetRect().GetBottom(),
              designClient.y - designRect(IDC_EXPORT_PROGRESS).GetBottom());
    ExpectTextsFit(dialog);
    EXPECT_TRUE(corlith::test::SaveWindowPng(dialog, corlith::test::ShotPath(shots, row.shot)));
    dialog.Hide();
  }
}

TEST(ExportStandardDlg, StoredTextsAppliedOnOpening) {
  CORLITH_REQUIRE_DISPLAY();
  struct Row {
    const char* name;
    const char* title;
    const char* label;
    const char* path;
    const char* buttonText;
    const char* status;
    // What the dialog shows.
    const char* shownTitle;
    const char* shownLabel;
    const char* shownBrowse;
    const char* shownStatus;
  };
  const Row rows[] = {
      {"every text set", "Export Netlist", "Netlist file :", "/boards/a.net", "Browse", "Waiting",  //
       "Export Netlist", "Netlist file :", "Browse", "Waiting"},
      {"nothing set keeps the template", "", "", "", "", "",  //
       "Export Standard Title", "Export Standard File Path Select Here :", "...",
       "Exporting and Converting Status"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    CExportStandard_Dlg dialog;
    dialog.SetInitTitle(row.title);
    dialog.SetInitPathStaticText(row.label);
    dialog.SetInitDefaultPath(row.path);
    dialog.SetInitSettingBtnText(row.buttonText);
    dialog.SetInitProgText(row.status);
    EXPECT_EQ(dialog.GetProgressBar(), nullptr) << "no window yet";
    ASSERT_TRUE(dialog.Create());
    EXPECT_EQ(dialog.GetTitle(), row.shownTitle);
    EXPECT_EQ(dialog.GetDlgItemText(IDC_EXPORT_PATH_LABEL), row.shownLabel);
    EXPECT_EQ(dialog.GetDlgItemText(IDC_EXPORT_PATH), row.path);
    EXPECT_EQ(dialog.GetDlgItemText(IDC_EXPORT_BROWSE), row.shownBrowse)
        << "the setting-button text lands here";
    EXPECT_EQ(dialog.GetDlgItemText(IDC_EXPORT_SETTING), "Parameter Settings");
    EXPECT_EQ(dialog.GetDlgItemText(IDC_EXPORT_STATUS), row.shownStatus);
    ASSERT_NE(dialog.GetProgressBar(), nullptr);
    EXPECT_EQ(dialog.GetProgressBar()->GetRange(), 100);
    EXPECT_EQ(dialog.GetProgressBar()->GetId(), IDC_EXPORT_PROGRESS);
  }
}

TEST(ExportStandardDlg, BrowseAsksTheRightChooser) {
  CORLITH_REQUIRE_DISPLAY();
  struct Row {
    const char* name;
    std::vector<const char*> descriptions;
    std::vector<const char*> extensions;
    std::optional<std::string> answer;  // nullopt: the chooser is cancelled
    bool folder;
    const char* filter;  // of the file chooser
    const char* pathAfter;
  };
  const char* start = "/boards/out/board.v2.csv";
  const Row rows[] = {
      {"no types: a folder", {}, {}, std::string("/exports"), true, "", "/exports"},
      {"no types, cancelled", {}, {}, std::nullopt, true, "", start},
      {"no types, empty answer", {}, {}, std::string(), true, "", start},
      {"extension only: Select File",
       {},
       {"csv"},
       std::string("/x/netlist.csv"),
       false,
       "Select File (*.csv)|*.csv|All Files(*.*)|*.*||",
       "/x/netlist.csv"},
      {"extension only, cancelled",
       {},
       {"csv"},
       std::nullopt,
       false,
       "Select File (*.csv)|*.csv|All Files(*.*)|*.*||",
       start},
      {"one type",
       {"Comma separated"},
       {"csv"},
       std::string("/y/a.csv"),
       false,
       "Comma separated (*.csv)|*.csv|All Files(*.*)|*.*||",
       "/y/a.csv"},
      {"one description, two extensions",
       {"Tables"},
       {"csv", "txt"},
       std::string("/y/b.txt"),
       false,
       "Tables (*.csv, *.txt)|*.csv;*.txt|All Files(*.*)|*.*||",
       "/y/b.txt"},
      {"two types",
       {"Comma separated", "Workbook"},
       {"csv", "xlsx"},
       std::string("/y/c.xlsx"),
       false,
       "Comma separated (*.csv)|*.csv|Workbook (*.xlsx)|*.xlsx|All Files(*.*)|*.*||",
       "/y/c.xlsx"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    auto prompt = std::make_shared<corlith::RecordingHostPrompt>();
    corlith::ScopedHostPrompt installed(prompt);
    if (row.folder) {
      prompt->QueueFolder(row.answer);
    } else {
      prompt->QueueFiles(row.answer ? std::optional(std::vector<std::string>{*row.answer}) : std::nullopt);
    }
    CExportStandard_Dlg dialog;
    for (const char* description : row.descriptions) dialog.AddExtInfo(description);
    for (const char* extension : row.extensions) dialog.AddExt(extension);
    dialog.SetInitDefaultPath("/ignored/before.csv");
    ASSERT_TRUE(dialog.Create());
    // "..." starts from what the edit holds now, not from the path the dialog opened with.
    dynamic_cast<wxTextCtrl*>(dialog.GetDlgItem(IDC_EXPORT_PATH))->ChangeValue(start);
    Click(dialog, IDC_EXPORT_BROWSE);

    EXPECT_EQ(std::string(dialog.GetFilePath()), row.pathAfter);
    EXPECT_EQ(dialog.GetDlgItemText(IDC_EXPORT_PATH), row.pathAfter) << "the edit shows the path";
    if (row.folder) {
      ASSERT_EQ(prompt->FolderRequests().size(), 1U);
      EXPECT_TRUE(prompt->FileRequests().empty());
      const corlith::FolderChooserRequest request = prompt->FolderRequests()[0];
      EXPECT_EQ(request.title, "Export Path");
      EXPECT_EQ(request.initialFolder, start);
      EXPECT_EQ(request.owner, static_cast<wxWindow*>(&dialog));
      continue;
    }
    ASSERT_EQ(prompt->FileRequests().size(), 1U);
    EXPECT_TRUE(prompt->FolderRequests().empty());
    const corlith::FileChooserRequest request = prompt->FileRequests()[0];
    EXPECT_EQ(request.filter, row.filter);
    EXPECT_EQ(request.initialFolder, "/boards/out") << "the path's folder";
    EXPECT_EQ(request.fileName, "board.v2") << "the path's title";
    EXPECT_FALSE(request.open) << "an export target is saved";
    EXPECT_FALSE(request.multiSelect);
    EXPECT_EQ(request.parent, static_cast<CWnd*>(&dialog));
  }
}

TEST(ExportStandardDlg, SelectFileIsAddedOnce) {
  CORLITH_REQUIRE_DISPLAY();
  auto prompt = std::make_shared<corlith::RecordingHostPrompt>();
  corlith::ScopedHostPrompt installed(prompt);
  CExportStandard_Dlg dialog;
  dialog.AddExt("csv");
  dialog.AddExt("txt");
  dialog.SetInitDefaultPath("/b/n.csv");
  ASSERT_TRUE(dialog.Create());
  Click(dialog, IDC_EXPORT_BROWSE);
  Click(dialog, IDC_EXPORT_BROWSE);
  ASSERT_EQ(prompt->FileRequests().size(), 2U);
  // Once added, "Select File" is the one description: the second time asks the same.
  for (const corlith::FileChooserRequest& request : prompt->FileRequests()) {
    EXPECT_EQ(request.filter, "Select File (*.csv, *.txt)|*.csv;*.txt|All Files(*.*)|*.*||");
  }
  ASSERT_EQ(dialog.GetExtInfos().GetSize(), 1);
  EXPECT_EQ(std::string(dialog.GetExtInfos()[0]), "Select File");
  EXPECT_EQ(std::string(dialog.GetFilePath()), "/b/n.csv") << "both choosers cancelled";
}

// Declines the first `declines` exports; counts the questions and the path it was shown.
class PickyExportDlg : public CExportStandard_Dlg {
 public:
  int declines = 0;
  int asked = 0;
  std::string pathSeen;

 protected:
  BOOL ValidateExport() override {
    ++asked;
    pathSeen = GetFilePath().str();
    return asked > declines ? TRUE : FALSE;
  }
};

TEST(ExportStandardDlg, ExportAsksTheValidationHook) {
  CORLITH_REQUIRE_DISPLAY();
  PickyExportDlg dialog;
  dialog.declines = 1;
  dialog.SetInitDefaultPath("/first.csv");
  std::vector<bool> openAfter;
  ASSERT_TRUE(dialog.Create());
  const int result = ShowModalActing(dialog, [&] {
    dynamic_cast<wxTextCtrl*>(dialog.GetDlgItem(IDC_EXPORT_PATH))->ChangeValue("/typed/board.csv");
    Click(dialog, IDOK);
    openAfter.push_back(dialog.IsModal());
    ClickWithMouse(dialog, IDOK);
  });
  openAfter.push_back(dialog.IsModal());
  EXPECT_EQ(result, IDOK);
  EXPECT_EQ(openAfter, (std::vector<bool>{true, false})) << "declined: stays open; accepted: closes";
  EXPECT_EQ(dialog.asked, 2);
  EXPECT_EQ(dialog.pathSeen, "/typed/board.csv") << "the edit is read before the hook is asked";
  EXPECT_EQ(std::string(dialog.GetFilePath()), "/typed/board.csv");
}

TEST(ExportStandardDlg, ParameterButtonRunsTheParameterDialogModally) {
  CORLITH_REQUIRE_DISPLAY();
  CDialog parameters(kParameterTemplate);
  CExportStandard_Dlg dialog;
  dialog.SetSettingDlg(&parameters);
  int seenModal = 0;
  // Ends the parameter dialog each time it is up, as a person pressing OK would.
  wxTimer closer;
  closer.Bind(wxEVT_TIMER, [&](wxTimerEvent&) {
    if (parameters.IsModal()) {
      ++seenModal;
      parameters.EndModal(IDOK);
    }
  });
  closer.Start(30);
  ASSERT_TRUE(dialog.Create());
  corlith::test::RunModalFor(dialog, [&] {
    Click(dialog, IDC_EXPORT_SETTING);
    Click(dialog, IDC_EXPORT_SETTING);  // a second time too
  });
  closer.Stop();
  EXPECT_EQ(seenModal, 2);
}

TEST(ExportStandardDlg, ProgressAndStatusWhileTheHostExports) {
  CORLITH_REQUIRE_DISPLAY();
  corlith::test::TempFolder shots("export-shots");
  CExportStandard_Dlg dialog;
  dialog.SetProcText("Queued");  // before the window: the status to open with
  ASSERT_TRUE(dialog.Create());
  EXPECT_EQ(dialog.GetDlgItemText(IDC_EXPORT_STATUS), "Queued");
  const wxRect status = dialog.GetDlgItem(IDC_EXPORT_STATUS)->GetRect();
  const wxRect bar = dialog.GetDlgItem(IDC_EXPORT_PROGRESS)->GetRect();
  // The host exports from a handler of its own: no event is handled between its steps,
  // so what shows must have been painted by the calls themselves.
  ShowModalActing(dialog, [&] {
    Deliver(200);  // shown and painted before the export starts
    wxImage before = Grab(dialog);
    const char* steps[] = {"Reading board", "Converting nets", "Writing file"};
    int percent = 0;
    for (const char* step : steps) {
      SCOPED_TRACE(step);
      wxMilliSleep(40);  // the host's work on this step
      percent += 30;
      dialog.GetProgressBar()->SetValue(percent);
      dialog.SetProcText(step);
      const wxImage after = Grab(dialog);
      EXPECT_EQ(dialog.GetDlgItemText(IDC_EXPORT_STATUS), step);
      EXPECT_EQ(dialog.GetProgressBar()->GetValue(), percent);
      EXPECT_TRUE(Differs(before, after, status)) << "the status line was repainted";
      EXPECT_TRUE(Differs(before, after, bar)) << "the bar was repainted";
      before = after;
    }
    EXPECT_TRUE(dialog.GetDlgItem(IDOK)->IsEnabled());
    Deliver(200);
    EXPECT_TRUE(corlith::test::SaveWindowPng(dialog, corlith::test::ShotPath(shots, "export-progress.png")));
    dialog.EndModal(IDCANCEL);
  });
}

TEST(ConfirmSaveCheckDlg, ThreeAnswersThroughClicks) {
  CORLITH_REQUIRE_DISPLAY();
  struct Row {
    const char* name;
    int button;  // 0: Escape
    std::int32_t answer;
    int result;
  };
  const Row rows[] = {
      {"Save As...", corlith::ui::IDC_CONFIRM_SAVE_AS, 0, IDOK},
      {"Save", corlith::ui::IDC_CONFIRM_SAVE, 1, IDOK},
      {"Cancel", corlith::ui::IDC_CONFIRM_CANCEL, 2, IDCANCEL},
      {"Escape", 0, 2, IDCANCEL},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    CConfirm_Save_Check_Dlg dialog;
    ASSERT_TRUE(dialog.Create());
    const int result = ShowModalActing(dialog, [&] {
      if (row.button != 0) {
        ClickWithMouse(dialog, row.button);
        return;
      }
      // X gives the keys to the window under the pointer, wx to the focused item.
      dialog.GetDlgItem(corlith::ui::IDC_CONFIRM_SAVE)->SetFocus();
      wxUIActionSimulator input;
      input.MouseMove(dialog.GetScreenRect().GetPosition() + wxPoint(5, 5));
      input.Char(WXK_ESCAPE);
    });
    EXPECT_EQ(result, row.result);
    EXPECT_EQ(dialog.GetAnswer(), row.answer);
  }
}

TEST(ConfirmSaveCheckDlg, TextAndButtonsFollowTheSize) {
  CORLITH_REQUIRE_DISPLAY();
  corlith::test::TempFolder shots("export-shots");
  CConfirm_Save_Check_Dlg dialog;
  ASSERT_TRUE(dialog.Create());
  dialog.Show();
  corlith::test::Pump(50);
  EXPECT_EQ(dialog.GetTitle(), "Save Confirm Dialog");
  EXPECT_EQ(dialog.GetDlgItemText(corlith::ui::IDC_CONFIRM_SAVE_TEXT),
            "Current Input Setting Is Not Saved.  Save Input ? ");
  EXPECT_EQ(dialog.GetClientSize(), dialog.ConvertDialogToPixels(wxSize(185, 48)));
  ExpectTextsFit(dialog);
  EXPECT_TRUE(corlith::test::SaveWindowPng(dialog, corlith::test::ShotPath(shots, "confirm-save.png")));

  const wxSize design = dialog.GetClientSize();
  const int bottomMargin =
      design.y - dialog.GetDlgItem(corlith::ui::IDC_CONFIRM_CANCEL)->GetRect().GetBottom();
  const int textWidth = dialog.GetDlgItem(corlith::ui::IDC_CONFIRM_SAVE_TEXT)->GetSize().x;
  dialog.SetClientSize(design + wxSize(150, 60));
  Deliver(300);
  const wxRect saveAs = dialog.GetDlgItem(corlith::ui::IDC_CONFIRM_SAVE_AS)->GetRect();
  const wxRect save = dialog.GetDlgItem(corlith::ui::IDC_CONFIRM_SAVE)->GetRect();
  const wxRect cancel = dialog.GetDlgItem(corlith::ui::IDC_CONFIRM_CANCEL)->GetRect();
  EXPECT_EQ(dialog.GetDlgItem(corlith::ui::IDC_CONFIRM_SAVE_TEXT)->GetSize().x, textWidth + 150);
  for (const wxRect& button : {saveAs, save, cancel}) {
    EXPECT_EQ(dialog.GetClientSize().y - button.GetBottom(), bottomMargin) << "kept to the bottom";
    EXPECT_NEAR(button.width, saveAs.width, 2) << "the width is shared (to a rounding)";
  }
  EXPECT_LT(saveAs.GetRight(), save.GetLeft());
  EXPECT_LT(save.GetRight(), cancel.GetLeft());
  EXPECT_TRUE(corlith::test::SaveWindowPng(dialog, corlith::test::ShotPath(shots, "confirm-save-wide.png")));
  dialog.Hide();
}

}  // namespace
