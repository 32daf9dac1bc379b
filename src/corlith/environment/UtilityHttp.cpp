// KTUtility: the HTTP form upload and the download, on libcurl (Curl.h). The upload's
// body is sent from a list of byte runs, so a large field value goes out of the caller's
// own text without a copy; the download streams into a temporary file beside the target.
#include <corlith/environment/Curl.h>
#include <corlith/environment/Utility.h>

#include <corlith/framework/Format.h>
#include <corlith/platform/File.h>
#include <corlith/platform/FileSystem.h>
#include <corlith/platform/Path.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

namespace {

namespace platform = corlith::platform;

constexpr const char* kBoundary = "FFF3F395A90B452BB8BEDC878DDBD152";
constexpr const char* kMultipartHeader =
    "Content-Type: multipart/form-data; boundary=FFF3F395A90B452BB8BEDC878DDBD152";
// The boundary parameter is sent with the plain content type too, deliberately.
constexpr const char* kTextHeader =
    "Content-Type: text/html;charset=UTF-8; boundary=FFF3F395A90B452BB8BEDC878DDBD152";
constexpr const char* kAgent = "HTTPFILE";

bool HasNul(std::string_view text) { return text.find('\0') != std::string_view::npos; }

// The URL parsed for the HTTP service: http or https with a host. Null when it does not
// parse: no scheme, another scheme, control characters (a CR LF in a field would split
// the request), or a NUL byte (the text after it would be lost). A blank, which would
// break the request line, goes out as "%20"; every other byte is sent as it is.
corlith::CurlUrl ParseHttpUrl(const CString& url) {
  if (HasNul(url.view())) return nullptr;
  std::string text;
  text.reserve(url.view().size());
  for (const char c : url.view()) {
    if (c == ' ') {
      text += "%20";
    } else {
      text += c;
    }
  }
  corlith::CurlUrl parsed(curl_url());
  if (!parsed || curl_url_set(parsed.get(), CURLUPART_URL, text.c_str(), 0) != CURLUE_OK) return nullptr;
  char* scheme = nullptr;
  if (curl_url_get(parsed.get(), CURLUPART_SCHEME, &scheme, 0) != CURLUE_OK) return nullptr;
  const bool http = std::strcmp(scheme, "http") == 0 || std::strcmp(scheme, "https") == 0;
  curl_free(scheme);
  return http ? std::move(parsed) : nullptr;
}

// The stall limit: the transfer ends when no byte has moved either way for the limit,
// counted from the moment the connection was made (the connect limit covers the time
// before). Our own watch rather than libcurl's low-speed limit, whose speed is an
// average over several seconds: after a quick upload it would notice a silent server
// only seconds after the limit.
class StallWatch {
 public:
  StallWatch(CURL* curl, std::chrono::seconds limit) : m_curl(curl), m_limit(limit) {}

  static int Progress(void* self, curl_off_t, curl_off_t received, curl_off_t, curl_off_t sent) {
    auto& watch = *static_cast<StallWatch*>(self);
    const auto now = std::chrono::steady_clock::now();
    curl_off_t connected = 0;
    curl_easy_getinfo(watch.m_curl, CURLINFO_PRETRANSFER_TIME_T, &connected);
    if (connected == 0 || received + sent != watch.m_moved) {
      watch.m_moved = received + sent;
      watch.m_since = now;
      return 0;
    }
    return now - watch.m_since >= watch.m_limit ? 1 : 0;
  }

 private:
  CURL* m_curl;
  std::chrono::seconds m_limit;
  curl_off_t m_moved = -1;
  std::chrono::steady_clock::time_point m_since;
};

// The settings both transfers share: the agent, the time limits, no signals (the host
// is multi-threaded), HTTP and HTTPS only.
bool SetCommon(CURL* curl, CURLU* url, std::chrono::seconds connect, StallWatch& stall) {
  return curl_easy_setopt(curl, CURLOPT_CURLU, url) == CURLE_OK &&
         curl_easy_setopt(curl, CURLOPT_USERAGENT, kAgent) == CURLE_OK &&
         curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L) == CURLE_OK &&
         curl_easy_setopt(curl, CURLOPT_CONNECTTIMEOUT, static_cast<long>(connect.count())) == CURLE_OK &&
         curl_easy_setopt(curl, CURLOPT_NOPROGRESS, 0L) == CURLE_OK &&
         curl_easy_setopt(curl, CURLOPT_XFERINFOFUNCTION, &StallWatch::Progress) == CURLE_OK &&
         curl_easy_setopt(curl, CURLOPT_XFERINFODATA, &stall) == CURLE_OK &&
         curl_easy_setopt(curl, CURLOPT_PROTOCOLS_STR, "http,https") == CURLE_OK &&
         curl_easy_setopt(curl, CURLOPT_REDIR_PROTOCOLS_STR, "http,https") == CURLE_OK;
}

