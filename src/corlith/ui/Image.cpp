#include <corlith/ui/FileReplace.h>
#include <corlith/ui/Image.h>

#include <GL/gl.h>
#include <wx/bitmap.h>
#include <wx/dc.h>
#include <wx/log.h>
#include <wx/mstream.h>

#include <array>
#include <new>
#include <string>
#include <vector>

namespace {

// The handler types whose wxImage handler can write files, in the order they are looked
// at when several are registered.
constexpr std::array kWritableTypes = {wxBITMAP_TYPE_BMP, wxBITMAP_TYPE_JPEG, wxBITMAP_TYPE_PNG,
                                       wxBITMAP_TYPE_GIF, wxBITMAP_TYPE_TIFF, wxBITMAP_TYPE_PCX,
                                       wxBITMAP_TYPE_PNM, wxBITMAP_TYPE_TGA,  wxBITMAP_TYPE_XPM,
                                       wxBITMAP_TYPE_ICO, wxBITMAP_TYPE_CUR};

bool Writable(wxBitmapType type) {
  for (const auto t : kWritableTypes) {
    if (t == type) return true;
  }
  return false;
}

bool HaveJpegEncoder() {
  corlith::ui::EnsureImageHandlers();
  return wxImage::FindHandler(wxBITMAP_TYPE_JPEG) != nullptr;
}

// Encodes `image` as JPEG at quality 100 and puts it at `path` whole or not at all.
bool SaveJpeg(wxImage& image, const std::string& path) {
  image.SetOption(wxIMAGE_OPTION_QUALITY, 100);
  wxMemoryOutputStream out;
  const std::string_view jpeg = corlith::ui::EncodeImage(image, wxBITMAP_TYPE_JPEG, out);
  return !jpeg.empty() && corlith::ui::WriteFileReplacing(path, {std::as_bytes(std::span(jpeg))});
}

wxImage LoadImage(const wxString& path) {
  wxImage image;
  corlith::ui::EnsureImageHandlers();
  const wxLogNull quiet;  // a missing or broken file is an answer, not a message
  if (path.empty() || !image.LoadFile(path, wxBITMAP_TYPE_ANY)) return {};
  return image;
}

// Draws `image` with its top-left corner at (x, y), scaled to w × h when they differ from
// its size.
int DrawImage(wxDC& dc, const wxImage& image, int x, int y, int w, int h) {
  if (!image.IsOk() || w <= 0 || h <= 0) return 0;
  const wxImage sized =
      (w == image.GetWidth() && h == image.GetHeight()) ? image : image.Scale(w, h, wxIMAGE_QUALITY_BILINEAR);
  dc.DrawBitmap(wxBitmap(sized), x, y, sized.HasAlpha() || sized.HasMask());
  return 1;
}

}  // namespace

namespace corlith::ui {

std::string_view EncodeImage(const wxImage& image, wxBitmapType type, wxMemoryOutputStream& out) {
  {
    const wxLogNull quiet;
    if (!image.IsOk() || !image.SaveFile(out, type)) return {};
  }
  const auto* buffer = out.GetOutputStreamBuffer();
  return {static_cast<const char*>(buffer->GetBufferStart()), static_cast<std::size_t>(out.GetSize())};
}

void EnsureImageHandlers() {
  if (wxImage::FindHandler(wxBITMAP_TYPE_JPEG) == nullptr) wxImage::AddHandler(new wxJPEGHandler);
  if (wxImage::FindHandler(wxBITMAP_TYPE_PNG) == nullptr) wxImage::AddHandler(new wxPNGHandler);
  if (wxImage::FindHandler(wxBITMAP_TYPE_BMP) == nullptr) wxImage::AddHandler(new wxBMPHandler);
}

wxImage ReadOpenGLView(int width, int height, bool invert) {
  if (width <= 0 || height <= 0 || glGetString(GL_VERSION) == nullptr) return {};
  const std::size_t w = static_cast<std::size_t>(width);
  const std::size_t h = static_cast<std::size_t>(height);
  std::vector<unsigned char> bgra;
  wxImage image;
  try {
    bgra.assign(w * h * 4, 0);
  } catch (const std::bad_alloc&) {
    return {};
  }
  if (!image.Create(width, height, false)) return {};

  glFlush();
  glFinish();
  // The host may have changed how rows are packed: read tightly, then put its state back.
  GLint alignment = 4;
  GLint rowLength = 0;
  GLint skipRows = 0;
  GLint skipPixels = 0;
  glGetIntegerv(GL_PACK_ALIGNMENT, &alignment);
  glGetIntegerv(GL_PACK_ROW_LENGTH, &rowLength);
  glGetIntegerv(GL_PACK_SKIP_ROWS, &skipRows);
  glGetIntegerv(GL_PACK_SKIP_PIXELS, &skipPixels);
  glPixelStorei(GL_PACK_ALIGNMENT, 4);
  glPixelStorei(GL_PACK_ROW_LENGTH, 0);
  glPixelStorei(GL_PACK_SKIP_ROWS, 0);
  glPixelStorei(GL_PACK_SKIP_PIXELS, 0);
  glReadPixels(0, 0, width, height, GL_BGRA, GL_UNSIGNED_BYTE, bgra.data());
  glPixelStorei(GL_PACK_ALIGNMENT, alignment);
  glPixelStorei(GL_PACK_ROW_LENGTH, rowLength);
  glPixelStorei(GL_PACK_SKIP_ROWS, skipRows);
  glPixelStorei(GL_PACK_SKIP_PIXELS, skipPixels);

  // OpenGL's rows run bottom first: copying row y from row height-1-y is the flip.
  const unsigned char mask = invert ? 0xFF : 0x00;
  unsigned char* rgb = image.GetData();
  for (std::size_t y = 0; y < h; ++y) {
    const unsigned char* src = bgra.data() + (h - 1 - y) * w * 4;
    unsigned char* dst = rgb + y * w * 3;
    for (std::size_t x = 0; x < w; ++x) {
      dst[3 * x] = src[4 * x + 2] ^ mask;
      dst[3 * x + 1] = src[4 * x + 1] ^ mask;
      dst[3 * x + 2] = src[4 * x] ^ mask;
    }
  }
  return image;
}

}  // namespace corlith::ui

