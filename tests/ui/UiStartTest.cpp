// Starting the UI library: the wx prompts answer through real wx dialogs (ended by wx's
// testing hook), the choosers get the framework's requests converted, the desktop hooks
// pump the real event loop and release a real capture, and WxMenu carries CMenu's
// operations onto a real wxMenu.
#include <corlith/environment/Utility.h>
#include <corlith/test/TempFolder.h>
#include <corlith/ui/UiStart.h>
#include <corlith/ui/WxMenu.h>

#include <wx/app.h>
#include <wx/dirdlg.h>
#include <wx/filedlg.h>
#include <wx/frame.h>
#include <wx/menu.h>
#include <wx/msgdlg.h>
#include <wx/testing.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "UiTestEnvironment.h"

namespace {

using corlith::ui::MessageBoxAnswerOf;
using corlith::ui::MessageBoxLookOf;
using corlith::ui::WildcardOfFilter;

// Starts the library for one test with a recording prompt beneath it, so that a test
// can also see what Stop() restores.
class UiStart : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!corlith::test::HaveDisplay()) return;
    m_scoped = std::make_unique<corlith::ScopedHostPrompt>(m_recording);
    ASSERT_TRUE(corlith::ui::Start());
  }
  void TearDown() override { corlith::ui::Stop(); }

  std::shared_ptr<corlith::RecordingHostPrompt> m_recording =
      std::make_shared<corlith::RecordingHostPrompt>();
  std::unique_ptr<corlith::ScopedHostPrompt> m_scoped;
};

// Checks what a message box shows and answers it with `answer`.
class ExpectMessage : public wxExpectModalBase<wxMessageDialog, ExpectMessage> {
 public:
  ExpectMessage(wxString text, wxString caption, long style, int answer)
      : m_text(std::move(text)), m_caption(std::move(caption)), m_style(style), m_answer(answer) {}

 protected:
  int OnInvoked(wxMessageDialog* dialog) const override {
    EXPECT_EQ(dialog->GetMessage(), m_text);
    EXPECT_EQ(dialog->GetCaption(), m_caption);
    EXPECT_EQ(dialog->GetMessageDialogStyle() & ~wxCENTRE, m_style);
    seenYesLabel = dialog->GetYesLabel();
    return m_answer;
  }

 public:
  mutable wxString seenYesLabel;

 private:
  wxString m_text;
  wxString m_caption;
  long m_style;
  int m_answer;
};

TEST_F(UiStart, StartInstallsTheWxPromptsAndStopRestoresThePrevious) {
  CORLITH_REQUIRE_DISPLAY();
  EXPECT_NE(dynamic_cast<corlith::ui::WxHostPrompt*>(corlith::GetHostPrompt().get()), nullptr);
  EXPECT_NE(dynamic_cast<corlith::ui::WxDesktopHooks*>(corlith::GetDesktopHooks().get()), nullptr);
  EXPECT_TRUE(corlith::ui::Start()) << "a second start is harmless";
  bool startedOnWorker = true;
  std::thread([&] { startedOnWorker = corlith::ui::Start(); }).join();
  EXPECT_FALSE(startedOnWorker) << "only wx's main thread may start the library";
  EXPECT_TRUE(corlith::ui::IsStarted());
  corlith::ui::Stop();
  EXPECT_FALSE(corlith::ui::IsStarted());
  EXPECT_EQ(corlith::GetHostPrompt(), m_recording);
  EXPECT_NE(dynamic_cast<corlith::HeadlessDesktopHooks*>(corlith::GetDesktopHooks().get()), nullptr);
  std::thread([&] { startedOnWorker = corlith::ui::Start(); }).join();
  EXPECT_FALSE(startedOnWorker) << "only wx's main thread may start the library";
  EXPECT_EQ(corlith::GetHostPrompt(), m_recording);
}

