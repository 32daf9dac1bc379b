// KTUtility: asking the person for files and folders, and the missing-file message,
// all through the host prompt in force.
#include <corlith/environment/Utility.h>

#include <corlith/framework/Format.h>
#include <corlith/framework/HostPrompt.h>

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr DWORD kSingleFileFlags = OFN_HIDEREADONLY | OFN_OVERWRITEPROMPT;
constexpr DWORD kMultipleFileFlags =
    OFN_LONGNAMES | OFN_ALLOWMULTISELECT | OFN_HIDEREADONLY | OFN_OVERWRITEPROMPT;
constexpr UINT kFolderFlags =
    BIF_RETURNONLYFSDIRS | BIF_STATUSTEXT | BIF_EDITBOX | BIF_VALIDATE | BIF_NEWDIALOGSTYLE;

std::string SingleExtensionFilter(const CString& description, const CString& extension) {
  return corlith::FormatText("%s (*.%s)|*.%s|All Files(*.*)|*.*||", description, extension, extension);
}

// One row for several extensions: "*.a, *.b" shown, "*.a;*.b" matched.
std::string ExtensionListFilter(const CString& description, const CStringArray& extensions) {
  std::string shown;
  std::string patterns;
  for (INT_PTR i = 0; i < extensions.GetSize(); ++i) {
    if (i > 0) {
      shown += ", ";
      patterns += ';';
    }
    shown += "*.";
    shown += extensions[i].view();
    patterns += "*.";
    patterns += extensions[i].view();
  }
  return corlith::FormatText("%s (%s)|%s|All Files(*.*)|*.*||", description, shown, patterns);
}

CString FirstOf(const CStringArray& texts) { return texts.IsEmpty() ? CString() : texts[0]; }

corlith::FileChooserRequest Request(BOOL open, std::string filter, const CString& defaultExtension,
                                    const CString& defaultName, const CString& initialDir, CWnd* parent,
                                    DWORD flags) {
  corlith::FileChooserRequest request;
  request.open = open != 0;
  request.initialFolder = initialDir.str();
  request.fileName = defaultName.str();
  request.defaultExtension = defaultExtension.str();
  request.filter = std::move(filter);
  request.multiSelect = (flags & OFN_ALLOWMULTISELECT) != 0;
  request.flags = flags;
  request.parent = parent;
  return request;
}

CString FirstChosen(const corlith::FileChooserRequest& request) {
  const std::optional<std::vector<std::string>> chosen = corlith::GetHostPrompt()->ChooseFiles(request);
  if (!chosen || chosen->empty()) return {};
  return CString(chosen->front());
}

void AppendChosen(const corlith::FileChooserRequest& request, CStringArray& list) {
  const std::optional<std::vector<std::string>> chosen = corlith::GetHostPrompt()->ChooseFiles(request);
  if (!chosen) return;
  for (const std::string& path : *chosen) list.Add(CString(path));
}

}  // namespace

CString KTUtility::GetFilePathFromUser(BOOL open, const CString& description, const CString& extension,
                                       const CString& defaultName, const CString& initialDir, CWnd* parent) {
  return FirstChosen(Request(open, SingleExtensionFilter(description, extension), extension, defaultName,
                             initialDir, parent, kSingleFileFlags));
}

CString KTUtility::GetFilePathFromUser(BOOL open, const CString& description, const CStringArray& extensions,
                                       const CString& defaultName, const CString& initialDir, CWnd* parent) {
  return FirstChosen(Request(open, ExtensionListFilter(description, extensions), FirstOf(extensions),
                             defaultName, initialDir, parent, kSingleFileFlags));
}

CString KTUtility::GetFilePathFromUser(BOOL open, const CStringArray& descriptions,
                                       const CStringArray& extensions, const CString& defaultName,
                                       const CString& initialDir, CWnd* parent, int filterIndex,
                                       DWORD flags) {
  // One row per pair; a description without an extension (or the reverse) has no row.
  const INT_PTR rows = std::min(descriptions.GetSize(), extensions.GetSize());
  std::string filter;
  for (INT_PTR i = 0; i < rows; ++i) {
    filter += corlith::FormatText("%s (*.%s)|*.%s|", descriptions[i], extensions[i], extensions[i]);
  }
  filter += "All Files(*.*)|*.*|";
  filter += '|';
  corlith::FileChooserRequest request =
      Request(open, std::move(filter), FirstOf(extensions), defaultName, initialDir, parent, flags);
  request.filterIndex = filterIndex;
  return FirstChosen(request);
}

void KTUtility::GetFilePathListFromUser(CStringArray& list, const CString& description,
                                        const CString& extension, const CString& defaultName,
                                        const CString& initialDir, CWnd* parent) {
  AppendChosen(Request(TRUE, SingleExtensionFilter(description, extension), extension, defaultName,
                       initialDir, parent, kMultipleFileFlags),
               list);
}

void KTUtility::GetFilePathListFromUser(CStringArray& list, const CString& description,
                                        const CStringArray& extensions, const CString& defaultName,
                                        const CString& initialDir, CWnd* parent) {
  AppendChosen(Request(TRUE, ExtensionListFilter(description, extensions), FirstOf(extensions), defaultName,
                       initialDir, parent, kMultipleFileFlags),
               list);
}

CString KTUtility::GetDirectoryFromUser(const CString& title, const CString& initialDir, HWND owner) {
  corlith::FolderChooserRequest request;
  request.title = title.str();
  request.initialFolder = initialDir.str();
  request.flags = kFolderFlags;
  request.owner = owner;
  const std::optional<std::string> chosen = corlith::GetHostPrompt()->ChooseFolder(request);
  return chosen ? CString(*chosen) : CString();
}

int KTUtility::MB_CannotFindFile(const CString& path) {
  return corlith::GetHostPrompt()->MessageBox(corlith::FormatText("Cannot find \"%s\" file.", path), "Error",
                                              MB_OK);
}
