// The second string family: CStringEx (CLString with a hash, prefix and suffix tests,
// text-file reading and the pattern filters), its arrays and set, CStringArrayArray (a
// table of string rows with a simple CSV form), CStringArrayEx and CStringSorter (the
// natural order of NaturalOrder.h and a stable sort by it).
#pragma once

#include <corlith/framework/Archive.h>
#include <corlith/framework/StringArray.h>
#include <corlith/text/LString.h>
#include <corlith/values/ExPtrArray.h>
#include <corlith/values/HashIndex.h>

#include <cstddef>
#include <functional>
#include <string_view>

class CStringEx : public CLString {
 public:
  using CLString::CLString;
  CStringEx() = default;
  CStringEx(const CStringEx&) = default;
  CStringEx(const CLString& str) : CLString(str) {}
  ~CStringEx() override = default;

  CStringEx& operator=(const CStringEx&) = default;
  template <class T>
  requires requires(CLString& s, const T& v) { s = v; }
  CStringEx& operator=(const T& value) {
    CLString::operator=(value);
    return *this;
  }

  /// Equal texts (case-sensitive).
  int operator==(const CStringEx& other) const { return GetText() == other.GetText() ? 1 : 0; }
  int operator!=(const CStringEx& other) const { return GetText() == other.GetText() ? 0 : 1; }

  /// h = h * 33 + c from 5381, 32-bit wrap-around. deliberate: each byte is sign-extended
  /// first, so bytes of 128 and above subtract (stored hashes depend on it).
  unsigned int MakeHash();
  /// The same hash of a zero-terminated text; a null pointer hashes like the empty text.
  static unsigned int MakeHash(const char* psz);
  /// 1 when the text begins with str (always for an empty str).
  int IsStartWith(const CString& str) const;
  /// 1 when the text ends with str exactly; 0 when str is longer than the text.
  int IsEndWith(const CString& str) const;
  /// Appends every line of the text file, each followed by "\r\n", to the text (which is
  /// not emptied first); nothing happens when the file cannot be opened.
  void ReadFromTxtFile(const CString& strPath);

  /// The simple term of StringFilter.h: "*", "?" (one non-digit), "#" (one digit),
  /// literals; case-sensitive.
  static int DoesTargetStrMatchFilterStr(const CString& strTarget, const CString& strFilter);
  /// Bracketed simple terms joined by "&", "," and "~", strictly left to right.
  static int DoesTargetStrMatchFilterStrCheckingCombination(const CString& strTarget,
                                                            const CString& strFilter);
  /// 1 when any filter matches by the combination rule; 0 for an empty array.
  static int DoesTargetStrMatchFilterStrs(const CString& strTarget, const CStringArray& filters);
  /// The rich term: case-insensitive, "'" escape, one "<m..n>" range (StringFilter.h).
  static int DoesTargetStrMatchWithFilterStr(const CString& strTarget, const CString& strFilter);
  /// The combination rule over rich terms.
  static int DoesTargetStrMatchWithFilterStrCheckingCombination(const CString& strTarget,
                                                                const CString& strFilter);
  /// 1 when any filter matches by the rich combination rule; 0 for an empty array.
  static int DoesTargetStrMatchWithFilterStrs(const CString& strTarget, const CStringArray& filters);
};

class CStringExArray : public corlith::ValueArray<CStringExArray, CStringEx> {
  using Base = corlith::ValueArray<CStringExArray, CStringEx>;

 public:
  CStringExArray() = default;
  CStringExArray(const CStringExArray&) = default;
  ~CStringExArray() override = default;
  CStringExArray& operator=(const CStringExArray&) = default;
  CStringExArray& operator=(const CStringArray& src);

  using Base::Add;
  /// Appends the text; returns the new element's index.
  INT_PTR Add(const CString& str);
  /// First index equal to str (case-sensitive), or -1.
  INT_PTR Find(const CString& str) const;
  /// As Find, from nStart; -1 when nStart is at or past the end (a negative start is 0).
  INT_PTR Find(const CString& str, int nStart) const;
  int DoesExist(const CString& str) const { return Find(str) != -1 ? 1 : 0; }
  /// deliberate: the argument is ignored; always BasicSort's case-sensitive order.
  void Sort(int nMode);
  /// Ascending byte order (case-sensitive).
  void BasicSort();
  /// Exchanges elements i and i+1 when i is greater, case-insensitively, and returns 1.
  /// deliberate: case-insensitive although BasicSort is not. Throws CInvalidArgException
  /// when i or i+1 is out of range.
  int CompareAndSwap(int i);

  using Base::Copy;
  void Copy(const CStringArray& src);
  void CopyTo(CStringArray& dest) const;
  static void ConvertCStringArrayToCStringExArray(CStringArray& src, CStringExArray& dest);
  static void ConvertCStringExArrayToCStringArray(CStringExArray& src, CStringArray& dest);