TEST_F(UiStart, MessageBoxShowsTextCaptionButtonsAndMapsTheAnswerBack) {
  CORLITH_REQUIRE_DISPLAY();
  struct Row {
    UINT type;
    long style;  // what the wx box must show
    int pressed;
    int answer;
  };
  const Row rows[] = {
      {MB_OK, wxOK | wxICON_NONE, wxID_OK, IDOK},
      {MB_OK | MB_ICONERROR, wxOK | wxICON_ERROR, wxID_CANCEL, IDOK},
      {MB_OKCANCEL | MB_ICONINFORMATION, wxOK | wxCANCEL | wxICON_INFORMATION, wxID_CANCEL, IDCANCEL},
      {MB_YESNO | MB_ICONQUESTION, wxYES_NO | wxICON_QUESTION, wxID_NO, IDNO},
      {MB_YESNO | MB_DEFBUTTON2, wxYES_NO | wxNO_DEFAULT | wxICON_NONE, wxID_YES, IDYES},
      {MB_YESNOCANCEL | MB_ICONWARNING | MB_DEFBUTTON3,
       wxYES_NO | wxCANCEL | wxCANCEL_DEFAULT | wxICON_WARNING, wxID_CANCEL, IDCANCEL},
      {MB_ABORTRETRYIGNORE, wxYES_NO | wxCANCEL | wxICON_NONE, wxID_NO, IDRETRY},
      {MB_ABORTRETRYIGNORE | MB_DEFBUTTON3, wxYES_NO | wxCANCEL | wxCANCEL_DEFAULT | wxICON_NONE, wxID_YES,
       IDABORT},
      {MB_RETRYCANCEL, wxOK | wxCANCEL | wxICON_NONE, wxID_OK, IDRETRY},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::Message() << "type 0x" << std::hex << row.type);
    int answer = 0;
    const ExpectMessage expect("Cannot find \"a.txt\" file.\nSecond line", "Error", row.style, row.pressed);
    wxTEST_DIALOG(answer = corlith::GetHostPrompt()->MessageBox("Cannot find \"a.txt\" file.\nSecond line",
                                                                "Error", row.type),
                  expect);
    EXPECT_EQ(answer, row.answer);
    if ((row.type & MB_TYPEMASK) == MB_ABORTRETRYIGNORE) {
      EXPECT_EQ(expect.seenYesLabel, "_Abort") << "GTK's mnemonic mark";
    }
  }
  EXPECT_TRUE(m_recording->Messages().empty()) << "the recording prompt beneath was not asked";
}

TEST_F(UiStart, MessageBoxFromAWorkerThreadShowsOnTheMainThread) {
  CORLITH_REQUIRE_DISPLAY();
  std::atomic<int> answer{0};
  std::atomic<bool> done{false};
  bool shownOnMain = false;
  class OnMain : public wxExpectModalBase<wxMessageDialog, OnMain> {
   public:
    explicit OnMain(bool& seen) : m_seen(seen) {}

   protected:
    int OnInvoked(wxMessageDialog*) const override {
      m_seen = wxIsMainThread();
      return wxID_NO;
    }

   private:
    bool& m_seen;
  };
  wxTEST_DIALOG(
      {
        std::thread worker([&] {
          answer = AfxMessageBox("from a worker", MB_YESNO);
          done = true;
        });
        const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        // The installed hooks pump wx's loop (the main thread keeps it running meanwhile).
        while (!done && std::chrono::steady_clock::now() < limit) corlith::GetDesktopHooks()->Wait(10);
        worker.join();
      },
      OnMain(shownOnMain));
  EXPECT_TRUE(shownOnMain);
  EXPECT_EQ(answer.load(), IDNO);
}

TEST(UiStartLook, DefaultButtonAndIconOfEveryStyle) {
  struct Row {
    UINT type;
    long defaultFlag;  // wxNO_DEFAULT, wxCANCEL_DEFAULT or 0
    long icon;
  };
  const Row rows[] = {
      {MB_OK | MB_DEFBUTTON2, 0, wxICON_NONE},  // past the last button: the first
      {MB_OKCANCEL | MB_DEFBUTTON2, wxCANCEL_DEFAULT, wxICON_NONE},
      {MB_ABORTRETRYIGNORE | MB_DEFBUTTON2, wxNO_DEFAULT, wxICON_NONE},
      {MB_YESNOCANCEL | MB_DEFBUTTON2 | MB_ICONSTOP, wxNO_DEFAULT, wxICON_ERROR},
      {MB_YESNO | MB_DEFBUTTON3 | MB_ICONEXCLAMATION, 0, wxICON_WARNING},
      {MB_RETRYCANCEL | MB_DEFBUTTON2, wxCANCEL_DEFAULT, wxICON_NONE},
      {0xE | MB_ICONINFORMATION, 0, wxICON_INFORMATION},  // unknown buttons: OK alone
      {MB_YESNO | 0x50, 0, wxICON_NONE},                  // unknown icon: none
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::Message() << "type 0x" << std::hex << row.type);
    const long style = MessageBoxLookOf(row.type).style;
    EXPECT_EQ(style & (wxNO_DEFAULT | wxCANCEL_DEFAULT), row.defaultFlag);
    EXPECT_EQ(style & wxICON_MASK, row.icon);
  }
  // A box without Cancel closed another way answers its default (MB_OK: IDOK).
  EXPECT_EQ(MessageBoxAnswerOf(MB_YESNO | MB_DEFBUTTON2, wxID_CANCEL), IDNO);
  EXPECT_EQ(MessageBoxAnswerOf(MB_OK, wxID_CANCEL), IDOK);
}

