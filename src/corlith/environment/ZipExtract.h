// Safe, whole extraction of ZIP archives (libzip): the one implementation behind
// KTUtility::ExtractZipFile and the TesselZip tool's "e" command. ZipEntryNameProblem
// is the name rule on its own; ExtractZip applies it to a whole archive, then writes.
//
// The rules:
// - The whole archive is checked before anything is written, the target folder
//   included. It is refused when any entry's name is empty, is absolute (a leading "/"),
//   starts with a drive letter ("C:"), holds a backslash or a ".." part, or names no
//   file ("." parts only), and when any entry is a symbolic link, is encrypted or is
//   compressed with a method the library cannot read.
// - Every entry is extracted, whatever their number (no 16-bit counter). Names are the
//   stored names (UTF-8; names without the UTF-8 flag that are not valid UTF-8 are read
//   as code page 437), "/" separates, empty and "." parts are skipped. Folder entries
//   and the folders above each file are created; a folder of the target that already
//   is a symbolic link is never followed (the extraction fails there).
// - Each file is streamed to a temporary name in its folder and renamed to its own name
//   only after a clean end with a good checksum and the stored size; what was at that
//   name before (a file or a link, never followed) is replaced. A failure removes the
//   temporary file, so no partial file ever stands under an entry's name, and ends the
//   extraction: the entries written before it stay, complete.
// - Contents and names only: the stored permissions and times are not restored.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace corlith {

/// How an extraction ended.
enum class ZipExtractStatus {
  Extracted,     ///< every entry was written
  BadArguments,  ///< an empty path or one holding a NUL byte
  CannotOpen,    ///< not a ZIP archive the library can read (missing, truncated, ...)
  Refused,       ///< an entry broke the rules; nothing was written
  TargetFailed,  ///< the target folder could not be created, or is not a folder
  EntryFailed,   ///< an entry could not be read or written; the ones before it stay
};

struct ZipExtractResult {
  ZipExtractStatus status = ZipExtractStatus::Extracted;
  /// One line saying what went wrong (with the entry's name where there is one); empty
  /// on success.
  std::string message;
  /// The entries written (files and folders).
  std::uint64_t written = 0;

  bool Succeeded() const { return status == ZipExtractStatus::Extracted; }
};

/// Why a stored entry name is refused ("an absolute name", "a drive letter",
/// "a backslash", "a \"..\" part", "an empty name", "no file name"), or the empty text
/// when the name is safe.
std::string_view ZipEntryNameProblem(std::string_view name);

/// Extracts the archive at `zipPath` below the folder `target` (created with its missing
/// parents after the checks) by the rules above. Paths are taken as written, "\" being a
/// separator as everywhere in the library. Never throws.
ZipExtractResult ExtractZip(std::string_view zipPath, std::string_view target);

}  // namespace corlith
