// The manual launcher: the list reader on its own (table-driven), opening with the
// desktop through the real xdg-open reaching a recording handler, and CLMenual whole in
// the fixture program copied into a temporary installation, whose data folder holds real
// list files and beside whose executable the PDF manuals lie.
#include <corlith/environment/Menual.h>
#include <corlith/platform/Desktop.h>
#include <corlith/platform/Process.h>
#include <corlith/test/DesktopRecorder.h>
#include <corlith/test/TempFolder.h>

#include <gtest/gtest.h>

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <climits>
#include <filesystem>
#include <map>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace {

namespace fs = std::filesystem;
using corlith::ManualListKind;
using corlith::platform::Process;
using corlith::platform::SpawnOptions;
using corlith::platform::StreamTarget;
using corlith::test::DesktopRecorder;
using corlith::test::TempFolder;
using Lines = std::vector<std::string>;
using Map = std::map<int, std::string>;
using namespace std::chrono_literals;

constexpr const char* kPdf = "%PDF-1.4\n%%EOF\n";
constexpr const char* kHtml =
    "<!DOCTYPE html>\n<html><head><title>help</title></head><body>help</body></html>\n";

Map Parse(std::string_view text, ManualListKind kind) {
  std::map<int, CString> parsed;
  corlith::ParseManualList(text, kind, parsed);
  Map map;
  for (const auto& [id, value] : parsed) map[id] = value.str();
  return map;
}

TEST(ManualList, LinesOfExactlyTwoFieldsAreRead) {
  const struct {
    const char* name;
    const char* text;
    Map manuals;  // read as the manual list
    Map pages;    // read as the page list
  } kRows[] = {
      {"plain", "1&Board\n2&Panel\n", {{1, "Board"}, {2, "Panel"}}, {{1, "Board"}, {2, "Panel"}}},
      {"crlf and no last line end",
       "1&Board\r\n\r\n2&Panel",
       {{1, "Board"}, {2, "Panel"}},
       {{1, "Board"}, {2, "Panel"}}},
      {"three fields ignored", "12&page.htm&x\n13&ok.htm\n", {{13, "ok.htm"}}, {{13, "ok.htm"}}},
      {"one field ignored", "12\n&\n\n13&\n", {}, {}},
      {"comment only in the page list",
       "//7&old.htm\n7&new.htm\n",
       {{0, "old.htm"}, {7, "new.htm"}},
       {{7, "new.htm"}}},
      {"single slash is no comment", "/7&x.htm\n", {{0, "x.htm"}}, {{0, "x.htm"}}},
      {"ampersand runs are one delimiter", "&4&&d.htm&\n", {{4, "d.htm"}}, {{4, "d.htm"}}},
      {"ids as atoi reads them",
       " 5x&a\n-3&b\nabc&c\n+8&d\n",
       {{5, "a"}, {-3, "b"}, {0, "c"}, {8, "d"}},
       {{5, "a"}, {-3, "b"}, {0, "c"}, {8, "d"}}},
      {"first line for an id wins", "9&first\n9&second\n", {{9, "first"}}, {{9, "first"}}},
      {"names kept as written", "10& Board Manual \n", {{10, " Board Manual "}}, {{10, " Board Manual "}}},
      {"url with its own characters",
       "11&https://h.example/a?b=c#d\n",
       {{11, "https://h.example/a?b=c#d"}},
       {{11, "https://h.example/a?b=c#d"}}},
      {"blank line is not empty", "  \n1&a\n", {{1, "a"}}, {{1, "a"}}},
      {"lone carriage return line", "\r\n1&a\r", {{1, "a"}}, {{1, "a"}}},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(Parse(row.text, ManualListKind::ManualIds), row.manuals);
    EXPECT_EQ(Parse(row.text, ManualListKind::HtmlPages), row.pages);
  }
}

TEST(ManualList, NumbersReadAsTheRuntimesDecimalConversion) {
  const struct {
    const char* text;
    int value;
  } kRows[] = {
      {"42", 42},
      {"  \t42", 42},
      {"-42", -42},
      {"+7", 7},
      {"12abc", 12},
      {"abc", 0},
      {"", 0},
      {"-", 0},
      {"- 5", 0},
      {"2147483647", INT_MAX},
      {"2147483648", INT_MAX},
      {"-2147483648", INT_MIN},
      {"-2147483649", INT_MIN},
      {"99999999999999999999999", INT_MAX},
      {"007", 7},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.text);
    EXPECT_EQ(corlith::ManualListNumber(row.text), row.value);
  }
}

TEST(ManualLanguage, SuffixByLanguage) {
  const struct {
    int language;
    const char* suffix;
  } kRows[] = {{0, "_Kor.pdf"}, {1, "_Eng.pdf"}, {2, "_Jap.pdf"},  {3, "_Chi.pdf"},
               {4, "_Eng.pdf"}, {7, "_Eng.pdf"}, {-1, "_Eng.pdf"}, {INT_MAX, "_Eng.pdf"}};
  const CLMenual manual;
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.language);
    EXPECT_EQ(manual.GetManualFileNameAndLang(row.language), row.suffix);
  }
}

