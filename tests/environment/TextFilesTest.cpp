// KTUtility's text-file members on real files: whole contents, the two line filters and
// their output files (each line used as a format through the bounded formatter), and
// the case-insensitive list search.
#include <corlith/environment/Utility.h>
#include <corlith/test/Arrays.h>
#include <corlith/test/TempFolder.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using corlith::test::ReadFile;
using corlith::test::TempFolder;

KTUtility& Utility() { return *KTUtility::GetInstance(); }

TEST(TextContents, EveryLineEndsInALineFeed) {
  struct Row {
    std::string bytes;
    std::string expected;
  };
  const std::vector<Row> rows = {
      {"a\nb\n", "a\nb\n"},     {"a\nb", "a\nb\n"},
      {"a\r\nb\r\n", "a\nb\n"}, {"", ""},
      {"\n\n", "\n\n"},         {std::string(10000, 'x') + "\ny", std::string(10000, 'x') + "\ny\n"},
      {"100%d\n", "100%d\n"},
  };
  TempFolder temp("contents");
  for (const Row& row : rows) {
    SCOPED_TRACE(row.bytes.substr(0, 20));
    const std::string path = temp.Write("file.txt", row.bytes);
    EXPECT_EQ(Utility().GetTxtFileContents(path.c_str()).str(), row.expected);
  }
  EXPECT_EQ(Utility().GetTxtFileContents(temp.PathOf("missing").c_str()).str(), "");
  EXPECT_EQ(Utility().GetTxtFileContents(temp.Path().c_str()).str(), "") << "a folder has no text";
}

TEST(ReplaceInFile, WritesTheChangedLinesBesideTheInput) {
  struct Row {
    const char* name;
    std::string input;
    const char* find;
    const char* replacement;
    std::string output;
  };
  const std::vector<Row> rows = {
      {"every occurrence", "x=OLD\nOLD OLD\nnone\n", "OLD", "new", "x=new\nnew new\nnone\n"},
      {"backslash before a quote", "say \\\"hi\\\"\nC:\\dir\n", "zzz", "", "say \"hi\"\nC:\\dir\n"},
      {"replacement makes a backslash-quote", "a\\b\n", "b", "\"", "a\"\n"},
      {"a percent pair is one percent", "100%% done\n", "zzz", "", "100% done\n"},
      {"a directive without argument gives nothing", "rate %d per %s%n.\n", "zzz", "", "rate  per .\n"},
      {"a replacement is formatted too", "aXb\n", "X", "%d", "ab\n"},
      {"Windows line ends", "one\r\ntwo\r\n", "o", "0", "0ne\ntw0\n"},
      {"last line without line end", "one\ntwo", "t", "T", "one\nTwo\n"},
      {"empty search text", "keep\n", "", "x", "keep\n"},
      {"empty file", "", "a", "b", ""},
  };
  TempFolder temp("replace");
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const std::string input = temp.Write("in.cfg", row.input);
    temp.Write("in.cfgTMP", "stale content that must go");
    const CString output = Utility().ReplaceStringFromFile(input.c_str(), row.find, row.replacement);
    EXPECT_EQ(output.str(), input + "TMP");
    EXPECT_EQ(ReadFile(output.str()), row.output);
    EXPECT_EQ(ReadFile(input), row.input) << "the input is not changed";
  }
}

TEST(DeleteLinesFromFile, DropsEveryLineHoldingTheTextAnywhere) {
  struct Row {
    const char* name;
    std::string input;
    const char* text;
    std::string output;
  };
  const std::vector<Row> rows = {
      {"anywhere in the line", "keep\nDROP me\nalso keep\nme DROP\nmiDROPdle\n", "DROP", "keep\nalso keep\n"},
      {"case matters", "drop\nDROP\n", "DROP", "drop\n"},
      {"kept lines are formats", "50%% kept\n%s\ngone\n", "gone", "50% kept\n\n"},
      {"an empty text is in every line", "a\nb\n", "", ""},
      {"nothing matches", "a\r\nb", "zzz", "a\nb\n"},
  };
  TempFolder temp("deletelines");
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const std::string input = temp.Write("list.txt", row.input);
    const CString output = Utility().DeleteOneLineFromStartingString(input.c_str(), row.text);
    EXPECT_EQ(output.str(), input + "TMP2");
    EXPECT_EQ(ReadFile(output.str()), row.output);
    EXPECT_EQ(ReadFile(input), row.input);
  }
}

TEST(TextFilterFaults, AMissingInputWritesNothingAndReturnsNoPath) {
  TempFolder temp("filterfaults");
  const std::string missing = temp.PathOf("missing.txt");
  EXPECT_EQ(Utility().ReplaceStringFromFile(missing.c_str(), "a", "b").str(), "");
  EXPECT_EQ(Utility().DeleteOneLineFromStartingString(missing.c_str(), "a").str(), "");
  EXPECT_FALSE(fs::exists(missing + "TMP"));
  EXPECT_FALSE(fs::exists(missing + "TMP2"));
  // The output's name is taken by a folder: no output can be written.
  const std::string input = temp.Write("in.txt", "a\n");
  fs::create_directory(input + "TMP");
  EXPECT_EQ(Utility().ReplaceStringFromFile(input.c_str(), "a", "b").str(), "");
  EXPECT_TRUE(fs::is_directory(input + "TMP"));
}

TEST(ExistString, EqualAfterUpperCasingAsciiLetters) {
  const auto list = corlith::test::ArrayOf<CStringArray>({"Alpha", "beta", "", "ünï"});
  struct Row {
    const char* text;
    int expected;
  };
  const std::vector<Row> rows = {
      {"ALPHA", 1}, {"alpha", 1}, {"Beta", 1}, {"", 1},       {"ünï", 1},
      {"ÜNÏ", 0},   {"gamma", 0}, {"Alph", 0}, {"Alpha ", 0},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text);
    EXPECT_EQ(Utility().IsExistString(list, row.text), row.expected);
  }
  EXPECT_EQ(Utility().IsExistString(CStringArray(), ""), 0);
}

}  // namespace
