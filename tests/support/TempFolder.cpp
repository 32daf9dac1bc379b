#include <corlith/test/TempFolder.h>

#include <unistd.h>

#include <atomic>
#include <fstream>
#include <iterator>
#include <system_error>
#include <utility>

namespace corlith::test {

namespace fs = std::filesystem;

TempFolder::TempFolder(std::string_view tag) {
  static std::atomic<unsigned> counter{0};
  const fs::path base = fs::temp_directory_path();
  const std::string prefix = "corlith-" + std::string(tag) + "-" + std::to_string(::getpid()) + "-";
  // A folder left by an earlier process that had this process id is skipped, not reused.
  for (;;) {
    fs::path candidate = base / (prefix + std::to_string(counter++));
    if (fs::create_directory(candidate)) {
      m_path = std::move(candidate);
      return;
    }
  }
}

TempFolder::~TempFolder() { Remove(); }

TempFolder::TempFolder(TempFolder&& other) noexcept : m_path(std::exchange(other.m_path, {})) {}

TempFolder& TempFolder::operator=(TempFolder&& other) noexcept {
  if (this != &other) {
    Remove();
    m_path = std::exchange(other.m_path, {});
  }
  return *this;
}

void TempFolder::Remove() noexcept {
  if (m_path.empty()) return;
  std::error_code ignored;
  fs::remove_all(m_path, ignored);
  m_path.clear();
}

std::string TempFolder::PathOf(std::string_view name) const { return (m_path / name).string(); }

std::string TempFolder::Write(std::string_view name, std::string_view bytes) const {
  std::string path = PathOf(name);
  if (!WriteFile(path, bytes)) throw std::ios_base::failure("cannot write " + path);
  return path;
}

std::string ReadFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

bool WriteFile(const fs::path& path, std::string_view bytes) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  return static_cast<bool>(out);
}

}  // namespace corlith::test
