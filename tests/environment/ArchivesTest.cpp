// KTUtility's archive members with the real tools: tar and gzip round trips with the
// ".tgz" and ".tar.gz" name rules and the current-folder rules, 7zr, TesselZip (beside
// the executable, and the kept fallback to the 7-Zip tool), GDecompress, ExtractZipFile,
// and what happens when no tool is found. The system's tools are found on PATH; where a
// place beside the executable matters, a copy of this program runs from a temporary
// installation. Last, the TesselZip tool's own "m" command.
#include "ArchiveTestSupport.h"

#include <corlith/environment/Utility.h>
#include <corlith/environment/ZipExtract.h>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

namespace {

using namespace archives_test;
using corlith::test::ReadFile;
using corlith::test::TempFolder;
using corlith::test::WriteFile;

KTUtility& Utility() { return *KTUtility::GetInstance(); }

CString Text(const fs::path& path) { return CString(path.string()); }

// Puts the current folder back, whatever a test did to it.
class CurrentFolderGuard {
 public:
  CurrentFolderGuard() : m_saved(fs::current_path()) {}
  ~CurrentFolderGuard() {
    std::error_code error;
    fs::current_path(m_saved, error);
  }
  CurrentFolderGuard(const CurrentFolderGuard&) = delete;
  CurrentFolderGuard& operator=(const CurrentFolderGuard&) = delete;

 private:
  fs::path m_saved;
};

// --- tar and gzip ----------------------------------------------------------------------

TEST(TarGzip, RoundTripsWithTheTgzAndTarGzNameRules) {
  struct Row {
    std::string label;
    BOOL useTgz;
    bool viaTgzMember;  // ExtractTgzFile, else ExtractTarGzFile (one algorithm)
    std::string archive;
    std::string other;
  };
  const std::vector<Row> rows = {
      {".tgz by ExtractTgzFile", TRUE, true, "pack.tgz", "pack.tar.gz"},
      {".tgz by ExtractTarGzFile", TRUE, false, "pack.tgz", "pack.tar.gz"},
      {".tar.gz by ExtractTgzFile", FALSE, true, "pack.tar.gz", "pack.tgz"},
      {".tar.gz by ExtractTarGzFile", FALSE, false, "pack.tar.gz", "pack.tgz"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.label);
    const CurrentFolderGuard guard;
    const TempFolder root("tgz");
    // Blanks in the folders are fine: only the two names are unquoted.
    const fs::path sourceFolder = root.Path() / "source folder";
    MakeTree(sourceFolder / "pack_src", SampleTree());
    const fs::path outFolder = root.Path() / "out dir";
    fs::create_directories(root.Path() / "elsewhere");
    fs::current_path(root.Path() / "elsewhere");

    ASSERT_EQ(Utility().CompressedTGZ(Text(outFolder / "pack"), Text(sourceFolder / "pack_src"), row.useTgz),
              1);
    // The host's current folder is untouched, and nothing is left beside the source.
    EXPECT_EQ(fs::current_path(), root.Path() / "elsewhere");
    EXPECT_EQ(Listing(sourceFolder).count("pack.tar"), 0u);
    EXPECT_EQ(Listing(sourceFolder).count("pack.tar.gz"), 0u);
    EXPECT_TRUE(fs::is_regular_file(outFolder / row.archive));
    EXPECT_FALSE(fs::exists(outFolder / row.other));

    const fs::path destination = root.Path() / "dest dir";
    const CString archive = Text(outFolder / row.archive);
    const int extracted = row.viaTgzMember ? Utility().ExtractTgzFile(archive, Text(destination))
                                           : Utility().ExtractTarGzFile(archive, Text(destination));
    ASSERT_EQ(extracted, 1);
    EXPECT_EQ(Below(ReadTree(destination), "pack_src"), SampleTree());
    // The work folder is the archive's path without ".tgz" or ".tar.gz" and holds the
    // decompressed copy; the destination holds the copy tar read; the destination stays
    // current, as stated.
    EXPECT_EQ(Listing(outFolder / "pack"), std::set<std::string>{"pack.tar"});
    EXPECT_TRUE(fs::is_regular_file(destination / "pack.tar"));
    EXPECT_EQ(fs::current_path(), destination);
    EXPECT_TRUE(fs::is_regular_file(outFolder / row.archive));
  }
}

TEST(TarGzip, ExtractTarFileCopiesMakesTheDestinationCurrentAndJudgesByTar) {
  struct Row {
    std::string label;
    bool validArchive;
    bool destinationExists;
    int result;
  };
  const std::vector<Row> rows = {
      {"valid, destination created", true, false, 1},
      {"valid, destination there", true, true, 1},
      {"not a tar archive", false, false, 0},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.label);
    const CurrentFolderGuard guard;
    const TempFolder root("tar");
    MakeTree(root.Path() / "src", {{"inner file.txt", "tar me\n"}});
    const fs::path archive = root.Path() / "my archive.tar";
    if (row.validArchive) {
      const ProgramRun run = RunProgram("tar", {"-cf", archive.string(), "src"}, {}, root.Path());
      ASSERT_EQ(run.status.code, 0) << run.errorOutput;
    } else {
      WriteFile(archive, std::string(2048, 'x'));
    }
    const fs::path destination = root.Path() / "new dest" / "inner";
    if (row.destinationExists) fs::create_directories(destination);
    EXPECT_EQ(Utility().ExtractTarFile(Text(archive), Text(destination)), row.result);
    EXPECT_EQ(fs::current_path(), destination);
    EXPECT_EQ(ReadFile(destination / "my archive.tar"), ReadFile(archive));
    if (row.validArchive) {
      EXPECT_EQ(ReadFile(destination / "src" / "inner file.txt"), "tar me\n");
    }
  }
}