// --- the upload ------------------------------------------------------------------------

// The multipart body as byte runs: the framing held here, the values (when sent as they
// are) in the caller's arrays, which outlive the transfer.
class MultipartBody {
 public:
  void AddField(const char* name, const CString& value) {
    const std::string_view nameText(name);
    if (nameText.find('%') == std::string_view::npos && value.view().find('%') == std::string_view::npos) {
      // Without a "%" the part used as a format is the part itself: no copy of the value.
      std::string& head = m_owned.emplace_back("--");
      head += kBoundary;
      head += "\r\nContent-Disposition: form-data; name=\"";
      head += nameText;
      head += "\"\r\n\r\n";
      Add(head);
      Add(value.view());
      Add("\r\n");
      return;
    }
    const corlith::FormatArg boundary(kBoundary);
    const CString part = KTUtility::GetInstance()->MakeResultFileData(name, kBoundary, value);
    Add(m_owned.emplace_back(corlith::FormatV(part.view(), std::span(&boundary, 1))));
  }

  void AddTerminator() { Add(m_owned.emplace_back(corlith::FormatText("--%s--\r\n\r\n", kBoundary))); }

  curl_off_t Size() const { return static_cast<curl_off_t>(m_size); }

  // libcurl's read function: the next bytes of the body.
  static std::size_t Read(char* buffer, std::size_t size, std::size_t count, void* self) {
    auto& body = *static_cast<MultipartBody*>(self);
    std::size_t room = size * count;
    std::size_t done = 0;
    while (room > 0 && body.m_run < body.m_runs.size()) {
      const std::string_view run = body.m_runs[body.m_run];
      const std::size_t n = std::min(room, run.size() - body.m_offset);
      std::memcpy(buffer + done, run.data() + body.m_offset, n);
      done += n;
      room -= n;
      body.m_offset += n;
      if (body.m_offset == run.size()) {
        ++body.m_run;
        body.m_offset = 0;
      }
    }
    return done;
  }

  // libcurl's seek function, for a body it must send again (a proxy's authentication).
  static int Seek(void* self, curl_off_t offset, int origin) {
    auto& body = *static_cast<MultipartBody*>(self);
    if (origin != SEEK_SET || offset < 0 || offset > body.Size()) return CURL_SEEKFUNC_CANTSEEK;
    auto left = static_cast<std::size_t>(offset);
    body.m_run = 0;
    while (body.m_run < body.m_runs.size() && left >= body.m_runs[body.m_run].size()) {
      left -= body.m_runs[body.m_run].size();
      ++body.m_run;
    }
    body.m_offset = left;
    return CURL_SEEKFUNC_OK;
  }

 private:
  void Add(std::string_view run) {
    if (run.empty()) return;
    m_runs.push_back(run);
    m_size += run.size();
  }

  std::deque<std::string> m_owned;  // a deque: its elements never move
  std::vector<std::string_view> m_runs;
  std::size_t m_size = 0;
  std::size_t m_run = 0;
  std::size_t m_offset = 0;
};

// The upload reads none of the answer's body, as the original did not: the end of the
// final answer's headers (or, failing that, its first body bytes) ends the transfer,
// which then counts as sent.
struct AnswerSeen {
  CURL* curl = nullptr;
  bool seen = false;

  static std::size_t Header(char* line, std::size_t size, std::size_t count, void* self) {
    auto& answer = *static_cast<AnswerSeen*>(self);
    const std::string_view text(line, size * count);
    if (text == "\r\n" || text == "\n") {
      long status = 0;
      curl_easy_getinfo(answer.curl, CURLINFO_RESPONSE_CODE, &status);
      if (status >= 200) {  // not an interim answer (100 Continue)
        answer.seen = true;
        return 0;
      }
    }
    return text.size();
  }

