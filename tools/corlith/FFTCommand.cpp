// corlith fft: one whole FFT job from the command line, as a host runs it through
// CFFTMgr: the waveforms are read from CSV files, written into an exchange file in a
// temporary folder, transformed by the installed solver, and the result is printed as
// CSV on standard output.
//
//   corlith fft --step 1e-9 wave.csv              one node: the single-node job
//   corlith fft --step 1e-9 a.csv b.csv c.csv     several nodes named a, b, c
//   corlith fft --inverse spectrum.csv            Frequency input: "f,real,imaginary" rows
//
// A CSV line is "value", "x,value" or (with --inverse) "x,real,imaginary"; blank lines
// and lines starting with "#" are skipped, and a first line that is no number is a
// header. Every file needs the same number of samples and the same form. The step is
// --step, else the difference of the first two x values of the first file. The solver
// is --solver, else Data/Analysis/FFT under --data-folder, else the library's default
// under the installation's data folder.
#include "Commands.h"

#include <corlith/environment/Utility.h>
#include <corlith/services/FFT.h>

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace corlith::cli {

namespace {

namespace fs = std::filesystem;

struct FFTOptions {
  std::vector<std::string> files;
  std::optional<double> step;
  bool inverse = false;
  int unit = 0;
  std::string dataFolder;
  std::string solver;
};

// One CSV file's samples: the x column (when the file has one) and one or two values.
struct Waveform {
  std::string name;  ///< the node name: the file name without its extension
  std::vector<double> x;
  CArrayD first;
  CArrayD second;
};

std::string_view TrimBlanks(std::string_view text) {
  const auto begin = text.find_first_not_of(" \t\r");
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(" \t\r") - begin + 1);
}

// A whole field as a number: strtod's grammar, nothing left over but blanks.
std::optional<double> ParseNumber(std::string_view field) {
  const std::string text(TrimBlanks(field));
  if (text.empty()) return std::nullopt;
  char* end = nullptr;
  const double value = std::strtod(text.c_str(), &end);
  if (end != text.c_str() + text.size()) return std::nullopt;
  return value;
}

// Reads one file; an error is a message for standard error.
std::optional<Waveform> ReadWaveform(const std::string& path, bool inverse, std::string& error) {
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    error = "cannot read " + path;
    return std::nullopt;
  }
  Waveform wave;
  wave.name = fs::path(path).stem().string();
  std::size_t columns = 0;
  int lineNumber = 0;
  bool firstLine = true;
  for (std::string line; std::getline(in, line);) {
    ++lineNumber;
    const std::string_view text = TrimBlanks(line);
    if (text.empty() || text.front() == '#') continue;
    std::vector<std::optional<double>> fields;
    for (std::size_t start = 0;;) {
      const std::size_t comma = text.find(',', start);
      fields.push_back(
          ParseNumber(text.substr(start, comma == std::string_view::npos ? comma : comma - start)));
      if (comma == std::string_view::npos) break;
      start = comma + 1;
    }
    const bool numbers =
        std::all_of(fields.begin(), fields.end(), [](const auto& f) { return f.has_value(); });
    if (firstLine && !numbers) {  // a header
      firstLine = false;
      continue;
    }
    firstLine = false;
    const bool fits = inverse ? fields.size() == 3 : fields.size() == 1 || fields.size() == 2;
    if (!numbers || !fits || (columns != 0 && fields.size() != columns)) {
      error = path + ":" + std::to_string(lineNumber) + ": expected " +
              (inverse ? std::string("\"x,real,imaginary\"") : std::string("\"value\" or \"x,value\"")) +
              (columns != 0 ? " as on the lines before" : "");
      return std::nullopt;
    }
    columns = fields.size();
    if (columns == 1) {
      wave.first.Add(*fields[0]);
      continue;
    }
    wave.x.push_back(*fields[0]);
    wave.first.Add(*fields[1]);
    if (columns == 3) wave.second.Add(*fields[2]);
  }
  if (wave.first.IsEmpty()) {
    error = path + ": no samples";
    return std::nullopt;
  }
  return wave;
}

// The shortest text that reads back as the same double.
std::string Number(double value) {
  char text[32];
  return std::string(text, std::to_chars(text, text + sizeof text, value).ptr);
}

void PrintResult(const CFFTMgr& job, const std::vector<Waveform>& waves, std::ostream& out) {
  const bool frequency = job.m_nOutputType == 1;
  out << (frequency ? "frequency" : "time");
  if (waves.size() == 1) {
    out << (frequency ? ",real,imaginary\n" : ",value\n");
    for (INT_PTR i = 0; i < job.m_arrOutputAxis.GetSize(); ++i) {
      out << Number(job.m_arrOutputAxis[i]) << ',' << Number(job.m_arrOutputValue1[i]);
      if (frequency) out << ',' << Number(job.m_arrOutputValue2[i]);
      out << '\n';
    }
    return;
  }
  for (const auto& [name, node] : job.m_mapOutputData) {
    out << ',' << name.view();
    if (frequency) out << ".real," << name.view() << ".imaginary";
  }
  out << '\n';
  for (INT_PTR i = 0; i < job.m_arrOutputAxis.GetSize(); ++i) {
    out << Number(job.m_arrOutputAxis[i]);
    for (const auto& [name, node] : job.m_mapOutputData) {
      // A solver that gave fewer values for a node than rows leaves its cells empty.
      out << ',' << (i < node->m_arrData1.GetSize() ? Number(node->m_arrData1[i]) : "");
      if (frequency) out << ',' << (i < node->m_arrData2.GetSize() ? Number(node->m_arrData2[i]) : "");
    }
    out << '\n';
  }
}

