// The application profile: the framework's GetProfileString / WriteProfileString /
// GetProfileInt / WriteProfileInt over a per-user INI file, named once by the host (as
// SetRegistryKey did): "$XDG_CONFIG_HOME/<company>/<application>.ini". IniDocument reads
// and edits the INI text; ApplicationProfile reads the file on every call and replaces it
// atomically on every write; GetApplicationProfile() is the process's profile.
#pragma once

#include <corlith/framework/String.h>
#include <corlith/framework/Types.h>

#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corlith {

/// An INI text. Lines end with "\n" (any "\r" before it is dropped when read, and a
/// leading UTF-8 byte-order mark is skipped); blanks are spaces and tabs. A line whose
/// first non-blank is "[" starts a section named by the text up to the first "]" (or the
/// line end), blanks trimmed. A line whose first non-blank is ";" or "#" is a comment.
/// Other lines with an "=" after a non-empty key are entries: the key is the text before
/// the first "=", blanks trimmed; the value is everything after it, verbatim (so any value
/// without a line break reads back exactly). Section and key names compare ASCII
/// case-insensitively; the first section of a name and the first entry of a key in it
/// count, later ones are kept but not seen. Entries before the first section, and those
/// of a section with an empty name, are not seen. Any bytes parse; lines that are
/// nothing of the above, comments and blank lines are kept as they stand, so editing
/// never loses what a person wrote.
class IniDocument {
 public:
  /// One visible entry, names spelt as in the text.
  struct Entry {
    std::string section;
    std::string key;
    std::string value;
    friend bool operator==(const Entry&, const Entry&) = default;
  };

  static IniDocument Parse(std::string_view bytes);
  /// The text: each line followed by "\n".
  std::string Serialize() const;

  /// The value of the entry, or nullopt when there is none.
  std::optional<std::string> Get(std::string_view section, std::string_view key) const;
  /// The visible entries, in text order.
  std::vector<Entry> Entries() const;

  /// Sets an entry, keeping the spelling of an existing section and key. A new key goes
  /// after the section's last entry; a new section goes at the end, after a blank line.
  /// False (and nothing changes) when a name or the value cannot be written so that it
  /// reads back: see IsWritableSection, IsWritableKey, IsWritableValue.
  bool Set(std::string_view section, std::string_view key, std::string_view value);
  /// Removes every entry of the key from every section of the name; true when any was there.
  bool DeleteEntry(std::string_view section, std::string_view key);
  /// Removes every section of the name with all its lines; true when any was there.
  bool DeleteSection(std::string_view section);

  /// Not empty, no "]", no line break or zero byte, no blank at either end.
  static bool IsWritableSection(std::string_view section);
  /// Not empty, no "=", no line break or zero byte, no blank at either end, and not
  /// starting with "[", ";" or "#".
  static bool IsWritableKey(std::string_view key);
  /// No line break or zero byte.
  static bool IsWritableValue(std::string_view value);

 private:
  struct Line {
    std::string text;  ///< the line as written, without its line end
    std::string key;   ///< for an entry: the key, trimmed
    std::string value;
    bool isEntry = false;
  };
  struct Section {
    std::string name;
    bool hasHeader = false;  ///< false only for the lines before the first header
    std::vector<Line> lines;
  };

  Section* FindSection(std::string_view name);
  const Section* FindSection(std::string_view name) const;

  std::vector<Section> m_sections;
};

/// A profile file. Reads go to the file on every call, so several profile objects and
/// processes see each other's writes; a write reads the file, changes it and replaces it
/// atomically (a crash or a full disk leaves the old content). Writes through one object
/// are serialised; writes of two processes at the same moment may lose one of them.
class ApplicationProfile {
 public:
  /// A profile with no file: reads give their defaults and writes give FALSE.
  ApplicationProfile() = default;
  /// "<config>/<company>/<application>.ini", where <config> is the per-user configuration
  /// folder as it is now ($XDG_CONFIG_HOME, default ~/.config); an empty company puts the
  /// file in <config> itself. Each name must be one plain file name (not "." or "..", no
  /// "/", "\" or zero byte) and the application not empty; otherwise there is no file.
  ApplicationProfile(std::string_view company, std::string_view application);
  /// A profile kept in `file` (empty: no file).
  explicit ApplicationProfile(std::filesystem::path file) : m_file(std::move(file)) {}
  ApplicationProfile(const ApplicationProfile&) = delete;
  ApplicationProfile& operator=(const ApplicationProfile&) = delete;

  /// The profile's file; empty when it has none.
  const std::filesystem::path& GetFilePath() const { return m_file; }

  /// The entry's value, or the default (null: "") when the section, the entry or the
  /// file is missing, unreadable, or a name is null.
  CString GetProfileString(LPCTSTR lpszSection, LPCTSTR lpszEntry, LPCTSTR lpszDefault = nullptr) const;
  /// Sets the entry; a null value removes the entry, a null entry removes the whole
  /// section. FALSE, with the file untouched, when the profile has no file, the file
  /// cannot be read or written, or a name or the value cannot be written (see IniDocument);
  /// removing what is not there is TRUE. Never throws.
  BOOL WriteProfileString(LPCTSTR lpszSection, LPCTSTR lpszEntry, LPCTSTR lpszValue);
  /// The decimal number at the start of the value (blanks, an optional sign, digits),
  /// clamped to -2147483648 ... 4294967295 and returned as UINT (so a negative number
  /// written by WriteProfileInt reads back as the same int); 0 when the value does not
  /// start with a number; the default when the entry is missing or empty.
  UINT GetProfileInt(LPCTSTR lpszSection, LPCTSTR lpszEntry, int nDefault) const;
  /// Writes the value in decimal ("%d").
  BOOL WriteProfileInt(LPCTSTR lpszSection, LPCTSTR lpszEntry, int nValue);

 private:
  /// The file's text; nullopt when it exists but cannot be read. A missing file is "".
  std::optional<std::string> ReadText() const;

  std::filesystem::path m_file;
  std::mutex m_writeMutex;
};

/// The process's profile (one with no file until the host installs its own).
std::shared_ptr<ApplicationProfile> GetApplicationProfile();
/// Installs `profile` (null restores one with no file); returns the previous one.
std::shared_ptr<ApplicationProfile> SetApplicationProfile(std::shared_ptr<ApplicationProfile> profile);

/// Installs a profile for the lifetime of this object, then restores the previous one.
class ScopedApplicationProfile {
 public:
  explicit ScopedApplicationProfile(std::shared_ptr<ApplicationProfile> profile)
      : m_previous(SetApplicationProfile(std::move(profile))) {}
  ~ScopedApplicationProfile() { SetApplicationProfile(std::move(m_previous)); }
  ScopedApplicationProfile(const ScopedApplicationProfile&) = delete;
  ScopedApplicationProfile& operator=(const ScopedApplicationProfile&) = delete;

 private:
  std::shared_ptr<ApplicationProfile> m_previous;
};

}  // namespace corlith
