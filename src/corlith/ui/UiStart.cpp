#include <corlith/ui/UiStart.h>
#include <corlith/ui/Window.h>

#include <wx/app.h>
#include <wx/cursor.h>
#include <wx/dirdlg.h>
#include <wx/filedlg.h>
#include <wx/msgdlg.h>
#include <wx/thread.h>
#include <wx/utils.h>

#include <algorithm>
#include <chrono>
#include <future>
#include <memory>
#include <thread>
#include <utility>

namespace corlith::ui {
namespace {

struct Installed {
  std::shared_ptr<IHostPrompt> previousPrompt;
  std::shared_ptr<IDesktopHooks> previousHooks;
};

// Start and Stop run on the main thread only, so this needs no lock.
std::optional<Installed>& InstalledState() {
  static std::optional<Installed> state;
  return state;
}

bool HaveApp() { return wxTheApp != nullptr; }

// Runs `work` on wx's main thread and returns its result; from another thread the call
// waits until the main loop has run it.
template <class Work>
auto OnMainThread(Work work) -> decltype(work()) {
  using Result = decltype(work());
  if (wxIsMainThread()) return work();
  std::promise<Result> promise;
  std::future<Result> answer = promise.get_future();
  wxTheApp->CallAfter([&promise, &work] {
    try {
      promise.set_value(work());
    } catch (...) {
      promise.set_exception(std::current_exception());
    }
  });
  return answer.get();
}

wxString Wx(const std::string& text) { return wxString::FromUTF8(text.data(), text.size()); }
std::string Utf8(const wxString& text) { return std::string(text.utf8_str().data()); }

}  // namespace

bool Start() {
  if (!HaveApp() || !wxIsMainThread()) return false;
  std::optional<Installed>& state = InstalledState();
  if (state) return true;
  state = Installed{SetHostPrompt(std::make_shared<WxHostPrompt>()),
                    SetDesktopHooks(std::make_shared<WxDesktopHooks>())};
  return true;
}

void Stop() {
  std::optional<Installed>& state = InstalledState();
  if (!state) return;
  SetHostPrompt(std::move(state->previousPrompt));
  SetDesktopHooks(std::move(state->previousHooks));
  state.reset();
}

bool IsStarted() { return InstalledState().has_value(); }

MessageBoxLook MessageBoxLookOf(UINT type) {
  MessageBoxLook look;
  const int defaultAnswer = DefaultAnswer(type);
  switch (type & MB_TYPEMASK) {
    case MB_OKCANCEL:
      look.style = wxOK | wxCANCEL;
      break;
    case MB_ABORTRETRYIGNORE:
      // wx has no such button set: Yes/No/Cancel relabelled.
      look.style = wxYES_NO | wxCANCEL;
      look.labels = {"&Abort", "&Retry", "&Ignore"};
      break;
    case MB_YESNOCANCEL:
      look.style = wxYES_NO | wxCANCEL;
      break;
    case MB_YESNO:
      look.style = wxYES_NO;
      break;
    case MB_RETRYCANCEL:
      look.style = wxOK | wxCANCEL;
      look.labels = {"&Retry", "Cancel"};
      break;
    default:
      look.style = wxOK;
      break;
  }
  // The button in the second place is wx's No (or Cancel beside OK), the third Cancel.
  const bool second = defaultAnswer == IDNO || defaultAnswer == IDRETRY;
  const bool cancel = defaultAnswer == IDCANCEL || defaultAnswer == IDIGNORE;
  if ((look.style & wxYES_NO) != 0 && second) {
    look.style |= wxNO_DEFAULT;
  } else if (cancel) {
    look.style |= wxCANCEL_DEFAULT;
  }
  switch (type & MB_ICONMASK) {
    case MB_ICONERROR:
      look.style |= wxICON_ERROR;
      break;
    case MB_ICONQUESTION:
      look.style |= wxICON_QUESTION;
      break;
    case MB_ICONWARNING:
      look.style |= wxICON_WARNING;
      break;
    case MB_ICONINFORMATION:
      look.style |= wxICON_INFORMATION;
      break;
    default:
      look.style |= wxICON_NONE;
      break;
  }
  return look;
}

int MessageBoxAnswerOf(UINT type, int wxId) {
  int answer = 0;
  switch (type & MB_TYPEMASK) {
    case MB_OKCANCEL:
      answer = wxId == wxID_OK ? IDOK : wxId == wxID_CANCEL ? IDCANCEL : 0;
      break;
    case MB_ABORTRETRYIGNORE:
      answer = wxId == wxID_YES ? IDABORT : wxId == wxID_NO ? IDRETRY : wxId == wxID_CANCEL ? IDIGNORE : 0;
      break;
    case MB_YESNOCANCEL:
      answer = wxId == wxID_YES ? IDYES : wxId == wxID_NO ? IDNO : wxId == wxID_CANCEL ? IDCANCEL : 0;
      break;
    case MB_YESNO:
      answer = wxId == wxID_YES ? IDYES : wxId == wxID_NO ? IDNO : 0;
      break;
    case MB_RETRYCANCEL:
      answer = wxId == wxID_OK ? IDRETRY : wxId == wxID_CANCEL ? IDCANCEL : 0;
      break;
    default:
      answer = IDOK;
      break;
  }
  return answer != 0 ? answer : DefaultAnswer(type);
}

std::string WildcardOfFilter(std::string_view filter) {
  std::string wildcard;
  std::size_t pos = 0;
  while (pos < filter.size()) {
    const std::size_t descriptionEnd = std::min(filter.find('|', pos), filter.size());
    const std::string_view description = filter.substr(pos, descriptionEnd - pos);
    if (description.empty() || descriptionEnd == filter.size()) break;
    const std::size_t patternStart = descriptionEnd + 1;
    const std::size_t patternEnd = std::min(filter.find('|', patternStart), filter.size());
    const std::string_view pattern = filter.substr(patternStart, patternEnd - patternStart);
    if (pattern.empty()) break;
    if (!wildcard.empty()) wildcard += '|';
    wildcard.append(description).append("|").append(pattern);
    pos = patternEnd + 1;
  }
  return wildcard;
}

long FileDialogStyleOf(const FileChooserRequest& request) {
  long style = request.open ? long{wxFD_OPEN} : long{wxFD_SAVE};
  if (request.open && request.multiSelect) style |= wxFD_MULTIPLE;
  if (!request.open && (request.flags & OFN_OVERWRITEPROMPT) != 0) style |= wxFD_OVERWRITE_PROMPT;
  return style;
}

std::string WithDefaultExtension(const FileChooserRequest& request, const std::string& path) {
  std::string_view extension = request.defaultExtension;
  if (!extension.empty() && extension.front() == '.') extension.remove_prefix(1);
  if (request.open || extension.empty()) return path;
  const std::size_t nameStart = path.find_last_of('/');
  const std::size_t dot = path.find('.', nameStart == std::string::npos ? 0 : nameStart + 1);
  if (dot != std::string::npos || path.empty() || path.back() == '/') return path;
  return path + "." + std::string(extension);
}

int WxHostPrompt::MessageBox(const std::string& text, const std::string& caption, UINT type) {
  if (!HaveApp()) return HeadlessHostPrompt().MessageBox(text, caption, type);
  return OnMainThread([&] {
    const MessageBoxLook look = MessageBoxLookOf(type);
    wxMessageDialog dialog(wxTheApp->GetTopWindow(), Wx(text), Wx(caption), look.style);
    if (look.labels.size() == 3) {
      dialog.SetYesNoCancelLabels(Wx(look.labels[0]), Wx(look.labels[1]), Wx(look.labels[2]));
    } else if (look.labels.size() == 2) {
      dialog.SetOKCancelLabels(Wx(look.labels[0]), Wx(look.labels[1]));
    }
    return MessageBoxAnswerOf(type, dialog.ShowModal());
  });
}

std::optional<std::vector<std::string>> WxHostPrompt::ChooseFiles(const FileChooserRequest& request) {
  if (!HaveApp()) return std::nullopt;
  return OnMainThread([&]() -> std::optional<std::vector<std::string>> {
    std::string title = request.title;
    if (title.empty()) title = request.open ? "Open" : "Save As";
    const std::string wildcard = WildcardOfFilter(request.filter);
    wxFileDialog dialog(request.parent != nullptr ? request.parent->GetWxWindow() : nullptr, Wx(title),
                        Wx(request.initialFolder), Wx(request.fileName),
                        wildcard.empty() ? wxString(wxFileSelectorDefaultWildcardStr) : Wx(wildcard),
                        FileDialogStyleOf(request));
    const int rows = static_cast<int>(std::count(wildcard.begin(), wildcard.end(), '|') + 1) / 2;
    if (request.filterIndex >= 1 && request.filterIndex <= rows)
      dialog.SetFilterIndex(request.filterIndex - 1);
    if (dialog.ShowModal() != wxID_OK) return std::nullopt;
    std::vector<std::string> chosen;
    if (request.open && request.multiSelect) {
      wxArrayString paths;
      dialog.GetPaths(paths);
      for (const wxString& path : paths) chosen.push_back(Utf8(path));
    } else {
      chosen.push_back(WithDefaultExtension(request, Utf8(dialog.GetPath())));
    }
    return chosen;
  });
}

std::optional<std::string> WxHostPrompt::ChooseFolder(const FolderChooserRequest& request) {
  if (!HaveApp()) return std::nullopt;
  return OnMainThread([&]() -> std::optional<std::string> {
    wxDirDialog dialog(CWnd::FromHandle(request.owner), Wx(request.title), Wx(request.initialFolder),
                       wxDD_DEFAULT_STYLE | wxDD_DIR_MUST_EXIST);
    if (dialog.ShowModal() != wxID_OK) return std::nullopt;
    return Utf8(dialog.GetPath());
  });
}

void WxDesktopHooks::Wait(DWORD milliseconds) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
  if (!HaveApp() || !wxIsMainThread()) {
    std::this_thread::sleep_until(end);
    return;
  }
  for (;;) {
    // onlyIfNeeded: a Wait inside an event handler that runs during a yield only sleeps.
    wxTheApp->Yield(true);
    const auto now = std::chrono::steady_clock::now();
    if (now >= end) return;
    std::this_thread::sleep_for(
        std::min<std::chrono::steady_clock::duration>(end - now, std::chrono::milliseconds(5)));
  }
}

void WxDesktopHooks::ProcessWindowMessage() {
  if (HaveApp() && wxIsMainThread()) wxTheApp->Yield(true);
}

void WxDesktopHooks::SetArrowCursor() {
  if (HaveApp() && wxIsMainThread()) wxSetCursor(wxCursor(wxCURSOR_ARROW));
}

void WxDesktopHooks::ReleaseMouseCapture() {
  if (!HaveApp() || !wxIsMainThread()) return;
  // wx keeps a stack of captures; releasing the capture means releasing all of them. The
  // bound guards against a window that does not give its capture up.
  for (int i = 0; i < 64; ++i) {
    wxWindow* captured = wxWindow::GetCapture();
    if (captured == nullptr) return;
    captured->ReleaseMouse();
  }
}

}  // namespace corlith::ui
