// The FFT job's text exchange: writing 10^6 samples with CFFTMgr::WriteInputDataFile
// beside a plain fprintf("\t%g %g\n") loop writing the same rows, and reading 10^6
// Frequency result rows with CFFTMgr::ReadResultData beside an fgets + strtod loop
// storing the same three columns. Both files live in one temporary folder.
#include <corlith/services/FFT.h>
#include <corlith/test/TempFolder.h>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

using corlith::test::TempFolder;

constexpr int kSamples = 1000000;

const TempFolder& Folder() {
  static const TempFolder folder("bench-fft");
  return folder;
}

// A decaying sine with values that need all six digits.
double Sample(int i) { return 0.731 * (1.0 + i % 1000) / (1.0 + i % 7) - 0.25; }

void WriteExchange(benchmark::State& state) {
  CArrayD samples;
  for (int i = 0; i < kSamples; ++i) samples.Add(Sample(i));
  CFFTMgr job;
  job.m_strInputFilePath = CString(Folder().PathOf("write.txt"));
  job.SetInputDataForREI(1e-9, samples, "bench", "write");
  for (auto _ : state) job.WriteInputDataFile();
}
BENCHMARK(WriteExchange)->Name("WriteInputDataFile/10^6 samples")->Unit(benchmark::kMillisecond);

void WriteFprintf(benchmark::State& state) {
  std::vector<double> axis;
  std::vector<double> values;
  double position = 0.0;
  for (int i = 0; i < kSamples; ++i, position += 1e-9) {
    axis.push_back(position);
    values.push_back(Sample(i));
  }
  const std::string path = Folder().PathOf("fprintf.txt");
  for (auto _ : state) {
    std::FILE* file = std::fopen(path.c_str(), "w");
    if (!file) {
      state.SkipWithError("cannot create the file");
      return;
    }
    for (int i = 0; i < kSamples; ++i) std::fprintf(file, "\t%g %g\n", axis[i], values[i]);
    std::fclose(file);
  }
}
BENCHMARK(WriteFprintf)->Name("WriteInputDataFile/10^6 samples/peer:fprintf")->Unit(benchmark::kMillisecond);

// The result file: an output section of 10^6 Frequency rows.
const std::string& ResultFile() {
  static const std::string path = [] {
    std::string text = "(Output\n\t(Type Frequency)\n";
    char row[96];
    for (int i = 0; i < kSamples; ++i) {
      std::snprintf(row, sizeof row, "\t%g %g %g\n", i * 1e3, Sample(i), -Sample(i + 1));
      text += row;
    }
    return Folder().Write("result.txt", text + ")\n");
  }();
  return path;
}

void ReadResults(benchmark::State& state) {
  CFFTMgr job;
  job.m_strInputFilePath = CString(ResultFile());
  for (auto _ : state) job.ReadResultData();
  if (job.m_arrOutputValue2.GetSize() != kSamples) state.SkipWithError("wrong row count");
}
BENCHMARK(ReadResults)->Name("ReadResultData/10^6 rows")->Unit(benchmark::kMillisecond);

void ReadFgets(benchmark::State& state) {
  const std::string& path = ResultFile();
  std::size_t rows = 0;
  for (auto _ : state) {
    std::vector<double> axis;
    std::vector<double> first;
    std::vector<double> second;
    std::FILE* file = std::fopen(path.c_str(), "r");
    if (!file) {
      state.SkipWithError("cannot open the file");
      return;
    }
    char line[256];
    while (std::fgets(line, sizeof line, file)) {
      char* at = line;
      char* end = nullptr;
      const double x = std::strtod(at, &end);
      if (end == at) continue;  // the section's keyword lines
      at = end;
      const double a = std::strtod(at, &end);
      at = end;
      const double b = std::strtod(at, &end);
      axis.push_back(x);
      first.push_back(a);
      second.push_back(b);
    }
    std::fclose(file);
    rows = second.size();
  }
  if (rows != kSamples) state.SkipWithError("wrong row count");
}
BENCHMARK(ReadFgets)->Name("ReadResultData/10^6 rows/peer:fgets+strtod")->Unit(benchmark::kMillisecond);

}  // namespace
