// KTUtility: the library's process-wide utility object. It knows where the running
// installation keeps its executable, data, help and temporary folders, joins and checks
// paths (with the optional trace logs), and tests, creates, copies, deletes, lists and
// names files and folders, asking the person through the host prompts where it must; it
// runs the helper programs and archivers, sends forms over HTTP and reports on the
// process, the machine and a file's code signature.
// Paths are read separator-agnostically and built with the native separator (see
// <corlith/platform/Path.h>). None of the members throws; each reports by its result.
//
// The members are implemented by concern: UtilityPaths.cpp (the instance, folders,
// joins, the trace logs), UtilityFiles.cpp (existence, attributes, copy and delete),
// UtilityNames.cpp (segments and name encodings), UtilityListing.cpp, UtilityDialogs.cpp,
// UtilityText.cpp, UtilityPrograms.cpp (helper programs), UtilityArchives.cpp,
// UtilityHttp.cpp (form upload and download), UtilityDiagnostics.cpp and
// UtilitySignature.cpp (the code-signature report).
#pragma once

#include <corlith/framework/HostPrompt.h>
#include <corlith/framework/String.h>
#include <corlith/framework/StringArray.h>
#include <corlith/framework/Types.h>

#include <chrono>
#include <memory>
#include <string>
#include <string_view>

namespace corlith {

/// What the installation file beside the executable says (see ReadInstallationFile).
struct InstallationInfo {
  bool installedLayout = false;  ///< data in the per-machine folder, not beside the executable
  int edition = 0;               ///< 0 the standard edition, 1 the ECAD edition
  bool found = false;            ///< an installation file was there and readable
};

/// The name of the installation file the host's installer writes beside the executable.
inline constexpr const char* kInstallationFileName = "corlith-installation.ini";

/// Reads the installation file's text: "key=value" lines ("layout=installed" or
/// "layout=uninstalled", "edition=standard" or "edition=ecad"), blank lines and lines
/// starting with "#" or ";" ignored, white space around keys and values ignored, keys
/// and values ASCII case-insensitive. Reading stops at the first line that is not of
/// this form (an unknown key or value, no "=", a NUL byte): what came before it holds.
InstallationInfo ReadInstallationFile(std::string_view text);

/// The handle of a background folder deletion (DeleteDirectoryInThread). Move-only.
/// Dropping it does not stop or wait for the deletion, as closing the original's
/// thread handle did not; the deletion then runs on until it ends (or the process does).
class KTThreadHandle {
 public:
  KTThreadHandle() = default;
  KTThreadHandle(KTThreadHandle&&) noexcept = default;
  KTThreadHandle& operator=(KTThreadHandle&&) noexcept = default;
  KTThreadHandle(const KTThreadHandle&) = delete;
  KTThreadHandle& operator=(const KTThreadHandle&) = delete;
  ~KTThreadHandle();

  /// False for a default-constructed or moved-from handle.
  bool Valid() const { return m_state != nullptr; }
  /// Waits until the deletion has ended (at once for an invalid handle).
  void Wait() const;
  /// Waits at most `timeout`; true when the deletion has ended.
  bool WaitFor(std::chrono::milliseconds timeout) const;

  struct State;
  explicit KTThreadHandle(std::shared_ptr<State> state) : m_state(std::move(state)) {}

 private:
  std::shared_ptr<State> m_state;
};

}  // namespace corlith

/// The status record GetStatInfo fills: the original runtime's 64-bit-time record field
/// for field. The time fields carry a 64 suffix because POSIX headers define st_atime and
/// its kin as macros.
struct KTStat64 {
  std::uint32_t st_dev = 0;
  std::uint64_t st_ino = 0;
  std::uint16_t st_mode = 0;  ///< 0x4000 folder, 0x8000 regular file, permission bits
  std::int16_t st_nlink = 0;
  std::int16_t st_uid = 0;
  std::int16_t st_gid = 0;
  std::uint32_t st_rdev = 0;
  std::int64_t st_size = 0;
  std::int64_t st_atime64 = 0;
  std::int64_t st_mtime64 = 0;
  std::int64_t st_ctime64 = 0;  ///< creation time (birth time, else status change)
};

