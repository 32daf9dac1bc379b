// FFT jobs exchanged with an external solver through text files. CFFTMgr holds one job
// (its parameters, its samples and its results), writes the parenthesised exchange file,
// runs the solver on it and reads the solver's "(Output" section back; CFFTData is one
// node's pair of arrays; CFFTMgrArray keeps several jobs and finds one by name.
#pragma once

#include <corlith/framework/String.h>
#include <corlith/values/ArrayD.h>
#include <corlith/values/ExPtrArray.h>

#include <map>
#include <memory>

/// One node's waveform: in a job's input map the first array holds the node's samples;
/// in its output map the first and second arrays hold the node's two result columns.
class CFFTData {
 public:
  CFFTData() = default;
  CFFTData(const CFFTData&) = default;
  CFFTData& operator=(const CFFTData&) = default;
  virtual ~CFFTData();

  CArrayD m_arrData1;  ///< the samples (input) or the first result column (output)
  CArrayD m_arrData2;  ///< the second component: Frequency input, or the second result column
};

namespace corlith {

/// Node names in plain byte order (bytes compared as unsigned, case-sensitive).
struct FFTNodeNameLess {
  bool operator()(const CString& a, const CString& b) const { return a.view() < b.view(); }
};

/// Node name to node data. Copies of a job share the node objects: shared ownership
/// keeps them alive until the last job holding them goes, whatever the order.
using FFTNodeMap = std::map<CString, std::shared_ptr<CFFTData>, FFTNodeNameLess>;

}  // namespace corlith

/// One FFT job. The fields are public: hosts assign them directly (the exchange path
/// has no setter). Every writer and reader does nothing while the exchange path is
/// empty, and a file that cannot be opened or created is left alone without a report.
///
/// The exchange file (both forms) opens with
///   (File / (Version v) / (Date v) / (Unit time freq) / (Note n) / )
///   (AnalysisParameters / (AnalysisType k) [/ (Timing a b) / (Impedance a b)] / )
///   (Input / (Type t)
/// each item a line of its own, nested lines led by a tab. Numbers are written as "%g",
/// counts as "%d", lines end in the platform's text line end ("\n" on POSIX).
///
/// The results are read from the first line that begins with "(Output" on: a
/// "(Type Time)" or "(Type Frequency)" line sets the output type (another word, or none,
/// ends reading); the multi-node reader also takes "(Size count nodes)" (reading ends
/// unless nodes equals the output map's node count); other lines holding "(" are
/// skipped, but one that also begins with ")" ends reading; every other line is a row
/// split at blanks (runs of blanks count as one) whose fields are read as atof reads
/// them (0 for a field that is no number). A row with a field count other than the
/// output type asks for ends reading, which is how the closing ")" ends it normally.
/// Lines are trimmed of surrounding white space before they are looked at.
class CFFTMgr {
 public:
  /// The solver path under the data folder, version "1.0", every other text empty,
  /// every number 0, the arrays and maps empty.
  CFFTMgr();
  /// Copies every field; the maps' node objects are shared with the source, not copied.
  CFFTMgr(const CFFTMgr& other);
  CFFTMgr& operator=(const CFFTMgr& other);
  virtual ~CFFTMgr();

  /// Prepares a multi-node job: name and note = strName, version "1.0", unit index and
  /// its neighbour 0, analysis and input type 0, output type 1, the axis emptied. The
  /// maps and the value arrays stay as they are.
  void SetBaseDataForREI(CString strName);
  /// Adds one node's time waveform to a multi-node job: an input node holding the
  /// samples and an empty output node under the same name. Silently ignored when the
  /// axis is not empty and its count differs from the sample count, or when the name is
  /// already there. The first node added builds the axis: 0.0, step, step + step, ...
  /// (repeated addition, not i * step).
  void AddInputDataForREI(double dStep, const CArrayD& arrValues, CString strNodeName);
  /// Prepares a single-node job: name = strName, note = "strName_strSuffix", version
  /// "1.0", unit index and its neighbour 0, analysis and input type 0, output type 1;
  /// the axis and both value arrays are emptied, then the axis takes 0.0, step,
  /// step + step, ... (repeated addition) and the first value array the samples.
  void SetInputDataForREI(double dStep, const CArrayD& arrValues, CString strName, CString strSuffix);

