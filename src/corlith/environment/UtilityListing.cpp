// KTUtility: listing and searching folders. Every member reads one folder at a time
// through the platform's enumeration (which skips "." and ".."), matches names with the
// one listing-pattern matcher, and builds full paths with the native separator.
//
// Each folder is read to its end and closed before its sub-folders are visited: a
// folder's own entries come before those of its sub-folders, and only one folder is
// open at a time however deep the tree. Symbolic links to folders are listed as
// folders but never descended into, so a link that points back up the tree cannot make
// a walk endless.
#include <corlith/environment/Utility.h>

#include <corlith/framework/Ascii.h>
#include <corlith/platform/FileSystem.h>
#include <corlith/platform/Path.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

namespace platform = corlith::platform;

// The folder a find-first pattern ("dir\*.*") reads: the text before the pattern's last
// separator, with native separators and no closing separator; the root stays the root.
// Empty (the current folder) when the pattern has no separator.
std::string FolderOfPattern(std::string_view pattern) {
  const std::string native = platform::ToNativeSeparators(pattern);
  const std::size_t last = platform::FindLastSeparator(native);
  if (last == std::string::npos) return {};
  // Runs of separators become one ("dir/" + "\sub\*.*"), but for a network prefix.
  std::string folder;
  folder.reserve(last);
  for (std::size_t i = 0; i < last; ++i) {
    const bool repeated = i > 1 && native[i] == platform::kNativeSeparator && folder.back() == native[i];
    if (!repeated) folder += native[i];
  }
  while (folder.size() > 1 && folder.back() == platform::kNativeSeparator) folder.pop_back();
  if (folder.empty()) folder += platform::kNativeSeparator;
  return folder;
}

std::string_view NameOfPattern(std::string_view pattern) {
  const std::size_t last = platform::FindLastSeparator(pattern);
  return last == std::string_view::npos ? pattern : pattern.substr(last + 1);
}

// The full path of an entry of `folder` (a bare name in the current folder).
std::string ChildPath(const std::string& folder, std::string_view name) {
  std::string path;
  path.reserve(folder.size() + 1 + name.size());
  path = folder;
  if (!path.empty() && !platform::IsSeparator(path.back())) path += platform::kNativeSeparator;
  path.append(name);
  return path;
}

template <typename Visit>
void ListEntries(const std::string& folder, Visit&& visit) {
  platform::ListFolder(folder.empty() ? std::string_view(".") : std::string_view(folder),
                       [&visit](const platform::ListingEntry& entry) { return visit(entry); });
}

// Appends without copying the text again.
void Append(CStringArray& list, std::string path) {
  const INT_PTR index = list.GetSize();
  list.SetSize(index + 1);
  list[index] = CString(std::move(path));
}

bool Descends(const platform::ListingEntry& entry) { return entry.isDirectory && !entry.isSymbolicLink; }

// What GetAllFileListIn adds, decided once for the whole walk.
class ExtensionRule {
 public:
  explicit ExtensionRule(std::string_view extension) {
    if (extension == "*.*") {
      m_kind = Kind::All;
    } else if (!extension.empty() && extension.back() == '*') {
      m_kind = Kind::Nothing;
    } else {
      while (!extension.empty() && (extension.front() == '*' || extension.front() == '.')) {
        extension.remove_prefix(1);
      }
      m_tail = corlith::ascii::UpperCopy(extension);
    }
  }

  // A tail match on the whole name, so "txt" also takes "a.btxt" (deliberately kept).
  bool Takes(std::string_view name) const {
    if (m_kind != Kind::Tail) return m_kind == Kind::All;
    if (name.find('.') == std::string_view::npos || name.size() < m_tail.size()) return false;
    const std::string_view tail = name.substr(name.size() - m_tail.size());
    for (std::size_t i = 0; i < tail.size(); ++i) {
      if (corlith::ascii::ToUpper(tail[i]) != m_tail[i]) return false;
    }
    return true;
  }

 private:
  enum class Kind { All, Tail, Nothing };
  Kind m_kind = Kind::Tail;
  std::string m_tail;
};

