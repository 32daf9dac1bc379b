// The installation file's reader on arbitrary text: the edition is 0 or 1, the text
// alone never claims a file was found, and the result depends only on the lines up to
// the first one of another form: comment lines before, carriage returns before line
// feeds, and anything after an invalid line change nothing.
#include <corlith/environment/Utility.h>

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

void Check(bool condition) {
  if (!condition) std::abort();
}

bool Same(const corlith::InstallationInfo& a, const corlith::InstallationInfo& b) {
  return a.installedLayout == b.installedLayout && a.edition == b.edition && a.found == b.found;
}

std::string WithoutCarriageReturnsBeforeLineFeeds(std::string_view text) {
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') continue;
    out += text[i];
  }
  return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const corlith::InstallationInfo info = corlith::ReadInstallationFile(text);
  Check(info.edition == 0 || info.edition == 1);
  Check(!info.found);
  Check(Same(info, corlith::ReadInstallationFile("# installer\n;\n \t\n" + text)));
  Check(
      Same(info, corlith::ReadInstallationFile(text + "\nnot a setting\nlayout=installed\nedition=ecad\n")));
  Check(Same(info, corlith::ReadInstallationFile(WithoutCarriageReturnsBeforeLineFeeds(text))));
  return 0;
}
