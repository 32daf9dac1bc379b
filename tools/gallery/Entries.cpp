#include "Gallery.h"

#include <corlith/ui/CheckDataInputDlg.h>
#include <corlith/ui/CorlithUi.h>
#include <corlith/ui/DialogTemplate.h>
#include <corlith/ui/ExportDialogs.h>
#include <corlith/ui/Image.h>
#include <corlith/ui/LListBox.h>
#include <corlith/ui/OrvaneDialogs.h>
#include <corlith/ui/ProgressBar.h>
#include <corlith/ui/ResizableScrollDialog.h>

#include <wx/artprov.h>
#include <wx/combobox.h>
#include <wx/dcbuffer.h>
#include <wx/dialog.h>
#include <wx/frame.h>
#include <wx/gauge.h>
#include <wx/glcanvas.h>
#include <wx/panel.h>
#include <wx/sizer.h>
#include <wx/statbmp.h>
#include <wx/stattext.h>
#include <wx/string.h>
#include <wx/utils.h>

#include <GL/gl.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>

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

// A small board in millimetres (y up) on the snap grid: the outline, a dot at every grid
// node, a few pads, and a cursor point with the node CLGrid snaps it to. The cursor
// follows the mouse.
class SnapGridBoard : public wxWindow {
 public:
  explicit SnapGridBoard(wxWindow* parent)
      : wxWindow(parent, wxID_ANY, wxDefaultPosition, wxDefaultSize, wxFULL_REPAINT_ON_RESIZE) {
    SetBackgroundStyle(wxBG_STYLE_PAINT);
    SetInitialSize(FromDIP(wxSize(kMargin * 2 + static_cast<int>(kWidth * kScale),
                                  kMargin * 2 + kLegend + static_cast<int>(kHeight * kScale))));
    Bind(wxEVT_PAINT, &SnapGridBoard::OnPaint, this);
    Bind(wxEVT_MOTION, [this](wxMouseEvent& event) {
      m_cursor = ToBoard(event.GetPosition());
      Refresh();
    });
  }

 private:
  static constexpr double kWidth = 24.0;  // mm
  static constexpr double kHeight = 14.0;
  static constexpr double kScale = 28.0;  // pixels per mm, before DIP scaling
  static constexpr int kMargin = 16;
  static constexpr int kLegend = 28;

  wxPoint ToScreen(const CPointD& p) const {
    return {FromDIP(kMargin + static_cast<int>(std::lround(p.x * kScale))),
            FromDIP(kMargin + static_cast<int>(std::lround((kHeight - p.y) * kScale)))};
  }
  CPointD ToBoard(const wxPoint& pixel) const {
    return {(ToDIP(pixel.x) - kMargin) / kScale, kHeight - (ToDIP(pixel.y) - kMargin) / kScale};
  }

