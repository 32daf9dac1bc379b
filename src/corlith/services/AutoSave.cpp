#include <corlith/services/AutoSave.h>

#include <corlith/environment/Utility.h>
#include <corlith/platform/FileSystem.h>
#include <corlith/platform/Path.h>
#include <corlith/text/LString.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>

namespace {

// The 32-bit wrap of n + 1 (a host may number back-ups up to INT_MAX).
int Next(int n) { return static_cast<int>(static_cast<std::uint32_t>(n) + 1u); }

}  // namespace

CAutoSaveItem::CAutoSaveItem() : m_strExtension(".bak") {}

CString CAutoSaveItem::GetBackFullFileName() const {
  const CString title = KTUtility::GetInstance()->GetSegmntFromFilePath(m_strDocumentPath, 3);
  CString name = m_strBackupFolder;
  name += corlith::platform::kNativeSeparator;
  name += title;
  name += m_strExtension;
  if (m_nBackupNumber != 0) name += CString(std::to_string(m_nBackupNumber));
  return name;
}

CAutoSaveManager::CAutoSaveManager() { Clear(); }

CAutoSaveManager::~CAutoSaveManager() { Clear(); }

void CAutoSaveManager::Clear() {
  DeleteAll();
  m_bEnabled = false;
  m_nMaxBackupCount = 1;
  m_nIntervalTime = 300000;
  m_strExtension = ".bak";
}

void CAutoSaveManager::SetIntervalTimeMin(int minutes) {
  m_nIntervalTime = static_cast<int>(static_cast<std::uint32_t>(minutes) * 60000u);
}

int CAutoSaveManager::GetBackupNumber(const CString& path) const {
  std::string rest = KTUtility::GetInstance()->GetSegmntFromFilePath(path, 4).str();
  std::string stripped = m_strExtension.str();
  std::erase(stripped, '.');
  if (!stripped.empty()) {
    for (std::size_t at = rest.find(stripped); at != std::string::npos; at = rest.find(stripped, at)) {
      rest.erase(at, stripped.size());
    }
  }
  return corlith::SaturatingAtoi(rest);
}

std::vector<CAutoSaveManager::BackupFile> CAutoSaveManager::ListBackups(const CString& folder) const {
  CStringArray all;
  KTUtility::GetInstance()->GetAllFileListIn(folder, all, "*.*", FALSE);
  std::vector<BackupFile> backups;
  for (CString& path : all) {
    if (path.view().find(m_strExtension.view()) == std::string_view::npos) continue;
    const int number = GetBackupNumber(path);
    backups.push_back(BackupFile{std::move(path), number});
  }
  return backups;
}

void CAutoSaveManager::DeleteIfPresent(const CString& path) {
  // A failed deletion is ignored, as every failure here is.
  if (KTUtility::GetInstance()->DoesFileExist(path, "CAutoSaveManager", __LINE__)) {
    static_cast<void>(corlith::platform::RemoveFilePath(path.view()));
  }
}

CAutoSaveItem* CAutoSaveManager::Push(const CString& folder, const CString& documentPath,
                                      const CString& uniqueID) {
  if (m_nMaxBackupCount == 0) return nullptr;
  auto item = std::make_unique<CAutoSaveItem>();
  item->m_strBackupFolder = folder;
  item->m_strDocumentPath = documentPath;
  item->m_strUniqueID = uniqueID;
  item->m_strExtension = m_strExtension;

  // One listing serves the numbering and the pruning: the record added in between
  // changes nothing on disk.
  std::vector<BackupFile> backups = ListBackups(folder);
  if (const CAutoSaveItem* previous = FindByUniqueIDLast(uniqueID)) {
    item->m_nBackupNumber = Next(previous->m_nBackupNumber);
  } else if (!backups.empty()) {
    item->m_nBackupNumber = Next(LargestNumber(backups));
  }
  CAutoSaveItem* const added = item.get();
  Add(added);
  static_cast<void>(item.release());  // the array owns it now

  // n - m + 1 deletions, each of the smallest number left (the first listed on a tie):
  // the same files as n - m + 1 calls of DeleteBackupFile, without a listing per call.
  const auto n = static_cast<std::int64_t>(backups.size());
  const std::int64_t m = m_nMaxBackupCount;
  if (n >= m) {
    const auto deletions = static_cast<std::size_t>(std::min(n - m + 1, n));
    std::vector<std::pair<int, std::size_t>> order;  // (number, listing index): unique keys
    order.reserve(backups.size());
    for (std::size_t i = 0; i < backups.size(); ++i) order.emplace_back(backups[i].number, i);
    const auto cut = order.begin() + static_cast<std::ptrdiff_t>(deletions);
    std::partial_sort(order.begin(), cut, order.end());
    for (auto it = order.begin(); it != cut; ++it) DeleteIfPresent(backups[it->second].path);
  }
  return added;
}

