#include <corlith/environment/Utility.h>
#include <corlith/framework/HostPrompt.h>
#include <corlith/platform/Path.h>
#include <corlith/ui/CheckDataExport.h>
#include <corlith/ui/CheckDataInputDlg.h>

#include <xlsxwriter.h>

#include <atomic>
#include <memory>
#include <system_error>

namespace corlith::ui {
namespace {

using Workbook = std::unique_ptr<lxw_workbook, decltype(&workbook_close)>;

/// Where a write stopped (libxlsxwriter reports per call; the first failure is kept).
struct Writer {
  lxw_worksheet* sheet = nullptr;
  lxw_error error = LXW_NO_ERROR;

  void Put(lxw_row_t row, lxw_col_t col, const CString& text) {
    if (error != LXW_NO_ERROR || text.IsEmpty()) return;
    error = worksheet_write_string(sheet, row, col, text.GetString(), nullptr);
  }
};

lxw_error WriteUsage(lxw_workbook* book, const char* name, const CStringArray& rows,
                     const CStringArray& items, const CUsageFlagTable& flags) {
  Writer out{workbook_add_worksheet(book, name)};
  if (out.sheet == nullptr) return LXW_ERROR_MEMORY_MALLOC_FAILED;
  // Rows are written in order, as constant-memory mode requires.
  for (INT_PTR c = 0; c < items.GetSize(); ++c) out.Put(0, static_cast<lxw_col_t>(c + 1), items[c]);
  const CString mark("O");
  for (INT_PTR r = 0; r < rows.GetSize(); ++r) {
    const auto row = static_cast<lxw_row_t>(r + 1);
    out.Put(row, 0, rows[r]);
    if (r >= flags.GetSize()) continue;
    const CUsageFlagArray& line = flags[r];
    for (INT_PTR c = 0; c < line.GetSize() && c < items.GetSize(); ++c) {
      if (line[c] == 1) out.Put(row, static_cast<lxw_col_t>(c + 1), mark);
    }
  }
  return out.error;
}

lxw_error WriteGroups(lxw_workbook* book, const char* name, const CStringArrayArray& table) {
  Writer out{workbook_add_worksheet(book, name)};
  if (out.sheet == nullptr) return LXW_ERROR_MEMORY_MALLOC_FAILED;
  if (const CStringArray* header = table.GetAt(0)) {
    for (INT_PTR c = 0; c < header->GetSize() && c < 2; ++c)
      out.Put(0, static_cast<lxw_col_t>(c), (*header)[c]);
  }
  for (INT_PTR r = 1; r < table.GetSize(); ++r) {
    const CStringArray* row = table.GetAt(r);
    if (row == nullptr || row->GetSize() < 2) break;
    out.Put(static_cast<lxw_row_t>(r), 0, (*row)[0]);
    out.Put(static_cast<lxw_row_t>(r), 1, (*row)[1]);
  }
  return out.error;
}

std::filesystem::path TemporaryBeside(const std::filesystem::path& path) {
  static std::atomic<unsigned> counter{0};
  std::filesystem::path temporary = path;
  temporary +=
      ".part-" + std::to_string(corlith::platform::CurrentProcessId()) + "-" + std::to_string(counter++);
  return temporary;
}

}  // namespace

std::string WriteCheckDataWorkbook(const CCheck_Data_Input_Setting_Dlg& dialog,
                                   const std::filesystem::path& path) {
  if (path.empty()) return "no file name";
  const std::filesystem::path temporary = TemporaryBeside(path);
  lxw_workbook_options options{};
  options.constant_memory = LXW_TRUE;
  Workbook book(workbook_new_opt(temporary.c_str(), &options), &workbook_close);
  if (book == nullptr) return "cannot start the workbook";

  lxw_error error = WriteUsage(book.get(), kCheckDataSheetNames[0], dialog.m_arrNetUsageRowNames,
                               dialog.m_arrCheckItemNames, dialog.m_arrNetUsageFlags);
  if (error == LXW_NO_ERROR) {
    error = WriteUsage(book.get(), kCheckDataSheetNames[1], dialog.m_arrCompUsageRowNames,
                       dialog.m_arrCheckItemNames, dialog.m_arrCompUsageFlags);
  }
  if (error == LXW_NO_ERROR)
    error = WriteGroups(book.get(), kCheckDataSheetNames[2], *dialog.m_pCompGroupTable);
  if (error == LXW_NO_ERROR)
    error = WriteGroups(book.get(), kCheckDataSheetNames[3], *dialog.m_pNetGroupTable);
  const lxw_error closed = workbook_close(book.release());
  if (error == LXW_NO_ERROR) error = closed;

  std::error_code ignored;
  if (error != LXW_NO_ERROR) {
    std::filesystem::remove(temporary, ignored);
    return lxw_strerror(error);
  }
  std::error_code renamed;
  std::filesystem::rename(temporary, path, renamed);
  if (renamed) {
    std::filesystem::remove(temporary, ignored);
    return renamed.message();
  }
  return {};
}

CheckDataExporter::CheckDataExporter(wxWindow& target) {
  target.Bind(EVT_CORLITH_REQUEST, &CheckDataExporter::OnRequest, this, kRequestExport);
}

void CheckDataExporter::OnRequest(wxCommandEvent& event) {
  ++m_requests;
  m_lastWritten.clear();
  m_lastError.clear();
  auto* dialog = static_cast<CCheck_Data_Input_Setting_Dlg*>(event.GetClientData());
  if (dialog == nullptr) {
    event.Skip();
    return;
  }
  std::filesystem::path path = m_path;
  if (path.empty()) {
    const CString chosen = KTUtility::GetInstance()->GetFilePathFromUser(
        FALSE, "Excel Workbook", "xlsx", "Check_Data_Input.xlsx", CString(), dialog);
    if (chosen.IsEmpty()) return;
    path = chosen.str();
  }
  m_lastError = WriteCheckDataWorkbook(*dialog, path);
  if (m_lastError.empty()) {
    m_lastWritten = path;
    return;
  }
  GetHostPrompt()->MessageBox("Cannot write the workbook \"" + path.string() + "\": " + m_lastError,
                              "Export to Excel", MB_OK | MB_ICONERROR);
}

}  // namespace corlith::ui
