// Runs the benchmarks, then prints each one's time as a ratio to its peer: a
// benchmark named "X/peer:NAME" is the peer of "X", doing the same work another way.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>

namespace {

class PeerReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      if (run.run_type == Run::RT_Iteration && !run.error_occurred) {
        m_times[run.benchmark_name()] = run.GetAdjustedRealTime();
      }
    }
  }

  void PrintRatios() const {
    std::printf("\n%-48s %12s\n", "benchmark (ours / peer)", "throughput");
    for (const auto& [name, time] : m_times) {
      const auto cut = name.find("/peer:");
      if (cut == std::string::npos) continue;
      const auto ours = m_times.find(name.substr(0, cut));
      if (ours == m_times.end() || ours->second <= 0) continue;
      // Same work in both, so the throughput ratio is the inverse of the time ratio.
      std::printf("%-48s %11.2fx of %s\n", ours->first.c_str(), time / ours->second,
                  name.substr(cut + 6).c_str());
    }
  }

 private:
  std::map<std::string, double> m_times;
};

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  PeerReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  reporter.PrintRatios();
  benchmark::Shutdown();
  return 0;
}
