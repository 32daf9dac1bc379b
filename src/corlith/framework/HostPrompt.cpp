#include <corlith/framework/HostPrompt.h>

#include <cstdio>

namespace corlith {
namespace {

std::mutex g_promptMutex;
std::shared_ptr<IHostPrompt> g_prompt;

template <typename T>
T PopFront(std::deque<T>& queue, T fallback) {
  if (!queue.empty()) {
    fallback = std::move(queue.front());
    queue.pop_front();
  }
  return fallback;
}

}  // namespace

int DefaultAnswer(UINT type) {
  static constexpr int kButtons[][3] = {
      {IDOK, 0, 0},                  // MB_OK
      {IDOK, IDCANCEL, 0},           // MB_OKCANCEL
      {IDABORT, IDRETRY, IDIGNORE},  // MB_ABORTRETRYIGNORE
      {IDYES, IDNO, IDCANCEL},       // MB_YESNOCANCEL
      {IDYES, IDNO, 0},              // MB_YESNO
      {IDRETRY, IDCANCEL, 0},        // MB_RETRYCANCEL
  };
  const UINT kind = type & MB_TYPEMASK;
  if (kind >= std::size(kButtons)) return IDOK;
  const UINT index = (type & MB_DEFMASK) >> 8;
  const int answer = index < 3 ? kButtons[kind][index] : 0;
  return answer != 0 ? answer : kButtons[kind][0];
}

int HeadlessHostPrompt::MessageBox(const std::string& text, const std::string& caption, UINT type) {
  std::fprintf(stderr, "%s: %s\n", caption.c_str(), text.c_str());
  return DefaultAnswer(type);
}

std::optional<std::vector<std::string>> HeadlessHostPrompt::ChooseFiles(const FileChooserRequest&) {
  return std::nullopt;
}

std::optional<std::string> HeadlessHostPrompt::ChooseFolder(const FolderChooserRequest&) {
  return std::nullopt;
}

int RecordingHostPrompt::MessageBox(const std::string& text, const std::string& caption, UINT type) {
  std::lock_guard lock(m_mutex);
  m_messages.push_back({text, caption, type});
  return PopFront(m_answers, DefaultAnswer(type));
}

std::optional<std::vector<std::string>> RecordingHostPrompt::ChooseFiles(const FileChooserRequest& request) {
  std::lock_guard lock(m_mutex);
  m_fileRequests.push_back(request);
  return PopFront<std::optional<std::vector<std::string>>>(m_files, std::nullopt);
}

std::optional<std::string> RecordingHostPrompt::ChooseFolder(const FolderChooserRequest& request) {
  std::lock_guard lock(m_mutex);
  m_folderRequests.push_back(request);
  return PopFront<std::optional<std::string>>(m_folders, std::nullopt);
}

void RecordingHostPrompt::QueueAnswer(int answer) {
  std::lock_guard lock(m_mutex);
  m_answers.push_back(answer);
}

void RecordingHostPrompt::QueueFiles(std::optional<std::vector<std::string>> files) {
  std::lock_guard lock(m_mutex);
  m_files.push_back(std::move(files));
}

void RecordingHostPrompt::QueueFolder(std::optional<std::string> folder) {
  std::lock_guard lock(m_mutex);
  m_folders.push_back(std::move(folder));
}

std::vector<RecordingHostPrompt::Message> RecordingHostPrompt::Messages() const {
  std::lock_guard lock(m_mutex);
  return m_messages;
}

std::vector<FileChooserRequest> RecordingHostPrompt::FileRequests() const {
  std::lock_guard lock(m_mutex);
  return m_fileRequests;
}

std::vector<FolderChooserRequest> RecordingHostPrompt::FolderRequests() const {
  std::lock_guard lock(m_mutex);
  return m_folderRequests;
}

std::shared_ptr<IHostPrompt> GetHostPrompt() {
  std::lock_guard lock(g_promptMutex);
  if (!g_prompt) g_prompt = std::make_shared<HeadlessHostPrompt>();
  return g_prompt;
}

std::shared_ptr<IHostPrompt> SetHostPrompt(std::shared_ptr<IHostPrompt> prompt) {
  std::lock_guard lock(g_promptMutex);
  std::shared_ptr<IHostPrompt> previous = std::move(g_prompt);
  g_prompt = std::move(prompt);
  return previous;
}

}  // namespace corlith

int AfxMessageBox(const char* lpszText, UINT nType, UINT) {
  // The original shows the application's title as caption; a library has none of
  // its own, so hosts that care install a prompt that supplies theirs.
  return corlith::GetHostPrompt()->MessageBox(lpszText ? lpszText : "", "Corlith", nType);
}
