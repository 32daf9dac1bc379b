// Auto-save book-keeping: CAutoSaveItem names one back-up the host is about to write,
// CAutoSaveManager holds the settings and the records (newest last) and numbers, finds
// and prunes the back-up files of a folder. The manager never writes a document and
// never starts a timer; every folder look-up goes through KTUtility.
#pragma once

#include <corlith/framework/String.h>
#include <corlith/framework/StringArray.h>
#include <corlith/values/ExPtrArray.h>

#include <memory>
#include <vector>

/// One back-up record (a plain record: copies copy every field).
class CAutoSaveItem {
 public:
  /// Extension ".bak", number 0, not saved, every other text empty.
  CAutoSaveItem();

  /// "folder/title.ext" for number 0, else "folder/title.extN": the number is glued to
  /// the extension, deliberately, so a back-up keeps no ordinary extension. The title is
  /// the document's file name without its extension; the separator is the native one.
  CString GetBackFullFileName() const;

  CString m_strReserved1;  ///< kept for the host; the manager never reads it
  CString m_strBackupFolder;
  CString m_strDocumentPath;  ///< only its title enters the back-up name
  CString m_strUniqueID;      ///< the host's identifier of the document (case-sensitive)
  CString m_strReserved2;     ///< kept for the host; the manager never reads it
  CString m_strExtension;     ///< with its dot; Push sets the manager's
  int m_nBackupNumber = 0;
  bool m_bSaved = false;  ///< set by the host once the back-up is written
};

/// The settings and the back-up records of a host. An owning array: removing a record
/// (Pop, DeleteByUniqueID, Clear, destruction) destroys it. Not copyable: two managers
/// would own the same records.
///
/// A back-up file of a folder is any file whose full path contains the extension
/// (case-sensitive); its number is what is left of its own extension once every
/// occurrence of the manager's extension without dots is removed, read as a decimal
/// integer ("Board.bak" 0, "Board.bak12" 12; an empty or non-numeric rest reads 0).
/// Folders are listed one level deep, in the order the system gives.
class CAutoSaveManager : public CExPtrArray<CAutoSaveItem*, CAutoSaveItem*> {
 public:
  /// No records, the default settings (Clear).
  CAutoSaveManager();
  ~CAutoSaveManager() override;
  CAutoSaveManager(const CAutoSaveManager&) = delete;
  CAutoSaveManager& operator=(const CAutoSaveManager&) = delete;

  // The framework array's element-wise copies would share records between owners.
  void Copy(const CArray<CAutoSaveItem*, CAutoSaveItem*>&) = delete;
  INT_PTR Append(const CArray<CAutoSaveItem*, CAutoSaveItem*>&) = delete;

  /// Destroys every record and restores the settings: disabled, maximum 1, 300000 ms,
  /// ".bak".
  void Clear();

  bool GetEnabled() const { return m_bEnabled; }
  /// A flag only: nothing in the manager reacts to it.
  void SetEnabled(bool enabled) { m_bEnabled = enabled; }
  /// Milliseconds.
  int GetIntervalTime() const { return m_nIntervalTime; }
  void SetIntervalTime(int milliseconds) { m_nIntervalTime = milliseconds; }
  /// Stores minutes * 60000 milliseconds (wrapping as 32-bit arithmetic does).
  void SetIntervalTimeMin(int minutes);
  CString GetExtName() const { return m_strExtension; }
  /// Stored unchanged; expected to begin with a dot. Beware: an empty extension makes
  /// every file of a folder a back-up (and Push prunes them), as in the original.
  void SetExtName(const CString& extension) { m_strExtension = extension; }
  bool IsEmpty() const { return GetSize() == 0; }

  /// A new record for a back-up of `documentPath` into `folder`, appended and returned
  /// (the manager owns it); null, with nothing changed, when the maximum is 0. Numbered
  /// by the newest record of the same ID from index 1 down (its number + 1), else by the
  /// folder's largest back-up number + 1, else 0. Then the folder is pruned: with n
  /// back-up files there and maximum m, n - m + 1 of them are deleted, smallest numbers
  /// first, whatever document they belong to, leaving room for the one the host writes
  /// (a listed back-up already gone when its turn comes is skipped; the turn is used).
  /// The folder is listed once for both steps (nothing else changes it in between).
  CAutoSaveItem* Push(const CString& folder, const CString& documentPath, const CString& uniqueID);
  /// Removes the newest record and hands it to the caller, who now owns it; null when
  /// there is none. (The original returned the address of the record it had just
  /// destroyed, good only for a null test; an owning pointer keeps that test and dangles
  /// nowhere.)
  std::unique_ptr<CAutoSaveItem> Pop();
  /// The first record, in list order, not yet marked saved; null when none.
  CAutoSaveItem* GetUnsavedItem() const;
  /// The newest record with this ID, searched from the last index down to index 1.
  /// Deliberate: index 0 is never examined, so an ID held only by the oldest record is
  /// not found.
  CAutoSaveItem* FindByUniqueIDLast(const CString& uniqueID) const;
  /// Destroys every record with this ID.
  void DeleteByUniqueID(const CString& uniqueID);
  /// The newest record's back-up folder; empty when there is no record.
  CString GetSavePathFromLastItem() const;

  /// Fills `names` (emptied first) with the full paths of the folder's back-up files in
  /// listing order and returns how many there are. A missing folder has none.
  int GetBackupFileNames(const CString& folder, CStringArray& names) const;
  /// The largest number among the folder's back-up files (negative when all of them are,
  /// "A.bak-3" alone gives -3); -1 when there is none.
  int GetBackupFileNameMaxIndexNumber(const CString& folder) const;
  /// The back-up file with the smallest number (the first listed on a tie); empty when
  /// there is none.
  CString FindBackupFileNameMinNumber(const CString& folder) const;
  /// Deletes the back-up file with the smallest number if it still exists.
  void DeleteBackupFile(const CString& folder);
  /// Deletes every back-up file of `folder`, or, when it is empty, of the newest
  /// record's folder; nothing when both are empty. The records stay.
  void DeleteAllBackupFile(const CString& folder);

  /// The number of a back-up file by the rule above, for this manager's extension.
  int GetBackupNumber(const CString& path) const;

  /// No setter, as in the original: hosts assign the field directly. 0 disables Push.
  int m_nMaxBackupCount = 1;

 private:
  struct BackupFile {
    CString path;
    int number = 0;
  };
  /// The folder's back-up files, in listing order, with their numbers.
  std::vector<BackupFile> ListBackups(const CString& folder) const;
  /// The largest number of a non-empty list.
  static int LargestNumber(const std::vector<BackupFile>& backups);
  /// Deletes the file when it still exists (a file gone since the listing is skipped).
  static void DeleteIfPresent(const CString& path);

  bool m_bEnabled = false;
  int m_nIntervalTime = 300000;
  CString m_strExtension = ".bak";
};
