#include <corlith/platform/Desktop.h>
#include <corlith/ui/OrvaneDialogs.h>

#include <wx/button.h>
#include <wx/dcmemory.h>
#include <wx/graphics.h>
#include <wx/statbmp.h>
#include <wx/textctrl.h>

#include <array>
#include <memory>
#include <string>
#include <utility>

namespace corlith::ui {
namespace {

// The picture is drawn in a 129 × 190 design space (the picture item's own units) and
// scaled to the pixels it gets.
constexpr double kDesignWidth = 129.0;
constexpr double kDesignHeight = 190.0;

// Colours as plain numbers: a wxColour made at load time could throw before main.
struct Rgb {
  unsigned char r, g, b;
  operator wxColour() const { return {r, g, b}; }  // NOLINT(google-explicit-constructor)
};

constexpr Rgb kBackdropTop{14, 24, 40};
constexpr Rgb kBackdropBottom{24, 56, 84};
constexpr Rgb kBoard{24, 104, 58};
constexpr Rgb kBoardEdge{92, 170, 110};
constexpr Rgb kCopper{218, 166, 64};
constexpr Rgb kHole{20, 30, 24};
constexpr Rgb kChip{28, 28, 32};
constexpr Rgb kPin{196, 200, 206};
constexpr Rgb kSilk{240, 244, 240};

void Trace(wxGraphicsContext& gc, std::initializer_list<std::pair<double, double>> points) {
  wxGraphicsPath path = gc.CreatePath();
  bool first = true;
  for (const auto& [x, y] : points) {
    if (first) {
      path.MoveToPoint(x, y);
      first = false;
    } else {
      path.AddLineToPoint(x, y);
    }
  }
  gc.StrokePath(path);
}

void Pad(wxGraphicsContext& gc, double x, double y, double radius) {
  gc.SetPen(wxNullPen);
  gc.SetBrush(wxBrush(kCopper));
  gc.DrawEllipse(x - radius, y - radius, 2 * radius, 2 * radius);
  gc.SetBrush(wxBrush(kHole));
  gc.DrawEllipse(x - radius / 2.5, y - radius / 2.5, radius / 1.25, radius / 1.25);
}

void DrawBoard(wxGraphicsContext& gc) {
  gc.SetBrush(gc.CreateLinearGradientBrush(0, 0, 0, kDesignHeight, kBackdropTop, kBackdropBottom));
  gc.SetPen(wxNullPen);
  gc.DrawRectangle(0, 0, kDesignWidth, kDesignHeight);

  gc.SetBrush(wxBrush(kBoard));
  gc.SetPen(wxPen(kBoardEdge, 1));
  gc.DrawRoundedRectangle(10, 14, 109, 132, 6);
  for (const auto& [x, y] :
       std::array<std::pair<double, double>, 4>{{{17, 21}, {112, 21}, {17, 139}, {112, 139}}}) {
    Pad(gc, x, y, 3.2);
  }

  // Copper traces with 45-degree bends, from the header at the bottom to the chip.
  gc.SetPen(wxPen(kCopper, 2));
  const std::array<double, 6> header{34, 46, 58, 70, 82, 94};
  for (std::size_t i = 0; i < header.size(); ++i) {
    const double x = header[i];
    const double pinY = 62 + 8.0 * static_cast<double>(i % 3);
    if (i < 3) {
      Trace(gc, {{x, 128}, {x, 110}, {28, 110 - (x - 28)}, {28, pinY + 12}, {40, pinY}, {46, pinY}});
    } else {
      Trace(gc, {{x, 128}, {x, 112}, {101, 112 - (101 - x)}, {101, pinY + 12}, {89, pinY}, {83, pinY}});
    }
  }
  gc.SetPen(gc.CreatePen(wxGraphicsPenInfo(kCopper).Width(1.4)));
  Trace(gc, {{64, 54}, {64, 40}, {76, 28}, {98, 28}});
  Trace(gc, {{58, 54}, {58, 36}, {48, 26}, {30, 26}});
  Trace(gc, {{70, 54}, {70, 44}, {80, 34}, {104, 34}, {104, 48}});
  for (const auto& [x, y] :
       std::array<std::pair<double, double>, 4>{{{98, 28}, {30, 26}, {104, 48}, {50, 120}}}) {
    Pad(gc, x, y, 2.4);
  }

  // The chip: a dark package with pins on both long sides and a pin-1 mark.
  gc.SetPen(wxNullPen);
  gc.SetBrush(wxBrush(kPin));
  for (int i = 0; i < 5; ++i) {
    const double y = 60 + 8.0 * i;
    gc.DrawRectangle(43, y, 6, 3);
    gc.DrawRectangle(80, y, 6, 3);
  }
  gc.SetBrush(wxBrush(kChip));
  gc.DrawRoundedRectangle(48, 54, 33, 46, 2);
  gc.SetBrush(wxBrush(wxColour(90, 90, 96)));
  gc.DrawEllipse(52, 58, 4, 4);

  for (const double x : header) Pad(gc, x, 128, 3.6);

  gc.SetFont(wxFont(wxFontInfo(13).Bold().FaceName("DejaVu Sans")), kSilk);
  double width = 0;
  double height = 0;
  gc.GetTextExtent("TESSEL", &width, &height);
  gc.DrawText("TESSEL", (kDesignWidth - width) / 2, 152);
  gc.SetFont(wxFont(wxFontInfo(8).FaceName("DejaVu Sans")), kBoardEdge);
  gc.GetTextExtent("PCB DESIGN", &width, &height);
  gc.DrawText("PCB DESIGN", (kDesignWidth - width) / 2, 172);
}

}  // namespace

wxBitmap MakeOrvaneProductPicture(const wxSize& size) {
  if (size.x <= 0 || size.y <= 0) return {};
  wxBitmap bitmap(size, 24);
  wxMemoryDC memory(bitmap);
  {
    const std::unique_ptr<wxGraphicsContext> gc(wxGraphicsContext::Create(memory));
    if (gc) {
      gc->Scale(size.x / kDesignWidth, size.y / kDesignHeight);
      DrawBoard(*gc);
    }
  }
  memory.SelectObject(wxNullBitmap);
  return bitmap;
}

}  // namespace corlith::ui

