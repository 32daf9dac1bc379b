// Host prompts: how the library asks the person in front of the host something.
// Lower layers call AfxMessageBox and the choosers below; the host (or the UI
// library, when it starts) installs the implementation. The default is headless:
// a message box goes to standard error and answers its default button; choosers
// answer "cancelled". Tests install RecordingHostPrompt to assert on exact texts.
#pragma once

#include <corlith/framework/Types.h>

#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

// Message-box styles and answers, with the original's values.
inline constexpr UINT MB_OK = 0x0;
inline constexpr UINT MB_OKCANCEL = 0x1;
inline constexpr UINT MB_ABORTRETRYIGNORE = 0x2;
inline constexpr UINT MB_YESNOCANCEL = 0x3;
inline constexpr UINT MB_YESNO = 0x4;
inline constexpr UINT MB_RETRYCANCEL = 0x5;
inline constexpr UINT MB_TYPEMASK = 0xF;
inline constexpr UINT MB_ICONERROR = 0x10;
inline constexpr UINT MB_ICONSTOP = MB_ICONERROR;
inline constexpr UINT MB_ICONQUESTION = 0x20;
inline constexpr UINT MB_ICONWARNING = 0x30;
inline constexpr UINT MB_ICONEXCLAMATION = MB_ICONWARNING;
inline constexpr UINT MB_ICONINFORMATION = 0x40;
inline constexpr UINT MB_ICONMASK = 0xF0;
inline constexpr UINT MB_DEFBUTTON1 = 0x000;
inline constexpr UINT MB_DEFBUTTON2 = 0x100;
inline constexpr UINT MB_DEFBUTTON3 = 0x200;
inline constexpr UINT MB_DEFMASK = 0xF00;

inline constexpr int IDOK = 1;
inline constexpr int IDCANCEL = 2;
inline constexpr int IDABORT = 3;
inline constexpr int IDRETRY = 4;
inline constexpr int IDIGNORE = 5;
inline constexpr int IDYES = 6;
inline constexpr int IDNO = 7;

/// A host window, as the UI library knows it; the core only passes it through.
class CWnd;
/// A native window handle, as the UI library knows it; the core only passes it through.
using HWND = void*;

// File-chooser flags, with the original's values (the choosers of KTUtility pass them).
inline constexpr DWORD OFN_OVERWRITEPROMPT = 0x2;
inline constexpr DWORD OFN_HIDEREADONLY = 0x4;
inline constexpr DWORD OFN_ALLOWMULTISELECT = 0x200;
inline constexpr DWORD OFN_LONGNAMES = 0x200000;
// Folder-browser flags, with the original's values.
inline constexpr UINT BIF_RETURNONLYFSDIRS = 0x1;
inline constexpr UINT BIF_STATUSTEXT = 0x4;
inline constexpr UINT BIF_EDITBOX = 0x10;
inline constexpr UINT BIF_VALIDATE = 0x20;
inline constexpr UINT BIF_NEWDIALOGSTYLE = 0x40;

namespace corlith {

/// A file chooser request. `filter` is in the framework's form
/// "Description|*.a;*.b|Description 2|*.*||".
struct FileChooserRequest {
  bool open = true;  ///< open (true) or save-as (false)
  std::string title;
  std::string initialFolder;
  std::string fileName;  ///< the default name shown in the name box
  std::string defaultExtension;
  std::string filter;
  bool multiSelect = false;
  DWORD flags = 0;      ///< OFN_* flags as the original passed them
  int filterIndex = 0;  ///< 1-based row of the filter selected first; 0: the first
  CWnd* parent = nullptr;
};

/// A folder chooser request.
struct FolderChooserRequest {
  std::string title;          ///< also the text the browser starts with in its name box
  std::string initialFolder;  ///< selected when the chooser opens
  UINT flags = 0;             ///< BIF_* flags as the original passed them
  HWND owner = nullptr;
};

/// The prompt interface. Implementations may be called from any thread.
class IHostPrompt {
 public:
  virtual ~IHostPrompt() = default;
  /// Shows a modal message box; returns the button pressed (IDOK, IDYES, ...).
  virtual int MessageBox(const std::string& text, const std::string& caption, UINT type) = 0;
  /// Full paths of the chosen files, or nullopt when cancelled.
  virtual std::optional<std::vector<std::string>> ChooseFiles(const FileChooserRequest& request) = 0;
  /// The chosen folder, or nullopt when cancelled.
  virtual std::optional<std::string> ChooseFolder(const FolderChooserRequest& request) = 0;
};

/// The default button of a message-box style: the button MB_DEFBUTTONn selects among
/// the style's buttons (the first one when n is past the last).
int DefaultAnswer(UINT type);

/// Headless prompts: message text to standard error, the default answer back;
/// choosers are cancelled.
class HeadlessHostPrompt : public IHostPrompt {
 public:
  int MessageBox(const std::string& text, const std::string& caption, UINT type) override;
  std::optional<std::vector<std::string>> ChooseFiles(const FileChooserRequest& request) override;
  std::optional<std::string> ChooseFolder(const FolderChooserRequest& request) override;
};

/// Records every prompt and answers from scripted queues (default answer, or
/// cancelled, when a queue is empty). Thread-safe.
class RecordingHostPrompt : public IHostPrompt {
 public:
  struct Message {
    std::string text;
    std::string caption;
    UINT type = 0;
  };

  int MessageBox(const std::string& text, const std::string& caption, UINT type) override;
  std::optional<std::vector<std::string>> ChooseFiles(const FileChooserRequest& request) override;
  std::optional<std::string> ChooseFolder(const FolderChooserRequest& request) override;

  void QueueAnswer(int answer);
  void QueueFiles(std::optional<std::vector<std::string>> files);
  void QueueFolder(std::optional<std::string> folder);

  std::vector<Message> Messages() const;
  std::vector<FileChooserRequest> FileRequests() const;
  std::vector<FolderChooserRequest> FolderRequests() const;

 private:
  mutable std::mutex m_mutex;
  std::vector<Message> m_messages;
  std::vector<FileChooserRequest> m_fileRequests;
  std::vector<FolderChooserRequest> m_folderRequests;
  std::deque<int> m_answers;
  std::deque<std::optional<std::vector<std::string>>> m_files;
  std::deque<std::optional<std::string>> m_folders;
};

/// The prompt in force (the headless one until something is installed).
std::shared_ptr<IHostPrompt> GetHostPrompt();
/// Installs `prompt` (null restores the headless default); returns the previous one.
std::shared_ptr<IHostPrompt> SetHostPrompt(std::shared_ptr<IHostPrompt> prompt);

/// Installs a prompt for the lifetime of this object, then restores the previous one.
class ScopedHostPrompt {
 public:
  explicit ScopedHostPrompt(std::shared_ptr<IHostPrompt> prompt)
      : m_previous(SetHostPrompt(std::move(prompt))) {}
  ~ScopedHostPrompt() { SetHostPrompt(std::move(m_previous)); }
  ScopedHostPrompt(const ScopedHostPrompt&) = delete;
  ScopedHostPrompt& operator=(const ScopedHostPrompt&) = delete;

 private:
  std::shared_ptr<IHostPrompt> m_previous;
};

}  // namespace corlith

/// The framework's message box: the host prompt with the application's caption.
int AfxMessageBox(const char* lpszText, UINT nType = MB_OK, UINT nIDHelp = 0);
