// CStringSorter: the natural order's documented quirks row by row, and SortStringArray
// against a plain transcription of the insertion procedure (collecting texts as strings,
// atoi, RemoveAt/InsertAt) on thousands of random name lists.
#include <corlith/text/LString.h>
#include <corlith/text/StringEx.h>

#include <gtest/gtest.h>

#include <random>
#include <string>

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

// --- the reference: the stated procedure, written as plainly as possible ------------

int ReferenceCompare(const CString& a, const CString& b) {
  if (a.GetLength() < b.GetLength()) return ReferenceCompare(b, a) != 1 ? 1 : 0;
  std::string sa;
  std::string sb;
  int i = 0;
  while (i < b.GetLength()) {
    if (CStringSorter::IsNum(a[i]) && CStringSorter::IsNum(b[i])) {
      for (int j = i; j < a.GetLength() && CStringSorter::IsNum(a[j]); ++j) sa += a[j];
      for (; i < b.GetLength() && CStringSorter::IsNum(b[i]); ++i) sb += b[i];
      const int na = corlith::SaturatingAtoi(sa);
      const int nb = corlith::SaturatingAtoi(sb);
      if (na < nb) return 1;
      if (na > nb) return 0;
      if (sa.size() > sb.size()) return 1;
      if (sa.size() < sb.size()) return 0;
    } else {
      const auto ca = static_cast<signed char>(a[i]);
      const auto cb = static_cast<signed char>(b[i]);
      if (ca < cb) return 1;
      if (ca > cb) return 0;
    }
    ++i;
  }
  return 0;
}

void ReferenceSort(CStringArray& array) {
  for (INT_PTR i = 1; i < array.GetSize(); ++i) {
    const CString element = array[i];
    for (INT_PTR j = 0; j < i; ++j) {
      if (ReferenceCompare(element, array[j]) == 1) {
        array.RemoveAt(i);
        array.InsertAt(j, element);
        break;
      }
    }
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
    ReferenceSort(expected);
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
    ASSERT_EQ(CStringSorter::CompareStringA(a, b), ReferenceCompare(a, b))
        << a.GetString() << " / " << b.GetString();
  }
}

}  // namespace
