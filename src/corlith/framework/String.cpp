#include <corlith/framework/String.h>

#include <corlith/framework/Ascii.h>
#include <corlith/framework/Object.h>
#include <corlith/framework/Utf.h>

#include <algorithm>
#include <cstring>
#include <locale>

namespace {

int Sign(int v) { return (v > 0) - (v < 0); }

std::string_view SafeView(const char* psz) { return psz ? std::string_view(psz) : std::string_view(); }

// Whether the UTF-8 character `ch` is one of the characters of `set`.
bool SetContains(std::string_view set, std::string_view ch) {
  for (std::size_t i = 0; i < set.size();) {
    const std::size_t n = corlith::Utf8CharLength(set, i);
    if (set.substr(i, n) == ch) return true;
    i += n;
  }
  return false;
}

// Length of the leading run of characters whose membership in `set` equals `inSet`.
std::size_t LeadingRun(std::string_view s, std::string_view set, bool inSet) {
  std::size_t i = 0;
  while (i < s.size()) {
    const std::size_t n = corlith::Utf8CharLength(s, i);
    if (SetContains(set, s.substr(i, n)) != inSet) break;
    i += n;
  }
  return i;
}

// Start of the trailing run of characters that are in `set`.
std::size_t TrailingRunStart(std::string_view s, std::string_view set) {
  std::size_t end = s.size();
  while (end > 0) {
    const std::size_t start = corlith::Utf8PreviousCharStart(s, end);
    if (!SetContains(set, s.substr(start, end - start))) break;
    end = start;
  }
  return end;
}

int Collation(std::string_view a, std::string_view b) {
  const auto& facet = std::use_facet<std::collate<char>>(std::locale());
  return Sign(facet.compare(a.data(), a.data() + a.size(), b.data(), b.data() + b.size()));
}

int ClampCount(int n) { return n < 0 ? 0 : n; }

}  // namespace

CString::CString(const char* pch, int nLength) {
  if (pch && nLength > 0) m_str.assign(pch, static_cast<std::size_t>(nLength));
}

CString::CString(char ch, int nRepeat) {
  if (nRepeat > 0) m_str.assign(static_cast<std::size_t>(nRepeat), ch);
}

CString::CString(const wchar_t* psz) {
  if (psz) m_str = corlith::WideToUtf8(psz);
}

CString::CString(const wchar_t* pch, int nLength) {
  if (pch && nLength > 0)
    m_str = corlith::WideToUtf8(std::wstring_view(pch, static_cast<std::size_t>(nLength)));
}

CString& CString::operator=(const char* psz) {
  m_str.assign(SafeView(psz));
  return *this;
}

CString& CString::operator=(char ch) {
  m_str.assign(1, ch);
  return *this;
}

CString& CString::operator=(const wchar_t* psz) {
  m_str = psz ? corlith::WideToUtf8(psz) : std::string();
  return *this;
}

char CString::GetAt(int i) const {
  if (i < 0 || i > GetLength()) AfxThrowInvalidArgException();
  return m_str.c_str()[i];
}

void CString::SetAt(int i, char ch) {
  if (i < 0 || i >= GetLength()) AfxThrowInvalidArgException();
  m_str[static_cast<std::size_t>(i)] = ch;
}

char* CString::GetBuffer(int nMinBufLength) {
  if (nMinBufLength > GetLength()) m_str.resize(static_cast<std::size_t>(nMinBufLength));
  return m_str.data();
}

char* CString::GetBufferSetLength(int nLength) {
  m_str.resize(static_cast<std::size_t>(ClampCount(nLength)));
  return m_str.data();
}

void CString::ReleaseBuffer(int nNewLength) {
  if (nNewLength < 0) {
    m_str.resize(std::strlen(m_str.c_str()));
  } else {
    m_str.resize(std::min(static_cast<std::size_t>(nNewLength), m_str.size()));
  }
}

void CString::Preallocate(int nLength) { m_str.reserve(static_cast<std::size_t>(ClampCount(nLength))); }

void CString::Truncate(int nNewLength) {
  if (nNewLength < 0 || nNewLength > GetLength()) AfxThrowInvalidArgException();
  m_str.resize(static_cast<std::size_t>(nNewLength));
}

CString& CString::Append(const CString& s) {
  m_str.append(s.m_str);
  return *this;
}

