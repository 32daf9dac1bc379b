#include <corlith/environment/ZipExtract.h>

#include <corlith/platform/File.h>
#include <corlith/platform/FileSystem.h>
#include <corlith/platform/Path.h>

#include <zip.h>

#include <atomic>
#include <cerrno>
#include <exception>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>
#include <unordered_set>
#include <utility>
#include <vector>

namespace corlith {
namespace {

namespace platform = corlith::platform;

// The original read through a buffer of this size; it is also a good unit for zlib.
constexpr std::size_t kBufferSize = 65536;

// The type bits of a POSIX mode as the ZIP external attributes carry them (high word).
constexpr std::uint32_t kTypeMask = 0170000;
constexpr std::uint32_t kSymbolicLinkType = 0120000;

struct ArchiveCloser {
  // The archive is only read: discarding it writes nothing back.
  void operator()(zip_t* archive) const { zip_discard(archive); }
};
using ArchivePtr = std::unique_ptr<zip_t, ArchiveCloser>;

struct EntryCloser {
  void operator()(zip_file_t* entry) const { zip_fclose(entry); }
};
using EntryPtr = std::unique_ptr<zip_file_t, EntryCloser>;

std::string LibraryError(int code) {
  zip_error_t error;
  zip_error_init_with_code(&error, code);
  std::string text = zip_error_strerror(&error);
  zip_error_fini(&error);
  return text;
}

std::string SystemError(int code) { return std::generic_category().message(code); }

ZipExtractResult Failure(ZipExtractStatus status, std::string message, std::uint64_t written = 0) {
  ZipExtractResult result;
  result.status = status;
  result.message = std::move(message);
  result.written = written;
  return result;
}

// The relative path an entry names: its non-empty, non-"." parts joined with the native
// separator. Only called on names ZipEntryNameProblem accepted.
std::string RelativePath(std::string_view name) {
  std::string path;
  std::size_t start = 0;
  while (start <= name.size()) {
    std::size_t end = name.find('/', start);
    if (end == std::string_view::npos) end = name.size();
    const std::string_view part = name.substr(start, end - start);
    if (!part.empty() && part != ".") {
      if (!path.empty()) path += platform::kNativeSeparator;
      path += part;
    }
    start = end + 1;
  }
  return path;
}

// One entry, as the checks found it.
struct PlannedEntry {
  zip_uint64_t index = 0;
  std::string name;      // as stored, for messages
  std::string relative;  // below the target, native separators; empty: the target itself
  bool folder = false;
  zip_uint64_t size = 0;
};

// Checks every entry before anything is written; fills `plan` or says why not.
std::string CheckArchive(zip_t* archive, std::vector<PlannedEntry>& plan) {
  const zip_int64_t count = zip_get_num_entries(archive, 0);
  if (count < 0) return "the archive's entries cannot be counted";
  for (zip_uint64_t index = 0; index < static_cast<zip_uint64_t>(count); ++index) {
    zip_stat_t stat;
    zip_stat_init(&stat);
    if (zip_stat_index(archive, index, 0, &stat) != 0 || (stat.valid & ZIP_STAT_NAME) == 0) {
      return "entry " + std::to_string(index) + ": " + zip_strerror(archive);
    }
    PlannedEntry entry;
    entry.index = index;
    entry.name = stat.name;
    entry.folder = !entry.name.empty() && entry.name.back() == '/';
    entry.size = (stat.valid & ZIP_STAT_SIZE) != 0 ? stat.size : 0;
    if (const std::string_view problem = ZipEntryNameProblem(entry.name); !problem.empty()) {
      return "\"" + entry.name + "\": " + std::string(problem);
    }
    entry.relative = RelativePath(entry.name);
    zip_uint8_t system = 0;
    zip_uint32_t attributes = 0;
    if (zip_file_get_external_attributes(archive, index, 0, &system, &attributes) == 0 &&
        system == ZIP_OPSYS_UNIX && ((attributes >> 16) & kTypeMask) == kSymbolicLinkType) {
      return "\"" + entry.name + "\": a symbolic link";
    }
    if ((stat.valid & ZIP_STAT_ENCRYPTION_METHOD) != 0 && stat.encryption_method != ZIP_EM_NONE) {
      return "\"" + entry.name + "\": encrypted";
    }
    if (!entry.folder && (stat.valid & ZIP_STAT_COMP_METHOD) != 0 &&
        zip_compression_method_supported(stat.comp_method, 0) == 0) {
      return "\"" + entry.name + "\": an unsupported compression method";
    }
    plan.push_back(std::move(entry));
  }
  return {};
}

enum class PathKind { Missing, Folder, Link, Other, Unknown };

// What is at the path itself, a symbolic link not followed.
PathKind KindOf(const std::string& path) {
  std::error_code error;
  const std::filesystem::file_status status = std::filesystem::symlink_status(path, error);
  if (status.type() == std::filesystem::file_type::not_found) return PathKind::Missing;
  if (error) return PathKind::Unknown;
  if (status.type() == std::filesystem::file_type::symlink) return PathKind::Link;
  if (status.type() == std::filesystem::file_type::directory) return PathKind::Folder;
  return PathKind::Other;
}

// Creates the target folder with its missing parents; links above it are the caller's
// choice and are followed.
bool MakeTarget(const std::string& target) {
  for (std::size_t i = 1; i < target.size(); ++i) {
    if (target[i] == platform::kNativeSeparator) platform::MakeFolder(std::string_view(target).substr(0, i));
  }
  platform::MakeFolder(target);
  platform::FileFacts facts;
  return platform::QueryFileFacts(target, facts) == 0 && facts.kind == platform::FileKind::Directory;
}

class Extractor {
 public:
  Extractor(zip_t* archive, std::string target) : m_archive(archive), m_target(std::move(target)) {}

