// KTUtility's path segments and name conversions, with POSIX and backslash paths: the
// segment modes and their quirks, the absolute-path rule (shared with CLPath), folder
// names on a real tree, the file-name corrections, and the two encodings with their
// round trips.
#include <corlith/environment/LPath.h>
#include <corlith/environment/Utility.h>
#include <corlith/platform/Path.h>
#include <corlith/test/TempFolder.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using corlith::test::TempFolder;

KTUtility& Utility() { return *KTUtility::GetInstance(); }

// Expected texts are written with "/"; results carry the native separator.
std::string Native(const std::string& text) { return corlith::platform::ToNativeSeparators(text); }

constexpr bool kPosix = corlith::platform::kNativeSeparator == '/';

TEST(SegmentsOfPath, EveryModeWithEitherSeparator) {
  struct Row {
    const char* path;
    int segment;
    const char* expected;  // with "/" for the native separator
  };
  const std::vector<Row> rows = {
      {"C:/x/file.tar.gz", 0, "C:/x/file.tar"},
      {"C:/x/file.tar.gz", 1, "C:/x"},
      {"C:/x/file.tar.gz", 2, "file.tar.gz"},
      {"C:/x/file.tar.gz", 3, "file.tar"},
      {"C:/x/file.tar.gz", 4, "gz"},
      {"C:\\x\\file.tar.gz", 0, "C:/x/file.tar"},
      {"C:\\x\\file.tar.gz", 1, "C:/x"},
      {"C:\\x\\file.tar.gz", 2, "file.tar.gz"},
      {"C:\\x\\file.tar.gz", 3, "file.tar"},
      {"C:\\x\\file.tar.gz", 4, "gz"},
      {"a\\b/c.txt", 1, "a/b"},
      {"a\\b/c.txt", 2, "c.txt"},
      {"/home/user/report.csv", 0, "/home/user/report"},
      {"/home/user/report.csv", 3, "report"},
      // No separator: the folder is empty, the name is the whole path.
      {"file.txt", 1, ""},
      {"file.txt", 2, "file.txt"},
      {"file.txt", 3, "file"},
      // No dot: path and extension are empty, the title is the name.
      {"/home/user/file", 0, ""},
      {"/home/user/file", 4, ""},
      {"/home/user/file", 3, "file"},
      // A dot in a folder's name with an extensionless file cuts inside the folder.
      {"/home/a.b/file", 0, "/home/a"},
      {"\\home\\a.b\\file", 0, "/home/a"},
      {"/home/a.b/file", 4, "b/file"},
      {"/home/a.b/file", 3, "file"},
      {".bashrc", 3, ""},
      {".bashrc", 4, "bashrc"},
      {"dir/", 1, "dir"},
      {"dir/", 2, ""},
      {"dir\\", 2, ""},
      {"", 0, ""},
      {"", 2, ""},
      {"C:/x/file.tar.gz", 5, ""},
      {"C:/x/file.tar.gz", -1, ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(std::string(row.path) + " segment " + std::to_string(row.segment));
    EXPECT_EQ(Utility().GetSegmntFromFilePath(row.path, row.segment).str(), Native(row.expected));
  }
}

TEST(AbsolutePath, DriveNetworkAndRootedPathsOnTrimmedText) {
  struct Row {
    const char* path;
    int expected;
  };
  const std::vector<Row> rows = {
      {"", 0},
      {"   ", 0},
      {"C:\\x", 1},
      {"c:/x", 1},
      {"C:", 1},
      {"  C:\\x  ", 1},
      {"\tc:x", 1},
      // The rule looks only at where the first ":" stands.
      {"1:x", 1},
      {"ab:c", 0},
      {":x", 0},
      {"\\\\server\\share", 1},
      {"//server/share", 1},
      {"\\/server", 1},
      {"a\\b", 0},
      {"a/b", 0},
      {"relative.txt", 0},
      {"/usr/bin", kPosix ? 1 : 0},
      {"\\tmp", kPosix ? 1 : 0},
      {"  /usr", kPosix ? 1 : 0},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.path);
    EXPECT_EQ(Utility().IsAbsolutePath(row.path), row.expected);
    EXPECT_EQ(CLPath::IsAbsolutePath(row.path), row.expected);
  }
}

TEST(PureFileName, NoSeparatorOfEitherKind) {
  const std::vector<std::pair<const char*, bool>> rows = {
      {"a.txt", true}, {"", true},   {"C:a", true},    {"a/b", false},
      {"a\\b", false}, {"/", false}, {"dir\\", false},
  };
  for (const auto& [path, expected] : rows) {
    SCOPED_TRACE(path);
    EXPECT_EQ(Utility().IsPureFileName(path), expected);
  }
}