CString& CString::Append(const char* psz) {
  m_str.append(SafeView(psz));
  return *this;
}

CString& CString::Append(const char* pch, int nLength) {
  if (pch && nLength > 0) m_str.append(pch, static_cast<std::size_t>(nLength));
  return *this;
}

CString& CString::AppendChar(char ch) {
  m_str.push_back(ch);
  return *this;
}

CString operator+(const CString& a, const CString& b) { return CString(a.m_str + b.m_str); }
CString operator+(const CString& a, const char* b) { return CString(a.m_str + std::string(SafeView(b))); }
CString operator+(const char* a, const CString& b) { return CString(std::string(SafeView(a)) + b.m_str); }
CString operator+(const CString& a, char b) { return CString(a.m_str + b); }
CString operator+(char a, const CString& b) { return CString(a + b.m_str); }

int CString::Compare(const char* psz) const { return Sign(view().compare(SafeView(psz))); }

int CString::CompareNoCase(const char* psz) const {
  return Sign(corlith::ascii::LowerCopy(m_str).compare(corlith::ascii::LowerCopy(SafeView(psz))));
}

int CString::Collate(const char* psz) const { return Collation(m_str, SafeView(psz)); }

int CString::CollateNoCase(const char* psz) const {
  return Collation(corlith::ascii::LowerCopy(m_str), corlith::ascii::LowerCopy(SafeView(psz)));
}

int CString::Find(char ch, int nStart) const {
  if (nStart < 0 || nStart >= GetLength()) return -1;
  const auto pos = m_str.find(ch, static_cast<std::size_t>(nStart));
  return pos == std::string::npos ? -1 : static_cast<int>(pos);
}

int CString::Find(const char* psz, int nStart) const {
  if (nStart < 0 || nStart > GetLength()) return -1;
  const auto pos = m_str.find(SafeView(psz), static_cast<std::size_t>(nStart));
  return pos == std::string::npos ? -1 : static_cast<int>(pos);
}

int CString::ReverseFind(char ch) const {
  const auto pos = m_str.rfind(ch);
  return pos == std::string::npos ? -1 : static_cast<int>(pos);
}

int CString::FindOneOf(const char* pszCharSet) const {
  const std::size_t run = LeadingRun(m_str, SafeView(pszCharSet), false);
  return run == m_str.size() ? -1 : static_cast<int>(run);
}

CString CString::Mid(int nFirst) const { return Mid(nFirst, GetLength()); }

CString CString::Mid(int nFirst, int nCount) const {
  nFirst = ClampCount(nFirst);
  nCount = ClampCount(nCount);
  if (nFirst >= GetLength()) return CString();
  nCount = std::min(nCount, GetLength() - nFirst);
  return CString(m_str.substr(static_cast<std::size_t>(nFirst), static_cast<std::size_t>(nCount)));
}

CString CString::Left(int nCount) const { return Mid(0, nCount); }

CString CString::Right(int nCount) const {
  nCount = std::min(ClampCount(nCount), GetLength());
  return Mid(GetLength() - nCount, nCount);
}

CString CString::SpanIncluding(const char* pszCharSet) const {
  return CString(m_str.substr(0, LeadingRun(m_str, SafeView(pszCharSet), true)));
}

CString CString::SpanExcluding(const char* pszCharSet) const {
  return CString(m_str.substr(0, LeadingRun(m_str, SafeView(pszCharSet), false)));
}

CString CString::Tokenize(const char* pszTokens, int& iStart) const {
  if (iStart < 0 || iStart >= GetLength()) {
    iStart = -1;
    return CString();
  }
  const std::string_view set = SafeView(pszTokens);
  const std::string_view rest = view().substr(static_cast<std::size_t>(iStart));
  const std::size_t skipped = LeadingRun(rest, set, true);
  if (skipped == rest.size()) {
    iStart = -1;
    return CString();
  }
  const std::size_t length = LeadingRun(rest.substr(skipped), set, false);
  CString token(std::string(rest.substr(skipped, length)));
  std::size_t next = static_cast<std::size_t>(iStart) + skipped + length;
  // Step over the delimiter that ended the token, as the original does.
  if (next < m_str.size()) next += corlith::Utf8CharLength(m_str, next);
  iStart = static_cast<int>(next);
  return token;
}

