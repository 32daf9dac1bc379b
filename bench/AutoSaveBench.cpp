// CAutoSaveManager::Push into a folder holding 10^4 back-up files, beside one listing of
// that folder by std::filesystem::directory_iterator (collecting the full paths). Push
// lists the folder once (through KTUtility) for both its numbering and its pruning, so
// its cost should stay within a few listings. Two cases: a maximum above the file count
// (nothing to prune), and the host's steady state with maximum 10^4 (each push deletes
// the smallest back-up and the host writes the new one).
#include <corlith/services/AutoSave.h>
#include <corlith/test/TempFolder.h>

#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using corlith::test::TempFolder;

constexpr int kBackups = 10000;

// A folder of kBackups back-ups, Board.bak1 ... Board.bak10000, made fresh per case.
TempFolder MakeBackups() {
  TempFolder folder("bench-autosave");
  for (int i = 1; i <= kBackups; ++i)
    std::ofstream(folder.Path() / ("Board.bak" + std::to_string(i))).put('x');
  return folder;
}

void ListFolder(benchmark::State& state) {
  const TempFolder folder = MakeBackups();
  std::size_t count = 0;
  for (auto _ : state) {
    std::vector<std::string> paths;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder.Path())) {
      paths.push_back(entry.path().string());
    }
    count = paths.size();
    benchmark::DoNotOptimize(paths.data());
  }
  if (count != kBackups) state.SkipWithError("wrong file count");
}

void PushNoPruning(benchmark::State& state) {
  const TempFolder folder = MakeBackups();
  const CString path(folder.Path().string());
  CAutoSaveManager manager;
  manager.m_nMaxBackupCount = 2 * kBackups;
  int number = 0;
  for (auto _ : state) {
    CAutoSaveItem* item = manager.Push(path, "/docs/Board.pcb", "board");
    number = item->m_nBackupNumber;
    manager.Pop();
  }
  if (number != kBackups + 1) state.SkipWithError("wrong number");
}
BENCHMARK(PushNoPruning)->Name("Push/10000 backups, none pruned")->Unit(benchmark::kMillisecond);
BENCHMARK(ListFolder)
    ->Name("Push/10000 backups, none pruned/peer:directory_iterator")
    ->Unit(benchmark::kMillisecond);

void PushHostCycle(benchmark::State& state) {
  const TempFolder folder = MakeBackups();
  const CString path(folder.Path().string());
  CAutoSaveManager manager;
  manager.m_nMaxBackupCount = kBackups;
  for (auto _ : state) {
    CAutoSaveItem* item = manager.Push(path, "/docs/Board.pcb", "board");
    std::ofstream(item->GetBackFullFileName().str()).put('x');  // the host writes the back-up
    manager.Pop();
  }
  std::size_t left = 0;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder.Path()))
    left += entry.is_regular_file();
  if (left != kBackups) state.SkipWithError("the folder does not hold 10^4 back-ups");
}
BENCHMARK(PushHostCycle)->Name("Push/10000 backups, one pruned and written")->Unit(benchmark::kMillisecond);
BENCHMARK(ListFolder)
    ->Name("Push/10000 backups, one pruned and written/peer:directory_iterator")
    ->Unit(benchmark::kMillisecond);

}  // namespace
