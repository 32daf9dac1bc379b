// The cost of the checked formatter on a typical report line, beside plain snprintf
// into a stack buffer with the same format and values, registered as its peer so the
// run prints the ratio.
#include <corlith/framework/Format.h>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>

namespace {

constexpr const char* kLine = "%s : %d items, %.3f mm, %08X";
const std::string kNet = "NET_VCC_3V3";
constexpr int kItems = 1742;
constexpr double kLength = 12.7053;
constexpr unsigned kId = 0xBEEF12u;

void BM_FormatText(benchmark::State& state) {
  for (auto _ : state) {
    std::string s = corlith::FormatText(kLine, kNet, kItems, kLength, kId);
    benchmark::DoNotOptimize(s);
  }
}
BENCHMARK(BM_FormatText)->Name("Format/FormatText");

void BM_Snprintf(benchmark::State& state) {
  for (auto _ : state) {
    char buffer[128];
    const int n = std::snprintf(buffer, sizeof buffer, kLine, kNet.c_str(), kItems, kLength, kId);
    benchmark::DoNotOptimize(buffer);
    benchmark::DoNotOptimize(n);
  }
}
BENCHMARK(BM_Snprintf)->Name("Format/FormatText/peer:snprintf");

}  // namespace
