// ZIP extraction of arbitrary bytes: the bytes are written as an archive into a
// temporary folder and extracted to a target four levels below it. Whatever happens,
// nothing appears in the folder outside the target (a name climbing out by ".." parts
// would land there), no temporary file is left in the target, a refused or unreadable
// archive leaves no target at all. The folder goes when the run ends.
#include <corlith/environment/ZipExtract.h>

#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

namespace {

namespace fs = std::filesystem;

void Check(bool condition) {
  if (!condition) std::abort();
}

// One folder for the whole run, emptied before each input and removed at exit (the
// path itself is never destroyed, so that the exit handler can still read it).
const fs::path& Root() {
  static const fs::path* const root = [] {
    auto* path = new fs::path(fs::temp_directory_path() / ("corlith-zipfuzz-" + std::to_string(::getpid())));
    fs::create_directories(*path);
    std::atexit([] {
      std::error_code ignored;
      fs::remove_all(Root(), ignored);
    });
    return path;
  }();
  return *root;
}

void CheckNoTemporaryFile(const fs::path& folder) {
  std::error_code error;
  for (fs::recursive_directory_iterator it(folder, error), end; !error && it != end; it.increment(error)) {
    Check(it->path().filename().string().find(".corlith-zip-") == std::string::npos);
  }
  Check(!error);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const fs::path& root = Root();
  std::error_code error;
  for (const fs::directory_entry& entry : fs::directory_iterator(root)) fs::remove_all(entry.path(), error);
  const fs::path zip = root / "in.zip";
  {
    std::ofstream out(zip, std::ios::binary);
    out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  }
  const fs::path target = root / "a" / "b" / "c" / "target";
  const corlith::ZipExtractResult result = corlith::ExtractZip(zip.string(), target.string());

  // Outside the target: the archive, and the target's own folders when it was made.
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(root)) {
    const fs::path relative = entry.path().lexically_relative(root);
    const std::string text = relative.generic_string();
    Check(text == "in.zip" || text == "a" || text == "a/b" || text == "a/b/c" || text == "a/b/c/target" ||
          text.starts_with("a/b/c/target/"));
  }
  const bool targetMade = fs::exists(target);
  switch (result.status) {
    case corlith::ZipExtractStatus::Extracted:
      Check(result.message.empty() && targetMade);
      CheckNoTemporaryFile(target);
      break;
    case corlith::ZipExtractStatus::CannotOpen:
    case corlith::ZipExtractStatus::Refused:
      Check(!targetMade && !fs::exists(root / "a"));
      break;
    case corlith::ZipExtractStatus::EntryFailed:
      Check(targetMade && !result.message.empty());
      CheckNoTemporaryFile(target);
      break;
    case corlith::ZipExtractStatus::BadArguments:
    case corlith::ZipExtractStatus::TargetFailed:
      Check(false);  // the paths are fine here
      break;
  }
  return 0;
}
