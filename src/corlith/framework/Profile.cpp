#include <corlith/framework/Profile.h>

#include <corlith/framework/Ascii.h>
#include <corlith/platform/Desktop.h>
#include <corlith/platform/File.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <unordered_set>
#include <utility>

namespace corlith {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

constexpr bool IsBlank(char c) { return c == ' ' || c == '\t'; }

std::string_view TrimBlanks(std::string_view s) {
  while (!s.empty() && IsBlank(s.front())) s.remove_prefix(1);
  while (!s.empty() && IsBlank(s.back())) s.remove_suffix(1);
  return s;
}

bool EqualNoCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
           return ascii::ToLower(x) == ascii::ToLower(y);
         });
}

bool HasBlankEnd(std::string_view s) { return !s.empty() && (IsBlank(s.front()) || IsBlank(s.back())); }

bool HasLineBreakOrZero(std::string_view s) {
  return s.find_first_of(std::string_view("\n\r\0", 3)) != s.npos;
}

// One file-name part that cannot climb out of its folder or name a folder itself.
bool IsPlainName(std::string_view name) {
  return !name.empty() && name != "." && name != ".." &&
         name.find_first_of(std::string_view("/\\\0", 3)) == std::string_view::npos;
}

// The number at the start of text, clamped to the range that int and UINT cover together.
UINT LeadingNumber(std::string_view text) {
  std::size_t i = 0;
  while (i < text.size() && IsBlank(text[i])) ++i;
  bool negative = false;
  if (i < text.size() && (text[i] == '-' || text[i] == '+')) negative = text[i++] == '-';
  constexpr std::int64_t kLimit = 4294967295;
  std::int64_t magnitude = 0;
  for (; i < text.size() && ascii::IsDigit(text[i]); ++i) {
    magnitude = std::min(magnitude * 10 + (text[i] - '0'), kLimit + 1);
  }
  const std::int64_t value =
      negative ? std::max(-magnitude, std::int64_t{-2147483648}) : std::min(magnitude, kLimit);
  return static_cast<UINT>(value);
}

std::mutex g_profileMutex;
std::shared_ptr<ApplicationProfile> g_profile;

}  // namespace

IniDocument IniDocument::Parse(std::string_view bytes) {
  IniDocument doc;
  doc.m_sections.emplace_back();
  while (bytes.starts_with(kByteOrderMark)) bytes.remove_prefix(kByteOrderMark.size());
  while (!bytes.empty()) {
    const std::size_t end = bytes.find('\n');
    std::string_view raw = bytes.substr(0, end);
    bytes.remove_prefix(end == bytes.npos ? bytes.size() : end + 1);
    while (!raw.empty() && raw.back() == '\r') raw.remove_suffix(1);

    const std::string_view body = TrimBlanks(raw);
    Line line{std::string(raw), {}, {}, false};
    if (body.starts_with('[')) {
      Section section;
      section.name = TrimBlanks(body.substr(1, body.find(']') - 1));
      section.hasHeader = true;
      section.lines.push_back(std::move(line));
      doc.m_sections.push_back(std::move(section));
      continue;
    }
    const std::size_t equals = raw.find('=');
    if (!body.starts_with(';') && !body.starts_with('#') && equals != raw.npos) {
      const std::string_view key = TrimBlanks(raw.substr(0, equals));
      if (!key.empty()) {
        line.key = key;
        line.value = raw.substr(equals + 1);
        line.isEntry = true;
      }
    }
    doc.m_sections.back().lines.push_back(std::move(line));
  }
  return doc;
}

std::string IniDocument::Serialize() const {
  std::string out;
  for (const Section& section : m_sections) {
    for (const Line& line : section.lines) {
      out += line.text;
      out += '\n';
    }
  }
  return out;
}

IniDocument::Section* IniDocument::FindSection(std::string_view name) {
  return const_cast<Section*>(std::as_const(*this).FindSection(name));
}

const IniDocument::Section* IniDocument::FindSection(std::string_view name) const {
  if (name.empty()) return nullptr;
  for (const Section& section : m_sections) {
    if (section.hasHeader && EqualNoCase(section.name, name)) return &section;
  }
  return nullptr;
}

std::optional<std::string> IniDocument::Get(std::string_view section, std::string_view key) const {
  const Section* found = FindSection(section);
  if (found == nullptr) return std::nullopt;
  for (const Line& line : found->lines) {
    if (line.isEntry && EqualNoCase(line.key, key)) return line.value;
  }
  return std::nullopt;
}

std::vector<IniDocument::Entry> IniDocument::Entries() const {
  std::vector<Entry> entries;
  std::unordered_set<std::string> sections;
  for (const Section& section : m_sections) {
    if (!section.hasHeader || section.name.empty() ||
        !sections.insert(ascii::LowerCopy(section.name)).second) {
      continue;
    }
    std::unordered_set<std::string> keys;
    for (const Line& line : section.lines) {
      if (line.isEntry && keys.insert(ascii::LowerCopy(line.key)).second) {
        entries.push_back({section.name, line.key, line.value});
      }
    }
  }
  return entries;
}

bool IniDocument::Set(std::string_view section, std::string_view key, std::string_view value) {
  if (!IsWritableSection(section) || !IsWritableKey(key) || !IsWritableValue(value)) return false;
  Section* target = FindSection(section);
  if (target == nullptr) {
    Section& last = m_sections.back();
    if (!last.lines.empty() && !TrimBlanks(last.lines.back().text).empty()) last.lines.push_back({});
    Section added;
    added.name = section;
    added.hasHeader = true;
    added.lines.push_back({"[" + added.name + "]", {}, {}, false});
    m_sections.push_back(std::move(added));
    target = &m_sections.back();
  }
  std::size_t insertAt = target->hasHeader ? 1 : 0;
  for (std::size_t i = 0; i < target->lines.size(); ++i) {
    Line& line = target->lines[i];
    if (!line.isEntry) continue;
    if (EqualNoCase(line.key, key)) {
      line.value = value;
      line.text = line.key + "=" + line.value;
      return true;
    }
    insertAt = i + 1;
  }
  std::string text = std::string(key) + "=" + std::string(value);
  target->lines.insert(target->lines.begin() + static_cast<std::ptrdiff_t>(insertAt),
                       Line{std::move(text), std::string(key), std::string(value), true});
  return true;
}

