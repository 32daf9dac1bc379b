// Storing and loading 10^7 doubles through CArchive over a CMemFile, beside a plain
// memcpy of the same 80 MB; loading a CDWordArray of 10^7 values again and again into
// one array (which keeps its capacity), beside a memcpy of its payload into memory
// touched before, so that neither side is a page-fault count.
#include <corlith/framework/Archive.h>
#include <corlith/framework/MemFile.h>
#include <corlith/framework/StringArray.h>

#include <benchmark/benchmark.h>

#include <cstring>
#include <memory>
#include <vector>

namespace {

constexpr std::size_t kCount = 10'000'000;
constexpr std::size_t kBytes = kCount * sizeof(double);

std::vector<double> MakeValues() {
  std::vector<double> values(kCount);
  for (std::size_t i = 0; i < kCount; ++i) values[i] = static_cast<double>(i) * 0.25;
  return values;
}

void StoreDoubles(benchmark::State& state) {
  const std::vector<double> values = MakeValues();
  for (auto _ : state) {
    CMemFile file(static_cast<UINT>(kBytes));
    CArchive ar(&file, CArchive::store, 1 << 16);
    for (double v : values) ar << v;
    ar.Close();
    benchmark::DoNotOptimize(file.GetData().data());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kBytes));
}

void StoreDoublesPeer(benchmark::State& state) {
  const std::vector<double> values = MakeValues();
  for (auto _ : state) {
    // Fresh, uninitialised memory, as the memory file's first growth gets.
    std::unique_ptr<double[]> target(new double[kCount]);
    std::memcpy(target.get(), values.data(), kBytes);
    benchmark::DoNotOptimize(target.get());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kBytes));
}

void LoadDoubles(benchmark::State& state) {
  const std::vector<double> values = MakeValues();
  std::vector<double> loaded(kCount);
  for (auto _ : state) {
    CMemFile file(reinterpret_cast<BYTE*>(const_cast<double*>(values.data())), static_cast<UINT>(kBytes));
    CArchive ar(&file, CArchive::load, 1 << 16);
    for (double& v : loaded) ar >> v;
    benchmark::DoNotOptimize(loaded.data());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kBytes));
}

void LoadDoublesPeer(benchmark::State& state) {
  const std::vector<double> values = MakeValues();
  std::vector<double> loaded(kCount);
  for (auto _ : state) {
    std::memcpy(loaded.data(), values.data(), kBytes);
    benchmark::DoNotOptimize(loaded.data());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kBytes));
}

std::vector<BYTE> StoredDWords() {
  CDWordArray values;
  values.SetSize(static_cast<INT_PTR>(kCount));
  for (std::size_t i = 0; i < kCount; ++i)
    values[static_cast<INT_PTR>(i)] = static_cast<DWORD>(i * 2654435761u);
  CMemFile file;
  CArchive ar(&file, CArchive::store, 1 << 16);
  values.Serialize(ar);
  ar.Close();
  return {file.GetData().begin(), file.GetData().end()};
}

void LoadDWordArray(benchmark::State& state) {
  std::vector<BYTE> bytes = StoredDWords();
  CDWordArray loaded;
  // One load before timing, as the peer's target is touched before timing: otherwise
  // the first timed load alone pays for faulting in the array's pages.
  {
    CMemFile file(bytes.data(), static_cast<UINT>(bytes.size()));
    CArchive ar(&file, CArchive::load, 1 << 16);
    loaded.Serialize(ar);
  }
  for (auto _ : state) {
    CMemFile file(bytes.data(), static_cast<UINT>(bytes.size()));
    CArchive ar(&file, CArchive::load, 1 << 16);
    loaded.Serialize(ar);
    benchmark::DoNotOptimize(loaded.GetData());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes.size()));
}

void LoadDWordArrayPeer(benchmark::State& state) {
  const std::vector<BYTE> bytes = StoredDWords();
  std::vector<BYTE> target(bytes.size());
  for (auto _ : state) {
    std::memcpy(target.data(), bytes.data(), bytes.size());
    benchmark::DoNotOptimize(target.data());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes.size()));
}

}  // namespace

BENCHMARK(LoadDWordArray)->Name("Archive/LoadDWordArray")->Unit(benchmark::kMillisecond);
BENCHMARK(LoadDWordArrayPeer)->Name("Archive/LoadDWordArray/peer:memcpy")->Unit(benchmark::kMillisecond);
BENCHMARK(StoreDoubles)->Name("Archive/StoreDoubles")->Unit(benchmark::kMillisecond);
BENCHMARK(StoreDoublesPeer)->Name("Archive/StoreDoubles/peer:memcpy")->Unit(benchmark::kMillisecond);
BENCHMARK(LoadDoubles)->Name("Archive/LoadDoubles")->Unit(benchmark::kMillisecond);
BENCHMARK(LoadDoublesPeer)->Name("Archive/LoadDoubles/peer:memcpy")->Unit(benchmark::kMillisecond);
