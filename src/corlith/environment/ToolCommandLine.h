// Running a helper program from a command line written the original platform's way:
// SplitToolCommandLine turns the text into arguments by that platform's rules, and
// RunTool starts the program hidden with them and waits. Used by KTUtility's archive
// members, kept apart so that the splitting rule is tested on its own.
#pragma once

#include <corlith/platform/Process.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corlith {

/// The arguments of a command line by the original platform's rules: blanks and tabs
/// separate arguments outside double quotes; a double quote starts or ends a quoted
/// part (and is dropped), also in the middle of an argument ("-o\"a b\"" is -oa b);
/// "" gives an empty argument; 2n backslashes before a double quote give n backslashes
/// and the quote acts, 2n+1 give n backslashes and a literal quote; other backslashes
/// stand as they are.
std::vector<std::string> SplitToolCommandLine(std::string_view commandLine);

/// Starts `program` (a full path, never split) with the arguments of `commandLine`, in
/// `workingFolder` (empty: the host's current folder, which is never changed), hidden,
/// and waits for it without a time limit. nullopt when it could not be started.
std::optional<platform::ExitStatus> RunTool(std::string_view program, std::string_view commandLine,
                                            std::string_view workingFolder);

}  // namespace corlith
