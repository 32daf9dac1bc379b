// The installation and the data-folder rule of KTUtility as plain functions of their
// inputs: the installation file beside the executable, the version label and sub-folder
// of the per-machine data folder, the whole GetDataPath rule for a given state, and the
// temporary folders' paths computed without creating anything (for tools that report
// the layout). KTUtility's members are built on these, so both always agree.
#pragma once

#include <corlith/environment/Utility.h>

namespace corlith {

/// ReadInstallationFile on the kInstallationFileName file in `folder`; `found` is true
/// when the file was there and readable. Only its first 64 KiB are read (an installer
/// writes a few lines): a last line cut by that limit is dropped. A leading UTF-8 byte
/// order mark (editors on Windows add one) is skipped. Absent, not a regular file (a
/// folder or a pipe of that name) or unreadable: the default InstallationInfo.
InstallationInfo ReadInstallationFileIn(const CString& folder);

/// The state the data-folder rule depends on: KTUtility's flags and the configuration
/// variable's value as read at construction.
struct DataFolderState {
  int installedLayout = 0;      ///< 0: data beside the executable
  int versionedDataFolder = 1;  ///< 1: the versioned per-machine folder; else per-user
  int edition = 0;              ///< 0 standard, 1 ECAD, anything else: no sub-folder
  CString configurationPath;    ///< empty when the variable is not set
};

/// The data folder's version label: `versionText` split at "." by CTokenizer (so runs of
/// dots count as one and empty pieces vanish). With more than two pieces: the first piece
/// alone when the second is exactly "0", else first "." second ("2025.1.1" gives
/// "2025.1", "2025.0.3" gives "2025"); the third piece is never used. With two pieces or
/// fewer the label is empty (deliberate: the rule only knows three-part versions).
CString DataFolderVersionLabel(const CString& versionText);

/// The per-machine sub-folder: "Orvane/Tessel/<label>" for edition 0,
/// "Orvane/TesselForEcad/<label>" for edition 1 (native separators), empty for any other
/// edition.
CString DataSubFolder(int edition, const CString& label);

/// The per-user, unversioned sub-folder of the dormant branch: "Orvane/Tessel".
CString UserDataSubFolder();

/// KTUtility::GetDataPath for `state`: the executable's folder when the layout is not
/// installed; the per-user folder joined with UserDataSubFolder() when the versioned
/// flag is not 1; the configuration path as it stands when it is set and
/// `utility.DoesFileExist` (traced) finds it; else the per-machine folder joined with
/// DataSubFolder(edition, DataFolderVersionLabel(the library version)). Creates nothing.
CString ResolveDataFolder(const DataFolderState& state, KTUtility& utility);

/// The folder GetTesselTempFolderPath returns for a data folder, not created:
/// `dataPath` followed directly by "/Data/Temp" (plain concatenation).
CString TesselTempFolderOf(const CString& dataPath);

/// The folder under which GetSolverTempFolderPath makes each process its own one:
/// `base` + "/Data/Analysis/Temp".
CString SolverTempRootOf(const CString& base);

/// The folder GetSolverTempFolderPath returns, not created:
/// SolverTempRootOf(base) + "/<processId>/<name>".
CString SolverTempFolderOf(const CString& base, int processId, const CString& name);

}  // namespace corlith
