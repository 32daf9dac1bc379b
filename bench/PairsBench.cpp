// CIntStringPairArray::Sort of 10^5 pairs by string (the locale's case-insensitive
// collation) and by integer, each beside std::sort over the same pointers with the same
// comparator: the figure is the cost of our merge sort, which stays in bounds under the
// original's overflowing comparators, against the standard introsort.
#include <corlith/test/Arrays.h>
#include <corlith/values/IntPair.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

constexpr int kCount = 100'000;

CIntStringPairArray MakePairs() {
  CIntStringPairArray pairs;
  unsigned seed = 12345;
  for (int i = 0; i < kCount; ++i) {
    seed = seed * 1103515245u + 12345u;
    const int value = static_cast<int>(seed >> 8) % 1'000'000;
    std::string text = (i % 2 ? "Net_" : "net_") + std::to_string(value);
    pairs.AddElement(value, CString(text.c_str()));
  }
  return pairs;
}

void Ours(benchmark::State& state, int key) {
  const CIntStringPairArray source = MakePairs();
  for (auto _ : state) {
    state.PauseTiming();
    CIntStringPairArray work;
    for (CIntStringPair* p : source) work.CArray<CIntStringPair*, CIntStringPair*>::Add(p);
    state.ResumeTiming();
    work.Sort(key, 1);
    benchmark::DoNotOptimize(work.GetData());
    state.PauseTiming();
    work.RemoveAll();  // the pointers belong to source
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * kCount);
}

void Peer(benchmark::State& state, int key) {
  const CIntStringPairArray source = MakePairs();
  CIntStringPairArray keyed;
  keyed.Sort(key, 1);  // leaves the key and direction set for Compare on this thread
  for (auto _ : state) {
    state.PauseTiming();
    std::vector<CIntStringPair*> work = corlith::test::ToVector(source);
    state.ResumeTiming();
    std::sort(work.begin(), work.end(), [](CIntStringPair* const& a, CIntStringPair* const& b) {
      return CIntStringPairArray::Compare(&a, &b) < 0;
    });
    benchmark::DoNotOptimize(work.data());
  }
  state.SetItemsProcessed(state.iterations() * kCount);
}

void BM_SortByString(benchmark::State& state) { Ours(state, 1); }
void BM_SortByString_Peer(benchmark::State& state) { Peer(state, 1); }
void BM_SortByInteger(benchmark::State& state) { Ours(state, 0); }
void BM_SortByInteger_Peer(benchmark::State& state) { Peer(state, 0); }

}  // namespace

BENCHMARK(BM_SortByString)->Name("IntStringPairArray/Sort/string")->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SortByString_Peer)
    ->Name("IntStringPairArray/Sort/string/peer:std::sort")
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SortByInteger)->Name("IntStringPairArray/Sort/integer")->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SortByInteger_Peer)
    ->Name("IntStringPairArray/Sort/integer/peer:std::sort")
    ->Unit(benchmark::kMillisecond);
