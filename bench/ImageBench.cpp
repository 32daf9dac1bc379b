// Pictures out of views at 4K: saving a 3840 × 2160 OpenGL view as JPEG (quality 100)
// beside reading the same pixels and encoding them with libjpeg-turbo's own API, and
// writing a 100 MB packed DIB as a BMP file beside write(2) of the same bytes. The view
// is a headless EGL context (no display needed).
#define GL_GLEXT_PROTOTYPES 1
#include <corlith/test/HeadlessGl.h>
#include <corlith/test/TempFolder.h>
#include <corlith/ui/GDIBitmap.h>
#include <corlith/ui/Image.h>

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>
#include <wx/init.h>

#include <cstdio>
// libjpeg's header needs FILE and size_t declared first.
#include <jpeglib.h>

#include <memory>
#include <string>
#include <vector>

namespace {

constexpr int kWidth = 3840;
constexpr int kHeight = 2160;

// A current desktop OpenGL context on Mesa's surfaceless platform with a 4K framebuffer
// object holding a gradient, made once.
bool HaveView() {
  static const bool ready = [] {
    // Made once and kept current for the whole run.
    static corlith::test::HeadlessGlContext context(kWidth, kHeight);
    if (!context.Ok()) return false;
    glBegin(GL_QUADS);
    glColor3f(0.1F, 0.2F, 0.8F);
    glVertex2f(-1, -1);
    glColor3f(0.9F, 0.3F, 0.1F);
    glVertex2f(1, -1);
    glColor3f(0.2F, 0.9F, 0.4F);
    glVertex2f(1, 1);
    glColor3f(0.0F, 0.0F, 0.0F);
    glVertex2f(-1, 1);
    glEnd();
    glFinish();
    return true;
  }();
  return ready;
}

struct Folder {
  corlith::test::TempFolder folder{"imagebench"};
};
Folder& Scratch() {
  static Folder folder;
  return folder;
}

void SaveViewAsJpeg(benchmark::State& state) {
  const wxInitializer wx;
  if (!HaveView()) {
    state.SkipWithError("no headless OpenGL context");
    return;
  }
  const CString path(Scratch().folder.PathOf("ours.jpg"));
  for (auto _ : state) {
    if (CKTImage::SaveToImageFromOpenGLView(path, nullptr, CRect(0, 0, kWidth, kHeight)) != 1) {
      state.SkipWithError("save failed");
      return;
    }
  }
}

// The peer: the same read, then libjpeg-turbo straight from the BGRA rows (bottom row
// last: the flip is the order rows are handed over), quality 100, to a file.
void SaveViewAsJpegPeer(benchmark::State& state) {
  if (!HaveView()) {
    state.SkipWithError("no headless OpenGL context");
    return;
  }
  const std::string path = Scratch().folder.PathOf("peer.jpg");
  std::vector<unsigned char> bgra(static_cast<std::size_t>(kWidth) * kHeight * 4);
  for (auto _ : state) {
    glFlush();
    glFinish();
    glPixelStorei(GL_PACK_ALIGNMENT, 4);
    glReadPixels(0, 0, kWidth, kHeight, GL_BGRA, GL_UNSIGNED_BYTE, bgra.data());
    FILE* out = std::fopen(path.c_str(), "wb");
    jpeg_compress_struct cinfo{};
    jpeg_error_mgr error{};
    cinfo.err = jpeg_std_error(&error);
    jpeg_create_compress(&cinfo);
    jpeg_stdio_dest(&cinfo, out);
    cinfo.image_width = kWidth;
    cinfo.image_height = kHeight;
    cinfo.input_components = 4;
    cinfo.in_color_space = JCS_EXT_BGRA;
    jpeg_set_defaults(&cinfo);
    jpeg_set_quality(&cinfo, 100, TRUE);
    jpeg_start_compress(&cinfo, TRUE);
    while (cinfo.next_scanline < cinfo.image_height) {
      JSAMPROW row = bgra.data() + static_cast<std::size_t>(kHeight - 1 - cinfo.next_scanline) * kWidth * 4;
      jpeg_write_scanlines(&cinfo, &row, 1);
    }
    jpeg_finish_compress(&cinfo);
    jpeg_destroy_compress(&cinfo);
    std::fclose(out);
  }
}

// 100 MB of 32-bit pixels: 5000 × 5000.
const corlith::PackedDib& BigDib() {
  static const corlith::PackedDib dib = [] {
    constexpr int kSide = 5000;
    corlith::PackedDib d(40 + static_cast<std::size_t>(kSide) * kSide * 4);
    d->bmiHeader.biSize = 40;
    d->bmiHeader.biWidth = kSide;
    d->bmiHeader.biHeight = kSide;
    d->bmiHeader.biPlanes = 1;
    d->bmiHeader.biBitCount = 32;
    for (std::size_t i = 40; i < d.size(); i += 4096) d.data()[i] = std::byte{1};
    return d;
  }();
  return dib;
}

void WriteDib100MB(benchmark::State& state) {
  const auto& dib = BigDib();
  const std::string path = Scratch().folder.PathOf("ours.bmp");
  for (auto _ : state) {
    if (CGDIBitmap::WriteDIB(path.c_str(), dib) != 1) {
      state.SkipWithError("WriteDIB failed");
      return;
    }
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                          static_cast<std::int64_t>(dib.size()));
}

void WriteDib100MBPeer(benchmark::State& state) {
  const auto& dib = BigDib();
  const std::string path = Scratch().folder.PathOf("peer.bmp");
  unsigned char header[14] = {'B', 'M'};
  for (auto _ : state) {
    const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    bool ok = ::write(fd, header, sizeof header) == static_cast<ssize_t>(sizeof header);
    std::size_t done = 0;
    while (ok && done < dib.size()) {
      const ssize_t n = ::write(fd, dib.data() + done, dib.size() - done);
      ok = n > 0;
      done += ok ? static_cast<std::size_t>(n) : 0;
    }
    ::close(fd);
    if (!ok) {
      state.SkipWithError("write failed");
      return;
    }
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                          static_cast<std::int64_t>(dib.size()));
}

}  // namespace

BENCHMARK(SaveViewAsJpeg)->Name("SaveViewAsJpeg/3840x2160")->Unit(benchmark::kMillisecond);
BENCHMARK(SaveViewAsJpegPeer)
    ->Name("SaveViewAsJpeg/3840x2160/peer:libjpeg-turbo")
    ->Unit(benchmark::kMillisecond);
BENCHMARK(WriteDib100MB)->Name("WriteDIB/100MB")->Unit(benchmark::kMillisecond);
BENCHMARK(WriteDib100MBPeer)->Name("WriteDIB/100MB/peer:write")->Unit(benchmark::kMillisecond);