  /// The texts joined with strSeparator between them.
  CString GetAllElementContents(const CString& strSeparator) const;
  /// As GetAllElementContents, with "\n" before each element whose index is a non-zero
  /// multiple of 5 (five elements per line).
  CString GetAllElementContents_ElementDivision(const CString& strSeparator) const;
  /// The texts joined with "\n" (none after the last), written by SaveToASCII.
  void SaveToASCII_in_ElementList(const CString& strPath) const;
};

class CStringExArrayArray : public corlith::ValueArray<CStringExArrayArray, CStringExArray> {
 public:
  ~CStringExArrayArray() override = default;
};

namespace corlith::detail {

/// How the set's index hashes and compares its texts.
struct StringExIndexTraits {
  static std::size_t Hash(const CStringEx& s) { return std::hash<std::string_view>{}(s.GetText().view()); }
  static std::size_t Hash(const CString& s) { return std::hash<std::string_view>{}(s.view()); }
  static bool Equal(const CStringEx& element, const CString& key) { return element.GetText() == key; }
  static bool Equal(const CStringEx& element, const CStringEx& key) {
    return element.GetText() == key.GetText();
  }
};

}  // namespace corlith::detail

/// A CStringExArray without two equal texts (case-sensitive). A hash index beside the
/// elements makes Add, Find and DoesExist O(1) in expectation; it follows every change
/// of the array, through inherited members and archive loads too (see HashIndex.h for its
/// one limit). Like the rest of the library, one object is for one thread at a time,
/// const members included (a look-up may rebuild the index).
class CStringExSet : public CStringExArray {
 public:
  CStringExSet() = default;
  CStringExSet(const CStringExSet&) = default;
  ~CStringExSet() override = default;
  CStringExSet& operator=(const CStringExSet&) = default;
  /// Adds every element through Add. deliberate: the set is not emptied first.
  CStringExSet& operator=(const CStringArray& src);

  /// Appends when no equal element exists; the new index, or -1 when one does.
  INT_PTR Add(const CStringEx& str);
  INT_PTR Add(const CString& str);
  INT_PTR Add(const char* psz) { return Add(CString(psz)); }
  /// First index equal to str, or -1 (through the index).
  INT_PTR Find(const CString& str) const { return m_index.Find(*this, str); }
  /// As CStringExArray::Find from nStart (a scan).
  INT_PTR Find(const CString& str, int nStart) const { return CStringExArray::Find(str, nStart); }
  int DoesExist(const CString& str) const { return Find(str) != -1 ? 1 : 0; }
  /// 1 for the same object or the same texts in the same order.
  int operator==(const CStringExSet& other) const;
  /// Removes every element that also occurs in other (set difference).
  void Extract(const CStringExSet& other);

 private:
  mutable corlith::HashIndex<CStringExArray, corlith::detail::StringExIndexTraits> m_index;
};

/// A table: owned rows of cells, rows of unequal length allowed.
class CStringArrayArray : public CExPtrArray<CStringArray*, CStringArray*> {
 public:
  CStringArrayArray() = default;
  CStringArrayArray(const CStringArrayArray& other);
  CStringArrayArray& operator=(const CStringArrayArray& other);
  ~CStringArrayArray() override { DeleteAll(); }

  /// The same row count and every row equal cell by cell.
  int operator==(const CStringArrayArray& other) const;
  int operator!=(const CStringArrayArray& other) const { return *this == other ? 0 : 1; }
  /// The greatest row length (0 for no rows).
  INT_PTR GetMaxColSize() const;
  /// Removes cell c from every row that has one.
  void RemoveColumn(int c);
  /// Pads every shorter row with ".." cells up to the greatest row length.
  void SetDummyStringForSquareString();
  /// Appends one row per non-empty line, split at "," with runs of commas collapsed.
  /// deliberate: quotes are not understood ("x,y" in quotes loads as two cells). 1 when
  /// at least one row was read; 0 for an empty path or a file that cannot be opened.
  int LoadToCSV_File(const CString& strPath);
  /// Each cell followed by "," (cells holding a comma in double quotes), then per row:
  /// blanks removed, trailing commas trimmed, "\r\n". deliberate: blanks inside cells and
  /// empty cells at a row's end are lost. An open failure is silent.
  void SaveToCSV_File(const CString& strPath) const;

  /// Header 0x80000001, the row count, then each row in the value-array form.
  void Serialize(CArchive& ar) override;
};

/// A serialisable string array (value-array form) with duplicate removal.
class CStringArrayEx : public CStringArray {
 public:
  ~CStringArrayEx() override = default;
  /// Keeps the first occurrence of every text, in order (case-sensitive).
  void RemoveDuplicatedElements();
  void Serialize(CArchive& ar) override;
};

class CStringSorter {
 public:
  virtual ~CStringSorter() = default;
  /// 1 when a sorts before b in the natural order (see NaturalOrder.h for its quirks).
  static int CompareStringA(const CString& a, const CString& b);
  /// 1 for "0" to "9".
  static int IsNum(char c) { return c >= '0' && c <= '9' ? 1 : 0; }
  /// The order of the insertion procedure (each element moves before the first earlier
  /// element it sorts before; equal elements keep their order), computed as the stable
  /// sort it amounts to: n log n comparisons.
  static void SortStringArray(CStringArray& array);
};
