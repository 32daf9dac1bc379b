// The text layer's hot paths beside standard peers doing the same work: splitting CSV
// lines (strtok_r copying each token into a std::string) and matching net names
// against name filters (fnmatch with the equivalent glob).
#include <corlith/text/LString.h>
#include <corlith/text/Tokenizer.h>

#include <benchmark/benchmark.h>
#include <fnmatch.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace {

constexpr int kLines = 1'000'000;

const std::vector<CString>& CsvLines() {
  static const std::vector<CString> lines = [] {
    std::vector<CString> out;
    out.reserve(kLines);
    for (int i = 0; i < kLines; ++i) {
      char line[80];
      std::snprintf(line, sizeof line, "U%d,NET_%d,12.5,-3.25,TOP,PAD%d", i % 977, i, i % 13);
      out.emplace_back(line);
    }
    return out;
  }();
  return lines;
}

void TokenArray(benchmark::State& state) {
  const auto& lines = CsvLines();
  CTokenizer tokenizer;
  const CString delimiters(",");
  CStringArray tokens;
  for (auto _ : state) {
    INT_PTR total = 0;
    for (const CString& line : lines) {
      tokens.RemoveAll();
      tokenizer.GetTokenArray(tokens, line, delimiters);
      total += tokens.GetSize();
    }
    benchmark::DoNotOptimize(total);
  }
  state.SetItemsProcessed(state.iterations() * kLines);
}
BENCHMARK(TokenArray)->Name("CTokenizer::GetTokenArray")->Unit(benchmark::kMillisecond);

void TokenArrayStrtok(benchmark::State& state) {
  const auto& lines = CsvLines();
  std::vector<std::string> tokens;
  std::vector<char> buffer;
  for (auto _ : state) {
    std::size_t total = 0;
    for (const CString& line : lines) {
      tokens.clear();
      // strtok_r writes into its text, so each line is copied first, as a caller must.
      buffer.assign(line.GetString(), line.GetString() + line.GetLength() + 1);
      char* save = nullptr;
      for (char* t = strtok_r(buffer.data(), ",", &save); t; t = strtok_r(nullptr, ",", &save)) {
        tokens.emplace_back(t);
      }
      total += tokens.size();
    }
    benchmark::DoNotOptimize(total);
  }
  state.SetItemsProcessed(state.iterations() * kLines);
}
BENCHMARK(TokenArrayStrtok)->Name("CTokenizer::GetTokenArray/peer:strtok_r")->Unit(benchmark::kMillisecond);

const std::vector<CString>& NetNames() {
  static const std::vector<CString> names = [] {
    const std::array<std::string, 6> fixed = {"GND", "VCC_3V3", "VCC_1V8", "AGND", "CLK_IN", "RESET_N"};
    std::vector<CString> out;
    out.reserve(kLines);
    for (int i = 0; i < kLines; ++i) {
      if (i % 4 == 0) {
        out.emplace_back(fixed[static_cast<std::size_t>(i / 4) % fixed.size()]);
      } else {
        char name[32];
        std::snprintf(name, sizeof name, "NET_%d", i % 20000);
        out.emplace_back(name);
      }
    }
    return out;
  }();
  return names;
}

// Starts-with, ends-with and a four-digit run, with their glob equivalents.
const char* const kFilters[] = {"NET_[*]", "[*]3V3", "NET_[N4]"};
const char* const kGlobs[] = {"NET_*", "*3V3", "NET_[0-9][0-9][0-9][0-9]"};

void NameFilter(benchmark::State& state) {
  const auto& names = NetNames();
  std::vector<CString> filters(std::begin(kFilters), std::end(kFilters));
  for (auto _ : state) {
    long hits = 0;
    for (CString& filter : filters) {
      for (const CString& name : names)
        hits += CLString::IsSuitedForFilter(const_cast<CString&>(name), filter);
    }
    benchmark::DoNotOptimize(hits);
  }
  state.SetItemsProcessed(state.iterations() * kLines * 3);
}
BENCHMARK(NameFilter)->Name("CLString::IsSuitedForFilter")->Unit(benchmark::kMillisecond);

void NameFilterFnmatch(benchmark::State& state) {
  const auto& names = NetNames();
  for (auto _ : state) {
    long hits = 0;
    for (const char* glob : kGlobs) {
      for (const CString& name : names) hits += fnmatch(glob, name.GetString(), 0) == 0;
    }
    benchmark::DoNotOptimize(hits);
  }
  state.SetItemsProcessed(state.iterations() * kLines * 3);
}
BENCHMARK(NameFilterFnmatch)->Name("CLString::IsSuitedForFilter/peer:fnmatch")->Unit(benchmark::kMillisecond);

}  // namespace
