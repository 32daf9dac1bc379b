// CStringSorter: the natural order's documented quirks row by row, the strict weak order
// it is over every short text, and SortStringArray against the insertion procedure on
// thousands of random name lists (the oracles are in corlith/test/NaturalSortOracle.h).
#include <corlith/test/NaturalSortOracle.h>
#include <corlith/text/LString.h>
#include <corlith/text/StringEx.h>

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace {

TEST(NaturalOrder, CompareStringARows) {
  const struct {
    const char* a;
    const char* b;
    int expected;
  } rows[] = {
      {"file2", "file10", 1},
      {"file10", "file2", 0},
      {"abc", "abcd", 1},
      {"abcd", "abc", 0},
      {"A2", "A10", 1},
      {"A07", "A7", 1},
      {"A7", "A07", 0},
      {"A1B", "A1C", 0},
      {"A1C", "A1B", 0},    // the character after an equal run is skipped
      {"A1B2", "A1C3", 1},  // collected texts 12 and 13
      {"A1B3", "A1C2", 0},
      {"", "", 0},
      {"", "a", 1},
      {"a", "", 0},
      {"a", "a", 0},
      {"B", "a", 1},         // byte order: upper case first
      {"\xC3\xA9", "a", 1},  // signed bytes: 0xC3 is negative
      {"R9", "R", 0},
      {"R", "R9", 1},
      // A digit run beyond int's range saturates: both read as INT_MAX, the longer wins.
      {"X99999999999", "X9999999999", 1},
      {"X9999999999", "X99999999999", 0},
      {"X2147483647", "X99999999999", 0},  // both INT_MAX: the longer run is before
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::Message() << '"' << row.a << "\" vs \"" << row.b << '"');
    EXPECT_EQ(CStringSorter::CompareStringA(row.a, row.b), row.expected);
  }
  EXPECT_EQ(CStringSorter::IsNum('0') + CStringSorter::IsNum('9'), 2);
  EXPECT_EQ(CStringSorter::IsNum('a') + CStringSorter::IsNum('/') + CStringSorter::IsNum(':'), 0);
}

TEST(NaturalOrder, SortStringArrayExamples) {
  const struct {
    std::vector<const char*> in;
    std::vector<const char*> out;
  } rows[] = {
      {{"R10", "R2", "R1"}, {"R1", "R2", "R10"}}, {{"C7", "C07", "C007"}, {"C007", "C07", "C7"}},
      {{"A1C", "A1B"}, {"A1C", "A1B"}},  // neither before the other: order kept
      {{"U3", "", "U1"}, {"", "U1", "U3"}},       {{}, {}},
  };
  for (const auto& row : rows) {
    CStringArray array;
    for (const char* s : row.in) array.Add(s);
    CStringSorter::SortStringArray(array);
    ASSERT_EQ(array.GetSize(), static_cast<INT_PTR>(row.out.size()));
    for (std::size_t i = 0; i < row.out.size(); ++i)
      EXPECT_EQ(array[static_cast<INT_PTR>(i)], CString(row.out[i]));
  }
}

CString RandomName(std::mt19937& rng) {
  static const char kLetters[] = "RCUJLQDTPabc_-";
  std::uniform_int_distribution<int> pieces(0, 4);
  std::uniform_int_distribution<int> letter(0, sizeof kLetters - 2);
  std::uniform_int_distribution<int> digits(1, 4);
  std::uniform_int_distribution<int> digit(0, 9);
  std::uniform_int_distribution<int> coin(0, 3);
  CString name;
  const int n = pieces(rng);
  for (int p = 0; p < n; ++p) {
    if (coin(rng) == 0) {
      name += kLetters[letter(rng)];
    } else {
      name += kLetters[letter(rng) % 4];  // few letters: many equal prefixes
      if (coin(rng) == 0) name += '0';    // leading zeros
      const int d = digits(rng);
      for (int k = 0; k < d; ++k) name += static_cast<char>('0' + digit(rng));
    }
  }
  return name;
}

