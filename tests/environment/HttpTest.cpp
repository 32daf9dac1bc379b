// KTUtility's HTTP form upload and download against a loopback server that records the
// raw request bytes: the multipart body byte for byte, the GET object path, the exact
// headers, the refusals that send nothing, the proxy variables, servers that answer 404
// or 500, stall, fall silent or cut the body, and the corlith tool's post/get/download.
#include <corlith/environment/Utility.h>
#include <corlith/framework/HostPrompt.h>
#include <corlith/platform/Process.h>
#include <corlith/test/LoopbackServer.h>
#include <corlith/test/TempFolder.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

using corlith::RecordingHostPrompt;
using corlith::ScopedHostPrompt;
using corlith::test::LoopbackReply;
using corlith::test::LoopbackServer;
using corlith::test::ReservedPort;
using corlith::test::TempFolder;
using Clock = std::chrono::steady_clock;
using Mode = LoopbackReply::Mode;
using namespace std::chrono_literals;

constexpr std::string_view kBoundary = "FFF3F395A90B452BB8BEDC878DDBD152";
constexpr std::string_view kTerminator = "--FFF3F395A90B452BB8BEDC878DDBD152--\r\n\r\n";
constexpr std::string_view kMultipartType =
    "Content-Type: multipart/form-data; boundary=FFF3F395A90B452BB8BEDC878DDBD152";
constexpr std::string_view kTextType =
    "Content-Type: text/html;charset=UTF-8; boundary=FFF3F395A90B452BB8BEDC878DDBD152";

KTUtility& Utility() { return *KTUtility::GetInstance(); }

CStringArray Array(const std::vector<std::string>& texts) {
  CStringArray array;
  for (const std::string& text : texts) array.Add(CString(text));
  return array;
}

// One field part as the upload frames it.
std::string Part(std::string_view name, std::string_view value) {
  return "--" + std::string(kBoundary) + "\r\nContent-Disposition: form-data; name=\"" + std::string(name) +
         "\"\r\n\r\n" + std::string(value) + "\r\n";
}

// A recorded request cut into its request line, header lines and body.
struct Request {
  std::string line;
  std::vector<std::string> headers;
  std::string body;

  explicit Request(const std::string& raw) {
    const std::size_t end = raw.find("\r\n\r\n");
    body = end == std::string::npos ? std::string() : raw.substr(end + 4);
    const std::string head = raw.substr(0, end);
    std::size_t at = 0;
    while (at <= head.size()) {
      const std::size_t next = std::min(head.find("\r\n", at), head.size());
      (line.empty() ? line : headers.emplace_back()) = head.substr(at, next - at);
      at = next + 2;
    }
  }
  bool Has(std::string_view header) const {
    return std::find(headers.begin(), headers.end(), header) != headers.end();
  }
  // True when a header of that name (ASCII case ignored) is there.
  bool Named(std::string_view name) const {
    return std::any_of(headers.begin(), headers.end(), [name](const std::string& header) {
      return header.size() > name.size() && header[name.size()] == ':' &&
             CString(header.substr(0, name.size()).c_str()).CompareNoCase(std::string(name).c_str()) == 0;
    });
  }
};

// Clears the proxy variables for the test (so the machine's own settings do not reach
// the loopback server), sets the given ones, and restores everything afterwards.
class ProxyVariables {
 public:
  explicit ProxyVariables(const std::vector<std::pair<std::string, std::string>>& set = {}) {
    for (const char* name : {"http_proxy", "HTTP_PROXY", "https_proxy", "HTTPS_PROXY", "all_proxy",
                             "ALL_PROXY", "no_proxy", "NO_PROXY"}) {
      const char* value = std::getenv(name);
      m_saved.emplace_back(name, value ? std::optional<std::string>(value) : std::nullopt);
      unsetenv(name);
    }
    for (const auto& [name, value] : set) setenv(name.c_str(), value.c_str(), 1);
  }
  ~ProxyVariables() {
    for (const auto& [name, value] : m_saved) {
      if (value) {
        setenv(name.c_str(), value->c_str(), 1);
      } else {
        unsetenv(name.c_str());
      }
    }
  }
  ProxyVariables(const ProxyVariables&) = delete;
  ProxyVariables& operator=(const ProxyVariables&) = delete;

 private:
  std::vector<std::pair<std::string, std::optional<std::string>>> m_saved;
};

