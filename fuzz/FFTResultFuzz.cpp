// Both FFT result readers over an arbitrary file: the first byte picks the output type
// the job starts with and how many nodes the multi-node job has (0 to 3); the rest is
// the file. Reading ends normally or, for rows read without a "(Size" line, in the
// documented invalid-argument exception, never in a crash; what was read is whole rows.
#include <corlith/framework/Exceptions.h>
#include <corlith/services/FFT.h>
#include <corlith/test/TempFolder.h>

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

// Every node of the output map holds as many values per column as the axis has rows
// (its second column only for Frequency rows), once for each read.
void CheckNodes(const CFFTMgr& job) {
  for (const auto& [name, node] : job.m_mapOutputData) {
    if (node->m_arrData1.GetSize() > job.m_arrOutputAxis.GetSize()) std::abort();
    if (node->m_arrData2.GetSize() > node->m_arrData1.GetSize()) std::abort();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  static const corlith::test::TempFolder folder("fft-fuzz");
  const std::string_view file(reinterpret_cast<const char*>(data) + 1, size - 1);
  folder.Write("job.txt", file);
  folder.Write("job_out.txt", file);

  CFFTMgr single;
  single.m_strInputFilePath = CString(folder.PathOf("job.txt"));
  single.m_nOutputType = data[0] & 3;  // 2 and 3: a type no row fits
  single.ReadResultData();
  const INT_PTR rows = single.m_arrOutputAxis.GetSize();
  if (single.m_arrOutputValue1.GetSize() != rows) std::abort();
  // A "(Type Time)" line after Frequency rows ends the second array early: it never
  // outgrows the axis, and it may stay shorter.
  if (single.m_arrOutputValue2.GetSize() > rows) std::abort();

  CFFTMgr multi;
  multi.m_strInputFilePath = single.m_strInputFilePath;
  multi.SetBaseDataForREI("fuzz");
  multi.m_nOutputType = data[0] & 3;
  const int nodes = (data[0] >> 2) & 3;
  for (int i = 0; i < nodes; ++i)
    multi.AddInputDataForREI(1.0, CArrayD(), CString(std::string(1, static_cast<char>('a' + i))));
  try {
    multi.ReadResultDataForMultiNode();
  } catch (const CInvalidArgException&) {
    // A row read without a "(Size" line ran out of fields for the nodes.
  }
  CheckNodes(multi);
  return 0;
}