// --- helper programs and archives: the tests' way to the protected tool locators
// (KTUtility, a singleton with a private constructor, cannot be derived from).
namespace corlith::test {
struct KTUtilityToolAccess;
}

class KTUtility {
 public:
  /// The one instance, created with Init on the first call (safe from any thread) and
  /// never destroyed.
  static KTUtility* GetInstance();

  KTUtility(const KTUtility&) = delete;
  KTUtility& operator=(const KTUtility&) = delete;

  // --- the installation and its folders -------------------------------------------

  /// Reads the installation file beside the executable (kInstallationFileName): sets the
  /// installed-layout flag and the edition (none, or an unreadable file: the uninstalled
  /// layout and the standard edition), the compare-match-case flag to 1 and the
  /// versioned-data-folder flag to 1.
  void Init();
  int GetCompareMatchCase() const { return m_compareMatchCase; }
  void SetCompareMatchCase(int compareMatchCase) { m_compareMatchCase = compareMatchCase; }
  /// Beyond the original, for diagnostics: the flags Init set and the variable read once.
  int GetInstalledLayout() const { return m_installedLayout; }
  int GetEdition() const { return m_edition; }
  const CString& GetConfigurationPath() const { return m_configurationPath; }
  /// True while the "CREATE_PATH_LOG" marker is beside the executable.
  bool IsTracing();

  int GetProcessID();
  /// The variable's value; empty when it is not set (or the name holds "=" or a NUL).
  CString GetEnvironmentValue(const CString& name);
  /// Expands "%NAME%" references from this process's environment; an unknown name, and a
  /// "%" with no closing "%", stay as written; "%%" is kept. No length limit.
  CString ExpandEnvironmentStringsA(const CString& text);
  /// The folder of the running executable (not of this library).
  CString GetCurModuleDir();
  /// The folder of a loaded module, found by its name with or without the "lib" prefix
  /// and the ".so" suffix; empty when it is not loaded.
  CString GetModuleDir(const CString& moduleName);
  /// Cuts before the last separator, again while that separator was the last character;
  /// empty for an empty path or one without a separator.
  CString GetParentDir(const CString& path);
  /// 1 when the process may write to the path, else 0.
  int IsWritingPermission(const CString& path);
  /// The per-user application-data folder ($XDG_DATA_HOME, else ~/.local/share).
  CString GetAppDataFolderPath();
  /// The per-machine application-data folder (/var/lib).
  CString GetProgramDataFolderPath();
  /// The data folder: the executable's folder in the uninstalled layout; else the
  /// configuration variable's text when it names something that exists; else the
  /// per-machine folder joined with "Orvane/Tessel/2025.1" (or "Orvane/TesselForEcad/...").
  CString GetDataPath();
  /// "help/Tessel" beside the executable's folder, one level up.
  CString GetOrvaneHelpTesselDir();
  /// The data folder followed by "/Data/Temp"; that one level is created when missing.
  CString GetTesselTempFolderPath();
  /// "<base>/Data/Analysis/Temp/<process id>/<name>", created; base is the data folder
  /// when installed, else the executable's folder.
  CString GetSolverTempFolderPath(const CString& name);
  /// The guarded join: up to 256 characters together, leading separators of `file`
  /// dropped, joined and normalised ("." and "..") with native separators, and traced;
  /// longer, plain concatenation with exactly one separator and no trace line.
  CString KTPathCombine(const CString& dir, const CString& file, const char* sourceFile, int line);

  // --- existence and folders -------------------------------------------------------

  /// True for an existing file or folder (links followed); trailing separators are
  /// ignored. A bare drive "C:" is tested as its root; POSIX has no drives, so there
  /// "C:" is an ordinary relative name and a path of separators only is the root "/".
  /// Traced.
  bool DoesFileExist(const CString& path, const char* sourceFile, int line);
  /// Creates every missing level, at each separator not preceded by ":", then the whole
  /// path; both separators are kept as written. Returns 1 (0 only if creation threw).
  int ForceDirectories(const CString& path);
  void MakeDirectory(const CString& path);

