#include <corlith/framework/Exceptions.h>
#include <corlith/framework/File.h>
#include <corlith/framework/StdioFile.h>
#include <corlith/text/NaturalOrder.h>
#include <corlith/text/StringEx.h>
#include <corlith/text/StringFilter.h>
#include <corlith/text/Tokenizer.h>
#include <corlith/values/ArchiveConventions.h>
#include <corlith/values/HashIndex.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

// --- CStringEx ---------------------------------------------------------------------

unsigned int CStringEx::MakeHash() { return MakeHash(GetText().GetString()); }

unsigned int CStringEx::MakeHash(const char* psz) {
  std::uint32_t h = 5381;
  if (!psz) return h;
  for (; *psz; ++psz) {
    const auto extended =
        static_cast<std::uint32_t>(static_cast<std::int32_t>(static_cast<signed char>(*psz)));
    h = h * 33u + extended;
  }
  return h;
}

int CStringEx::IsStartWith(const CString& str) const {
  return GetText().view().starts_with(str.view()) ? 1 : 0;
}

int CStringEx::IsEndWith(const CString& str) const { return GetText().view().ends_with(str.view()) ? 1 : 0; }

void CStringEx::ReadFromTxtFile(const CString& strPath) {
  CStdioFile file;
  if (!file.Open(strPath, CFile::modeRead | CFile::typeText)) return;
  try {
    CString line;
    while (file.ReadString(line)) {
      GetText() += line;
      GetText() += "\r\n";
    }
  } catch (const CFileException&) {
    // The lines read so far stay; reading is as silent as opening.
  }
}

int CStringEx::DoesTargetStrMatchFilterStr(const CString& strTarget, const CString& strFilter) {
  return corlith::MatchFilterTerm(strTarget.view(), strFilter.view());
}

int CStringEx::DoesTargetStrMatchFilterStrCheckingCombination(const CString& strTarget,
                                                              const CString& strFilter) {
  return corlith::MatchFilterCombination(strTarget.view(), strFilter.view(), false);
}

int CStringEx::DoesTargetStrMatchFilterStrs(const CString& strTarget, const CStringArray& filters) {
  for (const CString& filter : filters) {
    if (corlith::MatchFilterCombination(strTarget.view(), filter.view(), false)) return 1;
  }
  return 0;
}

int CStringEx::DoesTargetStrMatchWithFilterStr(const CString& strTarget, const CString& strFilter) {
  return corlith::MatchRichFilterTerm(strTarget.view(), strFilter.view());
}

int CStringEx::DoesTargetStrMatchWithFilterStrCheckingCombination(const CString& strTarget,
                                                                  const CString& strFilter) {
  return corlith::MatchFilterCombination(strTarget.view(), strFilter.view(), true);
}

int CStringEx::DoesTargetStrMatchWithFilterStrs(const CString& strTarget, const CStringArray& filters) {
  for (const CString& filter : filters) {
    if (corlith::MatchFilterCombination(strTarget.view(), filter.view(), true)) return 1;
  }
  return 0;
}

// --- CStringExArray ----------------------------------------------------------------

CStringExArray& CStringExArray::operator=(const CStringArray& src) {
  Copy(src);
  return *this;
}

INT_PTR CStringExArray::Add(const CString& str) {
  CStringEx element(str);
  return Base::Add(element);
}

INT_PTR CStringExArray::Find(const CString& str) const { return Find(str, 0); }

INT_PTR CStringExArray::Find(const CString& str, int nStart) const {
  // A negative start is an index error, as element access would make it.
  if (nStart < 0) AfxThrowInvalidArgException();
  for (INT_PTR i = nStart; i < GetSize(); ++i) {
    if (GetAt(i).GetText() == str) return i;
  }
  return -1;
}

void CStringExArray::Sort(int /*nMode*/) { BasicSort(); }

void CStringExArray::BasicSort() {
  // The original exchanges i and j whenever i is greater; equal texts are identical, so
  // any correct sort by the same byte compare gives the same array, in n log n.
  std::sort(begin(), end(), [](const CStringEx& a, const CStringEx& b) { return a.GetText() < b.GetText(); });
}

int CStringExArray::CompareAndSwap(int i) {
  CStringEx& a = GetAt(i);
  CStringEx& b = GetAt(static_cast<INT_PTR>(i) + 1);
  if (a.GetText().CompareNoCase(b.GetText()) <= 0) return 0;
  std::swap(a, b);
  return 1;
}

