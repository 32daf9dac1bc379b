// Three ways of cutting a line of text into pieces: CTokenizer and its twin CLTokenizer
// split at any byte of a delimiter set (runs collapse, no quoting, no empty tokens);
// CTokenizer::GetStringArrayFromStringToken keeps quoted phrases whole; XTokenString is
// the configurable splitter with quoting, escapes, trimming, empty fields and a limit.
#pragma once

#include <corlith/framework/String.h>
#include <corlith/framework/StringArray.h>
#include <corlith/framework/Types.h>

#include <cstdint>
#include <string_view>

namespace corlith {

/// 256 bits, one per byte value (bit c lives in word c/64, bit c%64).
class DelimiterSet {
 public:
  constexpr DelimiterSet() = default;
  constexpr explicit DelimiterSet(std::string_view chars) { Add(chars); }
  constexpr void Add(std::string_view chars) {
    for (char ch : chars) {
      const auto c = static_cast<unsigned char>(ch);
      m_bits[c >> 6] |= std::uint64_t{1} << (c & 63);
    }
  }
  constexpr void Clear() { m_bits[0] = m_bits[1] = m_bits[2] = m_bits[3] = 0; }
  constexpr bool Has(char ch) const {
    const auto c = static_cast<unsigned char>(ch);
    return (m_bits[c >> 6] >> (c & 63)) & 1u;
  }

 private:
  std::uint64_t m_bits[4] = {0, 0, 0, 0};
};

/// One step of CTokenizer::Next over any source: skips delimiters from nPos, then takes
/// the run of non-delimiters into `token`; false (token empty) when nothing is left.
bool NextToken(std::string_view source, const DelimiterSet& set, int& nPos, CString& token);

/// The whole of CTokenizer and CLTokenizer but for the helpers only CTokenizer offers:
/// the source, the delimiter set and the position, and the walk over them. The twins
/// differ in one place, GetTokenArray(array), which rewinds to 0 when kRewinds is true.
template <bool kRewinds>
class DelimiterTokenizer {
 public:
  DelimiterTokenizer() = default;
  /// Copies the source and starts with exactly the given delimiters, at position 0.
  DelimiterTokenizer(const CString& strSource, const CString& strDelimiters);

  /// Adds every byte of the argument to the set. Never clears: two calls give the union.
  void SetDelimiters(const CString& strDelimiters);
  /// The next token; false (token empty) when only delimiters remain. The position stays
  /// on the delimiter that ended the token.
  bool Next(CString& token);
  /// The rest of the source after the delimiters at the position; the position stays.
  CString Tail() const;
  /// Appends every remaining token; then CTokenizer rewinds to 0 so the same object can
  /// run again, while CLTokenizer stays at the end, so a second call adds nothing
  /// (deliberately different).
  void GetTokenArray(CStringArray& array);
  /// Resets source, position and set (cleared, then the delimiters) and appends the tokens.
  void GetTokenArray(CStringArray& array, const CString& strSource, const CString& strDelimiters);

 protected:
  CString m_strSource;
  DelimiterSet m_delimiters;
  int m_nPos = 0;
};

extern template class DelimiterTokenizer<true>;
extern template class DelimiterTokenizer<false>;

}  // namespace corlith

/// Splits at any byte of its delimiter set; leading, trailing and repeated delimiters
/// never give empty tokens. GetTokenArray(array) rewinds when done.
class CTokenizer : public corlith::DelimiterTokenizer<true> {
 public:
  using DelimiterTokenizer::DelimiterTokenizer;

  /// Splits at every occurrence of the whole string strDelimiter, by replacing it with a
  /// marker byte ("!", "@", "#", "$", "%", "^": the first absent from the source).
  /// deliberate: when all six occur in the source the delimiter string is deleted and the
  /// whole result is one token.
  void GetTokenArrayByFullString(CStringArray& array, const CString& strSource, const CString& strDelimiter);
  /// Blank-separated words; a phrase in double quotes is one element, its words joined by
  /// single blanks and its quotes dropped. A phrase never closed is dropped.
  static void GetStringArrayFromStringToken(CString& strSource, CStringArray& array);
};

/// CTokenizer's twin: the same splitting, but GetTokenArray(array) leaves the position at
/// the end (deliberate), and without CTokenizer's two extra helpers.
class CLTokenizer : public corlith::DelimiterTokenizer<false> {
 public:
  using DelimiterTokenizer::DelimiterTokenizer;
};

/// Configurable splitting of `source` at any byte of `delimiters`, appending to `result`
/// (existing elements stay) and returning its element count; 0 without touching `result`
/// when either text is null or empty.
///  - maxTokens: 1 or more stops once `result` holds that many elements;
///  - trim: removes white space at both ends of each token (blanks and tabs ahead of a
///    token belong to it otherwise);
///  - escape: a backslash is dropped and the next byte taken literally;
///  - quote: a token opening with a double quote runs to the closing one, delimiters
///    inside being text; one delimiter right after the closing quote is skipped;
///  - keepEmpty: empty fields between adjacent delimiters are kept, and a trailing
///    delimiter announces an empty last field (also subject to maxTokens).
/// deliberate: a token ending in a closing quote does not count as ending at a delimiter,
/// so "\"a\"," with keepEmpty gives one element.
ULONGLONG XTokenString(const char* source, const char* delimiters, CStringArray& result, int maxTokens,
                       int trim, int escape, int quote, int keepEmpty);