TEST(ManualCopy, CopiesCarryBothMapsAndTheFlag) {
  CLMenual manual;
  EXPECT_EQ(manual.m_nHTMLHelp, 1);
  manual.m_nHTMLHelp = 0;
  manual.m_mapManualFile[1] = "Board";
  manual.m_mapHtmlPage[2] = "p.htm";
  const CLMenual copy(manual);
  CLMenual assigned;
  assigned = manual;
  for (const CLMenual* other : {&copy, static_cast<const CLMenual*>(&assigned)}) {
    EXPECT_EQ(other->m_nHTMLHelp, 0);
    EXPECT_EQ(other->m_mapManualFile, manual.m_mapManualFile);
    EXPECT_EQ(other->m_mapHtmlPage, manual.m_mapHtmlPage);
  }
}

// --- opening with the desktop, in this process -----------------------------------------

TEST(DesktopOpen, XdgOpenHandsFilesAndAddressesToTheDefaultApplication) {
  const DesktopRecorder recorder;
  const TempFolder files("open");
  const struct {
    const char* name;
    std::string target;
  } kRows[] = {
      {"pdf", files.Write("Board Manual.pdf", kPdf)},
      {"html", files.Write("page.html", kHtml)},
      {"htm", files.Write("page.htm", kHtml)},
      {"http", "http://help.orvane.example/tessel/a.htm"},
      {"https", "https://help.orvane.example/tessel/b.htm?x=1&y=2"},
  };
  const corlith::test::ScopedEnvironment environment(recorder.Environment(), recorder.UnsetVariables());
  for (std::size_t i = 0; i < std::size(kRows); ++i) {
    SCOPED_TRACE(kRows[i].name);
    ASSERT_EQ(corlith::platform::OpenWithDesktop(kRows[i].target), 0);
    // One at a time, so that the records keep the rows' order.
    const Lines records = recorder.WaitForRecords(i + 1);
    ASSERT_EQ(records.size(), i + 1);
    EXPECT_EQ(records.back(), kRows[i].target);
  }
}

TEST(DesktopOpen, ATargetThatLooksLikeAnOptionIsAPath) {
  const DesktopRecorder recorder;
  const TempFolder files("open");
  files.Write("-help.pdf", kPdf);
  const corlith::test::ScopedEnvironment environment(recorder.Environment(), recorder.UnsetVariables());
  const fs::path previous = fs::current_path();
  fs::current_path(files.Path());
  const int result = corlith::platform::OpenWithDesktop("-help.pdf");
  const Lines records = recorder.WaitForRecords(1);
  fs::current_path(previous);
  EXPECT_EQ(result, 0);
  EXPECT_EQ(records, Lines{"./-help.pdf"});
}

TEST(DesktopOpen, StartFailuresAreReportedAtOnce) {
  const TempFolder empty("nopath");
  EXPECT_EQ(corlith::platform::OpenWithDesktop(""), EINVAL);
  EXPECT_EQ(corlith::platform::OpenWithDesktop(std::string_view("a\0b", 3)), EINVAL);
  const corlith::test::ScopedEnvironment environment({"PATH=" + empty.Path().string()}, {});
  EXPECT_EQ(corlith::platform::OpenWithDesktop("https://help.orvane.example/"), ENOENT);
}

// --- CLMenual in the fixture program -------------------------------------------------------