// The finished archive is moved to its final name as a file move does, also onto another
// file system (here the memory file system /dev/shm), with nothing left beside the source.
TEST(TarGzip, CompressedTgzMovesTheArchiveToAnotherFileSystem) {
  const TempFolder root("tgzmove");
  std::error_code error;
  const fs::path other = fs::path("/dev/shm") / ("corlith-tgzmove-" + std::to_string(::getpid()));
  fs::create_directories(other, error);
  struct stat rootStat {};
  struct stat otherStat {};
  if (error || ::stat(root.Path().c_str(), &rootStat) != 0 || ::stat(other.c_str(), &otherStat) != 0 ||
      rootStat.st_dev == otherStat.st_dev) {
    fs::remove_all(other, error);
    GTEST_SKIP() << "no second file system at /dev/shm to move to";
  }
  struct Row {
    std::string label;
    BOOL useTgz;
    std::string archive;
  };
  const std::vector<Row> rows = {{".tgz", TRUE, "pack.tgz"}, {".tar.gz", FALSE, "pack.tar.gz"}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.label);
    MakeTree(root.Path() / "src" / "pack_src", {{"f.txt", "moved\n"}});
    const fs::path outFolder = other / row.label / "out";
    EXPECT_EQ(
        Utility().CompressedTGZ(Text(outFolder / "pack"), Text(root.Path() / "src" / "pack_src"), row.useTgz),
        1);
    EXPECT_TRUE(fs::is_regular_file(outFolder / row.archive));
    EXPECT_EQ(Listing(outFolder), std::set<std::string>{row.archive});
    EXPECT_EQ(Listing(root.Path() / "src"), (std::set<std::string>{"pack_src", "pack_src/f.txt"}));
  }
  fs::remove_all(other, error);
}

// Relative names are the host's current folder's, also where a tool gets a working
// folder of its own or the destination becomes current on the way.
TEST(TarGzip, RelativePathsAreTakenFromTheHostsCurrentFolder) {
  struct Row {
    std::string label;
    std::string archive;  // relative to the current folder
    std::function<int(const CString&, const CString&)> extract;
  };
  const std::vector<Row> rows = {
      {"ExtractTarFile", "arcs/pack.tar",
       [](const CString& a, const CString& d) { return Utility().ExtractTarFile(a, d); }},
      {"ExtractTgzFile", "arcs/pack.tgz",
       [](const CString& a, const CString& d) { return Utility().ExtractTgzFile(a, d); }},
      {"ExtractTarGzFile", "arcs/pack.tar.gz",
       [](const CString& a, const CString& d) { return Utility().ExtractTarGzFile(a, d); }},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.label);
    const CurrentFolderGuard guard;
    const TempFolder root("relative");
    MakeTree(root.Path() / "src" / "pack_src", SampleTree());
    fs::create_directories(root.Path() / "arcs");
    const std::string tarFile = (root.Path() / "arcs" / "pack.tar").string();
    ASSERT_EQ(RunProgram("tar", {"-cf", tarFile, "pack_src"}, {}, root.Path() / "src").status.code, 0);
    if (row.archive != "arcs/pack.tar") {
      ASSERT_EQ(RunProgram("gzip", {tarFile}).status.code, 0);
      fs::rename(tarFile + ".gz", root.Path() / row.archive);
    }
    fs::current_path(root.Path());
    EXPECT_EQ(row.extract(CString(row.archive), CString("dest dir/inner")), 1);
    EXPECT_EQ(fs::current_path(), root.Path() / "dest dir" / "inner");
    // Compared whole, not printed: the sample tree holds a large binary file.
    EXPECT_TRUE(Below(ReadTree(root.Path() / "dest dir" / "inner"), "pack_src") == SampleTree());
  }
}

