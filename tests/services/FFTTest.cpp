// FFT jobs on real files: whole exchange files compared with their expected text, the
// result readers over hand-written output sections (every grammar and stop rule), the
// node bookkeeping and its shared ownership between copies, and the solver run through
// a real child: a shell script standing in for the solver.
#include <corlith/environment/Utility.h>
#include <corlith/framework/Exceptions.h>
#include <corlith/services/FFT.h>
#include <corlith/test/Arrays.h>
#include <corlith/test/TempFolder.h>

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using corlith::test::ArrayOf;
using corlith::test::ReadFile;
using corlith::test::TempFolder;
using corlith::test::ToVector;
using Doubles = std::vector<double>;

CArrayD Values(std::initializer_list<double> values) { return ArrayOf<CArrayD>(values); }

// The fixed opening of an exchange file up to the input type.
std::string Head(const std::string& units, const std::string& note, const std::string& analysis,
                 const std::string& inputType, const std::string& version = "1.0") {
  return "(File\n\t(Version " + version + ")\n\t(Date " + version + ")\n\t(Unit " + units + ")\n\t(Note " +
         note + ")\n)\n(AnalysisParameters\n" + analysis + ")\n(Input\n\t(Type " + inputType + ")\n";
}
constexpr const char* kRei = "\t(AnalysisType REI)\n";

// A job writing into a temporary folder.
struct JobFiles {
  TempFolder folder{"fft"};
  CFFTMgr job;
  JobFiles() { job.m_strInputFilePath = CString(folder.PathOf("job.txt")); }
  std::string Written() const { return ReadFile(job.m_strInputFilePath.str()); }
};

// --- writers -------------------------------------------------------------------------