  static std::size_t Write(char*, std::size_t, std::size_t, void* self) {
    static_cast<AnswerSeen*>(self)->seen = true;
    return 0;
  }
};

// --- the download ----------------------------------------------------------------------

// The download's target and its temporary file in the same folder, created when the
// first byte of a 200 answer arrives; removed unless Commit renamed it over the target.
class DownloadFile {
 public:
  explicit DownloadFile(std::string target) : m_target(std::move(target)) {}
  DownloadFile(const DownloadFile&) = delete;
  DownloadFile& operator=(const DownloadFile&) = delete;
  ~DownloadFile() {
    if (m_file.IsOpen()) m_file.Close();
    if (!m_temporary.empty()) platform::RemoveFilePath(m_temporary);
  }

  bool Write(const char* data, std::size_t size) { return Create() && m_file.Write(data, size) == 0; }

  // Puts the whole body, flushed to the disk, under the target's name.
  bool Commit() {
    if (!Create() || m_file.Flush() != 0 || m_file.Close() != 0) return false;
    if (platform::RenamePath(m_temporary, m_target) != 0) return false;
    m_temporary.clear();
    return true;
  }

  CURL* curl = nullptr;

  // libcurl's write function: only the body of a 200 answer is kept.
  static std::size_t Receive(char* data, std::size_t size, std::size_t count, void* self) {
    auto& file = *static_cast<DownloadFile*>(self);
    long status = 0;
    curl_easy_getinfo(file.curl, CURLINFO_RESPONSE_CODE, &status);
    if (status != 200) return 0;  // the body of another answer is not wanted
    return file.Write(data, size * count) ? size * count : 0;
  }

 private:
  bool Create() {
    if (m_file.IsOpen()) return true;
    if (!m_temporary.empty()) return false;
    const std::size_t cut = m_target.rfind(platform::kNativeSeparator);
    const std::string folder = cut == std::string::npos ? std::string() : m_target.substr(0, cut + 1);
    static std::atomic<unsigned long> counter{0};
    platform::FileOpenOptions options;
    options.access = platform::FileAccess::Write;
    options.create = true;
    options.exclusive = true;
    for (int attempt = 0; attempt < 100; ++attempt) {
      std::string name = folder + ".corlith-download-" + std::to_string(platform::CurrentProcessId()) + "-" +
                         std::to_string(++counter) + ".part";
      const int error = m_file.Open(name, options);
      if (error == 0) {
        m_temporary = std::move(name);
        return true;
      }
      if (error != EEXIST) break;
    }
    return false;
  }

  std::string m_target;
  std::string m_temporary;
  platform::FileHandle m_file;
};

}  // namespace

CString KTUtility::MakeResultFileData(const char* name, const char* boundary, const CString& value) {
  CString part("--");
  part += boundary;
  part += "\r\nContent-Disposition: form-data; name=\"";
  part += name;
  part += "\"\r\n\r\n";
  part += value;
  part += "\r\n";
  return part;
}

