// The user's desktop session as the operating system sees it: where per-user settings
// live, and replacing a settings file so that it is never seen half written. Every call
// returns 0 or the system's error number, or says in its comment what it returns;
// nothing here throws.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace corlith::platform {

/// The per-user configuration folder: $XDG_CONFIG_HOME when it is an absolute path, else
/// "<home>/.config" with $HOME (when absolute) or the account's home folder; "" when none
/// is known. A relative $XDG_CONFIG_HOME is ignored, as the XDG base-directory rules ask.
std::string UserConfigFolder();

/// Replaces the file at `path` with `bytes` so that, whatever happens (a crash, a full
/// disk, a file-size limit), the file holds either its old content or all of `bytes`:
/// a temporary file in the same folder is written, flushed to the disk (fsync) and
/// renamed over `path`, then the folder is flushed (best effort). Missing folders up to
/// the file are created with mode 0700 (only their owner should see settings). A new
/// file is readable and writable by its owner alone; an existing one keeps its permission
/// bits. A symbolic link at `path` is followed, so the file it names is replaced and the
/// link stays (a dangling link is replaced by the file). On failure the temporary file is removed and the old
/// file is untouched.
int WriteFileAtomically(const std::filesystem::path& path, std::string_view bytes);

}  // namespace corlith::platform