TEST(FFTWriter, SingleNodeFilesAreWrittenByteForByte) {
  const double inf = std::numeric_limits<double>::infinity();
  struct Row {
    const char* name;
    std::function<void(CFFTMgr&)> setUp;
    std::string expected;
  };
  const std::vector<Row> rows = {
      {"a fresh job with 0 samples: size 0, then the closing line; the date line holds the version",
       [](CFFTMgr& job) { job.SetInputDataForREI(0.5, CArrayD(), "job", "v"); },
       "(File\n\t(Version 1.0)\n\t(Date 1.0)\n\t(Unit s Hz)\n\t(Note job_v)\n)\n(AnalysisParameters\n"
       "\t(AnalysisType REI)\n)\n(Input\n\t(Type Time)\n\t(Size 0)\n)\n"},
      {"time rows use %g: six digits, exponent form, an axis by repeated addition",
       [](CFFTMgr& job) {
         job.SetInputDataForREI(0.1, Values({1234567.0, -0.5, 1e-5, 0.0001}), "w", "1");
       },
       Head("s Hz", "w_1", kRei, "Time") +
           "\t(Size 4)\n\t0 1.23457e+06\n\t0.1 -0.5\n\t0.2 1e-05\n\t0.3 0.0001\n)\n"},
      {"inf, nan and negative zero as printf writes them",
       [inf](CFFTMgr& job) {
         job.SetInputDataForREI(1.0, Values({inf, -inf, std::nan(""), -0.0}), "n", "s");
       },
       Head("s Hz", "n_s", kRei, "Time") + "\t(Size 4)\n\t0 inf\n\t1 -inf\n\t2 nan\n\t3 -0\n)\n"},
      {"unit index 2 writes us and MHz",
       [](CFFTMgr& job) {
         job.SetInputDataForREI(1.0, Values({1.0}), "u", "2");
         job.m_nUnitIndex = 2;
       },
       Head("us MHz", "u_2", kRei, "Time") + "\t(Size 1)\n\t0 1\n)\n"},
      {"unit index 7 falls back to s and Hz",
       [](CFFTMgr& job) {
         job.SetInputDataForREI(1.0, Values({1.0}), "u", "7");
         job.m_nUnitIndex = 7;
       },
       Head("s Hz", "u_7", kRei, "Time") + "\t(Size 1)\n\t0 1\n)\n"},
      {"analysis type 1 writes TDR, the timing and the impedance",
       [](CFFTMgr& job) {
         job.SetInputDataForREI(1.0, Values({2.0}), "t", "r");
         job.m_nAnalysisType = 1;
         job.m_dTiming1 = 1e-9;
         job.m_dTiming2 = 2.5e-10;
         job.m_dImpedance1 = 50.0;
         job.m_dImpedance2 = 75.125;
       },
       Head("s Hz", "t_r", "\t(AnalysisType TDR)\n\t(Timing 1e-09 2.5e-10)\n\t(Impedance 50 75.125)\n",
            "Time") +
           "\t(Size 1)\n\t0 2\n)\n"},
      {"analysis type 9 is written as REI but still with timing and impedance",
       [](CFFTMgr& job) {
         job.SetInputDataForREI(1.0, CArrayD(), "t", "9");
         job.m_nAnalysisType = 9;
       },
       Head("s Hz", "t_9", "\t(AnalysisType REI)\n\t(Timing 0 0)\n\t(Impedance 0 0)\n", "Time") +
           "\t(Size 0)\n)\n"},
      {"Frequency input with both components writes three columns",
       [](CFFTMgr& job) {
         job.SetInputDataForREI(1e6, Values({1.0, 2.0}), "f", "3");
         job.m_nInputType = 1;
         job.m_arrInputValue2.Copy(Values({-1.0, 0.25}));
       },
       Head("s Hz", "f_3", kRei, "Frequency") + "\t(Size 2)\n\t0 1 -1\n\t1e+06 2 0.25\n)\n"},
      {"Frequency input with a short second array: the size line, no rows",
       [](CFFTMgr& job) {
         job.SetInputDataForREI(1.0, Values({1.0, 2.0}), "f", "s");
         job.m_nInputType = 1;
         job.m_arrInputValue2.Copy(Values({3.0}));
       },
       Head("s Hz", "f_s", kRei, "Frequency") + "\t(Size 2)\n)\n"},
      {"an unknown input type is written as Time with no rows",
       [](CFFTMgr& job) {
         job.SetInputDataForREI(1.0, Values({1.0, 2.0}), "x", "5");
         job.m_nInputType = 5;
       },
       Head("s Hz", "x_5", kRei, "Time") + "\t(Size 2)\n)\n"},
      {"an axis and values of different counts leave out the size line and the rows",
       [](CFFTMgr& job) {
         job.SetInputDataForREI(1.0, Values({1.0, 2.0}), "d", "c");
         job.m_arrInputAxis.Add(2.0);
       },
       Head("s Hz", "d_c", kRei, "Time") + ")\n"},
      {"version and note are written as the host set them",
       [](CFFTMgr& job) {
         job.m_strVersion = "2.5 beta";
         job.m_strNote = "a (note) %d";
       },
       Head("s Hz", "a (note) %d", kRei, "Time", "2.5 beta") + "\t(Size 0)\n)\n"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    JobFiles files;
    row.setUp(files.job);
    files.job.WriteInputDataFile();
    EXPECT_EQ(files.Written(), row.expected);
  }
}

// Nodes "b" and "a", added in that order; the axis comes from the first node added.
void AddNodesBA(CFFTMgr& job) {
  job.SetBaseDataForREI("multi");
  job.AddInputDataForREI(0.25, Values({1.0, 2.0, 3.0}), "b");
  job.AddInputDataForREI(99.0, Values({-1.0, -2.0, -3.0}), "a");
}

TEST(FFTWriter, MultiNodeFilesPutTheNodesInNameOrder) {
  struct Row {
    const char* name;
    std::function<void(CFFTMgr&)> setUp;
    std::string expected;
  };
  const std::vector<Row> rows = {
      {"Time input: node a's column before node b's", AddNodesBA,
       Head("s Hz", "multi", kRei, "Time") + "\t(Size 3 2)\n\t0 -1 1\n\t0.25 -2 2\n\t0.5 -3 3\n)\n"},
      {"Frequency input: first and second value of each node",
       [](CFFTMgr& job) {
         AddNodesBA(job);
         job.m_nInputType = 1;
         job.m_mapInputData["a"]->m_arrData2.Copy(Values({10.0, 20.0, 30.0}));
         job.m_mapInputData["b"]->m_arrData2.Copy(Values({0.5, 0.75, 1e7}));
       },
       Head("s Hz", "multi", kRei, "Frequency") +
           "\t(Size 3 2)\n\t0 -1 10 1 0.5\n\t0.25 -2 20 2 0.75\n\t0.5 -3 30 3 1e+07\n)\n"},
      {"an unknown input type: the axis value alone",
       [](CFFTMgr& job) {
         AddNodesBA(job);
         job.m_nInputType = 3;
       },
       Head("s Hz", "multi", kRei, "Time") + "\t(Size 3 2)\n\t0\n\t0.25\n\t0.5\n)\n"},
      {"no nodes and no axis",
       [](CFFTMgr& job) {
         job.SetBaseDataForREI("none");
         job.m_nUnitIndex = 3;
       },
       Head("ns GHz", "none", kRei, "Time") + "\t(Size 0 0)\n)\n"},
      {"names in byte order: upper case and digits before lower case",
       [](CFFTMgr& job) {
         job.SetBaseDataForREI("order");
         job.AddInputDataForREI(1.0, Values({3.0}), "n");
         job.AddInputDataForREI(1.0, Values({1.0}), "N");
         job.AddInputDataForREI(1.0, Values({2.0}), "10");
       },
       Head("s Hz", "order", kRei, "Time") + "\t(Size 1 3)\n\t0 2 1 3\n)\n"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    JobFiles files;
    row.setUp(files.job);
    files.job.WriteInputDataFileForMultiNode();
    EXPECT_EQ(files.Written(), row.expected);
  }
}

TEST(FFTWriter, ANodeShorterThanTheAxisThrowsAndLeavesTheFileIncomplete) {
  JobFiles files;
  AddNodesBA(files.job);
  files.job.m_mapInputData["b"]->m_arrData1.SetSize(1);
  EXPECT_THROW(files.job.WriteInputDataFileForMultiNode(), CInvalidArgException);
  // Everything up to the faulty value stays, the row's axis and node a's value included.
  EXPECT_EQ(files.Written(), Head("s Hz", "multi", kRei, "Time") + "\t(Size 3 2)\n\t0 -1 1\n\t0.25 -2");

  JobFiles frequency;
  AddNodesBA(frequency.job);
  frequency.job.m_nInputType = 1;  // the nodes have no second component
  EXPECT_THROW(frequency.job.WriteInputDataFileForMultiNode(), CInvalidArgException);
  EXPECT_EQ(frequency.Written(), Head("s Hz", "multi", kRei, "Frequency") + "\t(Size 3 2)\n\t0");
}

TEST(FFTWriter, LargeFilesRoundTheBlockBoundariesWhole) {
  JobFiles files;
  CArrayD samples;
  std::string rows;
  for (int i = 0; i < 200000; ++i) {
    samples.Add(i * 1.5);
    char row[64];
    std::snprintf(row, sizeof row, "\t%g %g\n", i * 1.0, i * 1.5);
    rows += row;
  }
  files.job.SetInputDataForREI(1.0, samples, "big", "1");
  files.job.WriteInputDataFile();
  EXPECT_EQ(files.Written(), Head("s Hz", "big_1", kRei, "Time") + "\t(Size 200000)\n" + rows + ")\n");
}

TEST(FFTWriter, AnEmptyPathOrAFolderThatIsMissingWritesNothing) {
  TempFolder folder("fft");
  CFFTMgr job;
  job.SetInputDataForREI(1.0, Values({1.0}), "j", "s");
  job.WriteInputDataFile();  // empty path: nothing at all
  job.WriteInputDataFileForMultiNode();
  EXPECT_TRUE(fs::is_empty(folder.Path()));
  job.m_strInputFilePath = CString(folder.PathOf("missing/job.txt"));
  job.WriteInputDataFile();
  job.WriteInputDataFileForMultiNode();
  EXPECT_TRUE(fs::is_empty(folder.Path()));
}

TEST(FFTWriter, TheMultiNodeResultFileNameFollowsTheLastDot) {
  struct Row {
    const char* exchange;
    const char* result;
  };
  const Row rows[] = {
      {"C:\\x\\job.txt", "C:/x/job_out.txt"},  // separators read either way, written natively
      {"/tmp/run/job.in.txt", "/tmp/run/job.in_out.txt"},
      {"/tmp/run.d/job", "/tmp/run_out.txt"},  // the last dot may be in a folder's name
      {"job", "_out.txt"},                     // no dot at all: the bare name
      {"", "_out.txt"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.exchange);
    CFFTMgr job;
    job.m_strInputFilePath = row.exchange;
    EXPECT_EQ(job.GetMultiNodeResultFilePath().str(), row.result);
  }
}

// --- the job's data ------------------------------------------------------------------

TEST(FFTJob, KeywordsFollowTheirTables) {
  struct Row {
    int value;
    const char* analysis;
    const char* input;
    const char* time;
    const char* freq;
  };
  const Row rows[] = {
      {0, "REI", "Time", "s", "Hz"},   {1, "TDR", "Frequency", "ms", "kHz"}, {2, "TDT", "Time", "us", "MHz"},
      {3, "REI", "Time", "ns", "GHz"}, {4, "REI", "Time", "s", "Hz"},        {-1, "REI", "Time", "s", "Hz"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.value);
    CFFTMgr job;
    job.m_nAnalysisType = job.m_nInputType = job.m_nUnitIndex = row.value;
    EXPECT_EQ(job.GetAnalysisTypeStr().str(), row.analysis);
    EXPECT_EQ(job.GetInputTypeStr().str(), row.input);
    EXPECT_EQ(job.GetTimeUnitStr().str(), row.time);
    EXPECT_EQ(job.GetFreqUnitStr().str(), row.freq);
  }
}

TEST(FFTJob, TheSolverPathIsUnderTheDataFolder) {
  const CFFTMgr job;
  KTUtility& utility = *KTUtility::GetInstance();
  const std::string expected =
      (fs::path(utility.GetDataPath().str()) / "Data" / "Analysis" / "FFT.exe").string();
  EXPECT_EQ(job.m_strFFTExePath.str(), fs::path(expected).lexically_normal().string());
  EXPECT_EQ(job.m_strVersion.str(), "1.0");
  EXPECT_TRUE(job.m_strInputFilePath.IsEmpty());
}

TEST(FFTJob, PreparingAJobResetsItsParametersAndKeepsItsNodes) {
  CFFTMgr job;
  AddNodesBA(job);
  job.m_strVersion = "9";
  job.m_nUnitIndex = 3;
  job.m_nUnitReserved = 4;
  job.m_nAnalysisType = 2;
  job.m_nInputType = 1;
  job.m_nOutputType = 0;
  job.m_arrInputValue2.Copy(Values({5.0}));

  job.SetInputDataForREI(2.0, Values({7.0, 8.0}), "single", "sfx");
  EXPECT_EQ(job.m_strName.str(), "single");
  EXPECT_EQ(job.m_strNote.str(), "single_sfx");
  EXPECT_EQ(job.m_strVersion.str(), "1.0");
  EXPECT_EQ(job.m_nUnitIndex + job.m_nUnitReserved + job.m_nAnalysisType + job.m_nInputType, 0);
  EXPECT_EQ(job.m_nOutputType, 1);
  EXPECT_EQ(ToVector(job.m_arrInputAxis), (Doubles{0.0, 2.0}));
  EXPECT_EQ(ToVector(job.m_arrInputValue1), (Doubles{7.0, 8.0}));
  EXPECT_TRUE(job.m_arrInputValue2.IsEmpty());
  EXPECT_EQ(job.m_mapInputData.size(), 2u);  // the maps stay

  job.m_arrInputValue1.Copy(Values({1.0}));
  job.m_nUnitIndex = 2;
  job.SetBaseDataForREI("base %d");
  EXPECT_EQ(job.m_strNote.str(), "base %d");  // the name is an argument, never a format
  EXPECT_EQ(job.m_nUnitIndex, 0);
  EXPECT_TRUE(job.m_arrInputAxis.IsEmpty());
  EXPECT_EQ(ToVector(job.m_arrInputValue1), (Doubles{1.0}));  // the value arrays stay
  EXPECT_EQ(job.m_mapOutputData.size(), 2u);
}

TEST(FFTJob, AddingNodesRefusesWrongCountsAndDuplicatesSilently) {
  CFFTMgr job;
  job.SetBaseDataForREI("m");
  job.AddInputDataForREI(0.1, Values({1, 2, 3, 4, 5, 6, 7, 8, 9, 10}), "first");
  // The axis is built by repeated addition: eight times 0.1 added up is not 8 * 0.1.
  Doubles axis;
  double position = 0.0;
  for (int i = 0; i < 10; ++i, position += 0.1) axis.push_back(position);
  EXPECT_EQ(ToVector(job.m_arrInputAxis), axis);
  EXPECT_NE(job.m_arrInputAxis[8], 8 * 0.1);

  const CFFTData* first = job.m_mapInputData.at("first").get();
  job.AddInputDataForREI(1.0, Values({1, 2}), "second");                         // another count
  job.AddInputDataForREI(1.0, Values({0, 0, 0, 0, 0, 0, 0, 0, 0, 0}), "first");  // known name
  EXPECT_EQ(job.m_mapInputData.size(), 1u);
  EXPECT_EQ(job.m_mapOutputData.size(), 1u);
  EXPECT_EQ(job.m_mapInputData.at("first").get(), first);
  EXPECT_EQ(first->m_arrData1[0], 1.0);
  EXPECT_EQ(job.m_arrInputAxis.GetSize(), 10);

  job.AddInputDataForREI(5.0, Values({1, 2, 3, 4, 5, 6, 7, 8, 9, 10}), "First");  // names are case-sensitive
  EXPECT_EQ(job.m_mapInputData.size(), 2u);
  EXPECT_EQ(ToVector(job.m_arrInputAxis), axis);  // a later node's step changes nothing
  const CFFTData& output = *job.m_mapOutputData.at("First");
  EXPECT_TRUE(output.m_arrData1.IsEmpty() && output.m_arrData2.IsEmpty());
}

TEST(FFTJob, CopiesShareTheNodeDataAndDieInAnyOrder) {
  for (const bool sourceFirst : {true, false}) {
    SCOPED_TRACE(sourceFirst ? "source dies first" : "copy dies first");
    auto source = std::make_unique<CFFTMgr>();
    AddNodesBA(*source);
    source->m_strName = "src";
    auto copy = std::make_unique<CFFTMgr>(*source);
    auto assigned = std::make_unique<CFFTMgr>();
    assigned->AddInputDataForREI(1.0, Values({1.0}), "old");
    *assigned = *source;
    EXPECT_EQ(copy->m_mapInputData.at("a").get(), source->m_mapInputData.at("a").get());
    EXPECT_EQ(assigned->m_mapOutputData.at("b").get(), source->m_mapOutputData.at("b").get());
    EXPECT_FALSE(assigned->m_mapInputData.contains("old"));
    EXPECT_EQ(ToVector(copy->m_arrInputAxis), ToVector(source->m_arrInputAxis));

    // A change through one job shows in the other: the same objects.
    copy->m_mapInputData.at("b")->m_arrData1.Add(4.0);
    EXPECT_EQ(source->m_mapInputData.at("b")->m_arrData1.GetSize(), 4);
    if (sourceFirst) {
      source.reset();
      EXPECT_EQ(copy->m_mapInputData.at("b")->m_arrData1[3], 4.0);
      copy.reset();
      EXPECT_EQ(assigned->m_mapInputData.at("a")->m_arrData1[0], -1.0);
    } else {
      copy.reset();
      assigned.reset();
      EXPECT_EQ(source->m_mapInputData.at("a")->m_arrData1[2], -3.0);
    }
  }
}

TEST(FFTJobArray, FindReturnsTheFirstJobOfThatExactName) {
  CFFTMgrArray jobs;
  for (const char* name : {"alpha", "Beta", "alpha"}) {
    auto job = std::make_unique<CFFTMgr>();
    job->m_strName = name;
    jobs.Add(job.release());
  }
  EXPECT_EQ(jobs.Find("alpha"), jobs[0]);
  EXPECT_EQ(jobs.Find("Beta"), jobs[1]);
  EXPECT_EQ(jobs.Find("beta"), nullptr);
  EXPECT_EQ(jobs.Find(""), nullptr);

  // A copy holds jobs of its own, which share their node data with the originals.
  jobs[1]->AddInputDataForREI(1.0, Values({1.0}), "n");
  auto copy = std::make_unique<CFFTMgrArray>(jobs);
  ASSERT_EQ(copy->GetSize(), 3);
  EXPECT_NE(copy->Find("Beta"), jobs.Find("Beta"));
  EXPECT_EQ(copy->Find("Beta")->m_mapInputData.at("n").get(), jobs[1]->m_mapInputData.at("n").get());
  jobs.DeleteAll();
  EXPECT_EQ(copy->Find("Beta")->m_mapInputData.at("n")->m_arrData1[0], 1.0);
}

// --- readers -------------------------------------------------------------------------

TEST(FFTReader, SingleNodeOutputSectionsFollowTheGrammar) {
  const double inf = std::numeric_limits<double>::infinity();
  struct Row {
    const char* name;
    std::string file;
    Doubles axis, first, second;
    int outputType;  // after the read; every job starts with output type 1
  };
  const std::string input = "(Input\n\t(Type Time)\n\t(Size 2)\n\t0 1\n\t1 2\n)\n";
  const std::vector<Row> rows = {
      {"the input rows before the output section are not results", input, {}, {}, {}, 1},
      {"a Time section", input + "(Output\n\t(Type Time)\n\t0 5\n\t1 6\n)\n", {0, 1}, {5, 6}, {}, 0},
      {"a Frequency section",
       "(Output\n(Type Frequency)\n0 1 -1\n1e6 2 0.5\n)\n",
       {0, 1e6},
       {1, 2},
       {-1, 0.5},
       1},
      {"the output type stays until a type line changes it",
       "(Output\n0 1 2\n(Type Time)\n3 4\n",
       {0, 3},
       {1, 4},
       {2},
       0},
      {"lines are trimmed, CR LF line ends included",
       "  (Output \r\n\t(Type   Time )\r\n \t7 8\t\r\n",
       {7},
       {8},
       {},
       0},
      {"runs of blanks count as one", "(Output\n(Type Time)\n1    2\n", {1}, {2}, {}, 0},
      {"a tab is not a separator: atof reads the field's start",
       "(Output\n(Type Time)\n1\t9 2\n",
       {1},
       {2},
       {},
       0},
      {"fields read as atof reads them",
       "(Output\n(Type Time)\nabc 0x10\n+5 1e400\n-2.5e-3x .5\n",
       {0, 5, -2.5e-3},
       {16, inf, 0.5},
       {},
       0},
      {"a row with one field too many ends reading",
       "(Output\n(Type Time)\n1 2\n3 4 5\n6 7\n",
       {1},
       {2},
       {},
       0},
      {"a row with one field too few ends reading",
       "(Output\n(Type Frequency)\n1 2 3\n4 5\n6 7 8\n",
       {1},
       {2},
       {3},
       1},
      {"an empty line ends reading", "(Output\n(Type Time)\n1 2\n\n3 4\n", {1}, {2}, {}, 0},
      {"an unknown type word ends reading",
       "(Output\n(Type Time)\n1 2\n(Type Voltage)\n(Type Time)\n3 4\n",
       {1},
       {2},
       {},
       0},
      {"a type line with no word ends reading", "(Output\n(Type )\n1 2 3\n", {}, {}, {}, 1},
      {"the type word is what is left without \"(Type\" and \")\"",
       "(Output\n(TypeTime)))\n1 2\n",
       {1},
       {2},
       {},
       0},
      {"a type word is case-sensitive", "(Output\n(Type time)\n1 2 3\n", {}, {}, {}, 1},
      {"type lines before the output section are ignored", "(Type Time)\n(Output\n1 2 3\n", {1}, {2}, {3}, 1},
      {"other lines holding ( are skipped, also (Size",
       "(Output\n(Type Time)\n(Size 3)\n1 2\n(Comment 1 2)\nx(y\n3 4\n)\n",
       {1, 3},
       {2, 4},
       {},
       0},
      {"a second (Output line changes nothing",
       "(Output\n(Type Time)\n1 2\n(Output\n3 4\n",
       {1, 3},
       {2, 4},
       {},
       0},
      {"a line beginning with ) and holding ( ends reading",
       "(Output\n(Type Time)\n1 2\n)(\n3 4\n",
       {1},
       {2},
       {},
       0},
      {"a lone ) ends reading as a row of the wrong count",
       "(Output\n(Type Time)\n1 2\n)\n3 4\n",
       {1},
       {2},
       {},
       0},
      {"deliberately, ') 5' is a row of two fields", "(Output\n(Type Time)\n) 5\n", {0}, {5}, {}, 0},
      {"the section starts only at a line beginning with (Output",
       "x (Output\n1 2 3\n(Outputs\n4 5 6\n",
       {4},
       {5},
       {6},
       1},
      {"a last line without a line feed is read", "(Output\n(Type Time)\n1 2\n3 4", {1, 3}, {2, 4}, {}, 0},
      {"an empty file", "", {}, {}, {}, 1},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    JobFiles files;
    files.folder.Write("job.txt", row.file);
    files.job.SetInputDataForREI(1.0, Values({9.0}), "j", "s");
    files.job.m_arrOutputAxis.Copy(Values({42.0}));  // emptied by every read
    files.job.m_arrOutputValue2.Copy(Values({42.0}));
    files.job.ReadResultData();
    EXPECT_EQ(ToVector(files.job.m_arrOutputAxis), row.axis);
    EXPECT_EQ(ToVector(files.job.m_arrOutputValue1), row.first);
    EXPECT_EQ(ToVector(files.job.m_arrOutputValue2), row.second);
    EXPECT_EQ(files.job.m_nOutputType, row.outputType);
  }
}

TEST(FFTReader, AnUnknownOutputTypeTakesNoRows) {
  JobFiles files;
  files.folder.Write("job.txt", "(Output\n1 2\n1 2 3\n");
  files.job.m_nOutputType = 4;
  files.job.ReadResultData();
  EXPECT_TRUE(files.job.m_arrOutputAxis.IsEmpty());
}

TEST(FFTReader, LinesLongerThanABlockAndManyRowsReadWhole) {
  JobFiles files;
  std::string file = "(Output\n(Type Time)\n" + std::string(3 << 20, ' ') + "1 2\n";
  Doubles axis{1};
  for (int i = 0; i < 300000; ++i) {
    file += std::to_string(i) + " 0.5\n";
    axis.push_back(i);
  }
  files.folder.Write("job.txt", file + ")\n");
  files.job.ReadResultData();
  EXPECT_EQ(ToVector(files.job.m_arrOutputAxis), axis);
  EXPECT_EQ(files.job.m_arrOutputValue1.GetSize(), 300001);
}

TEST(FFTReader, MissingFilesEmptyTheResultsAndAnEmptyPathKeepsThem) {
  CFFTMgr job;
  job.m_arrOutputAxis.Copy(Values({1.0}));
  job.ReadResultData();  // empty path: nothing happens
  job.ReadResultDataForMultiNode();
  EXPECT_EQ(job.m_arrOutputAxis.GetSize(), 1);

  TempFolder folder("fft");
  job.m_strInputFilePath = CString(folder.PathOf("missing.txt"));
  job.ReadResultData();
  EXPECT_TRUE(job.m_arrOutputAxis.IsEmpty());
  job.m_arrOutputValue1.Copy(Values({1.0}));
  job.m_strInputFilePath = CString(folder.Path().string() + "/job.txt");
  folder.Write("job.txt", "(Output\n(Type Time)\n1 2\n");  // but no job_out.txt
  job.ReadResultDataForMultiNode();
  EXPECT_TRUE(job.m_arrOutputValue1.IsEmpty());
  job.m_strInputFilePath = CString(folder.Path().string());  // a folder reads as an empty file
  job.ReadResultData();
  EXPECT_TRUE(job.m_arrOutputAxis.IsEmpty());
}

TEST(FFTReader, MultiNodeOutputSectionsFollowTheGrammar) {
  struct Row {
    const char* name;
    std::string file;
    Doubles axis, a1, a2, b1, b2;
  };
  const std::vector<Row> rows = {
      {"Time rows: node a, then node b",
       "(Output\n(Type Time)\n(Size 2 2)\n0 1 2\n0.5 3 4\n)\n",
       {0, 0.5},
       {1, 3},
       {},
       {2, 4},
       {}},
      {"Frequency rows: two values per node",
       "(Output\n(Type Frequency)\n(Size 1 2)\n7 1 2 3 4\n)\n",
       {7},
       {1},
       {2},
       {3},
       {4}},
      {"the size line's first number is not checked",
       "(Output\n(Type Time)\n(Size 99 2)\n0 1 2\n",
       {0},
       {1},
       {},
       {2},
       {}},
      {"a size line with another node count ends reading",
       "(Output\n(Type Time)\n(Size 1 3)\n0 1 2\n",
       {},
       {},
       {},
       {},
       {}},
      {"a size line with one number leaves the count at 0 and ends reading",
       "(Output\n(Size 2)\n0 1 2 3 4\n",
       {},
       {},
       {},
       {},
       {}},
      {"a size line with three numbers as well", "(Output\n(Size 1 2 3)\n0 1 2 3 4\n", {}, {}, {}, {}, {}},
      {"a row with the wrong count ends reading",
       "(Output\n(Type Time)\n(Size 1 2)\n0 1 2\n1 2\n2 3 4\n",
       {0},
       {1},
       {},
       {2},
       {}},
      {"size lines before the section are skipped",
       "(Size 1 5)\n(Output\n(Size 1 2)\n0 1 2 3 4\n",
       {0},
       {1},
       {2},
       {3},
       {4}},
      {"size lines are trimmed and cleaned of ) before they are split",
       " (Size  1   2 ))\n(Output\n(Size 1 2))\n0 1 2 3 4\n",
       {0},
       {1},
       {2},
       {3},
       {4}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    JobFiles files;
    files.folder.Write("job_out.txt", row.file);
    AddNodesBA(files.job);
    files.job.ReadResultDataForMultiNode();
    EXPECT_EQ(ToVector(files.job.m_arrOutputAxis), row.axis);
    const CFFTData& a = *files.job.m_mapOutputData.at("a");
    const CFFTData& b = *files.job.m_mapOutputData.at("b");
    EXPECT_EQ(ToVector(a.m_arrData1), row.a1);
    EXPECT_EQ(ToVector(a.m_arrData2), row.a2);
    EXPECT_EQ(ToVector(b.m_arrData1), row.b1);
    EXPECT_EQ(ToVector(b.m_arrData2), row.b2);
  }
}

TEST(FFTReader, ASecondMultiNodeReadAppendsToTheNodes) {
  JobFiles files;
  files.folder.Write("job_out.txt", "(Output\n(Type Time)\n(Size 1 2)\n5 1 2\n)\n");
  AddNodesBA(files.job);
  files.job.ReadResultDataForMultiNode();
  files.job.ReadResultDataForMultiNode();
  EXPECT_EQ(ToVector(files.job.m_arrOutputAxis), (Doubles{5}));
  EXPECT_EQ(ToVector(files.job.m_mapOutputData.at("a")->m_arrData1), (Doubles{1, 1}));
  EXPECT_EQ(ToVector(files.job.m_mapOutputData.at("b")->m_arrData1), (Doubles{2, 2}));
}

TEST(FFTReader, RowsWithoutASizeLineRunOutOfFieldsForTheNodes) {
  JobFiles files;
  files.folder.Write("job_out.txt", "(Output\n(Type Time)\n4\n");
  AddNodesBA(files.job);
  EXPECT_THROW(files.job.ReadResultDataForMultiNode(), CInvalidArgException);
  EXPECT_EQ(ToVector(files.job.m_arrOutputAxis), (Doubles{4}));  // stored before the fault

  // With no nodes at all, a one-field row is complete: even the closing ")" reads as 0.
  JobFiles empty;
  empty.folder.Write("job_out.txt", "(Output\n(Type Time)\n4\n)\n");
  empty.job.ReadResultDataForMultiNode();
  EXPECT_EQ(ToVector(empty.job.m_arrOutputAxis), (Doubles{4, 0}));
}

// --- running the solver -----------------------------------------------------------------

// A stand-in solver: records its arguments and current folder beside itself, then
// appends an output section to the file it was given (after a pause, so that a caller
// that does not wait reads nothing).
std::string WriteSolver(const TempFolder& folder, const std::string& name) {
  std::string path = folder.Write(name,
                                  "#!/bin/sh\n"
                                  "here=$(dirname \"$0\")\n"
                                  "echo \"$#\" > \"$here/argc\"\n"
                                  "printf '%s' \"$1\" > \"$here/argv1\"\n"
                                  "pwd > \"$here/cwd\"\n"
                                  "sleep 0.2\n"
                                  "printf '(Output\\n\\t(Type Time)\\n\\t0 5\\n\\t1 6\\n)\\n' >> \"$1\"\n");
  ::chmod(path.c_str(), 0755);
  return path;
}

TEST(FFTRun, TheSolverGetsTheWholePathAndIsWaitedFor) {
  TempFolder folder("fft run");
  fs::create_directories(folder.Path() / "with blanks");
  const std::string solver = WriteSolver(folder, "FFT");
  struct Row {
    const char* name;
    std::string solverPath;
  };
  const Row rows[] = {
      {"the solver as named", solver},
      {"the platform's name for a solver named .exe", solver + ".exe"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    CFFTMgr job;
    job.m_strFFTExePath = CString(row.solverPath);
    job.m_strInputFilePath = CString(folder.PathOf("with blanks/job 1.txt"));
    job.SetInputDataForREI(1.0, Values({1.0, 2.0}), "j", "s");
    job.WriteInputDataFile();
    job.RunFFT();
    EXPECT_EQ(ReadFile(folder.Path() / "argc"), "1\n");
    EXPECT_EQ(ReadFile(folder.Path() / "argv1"), job.m_strInputFilePath.str());
    EXPECT_EQ(ReadFile(folder.Path() / "cwd"), fs::current_path().string() + "\n");
    job.ReadResultData();
    EXPECT_EQ(job.m_nOutputType, 0);
    EXPECT_EQ(ToVector(job.m_arrOutputAxis), (Doubles{0, 1}));
    EXPECT_EQ(ToVector(job.m_arrOutputValue1), (Doubles{5, 6}));
    fs::remove(folder.Path() / "argc");
  }
}

TEST(FFTRun, ASolverThatCannotStartReturnsAtOnce) {
  TempFolder folder("fft");
  const std::string notProgram = folder.Write("FFT", "#!/bin/sh\necho ran > ran\n");  // not executable
  const std::string rows[] = {folder.PathOf("missing/FFT.exe"), notProgram, notProgram + ".exe", ""};
  for (const std::string& solver : rows) {
    SCOPED_TRACE(solver);
    CFFTMgr job;
    job.m_strFFTExePath = CString(solver);
    job.m_strInputFilePath = CString(folder.PathOf("job.txt"));
    job.SetInputDataForREI(1.0, Values({1.0}), "j", "s");
    job.WriteInputDataFile();
    const std::string before = ReadFile(folder.PathOf("job.txt"));
    const auto start = std::chrono::steady_clock::now();
    job.RunFFT();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
    EXPECT_EQ(ReadFile(folder.PathOf("job.txt")), before);
    EXPECT_FALSE(fs::exists(folder.Path() / "ran"));
  }
}

}  // namespace
