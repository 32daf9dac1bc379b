// The extended-string layer beside standard peers doing the same work: the MD5 of a
// 256 MiB file (a direct EVP loop with the same 4096-byte reads), the natural sort of
// component names (std::stable_sort with strverscmp), de-duplication and set building
// over 10^5 names or pointers (std::unordered_set doing the same), and a CSV table of
// 10^6 cells saved and loaded (an fwrite loop and a getline loop splitting at commas).
#include <corlith/text/LString.h>
#include <corlith/text/MD5Main.h>
#include <corlith/text/StringEx.h>
#include <corlith/values/ExPtrArray.h>

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <openssl/evp.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <random>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace {

// Appends rather than "text" + std::to_string(...), which GCC 12 warns about wrongly.
std::string Cat(std::string a, const std::string& b, const std::string& c = {}, const std::string& d = {}) {
  a += b;
  a += c;
  a += d;
  return a;
}

// --- MD5 ---------------------------------------------------------------------------

std::string Md5Path() { return Cat("/tmp/corlith_md5bench_", std::to_string(::getpid()), ".bin"); }
constexpr std::size_t kMd5Bytes = std::size_t{256} << 20;

void CreateMd5File(const benchmark::State&) {
  std::vector<char> block(1 << 20);
  std::mt19937 rng(1);
  for (char& c : block) c = static_cast<char>(rng());
  std::FILE* f = std::fopen(Md5Path().c_str(), "wb");
  if (!f) return;
  for (std::size_t done = 0; done < kMd5Bytes; done += block.size())
    std::fwrite(block.data(), 1, block.size(), f);
  std::fclose(f);
}

void RemoveMd5File(const benchmark::State&) { std::remove(Md5Path().c_str()); }

void CalculateMD5(benchmark::State& state) {
  const CString path(Md5Path());
  for (auto _ : state) {
    CString digest;
    if (!CMD5Main::CalculateMD5(path, digest)) state.SkipWithError("cannot hash the file");
    benchmark::DoNotOptimize(digest);
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kMd5Bytes));
}
BENCHMARK(CalculateMD5)
    ->Name("CMD5Main::CalculateMD5")
    ->Setup(CreateMd5File)
    ->Teardown(RemoveMd5File)
    ->Unit(benchmark::kMillisecond);

void EvpLoop(benchmark::State& state) {
  const std::string path = Md5Path();
  std::vector<unsigned char> block(4096);
  for (auto _ : state) {
    const int fd = ::open(path.c_str(), O_RDONLY);
    EVP_MD_CTX* ctx = EVP_MD_CTX_new();
    EVP_DigestInit_ex(ctx, EVP_md5(), nullptr);
    for (ssize_t n; (n = ::read(fd, block.data(), block.size())) > 0;) {
      EVP_DigestUpdate(ctx, block.data(), static_cast<std::size_t>(n));
    }
    unsigned char digest[16];
    unsigned int length = 0;
    EVP_DigestFinal_ex(ctx, digest, &length);
    EVP_MD_CTX_free(ctx);
    ::close(fd);
    benchmark::DoNotOptimize(digest);
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kMd5Bytes));
}
BENCHMARK(EvpLoop)
    ->Name("CMD5Main::CalculateMD5/peer:EVP_read_loop")
    ->Setup(CreateMd5File)
    ->Teardown(RemoveMd5File)
    ->Unit(benchmark::kMillisecond);

// --- natural sort --------------------------------------------------------------------

std::vector<std::string> ComponentNames(std::size_t n) {
  static const char* const kPrefixes[] = {"R", "C", "U", "L", "D", "Q", "J", "TP", "FB", "SW"};
  std::mt19937 rng(42);
  std::vector<std::string> out;
  out.reserve(n);
  for (std::size_t i = 0; i < n; ++i) {
    std::string name = kPrefixes[rng() % 10];
    name += std::to_string(rng() % (n / 4 + 1));
    if (rng() % 8 == 0) name += Cat("_", std::to_string(rng() % 4));
    out.push_back(std::move(name));
  }
  return out;
}

