// KTUtility: whole text files read line by line, and the two filters that write a
// changed copy beside the input ("TMP" and "TMP2" appended to its name).
#include <corlith/environment/Utility.h>

#include <corlith/framework/Ascii.h>
#include <corlith/framework/Exceptions.h>
#include <corlith/framework/Format.h>
#include <corlith/framework/StdioFile.h>
#include <corlith/platform/File.h>

#include <string>
#include <string_view>

namespace {

// The file functions take C strings: a path with a NUL byte would name another file.
bool HasNul(const CString& path) { return path.view().find('\0') != std::string_view::npos; }

// Writes `path` + `suffix` from the input's lines: each line that `keep` accepts, after
// `edit`, gets a line feed and is used as a format without arguments (a percent sign is
// a directive; the bounded formatter makes one with no argument produce nothing).
// Returns the output path; empty when the input cannot be read or the output cannot be
// written completely, in which case no output is left behind.
template <typename Keep, typename Edit>
CString FilterLines(const CString& path, const char* suffix, Keep keep, Edit edit) {
  if (HasNul(path)) return {};
  CString output = path + suffix;
  CStdioFile input;
  if (!input.Open(path, CFile::modeRead | CFile::typeText)) return {};
  CStdioFile out;
  if (!out.Open(output, CFile::modeCreate | CFile::modeWrite | CFile::typeText)) return {};
  try {
    CString line;
    std::string format;
    while (input.ReadString(line)) {
      if (!keep(line)) continue;
      edit(line);
      format.assign(line.view());
      format += '\n';
      out.WriteString(corlith::FormatV(format, {}).c_str());
    }
    out.Close();
  } catch (const CException&) {
    out.Abort();
    corlith::platform::RemoveFile(output.str());
    return {};
  }
  return output;
}

bool EqualUpperCased(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (corlith::ascii::ToUpper(a[i]) != corlith::ascii::ToUpper(b[i])) return false;
  }
  return true;
}

}  // namespace

CString KTUtility::GetTxtFileContents(const CString& path) {
  if (HasNul(path)) return {};
  CStdioFile file;
  if (!file.Open(path, CFile::modeRead | CFile::typeText)) return {};
  std::string contents;
  try {
    CString line;
    while (file.ReadString(line)) {
      contents.append(line.view());
      contents += '\n';
    }
  } catch (const CException&) {
    // A read that fails part-way gives nothing rather than a silently shortened text.
    return {};
  }
  return CString(std::move(contents));
}

CString KTUtility::ReplaceStringFromFile(const CString& path, const CString& find,
                                         const CString& replacement) {
  return FilterLines(
      path, "TMP", [](const CString&) { return true; },
      [&](CString& line) {
        line.Replace(find, replacement);
        line.Replace("\\\"", "\"");
      });
}

CString KTUtility::DeleteOneLineFromStartingString(const CString& path, const CString& text) {
  // Drops every line that holds the text anywhere, despite the name (kept so).
  return FilterLines(
      path, "TMP2", [&](const CString& line) { return line.Find(text) == -1; }, [](CString&) {});
}

int KTUtility::IsExistString(const CStringArray& list, const CString& text) {
  for (const CString& element : list) {
    if (EqualUpperCased(element.view(), text.view())) return 1;
  }
  return 0;
}
