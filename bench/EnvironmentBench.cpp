// KTUtility's file walks and comparisons beside standard peers doing the same work:
// listing 10^5 files in nested folders (std::filesystem::recursive_directory_iterator
// collecting the same paths) and comparing two equal 256 MiB files (a read + memcmp
// loop over one pair of fixed buffers). The trees and files are made once per process.
#include <corlith/environment/Utility.h>
#include <corlith/test/TempFolder.h>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using corlith::test::TempFolder;

constexpr int kTopFolders = 20;
constexpr int kSubFolders = 10;
constexpr int kFilesPerFolder = 500;
constexpr std::size_t kFiles = std::size_t{kTopFolders} * kSubFolders * kFilesPerFolder;  // 10^5
constexpr std::size_t kBigFile = std::size_t{256} << 20;
constexpr std::size_t kBlock = std::size_t{1} << 20;

// 10^5 one-byte files in 200 folders two levels down, made once and removed at exit.
const TempFolder& Tree() {
  static const TempFolder tree = [] {
    TempFolder folder("bench-tree");
    char name[64];
    for (int top = 0; top < kTopFolders; ++top) {
      for (int sub = 0; sub < kSubFolders; ++sub) {
        std::snprintf(name, sizeof name, "top%02d/sub%02d", top, sub);
        const fs::path dir = folder.Path() / name;
        fs::create_directories(dir);
        for (int file = 0; file < kFilesPerFolder; ++file) {
          std::snprintf(name, sizeof name, "part_%04d.txt", file);
          std::ofstream(dir / name).put('x');
        }
      }
    }
    return folder;
  }();
  return tree;
}

// Two equal 256 MiB files, made once and removed at exit.
const TempFolder& BigFiles() {
  static const TempFolder files = [] {
    TempFolder folder("bench-big");
    std::vector<char> block(kBlock);
    for (std::size_t i = 0; i < block.size(); ++i) block[i] = static_cast<char>(i * 131 + (i >> 9));
    for (const char* name : {"a.bin", "b.bin"}) {
      std::ofstream out(folder.Path() / name, std::ios::binary);
      for (std::size_t written = 0; written < kBigFile; written += kBlock) out.write(block.data(), kBlock);
    }
    return folder;
  }();
  return files;
}

void ListAllFiles(benchmark::State& state) {
  const CString root(Tree().Path().string());
  KTUtility& utility = *KTUtility::GetInstance();
  INT_PTR count = 0;
  for (auto _ : state) {
    CStringArray list;
    utility.GetAllFileListIn(root, list, "*.*", TRUE);
    count = list.GetSize();
    benchmark::DoNotOptimize(list.GetData());
  }
  if (static_cast<std::size_t>(count) != kFiles) state.SkipWithError("wrong file count");
  state.SetItemsProcessed(state.iterations() * count);
}
BENCHMARK(ListAllFiles)->Name("KTUtility::GetAllFileListIn")->Unit(benchmark::kMillisecond);

void ListAllFilesPeer(benchmark::State& state) {
  const fs::path root = Tree().Path();
  std::size_t count = 0;
  for (auto _ : state) {
    std::vector<std::string> list;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(root)) {
      if (!entry.is_directory()) list.push_back(entry.path().string());
    }
    count = list.size();
    benchmark::DoNotOptimize(list.data());
  }
  if (count != kFiles) state.SkipWithError("wrong file count");
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * count));
}
BENCHMARK(ListAllFilesPeer)
    ->Name("KTUtility::GetAllFileListIn/peer:recursive_directory_iterator")
    ->Unit(benchmark::kMillisecond);

void CompareBigFiles(benchmark::State& state) {
  const std::string a = (BigFiles().Path() / "a.bin").string();
  const std::string b = (BigFiles().Path() / "b.bin").string();
  KTUtility& utility = *KTUtility::GetInstance();
  for (auto _ : state) {
    if (utility.IsSameFile(a.c_str(), b.c_str()) != 1) state.SkipWithError("files differ");
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * 2 * kBigFile));
}
BENCHMARK(CompareBigFiles)->Name("KTUtility::IsSameFile")->Unit(benchmark::kMillisecond);

void CompareBigFilesPeer(benchmark::State& state) {
  const fs::path a = BigFiles().Path() / "a.bin";
  const fs::path b = BigFiles().Path() / "b.bin";
  const auto bufferA = std::make_unique<char[]>(kBlock);
  const auto bufferB = std::make_unique<char[]>(kBlock);
  for (auto _ : state) {
    std::FILE* fa = std::fopen(a.c_str(), "rb");
    std::FILE* fb = std::fopen(b.c_str(), "rb");
    bool equal = fa != nullptr && fb != nullptr;
    while (equal) {
      const std::size_t na = std::fread(bufferA.get(), 1, kBlock, fa);
      const std::size_t nb = std::fread(bufferB.get(), 1, kBlock, fb);
      equal = na == nb && std::memcmp(bufferA.get(), bufferB.get(), na) == 0;
      if (na == 0) break;
    }
    if (fa != nullptr) std::fclose(fa);
    if (fb != nullptr) std::fclose(fb);
    if (!equal) state.SkipWithError("files differ");
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * 2 * kBigFile));
}
BENCHMARK(CompareBigFilesPeer)->Name("KTUtility::IsSameFile/peer:read+memcmp")->Unit(benchmark::kMillisecond);

}  // namespace
