#include <corlith/text/Tokenizer.h>

#include <corlith/framework/Ascii.h>

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

template <bool kRewinds>
DelimiterTokenizer<kRewinds>::DelimiterTokenizer(const CString& strSource, const CString& strDelimiters)
    : m_strSource(strSource) {
  SetDelimiters(strDelimiters);
}

template <bool kRewinds>
void DelimiterTokenizer<kRewinds>::SetDelimiters(const CString& strDelimiters) {
  m_delimiters.Add(strDelimiters.view());
}

template <bool kRewinds>
bool DelimiterTokenizer<kRewinds>::Next(CString& token) {
  return NextToken(m_strSource.view(), m_delimiters, m_nPos, token);
}

template <bool kRewinds>
CString DelimiterTokenizer<kRewinds>::Tail() const {
  int pos = m_nPos;
  CString token;
  // NextToken skips the delimiters; what is left from there on is the tail.
  if (!NextToken(m_strSource.view(), m_delimiters, pos, token)) return CString();
  return CString(m_strSource.view().substr(static_cast<std::size_t>(pos - token.GetLength())));
}

template <bool kRewinds>
void DelimiterTokenizer<kRewinds>::GetTokenArray(CStringArray& array) {
  CString token;
  while (Next(token)) array.Add(token);
  if constexpr (kRewinds) m_nPos = 0;
}

template <bool kRewinds>
void DelimiterTokenizer<kRewinds>::GetTokenArray(CStringArray& array, const CString& strSource,
                                                 const CString& strDelimiters) {
  m_strSource = strSource;
  m_nPos = 0;
  m_delimiters.Clear();
  SetDelimiters(strDelimiters);
  GetTokenArray(array);
}

template class DelimiterTokenizer<true>;
template class DelimiterTokenizer<false>;

namespace {

bool IsBlankOrTab(char ch) { return ch == ' ' || ch == '\t'; }

}  // namespace
}  // namespace corlith

// --- CTokenizer --------------------------------------------------------------------

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
      while (b < e && corlith::ascii::IsSpace(token[b])) ++b;
      while (e > b && corlith::ascii::IsSpace(token[e - 1])) --e;
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
