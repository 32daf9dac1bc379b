// The About box and the message box: their field texts, the product picture, labels that
// fit their text, and links that open only on a left-button press (through the real
// xdg-open, which a recording handler answers).
#include <corlith/test/DesktopRecorder.h>
#include <corlith/test/TempFolder.h>
#include <corlith/ui/OrvaneDialogs.h>

#include <wx/image.h>
#include <wx/statbmp.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>
#include <wx/uiaction.h>

#include <cstdlib>
#include <filesystem>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "UiTestEnvironment.h"

namespace {

using corlith::ui::IDC_ABOUT_APPLICATION;
using corlith::ui::IDC_ABOUT_BUILD_DATE;
using corlith::ui::IDC_ABOUT_PICTURE;
using corlith::ui::IDC_ABOUT_VERSION;

wxIcon SampleIcon() {
  wxIcon icon;
  icon.CopyFromBitmap(corlith::ui::MakeOrvaneProductPicture(wxSize(16, 16)));
  return icon;
}

// Every label's text fits its item (DejaVu Sans here is wider than the Tahoma it stands for).
void ExpectLabelsFit(const CDialog& dialog) {
  for (const corlith::ui::DialogItem& item : dialog.GetTemplate().items) {
    if (item.kind != corlith::ui::DialogItemKind::Label) continue;
    const auto* label = dynamic_cast<const wxStaticText*>(dialog.GetDlgItem(item.id));
    ASSERT_NE(label, nullptr) << item.id;
    const wxSize text = label->GetTextExtent(label->GetLabel());
    EXPECT_LE(text.x, label->GetSize().x) << item.id << " \"" << label->GetLabel() << "\" is clipped";
    EXPECT_LE(text.y, label->GetSize().y + 2) << item.id << " \"" << label->GetLabel() << "\" is clipped";
  }
}

TEST(OrvaneAboutDlg, TitleAndFieldsInBothForms) {
  CORLITH_REQUIRE_DISPLAY();
  struct Row {
    const char* name;
    bool withName;
    const char* title;
    const char* application;
  };
  const Row rows[] = {
      {"icon and name", true, "About Tessel PCB 7", "Tessel PCB 7"},
      {"parent only", false, "About ", ""},
  };
  ASSERT_TRUE(SampleIcon().IsOk());
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    CWnd none;
    std::unique_ptr<COrvaneAboutDlg> dialog =
        row.withName ? std::make_unique<COrvaneAboutDlg>(SampleIcon(), "Tessel PCB 7")
                     : std::make_unique<COrvaneAboutDlg>(&none);
    ASSERT_TRUE(dialog->Create());
    EXPECT_EQ(dialog->GetTitle(), row.title);
    EXPECT_EQ(std::string(dialog->GetWindowText().GetString()), row.title);
    EXPECT_EQ(dialog->GetIcons().GetIconCount(), row.withName ? 1U : 0U) << "the small icon";
    EXPECT_EQ(dialog->GetDlgItemText(IDC_ABOUT_APPLICATION), row.application);
    EXPECT_EQ(dialog->GetDlgItemText(IDC_ABOUT_VERSION), "2025.1.1 (x64)");
    EXPECT_EQ(dialog->GetDlgItemText(IDC_ABOUT_BUILD_DATE), "2025-05-19");
  }
}

