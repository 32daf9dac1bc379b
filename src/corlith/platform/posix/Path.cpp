#include <corlith/platform/Path.h>

#include <link.h>
#include <pwd.h>
#include <sys/types.h>
#include <unistd.h>

#include <array>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace corlith::platform {

namespace {

constexpr char FoldAscii(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool EqualsNoCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (FoldAscii(a[i]) != FoldAscii(b[i])) return false;
  }
  return true;
}

bool EndsWithNoCase(std::string_view text, std::string_view tail) {
  return text.size() >= tail.size() && EqualsNoCase(text.substr(text.size() - tail.size()), tail);
}

// The root of a path as CombinePath keeps it: a drive ("C:", with one separator when
// the path has one there), a network prefix (any run of two or more separators, written
// as two) or, on POSIX, one leading separator. `rest` is what follows the root.
struct SplitRoot {
  std::string root;
  std::string_view rest;
};

SplitRoot SplitAtRoot(std::string_view path) {
  SplitRoot split;
  std::size_t i = 0;
  if (HasDriveLetter(path)) {
    split.root.assign(path.substr(0, 2));
    i = 2;
    if (i < path.size() && IsSeparator(path[i])) split.root += kNativeSeparator;
  } else if (!path.empty() && IsSeparator(path[0])) {
    split.root.assign(1, kNativeSeparator);
    if (path.size() > 1 && IsSeparator(path[1])) split.root += kNativeSeparator;
  }
  while (i < path.size() && IsSeparator(path[i])) ++i;
  split.rest = path.substr(i);
  return split;
}

// Listing-pattern tokens. The original rewrites the pattern before matching; these are
// the rewritten forms (its DOS_STAR, DOS_QM and DOS_DOT) besides a plain "*" and a
// literal character.
enum class Token : unsigned char { Literal, Star, DosStar, DosQm, DosDot };

struct PatternItem {
  Token token = Token::Literal;
  std::string_view text;  ///< the literal character's bytes
};

// The original matches UTF-16 units, so one "?" takes one whole character: here a
// UTF-8 lead byte with the continuation bytes after it. A stray or truncated sequence
// counts byte by byte, so any byte string still walks forward.
std::size_t CharacterLength(std::string_view text, std::size_t at) {
  const auto lead = static_cast<unsigned char>(text[at]);
  const std::size_t wanted = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC0 ? 2 : 1;
  std::size_t length = 1;
  while (length < wanted && at + length < text.size() &&
         (static_cast<unsigned char>(text[at + length]) & 0xC0) == 0x80) {
    ++length;
  }
  return length;
}

bool SameCharacter(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  return a.size() == 1 ? FoldAscii(a[0]) == FoldAscii(b[0]) : a == b;
}

// A buffer that lives on the stack for the short patterns of real listings.
template <typename T, std::size_t kInline>
class SmallBuffer {
 public:
  explicit SmallBuffer(std::size_t count) {
    if (count > kInline) m_large.resize(count);
  }
  T* data() { return m_large.empty() ? m_inline.data() : m_large.data(); }

 private:
  std::array<T, kInline> m_inline{};
  std::vector<T> m_large;
};

// The original's rewrite: "?" is DOS_QM; "*" before "." is DOS_STAR; "." before "?",
// "*" or the end is DOS_DOT. Returns the token count.
std::size_t Tokenize(std::string_view pattern, PatternItem* items) {
  std::size_t count = 0;
  for (std::size_t i = 0; i < pattern.size();) {
    const char c = pattern[i];
    const char next = i + 1 < pattern.size() ? pattern[i + 1] : '\0';
    PatternItem& item = items[count++];
    if (c == '?') {
      item.token = Token::DosQm;
    } else if (c == '*') {
      item.token = next == '.' ? Token::DosStar : Token::Star;
    } else if (c == '.' && (i + 1 == pattern.size() || next == '?' || next == '*')) {
      item.token = Token::DosDot;
    } else {
      item.token = Token::Literal;
      item.text = pattern.substr(i, CharacterLength(pattern, i));
      i += item.text.size();
      continue;
    }
    ++i;
  }
  return count;
}

// The module's file name cut after its ".so" (a version suffix ".N..." taken away);
// unchanged when it has no such ".so".
std::string_view WithoutVersion(std::string_view fileName) {
  for (std::size_t so = fileName.find(".so"); so != std::string_view::npos;
       so = fileName.find(".so", so + 1)) {
    if (so + 3 == fileName.size() || fileName[so + 3] == '.') return fileName.substr(0, so + 3);
  }
  return fileName;
}

