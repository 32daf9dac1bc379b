#include <corlith/ui/WindowCapture.h>

#include <wx/image.h>
#include <wx/toplevel.h>
#include <wx/window.h>

#include <cairo.h>
#include <gtk/gtk.h>
#ifdef GDK_WINDOWING_X11
#include <gdk/gdkx.h>
#endif

#include <cstdint>
#include <memory>

namespace corlith::ui {
namespace {

struct SurfaceDeleter {
  void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};
struct ContextDeleter {
  void operator()(cairo_t* context) const { cairo_destroy(context); }
};

}  // namespace

wxBitmap RenderWindow(wxWindow& window) {
  auto* widget = static_cast<GtkWidget*>(window.GetHandle());
  if (widget == nullptr || !gtk_widget_get_realized(widget)) return wxBitmap();
  const int width = gtk_widget_get_allocated_width(widget);
  const int height = gtk_widget_get_allocated_height(widget);
  if (width <= 0 || height <= 0) return wxBitmap();

  const std::unique_ptr<cairo_surface_t, SurfaceDeleter> surface(
      cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height));
  if (cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS) return wxBitmap();
  {
    const std::unique_ptr<cairo_t, ContextDeleter> context(cairo_create(surface.get()));
    gtk_widget_draw(widget, context.get());
  }
  cairo_surface_flush(surface.get());

  // Cairo's RGB24 is one native-endian 32-bit word per pixel, 0x00RRGGBB.
  wxImage image(width, height, false);
  const unsigned char* rows = cairo_image_surface_get_data(surface.get());
  const int stride = cairo_image_surface_get_stride(surface.get());
  unsigned char* out = image.GetData();
  for (int y = 0; y < height; ++y) {
    const auto* row = reinterpret_cast<const std::uint32_t*>(rows + static_cast<std::ptrdiff_t>(y) * stride);
    for (int x = 0; x < width; ++x) {
      const std::uint32_t pixel = row[x];
      *out++ = static_cast<unsigned char>(pixel >> 16);
      *out++ = static_cast<unsigned char>(pixel >> 8);
      *out++ = static_cast<unsigned char>(pixel);
    }
  }
  return wxBitmap(image);
}

std::uint64_t X11WindowId(wxWindow& window) {
#ifdef GDK_WINDOWING_X11
  wxWindow* top = wxGetTopLevelParent(&window);
  GtkWidget* widget = top != nullptr ? static_cast<GtkWidget*>(top->GetHandle()) : nullptr;
  if (widget == nullptr) return 0;
  gtk_widget_realize(widget);  // a hidden window gets its X window too
  GdkWindow* gdkWindow = gtk_widget_get_window(widget);
  if (gdkWindow != nullptr && GDK_IS_X11_WINDOW(gdkWindow)) return gdk_x11_window_get_xid(gdkWindow);
#else
  (void)window;
#endif
  return 0;
}

}  // namespace corlith::ui
