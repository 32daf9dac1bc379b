// TesselZip's "m" command: packs a file or a folder into a new ZIP archive with libzip.
#pragma once

#include <string>

namespace tesselzip {

/// Packs `source` into a new archive at `zipPath` (an archive already there is
/// replaced; it is written whole or not at all). A file becomes one entry under its
/// name; a folder becomes an entry "NAME/" with everything below it, recursively: hidden
/// files, empty folders (as folder entries) and UTF-8 names as they are. A symbolic link
/// is stored as the file it points to when that file lies inside `source`; links that
/// point outside it, to folders (so no cycle can arise) or nowhere are left out, as are
/// pipes, sockets and devices. The archive itself is never packed into itself. Files are
/// deflated at zlib's level 6, as zip does by default, with their permission bits kept.
/// Returns 0, or 1 with a one-line `message`.
int Pack(const std::string& source, const std::string& zipPath, std::string& message);

}  // namespace tesselzip