bool ModuleNameMatches(std::string_view wanted, std::string_view modulePath) {
  if (wanted.find('/') != std::string_view::npos) return wanted == modulePath;
  const std::size_t slash = modulePath.rfind('/');
  const std::string_view fileName =
      slash == std::string_view::npos ? modulePath : modulePath.substr(slash + 1);
  if (EqualsNoCase(wanted, fileName)) return true;
  const std::string_view unversioned = WithoutVersion(fileName);
  if (unversioned.size() == fileName.size() && !EndsWithNoCase(fileName, ".so")) return false;
  if (EqualsNoCase(wanted, unversioned)) return true;
  std::string_view stem = unversioned.substr(0, unversioned.size() - 3);
  if (stem.size() > 3 && stem.substr(0, 3) == "lib") stem.remove_prefix(3);
  // A name written for the original platform ("corlith.dll") names the same module.
  if (EndsWithNoCase(wanted, ".dll")) wanted.remove_suffix(4);
  return EqualsNoCase(wanted, stem);
}

struct ModuleSearch {
  std::string_view wanted;
  std::string found;
};

int VisitModule(dl_phdr_info* info, std::size_t /*size*/, void* data) {
  auto* search = static_cast<ModuleSearch*>(data);
  // The executable's own entry has an empty name; it is found through an empty name.
  if (info->dlpi_name == nullptr || info->dlpi_name[0] == '\0') return 0;
  if (!ModuleNameMatches(search->wanted, info->dlpi_name)) return 0;
  search->found = info->dlpi_name;
  return 1;
}

}  // namespace

std::string ToNativeSeparators(std::string_view path) {
  std::string native(path);
  for (char& c : native) {
    if (IsSeparator(c)) c = kNativeSeparator;
  }
  return native;
}

std::size_t FindLastSeparator(std::string_view path) { return path.find_last_of("\\/"); }

bool HasDriveLetter(std::string_view path) {
  return path.size() >= 2 && path[1] == ':' &&
         ((path[0] >= 'A' && path[0] <= 'Z') || (path[0] >= 'a' && path[0] <= 'z'));
}

bool IsAbsolutePath(std::string_view path) {
  return HasDriveLetter(path) || (!path.empty() && IsSeparator(path[0]));
}

std::string CombinePath(std::string_view dir, std::string_view file) {
  std::string joined;
  if (IsAbsolutePath(file) || dir.empty()) {
    joined.assign(file);
  } else if (file.empty()) {
    joined.assign(dir);
  } else {
    joined.reserve(dir.size() + 1 + file.size());
    joined.assign(dir);
    if (!IsSeparator(joined.back())) joined += kNativeSeparator;
    joined.append(file);
  }

  const SplitRoot split = SplitAtRoot(joined);
  const bool trailingSeparator = !split.rest.empty() && IsSeparator(split.rest.back());
  std::vector<std::string_view> segments;
  // Leading ".." segments of a relative path have nothing to remove and are kept.
  std::size_t keptParents = 0;
  std::size_t start = 0;
  const std::string_view rest = split.rest;
  while (start <= rest.size()) {
    std::size_t end = start;
    while (end < rest.size() && !IsSeparator(rest[end])) ++end;
    const std::string_view segment = rest.substr(start, end - start);
    if (segment == "..") {
      if (segments.size() > keptParents) {
        segments.pop_back();
      } else if (split.root.empty()) {
        segments.push_back(segment);
        ++keptParents;
      }
    } else if (!segment.empty() && segment != ".") {
      segments.push_back(segment);
    }
    start = end + 1;
  }

  std::string result = split.root;
  for (std::size_t i = 0; i < segments.size(); ++i) {
    if (i > 0) result += kNativeSeparator;
    result.append(segments[i]);
  }
  // "a\b\" keeps its closing separator, as the original's canonical form does; a path
  // that "." and ".." emptied does not gain one.
  if (trailingSeparator && !segments.empty()) result += kNativeSeparator;
  // "x\..\D:..\y" loses its first segments and now reads as a drive path; it is
  // normalised once more as what it reads as, so the result is its own canonical form.
  if (split.root.empty() && HasDriveLetter(result)) return CombinePath(result, {});
  return result;
}