CString& CString::MakeUpper() {
  for (char& c : m_str) c = corlith::ascii::ToUpper(c);
  return *this;
}

CString& CString::MakeLower() {
  for (char& c : m_str) c = corlith::ascii::ToLower(c);
  return *this;
}

CString& CString::MakeReverse() {
  std::string out;
  out.reserve(m_str.size());
  for (std::size_t end = m_str.size(); end > 0;) {
    const std::size_t start = corlith::Utf8PreviousCharStart(m_str, end);
    out.append(m_str, start, end - start);
    end = start;
  }
  m_str = std::move(out);
  return *this;
}

CString& CString::Trim() { return TrimRight().TrimLeft(); }
CString& CString::Trim(char chTarget) { return TrimRight(chTarget).TrimLeft(chTarget); }
CString& CString::Trim(const char* pszTargets) { return TrimRight(pszTargets).TrimLeft(pszTargets); }

CString& CString::TrimLeft() {
  const auto it = std::find_if_not(m_str.begin(), m_str.end(), corlith::ascii::IsSpace);
  m_str.erase(m_str.begin(), it);
  return *this;
}

CString& CString::TrimLeft(char chTarget) {
  m_str.erase(0, m_str.find_first_not_of(chTarget));
  return *this;
}

CString& CString::TrimLeft(const char* pszTargets) {
  m_str.erase(0, LeadingRun(m_str, SafeView(pszTargets), true));
  return *this;
}

CString& CString::TrimRight() {
  const auto it = std::find_if_not(m_str.rbegin(), m_str.rend(), corlith::ascii::IsSpace);
  m_str.erase(it.base(), m_str.end());
  return *this;
}

CString& CString::TrimRight(char chTarget) {
  const auto pos = m_str.find_last_not_of(chTarget);
  m_str.erase(pos == std::string::npos ? 0 : pos + 1);
  return *this;
}

CString& CString::TrimRight(const char* pszTargets) {
  m_str.erase(TrailingRunStart(m_str, SafeView(pszTargets)));
  return *this;
}

int CString::Replace(char chOld, char chNew) {
  int count = 0;
  for (char& c : m_str) {
    if (c == chOld) {
      c = chNew;
      ++count;
    }
  }
  return count;
}

int CString::Replace(const char* pszOld, const char* pszNew) {
  const std::string_view from = SafeView(pszOld);
  if (from.empty()) return 0;
  const std::string_view to = SafeView(pszNew);
  std::string out;
  int count = 0;
  std::size_t pos = 0;
  for (std::size_t hit; (hit = m_str.find(from, pos)) != std::string::npos; pos = hit + from.size()) {
    out.append(m_str, pos, hit - pos).append(to);
    ++count;
  }
  if (count > 0) {
    out.append(m_str, pos);
    m_str = std::move(out);
  }
  return count;
}

int CString::Remove(char ch) {
  const auto it = std::remove(m_str.begin(), m_str.end(), ch);
  const auto count = static_cast<int>(m_str.end() - it);
  m_str.erase(it, m_str.end());
  return count;
}

int CString::Insert(int nIndex, char ch) {
  nIndex = std::clamp(nIndex, 0, GetLength());
  m_str.insert(static_cast<std::size_t>(nIndex), 1, ch);
  return GetLength();
}

int CString::Insert(int nIndex, const char* psz) {
  nIndex = std::clamp(nIndex, 0, GetLength());
  m_str.insert(static_cast<std::size_t>(nIndex), SafeView(psz));
  return GetLength();
}

int CString::Delete(int nIndex, int nCount) {
  nIndex = ClampCount(nIndex);
  if (nIndex < GetLength() && nCount > 0) {
    m_str.erase(static_cast<std::size_t>(nIndex), static_cast<std::size_t>(nCount));
  }
  return GetLength();
}

void CString::FormatV(const char* pszFormat, std::span<const corlith::FormatArg> args) {
  m_str = corlith::FormatV(SafeView(pszFormat), args);
}

void CString::AppendFormatV(const char* pszFormat, std::span<const corlith::FormatArg> args) {
  // Not formatted in place: the format or an argument may be this string's own text, which
  // growing the buffer would move from under the formatter.
  m_str += corlith::FormatV(SafeView(pszFormat), args);
}

int CString::StringLength(const char* psz) { return psz ? static_cast<int>(std::strlen(psz)) : 0; }