// Shortens both time limits to one second for the test, then restores them.
class ShortTimeLimits {
 public:
  ShortTimeLimits()
      : m_connect(Utility().GetHttpConnectTimeLimit()), m_stall(Utility().GetHttpStallTimeLimit()) {
    Utility().SetHttpTimeLimits(1s, 1s);
  }
  ~ShortTimeLimits() { Utility().SetHttpTimeLimits(m_connect, m_stall); }
  ShortTimeLimits(const ShortTimeLimits&) = delete;
  ShortTimeLimits& operator=(const ShortTimeLimits&) = delete;

 private:
  std::chrono::seconds m_connect;
  std::chrono::seconds m_stall;
};

class Http : public ::testing::Test {
 protected:
  ProxyVariables m_proxies;
};

// Names of the folder's entries other than `except`: leftovers of a download.
std::vector<std::string> Leftovers(const std::filesystem::path& folder, std::string_view except) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().filename() != except) names.push_back(entry.path().filename().string());
  }
  return names;
}

// --- the multipart body ---------------------------------------------------------------

TEST_F(Http, FieldPartIsFramedByTheBoundaryWithoutTypeOrFileName) {
  EXPECT_EQ(Utility().MakeResultFileData("a", "B", CString("1")).str(),
            "--B\r\nContent-Disposition: form-data; name=\"a\"\r\n\r\n1\r\n");
  // The part itself interprets nothing: that happens when the upload formats it.
  EXPECT_EQ(Utility().MakeResultFileData("", "B", CString("%s%d")).str(),
            "--B\r\nContent-Disposition: form-data; name=\"\"\r\n\r\n%s%d\r\n");
}

TEST_F(Http, MultipartBodyIsSentByteForByteWithEachPartUsedAsAFormat) {
  struct Row {
    std::vector<std::string> names;
    std::vector<std::string> values;
    std::string body;
  };
  const std::string boundary(kBoundary);
  const std::vector<Row> rows = {
      {{}, {}, std::string(kTerminator)},
      {{"a"},
       {"1"},
       "--FFF3F395A90B452BB8BEDC878DDBD152\r\nContent-Disposition: form-data; name=\"a\"\r\n\r\n1\r\n"
       "--FFF3F395A90B452BB8BEDC878DDBD152--\r\n\r\n"},
      {{"x", "y"},
       {"line 1\r\nline 2", ""},
       Part("x", "line 1\r\nline 2") + Part("y", "") + std::string(kTerminator)},
      {{"v"}, {"[%s]"}, Part("v", "[" + boundary + "]") + std::string(kTerminator)},
      {{"v"}, {"[%d]"}, Part("v", "[]") + std::string(kTerminator)},
      {{"v"}, {"100%%"}, Part("v", "100%") + std::string(kTerminator)},
      // The boundary is the only argument of each part: the second "%s" of a part gets none.
      {{"p", "q"}, {"%s", "%s%s"}, Part("p", boundary) + Part("q", boundary) + std::string(kTerminator)},
      {{"n%s"}, {"1"}, Part("n" + boundary, "1") + std::string(kTerminator)},
      {{"nul"}, {std::string("a\0b", 3)}, Part("nul", std::string("a\0b", 3)) + std::string(kTerminator)},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.body);
    LoopbackServer server;
    CString url(server.Url("/upload"));
    ASSERT_EQ(Utility().GetComplate(url, Array(row.names), Array(row.values), 1), 1);
    const auto requests = server.Requests();
    ASSERT_EQ(requests.size(), 1U);
    const Request request(requests[0]);
    EXPECT_EQ(request.line, "POST /upload HTTP/1.1");
    EXPECT_EQ(request.body, row.body);
    EXPECT_TRUE(request.Has("Content-Length: " + std::to_string(row.body.size())));
    EXPECT_EQ(url.str(), server.Url("/upload"));  // a POST leaves the URL alone
  }
}

TEST_F(Http, HeadersAreTheContentTypeAndTheAgentWithoutAcceptOrExpect) {
  struct Row {
    int multipart;
    std::string_view method;
    std::string_view contentType;
  };
  for (const Row& row : {Row{1, "POST", kMultipartType}, Row{0, "GET", kTextType}}) {
    SCOPED_TRACE(row.method);
    LoopbackServer server;
    CString url(server.Url("/f?k=v"));
    ASSERT_EQ(Utility().GetComplate(url, Array({"a"}), Array({"1"}), row.multipart), 1);
    const Request request(server.Requests().at(0));
    EXPECT_EQ(request.line.substr(0, row.method.size() + 1), std::string(row.method) + " ");
    EXPECT_TRUE(request.Has(row.contentType));
    EXPECT_TRUE(request.Has("User-Agent: HTTPFILE"));
    EXPECT_TRUE(request.Has("Host: 127.0.0.1:" + std::to_string(server.Port())));
    EXPECT_FALSE(request.Named("Accept"));
    EXPECT_FALSE(request.Named("Expect"));
    EXPECT_FALSE(request.Named("Transfer-Encoding"));
  }
}