std::unique_ptr<CAutoSaveItem> CAutoSaveManager::Pop() {
  return std::unique_ptr<CAutoSaveItem>(RemoveLastElement());
}

CAutoSaveItem* CAutoSaveManager::GetUnsavedItem() const {
  for (CAutoSaveItem* item : *this) {
    if (item && !item->m_bSaved) return item;
  }
  return nullptr;
}

CAutoSaveItem* CAutoSaveManager::FindByUniqueIDLast(const CString& uniqueID) const {
  for (INT_PTR i = GetLastIndex(); i >= 1; --i) {
    CAutoSaveItem* item = GetAt(i);
    if (item && item->m_strUniqueID == uniqueID) return item;
  }
  return nullptr;
}

void CAutoSaveManager::DeleteByUniqueID(const CString& uniqueID) {
  CAutoSaveItem** slots = GetData();
  INT_PTR kept = 0;
  for (INT_PTR i = 0; i < GetSize(); ++i) {
    if (slots[i] && slots[i]->m_strUniqueID == uniqueID) {
      delete slots[i];
    } else {
      slots[kept++] = slots[i];
    }
  }
  SetSize(kept);
}

CString CAutoSaveManager::GetSavePathFromLastItem() const {
  const CAutoSaveItem* last = GetLastElement();
  return last ? last->m_strBackupFolder : CString();
}

int CAutoSaveManager::GetBackupFileNames(const CString& folder, CStringArray& names) const {
  names.RemoveAll();
  std::vector<BackupFile> backups = ListBackups(folder);
  for (const BackupFile& backup : backups) names.Add(backup.path);
  return static_cast<int>(names.GetSize());
}

int CAutoSaveManager::GetBackupFileNameMaxIndexNumber(const CString& folder) const {
  const std::vector<BackupFile> backups = ListBackups(folder);
  return backups.empty() ? -1 : LargestNumber(backups);
}

int CAutoSaveManager::LargestNumber(const std::vector<BackupFile>& backups) {
  int largest = backups.front().number;
  for (const BackupFile& backup : backups) largest = std::max(largest, backup.number);
  return largest;
}

CString CAutoSaveManager::FindBackupFileNameMinNumber(const CString& folder) const {
  std::vector<BackupFile> backups = ListBackups(folder);
  const auto smallest =
      std::min_element(backups.begin(), backups.end(), [](const BackupFile& a, const BackupFile& b) {
        return a.number < b.number;  // min_element keeps the first of equals
      });
  return smallest == backups.end() ? CString() : smallest->path;
}

void CAutoSaveManager::DeleteBackupFile(const CString& folder) {
  const CString smallest = FindBackupFileNameMinNumber(folder);
  if (!smallest.IsEmpty()) DeleteIfPresent(smallest);
}

void CAutoSaveManager::DeleteAllBackupFile(const CString& folder) {
  const CString target = folder.IsEmpty() ? GetSavePathFromLastItem() : folder;
  if (target.IsEmpty()) return;
  for (const BackupFile& backup : ListBackups(target)) DeleteIfPresent(backup.path);
}