TEST(UiStartFilter, FrameworkFilterBecomesWxWildcard) {
  struct Row {
    const char* filter;
    const char* wildcard;
  };
  const Row rows[] = {
      {"Board (*.brd)|*.brd|All Files(*.*)|*.*||", "Board (*.brd)|*.brd|All Files(*.*)|*.*"},
      {"Text (*.txt, *.log)|*.txt;*.log||", "Text (*.txt, *.log)|*.txt;*.log"},
      {"A|*.a|B|*.b", "A|*.a|B|*.b"},  // no closing bars
      {"A|*.a||B|*.b||", "A|*.a"},     // the double bar ends the list
      {"A|*.a|B||", "A|*.a"},          // a description without patterns is dropped
      {"A|*.a|B", "A|*.a"},            // ... also at the very end
      {"|*.a||", ""},                  // empty description: nothing
      {"", ""},
      {"||", ""},
      {"Ünïcode (*.ü)|*.ü||", "Ünïcode (*.ü)|*.ü"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.filter);
    EXPECT_EQ(WildcardOfFilter(row.filter), row.wildcard);
  }
}

TEST(UiStartFilter, SaveAddsTheDefaultExtensionOnlyToANameWithout) {
  corlith::FileChooserRequest save;
  save.open = false;
  save.defaultExtension = "brd";
  struct Row {
    bool open;
    const char* extension;
    const char* path;
    const char* result;
  };
  const Row rows[] = {
      {false, "brd", "/tmp/board", "/tmp/board.brd"}, {false, ".brd", "/tmp/board", "/tmp/board.brd"},
      {false, "brd", "/tmp/board.x", "/tmp/board.x"}, {false, "brd", "/tmp.d/board", "/tmp.d/board.brd"},
      {true, "brd", "/tmp/board", "/tmp/board"},      {false, "", "/tmp/board", "/tmp/board"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.path);
    save.open = row.open;
    save.defaultExtension = row.extension;
    EXPECT_EQ(corlith::ui::WithDefaultExtension(save, row.path), row.result);
  }
}

// GTK's choosers take a path in asynchronously (the folder loads first): what they
// report settles after a few rounds of the event loop.
template <class Get>
wxString Settled(Get get, const wxString& expected = wxString()) {
  const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(3);
  wxString value = get();
  while ((expected.empty() ? value.empty() : value != expected) && std::chrono::steady_clock::now() < limit) {
    wxTheApp->Yield(true);
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    value = get();
  }
  return value;
}

// Checks what a file chooser shows and answers with `paths` (none: cancelled).
class ExpectFileDialog : public wxExpectModalBase<wxFileDialog, ExpectFileDialog> {
 public:
  struct Shown {
    wxString wildcard, title, folder, name;
    long style = 0;
    int filterIndex = 0;
  };
  ExpectFileDialog(Shown& shown, wxString path, int answer)
      : m_shown(shown), m_path(std::move(path)), m_answer(answer) {}

