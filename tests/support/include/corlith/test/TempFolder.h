// A real temporary folder for tests of files on disk, and whole-file reads and writes
// to set up and check what is there. Standard library only.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace corlith::test {

/// A new empty folder under std::filesystem::temp_directory_path(), named
/// corlith-<tag>-<process id>-<n> so that parallel test processes and several folders
/// in one process never meet; removed with everything in it when the object goes.
class TempFolder {
 public:
  /// Throws std::filesystem::filesystem_error when the folder cannot be made.
  explicit TempFolder(std::string_view tag = "test");
  /// Removes the folder recursively; a failure is ignored, never thrown.
  ~TempFolder();
  /// A moved-from folder is empty and removes nothing.
  TempFolder(TempFolder&& other) noexcept;
  TempFolder& operator=(TempFolder&& other) noexcept;
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  const std::filesystem::path& Path() const { return m_path; }
  /// The path of name inside the folder, as the text the library's calls take.
  std::string PathOf(std::string_view name) const;
  /// Writes bytes to the file name in the folder, replacing it; returns PathOf(name).
  /// Throws std::ios_base::failure when the file cannot be written.
  std::string Write(std::string_view name, std::string_view bytes) const;

 private:
  void Remove() noexcept;

  std::filesystem::path m_path;
};

/// The whole content of a file, or "" when it cannot be read.
std::string ReadFile(const std::filesystem::path& path);
/// Replaces a file's content with bytes; false when it cannot be written.
bool WriteFile(const std::filesystem::path& path, std::string_view bytes);

}  // namespace corlith::test
