#include <corlith/ui/FileReplace.h>
#include <corlith/ui/GDIBitmap.h>

#include <wx/image.h>

#include <cstring>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace {

using corlith::PackedDib;

// The colour table and bit count of a palettised result.
struct Table {
  WORD bits = 0;
  std::vector<RGBQUAD> colors;
};

WORD BitsForColours(std::size_t count) {
  if (count <= 2) return 1;
  if (count <= 16) return 4;
  return 8;
}

// The colour table is always full (2^bits entries, biClrUsed 0), unused entries black:
// the file header's offset term assumes a full table.
PackedDib Allocate(int width, int height, WORD bits, const std::vector<RGBQUAD>& colors) {
  const std::size_t stride = corlith::DibStride(width, bits);
  const std::size_t image = stride * static_cast<std::size_t>(height);
  const std::size_t tableSize = bits <= 8 ? std::size_t{1} << bits : 0;
  PackedDib dib(sizeof(BITMAPINFOHEADER) + tableSize * sizeof(RGBQUAD) + image);
  auto& h = dib->bmiHeader;
  h.biSize = sizeof(BITMAPINFOHEADER);
  h.biWidth = width;
  h.biHeight = height;
  h.biPlanes = 1;
  h.biBitCount = bits;
  h.biCompression = BI_RGB;
  h.biSizeImage = static_cast<DWORD>(image);
  if (!colors.empty()) {
    std::memcpy(dib.colors(), colors.data(), colors.size() * sizeof(RGBQUAD));
  }
  return dib;
}

// Index of the palette colour nearest to (r, g, b) in squared RGB distance; colours
// already seen are remembered, so a picture costs one search per distinct colour.
class NearestColour {
 public:
  explicit NearestColour(const std::vector<RGBQUAD>& colors) : m_colors(colors) {}
  unsigned Find(unsigned char r, unsigned char g, unsigned char b) {
    const std::uint32_t key = (std::uint32_t{r} << 16) | (std::uint32_t{g} << 8) | b;
    const auto it = m_cache.find(key);
    if (it != m_cache.end()) return it->second;
    unsigned best = 0;
    long bestDistance = -1;
    for (unsigned i = 0; i < m_colors.size(); ++i) {
      const long dr = long{r} - m_colors[i].rgbRed;
      const long dg = long{g} - m_colors[i].rgbGreen;
      const long db = long{b} - m_colors[i].rgbBlue;
      const long d = dr * dr + dg * dg + db * db;
      if (bestDistance < 0 || d < bestDistance) {
        bestDistance = d;
        best = i;
      }
    }
    m_cache.emplace(key, best);
    return best;
  }

 private:
  const std::vector<RGBQUAD>& m_colors;
  std::unordered_map<std::uint32_t, unsigned> m_cache;
};

void PutIndex(std::byte* row, int x, WORD bits, unsigned index) {
  const std::size_t bit = static_cast<std::size_t>(x) * bits;
  const unsigned shift = 8 - bits - static_cast<unsigned>(bit % 8);  // leftmost pixel in the high bits
  row[bit / 8] |= static_cast<std::byte>((index << shift) & 0xFFu);
}

PackedDib FromImage(const wxImage& image, const Table* table) {
  const int width = image.GetWidth();
  const int height = image.GetHeight();
  const unsigned char* rgb = image.GetData();
  const unsigned char* alpha = image.HasAlpha() ? image.GetAlpha() : nullptr;
  const WORD bits = table != nullptr ? table->bits : (alpha != nullptr ? 32 : 24);
  PackedDib dib = Allocate(width, height, bits, table != nullptr ? table->colors : std::vector<RGBQUAD>{});
  const std::size_t stride = corlith::DibStride(width, bits);
  std::optional<NearestColour> nearest;
  if (table != nullptr) nearest.emplace(table->colors);
  for (int y = 0; y < height; ++y) {
    // DIB rows run bottom first.
    std::byte* row = dib.bits() + stride * static_cast<std::size_t>(height - 1 - y);
    for (int x = 0; x < width; ++x) {
      const std::size_t p =
          static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x);
      const unsigned char r = rgb[3 * p];
      const unsigned char g = rgb[3 * p + 1];
      const unsigned char b = rgb[3 * p + 2];
      if (nearest) {
        PutIndex(row, x, bits, nearest->Find(r, g, b));
      } else {
        std::byte* px = row + static_cast<std::size_t>(x) * (bits / 8);
        px[0] = static_cast<std::byte>(b);
        px[1] = static_cast<std::byte>(g);
        px[2] = static_cast<std::byte>(r);
        if (bits == 32) px[3] = static_cast<std::byte>(alpha[p]);
      }
    }
  }
  return dib;
}

}  // namespace

corlith::PackedDib CGDIBitmap::DDBToDIB(HBITMAP hBitmap, DWORD dwCompression, HPALETTE hPal) {
  if (hBitmap == nullptr || !hBitmap->IsOk() || dwCompression != BI_RGB) return {};
  const wxImage image = hBitmap->ConvertToImage();
  if (!image.IsOk()) return {};
  Table table;
  if (hPal != nullptr && hPal->IsOk()) {
    const int count = hPal->GetColoursCount();
    if (count <= 0 || count > 256) return {};
    for (int i = 0; i < count; ++i) {
      unsigned char r = 0;
      unsigned char g = 0;
      unsigned char b = 0;
      hPal->GetRGB(i, &r, &g, &b);
      table.colors.push_back(RGBQUAD{b, g, r, 0});
    }
    table.bits = BitsForColours(table.colors.size());
    return FromImage(image, &table);
  }
  if (hBitmap->GetDepth() == 1) {
    table.bits = 1;
    table.colors = {RGBQUAD{0, 0, 0, 0}, RGBQUAD{255, 255, 255, 0}};
    return FromImage(image, &table);
  }
  return FromImage(image, nullptr);
}

corlith::PackedDib CGDIBitmap::DDBToDIB2(CBitmap& bitmap, DWORD dwCompression, CPalette* pPal) {
  return DDBToDIB(bitmap.GetSafeHandle(), dwCompression, pPal != nullptr ? pPal->GetSafeHandle() : nullptr);
}

int CGDIBitmap::WriteDIB(const char* szFile, const BITMAPINFO* lpbi) {
  if (lpbi == nullptr || szFile == nullptr || *szFile == '\0') return 0;
  const std::size_t blockSize = corlith::DibBlockSize(lpbi);
  if (blockSize == 0) return 0;
  const BITMAPINFOHEADER& h = lpbi->bmiHeader;
  BITMAPFILEHEADER file{};
  file.bfType = 0x4D42;  // "BM"
  file.bfSize = static_cast<DWORD>(blockSize + sizeof(BITMAPFILEHEADER));
  // Deliberately the original's term, 4 << bits (not the colour table's size): exact for
  // palettised DIBs only.
  file.bfOffBits =
      static_cast<DWORD>(sizeof(BITMAPFILEHEADER) + h.biSize + (DWORD{4} << (h.biBitCount % 32)));
  // The packed, little-endian struct is the header's bytes on disk.
  const std::span<const std::byte> head(reinterpret_cast<const std::byte*>(&file), sizeof(file));
  const std::span<const std::byte> block(reinterpret_cast<const std::byte*>(lpbi), blockSize);
  return corlith::ui::WriteFileReplacing(szFile, {head, block}) ? 1 : 0;
}

int CGDIBitmap::WriteDIB(const char* szFile, const corlith::PackedDib& dib) {
  return WriteDIB(szFile, dib.get());
}
