// Writing a file whole or not at all: the bytes go to a fresh file beside the target and
// replace the target by a rename only once every byte is written. Unlike
// platform::WriteFileAtomically (made for settings) it writes no fsync, creates no folders
// and gives new files the usual permissions: pictures of 100 MB are written at the disk's
// pace, and a missing folder is the caller's mistake.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <span>
#include <string>

namespace corlith::ui {

/// Writes the parts one after another to a new file created exclusively in `target`'s
/// folder, then renames it over `target`. False on any failure, which leaves `target` as
/// it was and removes the new file.
bool WriteFileReplacing(const std::string& target, std::initializer_list<std::span<const std::byte>> parts);

}  // namespace corlith::ui
