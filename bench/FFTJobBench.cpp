// What the text exchange costs an FFT job: a whole job of 2^20 samples through CFFTMgr
// (write the exchange file, run the FFT solver on it, read its output section back)
// beside the solver's transform alone, KissFFT in double precision on the same samples
// in this process. The files live in a temporary folder.
#include <corlith/services/FFT.h>
#include <corlith/test/TempFolder.h>

#include <benchmark/benchmark.h>
#include <kissfft/kissfft.hh>

#include <cmath>
#include <complex>
#include <cstddef>
#include <numbers>
#include <vector>

namespace {

using corlith::test::TempFolder;

constexpr std::size_t kSamples = std::size_t{1} << 20;

double Sample(std::size_t i) {
  const double t = static_cast<double>(i) / static_cast<double>(kSamples);
  return 1.25 * std::sin(2 * std::numbers::pi * 1000 * t) + 0.5 * std::cos(2 * std::numbers::pi * 12345 * t) +
         0.1;
}

void WholeJob(benchmark::State& state) {
  const TempFolder folder("bench-fftjob");
  CArrayD samples;
  for (std::size_t i = 0; i < kSamples; ++i) samples.Add(Sample(i));
  CFFTMgr job;
  job.m_strFFTExePath = CString(CORLITH_FFT_SOLVER);
  job.m_strInputFilePath = CString(folder.PathOf("job.txt"));
  for (auto _ : state) {
    job.SetInputDataForREI(1e-9, samples, "bench", "job");
    job.WriteInputDataFile();
    job.RunFFT();
    job.ReadResultData();
    if (job.m_arrOutputAxis.GetSize() != static_cast<INT_PTR>(kSamples / 2 + 1)) {
      state.SkipWithError("the solver gave no result");
      break;
    }
  }
}
BENCHMARK(WholeJob)->Name("FFT job/2^20 samples")->Unit(benchmark::kMillisecond);

void TransformAlone(benchmark::State& state) {
  std::vector<std::complex<double>> in(kSamples);
  for (std::size_t i = 0; i < kSamples; ++i) in[i] = Sample(i);
  std::vector<std::complex<double>> out(kSamples);
  for (auto _ : state) {
    const kissfft<double> fft(kSamples, false);
    fft.transform(in.data(), out.data());
    benchmark::DoNotOptimize(out.data());
  }
}
BENCHMARK(TransformAlone)
    ->Name("FFT job/2^20 samples/peer:kissfft transform alone")
    ->Unit(benchmark::kMillisecond);

}  // namespace