 protected:
  int OnInvoked(wxFileDialog* dialog) const override {
    const bool multiple = dialog->HasFlag(wxFD_MULTIPLE);
    m_shown.wildcard = dialog->GetWildcard();
    m_shown.title = dialog->GetMessage();
    m_shown.folder = dialog->GetDirectory();
    m_shown.name = multiple ? wxString() : dialog->GetFilename();
    m_shown.style = dialog->GetWindowStyle();
    m_shown.filterIndex = dialog->GetFilterIndex();
    if (m_answer == wxID_OK) {
      dialog->SetPath(m_path);
      if (dialog->HasFlag(wxFD_MULTIPLE)) {
        Settled([dialog] {
          wxArrayString paths;
          dialog->GetPaths(paths);
          return paths.empty() ? wxString() : paths[0];
        });
      } else {
        Settled([dialog] { return dialog->GetPath(); }, m_path);
      }
    }
    return m_answer;
  }

 private:
  Shown& m_shown;
  wxString m_path;
  int m_answer;
};

TEST_F(UiStart, FileChooserRequestReachesAWxFileDialog) {
  CORLITH_REQUIRE_DISPLAY();
  corlith::test::TempFolder folder("uistart");
  const std::string existing = folder.Write("board.brd", "x");
  CStringArray descriptions;
  descriptions.Add("Board");
  descriptions.Add("Netlist");
  CStringArray extensions;
  extensions.Add("brd");
  extensions.Add("net");

  ExpectFileDialog::Shown shown;
  CString chosen;
  wxTEST_DIALOG(chosen = KTUtility::GetInstance()->GetFilePathFromUser(
                    TRUE, descriptions, extensions, "board.brd", folder.Path().c_str(), nullptr, 2),
                ExpectFileDialog(shown, existing, wxID_OK));
  EXPECT_EQ(shown.wildcard, "Board (*.brd)|*.brd|Netlist (*.net)|*.net|All Files(*.*)|*.*");
  EXPECT_EQ(shown.title, "Open");
  EXPECT_EQ(shown.folder, folder.Path().string());
  EXPECT_EQ(shown.name, "board.brd");
  EXPECT_EQ(shown.filterIndex, 1) << "the second row, 1-based 2";
  EXPECT_NE(shown.style & wxFD_OPEN, 0);
  EXPECT_EQ(shown.style & wxFD_MULTIPLE, 0);
  EXPECT_EQ(chosen, existing.c_str());

  // Save: overwrite prompt from the flags, the default extension added to a bare name.
  wxTEST_DIALOG(chosen = KTUtility::GetInstance()->GetFilePathFromUser(FALSE, "Board", "brd", "",
                                                                       folder.Path().c_str()),
                ExpectFileDialog(shown, folder.PathOf("new"), wxID_OK));
  EXPECT_EQ(shown.title, "Save As");
  EXPECT_NE(shown.style & wxFD_SAVE, 0);
  EXPECT_NE(shown.style & wxFD_OVERWRITE_PROMPT, 0);
  EXPECT_EQ(chosen, folder.PathOf("new.brd").c_str());

  wxTEST_DIALOG(
      chosen = KTUtility::GetInstance()->GetFilePathFromUser(TRUE, "Board", "brd", "", folder.Path().c_str()),
      ExpectFileDialog(shown, "", wxID_CANCEL));
  EXPECT_TRUE(chosen.IsEmpty()) << "cancelled";
}

TEST_F(UiStart, MultipleFileRequestAsksForAMultipleSelection) {
  CORLITH_REQUIRE_DISPLAY();
  corlith::test::TempFolder folder("uistart");
  const std::string existing = folder.Write("a.brd", "x");
  ExpectFileDialog::Shown shown;
  CStringArray list;
  wxTEST_DIALOG(
      KTUtility::GetInstance()->GetFilePathListFromUser(list, "Board", "brd", "", folder.Path().c_str()),
      ExpectFileDialog(shown, existing, wxID_OK));
  EXPECT_NE(shown.style & wxFD_MULTIPLE, 0);
  ASSERT_EQ(list.GetSize(), 1);
  EXPECT_EQ(list[0], existing.c_str());
}

