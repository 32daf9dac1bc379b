// ZIP archives beside the Info-ZIP tools, each side doing the same work in the same run:
// KTUtility::ExtractZipFile of an archive of 10^4 small entries and of one holding a
// single 256 MiB entry, beside `unzip -qo` of the same archive into a fresh folder; and
// `TesselZip m` of a folder of 10^4 files beside `zip -qr` of it. Every iteration starts
// from an empty target (removed outside the timing). The files live in /dev/shm where the
// machine has it, so that the figures compare the programs rather than a disk's cost per
// new file; set CORLITH_BENCH_DIR to measure on another file system.
#include <corlith/environment/Utility.h>
#include <corlith/platform/Process.h>

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>
#include <vector>

namespace {

namespace fs = std::filesystem;
namespace platform = corlith::platform;

constexpr int kSmallFiles = 10'000;
constexpr std::uint64_t kLargeBytes = 256ULL << 20;

fs::path BaseFolder() {
  if (const char* chosen = std::getenv("CORLITH_BENCH_DIR"); chosen != nullptr && *chosen != '\0')
    return chosen;
  std::error_code error;
  if (fs::is_directory("/dev/shm", error) && ::access("/dev/shm", W_OK) == 0) return "/dev/shm";
  return fs::temp_directory_path();
}

// The benchmark's files, made once per run and removed at its end.
class Workspace {
 public:
  static Workspace& Get() {
    static Workspace workspace;
    return workspace;
  }
  Workspace(const Workspace&) = delete;
  Workspace& operator=(const Workspace&) = delete;
  ~Workspace() {
    std::error_code error;
    fs::remove_all(m_root, error);
  }

  fs::path Root() const { return m_root; }
  fs::path SmallFolder() const { return m_root / "small"; }
  fs::path SmallZip() const { return m_root / "small.zip"; }
  fs::path LargeZip() const { return m_root / "large.zip"; }
  bool Ready() const { return m_ready; }

 private:
  Workspace() : m_root(BaseFolder() / ("corlith-archives-bench-" + std::to_string(::getpid()))) {
    fs::create_directories(SmallFolder());
    // Small text-like files of 100 to 1100 bytes, in 100 folders.
    for (int i = 0; i < kSmallFiles; ++i) {
      const fs::path folder = SmallFolder() / ("d" + std::to_string(i % 100));
      fs::create_directories(folder);
      std::ofstream out(folder / ("file" + std::to_string(i) + ".txt"), std::ios::binary);
      const int lines = 1 + (i * 7919) % 22;
      for (int l = 0; l < lines; ++l)
        out << "line " << l << " of file " << i << ", some words: " << (i ^ l) << '\n';
    }
    // 256 MiB that deflate roughly halves: text lines with varying numbers.
    {
      std::ofstream out(m_root / "large.bin", std::ios::binary);
      std::uint64_t state = 88172645463325252ULL;
      std::string line;
      std::uint64_t written = 0;
      while (written < kLargeBytes) {
        state ^= state << 13;
        state ^= state >> 7;
        state ^= state << 17;
        line = "record " + std::to_string(written) + " value " + std::to_string(state % 1000003) + " hash " +
               std::to_string(state) + "\n";
        const std::uint64_t take = std::min<std::uint64_t>(line.size(), kLargeBytes - written);
        out.write(line.data(), static_cast<std::streamsize>(take));
        written += take;
      }
    }
    m_ready = Run("zip", {"-qr", SmallZip().string(), "small"}) &&
              Run("zip", {"-q", LargeZip().string(), "large.bin"});
    fs::remove(m_root / "large.bin");
  }

  bool Run(const std::string& program, std::vector<std::string> arguments) const {
    platform::SpawnOptions options;
    options.program = program;
    options.arguments = std::move(arguments);
    options.workingFolder = m_root;
    const platform::RunResult result = platform::RunHidden(options, std::chrono::milliseconds::max());
    return result.error == 0 && result.status.code == 0;
  }

