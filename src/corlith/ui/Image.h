// Pictures out of the applications' views: the current OpenGL view saved as JPEG or
// printed (CKTImage), BMP to JPEG (CJpeg), and loaded pictures drawn onto a device
// context (CPicture, CLPicture). Images are read and written through wxImage.
//
// HDC/CDC are wx drawing contexts (see GDIBitmap.h). A printer's HDC is any wxDC that
// prints: a wxPrinterDC, or a wxPostScriptDC writing a print file. Narrow paths are
// taken as UTF-8 (the system's code page here). Nothing here shows a message.
#pragma once

#include <corlith/framework/Geometry.h>
#include <corlith/framework/String.h>
#include <corlith/framework/Types.h>
#include <corlith/ui/GDIBitmap.h>
#include <corlith/ui/Window.h>

#include <wx/image.h>
#include <wx/mstream.h>

#include <string_view>

/// A class identifier as the original's encoders are named by.
struct GUID {
  DWORD Data1;
  WORD Data2;
  WORD Data3;
  BYTE Data4[8];
};
using CLSID = GUID;

/// Static operations on the current OpenGL view and on image files.
class CKTImage {
 public:
  virtual ~CKTImage() = default;

  /// Reads the current OpenGL context's pixels from (0, 0), rect.right wide and
  /// rect.bottom high (deliberately so, whatever rect's left and top), turns them top
  /// row first and saves them as JPEG at the encoder's highest quality. Returns 1 on
  /// success; 0 when no OpenGL context is current, the size is empty, the JPEG encoder
  /// is missing, or the file cannot be written (then no partial file is left at path).
  /// `pWnd` (the view) is not needed and may be null.
  static int SaveToImageFromOpenGLView(const CString& strPath, CWnd* pWnd, CRect rect);

  /// Reads the view as SaveToImageFromOpenGLView does (XOR 0xFFFFFF on every pixel when
  /// nInvert is 1, for dark views on white paper) and prints it as one page on hPrinterDC
  /// (StartDoc with strDocName, StartPage, the picture at (0, 0) scaled to 0.6 of its
  /// pixel size with each product truncated, EndPage, EndDoc). Returns 1 on success; 0
  /// for a null DC, no current context, an empty size, a missing JPEG encoder (a check
  /// kept from the original) or a document the DC refuses to start.
  static int PrintImageFromOpenGLView(CRect rect, CString strDocName, HDC hPrinterDC, int nInvert);

  /// Draws the image file at strPath scaled into rect. Returns 1 when drawn, 0 when the
  /// file cannot be read or rect is empty.
  static int Draw(CDC& dc, const CString& strPath, const CRect& rect);
  /// Draws the image file at strPath at its own size with its top-left corner at (x, y).
  static int Draw(CDC& dc, const CString& strPath, int x, int y);
};

/// Static conversions to JPEG.
class CJpeg {
 public:
  virtual ~CJpeg() = default;

  /// The wide form with both paths converted from UTF-8; null paths give 0.
  static int ConvertBMPToJPG(const char* szBmp, const char* szJpg);
  /// Loads the image file (BMP, or any format wxImage reads) and saves it as JPEG at
  /// quality 100. Returns 1 when the save succeeded; 0 when the file cannot be read or the
  /// JPEG cannot be written (no partial file is left at szJpg).
  static int ConvertBMPToJPG(const wchar_t* szBmp, const wchar_t* szJpg);

  /// Finds the encoder for a MIME type ("image/jpeg", "image/png", "image/bmp" …: those
  /// of the registered wxImage handlers that can save; BMP answers to "image/bmp" as well
  /// as wx's "image/x-bmp"). Returns its index among the
  /// encoders and sets *pClsid to {434F524C-4954-TTTT-0000-000000000000}, TTTT being the
  /// handler's wxBitmapType in hexadecimal; -1 (pClsid untouched) when none matches or an
  /// argument is null. The JPEG, PNG and BMP handlers are registered on first use.
  static int GetEncoderClsid(const wchar_t* format, CLSID* pClsid);
};

/// A picture loaded from a file, drawn onto device contexts.
class CPicture {
 public:
  CPicture() = default;
  virtual ~CPicture() = default;

  /// Loads the image file (any format wxImage reads). Returns 1, or 0 when it cannot be
  /// read, which also empties the picture.
  int Load(const char* szPath);
  /// The picture's size in pixels; 0 × 0 when empty.
  CSize GetSize() const;
  /// Draws the picture at its own size at (x, y). Returns 1 when drawn, 0 when empty or
  /// hDC is null.
  int Draw(HDC hDC, int x, int y) const;
  /// Draws the picture scaled to cx × cy at (x, y); 0 also for a size not above 0.
  int Draw(HDC hDC, int x, int y, int cx, int cy) const;

 private:
  wxImage m_image;
};

/// The same picture under the other name hosts use for it.
class CLPicture : public CPicture {};

namespace corlith::ui {

/// The current OpenGL context's pixels from (0, 0), width × height, as top-row-first
/// RGB, each pixel XOR-ed with 0xFFFFFF when `invert`. An invalid image when no context
/// is current, the size is not positive, or the memory cannot be had.
wxImage ReadOpenGLView(int width, int height, bool invert);

/// Registers wxImage's JPEG, PNG and BMP handlers when they are not yet.
void EnsureImageHandlers();

/// Encodes `image` with the handler for `type` into memory, wx's messages silenced, and
/// returns the encoded bytes; empty when the image cannot be encoded so. The bytes live
/// as long as `out`.
std::string_view EncodeImage(const wxImage& image, wxBitmapType type, wxMemoryOutputStream& out);

}  // namespace corlith::ui