template <int N>
void SortStringArray(benchmark::State& state) {
  const auto names = ComponentNames(N);
  for (auto _ : state) {
    state.PauseTiming();
    CStringArray array;
    for (const std::string& s : names) array.Add(CString(s));
    state.ResumeTiming();
    CStringSorter::SortStringArray(array);
    benchmark::DoNotOptimize(array.GetData());
  }
  state.SetItemsProcessed(state.iterations() * N);
}
// One name per size (not Arg), so that BenchMain pairs each size with its own peer.
BENCHMARK(SortStringArray<10'000>)
    ->Name("CStringSorter::SortStringArray/10^4")
    ->Unit(benchmark::kMillisecond);
BENCHMARK(SortStringArray<100'000>)
    ->Name("CStringSorter::SortStringArray/10^5")
    ->Unit(benchmark::kMillisecond);

template <int N>
void StableSortStrverscmp(benchmark::State& state) {
  const auto names = ComponentNames(N);
  for (auto _ : state) {
    state.PauseTiming();
    std::vector<std::string> v(names);
    state.ResumeTiming();
    std::stable_sort(v.begin(), v.end(), [](const std::string& a, const std::string& b) {
      return strverscmp(a.c_str(), b.c_str()) < 0;
    });
    benchmark::DoNotOptimize(v.data());
  }
  state.SetItemsProcessed(state.iterations() * N);
}
BENCHMARK(StableSortStrverscmp<10'000>)
    ->Name("CStringSorter::SortStringArray/10^4/peer:stable_sort_strverscmp")
    ->Unit(benchmark::kMillisecond);
BENCHMARK(StableSortStrverscmp<100'000>)
    ->Name("CStringSorter::SortStringArray/10^5/peer:stable_sort_strverscmp")
    ->Unit(benchmark::kMillisecond);

// --- de-duplication ----------------------------------------------------------------
// 10^5 names drawn from 2.5 * 10^4 distinct ones, so most are duplicates, as net and
// component lists gathered from several sheets are.

constexpr int kDedup = 100'000;

const std::vector<std::string>& DedupNames() {
  static const std::vector<std::string> names = ComponentNames(kDedup);
  return names;
}

// What every peer does: keep the first occurrence of each text, in order.
std::vector<std::string> FirstOccurrences(const std::vector<std::string>& in) {
  std::unordered_set<std::string_view> seen;
  seen.reserve(in.size());
  std::vector<std::string> out;
  for (const std::string& s : in) {
    if (seen.insert(s).second) out.push_back(s);
  }
  return out;
}

void RemoveDuplicateElements(benchmark::State& state) {
  for (auto _ : state) {
    state.PauseTiming();
    CLStringArray array;
    for (const std::string& s : DedupNames()) array.Add(CString(s));
    state.ResumeTiming();
    array.RemoveDuplicateElements();
    benchmark::DoNotOptimize(array.GetData());
  }
  state.SetItemsProcessed(state.iterations() * kDedup);
}
BENCHMARK(RemoveDuplicateElements)
    ->Name("CLStringArray::RemoveDuplicateElements/10^5")
    ->Unit(benchmark::kMillisecond);

void FirstOccurrencesPeer(benchmark::State& state) {
  for (auto _ : state) {
    state.PauseTiming();
    std::vector<std::string> v(DedupNames());
    state.ResumeTiming();
    v = FirstOccurrences(v);
    benchmark::DoNotOptimize(v.data());
  }
  state.SetItemsProcessed(state.iterations() * kDedup);
}
BENCHMARK(FirstOccurrencesPeer)
    ->Name("CLStringArray::RemoveDuplicateElements/10^5/peer:unordered_set")
    ->Unit(benchmark::kMillisecond);

void SetAdd(benchmark::State& state) {
  std::vector<CString> texts(DedupNames().begin(), DedupNames().end());
  for (auto _ : state) {
    CStringExSet set;
    for (const CString& s : texts) set.Add(s);
    benchmark::DoNotOptimize(set.GetData());
  }
  state.SetItemsProcessed(state.iterations() * kDedup);
}
BENCHMARK(SetAdd)->Name("CStringExSet::Add/10^5")->Unit(benchmark::kMillisecond);

// A set of texts and their order, as CStringExSet keeps them.
void SetAddPeer(benchmark::State& state) {
  for (auto _ : state) {
    std::unordered_set<std::string> set;
    std::vector<std::string> order;
    for (const std::string& s : DedupNames()) {
      if (set.insert(s).second) order.push_back(s);
    }
    benchmark::DoNotOptimize(order.data());
  }
  state.SetItemsProcessed(state.iterations() * kDedup);
}
BENCHMARK(SetAddPeer)->Name("CStringExSet::Add/10^5/peer:unordered_set")->Unit(benchmark::kMillisecond);

void SetExtract(benchmark::State& state) {
  CStringExSet all;
  CStringExSet half;
  for (const std::string& s : DedupNames()) {
    if (all.Add(CString(s)) >= 0 && all.GetSize() % 2 == 0) half.Add(CString(s));
  }
  for (auto _ : state) {
    state.PauseTiming();
    CStringExSet set(all);
    state.ResumeTiming();
    set.Extract(half);
    benchmark::DoNotOptimize(set.GetData());
  }
  state.SetItemsProcessed(state.iterations() * all.GetSize());
}
BENCHMARK(SetExtract)->Name("CStringExSet::Extract/10^5")->Unit(benchmark::kMillisecond);

void SetExtractPeer(benchmark::State& state) {
  const std::vector<std::string> all = FirstOccurrences(DedupNames());
  std::vector<std::string> half;
  for (std::size_t i = 1; i < all.size(); i += 2) half.push_back(all[i]);
  for (auto _ : state) {
    state.PauseTiming();
    std::vector<std::string> set(all);
    state.ResumeTiming();
    const std::unordered_set<std::string_view> drop(half.begin(), half.end());
    std::erase_if(set, [&](const std::string& s) { return drop.count(s) != 0; });
    benchmark::DoNotOptimize(set.data());
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(all.size()));
}
BENCHMARK(SetExtractPeer)
    ->Name("CStringExSet::Extract/10^5/peer:unordered_set")
    ->Unit(benchmark::kMillisecond);

// Pointer arrays: 10^5 slots over 2.5 * 10^4 objects.
using PointerArray = CExPtrArray<CString*, CString*>;

std::vector<CString*> DedupPointers() {
  static std::vector<CString> objects(kDedup / 4);
  std::mt19937 rng(3);
  std::vector<CString*> out(kDedup);
  for (CString*& p : out) p = &objects[rng() % objects.size()];
  return out;
}

void PointerDedup(benchmark::State& state) {
  const std::vector<CString*> pointers = DedupPointers();
  for (auto _ : state) {
    state.PauseTiming();
    PointerArray array;
    for (CString* p : pointers) array.Add(p);
    state.ResumeTiming();
    array.RemoveDuplicatedElements();
    benchmark::DoNotOptimize(array.GetData());
  }
  state.SetItemsProcessed(state.iterations() * kDedup);
}
BENCHMARK(PointerDedup)->Name("CExPtrArray::RemoveDuplicatedElements/10^5")->Unit(benchmark::kMillisecond);

void PointerDedupPeer(benchmark::State& state) {
  const std::vector<CString*> pointers = DedupPointers();
  for (auto _ : state) {
    state.PauseTiming();
    std::vector<CString*> v(pointers);
    state.ResumeTiming();
    std::unordered_set<CString*> seen;
    seen.reserve(v.size());
    std::erase_if(v, [&](CString* p) { return !seen.insert(p).second; });
    benchmark::DoNotOptimize(v.data());
  }
  state.SetItemsProcessed(state.iterations() * kDedup);
}
BENCHMARK(PointerDedupPeer)
    ->Name("CExPtrArray::RemoveDuplicatedElements/10^5/peer:unordered_set")
    ->Unit(benchmark::kMillisecond);

void PointerSubtract(benchmark::State& state) {
  const std::vector<CString*> pointers = DedupPointers();
  PointerArray other;
  for (std::size_t i = 0; i < pointers.size(); i += 2) other.Add(pointers[i]);
  for (auto _ : state) {
    state.PauseTiming();
    PointerArray array;
    for (CString* p : pointers) array.Add(p);
    state.ResumeTiming();
    array.Subtract(other);
    benchmark::DoNotOptimize(array.GetData());
  }
  state.SetItemsProcessed(state.iterations() * kDedup);
}
BENCHMARK(PointerSubtract)->Name("CExPtrArray::Subtract/10^5")->Unit(benchmark::kMillisecond);

// The same multiset difference: each pointer of other removes one slot, the first.
void PointerSubtractPeer(benchmark::State& state) {
  const std::vector<CString*> pointers = DedupPointers();
  std::vector<CString*> other;
  for (std::size_t i = 0; i < pointers.size(); i += 2) other.push_back(pointers[i]);
  for (auto _ : state) {
    state.PauseTiming();
    std::vector<CString*> v(pointers);
    state.ResumeTiming();
    std::unordered_multiset<CString*> pending(other.begin(), other.end());
    std::erase_if(v, [&](CString* p) {
      const auto found = pending.find(p);
      if (found == pending.end()) return false;
      pending.erase(found);
      return true;
    });
    benchmark::DoNotOptimize(v.data());
  }
  state.SetItemsProcessed(state.iterations() * kDedup);
}
BENCHMARK(PointerSubtractPeer)
    ->Name("CExPtrArray::Subtract/10^5/peer:unordered_multiset")
    ->Unit(benchmark::kMillisecond);

// --- CSV -----------------------------------------------------------------------------

constexpr int kRows = 100'000;
constexpr int kCols = 10;
std::string CsvPath() { return Cat("/tmp/corlith_csvbench_", std::to_string(::getpid()), ".csv"); }

std::vector<std::vector<std::string>> Cells() {
  std::vector<std::vector<std::string>> rows(kRows);
  for (int r = 0; r < kRows; ++r) {
    for (int c = 0; c < kCols; ++c) rows[r].push_back(Cat("U", std::to_string(r), "_", std::to_string(c)));
  }
  return rows;
}

void CsvSave(benchmark::State& state) {
  CStringArrayArray table;
  for (const auto& cells : Cells()) {
    auto* row = new CStringArray;  // the table owns it from Add on
    for (const std::string& c : cells) row->Add(CString(c));
    table.Add(row);
  }
  for (auto _ : state) table.SaveToCSV_File(CString(CsvPath()));
  std::remove(CsvPath().c_str());
  state.SetItemsProcessed(state.iterations() * kRows * kCols);
}
BENCHMARK(CsvSave)->Name("CStringArrayArray::SaveToCSV_File")->Unit(benchmark::kMillisecond);

void CsvSaveFwrite(benchmark::State& state) {
  const auto rows = Cells();
  for (auto _ : state) {
    std::FILE* f = std::fopen(CsvPath().c_str(), "wb");
    for (const auto& cells : rows) {
      for (std::size_t c = 0; c < cells.size(); ++c) {
        if (c) std::fputc(',', f);
        std::fwrite(cells[c].data(), 1, cells[c].size(), f);
      }
      std::fwrite("\r\n", 1, 2, f);
    }
    std::fclose(f);
  }
  std::remove(CsvPath().c_str());
  state.SetItemsProcessed(state.iterations() * kRows * kCols);
}
BENCHMARK(CsvSaveFwrite)
    ->Name("CStringArrayArray::SaveToCSV_File/peer:fwrite")
    ->Unit(benchmark::kMillisecond);

void WriteCsvFile(const benchmark::State&) {
  std::ofstream out(CsvPath(), std::ios::binary);
  for (const auto& cells : Cells()) {
    for (std::size_t c = 0; c < cells.size(); ++c) out << (c ? "," : "") << cells[c];
    out << "\r\n";
  }
}
void RemoveCsvFile(const benchmark::State&) { std::remove(CsvPath().c_str()); }

void CsvLoad(benchmark::State& state) {
  for (auto _ : state) {
    CStringArrayArray table;
    table.LoadToCSV_File(CString(CsvPath()));
    benchmark::DoNotOptimize(table.GetSize());
  }
  state.SetItemsProcessed(state.iterations() * kRows * kCols);
}
BENCHMARK(CsvLoad)
    ->Name("CStringArrayArray::LoadToCSV_File")
    ->Setup(WriteCsvFile)
    ->Teardown(RemoveCsvFile)
    ->Unit(benchmark::kMillisecond);

void CsvLoadGetline(benchmark::State& state) {
  for (auto _ : state) {
    std::ifstream in(CsvPath(), std::ios::binary);
    std::vector<std::vector<std::string>> rows;
    std::string line;
    while (std::getline(in, line)) {
      if (!line.empty() && line.back() == '\r') line.pop_back();
      if (line.empty()) continue;
      auto& row = rows.emplace_back();
      for (std::size_t at = 0; at <= line.size();) {
        const std::size_t comma = std::min(line.find(',', at), line.size());
        if (comma > at) row.emplace_back(line, at, comma - at);
        at = comma + 1;
      }
    }
    benchmark::DoNotOptimize(rows.size());
  }
  state.SetItemsProcessed(state.iterations() * kRows * kCols);
}
BENCHMARK(CsvLoadGetline)
    ->Name("CStringArrayArray::LoadToCSV_File/peer:getline")
    ->Setup(WriteCsvFile)
    ->Teardown(RemoveCsvFile)
    ->Unit(benchmark::kMillisecond);

}  // namespace
