// Files and folders at the level of tasks: the facts about a path, attributes, folder
// listing, whole-tree removal, block-wise comparison, folder creation. Paths are taken
// as the host wrote them ("\" is a separator on every platform: the functions turn
// separators into the native one before asking the system). Every call returns 0 or the
// system's error number, or says in its comment what it returns; nothing here throws.
// A path holding a NUL byte names nothing: EINVAL (IsWritable: false), never the text
// before the NUL.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace corlith::platform {

/// What kind of thing a path names.
enum class FileKind { None, Regular, Directory, Other };

/// The facts about one path, symbolic links followed.
struct FileFacts {
  FileKind kind = FileKind::None;
  std::uint64_t size = 0;
  std::uint32_t mode = 0;  ///< the POSIX mode bits (type and permissions)
  /// Seconds since 1970. Creation is the birth time where the file system records it,
  /// else the status-change time (POSIX keeps no other creation time).
  std::int64_t creationTime = 0;
  std::int64_t accessTime = 0;
  std::int64_t modifiedTime = 0;
  std::int64_t changeTime = 0;
  std::uint64_t device = 0;
  std::uint64_t inode = 0;
  std::uint32_t links = 0;
  /// No write permission bit for anyone: the port's read-only attribute.
  bool readOnly = false;
};

/// Fills `facts` for `path` (statx, links followed); on failure facts stay as default.
int QueryFileFacts(std::string_view path, FileFacts& facts);

/// Read-only on: every write bit cleared. Off: the owner's write bit added.
int SetReadOnly(std::string_view path, bool readOnly);

/// POSIX has no hidden attribute (a leading dot is a naming convention, not an
/// attribute): this does nothing and returns 0 when the path exists, ENOENT otherwise.
int SetHidden(std::string_view path);

/// True when the calling process may write to the path (access(W_OK)).
bool IsWritable(std::string_view path);

/// Creates one folder level (mode 0777 less the umask); EEXIST when something is there.
int MakeFolder(std::string_view path);

/// Renames a file or folder (replacing a file target, as rename(2) does).
int RenamePath(std::string_view from, std::string_view to);

/// Removes one file or symbolic link (never what a link points to).
int RemoveFilePath(std::string_view path);

/// Removes a folder and everything in it, depth first, relative to open folder handles,
/// so trees whose full paths exceed the system's path limit go too. Symbolic links are
/// removed as links, never followed. A link or a file at `path` itself is removed alone.
/// Stops at the first failure and returns its error (what was removed stays removed).
/// Entries that vanish meanwhile are not failures. The root folder and paths ending in
/// "." or ".." are refused with EINVAL before anything is touched; a tree moved away
/// while it is being removed stops the removal with EBUSY.
int RemoveTree(std::string_view path);

/// One entry of a folder listing.
struct ListingEntry {
  std::string_view name;  ///< valid during the callback only
  bool isDirectory;       ///< a folder, or a symbolic link to one
  bool isSymbolicLink;    ///< the entry itself is a link
};

/// Calls `visit` for every entry of the folder except "." and "..", in the order the
/// system gives; a dangling link is reported as a file. `visit` returns false to stop.
/// Costs no status call per entry unless the file system leaves the kind unknown or
/// the entry is a link; an entry that vanished before such a call is left out.
/// Returns 0, or the error of opening or reading the folder.
int ListFolder(std::string_view folder, const std::function<bool(const ListingEntry&)>& visit);

/// Compares two files block by block with one fixed-size buffer per file, never
/// reading a whole file into memory, and stops at the first differing block. Regular
/// files of different sizes differ without a read; two names of one file are equal.
/// A folder gives EISDIR. `equal` is set only on success.
int CompareFileContents(std::string_view a, std::string_view b, bool& equal);

}  // namespace corlith::platform
