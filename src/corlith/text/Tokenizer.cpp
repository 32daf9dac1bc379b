#include <corlith/text/Tokenizer.h>

#include <string>

namespace corlith {

bool NextToken(std::string_view source, const DelimiterSet& set, int& nPos, CString& token) {
  const int length = static_cast<int>(source.size());
  // A position outside the text (only reachable through a corrupted object) ends the walk.
  if (nPos < 0) nPos = length;
  while (nPos < length && set.Has(source[static_cast<std::size_t>(nPos)])) ++nPos;
  if (nPos >= length) {
    token.Empty();
    return false;
  }
  const int start = nPos;
  while (nPos < length && !set.Has(source[static_cast<std::size_t>(nPos)])) ++nPos;
  token = CString(source.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(nPos - start)));
  return true;
}

namespace {

CString TailOf(std::string_view source, const DelimiterSet& set, int nPos) {
  int pos = nPos;
  CString token;
  // NextToken skips the delimiters; what is left from there on is the tail.
  if (!NextToken(source, set, pos, token)) return CString();
  return CString(source.substr(static_cast<std::size_t>(pos) - static_cast<std::size_t>(token.GetLength())));
}

void AppendAll(std::string_view source, const DelimiterSet& set, int& nPos, CStringArray& array) {
  CString token;
  while (NextToken(source, set, nPos, token)) array.Add(token);
}

bool IsBlankOrTab(char ch) { return ch == ' ' || ch == '\t'; }

bool IsCSpace(char ch) { return ch == ' ' || (ch >= '\t' && ch <= '\r'); }

}  // namespace
}  // namespace corlith

// --- CTokenizer --------------------------------------------------------------------

CTokenizer::CTokenizer(const CString& strSource, const CString& strDelimiters) : m_strSource(strSource) {
  SetDelimiters(strDelimiters);
}

void CTokenizer::SetDelimiters(const CString& strDelimiters) { m_delimiters.Add(strDelimiters.view()); }

bool CTokenizer::Next(CString& token) {
  return corlith::NextToken(m_strSource.view(), m_delimiters, m_nPos, token);
}

CString CTokenizer::Tail() const { return corlith::TailOf(m_strSource.view(), m_delimiters, m_nPos); }

void CTokenizer::GetTokenArray(CStringArray& array) {
  corlith::AppendAll(m_strSource.view(), m_delimiters, m_nPos, array);
  m_nPos = 0;
}

void CTokenizer::GetTokenArray(CStringArray& array, const CString& strSource, const CString& strDelimiters) {
  m_strSource = strSource;
  m_nPos = 0;
  m_delimiters.Clear();
  SetDelimiters(strDelimiters);
  GetTokenArray(array);
}

void CTokenizer::GetTokenArrayByFullString(CStringArray& array, const CString& strSource,
                                           const CString& strDelimiter) {
  CString marker;
  for (const char candidate : {'!', '@', '#', '$', '%', '^'}) {
    if (strSource.Find(candidate) < 0) {
      marker = CString(candidate);
      break;
    }
  }
  CString copy(strSource);
  copy.Replace(strDelimiter, marker);
  GetTokenArray(array, copy, marker);
}

void CTokenizer::GetStringArrayFromStringToken(CString& strSource, CStringArray& array) {
  CTokenizer words(strSource, " ");
  CString piece;
  CString word;
  const auto emit = [&] {
    array.Add(piece);
    piece.Empty();
  };
  while (words.Next(word)) {
    piece += word;
    if (piece.IsEmpty()) break;
    const int first = piece.Find('"');
    if (first < 0) {
      if (piece.GetLength() > 0 && piece.view().back() == ' ') piece.Truncate(piece.GetLength() - 1);
      emit();
      continue;
    }
    if (first == piece.ReverseFind('"') && first == 0) {
      // An opening quote whose phrase goes on: keep collecting, one blank between words.
      piece += ' ';
      continue;
    }
    piece.Remove('"');
    emit();
  }
}

// --- CLTokenizer -------------------------------------------------------------------

CLTokenizer::CLTokenizer(const CString& strSource, const CString& strDelimiters) : m_strSource(strSource) {
  SetDelimiters(strDelimiters);
}

void CLTokenizer::SetDelimiters(const CString& strDelimiters) { m_delimiters.Add(strDelimiters.view()); }

bool CLTokenizer::Next(CString& token) {
  return corlith::NextToken(m_strSource.view(), m_delimiters, m_nPos, token);
}

CString CLTokenizer::Tail() const { return corlith::TailOf(m_strSource.view(), m_delimiters, m_nPos); }

void CLTokenizer::GetTokenArray(CStringArray& array) {
  corlith::AppendAll(m_strSource.view(), m_delimiters, m_nPos, array);
}

void CLTokenizer::GetTokenArray(CStringArray& array, const CString& strSource, const CString& strDelimiters) {
  m_strSource = strSource;
  m_nPos = 0;
  m_delimiters.Clear();
  SetDelimiters(strDelimiters);
  GetTokenArray(array);
}

// --- XTokenString ------------------------------------------------------------------

ULONGLONG XTokenString(const char* source, const char* delimiters, CStringArray& result, int maxTokens,
                       int trim, int escape, int quote, int keepEmpty) {
  if (source == nullptr || delimiters == nullptr || *source == '\0' || *delimiters == '\0') return 0;
  const std::string_view src(source);
  const corlith::DelimiterSet set{std::string_view(delimiters)};
  const std::size_t n = src.size();
  std::size_t i = 0;
  if (!keepEmpty) {
    while (i < n && set.Has(src[i])) ++i;
    if (i == n) return static_cast<ULONGLONG>(result.GetSize());
  }
  const auto full = [&] { return maxTokens >= 1 && result.GetSize() >= maxTokens; };
  std::string token;
  for (;;) {
    token.clear();
    while (i < n && corlith::IsBlankOrTab(src[i])) token += src[i++];
    bool quoted = false;
    if (quote && i < n && src[i] == '"') {
      ++i;
      quoted = true;
    }
    while (i < n) {
      const char ch = src[i];
      if (quoted ? ch == '"' : set.Has(ch)) break;
      if (escape && ch == '\\') {
        if (++i == n) break;  // a lone backslash at the very end just ends the token
      }
      token += src[i++];
    }
    const bool stoppedAtDelimiter = i < n && !quoted;
    const bool stoppedAtQuote = i < n && quoted;
    if (i < n) ++i;
    if (stoppedAtQuote && i < n && set.Has(src[i])) ++i;
    if (trim) {
      std::size_t b = 0;
      std::size_t e = token.size();
      while (b < e && corlith::IsCSpace(token[b])) ++b;
      while (e > b && corlith::IsCSpace(token[e - 1])) --e;
      token = token.substr(b, e - b);
    }
    if (!token.empty() || keepEmpty) {
      if (full()) break;
      result.Add(CString(std::move(token)));
    }
    if (i >= n) {
      if (keepEmpty && stoppedAtDelimiter && !full()) result.Add(CString());
      break;
    }
  }
  return static_cast<ULONGLONG>(result.GetSize());
}