COrvaneAboutDlg::COrvaneAboutDlg(wxIcon hIcon, CString strAppName)
    : CDialog(corlith::ui::kOrvaneAboutTemplate),
      m_hIcon(std::move(hIcon)),
      m_strAppName(std::move(strAppName)) {}

COrvaneAboutDlg::COrvaneAboutDlg(CWnd* pParent) : CDialog(corlith::ui::kOrvaneAboutTemplate, pParent) {}

BOOL COrvaneAboutDlg::OnInitDialog() {
  CDialog::OnInitDialog();
  m_font = GetFont();
  m_btnOK = dynamic_cast<wxButton*>(GetDlgItem(IDOK));
  SetWindowText(CString("About ") + m_strAppName);
  if (m_hIcon.IsOk()) SetIcon(m_hIcon);

  SetDlgItemText(corlith::ui::IDC_ABOUT_APPLICATION, m_strAppName);
  SetDlgItemText(corlith::ui::IDC_ABOUT_VERSION,
                 CString(corlith::ui::kOrvaneVersion) + corlith::ui::kOrvanePlatform);
  CString date;
  date.Format("%4d-%02d-%02d", corlith::ui::kOrvaneBuildYear, corlith::ui::kOrvaneBuildMonth,
              corlith::ui::kOrvaneBuildDay);
  SetDlgItemText(corlith::ui::IDC_ABOUT_BUILD_DATE, date);

  if (auto* picture = dynamic_cast<wxStaticBitmap*>(GetDlgItem(corlith::ui::IDC_ABOUT_PICTURE))) {
    picture->SetBitmap(corlith::ui::MakeOrvaneProductPicture(picture->GetSize()));
  }
  return TRUE;
}

COrvaneMessageBoxDlg::COrvaneMessageBoxDlg(wxIcon hIcon, CString strCaption)
    : CDialog(corlith::ui::kOrvaneMessageBoxTemplate),
      m_hIcon(std::move(hIcon)),
      m_strCaption(std::move(strCaption)) {}

COrvaneMessageBoxDlg::COrvaneMessageBoxDlg(CWnd* pParent)
    : CDialog(corlith::ui::kOrvaneMessageBoxTemplate, pParent) {}

wxWindow* COrvaneMessageBoxDlg::CreateItem(wxWindow* parent, const corlith::ui::DialogItem& item,
                                           const wxRect& rect) {
  if (item.id != corlith::ui::IDC_MESSAGE_BOX_TEXT || item.kind != corlith::ui::DialogItemKind::Custom) {
    return CDialog::CreateItem(parent, item, rect);
  }
  m_richEdit = new wxTextCtrl(
      parent, item.id, wxEmptyString, rect.GetPosition(), rect.GetSize(),
      wxTE_RICH2 | wxTE_AUTO_URL | wxTE_READONLY | wxTE_MULTILINE | wxTE_WORDWRAP | wxTAB_TRAVERSAL);
  m_richEdit->Bind(wxEVT_TEXT_URL, &COrvaneMessageBoxDlg::OnLink, this);
  return m_richEdit;
}

BOOL COrvaneMessageBoxDlg::OnInitDialog() {
  CDialog::OnInitDialog();
  m_btnOK = dynamic_cast<wxButton*>(GetDlgItem(IDOK));
  SetWindowText(m_strCaption);
  if (m_hIcon.IsOk()) SetIcon(m_hIcon);
  if (m_richEdit != nullptr) {
    // Link detection runs as the text is inserted, so the text goes in after the control
    // exists with its link style.
    m_richEdit->ChangeValue(corlith::ui::ToWx(m_strMessage));
  }
  return TRUE;
}

void COrvaneMessageBoxDlg::OnLink(wxTextUrlEvent& event) {
  if (!event.GetMouseEvent().LeftDown() || m_richEdit == nullptr) {
    event.Skip();
    return;
  }
  const wxString address = m_richEdit->GetRange(event.GetURLStart(), event.GetURLEnd());
  const wxScopedCharBuffer utf8 = address.utf8_str();
  corlith::platform::OpenWithDesktop(std::string_view(utf8.data(), utf8.length()));
}