  bool IsDir(const CString& path);
  bool IsFile(const CString& path);
  /// 0 and the record filled, or -1 (the record zero-filled).
  int GetStatInfo(const CString& path, KTStat64& stat);
  /// 1 for a drive-letter path ("X:"), a network path ("\\\\") or, on POSIX, a leading "/".
  int IsAbsolutePath(const CString& path);
  /// True when the text holds no separator.
  bool IsPureFileName(const CString& path);
  /// 1 when both files exist with equal sizes and equal bytes, compared block by block
  /// (never a whole file in memory: a deliberate deviation for files of any size).
  int IsSameFile(const CString& pathA, const CString& pathB);

  // --- attributes, sizes and times -------------------------------------------------

  /// Read-only: no write permission bit for anyone.
  bool IsReadOnlyFile(const CString& path);
  /// Adds the owner's write bit to a read-only file; times are kept.
  void RemoveFileAttribute_ReadOnly(const CString& path);
  /// POSIX has no hidden attribute: does nothing.
  void ChangeDirAttributeToHidden(const CString& path);
  /// The low 32 bits of the length (4 GiB and more wrap, deliberately kept); 0 when the
  /// file is missing, cannot be opened for reading or is not a regular file.
  DWORD GetFileSize(const CString& path);
  /// The low 32 bits of the length; 0xFFFFFFFF when the query fails.
  DWORD GetFileSizeInfo(const CString& path);
  /// Seconds since 1970; 0 when the status call fails. Creation is the birth time where
  /// the file system records it, else the status-change time.
  LONGLONG GetFileCreationTime(const CString& path);
  LONGLONG GetFileModifiedTime(const CString& path);

  // --- copy, rename, delete --------------------------------------------------------

  /// When `src` exists: creates `dst` and starts a hidden "cp -a" that copies src's
  /// contents into it (hidden and read-only files included, attributes kept, existing
  /// files overwritten), and returns at once.
  void CopyDirectoryContents(const CString& src, const CString& dst);
  /// The same, then waits for the copy to end.
  void WaitCopyDirectoryContents(const CString& src, const CString& dst);
  /// 1 when the rename succeeds (files too), else 0.
  int RenameDirectory(const CString& oldPath, const CString& newPath);
  /// Removes the folder and everything in it, whatever the path's length, never
  /// following symbolic links.
  void DeleteDirectory(const CString& path);
  /// Starts DeleteDirectory on a thread of its own and returns its handle at once.
  corlith::KTThreadHandle DeleteDirectoryInThread(const CString& path);

  // --- path segments and names -----------------------------------------------------

  /// 0 path without extension, 1 folder, 2 name, 3 name without extension, 4 extension.
  CString GetSegmntFromFilePath(const CString& path, int segment);
  /// A folder's name; for a file, its folder's name less its last character (kept so).
  CString GetFolderName(const CString& path);
  /// Each of \ / : * ? < > | blank ~ replaced by "$".
  CString GetCorretedFileName(const CString& name);
  /// 1 when none of \ / : * ? < > | occurs (blank and "~" allowed, deliberately).
  int IsCorretedFileName(const CString& name);
  void ConvertStringForVaildFolderName(CString& text);
  void ConvertStringForOriginalFolderName(CString& text);
  CString EncodeEntityCode(const CString& text);
  CString DecodeEntityCode(const CString& text);

  // --- listing and searching -------------------------------------------------------
  //
  // Full paths with native separators. Deliberately unlike the original: a folder's own
  // entries come before those of its sub-folders, and links to folders are listed but
  // never descended (no endless walks).

  void GetAllFileListIn(const CString& dir, CStringArray& list, const CString& extension, BOOL recursive);
  void GetAllSubDirListIn(const CString& dir, CStringArray& list, BOOL recursive);
  /// The pattern also filters the folders descended into (kept so, deliberately).
  void GetFilePathListIn(const CString& dir, CStringArray& list, const CString& pattern, BOOL& recursive);
  CString GetFilePathUnderDir(const CString& dir, const CString& fileName);
  CString FindDirFromFileNameIn(const CString& dir, const CString& fileName, BOOL recursive);
  /// The first sub-folder whose full path contains `name` ("\\" and "/" alike); empty when none.
  CString GetSubDirFullPath(const CString& dir, const CString& name, BOOL recursive);

