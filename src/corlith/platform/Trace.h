// What a trace log needs from the system: appending one entry to a file so that
// several threads or processes writing the same log at once never split an entry, and
// the local calendar time. Nothing here throws.
#pragma once

#include <ctime>
#include <string_view>

namespace corlith::platform {

/// Appends `bytes` to the file at `path` in ONE write to a descriptor opened for
/// appending (the file is created, mode 0666 less the umask, when missing; its folder
/// never is), then closes it. On a local file system the system positions and writes
/// the whole entry under one lock, so entries from concurrent writers never interleave.
/// Returns 0 or the system's error number; a short write (disk full, a file-size limit)
/// returns ENOSPC and is not continued, since a second write could land after another
/// writer's entry. A path with a NUL byte gives EINVAL. The path is used as given.
int AppendToFile(std::string_view path, std::string_view bytes);

/// The local calendar time of `time` (the time zone of the process's environment).
/// False when the conversion fails (a time beyond what the calendar can hold).
bool LocalTime(std::time_t time, std::tm& local);

}  // namespace corlith::platform
