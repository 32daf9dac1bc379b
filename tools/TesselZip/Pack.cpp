#include "Pack.h"

#include <zip.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

namespace tesselzip {
namespace {

namespace fs = std::filesystem;

// zip's default level, so that archives and times compare with zip -r.
constexpr zip_uint32_t kDeflateLevel = 6;
constexpr zip_uint32_t kRegularType = 0100000;
constexpr zip_uint32_t kFolderType = 0040000;

zip_uint32_t Attributes(zip_uint32_t type, fs::perms permissions) {
  return (type | (static_cast<zip_uint32_t>(permissions) & 07777U)) << 16;
}

struct ArchiveDiscarder {
  void operator()(zip_t* archive) const { zip_discard(archive); }
};

class Packer {
 public:
  Packer(fs::path root, fs::path output) : m_root(std::move(root)), m_output(std::move(output)) {}

  bool Open(const std::string& zipPath) {
    int code = 0;
    m_archive.reset(zip_open(zipPath.c_str(), ZIP_CREATE | ZIP_TRUNCATE, &code));
    if (!m_archive) {
      zip_error_t error;
      zip_error_init_with_code(&error, code);
      m_message = zipPath + ": " + zip_error_strerror(&error);
      zip_error_fini(&error);
    }
    return m_archive != nullptr;
  }

  bool AddFile(const fs::path& path, const std::string& name, fs::perms permissions) {
    zip_error_t error;
    zip_error_init(&error);
    zip_source_t* source = zip_source_file_create(path.c_str(), 0, 0, &error);  // 0: to the end
    if (source == nullptr) {
      m_message = path.string() + ": " + zip_error_strerror(&error);
      zip_error_fini(&error);
      return false;
    }
    const zip_int64_t index = zip_file_add(m_archive.get(), name.c_str(), source, ZIP_FL_ENC_GUESS);
    if (index < 0) {
      zip_source_free(source);
      return Fail(name);
    }
    const auto entry = static_cast<zip_uint64_t>(index);
    if (zip_set_file_compression(m_archive.get(), entry, ZIP_CM_DEFLATE, kDeflateLevel) != 0 ||
        zip_file_set_external_attributes(m_archive.get(), entry, 0, ZIP_OPSYS_UNIX,
                                         Attributes(kRegularType, permissions)) != 0) {
      return Fail(name);
    }
    return true;
  }

  bool AddFolder(const std::string& name, fs::perms permissions) {
    const zip_int64_t index = zip_dir_add(m_archive.get(), name.c_str(), ZIP_FL_ENC_GUESS);
    if (index < 0) return Fail(name);
    if (zip_file_set_external_attributes(m_archive.get(), static_cast<zip_uint64_t>(index), 0, ZIP_OPSYS_UNIX,
                                         Attributes(kFolderType, permissions)) != 0) {
      return Fail(name);
    }
    return true;
  }

  // Adds everything below `folder` (a path below the root, no link on the way) under
  // `prefix`, in name order so that the same tree always gives the same archive.
  bool Walk(const fs::path& folder, const std::string& prefix) {
    std::error_code error;
    std::vector<fs::directory_entry> entries;
    for (fs::directory_iterator it(folder, error), end; !error && it != end; it.increment(error)) {
      entries.push_back(*it);
    }
    if (error) return Fail(folder.string(), error);
    std::sort(entries.begin(), entries.end(),
              [](const fs::directory_entry& a, const fs::directory_entry& b) { return a.path() < b.path(); });
    for (const fs::directory_entry& entry : entries) {
      const std::string name = prefix + entry.path().filename().string();
      const fs::file_status status = entry.symlink_status(error);
      if (error) return Fail(entry.path().string(), error);
      if (fs::is_symlink(status)) {
        if (!AddLink(entry.path(), name)) return false;
      } else if (fs::is_directory(status)) {
        if (!AddFolder(name, status.permissions()) || !Walk(entry.path(), name + "/")) return false;
      } else if (fs::is_regular_file(status)) {
        if (entry.path() == m_output) continue;
        if (!AddFile(entry.path(), name, status.permissions())) return false;
      }
    }
    return true;
  }

  bool Close() {
    if (zip_close(m_archive.get()) != 0) return Fail("writing the archive");
    static_cast<void>(m_archive.release());  // zip_close freed it
    return true;
  }

  const std::string& Message() const { return m_message; }

 private:
  bool AddLink(const fs::path& link, const std::string& name) {
    std::error_code error;
    const fs::path target = fs::canonical(link, error);
    if (error || !IsInsideRoot(target) || target == m_output) return true;  // dangling or outside: left out
    const fs::file_status status = fs::status(target, error);
    if (error || !fs::is_regular_file(status)) return true;
    return AddFile(target, name, status.permissions());
  }

  bool IsInsideRoot(const fs::path& path) const {
    const auto [rootEnd, pathAt] = std::mismatch(m_root.begin(), m_root.end(), path.begin(), path.end());
    return rootEnd == m_root.end() && pathAt != path.end();
  }

  bool Fail(const std::string& subject) {
    m_message = subject + ": " + zip_strerror(m_archive.get());
    return false;
  }

  bool Fail(const std::string& subject, const std::error_code& error) {
    m_message = subject + ": " + error.message();
    return false;
  }

  fs::path m_root;
  fs::path m_output;
  std::unique_ptr<zip_t, ArchiveDiscarder> m_archive;
  std::string m_message;
};

// The name the source is stored under: its own name as given, else its real folder's.
std::string RootName(const fs::path& given, const fs::path& canonical) {
  fs::path name = given.lexically_normal();
  if (!name.has_filename()) name = name.parent_path();
  std::string text = name.filename().string();
  if (text.empty() || text == "." || text == "..") text = canonical.filename().string();
  return text;
}

}  // namespace

int Pack(const std::string& source, const std::string& zipPath, std::string& message) {
  std::error_code error;
  const fs::path root = fs::canonical(source, error);
  if (error) {
    message = source + ": " + error.message();
    return 1;
  }
  const fs::file_status status = fs::status(root, error);
  if (error || !(fs::is_directory(status) || fs::is_regular_file(status))) {
    message = source + ": neither a file nor a folder";
    return 1;
  }
  const fs::path output = fs::weakly_canonical(zipPath, error);
  if (error) {
    message = zipPath + ": " + error.message();
    return 1;
  }

  if (root == output) {
    message = source + ": the archive cannot hold itself";
    return 1;
  }

  Packer packer(root, output);
  if (!packer.Open(zipPath)) {
    message = packer.Message();
    return 1;
  }
  const std::string name = RootName(source, root);
  bool packed = false;
  if (fs::is_regular_file(status)) {
    packed = packer.AddFile(root, name, status.permissions());
  } else if (name.empty()) {
    packed = packer.Walk(root, "");  // the file system's root: no folder entry of its own
  } else {
    packed = packer.AddFolder(name, status.permissions()) && packer.Walk(root, name + "/");
  }
  if (!packed || !packer.Close()) {
    message = packer.Message();
    return 1;
  }
  return 0;
}

}  // namespace tesselzip
