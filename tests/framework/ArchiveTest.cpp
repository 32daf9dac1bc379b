// CArchive against hand-built byte vectors: the string, count and primitive forms
// must match what the original framework writes on Windows byte for byte, and
// hostile or truncated input must end in the archive exception, never in a huge
// allocation.
#include <corlith/framework/Archive.h>
#include <corlith/framework/File.h>
#include <corlith/framework/MemFile.h>
#include <corlith/framework/StringArray.h>

#include <gtest/gtest.h>

#include <unistd.h>
#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <new>
#include <span>
#include <string>
#include <system_error>
#include <vector>

// The largest single allocation made on this thread while a probe is active: lets a
// test show that a length or count read from the input did not size memory before
// the data was there. Under the address sanitizer its allocator hook sees every
// allocation (and its new/delete mismatch checks stay intact); otherwise the global
// allocation functions are replaced.
#if defined(__SANITIZE_ADDRESS__)
#define CORLITH_TEST_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define CORLITH_TEST_ASAN 1
#endif
#endif

namespace {
thread_local bool t_probing = false;
thread_local std::size_t t_largest = 0;

void NoteAllocation(std::size_t n) {
  if (t_probing && n > t_largest) t_largest = n;
}
}  // namespace

#ifdef CORLITH_TEST_ASAN
// From the sanitizer runtime's allocator interface (GCC does not install its header).
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*malloc_hook)(const volatile void*,
                                                                             std::size_t),
                                                         void (*free_hook)(const volatile void*));

namespace {
void OnMalloc(const volatile void*, std::size_t n) { NoteAllocation(n); }
void OnFree(const volatile void*) {}
const int g_hooksInstalled = __sanitizer_install_malloc_and_free_hooks(OnMalloc, OnFree);
}  // namespace
#else
// GCC inlines these into callers and then takes free() on memory from operator new for
// a mismatch; here both sides are ours.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
void* operator new(std::size_t n) {
  NoteAllocation(n);
  if (void* p = std::malloc(n == 0 ? 1 : n)) return p;
  throw std::bad_alloc();
}
// The array forms of the standard library forward to these.
void operator delete(void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }
#pragma GCC diagnostic pop
#endif

