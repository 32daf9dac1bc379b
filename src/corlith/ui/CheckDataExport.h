// The ready receiver of the check-data-input dialog's export request (600): writes the
// dialog's four tables to an .xlsx workbook, one sheet per tab in tab order, usage flags
// as "O". Hosts may install it on their export target window or answer 600 themselves.
#pragma once

#include <corlith/framework/String.h>

#include <wx/event.h>

#include <filesystem>
#include <string>

class CCheck_Data_Input_Setting_Dlg;
class wxWindow;

namespace corlith::ui {

/// The sheets' names, in tab order.
inline constexpr const char* kCheckDataSheetNames[] = {"Net Usage", "Componet Usage", "Component Group",
                                                       "Net Group"};

/// Writes the dialog's members as they stand: the usage sheets as the grids lay them out
/// (cell A1 empty, item names across row 1, row names down column A, "O" where the flag
/// is 1), the group sheets as the lists show them unfiltered (the header row, then rows
/// up to the first with fewer than two entries). The file appears under `path` only when
/// complete (it is written under a temporary name beside it first). Returns an empty
/// text on success, else why it failed.
std::string WriteCheckDataWorkbook(const CCheck_Data_Input_Setting_Dlg& dialog,
                                   const std::filesystem::path& path);

/// Answers request 600 reaching `target` by writing the requesting dialog's workbook.
/// The path is the one set with SetPath; without one the person is asked through the
/// host prompt's save chooser (KTUtility::GetFilePathFromUser, "Excel Workbook", xlsx),
/// and a cancelled chooser writes nothing. A failure is told through the host prompt's
/// message box. Either side may go first: wx ends the binding with whichever of the
/// exporter and the target is destroyed first.
class CheckDataExporter : public wxEvtHandler {
 public:
  explicit CheckDataExporter(wxWindow& target);
  ~CheckDataExporter() override = default;
  CheckDataExporter(const CheckDataExporter&) = delete;
  CheckDataExporter& operator=(const CheckDataExporter&) = delete;

  /// Writes here without asking; an empty path: ask each time.
  void SetPath(std::filesystem::path path) { m_path = std::move(path); }
  /// The file the last export wrote (empty when it wrote none).
  const std::filesystem::path& GetLastWritten() const { return m_lastWritten; }
  /// Why the last export failed (empty when it did not).
  const std::string& GetLastError() const { return m_lastError; }
  /// How many requests 600 arrived.
  int GetRequestCount() const { return m_requests; }

 private:
  void OnRequest(wxCommandEvent& event);

  std::filesystem::path m_path;
  std::filesystem::path m_lastWritten;
  std::string m_lastError;
  int m_requests = 0;
};

}  // namespace corlith::ui
