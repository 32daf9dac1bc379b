// CLString, the library's serialisable 8-bit string with typed construction from numbers,
// numeric conversion, containment tests and the name-filter language; CLStringArray, the
// matching string array with existence tests, joining, splitting and de-duplication.
#pragma once

#include <corlith/framework/Archive.h>
#include <corlith/framework/Object.h>
#include <corlith/framework/String.h>
#include <corlith/framework/StringArray.h>
#include <corlith/framework/Types.h>

#include <string_view>

namespace corlith {

/// atoi with a defined result everywhere: C white space skipped, an optional sign, then
/// digits; 0 when nothing converts; a run beyond int's range saturates at INT_MAX/INT_MIN.
int SaturatingAtoi(std::string_view text);

/// The name-filter language on plain views (see CLString::IsSuitedForFilter).
int MatchNameFilter(std::string_view target, std::string_view filter);

}  // namespace corlith

namespace corlith {
/// n, or the length of the zero-terminated text when it is shorter (0 for null text).
template <typename CH>
int BoundedLength(const CH* text, int n) {
  if (!text || n <= 0) return 0;
  int length = 0;
  while (length < n && text[length] != CH()) ++length;
  return length;
}
}  // namespace corlith

class CLString : public CObject {
 public:
  CLString() = default;
  CLString(const CLString&) = default;
  CLString(const CString& str) : m_str(str) {}
  CLString(const char* psz) : m_str(psz) {}
  CLString(const unsigned char* psz) : m_str(psz) {}
  /// Wide text, converted to UTF-8.
  CLString(const wchar_t* psz) : m_str(psz) {}
  /// The first n characters, or fewer when the text ends first (a negative n gives an
  /// empty text): the original would read past a shorter text.
  CLString(const char* pch, int n) : m_str(pch, corlith::BoundedLength(pch, n)) {}
  CLString(const wchar_t* pch, int n) : m_str(pch, corlith::BoundedLength(pch, n)) {}
  /// c repeated n times.
  CLString(char c, int n) : m_str(c, n) {}
  /// "%d".
  CLString(const int& n);
  /// "%ld" of the value as the original's 32-bit signed long. deliberate: values above
  /// 2147483647 print negative (3000000000 gives -1294967296); bits above 32 are dropped.
  CLString(const unsigned long& n);
  /// "%.3g" of the value widened to double. deliberate: three significant digits only.
  CLString(const float& f);
  /// "%.3g". deliberate: three significant digits only (1234.5 gives 1.23e+03).
  CLString(const double& d);
  ~CLString() override = default;

  CLString& operator=(const CLString&) = default;
  CLString& operator=(const CString& str);
  CLString& operator=(const char* psz);
  CLString& operator=(const unsigned char* psz);
  CLString& operator=(const wchar_t* psz);
  CLString& operator=(const int& n);
  CLString& operator=(const unsigned long& n);
  CLString& operator=(const float& f);
  CLString& operator=(const double& d);

  /// The text itself.
  const CString& GetText() const { return m_str; }
  CString& GetText() { return m_str; }

  /// atoi of the text; a digit run beyond int's range saturates (see SaturatingAtoi).
  int ToInteger() const;
  /// atof of the text (0.0 when nothing converts).
  double ToDouble() const;
  operator int() const { return ToInteger(); }
  operator int() { return ToInteger(); }
  /// ToInteger() widened (a negative value wraps, as in the original).
  operator unsigned long() const { return static_cast<unsigned long>(ToInteger()); }
  operator unsigned long() { return static_cast<unsigned long>(ToInteger()); }
  operator float() const { return static_cast<float>(ToDouble()); }
  operator double() const { return ToDouble(); }

  /// Removes leading, then trailing C white space.
  void TrimLeftRight();
  /// 1 when str occurs in the text; with bCaseSensitive 0 both are upper-cased first.
  /// An empty str is always contained.
  int IsContain(const CString& str, const int& bCaseSensitive) const;
  /// 1 when every byte is '0'..'9' (also for an empty text); signs, blanks, points give 0.
  static int IsOnlyNumberString(CString& str);

  /// 1 when the target matches the name filter, case-sensitively. Markers: "[*]" at the
  /// start (ends with), at the end (starts with), at both (contains), none (equals; a
  /// "[*]" elsewhere is literal); "[Nd]" (d a digit count or "*") at the start or end of
  /// the remaining body stands for a digit run. Neither argument is changed.
  /// Throws CInvalidArgException where a rule reads a character that does not exist (the
  /// first or last of an empty text, the second-to-last of a shorter-than-two text).
  /// deliberate: several digit-run rules are irregular (C[N2][*] matches C; [*][N2]X
  /// tests the last two characters of X itself) and are kept as hosts rely on them.
  static int IsSuitedForFilter(CString& strTarget, CString& strFilter);
  /// Strips the "[*]" markers, picks the mode and calls IsSuitedForFilter_Sub_Filter.
  static int IsSuitedForFilter_Sub(CString& strTarget, CString& strFilter);
  /// Matches a body that may still hold a "[Nd]" marker; nMode is 0 equals, 1 starts
  /// with, -1 ends with, 2 contains; any other mode matches nothing.
  static int IsSuitedForFilter_Sub_Filter(CString& strTarget, CString& strFilter, int nMode);

  /// Writes the text as it stands (no line end) to the file, created or truncated; an
  /// open failure is silently ignored.
  void SaveToASCII(const CString& strPath) const;

  /// The 32-bit tag 1, then the text in the framework's string form. deliberate: loading
  /// a different tag reads nothing more and leaves the text as it was.
  void Serialize(CArchive& ar) override;

 private:
  CString m_str;
};

class CLStringArray : public CStringArray {
 public:
  CLStringArray() = default;
  CLStringArray(const CLStringArray& src) = default;
  CLStringArray(const CStringArray& src) : CStringArray(src) {}
  ~CLStringArray() override = default;
  CLStringArray& operator=(const CLStringArray& src);
  CLStringArray& operator=(const CStringArray& src);

  /// 1 when an element equals str exactly (case-sensitive).
  int Exists(const CString& str) const;
  /// Every element (in double quotes when bQuote is non-zero) followed by strSeparator,
  /// then trimmed on the right. deliberate: the trim takes strSeparator as a set of
  /// characters, so with ", " a last element "b " loses its blank too.
  CString GetAllElementContents(const CString& strSeparator, const int& bQuote) const;
  /// Replaces all elements by the tokens of strText split at any of strDelimiters (no
  /// empty elements).
  void SetElementContents(const CString& strText, const CString& strDelimiters);
  /// Keeps the first occurrence of every value, in order (case-sensitive).
  void RemoveDuplicateElements();
};