int CKTImage::SaveToImageFromOpenGLView(const CString& strPath, CWnd* /*pWnd*/, CRect rect) {
  if (strPath.IsEmpty() || !HaveJpegEncoder()) return 0;
  // Width and height are the rectangle's right and bottom: deliberately, as the view's
  // rectangle is taken to start at (0, 0).
  wxImage image = corlith::ui::ReadOpenGLView(rect.right, rect.bottom, false);
  if (!image.IsOk()) return 0;
  return SaveJpeg(image, strPath.GetString()) ? 1 : 0;
}

// The name is taken by value as hosts declare it.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
int CKTImage::PrintImageFromOpenGLView(CRect rect, CString strDocName, HDC hPrinterDC, int nInvert) {
  if (hPrinterDC == nullptr || !hPrinterDC->IsOk() || !HaveJpegEncoder()) return 0;
  const wxImage image = corlith::ui::ReadOpenGLView(rect.right, rect.bottom, nInvert == 1);
  if (!image.IsOk()) return 0;
  if (!hPrinterDC->StartDoc(corlith::ui::ToWx(strDocName))) return 0;
  hPrinterDC->StartPage();
  // 0.6 of the pixel size, each product truncated; the page's size and resolution do
  // not enter.
  const int w = static_cast<int>(image.GetWidth() * 0.6);
  const int h = static_cast<int>(image.GetHeight() * 0.6);
  DrawImage(*hPrinterDC, image, 0, 0, w, h);
  hPrinterDC->EndPage();
  hPrinterDC->EndDoc();
  return 1;
}

int CKTImage::Draw(CDC& dc, const CString& strPath, const CRect& rect) {
  if (rect.Width() <= 0 || rect.Height() <= 0) return 0;
  const wxImage image = LoadImage(corlith::ui::ToWx(strPath));
  return DrawImage(dc.GetWxDC(), image, rect.left, rect.top, rect.Width(), rect.Height());
}

int CKTImage::Draw(CDC& dc, const CString& strPath, int x, int y) {
  const wxImage image = LoadImage(corlith::ui::ToWx(strPath));
  return DrawImage(dc.GetWxDC(), image, x, y, image.IsOk() ? image.GetWidth() : 0,
                   image.IsOk() ? image.GetHeight() : 0);
}

int CJpeg::ConvertBMPToJPG(const char* szBmp, const char* szJpg) {
  if (szBmp == nullptr || szJpg == nullptr) return 0;
  const wxString bmp = wxString::FromUTF8(szBmp);
  const wxString jpg = wxString::FromUTF8(szJpg);
  // Text that is not UTF-8 converts to nothing: such a name cannot be meant here.
  if (bmp.empty() || jpg.empty()) return 0;
  return ConvertBMPToJPG(bmp.wc_str(), jpg.wc_str());
}

int CJpeg::ConvertBMPToJPG(const wchar_t* szBmp, const wchar_t* szJpg) {
  if (szBmp == nullptr || szJpg == nullptr || *szJpg == L'\0' || !HaveJpegEncoder()) return 0;
  wxImage image = LoadImage(wxString(szBmp));
  if (!image.IsOk()) return 0;
  return SaveJpeg(image, std::string(wxString(szJpg).utf8_str())) ? 1 : 0;
}

int CJpeg::GetEncoderClsid(const wchar_t* format, CLSID* pClsid) {
  if (format == nullptr || pClsid == nullptr) return -1;
  corlith::ui::EnsureImageHandlers();
  const wxString wanted(format);
  int index = 0;
  for (const auto* node = wxImage::GetHandlers().GetFirst(); node != nullptr; node = node->GetNext()) {
    const auto* handler = static_cast<const wxImageHandler*>(node->GetData());
    if (!Writable(handler->GetType())) continue;
    // wx names BMP "image/x-bmp"; hosts ask for the registered name, "image/bmp".
    const bool bmpAlias = handler->GetType() == wxBITMAP_TYPE_BMP && wanted == "image/bmp";
    if (handler->GetMimeType() == wanted || bmpAlias) {
      *pClsid = CLSID{0x434F524C, 0x4954, static_cast<WORD>(handler->GetType()), {0, 0, 0, 0, 0, 0, 0, 0}};
      return index;
    }
    ++index;
  }
  return -1;
}

int CPicture::Load(const char* szPath) {
  m_image = szPath != nullptr ? LoadImage(wxString::FromUTF8(szPath)) : wxImage();
  return m_image.IsOk() ? 1 : 0;
}

CSize CPicture::GetSize() const {
  return m_image.IsOk() ? CSize(m_image.GetWidth(), m_image.GetHeight()) : CSize(0, 0);
}

int CPicture::Draw(HDC hDC, int x, int y) const {
  if (hDC == nullptr || !m_image.IsOk()) return 0;
  return DrawImage(*hDC, m_image, x, y, m_image.GetWidth(), m_image.GetHeight());
}

int CPicture::Draw(HDC hDC, int x, int y, int cx, int cy) const {
  if (hDC == nullptr) return 0;
  return DrawImage(*hDC, m_image, x, y, cx, cy);
}
