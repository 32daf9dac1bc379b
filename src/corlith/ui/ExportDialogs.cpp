#include <corlith/environment/Utility.h>
#include <corlith/ui/ExportDialogs.h>

#include <wx/evtloop.h>
#include <wx/gauge.h>

#include <utility>

using corlith::ui::IDC_EXPORT_BROWSE;
using corlith::ui::IDC_EXPORT_FRAME;
using corlith::ui::IDC_EXPORT_PATH;
using corlith::ui::IDC_EXPORT_PATH_LABEL;
using corlith::ui::IDC_EXPORT_PROGRESS;
using corlith::ui::IDC_EXPORT_SETTING;
using corlith::ui::IDC_EXPORT_STATUS;

namespace {

// Segments of KTUtility::GetSegmntFromFilePath.
constexpr int kSegmentFolder = 1;
constexpr int kSegmentTitle = 3;

}  // namespace

// ---------------------------------------------------------------------------------------
// CExportStandard_Dlg

CExportStandard_Dlg::CExportStandard_Dlg(CWnd* pParent)
    : CDialog(corlith::ui::kExportStandardTemplate, pParent) {}

void CExportStandard_Dlg::SetInitTitle(CString text) { m_strTitle = std::move(text); }
void CExportStandard_Dlg::SetInitPathStaticText(CString text) { m_strPathStaticText = std::move(text); }
void CExportStandard_Dlg::SetInitDefaultPath(CString text) { m_strPath = std::move(text); }
void CExportStandard_Dlg::SetInitSettingBtnText(CString text) { m_strSettingBtnText = std::move(text); }
void CExportStandard_Dlg::SetInitProgText(CString text) { m_strProgText = std::move(text); }
void CExportStandard_Dlg::AddExtInfo(const CString& text) { m_arrExtInfo.Add(text); }
void CExportStandard_Dlg::AddExt(const CString& text) { m_arrExt.Add(text); }
void CExportStandard_Dlg::SetSettingDlg(CDialog* pDlg) { m_pSettingDlg = pDlg; }

CString CExportStandard_Dlg::GetFilePath() const { return m_strPath; }

wxGauge* CExportStandard_Dlg::GetProgressBar() const { return m_pProgress; }

void CExportStandard_Dlg::SetProcText(CString text) {
  wxWindow* status = GetDlgItem(IDC_EXPORT_STATUS);
  if (status == nullptr) {
    m_strProgText = std::move(text);
    return;
  }
  SetDlgItemText(IDC_EXPORT_STATUS, text);
  // The host calls this from its own loop, where no paint event would be handled before
  // the export ends: paint now, the progress bar's new value too. Only paint and size
  // events are handled here, so nothing the person does runs inside the host's export.
  // (Update() alone is not enough on GTK: it paints the bar before its new value is laid
  // out, one step behind.)
  status->Refresh();
  if (m_pProgress != nullptr) m_pProgress->Refresh();
  wxEventLoopBase* loop = wxEventLoopBase::GetActive();
  if (loop != nullptr && !loop->IsYielding()) {
    loop->YieldFor(wxEVT_CATEGORY_UI);
  } else {
    Update();  // no loop to paint from: at least the status line
  }
}

wxWindow* CExportStandard_Dlg::CreateItem(wxWindow* parent, const corlith::ui::DialogItem& item,
                                          const wxRect& rect) {
  if (item.id != IDC_EXPORT_PROGRESS) return nullptr;
  m_pProgress =
      new wxGauge(parent, item.id, 100, rect.GetPosition(), rect.GetSize(), wxGA_HORIZONTAL | wxGA_SMOOTH);
  return m_pProgress;
}

BOOL CExportStandard_Dlg::OnInitDialog() {
  CDialog::OnInitDialog();
  if (!m_strTitle.IsEmpty()) SetWindowText(m_strTitle);
  if (!m_strPathStaticText.IsEmpty()) SetDlgItemText(IDC_EXPORT_PATH_LABEL, m_strPathStaticText);
  // Deliberately the browse button, not "Parameter Settings", as it has always been.
  if (!m_strSettingBtnText.IsEmpty()) SetDlgItemText(IDC_EXPORT_BROWSE, m_strSettingBtnText);
  if (!m_strProgText.IsEmpty()) SetDlgItemText(IDC_EXPORT_STATUS, m_strProgText);
  ShowPath();

  Bind(
      wxEVT_BUTTON, [this](wxCommandEvent&) { OnBrowse(); }, IDC_EXPORT_BROWSE);
  Bind(
      wxEVT_BUTTON, [this](wxCommandEvent&) { OnSetting(); }, IDC_EXPORT_SETTING);

  if (m_pSettingDlg == nullptr) CloseSettingRow();
  return TRUE;
}

