// Paths on every platform, in one place. Reading a path is separator-agnostic: every
// rule that cuts or inspects a path at "\" treats "/" the same way, drive letters ("C:")
// and network prefixes ("\\") are recognised everywhere, and on POSIX a leading "/"
// also makes a path absolute. Building a path uses the native separator. Also here:
// where the running program and its modules live, the special folders, and the
// listing-pattern matcher of the original platform's find-first enumeration.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace corlith::platform {

/// The separator this platform writes when it builds a path.
#ifdef _WIN32
inline constexpr char kNativeSeparator = '\\';
#else
inline constexpr char kNativeSeparator = '/';
#endif

/// "\" and "/" are both separators when a path is read, on every platform.
constexpr bool IsSeparator(char c) { return c == '\\' || c == '/'; }

/// The text with every separator turned into the native one.
std::string ToNativeSeparators(std::string_view path);

/// The index of the last separator of either kind, or npos.
std::size_t FindLastSeparator(std::string_view path);

/// True when the text starts with a letter and ":" ("C:", "c:\x").
bool HasDriveLetter(std::string_view path);

/// True for a drive-letter path, a network path (two leading separators) and, on POSIX,
/// any path with a leading separator ("\tmp" reads as "/tmp", like every "\").
bool IsAbsolutePath(std::string_view path);

/// The join of the original platform's PathCombine: `file` alone when it is absolute,
/// else `dir`, one native separator and `file`; then "." segments are dropped and each
/// ".." removes the segment before it (never the root: "C:", a network prefix or a
/// leading separator). The result is written with native separators only. Two empty
/// texts give the empty text. Runs of separators after the root become one (a network
/// prefix is written as exactly two); a closing separator is kept when the joined text
/// has one, as the original's canonical form keeps it; ".." segments at the start of a
/// relative path are kept (they have nothing to remove), those at a root are dropped; a
/// relative path that "." and ".." empty entirely gives the empty text.
std::string CombinePath(std::string_view dir, std::string_view file);

/// The listing-pattern matcher of the original platform's find-first/find-next, not
/// the shell's: ASCII case-insensitive; "*" and "*.*" match every name, also names
/// without a dot; "?" matches one character (a whole UTF-8 sequence, as the original
/// matched one UTF-16 unit), or none at a "." or at the end of the name;
/// a "*" followed by "." matches up to the name's last dot; a "." followed by "*", "?" or
/// the end of the pattern also matches the end of a name without an extension (so "*."
/// matches only names without an extension and "a.*" also matches "a"). The original's
/// extra matches through 8.3 short names are not emulated. Characters beyond ASCII
/// compare exactly (no case folding); an empty pattern matches only the empty name. Linear in the pattern
/// times the name, whatever their content.
bool MatchesListingPattern(std::string_view pattern, std::string_view name);

/// The full path of the running executable ("/proc/self/exe"); empty when unknown.
std::string ExecutablePath();

/// The full path of the loaded module (shared library) named `name`: compared with each
/// loaded module's file name as it stands, and with a "lib" prefix and a ".so" suffix
/// (or ".so.N...") taken away from the module's name, so "corlith", "libcorlith.so" and
/// "libcorlith.so.2025" all find libcorlith.so.2025. A name with a "/" is compared with
/// the module's whole path. Like the original's module names, the comparison ignores
/// ASCII case and a ".dll" ending of `name`. An empty name is the executable. Empty when
/// no such module is loaded; the first loaded match wins.
std::string LoadedModulePath(std::string_view name);

/// The per-user application-data folder: $XDG_DATA_HOME, else $HOME/.local/share (the
/// passwd database's home when HOME is unset or empty). An empty or relative
/// $XDG_DATA_HOME is ignored, as the XDG rules say. Not created; empty when no home is
/// known.
std::string UserDataFolder();

/// The per-machine application-data folder: "/var/lib" on POSIX. Not created.
std::string MachineDataFolder();

/// The value of an environment variable, and whether it is set at all (a variable set
/// to the empty text gives true and ""). `value` is emptied when it is unset. A name
/// with "=" names no variable (false).
bool GetEnvironmentVariable(const char* name, std::string& value);

/// The current process id.
int CurrentProcessId();

}  // namespace corlith::platform