  // --- the person: choosers and messages ---------------------------------------------

  CString GetFilePathFromUser(BOOL open, const CString& description, const CString& extension,
                              const CString& defaultName, const CString& initialDir, CWnd* parent = nullptr);
  CString GetFilePathFromUser(BOOL open, const CString& description, const CStringArray& extensions,
                              const CString& defaultName, const CString& initialDir, CWnd* parent = nullptr);
  /// One filter row per description and extension pair; `filterIndex` is the 1-based row
  /// selected first and `flags` the chooser's flags.
  CString GetFilePathFromUser(BOOL open, const CStringArray& descriptions, const CStringArray& extensions,
                              const CString& defaultName, const CString& initialDir, CWnd* parent,
                              int filterIndex, DWORD flags = OFN_HIDEREADONLY | OFN_OVERWRITEPROMPT);
  void GetFilePathListFromUser(CStringArray& list, const CString& description, const CString& extension,
                               const CString& defaultName, const CString& initialDir, CWnd* parent = nullptr);
  void GetFilePathListFromUser(CStringArray& list, const CString& description, const CStringArray& extensions,
                               const CString& defaultName, const CString& initialDir, CWnd* parent = nullptr);
  CString GetDirectoryFromUser(const CString& title, const CString& initialDir, HWND owner = nullptr);
  /// "Cannot find \"%s\" file." with the caption "Error" and an OK button.
  int MB_CannotFindFile(const CString& path);

  // --- text files ------------------------------------------------------------------

  CString GetTxtFileContents(const CString& path);
  /// Writes path + "TMP"; each line is used as a format (through the bounded formatter).
  /// Empty, and no output left, when the input cannot be read or the output not written.
  CString ReplaceStringFromFile(const CString& path, const CString& find, const CString& replacement);
  /// Writes path + "TMP2" without the lines that contain `text` anywhere; fails as above.
  CString DeleteOneLineFromStartingString(const CString& path, const CString& text);
  int IsExistString(const CStringArray& list, const CString& text);

  // --- helper programs and archives ------------------------------------------------
  //
  // Every tool runs as a child of its own (hidden: no terminal input or output), and the
  // caller waits for it. The tools are the system's `tar`, `gzip` and `7zr` and our own
  // `TesselZip`, found by the locators below. A tool's command line is written as the
  // original wrote it for its platform and split into arguments by that platform's rules
  // (blanks separate, double quotes group), so names the original did not quote may not
  // hold blanks, deliberately. The tool's own path is never split. Missing inputs or
  // tools give 0 without starting anything.

  /// Writes `commandLine` as the only line of `batchFile` ("\"%s\"\n" when it holds a
  /// blank and does not start with a double quote, else "%s\n") and runs that file
  /// hidden as a shell script ("/bin/sh batchFile"). 1: the script ended; 2: it ran
  /// longer than `timeoutHours` (0, negative or not a number: no limit) and its whole
  /// process group was ended, so nothing it started runs on; 0: the batch file could
  /// not be written (or the shell could not be started). The batch file is deleted
  /// after 1 and 2 when `deleteBatch` is nonzero. Waiting sleeps: no busy poll (a
  /// deliberate deviation).
  int ShellExecuteHideMode(const CString& commandLine, const CString& batchFile, BOOL deleteBatch,
                           double timeoutHours);
  /// Returns after `milliseconds`, keeping the user interface alive meanwhile (the
  /// desktop hooks; headless: a sleep).
  void Wait(DWORD milliseconds);
  /// Delivers the calling thread's waiting user-interface events (headless: nothing).
  void ProcessWindowMessage();