void CExportStandard_Dlg::CloseSettingRow() {
  wxWindow* setting = GetDlgItem(IDC_EXPORT_SETTING);
  wxWindow* exportButton = GetDlgItem(IDOK);
  if (setting == nullptr || exportButton == nullptr) return;
  const int shift = exportButton->GetPosition().y - setting->GetPosition().y;
  setting->Hide();
  for (const int id : {IDOK, IDCANCEL, IDC_EXPORT_FRAME, IDC_EXPORT_STATUS, IDC_EXPORT_PROGRESS}) {
    if (wxWindow* item = GetDlgItem(id)) item->Move(item->GetPosition() - wxPoint(0, shift));
  }
  const wxSize client = GetClientSize();
  SetClientSize(client.x, client.y - shift);
}

void CExportStandard_Dlg::ReadPath() { m_strPath = GetDlgItemText(IDC_EXPORT_PATH); }

void CExportStandard_Dlg::ShowPath() { SetDlgItemText(IDC_EXPORT_PATH, m_strPath); }

// Without types a folder is asked for. With types a file is, in the path's folder under
// the path's title: one description uses the single-type chooser (its one row lists
// every extension), several the chooser with a row per description and extension. A
// description without extensions leaves only the "All Files" row.
void CExportStandard_Dlg::OnBrowse() {
  ReadPath();
  KTUtility* utility = KTUtility::GetInstance();
  CString chosen;
  if (m_arrExtInfo.IsEmpty() && m_arrExt.IsEmpty()) {
    chosen = utility->GetDirectoryFromUser("Export Path", m_strPath, GetSafeHwnd());
  } else {
    if (m_arrExtInfo.IsEmpty()) m_arrExtInfo.Add("Select File");
    const CString folder = utility->GetSegmntFromFilePath(m_strPath, kSegmentFolder);
    const CString title = utility->GetSegmntFromFilePath(m_strPath, kSegmentTitle);
    // The target of an export may not exist yet: the choosers are save choosers.
    if (m_arrExtInfo.GetSize() == 1 && m_arrExt.GetSize() == 1) {
      chosen = utility->GetFilePathFromUser(FALSE, m_arrExtInfo[0], m_arrExt[0], title, folder, this);
    } else if (m_arrExtInfo.GetSize() == 1 && m_arrExt.GetSize() > 1) {
      chosen = utility->GetFilePathFromUser(FALSE, m_arrExtInfo[0], m_arrExt, title, folder, this);
    } else {
      chosen = utility->GetFilePathFromUser(FALSE, m_arrExtInfo, m_arrExt, title, folder, this, 1);
    }
  }
  if (chosen.IsEmpty()) return;
  m_strPath = chosen;
  ShowPath();
}

void CExportStandard_Dlg::OnSetting() {
  if (m_pSettingDlg != nullptr) m_pSettingDlg->DoModal();
}

BOOL CExportStandard_Dlg::ValidateExport() { return TRUE; }

void CExportStandard_Dlg::OnOK() {
  ReadPath();
  if (!ValidateExport()) return;
  CDialog::OnOK();
}

// ---------------------------------------------------------------------------------------
// CConfirm_Save_Check_Dlg

CConfirm_Save_Check_Dlg::CConfirm_Save_Check_Dlg(CWnd* pParent)
    : CDialog(corlith::ui::kConfirmSaveCheckTemplate, pParent) {}

BOOL CConfirm_Save_Check_Dlg::OnInitDialog() {
  CDialog::OnInitDialog();
  m_nAnswer = kCancel;
  // The template has no button 2: Escape presses "Cancel" instead.
  SetEscapeId(corlith::ui::IDC_CONFIRM_CANCEL);
  Bind(
      wxEVT_BUTTON, [this](wxCommandEvent&) { Choose(kSaveAs); }, corlith::ui::IDC_CONFIRM_SAVE_AS);
  Bind(
      wxEVT_BUTTON, [this](wxCommandEvent&) { Choose(kSave); }, corlith::ui::IDC_CONFIRM_SAVE);
  Bind(
      wxEVT_BUTTON, [this](wxCommandEvent&) { Choose(kCancel); }, corlith::ui::IDC_CONFIRM_CANCEL);
  return TRUE;
}

void CConfirm_Save_Check_Dlg::OnCancel() {
  m_nAnswer = kCancel;
  CDialog::OnCancel();
}

void CConfirm_Save_Check_Dlg::Choose(std::int32_t answer) {
  m_nAnswer = answer;
  if (answer == kCancel) {
    CDialog::OnCancel();
  } else {
    CDialog::OnOK();
  }
}
