// CRecentFileList: the framework's most-recently-used file list. It holds a fixed number
// of slots of full paths (unused slots are empty), keeps the newest first, reads and
// writes itself through the application profile, and shows itself in a menu.
#pragma once

#include <corlith/framework/Menu.h>
#include <corlith/framework/String.h>
#include <corlith/framework/Types.h>

#include <vector>

/// The most slots a list holds; a larger size asked of the constructor is cut to this.
inline constexpr int kRecentFileListMaxSize = 16;

class CRecentFileList {
 public:
  /// nStart: the command id of the first menu item (slot i gets nStart + i).
  /// lpszSection / lpszEntryFormat: where the list lives in the application profile
  /// (hosts pass "Recent File List" and "File%d"; slot i is entry format % (i + 1)); null
  /// is the empty text. nSize: the number of slots, clamped to 0 ... 16 (a bigger size
  /// gives 16 slots, never an error). nMaxDispLen: the longest display name (see
  /// GetDisplayName); below 1 means no limit.
  CRecentFileList(UINT nStart, LPCTSTR lpszSection, LPCTSTR lpszEntryFormat, int nSize, int nMaxDispLen = 30);
  CRecentFileList(const CRecentFileList&) = default;
  CRecentFileList& operator=(const CRecentFileList&) = default;
  virtual ~CRecentFileList() = default;

  /// The number of slots.
  int GetSize() const { return static_cast<int>(m_arrNames.size()); }
  /// The full path in slot nIndex ("" for an unused slot). Throws CInvalidArgException
  /// for an index outside 0 ... GetSize() - 1.
  CString& operator[](int nIndex);
  const CString& operator[](int nIndex) const;

  /// Puts the path, made absolute against the current folder and normalised (native
  /// separators, "." and ".." resolved), into slot 0. The same path already in a slot
  /// before the last moves up from there (no duplicates, compared exactly); otherwise
  /// every slot moves down one and the last one's path drops out. An empty (or null) path
  /// and a list without slots change nothing.
  virtual void Add(LPCTSTR lpszPathName);
  /// Empties slot nIndex, moving the later slots up; the last slot becomes empty. An index
  /// outside the slots changes nothing.
  virtual void Remove(int nIndex);

  /// Fills every slot from the application profile: entry format % (i + 1) in the section;
  /// a missing entry gives an empty slot.
  virtual void ReadList();
  /// Deletes the section, then, when slot 0 is not empty, writes every non-empty slot
  /// under its entry. (An empty list therefore leaves no section at all.)
  virtual void WriteList();

  /// FALSE for an unused slot (or an index outside the slots). Otherwise strName := the
  /// slot's path, shortened for a menu: the current folder lpszCurDir (its first
  /// nCurDir characters, ending in a separator) is cut from the front when the path starts
  /// with it; then a name longer than the maximum display length becomes
  /// "<first part>/.../<file name>" when that fits, else the file name alone when
  /// bAtLeastName (whatever its length), else "". TRUE.
  virtual BOOL GetDisplayName(CString& strName, int nIndex, LPCTSTR lpszCurDir, int nCurDir,
                              BOOL bAtLeastName = TRUE) const;
  /// Shows the list in the menu of pCmdUI, whose item (the anchor, command id nStart) is
  /// the list's place: the anchor's text is remembered on the first call. An empty list
  /// puts the remembered text back on the anchor and disables it. Otherwise the items the
  /// list inserted before (ids nStart ... nStart + size - 1, from the anchor's position)
  /// are deleted and one item per used slot is inserted there, "&1 " ... "&9 ", "1&0 ",
  /// then plain "11 " ..., followed by the display name with each "&" doubled; the
  /// command UI then points at the last item inserted and holds the menu's new count, and
  /// its state counts as changed (the items are enabled).
  virtual void UpdateMenu(CCmdUI* pCmdUI);

 protected:
  std::vector<CString> m_arrNames;  ///< one full path per slot, newest first
  CString m_strSectionName;
  CString m_strEntryFormat;
  UINT m_nStart = 0;  ///< the command id of the first item
  int m_nMaxDisplayLength = 30;
  CString m_strOriginal;  ///< the anchor item's text, remembered by the first UpdateMenu
};
