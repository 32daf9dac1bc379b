// The path join on arbitrary texts: the result is canonical (native separators only, no
// "." segment, ".." only as a leading run of a relative path, no doubled separator but
// a network prefix), joining it again changes nothing, and an absolute file stands
// alone. Input: the folder, a line feed, the file.
#include <corlith/platform/Path.h>

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

using corlith::platform::CombinePath;
using corlith::platform::HasDriveLetter;
using corlith::platform::IsAbsolutePath;
using corlith::platform::kNativeSeparator;

void Check(bool condition) {
  if (!condition) std::abort();
}

void CheckCanonical(std::string_view path) {
  Check(path.find(kNativeSeparator == '/' ? '\\' : '/') == std::string_view::npos);
  std::size_t start = 0;
  if (HasDriveLetter(path)) start = 2;
  // A root separator, or two for a network prefix.
  if (start < path.size() && path[start] == kNativeSeparator) ++start;
  if (start == 1 && path.size() > 1 && path[1] == kNativeSeparator) ++start;
  const bool relative = start == 0;
  bool leadingRun = true;
  while (start < path.size()) {
    std::size_t end = path.find(kNativeSeparator, start);
    if (end == std::string_view::npos) end = path.size();
    const std::string_view segment = path.substr(start, end - start);
    Check(!segment.empty());  // no doubled separator
    Check(segment != ".");
    if (segment == "..") {
      Check(relative && leadingRun);
    } else {
      leadingRun = false;
    }
    start = end + 1;  // a closing separator ends the loop
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const std::size_t split = input.find('\n');
  if (split == std::string_view::npos) return 0;
  const std::string_view dir = input.substr(0, split);
  const std::string_view file = input.substr(split + 1);

  const std::string combined = CombinePath(dir, file);
  CheckCanonical(combined);
  Check(combined.size() <= dir.size() + file.size() + 1);
  Check(CombinePath(combined, "") == combined);
  Check(CombinePath("", combined) == combined);
  if (IsAbsolutePath(file)) Check(combined == CombinePath(file, ""));
  // The root survives every "..": an absolute join stays absolute.
  if (IsAbsolutePath(file) || IsAbsolutePath(dir)) Check(IsAbsolutePath(combined));
  if (!IsAbsolutePath(file) && !IsAbsolutePath(dir))
    Check(combined.empty() || combined[0] != kNativeSeparator);
  return 0;
}
