// The diagnostics members of KTUtility: the memory report, the debug marker, the account
// query, the font families and the spreadsheet application test.
#include <corlith/environment/Utility.h>

#include <corlith/platform/Diagnostics.h>
#include <corlith/platform/Path.h>

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace {

namespace platform = corlith::platform;

constexpr const char* kDefaultDebugMarker = "DEBUG_FILE";

// The commands of the office suites that open .xlsx workbooks: LibreOffice (its
// launcher, its program and its spreadsheet's own starter), Gnumeric, ONLYOFFICE. WPS
// Spreadsheets' command "et" is left out, as Eternal Terminal's client has the same name;
// WPS is found through its desktop entry, which lists the type.
constexpr std::array<std::string_view, 5> kSpreadsheetCommands = {"libreoffice", "soffice", "localc",
                                                                  "gnumeric", "onlyoffice-desktopeditors"};

// Bytes to mebibytes, truncated, as the report prints them.
std::uint32_t Mebibytes(std::uint64_t value) { return static_cast<std::uint32_t>(value >> 20); }

void AddLine(CStringArray& lines, const char* format, std::uint64_t value) {
  CString line;
  line.Format(format, Mebibytes(value));
  lines.Add(line);
}

}  // namespace

int KTUtility::GetMemoryInfoByCurrentProcess(CStringArray& lines) {
  CString first;
  first.Format("\nProcess ID: %u\n", static_cast<std::uint32_t>(GetProcessID()));
  lines.Add(first);
  platform::MemoryCounters c;
  if (platform::ReadMemoryCounters(c) != 0) return 1;
  // The page-fault count goes through the same shift and "MB" label, deliberately.
  AddLine(lines, "\tPageFaultCount: %u MB\n", c.pageFaultCount);
  AddLine(lines, "\tPeakWorkingSetSize: %u MB\n", c.peakWorkingSetSize);
  AddLine(lines, "\tWorkingSetSize: %u MB\n", c.workingSetSize);
  AddLine(lines, "\tQuotaPeakPagedPoolUsage: %u MB\n", c.quotaPeakPagedPoolUsage);
  AddLine(lines, "\tQuotaPagedPoolUsage: %u MB\n", c.quotaPagedPoolUsage);
  AddLine(lines, "\tQuotaPeakNonPagedPoolUsage: %u MB\n", c.quotaPeakNonPagedPoolUsage);
  AddLine(lines, "\tQuotaNonPagedPoolUsage: %u MB\n", c.quotaNonPagedPoolUsage);
  AddLine(lines, "\tPagefileUsage: %u MB\n", c.pagefileUsage);
  AddLine(lines, "\tPeakPagefileUsage: %u MB\n", c.peakPagefileUsage);
  return 1;
}

int KTUtility::IsExistDebugFile(const CString& name) {
  const CString folder = GetCurModuleDir();
  if (folder.IsEmpty()) return 0;
  std::string path(folder.view());
  path += platform::kNativeSeparator;
  path += name.IsEmpty() ? std::string_view(kDefaultDebugMarker) : name.view();
  return DoesFileExist(CString(path), "KTUtility", __LINE__) ? 1 : 0;
}

int KTUtility::GetUserAccountType() {
  platform::UserAccount account;
  return platform::CurrentUserAccount(account) == 0 ? 0 : -1;
}

void KTUtility::GetWindowsTrueTypeFontNames(CStringArray& names) {
  names.RemoveAll();
  for (std::string& family : platform::ScalableFontFamilies()) names.Add(CString(std::move(family)));
}

int KTUtility::IsMSExcelInstalled() {
  for (const std::string_view command : kSpreadsheetCommands) {
    if (platform::IsProgramOnPath(command)) return 1;
  }
  return platform::IsApplicationRegisteredFor(platform::kSpreadsheetMimeType) ? 1 : 0;
}