TEST_F(UiStart, FolderChooserShowsTheTitleAndAnswersTheChosenFolder) {
  CORLITH_REQUIRE_DISPLAY();
  corlith::test::TempFolder folder("uistart");
  std::filesystem::create_directory(folder.Path() / "sub");
  class ExpectDir : public wxExpectModalBase<wxDirDialog, ExpectDir> {
   public:
    ExpectDir(wxString& title, wxString answer) : m_title(title), m_answer(std::move(answer)) {}

   protected:
    int OnInvoked(wxDirDialog* dialog) const override {
      m_title = dialog->GetMessage();
      // GTK's dialog takes the path from its widget when the person accepts; the testing
      // hook accepts without the widget, so the answer is put where acceptance puts it.
      dialog->wxDirDialogBase::SetPath(m_answer);
      return wxID_OK;
    }

   private:
    wxString& m_title;
    wxString m_answer;
  };
  wxString title;
  CString chosen;
  wxTEST_DIALOG(
      chosen = KTUtility::GetInstance()->GetDirectoryFromUser("Pick the data folder", folder.Path().c_str()),
      ExpectDir(title, folder.PathOf("sub")));
  EXPECT_EQ(title, "Pick the data folder");
  EXPECT_EQ(chosen, folder.PathOf("sub").c_str());
}

TEST_F(UiStart, WaitDeliversEventsOnTheMainThreadAndOnlySleepsElsewhere) {
  CORLITH_REQUIRE_DISPLAY();
  corlith::test::Pump(20);
  bool ran = false;
  wxTheApp->CallAfter([&] { ran = true; });
  const auto start = std::chrono::steady_clock::now();
  corlith::GetDesktopHooks()->Wait(150);
  const auto elapsed = std::chrono::steady_clock::now() - start;
  EXPECT_TRUE(ran) << "an event queued before Wait ran during it";
  EXPECT_GE(elapsed, std::chrono::milliseconds(150));
  EXPECT_LT(elapsed, std::chrono::milliseconds(1000));

  bool ranOnWorker = false;
  wxTheApp->CallAfter([&] { ranOnWorker = true; });
  std::thread([] {
    corlith::GetDesktopHooks()->Wait(50);
    corlith::GetDesktopHooks()->ProcessWindowMessage();
  }).join();
  EXPECT_FALSE(ranOnWorker) << "a worker's Wait must not run the main thread's events";
  corlith::GetDesktopHooks()->ProcessWindowMessage();
  EXPECT_TRUE(ranOnWorker) << "ProcessWindowMessage delivers what is waiting";
}

TEST_F(UiStart, ReleaseMouseCaptureReleasesOnlyFromTheMainThread) {
  CORLITH_REQUIRE_DISPLAY();
  auto* frame = new wxFrame(nullptr, wxID_ANY, "capture");
  frame->Show();
  corlith::test::Pump(50);
  frame->CaptureMouse();
  ASSERT_EQ(wxWindow::GetCapture(), frame);
  std::thread([] { corlith::GetDesktopHooks()->ReleaseMouseCapture(); }).join();
  EXPECT_EQ(wxWindow::GetCapture(), frame) << "a worker holds no capture to release";
  corlith::GetDesktopHooks()->ReleaseMouseCapture();
  EXPECT_EQ(wxWindow::GetCapture(), nullptr);
  corlith::GetDesktopHooks()->SetArrowCursor();
  wxSetCursor(wxNullCursor);
  frame->Destroy();
  corlith::test::Pump(20);
}

