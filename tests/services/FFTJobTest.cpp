// FFT jobs end to end through the real reference solver (the FFT program): first the
// solver alone on hand-written exchange files (spectra of known waveforms of even, odd
// and prime lengths, round trips, the multi-node result file and its name, malformed
// files and failed writes), then whole jobs through CFFTMgr.
#include <corlith/platform/Process.h>
#include <corlith/services/FFT.h>
#include <corlith/test/TempFolder.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <numbers>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
namespace platform = corlith::platform;
using corlith::test::ReadFile;
using corlith::test::TempFolder;
using Doubles = std::vector<double>;

constexpr double kPi = std::numbers::pi;

// --- helpers --------------------------------------------------------------------------

std::string Exact(double value) {
  char text[40];
  std::snprintf(text, sizeof text, "%.17g", value);
  return text;
}

// An exchange file in the library's layout; each row is its numbers, written exactly.
std::string Exchange(const std::string& type, const std::string& size, const std::vector<Doubles>& rows) {
  std::string text =
      "(File\n\t(Version 1.0)\n\t(Date 1.0)\n\t(Unit s Hz)\n\t(Note job)\n)\n(AnalysisParameters\n"
      "\t(AnalysisType REI)\n)\n(Input\n\t(Type " +
      type + ")\n\t(Size " + size + ")\n";
  for (const Doubles& row : rows) {
    text += '\t';
    for (std::size_t i = 0; i < row.size(); ++i) text += (i == 0 ? "" : " ") + Exact(row[i]);
    text += '\n';
  }
  return text + ")\n";
}

struct SolverRun {
  int code = -1;
  std::string errorOutput;
};

SolverRun RunSolver(const std::vector<std::string>& arguments, const fs::path& folder = {}) {
  platform::SpawnOptions options;
  options.program = CORLITH_FFT_SOLVER;
  options.arguments = arguments;
  options.workingFolder = folder;
  options.output = platform::StreamTarget::Pipe();
  options.error = platform::StreamTarget::Pipe();
  const platform::RunResult result = platform::RunHidden(options, std::chrono::minutes(2));
  EXPECT_EQ(result.error, 0);
  EXPECT_FALSE(result.timedOut);
  return {result.status.code, result.errorOutput};
}

// A solver's output section, read independently of the library's reader.
struct Output {
  std::string type;
  std::string size;
  std::vector<Doubles> rows;
  int sections = 0;
};

Output ParseOutput(const std::string& text) {
  Output output;
  std::istringstream in(text);
  bool inside = false;
  for (std::string line; std::getline(in, line);) {
    if (line.rfind("(Output", 0) == 0) {
      ++output.sections;
      inside = true;
    } else if (!inside || line == ")") {
      continue;
    } else if (line.rfind("\t(Type ", 0) == 0) {
      output.type = line.substr(7, line.size() - 8);
    } else if (line.rfind("\t(Size ", 0) == 0) {
      output.size = line.substr(7, line.size() - 8);
    } else {
      std::istringstream fields(line);
      Doubles row;
      for (double value = 0; fields >> value;) row.push_back(value);
      output.rows.push_back(row);
    }
  }
  return output;
}

double MaxAbs(const Doubles& values) {
  double largest = 0;
  for (double value : values) largest = std::max(largest, std::abs(value));
  return largest;
}

// A waveform of n samples: dc + cosine amplitude on cosBin + sine amplitude on sinBin.
struct Tone {
  double dc;
  std::size_t cosBin;
  double cosAmplitude;
  std::size_t sinBin;
  double sinAmplitude;

  double At(std::size_t i, std::size_t n) const {
    const double phase = 2 * kPi * static_cast<double>(i) / static_cast<double>(n);
    return dc + cosAmplitude * std::cos(phase * static_cast<double>(cosBin)) +
           sinAmplitude * std::sin(phase * static_cast<double>(sinBin));
  }
};

// --- the solver alone -------------------------------------------------------------------

