// Shared by ProgramsTest, ArchivesTest and ZipExtractTest: folder trees written and read
// back as maps, ZIP archives written by libzip (raw names, link attributes) and byte for
// byte by hand, the TesselZip tool's path, programs run with their output captured, and
// this test program installed again in a temporary folder (tools beside it or not) and
// re-run there, so that the executable's folder is one the test controls.
#pragma once

#include <corlith/platform/Process.h>
#include <corlith/test/TempFolder.h>

#include <gtest/gtest.h>
#include <unistd.h>
#include <zip.h>

#include <array>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace archives_test {

namespace fs = std::filesystem;

// --- trees ---------------------------------------------------------------------------

/// A tree: relative path ("/"-separated) -> file content; folders map to kFolder and
/// symbolic links to kLink + their target.
using Tree = std::map<std::string, std::string>;
inline const std::string kFolder = "<folder>";
inline const std::string kLink = "<link>";

inline void MakeTree(const fs::path& root, const Tree& tree) {
  fs::create_directories(root);
  for (const auto& [name, content] : tree) {
    const fs::path path = root / name;
    fs::create_directories(path.parent_path());
    if (content == kFolder) {
      fs::create_directories(path);
    } else if (content.starts_with(kLink)) {
      fs::create_symlink(content.substr(kLink.size()), path);
    } else {
      corlith::test::WriteFile(path, content);
    }
  }
}

inline Tree ReadTree(const fs::path& root) {
  Tree tree;
  std::error_code error;
  for (fs::recursive_directory_iterator it(root, error), end; !error && it != end; it.increment(error)) {
    const std::string name = it->path().lexically_relative(root).generic_string();
    if (it->is_symlink()) {
      tree[name] = kLink + fs::read_symlink(it->path()).string();
    } else if (it->is_directory()) {
      tree[name] = kFolder;
    } else {
      tree[name] = corlith::test::ReadFile(it->path());
    }
  }
  return tree;
}

/// A temporary folder in memory (/dev/shm) where the machine has a writable one, for
/// tests that create tens of thousands of files: a disk's cost per new file would make
/// them take minutes, and is not what they test. Elsewhere an ordinary TempFolder.
class MemoryFolder {
 public:
  explicit MemoryFolder(const std::string& tag) {
    static int counter = 0;
    std::error_code error;
    const fs::path shm("/dev/shm");
    if (fs::is_directory(shm, error) && ::access(shm.c_str(), W_OK) == 0) {
      const fs::path path =
          shm / ("corlith-" + tag + "-" + std::to_string(::getpid()) + "-" + std::to_string(++counter));
      if (fs::create_directory(path, error) && !error) m_memory = path;
    }
    if (m_memory.empty()) m_disk.emplace(tag);
  }
  ~MemoryFolder() {
    std::error_code error;
    if (!m_memory.empty()) fs::remove_all(m_memory, error);
  }
  MemoryFolder(const MemoryFolder&) = delete;
  MemoryFolder& operator=(const MemoryFolder&) = delete;

  fs::path Path() const { return m_memory.empty() ? m_disk->Path() : m_memory; }

 private:
  fs::path m_memory;
  std::optional<corlith::test::TempFolder> m_disk;
};

/// Every path below root (relative, "/"-separated), links not followed.
inline std::set<std::string> Listing(const fs::path& root) {
  std::set<std::string> names;
  for (const auto& [name, content] : ReadTree(root)) names.insert(name);
  return names;
}

/// The tree under `prefix` + "/", with the prefix taken away.
inline Tree Below(const Tree& tree, const std::string& prefix) {
  Tree below;
  for (const auto& [name, content] : tree) {
    if (name.starts_with(prefix + "/")) below[name.substr(prefix.size() + 1)] = content;
  }
  return below;
}

