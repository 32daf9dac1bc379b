// Storing and loading 10^6 points through the value-array form (CArrayPointD) and the
// pointer-array form (C4PointDArray), each beside a memcpy of the same archive payload
// into fresh memory (a load fills a fresh array, so both pay for first touching their
// pages). Loading 10^7 numbers into each numeric array, beside a memcpy of the payload
// into memory touched before: the array is loaded again and again and keeps its
// capacity, so neither side is a page-fault count, and an extra pass over the elements
// (initialising them before reading over them) shows in full.
#include <corlith/framework/MemFile.h>
#include <corlith/values/4PointD.h>
#include <corlith/values/ArrayD.h>
#include <corlith/values/PointD.h>

#include <benchmark/benchmark.h>

#include <cstring>
#include <memory>
#include <type_traits>
#include <vector>

namespace {

constexpr int kCount = 1'000'000;
constexpr INT_PTR kNumbers = 10'000'000;

CArrayPointD MakePoints() {
  CArrayPointD points;
  for (int i = 0; i < kCount; ++i) {
    CPointD p(i * 0.5, i * -0.25);
    points.Add(p);
  }
  return points;
}

C4PointDArray MakeQuads() {
  C4PointDArray quads;
  for (int i = 0; i < kCount; ++i)
    quads.Add(new C4PointD(CPointD(i, 0), CPointD(i, 1), CPointD(i + 1, 1), CPointD(i + 1, 0)));
  return quads;
}

template <typename T>
std::vector<BYTE> Stored(T& value) {
  CMemFile file;
  CArchive ar(&file, CArchive::store, 1 << 16);
  value.Serialize(ar);
  ar.Close();
  return {file.GetData().begin(), file.GetData().end()};
}

template <typename T>
void StoreBench(benchmark::State& state, T& value) {
  const std::size_t bytes = Stored(value).size();
  for (auto _ : state) {
    CMemFile file(static_cast<UINT>(bytes));
    CArchive ar(&file, CArchive::store, 1 << 16);
    value.Serialize(ar);
    ar.Close();
    benchmark::DoNotOptimize(file.GetData().data());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes));
}

template <typename T>
void LoadBench(benchmark::State& state, T& value) {
  std::vector<BYTE> bytes = Stored(value);
  for (auto _ : state) {
    T loaded;
    CMemFile file(bytes.data(), static_cast<UINT>(bytes.size()));
    CArchive ar(&file, CArchive::load, 1 << 16);
    loaded.Serialize(ar);
    benchmark::DoNotOptimize(loaded.GetData());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes.size()));
}

void MemcpyBench(benchmark::State& state, std::size_t bytes) {
  std::vector<BYTE> source(bytes, 1);
  for (auto _ : state) {
    std::unique_ptr<BYTE[]> target(new BYTE[bytes]);
    std::memcpy(target.get(), source.data(), bytes);
    benchmark::DoNotOptimize(target.get());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes));
}

void StorePointD(benchmark::State& state) {
  CArrayPointD points = MakePoints();
  StoreBench(state, points);
}
void LoadPointD(benchmark::State& state) {
  CArrayPointD points = MakePoints();
  LoadBench(state, points);
}
void PointDPeer(benchmark::State& state) {
  CArrayPointD points = MakePoints();
  MemcpyBench(state, Stored(points).size());
}
void Store4PointD(benchmark::State& state) {
  C4PointDArray quads = MakeQuads();
  StoreBench(state, quads);
}
void Load4PointD(benchmark::State& state) {
  C4PointDArray quads = MakeQuads();
  LoadBench(state, quads);
}
void FourPointDPeer(benchmark::State& state) {
  C4PointDArray quads = MakeQuads();
  MemcpyBench(state, Stored(quads).size());
}

// 10^7 numbers, all different, so a load that dropped or reordered some would show.
template <typename ARRAY>
ARRAY MakeNumbers() {
  ARRAY numbers;
  numbers.SetSize(kNumbers);
  auto* data = numbers.GetData();
  for (INT_PTR i = 0; i < kNumbers; ++i)
    data[i] = static_cast<std::remove_pointer_t<decltype(data)>>(i * 3 + 1);
  return numbers;
}

template <typename ARRAY>
void LoadNumbers(benchmark::State& state) {
  ARRAY numbers = MakeNumbers<ARRAY>();
  std::vector<BYTE> bytes = Stored(numbers);
  ARRAY loaded;
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
  if (loaded.GetSize() != kNumbers || loaded[kNumbers - 1] != numbers[kNumbers - 1])
    state.SkipWithError("wrong load");
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes.size()));
}
template <typename ARRAY>
void NumbersPeer(benchmark::State& state) {
  ARRAY numbers = MakeNumbers<ARRAY>();
  const std::vector<BYTE> bytes = Stored(numbers);
  std::vector<BYTE> target(bytes.size());
  for (auto _ : state) {
    std::memcpy(target.data(), bytes.data(), bytes.size());
    benchmark::DoNotOptimize(target.data());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes.size()));
}

}  // namespace

BENCHMARK(LoadNumbers<CArrayD>)->Name("Values/LoadArrayD")->Unit(benchmark::kMillisecond);
BENCHMARK(NumbersPeer<CArrayD>)->Name("Values/LoadArrayD/peer:memcpy")->Unit(benchmark::kMillisecond);
BENCHMARK(LoadNumbers<CArrayN>)->Name("Values/LoadArrayN")->Unit(benchmark::kMillisecond);
BENCHMARK(NumbersPeer<CArrayN>)->Name("Values/LoadArrayN/peer:memcpy")->Unit(benchmark::kMillisecond);
BENCHMARK(LoadNumbers<CArrayF>)->Name("Values/LoadArrayF")->Unit(benchmark::kMillisecond);
BENCHMARK(NumbersPeer<CArrayF>)->Name("Values/LoadArrayF/peer:memcpy")->Unit(benchmark::kMillisecond);
BENCHMARK(LoadNumbers<CNArrayL>)->Name("Values/LoadNArrayL")->Unit(benchmark::kMillisecond);
BENCHMARK(NumbersPeer<CNArrayL>)->Name("Values/LoadNArrayL/peer:memcpy")->Unit(benchmark::kMillisecond);
BENCHMARK(StorePointD)->Name("Values/StoreArrayPointD")->Unit(benchmark::kMillisecond);
BENCHMARK(PointDPeer)->Name("Values/StoreArrayPointD/peer:memcpy")->Unit(benchmark::kMillisecond);
BENCHMARK(LoadPointD)->Name("Values/LoadArrayPointD")->Unit(benchmark::kMillisecond);
BENCHMARK(PointDPeer)->Name("Values/LoadArrayPointD/peer:memcpy")->Unit(benchmark::kMillisecond);
BENCHMARK(Store4PointD)->Name("Values/Store4PointDArray")->Unit(benchmark::kMillisecond);
BENCHMARK(FourPointDPeer)->Name("Values/Store4PointDArray/peer:memcpy")->Unit(benchmark::kMillisecond);
BENCHMARK(Load4PointD)->Name("Values/Load4PointDArray")->Unit(benchmark::kMillisecond);
BENCHMARK(FourPointDPeer)->Name("Values/Load4PointDArray/peer:memcpy")->Unit(benchmark::kMillisecond);
