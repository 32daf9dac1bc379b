// CFFTMgr: the exchange-file writers, the result readers and the solver run.
//
// Both directions are on the hot path of large jobs (10^6 samples and more), so the
// writers format into a large block with std::to_chars (byte-identical to printf's "%g"
// at precision 6, inf and nan included) and the readers walk a block-read buffer line by
// line, converting fields with std::from_chars and falling back to strtod for anything
// the fast path does not take whole, so every field reads exactly as atof reads it.
#include <corlith/services/FFT.h>

#include <corlith/environment/Utility.h>
#include <corlith/platform/File.h>
#include <corlith/platform/FileSystem.h>
#include <corlith/platform/Path.h>
#include <corlith/platform/Process.h>

#include <algorithm>
#include <charconv>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace {

namespace platform = corlith::platform;

constexpr std::size_t kBlockSize = std::size_t{1} << 20;
// More than any "%g" text ("-1.79769e+308" is 13 bytes) with a separator and a line end.
constexpr std::size_t kNumberRoom = 32;

bool HasNul(std::string_view text) { return text.find('\0') != std::string_view::npos; }

// What printf's "%s" writes of a text: up to its first NUL.
std::string_view AsPrintfText(const CString& text) {
  const std::string_view view = text.view();
  return view.substr(0, std::min(view.find('\0'), view.size()));
}

char* FormatG(char* out, double value) {
  return std::to_chars(out, out + kNumberRoom, value, std::chars_format::general, 6).ptr;
}

// The exchange file being written: output gathers in one large block, written out when
// full and when the writer goes, also while an exception unwinds, so an interrupted file
// keeps everything formatted before the fault.
class ExchangeWriter {
 public:
  ExchangeWriter() = default;
  ExchangeWriter(const ExchangeWriter&) = delete;
  ExchangeWriter& operator=(const ExchangeWriter&) = delete;
  ~ExchangeWriter() { Flush(); }

  /// Creates or empties the file; false when that fails.
  bool Create(const CString& path) {
    if (HasNul(path.view())) return false;
    platform::FileOpenOptions options;
    options.access = platform::FileAccess::Write;
    options.create = true;
    options.truncate = true;
    if (m_file.Open(platform::ToNativeSeparators(path.view()), options) != 0) return false;
    m_buffer.resize(kBlockSize);
    m_lineEnd = platform::TextLineEnd();
    return true;
  }

  /// At least `size` bytes of room at the returned place; Commit says where they end.
  char* Reserve(std::size_t size) {
    if (m_buffer.size() - m_used < size) {
      Flush();
      if (m_buffer.size() < size) m_buffer.resize(size);
    }
    return m_buffer.data() + m_used;
  }
  void Commit(const char* end) { m_used = static_cast<std::size_t>(end - m_buffer.data()); }

  void Text(std::string_view text) {
    char* out = Reserve(text.size());
    std::memcpy(out, text.data(), text.size());
    Commit(out + text.size());
  }
  /// The text, then the line end.
  void Line(std::string_view text) {
    Text(text);
    Text(m_lineEnd);
  }
  void Number(double value) {
    char* out = Reserve(kNumberRoom);
    Commit(FormatG(out, value));
  }
  void Integer(int value) {
    char* out = Reserve(kNumberRoom);
    Commit(std::to_chars(out, out + kNumberRoom, value).ptr);
  }
  /// Appends the line end at out (room for it must have been reserved).
  char* EndLine(char* out) const {
    std::memcpy(out, m_lineEnd.data(), m_lineEnd.size());
    return out + m_lineEnd.size();
  }

  /// Writes out the gathered bytes and closes the file.
  void Close() {
    Flush();
    m_file.Close();
  }

 private:
  void Flush() {
    if (m_used == 0 || !m_file.IsOpen()) return;
    // A write error leaves the file short, as the original's unchecked writes did.
    static_cast<void>(m_file.Write(m_buffer.data(), m_used));
    m_used = 0;
  }

  platform::FileHandle m_file;
  std::vector<char> m_buffer;
  std::size_t m_used = 0;
  std::string_view m_lineEnd = "\n";
};

