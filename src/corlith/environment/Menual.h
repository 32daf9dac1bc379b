// CLMenual (named so deliberately): maps help topic numbers to PDF manuals and to HTML
// help pages, read from two list files in the data folder, and opens them with the
// desktop's default application (xdg-open). The online help home page stands in for
// any topic the page list does not name.
#pragma once

#include <corlith/framework/String.h>
#include <corlith/framework/Types.h>

#include <map>
#include <string_view>

/// The manual list, under the data folder: "<topic id>&<manual base name>" lines.
inline constexpr const char* kManualIdListFile = "Data\\Tessel Manual ID List.txt";
/// The HTML page list, under the data folder: "<topic id>&<page target>" lines; lines
/// starting with "//" are comments.
inline constexpr const char* kHtmlPageListFile = "Data\\Tessel Html Page List.txt";
/// The online help home page opened for a topic the page list does not name, until the
/// host sets its own (CLMenual::SetOnlineHelpHomePage). Product data: a placeholder here.
inline constexpr const char* kDefaultOnlineHelpHomePage = "https://help.orvane.example/tessel/";
/// The message shown when a list file exists but cannot be opened.
inline constexpr const char* kManualFileMissingMessage = "The manual file does not exist.";

namespace corlith {

/// Which list a text is.
enum class ManualListKind {
  ManualIds,  ///< the manual list
  HtmlPages,  ///< the page list: "//" comment lines as well
};

/// The list reader CLMenual uses, on a file's whole text. Lines end at "\n" (a "\r"
/// before it is dropped; the last line needs no line end). Empty lines are skipped, and
/// for the page list lines starting with "//". Each other line is split at "&" with
/// CTokenizer (so runs of "&" count as one and a leading or trailing "&" makes no field);
/// a line of exactly two fields adds (ManualListNumber(field 1), field 2) to `map`, unless
/// the number is there already: the first line for a topic wins. Other lines are
/// ignored. Any bytes are accepted; `map` is added to, not emptied.
void ParseManualList(std::string_view text, ManualListKind kind, std::map<int, CString>& map);

/// The runtime's decimal conversion as the list files need it (atoi): leading white space,
/// an optional sign, then digits up to the first non-digit; no digits give 0, and values
/// beyond the int range give INT_MAX or INT_MIN.
int ManualListNumber(std::string_view field);

}  // namespace corlith

class CLMenual {
 public:
  CLMenual() = default;
  CLMenual(const CLMenual&) = default;
  CLMenual& operator=(const CLMenual&) = default;
  virtual ~CLMenual() = default;

  /// Loads the manual map from the manual list (see LoadList below).
  void GetManualID_ManualFileNameArrya();
  /// Loads the page map from the page list.
  void LoadHtmlPageMappingFile();

  /// Loads the manual map, then: the listed base name for `id` followed by ".pdf"; an
  /// unknown id gives ".pdf" alone. The language is not used (the host combines
  /// GetManualFileNameAndLang with names where it wants to).
  CString GetManualFileName(int id, int language);
  /// "_Kor.pdf", "_Eng.pdf", "_Jap.pdf", "_Chi.pdf" for 0 ... 3; "_Eng.pdf" otherwise.
  CString GetManualFileNameAndLang(int language) const;
  /// Loads the page map, then: the page target for `id`, "" when it is not listed.
  CString GetHTMLHelpFileName(int id);

  /// 0 at once when the HTML help flag is not 1. Otherwise opens the page target for
  /// `id` (the online help home page when the id is not listed) with xdg-open and gives 1;
  /// 0 only when the target is empty (the home page set to ""). A target is handed over
  /// as it is: a relative one is taken from the host's current folder. The original asked
  /// for a maximised window; xdg-open has no such request, so the application decides.
  int OpenHtmlHelp(int id);
  /// With the HTML help flag 1: OpenHtmlHelp(id). Otherwise the PDF manual
  /// GetManualFileName(id, language) beside the executable, when it exists, is opened with
  /// xdg-open; 1 when xdg-open was started, else 0 (the result the original left open).
  int OpenMenual(int id, int language);

  /// The online help home page (kDefaultOnlineHelpHomePage until a host sets another).
  /// Process-wide and thread-safe.
  static CString GetOnlineHelpHomePage();
  static void SetOnlineHelpHomePage(const CString& address);

  /// 1: help is shown as HTML pages; anything else: as PDF manuals.
  BYTE m_nHTMLHelp = 1;
  /// Topic id to manual base name, as last loaded.
  std::map<int, CString> m_mapManualFile;
  /// Topic id to page target, as last loaded.
  std::map<int, CString> m_mapHtmlPage;

 private:
  /// Loading a list: the map is emptied (deliberate: the file as it is now decides, so
  /// edits between lookups are seen); path := KTPathCombine(data folder, file); an empty
  /// path, or one that does not exist, leaves the map empty silently; a file that exists
  /// but cannot be opened or read (a folder of that name, no permission) shows
  /// "The manual file does not exist." (OK button) and leaves the map empty; otherwise
  /// ParseManualList fills it.
  static void LoadList(const char* fileName, corlith::ManualListKind kind, std::map<int, CString>& map);
};