  fs::path m_root;
  bool m_ready = false;
};

bool RunTool(const std::string& program, std::vector<std::string> arguments) {
  platform::SpawnOptions options;
  options.program = program;
  options.arguments = std::move(arguments);
  const platform::RunResult result = platform::RunHidden(options, std::chrono::milliseconds::max());
  return result.error == 0 && result.status.code == 0;
}

void Fresh(const fs::path& path) {
  std::error_code error;
  fs::remove_all(path, error);
}

// Extracts `zip` into a fresh folder each iteration, by the library or by unzip.
void Extract(benchmark::State& state, const fs::path& zip, bool peer) {
  Workspace& workspace = Workspace::Get();
  if (!workspace.Ready()) {
    state.SkipWithError("the archives could not be made (zip missing?)");
    return;
  }
  const fs::path target = workspace.Root() / (peer ? "out-unzip" : "out-corlith");
  for (auto _ : state) {
    state.PauseTiming();
    Fresh(target);
    state.ResumeTiming();
    const bool done =
        peer ? RunTool("unzip", {"-qo", zip.string(), "-d", target.string()})
             : KTUtility::GetInstance()->ExtractZipFile(CString(zip.string()), CString(target.string())) == 1;
    if (!done) {
      state.SkipWithError("the extraction failed");
      break;
    }
  }
  Fresh(target);
}

void ExtractSmall(benchmark::State& state) { Extract(state, Workspace::Get().SmallZip(), false); }
void ExtractSmallPeer(benchmark::State& state) { Extract(state, Workspace::Get().SmallZip(), true); }
void ExtractLarge(benchmark::State& state) {
  Extract(state, Workspace::Get().LargeZip(), false);
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * kLargeBytes));
}
void ExtractLargePeer(benchmark::State& state) {
  Extract(state, Workspace::Get().LargeZip(), true);
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * kLargeBytes));
}

// Packs the folder of small files into a fresh archive each iteration.
void Pack(benchmark::State& state, bool peer) {
  Workspace& workspace = Workspace::Get();
#ifdef CORLITH_TESSELZIP
  const std::string tool = CORLITH_TESSELZIP;
#else
  const std::string tool;
#endif
  if (!workspace.Ready() || (!peer && tool.empty())) {
    state.SkipWithError("TesselZip or the files are missing");
    return;
  }
  const fs::path zip = workspace.Root() / (peer ? "packed-zip.zip" : "packed-tesselzip.zip");
  for (auto _ : state) {
    state.PauseTiming();
    Fresh(zip);  // zip -r would update an archive that is already there
    state.ResumeTiming();
    const bool done = peer ? RunTool("/bin/sh", {"-c", "cd \"$0\" && zip -qr \"$1\" small",
                                                 workspace.Root().string(), zip.string()})
                           : RunTool(tool, {"m", workspace.SmallFolder().string(), zip.string()});
    if (!done) {
      state.SkipWithError("packing failed");
      break;
    }
  }
  Fresh(zip);
}

void PackFolder(benchmark::State& state) { Pack(state, false); }
void PackFolderPeer(benchmark::State& state) { Pack(state, true); }

}  // namespace

// Real time, since the peers' work is done in child processes. Google Benchmark then adds
// "/real_time" to every name, so each peer is named after ours with that ending.
BENCHMARK(ExtractSmall)->Name("ExtractZipFile/10k_small")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(ExtractSmallPeer)
    ->Name("ExtractZipFile/10k_small/real_time/peer:unzip -qo")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(ExtractLarge)->Name("ExtractZipFile/256MiB_entry")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(ExtractLargePeer)
    ->Name("ExtractZipFile/256MiB_entry/real_time/peer:unzip -qo")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(PackFolder)->Name("TesselZip_m/10k_files")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(PackFolderPeer)
    ->Name("TesselZip_m/10k_files/real_time/peer:zip -qr")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