bool MatchesListingPattern(std::string_view pattern, std::string_view name) {
  if (pattern == "*" || pattern == "*.*") return true;
  SmallBuffer<PatternItem, 64> itemBuffer(pattern.size());
  const PatternItem* items = itemBuffer.data();
  const std::size_t count = Tokenize(pattern, itemBuffer.data());
  // Two rows of NFA states, one per pattern position plus the accepting one.
  SmallBuffer<unsigned char, 130> rowBuffer(2 * (count + 1));
  unsigned char* current = rowBuffer.data();
  unsigned char* next = current + count + 1;
  const std::size_t lastDot = name.rfind('.');

  current[0] = 1;
  for (std::size_t i = 0;;) {
    const bool nameFinished = i == name.size();
    const std::string_view character =
        nameFinished ? std::string_view() : name.substr(i, CharacterLength(name, i));
    const bool isDot = character == ".";
    // Moves that consume nothing only ever go one state forward, so one pass in
    // increasing order closes the set.
    bool alive = false;
    for (std::size_t s = 0; s < count; ++s) {
      if (!current[s]) continue;
      alive = true;
      const Token token = items[s].token;
      if (token == Token::Star || token == Token::DosStar ||
          (token == Token::DosQm && (nameFinished || isDot)) || (token == Token::DosDot && nameFinished)) {
        current[s + 1] = 1;
      }
    }
    if (nameFinished) return current[count] != 0;
    if (!alive) return false;

    std::memset(next, 0, count + 1);
    for (std::size_t s = 0; s < count; ++s) {
      if (!current[s]) continue;
      switch (items[s].token) {
        case Token::Star:
          next[s] = 1;
          break;
        case Token::DosStar:
          // Everything but the name's last dot, which the "." after it must take.
          if (!(isDot && i == lastDot)) next[s] = 1;
          break;
        case Token::DosQm:
          if (!isDot) next[s + 1] = 1;
          break;
        case Token::DosDot:
          if (isDot) next[s + 1] = 1;
          break;
        case Token::Literal:
          if (SameCharacter(items[s].text, character)) next[s + 1] = 1;
          break;
      }
    }
    std::swap(current, next);
    i += character.size();
  }
}

std::string ExecutablePath() {
  std::string path(256, '\0');
  for (;;) {
    const ssize_t n = ::readlink("/proc/self/exe", path.data(), path.size());
    if (n < 0) return {};
    if (static_cast<std::size_t>(n) < path.size()) {
      path.resize(static_cast<std::size_t>(n));
      return path;
    }
    path.resize(path.size() * 2);
  }
}

std::string LoadedModulePath(std::string_view name) {
  if (name.empty()) return ExecutablePath();
  ModuleSearch search{name, {}};
  ::dl_iterate_phdr(VisitModule, &search);
  if (!search.found.empty() && search.found.front() != '/') {
    // A module opened by a relative path is named as it was opened.
    if (char* absolute = ::realpath(search.found.c_str(), nullptr)) {
      search.found = absolute;
      std::free(absolute);
    }
  }
  return search.found;
}

std::string UserDataFolder() {
  std::string value;
  // Relative values are invalid by the XDG rules and are ignored, as an empty one is.
  if (GetEnvironmentVariable("XDG_DATA_HOME", value) && !value.empty() && value.front() == '/') return value;
  std::string home;
  if (!GetEnvironmentVariable("HOME", home) || home.empty()) {
    std::vector<char> buffer(16384);
    passwd entry{};
    passwd* result = nullptr;
    if (::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &result) != 0 || result == nullptr ||
        result->pw_dir == nullptr || result->pw_dir[0] == '\0') {
      return {};
    }
    home = result->pw_dir;
  }
  if (home.size() > 1 && home.back() == '/') home.pop_back();
  return home + "/.local/share";
}

std::string MachineDataFolder() { return "/var/lib"; }

bool GetEnvironmentVariable(const char* name, std::string& value) {
  value.clear();
  // getenv("A=B") would find a variable "A" whose value starts with "B=": a name with "="
  // names no variable.
  if (name == nullptr || std::strchr(name, '=') != nullptr) return false;
  const char* found = std::getenv(name);
  if (found == nullptr) return false;
  value = found;
  return true;
}

int CurrentProcessId() { return static_cast<int>(::getpid()); }

}  // namespace corlith::platform