  /// Packs `source` (a file or a folder, named relative to its own folder) with tar and
  /// gzip into `archiveBase` + ".tgz" (`useTgz` nonzero) or + ".tar.gz". The tools work
  /// in the source's folder; the host's current folder is never changed. The names are
  /// not quoted, deliberately: a source or archive name with a blank is not supported.
  /// 1 when the archive is there.
  int CompressedTGZ(const CString& archiveBase, const CString& source, BOOL useTgz);
  /// Copies the archive into `destination` (created when missing), makes `destination`
  /// the process's current folder and leaves it so (deliberately, as stated for hosts),
  /// then runs tar on the copy. 1 when tar ran and reported success.
  int ExtractTarFile(const CString& archive, const CString& destination);
  /// Decompresses a copy of the archive with gzip in a work folder beside it (the
  /// archive's path without ".tgz", or without ".tar.gz"), then ExtractTarFile of the
  /// ".tar" it gave.
  int ExtractTgzFile(const CString& archive, const CString& destination);
  int ExtractTarGzFile(const CString& archive, const CString& destination);
  /// Only for names ending in ".Z" (else 0): "gzip" beside the executable decompresses
  /// the file in place. 1 when the file without ".Z" is there afterwards.
  int GDecompress(const CString& path);
  /// Extracts with 7zr into the archive's path without extension, or into that name
  /// below `destinationRoot`; an existing target folder is deleted first. 1 when 7zr
  /// could be started (after it ended), whatever it reported. Deliberately unlike the
  /// original, 0 with nothing deleted when the name has no title (".7z"), has no
  /// extension and no root is given, or the target is the archive or a folder holding it.
  int DeCompressed7z(const CString& archive, const CString& destinationRoot = CString());
  /// "TesselZip m SOURCE ZIP"; 1 when the tool ran, whatever it reported.
  int CompressedUnicodeZip(const CString& zipPath, const CString& source);
  /// "TesselZip e ZIP DESTINATION"; 1 when the tool ran, whatever it reported.
  int DecompressedUnicodeZip(const CString& zipPath, const CString& destination);
  /// Extracts every entry of the ZIP file below `destination` (empty: the ZIP path
  /// without extension), created when missing, by the rules of corlith::ExtractZip
  /// (<corlith/environment/ZipExtract.h>): an archive holding an absolute name, a drive
  /// letter, a backslash, a ".." part or a symbolic link is refused before anything is
  /// written; each file appears under its name only complete with a good checksum; no
  /// limit on the number of entries. 1 when every entry was extracted, else 0.
  int ExtractZipFile(const CString& zipPath, const CString& destination = CString());
  /// Always the empty text (a placeholder kept in the interface).
  CString GetCompressedDirInTar(const CString& archive);

  // --- HTTP form upload and download ---------------------------------------------------
  //
  // On libcurl (UtilityHttp.cpp), HTTP and HTTPS only, HTTPS checked against the
  // system's trust store. Both send the agent "HTTPFILE" and no Accept header. Safe to
  // call from several threads at once: the content header is chosen per call, not kept
  // in one process-wide buffer as the original kept it.

  /// Sends the fields as a multipart/form-data POST (`multipart` nonzero) or, appended
  /// to `url` itself as "&NAME=VALUE" (so the URL must already hold "?" and a first
  /// parameter), as a GET. The boundary is fixed; each field part (MakeResultFileData)
  /// is used as a format with the boundary as its only argument, deliberately: "%s" in
  /// a name or value becomes the boundary, "%d" prints nothing, "%%" gives "%". Texts go
  /// out unencoded, but a blank in the URL is sent as "%20". No "Expect: 100-continue".
  /// The proxy variables are honoured by libcurl's rules (http_proxy in lower case only,
  /// HTTPS_PROXY, ALL_PROXY, NO_PROXY). 1 when the request was sent and an answer's
  /// headers came back, whatever the status (the answer's body is not read); 0 for
  /// arrays of different lengths (the URL then untouched), a URL that does not parse (no
  /// http or https scheme, control characters, a NUL), or a transfer that failed.
  int GetComplate(CString& url, const CStringArray& names, const CStringArray& values, int multipart);
  /// One form field: "--" boundary CR LF, the disposition line with the name, an empty
  /// line, the value, CR LF. No content type, no file name; nothing is interpreted here.
  CString MakeResultFileData(const char* name, const char* boundary, const CString& value);
  /// Fetches `url` into `localFile` with no proxy whatever the environment says,
  /// following redirects. 1 when the final answer was 200 and its whole body was saved.
  /// Deliberately unlike the original, for safety: the body goes to a temporary file in
  /// the target's folder, flushed to the disk and renamed over the target only after a
  /// complete transfer, so a failed or cut download leaves no file and an existing
  /// target untouched. A 404 fails silently; any other status shows "Unknown Error Err
  /// code : %d" through the host prompt; no answer at all fails silently.
  int GetDownloader(const CString& url, const CString& localFile);
  /// Beyond the original, which had the system's defaults: the upload and the download
  /// fail when no connection is made within the connect limit, or when, once connected,
  /// no byte moves either way for the stall limit. Both are 60 s to begin with; values
  /// below 1 s are taken as 1 s. Set them while no transfer runs (they are not locked).
  void SetHttpTimeLimits(std::chrono::seconds connect, std::chrono::seconds stall);
  std::chrono::seconds GetHttpConnectTimeLimit() const { return m_httpConnectLimit; }
  std::chrono::seconds GetHttpStallTimeLimit() const { return m_httpStallLimit; }