/// Names with blanks, non-ASCII names, an empty folder, hidden files, binary content.
inline Tree SampleTree() {
  std::string binary;
  for (int i = 0; i < 3000; ++i) binary += static_cast<char>((i * 7919) % 256);
  return {
      {"my folder", kFolder},
      {"my folder/inner file.txt", "blank names\n"},
      {"\xC3\xBCmlaut \xC3\xB1", kFolder},
      {"\xC3\xBCmlaut \xC3\xB1/\xE6\x97\xA5\xE6\x9C\xAC.txt", "non-ASCII\n"},
      {"empty folder", kFolder},
      {".hidden", "dot file\n"},
      {"a", kFolder},
      {"a/b", kFolder},
      {"a/b/deep.bin", binary},
      {"a/zero", ""},
  };
}

// --- ZIP archives ----------------------------------------------------------------------

struct ZipItem {
  enum Kind { File, Folder, Link };
  std::string name;  ///< stored exactly as written
  std::string data;  ///< a link's target for Link
  Kind kind = File;
  bool stored = false;  ///< not compressed, so that the bytes stand in the archive as they are
};

/// Writes the items with libzip, names raw.
inline void WriteZip(const fs::path& path, const std::vector<ZipItem>& items) {
  int code = 0;
  zip_t* archive = zip_open(path.c_str(), ZIP_CREATE | ZIP_TRUNCATE, &code);
  ASSERT_NE(archive, nullptr) << path;
  for (const ZipItem& item : items) {
    zip_int64_t index = -1;
    if (item.kind == ZipItem::Folder) {
      index = zip_dir_add(archive, item.name.c_str(), ZIP_FL_ENC_RAW);
    } else {
      zip_source_t* source = zip_source_buffer(archive, item.data.data(), item.data.size(), 0);
      index = zip_file_add(archive, item.name.c_str(), source, ZIP_FL_ENC_RAW);
      if (index < 0) zip_source_free(source);
    }
    ASSERT_GE(index, 0) << item.name << ": " << zip_strerror(archive);
    const auto entry = static_cast<zip_uint64_t>(index);
    if (item.kind == ZipItem::Link) {
      ASSERT_EQ(zip_file_set_external_attributes(archive, entry, 0, ZIP_OPSYS_UNIX, 0120777U << 16), 0);
    }
    if (item.stored) {
      ASSERT_EQ(zip_set_file_compression(archive, entry, ZIP_CM_STORE, 0), 0);
    }
  }
  ASSERT_EQ(zip_close(archive), 0) << zip_strerror(archive);
}

inline std::uint32_t Crc32(std::string_view data) {
  std::uint32_t crc = 0xFFFFFFFFU;
  for (const char c : data) {
    crc ^= static_cast<unsigned char>(c);
    for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ (0xEDB88320U & (0U - (crc & 1U)));
  }
  return ~crc;
}

/// One stored entry of a hand-built archive.
struct RawEntry {
  std::string name;
  std::string data;
  std::optional<std::uint32_t> crc{};   ///< a wrong one on purpose; default: the right one
  std::optional<std::uint32_t> size{};  ///< the size both headers claim; default: the data's
  bool zip64 = false;                   ///< sizes and offset in ZIP64 extra fields
};