bool IniDocument::DeleteEntry(std::string_view section, std::string_view key) {
  std::size_t removed = 0;
  for (Section& candidate : m_sections) {
    if (!candidate.hasHeader || candidate.name.empty() || !EqualNoCase(candidate.name, section)) continue;
    removed += std::erase_if(candidate.lines,
                             [&](const Line& line) { return line.isEntry && EqualNoCase(line.key, key); });
  }
  return removed > 0;
}

bool IniDocument::DeleteSection(std::string_view section) {
  if (section.empty()) return false;
  return std::erase_if(m_sections, [&](const Section& candidate) {
           return candidate.hasHeader && EqualNoCase(candidate.name, section);
         }) > 0;
}

bool IniDocument::IsWritableSection(std::string_view section) {
  return !section.empty() && section.find(']') == section.npos && !HasLineBreakOrZero(section) &&
         !HasBlankEnd(section);
}

bool IniDocument::IsWritableKey(std::string_view key) {
  return !key.empty() && key.find('=') == key.npos && !HasLineBreakOrZero(key) && !HasBlankEnd(key) &&
         key.front() != '[' && key.front() != ';' && key.front() != '#';
}

bool IniDocument::IsWritableValue(std::string_view value) { return !HasLineBreakOrZero(value); }

ApplicationProfile::ApplicationProfile(std::string_view company, std::string_view application) {
  if (!IsPlainName(application) || (!company.empty() && !IsPlainName(company))) return;
  const std::string config = platform::UserConfigFolder();
  if (config.empty()) return;
  std::filesystem::path file(config);
  if (!company.empty()) file /= company;
  m_file = file / (std::string(application) + ".ini");
}

std::optional<std::string> ApplicationProfile::ReadText() const {
  platform::FileHandle file;
  const int error = file.Open(m_file, platform::FileOpenOptions{});
  if (error == ENOENT) return std::string();
  if (error != 0) return std::nullopt;
  std::string text;
  char buffer[65536];
  for (;;) {
    std::size_t done = 0;
    if (file.Read(buffer, sizeof buffer, done) != 0) return std::nullopt;
    if (done == 0) break;
    text.append(buffer, done);
  }
  return text;
}

CString ApplicationProfile::GetProfileString(LPCTSTR lpszSection, LPCTSTR lpszEntry,
                                             LPCTSTR lpszDefault) const {
  CString fallback(lpszDefault);
  if (m_file.empty() || lpszSection == nullptr || lpszEntry == nullptr) return fallback;
  const std::optional<std::string> text = ReadText();
  if (!text) return fallback;
  std::optional<std::string> value = IniDocument::Parse(*text).Get(lpszSection, lpszEntry);
  return value ? CString(std::move(*value)) : fallback;
}

BOOL ApplicationProfile::WriteProfileString(LPCTSTR lpszSection, LPCTSTR lpszEntry, LPCTSTR lpszValue) {
  if (m_file.empty() || lpszSection == nullptr) return FALSE;
  try {
    std::lock_guard lock(m_writeMutex);
    const std::optional<std::string> text = ReadText();
    if (!text) return FALSE;
    IniDocument doc = IniDocument::Parse(*text);
    const std::string before = doc.Serialize();
    if (lpszEntry == nullptr) {
      doc.DeleteSection(lpszSection);
    } else if (lpszValue == nullptr) {
      doc.DeleteEntry(lpszSection, lpszEntry);
    } else if (!doc.Set(lpszSection, lpszEntry, lpszValue)) {
      return FALSE;
    }
    const std::string after = doc.Serialize();
    if (after == before) return TRUE;
    return platform::WriteFileAtomically(m_file, after) == 0 ? TRUE : FALSE;
  } catch (const std::exception&) {
    // Out of memory (or a mutex that cannot be locked): the file was not touched.
    return FALSE;
  }
}

UINT ApplicationProfile::GetProfileInt(LPCTSTR lpszSection, LPCTSTR lpszEntry, int nDefault) const {
  const auto fallback = static_cast<UINT>(nDefault);
  if (m_file.empty() || lpszSection == nullptr || lpszEntry == nullptr) return fallback;
  const std::optional<std::string> text = ReadText();
  if (!text) return fallback;
  const std::optional<std::string> value = IniDocument::Parse(*text).Get(lpszSection, lpszEntry);
  return value && !value->empty() ? LeadingNumber(*value) : fallback;
}

BOOL ApplicationProfile::WriteProfileInt(LPCTSTR lpszSection, LPCTSTR lpszEntry, int nValue) {
  return WriteProfileString(lpszSection, lpszEntry, std::to_string(nValue).c_str());
}

std::shared_ptr<ApplicationProfile> GetApplicationProfile() {
  std::lock_guard lock(g_profileMutex);
  if (!g_profile) g_profile = std::make_shared<ApplicationProfile>();
  return g_profile;
}

std::shared_ptr<ApplicationProfile> SetApplicationProfile(std::shared_ptr<ApplicationProfile> profile) {
  std::lock_guard lock(g_profileMutex);
  std::shared_ptr<ApplicationProfile> previous = std::move(g_profile);
  g_profile = std::move(profile);
  return previous;
}

}  // namespace corlith