// --- 7-Zip -----------------------------------------------------------------------------

TEST(SevenZip, ExtractsIntoAFreshTargetNamedAfterTheArchive) {
  struct Row {
    std::string label;
    std::string destinationRoot;  // relative to the temporary folder; empty: none
    std::string target;           // where the files land
    bool corrupt;
  };
  const std::vector<Row> rows = {
      {"beside the archive", "", "arcs/my arc", false},
      {"below a destination root", "out root", "out root/my arc", false},
      {"a corrupt archive still started 7zr", "", "arcs/my arc", true},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.label);
    const TempFolder root("7z");
    MakeTree(root.Path() / "src" / "pack_src", SampleTree());
    const fs::path archive = root.Path() / "arcs" / "my arc.7z";
    fs::create_directories(archive.parent_path());
    if (row.corrupt) {
      WriteFile(archive, "7z\xBC\xAF\x27\x1C garbage");
    } else {
      const ProgramRun run =
          RunProgram("7zr", {"a", "-bd", archive.string(), "pack_src"}, {}, root.Path() / "src");
      ASSERT_EQ(run.status.code, 0) << run.output << run.errorOutput;
    }
    const fs::path target = root.Path() / row.target;
    MakeTree(target, {{"stale.txt", "from before"}});
    const CString destinationRoot =
        row.destinationRoot.empty() ? CString() : Text(root.Path() / row.destinationRoot);
    EXPECT_EQ(Utility().DeCompressed7z(Text(archive), destinationRoot), 1);
    const Tree tree = ReadTree(target);
    EXPECT_EQ(tree.count("stale.txt"), 0u);
    if (!row.corrupt) {
      EXPECT_EQ(Below(tree, "pack_src"), SampleTree());
    }
  }
}

// Where "the archive's path without extension" would be the archive itself, a folder
// holding it or a folder cut at a dot in a folder's name, nothing is deleted and 7zr
// does not run.
TEST(SevenZip, NeverDeletesTheArchiveOrAFolderOutsideItsTarget) {
  struct Row {
    std::string label;
    std::string archive;          // relative to the temporary folder
    std::string destinationRoot;  // relative; empty: none
  };
  const std::vector<Row> rows = {
      {"no extension, a dot in a folder's name", "v1.2/arc", ""},
      {"no title", "v1.2/.7z", ""},
      {"no title, below a root", "v1.2/.7z", "v1.2"},
      {"no extension, the root is its folder", "v1.2/arc", "v1.2"},
      {"the target holds the archive", "v1.2/x/x.7z", "v1.2"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.label);
    const TempFolder root("7zsafe");
    MakeTree(root.Path() / "src" / "pack_src", SampleTree());
    const fs::path archive = root.Path() / row.archive;
    fs::create_directories(archive.parent_path());
    // Made under a name 7zr keeps, then renamed: 7zr adds ".7z" to a name without one.
    const fs::path made = root.Path() / "made.7z";
    const ProgramRun run =
        RunProgram("7zr", {"a", "-bd", made.string(), "pack_src"}, {}, root.Path() / "src");
    ASSERT_EQ(run.status.code, 0) << run.output << run.errorOutput;
    fs::rename(made, archive);
    MakeTree(root.Path() / "v1", {{"keep.txt", "not the archive's"}});
    const Tree before = ReadTree(root.Path());
    const CString destinationRoot =
        row.destinationRoot.empty() ? CString() : Text(root.Path() / row.destinationRoot);
    EXPECT_EQ(Utility().DeCompressed7z(Text(archive), destinationRoot), 0);
    EXPECT_TRUE(ReadTree(root.Path()) == before);
  }
}

