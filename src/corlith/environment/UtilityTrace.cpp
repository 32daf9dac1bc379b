// The trace logs of KTPathCombine and DoesFileExist.
#include <corlith/environment/Utility.h>

#include <corlith/platform/File.h>
#include <corlith/platform/FileSystem.h>
#include <corlith/platform/Path.h>
#include <corlith/platform/Trace.h>

#include <ctime>
#include <string>
#include <string_view>

namespace {

namespace platform = corlith::platform;

constexpr std::string_view kTraceMarker = "CREATE_PATH_LOG";

// Set while a trace entry is being written on this thread. Finding the log's folder asks
// for the data folder, whose configuration check is itself traced; that nested check
// writes no entry, as it would otherwise never end.
thread_local bool t_writingTrace = false;

class TraceScope {
 public:
  TraceScope() { t_writingTrace = true; }
  ~TraceScope() { t_writingTrace = false; }
  TraceScope(const TraceScope&) = delete;
  TraceScope& operator=(const TraceScope&) = delete;
};

std::string Strftime(const char* format, const std::tm& local) {
  char buffer[64];
  const std::size_t n = std::strftime(buffer, sizeof buffer, format, &local);
  return std::string(buffer, n);
}

// "\n" in the entry's format becomes the platform's text line end, as a text-mode file
// writes it.
void AppendLineEnd(std::string& entry) { entry += platform::TextLineEnd(); }

}  // namespace

bool KTUtility::IsTracing() {
  const CString folder = GetCurModuleDir();
  if (folder.IsEmpty()) return false;
  const std::string marker = platform::CombinePath(folder.view(), kTraceMarker);
  platform::FileFacts facts;
  return platform::QueryFileFacts(marker, facts) == 0 && facts.kind != platform::FileKind::None;
}

void KTUtility::Trace(const char* logName, const CString& subject, const char* sourceFile, int line) {
  if (t_writingTrace || !IsTracing()) return;
  const TraceScope scope;
  std::tm local{};
  // The conversion cannot fail for the clock's own time; were it to, the entry is dropped.
  if (!platform::LocalTime(std::time(nullptr), local)) return;

  const std::string logFolder =
      platform::CombinePath(GetDataPath().view(), "Log");  // never created here: no folder, no log
  if (IsWritingPermission(CString(logFolder)) == 0) return;
  std::string fileName(logName);
  fileName += '_';
  fileName += Strftime("%Y_%m_%d", local);
  fileName += ".log";
  const std::string logPath = platform::CombinePath(logFolder, fileName);

  std::string entry = Strftime("[%H:%M:%S]", local);
  entry += " : ";
  entry += subject.view();
  AppendLineEnd(entry);
  entry += '\t';
  entry += sourceFile != nullptr ? sourceFile : "";
  entry += '(';
  entry += std::to_string(line);
  entry += ')';
  AppendLineEnd(entry);
  // Failures drop the entry silently: tracing never disturbs the caller.
  platform::AppendToFile(logPath, entry);
}