/// A stored-only archive, byte for byte: local headers and data, the central directory,
/// then (zip64End) a ZIP64 end record and locator, and the end record.
inline std::string BuildZip(const std::vector<RawEntry>& entries, bool zip64End = false) {
  std::string out;
  auto u16 = [](std::string& s, std::uint64_t v) {
    for (int i = 0; i < 2; ++i) s += static_cast<char>((v >> (8 * i)) & 0xFF);
  };
  auto u32 = [](std::string& s, std::uint64_t v) {
    for (int i = 0; i < 4; ++i) s += static_cast<char>((v >> (8 * i)) & 0xFF);
  };
  auto u64 = [](std::string& s, std::uint64_t v) {
    for (int i = 0; i < 8; ++i) s += static_cast<char>((v >> (8 * i)) & 0xFF);
  };
  std::vector<std::uint64_t> offsets;
  for (const RawEntry& e : entries) {
    offsets.push_back(out.size());
    const std::uint64_t size = e.size.value_or(static_cast<std::uint32_t>(e.data.size()));
    std::string extra;
    if (e.zip64) {
      u16(extra, 0x0001);
      u16(extra, 16);
      u64(extra, size);
      u64(extra, size);
    }
    u32(out, 0x04034b50);
    u16(out, e.zip64 ? 45 : 20);
    u16(out, 0);     // flags
    u16(out, 0);     // stored
    u16(out, 0);     // time
    u16(out, 0x21);  // date: 1980-01-01
    u32(out, e.crc.value_or(Crc32(e.data)));
    u32(out, e.zip64 ? 0xFFFFFFFFU : size);
    u32(out, e.zip64 ? 0xFFFFFFFFU : size);
    u16(out, e.name.size());
    u16(out, extra.size());
    out += e.name;
    out += extra;
    out += e.data;
  }
  const std::uint64_t directoryStart = out.size();
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const RawEntry& e = entries[i];
    const std::uint64_t size = e.size.value_or(static_cast<std::uint32_t>(e.data.size()));
    std::string extra;
    if (e.zip64) {
      u16(extra, 0x0001);
      u16(extra, 24);
      u64(extra, size);
      u64(extra, size);
      u64(extra, offsets[i]);
    }
    u32(out, 0x02014b50);
    u16(out, (3 << 8) | 45);  // made on Unix
    u16(out, e.zip64 ? 45 : 20);
    u16(out, 0);
    u16(out, 0);
    u16(out, 0);
    u16(out, 0x21);
    u32(out, e.crc.value_or(Crc32(e.data)));
    u32(out, e.zip64 ? 0xFFFFFFFFU : size);
    u32(out, e.zip64 ? 0xFFFFFFFFU : size);
    u16(out, e.name.size());
    u16(out, extra.size());
    u16(out, 0);  // comment
    u16(out, 0);  // disk
    u16(out, 0);  // internal attributes
    u32(out, 0100644U << 16);
    u32(out, e.zip64 ? 0xFFFFFFFFU : offsets[i]);
    out += e.name;
    out += extra;
  }
  const std::uint64_t directorySize = out.size() - directoryStart;
  if (zip64End) {
    const std::uint64_t recordStart = out.size();
    u32(out, 0x06064b50);
    u64(out, 44);
    u16(out, 45);
    u16(out, 45);
    u32(out, 0);
    u32(out, 0);
    u64(out, entries.size());
    u64(out, entries.size());
    u64(out, directorySize);
    u64(out, directoryStart);
    u32(out, 0x07064b50);
    u32(out, 0);
    u64(out, recordStart);
    u32(out, 1);
  }
  u32(out, 0x06054b50);
  u16(out, 0);
  u16(out, 0);
  u16(out, zip64End ? 0xFFFF : entries.size());
  u16(out, zip64End ? 0xFFFF : entries.size());
  u32(out, zip64End ? 0xFFFFFFFFU : directorySize);
  u32(out, zip64End ? 0xFFFFFFFFU : directoryStart);
  u16(out, 0);
  return out;
}

// --- programs --------------------------------------------------------------------------

/// The TesselZip tool of this build; empty when the tools were not built.
inline std::string TesselZipPath() {
#ifdef CORLITH_TESSELZIP
  return CORLITH_TESSELZIP;
#else
  if (const char* path = std::getenv("CORLITH_TESSELZIP"); path != nullptr && *path != '\0') return path;
  // The build tree: <build>/tests/environment/<tests> and <build>/tools/TesselZip/TesselZip.
  std::error_code error;
  const fs::path self = fs::read_symlink("/proc/self/exe", error);
  const fs::path tool = self.parent_path().parent_path().parent_path() / "tools" / "TesselZip" / "TesselZip";
  return !error && fs::exists(tool, error) ? tool.string() : std::string();
#endif
}

struct ProgramRun {
  int error = 0;  ///< Spawn's error; nothing ran when set
  bool timedOut = false;
  corlith::platform::ExitStatus status;
  std::string output;
  std::string errorOutput;
};

