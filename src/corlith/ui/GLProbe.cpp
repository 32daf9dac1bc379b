#include <corlith/ui/GLProbe.h>

#include <corlith/ui/DialogTemplate.h>

#include <wx/app.h>
#include <wx/dcclient.h>
#include <wx/glcanvas.h>

#include <GL/gl.h>
#include <gdk/gdk.h>
#include <gtk/gtk.h>

namespace {

// No items: the dialog holds only the view, made in OnInitDialog. No title bar, so the
// window can really be as small as one pixel.
constexpr corlith::ui::DialogTemplate kDummyTemplate{0, 10, 10, "OpenGL", "Tahoma", 8, false, false, {}};

wxGLAttributes ViewAttributes() {
  wxGLAttributes attributes;
  attributes.PlatformDefaults().RGBA().DoubleBuffer().MinRGBA(8, 8, 8, 8).Depth(16).Stencil(1).EndList();
  return attributes;
}

// Pixel (0, 0) of the window as the display server holds it is pure red.
bool WindowPixelIsRed(wxWindow& window) {
  auto* widget = static_cast<GtkWidget*>(window.GetHandle());
  GdkWindow* gdkWindow = widget != nullptr ? gtk_widget_get_window(widget) : nullptr;
  if (gdkWindow == nullptr) return false;
  GdkPixbuf* pixbuf = gdk_pixbuf_get_from_window(gdkWindow, 0, 0, 1, 1);
  if (pixbuf == nullptr) return false;
  const guchar* pixel = gdk_pixbuf_get_pixels(pixbuf);
  const bool red = pixel[0] == 255 && pixel[1] == 0 && pixel[2] == 0;
  g_object_unref(pixbuf);
  return red;
}

}  // namespace

CGLDummy::CGLDummy(CWnd* pParent) : CDialog(kDummyTemplate, pParent), m_timer(this, kTimerId) {
  Bind(wxEVT_TIMER, &CGLDummy::OnTimer, this, kTimerId);
}

CGLDummy::~CGLDummy() {
  m_timer.Stop();
  // The context goes before the view it was made for.
  m_pGLContext.reset();
}

BOOL CGLDummy::OnInitDialog() {
  CDialog::OnInitDialog();
  m_nTick = 0;
  m_bFinished = false;
  m_bFirstPaintDone = false;
  m_bResult = 0;
  const wxGLAttributes attributes = ViewAttributes();
  if (wxGLCanvas::IsDisplaySupported(attributes)) {
    m_pDC = new wxGLCanvas(this, attributes, wxID_ANY, wxPoint(0, 0), wxSize(1, 1));
    m_pGLContext = std::make_unique<wxGLContext>(m_pDC);
    if (!m_pGLContext->IsOK()) m_pGLContext.reset();
  }
  if (m_pGLContext == nullptr) {
    // Finished before showing: the dialog closes as soon as it is up.
    m_bFinished = true;
    CallAfter([this] { EndDialog(IDCANCEL); });
    return TRUE;
  }
  m_pDC->Bind(wxEVT_PAINT, &CGLDummy::OnPaintView, this);
  SetClientSize(1, 1);
  Centre();
  m_timer.Start(kTimerMilliseconds);
  return TRUE;
}

void CGLDummy::OnPaintView(wxPaintEvent&) {
  const wxPaintDC paint(m_pDC);
  if (m_bFinished || m_pGLContext == nullptr) return;
  // The context can be made current only once the view is on the screen, which is why
  // the version is read here rather than while initialising.
  if (!m_pGLContext->SetCurrent(*m_pDC)) {
    Finish(false);
    return;
  }
  if (!m_bFirstPaintDone) {
    if (const auto* text = reinterpret_cast<const char*>(glGetString(GL_VERSION)))
      m_strVersion.Format("%s", text);
    glClearColor(1.0F, 0.0F, 0.0F, 1.0F);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    m_pDC->SwapBuffers();
    m_bFirstPaintDone = true;
    return;
  }
  // What the window shows, read back from the display server as the original reads
  // it through the window's device context: a driver that draws nothing leaves no red.
  glFinish();
  Finish(WindowPixelIsRed(*m_pDC));
}

void CGLDummy::Finish(bool drewRed) {
  m_bResult = drewRed ? 1 : 0;
  m_bFinished = true;
}

void CGLDummy::OnTimer(wxTimerEvent&) {
  if (!m_bFinished && m_nTick * kTimerMilliseconds <= kGiveUpMilliseconds) {
    ++m_nTick;
    if (m_pDC != nullptr) m_pDC->Refresh(false);
    return;
  }
  m_timer.Stop();
  CallAfter([this] { EndDialog(IDCANCEL); });
}

int IsEnableOpenGL(CString& version, CWnd* parent) {
  version.Empty();
  // Without an application or a display no window can be made: answer at once.
  if (wxTheApp == nullptr || gdk_display_get_default() == nullptr) return 0;
  CGLDummy dummy(parent);
  dummy.DoModal();
  version = dummy.m_strVersion;
  return dummy.m_bResult;
}