TEST(OrvaneAboutDlg, PictureFillsItsItemAndLabelsFit) {
  CORLITH_REQUIRE_DISPLAY();
  COrvaneAboutDlg dialog(SampleIcon(), "Tessel PCB");
  ASSERT_TRUE(dialog.Create());
  auto* picture = dynamic_cast<wxStaticBitmap*>(dialog.GetDlgItem(IDC_ABOUT_PICTURE));
  ASSERT_NE(picture, nullptr);
  const wxSize expected = dialog.ConvertDialogToPixels(wxSize(129, 190));
  ASSERT_TRUE(picture->GetBitmap().IsOk());
  EXPECT_EQ(picture->GetBitmap().GetSize(), expected);
  // A drawn picture, not a flat fill: the board, its copper and the backdrop all show.
  const wxImage image = picture->GetBitmap().ConvertToImage();
  std::set<unsigned long> colours;
  for (int y = 0; y < image.GetHeight(); y += 3) {
    for (int x = 0; x < image.GetWidth(); x += 3) {
      colours.insert((static_cast<unsigned long>(image.GetRed(x, y)) << 16) | (image.GetGreen(x, y) << 8) |
                     image.GetBlue(x, y));
    }
  }
  EXPECT_GT(colours.size(), 20U);
  const wxPoint boardCentre(expected.x * 20 / 129, expected.y * 80 / 190);
  EXPECT_GT(image.GetGreen(boardCentre.x, boardCentre.y), image.GetRed(boardCentre.x, boardCentre.y) + 40)
      << "the board is green";
  ExpectLabelsFit(dialog);

  corlith::test::TempFolder folder;
  dialog.Show();
  corlith::test::Pump(600);
  EXPECT_TRUE(corlith::test::SaveWindowPng(dialog, corlith::test::ShotPath(folder, "orvane-about.png")));
}

// The recorder's variables with DISPLAY left as it is: the input simulator connects to
// the display named there for every event it sends.
std::vector<std::string> KeepingOurDisplay(std::vector<std::string> variables) {
  const char* display = std::getenv("DISPLAY");
  for (std::string& variable : variables) {
    if (display != nullptr && variable.starts_with("DISPLAY=")) variable = std::string("DISPLAY=") + display;
  }
  return variables;
}

constexpr const char* kUrlPrefix = "https://example.com/orvane/row";

TEST(OrvaneMessageBoxDlg, CaptionMessageAndTextStyle) {
  CORLITH_REQUIRE_DISPLAY();
  struct Row {
    const char* name;
    bool withCaption;
    const char* title;
  };
  const Row rows[] = {{"icon and caption", true, "Tessel PCB"}, {"parent only", false, ""}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    CWnd none;
    std::unique_ptr<COrvaneMessageBoxDlg> dialog =
        row.withCaption ? std::make_unique<COrvaneMessageBoxDlg>(SampleIcon(), "Tessel PCB")
                        : std::make_unique<COrvaneMessageBoxDlg>(&none);
    dialog->m_strMessage = "Line one\nSee https://example.com/x";
    ASSERT_TRUE(dialog->Create());
    EXPECT_EQ(dialog->GetTitle(), row.title);
    EXPECT_EQ(dialog->GetIcons().GetIconCount(), row.withCaption ? 1U : 0U) << "the small icon";
    wxTextCtrl* text = dialog->GetRichEdit();
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(text->GetId(), 7022);
    EXPECT_EQ(text->GetValue(), "Line one\nSee https://example.com/x");
    EXPECT_TRUE(text->IsMultiLine());
    EXPECT_FALSE(text->IsEditable());
    EXPECT_TRUE(text->HasFlag(wxTE_AUTO_URL));
    EXPECT_TRUE(text->HasFlag(wxTE_WORDWRAP));
    EXPECT_EQ(text->GetRect(), corlith::ui::DialogItemRect(*dialog, corlith::ui::kOrvaneMessageBoxItems[1]));
  }
}