  // Empty, or what went wrong with the entry.
  std::string Write(const PlannedEntry& entry) {
    if (entry.folder) return MakeFolders(entry.relative, entry.relative.size());
    const std::size_t last = entry.relative.rfind(platform::kNativeSeparator);
    if (last != std::string::npos) {
      if (std::string problem = MakeFolders(entry.relative, last); !problem.empty()) return problem;
    }
    return WriteFile(entry);
  }

 private:
  // Makes every folder level of relative.substr(0, end), below the target, refusing to
  // pass through a symbolic link. Each level is checked once per extraction.
  std::string MakeFolders(const std::string& relative, std::size_t end) {
    // A folder is only remembered once every level above it was checked: files of a
    // folder already seen cost one look-up, not one per level.
    if (end == 0 || m_folders.contains(std::string_view(relative).substr(0, end))) return {};
    std::size_t next = 0;
    while (next < end) {
      std::size_t cut = relative.find(platform::kNativeSeparator, next);
      if (cut == std::string::npos || cut > end) cut = end;
      const std::string_view folder = std::string_view(relative).substr(0, cut);
      next = cut + 1;
      if (m_folders.contains(folder)) continue;
      const std::string path = Full(folder);
      PathKind kind = KindOf(path);
      if (kind == PathKind::Missing) {
        const int error = platform::MakeFolder(path);
        if (error != 0 && error != EEXIST)
          return "cannot create folder " + std::string(folder) + ": " + SystemError(error);
        kind = KindOf(path);
      }
      if (kind == PathKind::Link) return "the folder " + std::string(folder) + " is a symbolic link";
      if (kind != PathKind::Folder) return std::string(folder) + " is not a folder";
      m_folders.emplace(folder);
    }
    return {};
  }

  std::string WriteFile(const PlannedEntry& entry) {
    const std::string final = Full(entry.relative);
    const std::size_t last = final.rfind(platform::kNativeSeparator);
    const std::string temporary = final.substr(0, last + 1) + TemporaryName();
    // Whatever sits at the temporary name (a planted link) goes first, never followed.
    platform::RemoveFilePath(temporary);
    std::string problem = Stream(entry, temporary);
    if (problem.empty()) {
      const int error = platform::RenamePath(temporary, final);
      if (error != 0) problem = "cannot write " + entry.name + ": " + SystemError(error);
    }
    if (!problem.empty()) platform::RemoveFilePath(temporary);
    return problem;
  }

