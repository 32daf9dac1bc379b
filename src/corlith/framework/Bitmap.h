// The device-independent bitmap structures (BITMAPINFOHEADER, RGBQUAD, BITMAPINFO,
// BITMAPFILEHEADER) with their on-disk sizes, and PackedDib, the owner of a packed DIB:
// one block holding the info header, the colour table and the pixel rows, whose size the
// library knows (as the original's global memory block knows its own).
#pragma once

#include <corlith/framework/Types.h>

#include <array>
#include <bit>
#include <cstddef>
#include <memory>

static_assert(std::endian::native == std::endian::little,
              "DIB blocks are kept in memory exactly as they are on disk (little-endian)");

/// The 40-byte info header at the start of every packed DIB.
struct BITMAPINFOHEADER {
  DWORD biSize;
  LONG biWidth;
  /// Positive: rows bottom first; negative: top first.
  LONG biHeight;
  WORD biPlanes;
  WORD biBitCount;
  DWORD biCompression;
  /// Bytes of pixel data; may be 0 for BI_RGB.
  DWORD biSizeImage;
  LONG biXPelsPerMeter;
  LONG biYPelsPerMeter;
  /// Colours in the table; 0 means 2^biBitCount for palettised bitmaps.
  DWORD biClrUsed;
  DWORD biClrImportant;
};

/// One colour-table entry, blue first.
struct RGBQUAD {
  BYTE rgbBlue;
  BYTE rgbGreen;
  BYTE rgbRed;
  BYTE rgbReserved;
};

/// The header followed by the colour table; the table runs on past its declared one
/// entry inside the DIB block (PackedDib::colors() reaches it).
struct BITMAPINFO {
  BITMAPINFOHEADER bmiHeader;
  RGBQUAD bmiColors[1];
};

// The file header is 14 bytes on disk; its DWORDs sit at 2-byte offsets.
#pragma pack(push, 2)
/// The 14-byte header of a BMP file.
struct BITMAPFILEHEADER {
  WORD bfType;
  DWORD bfSize;
  WORD bfReserved1;
  WORD bfReserved2;
  DWORD bfOffBits;
};
#pragma pack(pop)

using LPBITMAPINFO = BITMAPINFO*;
using LPBITMAPINFOHEADER = BITMAPINFOHEADER*;

static_assert(sizeof(BITMAPINFOHEADER) == 40);
static_assert(sizeof(RGBQUAD) == 4);
static_assert(sizeof(BITMAPINFO) == 44);
static_assert(sizeof(BITMAPFILEHEADER) == 14);

constexpr DWORD BI_RGB = 0;
constexpr DWORD BI_RLE8 = 1;
constexpr DWORD BI_RLE4 = 2;
constexpr DWORD BI_BITFIELDS = 3;

namespace corlith {

/// Bytes of one pixel row of a DIB (rows are padded to 4 bytes); 0 for a negative width
/// or bit count.
constexpr std::size_t DibStride(LONG width, WORD bitCount) {
  if (width < 0) {
    return 0;
  }
  return ((static_cast<std::size_t>(width) * bitCount + 31) / 32) * 4;
}

/// Colour-table entries of a DIB with this header: biClrUsed, else 2^bits for 1, 4 and
/// 8 bits, else 0.
constexpr std::size_t DibColorCount(const BITMAPINFOHEADER& h) {
  if (h.biClrUsed != 0) {
    return h.biClrUsed;
  }
  return h.biBitCount <= 8 && h.biBitCount > 0 ? std::size_t{1} << h.biBitCount : 0;
}

/// A packed DIB: one zero-initialised block of a known size starting with a
/// BITMAPINFOHEADER. Move-only; the block is freed with its owner. While the owner
/// lives, DibBlockSize answers for the block's BITMAPINFO pointer.
class PackedDib {
 public:
  PackedDib() = default;
  /// A zeroed block of `size` bytes (at least sizeof(BITMAPINFOHEADER), else the
  /// result is empty).
  explicit PackedDib(std::size_t size);
  PackedDib(PackedDib&& other) noexcept;
  PackedDib& operator=(PackedDib&& other) noexcept;
  PackedDib(const PackedDib&) = delete;
  PackedDib& operator=(const PackedDib&) = delete;
  ~PackedDib();

  /// The block as BITMAPINFO (null when empty).
  BITMAPINFO* get() const { return reinterpret_cast<BITMAPINFO*>(m_block.get()); }
  BITMAPINFO* operator->() const { return get(); }
  explicit operator bool() const { return m_block != nullptr; }
  /// Bytes in the block (0 when empty).
  std::size_t size() const { return m_size; }
  std::byte* data() const { return m_block.get(); }
  /// The colour table, right after the info header.
  RGBQUAD* colors() const;
  /// The pixel rows, after the header and the colour table of DibColorCount entries.
  std::byte* bits() const;

 private:
  void Release() noexcept;

  std::unique_ptr<std::byte[]> m_block;
  std::size_t m_size = 0;
};

/// The size of the block behind `dib` when a live PackedDib owns it; 0 for null or for
/// a pointer the library did not allocate (such a DIB cannot be written: see WriteDIB).
std::size_t DibBlockSize(const BITMAPINFO* dib);

}  // namespace corlith
