// What the diagnostics of a host application read about the running process and the
// desktop: the process's memory counters, the current user's account, the scalable font
// families, and whether a spreadsheet application is installed. Read-only; nothing here
// throws or changes the system.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace corlith::platform {

/// The process memory counters of the original platform, filled from their nearest
/// Linux counterparts (sizes in bytes):
///
///   original counter             Linux counter
///   PageFaultCount               ru_minflt + ru_majflt (getrusage, RUSAGE_SELF)
///   PeakWorkingSetSize           VmHWM
///   WorkingSetSize               VmRSS
///   QuotaPeakPagedPoolUsage      0
///   QuotaPagedPoolUsage          0
///   QuotaPeakNonPagedPoolUsage   VmPTE
///   QuotaNonPagedPoolUsage       VmPTE
///   PagefileUsage                VmData + VmStk
///   PeakPagefileUsage            VmPeak
///
/// Why: the page-fault count counts soft and hard faults, as the original does. The
/// working set is the resident set, and VmHWM its peak. Linux never pages kernel memory
/// out, so there is no paged pool: 0. The page tables are the kernel memory charged to
/// one process that always stays resident, the nearest to the non-paged pool; Linux keeps
/// no peak of them, so the current value also stands for the peak. The page-file usage is
/// the commit charge of private memory, touched or not: the private writable mappings,
/// VmData (heap and anonymous mappings) plus VmStk. Linux keeps no peak of that part;
/// VmPeak, the peak of all mappings, is the nearest and an upper bound (it adds mapped
/// files and libraries), so the peak never reads below the current usage.
struct MemoryCounters {
  std::uint64_t pageFaultCount = 0;
  std::uint64_t peakWorkingSetSize = 0;
  std::uint64_t workingSetSize = 0;
  std::uint64_t quotaPeakPagedPoolUsage = 0;
  std::uint64_t quotaPagedPoolUsage = 0;
  std::uint64_t quotaPeakNonPagedPoolUsage = 0;
  std::uint64_t quotaNonPagedPoolUsage = 0;
  std::uint64_t pagefileUsage = 0;
  std::uint64_t peakPagefileUsage = 0;
};

/// Fills the sizes of `counters` (not the page faults) from the text of /proc/<pid>/status
/// by the table above. A field's value is a decimal number followed by " kB". False,
/// `counters` untouched, when VmHWM, VmRSS, VmData or VmPeak is missing or malformed; a
/// missing VmStk or VmPTE counts as 0 (older kernels lack them).
bool ParseProcessStatus(std::string_view status, MemoryCounters& counters);

/// The running process's counters. Returns 0, or the system's error number with
/// `counters` untouched (/proc not mounted, getrusage failing, a status text without
/// the fields above).
int ReadMemoryCounters(MemoryCounters& counters);

/// The current user as the passwd database knows it.
struct UserAccount {
  /// The account name of the record for the effective user id.
  std::string name;
  /// The name the session was logged in with (getlogin_r); "" when there is no login
  /// session (a service, a container). Informational: it may differ from `name` (su).
  std::string loginName;
};

/// Looks up the record of the effective user id. 0 and `account` filled; ENOENT when the
/// database has no record for the id (`account` untouched); else the system's error number.
int CurrentUserAccount(UserAccount& account);

/// The family names of the scalable fonts fontconfig knows (its configuration, as
/// FONTCONFIG_FILE and the like choose it), each once, sorted by byte value. A font with
/// its family in several languages contributes its first name only. Empty when
/// fontconfig cannot be set up. Each call loads a configuration of its own and frees it:
/// the process-wide one would stay loaded for good (and is the host toolkit's).
std::vector<std::string> ScalableFontFamilies();

/// The MIME type of an Office Open XML workbook (.xlsx).
inline constexpr std::string_view kSpreadsheetMimeType =
    "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet";

/// True when the desktop has an application registered for `mimeType`, by the XDG
/// rules, read from the files (never by running xdg-mime):
/// - applications are the desktop entries (*.desktop, subfolders included, the file's
///   id being its path below the folder with "/" as "-") in $XDG_DATA_HOME/applications
///   (default ~/.local/share) and then each $XDG_DATA_DIRS folder's applications
///   (default /usr/local/share:/usr/share); the first folder holding an id wins, so a
///   user's entry with Hidden=true removes a system one;
/// - an entry counts when it is an application (Type=Application), not hidden, and
///   either its MimeType key lists the type, or a mimeapps.list names it for the type
///   under [Default Applications] or [Added Associations];
/// - a mimeapps.list naming the entry for the type under [Removed Associations] takes
///   back the MimeType key's claim (not an explicit default or addition);
/// - the mimeapps.list files read are those in $XDG_CONFIG_HOME (default ~/.config),
///   each $XDG_CONFIG_DIRS folder (default /etc/xdg), and the applications folders
///   above. Desktop-specific "<desktop>-mimeapps.list" files are not read.
bool IsApplicationRegisteredFor(std::string_view mimeType);

/// True when `name` (a bare name, no "/") is an executable regular file in a folder of
/// $PATH (no PATH: "/bin:/usr/bin"). Only absolute entries count: an empty or relative
/// one would depend on the current folder.
bool IsProgramOnPath(std::string_view name);

}  // namespace corlith::platform