TEST_F(Http, LargeBodyGoesOutAtOnceWithoutWaitingForContinue) {
  std::string value(std::size_t{1536} * 1024, 'x');
  for (std::size_t i = 0; i < value.size(); i += 1000) value[i] = static_cast<char>('a' + i % 26);
  LoopbackServer server;
  CString url(server.Url("/big"));
  const auto start = Clock::now();
  ASSERT_EQ(Utility().GetComplate(url, Array({"file"}), Array({value}), 1), 1);
  // libcurl would wait a whole second for a "100 Continue" after announcing Expect.
  EXPECT_LT(Clock::now() - start, 900ms);
  const Request request(server.Requests().at(0));
  EXPECT_FALSE(request.Named("Expect"));
  EXPECT_TRUE(request.body == Part("file", value) + std::string(kTerminator));
}

// --- GET -------------------------------------------------------------------------------

TEST_F(Http, GetAppendsEveryFieldToTheUrlItself) {
  struct Row {
    std::string path;
    std::vector<std::string> names;
    std::vector<std::string> values;
    std::string requested;
  };
  const std::vector<Row> rows = {
      {"/p?k=v", {"x", "y"}, {"1", "2"}, "/p?k=v&x=1&y=2"},
      {"/p?k=v", {}, {}, "/p?k=v"},
      // The fields are the format's arguments, never a format themselves.
      {"/q?a=b", {"n"}, {"%s"}, "/q?a=b&n=%s"},
      // No "?" of its own: the first field is introduced with "&" all the same.
      {"/plain", {"x"}, {"1"}, "/plain&x=1"},
      // Bytes go out as they are, but for a blank, which would break the request line.
      {"/p?k=v", {"t", "u"}, {"a b", "\xC3\xA9/%41"}, "/p?k=v&t=a b&u=\xC3\xA9/%41"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.requested);
    LoopbackServer server;
    CString url(server.Url(row.path));
    ASSERT_EQ(Utility().GetComplate(url, Array(row.names), Array(row.values), 0), 1);
    EXPECT_EQ(url.str(), server.Url(row.requested));
    const Request request(server.Requests().at(0));
    std::string sent = row.requested;
    for (std::size_t at = sent.find(' '); at != std::string::npos; at = sent.find(' ', at))
      sent.replace(at, 1, "%20");
    EXPECT_EQ(request.line, "GET " + sent + " HTTP/1.1");
    EXPECT_EQ(request.body, "");
  }
}

// --- refusals and answers ----------------------------------------------------------------

TEST_F(Http, UploadSendsNothingForUnequalArraysOrAUrlThatDoesNotParse) {
  struct Row {
    std::string url;  // "@" stands for the server's address
    std::vector<std::string> names;
    std::vector<std::string> values;
    int multipart;
  };
  const std::vector<Row> rows = {
      {"@/p?k=v", {"a", "b"}, {"1"}, 1},
      {"@/p?k=v", {"a"}, {"1", "2"}, 0},
      {"", {"a"}, {"1"}, 1},
      {"not a url", {"a"}, {"1"}, 1},
      {"127.0.0.1/p", {"a"}, {"1"}, 1},  // no scheme
      {"http://", {"a"}, {"1"}, 1},
      {"ftp://127.0.0.1/p", {"a"}, {"1"}, 1},
      {"file:///etc/passwd", {"a"}, {"1"}, 0},
      {std::string("@/p\0/q", 6), {"a"}, {"1"}, 1},
      // A field may not smuggle a header line or a control character into the request.
      {"@/p?k=v", {"a"}, {"1\r\nX-Injected: yes"}, 0},
      {"@/p?k=v", {"a"}, {"1\t2"}, 0},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.url);
    LoopbackServer server;
    std::string text = row.url;
    if (!text.empty() && text[0] == '@') text.replace(0, 1, server.Url(""));
    CString url(text.data(), static_cast<int>(text.size()));
    EXPECT_EQ(Utility().GetComplate(url, Array(row.names), Array(row.values), row.multipart), 0);
    if (row.names.size() != row.values.size()) {
      EXPECT_EQ(url.str(), text);  // not even appended to
    }
    EXPECT_EQ(server.RequestCount(), 0U);
  }
}