void CStringExArray::Copy(const CStringArray& src) {
  RemoveAll();
  Preallocate(src.GetSize());
  for (const CString& s : src) Add(s);
}

void CStringExArray::CopyTo(CStringArray& dest) const {
  dest.RemoveAll();
  dest.Preallocate(GetSize());
  for (const CStringEx& s : *this) dest.Add(s.GetText());
}

void CStringExArray::ConvertCStringArrayToCStringExArray(CStringArray& src, CStringExArray& dest) {
  dest.Copy(src);
}

void CStringExArray::ConvertCStringExArrayToCStringArray(CStringExArray& src, CStringArray& dest) {
  src.CopyTo(dest);
}

CString CStringExArray::GetAllElementContents(const CString& strSeparator) const {
  CString result;
  for (INT_PTR i = 0; i < GetSize(); ++i) {
    if (i > 0) result += strSeparator;
    result += GetAt(i).GetText();
  }
  return result;
}

CString CStringExArray::GetAllElementContents_ElementDivision(const CString& strSeparator) const {
  CString result;
  for (INT_PTR i = 0; i < GetSize(); ++i) {
    if (i > 0) result += strSeparator;
    if (i > 0 && i % 5 == 0) result += '\n';
    result += GetAt(i).GetText();
  }
  return result;
}

void CStringExArray::SaveToASCII_in_ElementList(const CString& strPath) const {
  CLString(GetAllElementContents("\n")).SaveToASCII(strPath);
}

// --- CStringExSet ------------------------------------------------------------------

CStringExSet& CStringExSet::operator=(const CStringArray& src) {
  for (const CString& s : src) Add(s);
  return *this;
}

INT_PTR CStringExSet::Add(const CStringEx& str) { return Add(str.GetText()); }

INT_PTR CStringExSet::Add(const CString& str) {
  if (Find(str) != -1) return -1;
  const INT_PTR index = CStringExArray::Add(str);
  m_index.Appended(*this, index);
  return index;
}

int CStringExSet::operator==(const CStringExSet& other) const { return CStringExArray::operator==(other); }

void CStringExSet::Extract(const CStringExSet& other) {
  std::unordered_set<std::string_view> drop;
  for (const CStringEx& s : other) drop.insert(s.GetText().view());
  INT_PTR kept = 0;
  for (INT_PTR i = 0; i < GetSize(); ++i) {
    if (drop.count(GetAt(i).GetText().view()) == 0) {
      if (kept != i) GetAt(kept) = GetAt(i);
      ++kept;
    }
  }
  SetSize(kept);
}

// --- CStringArrayArray -------------------------------------------------------------

// The base would copy the row pointers; the copy is built row by row by operator=.
// NOLINTNEXTLINE(bugprone-copy-constructor-init)
CStringArrayArray::CStringArrayArray(const CStringArrayArray& other)
    : CExPtrArray<CStringArray*, CStringArray*>() {
  *this = other;
}

CStringArrayArray& CStringArrayArray::operator=(const CStringArrayArray& other) {
  if (this == &other) return *this;
  DeleteAll();
  for (const CStringArray* row : other) {
    auto copy = std::make_unique<CStringArray>();
    if (row) copy->Copy(*row);
    Add(copy.get());
    static_cast<void>(copy.release());  // the table owns it now
  }
  return *this;
}

namespace {

const CStringArray& RowOrEmpty(const CStringArray* row) {
  static const CStringArray kEmpty;
  return row ? *row : kEmpty;
}

bool SameRow(const CStringArray& a, const CStringArray& b) {
  return a.GetSize() == b.GetSize() && std::equal(a.begin(), a.end(), b.begin());
}

}  // namespace

int CStringArrayArray::operator==(const CStringArrayArray& other) const {
  if (this == &other) return 1;
  if (GetSize() != other.GetSize()) return 0;
  for (INT_PTR i = 0; i < GetSize(); ++i) {
    if (!SameRow(RowOrEmpty(GetAt(i)), RowOrEmpty(other.GetAt(i)))) return 0;
  }
  return 1;
}

INT_PTR CStringArrayArray::GetMaxColSize() const {
  INT_PTR most = 0;
  for (const CStringArray* row : *this) most = std::max(most, RowOrEmpty(row).GetSize());
  return most;
}

void CStringArrayArray::RemoveColumn(int c) {
  // A row without cell c is an index error (CInvalidArgException), as in the original.
  for (CStringArray* row : *this) {
    if (row) row->RemoveAt(c);
  }
}