// --- ZIP through the library -------------------------------------------------------------

TEST(ExtractZipFile, TargetsAndResults) {
  struct Row {
    std::string label;
    std::string zip;          // relative to the temporary folder
    std::string destination;  // relative; empty: none given
    int result;
    std::string target;  // where the tree lands; empty: nowhere
  };
  const std::vector<Row> rows = {
      {"beside the archive without its extension", "zips/data.zip", "", 1, "zips/data"},
      {"into the destination, created", "zips/data.zip", "dest/deeper", 1, "dest/deeper"},
      {"missing archive", "zips/missing.zip", "dest", 0, ""},
      {"hostile archive", "zips/hostile.zip", "dest", 0, ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.label);
    const TempFolder root("extractzip");
    fs::create_directories(root.Path() / "zips");
    WriteZip(root.Path() / "zips" / "data.zip", {{"dir/", "", ZipItem::Folder}, {"dir/a b.txt", "zip data"}});
    WriteZip(root.Path() / "zips" / "hostile.zip", {{"fine.txt", "x"}, {"../up.txt", "escape"}});
    const std::set<std::string> before = Listing(root.Path());
    const CString destination = row.destination.empty() ? CString() : Text(root.Path() / row.destination);
    EXPECT_EQ(Utility().ExtractZipFile(Text(root.Path() / row.zip), destination), row.result);
    if (row.target.empty()) {
      EXPECT_EQ(Listing(root.Path()), before);
    } else {
      EXPECT_EQ(ReadTree(root.Path() / row.target), (Tree{{"dir", kFolder}, {"dir/a b.txt", "zip data"}}));
    }
  }
  EXPECT_EQ(Utility().GetCompressedDirInTar("any.tar"), CString());
}

// --- from an installation: tools beside the executable, or none at all --------------------

// A ".Z" file in compress's own LZW format, every byte sent as a literal 9-bit code.
std::string CompressLiterally(const std::string& data) {
  std::string out = "\x1F\x9D\x90";  // magic, block mode with 16-bit codes at most
  std::uint32_t bits = 0;
  int count = 0;
  for (const char c : data) {
    bits |= static_cast<std::uint32_t>(static_cast<unsigned char>(c)) << count;
    count += 9;
    while (count >= 8) {
      out += static_cast<char>(bits & 0xFF);
      bits >>= 8;
      count -= 8;
    }
  }
  if (count > 0) out += static_cast<char>(bits & 0xFF);
  return out;
}

constexpr const char* kInputVariable = "CORLITH_ARCHIVES_INPUT";

TEST(GDecompress, OnlyDotZNamesWithTheGzipBesideTheExecutable) {
  if (IsChild()) {
    std::printf("@@ %d\n", Utility().GDecompress(CString(std::getenv(kInputVariable))));
    return;
  }
  ASSERT_FALSE(Which("gzip").empty());
  const std::string text = "decompressed in place\n";
  struct Row {
    std::string label;
    std::string name;
    std::string content;  // empty: the file is not made
    bool realGzip;        // else a script that only records that it ran
    std::string result;
    std::string output;  // the decompressed file's content; empty: none
  };
  std::string gzipped;
  {
    const TempFolder scratch("gd");
    WriteFile(scratch.Path() / "t", text);
    ASSERT_EQ(RunProgram("gzip", {scratch.PathOf("t")}).status.code, 0);
    gzipped = ReadFile(scratch.Path() / "t.gz");
  }
  const std::vector<Row> rows = {
      {"gzip data named .Z", "data.Z", gzipped, true, "1", text},
      {"compress's LZW data", "lzw.Z", CompressLiterally(text), true, "1", text},
      {"corrupt data", "bad.Z", "not compressed at all", true, "0", ""},
      {"a .gz name is not for this member", "data.gz", gzipped, false, "0", ""},
      {"the case of .Z matters", "data.z", gzipped, false, "0", ""},
      {"missing file", "missing.Z", "", false, "0", ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.label);
    const InstalledCopy copy;
    const fs::path ran = copy.Root() / "gzip ran";
    if (row.realGzip) {
      copy.Link(copy.Bin(), "gzip", Which("gzip"));
    } else {
      WriteScript(copy.Bin() / "gzip", "touch '" + ran.string() + "'\n");
    }
    const fs::path input = copy.Root() / "files" / row.name;
    if (!row.content.empty()) {
      fs::create_directories(input.parent_path());
      WriteFile(input, row.content);
    }
    EXPECT_EQ(copy.RunThisTest({std::string(kInputVariable) + "=" + input.string()}),
              std::vector<std::string>{row.result});
    EXPECT_FALSE(fs::exists(ran));
    const fs::path output = input.parent_path() / input.stem();
    if (row.output.empty()) {
      EXPECT_FALSE(row.name.ends_with(".Z") && fs::exists(output));
    } else {
      EXPECT_EQ(ReadFile(output), row.output);
      EXPECT_FALSE(fs::exists(input));
    }
  }
}