TEST_F(Http, UploadCountsAsSentOnceAnyAnswerArrives) {
  struct Row {
    LoopbackReply reply;
    int expected;
  };
  const std::vector<Row> rows = {
      {{Mode::Answer, 200, "fine"}, 1},
      {{Mode::Answer, 404, "missing"}, 1},
      {{Mode::Answer, 500, "broken"}, 1},
      // The answer's body is never read: headers without it are enough.
      {{Mode::Stall, 200, "never sent"}, 1},
      {{Mode::Silent, 200, ""}, 0},
  };
  const ShortTimeLimits limits;
  auto prompt = std::make_shared<RecordingHostPrompt>();
  const ScopedHostPrompt scope(prompt);
  for (const Row& row : rows) {
    SCOPED_TRACE(row.reply.status);
    SCOPED_TRACE(static_cast<int>(row.reply.mode));
    LoopbackServer server(row.reply);
    CString url(server.Url("/u"));
    const auto start = Clock::now();
    EXPECT_EQ(Utility().GetComplate(url, Array({"a"}), Array({"1"}), 1), row.expected);
    EXPECT_LT(Clock::now() - start, 5s);
    EXPECT_EQ(server.RequestCount(), 1U);
  }
  EXPECT_TRUE(prompt->Messages().empty());
}

TEST_F(Http, DownloadReplacesTheTargetOnlyAfterACompleteOkAnswer) {
  struct Row {
    LoopbackReply reply;
    std::optional<std::string> before;  // the target's content beforehand
    int expected;
    std::optional<std::string> after;  // nullopt: no target afterwards
    std::string message;               // "" : no prompt
  };
  const std::string big(300000, 'b');
  const std::vector<Row> rows = {
      {{Mode::Answer, 200, "payload"}, std::nullopt, 1, "payload", ""},
      {{Mode::Answer, 200, "new"}, "old", 1, "new", ""},
      {{Mode::Answer, 200, ""}, "old", 1, "", ""},
      {{Mode::Answer, 200, big}, std::nullopt, 1, big, ""},
      {{Mode::Answer, 404, "missing"}, "old", 0, "old", ""},
      {{Mode::Answer, 404, "missing"}, std::nullopt, 0, std::nullopt, ""},
      {{Mode::Answer, 500, "broken"}, "old", 0, "old", "Unknown Error Err code : 500"},
      {{Mode::Answer, 503, ""}, std::nullopt, 0, std::nullopt, "Unknown Error Err code : 503"},
      {{Mode::Stall, 200, "never sent"}, "old", 0, "old", ""},
      {{Mode::CloseMidBody, 200, big}, "old", 0, "old", ""},
      {{Mode::CloseMidBody, 200, big}, std::nullopt, 0, std::nullopt, ""},
  };
  const ShortTimeLimits limits;
  for (const Row& row : rows) {
    SCOPED_TRACE(row.reply.status);
    SCOPED_TRACE(static_cast<int>(row.reply.mode));
    auto prompt = std::make_shared<RecordingHostPrompt>();
    const ScopedHostPrompt scope(prompt);
    TempFolder folder("http");
    const std::string target = folder.PathOf("target.bin");
    if (row.before) folder.Write("target.bin", *row.before);
    LoopbackServer server(row.reply);
    const auto start = Clock::now();
    EXPECT_EQ(Utility().GetDownloader(CString(server.Url("/file.bin")), CString(target)), row.expected);
    EXPECT_LT(Clock::now() - start, 5s);
    EXPECT_EQ(std::filesystem::exists(target), row.after.has_value());
    if (row.after) {
      EXPECT_TRUE(corlith::test::ReadFile(target) == *row.after);
    }
    EXPECT_EQ(Leftovers(folder.Path(), "target.bin"), std::vector<std::string>{});
    const auto messages = prompt->Messages();
    ASSERT_EQ(messages.size(), row.message.empty() ? 0U : 1U);
    if (!row.message.empty()) {
      EXPECT_EQ(messages[0].text, row.message);
    }
    const Request request(server.Requests().at(0));
    EXPECT_EQ(request.line, "GET /file.bin HTTP/1.1");
    EXPECT_TRUE(request.Has("User-Agent: HTTPFILE"));
  }
}