void CStringArrayArray::SetDummyStringForSquareString() {
  const INT_PTR width = GetMaxColSize();
  for (CStringArray* row : *this) {
    while (row && row->GetSize() < width) row->Add("..");
  }
}

int CStringArrayArray::LoadToCSV_File(const CString& strPath) {
  if (strPath.IsEmpty()) return 0;
  CStdioFile file;
  if (!file.Open(strPath, CFile::modeRead | CFile::typeText)) return 0;
  int read = 0;
  try {
    CString line;
    CTokenizer tokenizer;
    const CString comma(",");
    while (file.ReadString(line)) {
      if (line.IsEmpty()) continue;
      auto row = std::make_unique<CStringArray>();
      tokenizer.GetTokenArray(*row, line, comma);
      Add(row.get());
      static_cast<void>(row.release());  // the table owns it now
      read = 1;
    }
  } catch (const CFileException&) {
    // A read error ends the table; the rows read so far stay.
  }
  return read;
}

void CStringArrayArray::SaveToCSV_File(const CString& strPath) const {
  CFile file;
  if (!file.Open(strPath, CFile::modeCreate | CFile::modeWrite | CFile::typeBinary)) return;
  // The original removes blanks and trims commas on the whole text at each row end;
  // earlier rows are already clean and end in "\r\n", so doing it to the row alone gives
  // the same text without re-scanning everything written before.
  std::string text;
  std::string row;
  for (INT_PTR r = 0; r < GetSize(); ++r) {
    row.clear();
    for (const CString& cell : RowOrEmpty(GetData()[r])) {
      if (cell.Find(',') >= 0) {
        row += '"';
        row += cell.view();
        row += '"';
      } else {
        row += cell.view();
      }
      row += ',';
    }
    std::erase(row, ' ');
    while (!row.empty() && row.back() == ',') row.pop_back();
    text += row;
    text += "\r\n";
  }
  try {
    file.Write(text.data(), static_cast<UINT>(text.size()));
    file.Close();
  } catch (const CFileException&) {
    // Saving reports nothing, as in the original.
  }
}

void CStringArrayArray::Serialize(CArchive& ar) {
  if (ar.IsStoring()) {
    corlith::StoreArrayHeader(ar, GetSize());
    for (CStringArray* row : *this) {
      CStringArray empty;
      corlith::SerializeValueArray(ar, row ? *row : empty);
    }
    return;
  }
  DeleteAll();
  ULONGLONG count = 0;
  if (!corlith::LoadArrayHeader(ar, count)) return;
  for (ULONGLONG i = 0; i < count; ++i) {
    auto row = std::make_unique<CStringArray>();
    corlith::SerializeValueArray(ar, *row);
    Add(row.get());
    static_cast<void>(row.release());  // the table owns it now
  }
}

// --- CStringArrayEx ----------------------------------------------------------------

void CStringArrayEx::RemoveDuplicatedElements() {
  corlith::RemoveLaterDuplicates(*this, [](const CString& s) { return s.view(); });
}

void CStringArrayEx::Serialize(CArchive& ar) { corlith::SerializeValueArray(ar, *this); }

// --- CStringSorter -----------------------------------------------------------------

int CStringSorter::CompareStringA(const CString& a, const CString& b) {
  return corlith::NaturalBefore(a.view(), b.view());
}

void CStringSorter::SortStringArray(CStringArray& array) {
  // The natural order is a strict weak order (NaturalOrder.h), and then the insertion
  // procedure, which puts each element before the first earlier one it sorts before, is
  // exactly a stable sort: the same array, in n log n. Views are sorted, not strings.
  const auto n = static_cast<std::size_t>(array.GetSize());
  if (n < 2) return;
  struct Entry {
    std::string_view text;
    std::size_t index;
  };
  std::vector<Entry> entries(n);
  const CString* texts = std::as_const(array).GetData();
  for (std::size_t i = 0; i < n; ++i) entries[i] = Entry{texts[i].view(), i};
  std::stable_sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) {
    return corlith::NaturalBefore(a.text, b.text) != 0;
  });
  CStringArray sorted;
  sorted.SetSize(static_cast<INT_PTR>(n));
  CString* out = sorted.GetData();
  CString* in = array.GetData();
  for (std::size_t i = 0; i < n; ++i) out[i] = std::move(in[entries[i].index]);
  array = std::move(sorted);
}
