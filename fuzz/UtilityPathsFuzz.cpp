// KTUtility's path rules on arbitrary text (in a folder without the trace marker, so
// nothing is written): the guarded join gives native separators and no "." segment up
// to 256 characters, and exactly the two parts around one separator beyond; the parent
// folder is a prefix cut at a separator before the last name; an absolute path is
// recognised by its (blank-trimmed) start.
// Input: the folder, a line feed, the file.
#include <corlith/environment/Utility.h>
#include <corlith/platform/Path.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

using corlith::platform::IsSeparator;
using corlith::platform::kNativeSeparator;

void Check(bool condition) {
  if (!condition) std::abort();
}

std::string_view TrimSeparators(std::string_view text, bool leading) {
  while (!text.empty() && IsSeparator(leading ? text.front() : text.back())) {
    leading ? text.remove_prefix(1) : text.remove_suffix(1);
  }
  return text;
}

void CheckCombine(KTUtility& u, std::string_view dir, std::string_view file) {
  const std::string joined = u.KTPathCombine(CString(dir), CString(file), "UtilityPathsFuzz", __LINE__).str();
  if (dir.size() + file.size() <= 256) {
    Check(joined.find(kNativeSeparator == '/' ? '\\' : '/') == std::string::npos);
    Check(joined.find(std::string(1, kNativeSeparator) + "." + kNativeSeparator) == std::string::npos);
    // A file that keeps a drive after its leading separators are dropped stands alone.
    const std::string_view rest = TrimSeparators(file, true);
    if (corlith::platform::HasDriveLetter(rest)) Check(joined == corlith::platform::CombinePath(rest, ""));
  } else {
    const std::string expected =
        std::string(TrimSeparators(dir, false)) + kNativeSeparator + std::string(TrimSeparators(file, true));
    Check(joined == expected);
  }
}

void CheckParent(KTUtility& u, std::string_view path) {
  const std::string parent = u.GetParentDir(CString(path)).str();
  Check(parent.size() < path.size() || path.empty());
  Check(path.substr(0, parent.size()) == parent);
  if (!parent.empty()) Check(IsSeparator(path[parent.size()]));
  // Nothing but separators between the cut and the end, once the cut ended a name.
  if (!parent.empty()) {
    const std::string_view tail = path.substr(parent.size() + 1);
    const std::string_view name = TrimSeparators(tail, false);
    Check(name.find_first_of("\\/") == std::string_view::npos);
  }
}

// Only what holds whatever the drive rule's details: the rule reads a blank-trimmed copy.
void CheckAbsolute(KTUtility& u, std::string_view path) {
  const int absolute = u.IsAbsolutePath(CString(path));
  Check(absolute == 0 || absolute == 1);
  std::string_view trimmed = path;
  constexpr std::string_view kBlanks = " \t\n\v\f\r";
  while (!trimmed.empty() && kBlanks.find(trimmed.front()) != std::string_view::npos)
    trimmed.remove_prefix(1);
  while (!trimmed.empty() && kBlanks.find(trimmed.back()) != std::string_view::npos) trimmed.remove_suffix(1);
  const bool network = trimmed.size() >= 2 && IsSeparator(trimmed[0]) && IsSeparator(trimmed[1]);
  if (network || trimmed.starts_with('/')) Check(absolute == 1);
  if (trimmed.empty() || (!IsSeparator(trimmed[0]) && trimmed.find(':') == std::string_view::npos)) {
    Check(absolute == 0);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  KTUtility& u = *KTUtility::GetInstance();
  static const bool tracing = u.IsTracing();
  if (tracing) {
    // Every join would be appended to a log beside the fuzzer: refuse to run there.
    std::fputs("UtilityPathsFuzz: remove CREATE_PATH_LOG beside the program first\n", stderr);
    std::abort();
  }
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const std::size_t cut = input.find('\n');
  const std::string_view dir = input.substr(0, cut);
  const std::string_view file = cut == std::string_view::npos ? std::string_view() : input.substr(cut + 1);
  CheckCombine(u, dir, file);
  CheckParent(u, dir);
  CheckParent(u, file);
  CheckAbsolute(u, dir);
  CheckAbsolute(u, file);
  return 0;
}