TEST(MissingTools, GiveZeroWithoutStartingOrChangingAnything) {
  if (IsChild()) {
    const fs::path root(std::getenv(kInputVariable));
    auto t = [&](const char* name) { return Text(root / name); };
    std::printf("@@ tgz %d\n", Utility().CompressedTGZ(t("base"), t("src"), TRUE));
    std::printf("@@ tar %d\n", Utility().ExtractTarFile(t("a.tar"), t("dest")));
    std::printf("@@ tgzx %d\n", Utility().ExtractTgzFile(t("b.tgz"), t("dest")));
    std::printf("@@ targzx %d\n", Utility().ExtractTarGzFile(t("c.tar.gz"), t("dest")));
    std::printf("@@ Z %d\n", Utility().GDecompress(t("d.Z")));
    std::printf("@@ 7z %d\n", Utility().DeCompressed7z(t("e.7z"), CString()));
    std::printf("@@ mzip %d\n", Utility().CompressedUnicodeZip(t("f.zip"), t("src")));
    std::printf("@@ ezip %d\n", Utility().DecompressedUnicodeZip(t("g.zip"), t("dest")));
    // The library's own extraction needs no tool.
    std::printf("@@ zip %d\n", Utility().ExtractZipFile(t("g.zip"), t("zipdest")));
    return;
  }
  const InstalledCopy copy;
  const fs::path root = copy.Root() / "work";
  MakeTree(root, {{"src/file.txt", "source"},
                  {"a.tar", "tar"},
                  {"b.tgz", "tgz"},
                  {"c.tar.gz", "targz"},
                  {"d.Z", "Z"},
                  {"e.7z", "7z"},
                  {"e/stale.txt", "kept: the target is deleted only when 7zr is there"}});
  WriteZip(root / "g.zip", {{"in.txt", "zipped"}});
  const Tree before = ReadTree(root);
  const fs::path emptyPath = copy.Root() / "empty path";
  fs::create_directories(emptyPath);
  EXPECT_EQ(
      copy.RunThisTest({"PATH=" + emptyPath.string(), std::string(kInputVariable) + "=" + root.string()}),
      (std::vector<std::string>{"tgz 0", "tar 0", "tgzx 0", "targzx 0", "Z 0", "7z 0", "mzip 0", "ezip 0",
                                "zip 1"}));
  Tree expected = before;
  expected["zipdest"] = kFolder;
  expected["zipdest/in.txt"] = "zipped";
  EXPECT_EQ(ReadTree(root), expected);
}

TEST(UnicodeZip, RoundTripsThroughTesselZipBesideTheExecutable) {
  if (IsChild()) {
    const fs::path root(std::getenv(kInputVariable));
    std::printf("@@ %d\n", Utility().CompressedUnicodeZip(Text(root / "my zips" / "out file.zip"),
                                                          Text(root / "pack source")));
    std::printf("@@ %d\n", Utility().DecompressedUnicodeZip(Text(root / "my zips" / "out file.zip"),
                                                            Text(root / "dest dir")));
    return;
  }
  const std::string tool = TesselZipPath();
  if (tool.empty()) GTEST_SKIP() << "the TesselZip tool was not built (CORLITH_BUILD_TOOLS=OFF)";
  const InstalledCopy copy;
  copy.Link(copy.Bin(), "TesselZip", tool);
  const fs::path root = copy.Root() / "work";
  MakeTree(root / "pack source", SampleTree());
  fs::create_directories(root / "my zips");
  EXPECT_EQ(copy.RunThisTest({"PATH=/nonexistent", std::string(kInputVariable) + "=" + root.string()}),
            (std::vector<std::string>{"1", "1"}));
  EXPECT_EQ(Below(ReadTree(root / "dest dir"), "pack source"), SampleTree());
}

