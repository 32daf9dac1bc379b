// CString: the framework's 8-bit string. Our 8-bit text is UTF-8: case changes and
// case-insensitive compares touch ASCII letters only, and the character-set members
// (Trim with a set, FindOneOf, Span*, Tokenize, MakeReverse) work on whole UTF-8
// characters, so a multi-byte character is never split. Lengths and indexes are byte
// counts, as in the original's multibyte build. Embedded zero bytes are kept.
#pragma once

#include <corlith/framework/Format.h>
#include <corlith/framework/Types.h>

#include <compare>
#include <concepts>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

class CString {
 public:
  CString() = default;
  CString(const CString&) = default;
  CString(CString&&) noexcept = default;
  CString(const char* psz) : m_str(psz ? psz : "") {}
  CString(const unsigned char* psz) : CString(reinterpret_cast<const char*>(psz)) {}
  /// The first nLength bytes of pch (a negative length counts as 0).
  CString(const char* pch, int nLength);
  /// ch repeated nRepeat times (a negative count gives an empty string).
  CString(char ch, int nRepeat = 1);
  /// Wide text, converted to UTF-8 (UTF-16 or UTF-32 by the platform's wchar_t).
  CString(const wchar_t* psz);
  CString(const wchar_t* pch, int nLength);
  CString(std::string s) : m_str(std::move(s)) {}
  explicit CString(std::string_view s) : m_str(s) {}
  ~CString() = default;

  CString& operator=(const CString&) = default;
  CString& operator=(CString&&) noexcept = default;
  CString& operator=(const char* psz);
  CString& operator=(const unsigned char* psz) { return *this = reinterpret_cast<const char*>(psz); }
  CString& operator=(char ch);
  CString& operator=(const wchar_t* psz);

  // --- Size and access -------------------------------------------------------
  int GetLength() const { return static_cast<int>(m_str.size()); }
  BOOL IsEmpty() const { return m_str.empty(); }
  void Empty() { m_str.clear(); }
  /// 0 <= i <= length; i == length gives the terminating zero. Otherwise throws
  /// CInvalidArgException.
  char GetAt(int i) const;
  /// 0 <= i < length, otherwise throws CInvalidArgException.
  void SetAt(int i, char ch);
  template <std::integral I>
  char operator[](I i) const {
    return GetAt(CheckedIndex(i));
  }
  const char* GetString() const { return m_str.c_str(); }
  operator const char*() const { return m_str.c_str(); }
  const std::string& str() const { return m_str; }
  std::string_view view() const { return m_str; }

  /// Writable buffer of at least nMinBufLength bytes (the text grows with zero bytes);
  /// call ReleaseBuffer after writing.
  char* GetBuffer(int nMinBufLength = 0);
  /// Sets the length to exactly nLength bytes and returns the buffer.
  char* GetBufferSetLength(int nLength);
  /// Ends a GetBuffer: the new length is nNewLength, or up to the first zero byte when -1.
  void ReleaseBuffer(int nNewLength = -1);
  void Preallocate(int nLength);
  void FreeExtra() { m_str.shrink_to_fit(); }
  void Truncate(int nNewLength);

  // --- Concatenation ---------------------------------------------------------
  CString& operator+=(const CString& s) { return Append(s); }
  CString& operator+=(const char* psz) { return Append(psz); }
  CString& operator+=(char ch) { return AppendChar(ch); }
  CString& Append(const CString& s);
  CString& Append(const char* psz);
  /// Appends the first nLength bytes of pch (clamped to 0).
  CString& Append(const char* pch, int nLength);
  CString& AppendChar(char ch);

  friend CString operator+(const CString& a, const CString& b);
  friend CString operator+(const CString& a, const char* b);
  friend CString operator+(const char* a, const CString& b);
  friend CString operator+(const CString& a, char b);
  friend CString operator+(char a, const CString& b);

  // --- Comparison ------------------------------------------------------------
  /// Byte order: <0, 0, >0 (always -1, 0 or 1).
  int Compare(const char* psz) const;
  /// Both sides with ASCII letters lower-cased, then byte order.
  int CompareNoCase(const char* psz) const;
  /// Collation of the current global C++ locale.
  int Collate(const char* psz) const;
  /// ASCII-lower-cased copies compared by the global locale's collation.
  int CollateNoCase(const char* psz) const;

