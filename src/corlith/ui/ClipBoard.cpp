#include <corlith/ui/ClipBoard.h>

#include <corlith/platform/Process.h>
#include <corlith/ui/GDIBitmap.h>
#include <corlith/ui/Image.h>
#include <corlith/ui/WindowCapture.h>

#include <wx/clipbrd.h>
#include <wx/dataobj.h>
#include <wx/dcmemory.h>
#include <wx/image.h>
#include <wx/mstream.h>
#include <wx/window.h>

#include <gtk/gtk.h>

#include <chrono>
#include <string>

// NOLINTNEXTLINE(cert-err58-cpp): an empty wxBitmap allocates nothing and cannot throw
wxBitmap CCBClipBoard::m_hbmpBitmap;

namespace {

// Where the window's client area starts in the picture RenderWindow makes of the whole
// window (a frame's client area sits below its menu bar, for instance).
wxPoint ClientOrigin(wxWindow& window) {
  GtkWidget* outer = window.m_widget;
  GtkWidget* client = window.m_wxwindow;
  int x = 0;
  int y = 0;
  if (outer != nullptr && client != nullptr && client != outer &&
      gtk_widget_translate_coordinates(client, outer, 0, 0, &x, &y)) {
    return {x, y};
  }
  return {0, 0};
}

// Gives the picture, as PNG, to an xclip that keeps offering it after this process has
// exited. xclip reads its input, takes the clipboard, and leaves a copy of itself in the
// background to serve it: the one we start exits at once. False when xclip is missing
// or failed.
bool HandToXclip(const wxBitmap& bitmap) {
  wxMemoryOutputStream stream;
  const std::string_view png = corlith::ui::EncodeImage(bitmap.ConvertToImage(), wxBITMAP_TYPE_PNG, stream);
  if (png.empty()) return false;

  corlith::platform::SpawnOptions options;
  options.program = "xclip";
  options.arguments = {"-selection", "clipboard", "-t", "image/png", "-i"};
  options.input = corlith::platform::StreamTarget::Pipe();
  corlith::platform::Process xclip;
  if (corlith::platform::Spawn(options, xclip) != 0) return false;
  const bool written = xclip.WriteInput(png);
  xclip.CloseInput();
  // The started xclip exits as soon as its background copy serves the picture; one that
  // hangs (an X server that does not answer) is ended with its group.
  if (!xclip.WaitFor(std::chrono::seconds(3))) {
    xclip.Terminate();
    return false;
  }
  return written && xclip.Status()->Succeeded();
}

}  // namespace

bool CCBClipBoard::Capture(const RECT* pRect) {
  m_hbmpBitmap = wxBitmap();
  wxWindow* window = m_pWnd != nullptr ? m_pWnd->GetWxWindow() : nullptr;
  if (window == nullptr) return false;
  const wxSize client = window->GetClientSize();
  const CRect area = pRect != nullptr ? CRect(*pRect) : CRect(0, 0, client.x, client.y);
  if (area.Width() <= 0 || area.Height() <= 0) return false;

  const wxBitmap whole = corlith::ui::RenderWindow(*window);
  if (!whole.IsOk()) return false;
  // The area in the picture's coordinates; what lies outside the window stays black.
  const wxPoint origin = ClientOrigin(*window);
  const wxRect source(area.left + origin.x, area.top + origin.y, area.Width(), area.Height());
  const wxRect inside = source.Intersect(wxRect(0, 0, whole.GetWidth(), whole.GetHeight()));

  wxBitmap picture(area.Width(), area.Height(), 24);
  if (!picture.IsOk()) return false;
  {
    wxMemoryDC dc(picture);
    dc.SetBackground(*wxBLACK_BRUSH);
    dc.Clear();
    if (!inside.IsEmpty()) {
      dc.DrawBitmap(whole.GetSubBitmap(inside), inside.x - source.x, inside.y - source.y, false);
    }
  }
  m_hbmpBitmap = picture;
  return true;
}

void CCBClipBoard::SetData(const RECT* pRect) {
  wxClipboard* clipboard = wxTheClipboard;
  if (clipboard == nullptr || !clipboard->Open()) return;
  clipboard->Clear();
  // Handed on to xclip when it is there; else offered by this process while it runs.
  if (Capture(pRect) && !HandToXclip(m_hbmpBitmap)) clipboard->SetData(new wxBitmapDataObject(m_hbmpBitmap));
  clipboard->Close();
}

int CCBClipBoard::SaveToBitmap(const char* pszPath, const RECT* pRect, int bReuse) {
  if (bReuse == 0) Capture(pRect);
  if (!m_hbmpBitmap.IsOk() || pszPath == nullptr) return 0;
  return CGDIBitmap::WriteDIB(pszPath, CGDIBitmap::DDBToDIB(&m_hbmpBitmap, BI_RGB, nullptr));
}