// Lines 1 to 12, shared by both forms.
void WriteHeader(ExchangeWriter& out, const CFFTMgr& job) {
  out.Line("(File");
  out.Text("\t(Version ");
  out.Text(AsPrintfText(job.m_strVersion));
  out.Line(")");
  // The date line carries the version, deliberately: no date is ever written.
  out.Text("\t(Date ");
  out.Text(AsPrintfText(job.m_strVersion));
  out.Line(")");
  out.Text("\t(Unit ");
  out.Text(job.GetTimeUnitStr().view());
  out.Text(" ");
  out.Text(job.GetFreqUnitStr().view());
  out.Line(")");
  out.Text("\t(Note ");
  out.Text(AsPrintfText(job.m_strNote));
  out.Line(")");
  out.Line(")");
  out.Line("(AnalysisParameters");
  out.Text("\t(AnalysisType ");
  out.Text(job.GetAnalysisTypeStr().view());
  out.Line(")");
  if (job.m_nAnalysisType != 0) {
    out.Text("\t(Timing ");
    out.Number(job.m_dTiming1);
    out.Text(" ");
    out.Number(job.m_dTiming2);
    out.Line(")");
    out.Text("\t(Impedance ");
    out.Number(job.m_dImpedance1);
    out.Text(" ");
    out.Number(job.m_dImpedance2);
    out.Line(")");
  }
  out.Line(")");
  out.Line("(Input");
  out.Text("\t(Type ");
  out.Text(job.GetInputTypeStr().view());
  out.Line(")");
}

// The file being read, line by line, through one block-sized buffer (grown only for a
// line longer than a block). A line is handed out without its line feed.
class LineReader {
 public:
  bool Open(const CString& path) {
    if (HasNul(path.view())) return false;
    platform::FileOpenOptions options;
    options.access = platform::FileAccess::Read;
    if (m_file.Open(platform::ToNativeSeparators(path.view()), options) != 0) return false;
    m_buffer.resize(kBlockSize);
    return true;
  }

  /// The next line, valid until the next call; false at the end of the file. A last line
  /// without a line feed is a line; an empty rest after the last line feed is none.
  bool Next(std::string_view& line) {
    for (;;) {
      const char* begin = m_buffer.data() + m_begin;
      if (const void* feed = std::memchr(begin, '\n', m_end - m_begin)) {
        const auto length = static_cast<std::size_t>(static_cast<const char*>(feed) - begin);
        line = std::string_view(begin, length);
        m_begin += length + 1;
        return true;
      }
      if (m_atEnd) {
        if (m_begin == m_end) return false;
        line = std::string_view(begin, m_end - m_begin);
        m_begin = m_end;
        return true;
      }
      Refill();
    }
  }

 private:
  void Refill() {
    const std::size_t kept = m_end - m_begin;
    std::memmove(m_buffer.data(), m_buffer.data() + m_begin, kept);
    m_begin = 0;
    m_end = kept;
    if (m_end == m_buffer.size()) m_buffer.resize(m_buffer.size() * 2);
    std::size_t done = 0;
    // A read error (a folder opened as a file, say) ends the file like its end does.
    if (m_file.Read(m_buffer.data() + m_end, m_buffer.size() - m_end, done) != 0 || done == 0) {
      m_atEnd = true;
      return;
    }
    m_end += done;
  }

  platform::FileHandle m_file;
  std::vector<char> m_buffer;
  std::size_t m_begin = 0;
  std::size_t m_end = 0;
  bool m_atEnd = false;
};