namespace {

using Bytes = std::vector<BYTE>;

class LargestAllocation {
 public:
  LargestAllocation() {
#ifdef CORLITH_TEST_ASAN
    EXPECT_NE(g_hooksInstalled, 0) << "the sanitizer refused the allocation hooks";
#endif
    t_largest = 0;
    t_probing = true;
  }
  ~LargestAllocation() { t_probing = false; }
  std::size_t Largest() const { return t_largest; }
};

// Loading hostile input may cost a bounded slice of memory, never the claimed size.
constexpr std::size_t kAllocationBound = std::size_t{4} << 20;

std::string Hex(std::span<const BYTE> bytes) {
  std::string out;
  char cell[4];
  for (BYTE b : bytes) {
    std::snprintf(cell, sizeof cell, "%02X ", b);
    out += cell;
  }
  if (!out.empty()) out.pop_back();
  return out;
}

Bytes Cat(Bytes a, const std::string& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

// Little-endian by shifts, independent of how the archive copies memory.
void PutLE(Bytes& out, std::uint64_t v, int n) {
  for (int i = 0; i < n; ++i) out.push_back(static_cast<BYTE>(v >> (8 * i)));
}

std::string Pattern(std::size_t n, int seed = 0) {
  std::string s(n, '\0');
  for (std::size_t i = 0; i < n; ++i)
    s[i] = static_cast<char>('a' + (i * 7 + static_cast<std::size_t>(seed)) % 26);
  return s;
}

template <typename Fn>
Bytes Stored(Fn&& write) {
  CMemFile file;
  CArchive ar(&file, CArchive::store);
  write(ar);
  ar.Close();
  const auto data = file.GetData();
  return Bytes(data.begin(), data.end());
}

// A loading archive over a private copy of the bytes.
class Loading {
 public:
  explicit Loading(Bytes bytes, int bufSize = 4096)
      : m_bytes(std::move(bytes)),
        m_file(m_bytes.data(), static_cast<UINT>(m_bytes.size())),
        m_ar(&m_file, CArchive::load, bufSize) {}
  CArchive& ar() { return m_ar; }

 private:
  Bytes m_bytes;
  CMemFile m_file;
  CArchive m_ar;
};

// The cause of the archive exception fn throws, or -1 when it throws nothing.
template <typename Fn>
int ArchiveCause(Fn&& fn) {
  try {
    fn();
  } catch (const CArchiveException& e) {
    return e.m_cause;
  }
  return -1;
}

// ---------------------------------------------------------------------------
// Strings

TEST(ArchiveString, LengthPrefixFormChangesAtTheOriginalsThresholds) {
  struct Row {
    std::size_t length;
    Bytes prefix;
  };
  const Row rows[] = {
      {0, {0x00}},
      {1, {0x01}},
      {3, {0x03}},
      {254, {0xFE}},
      {255, {0xFF, 0xFF, 0x00}},
      {256, {0xFF, 0x00, 0x01}},
      {300, {0xFF, 0x2C, 0x01}},
      {0xFFFD, {0xFF, 0xFD, 0xFF}},
      {0xFFFE, {0xFF, 0xFF, 0xFF, 0xFE, 0xFF, 0x00, 0x00}},
      {0xFFFF, {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00, 0x00}},
      {70000, {0xFF, 0xFF, 0xFF, 0x70, 0x11, 0x01, 0x00}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.length);
    const std::string text = Pattern(row.length);
    const Bytes stored = Stored([&](CArchive& ar) { ar << CString(text); });
    ASSERT_EQ(stored.size(), row.prefix.size() + row.length);
    EXPECT_EQ(Hex(std::span(stored).first(row.prefix.size())), Hex(row.prefix));
    EXPECT_TRUE(std::equal(text.begin(), text.end(),
                           stored.begin() + static_cast<std::ptrdiff_t>(row.prefix.size())));

    Loading in(stored);
    CString loaded("previous contents");
    in.ar() >> loaded;
    EXPECT_EQ(loaded.str(), text);
    EXPECT_EQ(in.ar().GetPosition(), stored.size());
  }
}

TEST(ArchiveString, LengthPrefixEscapesToSixtyFourBitsAndWideMarker) {
  struct Row {
    ULONGLONG length;
    bool wide;
    const char* hex;
  };
  const Row rows[] = {
      {2, true, "FF FE FF 02"},
      {300, true, "FF FE FF FF 2C 01"},
      {0xFFFFFFFE, false, "FF FF FF FE FF FF FF"},
      {0xFFFFFFFF, false, "FF FF FF FF FF FF FF FF FF FF FF 00 00 00 00"},
      {1ull << 32, false, "FF FF FF FF FF FF FF 00 00 00 00 01 00 00 00"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.hex);
    const Bytes stored = Stored([&](CArchive& ar) { ar.WriteStringLength(row.length, row.wide); });
    EXPECT_EQ(Hex(stored), row.hex);
    Loading in(stored);
    bool wide = !row.wide;
    EXPECT_EQ(in.ar().ReadStringLength(wide), row.length);
    EXPECT_EQ(wide, row.wide);
  }
}

TEST(ArchiveString, LoadAcceptsEveryPrefixFormAndConvertsWideTextToUtf8) {
  struct Row {
    const char* what;
    Bytes input;
    std::string expected;
  };
  const Row rows[] = {
      {"short length in the 16-bit form", Cat({0xFF, 0x03, 0x00}, "abc"), "abc"},
      {"short length in the 32-bit form", Cat({0xFF, 0xFF, 0xFF, 0x03, 0x00, 0x00, 0x00}, "abc"), "abc"},
      {"short length in the 64-bit form",
       Cat({0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x03, 0, 0, 0, 0, 0, 0, 0}, "abc"), "abc"},
      {"wide marker", {0xFF, 0xFE, 0xFF, 0x02, 0x61, 0x00, 0x62, 0x00}, "ab"},
      {"wide, long length form", {0xFF, 0xFE, 0xFF, 0xFF, 0x02, 0x00, 0x61, 0x00, 0x62, 0x00}, "ab"},
      {"wide, empty", {0xFF, 0xFE, 0xFF, 0x00}, ""},
      {"wide U+00E9", {0xFF, 0xFE, 0xFF, 0x01, 0xE9, 0x00}, "\xC3\xA9"},
      {"wide U+20AC", {0xFF, 0xFE, 0xFF, 0x01, 0xAC, 0x20}, "\xE2\x82\xAC"},
      {"wide surrogate pair U+1F600", {0xFF, 0xFE, 0xFF, 0x02, 0x3D, 0xD8, 0x00, 0xDE}, "\xF0\x9F\x98\x80"},
      {"wide unpaired surrogate",
       {0xFF, 0xFE, 0xFF, 0x02, 0x00, 0xD8, 0x41, 0x00},
       "\xEF\xBF\xBD"
       "A"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    Loading in(row.input);
    CString loaded;
    in.ar() >> loaded;
    EXPECT_EQ(loaded.str(), row.expected);
    EXPECT_EQ(in.ar().GetPosition(), row.input.size());
  }
}

TEST(ArchiveString, EmbeddedZeroBytesSurviveRoundTrip) {
  const CString text(std::string("a\0b\0", 4));
  const Bytes stored = Stored([&](CArchive& ar) { ar << text; });
  EXPECT_EQ(Hex(stored), "04 61 00 62 00");
  Loading in(stored);
  CString loaded;
  in.ar() >> loaded;
  EXPECT_EQ(loaded.GetLength(), 4);
  EXPECT_EQ(loaded, text);
}

TEST(ArchiveString, TruncatedStringThrowsEndOfFile) {
  const Bytes rows[] = {
      {},
      Cat({0x05}, "ab"),
      {0xFF, 0x01},
      {0xFF, 0xFF, 0xFF, 0x10, 0x00},
      {0xFF, 0xFE, 0xFF},
      {0xFF, 0xFE, 0xFF, 0x02, 0x61, 0x00, 0x62},
  };
  for (const Bytes& input : rows) {
    SCOPED_TRACE(Hex(input));
    Loading in(input);
    CString loaded;
    EXPECT_EQ(ArchiveCause([&] { in.ar() >> loaded; }), CArchiveException::endOfFile);
  }
}

// A length prefix is untrusted: the reader must run out of data, not out of memory.
TEST(ArchiveString, HugeLengthPrefixWithoutDataThrowsEndOfFile) {
  const Bytes rows[] = {
      Cat({0xFF, 0xFF, 0xFF, 0xF0, 0xFF, 0xFF, 0x7F}, "abc"),
      Cat({0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00, 0x00, 0x00, 0x00, 0x00, 0x01, 0x00, 0x00}, "abc"),
      Cat({0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}, "abc"),
      {0xFF, 0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0x00, 0x00, 0x00, 0x40, 0x61, 0x00},
  };
  for (const Bytes& input : rows) {
    SCOPED_TRACE(Hex(input));
    Loading in(input);
    CString loaded;
    LargestAllocation largest;
    EXPECT_EQ(ArchiveCause([&] { in.ar() >> loaded; }), CArchiveException::endOfFile);
    EXPECT_LT(largest.Largest(), kAllocationBound);
  }
}

// ---------------------------------------------------------------------------
// Counts and primitives

TEST(ArchiveCount, CountFormEscapesAtFFFFAndFFFFFFFF) {
  struct Row {
    DWORD_PTR count;
    const char* hex;
  };
  const Row rows[] = {
      {0, "00 00"},
      {0xFFFE, "FE FF"},
      {0xFFFF, "FF FF FF FF 00 00"},
      {0x10000, "FF FF 00 00 01 00"},
      {0xFFFFFFFE, "FF FF FE FF FF FF"},
      {0xFFFFFFFF, "FF FF FF FF FF FF FF FF FF FF 00 00 00 00"},
      {DWORD_PTR{1} << 40, "FF FF FF FF FF FF 00 00 00 00 00 01 00 00"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.hex);
    const Bytes stored = Stored([&](CArchive& ar) { ar.WriteCount(row.count); });
    EXPECT_EQ(Hex(stored), row.hex);
    Loading in(stored);
    EXPECT_EQ(in.ar().ReadCount(), row.count);
  }
}

template <typename T>
void ExpectPrimitiveForm(T value, const char* hex) {
  SCOPED_TRACE(hex);
  const Bytes stored = Stored([&](CArchive& ar) { ar << value; });
  EXPECT_EQ(Hex(stored), hex);
  Loading in(stored);
  T loaded{};
  in.ar() >> loaded;
  EXPECT_EQ(loaded, value);
  EXPECT_EQ(in.ar().GetPosition(), stored.size());
}

TEST(ArchivePrimitive, EachTypeIsItsLittleEndianBytesAtItsWindowsSize) {
  ExpectPrimitiveForm(BYTE{0xAB}, "AB");
  ExpectPrimitiveForm('z', "7A");
  ExpectPrimitiveForm(static_cast<signed char>(-2), "FE");
  ExpectPrimitiveForm(true, "01");
  ExpectPrimitiveForm(false, "00");
  ExpectPrimitiveForm(WORD{0x1234}, "34 12");
  ExpectPrimitiveForm(short{-2}, "FE FF");
  ExpectPrimitiveForm(int{0x01020304}, "04 03 02 01");
  ExpectPrimitiveForm(int{-2}, "FE FF FF FF");
  ExpectPrimitiveForm(UINT{0x89ABCDEF}, "EF CD AB 89");
  ExpectPrimitiveForm(LONG{-1}, "FF FF FF FF");
  ExpectPrimitiveForm(DWORD{0xDEADBEEF}, "EF BE AD DE");
  ExpectPrimitiveForm(1.0f, "00 00 80 3F");
  ExpectPrimitiveForm(-2.5f, "00 00 20 C0");
  ExpectPrimitiveForm(1.0, "00 00 00 00 00 00 F0 3F");
  ExpectPrimitiveForm(-0.5, "00 00 00 00 00 00 E0 BF");
  ExpectPrimitiveForm(LONGLONG{-2}, "FE FF FF FF FF FF FF FF");
  ExpectPrimitiveForm(ULONGLONG{0x0102030405060708}, "08 07 06 05 04 03 02 01");
}

TEST(ArchivePrimitive, AnyNonZeroByteLoadsAsTrue) {
  for (BYTE b : {0x01, 0x02, 0x80, 0xFF}) {
    SCOPED_TRACE(static_cast<int>(b));
    Loading in(Bytes{b});
    bool value = false;
    in.ar() >> value;
    EXPECT_TRUE(value);
  }
}

// ---------------------------------------------------------------------------
// Collections

TEST(ArchiveCollection, StringArrayIsCountThenStrings) {
  CStringArray strings;
  strings.Add("a");
  strings.Add("");
  strings.Add("xyz");
  const Bytes stored = Stored([&](CArchive& ar) { ar << strings; });
  EXPECT_EQ(Hex(stored), "03 00 01 61 00 03 78 79 7A");

  Loading in(stored);
  CStringArray loaded;
  loaded.Add("stale");
  loaded.Add("stale");
  loaded.Add("stale");
  loaded.Add("stale");
  in.ar() >> loaded;
  ASSERT_EQ(loaded.GetSize(), 3);
  EXPECT_EQ(loaded[0], "a");
  EXPECT_EQ(loaded[1], "");
  EXPECT_EQ(loaded[2], "xyz");
}

TEST(ArchiveCollection, NumberArraysAreCountThenRawValues) {
  CDWordArray dwords;
  dwords.Add(1);
  dwords.Add(0xDEADBEEF);
  EXPECT_EQ(Hex(Stored([&](CArchive& ar) { ar << dwords; })), "02 00 01 00 00 00 EF BE AD DE");

  CWordArray words;
  words.Add(1);
  words.Add(0xABCD);
  EXPECT_EQ(Hex(Stored([&](CArchive& ar) { ar << words; })), "02 00 01 00 CD AB");

  CByteArray bytes;
  bytes.Add(0x7F);
  EXPECT_EQ(Hex(Stored([&](CArchive& ar) { ar << bytes; })), "01 00 7F");

  Loading in(Bytes{0x02, 0x00, 0x01, 0x00, 0x00, 0x00, 0xEF, 0xBE, 0xAD, 0xDE});
  CDWordArray loaded;
  in.ar() >> loaded;
  ASSERT_EQ(loaded.GetSize(), 2);
  EXPECT_EQ(loaded[0], 1u);
  EXPECT_EQ(loaded[1], 0xDEADBEEFu);
}

// Large enough that loading takes several steps and the count needs its escape.
TEST(ArchiveCollection, LargeArraysRoundTripAcrossLoadSteps) {
  CDWordArray dwords;
  for (DWORD i = 0; i < 0xFFFF; ++i) dwords.Add(i * 2654435761u);
  const Bytes storedDwords = Stored([&](CArchive& ar) { ar << dwords; });
  EXPECT_EQ(Hex(std::span(storedDwords).first(6)), "FF FF FF FF 00 00");
  EXPECT_EQ(storedDwords.size(), 6u + 4u * 0xFFFF);
  Loading inDwords(storedDwords);
  CDWordArray loadedDwords;
  inDwords.ar() >> loadedDwords;
  ASSERT_EQ(loadedDwords.GetSize(), dwords.GetSize());
  EXPECT_TRUE(std::equal(dwords.begin(), dwords.end(), loadedDwords.begin()));

  CStringArray strings;
  for (int i = 0; i < 5000; ++i) strings.Add(CString(Pattern(static_cast<std::size_t>(i % 300), i)));
  Loading inStrings(Stored([&](CArchive& ar) { ar << strings; }));
  CStringArray loadedStrings;
  inStrings.ar() >> loadedStrings;
  ASSERT_EQ(loadedStrings.GetSize(), strings.GetSize());
  EXPECT_TRUE(std::equal(strings.begin(), strings.end(), loadedStrings.begin()));
}

TEST(ArchiveCollection, HostileCountThrowsEndOfFile) {
  const Bytes counts[] = {
      {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F},
      {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF},
      {0xFF, 0xFF, 0xFE, 0xFF, 0xFF, 0xFF},
  };
  for (const Bytes& count : counts) {
    SCOPED_TRACE(Hex(count));
    Bytes input = count;
    input.insert(input.end(), {0x01, 0x61, 0x02, 0x62});
    {
      Loading in(input);
      CStringArray strings;
      LargestAllocation largest;
      EXPECT_EQ(ArchiveCause([&] { in.ar() >> strings; }), CArchiveException::endOfFile);
      EXPECT_LT(largest.Largest(), kAllocationBound);
    }
    {
      Loading in(input);
      CDWordArray dwords;
      LargestAllocation largest;
      EXPECT_EQ(ArchiveCause([&] { in.ar() >> dwords; }), CArchiveException::endOfFile);
      EXPECT_LT(largest.Largest(), kAllocationBound);
    }
  }
}

TEST(ArchiveCollection, PlainObjectWritesNothingAndUIntArrayIsNotSerialisable) {
  CObject plain;
  EXPECT_TRUE(Stored([&](CArchive& ar) { ar << plain; }).empty());
  CUIntArray uints;
  uints.Add(1);
  EXPECT_THROW(Stored([&](CArchive& ar) { ar << uints; }), CNotSupportedException);
}

// ---------------------------------------------------------------------------
// Misuse, end of data and positions

TEST(ArchiveMisuse, StoringIntoLoadingArchiveIsReadOnly) {
  Loading in(Bytes{1, 2, 3, 4});
  EXPECT_EQ(ArchiveCause([&] { in.ar() << BYTE{1}; }), CArchiveException::readOnly);
  EXPECT_EQ(ArchiveCause([&] { in.ar() << CString("x"); }), CArchiveException::readOnly);
  EXPECT_EQ(ArchiveCause([&] { in.ar().Write("x", 1); }), CArchiveException::readOnly);
  EXPECT_EQ(ArchiveCause([&] { in.ar().WriteCount(1); }), CArchiveException::readOnly);
}

TEST(ArchiveMisuse, LoadingFromStoringArchiveIsWriteOnly) {
  CMemFile file;
  CArchive ar(&file, CArchive::store);
  BYTE b = 0;
  CString s;
  char buffer[4];
  EXPECT_EQ(ArchiveCause([&] { ar >> b; }), CArchiveException::writeOnly);
  EXPECT_EQ(ArchiveCause([&] { ar >> s; }), CArchiveException::writeOnly);
  EXPECT_EQ(ArchiveCause([&] { ar.Read(buffer, 4); }), CArchiveException::writeOnly);
  EXPECT_EQ(ArchiveCause([&] { ar.ReadCount(); }), CArchiveException::writeOnly);
}

TEST(ArchiveEnd, ExtractionPastEndThrowsButReadReturnsShortCount) {
  {
    Loading in(Bytes{1, 2});
    DWORD value = 0;
    EXPECT_EQ(ArchiveCause([&] { in.ar() >> value; }), CArchiveException::endOfFile);
  }
  {
    Loading in(Bytes{1, 2, 3, 4, 5});
    BYTE buffer[8] = {};
    EXPECT_EQ(in.ar().Read(buffer, 8), 5u);
    EXPECT_EQ(Hex(std::span(buffer).first(5)), "01 02 03 04 05");
    EXPECT_EQ(in.ar().Read(buffer, 8), 0u);
    EXPECT_EQ(in.ar().GetPosition(), 5u);
    BYTE b = 0;
    EXPECT_EQ(ArchiveCause([&] { in.ar() >> b; }), CArchiveException::endOfFile);
  }
}

TEST(ArchivePosition, PositionCountsBytesStoredAndLoaded) {
  CMemFile file;
  CArchive ar(&file, CArchive::store);
  EXPECT_EQ(ar.GetPosition(), 0u);
  ar << BYTE{1};
  EXPECT_EQ(ar.GetPosition(), 1u);
  ar << int{2};
  EXPECT_EQ(ar.GetPosition(), 5u);
  ar << CString("abc");
  EXPECT_EQ(ar.GetPosition(), 9u);
  const std::string big = Pattern(10000);
  ar.Write(big.data(), static_cast<UINT>(big.size()));
  EXPECT_EQ(ar.GetPosition(), 10009u);
  ar.Close();
  EXPECT_EQ(file.GetLength(), 10009u);

  const auto data = file.GetData();
  Loading in(Bytes(data.begin(), data.end()));
  BYTE b = 0;
  int i = 0;
  CString s;
  in.ar() >> b >> i;
  EXPECT_EQ(in.ar().GetPosition(), 5u);
  in.ar() >> s;
  EXPECT_EQ(in.ar().GetPosition(), 9u);
  std::string back(big.size(), '\0');
  EXPECT_EQ(in.ar().Read(back.data(), static_cast<UINT>(back.size())), big.size());
  EXPECT_EQ(back, big);
  EXPECT_EQ(in.ar().GetPosition(), 10009u);
}

TEST(ArchiveLifetime, DestructorFlushesUnlessTold) {
  CMemFile flushed;
  { CArchive(&flushed, CArchive::store) << int{7}; }
  EXPECT_EQ(Hex(flushed.GetData()), "07 00 00 00");

  CMemFile kept;
  { CArchive(&kept, CArchive::store | CArchive::bNoFlushOnDelete) << int{7}; }
  EXPECT_EQ(kept.GetLength(), 0u);
}

TEST(ArchiveText, ReadStringStripsLineEndsAndReportsEnd) {
  Loading in(Cat({}, "a\r\nb\n\nlast"));
  std::vector<std::string> lines;
  CString line;
  while (lines.size() < 10 && in.ar().ReadString(line)) lines.push_back(line.str());
  EXPECT_EQ(lines, (std::vector<std::string>{"a", "b", "", "last"}));
  EXPECT_EQ(Hex(Stored([](CArchive& ar) { ar.WriteString("x\r\ny\n"); })), "78 0D 0A 79 0A");
}

// ---------------------------------------------------------------------------
// A real file with the smallest buffer, so refills, flushes and the large-block
// bypass all happen at unaligned offsets.

class ArchiveOnDisk : public ::testing::Test {
 protected:
  void SetUp() override {
    static std::atomic<int> counter{0};
    m_folder = std::filesystem::path(::testing::TempDir()) /
               ("corlith-archive-" + std::to_string(::getpid()) + "-" + std::to_string(counter++));
    std::filesystem::create_directories(m_folder);
  }
  void TearDown() override {
    std::error_code ignored;
    std::filesystem::remove_all(m_folder, ignored);
  }
  std::string PathOf(const char* name) const { return (m_folder / name).string(); }

  std::filesystem::path m_folder;
};

Bytes ReadWholeFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return Bytes(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

TEST_F(ArchiveOnDisk, SmallBufferWritesAndReadsExactBytesAcrossBoundaries) {
  const std::string path = PathOf("data.bin");
  const std::string block300 = Pattern(300, 1);
  const std::string block100 = Pattern(100, 2);
  const std::string text200 = Pattern(200, 3);
  const std::string text1000 = Pattern(1000, 4);

  Bytes expected;
  {
    CFile file(path.c_str(), CFile::modeCreate | CFile::modeWrite);
    CArchive ar(&file, CArchive::store, 128);
    for (int i = 0; i < 7; ++i) {
      ar << static_cast<BYTE>(i);
      PutLE(expected, static_cast<std::uint64_t>(i), 1);
    }
    for (DWORD i = 0; i < 40; ++i) {
      ar << (0x11223300 + i);
      PutLE(expected, 0x11223300 + i, 4);
    }
    ar.Write(block300.data(), 300);
    expected.insert(expected.end(), block300.begin(), block300.end());
    ar.Write(block100.data(), 100);
    expected.insert(expected.end(), block100.begin(), block100.end());
    ar << CString(text200);
    expected = Cat(expected, "\xC8" + text200);
    ar << CString(text1000);
    expected = Cat(Cat(expected, "\xFF\xE8\x03"), text1000);
    ar << 3.25 << LONGLONG{-1};
    PutLE(expected, 0x400A000000000000, 8);
    PutLE(expected, ~std::uint64_t{0}, 8);
    EXPECT_EQ(ar.GetPosition(), expected.size());
    ar.Close();
    file.Close();
  }
  const Bytes onDisk = ReadWholeFile(path);
  ASSERT_EQ(onDisk.size(), expected.size());
  EXPECT_TRUE(onDisk == expected);

  CFile file(path.c_str(), CFile::modeRead);
  BYTE buffer[128];
  CArchive ar(&file, CArchive::load, 128, buffer);
  for (int i = 0; i < 7; ++i) {
    BYTE b = 0;
    ar >> b;
    EXPECT_EQ(b, i);
  }
  for (DWORD i = 0; i < 40; ++i) {
    DWORD d = 0;
    ar >> d;
    ASSERT_EQ(d, 0x11223300 + i);
  }
  std::string got300(300, '\0');
  EXPECT_EQ(ar.Read(got300.data(), 300), 300u);
  EXPECT_EQ(got300, block300);
  std::string got100(100, '\0');
  EXPECT_EQ(ar.Read(got100.data(), 100), 100u);
  EXPECT_EQ(got100, block100);
  CString s200;
  CString s1000;
  double d = 0;
  LONGLONG ll = 0;
  ar >> s200 >> s1000 >> d >> ll;
  EXPECT_EQ(s200.str(), text200);
  EXPECT_EQ(s1000.str(), text1000);
  EXPECT_EQ(d, 3.25);
  EXPECT_EQ(ll, -1);
  EXPECT_EQ(ar.GetPosition(), expected.size());

  // Running out names the file, so a report can say which archive was damaged.
  BYTE extra = 0;
  try {
    ar >> extra;
    ADD_FAILURE() << "no exception at the end of the file";
  } catch (const CArchiveException& e) {
    EXPECT_EQ(e.m_cause, CArchiveException::endOfFile);
    EXPECT_EQ(e.m_strFileName.str(), path);
  }
}

// ---------------------------------------------------------------------------
// Reading a memory file in place

// ReadInPlace hands out the bytes Read would copy, and moves the position as Read does.
TEST(ArchiveInPlace, MemoryFileHandsOutItsBytesWhereTheyLie) {
  struct Row {
    const char* what;
    LONGLONG start;
    UINT nMax;
    std::size_t size;  // handed out, from start
  };
  const Row rows[] = {
      {"from the start", 0, 4, 4}, {"cut at the end", 8, 4, 2}, {"at the end", 10, 4, 0},
      {"nothing asked", 3, 0, 0},  {"past the end", 12, 4, 0},  {"all of it", 0, 100, 10},
  };
  Bytes content(10);
  for (std::size_t i = 0; i < content.size(); ++i) content[i] = static_cast<BYTE>(0xA0 + i);
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    CMemFile file(content.data(), static_cast<UINT>(content.size()));
    file.Seek(row.start, CFile::begin);
    const std::span<const BYTE> bytes = file.ReadInPlace(row.nMax);
    ASSERT_EQ(bytes.size(), row.size);
    if (row.size > 0) {
      EXPECT_EQ(bytes.data(), content.data() + row.start) << "not a copy";
    }
    EXPECT_EQ(file.GetPosition(), static_cast<ULONGLONG>(row.start) + row.size);
  }
}

// Over a memory file, what a loading archive has read ahead is a window on the file's
// own memory, never more than a buffer's worth, as it moves on through the file.
TEST(ArchiveInPlace, ReadAheadOverAMemoryFileIsAWindowOnItsMemory) {
  const std::string text = Pattern(1000);
  Bytes content(text.begin(), text.end());
  CMemFile file(content.data(), static_cast<UINT>(content.size()));
  CArchive ar(&file, CArchive::load, 128);
  struct Row {
    UINT read;           // bytes read through the archive before looking
    std::size_t offset;  // where the window then starts in the file
    std::size_t size;    // and how much of it is left
  };
  const Row rows[] = {{1, 1, 127},    {127, 128, 0},  {2, 130, 126},
                      {100, 230, 26}, {30, 260, 124}, {740, 1000, 0}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.offset);
    Bytes got(row.read);
    ASSERT_EQ(ar.Read(got.data(), row.read), row.read);
    ASSERT_TRUE(std::equal(got.begin(), got.end(),
                           content.begin() + static_cast<std::ptrdiff_t>(row.offset - row.read)));
    const std::span<const BYTE> window = ar.GetBuffered();
    EXPECT_EQ(window.size(), row.size);
    if (row.size > 0) {
      EXPECT_EQ(window.data(), content.data() + row.offset);
    }
    EXPECT_EQ(file.GetPosition(), row.offset + row.size);
  }
}

TEST_F(ArchiveOnDisk, ADiskFileHasNoBytesInPlace) {
  const std::string path = PathOf("plain.bin");
  {
    CFile file(path.c_str(), CFile::modeCreate | CFile::modeWrite);
    file.Write("abcdef", 6);
  }
  CFile file(path.c_str(), CFile::modeRead);
  EXPECT_TRUE(file.ReadInPlace(4).empty());
  EXPECT_EQ(file.GetPosition(), 0u) << "nothing was read";
}

}  // namespace

// Loads believe a count only as far as this says the data goes, so it must be exact for
// memory and disk files alike, counting what the archive has buffered.
TEST_F(ArchiveOnDisk, BytesLeftCountsBufferedAndUnreadBytes) {
  const std::string path = PathOf("left.bin");
  {
    CFile file(path.c_str(), CFile::modeCreate | CFile::modeWrite);
    const std::string data = Pattern(1000);
    file.Write(data.data(), static_cast<UINT>(data.size()));
  }
  CFile file(path.c_str(), CFile::modeRead);
  CArchive ar(&file, CArchive::load, 128);
  EXPECT_EQ(ar.GetBytesLeft(), 1000u);
  int value = 0;
  ar >> value;  // fills the 128-byte buffer, consumes 4
  EXPECT_EQ(ar.GetBytesLeft(), 996u);
  std::string rest(996, '\0');
  EXPECT_EQ(ar.Read(rest.data(), 996), 996u);
  EXPECT_EQ(ar.GetBytesLeft(), 0u);

  Loading memory(Bytes(10, 0));
  BYTE b = 0;
  memory.ar() >> b;
  EXPECT_EQ(memory.ar().GetBytesLeft(), 9u);
}
