// corlith-gallery: every dialog and bar of the user-interface library, opened with sample
// data. The windows are one table (Entries.cpp): a name and a function that makes the
// window and shows it, so a new window is one more entry.
#pragma once

#include <filesystem>
#include <functional>
#include <span>

class wxWindow;

namespace corlith::gallery {

struct Entry {
  /// The window's name: the file name of its screenshot (<name>.png), letters, digits and '-'.
  const char* name;
  /// Makes the window with sample data and shows it (modeless) over `owner` (may be null);
  /// returns the window, which the gallery destroys when it is done, or null on failure.
  std::function<wxWindow*(wxWindow* owner)> show;
  /// Writes the window's picture to a PNG file; empty: the gallery copies the window's
  /// client area (a window of another process needs its own).
  std::function<bool(wxWindow* window, const std::filesystem::path& png)> capture;
};

/// Every window of the gallery, in the order it shows them.
std::span<const Entry> Entries();

}  // namespace corlith::gallery
