// KTUtility::ExpandEnvironmentStringsA on arbitrary text against a reference that reads
// the text as pieces between "%" signs: a piece with a "%" after it whose name is set
// becomes its value (and the piece after it is plain text again); any other piece keeps
// its "%". A few variables are set for the run; text without "%" comes back as it is.
#include <corlith/environment/Utility.h>

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace {

void Check(bool condition) {
  if (!condition) std::abort();
}

const char* ValueOf(const std::string& name) {
  if (name.empty() || name.find('=') != std::string::npos || name.find('\0') != std::string::npos)
    return nullptr;
  return std::getenv(name.c_str());
}

std::string Reference(std::string_view text) {
  std::vector<std::string> pieces(1);
  for (char c : text) {
    if (c == '%') {
      pieces.emplace_back();
    } else {
      pieces.back() += c;
    }
  }
  std::string out = pieces[0];
  for (std::size_t j = 1; j < pieces.size();) {
    const char* value = j + 1 < pieces.size() ? ValueOf(pieces[j]) : nullptr;
    if (value != nullptr) {
      out += value;
      out += pieces[j + 1];
      j += 2;
    } else {
      out += '%';
      out += pieces[j];
      j += 1;
    }
  }
  return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const bool set = [] {
    ::setenv("A", "alpha", 1);
    ::setenv("CORLITH_FUZZ", "%A%", 1);
    ::setenv("EMPTY", "", 1);
    ::setenv("PCT", "%", 1);
    return true;
  }();
  Check(set);
  const std::string text(reinterpret_cast<const char*>(data), size);
  const std::string expanded = KTUtility::GetInstance()->ExpandEnvironmentStringsA(CString(text)).str();
  Check(expanded == Reference(text));
  if (text.find('%') == std::string::npos) Check(expanded == text);
  return 0;
}
