// The archive layer's self-check: known values stored through the library and compared
// byte for byte with the forms the original framework writes, then loaded back.
#pragma once

#include <string>
#include <vector>

namespace corlith::cli {

struct CheckResult {
  std::string name;
  bool passed = false;
  std::string detail;  ///< what went wrong, empty when passed
};

/// Runs every check; `scratchFolder` receives a temporary archive file (removed after).
std::vector<CheckResult> RunSelfCheck(const std::string& scratchFolder);

}  // namespace corlith::cli
