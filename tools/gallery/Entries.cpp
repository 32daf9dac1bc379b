#include "Gallery.h"

#include <corlith/ui/CheckDataInputDlg.h>
#include <corlith/ui/CorlithUi.h>
#include <corlith/ui/DialogTemplate.h>
#include <corlith/ui/ExportDialogs.h>
#include <corlith/ui/LListBox.h>
#include <corlith/ui/OrvaneDialogs.h>
#include <corlith/ui/ProgressBar.h>
#include <corlith/ui/ResizableScrollDialog.h>

#include <wx/artprov.h>
#include <wx/combobox.h>
#include <wx/dialog.h>
#include <wx/frame.h>
#include <wx/gauge.h>
#include <wx/sizer.h>
#include <wx/string.h>
#include <wx/utils.h>

#include <array>
#include <cstdint>
#include <filesystem>
#include <memory>

namespace corlith::gallery {
namespace {

using corlith::ui::DialogItem;
using corlith::ui::DialogItemKind;
using corlith::ui::DialogTemplate;

wxIcon SampleIcon() { return wxArtProvider::GetIcon(wxART_INFORMATION, wxART_FRAME_ICON, wxSize(16, 16)); }

// A modeless CDialog-derived window of the library, built and shown.
template <class Dialog>
wxWindow* ShowDialog(std::unique_ptr<Dialog> dialog, wxWindow* owner) {
  CWnd parent(owner);
  if (!dialog->Create(owner != nullptr ? &parent : nullptr)) return nullptr;
  dialog->Show();
  return dialog.release();  // the window owns itself now: Destroy() ends it
}

// A tall settings form, so that the scrolling dialog has something to scroll.
constexpr std::array kScrollItems{
    DialogItem{DialogItemKind::GroupBox, 100, "Board", 7, 7, 176, 62, 0, corlith::ui::kTopLeft,
               corlith::ui::kTopRight},
    DialogItem{DialogItemKind::Label, 101, "Name:", 14, 20, 50, 8},
    DialogItem{DialogItemKind::Edit, 102, "Main board rev. C", 66, 18, 110, 14, 0, corlith::ui::kTopLeft,
               corlith::ui::kTopRight},
    DialogItem{DialogItemKind::Label, 103, "Layers:", 14, 38, 50, 8},
    DialogItem{DialogItemKind::ComboBox, 104, "", 66, 36, 60, 14},
    DialogItem{DialogItemKind::CheckBox, 105, "Check the drill data", 14, 54, 120, 10},
    DialogItem{DialogItemKind::GroupBox, 110, "Report", 7, 76, 176, 62, 0, corlith::ui::kTopLeft,
               corlith::ui::kTopRight},
    DialogItem{DialogItemKind::Label, 111, "Folder:", 14, 89, 50, 8},
    DialogItem{DialogItemKind::Edit, 112, "/home/pcb/reports", 66, 87, 110, 14, 0, corlith::ui::kTopLeft,
               corlith::ui::kTopRight},
    DialogItem{DialogItemKind::CheckBox, 113, "Open the report when done", 14, 107, 120, 10},
    DialogItem{DialogItemKind::CheckBox, 114, "Keep the previous reports", 14, 121, 120, 10},
    // Anchored with the content, so that the buttons scroll into view with it.
    DialogItem{DialogItemKind::DefaultButton, 1, "OK", 78, 148, 50, 14},
    DialogItem{DialogItemKind::Button, 2, "Cancel", 133, 148, 50, 14},
};
constexpr DialogTemplate kScrollTemplate{9100, 200,  168,  "Scrolling settings", "Tahoma",
                                         8,    true, true, kScrollItems};

wxWindow* ShowScrollDialog(wxWindow* owner) {
  auto dialog = std::make_unique<CResizableScrollDialog>(kScrollTemplate);
  CResizableScrollDialog* shown = dialog.get();
  if (ShowDialog(std::move(dialog), owner) == nullptr) return nullptr;
  if (auto* layers = dynamic_cast<wxComboBox*>(shown->GetDlgItem(104))) {
    layers->Append({"2", "4", "6", "8"});
    layers->SetSelection(1);
  }
  // Shorter than its design, so the bar is active and the content has moved a little.
  const wxSize design = shown->ConvertDialogToPixels(wxSize(kScrollTemplate.cx, kScrollTemplate.cy));
  shown->SetClientSize(design.x, design.y * 2 / 3);
  // Once the new size has reached the dialog (GTK sizes asynchronously).
  shown->CallAfter([shown] { shown->OnVScroll(SB_PAGEDOWN, 0, shown->GetVScrollBar()); });
  return shown;
}

wxWindow* ShowListBox(wxWindow* owner) {
  auto* frame = new wxDialog(owner, wxID_ANY, "CLListBox", wxDefaultPosition, wxDefaultSize,
                             wxDEFAULT_DIALOG_STYLE | wxRESIZE_BORDER);
  auto* list = new CLListBox(frame, wxID_ANY, wxDefaultPosition, frame->FromDIP(wxSize(260, 200)), 0, nullptr,
                             wxLB_EXTENDED);
  for (int i = 1; i <= 40; ++i) list->Append(wxString::Format("Net %02d  GND_%d", i, i * 7));
  list->SetSelection(13);
  list->SetSelection(15);
  list->EnsureVisible(12);
  auto* sizer = new wxBoxSizer(wxVERTICAL);
  sizer->Add(list, wxSizerFlags(1).Expand().Border(wxALL, 8));
  frame->SetSizerAndFit(sizer);
  frame->Show();
  return frame;
}

// The percentage bar's owner: the bar closes with it (the bar itself is a window of the
// helper program).
class ProgressOwner : public wxFrame {
 public:
  explicit ProgressOwner(wxWindow* owner)
      : wxFrame(owner, wxID_ANY, "Progress bar owner", wxDefaultPosition, wxSize(480, 240)) {}
  ~ProgressOwner() override { CGProgressBar::instance().Close(); }
  ProgressOwner(const ProgressOwner&) = delete;
  ProgressOwner& operator=(const ProgressOwner&) = delete;
  CWnd m_handle{this};
};

wxWindow* ShowProgressBar(wxWindow* owner) {
  auto* frame = new ProgressOwner(owner);
  frame->Show();
  frame->Update();
  CGProgressBar& bar = CGProgressBar::instance();
  bar.Show(&frame->m_handle, "Checking the board");
  if (bar.GetHWnd() == nullptr) {
    frame->Destroy();
    return nullptr;
  }
  bar.SetPos(40);
  return frame;
}

// The bar's window belongs to the helper program: the X server's copy of it is taken.
bool CaptureProgressBar(wxWindow* /*owner*/, const std::filesystem::path& png) {
  const auto id = reinterpret_cast<std::uintptr_t>(CGProgressBar::instance().GetHWnd());
  if (id == 0) return false;
  wxMilliSleep(200);
  const wxString command = wxString::Format("import -window 0x%llx %s", static_cast<unsigned long long>(id),
                                            wxString(png.string()));
  return wxExecute(command, wxEXEC_SYNC | wxEXEC_HIDE_CONSOLE | wxEXEC_NODISABLE) == 0;
}

wxWindow* ShowMarquee(wxWindow* owner) {
  auto dialog = std::make_unique<CGMarqueeProgressBar>();
  CGMarqueeProgressBar* shown = dialog.get();
  if (ShowDialog(std::move(dialog), owner) == nullptr) return nullptr;
  return shown;
}

// A board's usage tables: nets and check items with a regular pattern of flags, and
// a search for the supply nets applied.
wxWindow* ShowCheckDataInput(wxWindow* owner) {
  auto dialog = std::make_unique<CCheck_Data_Input_Setting_Dlg>();
  dialog->m_strTitle = "Check Data Input Settings";
  static const char* const kItems[] = {"Trace Width",        "Clearance",       "Via Drill",
                                       "Annular Ring",       "Acid Trap",       "Copper Sliver",
                                       "Solder Mask Sliver", "Silk over Pad",   "Impedance",
                                       "Length Matching",    "Return Path Gap", "Thermal Relief"};
  for (const char* item : kItems) dialog->m_arrCheckItemNames.Add(item);
  static const char* const kNets[] = {"GND", "VDD_3V3", "VDD_1V8", "VDD_CORE", "CLK_25M", "USB_DP", "USB_DN"};
  for (int i = 0; i < 60; ++i) {
    const char* base = kNets[i % 7];
    dialog->m_arrNetUsageRowNames.Add(i < 7 ? CString(base)
                                            : CString(base) + "_" + CString(std::to_string(i).c_str()));
    CUsageFlagArray flags;
    for (int c = 0; c < static_cast<int>(std::size(kItems)); ++c) flags.Add((i + c) % 3 == 0 ? 1 : 0);
    dialog->m_arrNetUsageFlags.Add(flags);
  }
  CCheck_Data_Input_Setting_Dlg* shown = dialog.get();
  if (ShowDialog(std::move(dialog), owner) == nullptr) return nullptr;
  shown->SetDlgItemText(7024, "vdd");
  shown->OnApply();
  return shown;
}

wxWindow* ShowExportDialog(wxWindow* owner) {
  auto dialog = std::make_unique<CExportStandard_Dlg>();
  dialog->SetInitTitle("Export Drill Report");
  dialog->SetInitPathStaticText("Report file :");
  dialog->SetInitDefaultPath("/home/pcb/drill.csv");
  dialog->AddExtInfo("Comma-separated values");
  dialog->AddExt("csv");
  CExportStandard_Dlg* shown = dialog.get();
  if (ShowDialog(std::move(dialog), owner) == nullptr) return nullptr;
  shown->GetProgressBar()->SetValue(40);
  shown->SetProcText("Converting layer 3 of 8 ...");
  return shown;
}

}  // namespace

// Made on first use: the table holds std::functions, which may throw when made.
std::span<const Entry> Entries() {
  static const Entry entries[] = {
      {"orvane-about",
       [](wxWindow* owner) {
         return ShowDialog(std::make_unique<COrvaneAboutDlg>(SampleIcon(), CString("Corlith Gallery")),
                           owner);
       },
       {}},
      {"orvane-message-box",
       [](wxWindow* owner) {
         auto dialog = std::make_unique<COrvaneMessageBoxDlg>(SampleIcon(), CString("Orvane"));
         dialog->m_strMessage =
             "The check finished with 3 warnings. The manual explains each of them: "
             "https://www.example.com/orvane/manual";
         return ShowDialog(std::move(dialog), owner);
       },
       {}},
      {"resizable-scroll-dialog", ShowScrollDialog, {}},
      {"llistbox", ShowListBox, {}},
      {"progress-bar", ShowProgressBar, CaptureProgressBar},
      {"marquee-progress-bar", ShowMarquee, {}},
      {"check-data-input", ShowCheckDataInput, {}},
      {"export-standard", ShowExportDialog, {}},
      {"confirm-save-check",
       [](wxWindow* owner) { return ShowDialog(std::make_unique<CConfirm_Save_Check_Dlg>(), owner); },
       {}},
  };
  return entries;
}

}  // namespace corlith::gallery
