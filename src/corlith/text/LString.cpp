#include <corlith/framework/Exceptions.h>
#include <corlith/framework/StdioFile.h>
#include <corlith/text/LString.h>
#include <corlith/text/Tokenizer.h>
#include <corlith/values/HashIndex.h>

#include <climits>
#include <cstdint>
#include <cstdlib>

namespace corlith {

int SaturatingAtoi(std::string_view text) {
  std::size_t i = 0;
  while (i < text.size() && (text[i] == ' ' || (text[i] >= '\t' && text[i] <= '\r'))) ++i;
  bool negative = false;
  if (i < text.size() && (text[i] == '+' || text[i] == '-')) negative = text[i++] == '-';
  // Accumulate the magnitude in 64 bits and stop growing once it is past int's range, so
  // any length of digit run has a defined result.
  std::int64_t magnitude = 0;
  constexpr std::int64_t kCap = std::int64_t{INT_MAX} + 1;
  for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i) {
    if (magnitude < kCap) magnitude = magnitude * 10 + (text[i] - '0');
  }
  if (negative) return magnitude >= kCap ? INT_MIN : static_cast<int>(-magnitude);
  return magnitude > INT_MAX ? INT_MAX : static_cast<int>(magnitude);
}

}  // namespace corlith

namespace {

CString FormatInt(int n) {
  CString s;
  s.Format("%d", n);
  return s;
}

CString FormatUnsignedLong(unsigned long n) {
  // The original's long is 32 bits wide; reproduce its signed reading of the value.
  const auto low = static_cast<std::uint32_t>(n);
  CString s;
  s.Format("%ld", static_cast<long>(static_cast<std::int32_t>(low)));
  return s;
}

CString FormatDouble(double d) {
  CString s;
  s.Format("%.3g", d);
  return s;
}

}  // namespace

CLString::CLString(const int& n) : m_str(FormatInt(n)) {}
CLString::CLString(const unsigned long& n) : m_str(FormatUnsignedLong(n)) {}
CLString::CLString(const float& f) : m_str(FormatDouble(static_cast<double>(f))) {}
CLString::CLString(const double& d) : m_str(FormatDouble(d)) {}

CLString& CLString::operator=(const CString& str) {
  m_str = str;
  return *this;
}
CLString& CLString::operator=(const char* psz) {
  m_str = psz;
  return *this;
}
CLString& CLString::operator=(const unsigned char* psz) {
  m_str = psz;
  return *this;
}
CLString& CLString::operator=(const wchar_t* psz) {
  m_str = psz;
  return *this;
}
CLString& CLString::operator=(const int& n) {
  m_str = FormatInt(n);
  return *this;
}
CLString& CLString::operator=(const unsigned long& n) {
  m_str = FormatUnsignedLong(n);
  return *this;
}
CLString& CLString::operator=(const float& f) {
  m_str = FormatDouble(static_cast<double>(f));
  return *this;
}
CLString& CLString::operator=(const double& d) {
  m_str = FormatDouble(d);
  return *this;
}

int CLString::ToInteger() const { return corlith::SaturatingAtoi(m_str.view()); }

double CLString::ToDouble() const { return std::atof(m_str.GetString()); }

void CLString::TrimLeftRight() {
  m_str.TrimLeft();
  m_str.TrimRight();
}

int CLString::IsContain(const CString& str, const int& bCaseSensitive) const {
  if (bCaseSensitive) return m_str.Find(str) >= 0 ? 1 : 0;
  CString text(m_str);
  CString wanted(str);
  text.MakeUpper();
  wanted.MakeUpper();
  return text.Find(wanted) >= 0 ? 1 : 0;
}

int CLString::IsOnlyNumberString(CString& str) {
  for (const char ch : str.view()) {
    if (ch < '0' || ch > '9') return 0;
  }
  return 1;
}

void CLString::SaveToASCII(const CString& strPath) const {
  CStdioFile file;
  if (!file.Open(strPath, CFile::modeCreate | CFile::modeWrite | CFile::typeText)) return;
  try {
    file.WriteString(m_str);
    file.Close();
  } catch (const CFileException&) {
    // Saving is best effort: a write failure is as silent as an open failure.
  }
}

void CLString::Serialize(CArchive& ar) {
  if (ar.IsStoring()) {
    ar << 1;
    ar << m_str;
  } else {
    int tag = 0;
    ar >> tag;
    if (tag == 1) ar >> m_str;
  }
}

// --- CLStringArray -----------------------------------------------------------------

CLStringArray& CLStringArray::operator=(const CLStringArray& src) {
  Copy(src);
  return *this;
}

CLStringArray& CLStringArray::operator=(const CStringArray& src) {
  Copy(src);
  return *this;
}

int CLStringArray::Exists(const CString& str) const {
  for (INT_PTR i = 0; i < GetSize(); ++i) {
    if (GetAt(i) == str) return 1;
  }
  return 0;
}

CString CLStringArray::GetAllElementContents(const CString& strSeparator, const int& bQuote) const {
  CString result;
  for (INT_PTR i = 0; i < GetSize(); ++i) {
    if (bQuote) {
      result += '"';
      result += GetAt(i);
      result += '"';
    } else {
      result += GetAt(i);
    }
    result += strSeparator;
  }
  if (!strSeparator.IsEmpty()) result.TrimRight(strSeparator.GetString());
  return result;
}

void CLStringArray::SetElementContents(const CString& strText, const CString& strDelimiters) {
  CStringArray tokens;
  CLTokenizer tokenizer;
  tokenizer.GetTokenArray(tokens, strText, strDelimiters);
  Copy(tokens);
}

void CLStringArray::RemoveDuplicateElements() {
  corlith::RemoveLaterDuplicates(*this, [](const CString& s) { return s.view(); });
}
