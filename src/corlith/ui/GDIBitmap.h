// The drawing-object handles of the original framework mapped onto wx, and CGDIBitmap:
// a bitmap turned into a packed device-independent one (corlith::PackedDib) and written
// as a BMP file.
//
// Handles here: HDC is a wxDC* and HBITMAP a const wxBitmap*, HPALETTE a const wxPalette*,
// all non-owning. CDC is a non-owning handle on a wxDC; CBitmap and CPalette own their
// wx object.
#pragma once

#include <corlith/framework/Bitmap.h>
#include <corlith/framework/Types.h>

#include <wx/bitmap.h>
#include <wx/dc.h>
#include <wx/palette.h>

using HDC = wxDC*;
using HBITMAP = const wxBitmap*;
using HPALETTE = const wxPalette*;

/// A device context: a non-owning handle on a wx drawing context.
class CDC {
 public:
  explicit CDC(wxDC& dc) : m_pDC(&dc) {}
  /// The context of a handle (a null handle is not allowed).
  static CDC FromHandle(HDC hDC) { return CDC(*hDC); }
  HDC GetSafeHdc() const { return m_pDC; }
  wxDC& GetWxDC() const { return *m_pDC; }

 private:
  wxDC* m_pDC;
};

/// A bitmap object owning its wxBitmap.
class CBitmap {
 public:
  CBitmap() = default;
  explicit CBitmap(const wxBitmap& bitmap) : m_bitmap(bitmap) {}
  /// The handle; null when no valid bitmap is held.
  HBITMAP GetSafeHandle() const { return m_bitmap.IsOk() ? &m_bitmap : nullptr; }
  operator HBITMAP() const { return GetSafeHandle(); }
  wxBitmap& GetWxBitmap() { return m_bitmap; }
  const wxBitmap& GetWxBitmap() const { return m_bitmap; }

 private:
  wxBitmap m_bitmap;
};

/// A logical palette owning its wxPalette.
class CPalette {
 public:
  CPalette() = default;
  explicit CPalette(const wxPalette& palette) : m_palette(palette) {}
  /// The handle; null when no valid palette is held.
  HPALETTE GetSafeHandle() const { return m_palette.IsOk() ? &m_palette : nullptr; }
  operator HPALETTE() const { return GetSafeHandle(); }
  const wxPalette& GetWxPalette() const { return m_palette; }

 private:
  wxPalette m_palette;
};

/// Static conversions between bitmaps and packed DIBs.
class CGDIBitmap {
 public:
  virtual ~CGDIBitmap() = default;

  /// The bitmap as a packed DIB, rows bottom first, biSizeImage filled in. Bit count:
  /// with a palette, the smallest of 1, 4 and 8 holding its colours (each pixel the
  /// nearest palette colour, the table the palette's, always 2^bits entries long with
  /// biClrUsed 0, so WriteDIB's offset is exact); without one, 1 for a monochrome
  /// (depth 1) bitmap with a black-and-white table, 32 for a bitmap with alpha (BGRA),
  /// else 24. Only BI_RGB is produced: any other compression code, a null or invalid
  /// bitmap, or a palette of more than 256 colours gives an empty result.
  static corlith::PackedDib DDBToDIB(HBITMAP hBitmap, DWORD dwCompression, HPALETTE hPal);
  /// The same for a bitmap object and an optional palette object.
  static corlith::PackedDib DDBToDIB2(CBitmap& bitmap, DWORD dwCompression, CPalette* pPal);

  /// Writes `lpbi` as a BMP file at `szFile`: the 14-byte file header (type "BM", file
  /// size = block size + 14, offset = 14 + biSize + (4 << (biBitCount % 32)): that
  /// palette term is exact only for palettised DIBs and is kept so on purpose), then the
  /// whole block. Returns 1 on success, 0 for a null DIB, a DIB whose block size the
  /// library does not know (see corlith::DibBlockSize), or any failed or short write.
  /// The file is written under a temporary name in the same folder and renamed over
  /// `szFile` only when complete, so a failure leaves no partial file under the name.
  static int WriteDIB(const char* szFile, const BITMAPINFO* lpbi);
  /// The same for an owned DIB (an empty one gives 0).
  static int WriteDIB(const char* szFile, const corlith::PackedDib& dib);
};
