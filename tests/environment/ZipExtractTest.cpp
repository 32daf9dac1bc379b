// ZIP extraction by its rules, through the library (corlith::ExtractZip) and through the
// TesselZip tool's "e" command, which must behave the same: hostile names and links
// refused before anything is written, truncated and corrupt archives, entries that
// fail half-way (a bad checksum, data that ends early, a file-size limit), what already
// stands in the target, 70,000 entries and ZIP64 entries. After every case the test
// looks at everything under the temporary folder, not only at the target.
#include "ArchiveTestSupport.h"

#include <corlith/environment/ZipExtract.h>
#include <corlith/test/ChildProcess.h>

#include <gtest/gtest.h>

#include <signal.h>
#include <sys/resource.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace {

using namespace archives_test;
using corlith::ExtractZip;
using corlith::ZipEntryNameProblem;
using corlith::ZipExtractStatus;
using corlith::test::ReadFile;
using corlith::test::TempFolder;

// --- the name rule -----------------------------------------------------------------

TEST(ZipEntryNames, RefusesEveryNameThatCouldLeaveTheTarget) {
  struct Row {
    std::string name;
    std::string problem;  // empty: accepted
  };
  const std::vector<Row> rows = {
      {"../x", "a \"..\" part"},
      {"a/../../x", "a \"..\" part"},
      {"a/..", "a \"..\" part"},
      {"..", "a \"..\" part"},
      {"../", "a \"..\" part"},
      {"/abs", "an absolute name"},
      {"//server/share/x", "an absolute name"},
      {"C:/x", "a drive letter"},
      {"c:x", "a drive letter"},
      {"a\\..\\..\\x", "a backslash"},
      {"dir\\file", "a backslash"},
      {"", "an empty name"},
      {".", "no file name"},
      {"./.", "no file name"},
      {"./", ""},
      {"a/./b", ""},
      {"a//b", ""},
      {"..a/b..", ""},
      {"...", ""},
      {"ab:c", ""},
      {"dir/", ""},
      {"\xC3\xBC/\xE6\x97\xA5.txt", ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(ZipEntryNameProblem(row.name), row.problem);
  }
}

// --- extraction, by the library and by the tool ------------------------------------

enum class Way { Library, Tool };

struct Outcome {
  bool succeeded = false;
  std::string message;  // the library's message, or the tool's standard error
};

std::vector<Way> Ways() {
  std::vector<Way> ways = {Way::Library};
  if (!TesselZipPath().empty()) ways.push_back(Way::Tool);
  return ways;
}

const char* Name(Way way) { return way == Way::Library ? "library" : "TesselZip e"; }

Outcome Extract(Way way, const fs::path& zip, const fs::path& target) {
  if (way == Way::Library) {
    const corlith::ZipExtractResult result = ExtractZip(zip.string(), target.string());
    return {result.Succeeded(), result.message};
  }
  const ProgramRun run = RunProgram(TesselZipPath(), {"e", zip.string(), target.string()});
  EXPECT_EQ(run.error, 0);
  EXPECT_EQ(run.output, "");
  if (run.status.code != 0) {
    // A failure says so in one line on standard error.
    EXPECT_TRUE(run.errorOutput.starts_with("TesselZip: ")) << run.errorOutput;
    EXPECT_EQ(std::count(run.errorOutput.begin(), run.errorOutput.end(), '\n'), 1) << run.errorOutput;
  } else {
    EXPECT_EQ(run.errorOutput, "");
  }
  return {run.status.code == 0, run.errorOutput};
}

// An archive built in `root` for one case.
using Builder = std::function<void(const fs::path& zip)>;

void LibzipArchive(const fs::path& zip, const std::vector<ZipItem>& items) { WriteZip(zip, items); }

TEST(ZipExtraction, RefusesHostileArchivesBeforeWritingAnything) {
  struct Row {
    std::string label;
    Builder build;
    std::string named;  // the entry the message names
  };
  // A harmless entry comes first each time: refusal happens before it is written.
  const ZipItem first{"first.txt", "harmless\n"};
  const std::vector<Row> rows = {
      {"parent part",
       [&](const fs::path& z) {
         LibzipArchive(z, {first, {"../x", "escape"}});
       },
       "../x"},
      {"absolute",
       [&](const fs::path& z) {
         LibzipArchive(z, {first, {"/abs", "escape"}});
       },
       "/abs"},
      {"drive letter",
       [&](const fs::path& z) {
         LibzipArchive(z, {first, {"C:/x", "escape"}});
       },
       "C:/x"},
      {"backslashes",
       [&](const fs::path& z) {
         LibzipArchive(z, {first, {"a\\..\\..\\x", "escape"}});
       },
       "a\\..\\..\\x"},
      {"deep parent part",
       [&](const fs::path& z) {
         LibzipArchive(z, {first, {"a/b/../../../x", "escape"}});
       },
       "a/b/../../../x"},
      {"parent folder entry",
       [&](const fs::path& z) {
         LibzipArchive(z, {first, {"../", "", ZipItem::Folder}});
       },
       "../"},
      {"symbolic link (libzip)",
       [&](const fs::path& z) {
         LibzipArchive(z, {first, {"link", "/etc", ZipItem::Link}});
       },
       "link"},
      {"symbolic link (zip -y)",
       [&](const fs::path& z) {
         const fs::path source = z.parent_path() / "linksource";
         MakeTree(source, {{"first.txt", "harmless\n"}, {"link", kLink + "/etc"}});
         const ProgramRun run = RunProgram("zip", {"-qy", z.string(), "first.txt", "link"}, {}, source);
         ASSERT_EQ(run.status.code, 0) << run.errorOutput;
         fs::remove_all(source);
       },
       "link"},
      {"hand-built parent part",
       [&](const fs::path& z) {
         corlith::test::WriteFile(z, BuildZip({{"first.txt", "harmless\n"}, {"../../escape", "x"}}));
       },
       "../../escape"},
  };
  for (const Way way : Ways()) {
    for (const Row& row : rows) {
      SCOPED_TRACE(std::string(Name(way)) + ": " + row.label);
      const TempFolder root("zipx");
      const fs::path zip = root.Path() / "hostile.zip";
      row.build(zip);
      const std::set<std::string> before = Listing(root.Path());
      const Outcome outcome = Extract(way, zip, root.Path() / "target" / "inner");
      EXPECT_FALSE(outcome.succeeded);
      EXPECT_NE(outcome.message.find("refused"), std::string::npos) << outcome.message;
      EXPECT_NE(outcome.message.find("\"" + row.named + "\""), std::string::npos) << outcome.message;
      // Not even the target folder was made.
      EXPECT_EQ(Listing(root.Path()), before);
    }
  }
}

TEST(ZipExtraction, TruncatedArchivesAreNotOpenedAndLeaveNothing) {
  const TempFolder source("zipx");
  const fs::path whole = source.Path() / "whole.zip";
  WriteZip(whole, {{"one.txt", std::string(5000, 'a')}, {"two.txt", "second\n"}});
  const std::string bytes = ReadFile(whole);
  ASSERT_GT(bytes.size(), 100u);
  struct Row {
    std::string label;
    std::size_t length;
  };
  const std::vector<Row> rows = {
      {"empty", 0},
      {"a few bytes", 10},
      {"half", bytes.size() / 2},
      {"without the end record", bytes.size() - 22},
      {"one byte short", bytes.size() - 1},
  };
  for (const Way way : Ways()) {
    for (const Row& row : rows) {
      SCOPED_TRACE(std::string(Name(way)) + ": " + row.label);
      const TempFolder root("zipx");
      const fs::path zip = root.Path() / "cut.zip";
      corlith::test::WriteFile(zip, bytes.substr(0, row.length));
      const Outcome outcome = Extract(way, zip, root.Path() / "target");
      EXPECT_FALSE(outcome.succeeded);
      EXPECT_EQ(Listing(root.Path()), std::set<std::string>{"cut.zip"});
    }
  }
  if (Ways().size() > 1) {
    // The library's own result for the same fault.
    const TempFolder root("zipx");
    corlith::test::WriteFile(root.Path() / "cut.zip", bytes.substr(0, bytes.size() / 2));
    EXPECT_EQ(ExtractZip((root.Path() / "cut.zip").string(), (root.Path() / "t").string()).status,
              ZipExtractStatus::CannotOpen);
  }
}

// The second of three entries fails while it is streamed; the first stays, complete,
// and nothing stands under the second's name or any temporary name.
TEST(ZipExtraction, AnEntryThatFailsHalfWayLeavesNoPartialFile) {
  const std::string firstData = "first entry, complete\n";
  const std::string secondData(200000, 'S');
  struct Row {
    std::string label;
    Builder build;
  };
  const std::vector<Row> rows = {
      {"corrupt checksum (a data byte changed)",
       [&](const fs::path& z) {
         WriteZip(z, {{"first.txt", firstData, ZipItem::File, true},
                      {"second.bin", secondData, ZipItem::File, true},
                      {"third.txt", "third\n", ZipItem::File, true}});
         std::string bytes = ReadFile(z);
         const std::size_t at = bytes.find(secondData);
         ASSERT_NE(at, std::string::npos);
         bytes[at + secondData.size() - 10] = 'X';
         corlith::test::WriteFile(z, bytes);
       }},
      {"wrong stored checksum",
       [&](const fs::path& z) {
         corlith::test::WriteFile(z, BuildZip({{"first.txt", firstData},
                                               {"second.bin", secondData, 0x12345678U},
                                               {"third.txt", "third\n"}}));
       }},
      {"data shorter than its size (the reader runs into the directory)",
       [&](const fs::path& z) {
         corlith::test::WriteFile(z, BuildZip({{"first.txt", firstData},
                                               {"third.txt", "third\n"},
                                               {"second.bin", secondData.substr(0, 1000), Crc32(secondData),
                                                static_cast<std::uint32_t>(secondData.size())}}));
       }},
      {"data running past the end of the file",
       [&](const fs::path& z) {
         std::string bytes = BuildZip({{"first.txt", firstData},
                                       {"second.bin", secondData, std::nullopt, 0x7FFFFFF0U},
                                       {"third.txt", "third\n"}});
         corlith::test::WriteFile(z, bytes);
       }},
  };
  for (const Way way : Ways()) {
    for (const Row& row : rows) {
      SCOPED_TRACE(std::string(Name(way)) + ": " + row.label);
      const TempFolder root("zipx");
      const fs::path zip = root.Path() / "bad.zip";
      row.build(zip);
      const Outcome outcome = Extract(way, zip, root.Path() / "target");
      EXPECT_FALSE(outcome.succeeded);
      EXPECT_NE(outcome.message.find("second.bin"), std::string::npos) << outcome.message;
      const Tree tree = ReadTree(root.Path() / "target");
      // "third.txt" may come before "second.bin" in the archive; either way no partial file.
      EXPECT_EQ(tree.count("second.bin"), 0u);
      EXPECT_EQ(tree.at("first.txt"), firstData);
      for (const auto& [name, content] : tree) {
        EXPECT_TRUE(name == "first.txt" || (name == "third.txt" && content == "third\n")) << name;
      }
    }
  }
}

TEST(ZipExtraction, WhatAlreadyStandsInTheTargetIsNeverFollowed) {
  struct Row {
    std::string label;
    Tree existing;               // in the target before
    std::vector<ZipItem> items;  // the archive
    bool succeeds;
    Tree after;  // the target afterwards
  };
  const std::vector<Row> rows = {
      {"a folder that is a link to outside",
       {{"linkdir", kLink + "../outside"}},
       {{"linkdir/x", "escape"}},
       false,
       {{"linkdir", kLink + "../outside"}}},
      {"a file name that is a link to outside: the link is replaced",
       {{"file.txt", kLink + "../outside/victim"}},
       {{"file.txt", "new content"}},
       true,
       {{"file.txt", "new content"}}},
      {"a folder standing at a file's name",
       {{"name", kFolder}, {"name/keep", "kept"}},
       {{"before.txt", "before"}, {"name", "a file"}},
       false,
       {{"before.txt", "before"}, {"name", kFolder}, {"name/keep", "kept"}}},
      {"a file standing at a folder's name",
       {{"dir", "a file"}},
       {{"dir/inner.txt", "inner"}},
       false,
       {{"dir", "a file"}}},
      {"files replaced, folders kept",
       {{"old.txt", "old"}, {"dir", kFolder}, {"dir/other", "other"}},
       {{"old.txt", "new"}, {"dir/", "", ZipItem::Folder}, {"dir/new.txt", "added"}},
       true,
       {{"old.txt", "new"}, {"dir", kFolder}, {"dir/other", "other"}, {"dir/new.txt", "added"}}},
  };
  for (const Way way : Ways()) {
    for (const Row& row : rows) {
      SCOPED_TRACE(std::string(Name(way)) + ": " + row.label);
      const TempFolder root("zipx");
      MakeTree(root.Path() / "outside", {{"victim", "untouched"}});
      MakeTree(root.Path() / "target", row.existing);
      const fs::path zip = root.Path() / "a.zip";
      WriteZip(zip, row.items);
      EXPECT_EQ(Extract(way, zip, root.Path() / "target").succeeded, row.succeeds);
      EXPECT_EQ(ReadTree(root.Path() / "target"), row.after);
      EXPECT_EQ(ReadTree(root.Path() / "outside"), (Tree{{"victim", "untouched"}}));
    }
  }
}

TEST(ZipExtraction, RoundTripsArchivesMadeByZip) {
  const TempFolder root("zipx");
  MakeTree(root.Path() / "source", SampleTree());
  const fs::path zip = root.Path() / "made by zip.zip";
  const ProgramRun run = RunProgram("zip", {"-qr", zip.string(), "."}, {}, root.Path() / "source");
  ASSERT_EQ(run.status.code, 0) << run.errorOutput;
  for (const Way way : Ways()) {
    SCOPED_TRACE(Name(way));
    const fs::path target = root.Path() / (std::string("out ") + Name(way));
    ASSERT_TRUE(Extract(way, zip, target).succeeded);
    EXPECT_EQ(ReadTree(target), SampleTree());
  }
}

TEST(ZipExtraction, ExtractsEveryOneOfSeventyThousandEntries) {
  constexpr std::size_t kFolders = 70;
  constexpr std::size_t kPerFolder = 1000;
  const MemoryFolder root("zipx");
  const fs::path zip = root.Path() / "many.zip";
  std::vector<ZipItem> items;
  items.reserve(kFolders * kPerFolder);
  for (std::size_t f = 0; f < kFolders; ++f) {
    for (std::size_t i = 0; i < kPerFolder; ++i) {
      const std::string name = "d" + std::to_string(f) + "/e" + std::to_string(i);
      items.push_back({name, name, ZipItem::File, true});
    }
  }
  WriteZip(zip, items);
  // By the library (which ExtractZipFile calls), counting, and by the tool.
  struct Extractor {
    std::string label;
    std::function<bool(const fs::path& target)> extract;
  };
  std::vector<Extractor> ways = {
      {"library", [&](const fs::path& target) {
         const corlith::ZipExtractResult result = ExtractZip(zip.string(), target.string());
         EXPECT_EQ(result.written, static_cast<std::uint64_t>(kFolders * kPerFolder));
         return result.Succeeded();
       }}};
  if (!TesselZipPath().empty()) {
    ways.push_back(
        {"TesselZip e", [&](const fs::path& target) { return Extract(Way::Tool, zip, target).succeeded; }});
  }
  for (const auto& way : ways) {
    SCOPED_TRACE(way.label);
    const fs::path target = root.Path() / "target";
    ASSERT_TRUE(way.extract(target));
    std::size_t files = 0;
    for (const auto& entry : fs::recursive_directory_iterator(target)) {
      if (entry.is_regular_file()) ++files;
    }
    EXPECT_EQ(files, kFolders * kPerFolder);
    // Beyond the 16-bit counter's reach, and the last one.
    for (const char* name : {"d65/e535", "d69/e999", "d0/e0"}) {
      SCOPED_TRACE(name);
      EXPECT_EQ(ReadFile(target / name), name);
    }
    fs::remove_all(target);
  }
}

TEST(ZipExtraction, ReadsZip64Entries) {
  struct Row {
    std::string label;
    Builder build;
    std::string name;
    std::string content;
  };
  const std::string streamed = "streamed through zip, so sized in ZIP64 fields\n";
  const std::vector<Row> rows = {
      {"zip from standard input",
       [&](const fs::path& z) {
         const ProgramRun run =
             RunProgram("/bin/sh", {"-c", "printf '%s' \"$0\" | zip -q \"$1\" -", streamed, z.string()});
         ASSERT_EQ(run.status.code, 0) << run.errorOutput;
         // The local header's version needed is 4.5 and it carries the ZIP64 extra field.
         const std::string bytes = ReadFile(z);
         ASSERT_GT(bytes.size(), 34u);
         EXPECT_EQ(bytes[4], 45);
         EXPECT_EQ(bytes.substr(30 + 1, 2), std::string("\x01\x00", 2));
       },
       "-", streamed},
      {"hand-built, with a ZIP64 end record",
       [&](const fs::path& z) {
         RawEntry big{"dir/big.txt", "sized in ZIP64 fields\n"};
         big.zip64 = true;
         corlith::test::WriteFile(z, BuildZip({{"small.txt", "small\n"}, big}, true));
       },
       "dir/big.txt", "sized in ZIP64 fields\n"},
  };
  for (const Way way : Ways()) {
    for (const Row& row : rows) {
      SCOPED_TRACE(std::string(Name(way)) + ": " + row.label);
      const TempFolder root("zipx");
      const fs::path zip = root.Path() / "z64.zip";
      row.build(zip);
      const Outcome outcome = Extract(way, zip, root.Path() / "target");
      ASSERT_TRUE(outcome.succeeded) << outcome.message;
      EXPECT_EQ(ReadFile(root.Path() / "target" / row.name), row.content);
    }
  }
}

// A real write failure: the child runs with a file-size limit below the second entry's
// size (SIGXFSZ ignored, so the write fails with EFBIG instead of ending the process).
constexpr const char* kLimitVariable = "CORLITH_ZIP_LIMIT_ROOT";

TEST(ZipExtraction, AWriteFailureLeavesNoPartialFile) {
  if (const char* rootText = std::getenv(kLimitVariable); rootText != nullptr) {
    const fs::path root(rootText);
    ::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{rlim_t{64} << 10, rlim_t{64} << 10};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
    const corlith::ZipExtractResult result =
        ExtractZip((root / "limit.zip").string(), (root / "target").string());
    std::printf("@@ %d %llu %s\n", static_cast<int>(result.status),
                static_cast<unsigned long long>(result.written), result.message.c_str());
    return;
  }
  const TempFolder root("zipx");
  WriteZip(root.Path() / "limit.zip", {{"small.txt", "fits\n"},
                                       {"big.bin", std::string(1 << 20, 'B'), ZipItem::File, true},
                                       {"after.txt", "never reached\n"}});
  corlith::test::ChildProcess child =
      corlith::test::StartThisTest({std::string(kLimitVariable) + "=" + root.Path().string()});
  ASSERT_EQ(child.Wait(), 0) << child.Output();
  const std::vector<std::string> lines = ChildLines(child.Output());
  ASSERT_EQ(lines.size(), 1u) << child.Output();
  EXPECT_TRUE(lines[0].starts_with(std::to_string(static_cast<int>(ZipExtractStatus::EntryFailed)) + " 1 "))
      << lines[0];
  EXPECT_NE(lines[0].find("big.bin"), std::string::npos) << lines[0];
  EXPECT_EQ(ReadTree(root.Path() / "target"), (Tree{{"small.txt", "fits\n"}}));
}

TEST(ZipExtraction, BadArgumentsAndMissingArchives) {
  const TempFolder root("zipx");
  WriteZip(root.Path() / "ok.zip", {{"a.txt", "a"}});
  const std::string zip = (root.Path() / "ok.zip").string();
  struct Row {
    std::string label;
    std::string zip;
    std::string target;
    ZipExtractStatus status;
  };
  const std::vector<Row> rows = {
      {"no archive path", "", (root.Path() / "t").string(), ZipExtractStatus::BadArguments},
      {"no target", zip, "", ZipExtractStatus::BadArguments},
      {"a NUL in the target", zip, std::string("t\0x", 3), ZipExtractStatus::BadArguments},
      {"missing archive", (root.Path() / "missing.zip").string(), (root.Path() / "t").string(),
       ZipExtractStatus::CannotOpen},
      {"a folder as the archive", root.Path().string(), (root.Path() / "t").string(),
       ZipExtractStatus::CannotOpen},
      {"the target is a file", zip, zip, ZipExtractStatus::TargetFailed},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.label);
    const corlith::ZipExtractResult result = ExtractZip(row.zip, row.target);
    EXPECT_EQ(result.status, row.status) << result.message;
    EXPECT_FALSE(result.message.empty());
    EXPECT_EQ(Listing(root.Path()), std::set<std::string>{"ok.zip"});
  }
}

}  // namespace