TEST(FolderName, OfAFolderAndTheClippedNameOfAFilesFolder) {
  TempFolder temp("names");
  fs::create_directories(temp.Path() / "proj" / "abc");
  fs::create_directories(temp.Path() / "proj" / "x");
  temp.Write("proj/abc/f.txt", "1");
  temp.Write("proj/x/g.txt", "1");
  const std::string root = temp.Path().string();
  std::string backslashed = root + "/proj/abc";
  for (char& c : backslashed) c = c == '/' ? '\\' : c;

  struct Row {
    std::string path;
    const char* expected;
  };
  const std::vector<Row> rows = {
      {root + "/proj/abc", "abc"},
      {backslashed, "abc"},
      // A trailing separator leaves nothing after the last one.
      {root + "/proj/abc/", ""},
      // A file: the containing folder's name less its last character (kept so).
      {root + "/proj/abc/f.txt", "ab"},
      {backslashed + "\\f.txt", "ab"},
      {root + "/proj/x/g.txt", ""},
      {root + "/proj/abc/missing.txt", ""},
      {"", ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.path);
    EXPECT_EQ(Utility().GetFolderName(row.path.c_str()).str(), row.expected);
  }
}

TEST(FileNameCorrection, ReplacesUnsafeCharactersAndBlanksButChecksOnlyUnsafeOnes) {
  struct Row {
    const char* name;
    const char* corrected;
    int alreadyCorrect;
  };
  const std::vector<Row> rows = {
      {"plain-name_1.txt", "plain-name_1.txt", 1},
      {"a b~c", "a$b$c", 1},
      {"C:\\x/y", "C$$x$y", 0},
      {"*?<>|", "$$$$$", 0},
      {"\"quoted\"", "\"quoted\"", 1},
      {"ünï cödé", "ünï$cödé", 1},
      {"", "", 1},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const CString corrected = Utility().GetCorretedFileName(row.name);
    EXPECT_EQ(corrected.str(), row.corrected);
    EXPECT_EQ(Utility().IsCorretedFileName(row.name), row.alreadyCorrect);
    EXPECT_EQ(Utility().IsCorretedFileName(corrected), 1) << "a corrected name must pass the check";
  }
  for (const char c : std::string("\\/:*?<>|")) {
    SCOPED_TRACE(std::string(1, c));
    EXPECT_EQ(Utility().IsCorretedFileName(CString("ok") + c), 0);
  }
}

TEST(FolderNameCodes, ReplaceInOrderAndRoundTripWithoutCaretCodes) {
  struct Row {
    const char* text;
    const char* encoded;
  };
  const std::vector<Row> rows = {
      {"a\\b/c:d*e?f\"g<h>i|j", "a1^b2^c3^d4^e5^f6^g7^h8^i9^j"},
      {"C:\\Data\\Boards", "C3^1^Data1^Boards"},
      {"//", "2^2^"},
      {"12 plain", "12 plain"},
      {"", ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text);
    CString text(row.text);
    Utility().ConvertStringForVaildFolderName(text);
    EXPECT_EQ(text.str(), row.encoded);
    Utility().ConvertStringForOriginalFolderName(text);
    EXPECT_EQ(text.str(), row.text);
  }
  // Not an inverse for a text that already holds a code: "1^" comes back as "\".
  CString coded("x1^y");
  Utility().ConvertStringForOriginalFolderName(coded);
  EXPECT_EQ(coded.str(), "x\\y");
}

TEST(EntityCodes, EncodeEveryUnsafeCharacterAndDecodeBack) {
  struct Row {
    const char* text;
    const char* encoded;
  };
  const std::vector<Row> rows = {
      {"C:\\a/b", "C&#58;&#92;a&#47;b"},
      {"*?\"<>|", "&#42;&#63;&#34;&#60;&#62;&#124;"},
      {"a & b; #1", "a & b; #1"},
      {"&/", "&&#47;"},
      {"", ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text);
    const CString encoded = Utility().EncodeEntityCode(row.text);
    EXPECT_EQ(encoded.str(), row.encoded);
    EXPECT_EQ(Utility().DecodeEntityCode(encoded).str(), row.text);
  }
  // Codes of other characters stay as they are.
  EXPECT_EQ(Utility().DecodeEntityCode("&#38;&#124;").str(), "&#38;|");
  // A text that already holds a code does not come back: the code is decoded too.
  EXPECT_EQ(Utility().DecodeEntityCode(Utility().EncodeEntityCode("&#92;")).str(), "\\");
}

}  // namespace