int KTUtility::GetComplate(CString& url, const CStringArray& names, const CStringArray& values,
                           int multipart) {
  if (names.GetSize() != values.GetSize()) return 0;
  MultipartBody body;
  if (multipart != 0) {
    for (INT_PTR i = 0; i < names.GetSize(); ++i) body.AddField(names[i].GetString(), values[i]);
    body.AddTerminator();
  } else {
    for (INT_PTR i = 0; i < names.GetSize(); ++i) url.AppendFormat("&%s=%s", names[i], values[i]);
  }
  const corlith::CurlUrl parsed = ParseHttpUrl(url);
  if (!parsed) return 0;

  const corlith::CurlEasy curl = corlith::MakeCurlEasy();
  corlith::CurlList headers;
  // "Expect:" and "Accept:" remove what libcurl would add: no 100-continue wait, and no
  // accept types, as the original sent none.
  if (!curl || !corlith::AppendCurlHeader(headers, multipart != 0 ? kMultipartHeader : kTextHeader) ||
      !corlith::AppendCurlHeader(headers, "Expect:") || !corlith::AppendCurlHeader(headers, "Accept:")) {
    return 0;
  }
  CURL* const handle = curl.get();
  AnswerSeen answer{handle};
  StallWatch stall(handle, m_httpStallLimit);
  bool ready = SetCommon(handle, parsed.get(), m_httpConnectLimit, stall) &&
               curl_easy_setopt(handle, CURLOPT_HTTPHEADER, headers.get()) == CURLE_OK &&
               curl_easy_setopt(handle, CURLOPT_HEADERFUNCTION, &AnswerSeen::Header) == CURLE_OK &&
               curl_easy_setopt(handle, CURLOPT_HEADERDATA, &answer) == CURLE_OK &&
               curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, &AnswerSeen::Write) == CURLE_OK &&
               curl_easy_setopt(handle, CURLOPT_WRITEDATA, &answer) == CURLE_OK;
  if (multipart != 0) {
    ready = ready && curl_easy_setopt(handle, CURLOPT_POST, 1L) == CURLE_OK &&
            curl_easy_setopt(handle, CURLOPT_POSTFIELDSIZE_LARGE, body.Size()) == CURLE_OK &&
            curl_easy_setopt(handle, CURLOPT_READFUNCTION, &MultipartBody::Read) == CURLE_OK &&
            curl_easy_setopt(handle, CURLOPT_READDATA, &body) == CURLE_OK &&
            curl_easy_setopt(handle, CURLOPT_SEEKFUNCTION, &MultipartBody::Seek) == CURLE_OK &&
            curl_easy_setopt(handle, CURLOPT_SEEKDATA, &body) == CURLE_OK &&
            // Larger blocks than the default 64 KiB: a quarter fewer system calls for a large form.
            curl_easy_setopt(handle, CURLOPT_UPLOAD_BUFFERSIZE, 512L * 1024) == CURLE_OK;
  } else {
    ready = ready && curl_easy_setopt(handle, CURLOPT_HTTPGET, 1L) == CURLE_OK;
  }
  if (!ready) return 0;
  const CURLcode result = curl_easy_perform(handle);
  return result == CURLE_OK || (result == CURLE_WRITE_ERROR && answer.seen) ? 1 : 0;
}

int KTUtility::GetDownloader(const CString& url, const CString& localFile) {
  if (localFile.IsEmpty() || HasNul(localFile.view())) return 0;
  const corlith::CurlUrl parsed = ParseHttpUrl(url);
  const corlith::CurlEasy curl = corlith::MakeCurlEasy();
  if (!parsed || !curl) return 0;
  DownloadFile file(platform::ToNativeSeparators(localFile.view()));
  file.curl = curl.get();
  CURL* const handle = curl.get();
  // No proxy at all, whatever the environment says; redirects are followed, as opening a
  // URL did, to a final answer.
  StallWatch stall(handle, m_httpStallLimit);
  const bool ready = SetCommon(handle, parsed.get(), m_httpConnectLimit, stall) &&
                     curl_easy_setopt(handle, CURLOPT_PROXY, "") == CURLE_OK &&
                     curl_easy_setopt(handle, CURLOPT_FOLLOWLOCATION, 1L) == CURLE_OK &&
                     curl_easy_setopt(handle, CURLOPT_MAXREDIRS, 10L) == CURLE_OK &&
                     curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, &DownloadFile::Receive) == CURLE_OK &&
                     curl_easy_setopt(handle, CURLOPT_WRITEDATA, &file) == CURLE_OK;
  if (!ready) return 0;
  const CURLcode result = curl_easy_perform(handle);
  long status = 0;
  curl_easy_getinfo(handle, CURLINFO_RESPONSE_CODE, &status);
  if (status == 0) return 0;  // no answer at all: silent, as a URL that could not be opened
  if (status != 200) {
    if (status != 404) AfxMessageBox(corlith::FormatText("Unknown Error Err code : %d", status).c_str());
    return 0;
  }
  // A cut body (CURLE_PARTIAL_FILE), a stall or a write error leaves the target as it was.
  return result == CURLE_OK && file.Commit() ? 1 : 0;
}

void KTUtility::SetHttpTimeLimits(std::chrono::seconds connect, std::chrono::seconds stall) {
  m_httpConnectLimit = std::max(connect, std::chrono::seconds(1));
  m_httpStallLimit = std::max(stall, std::chrono::seconds(1));
}
