// FFT, the reference solver of the library's FFT jobs: it reads the exchange file the
// library wrote, transforms every waveform in it and writes the "(Output" section the
// library reads back (Exchange.h reads the file, Solver.h transforms and formats).
#include "Exchange.h"
#include "Solver.h"

#include <charconv>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <string_view>
#include <system_error>

namespace {

constexpr std::uintmax_t kMaxFileBytes = std::uintmax_t{1} << 30;

constexpr const char* kUsage =
    "Usage: FFT [--length N] [--] EXCHANGE_FILE\n"
    "\n"
    "Transforms the waveforms of an FFT job's exchange file, as the library writes it:\n"
    "  (Input / (Type Time) or (Type Frequency) / (Size N) or (Size N M) / N rows / )\n"
    "\n"
    "Single-node form, (Size N): rows \"t value\" (Time) or \"f real imaginary\"\n"
    "(Frequency). The result is appended to EXCHANGE_FILE itself (an (Output section\n"
    "left there by an earlier run is replaced).\n"
    "Multi-node form, (Size N M): rows hold the axis value, then one value (Time) or two\n"
    "(Frequency) per node. The result goes to the exchange path cut before its last \".\"\n"
    "(backslashes read as \"/\"), followed by \"_out.txt\"; job.txt gives job_out.txt, a\n"
    "path without any dot gives \"_out.txt\" in the current folder.\n"
    "\n"
    "Time input gives the one-sided spectrum, (Type Frequency), rows \"f real imaginary\"\n"
    "(one real and one imaginary column per node): bins k = 0 .. N/2 at f = k / (N dt),\n"
    "dt = (last t - first t) / (N - 1). Bin k holds 2 X_k / N, bin 0 and (N even) bin N/2\n"
    "hold X_k / N with their imaginary part 0, where X_k = sum x_n e^(-2 pi i n k / N):\n"
    "a cosine A cos(2 pi f t) on a bin shows (A, 0) there, a sine A sin(2 pi f t) (0, -A).\n"
    "Frequency input gives the waveform back, (Type Time), rows \"t value\": from K bins\n"
    "N = 2K - 1 samples when a last bin has a non-zero imaginary part (only an odd length\n"
    "gives one), else N = 2K - 2 (K = 1 gives one sample); --length N overrides this.\n"
    "t = i / (N df), i = 0 .. N-1, df = (last f - first f) / (K - 1); the waveform's own\n"
    "start time is not in its spectrum, so the axis starts at 0. Imaginary parts of bin 0\n"
    "and of an even length's bin N/2 are ignored. Time -> Frequency -> Time gives the\n"
    "samples back to within rounding (about 1e-15 relative).\n"
    "\n"
    "Units: the (Unit ...) pairs are reciprocal (s/Hz, ms/kHz, us/MHz, ns/GHz), so the\n"
    "axis in the file's time unit gives frequencies in its frequency unit unscaled.\n"
    "Any length is transformed (KissFFT in double precision; lengths with a prime\n"
    "factor above 61 through Bluestein's chirp). Numbers are written as the shortest text\n"
    "that reads back as the same double. Bounds: at most 16777216 rows, 4096 nodes and\n"
    "a file of 1 GiB.\n"
    "\n"
    "Exit status: 0 on success; 1 when the exchange file cannot be read, is malformed or\n"
    "cannot be transformed; 2 on wrong usage; 3 when the result cannot be written.\n"
    "Every failure is one line on standard error.\n";

int Fail(int status, const std::string& message) {
  std::cerr << "FFT: " << message << '\n';
  return status;
}

bool ReadWhole(const std::string& path, std::string& text, std::string& message) {
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  if (error) {
    message = "cannot read " + path + ": " + error.message();
    return false;
  }
  if (size > kMaxFileBytes) {
    message = path + ": larger than 1 GiB";
    return false;
  }
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    message = "cannot read " + path;
    return false;
  }
  text.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  if (in.bad()) {
    message = "cannot read " + path;
    return false;
  }
  return true;
}

// Writes text to path, appending or replacing; a partial write is undone.
bool WriteResult(const std::string& path, const std::string& text, bool append, std::uintmax_t keep,
                 std::string& message) {
  std::error_code error;
  if (append) {
    std::filesystem::resize_file(path, keep, error);  // drops an earlier run's section
    if (error) {
      message = "cannot write " + path + ": " + error.message();
      return false;
    }
  }
  std::FILE* file = std::fopen(path.c_str(), append ? "ab" : "wb");
  if (file == nullptr) {
    message = "cannot write " + path;
    return false;
  }
  const bool written = std::fwrite(text.data(), 1, text.size(), file) == text.size();
  const bool closed = std::fclose(file) == 0;
  if (written && closed) return true;
  message = "cannot write " + path;
  if (append) {
    std::filesystem::resize_file(path, keep, error);
  } else {
    std::filesystem::remove(path, error);
  }
  return false;
}

}  // namespace

int main(int argc, char** argv) {
  std::size_t length = 0;
  std::string path;
  bool havePath = false;
  bool options = true;
  for (int i = 1; i < argc; ++i) {
    const std::string_view arg = argv[i];
    if (options && (arg == "--help" || arg == "-h")) {
      std::cout << kUsage;
      return 0;
    }
    if (options && arg == "--length") {
      if (++i == argc) return Fail(2, "--length needs a number (see FFT --help)");
      const std::string_view value = argv[i];
      const auto [ptr, ec] = std::from_chars(value.data(), value.data() + value.size(), length);
      if (ec != std::errc() || ptr != value.data() + value.size() || length == 0 ||
          length > 2 * fftsolver::kMaxSamples) {
        return Fail(2,
                    "--length takes a sample count from 1 to " + std::to_string(2 * fftsolver::kMaxSamples));
      }
    } else if (options && arg == "--") {
      options = false;
    } else if (options && arg.size() > 1 && arg.front() == '-') {
      return Fail(2, "unknown option " + std::string(arg) + " (see FFT --help)");
    } else if (havePath) {
      return Fail(2, "one exchange file only; a path with blanks is one argument (see FFT --help)");
    } else {
      path = arg;
      havePath = true;
    }
  }
  if (!havePath || path.empty()) return Fail(2, "no exchange file given (see FFT --help)");

  std::string text;
  std::string message;
  if (!ReadWhole(path, text, message)) return Fail(1, message);
  fftsolver::ExchangeJob job;
  if (!fftsolver::ParseExchange(text, job, message)) return Fail(1, path + ": " + message);
  fftsolver::Result result;
  if (!fftsolver::Solve(job, length, result, message)) return Fail(1, path + ": " + message);
  std::string output = fftsolver::FormatOutput(result, job.multiNode);

  if (job.multiNode) {
    const std::string target = fftsolver::MultiNodeResultPath(path);
    if (!WriteResult(target, output, false, 0, message)) return Fail(3, message);
    return 0;
  }
  const std::size_t keep = job.outputOffset == std::string::npos ? text.size() : job.outputOffset;
  if (keep > 0 && text[keep - 1] != '\n') output.insert(0, "\n");  // a last line without its end
  if (!WriteResult(path, output, true, keep, message)) return Fail(3, message);
  return 0;
}