TEST(FFTSolver, TimeInputGivesTheScaledOneSidedSpectrumForAnyLength) {
  struct Row {
    std::size_t n;
    double step;
    Tone tone;
  };
  // Powers of two, even and odd composites, and primes above 61 (Bluestein's path).
  const Row rows[] = {
      {8, 0.5, {1.5, 1, 2.0, 3, 0.75}},       {12, 1e-3, {-0.25, 2, 1.0, 5, 3.0}},
      {15, 2e-9, {0.0, 7, 1.25, 4, -2.0}},    {67, 1e-6, {2.0, 33, 0.5, 1, 4.0}},
      {254, 0.01, {0.0, 100, 3.0, 126, 1.0}}, {1000, 1e-3, {0.125, 50, 2.5, 499, 0.5}},
      {1031, 1.0, {-1.0, 515, 1.0, 2, 0.25}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE("n = " + std::to_string(row.n));
    const TempFolder folder("fftsolver");
    std::vector<Doubles> samples;
    for (std::size_t i = 0; i < row.n; ++i)
      samples.push_back({static_cast<double>(i) * row.step, row.tone.At(i, row.n)});
    const std::string path = folder.Write("job.txt", Exchange("Time", std::to_string(row.n), samples));
    const std::string before = ReadFile(path);
    const SolverRun run = RunSolver({path});
    ASSERT_EQ(run.code, 0) << run.errorOutput;
    EXPECT_EQ(run.errorOutput, "");
    const std::string after = ReadFile(path);
    ASSERT_EQ(after.substr(0, before.size()), before) << "the input is kept, the result appended";
    const Output output = ParseOutput(after.substr(before.size()));
    EXPECT_EQ(output.sections, 1);
    EXPECT_EQ(output.type, "Frequency");
    const std::size_t bins = row.n / 2 + 1;
    EXPECT_EQ(output.size, std::to_string(bins));
    ASSERT_EQ(output.rows.size(), bins);
    const double df = 1.0 / (static_cast<double>(row.n) * row.step);
    for (std::size_t k = 0; k < bins; ++k) {
      SCOPED_TRACE("bin " + std::to_string(k));
      ASSERT_EQ(output.rows[k].size(), 3u);
      double real = k == 0 ? row.tone.dc : 0.0;
      double imaginary = 0.0;
      // On an even length's last bin a cosine keeps its amplitude and a sine vanishes.
      const bool nyquist = 2 * k == row.n;
      if (k == row.tone.cosBin) real += row.tone.cosAmplitude;
      if (k == row.tone.sinBin && !nyquist) imaginary -= row.tone.sinAmplitude;
      EXPECT_NEAR(output.rows[k][0], static_cast<double>(k) * df, 1e-12 * df * static_cast<double>(bins));
      EXPECT_NEAR(output.rows[k][1], real, 1e-10);
      EXPECT_NEAR(output.rows[k][2], imaginary, 1e-10);
    }
    EXPECT_EQ(output.rows[0][2], 0.0) << "bin 0 is real by construction";
    if (row.n % 2 == 0) {
      EXPECT_EQ(output.rows.back()[2], 0.0) << "an even length's last bin is real";
    }
  }
}

TEST(FFTSolver, TimeToFrequencyToTimeRoundTripsEvenAndOddLengths) {
  std::mt19937_64 random(20240611);
  std::uniform_real_distribution<double> value(-5.0, 5.0);
  for (const std::size_t n : {1u, 2u, 3u, 4u, 16u, 17u, 101u, 128u, 243u, 1024u}) {
    SCOPED_TRACE("n = " + std::to_string(n));
    const TempFolder folder("fftsolver");
    const double step = 0.25;
    Doubles original;
    std::vector<Doubles> rows;
    for (std::size_t i = 0; i < n; ++i) {
      original.push_back(value(random));
      rows.push_back({static_cast<double>(i) * step, original.back()});
    }
    const std::string forward = folder.Write("forward.txt", Exchange("Time", std::to_string(n), rows));
    ASSERT_EQ(RunSolver({forward}).code, 0);
    const Output spectrum = ParseOutput(ReadFile(forward));
    ASSERT_EQ(spectrum.rows.size(), n / 2 + 1);
    const std::string back =
        folder.Write("back.txt", Exchange("Frequency", std::to_string(spectrum.rows.size()), spectrum.rows));
    const SolverRun run = RunSolver({back});
    ASSERT_EQ(run.code, 0) << run.errorOutput;
    const Output waveform = ParseOutput(ReadFile(back));
    EXPECT_EQ(waveform.type, "Time");
    ASSERT_EQ(waveform.rows.size(), n) << "the length follows from the last bin's imaginary part";
    const double tolerance = 1e-9 * MaxAbs(original);
    for (std::size_t i = 0; i < n; ++i) {
      ASSERT_EQ(waveform.rows[i].size(), 2u);
      EXPECT_NEAR(waveform.rows[i][0], static_cast<double>(i) * step, 1e-12 * static_cast<double>(n));
      EXPECT_NEAR(waveform.rows[i][1], original[i], tolerance) << "sample " << i;
    }
  }
}

TEST(FFTSolver, LengthOptionOverridesTheLengthOfAnInverse) {
  // A cosine on bin 2 of 9 samples has a real last bin: only --length recovers 9.
  const TempFolder folder("fftsolver");
  const std::string path = folder.Write(
      "job.txt", Exchange("Frequency", "5", {{0, 0, 0}, {1, 0, 0}, {2, 1, 0}, {3, 0, 0}, {4, 0, 0}}));
  struct Row {
    std::vector<std::string> options;
    std::size_t samples;
  };
  for (const Row& row : {Row{{}, 8}, Row{{"--length", "9"}, 9}}) {
    SCOPED_TRACE(row.samples);
    std::vector<std::string> arguments = row.options;
    arguments.push_back(path);
    ASSERT_EQ(RunSolver(arguments).code, 0);
    const Output output = ParseOutput(ReadFile(path));
    EXPECT_EQ(output.sections, 1) << "a rerun replaces the earlier section";
    ASSERT_EQ(output.rows.size(), row.samples);
    const double n = static_cast<double>(row.samples);
    for (std::size_t i = 0; i < row.samples; ++i) {
      EXPECT_NEAR(output.rows[i][0], static_cast<double>(i) / n, 1e-12);
      EXPECT_NEAR(output.rows[i][1], std::cos(4 * kPi * static_cast<double>(i) / n), 1e-12);
    }
  }
}

TEST(FFTSolver, MultiNodeResultsGoToTheOutFileInColumnOrder) {
  const TempFolder folder("fftsolver");
  const std::size_t n = 16;
  const Tone tones[] = {{1.0, 1, 2.0, 3, 0.0}, {0.0, 4, 0.0, 5, 1.5}, {-0.5, 8, 0.25, 2, 0.0}};
  std::vector<Doubles> rows;
  for (std::size_t i = 0; i < n; ++i) {
    rows.push_back({static_cast<double>(i) * 1e-9});
    for (const Tone& tone : tones) rows.back().push_back(tone.At(i, n));
  }
  const std::string path = folder.Write("job.v2.txt", Exchange("Time", "16 3", rows));
  const std::string input = ReadFile(path);
  ASSERT_EQ(RunSolver({path}).code, 0);
  EXPECT_EQ(ReadFile(path), input) << "the multi-node exchange file stays as it was";
  const Output output = ParseOutput(ReadFile(folder.Path() / "job.v2_out.txt"));
  EXPECT_EQ(output.sections, 1);
  EXPECT_EQ(output.type, "Frequency");
  EXPECT_EQ(output.size, "9 3");
  ASSERT_EQ(output.rows.size(), 9u);
  for (std::size_t k = 0; k < 9; ++k) {
    SCOPED_TRACE("bin " + std::to_string(k));
    ASSERT_EQ(output.rows[k].size(), 7u);
    EXPECT_NEAR(output.rows[k][0], static_cast<double>(k) * 1e9 / 16, 1e-3);
    for (std::size_t node = 0; node < 3; ++node) {
      const Tone& tone = tones[node];
      const double real = (k == 0 ? tone.dc : 0.0) + (k == tone.cosBin ? tone.cosAmplitude : 0.0);
      const double imaginary = k == tone.sinBin ? -tone.sinAmplitude : 0.0;
      EXPECT_NEAR(output.rows[k][1 + 2 * node], real, 1e-12) << "node " << node;
      EXPECT_NEAR(output.rows[k][2 + 2 * node], imaginary, 1e-12) << "node " << node;
    }
  }
}

TEST(FFTSolver, MultiNodeResultFileIsNamedAsTheLibraryNamesIt) {
  struct Row {
    const char* folderName;  ///< made in the temporary folder; the solver's working folder
    const char* argument;    ///< the exchange path as given, relative to that folder
    std::string resultPath;  ///< where the result must appear, relative to the temporary folder
  };
  const Row rows[] = {
      {"plain", "job.txt", "plain/job_out.txt"},
      {"with blanks", "my job.v1.dat", "with blanks/my job.v1_out.txt"},
      {"no dot", "job", "no dot/_out.txt"},  // the bare name, in the working folder
      {"run 1.d", "job", "run 1.d/_out.txt"},
      {"run 2.d", "", "run 2_out.txt"},  // absolute path: the folder's dot cuts
  };
  const TempFolder folder("fftsolver");
  for (const Row& row : rows) {
    SCOPED_TRACE(row.folderName);
    const fs::path work = folder.Path() / row.folderName;
    fs::create_directories(work);
    const std::string argument = *row.argument != '\0' ? row.argument : (work / "job").string();
    corlith::test::WriteFile(work / argument, Exchange("Time", "2 1", {{0, 1}, {1, 2}}));
    ASSERT_EQ(RunSolver({argument}, work).code, 0);
    EXPECT_EQ(ParseOutput(ReadFile(folder.Path() / row.resultPath)).size, "2 1");
  }
}

TEST(FFTSolver, MalformedFilesFailWithOneLineAndLeaveTheFileAlone) {
  const std::string head = "(Input\n\t(Type Time)\n";
  struct Row {
    const char* name;
    std::string text;
    const char* message;  ///< a part of the one line on standard error
  };
  const Row rows[] = {
      {"empty file", "", "no (Input section"},
      {"no input section", "(File\n\t(Version 1.0)\n)\n", "no (Input section"},
      {"unknown type", "(Input\n\t(Type Space)\n\t(Size 1)\n\t0 1\n)\n", "not Time or Frequency"},
      {"no size line", head + ")\n", "no (Size line"},
      {"size beyond the bound", head + "\t(Size 99999999999)\n\t0 1\n)\n", "more than 16777216 samples"},
      {"size without rows", head + "\t(Size 1000000)\n)\n", "announces 1000000 rows, the section holds 0"},
      {"more rows than announced", head + "\t(Size 1)\n\t0 1\n\t1 2\n)\n", "more rows than the 1"},
      {"zero nodes", head + "\t(Size 1 0)\n\t0\n)\n", "node count"},
      {"too many fields", head + "\t(Size 1)\n\t0 1 2\n)\n", "expected 2 numbers"},
      {"too few fields for frequency", "(Input\n\t(Type Frequency)\n\t(Size 1)\n\t0 1\n)\n",
       "expected 3 numbers"},
      {"not a number", head + "\t(Size 1)\n\t0 one\n)\n", "\"one\" is not a finite number"},
      {"not finite", head + "\t(Size 1)\n\t0 nan\n)\n", "is not a finite number"},
      {"row before size", head + "\t0 1\n)\n", "before the (Size line"},
      {"unclosed section", head + "\t(Size 1)\n\t0 1\n", "ends inside a section"},
      {"axis not increasing", head + "\t(Size 3)\n\t2 1\n\t1 1\n\t0 1\n)\n", "does not increase"},
      {"binary garbage", std::string("\x01\x02(Input\x7f\n", 10), "expected a section"},
  };
  const TempFolder folder("fftsolver");
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const std::string path = folder.Write("bad.txt", row.text);
    const SolverRun run = RunSolver({path});
    EXPECT_EQ(run.code, 1);
    EXPECT_EQ(std::count(run.errorOutput.begin(), run.errorOutput.end(), '\n'), 1) << run.errorOutput;
    EXPECT_EQ(run.errorOutput.rfind("FFT: " + path + ": ", 0), 0u) << run.errorOutput;
    EXPECT_NE(run.errorOutput.find(row.message), std::string::npos) << run.errorOutput;
    EXPECT_EQ(ReadFile(path), row.text);
  }
}