TEST(UnicodeZip, WithoutTesselZipTheSevenZipToolOfTheCorlithFolderRunsWithTheSameArguments) {
  if (IsChild()) {
    const fs::path root(std::getenv(kInputVariable));
    std::printf("@@ %d\n", Utility().CompressedUnicodeZip(Text(root / "out.zip"), Text(root / "src")));
    std::printf("@@ %d\n", Utility().DecompressedUnicodeZip(Text(root / "in.zip"), Text(root / "dest")));
    return;
  }
  const InstalledCopy copy;
  const fs::path record = copy.Root() / "record";
  fs::create_directories(copy.CorlithFolder());
  WriteScript(copy.CorlithFolder() / "7zr", "printf '%s\\n' \"$@\" '--' >> '" + record.string() + "'\n");
  const fs::path root = copy.Root() / "work";
  MakeTree(root, {{"src/a.txt", "a"}, {"in.zip", "zip"}});
  EXPECT_EQ(copy.RunThisTest({"PATH=/nonexistent", std::string(kInputVariable) + "=" + root.string()}),
            (std::vector<std::string>{"1", "1"}));
  EXPECT_EQ(ReadFile(record), "m\n" + (root / "src").string() + "\n" + (root / "out.zip").string() +
                                  "\n--\ne\n" + (root / "in.zip").string() + "\n" + (root / "dest").string() +
                                  "\n--\n");
}

// --- the TesselZip tool's "m" ----------------------------------------------------------------

ProgramRun TesselZip(std::vector<std::string> arguments) {
  return RunProgram(TesselZipPath(), std::move(arguments));
}

TEST(TesselZipPack, PacksAFolderOrAFileThatZipAndUnzipAgreeOn) {
  if (TesselZipPath().empty()) GTEST_SKIP() << "the TesselZip tool was not built";
  struct Row {
    std::string label;
    std::string source;  // below the temporary folder
    Tree expected;       // what extraction gives
  };
  Tree folder;
  for (const auto& [name, content] : SampleTree()) folder["pack_src/" + name] = content;
  folder["pack_src"] = kFolder;
  const std::vector<Row> rows = {
      {"a folder", "pack_src", folder},
      {"a folder given with a closing separator", "pack_src/", folder},
      {"a file", "pack_src/a/b/deep.bin", {{"deep.bin", SampleTree().at("a/b/deep.bin")}}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.label);
    const TempFolder root("tzpack");
    MakeTree(root.Path() / "pack_src", SampleTree());
    const fs::path zip = root.Path() / "out.zip";
    const ProgramRun packed = TesselZip({"m", (root.Path() / row.source).string(), zip.string()});
    ASSERT_EQ(packed.status.code, 0) << packed.errorOutput;
    EXPECT_EQ(packed.errorOutput, "");
    // Read back by the peer tool and by our own extraction.
    const ProgramRun unzipped =
        RunProgram("unzip", {"-qo", zip.string(), "-d", (root.Path() / "by unzip").string()});
    ASSERT_EQ(unzipped.status.code, 0) << unzipped.errorOutput;
    EXPECT_EQ(ReadTree(root.Path() / "by unzip"), row.expected);
    ASSERT_EQ(TesselZip({"e", zip.string(), (root.Path() / "by e").string()}).status.code, 0);
    EXPECT_EQ(ReadTree(root.Path() / "by e"), row.expected);
  }
}

TEST(TesselZipPack, StoresLinksInsideTheSourceAsTheirFilesAndLeavesTheRestOut) {
  if (TesselZipPath().empty()) GTEST_SKIP() << "the TesselZip tool was not built";
  const TempFolder root("tzpack");
  MakeTree(root.Path() / "outside", {{"secret", "outside the source"}});
  MakeTree(root.Path() / "src",
           {{"real.txt", "real"},
            {"sub", kFolder},
            {"sub/inner.txt", "inner"},
            {"to real", kLink + "real.txt"},
            {"sub/up", kLink + "../real.txt"},
            {"absolute inside", kLink + (root.Path() / "src" / "sub" / "inner.txt").string()},
            {"to outside", kLink + "../outside/secret"},
            {"dangling", kLink + "nothing here"},
            {"to folder", kLink + "sub"},
            {"loop", kLink + "."}});
  const fs::path zip = root.Path() / "links.zip";
  ASSERT_EQ(TesselZip({"m", (root.Path() / "src").string(), zip.string()}).status.code, 0);
  ASSERT_EQ(TesselZip({"e", zip.string(), (root.Path() / "out").string()}).status.code, 0);
  EXPECT_EQ(ReadTree(root.Path() / "out" / "src"), (Tree{{"real.txt", "real"},
                                                         {"sub", kFolder},
                                                         {"sub/inner.txt", "inner"},
                                                         {"to real", "real"},
                                                         {"sub/up", "real"},
                                                         {"absolute inside", "inner"}}));
}