bool IsFile(const std::string& path) {
  std::error_code error;
  return fs::is_regular_file(path, error);
}

// A temporary folder for the exchange files, removed when the job is done.
class JobFolder {
 public:
  JobFolder() {
    std::error_code error;
    const fs::path base = fs::temp_directory_path(error);
    for (int attempt = 0; attempt < 100 && m_path.empty(); ++attempt) {
      fs::path candidate = base / ("corlith-fft-" + std::to_string(KTUtility::GetInstance()->GetProcessID()) +
                                   "-" + std::to_string(attempt));
      if (fs::create_directory(candidate, error)) m_path = std::move(candidate);
    }
  }
  ~JobFolder() {
    std::error_code error;
    if (!m_path.empty()) fs::remove_all(m_path, error);
  }
  JobFolder(const JobFolder&) = delete;
  JobFolder& operator=(const JobFolder&) = delete;
  const fs::path& Path() const { return m_path; }

 private:
  fs::path m_path;
};

int RunFFTJob(const FFTOptions& options, std::ostream& out, std::ostream& err) {
  std::vector<Waveform> waves;
  std::set<std::string> names;
  for (const std::string& file : options.files) {
    std::string error;
    std::optional<Waveform> wave = ReadWaveform(file, options.inverse, error);
    if (!wave) {
      err << "corlith fft: " << error << '\n';
      return 2;
    }
    if (!waves.empty() && wave->first.GetSize() != waves.front().first.GetSize()) {
      err << "corlith fft: " << file << " has " << wave->first.GetSize() << " samples, "
          << options.files.front() << " has " << waves.front().first.GetSize() << '\n';
      return 2;
    }
    if (!names.insert(wave->name).second) {
      err << "corlith fft: two files give the node name \"" << wave->name << "\"\n";
      return 2;
    }
    waves.push_back(std::move(*wave));
  }
  double step = 0.0;
  if (options.step) {
    step = *options.step;
  } else if (waves.front().x.size() >= 2) {
    step = waves.front().x[1] - waves.front().x[0];
  } else {
    err << "corlith fft: give --step (the files have no x column of two rows or more)\n";
    return 2;
  }

  CFFTMgr job;
  if (!options.solver.empty()) {
    job.m_strFFTExePath = CString(options.solver);
  } else if (!options.dataFolder.empty()) {
    job.m_strFFTExePath = CString((fs::path(options.dataFolder) / "Data" / "Analysis" / "FFT").string());
  }
  const std::string solver = job.m_strFFTExePath.str();
  const bool exe = solver.size() > 4 && solver.ends_with(".exe");
  if (!IsFile(solver) && !(exe && IsFile(solver.substr(0, solver.size() - 4)))) {
    err << "corlith fft: no FFT solver at " << solver << " (install it, or give --data-folder or --solver)\n";
    return 2;
  }
  const JobFolder folder;
  if (folder.Path().empty()) {
    err << "corlith fft: cannot make a temporary folder\n";
    return 1;
  }
  job.m_strInputFilePath = CString((folder.Path() / "job.txt").string());

  if (waves.size() == 1) {
    job.SetInputDataForREI(step, waves.front().first, "corlith", "fft");
    if (options.inverse) job.m_arrInputValue2.Copy(waves.front().second);
  } else {
    job.SetBaseDataForREI("corlith");
    for (const Waveform& wave : waves) job.AddInputDataForREI(step, wave.first, CString(wave.name));
    if (options.inverse) {
      for (const Waveform& wave : waves)
        job.m_mapInputData.at(CString(wave.name))->m_arrData2.Copy(wave.second);
    }
  }
  job.m_nInputType = options.inverse ? 1 : 0;
  job.m_nUnitIndex = options.unit;
  if (waves.size() == 1) {
    job.WriteInputDataFile();
    job.RunFFT();
    job.ReadResultData();
  } else {
    job.WriteInputDataFileForMultiNode();
    job.RunFFT();
    job.ReadResultDataForMultiNode();
  }
  if (job.m_arrOutputAxis.IsEmpty()) {
    err << "corlith fft: the solver gave no result (" << solver << ")\n";
    return 1;
  }
  PrintResult(job, waves, out);
  return 0;
}

}  // namespace

void AddFFTCommand(CLI::App& app, CommandContext& context) {
  auto options = std::make_shared<FFTOptions>();
  auto* command = app.add_subcommand(
      "fft", "Run an FFT job through the installed solver: one CSV waveform, or one per node; prints CSV");
  command
      ->add_option("FILES", options->files,
                   "CSV waveforms: \"value\" or \"x,value\" lines (\"x,real,imaginary\" with --inverse); "
                   "several files make a multi-node job named after the files")
      ->required();
  command->add_option("--step", options->step, "The sample step (default: from the x column)");
  command->add_flag("--inverse", options->inverse, "Frequency input: transform a spectrum back to time");
  command->add_option("--unit", options->unit, "Unit index: 0 s/Hz, 1 ms/kHz, 2 us/MHz, 3 ns/GHz")
      ->check(CLI::Range(0, 3));
  command->add_option("--data-folder", options->dataFolder, "The data folder holding Data/Analysis/FFT");
  command->add_option("--solver", options->solver, "The solver program itself");
  command->callback([options, &context] { context.exitStatus = RunFFTJob(*options, std::cout, std::cerr); });
}

}  // namespace corlith::cli