TEST(UiStartMenu, CMenuOperationsLandOnTheRealWxMenu) {
  CORLITH_REQUIRE_DISPLAY();
  wxMenu wx;
  wx.Append(100, "&Host item\tCtrl+H");
  CMenu menu(std::make_unique<corlith::ui::WxMenu>(&wx));

  EXPECT_TRUE(menu.AppendMenu(MF_STRING, 101, "&Open\tCtrl+O"));
  EXPECT_TRUE(menu.AppendMenu(MF_SEPARATOR));
  EXPECT_TRUE(menu.AppendMenu(MF_GRAYED, 102, "Save && E&xit"));
  EXPECT_TRUE(menu.InsertMenu(101, MF_BYCOMMAND | MF_CHECKED, 103, "&Recent"));
  EXPECT_TRUE(menu.AppendMenu(MF_DISABLED, 104, nullptr));

  struct Row {
    int position;
    int id;             // wxID_SEPARATOR for a separator
    const char* label;  // as wx holds it
    bool enabled;
    bool checked;
  };
  const Row rows[] = {
      {0, 100, "&Host item\tCtrl+H", true, false}, {1, 103, "&Recent", true, true},
      {2, 101, "&Open\tCtrl+O", true, false},      {3, wxID_SEPARATOR, "", true, false},
      {4, 102, "Save && E&xit", false, false},     {5, 104, " ", false, false},
  };
  ASSERT_EQ(wx.GetMenuItemCount(), std::size(rows));
  for (const Row& row : rows) {
    SCOPED_TRACE(row.position);
    const wxMenuItem* item = wx.FindItemByPosition(static_cast<std::size_t>(row.position));
    EXPECT_EQ(item->GetId(), row.id);
    if (row.id == wxID_SEPARATOR) {
      EXPECT_TRUE(item->IsSeparator());
      continue;
    }
    EXPECT_EQ(item->GetItemLabel(), row.label);
    EXPECT_EQ(item->GetItemLabelText(), wxMenuItem::GetLabelText(row.label));
    EXPECT_EQ(item->IsEnabled(), row.enabled);
    EXPECT_EQ(item->IsCheckable() && item->IsChecked(), row.checked);
  }

  // Read back through CMenu: the host's own item, and exact bits and texts written.
  CString text;
  EXPECT_EQ(menu.GetMenuString(100, text, MF_BYCOMMAND), 17);
  EXPECT_EQ(text, "&Host item\tCtrl+H");
  EXPECT_EQ(menu.GetMenuState(104, MF_BYCOMMAND), MF_DISABLED);
  EXPECT_EQ(menu.GetMenuString(104, text, MF_BYCOMMAND), 0) << "an empty text reads back empty";
  EXPECT_EQ(menu.GetMenuState(3, MF_BYPOSITION), MF_SEPARATOR);
  EXPECT_EQ(menu.GetMenuItemID(3), 0u);

  // A host-made disabled item reads as grayed; enabling it reaches wx.
  wx.Enable(100, false);
  EXPECT_EQ(menu.EnableMenuItem(100, MF_BYCOMMAND | MF_ENABLED), MF_GRAYED);
  EXPECT_TRUE(wx.IsEnabled(100));
  // Checking a plain item turns it into a check item in place, keeping id and text.
  EXPECT_EQ(menu.CheckMenuItem(101, MF_BYCOMMAND | MF_CHECKED), MF_UNCHECKED);
  EXPECT_EQ(wx.FindItemByPosition(2)->GetId(), 101);
  EXPECT_TRUE(wx.IsChecked(101));
  EXPECT_EQ(wx.GetLabel(101), "&Open\tCtrl+O");
  EXPECT_EQ(menu.CheckMenuItem(103, MF_BYCOMMAND | MF_UNCHECKED), MF_CHECKED);
  EXPECT_FALSE(wx.IsChecked(103));
  // Modify a separator into an item, delete by command.
  EXPECT_TRUE(menu.ModifyMenu(3, MF_BYPOSITION, 105, "&Print"));
  EXPECT_EQ(wx.FindItemByPosition(3)->GetId(), 105);
  EXPECT_TRUE(menu.DeleteMenu(102, MF_BYCOMMAND));
  EXPECT_EQ(wx.FindItem(102), nullptr);
  EXPECT_EQ(wx.GetMenuItemCount(), 5u);
}

TEST(UiStartMenu, UpdatePassEnablesByHandlerOnTheRealWxMenu) {
  CORLITH_REQUIRE_DISPLAY();
  wxMenu wx;
  CMenu menu(std::make_unique<corlith::ui::WxMenu>(&wx));
  menu.AppendMenu(MF_STRING, 1, "&One");
  menu.AppendMenu(MF_SEPARATOR);
  menu.AppendMenu(MF_GRAYED, 2, "&Two");
  menu.AppendMenu(MF_STRING, 3, "T&hree");
  corlith::UpdateMenuCommandUI(
      menu,
      [](CCmdUI& ui) {
        if (ui.m_nID == 1) return FALSE;  // no handler
        if (ui.m_nID == 3) {
          ui.SetCheck(1);
          ui.SetText("Three &checked");
        }
        return TRUE;
      },
      TRUE);
  EXPECT_FALSE(wx.IsEnabled(1));
  EXPECT_TRUE(wx.IsEnabled(2));
  EXPECT_TRUE(wx.IsEnabled(3));
  EXPECT_TRUE(wx.IsChecked(3));
  EXPECT_EQ(wx.GetLabel(3), "Three &checked");
}

}  // namespace