  void OnPaint(wxPaintEvent& /*event*/) {
    wxAutoBufferedPaintDC dc(this);
    dc.SetBackground(wxBrush(wxColour(24, 40, 28)));
    dc.Clear();
    const wxPoint topLeft = ToScreen(CPointD(0.0, kHeight));
    const wxPoint bottomRight = ToScreen(CPointD(kWidth, 0.0));
    dc.SetPen(wxPen(wxColour(230, 200, 60), FromDIP(2)));
    dc.SetBrush(wxBrush(wxColour(20, 90, 45)));
    dc.DrawRectangle(wxRect(topLeft, bottomRight));

    // Node n of an axis is n * pitch, so no error builds up along a row.
    dc.SetPen(*wxTRANSPARENT_PEN);
    dc.SetBrush(wxBrush(wxColour(170, 215, 180)));
    const int dot = FromDIP(2);
    const int columns = static_cast<int>(kWidth / m_grid.GetPitchX());
    const int rows = static_cast<int>(kHeight / m_grid.GetPitchY());
    for (int i = 0; i <= columns; ++i)
      for (int j = 0; j <= rows; ++j) {
        const wxPoint at = ToScreen(CPointD(i * m_grid.GetPitchX(), j * m_grid.GetPitchY()));
        dc.DrawRectangle(at.x - dot / 2, at.y - dot / 2, dot, dot);
      }

    dc.SetBrush(wxBrush(wxColour(205, 160, 90)));
    const CPointD pads[] = {{3.0, 3.0}, {3.0, 5.5}, {3.0, 8.0}, {3.0, 10.5}, {20.5, 11.0}, {20.5, 4.0}};
    const int pad = FromDIP(static_cast<int>(0.8 * kScale));
    for (const CPointD& centre : pads) {
      const wxPoint at = ToScreen(centre);
      dc.DrawRectangle(at.x - pad / 2, at.y - pad / 2, pad, pad);
    }

    const CPointD snapped = m_grid.GetSnapPoint(m_cursor);
    const wxPoint cursor = ToScreen(m_cursor);
    const wxPoint node = ToScreen(snapped);
    dc.SetPen(wxPen(wxColour(255, 255, 255), 1, wxPENSTYLE_DOT));
    dc.DrawLine(cursor, node);
    dc.SetPen(wxPen(wxColour(240, 70, 70), FromDIP(2)));
    const int arm = FromDIP(7);
    dc.DrawLine(cursor.x - arm, cursor.y, cursor.x + arm + 1, cursor.y);
    dc.DrawLine(cursor.x, cursor.y - arm, cursor.x, cursor.y + arm + 1);
    dc.SetPen(wxPen(wxColour(90, 230, 255), FromDIP(2)));
    dc.SetBrush(*wxTRANSPARENT_BRUSH);
    dc.DrawCircle(node, FromDIP(5));

    int decimalX = 0;
    int decimalY = 0;
    m_grid.GetGridDecimalPoint(decimalX, decimalY);
    // FromDouble always writes a decimal point, whatever the locale.
    const wxString legend = "pitch " + wxString::FromDouble(m_grid.GetPitchX(), decimalX) +
                            wxString::FromUTF8(" mm \u2192 snapped (") +
                            wxString::FromDouble(snapped.x, decimalX) + ", " +
                            wxString::FromDouble(snapped.y, decimalY) + ")";
    dc.SetTextForeground(wxColour(240, 240, 240));
    dc.SetFont(GetFont());
    dc.DrawText(legend, FromDIP(kMargin), bottomRight.y + FromDIP(8));
  }

  CLGrid m_grid{0.5, 0.5};
  CPointD m_cursor{12.62, 7.74};
};

wxWindow* ShowSnapGrid(wxWindow* owner) {
  auto* frame = new wxFrame(owner, wxID_ANY, "Snap grid");
  auto* sizer = new wxBoxSizer(wxVERTICAL);
  sizer->Add(new SnapGridBoard(frame), wxSizerFlags(1).Expand());
  frame->SetSizerAndFit(sizer);
  frame->Show();
  return frame;
}

// A board drawn with OpenGL and, beside it, the picture CKTImage saves of that view
// (read back from the GL context and written as JPEG), loaded again and shown.
class OpenGLBoard : public wxGLCanvas {
 public:
  OpenGLBoard(wxWindow* parent, wxStaticBitmap* capture)
      : wxGLCanvas(parent, Attributes(), wxID_ANY, wxDefaultPosition, wxSize(kWidth, kHeight)),
        m_capture(capture) {
    Bind(wxEVT_PAINT, &OpenGLBoard::OnPaint, this);
  }

  static constexpr int kWidth = 260;
  static constexpr int kHeight = 170;

 private:
  static wxGLAttributes Attributes() {
    wxGLAttributes attributes;
    attributes.PlatformDefaults().RGBA().DoubleBuffer().Depth(16).EndList();
    return attributes;
  }

  static void Quad(float x0, float y0, float x1, float y1) {
    glVertex2f(x0, y0);
    glVertex2f(x1, y0);
    glVertex2f(x1, y1);
    glVertex2f(x0, y1);
  }

