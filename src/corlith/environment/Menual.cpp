#include <corlith/environment/Menual.h>
#include <corlith/environment/Utility.h>
#include <corlith/framework/Exceptions.h>
#include <corlith/framework/File.h>
#include <corlith/framework/HostPrompt.h>
#include <corlith/framework/StringArray.h>
#include <corlith/platform/Desktop.h>
#include <corlith/text/Tokenizer.h>

#include <array>
#include <climits>
#include <mutex>
#include <string>

namespace {

constexpr const char* kTraceSource = "CLMenual";

std::mutex& HomePageMutex() {
  static std::mutex mutex;
  return mutex;
}

CString& HomePage() {
  static CString address(kDefaultOnlineHelpHomePage);
  return address;
}

// The whole file, or false when it cannot be opened or read.
bool ReadWholeFile(const CString& path, std::string& text) {
  CFile file;
  if (!file.Open(path, CFile::modeRead | CFile::shareDenyNone | CFile::typeBinary)) return false;
  try {
    std::array<char, 16384> buffer{};
    for (;;) {
      const UINT done = file.Read(buffer.data(), static_cast<UINT>(buffer.size()));
      if (done == 0) break;
      text.append(buffer.data(), done);
    }
  } catch (const CException&) {
    return false;
  }
  return true;
}

}  // namespace

namespace corlith {

int ManualListNumber(std::string_view field) {
  std::size_t i = 0;
  const auto isSpace = [](char c) { return c == ' ' || (c >= '\t' && c <= '\r'); };
  while (i < field.size() && isSpace(field[i])) ++i;
  bool negative = false;
  if (i < field.size() && (field[i] == '+' || field[i] == '-')) negative = field[i++] == '-';
  long long value = 0;
  for (; i < field.size() && field[i] >= '0' && field[i] <= '9'; ++i) {
    value = value * 10 + (field[i] - '0');
    if (value > static_cast<long long>(INT_MAX) + 1) break;  // already out of range either way
  }
  if (negative) value = -value;
  if (value > INT_MAX) return INT_MAX;
  if (value < INT_MIN) return INT_MIN;
  return static_cast<int>(value);
}

void ParseManualList(std::string_view text, ManualListKind kind, std::map<int, CString>& map) {
  CTokenizer tokenizer;
  CStringArray fields;
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    std::string_view line = text.substr(0, end);
    text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
    if (line.ends_with('\r')) line.remove_suffix(1);
    if (line.empty()) continue;
    if (kind == ManualListKind::HtmlPages && line.starts_with("//")) continue;
    fields.RemoveAll();
    tokenizer.GetTokenArray(fields, CString(line), "&");
    if (fields.GetSize() != 2) continue;
    map.emplace(ManualListNumber(fields[0].view()), fields[1]);
  }
}

}  // namespace corlith

void CLMenual::LoadList(const char* fileName, corlith::ManualListKind kind, std::map<int, CString>& map) {
  map.clear();
  KTUtility& utility = *KTUtility::GetInstance();
  const CString path = utility.KTPathCombine(utility.GetDataPath(), fileName, kTraceSource, __LINE__);
  if (path.IsEmpty() || !utility.DoesFileExist(path, kTraceSource, __LINE__)) return;
  std::string text;
  if (!ReadWholeFile(path, text)) {
    AfxMessageBox(kManualFileMissingMessage, MB_OK);
    return;
  }
  corlith::ParseManualList(text, kind, map);
}

void CLMenual::GetManualID_ManualFileNameArrya() {
  LoadList(kManualIdListFile, corlith::ManualListKind::ManualIds, m_mapManualFile);
}

void CLMenual::LoadHtmlPageMappingFile() {
  LoadList(kHtmlPageListFile, corlith::ManualListKind::HtmlPages, m_mapHtmlPage);
}

CString CLMenual::GetManualFileName(int id, int /*language*/) {
  GetManualID_ManualFileNameArrya();
  const auto found = m_mapManualFile.find(id);
  return (found != m_mapManualFile.end() ? found->second : CString()) + ".pdf";
}

CString CLMenual::GetManualFileNameAndLang(int language) const {
  switch (language) {
    case 0:
      return "_Kor.pdf";
    case 2:
      return "_Jap.pdf";
    case 3:
      return "_Chi.pdf";
    default:
      return "_Eng.pdf";
  }
}

CString CLMenual::GetHTMLHelpFileName(int id) {
  LoadHtmlPageMappingFile();
  const auto found = m_mapHtmlPage.find(id);
  return found != m_mapHtmlPage.end() ? found->second : CString();
}

int CLMenual::OpenHtmlHelp(int id) {
  if (m_nHTMLHelp != 1) return 0;
  CString target = GetHTMLHelpFileName(id);
  if (target.IsEmpty()) target = GetOnlineHelpHomePage();
  if (target.IsEmpty()) return 0;
  // Deliberately 1 whether or not xdg-open could be started, as the shell call's result
  // was not looked at either.
  corlith::platform::OpenWithDesktop(target.view());
  return 1;
}

int CLMenual::OpenMenual(int id, int language) {
  if (m_nHTMLHelp == 1) return OpenHtmlHelp(id);
  const CString name = GetManualFileName(id, language);
  if (name.IsEmpty()) return 0;
  KTUtility& utility = *KTUtility::GetInstance();
  const CString path = utility.KTPathCombine(utility.GetCurModuleDir(), name, kTraceSource, __LINE__);
  if (!utility.DoesFileExist(path, kTraceSource, __LINE__)) return 0;
  return corlith::platform::OpenWithDesktop(path.view()) == 0 ? 1 : 0;
}

CString CLMenual::GetOnlineHelpHomePage() {
  const std::lock_guard lock(HomePageMutex());
  return HomePage();
}

void CLMenual::SetOnlineHelpHomePage(const CString& address) {
  const std::lock_guard lock(HomePageMutex());
  HomePage() = address;
}
