#include <corlith/ui/GifControl.h>

#include <wx/anidecod.h>
#include <wx/dcclient.h>
#include <wx/gifdecod.h>
#include <wx/image.h>
#include <wx/log.h>
#include <wx/wfstream.h>

#include <algorithm>

namespace {

constexpr int kTimerId = 1;

// A frame delay of 0 would restart the timer at once, for ever; such frames get the
// shortest delay browsers give them. Deliberate: the file's 0 is kept in GetDelays().
constexpr int kShortestDelayMs = 10;

// Composes the decoder's frames (each a patch at its own position, with its disposal)
// into whole pictures of the animation's size.
std::vector<wxBitmap> ComposeFrames(wxGIFDecoder& decoder) {
  const wxSize size = decoder.GetAnimationSize();
  std::vector<wxBitmap> frames;
  if (size.x <= 0 || size.y <= 0) return frames;
  wxImage canvas(size);
  canvas.InitAlpha();
  std::fill_n(canvas.GetAlpha(), static_cast<std::size_t>(size.x) * static_cast<std::size_t>(size.y), 0);
  const unsigned count = decoder.GetFrameCount();
  frames.reserve(count);
  for (unsigned i = 0; i < count; ++i) {
    wxImage patch;
    if (!decoder.ConvertToImage(i, &patch)) return {};
    const wxPoint at = decoder.GetFramePosition(i);
    const wxImage before = canvas.Copy();
    if (!patch.HasAlpha()) patch.InitAlpha();  // the transparent colour becomes alpha 0
    canvas.Paste(patch, at.x, at.y, wxIMAGE_ALPHA_BLEND_COMPOSE);
    frames.emplace_back(canvas);
    switch (decoder.GetDisposalMethod(i)) {
      case wxANIM_TOBACKGROUND: {
        const wxRect rect = wxRect(at, decoder.GetFrameSize(i)).Intersect(wxRect(size));
        for (int y = rect.y; y < rect.GetBottom() + 1; ++y) {
          for (int x = rect.x; x < rect.GetRight() + 1; ++x) canvas.SetAlpha(x, y, 0);
        }
        break;
      }
      case wxANIM_TOPREVIOUS:
        canvas = before;
        break;
      default:
        break;
    }
  }
  return frames;
}

}  // namespace

CGifControl::CGifControl() : m_timer(this, kTimerId) {
  Bind(wxEVT_TIMER, &CGifControl::OnTimer, this, kTimerId);
  Bind(wxEVT_PAINT, &CGifControl::OnPaint, this);
}

CGifControl::~CGifControl() { Unload(); }

bool CGifControl::Create(wxWindow* parent, wxWindowID id, const wxRect& rect) {
  if (!wxControl::Create(parent, id, rect.GetPosition(), rect.GetSize(), wxBORDER_NONE)) return false;
  SetBackgroundStyle(wxBG_STYLE_PAINT);
  Attach(this);
  return true;
}

BOOL CGifControl::Load(const CString& path) {
  Unload();
  const wxLogNull quiet;  // a missing or corrupt file answers 0, never a message box
  wxFileInputStream stream(corlith::ui::ToWx(path));
  if (!stream.IsOk()) return 0;
  wxGIFDecoder decoder;
  if (decoder.LoadGIF(stream) != wxGIF_OK || decoder.GetFrameCount() == 0) return 0;
  std::vector<wxBitmap> frames = ComposeFrames(decoder);
  if (frames.empty()) return 0;
  m_frames = std::move(frames);
  m_nFrameCount = static_cast<std::uint32_t>(m_frames.size());
  m_delays.clear();
  for (std::uint32_t i = 0; i < m_nFrameCount; ++i) {
    // The decoder gives milliseconds (the file's hundredths × 10).
    m_delays.push_back(static_cast<std::uint32_t>(std::max(decoder.GetDelay(i), 0L) / 10));
  }
  m_nFramePosition = 0;
  m_nShownFrame = 0;
  return 1;
}

void CGifControl::StartTimerFor(std::uint32_t frame) {
  const int ms = static_cast<int>(std::min<std::uint32_t>(m_delays[frame], 1U << 20) * 10U);
  m_timer.StartOnce(std::max(ms, kShortestDelayMs));
}

void CGifControl::SelectFrame(std::uint32_t frame) {
  m_nShownFrame = frame;
  if (GetHandle() != nullptr) Refresh(false);
}

void CGifControl::Play() {
  if (m_bIsPlaying != 0 || m_nFrameCount == 0) return;
  m_nFramePosition = 0;
  SelectFrame(0);
  StartTimerFor(0);
  m_nFramePosition = 1 % m_nFrameCount;
  m_bIsPlaying = 1;
}

void CGifControl::OnTimer(wxTimerEvent&) {
  m_timer.Stop();
  if (m_nFrameCount == 0) return;
  const std::uint32_t frame = m_nFramePosition;
  SelectFrame(frame);
  StartTimerFor(frame);
  m_nFramePosition = (frame + 1) % m_nFrameCount;
}

void CGifControl::Stop() {
  if (m_bIsPlaying == 0) return;
  m_timer.Stop();
  m_bIsPlaying = 0;
}

void CGifControl::Unload() {
  m_timer.Stop();
  m_bIsPlaying = 0;
  m_frames.clear();
  m_delays.clear();
  m_nFrameCount = 0;
  m_nFramePosition = 0;
  m_nShownFrame = 0;
}

void CGifControl::OnPaint(wxPaintEvent&) {
  wxPaintDC dc(this);
  dc.SetBackground(wxBrush(GetBackgroundColour()));
  dc.Clear();
  if (m_nShownFrame >= m_frames.size()) return;
  const wxBitmap& frame = m_frames[m_nShownFrame];
  const wxSize client = GetClientSize();
  if (frame.GetWidth() <= 0 || frame.GetHeight() <= 0 || client.x <= 0 || client.y <= 0) return;
  dc.SetUserScale(static_cast<double>(client.x) / frame.GetWidth(),
                  static_cast<double>(client.y) / frame.GetHeight());
  dc.DrawBitmap(frame, 0, 0, true);
}