TEST(TesselZipPack, MarksUtf8NamesKeepsPermissionsAndNeverPacksItself) {
  if (TesselZipPath().empty()) GTEST_SKIP() << "the TesselZip tool was not built";
  const TempFolder root("tzpack");
  MakeTree(root.Path() / "src", SampleTree());
  WriteScript(root.Path() / "src" / "run.sh", "exit 0\n");
  const fs::path zip = root.Path() / "src" / "self.zip";
  // Twice: the second time an archive stands inside the source.
  for (int round = 0; round < 2; ++round) {
    ASSERT_EQ(TesselZip({"m", (root.Path() / "src").string(), zip.string()}).status.code, 0);
  }
  int code = 0;
  zip_t* archive = zip_open(zip.c_str(), ZIP_RDONLY, &code);
  ASSERT_NE(archive, nullptr);
  std::map<std::string, zip_uint32_t> attributes;
  for (zip_int64_t i = 0; i < zip_get_num_entries(archive, 0); ++i) {
    const auto index = static_cast<zip_uint64_t>(i);
    // Strict: a name without the UTF-8 flag would be read as code page 437.
    const std::string name = zip_get_name(archive, index, ZIP_FL_ENC_STRICT);
    zip_uint8_t system = 0;
    zip_uint32_t value = 0;
    zip_file_get_external_attributes(archive, index, 0, &system, &value);
    EXPECT_EQ(system, ZIP_OPSYS_UNIX) << name;
    attributes[name] = value >> 16;
  }
  zip_discard(archive);
  EXPECT_EQ(attributes.count("src/self.zip"), 0u);
  EXPECT_EQ(attributes.count("src/\xC3\xBCmlaut \xC3\xB1/\xE6\x97\xA5\xE6\x9C\xAC.txt"), 1u);
  EXPECT_EQ(attributes.at("src/run.sh"), 0100755u);
  EXPECT_EQ(attributes.at("src/empty folder/") & 0170000u, 0040000u);
  EXPECT_EQ(attributes.size(), SampleTree().size() + 2);  // + "src/" and run.sh
}

TEST(TesselZipPack, FailuresExitNonZeroWithOneLine) {
  if (TesselZipPath().empty()) GTEST_SKIP() << "the TesselZip tool was not built";
  const TempFolder root("tzpack");
  MakeTree(root.Path() / "src", {{"a.txt", "a"}});
  const std::string src = (root.Path() / "src").string();
  struct Row {
    std::string label;
    std::vector<std::string> arguments;
    int code;
  };
  const std::vector<Row> rows = {
      {"missing source", {"m", root.PathOf("missing"), root.PathOf("a.zip")}, 1},
      {"archive in a missing folder", {"m", src, root.PathOf("no/such/a.zip")}, 1},
      {"archive over a folder", {"m", src, src}, 1},
      {"extracting a missing archive", {"e", root.PathOf("missing.zip"), root.PathOf("out")}, 1},
      {"unknown command", {"x", src, root.PathOf("a.zip")}, 2},
      {"too few arguments", {"m", src}, 2},
      {"no arguments", {}, 2},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.label);
    const ProgramRun run = TesselZip(row.arguments);
    EXPECT_EQ(run.status.code, row.code);
    EXPECT_EQ(run.output, "");
    EXPECT_TRUE(run.errorOutput.starts_with("TesselZip: ")) << run.errorOutput;
    EXPECT_EQ(std::count(run.errorOutput.begin(), run.errorOutput.end(), '\n'), 1) << run.errorOutput;
    EXPECT_EQ(Listing(root.Path()), (std::set<std::string>{"src", "src/a.txt"}));
  }
  const ProgramRun help = TesselZip({"--help"});
  EXPECT_EQ(help.status.code, 0);
  EXPECT_TRUE(help.output.starts_with("Usage: TesselZip m SOURCE ZIP")) << help.output;
  EXPECT_EQ(help.errorOutput, "");
}

}  // namespace
