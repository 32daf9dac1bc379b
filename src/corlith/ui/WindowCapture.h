// Pictures of windows made by the windows' own painting: the toolkit draws the window
// and its children into an off-screen surface, so the picture is right even when the
// window is covered or off the screen (where copying the screen gives black or the
// covering window).
#pragma once

#include <wx/bitmap.h>

#include <cstdint>

class wxWindow;

namespace corlith::ui {

/// The window (with its children) as it paints itself, at its current size; an invalid
/// bitmap when the window is not realised on the screen yet or has no area.
wxBitmap RenderWindow(wxWindow& window);

/// The X11 window id of `window`'s top-level window (realised first when it is not
/// yet), which other programs (xdotool, import, a helper of ours) know it by; 0 when the
/// display is not X11.
std::uint64_t X11WindowId(wxWindow& window);

}  // namespace corlith::ui