  friend bool operator==(const CString& a, const CString& b) { return a.m_str == b.m_str; }
  friend bool operator==(const CString& a, const char* b) { return a.m_str == (b ? b : ""); }
  friend std::strong_ordering operator<=>(const CString& a, const CString& b) { return a.m_str <=> b.m_str; }
  friend std::strong_ordering operator<=>(const CString& a, const char* b) {
    return a.m_str.compare(b ? b : "") <=> 0;
  }

  // --- Search ----------------------------------------------------------------
  /// First index of ch at or after nStart; -1 when not found or nStart < 0 or
  /// nStart >= length.
  int Find(char ch, int nStart = 0) const;
  /// First index of psz at or after nStart; -1 when not found or nStart < 0 or
  /// nStart > length (nStart == length is allowed).
  int Find(const char* psz, int nStart = 0) const;
  /// Last index of ch, -1 when absent.
  int ReverseFind(char ch) const;
  /// First index of any character of the set, -1 when none.
  int FindOneOf(const char* pszCharSet) const;

  // --- Extraction (all clamp silently) ---------------------------------------
  CString Mid(int nFirst) const;
  CString Mid(int nFirst, int nCount) const;
  CString Left(int nCount) const;
  CString Right(int nCount) const;
  /// The leading run of characters that are in the set.
  CString SpanIncluding(const char* pszCharSet) const;
  /// The leading run of characters that are not in the set.
  CString SpanExcluding(const char* pszCharSet) const;
  /// Next token after iStart, skipping leading delimiters; iStart becomes the index
  /// after the token's delimiter, or -1 (with an empty result) when none is left.
  CString Tokenize(const char* pszTokens, int& iStart) const;

  // --- Editing ---------------------------------------------------------------
  CString& MakeUpper();
  CString& MakeLower();
  /// Reverses the characters (a multi-byte character keeps its bytes in order).
  CString& MakeReverse();
  /// Removes white space (bytes 0x09-0x0D and 0x20) right, then left.
  CString& Trim();
  CString& Trim(char chTarget);
  CString& Trim(const char* pszTargets);
  CString& TrimLeft();
  CString& TrimLeft(char chTarget);
  CString& TrimLeft(const char* pszTargets);
  CString& TrimRight();
  CString& TrimRight(char chTarget);
  CString& TrimRight(const char* pszTargets);
  /// Replaces every chOld by chNew; returns the count.
  int Replace(char chOld, char chNew);
  /// Replaces every non-overlapping occurrence, left to right; returns the count (0 for an
  /// empty or null search text).
  int Replace(const char* pszOld, const char* pszNew);
  /// Removes every ch; returns the count removed.
  int Remove(char ch);
  /// Inserts at nIndex (clamped to 0..length); returns the new length.
  int Insert(int nIndex, char ch);
  int Insert(int nIndex, const char* psz);
  /// Deletes nCount bytes from nIndex (both clamped); returns the new length.
  int Delete(int nIndex, int nCount = 1);

  // --- Formatting (bounded: see corlith/framework/Format.h) --------------------
  /// Replaces the text by the formatted one. The text is built apart and then stored, so
  /// this string may itself be the format or one of the arguments.
  template <typename... Args>
  void Format(const char* pszFormat, const Args&... args) {
    const corlith::FormatArg list[sizeof...(Args) + 1] = {corlith::FormatArg(args)..., corlith::FormatArg(0)};
    FormatV(pszFormat, std::span<const corlith::FormatArg>(list, sizeof...(Args)));
  }
  /// Appends the formatted text; this string may be the format or an argument here too.
  template <typename... Args>
  void AppendFormat(const char* pszFormat, const Args&... args) {
    const corlith::FormatArg list[sizeof...(Args) + 1] = {corlith::FormatArg(args)..., corlith::FormatArg(0)};
    AppendFormatV(pszFormat, std::span<const corlith::FormatArg>(list, sizeof...(Args)));
  }
  void FormatV(const char* pszFormat, std::span<const corlith::FormatArg> args);
  void AppendFormatV(const char* pszFormat, std::span<const corlith::FormatArg> args);

  static int StringLength(const char* psz);

 private:
  template <std::integral I>
  static int CheckedIndex(I i) {
    if (i < 0 || static_cast<unsigned long long>(i) > 0x7FFFFFFFull) return -1;
    return static_cast<int>(i);
  }

  std::string m_str;
};

template <>
struct std::hash<CString> {
  std::size_t operator()(const CString& s) const noexcept { return std::hash<std::string_view>()(s.view()); }
};