  /// Writes the single-node exchange file: after the input type, "(Size n)" and one row
  /// per sample ("axis value" for Time, "axis first second" for Frequency), both left
  /// out when the axis and the first value array differ in count. No rows for Frequency
  /// input whose second array differs in count from the first, nor for an unknown input
  /// type (which is written as "Time").
  void WriteInputDataFile();
  /// Writes the multi-node exchange file: after the input type, "(Size axis nodes)" and
  /// one row per axis sample: the axis value, then each node's first value (Time input)
  /// or first and second values (Frequency input), nodes in ascending name order; for
  /// an unknown input type the axis value alone. A node array shorter than the axis
  /// throws CInvalidArgException; the file keeps what was written before it.
  void WriteInputDataFileForMultiNode();
  /// Runs the solver hidden with the exchange path as its one argument (deliberately
  /// not split at blanks: a path with blanks reaches the solver whole; an empty path
  /// gives no argument) in the caller's current folder, and waits without a time limit
  /// for it to end. A solver that cannot be started returns at once, without a report;
  /// its exit status is not looked at. Platform deviation, deliberate: when the solver
  /// path names no file and ends in ".exe" (as the default does) while the same path
  /// without ".exe" is a file, that one runs, so the platform's solver name is found.
  void RunFFT();
  /// Reads the single-node results from the exchange file itself (the solver appends
  /// its "(Output" section to it): rows "axis value" for output type 0, "axis first
  /// second" for 1. The three result arrays are emptied first (also when the file
  /// cannot be opened).
  void ReadResultData();
  /// Reads the multi-node results from GetMultiNodeResultFilePath(): rows of the axis
  /// value and one (type 0) or two (type 1) values per node, taken by the output map's
  /// nodes in ascending name order. The three result arrays are emptied first; the
  /// nodes' arrays are not, so a second read appends to them (kept so, deliberately).
  /// Without a "(Size" line the expected node count stays 0, and a row then runs out of
  /// fields for the first node: CInvalidArgException, after the axis value was stored.
  void ReadResultDataForMultiNode();

  /// "REI", "TDR", "TDT" for analysis types 0, 1, 2; "REI" for any other.
  CString GetAnalysisTypeStr() const;
  /// "Time" for input type 0, "Frequency" for 1, "Time" for any other.
  CString GetInputTypeStr() const;
  /// "s", "ms", "us", "ns" for unit indices 0 to 3; "s" for any other.
  CString GetTimeUnitStr() const;
  /// "Hz", "kHz", "MHz", "GHz" for unit indices 0 to 3 (deliberately the reciprocals of
  /// the time units); "Hz" for any other.
  CString GetFreqUnitStr() const;
  /// Beyond the original, for hosts and tests: the multi-node result file, the exchange
  /// path without its extension (after the path's last dot, also one in a folder name)
  /// followed by "_out.txt", written with native separators; a path without any dot
  /// gives "_out.txt" alone (kept so, deliberately: the solver then writes beside the
  /// caller's current folder).
  CString GetMultiNodeResultFilePath() const;

  /// The solver: KTPathCombine(GetDataPath(), "Data\\Analysis\\FFT.exe") at construction.
  CString m_strFFTExePath;
  /// The exchange file; the host assigns it before writing.
  CString m_strInputFilePath;
  /// The job's name: what CFFTMgrArray::Find matches.
  CString m_strName;
  CString m_strVersion;
  /// Selects the time unit and the frequency unit together (see GetTimeUnitStr).
  int m_nUnitIndex = 0;
  /// Zeroed with the unit index, copied with the job, read by nothing here.
  int m_nUnitReserved = 0;
  /// Written as the file's note.
  CString m_strNote;
  /// 0 REI, 1 TDR, 2 TDT. Only a type other than 0 writes the timing and impedance.
  int m_nAnalysisType = 0;
  double m_dTiming1 = 0.0;
  double m_dTiming2 = 0.0;
  double m_dImpedance1 = 0.0;
  double m_dImpedance2 = 0.0;
  /// 0 Time, 1 Frequency; any other is written as "Time" with no data rows.
  int m_nInputType = 0;
  /// The sample positions (times or frequencies).
  CArrayD m_arrInputAxis;
  /// The single-node waveform, or the first frequency-domain component.
  CArrayD m_arrInputValue1;
  /// The single-node second frequency-domain component (Frequency input only).
  CArrayD m_arrInputValue2;
  /// The multi-node input: each node's samples in its first array.
  corlith::FFTNodeMap m_mapInputData;
  /// 0 Time, 1 Frequency: set by the readers from the result's type line.
  int m_nOutputType = 0;
  CArrayD m_arrOutputAxis;
  CArrayD m_arrOutputValue1;
  CArrayD m_arrOutputValue2;
  /// The multi-node results, one node per input node (same names).
  corlith::FFTNodeMap m_mapOutputData;
};

/// An owning array of jobs: removal by DeleteAt/DeleteAll and destruction delete them;
/// copies are deep (each job copied, sharing its node data as job copies do).
class CFFTMgrArray : public CExPtrArray<CFFTMgr*, CFFTMgr*> {
 public:
  CFFTMgrArray() = default;
  CFFTMgrArray(const CFFTMgrArray& other);
  CFFTMgrArray& operator=(const CFFTMgrArray& other);
  ~CFFTMgrArray() override;

  // The framework array's element-wise copies would let two arrays own the same jobs.
  void Copy(const CArray<CFFTMgr*, CFFTMgr*>&) = delete;
  INT_PTR Append(const CArray<CFFTMgr*, CFFTMgr*>&) = delete;

  /// The first job, in array order, whose name equals strName (case-sensitive); null
  /// when none does.
  CFFTMgr* Find(CString strName) const;
};