TEST(FFTSolver, UsageAndUnreadableOrUnwritableFilesHaveTheirOwnStatus) {
  const TempFolder folder("fftsolver");
  const std::string good = folder.Write("job.txt", Exchange("Time", "2 1", {{0, 1}, {1, 2}}));
  fs::create_directory(folder.Path() / "job_out.txt");  // the result file cannot be written
  struct Row {
    const char* name;
    std::vector<std::string> arguments;
    int code;
    const char* message;
  };
  const Row rows[] = {
      {"no argument", {}, 2, "no exchange file given"},
      {"two paths", {"a", "b"}, 2, "one exchange file only"},
      {"unknown option", {"--fast", good}, 2, "unknown option --fast"},
      {"bad length", {"--length", "0", good}, 2, "--length takes"},
      {"missing file", {folder.PathOf("none.txt")}, 1, "cannot read"},
      {"a folder", {folder.Path().string()}, 1, "cannot read"},
      {"result not writable", {good}, 3, "cannot write"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const SolverRun run = RunSolver(row.arguments);
    EXPECT_EQ(run.code, row.code);
    EXPECT_EQ(std::count(run.errorOutput.begin(), run.errorOutput.end(), '\n'), 1) << run.errorOutput;
    EXPECT_NE(run.errorOutput.find(row.message), std::string::npos) << run.errorOutput;
  }
}

TEST(FFTSolver, OutputStartsOnALineOfItsOwnAfterAnUnendedLastLine) {
  const TempFolder folder("fftsolver");
  std::string text = Exchange("Time", "2", {{0, 1}, {1, 3}});
  text.pop_back();  // ")" without its line end
  const std::string path = folder.Write("job.txt", text);
  ASSERT_EQ(RunSolver({"--", path}).code, 0);
  EXPECT_EQ(ReadFile(path), text + "\n(Output\n\t(Type Frequency)\n\t(Size 2)\n\t0 2 0\n\t0.5 -1 0\n)\n");
}

// --- whole jobs through CFFTMgr ----------------------------------------------------------

CArrayD ArrayOf(const Doubles& values) {
  CArrayD array;
  for (double value : values) array.Add(value);
  return array;
}

CFFTMgr JobAt(const std::string& exchangePath) {
  CFFTMgr job;
  job.m_strFFTExePath = CString(CORLITH_FFT_SOLVER);
  job.m_strInputFilePath = CString(exchangePath);
  return job;
}

TEST(FFTJobEndToEnd, SampledSinePeaksAtItsBinWithItsAmplitude) {
  struct Row {
    std::size_t n;
    double step;
    std::size_t bin;
    double amplitude;
  };
  const Row rows[] = {{1000, 1e-3, 50, 2.5}, {1024, 1e-9, 100, 0.75}, {999, 0.5, 333, 4.0}};
  for (const Row& row : rows) {
    SCOPED_TRACE("n = " + std::to_string(row.n));
    const TempFolder folder("fftjob");
    Doubles samples;
    for (std::size_t i = 0; i < row.n; ++i) {
      samples.push_back(row.amplitude *
                        std::sin(2 * kPi * static_cast<double>(row.bin * i) / static_cast<double>(row.n)));
    }
    CFFTMgr job = JobAt(folder.PathOf("job.txt"));
    job.SetInputDataForREI(row.step, ArrayOf(samples), "sine", "a");
    job.WriteInputDataFile();
    job.RunFFT();
    job.ReadResultData();
    EXPECT_EQ(job.m_nOutputType, 1);
    ASSERT_EQ(job.m_arrOutputAxis.GetSize(), static_cast<INT_PTR>(row.n / 2 + 1));
    ASSERT_EQ(job.m_arrOutputValue1.GetSize(), job.m_arrOutputAxis.GetSize());
    ASSERT_EQ(job.m_arrOutputValue2.GetSize(), job.m_arrOutputAxis.GetSize());
    INT_PTR peak = 0;
    for (INT_PTR k = 0; k < job.m_arrOutputAxis.GetSize(); ++k) {
      if (std::hypot(job.m_arrOutputValue1[k], job.m_arrOutputValue2[k]) >
          std::hypot(job.m_arrOutputValue1[peak], job.m_arrOutputValue2[peak])) {
        peak = k;
      }
    }
    EXPECT_EQ(peak, static_cast<INT_PTR>(row.bin));
    const double frequency = static_cast<double>(row.bin) / (static_cast<double>(row.n) * row.step);
    // The exchange file carries six digits ("%g"), so the figures hold to about 1e-5.
    EXPECT_NEAR(job.m_arrOutputAxis[peak], frequency, 1e-5 * frequency);
    EXPECT_NEAR(job.m_arrOutputValue2[peak], -row.amplitude, 1e-5 * row.amplitude);
    EXPECT_NEAR(job.m_arrOutputValue1[peak], 0.0, 1e-5 * row.amplitude);
  }
}

TEST(FFTJobEndToEnd, ThreeNodesTransformTogetherInNameOrder) {
  const TempFolder folder("fftjob");
  const std::size_t n = 200;
  // Added in the order c, a, b; each node's sine sits on its own bin.
  const struct {
    const char* name;
    std::size_t bin;
    double amplitude;
  } nodes[] = {{"c", 30, 3.0}, {"a", 10, 1.0}, {"b", 20, 2.0}};
  CFFTMgr job = JobAt(folder.PathOf("three.txt"));
  job.SetBaseDataForREI("three");
  for (const auto& node : nodes) {
    Doubles samples;
    for (std::size_t i = 0; i < n; ++i) {
      samples.push_back(node.amplitude *
                        std::sin(2 * kPi * static_cast<double>(node.bin * i) / static_cast<double>(n)));
    }
    job.AddInputDataForREI(0.01, ArrayOf(samples), node.name);
  }
  job.WriteInputDataFileForMultiNode();
  job.RunFFT();
  job.ReadResultDataForMultiNode();
  EXPECT_TRUE(fs::exists(folder.Path() / "three_out.txt"));
  EXPECT_EQ(job.m_nOutputType, 1);
  ASSERT_EQ(job.m_arrOutputAxis.GetSize(), static_cast<INT_PTR>(n / 2 + 1));
  EXPECT_NEAR(job.m_arrOutputAxis[1], 0.5, 1e-9);  // 1 / (200 x 0.01 s)
  for (const auto& node : nodes) {
    SCOPED_TRACE(node.name);
    const auto found = job.m_mapOutputData.find(CString(node.name));
    ASSERT_NE(found, job.m_mapOutputData.end());
    const CFFTData& data = *found->second;
    ASSERT_EQ(data.m_arrData1.GetSize(), job.m_arrOutputAxis.GetSize());
    ASSERT_EQ(data.m_arrData2.GetSize(), job.m_arrOutputAxis.GetSize());
    for (INT_PTR k = 0; k < data.m_arrData1.GetSize(); ++k) {
      const double expected = k == static_cast<INT_PTR>(node.bin) ? -node.amplitude : 0.0;
      EXPECT_NEAR(data.m_arrData2[k], expected, 1e-5) << "bin " << k;
      EXPECT_NEAR(data.m_arrData1[k], 0.0, 1e-5) << "bin " << k;
    }
  }
}

TEST(FFTJobEndToEnd, FrequencyInputRecoversTheWaveformExactly) {
  // Spectra whose numbers "%g" writes exactly, so the only error left is the solver's.
  struct Bin {
    std::size_t k;
    double real;
    double imaginary;
  };
  struct Row {
    const char* name;
    std::size_t n;  ///< the waveform's length: 2K - 2 samples, or 2K - 1 when the last bin is complex
    std::vector<Bin> bins;
  };
  const Row rows[] = {
      {"even length", 16, {{0, 1.5, 0}, {3, 2, 0}, {5, 0, -0.75}, {8, 0.25, 0}}},
      {"odd length", 15, {{0, -0.5, 0}, {1, 1, 1}, {7, 0.5, -0.25}}},
      {"prime length", 67, {{0, 0, 0}, {2, 3, -1}, {33, 0.125, 0.5}}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const TempFolder folder("fftjob");
    const std::size_t bins = row.n / 2 + 1;
    const double df = 0.5;
    CFFTMgr job = JobAt(folder.PathOf("spectrum.txt"));
    job.SetInputDataForREI(1.0, CArrayD(), "spectrum", "in");
    job.m_nInputType = 1;
    for (std::size_t k = 0; k < bins; ++k) {
      job.m_arrInputAxis.Add(static_cast<double>(k) * df);
      job.m_arrInputValue1.Add(0.0);
      job.m_arrInputValue2.Add(0.0);
    }
    for (const Bin& bin : row.bins) {
      job.m_arrInputValue1[static_cast<INT_PTR>(bin.k)] = bin.real;
      job.m_arrInputValue2[static_cast<INT_PTR>(bin.k)] = bin.imaginary;
    }
    job.WriteInputDataFile();
    job.RunFFT();
    job.ReadResultData();
    EXPECT_EQ(job.m_nOutputType, 0);
    ASSERT_EQ(job.m_arrOutputAxis.GetSize(), static_cast<INT_PTR>(row.n));
    ASSERT_EQ(job.m_arrOutputValue1.GetSize(), static_cast<INT_PTR>(row.n));
    Doubles expected(row.n);
    for (std::size_t i = 0; i < row.n; ++i) {
      for (const Bin& bin : row.bins) {
        const double phase = 2 * kPi * static_cast<double>(bin.k * i) / static_cast<double>(row.n);
        // Re((real + i imaginary) e^(i phase)); bin 0 and a Nyquist bin count their real part.
        expected[i] += bin.real * std::cos(phase) - bin.imaginary * std::sin(phase);
      }
    }
    const double tolerance = 1e-9 * MaxAbs(expected);
    for (std::size_t i = 0; i < row.n; ++i) {
      const auto at = static_cast<INT_PTR>(i);
      EXPECT_NEAR(job.m_arrOutputAxis[at], static_cast<double>(i) / (static_cast<double>(row.n) * df), 1e-12);
      EXPECT_NEAR(job.m_arrOutputValue1[at], expected[i], tolerance) << "sample " << i;
    }
  }
}

TEST(FFTJobEndToEnd, PathsWithBlanksReachTheSolverWhole) {
  const TempFolder folder("fftjob");
  const fs::path work = folder.Path() / "with blanks" / "two  spaces";
  fs::create_directories(work);
  Doubles samples;
  for (int i = 0; i < 8; ++i) samples.push_back(i % 2 == 0 ? 1.0 : -1.0);  // all on bin 4

  CFFTMgr single = JobAt((work / "my job.txt").string());
  single.SetInputDataForREI(1.0, ArrayOf(samples), "alternating", "x");
  single.WriteInputDataFile();
  single.RunFFT();
  single.ReadResultData();
  ASSERT_EQ(single.m_arrOutputValue1.GetSize(), 5);
  EXPECT_DOUBLE_EQ(single.m_arrOutputValue1[4], 1.0);
  EXPECT_DOUBLE_EQ(single.m_arrOutputAxis[4], 0.5);

  CFFTMgr multi = JobAt((work / "multi job.txt").string());
  multi.SetBaseDataForREI("multi");
  multi.AddInputDataForREI(1.0, ArrayOf(samples), "node one");
  multi.WriteInputDataFileForMultiNode();
  multi.RunFFT();
  multi.ReadResultDataForMultiNode();
  EXPECT_EQ(multi.GetMultiNodeResultFilePath().str(), (work / "multi job_out.txt").string());
  ASSERT_EQ(multi.m_mapOutputData.size(), 1u);
  const CFFTData& node = *multi.m_mapOutputData.begin()->second;
  ASSERT_EQ(node.m_arrData1.GetSize(), 5);
  EXPECT_DOUBLE_EQ(node.m_arrData1[4], 1.0);
}

TEST(FFTJobEndToEnd, JobTheSolverRefusesReadsNoResult) {
  // Frequency input whose second array is short: the size line without rows.
  const TempFolder folder("fftjob");
  CFFTMgr job = JobAt(folder.PathOf("short.txt"));
  job.SetInputDataForREI(1.0, ArrayOf({1, 2, 3}), "short", "x");
  job.m_nInputType = 1;
  job.m_arrInputValue2.Add(0.0);
  job.WriteInputDataFile();
  const std::string written = ReadFile(folder.PathOf("short.txt"));
  job.RunFFT();
  EXPECT_EQ(ReadFile(folder.PathOf("short.txt")), written);
  job.ReadResultData();
  EXPECT_EQ(job.m_arrOutputAxis.GetSize(), 0);
}

}  // namespace