Lines SplitLines(const std::string& text) {
  Lines lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

// A temporary installation: <root>/bin/ holds a copy of the fixture, which is also the
// data folder (the uninstalled layout); the lists go to bin/Data/.
class ManualInstallation {
 public:
  ManualInstallation() : m_root("manual") {
    fs::create_directories(Bin() / "Data");
    fs::copy_file(CORLITH_ENVIRONMENT_FIXTURE, Bin() / "fixture");
  }

  fs::path Bin() const { return m_root.Path() / "bin"; }
  fs::path ManualList() const { return Bin() / "Data" / "Tessel Manual ID List.txt"; }
  fs::path PageList() const { return Bin() / "Data" / "Tessel Html Page List.txt"; }
  const DesktopRecorder& Recorder() const { return m_recorder; }

  struct Result {
    Lines output;
    std::string errors;
  };

  Result Run(const Lines& commands) const {
    SpawnOptions options;
    options.program = Bin() / "fixture";
    options.arguments = commands;
    options.environment = m_recorder.Environment();
    options.unsetVariables = m_recorder.UnsetVariables();
    options.unsetVariables.emplace_back("ORVANE_K2_TESSEL_CONFIG_PATH");
    options.output = StreamTarget::Pipe();
    options.error = StreamTarget::Pipe();
    Process process;
    EXPECT_EQ(corlith::platform::Spawn(options, process), 0);
    const auto status = process.Wait();
    EXPECT_TRUE(status && status->Succeeded()) << process.ErrorOutput();
    return {SplitLines(process.Output()), process.ErrorOutput()};
  }

 private:
  TempFolder m_root;
  DesktopRecorder m_recorder;
};

std::size_t Count(const std::string& text, const std::string& part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
  return count;
}

TEST(ManualLookup, ListsAreReadAgainOnEveryLookup) {
  const ManualInstallation app;
  corlith::test::WriteFile(app.ManualList(), "3&Board Manual\r\n7&Panel\n3&Duplicate\n");
  corlith::test::WriteFile(app.PageList(), "// pages\n12&page.htm&x\n5&https://h.example/five.htm\n");
  const auto first = app.Run({"manual", "file", "3", "1", "manual", "file", "4", "0", "manual", "page", "5",
                              "manual", "page", "12", "manual", "page", "0"});
  EXPECT_EQ(first.output, (Lines{"Board Manual.pdf", ".pdf", "https://h.example/five.htm", "", ""}));
  EXPECT_EQ(first.errors, "");

  // Between lookups of one object the list is overwritten ("marker": no entry), then
  // removed: each lookup sees the file as it is then, never what an earlier one read.
  const std::string list = app.PageList().string();
  const auto second = app.Run(
      {"manual", "page", "5", "write", list, "manual", "page", "5", "remove", list, "manual", "page", "5"});
  EXPECT_EQ(second.output, (Lines{"https://h.example/five.htm", "written", "", "removed", ""}));
}

TEST(ManualLookup, MissingListsAreSilentAndUnopenableOnesSayTheManualIsMissing) {
  const struct {
    const char* name;
    bool folderForManuals;  // the manual list is a folder
    bool folderForPages;
    bool unreadablePages;  // the page list has no read permission (not for root)
    std::size_t messages;
  } kRows[] = {
      {"both missing", false, false, false, 0},         {"manual list is a folder", true, false, false, 1},
      {"page list is a folder", false, true, false, 1}, {"both folders", true, true, false, 2},
      {"page list unreadable", false, false, true, 1},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.name);
    if (row.unreadablePages && ::geteuid() == 0)
      continue;  // root reads it anyway; the folder rows cover root
    const ManualInstallation app;
    if (row.folderForManuals) fs::create_directories(app.ManualList());
    if (row.folderForPages) fs::create_directories(app.PageList());
    if (row.unreadablePages) {
      corlith::test::WriteFile(app.PageList(), "5&five.htm\n");
      fs::permissions(app.PageList(), fs::perms::none);
    }
    const auto result = app.Run({"manual", "file", "3", "1", "manual", "page", "5"});
    EXPECT_EQ(result.output, (Lines{".pdf", ""}));
    EXPECT_EQ(Count(result.errors, ": The manual file does not exist.\n"), row.messages) << result.errors;
    EXPECT_EQ(Count(result.errors, "\n"), row.messages) << result.errors;
  }
}

TEST(ManualOpen, HtmlHelpOpensThePageOrTheHomePage) {
  const ManualInstallation app;
  const std::string page = (app.Bin() / "Data" / "five page.htm").string();
  corlith::test::WriteFile(page, kHtml);
  corlith::test::WriteFile(app.PageList(), "5&" + page + "\n6&https://h.example/six.htm\n");
  const auto result =
      app.Run({"manual", "html", "1",      "5",    "manual", "html", "0",      "6",    "manual", "open", "0",
               "5",      "1",    "manual", "html", "1",      "6",    "manual", "html", "1",      "99"});
  EXPECT_EQ(result.output, (Lines{"1", "0", "0", "1", "1"}));
  std::vector<std::string> records = app.Recorder().WaitForRecords(3);
  std::this_thread::sleep_for(300ms);  // nothing else arrives late
  records = app.Recorder().Records();
  std::sort(records.begin(), records.end());
  EXPECT_EQ(records, (Lines{page, "https://h.example/six.htm", kDefaultOnlineHelpHomePage}));
}

TEST(ManualOpen, TheHomePageIsTheHostsToSet) {
  const ManualInstallation app;
  const auto result = app.Run({"manual", "home", "https://help.host.example/start", "manual", "open", "1",
                               "41", "0", "manual", "home", "", "manual", "html", "1", "42"});
  EXPECT_EQ(result.output, (Lines{"set", "1", "set", "0"}));
  std::vector<std::string> records = app.Recorder().WaitForRecords(1);
  std::this_thread::sleep_for(300ms);
  EXPECT_EQ(app.Recorder().Records(), Lines{"https://help.host.example/start"});
}

TEST(ManualOpen, PdfManualsBesideTheExecutableAreOpenedWhenTheyExist) {
  const ManualInstallation app;
  corlith::test::WriteFile(app.ManualList(), "3&Board Manual\n4&Missing Manual\n");
  const std::string manual = (app.Bin() / "Board Manual.pdf").string();
  corlith::test::WriteFile(manual, kPdf);
  const auto result = app.Run({"manual", "open", "0", "4", "1",    // listed, no file
                               "manual", "open", "0", "5", "1",    // not listed: ".pdf"
                               "manual", "open", "2", "3", "0"});  // any flag but 1 means PDF
  EXPECT_EQ(result.output, (Lines{"0", "0", "1"}));
  std::vector<std::string> records = app.Recorder().WaitForRecords(1);
  std::this_thread::sleep_for(300ms);
  EXPECT_EQ(app.Recorder().Records(), Lines{manual});
}

}  // namespace
