// CLRecentFileList: the recent-file list as the host applications' menus show it: every
// entry with its whole path, "\" written as "/", numbered 1 ... 9 and 0 in the menu.
#pragma once

#include <corlith/framework/Menu.h>
#include <corlith/framework/RecentFileList.h>
#include <corlith/framework/String.h>
#include <corlith/framework/Types.h>

/// Paths of this many characters or more are left out of the menu.
inline constexpr int kRecentFileMenuPathLimit = 260;

class CLRecentFileList : public CRecentFileList {
 public:
  /// Everything goes to the base list (see CRecentFileList).
  CLRecentFileList(UINT nStart, LPCTSTR lpszSection, LPCTSTR lpszEntryFormat, int nSize, int nMaxDispLen = 30)
      : CRecentFileList(nStart, lpszSection, lpszEntryFormat, nSize, nMaxDispLen) {}

  /// FALSE for an empty entry; otherwise strName := the entry's whole path with every "\"
  /// turned into "/", and TRUE. The current folder and the length limit are not applied,
  /// deliberately: the whole path is shown. (The original copied the path through a
  /// 260-character buffer; no length limit is kept here, the menu applies its own.)
  BOOL GetDisplayName(CString& strName, int nIndex, LPCTSTR lpszCurDir, int nCurDir,
                      BOOL bAtLeastName = TRUE) const override;
  /// The same text as GetDisplayName; "" for an empty entry (or an index outside the list).
  CString GetDisplayName_in_FullPath(int nIndex) const;

  /// Shows the list at the anchor item of pCmdUI (position m_nIndex; its text is
  /// remembered on the first call):
  ///  - an empty first entry puts the remembered text back on the anchor; items left
  ///    from an earlier, longer list after it are removed (deliberate: they would name
  ///    files no longer listed);
  ///  - otherwise the items the list inserted last time (ids nStart ... nStart + size - 1
  ///    from the anchor's position; the first time, the anchor itself) are deleted, and
  ///    each non-empty entry i whose path is shorter than 260 characters is inserted
  ///    there as "&<(i + 1) % 10> " and its path with every "&" doubled, command id
  ///    nStart + i. Entries of 260 characters or more are left out, their numbers and ids
  ///    skipped. When every entry was left out the anchor comes back with its remembered
  ///    text (deliberate: the menu keeps the list's place);
  ///  - m_nIndexMax := the menu's item count, m_bEnableChanged := TRUE, and m_nIndex
  ///    points at the last item inserted, so the framework's update pass goes on after
  ///    the list.
  void UpdateMenu(CCmdUI* pCmdUI) override;
};