  // --- diagnostics -----------------------------------------------------------------------

  /// Appends the memory report to `lines`: "\nProcess ID: %u\n", then, when the counters
  /// can be read, nine "\t<counter>: %u MB\n" lines with the values shifted right by 20
  /// (the page-fault count too, deliberately: a count divided by 1,048,576). Which Linux
  /// counter stands for which is in corlith/platform/Diagnostics.h. Always 1: the
  /// running process is always there to be read.
  int GetMemoryInfoByCurrentProcess(CStringArray& lines);
  /// Prints the file's code-signature report to standard output (the text of
  /// FormatSignatureReport, <corlith/environment/Authenticode.h>); sets the local date of
  /// the time-stamp when one is found, else leaves the three untouched.
  void GetTimeStampSignerInfoByGetAuthenticode(const CString& filePath, int& year, int& month, int& day);
  /// 1 when the file or folder `name` ("" means "DEBUG_FILE") is beside the executable,
  /// looked for on every call, so a marker created or removed while running counts at once.
  int IsExistDebugFile(const CString& name);
  /// 0 when the passwd database has a record for the effective user id, -1 otherwise. The
  /// account's privilege is not returned, deliberately: callers test that the user is known.
  int GetUserAccountType();
  /// Empties `names`, then adds the family of every scalable font fontconfig knows, each
  /// once, sorted by byte value; a family named in several languages by its first name.
  void GetWindowsTrueTypeFontNames(CStringArray& names);
  /// 1 when a spreadsheet application can open exported .xlsx workbooks: one of the
  /// commands libreoffice, soffice, localc, gnumeric or onlyoffice-desktopeditors is on
  /// PATH, or a desktop application is registered for the .xlsx MIME type by the XDG
  /// rules (the rule in corlith/platform/Diagnostics.h).
  int IsMSExcelInstalled();

 protected:
  friend struct corlith::test::KTUtilityToolAccess;

  /// The tools' full paths: beside the executable; else in "../Corlith" next to the
  /// executable's folder; else the tool's name found on PATH; else the "../Corlith"
  /// path unchecked (the operations then find no tool and give 0).
  CString GetTarExeFilePathUtility();
  CString GetGZipExeFilePathUtility();
  CString Get7zExeFilePathUtility();
  /// As above, but the "../Corlith" place names the 7-Zip tool "7zr", not TesselZip:
  /// deliberately kept. PATH is searched for "TesselZip".
  CString GetTesselZipExeFilePathUtility();

  // --- end of helper programs and archives ------------------------------------------

 private:
  KTUtility();
  ~KTUtility() = default;

  /// Appends one entry to "Log/<logName>_<date>.log" under the data folder while the
  /// marker exists and the folder is there and writable; one O_APPEND write per entry.
  void Trace(const char* logName, const CString& subject, const char* sourceFile, int line);
  /// Starts the copy of CopyDirectoryContents; waits for it when asked, else hands it to
  /// the background copies, which are reaped as later ones start.
  void StartCopy(const CString& src, const CString& dst, bool wait);

  int m_installedLayout = 0;
  int m_compareMatchCase = 0;
  int m_versionedDataFolder = 0;
  int m_edition = 0;
  CString m_configurationPath;
  std::chrono::seconds m_httpConnectLimit{60};
  std::chrono::seconds m_httpStallLimit{60};
};