TEST(NaturalOrder, SortStringArrayMatchesTheInsertionProcedure) {
  std::mt19937 rng(20250101);
  std::uniform_int_distribution<int> length(0, 60);
  std::uniform_int_distribution<int> coin(0, 2);
  for (int list = 0; list < 3000; ++list) {
    CStringArray array;
    const int n = length(rng);
    for (int i = 0; i < n; ++i) {
      // Equal-length neighbours: often a near-copy of the previous name.
      if (i > 0 && coin(rng) == 0) {
        CString near = array[i - 1];
        if (!near.IsEmpty()) near.SetAt(near.GetLength() - 1, static_cast<char>('0' + (i % 10)));
        array.Add(near);
      } else {
        array.Add(RandomName(rng));
      }
    }
    CStringArray expected;
    expected.Copy(array);
    corlith::test::InsertionSortReference(expected);
    CStringSorter::SortStringArray(array);
    ASSERT_EQ(array.GetSize(), expected.GetSize());
    for (INT_PTR i = 0; i < array.GetSize(); ++i) {
      ASSERT_EQ(array[i], expected[i]) << "list " << list << " index " << i;
    }
  }
}

TEST(NaturalOrder, CompareStringAMatchesTheReference) {
  std::mt19937 rng(7);
  for (int k = 0; k < 200000; ++k) {
    const CString a = RandomName(rng);
    const CString b = RandomName(rng);
    ASSERT_EQ(CStringSorter::CompareStringA(a, b), corlith::test::ReferenceCompare(a, b))
        << a.GetString() << " / " << b.GetString();
  }
}

// Every text up to maxLength characters over the alphabet, the empty text first.
std::vector<CString> EveryText(const std::string& alphabet, int maxLength) {
  std::vector<CString> texts{CString()};
  for (std::size_t from = 0, length = 1; length <= static_cast<std::size_t>(maxLength); ++length) {
    const std::size_t to = texts.size();
    for (std::size_t i = from; i < to; ++i) {
      for (char c : alphabet) texts.push_back(texts[i] + c);
    }
    from = to;
  }
  return texts;
}

// A strict weak order is a strict order of equivalence classes. Sort by the insertion
// procedure (safe whatever the relation is), number the classes where a neighbour is
// strictly before the next, and demand that every pair relates exactly by its classes:
// that proves irreflexivity, asymmetry, transitivity and transitive equivalence at once.
TEST(NaturalOrder, IsAStrictWeakOrderOverEveryShortText) {
  const struct {
    const char* alphabet;
    int maxLength;
  } rows[] = {{"a0", 7}, {"ab01", 5}, {"B0a19", 4}, {"0a9", 6}};
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::Message() << row.alphabet << " up to " << row.maxLength);
    CStringArray sorted;
    for (const CString& text : EveryText(row.alphabet, row.maxLength)) sorted.Add(text);
    corlith::test::InsertionSortReference(sorted);
    const INT_PTR n = sorted.GetSize();
    std::vector<int> rank(static_cast<std::size_t>(n), 0);
    for (INT_PTR i = 1; i < n; ++i) {
      rank[static_cast<std::size_t>(i)] =
          rank[static_cast<std::size_t>(i - 1)] + CStringSorter::CompareStringA(sorted[i - 1], sorted[i]);
    }
    for (INT_PTR i = 0; i < n; ++i) {
      for (INT_PTR j = 0; j < n; ++j) {
        const int expected = rank[static_cast<std::size_t>(i)] < rank[static_cast<std::size_t>(j)] ? 1 : 0;
        if (CStringSorter::CompareStringA(sorted[i], sorted[j]) != expected) {
          FAIL() << "[" << sorted[i].GetString() << "] before [" << sorted[j].GetString() << "] should be "
                 << expected;
        }
      }
    }
  }
}

}  // namespace