// The framework string's no-argument Trim: bytes 0x09 to 0x0D and blanks.
constexpr bool IsTrimmed(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

std::string_view Trim(std::string_view text) {
  while (!text.empty() && IsTrimmed(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsTrimmed(text.back())) text.remove_suffix(1);
  return text;
}

// The fields of a trimmed line split at blanks, runs of blanks counting as one (the
// tokenizer's rule: no empty fields).
void SplitAtBlanks(std::string_view line, std::vector<std::string_view>& fields) {
  fields.clear();
  std::size_t at = 0;
  while (at < line.size()) {
    if (line[at] == ' ') {
      ++at;
      continue;
    }
    std::size_t end = line.find(' ', at);
    if (end == std::string_view::npos) end = line.size();
    fields.push_back(line.substr(at, end - at));
    at = end;
  }
}

// A field as atof reads it: the longest leading number after white space, 0 for none.
double ToDouble(std::string_view field) {
  double value = 0.0;
  const char* end = field.data() + field.size();
  const auto [stop, error] = std::from_chars(field.data(), end, value);
  if (error == std::errc() && stop == end) return value;
  // Signs, hexadecimal, leading white space, trailing text and values out of range.
  const std::string copy(field);
  return std::strtod(copy.c_str(), nullptr);
}

// A field as atoi reads it, held to the int range.
int ToInt(std::string_view field) {
  const std::string copy(field);
  const long long value = std::strtoll(copy.c_str(), nullptr, 10);
  return static_cast<int>(std::clamp<long long>(value, INT_MIN, INT_MAX));
}

// What is left of a line once every occurrence of the keyword and of ")" is removed,
// trimmed: the readers' way with their "(Type" and "(Size" lines.
CString KeywordRest(std::string_view line, const char* keyword) {
  CString rest(line);
  rest.Replace(keyword, "");
  rest.Remove(')');
  rest.Trim();
  return rest;
}

// Both readers. The grammar is in the header; multiNode selects the "(Size" rule and
// the row form.
void ReadResults(CFFTMgr& job, const CString& path, bool multiNode) {
  job.m_arrOutputAxis.RemoveAll();
  job.m_arrOutputValue1.RemoveAll();
  job.m_arrOutputValue2.RemoveAll();
  LineReader reader;
  if (!reader.Open(path)) return;

  // The output map does not change while it is read; its nodes in name order.
  std::vector<CFFTData*> nodes;
  if (multiNode) {
    nodes.reserve(job.m_mapOutputData.size());
    for (const auto& [name, data] : job.m_mapOutputData) nodes.push_back(data.get());
  }
  bool inside = false;
  long long expectedNodes = 0;
  std::vector<std::string_view> fields;
  std::string_view raw;
  while (reader.Next(raw)) {
    const std::string_view line = Trim(raw);
    if (!inside) {
      inside = line.starts_with("(Output");
      continue;
    }
    if (line.starts_with("(Type")) {
      const CString word = KeywordRest(line, "(Type");
      if (word == "Time") {
        job.m_nOutputType = 0;
      } else if (word == "Frequency") {
        job.m_nOutputType = 1;
      } else {
        break;
      }
      continue;
    }
    if (multiNode && line.starts_with("(Size")) {
      const CString rest = KeywordRest(line, "(Size");
      SplitAtBlanks(rest.view(), fields);
      if (fields.size() == 2) expectedNodes = ToInt(fields[1]);
      if (expectedNodes != static_cast<long long>(nodes.size())) break;
      continue;
    }
    if (line.find('(') != std::string_view::npos) {
      if (line.starts_with(')')) break;
      continue;
    }

    SplitAtBlanks(line, fields);
    if (!multiNode) {
      if (job.m_nOutputType == 0 && fields.size() == 2) {
        job.m_arrOutputAxis.Add(ToDouble(fields[0]));
        job.m_arrOutputValue1.Add(ToDouble(fields[1]));
      } else if (job.m_nOutputType == 1 && fields.size() == 3) {
        job.m_arrOutputAxis.Add(ToDouble(fields[0]));
        job.m_arrOutputValue1.Add(ToDouble(fields[1]));
        job.m_arrOutputValue2.Add(ToDouble(fields[2]));
      } else {
        break;
      }
      continue;
    }
    const long long perNode = job.m_nOutputType == 0 ? 1 : job.m_nOutputType == 1 ? 2 : 0;
    if (perNode == 0 || expectedNodes < 0 ||
        static_cast<long long>(fields.size()) != 1 + perNode * expectedNodes) {
      break;
    }
    job.m_arrOutputAxis.Add(ToDouble(fields[0]));
    std::size_t next = 1;
    for (CFFTData* node : nodes) {
      for (long long k = 0; k < perNode; ++k) {
        // Only a row read without a "(Size" line can run out of fields here.
        if (next >= fields.size()) AfxThrowInvalidArgException();
        const double value = ToDouble(fields[next++]);
        if (node) (k == 0 ? node->m_arrData1 : node->m_arrData2).Add(value);
      }
    }
  }
}

// The axis 0.0, step, step + step, ... for n samples, by repeated addition.
void AppendAxis(CArrayD& axis, double step, INT_PTR count) {
  double position = 0.0;
  for (INT_PTR i = 0; i < count; ++i) {
    axis.Add(position);
    position += step;
  }
}

// A regular file at path (links followed).
bool IsFile(const std::string& path) {
  platform::FileFacts facts;
  return platform::QueryFileFacts(path, facts) == 0 && facts.kind == platform::FileKind::Regular;
}

bool EndsWithExe(std::string_view path) {
  if (path.size() < 4) return false;
  const std::string_view tail = path.substr(path.size() - 4);
  return tail[0] == '.' && (tail[1] | 0x20) == 'e' && (tail[2] | 0x20) == 'x' && (tail[3] | 0x20) == 'e';
}

}  // namespace

// --- CFFTData -----------------------------------------------------------------------

CFFTData::~CFFTData() = default;

// --- CFFTMgr ------------------------------------------------------------------------

CFFTMgr::CFFTMgr()
    : m_strFFTExePath(KTUtility::GetInstance()->KTPathCombine(
          KTUtility::GetInstance()->GetDataPath(), "Data\\Analysis\\FFT.exe", "CFFTMgr", __LINE__)),
      m_strVersion("1.0") {}

CFFTMgr::CFFTMgr(const CFFTMgr& other) = default;

CFFTMgr& CFFTMgr::operator=(const CFFTMgr& other) = default;

CFFTMgr::~CFFTMgr() = default;

// NOLINTNEXTLINE(performance-unnecessary-value-param): the interface takes texts by value
void CFFTMgr::SetBaseDataForREI(CString strName) {
  m_strName = strName;
  m_strVersion = "1.0";
  m_nUnitIndex = 0;
  m_nUnitReserved = 0;
  m_strNote.Format("%s", strName);
  m_nAnalysisType = 0;
  m_nInputType = 0;
  m_nOutputType = 1;
  m_arrInputAxis.RemoveAll();
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): the interface takes texts by value
void CFFTMgr::AddInputDataForREI(double dStep, const CArrayD& arrValues, CString strNodeName) {
  const bool axisEmpty = m_arrInputAxis.IsEmpty();
  if (!axisEmpty && m_arrInputAxis.GetSize() != arrValues.GetSize()) return;
  if (m_mapInputData.contains(strNodeName)) return;
  auto input = std::make_shared<CFFTData>();
  input->m_arrData1.Copy(arrValues);
  if (axisEmpty) AppendAxis(m_arrInputAxis, dStep, arrValues.GetSize());
  m_mapInputData.insert_or_assign(strNodeName, std::move(input));
  m_mapOutputData.insert_or_assign(strNodeName, std::make_shared<CFFTData>());
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): the interface takes texts by value
void CFFTMgr::SetInputDataForREI(double dStep, const CArrayD& arrValues, CString strName, CString strSuffix) {
  m_strName = strName;
  m_strVersion = "1.0";
  m_nUnitIndex = 0;
  m_nUnitReserved = 0;
  m_strNote.Format("%s_%s", strName, strSuffix);
  m_nAnalysisType = 0;
  m_nInputType = 0;
  m_nOutputType = 1;
  // The samples are taken after the arrays are emptied, as in the original: passing the
  // job's own first value array gives an empty job.
  m_arrInputAxis.RemoveAll();
  m_arrInputValue1.RemoveAll();
  m_arrInputValue2.RemoveAll();
  AppendAxis(m_arrInputAxis, dStep, arrValues.GetSize());
  m_arrInputValue1.Copy(arrValues);
}

void CFFTMgr::WriteInputDataFile() {
  if (m_strInputFilePath.IsEmpty()) return;
  ExchangeWriter out;
  if (!out.Create(m_strInputFilePath)) return;
  WriteHeader(out, *this);
  const INT_PTR count = m_arrInputValue1.GetSize();
  if (m_arrInputAxis.GetSize() == count) {
    out.Text("\t(Size ");
    out.Integer(static_cast<int>(count));
    out.Line(")");
    const double* axis = m_arrInputAxis.GetData();
    const double* first = m_arrInputValue1.GetData();
    if (m_nInputType == 0) {
      for (INT_PTR i = 0; i < count; ++i) {
        char* row = out.Reserve(2 * kNumberRoom + 4);
        *row++ = '\t';
        row = FormatG(row, axis[i]);
        *row++ = ' ';
        row = FormatG(row, first[i]);
        out.Commit(out.EndLine(row));
      }
    } else if (m_nInputType == 1 && m_arrInputValue2.GetSize() == count) {
      const double* second = m_arrInputValue2.GetData();
      for (INT_PTR i = 0; i < count; ++i) {
        char* row = out.Reserve(3 * kNumberRoom + 4);
        *row++ = '\t';
        row = FormatG(row, axis[i]);
        *row++ = ' ';
        row = FormatG(row, first[i]);
        *row++ = ' ';
        row = FormatG(row, second[i]);
        out.Commit(out.EndLine(row));
      }
    }
  }
  out.Line(")");
  out.Close();
}

void CFFTMgr::WriteInputDataFileForMultiNode() {
  if (m_strInputFilePath.IsEmpty()) return;
  ExchangeWriter out;
  if (!out.Create(m_strInputFilePath)) return;
  WriteHeader(out, *this);
  out.Text("\t(Size ");
  out.Integer(static_cast<int>(m_arrInputAxis.GetSize()));
  out.Text(" ");
  out.Integer(static_cast<int>(m_mapInputData.size()));
  out.Line(")");

  std::vector<const CFFTData*> nodes;
  nodes.reserve(m_mapInputData.size());
  for (const auto& [name, data] : m_mapInputData) nodes.push_back(data.get());
  const int columns = m_nInputType == 0 ? 1 : m_nInputType == 1 ? 2 : 0;
  const INT_PTR count = m_arrInputAxis.GetSize();
  for (INT_PTR i = 0; i < count; ++i) {
    char* row = out.Reserve(kNumberRoom + 1);
    *row++ = '\t';
    out.Commit(FormatG(row, m_arrInputAxis[i]));
    if (columns > 0) {
      for (const CFFTData* node : nodes) {
        // A node shorter than the axis (or a null node a host put in the map) ends the
        // write here; the row so far stays in the file.
        if (!node) AfxThrowInvalidArgException();
        const double first = node->m_arrData1.GetAt(i);
        const double second = columns == 2 ? node->m_arrData2.GetAt(i) : 0.0;
        char* cell = out.Reserve(2 * kNumberRoom + 2);
        *cell++ = ' ';
        cell = FormatG(cell, first);
        if (columns == 2) {
          *cell++ = ' ';
          cell = FormatG(cell, second);
        }
        out.Commit(cell);
      }
    }
    out.Commit(out.EndLine(out.Reserve(4)));
  }
  out.Line(")");
  out.Close();
}

void CFFTMgr::RunFFT() {
  if (HasNul(m_strFFTExePath.view()) || HasNul(m_strInputFilePath.view())) return;
  std::string program = platform::ToNativeSeparators(m_strFFTExePath.view());
  if (!IsFile(program) && EndsWithExe(program)) {
    std::string bare = program.substr(0, program.size() - 4);
    if (IsFile(bare)) program = std::move(bare);
  }
  platform::SpawnOptions options;
  options.program = program;
  if (!m_strInputFilePath.IsEmpty()) {
    options.arguments.push_back(platform::ToNativeSeparators(m_strInputFilePath.view()));
  }
  platform::Process solver;
  if (platform::Spawn(options, solver) != 0) return;
  static_cast<void>(solver.Wait());
}

void CFFTMgr::ReadResultData() {
  if (m_strInputFilePath.IsEmpty()) return;
  ReadResults(*this, m_strInputFilePath, false);
}

void CFFTMgr::ReadResultDataForMultiNode() {
  if (m_strInputFilePath.IsEmpty()) return;
  ReadResults(*this, GetMultiNodeResultFilePath(), true);
}

CString CFFTMgr::GetAnalysisTypeStr() const {
  switch (m_nAnalysisType) {
    case 1:
      return "TDR";
    case 2:
      return "TDT";
    default:
      return "REI";
  }
}

CString CFFTMgr::GetInputTypeStr() const { return m_nInputType == 1 ? "Frequency" : "Time"; }

CString CFFTMgr::GetTimeUnitStr() const {
  switch (m_nUnitIndex) {
    case 1:
      return "ms";
    case 2:
      return "us";
    case 3:
      return "ns";
    default:
      return "s";
  }
}

CString CFFTMgr::GetFreqUnitStr() const {
  switch (m_nUnitIndex) {
    case 1:
      return "kHz";
    case 2:
      return "MHz";
    case 3:
      return "GHz";
    default:
      return "Hz";
  }
}

CString CFFTMgr::GetMultiNodeResultFilePath() const {
  return KTUtility::GetInstance()->GetSegmntFromFilePath(m_strInputFilePath, 0) + "_out.txt";
}

// --- CFFTMgrArray -------------------------------------------------------------------

// NOLINTNEXTLINE(bugprone-copy-constructor-init): the base would copy the pointers; operator= clones
CFFTMgrArray::CFFTMgrArray(const CFFTMgrArray& other) : CExPtrArray<CFFTMgr*, CFFTMgr*>() { *this = other; }

CFFTMgrArray& CFFTMgrArray::operator=(const CFFTMgrArray& other) {
  if (this == &other) return *this;
  DeleteAll();
  for (const CFFTMgr* job : other) {
    std::unique_ptr<CFFTMgr> copy(job ? new CFFTMgr(*job) : nullptr);
    Add(copy.get());
    static_cast<void>(copy.release());  // the array owns it now
  }
  return *this;
}

CFFTMgrArray::~CFFTMgrArray() { DeleteAll(); }

// NOLINTNEXTLINE(performance-unnecessary-value-param): the interface takes texts by value
CFFTMgr* CFFTMgrArray::Find(CString strName) const {
  for (CFFTMgr* job : *this) {
    if (job && job->m_strName == strName) return job;
  }
  return nullptr;
}
