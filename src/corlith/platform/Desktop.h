// The user's desktop session as the operating system sees it: where per-user settings
// live, replacing a settings file so that it is never seen half written, and handing a
// file or a web address to the desktop's default application. Every call
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

/// Opens `target` (a file path or a URL) with the desktop's default application through
/// `xdg-open` (found on PATH), started hidden in a process group of its own, as the
/// original's shell "Open" verb did. Returns as soon as xdg-open is started: 0, or the
/// error number of the start (ENOENT when xdg-open is missing; EINVAL for an empty
/// target or one holding a zero byte). Whether xdg-open then finds an application is not
/// known here. A background thread reaps xdg-open when it ends, and what it started runs
/// on, also after the host exits. A target starting with "-" is passed as "./" followed
/// by the target, so that it is never taken for an option. There is no window-state
/// request (the original asked for "maximised"): the application decides.
int OpenWithDesktop(std::string_view target);

}  // namespace corlith::platform