/// Runs a program hidden with both streams captured (at most a minute).
inline ProgramRun RunProgram(const fs::path& program, std::vector<std::string> arguments,
                             std::vector<std::string> environment = {}, const fs::path& workingFolder = {}) {
  corlith::platform::SpawnOptions options;
  options.program = program;
  options.arguments = std::move(arguments);
  options.environment = std::move(environment);
  options.unsetVariables = {"GTEST_OUTPUT", "GTEST_SHARD_INDEX", "GTEST_TOTAL_SHARDS"};
  options.workingFolder = workingFolder;
  options.output = corlith::platform::StreamTarget::Pipe();
  options.error = corlith::platform::StreamTarget::Pipe();
  const corlith::platform::RunResult result = corlith::platform::RunHidden(options, std::chrono::minutes(1));
  return {result.error, result.timedOut, result.status, result.output, result.errorOutput};
}

/// The program `name` found on PATH; empty when it is not there.
inline fs::path Which(const std::string& name) {
  const char* path = std::getenv("PATH");
  std::istringstream folders(path != nullptr ? path : "/usr/bin:/bin");
  for (std::string folder; std::getline(folders, folder, ':');) {
    std::error_code error;
    if (!folder.empty() && fs::is_regular_file(fs::path(folder) / name, error))
      return fs::path(folder) / name;
  }
  return {};
}

/// Writes an executable shell script.
inline void WriteScript(const fs::path& path, const std::string& body) {
  fs::create_directories(path.parent_path());
  corlith::test::WriteFile(path, "#!/bin/sh\n" + body);
  fs::permissions(path, fs::perms::owner_all | fs::perms::group_read | fs::perms::group_exec |
                            fs::perms::others_read | fs::perms::others_exec);
}

/// The variable that tells a re-run test to play the child's part.
inline constexpr const char* kChildVariable = "CORLITH_ARCHIVES_CHILD";

inline bool IsChild() {
  const char* value = std::getenv(kChildVariable);
  return value != nullptr && *value != '\0';
}

/// The lines a child printed with the "@@ " mark, without it.
inline std::vector<std::string> ChildLines(const std::string& output) {
  std::vector<std::string> lines;
  std::istringstream in(output);
  for (std::string line; std::getline(in, line);) {
    if (line.starts_with("@@ ")) lines.push_back(line.substr(3));
  }
  return lines;
}

/// This test program installed again: <root>/app/bin/<program>, with "<root>/app/Corlith"
/// as the tools' second place. The copy is a hard link where the file system allows.
class InstalledCopy {
 public:
  InstalledCopy() : m_root("archives") {
    fs::create_directories(Bin());
    const fs::path self = fs::read_symlink("/proc/self/exe");
    std::error_code error;
    fs::create_hard_link(self, Program(), error);
    if (error) fs::copy_file(self, Program());
  }

  fs::path Root() const { return m_root.Path(); }
  fs::path App() const { return Root() / "app"; }
  fs::path Bin() const { return App() / "bin"; }
  fs::path CorlithFolder() const { return App() / "Corlith"; }
  fs::path Program() const { return Bin() / "tests"; }

  /// A link named `name` in `folder` to `target` (folders made as needed).
  void Link(const fs::path& folder, const std::string& name, const fs::path& target) const {
    fs::create_directories(folder);
    fs::create_symlink(target, folder / name);
  }

  /// Runs the running test again in the copy with the child variable and `environment`
  /// set; the child's "@@ " lines. Fails the test when the child does not pass.
  std::vector<std::string> RunThisTest(std::vector<std::string> environment = {}) const {
    const auto* info = testing::UnitTest::GetInstance()->current_test_info();
    std::string filter = std::string(info->test_suite_name()) + "." + info->name();
    environment.push_back(std::string(kChildVariable) + "=1");
    const ProgramRun run = RunProgram(Program(), {"--gtest_filter=" + filter}, environment, Root());
    EXPECT_EQ(run.error, 0);
    EXPECT_EQ(run.status.code, 0) << run.output << run.errorOutput;
    return ChildLines(run.output);
  }

 private:
  corlith::test::TempFolder m_root;
};

}  // namespace archives_test