  std::string Stream(const PlannedEntry& entry, const std::string& temporary) {
    EntryPtr source(zip_fopen_index(m_archive, entry.index, 0));
    if (!source) return "cannot read " + entry.name + ": " + zip_strerror(m_archive);
    platform::FileHandle file;
    platform::FileOpenOptions options;
    options.access = platform::FileAccess::Write;
    options.create = true;
    options.truncate = true;
    if (const int error = file.Open(temporary, options); error != 0) {
      return "cannot write " + entry.name + ": " + SystemError(error);
    }
    if (!m_buffer) m_buffer = std::make_unique<char[]>(kBufferSize);
    zip_uint64_t total = 0;
    while (true) {
      // The checksum is checked by the library when the end is read.
      const zip_int64_t got = zip_fread(source.get(), m_buffer.get(), kBufferSize);
      if (got < 0) return "cannot read " + entry.name + ": " + zip_file_strerror(source.get());
      if (got == 0) break;
      if (const int error = file.Write(m_buffer.get(), static_cast<std::size_t>(got)); error != 0) {
        return "cannot write " + entry.name + ": " + SystemError(error);
      }
      total += static_cast<zip_uint64_t>(got);
    }
    if (const int code = zip_fclose(source.release()); code != 0) {
      return "cannot read " + entry.name + ": " + LibraryError(code);
    }
    if (total != entry.size) return "cannot read " + entry.name + ": the size does not match";
    if (const int error = file.Close(); error != 0)
      return "cannot write " + entry.name + ": " + SystemError(error);
    return {};
  }

  std::string Full(std::string_view relative) const {
    std::string path = m_target;
    if (path.empty() || path.back() != platform::kNativeSeparator) path += platform::kNativeSeparator;
    path += relative;
    return path;
  }

  static std::string TemporaryName() {
    static std::atomic<unsigned long> counter{0};
    return ".corlith-zip-" + std::to_string(platform::CurrentProcessId()) + "-" + std::to_string(++counter) +
           ".part";
  }

  struct Hash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
  };

  zip_t* m_archive;
  std::string m_target;
  std::unordered_set<std::string, Hash, std::equal_to<>> m_folders;
  std::unique_ptr<char[]> m_buffer;
};

std::string NativeFolder(std::string_view path) {
  std::string native = platform::ToNativeSeparators(path);
  while (native.size() > 1 && native.back() == platform::kNativeSeparator) native.pop_back();
  return native;
}

ZipExtractResult Extract(std::string_view zipPath, std::string_view target) {
  constexpr std::string_view kNul("\0", 1);
  if (zipPath.empty() || target.empty() || zipPath.find(kNul) != std::string_view::npos ||
      target.find(kNul) != std::string_view::npos) {
    return Failure(ZipExtractStatus::BadArguments, "no archive or no target given");
  }
  const std::string archivePath = platform::ToNativeSeparators(zipPath);
  int code = 0;
  const ArchivePtr archive(zip_open(archivePath.c_str(), ZIP_RDONLY, &code));
  if (!archive) return Failure(ZipExtractStatus::CannotOpen, archivePath + ": " + LibraryError(code));

  std::vector<PlannedEntry> plan;
  if (std::string problem = CheckArchive(archive.get(), plan); !problem.empty()) {
    return Failure(ZipExtractStatus::Refused, "refused: " + problem);
  }
  const std::string folder = NativeFolder(target);
  if (!MakeTarget(folder)) return Failure(ZipExtractStatus::TargetFailed, "cannot create folder " + folder);

  Extractor extractor(archive.get(), folder);
  ZipExtractResult result;
  for (const PlannedEntry& entry : plan) {
    if (std::string problem = extractor.Write(entry); !problem.empty()) {
      return Failure(ZipExtractStatus::EntryFailed, std::move(problem), result.written);
    }
    ++result.written;
  }
  return result;
}

}  // namespace

std::string_view ZipEntryNameProblem(std::string_view name) {
  if (name.empty()) return "an empty name";
  if (name.front() == '/') return "an absolute name";
  if (platform::HasDriveLetter(name)) return "a drive letter";
  if (name.find('\\') != std::string_view::npos) return "a backslash";
  bool namesSomething = false;
  std::size_t start = 0;
  while (start <= name.size()) {
    std::size_t end = name.find('/', start);
    if (end == std::string_view::npos) end = name.size();
    const std::string_view part = name.substr(start, end - start);
    if (part == "..") return "a \"..\" part";
    if (!part.empty() && part != ".") namesSomething = true;
    start = end + 1;
  }
  // "./" is the target folder itself, harmless as a folder entry; as a file it names nothing.
  if (!namesSomething && name.back() != '/') return "no file name";
  return {};
}

ZipExtractResult ExtractZip(std::string_view zipPath, std::string_view target) {
  try {
    return Extract(zipPath, target);
  } catch (const std::exception& error) {
    // Out of memory on the way: reported like any other failure.
    return Failure(ZipExtractStatus::EntryFailed, error.what());
  }
}

}  // namespace corlith