TEST(OrvaneMessageBoxDlg, OnlyALeftPressOnALinkOpensIt) {
  CORLITH_REQUIRE_DISPLAY();
  corlith::test::DesktopRecorder recorder;
  corlith::test::ScopedEnvironment environment(recorder.Environment(), recorder.UnsetVariables());
  struct Row {
    const char* name;
    wxEventType mouse;
    bool opens;
  };
  const std::vector<Row> rows = {
      {"motion", wxEVT_MOTION, false},
      {"left up", wxEVT_LEFT_UP, false},
      {"right down", wxEVT_RIGHT_DOWN, false},
      {"middle down", wxEVT_MIDDLE_DOWN, false},
      {"double click", wxEVT_LEFT_DCLICK, false},
      {"left down", wxEVT_LEFT_DOWN, true},
  };
  COrvaneMessageBoxDlg dialog(wxIcon(), "Links");
  for (std::size_t i = 0; i < rows.size(); ++i) {
    dialog.m_strMessage += (kUrlPrefix + std::to_string(i) + " ").c_str();
  }
  ASSERT_TRUE(dialog.Create());
  wxTextCtrl* text = dialog.GetRichEdit();
  ASSERT_NE(text, nullptr);
  std::vector<std::string> expected;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    SCOPED_TRACE(rows[i].name);
    const std::string url = kUrlPrefix + std::to_string(i);
    const long start = text->GetValue().Find(wxString::FromUTF8(url + " "));
    ASSERT_GE(start, 0);
    wxMouseEvent mouse(rows[i].mouse);
    if (rows[i].mouse == wxEVT_LEFT_DOWN) mouse.SetLeftDown(true);
    wxTextUrlEvent event(text->GetId(), mouse, start, start + static_cast<long>(url.size()));
    event.SetEventObject(text);
    // A handled event is not passed on; a skipped one is.
    EXPECT_EQ(text->GetEventHandler()->ProcessEvent(event), rows[i].opens);
    if (rows[i].opens) expected.push_back(url);
  }
  EXPECT_EQ(recorder.WaitForRecords(expected.size()), expected);
  std::this_thread::sleep_for(std::chrono::milliseconds(800));
  EXPECT_EQ(recorder.Records(), expected) << "nothing else was opened";
}

TEST(OrvaneMessageBoxDlg, SimulatedClickOnALinkOpensTheExactAddress) {
  CORLITH_REQUIRE_DISPLAY();
  corlith::test::DesktopRecorder recorder;
  corlith::test::ScopedEnvironment environment(KeepingOurDisplay(recorder.Environment()),
                                               recorder.UnsetVariables());
  wxUIActionSimulator simulator;
  const std::string url = "https://example.com/orvane/notes?build=2025-05-19&x=1";
  COrvaneMessageBoxDlg dialog(SampleIcon(), "Tessel PCB");
  dialog.m_strMessage = ("The update is ready. Read the notes at " + url + " before you install it.").c_str();
  ASSERT_TRUE(dialog.Create());
  dialog.Show();
  corlith::test::Pump(300);
  wxTextCtrl* text = dialog.GetRichEdit();
  ASSERT_NE(text, nullptr);
  const long start = text->GetValue().Find(wxString::FromUTF8(url));
  ASSERT_GE(start, 0);
  const wxPoint at = text->PositionToCoords(start + 8);
  ASSERT_NE(at, wxDefaultPosition);
  const int lineMiddle = text->GetCharHeight() / 2;

  // Moving over the link reaches nothing; a left click opens it once (the press, not the
  // release).
  simulator.MouseMove(text->ClientToScreen(at + wxPoint(2, lineMiddle)));
  corlith::test::Pump(100);
  simulator.MouseMove(text->ClientToScreen(at + wxPoint(12, lineMiddle)));
  corlith::test::Pump(300);
  // A press and release at the pointer. The simulator's button press does not reach a
  // GtkTextView on this server (its motion does), so the press goes in as the control's
  // own mouse event at the pointer; the control's link detection finds the link there.
  const wxPoint pointer = text->ScreenToClient(wxGetMousePosition());
  for (const wxEventType type : {wxEVT_LEFT_DOWN, wxEVT_LEFT_UP}) {
    wxMouseEvent press(type);
    press.SetPosition(pointer);
    press.SetLeftDown(type == wxEVT_LEFT_DOWN);
    press.SetEventObject(text);
    text->GetEventHandler()->ProcessEvent(press);
  }
  corlith::test::Pump(300);
  EXPECT_EQ(recorder.WaitForRecords(1), std::vector<std::string>{url});
  corlith::test::Pump(800);
  EXPECT_EQ(recorder.Records(), std::vector<std::string>{url}) << "moving and releasing opened nothing";

  corlith::test::TempFolder folder;
  EXPECT_TRUE(
      corlith::test::SaveWindowPng(dialog, corlith::test::ShotPath(folder, "orvane-message-box.png")));
}

}  // namespace