// Each level's pattern is built as the caller's would be: KTPathCombine (dir, "*.*").
void AllFiles(KTUtility& utility, const CString& dir, CStringArray& list, const ExtensionRule& rule,
              BOOL recursive) {
  const std::string folder = FolderOfPattern(utility.KTPathCombine(dir, "*.*", "KTUtility", __LINE__).view());
  std::vector<std::string> subfolders;
  ListEntries(folder, [&](const platform::ListingEntry& entry) {
    if (entry.isDirectory) {
      if (recursive != 0 && Descends(entry)) subfolders.push_back(ChildPath(folder, entry.name));
    } else if (rule.Takes(entry.name)) {
      Append(list, ChildPath(folder, entry.name));
    }
    return true;
  });
  for (std::string& subfolder : subfolders)
    AllFiles(utility, CString(std::move(subfolder)), list, rule, recursive);
}

}  // namespace

void KTUtility::GetAllFileListIn(const CString& dir, CStringArray& list, const CString& extension,
                                 BOOL recursive) {
  AllFiles(*this, dir, list, ExtensionRule(extension.view()), recursive);
}

void KTUtility::GetAllSubDirListIn(const CString& dir, CStringArray& list, BOOL recursive) {
  const std::string folder = FolderOfPattern((dir + "\\*.*").view());
  std::vector<std::string> subfolders;
  ListEntries(folder, [&](const platform::ListingEntry& entry) {
    if (entry.isDirectory) {
      std::string path = ChildPath(folder, entry.name);
      if (recursive != 0 && Descends(entry)) subfolders.push_back(path);
      Append(list, std::move(path));
    }
    return true;
  });
  for (std::string& subfolder : subfolders)
    GetAllSubDirListIn(CString(std::move(subfolder)), list, recursive);
}

void KTUtility::GetFilePathListIn(const CString& dir, CStringArray& list, const CString& pattern,
                                  BOOL& recursive) {
  const CString full = dir + "\\" + pattern;
  const std::string folder = FolderOfPattern(full.view());
  const std::string_view names = NameOfPattern(full.view());
  std::vector<std::string> subfolders;
  ListEntries(folder, [&](const platform::ListingEntry& entry) {
    // The pattern filters folders too: only matching ones are descended (kept so).
    if (!platform::MatchesListingPattern(names, entry.name)) return true;
    if (entry.isDirectory) {
      if (recursive != 0 && Descends(entry)) subfolders.push_back(ChildPath(folder, entry.name));
    } else {
      Append(list, ChildPath(folder, entry.name));
    }
    return true;
  });
  for (std::string& subfolder : subfolders)
    GetFilePathListIn(CString(std::move(subfolder)), list, pattern, recursive);
}

CString KTUtility::GetFilePathUnderDir(const CString& dir, const CString& fileName) {
  CStringArray found;
  BOOL recursive = TRUE;
  GetFilePathListIn(dir, found, "*." + GetSegmntFromFilePath(fileName, 4), recursive);
  for (const CString& path : found) {
    if (NameOfPattern(path.view()) == fileName.view()) return path;
  }
  return {};
}

CString KTUtility::FindDirFromFileNameIn(const CString& dir, const CString& fileName, BOOL recursive) {
  const std::string folder = FolderOfPattern((dir + "\\*.*").view());
  bool found = false;
  std::vector<std::string> subfolders;
  ListEntries(folder, [&](const platform::ListingEntry& entry) {
    if (entry.isDirectory) {
      if (recursive != 0 && Descends(entry)) subfolders.push_back(ChildPath(folder, entry.name));
      return true;
    }
    found = entry.name == fileName.view();
    return !found;
  });
  if (found) return CString(folder);
  for (std::string& subfolder : subfolders) {
    CString holder = FindDirFromFileNameIn(CString(std::move(subfolder)), fileName, recursive);
    if (!holder.IsEmpty()) return holder;
  }
  return {};
}

CString KTUtility::GetSubDirFullPath(const CString& dir, const CString& name, BOOL recursive) {
  const std::string folder = FolderOfPattern((dir + "\\*.*").view());
  // The paths carry native separators, so a name is read with either ("sub\\deeper").
  const std::string wanted = platform::ToNativeSeparators(name.view());
  std::vector<std::pair<std::string, bool>> subfolders;
  ListEntries(folder, [&](const platform::ListingEntry& entry) {
    if (entry.isDirectory) subfolders.emplace_back(ChildPath(folder, entry.name), Descends(entry));
    return true;
  });
  for (auto& [path, descends] : subfolders) {
    if (path.find(wanted) != std::string::npos) return CString(std::move(path));
    if (recursive != 0 && descends) {
      CString found = GetSubDirFullPath(CString(path), CString(wanted), recursive);
      if (!found.IsEmpty()) return found;
    }
  }
  return {};
}