  void OnPaint(wxPaintEvent& /*event*/) {
    const wxPaintDC paint(this);
    // The context can be made only once the view is on the screen.
    if (!m_context) m_context = std::make_unique<wxGLContext>(this);
    if (!m_context->IsOK() || !m_context->SetCurrent(*this)) return;
    glViewport(0, 0, kWidth, kHeight);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(0, kWidth, kHeight, 0, -1, 1);  // pixels, top row first
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glClearColor(0.09F, 0.16F, 0.11F, 1.0F);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glBegin(GL_QUADS);
    glColor3ub(20, 90, 45);  // the board
    Quad(15, 15, 245, 155);
    glColor3ub(205, 160, 90);  // pads
    for (float row = 0.0F; row < 4.0F; row += 1.0F) Quad(35, 35.0F + row * 28, 55, 55.0F + row * 28);
    Quad(200, 40, 225, 65);
    Quad(200, 110, 225, 135);
    glColor3ub(70, 110, 220);  // a chip
    Quad(100, 60, 160, 110);
    glEnd();
    glLineWidth(3);
    glBegin(GL_LINES);
    glColor3ub(230, 200, 60);  // traces
    for (float row = 0.0F; row < 4.0F; row += 1.0F) {
      glVertex2f(55, 45.0F + row * 28);
      glVertex2f(100, 70.0F + row * 10);
    }
    glVertex2f(160, 75);
    glVertex2f(200, 52);
    glVertex2f(160, 95);
    glVertex2f(200, 122);
    glEnd();
    glLineWidth(2);
    glBegin(GL_LINE_LOOP);
    glColor3ub(240, 240, 240);  // the outline
    Quad(15, 15, 245, 155);
    glEnd();
    if (!m_captured) {
      // Read from the back buffer, before the swap.
      const std::filesystem::path jpeg =
          std::filesystem::temp_directory_path() /
          ("corlith-gallery-opengl-" + std::to_string(wxGetProcessId()) + ".jpg");
      if (CKTImage::SaveToImageFromOpenGLView(CString(jpeg.string().c_str()), nullptr,
                                              CRect(0, 0, kWidth, kHeight)) == 1) {
        wxImage picture;
        if (picture.LoadFile(jpeg.string(), wxBITMAP_TYPE_JPEG)) {
          m_capture->SetBitmap(wxBitmap(picture));
          m_captured = true;
        }
      }
      std::error_code ignored;
      std::filesystem::remove(jpeg, ignored);
    }
    SwapBuffers();
  }

  wxStaticBitmap* m_capture;
  std::unique_ptr<wxGLContext> m_context;
  bool m_captured = false;
};

wxWindow* ShowOpenGLView(wxWindow* owner) {
  auto* frame = new wxFrame(owner, wxID_ANY, "OpenGL view and its capture");
  auto* panel = new wxPanel(frame);
  auto* capture = new wxStaticBitmap(panel, wxID_ANY, wxBitmap(OpenGLBoard::kWidth, OpenGLBoard::kHeight));
  auto* view = new OpenGLBoard(panel, capture);
  auto* columns = new wxBoxSizer(wxHORIZONTAL);
  const auto column = [panel, columns](wxWindow* window, const char* title) {
    auto* sizer = new wxBoxSizer(wxVERTICAL);
    sizer->Add(new wxStaticText(panel, wxID_ANY, title), wxSizerFlags().Border(wxBOTTOM, 4));
    sizer->Add(window);
    columns->Add(sizer, wxSizerFlags().Border(wxALL, 10));
  };
  column(view, "OpenGL view");
  column(capture, "Its capture (JPEG, read back)");
  panel->SetSizer(columns);
  auto* outer = new wxBoxSizer(wxVERTICAL);
  outer->Add(panel, wxSizerFlags(1).Expand());
  frame->SetSizerAndFit(outer);
  frame->Show();
  return frame;
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
      {"snap-grid", ShowSnapGrid, {}},
      {"opengl-view", ShowOpenGLView, {}},
  };
  return entries;
}

}  // namespace corlith::gallery
