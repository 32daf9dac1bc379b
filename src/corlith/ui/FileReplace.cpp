#include <corlith/platform/File.h>
#include <corlith/platform/Path.h>
#include <corlith/ui/FileReplace.h>

#include <atomic>
#include <cerrno>
#include <string>

bool corlith::ui::WriteFileReplacing(const std::string& target,
                                     std::initializer_list<std::span<const std::byte>> parts) {
  const std::size_t cut = target.rfind('/');
  const std::string folder = cut == std::string::npos ? std::string() : target.substr(0, cut + 1);
  static std::atomic<unsigned long> counter{0};
  corlith::platform::FileOpenOptions options;
  options.access = corlith::platform::FileAccess::Write;
  options.create = true;
  options.exclusive = true;
  corlith::platform::FileHandle file;
  std::string temporary;
  for (int attempt = 0; attempt < 100 && !file.IsOpen(); ++attempt) {
    std::string name = folder + ".corlith-part-" + std::to_string(corlith::platform::CurrentProcessId()) +
                       "-" + std::to_string(++counter) + ".part";
    const int error = file.Open(name, options);
    if (error == 0) {
      temporary = std::move(name);
    } else if (error != EEXIST) {
      return false;
    }
  }
  if (!file.IsOpen()) return false;
  bool ok = true;
  for (const auto part : parts) ok = ok && file.Write(part.data(), part.size()) == 0;
  ok = file.Close() == 0 && ok;
  ok = ok && corlith::platform::RenameFile(temporary, target) == 0;
  if (!ok) corlith::platform::RemoveFile(temporary);
  return ok;
}