TEST_F(Http, DownloadFailsWithoutTouchingAnythingForBadUrlsAndTargets) {
  TempFolder folder("http");
  LoopbackServer server({Mode::Answer, 200, "payload"});
  const ReservedPort dead;
  EXPECT_EQ(Utility().GetDownloader(CString("no url"), CString(folder.PathOf("a"))), 0);
  EXPECT_EQ(Utility().GetDownloader(CString(dead.Url() + "/x"), CString(folder.PathOf("b"))), 0);
  EXPECT_EQ(Utility().GetDownloader(CString(server.Url("/x")), CString(folder.PathOf("missing/c"))), 0);
  EXPECT_EQ(Utility().GetDownloader(CString(server.Url("/x")), CString()), 0);
  EXPECT_EQ(Leftovers(folder.Path(), ""), std::vector<std::string>{});
}

TEST_F(Http, ProxyVariablesReachTheUploadButNotTheDownload) {
  struct Row {
    std::vector<std::string> variables;  // NAME, "@" standing for the dead proxy's URL
    int upload;
  };
  const std::vector<Row> rows = {
      {{"http_proxy"}, 0},
      {{"all_proxy"}, 0},
      {{"ALL_PROXY"}, 0},
      {{"http_proxy", "HTTP_PROXY", "no_proxy=127.0.0.1"}, 1},
  };
  const ReservedPort dead;
  for (const Row& row : rows) {
    SCOPED_TRACE(row.variables.back());
    std::vector<std::pair<std::string, std::string>> set;
    for (const std::string& variable : row.variables) {
      const std::size_t equals = variable.find('=');
      set.emplace_back(variable.substr(0, equals),
                       equals == std::string::npos ? dead.Url() : variable.substr(equals + 1));
    }
    const ProxyVariables proxies(set);
    LoopbackServer server({Mode::Answer, 200, "through"});
    CString url(server.Url("/u"));
    EXPECT_EQ(Utility().GetComplate(url, Array({"a"}), Array({"1"}), 1), row.upload);
    EXPECT_EQ(server.RequestCount(), static_cast<std::size_t>(row.upload));
    TempFolder folder("http");
    EXPECT_EQ(Utility().GetDownloader(CString(server.Url("/d")), CString(folder.PathOf("d"))), 1);
    EXPECT_EQ(corlith::test::ReadFile(folder.PathOf("d")), "through");
  }
}

// --- the corlith tool ----------------------------------------------------------------------

TEST_F(Http, ToolSendsFormsAndDownloadsWithTheExitStatusOfTheCall) {
#ifndef CORLITH_TOOL
  GTEST_SKIP() << "the corlith tool is not built";
#else
  struct Row {
    std::vector<std::string> arguments;  // "@" stands for the server's address
    LoopbackReply reply;
    int exit;
    std::string requestLine;  // "": nothing may reach the server
    std::string body;
  };
  const std::vector<Row> rows = {
      {{"post", "@/form", "a=1", "b=x=y"},
       {},
       0,
       "POST /form HTTP/1.1",
       Part("a", "1") + Part("b", "x=y") + std::string(kTerminator)},
      {{"post", "@/form", "novalue"}, {}, 2, "", ""},
      {{"get", "@/p?k=v", "x=1", "y="}, {}, 0, "GET /p?k=v&x=1&y= HTTP/1.1", ""},
      {{"get", "no url", "x=1"}, {}, 1, "", ""},
      {{"download", "@/f", "FILE"}, {Mode::Answer, 200, "body"}, 0, "GET /f HTTP/1.1", ""},
      {{"download", "@/f", "FILE"}, {Mode::Answer, 404, ""}, 1, "GET /f HTTP/1.1", ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.arguments.at(0) + " " + row.arguments.back());
    LoopbackServer server(row.reply);
    TempFolder folder("http");
    corlith::platform::SpawnOptions options;
    options.program = CORLITH_TOOL;
    for (std::string argument : row.arguments) {
      if (argument[0] == '@') argument.replace(0, 1, server.Url(""));
      if (argument == "FILE") argument = folder.PathOf("saved");
      options.arguments.push_back(argument);
    }
    const auto result = corlith::platform::RunHidden(options, 30s);
    ASSERT_EQ(result.error, 0);
    EXPECT_EQ(result.status.code, row.exit);
    const auto requests = server.Requests();
    ASSERT_EQ(requests.size(), row.requestLine.empty() ? 0U : 1U);
    if (!row.requestLine.empty()) {
      const Request request(requests[0]);
      EXPECT_EQ(request.line, row.requestLine);
      EXPECT_EQ(request.body, row.body);
    }
    if (row.arguments[0] == "download") {
      EXPECT_EQ(corlith::test::ReadFile(folder.PathOf("saved")), row.exit == 0 ? row.reply.body : "");
    }
  }
#endif
}

}  // namespace
